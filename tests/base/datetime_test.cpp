// The calendar and the clock: packing, reading fields, shifting by zones, the current
// time and differences. A second calendar, which counts day by day under the rule of
// thumb for leap years, stands beside the sums. Texts are in datetime_text_test.cpp.
#include <cstring>

#include "datetime.h"
#include "datetime_internal.h"
#include "test_support.h"

namespace {

// ---- A calendar that only counts ---------------------------------------------------

bool plain_is_leap(int32_t year) {
    if (year % 400 == 0)
        return true;
    if (year % 100 == 0)
        return false;
    return year % 4 == 0;
}

int plain_month_length(int32_t year, int month) {
    switch (month) {
        case 2:
            return plain_is_leap(year) ? 29 : 28;
        case 4:
        case 6:
        case 9:
        case 11:
            return 30;
        default:
            return 31;
    }
}

// Walks forward a day at a time from 0001-01-01, which was a Monday.
struct PlainCalendar {
    uint32_t number = 1;
    int32_t year = 1;
    int month = 1;
    int day = 1;
    int weekday = 1; // 0 is Sunday
    int day_of_year = 1;

    void next() {
        ++number;
        weekday = (weekday + 1) % 7;
        ++day_of_year;
        if (++day <= plain_month_length(year, month))
            return;
        day = 1;
        if (++month <= 12)
            return;
        month = 1;
        ++year;
        day_of_year = 1;
    }
};

constexpr int64_t kDay = 864000000;
constexpr int64_t kMinute = 600000;

struct DateRow {
    int32_t year;
    uint16_t month;
    uint16_t day;
    uint32_t number;
    int weekday; // 1 is Sunday
    int day_of_year;
};

// Day numbers from a separate program.
const DateRow kDates[] = {
    {1, 1, 1, 1, 2, 1},
    {1, 1, 31, 31, 4, 31},
    {1, 2, 28, 59, 4, 59},
    {1, 3, 1, 60, 5, 60},
    {1, 12, 31, 365, 2, 365},
    {4, 2, 29, 1155, 1, 60},
    {4, 3, 1, 1156, 2, 61},
    {100, 2, 28, 36218, 1, 59},
    {100, 3, 1, 36219, 2, 60},
    {400, 2, 29, 145791, 3, 60},
    {1582, 10, 4, 577725, 2, 277}, // no change of calendar: ten ordinary days follow
    {1582, 10, 15, 577736, 6, 288},
    {1752, 9, 2, 639785, 7, 246},
    {1899, 12, 31, 693595, 1, 365},
    {1900, 2, 28, 693654, 4, 59},
    {1900, 3, 1, 693655, 5, 60},
    {1970, 1, 1, 719163, 5, 1},
    {2000, 1, 1, 730120, 7, 1},
    {2000, 2, 29, 730179, 3, 60},
    {2000, 3, 1, 730180, 4, 61},
    {2024, 2, 29, 738945, 5, 60},
    {2024, 12, 31, 739251, 3, 366},
    {2100, 2, 28, 766703, 1, 59},
    {2100, 3, 1, 766704, 2, 60},
    {2200, 3, 1, 803228, 7, 60},
    {2400, 2, 29, 876276, 3, 60},
    {9999, 1, 1, 3651695, 6, 1},
    {9999, 12, 31, 3652059, 6, 365},
};

OAK_DATE_T unpacked(OAK_PACKED_DATE_T date) {
    OAK_DATE_T fields = {-7, 77, 77};
    EXPECT_EQ(oak_dateUnpack(date, &fields), sOKAY);
    return fields;
}

std::string shown(const OAK_DATE_T &fields) {
    return std::to_string(fields.year) + "-" + std::to_string(fields.month) + "-" +
           std::to_string(fields.day);
}

} // namespace

// ---- Dates ---------------------------------------------------------------------------

TEST(Date, PacksAndUnpacksKnownDays) {
    for (const DateRow &row : kDates) {
        const OAK_DATE_T fields = {row.year, row.month, row.day};
        OAK_PACKED_DATE_T packed = 0;
        EXPECT_EQ(oak_datePack(&fields, &packed), sOKAY);
        EXPECT_EQ(packed, row.number) << shown(fields);
        EXPECT_EQ(shown(unpacked(row.number)), shown(fields));
        EXPECT_EQ(oak_dateDayOfWeek(row.number), row.weekday) << shown(fields);
        EXPECT_EQ(oak_dateDayOfYear(row.number), row.day_of_year) << shown(fields);
    }
}

TEST(Date, AgreesWithACountOfDaysOverTheWholeCalendar) {
    PlainCalendar plain;
    for (;; plain.next()) {
        int32_t year;
        uint16_t month;
        uint16_t day;
        queryDate(plain.number, &year, &month, &day);
        if (year != plain.year || month != plain.month || day != plain.day ||
            makeDate(year, month, day) != plain.number) {
            FAIL() << "day " << plain.number << " is " << year << "-" << month << "-" << day;
        }
        if (plain.number == OAK_DATE_MAX)
            break;
    }
    EXPECT_EQ(plain.year, 9999);
    EXPECT_EQ(plain.month, 12);
    EXPECT_EQ(plain.day, 31);
}

