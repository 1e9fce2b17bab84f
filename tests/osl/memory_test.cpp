// Tags and blocks: every flag, growth, failure, and what a tag's death frees.
#include <cstring>

#include "test_support.h"

TEST(Memory, GivesAlignedBlocksOfEverySize) {
    oaktest::Tag tag;
    for (size_t size = 0; size < 20000; size = size < 300 ? size + 1 : size * 5 / 4) {
        void *block = OSL_GET_ZERO(size, tag);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 16, 0u);
        std::memset(block, 0xee, size);
        OSL_FREE(block, tag);
    }
}
