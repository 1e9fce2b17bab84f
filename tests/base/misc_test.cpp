// b_allocMemoryOrSetNull: zeroed memory, null for nothing, and its failures.
#include "misc.h"

#include <cstring>

#include "test_support.h"

namespace {

TEST(AllocMemoryOrSetNull, SizeZeroStoresNullAndAllocatesNothing) {
    oaktest::Tag tag;
    int dummy = 0;
    void *block = &dummy;
    EXPECT_EQ(b_allocMemoryOrSetNull(0, &block, tag), sOKAY);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(tag.live(), 0u);
}

TEST(AllocMemoryOrSetNull, BlockIsZeroed) {
    oaktest::Tag tag;
    for (const size_t size : {size_t{1}, size_t{7}, size_t{8}, size_t{1000}}) {
        // A block of the size that was in use before is zeroed as well.
        void *used = OSL_GET(size, tag);
        std::memset(used, 0xA5, size);
        OSL_FREE(used, tag);
        uint8_t *block = nullptr;
        ASSERT_EQ(b_allocMemoryOrSetNull(size, &block, tag), sOKAY);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(oaktest::hex(block, size), std::string(2 * size, '0'));
        OSL_FREE(block, tag);
    }
}

TEST(AllocMemoryOrSetNull, NullPlaceIsRefused) {
    oaktest::Tag tag;
    EXPECT_EQ(b_allocMemoryOrSetNull(8, nullptr, tag), eINVNULLARG);
    EXPECT_EQ(b_allocMemoryOrSetNull(0, nullptr, tag), eINVNULLARG);
}

TEST(AllocMemoryOrSetNull, FailureLeavesThePlaceAlone) {
    oaktest::Tag tag;
    int dummy = 0;
    const uint64_t failures = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        void *block = &dummy;
        const OAK_RETCODE rc = b_allocMemoryOrSetNull(16, &block, tag);
        if (rc == sOKAY) {
            OSL_FREE(block, tag);
        } else {
            EXPECT_EQ(block, &dummy);
        }
        return rc;
    });
    EXPECT_EQ(failures != 0, oaktest::faults_are_injected());
}

} // namespace
