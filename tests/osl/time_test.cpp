// The clock against the C library's.
#include <chrono>
#include <ctime>

#include "test_support.h"

TEST(Time, CountsNanosecondsFrom1970) {
    const auto now = [] {
        return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                         std::chrono::system_clock::now().time_since_epoch())
                                         .count());
    };
    const uint64_t before = now();
    const uint64_t counted = osl_timeNanoSecs();
    const uint64_t after = now();
    EXPECT_LE(before, counted);
    EXPECT_LE(counted, after);
}

TEST(Time, IsBrokenDownInUtcWithItsFraction) {
    // As often as it takes to see a call that falls between two like readings.
    for (int i = 0; i < 100; ++i) {
        const uint64_t before = osl_timeNanoSecs();
        struct tm utc = {};
        uint16_t fraction = UINT16_MAX;
        osl_timeUTC(&utc, &fraction);
        const uint64_t after = osl_timeNanoSecs();
        ASSERT_LE(fraction, 9999);
        ASSERT_GE(utc.tm_year, 100);
        const auto seconds = static_cast<uint64_t>(timegm(&utc));
        const uint64_t ticks = seconds * 10000 + fraction;
        ASSERT_GE(ticks, before / 100000);
        ASSERT_LE(ticks, after / 100000);
    }
}

TEST(Time, IsHandedOutWhereItIsWanted) {
    struct tm utc = {};
    uint16_t fraction = UINT16_MAX;
    osl_timeUTC(nullptr, &fraction);
    EXPECT_LE(fraction, 9999);
    osl_timeUTC(&utc, nullptr);
    EXPECT_GE(utc.tm_year, 100);
    osl_timeUTC(nullptr, nullptr);
}