TEST(Date, ReadsEveryFieldOfEveryMonthEnd) {
    const char *const names[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                 "Thursday", "Friday", "Saturday"};
    const char *const months[] = {"January",   "February", "March",    "April",
                                  "May",       "June",     "July",     "August",
                                  "September", "October",  "November", "December"};
    for (PlainCalendar plain; plain.year <= 9999; plain.next()) {
        if (plain.day != 1 && plain.day != plain_month_length(plain.year, plain.month))
            continue;
        const OAK_PACKED_DATE_T date = plain.number;
        const std::string month = months[plain.month - 1];
        const std::string day = names[plain.weekday];
        ASSERT_EQ(oak_dateYear(date), plain.year);
        ASSERT_EQ(oak_dateMonth(date), plain.month);
        ASSERT_EQ(oak_dateDayOfMonth(date), plain.day);
        ASSERT_EQ(oak_dateDayOfWeek(date), plain.weekday + 1);
        ASSERT_EQ(oak_dateDayOfYear(date), plain.day_of_year);
        ASSERT_EQ(oak_dateWeek(date), (plain.day_of_year + 6) / 7);
        ASSERT_EQ(oak_dateQuarter(date), (plain.month + 2) / 3);
        ASSERT_STREQ(oak_dateDayName(date), day.c_str());
        ASSERT_EQ(oak_dateDayAbr(date), day.substr(0, 3));
        ASSERT_STREQ(oak_dateMonthName(date), month.c_str());
        ASSERT_EQ(oak_dateMonthAbr(date), month.substr(0, 3));
    }
}

TEST(Date, FirstWeekIsTheFirstSevenDaysOfTheYear) {
    for (const int32_t year : {1, 2023, 2024, 9999}) {
        const OAK_PACKED_DATE_T first = makeDate(year, 1, 1);
        EXPECT_EQ(oak_dateWeek(first), 1);
        EXPECT_EQ(oak_dateWeek(first + 6), 1);
        EXPECT_EQ(oak_dateWeek(first + 7), 2);
        EXPECT_EQ(oak_dateWeek(makeDate(year, 12, 31)), 53);
    }
}

TEST(Date, QuartersBeginInJanuaryAprilJulyAndOctober) {
    const int expected[] = {1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4};
    for (uint16_t month = 1; month <= 12; ++month)
        EXPECT_EQ(oak_dateQuarter(makeDate(2024, month, 15)), expected[month - 1]) << month;
}

TEST(Date, FebruaryHasTwentyNineDaysInLeapYearsAlone) {
    for (const int32_t year : {1900, 2100, 2200, 2300, 100, 2023, 2001})
        EXPECT_EQ(lastDayOfMonth(year, 2), 28) << year;
    for (const int32_t year : {2000, 2400, 400, 4, 2024, 0})
        EXPECT_EQ(lastDayOfMonth(year, 2), 29) << year;
    for (uint16_t month = 1; month <= 12; ++month)
        EXPECT_EQ(lastDayOfMonth(2024, month), plain_month_length(2024, month)) << month;
}

TEST(Date, ZeroIsNoDateAndUnpacksAsTheSumsGiveIt) {
    EXPECT_EQ(shown(unpacked(0)), "0-1-365");
    EXPECT_EQ(oak_dateYear(0), 0);
    EXPECT_EQ(oak_dateMonth(0), 1);
    EXPECT_EQ(oak_dateDayOfMonth(0), 365);
    EXPECT_EQ(oak_dateDayOfWeek(0), 1);
    // 1 January of year 0 is -364 in 32 bits.
    EXPECT_EQ(oak_dateDayOfYear(0), 365);
    EXPECT_EQ(oak_dateWeek(0), 53);
    EXPECT_STREQ(oak_dateMonthName(0), "January");
    EXPECT_STREQ(oak_dateDayName(0), "Sunday");
}

TEST(Date, WhatLiesAboveTheCalendarUnpacksAsItsFirstDay) {
    EXPECT_EQ(shown(unpacked(3652059)), "9999-12-31");
    for (const uint32_t date : {3652060u, 3652061u, 1u << 31, UINT32_MAX}) {
        EXPECT_EQ(shown(unpacked(date)), "1-1-1") << date;
        EXPECT_EQ(oak_dateYear(date), 1) << date;
        EXPECT_EQ(oak_dateDayOfWeek(date), date % 7 + 1) << "the weekday is that of the number";
    }
}

TEST(Date, PacksDaysThatTheMonthDoesNotHaveIntoTheNextMonth) {
    const struct {
        OAK_DATE_T given;
        const char *read;
    } rows[] = {
        {{2023, 2, 29}, "2023-3-1"}, {{2023, 2, 31}, "2023-3-3"},   {{2024, 2, 30}, "2024-3-1"},
        {{2024, 4, 31}, "2024-5-1"}, {{2024, 11, 31}, "2024-12-1"},
    };
    for (const auto &row : rows) {
        OAK_PACKED_DATE_T packed = 0;
        EXPECT_EQ(oak_datePack(&row.given, &packed), sOKAY);
        EXPECT_EQ(shown(unpacked(packed)), row.read);
    }
}

TEST(Date, PacksYearsAboveTheCalendar) {
    const OAK_DATE_T first = {10000, 1, 1};
    OAK_PACKED_DATE_T packed = 0;
    EXPECT_EQ(oak_datePack(&first, &packed), sOKAY);
    EXPECT_EQ(packed, 3652060u);
    EXPECT_EQ(shown(unpacked(packed)), "1-1-1");
}

