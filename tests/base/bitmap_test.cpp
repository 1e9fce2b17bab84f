// The bitmap: every operation tells the earlier value, nothing happens out of
// range, and a vector of booleans agrees with it.
#include "bitmap.h"

#include <vector>

#include "test_support.h"

namespace {

B_BITMAP create(uint32_t size, OSL_MEMTAG tag) {
    B_BITMAP bitmap = nullptr;
    EXPECT_EQ(b_bmCreate(size, tag, &bitmap), sOKAY);
    return bitmap;
}

TEST(Bitmap, StartsClear) {
    oaktest::Tag tag;
    B_BITMAP bitmap = create(100, tag);
    for (uint32_t bit = 0; bit < 100; ++bit) {
        EXPECT_EQ(b_bmTestBit(bitmap, bit), OAK_FALSE);
    }
    EXPECT_EQ(b_bmCount(bitmap), 0u);
    b_bmDestroy(bitmap);
}

TEST(Bitmap, TellsTheEarlierValueOfEachChange) {
    oaktest::Tag tag;
    B_BITMAP bitmap = create(64, tag);
    for (const uint32_t bit : {0u, 1u, 31u, 32u, 33u, 63u}) {
        EXPECT_EQ(b_bmSetBit(bitmap, bit), OAK_FALSE);
        EXPECT_EQ(b_bmSetBit(bitmap, bit), OAK_TRUE);
        EXPECT_EQ(b_bmTestBit(bitmap, bit), OAK_TRUE);
        EXPECT_EQ(b_bmClearBit(bitmap, bit), OAK_TRUE);
        EXPECT_EQ(b_bmClearBit(bitmap, bit), OAK_FALSE);
        EXPECT_EQ(b_bmNegateBit(bitmap, bit), OAK_FALSE);
        EXPECT_EQ(b_bmNegateBit(bitmap, bit), OAK_TRUE);
        EXPECT_EQ(b_bmTestBit(bitmap, bit), OAK_FALSE);
    }
    b_bmDestroy(bitmap);
}

TEST(Bitmap, LeavesEverythingAloneOutOfRange) {
    oaktest::Tag tag;
    for (const uint32_t size : {0u, 1u, 31u, 32u, 33u}) {
        B_BITMAP bitmap = create(size, tag);
        for (const uint32_t bit : {size, size + 1, size + 32, UINT32_MAX}) {
            EXPECT_EQ(b_bmSetBit(bitmap, bit), OAK_FALSE);
            EXPECT_EQ(b_bmNegateBit(bitmap, bit), OAK_FALSE);
            EXPECT_EQ(b_bmTestBit(bitmap, bit), OAK_FALSE);
            EXPECT_EQ(b_bmClearBit(bitmap, bit), OAK_FALSE);
        }
        EXPECT_EQ(b_bmCount(bitmap), 0u) << size;
        b_bmDestroy(bitmap);
    }
}

TEST(Bitmap, AgreesWithAVectorOfBooleans) {
    oaktest::Tag tag;
    oaktest::Random random(1);
    constexpr uint32_t kSize = 1000;
    B_BITMAP bitmap = create(kSize, tag);
    std::vector<bool> model(kSize);
    for (int step = 0; step < 20000; ++step) {
        const auto bit = static_cast<uint32_t>(random.below(kSize));
        const uint64_t operation = random.below(3);
        const bool earlier = model[bit];
        const OAK_BOOL_T told = operation == 0   ? b_bmSetBit(bitmap, bit)
                                : operation == 1 ? b_bmClearBit(bitmap, bit)
                                                 : b_bmNegateBit(bitmap, bit);
        ASSERT_EQ(told == OAK_TRUE, earlier);
        model[bit] = operation == 0 || (operation == 2 && !earlier);
    }
    uint32_t count = 0;
    for (uint32_t bit = 0; bit < kSize; ++bit) {
        ASSERT_EQ(b_bmTestBit(bitmap, bit) == OAK_TRUE, model[bit]);
        count += model[bit] ? 1 : 0;
    }
    EXPECT_EQ(b_bmCount(bitmap), count);
    b_bmDestroy(bitmap);
}

TEST(Bitmap, TakesANullBitmap) {
    EXPECT_EQ(b_bmCreate(1, OSL_TAG_PROCESS, nullptr), eINVNULLARG);
    b_bmDestroy(nullptr);
    EXPECT_EQ(b_bmSetBit(nullptr, 0), OAK_FALSE);
    EXPECT_EQ(b_bmTestBit(nullptr, 0), OAK_FALSE);
    EXPECT_EQ(b_bmCount(nullptr), 0u);
}

TEST(Bitmap, LeavesNothingBehindWhenMemoryEnds) {
    oaktest::Tag tag;
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        B_BITMAP bitmap = nullptr;
        const OAK_RETCODE rc = b_bmCreate(1000, tag, &bitmap);
        EXPECT_EQ(bitmap != nullptr, rc == sOKAY);
        b_bmDestroy(bitmap);
        return rc;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

} // namespace
