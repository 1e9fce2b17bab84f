// The stored byte order: known bytes for every width, and its own inverse.
#include <cstring>

#include "test_support.h"

namespace {

/// The value's bytes in stored order, and the same turned back.
template <class Value>
void check(Value value, void (*turn)(Value *), const char *stored) {
    Value turned = value;
    turn(&turned);
    EXPECT_EQ(oaktest::hex(&turned, sizeof turned), stored);
    turn(&turned);
    EXPECT_EQ(std::memcmp(&turned, &value, sizeof value), 0);
}

} // namespace

TEST(Swaporder, IsBigEndianForEveryWidth) {
    check<int16_t>(0x0102, osl_swaporderInt16, "0102");
    check<int16_t>(-2, osl_swaporderInt16, "fffe");
    check<uint16_t>(0xff01, osl_swaporderUInt16, "ff01");
    check<int32_t>(0x01020304, osl_swaporderInt32, "01020304");
    check<int32_t>(INT32_MIN, osl_swaporderInt32, "80000000");
    check<uint32_t>(0xfedcba98, osl_swaporderUInt32, "fedcba98");
    check<int64_t>(0x0102030405060708, osl_swaporderInt64, "0102030405060708");
    check<int64_t>(-2, osl_swaporderInt64, "fffffffffffffffe");
    check<uint64_t>(0xf1f2f3f4f5f6f7f8, osl_swaporderUInt64, "f1f2f3f4f5f6f7f8");
    check<float>(1.0f, osl_swaporderFloat, "3f800000");
    check<float>(-0.0f, osl_swaporderFloat, "80000000");
    check<double>(1.0, osl_swaporderDouble, "3ff0000000000000");
    check<double>(-2.5, osl_swaporderDouble, "c004000000000000");
}

TEST(Swaporder, KeepsEveryBitOfANan) {
    // Swapped bytes are often a signalling NaN: no arithmetic may touch them.
    oaktest::Random random;
    for (int i = 0; i < 1000; ++i) {
        const uint64_t bits = random.next() | 0x7ff0000000000000;
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        osl_swaporderDouble(&value);
        osl_swaporderDouble(&value);
        EXPECT_EQ(std::memcmp(&value, &bits, sizeof bits), 0);
        const auto narrow = static_cast<uint32_t>(bits) | 0x7f800000;
        float single = 0;
        std::memcpy(&single, &narrow, sizeof single);
        osl_swaporderFloat(&single);
        osl_swaporderFloat(&single);
        EXPECT_EQ(std::memcmp(&single, &narrow, sizeof narrow), 0);
    }
}