TEST(Date, CountsDaysModuloTwoToThe32ndFromYear11759222) {
    const struct {
        OAK_DATE_T fields;
        uint32_t number;
    } rows[] = {
        {{11759222, 1, 1}, 4294967277u}, {{11759222, 1, 19}, 4294967295u}, {{11759222, 1, 20}, 0},
        {{11759222, 1, 21}, 1},          {{INT32_MAX, 1, 1}, 2668247703u},
    };
    for (const auto &row : rows) {
        OAK_PACKED_DATE_T packed = 7;
        EXPECT_EQ(oak_datePack(&row.fields, &packed), sOKAY);
        EXPECT_EQ(packed, row.number) << shown(row.fields);
    }
}

TEST(Date, RefusesFieldsOutOfRangeAndLeavesTheNumberAlone) {
    const OAK_DATE_T rows[] = {{0, 1, 1},    {-1, 1, 1},    {INT32_MIN, 1, 1},
                               {2024, 0, 1}, {2024, 13, 1}, {2024, UINT16_MAX, 1},
                               {2024, 1, 0}, {2024, 1, 32}, {2024, 12, UINT16_MAX}};
    for (const OAK_DATE_T &fields : rows) {
        OAK_PACKED_DATE_T packed = 77;
        EXPECT_EQ(oak_datePack(&fields, &packed), eBASE_INVDATE) << shown(fields);
        EXPECT_EQ(packed, 77u);
    }
}

// ---- Times -----------------------------------------------------------------------------

TEST(Time, PacksAndUnpacksKnownTimes) {
    const struct {
        OAK_TIME_T fields;
        uint32_t number;
    } rows[] = {
        {{0, 0, 0, 0}, 0},
        {{0, 0, 0, 1}, 1},
        {{0, 0, 1, 0}, 10000},
        {{0, 1, 0, 0}, 600000},
        {{1, 0, 0, 0}, 36000000},
        {{12, 34, 56, 7891}, 452967891},
        {{23, 59, 59, 9999}, 863999999},
    };
    for (const auto &row : rows) {
        OAK_PACKED_TIME_T packed = 77;
        EXPECT_EQ(oak_timePack(&row.fields, &packed), sOKAY);
        EXPECT_EQ(packed, row.number);
        OAK_TIME_T fields = {77, 77, 77, 77};
        EXPECT_EQ(oak_timeUnpack(row.number, &fields), sOKAY);
        EXPECT_EQ(std::memcmp(&fields, &row.fields, sizeof fields), 0) << row.number;
    }
}

TEST(Time, AgreesWithACountOfSecondsOverTheWholeDay) {
    uint32_t number = 0;
    for (uint16_t hour = 0; hour < 24; ++hour)
        for (uint16_t minute = 0; minute < 60; ++minute)
            for (uint16_t second = 0; second < 60; ++second, number += 10000) {
                const auto fraction = static_cast<uint16_t>(number / 10000 % 10000);
                OAK_TIME_T fields;
                ASSERT_EQ(oak_timeUnpack(number + fraction, &fields), sOKAY);
                ASSERT_TRUE(fields.hour == hour && fields.minute == minute &&
                            fields.second == second && fields.fraction == fraction)
                    << number;
                OAK_PACKED_TIME_T packed;
                ASSERT_EQ(oak_timePack(&fields, &packed), sOKAY);
                ASSERT_EQ(packed, number + fraction);
                ASSERT_EQ(oak_timeHour(packed), hour);
                ASSERT_EQ(oak_timeMinute(packed), minute);
                ASSERT_EQ(oak_timeSecond(packed), second);
                ASSERT_EQ(oak_timeFraction(packed), fraction);
            }
    EXPECT_EQ(number, 864000000u);
}

TEST(Time, RefusesFieldsOutOfRange) {
    const OAK_TIME_T rows[] = {{24, 0, 0, 0},         {UINT16_MAX, 0, 0, 0}, {0, 60, 0, 0},
                               {0, UINT16_MAX, 0, 0}, {0, 0, 60, 0},         {0, 0, UINT16_MAX, 0},
                               {0, 0, 0, 10000},      {0, 0, 0, UINT16_MAX}};
    for (const OAK_TIME_T &fields : rows) {
        OAK_PACKED_TIME_T packed = 77;
        EXPECT_EQ(oak_timePack(&fields, &packed), eINVLITERAL);
        EXPECT_EQ(packed, 77u);
    }
}

TEST(Time, OfADayOrMoreShowsHourAndFractionAlone) {
    const struct {
        uint32_t time;
        uint16_t hour;
        uint16_t fraction;
    } rows[] = {
        {864000000, 24, 0}, {864000009, 24, 9}, {900000000, 25, 0}, {UINT32_MAX, 119, 7295}};
    for (const auto &row : rows) {
        OAK_TIME_T fields = {77, 66, 55, 44};
        EXPECT_EQ(oak_timeUnpack(row.time, &fields), eINVLITERAL);
        EXPECT_EQ(fields.hour, row.hour);
        EXPECT_EQ(fields.fraction, row.fraction);
        EXPECT_EQ(fields.minute, 66);
        EXPECT_EQ(fields.second, 55);
        EXPECT_EQ(oak_timeHour(row.time), row.hour) << "the reader shows the damage";
        EXPECT_EQ(oak_timeMinute(row.time), 0);
        EXPECT_EQ(oak_timeSecond(row.time), 0);
        EXPECT_EQ(oak_timeFraction(row.time), 0);
    }
}

// ---- Timestamps and zones -----------------------------------------------------------------

TEST(Timestamp, PacksAndUnpacksItsParts) {
    const OAK_TIMESTAMP_T fields = {2024, 2, 29, 12, 34, 56, 7891};
    OAK_PACKED_TIMESTAMP_T packed;
    ASSERT_EQ(oak_timestampPack(&fields, &packed), sOKAY);
    EXPECT_EQ(packed.date, 738945u);
    EXPECT_EQ(packed.time, 452967891u);
    OAK_TIMESTAMP_T read;
    ASSERT_EQ(oak_timestampUnpack(packed, &read), sOKAY);
    EXPECT_EQ(std::memcmp(&read, &fields, sizeof read), 0);

    OAK_PACKED_TIMESTAMP_T by_core;
    ASSERT_EQ(timestampPack(&fields, &by_core), sOKAY);
    EXPECT_EQ(std::memcmp(&by_core, &packed, sizeof packed), 0);
    ASSERT_EQ(timestampUnpack(packed, &read), sOKAY);
    EXPECT_EQ(read.day, 29);
}

TEST(Timestamp, ReadersWorkOnItsDateAndItsTime) {
    const OAK_PACKED_TIMESTAMP_T timestamp = {738945, 452967891}; // Thursday 2024-02-29
    EXPECT_EQ(oak_timestampYear(timestamp), 2024);
    EXPECT_EQ(oak_timestampMonth(timestamp), 2);
    EXPECT_EQ(oak_timestampDayOfMonth(timestamp), 29);
    EXPECT_EQ(oak_timestampDayOfWeek(timestamp), 5);
    EXPECT_EQ(oak_timestampDayOfYear(timestamp), 60);
    EXPECT_EQ(oak_timestampWeek(timestamp), 9);
    EXPECT_EQ(oak_timestampQuarter(timestamp), 1);
    EXPECT_STREQ(oak_timestampDayAbr(timestamp), "Thu");
    EXPECT_STREQ(oak_timestampDayName(timestamp), "Thursday");
    EXPECT_STREQ(oak_timestampMonthAbr(timestamp), "Feb");
    EXPECT_STREQ(oak_timestampMonthName(timestamp), "February");
    EXPECT_EQ(oak_timestampHour(timestamp), 12);
    EXPECT_EQ(oak_timestampMinute(timestamp), 34);
    EXPECT_EQ(oak_timestampSecond(timestamp), 56);
    EXPECT_EQ(oak_timestampFraction(timestamp), 7891);
    EXPECT_EQ(oak_timestampHour({1, 864000000}), 24);
    EXPECT_EQ(oak_timestampMinute({1, UINT32_MAX}), 0);
    EXPECT_EQ(oak_timestampSecond({1, UINT32_MAX}), 0);
    EXPECT_EQ(oak_timestampFraction({1, UINT32_MAX}), 0);
}

TEST(Timestamp, RefusesADateBeforeATime) {
    const struct {
        OAK_TIMESTAMP_T fields;
        OAK_RETCODE rc;
    } rows[] = {
        {{0, 1, 1, 0, 0, 0, 0}, eBASE_INVDATE},      {{2024, 13, 1, 0, 0, 0, 0}, eBASE_INVDATE},
        {{2024, 1, 32, 0, 0, 0, 0}, eBASE_INVDATE},  {{2024, 1, 1, 24, 0, 0, 0}, eINVLITERAL},
        {{2024, 1, 1, 0, 60, 0, 0}, eINVLITERAL},    {{2024, 1, 1, 0, 0, 60, 0}, eINVLITERAL},
        {{2024, 1, 1, 0, 0, 0, 10000}, eINVLITERAL}, {{2024, 0, 1, 24, 0, 0, 0}, eBASE_INVDATE},
    };
    for (const auto &row : rows) {
        OAK_PACKED_TIMESTAMP_T packed = {77, 78};
        EXPECT_EQ(oak_timestampPack(&row.fields, &packed), row.rc);
        EXPECT_EQ(packed.date, 77u);
        EXPECT_EQ(packed.time, 78u);
    }
}

TEST(Timestamp, LeavesTheFieldsAloneWhenItsTimeIsRefused) {
    OAK_TIMESTAMP_T fields = {1, 2, 3, 4, 5, 6, 7};
    const OAK_TIMESTAMP_T before = fields;
    EXPECT_EQ(oak_timestampUnpack({738945, 864000000}, &fields), eINVLITERAL);
    EXPECT_EQ(std::memcmp(&fields, &before, sizeof fields), 0);
    OAK_TIMESTAMPTZ_T zoned = {1, 2, 3, 4, 5, 6, 7, 8};
    const OAK_TIMESTAMPTZ_T zoned_before = zoned;
    EXPECT_EQ(oak_timestamptzUnpack({738945, 864000000, 60}, &zoned), eINVLITERAL);
    EXPECT_EQ(std::memcmp(&zoned, &zoned_before, sizeof zoned), 0);
    OAK_TIMETZ_T timetz = {4, 5, 6, 7, 8};
    const OAK_TIMETZ_T timetz_before = timetz;
    EXPECT_EQ(oak_timetzUnpack({864000000, 60}, &timetz), eINVLITERAL);
    EXPECT_EQ(std::memcmp(&timetz, &timetz_before, sizeof timetz), 0);
}

TEST(ZonedValues, StoreTheTimeAsGivenBesideTheZone) {
    const OAK_TIMETZ_T time_fields = {12, 34, 56, 7891, -90};
    OAK_PACKED_TIMETZ_T timetz;
    ASSERT_EQ(oak_timetzPack(&time_fields, &timetz), sOKAY);
    EXPECT_EQ(timetz.time, 452967891u);
    EXPECT_EQ(timetz.tz, -90);
    OAK_TIMETZ_T time_read;
    ASSERT_EQ(oak_timetzUnpack(timetz, &time_read), sOKAY);
    EXPECT_EQ(std::memcmp(&time_read, &time_fields, sizeof time_read), 0);

    const OAK_TIMESTAMPTZ_T fields = {2024, 2, 29, 12, 34, 56, 7891, 840};
    OAK_PACKED_TIMESTAMPTZ_T packed;
    ASSERT_EQ(oak_timestamptzPack(&fields, &packed), sOKAY);
    EXPECT_EQ(packed.date, 738945u);
    EXPECT_EQ(packed.time, 452967891u);
    EXPECT_EQ(packed.tz, 840);
    OAK_TIMESTAMPTZ_T read{};
    ASSERT_EQ(oak_timestamptzUnpack(packed, &read), sOKAY);
    EXPECT_EQ(read.year, 2024);
    EXPECT_EQ(read.month, 2);
    EXPECT_EQ(read.day, 29);
    EXPECT_EQ(read.hour, 12);
    EXPECT_EQ(read.minute, 34);
    EXPECT_EQ(read.second, 56);
    EXPECT_EQ(read.fraction, 7891);
    EXPECT_EQ(read.tz, 840);
}

TEST(ZonedValues, UnpackDoesNotLookAtTheZone) {
    OAK_TIMETZ_T timetz;
    EXPECT_EQ(oak_timetzUnpack({0, INT16_MIN}, &timetz), sOKAY);
    EXPECT_EQ(timetz.tz, INT16_MIN);
}

TEST(ZonedValues, CheckTheZoneFirst) {
    for (const int16_t tz : {int16_t{-841}, int16_t{841}, int16_t{INT16_MIN}, int16_t{INT16_MAX}}) {
        const OAK_TIMETZ_T bad_time = {24, 0, 0, 0, tz};
        OAK_PACKED_TIMETZ_T timetz = {77, 7};
        EXPECT_EQ(oak_timetzPack(&bad_time, &timetz), eBASE_INVTIMEZONE) << tz;
        EXPECT_EQ(timetz.time, 77u);
        const OAK_TIMESTAMPTZ_T bad_date = {0, 0, 0, 24, 0, 0, 0, tz};
        OAK_PACKED_TIMESTAMPTZ_T packed = {77, 78, 79};
        EXPECT_EQ(oak_timestamptzPack(&bad_date, &packed), eBASE_INVTIMEZONE) << tz;
        EXPECT_EQ(packed.date, 77u);
    }
    for (const int16_t tz : {int16_t{-840}, int16_t{0}, int16_t{840}}) {
        const OAK_TIMETZ_T bad_time = {24, 0, 0, 0, tz};
        OAK_PACKED_TIMETZ_T timetz;
        EXPECT_EQ(oak_timetzPack(&bad_time, &timetz), eINVLITERAL) << tz;
        const OAK_TIMESTAMPTZ_T bad_date = {0, 1, 1, 24, 0, 0, 0, tz};
        OAK_PACKED_TIMESTAMPTZ_T packed;
        EXPECT_EQ(oak_timestamptzPack(&bad_date, &packed), eBASE_INVDATE) << tz;
        const OAK_TIMESTAMPTZ_T bad_hour = {1, 1, 1, 24, 0, 0, 0, tz};
        EXPECT_EQ(oak_timestamptzPack(&bad_hour, &packed), eINVLITERAL) << tz;
    }
}

TEST(NullPointers, AreRefused) {
    const OAK_DATE_T date = {1, 1, 1};
    const OAK_TIME_T time = {0, 0, 0, 0};
    const OAK_TIMETZ_T timetz = {0, 0, 0, 0, 0};
    const OAK_TIMESTAMP_T timestamp = {1, 1, 1, 0, 0, 0, 0};
    const OAK_TIMESTAMPTZ_T timestamptz = {1, 1, 1, 0, 0, 0, 0, 0};
    OAK_PACKED_DATE_T d;
    OAK_PACKED_TIME_T t;
    OAK_PACKED_TIMETZ_T tz;
    OAK_PACKED_TIMESTAMP_T ts;
    OAK_PACKED_TIMESTAMPTZ_T tstz;
    EXPECT_EQ(oak_datePack(nullptr, &d), eINVNULLARG);
    EXPECT_EQ(oak_datePack(&date, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timePack(nullptr, &t), eINVNULLARG);
    EXPECT_EQ(oak_timePack(&time, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timetzPack(nullptr, &tz), eINVNULLARG);
    EXPECT_EQ(oak_timetzPack(&timetz, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timestampPack(nullptr, &ts), eINVNULLARG);
    EXPECT_EQ(oak_timestampPack(&timestamp, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timestamptzPack(nullptr, &tstz), eINVNULLARG);
    EXPECT_EQ(oak_timestamptzPack(&timestamptz, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_dateUnpack(1, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timeUnpack(0, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timetzUnpack({0, 0}, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timestampUnpack({1, 0}, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timestamptzUnpack({1, 0, 0}, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timestampDaysDiff({1, 0}, {1, 0}, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timetzToOakTime({0, 0}, 0, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timestamptzFromTimestamp({1, 0}, 0, nullptr), eINVNULLARG);
}

TEST(ZeroValues, AreTheFirstMidnight) {
    EXPECT_EQ(oak_dateZero, 1u);
    EXPECT_EQ(oak_timeZero, 0u);
    EXPECT_EQ(oak_timetzZero.time, 0u);
    EXPECT_EQ(oak_timetzZero.tz, 0);
    EXPECT_EQ(oak_timestampZero.date, 1u);
    EXPECT_EQ(oak_timestampZero.time, 0u);
    EXPECT_EQ(oak_timestamptzZero.date, 1u);
    EXPECT_EQ(oak_timestamptzZero.time, 0u);
    EXPECT_EQ(oak_timestamptzZero.tz, 0);
}

// ---- Shifts by a zone -------------------------------------------------------------------------

TEST(Zone, TheHourBeforeMidnightBelongsToThePreviousDay) {
    // 2024-03-01 00:30 at +01:00 is 2024-02-29 23:30 UTC.
    OAK_PACKED_TIMESTAMPTZ_T utc;
    ASSERT_EQ(oak_timestamptzFromTimestamp({738946, 30 * 600000}, 60, &utc), sOKAY);
    EXPECT_EQ(utc.date, 738945u);
    EXPECT_EQ(utc.time, 846000000u);
    EXPECT_EQ(utc.tz, 60);
    OAK_PACKED_TIMESTAMP_T local;
    ASSERT_EQ(oak_timestamptzToTimestamp(utc, 60, &local), sOKAY);
    EXPECT_EQ(local.date, 738946u);
    EXPECT_EQ(local.time, 18000000u);
}

TEST(Zone, ShiftsAgreeWithAbsoluteTime) {
    oaktest::Random random(1);
    for (int i = 0; i < 20000; ++i) {
        // The calendar's ends apart.
        const auto date = static_cast<uint32_t>(2 + random.below(OAK_DATE_MAX - 2));
        const auto time = static_cast<uint32_t>(random.below(kDay));
        const auto tz = static_cast<int16_t>(static_cast<int>(random.below(1681)) - 840);
        const int64_t absolute = date * kDay + time;
        const int64_t to_local = absolute + tz * kMinute;
        const int64_t to_utc = absolute - tz * kMinute;

        OAK_PACKED_TIMESTAMP_T local;
        ASSERT_EQ(oak_timestamptzToTimestamp({date, time, 5}, tz, &local), sOKAY);
        ASSERT_EQ(local.date * kDay + local.time, to_local) << date << " " << time << " " << tz;
        ASSERT_EQ(timestamptzToLocalTimestamp({date, time, 5}, tz, &local), sOKAY);
        ASSERT_EQ(local.date * kDay + local.time, to_local);
        OAK_PACKED_TIMESTAMPTZ_T utc;
        ASSERT_EQ(oak_timestamptzFromTimestamp({date, time}, tz, &utc), sOKAY);
        ASSERT_EQ(utc.date * kDay + utc.time, to_utc) << date << " " << time << " " << tz;
        ASSERT_EQ(utc.tz, tz);
        OAK_PACKED_TIME_T wrapped;
        ASSERT_EQ(oak_timetzToTime({time, 5}, tz, &wrapped), sOKAY);
        ASSERT_EQ(wrapped, to_local % kDay);
        OAK_TIME_T clock;
        ASSERT_EQ(oak_timetzToOakTime({time, 5}, tz, &clock), sOKAY);
        ASSERT_EQ(clock.hour, wrapped / 36000000);
        ASSERT_EQ(clock.fraction, wrapped % 10000);
    }
}

TEST(Zone, MidnightItselfMovesNoDay) {
    OAK_PACKED_TIMESTAMP_T local;
    ASSERT_EQ(oak_timestamptzToTimestamp({738945, 863400000, 0}, 1, &local), sOKAY);
    EXPECT_EQ(local.date, 738946u); // 23:59 and a minute
    EXPECT_EQ(local.time, 0u);
    ASSERT_EQ(oak_timestamptzToTimestamp({738945, 863399999, 0}, 1, &local), sOKAY);
    EXPECT_EQ(local.date, 738945u);
    EXPECT_EQ(local.time, 863999999u);
    ASSERT_EQ(oak_timestamptzToTimestamp({738945, 600000, 0}, -1, &local), sOKAY);
    EXPECT_EQ(local.date, 738945u);
    EXPECT_EQ(local.time, 0u);
    ASSERT_EQ(oak_timestamptzToTimestamp({738945, 599999, 0}, -1, &local), sOKAY);
    EXPECT_EQ(local.date, 738944u);
    EXPECT_EQ(local.time, 863999999u);
}

TEST(Zone, IsCheckedBeforeTheOutput) {
    for (const int16_t tz : {int16_t{-841}, int16_t{841}}) {
        EXPECT_EQ(oak_timetzToTime({0, 0}, tz, nullptr), eBASE_INVTIMEZONE);
        EXPECT_EQ(oak_timetzToOakTime({0, 0}, tz, nullptr), eBASE_INVTIMEZONE);
        EXPECT_EQ(oak_timestamptzToTimestamp({1, 0, 0}, tz, nullptr), eBASE_INVTIMEZONE);
        EXPECT_EQ(oak_timestamptzFromTimestamp({1, 0}, tz, nullptr), eBASE_INVTIMEZONE);
        EXPECT_EQ(timestamptzToLocalTimestamp({1, 0, 0}, tz, nullptr), eBASE_INVTIMEZONE);
    }
    for (const int16_t tz : {int16_t{-840}, int16_t{840}}) {
        EXPECT_EQ(oak_timetzToTime({0, 0}, tz, nullptr), sOKAY);
        EXPECT_EQ(oak_timestamptzToTimestamp({1, 0, 0}, tz, nullptr), sOKAY);
        EXPECT_EQ(timestamptzToLocalTimestamp({1, 0, 0}, tz, nullptr), sOKAY);
        OAK_PACKED_TIME_T time;
        EXPECT_EQ(oak_timetzToTime({0, 0}, tz, &time), sOKAY);
        EXPECT_EQ(time, tz < 0 ? 10u * 36000000 : 14u * 36000000);
    }
}

TEST(Zone, OfTheValueItselfPlaysNoPart) {
    OAK_PACKED_TIMESTAMP_T local;
    EXPECT_EQ(oak_timestamptzToTimestamp({738945, 0, INT16_MAX}, 0, &local), sOKAY);
    EXPECT_EQ(local.date, 738945u);
    EXPECT_EQ(local.time, 0u);
}

TEST(Zone, ARefusedTimeStaysRefusedAfterTheShift) {
    OAK_TIME_T clock;
    EXPECT_EQ(oak_timetzToOakTime({UINT32_MAX, 0}, 840, &clock), eINVLITERAL);
}

TEST(SetDate, MovesOneDayOverMonthAndYearEnds) {
    for (uint32_t date = 2; date < OAK_DATE_MAX; date += date % 28 == 0 ? 1 : 27) {
        OAK_PACKED_DATE_T moved = 0;
        ASSERT_EQ(setDate(date, 1, &moved), sOKAY);
        ASSERT_EQ(moved, date + 1);
        ASSERT_EQ(setDate(date, -1, &moved), sOKAY);
        ASSERT_EQ(moved, date - 1);
        ASSERT_EQ(setDate(date, 0, &moved), sOKAY);
        ASSERT_EQ(moved, date);
    }
    for (const DateRow &row : kDates) {
        OAK_PACKED_DATE_T moved = 0;
        if (row.number > 1) {
            EXPECT_EQ(setDate(row.number, -1, &moved), sOKAY);
            EXPECT_EQ(moved, row.number - 1);
        }
        EXPECT_EQ(setDate(row.number, 1, &moved), sOKAY);
        EXPECT_EQ(moved, row.number + 1);
    }
    EXPECT_EQ(setDate(1, 1, nullptr), sOKAY);
}

TEST(SetDate, FollowsTheSumsAtTheCalendarsEnds) {
    OAK_PACKED_DATE_T moved = 77;
    // The day before the first is December 31 of year 0, whose number is 1 again.
    EXPECT_EQ(setDate(1, -1, &moved), sOKAY);
    EXPECT_EQ(moved, 1u);
    EXPECT_EQ(setDate(OAK_DATE_MAX, 1, &moved), sOKAY);
    EXPECT_EQ(moved, 3652060u);
    // What does not unpack moves from 0001-01-01.
    EXPECT_EQ(setDate(3652060, 1, &moved), sOKAY);
    EXPECT_EQ(moved, 2u);
    EXPECT_EQ(setDate(UINT32_MAX, 0, &moved), sOKAY);
    EXPECT_EQ(moved, UINT32_MAX);
    // Day 366 of January of year 0 lies behind its end: 1 February, -333.
    EXPECT_EQ(setDate(0, 1, &moved), sOKAY);
    EXPECT_EQ(moved, static_cast<uint32_t>(-333));
}

// ---- The current time -----------------------------------------------------------------------

namespace {

// The clock as ten-thousandths since 1970-01-01.
int64_t clock_now() {
    return static_cast<int64_t>(osl_timeNanoSecs() / 100000);
}

int64_t since_1970(uint32_t date, uint32_t time) {
    return (int64_t{date} - 719163) * kDay + time;
}

} // namespace

TEST(Now, IsWhatTheClockSays) {
    for (const int zone : {0, 60, -90, 840, -840}) {
        const auto tz = static_cast<int16_t>(zone);
        const int64_t before = clock_now();
        OAK_PACKED_TIMESTAMP_T local;
        ASSERT_EQ(oak_timestampNow(tz, &local), sOKAY);
        OAK_PACKED_TIMESTAMP_T by_core;
        ASSERT_EQ(timestampNow(tz, &by_core), sOKAY);
        OAK_PACKED_TIMESTAMPTZ_T zoned;
        ASSERT_EQ(oak_timestamptzNow(tz, &zoned), sOKAY);
        const int64_t after = clock_now();
        for (const OAK_PACKED_TIMESTAMP_T &now : {local, by_core}) {
            EXPECT_GE(since_1970(now.date, now.time) - tz * kMinute, before);
            EXPECT_LE(since_1970(now.date, now.time) - tz * kMinute, after);
        }
        EXPECT_GE(since_1970(zoned.date, zoned.time), before) << "stored in UTC";
        EXPECT_LE(since_1970(zoned.date, zoned.time), after);
        EXPECT_EQ(zoned.tz, tz);
    }
}

TEST(Now, HalvesAgreeWithTheWhole) {
    for (const int zone : {0, 60, -840}) {
        const auto tz = static_cast<int16_t>(zone);
        const int64_t before = clock_now();
        OAK_PACKED_DATE_T date;
        OAK_PACKED_TIME_T time;
        OAK_PACKED_TIMETZ_T timetz;
        ASSERT_EQ(oak_dateToday(tz, &date), sOKAY);
        ASSERT_EQ(oak_timeNow(tz, &time), sOKAY);
        ASSERT_EQ(oak_timetzNow(tz, &timetz), sOKAY);
        const int64_t after = clock_now();
        if ((before + tz * kMinute) / kDay != (after + tz * kMinute) / kDay ||
            before / kDay != after / kDay)
            continue; // midnight fell in between
        EXPECT_EQ(date, (before + tz * kMinute) / kDay + 719163);
        EXPECT_GE(time, (before + tz * kMinute) % kDay);
        EXPECT_LE(time, (after + tz * kMinute) % kDay);
        EXPECT_GE(timetz.time, before % kDay);
        EXPECT_LE(timetz.time, after % kDay);
        EXPECT_EQ(timetz.tz, tz);
    }
}

TEST(Now, EitherHalfOfTheClockMayBeLeftOut) {
    OAK_PACKED_DATE_T date = 0;
    OAK_PACKED_TIME_T time = UINT32_MAX;
    EXPECT_EQ(getCurrentUTC(&date, nullptr), sOKAY);
    EXPECT_GT(date, 738000u);
    EXPECT_EQ(getCurrentUTC(nullptr, &time), sOKAY);
    EXPECT_LE(time, static_cast<uint32_t>(OAK_TIME_MAX));
    EXPECT_EQ(getCurrentUTC(nullptr, nullptr), sOKAY);
    EXPECT_EQ(timestampNow(0, nullptr), sOKAY);
    EXPECT_EQ(timestampNow(841, nullptr), eBASE_INVTIMEZONE);
}

TEST(Now, ChecksTheZoneAndThenDoesNothingForANullOutput) {
    for (const int16_t tz : {int16_t{-841}, int16_t{841}}) {
        OAK_PACKED_DATE_T date = 77;
        OAK_PACKED_TIME_T time = 77;
        OAK_PACKED_TIMETZ_T timetz = {77, 7};
        OAK_PACKED_TIMESTAMP_T timestamp = {77, 77};
        OAK_PACKED_TIMESTAMPTZ_T timestamptz = {77, 77, 7};
        EXPECT_EQ(oak_dateToday(tz, &date), eBASE_INVTIMEZONE);
        EXPECT_EQ(oak_timeNow(tz, &time), eBASE_INVTIMEZONE);
        EXPECT_EQ(oak_timetzNow(tz, &timetz), eBASE_INVTIMEZONE);
        EXPECT_EQ(oak_timestampNow(tz, &timestamp), eBASE_INVTIMEZONE);
        EXPECT_EQ(oak_timestamptzNow(tz, &timestamptz), eBASE_INVTIMEZONE);
        EXPECT_EQ(oak_dateToday(tz, nullptr), eBASE_INVTIMEZONE);
        EXPECT_TRUE(date == 77 && time == 77 && timetz.time == 77 && timestamp.date == 77 &&
                    timestamptz.date == 77);
    }
    EXPECT_EQ(oak_dateToday(0, nullptr), sOKAY);
    EXPECT_EQ(oak_timeNow(0, nullptr), sOKAY);
    EXPECT_EQ(oak_timetzNow(0, nullptr), sOKAY);
    EXPECT_EQ(oak_timestampNow(0, nullptr), sOKAY);
    EXPECT_EQ(oak_timestamptzNow(0, nullptr), sOKAY);
}

TEST(Now, AsADoubleCountsSecondsSince1970) {
    const double before = static_cast<double>(osl_timeNanoSecs()) / 1e9;
    const double now = oak_timestampNowAsDouble();
    const double after = static_cast<double>(osl_timeNanoSecs()) / 1e9;
    EXPECT_GE(now, before);
    EXPECT_LE(now, after);
}

// ---- Differences ----------------------------------------------------------------------------

TEST(DaysDiff, CountsWholeDaysWhicheverComesFirst) {
    const struct {
        OAK_PACKED_TIMESTAMP_T start;
        OAK_PACKED_TIMESTAMP_T end;
        uint32_t days;
    } rows[] = {
        {{10, 0}, {10, 0}, 0},
        {{10, 5}, {10, 863999999}, 0},
        {{10, 863999999}, {10, 0}, 0},
        {{10, 5}, {11, 5}, 1},
        {{10, 5}, {11, 6}, 1},
        {{10, 6}, {11, 5}, 0},
        {{10, 6}, {20, 5}, 9},
        {{10, 5}, {20, 5}, 10},
        {{11, 5}, {10, 5}, 1},
        {{11, 6}, {10, 5}, 1},
        {{11, 5}, {10, 6}, 0},
        {{20, 5}, {10, 6}, 9},
        {{1, 0}, {3652059, 0}, 3652058},
        {{0, 0}, {UINT32_MAX, 0}, UINT32_MAX},
        {{UINT32_MAX, 0}, {0, 1}, UINT32_MAX - 1},
    };
    for (const auto &row : rows) {
        uint32_t days = 77;
        EXPECT_EQ(oak_timestampDaysDiff(row.start, row.end, &days), sOKAY);
        EXPECT_EQ(days, row.days) << row.start.date << " to " << row.end.date;
    }
}
