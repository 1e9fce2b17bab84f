// The texts of the calendar: printing, parsing, format words, and the current time as
// text. The values behind them are in datetime_test.cpp.
#include <cstring>

#include "datetime.h"
#include "datetime_internal.h"
#include "test_support.h"

namespace {

constexpr uint32_t kLeapDay = 738945; // 2024-02-29

constexpr uint32_t at(uint32_t hour, uint32_t minute, uint32_t second, uint32_t fraction = 0) {
    return ((hour * 60 + minute) * 60 + second) * 10000 + fraction;
}

// What a printing core emits; a character past `limit` is refused.
struct Sink {
    std::string text;
    size_t limit = SIZE_MAX;
};

OAK_RETCODE collect(OAK_OUTPUT_CTX ctx, uint32_t ch) {
    auto *sink = static_cast<Sink *>(ctx);
    if (sink->text.size() >= sink->limit)
        return eBADCAT;
    sink->text += static_cast<char>(ch);
    return sOKAY;
}

constexpr auto kNoDateFormat = static_cast<OAK_DATE_FORMAT>(0);
constexpr auto kNoTimeFormat = static_cast<OAK_TIME_FORMAT>(0);

// Every printing road to one value, by name: through the buffer and through the core.
struct Road {
    const char *name;
    std::function<OAK_RETCODE(char *, size_t, size_t *)> to_string;
    std::function<OAK_RETCODE(Sink *)> format;
};

Road date_road(OAK_PACKED_DATE_T v, OAK_DATE_FORMAT f, char sep) {
    return {"date",
            [=](char *b, size_t n, size_t *u) { return oak_dateToString(v, f, sep, b, n, u); },
            [=](Sink *s) { return dt_dateFormat(v, f, sep, collect, s); }};
}
Road time_road(OAK_PACKED_TIME_T v, OAK_TIME_FORMAT f) {
    return {"time", [=](char *b, size_t n, size_t *u) { return oak_timeToString(v, f, b, n, u); },
            [=](Sink *s) { return dt_timeFormat(v, f, collect, s); }};
}
Road timetz_road(OAK_PACKED_TIMETZ_T v, OAK_TIME_FORMAT f) {
    return {"timetz",
            [=](char *b, size_t n, size_t *u) { return oak_timetzToString(v, f, b, n, u); },
            [=](Sink *s) { return dt_timetzFormat(v, f, collect, s); }};
}
Road timestamp_road(OAK_PACKED_TIMESTAMP_T v, OAK_DATE_FORMAT f, char sep, OAK_TIME_FORMAT t) {
    return {
        "timestamp",
        [=](char *b, size_t n, size_t *u) { return oak_timestampToString(v, f, sep, t, b, n, u); },
        [=](Sink *s) { return dt_timestampFormat(v, f, sep, t, collect, s); }};
}
Road timestamptz_road(OAK_PACKED_TIMESTAMPTZ_T v, OAK_DATE_FORMAT f, char sep, OAK_TIME_FORMAT t) {
    return {"timestamptz",
            [=](char *b, size_t n, size_t *u) {
                return oak_timestamptzToString(v, f, sep, t, b, n, u);
            },
            [=](Sink *s) { return dt_timestamptzFormat(v, f, sep, t, collect, s); }};
}

// Asserts the text on both roads, in every buffer from none to one byte too many.
void expect_text(const Road &road, const std::string &text) {
    SCOPED_TRACE(std::string(road.name) + " " + text);
    Sink sink;
    EXPECT_EQ(road.format(&sink), sOKAY);
    EXPECT_EQ(sink.text, text);

    size_t used = 77;
    EXPECT_EQ(road.to_string(nullptr, 0, &used), sOKAY);
    EXPECT_EQ(used, text.size() + 1) << "measured";
    EXPECT_EQ(road.to_string(nullptr, 0, nullptr), sOKAY);

    for (size_t size = 0; size <= text.size() + 2; ++size) {
        char buffer[64];
        std::memset(buffer, '~', sizeof buffer);
        const bool fits = size > text.size();
        EXPECT_EQ(road.to_string(buffer, size, &used), fits ? sOKAY : sTRUNCATE) << size;
        const size_t kept = fits ? text.size() : size == 0 ? 0 : size - 1;
        EXPECT_EQ(used, size == 0 ? 0 : kept + 1) << size;
        EXPECT_EQ(std::string(buffer, kept), text.substr(0, kept));
        EXPECT_EQ(buffer[kept], size == 0 ? '~' : '\0');
        EXPECT_EQ(buffer[kept + 1], '~') << "nothing behind the terminator";
    }
    for (size_t limit = 0; limit < text.size(); ++limit) {
        Sink narrow{"", limit};
        EXPECT_EQ(road.format(&narrow), eBADCAT) << "the function's own failure comes back";
        EXPECT_EQ(narrow.text, text.substr(0, limit));
    }
}

void expect_refusal(const Road &road, OAK_RETCODE rc) {
    SCOPED_TRACE(road.name);
    Sink sink;
    EXPECT_EQ(road.format(&sink), rc);
    EXPECT_EQ(sink.text, "") << "a refused value shows nothing";
    char buffer[64] = "~~~";
    size_t used = 77;
    EXPECT_EQ(road.to_string(buffer, sizeof buffer, &used), rc);
    EXPECT_STREQ(buffer, "~~~");
    EXPECT_EQ(used, 77u);
}

} // namespace

// ---- Printing ----------------------------------------------------------------------------

TEST(DateText, ShowsEveryFormatAndSeparator) {
    for (const char sep : {'-', '/', '.'}) {
        const std::string s(1, sep);
        expect_text(date_road(kLeapDay, OAK_YYYYMMDD, sep), "2024" + s + "02" + s + "29");
        expect_text(date_road(kLeapDay, OAK_MMDDYYYY, sep), "02" + s + "29" + s + "2024");
        expect_text(date_road(kLeapDay, OAK_DDMMYYYY, sep), "29" + s + "02" + s + "2024");
    }
    expect_text(date_road(1, OAK_YYYYMMDD, '-'), "0001-01-01");
    expect_text(date_road(3652059, OAK_YYYYMMDD, '-'), "9999-12-31");
    expect_text(date_road(3652060, OAK_YYYYMMDD, '-'), "0001-01-01");
    expect_text(date_road(UINT32_MAX, OAK_DDMMYYYY, '.'), "01.01.0001");
}

TEST(DateText, ChecksTheSeparatorThenTheDateAndIgnoresAnUnknownFormat) {
    for (const char sep : {'\0', ' ', ':', 'x', ','}) {
        expect_refusal(date_road(kLeapDay, OAK_YYYYMMDD, sep), eINVDATESEP);
        expect_refusal(date_road(0, OAK_YYYYMMDD, sep), eINVDATESEP);
        expect_refusal(date_road(0, kNoDateFormat, sep), eINVDATESEP);
    }
    for (const OAK_DATE_FORMAT format : {OAK_YYYYMMDD, OAK_MMDDYYYY, kNoDateFormat})
        expect_refusal(date_road(0, format, '-'), eBASE_INVDATE);
    for (const int32_t format : {0, 4, -1, INT32_MIN})
        expect_text(date_road(kLeapDay, static_cast<OAK_DATE_FORMAT>(format), '-'), "");
}

TEST(TimeText, ShowsEveryFormat) {
    const struct {
        OAK_TIME_FORMAT format;
        const char *early; // 01:02:03.0405
        const char *late;  // 23:59:59.9999
    } rows[] = {
        {OAK_HH, "01", "23"},
        {OAK_HHMM, "01:02", "23:59"},
        {OAK_HHMMSS, "01:02:03", "23:59:59"},
        {OAK_HHMMSSF, "01:02:03.0", "23:59:59.10"},
        {OAK_HHMMSSFF, "01:02:03.04", "23:59:59.100"},
        {OAK_HHMMSSFFF, "01:02:03.041", "23:59:59.1000"},
        {OAK_HHMMSSFFFF, "01:02:03.0405", "23:59:59.9999"},
    };
    for (const auto &row : rows) {
        expect_text(time_road(at(1, 2, 3, 405), row.format), row.early);
        expect_text(time_road(at(23, 59, 59, 9999), row.format), row.late);
    }
    for (const int32_t format : {0, 8, -1, INT32_MAX})
        expect_text(time_road(at(1, 2, 3), static_cast<OAK_TIME_FORMAT>(format)), "");
}

TEST(TimeText, RoundsTheFractionHalfUpWithoutCarry) {
    const struct {
        uint32_t fraction;
        const char *one, *two, *three, *four;
    } rows[] = {
        {0, "0", "00", "000", "0000"},       {4, "0", "00", "000", "0004"},
        {5, "0", "00", "001", "0005"},       {49, "0", "00", "005", "0049"},
        {50, "0", "01", "005", "0050"},      {499, "0", "05", "050", "0499"},
        {500, "1", "05", "050", "0500"},     {1499, "1", "15", "150", "1499"},
        {1500, "2", "15", "150", "1500"},    {9499, "9", "95", "950", "9499"},
        {9500, "10", "95", "950", "9500"},   {9949, "10", "99", "995", "9949"},
        {9950, "10", "100", "995", "9950"},  {9994, "10", "100", "999", "9994"},
        {9995, "10", "100", "1000", "9995"}, {9999, "10", "100", "1000", "9999"},
    };
    for (const auto &row : rows) {
        const std::string clock = "12:00:07.";
        const uint32_t time = at(12, 0, 7, row.fraction);
        expect_text(time_road(time, OAK_HHMMSSF), clock + row.one);
        expect_text(time_road(time, OAK_HHMMSSFF), clock + row.two);
        expect_text(time_road(time, OAK_HHMMSSFFF), clock + row.three);
        expect_text(time_road(time, OAK_HHMMSSFFFF), clock + row.four);
    }
}

TEST(TimeText, RefusesATimeOfADayOrMore) {
    for (const uint32_t time : {864000000u, UINT32_MAX})
        for (const OAK_TIME_FORMAT format : {OAK_HH, OAK_HHMMSSFFFF, kNoTimeFormat})
            expect_refusal(time_road(time, format), eINVLITERAL);
}

TEST(ZoneText, ShowsSignHoursAndMinutes) {
    const struct {
        int16_t tz;
        const char *text;
    } rows[] = {
        {0, "+00:00"},   {1, "+00:01"},    {-1, "-00:01"},         {60, "+01:00"},
        {-90, "-01:30"}, {345, "+05:45"},  {840, "+14:00"},        {-840, "-14:00"},
        {841, "+14:01"}, {1499, "+24:59"}, {INT16_MAX, "+546:07"}, {INT16_MIN, "-546:08"},
    };
    for (const auto &row : rows) {
        Sink sink;
        EXPECT_EQ(dt_timezoneFormat(row.tz, collect, &sink), sOKAY);
        EXPECT_EQ(sink.text, row.text);
        Sink narrow{"", 3};
        EXPECT_EQ(dt_timezoneFormat(row.tz, collect, &narrow), eBADCAT);
        EXPECT_EQ(narrow.text, std::string(row.text).substr(0, 3));
    }
}

TEST(TimetzText, ShowsLocalTimeWrappedWithinTheDay) {
    expect_text(timetz_road({at(12, 0, 0), 0}, OAK_HHMM), "12:00 +00:00");
    expect_text(timetz_road({at(23, 30, 0), 60}, OAK_HHMM), "00:30 +01:00");
    expect_text(timetz_road({at(0, 30, 0), -90}, OAK_HHMM), "23:00 -01:30");
    expect_text(timetz_road({at(0, 0, 0, 12), 840}, OAK_HHMMSSFFFF), "14:00:00.0012 +14:00");
    expect_text(timetz_road({at(0, 0, 0), -840}, OAK_HHMMSS), "10:00:00 -14:00");
    expect_text(timetz_road({at(1, 0, 0), 60}, kNoTimeFormat), " +01:00");
    expect_refusal(timetz_road({at(1, 0, 0), 841}, OAK_HHMM), eBASE_INVTIMEZONE);
    expect_refusal(timetz_road({UINT32_MAX, -841}, OAK_HHMM), eBASE_INVTIMEZONE);
    expect_refusal(timetz_road({UINT32_MAX, 840}, OAK_HHMM), eINVLITERAL);
}

TEST(TimestampText, JoinsDateAndTimeWithABlank) {
    const OAK_PACKED_TIMESTAMP_T value = {kLeapDay, at(13, 45, 59, 1234)};
    expect_text(timestamp_road(value, OAK_YYYYMMDD, '-', OAK_HHMMSSFFFF),
                "2024-02-29 13:45:59.1234");
    expect_text(timestamp_road(value, OAK_MMDDYYYY, '/', OAK_HH), "02/29/2024 13");
    expect_text(timestamp_road(value, OAK_DDMMYYYY, '.', OAK_HHMM), "29.02.2024 13:45");
    expect_text(timestamp_road(value, kNoDateFormat, '.', OAK_HHMM), " 13:45");
    expect_text(timestamp_road(value, OAK_DDMMYYYY, '.', kNoTimeFormat), "29.02.2024 ");
    expect_refusal(timestamp_road(value, OAK_YYYYMMDD, '+', OAK_HH), eINVDATESEP);
    expect_refusal(timestamp_road({0, 0}, OAK_YYYYMMDD, '-', OAK_HH), eBASE_INVDATE);
    expect_refusal(timestamp_road({1, 864000000}, OAK_YYYYMMDD, '-', OAK_HH), eINVLITERAL);
}

TEST(TimestamptzText, ShowsLocalTimeAtTheValuesOwnZone) {
    expect_text(timestamptz_road({738944, at(23, 30, 0), 60}, OAK_YYYYMMDD, '-', OAK_HHMMSS),
                "2024-02-29 00:30:00 +01:00");
    expect_text(timestamptz_road({738946, at(0, 30, 0), -90}, OAK_YYYYMMDD, '-', OAK_HHMM),
                "2024-02-29 23:00 -01:30");
    expect_text(timestamptz_road({kLeapDay, 0, 0}, OAK_MMDDYYYY, '/', OAK_HHMMSSFFFF),
                "02/29/2024 00:00:00.0000 +00:00");
    expect_text(timestamptz_road({3652059, at(23, 0, 0), 60}, OAK_YYYYMMDD, '-', OAK_HH),
                "0001-01-01 00 +01:00"); // past the calendar's end
    expect_refusal(timestamptz_road({0, 0, 841}, OAK_YYYYMMDD, 'x', OAK_HH), eBASE_INVTIMEZONE);
    expect_refusal(timestamptz_road({0, 0, 0}, OAK_YYYYMMDD, 'x', OAK_HH), eINVDATESEP);
    expect_refusal(timestamptz_road({0, 0, 0}, OAK_YYYYMMDD, '-', OAK_HH), eBASE_INVDATE);
    expect_refusal(timestamptz_road({1, UINT32_MAX, 0}, OAK_YYYYMMDD, '-', OAK_HH), eINVLITERAL);
}

TEST(TextSizes, HoldTheLongestTexts) {
    size_t used = 0;
    EXPECT_EQ(oak_dateToString(1, OAK_YYYYMMDD, '-', nullptr, 0, &used), sOKAY);
    EXPECT_EQ(used, static_cast<size_t>(OAK_DATE_TEXT_SIZE));
    EXPECT_EQ(oak_timeToString(9999, OAK_HHMMSSFFF, nullptr, 0, &used), sOKAY);
    EXPECT_EQ(used, static_cast<size_t>(OAK_TIME_TEXT_SIZE));
    EXPECT_EQ(oak_timetzToString({9999, 0}, OAK_HHMMSSFFF, nullptr, 0, &used), sOKAY);
    EXPECT_EQ(used, static_cast<size_t>(OAK_TIMETZ_TEXT_SIZE));
    EXPECT_EQ(oak_timestampToString({1, 9999}, OAK_YYYYMMDD, '-', OAK_HHMMSSFFF, nullptr, 0, &used),
              sOKAY);
    EXPECT_EQ(used, static_cast<size_t>(OAK_TIMESTAMP_TEXT_SIZE));
    EXPECT_EQ(oak_timestamptzToString({1, 9999, 840}, OAK_YYYYMMDD, '-', OAK_HHMMSSFFF, nullptr, 0,
                                      &used),
              sOKAY);
    EXPECT_EQ(used, static_cast<size_t>(OAK_TIMESTAMPTZ_TEXT_SIZE));
}

// ---- Dates from text -----------------------------------------------------------------------

namespace {

struct DateTextRow {
    const char *text;
    OAK_DATE_FORMAT format;
    OAK_RETCODE rc;
    OAK_DATE_T fields;
};

constexpr OAK_DATE_T kNone = {};

const DateTextRow kDateTexts[] = {
    // The three orders.
    {"2024-02-29", OAK_YYYYMMDD, sOKAY, {2024, 2, 29}},
    {"02-29-2024", OAK_MMDDYYYY, sOKAY, {2024, 2, 29}},
    {"29-02-2024", OAK_DDMMYYYY, sOKAY, {2024, 2, 29}},
    // The three separators, the same twice.
    {"2024/02/29", OAK_YYYYMMDD, sOKAY, {2024, 2, 29}},
    {"2024.02.29", OAK_YYYYMMDD, sOKAY, {2024, 2, 29}},
    {"2020-01/05", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2020.01-05", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2020:01:05", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2020 01 05", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    // Digits as many as one likes; blanks lead alone.
    {"1-1-1", OAK_YYYYMMDD, sOKAY, {1, 1, 1}},
    {"00002024-0002-00029", OAK_YYYYMMDD, sOKAY, {2024, 2, 29}},
    {" \t\n\v\f\r2024-02-29", OAK_YYYYMMDD, sOKAY, {2024, 2, 29}},
    {"2024 -02-29", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2024- 02-29", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2024-02- 29", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2024--02-29", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2024-+2-29", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    // What stands behind the date is not looked at.
    {"2024-02-29 and more", OAK_YYYYMMDD, sOKAY, {2024, 2, 29}},
    {"2024-02-29x", OAK_YYYYMMDD, sOKAY, {2024, 2, 29}},
    {"2024-02-29-", OAK_YYYYMMDD, sOKAY, {2024, 2, 29}},
    // Cut short.
    {"", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"   ", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2024", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2024-", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2024-02", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2024-02-", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    // Neither digit nor letter.
    {"-2024-02-29", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"'2024-02-29'", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"\xC3\xA4", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    // Sixteen bits with a sign hold each number.
    {"32767-01-01", OAK_YYYYMMDD, sOKAY, {32767, 1, 1}},
    {"32768-01-01", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"01-02-32767", OAK_DDMMYYYY, sOKAY, {32767, 2, 1}},
    {"01-02-32768", OAK_DDMMYYYY, eBASE_INVDATE, kNone},
    {"65536-01-01", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2147483648-01-01", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"99999999999999999999999-01-01", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2024-65537-01", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2024-01-65537", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    // Ranges; the month's length does not count.
    {"0000-01-01", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2024-00-01", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2024-13-01", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2024-01-00", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2024-01-32", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"2023-02-31", OAK_YYYYMMDD, sOKAY, {2023, 2, 31}},
    // A format that is none shows only behind three numbers.
    {"2024-02-29", kNoDateFormat, eINVDATEFMT, kNone},
    {"2024-13-99", static_cast<OAK_DATE_FORMAT>(4), eINVDATEFMT, kNone},
    {"2024-02", kNoDateFormat, eBASE_INVDATE, kNone},
    {"Jan5, 2020", kNoDateFormat, sOKAY, {2020, 1, 5}},
    // Words.
    {"Jan5, 2020", OAK_YYYYMMDD, sOKAY, {2020, 1, 5}},
    {"Jan 5, 2020", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"  jAnUaRy31,1999", OAK_MMDDYYYY, sOKAY, {1999, 1, 31}},
    {"FEB29 2024", OAK_YYYYMMDD, sOKAY, {2024, 2, 29}},
    {"Feb29  ,  2024", OAK_YYYYMMDD, sOKAY, {2024, 2, 29}},
    {"Mar1\t2024 x", OAK_YYYYMMDD, sOKAY, {2024, 3, 1}},
    {"Dec31,2147483647", OAK_YYYYMMDD, sOKAY, {INT32_MAX, 12, 31}},
    {"Dec31,2147483648", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"Jan5,, 2020", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"Jan5", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"Jan5,", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"Jan5, -4", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"Jan5, 0", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"Jan0, 2020", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"Jan32, 2020", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"Jan65536, 2020", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"Jan", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"Ja5, 2020", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"Janu5, 2020", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"Januaryy5, 2020", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"Sept5, 2020", OAK_YYYYMMDD, eBASE_INVDATE, kNone},
    {"Januar\xC3\xBD"
     "5, 2020",
     OAK_YYYYMMDD, eBASE_INVDATE, kNone},
};

} // namespace

TEST(DateFromText, ReadsWhatTheTableSays) {
    for (const DateTextRow &row : kDateTexts) {
        SCOPED_TRACE(row.text);
        OAK_PACKED_DATE_T date = 77;
        EXPECT_EQ(oak_dateFromString(row.text, row.format, &date), row.rc);
        EXPECT_EQ(date, row.rc == sOKAY
                            ? makeDate(row.fields.year, row.fields.month, row.fields.day)
                            : 77);
        OAK_PACKED_DATE_T by_core = 77;
        EXPECT_EQ(dt_dateFromString(row.text, row.format, &by_core), row.rc);
        EXPECT_EQ(by_core, date);
    }
}

constexpr const char *kMonths[] = {"January",   "February", "March",    "April",
                                   "May",       "June",     "July",     "August",
                                   "September", "October",  "November", "December"};

TEST(DateFromText, KnowsEveryMonthByNameAndAbbreviationInAnyCase) {
    for (uint16_t i = 0; i < 12; ++i)
        for (std::string word : {std::string(kMonths[i]), std::string(kMonths[i]).substr(0, 3)})
            for (int style = 0; style < 3; ++style) {
                for (char &ch : word)
                    ch = static_cast<char>(style == 1 ? ch | 0x20 : style == 2 ? ch & ~0x20 : ch);
                OAK_PACKED_DATE_T date = 0;
                const std::string text = word + "15, 2024";
                EXPECT_EQ(oak_dateFromString(text.c_str(), OAK_YYYYMMDD, &date), sOKAY) << text;
                EXPECT_EQ(date, makeDate(2024, static_cast<uint16_t>(i + 1), 15)) << text;
            }
}

TEST(DateFromText, KnowsNoMonthWithAWrongLetter) {
    for (const std::string month : kMonths)
        for (const std::string &word : {month, month.substr(0, 3)})
            for (size_t i = 0; i < word.size(); ++i) {
                std::string text = word + "15, 2024";
                text[i] = 'q';
                OAK_PACKED_DATE_T date = 77;
                EXPECT_EQ(oak_dateFromString(text.c_str(), OAK_YYYYMMDD, &date), eBASE_INVDATE)
                    << text;
            }
}

TEST(DateFromText, TakesAtMostFortyNineLettersForAMonth) {
    for (const size_t letters : {48u, 49u, 50u, 51u, 1000u}) {
        const std::string text = std::string(letters, 'a') + "5, 2020";
        OAK_PACKED_DATE_T date = 77;
        EXPECT_EQ(oak_dateFromString(text.c_str(), OAK_YYYYMMDD, &date), eBASE_INVDATE) << letters;
    }
}

TEST(DatePortion, MovesTheCursorOnSuccessAlone) {
    for (const DateTextRow &row : kDateTexts) {
        const char *cursor = row.text;
        OAK_DATE_T fields = {-7, 77, 77};
        EXPECT_EQ(convertStringToDatePortion(&cursor, row.format, &fields), row.rc) << row.text;
        if (row.rc != sOKAY) {
            EXPECT_EQ(cursor, row.text);
            EXPECT_EQ(fields.year, -7) << row.text;
        } else {
            EXPECT_EQ(fields.year, row.fields.year);
            EXPECT_EQ(fields.month, row.fields.month);
            EXPECT_EQ(fields.day, row.fields.day);
        }
    }
    const char *cursor = " 2024-02-29 12:00:00";
    OAK_DATE_T fields;
    ASSERT_EQ(convertStringToDatePortion(&cursor, OAK_YYYYMMDD, &fields), sOKAY);
    EXPECT_STREQ(cursor, " 12:00:00");
    cursor = "Feb29, 2024+01:00";
    ASSERT_EQ(convertStringToDatePortion(&cursor, OAK_YYYYMMDD, &fields), sOKAY);
    EXPECT_STREQ(cursor, "+01:00");
}

// ---- Times and zones from text ----------------------------------------------------------------

namespace {

struct TimeTextRow {
    const char *text;
    OAK_RETCODE rc;
    uint32_t time;
    const char *rest;
};

const TimeTextRow kTimeTexts[] = {
    {"00:00:00", sOKAY, 0, ""},
    {"12:34:56", sOKAY, at(12, 34, 56), ""},
    {"  23:59:59", sOKAY, at(23, 59, 59), ""},
    {"\t1:2:3", sOKAY, at(1, 2, 3), ""},
    {"0012:0034:0056", sOKAY, at(12, 34, 56), ""},
    {"12:34:56 tail", sOKAY, at(12, 34, 56), " tail"},
    {"12:34:56:78", sOKAY, at(12, 34, 56), ":78"},
    // The fraction is taken as it stands.
    {"00:00:00.5", sOKAY, 5, ""},
    {"00:00:00.05", sOKAY, 5, ""},
    {"00:00:00.5000", sOKAY, 5000, ""},
    {"23:59:59.9999", sOKAY, 863999999, ""},
    {"00:00:00.10000", eINVLITERAL, 0, ""},
    {"00:00:00.65537", eINVLITERAL, 0, ""},
    {"00:00:00.99999999999", eINVLITERAL, 0, ""},
    {"00:00:00.", eINVLITERAL, 0, ""},
    {"00:00:00.x", eINVLITERAL, 0, ""},
    // Halves of the day.
    {"12:00:00PM", sOKAY, at(12, 0, 0), ""},
    {"12:00:00am", sOKAY, 0, ""},
    {"01:00:00p", sOKAY, at(13, 0, 0), ""},
    {"13:00:00pm", sOKAY, at(13, 0, 0), ""},
    {"00:00:00pm", sOKAY, at(12, 0, 0), ""},
    {"11:59:59P", sOKAY, at(23, 59, 59), ""},
    {"00:00:00am", sOKAY, 0, ""},
    {"12:00:00A", sOKAY, 0, ""},
    {"13:00:00a", sOKAY, at(13, 0, 0), ""},
    {"01:00:00.25Pm", sOKAY, at(13, 0, 0, 25), ""},
    {"01:00:00pmm", sOKAY, at(13, 0, 0), "m"},
    {"01:00:00p m", sOKAY, at(13, 0, 0), " m"},
    {"01:00:00 pm", sOKAY, at(1, 0, 0), " pm"},
    {"01:00:00m", sOKAY, at(1, 0, 0), "m"},
    {"24:00:00a", eINVLITERAL, 0, ""},
    // All three parts are required.
    {"", eINVLITERAL, 0, ""},
    {"  ", eINVLITERAL, 0, ""},
    {"12", eINVLITERAL, 0, ""},
    {"12:", eINVLITERAL, 0, ""},
    {"12:30", eINVLITERAL, 0, ""},
    {"12:30:", eINVLITERAL, 0, ""},
    {"12-30-00", eINVLITERAL, 0, ""},
    {"12:30-00", eINVLITERAL, 0, ""},
    {"12 :30:00", eINVLITERAL, 0, ""},
    {"12: 30:00", eINVLITERAL, 0, ""},
    {"+12:30:00", eINVLITERAL, 0, ""},
    {"x", eINVLITERAL, 0, ""},
    // Ranges.
    {"24:00:00", eINVLITERAL, 0, ""},
    {"23:60:00", eINVLITERAL, 0, ""},
    {"23:59:60", eINVLITERAL, 0, ""},
    {"65536:00:00", eINVLITERAL, 0, ""},
    {"00:65536:00", eINVLITERAL, 0, ""},
    {"00:00:65536", eINVLITERAL, 0, ""},
};

struct ZoneTextRow {
    const char *text;
    OAK_RETCODE rc;
    int16_t zone;
    const char *rest;
};

const ZoneTextRow kZoneTexts[] = {
    {"+00:00", sOKAY, 0, ""},
    {"-00:00", sOKAY, 0, ""},
    {"+01:30", sOKAY, 90, ""},
    {"-01:30", sOKAY, -90, ""},
    {" \t+1:5", sOKAY, 65, ""},
    {"+0014:0000", sOKAY, 840, ""},
    {"+14:00 tail", sOKAY, 840, " tail"},
    {"-14:00x", sOKAY, -840, "x"},
    {"+14:01", sOKAY, 841, ""}, // the range is the caller's affair
    {"-24:59", sOKAY, -1499, ""},
    {"+25:00", eINVLITERAL, 0, ""},
    {"+00:60", eINVLITERAL, 0, ""},
    {"+65535:00", eINVLITERAL, 0, ""},
    {"", eRANGE, 0, ""},
    {"01:30", eRANGE, 0, ""},
    {"+", eRANGE, 0, ""},
    {"+01", eRANGE, 0, ""},
    {"+01:", eRANGE, 0, ""},
    {"+ 01:00", eRANGE, 0, ""},
    {"+01-00", eRANGE, 0, ""},
    {"++01:00", eRANGE, 0, ""},
    {"+65536:00", eRANGE, 0, ""},
    {"+01:65536", eRANGE, 0, ""},
    {"+99999999999:00", eRANGE, 0, ""},
    {"Z", eRANGE, 0, ""},
};

} // namespace

TEST(TimeFromText, ReadsWhatTheTableSays) {
    for (const TimeTextRow &row : kTimeTexts) {
        SCOPED_TRACE(row.text);
        OAK_PACKED_TIME_T time = 77;
        EXPECT_EQ(oak_timeFromString(row.text, &time), row.rc);
        EXPECT_EQ(time, row.rc == sOKAY ? row.time : 77);
        const char *cursor = row.text;
        time = 77;
        EXPECT_EQ(convertStringToTimePortion(&cursor, &time), row.rc);
        EXPECT_EQ(time, row.rc == sOKAY ? row.time : 77);
        EXPECT_STREQ(cursor, row.rc == sOKAY ? row.rest : row.text);
    }
}

TEST(ZoneFromText, ReadsWhatTheTableSays) {
    for (const ZoneTextRow &row : kZoneTexts) {
        SCOPED_TRACE(row.text);
        int16_t zone = 77;
        EXPECT_EQ(oak_timezoneFromString(row.text, &zone), row.rc);
        EXPECT_EQ(zone, row.rc == sOKAY ? row.zone : 77);
        const char *cursor = row.text;
        zone = 77;
        EXPECT_EQ(convertStringToTimezonePortion(&cursor, &zone), row.rc);
        EXPECT_STREQ(cursor, row.rc == sOKAY ? row.rest : row.text);
    }
}

TEST(TimetzFromText, NeedsBothPartsAndStoresUtc) {
    for (const TimeTextRow &row : kTimeTexts) {
        if (std::strlen(row.rest) != 0)
            continue;
        const std::string text = std::string(row.text) + " +01:00";
        OAK_PACKED_TIMETZ_T value = {77, 7};
        EXPECT_EQ(oak_timetzFromString(text.c_str(), &value), row.rc) << text;
        EXPECT_EQ(value.time, row.rc != sOKAY          ? 77
                              : row.time < at(1, 0, 0) ? row.time + at(23, 0, 0)
                                                       : row.time - at(1, 0, 0))
            << text;
    }
    for (const ZoneTextRow &row : kZoneTexts) {
        const bool in_range = row.zone >= -840 && row.zone <= 840;
        const OAK_RETCODE expected = row.rc == sOKAY && !in_range ? eBASE_INVTIMEZONE : row.rc;
        // A sign alone, or none, could also continue the time.
        const std::string text = std::string("12:00:00 ") + row.text;
        OAK_PACKED_TIMETZ_T value = {77, 7};
        EXPECT_EQ(dt_timetzFromString(text.c_str(), &value), expected) << text;
        if (expected == sOKAY) {
            EXPECT_EQ(value.tz, row.zone) << text;
            EXPECT_EQ((value.time / 600000 + 1440 + static_cast<uint32_t>(row.zone)) % 1440, 720u);
        } else {
            EXPECT_EQ(value.time, 77u) << text;
            EXPECT_EQ(value.tz, 7) << text;
        }
    }
    OAK_PACKED_TIMETZ_T value;
    EXPECT_EQ(oak_timetzFromString("12:00:00+01:00", &value), sOKAY) << "no blank is needed";
    EXPECT_EQ(value.time, at(11, 0, 0));
    EXPECT_EQ(oak_timetzFromString("12:00:00", &value), eRANGE);
}

// ---- Timestamps from text ---------------------------------------------------------------------

TEST(TimestampFromText, MayLackItsDateOrItsTime) {
    const struct {
        const char *text;
        OAK_RETCODE rc;
        OAK_PACKED_TIMESTAMP_T value;
    } rows[] = {
        {"2024-02-29 12:34:56", sOKAY, {kLeapDay, at(12, 34, 56)}},
        {"2024-02-2912:34:56", eINVLITERAL, {}}, // the day takes the digits: 2912
        {"2024-02-29\t12:34:56.7 tail", sOKAY, {kLeapDay, at(12, 34, 56, 7)}},
        {"  Feb29, 2024 1:0:0pm", sOKAY, {kLeapDay, at(13, 0, 0)}},
        {"2024-02-29", sOKAY, {kLeapDay, 0}},
        {"12:34:56", sOKAY, {1, at(12, 34, 56)}},
        {"  12:34:56", sOKAY, {1, at(12, 34, 56)}},
        {"", sOKAY, {1, 0}},
        {" ", eINVLITERAL, {}},
        {"2024-02-29 ", eINVLITERAL, {}},
        {"2024-02-29 12:34", eINVLITERAL, {}},
        {"2024-13-29 12:34:56", eINVLITERAL, {}}, // no date, and then no time either
        {"nonsense", eINVLITERAL, {}},
        {"2024-02-29 24:00:00", eINVLITERAL, {}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text);
        OAK_PACKED_TIMESTAMP_T value = {77, 78};
        EXPECT_EQ(oak_timestampFromString(row.text, OAK_YYYYMMDD, &value), row.rc);
        EXPECT_EQ(value.date, row.rc == sOKAY ? row.value.date : 77);
        EXPECT_EQ(value.time, row.rc == sOKAY ? row.value.time : 78);
        value = {77, 78};
        EXPECT_EQ(dt_timestampFromString(row.text, OAK_YYYYMMDD, &value), row.rc);
        EXPECT_EQ(value.time, row.rc == sOKAY ? row.value.time : 78);
    }
}

TEST(TimestampFromText, StopsAtAFormatThatIsNone) {
    OAK_PACKED_TIMESTAMP_T value = {77, 78};
    EXPECT_EQ(oak_timestampFromString("2024-02-29 12:00:00", kNoDateFormat, &value), eINVDATEFMT);
    EXPECT_EQ(value.date, 77u);
    EXPECT_EQ(oak_timestampFromString("12:00:00", kNoDateFormat, &value), sOKAY);
    EXPECT_EQ(value.date, 1u);
}

TEST(TimestamptzFromText, NeedsAllThreeParts) {
    const struct {
        const char *text;
        OAK_RETCODE rc;
        OAK_PACKED_TIMESTAMPTZ_T value;
    } rows[] = {
        {"2024-02-29 00:30:00 +01:00", sOKAY, {738944, at(23, 30, 0), 60}},
        {"2024-02-29 23:00:00 -01:30", sOKAY, {738946, at(0, 30, 0), -90}},
        {"Feb29, 2024 12:00:00+00:00 tail", sOKAY, {kLeapDay, at(12, 0, 0), 0}},
        {"2024-02-29 12:00:00pm-14:00", sOKAY, {738946, at(2, 0, 0), -840}},
        {"12:00:00 +00:00", eBASE_INVDATE, {}},
        {"", eBASE_INVDATE, {}},
        {"2024-02-29", eINVLITERAL, {}},
        {"2024-02-29 +01:00", eINVLITERAL, {}},
        {"2024-02-29 12:00:00", eRANGE, {}},
        {"2024-02-29 12:00:00 01:00", eRANGE, {}},
        {"2024-02-29 12:00:00 +01:60", eINVLITERAL, {}},
        {"2024-02-29 12:00:00 +14:01", eBASE_INVTIMEZONE, {}},
        {"2024-02-29 12:00:00 -14:01", eBASE_INVTIMEZONE, {}},
        {"2024-13-29 12:00:00 +01:00", eBASE_INVDATE, {}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text);
        OAK_PACKED_TIMESTAMPTZ_T value = {77, 78, 79};
        EXPECT_EQ(oak_timestamptzFromString(row.text, OAK_YYYYMMDD, &value), row.rc);
        EXPECT_EQ(value.date, row.rc == sOKAY ? row.value.date : 77);
        EXPECT_EQ(value.time, row.rc == sOKAY ? row.value.time : 78);
        EXPECT_EQ(value.tz, row.rc == sOKAY ? row.value.tz : 79);
        value = {77, 78, 79};
        EXPECT_EQ(dt_timestamptzFromString(row.text, OAK_YYYYMMDD, &value), row.rc);
        EXPECT_EQ(value.tz, row.rc == sOKAY ? row.value.tz : 79);
    }
    OAK_PACKED_TIMESTAMPTZ_T value;
    EXPECT_EQ(oak_timestamptzFromString("2024-02-29 12:00:00 +01:00", kNoDateFormat, &value),
              eINVDATEFMT);
}

TEST(FromText, RefusesNullPointers) {
    OAK_PACKED_DATE_T date;
    OAK_PACKED_TIME_T time;
    OAK_PACKED_TIMETZ_T timetz;
    OAK_PACKED_TIMESTAMP_T timestamp;
    OAK_PACKED_TIMESTAMPTZ_T timestamptz;
    int16_t zone;
    EXPECT_EQ(oak_dateFromString(nullptr, OAK_YYYYMMDD, &date), eINVNULLARG);
    EXPECT_EQ(oak_dateFromString("2024-02-29", OAK_YYYYMMDD, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timeFromString(nullptr, &time), eINVNULLARG);
    EXPECT_EQ(oak_timeFromString("12:00:00", nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timetzFromString(nullptr, &timetz), eINVNULLARG);
    EXPECT_EQ(oak_timetzFromString("12:00:00 +00:00", nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timestampFromString(nullptr, OAK_YYYYMMDD, &timestamp), eINVNULLARG);
    EXPECT_EQ(oak_timestampFromString("", OAK_YYYYMMDD, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timestamptzFromString(nullptr, OAK_YYYYMMDD, &timestamptz), eINVNULLARG);
    EXPECT_EQ(oak_timestamptzFromString("", OAK_YYYYMMDD, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timezoneFromString(nullptr, &zone), eINVNULLARG);
    EXPECT_EQ(oak_timezoneFromString("+00:00", nullptr), eINVNULLARG);
}

TEST(Text, ComesBackAsTheValueItWasPrintedFrom) {
    oaktest::Random random(2);
    for (int i = 0; i < 20000; ++i) {
        const auto date = static_cast<uint32_t>(3 + random.below(OAK_DATE_MAX - 4));
        const auto time = static_cast<uint32_t>(random.below(864000000));
        const auto tz = static_cast<int16_t>(static_cast<int>(random.below(1681)) - 840);
        const auto format = static_cast<OAK_DATE_FORMAT>(1 + random.below(3));
        const char sep = "-/."[random.below(3)];
        char text[OAK_TIMESTAMPTZ_TEXT_SIZE];
        OAK_PACKED_TIMESTAMPTZ_T back{};
        ASSERT_EQ(oak_timestamptzToString({date, time, tz}, format, sep, OAK_HHMMSSFFFF, text,
                                          sizeof text, nullptr),
                  sOKAY);
        ASSERT_EQ(oak_timestamptzFromString(text, format, &back), sOKAY) << text;
        ASSERT_TRUE(back.date == date && back.time == time && back.tz == tz) << text;
        OAK_PACKED_TIMESTAMP_T timestamp{};
        ASSERT_EQ(oak_timestampToString({date, time}, format, sep, OAK_HHMMSSFFFF, text,
                                        sizeof text, nullptr),
                  sOKAY);
        ASSERT_EQ(oak_timestampFromString(text, format, &timestamp), sOKAY) << text;
        ASSERT_TRUE(timestamp.date == date && timestamp.time == time) << text;
        OAK_PACKED_TIMETZ_T timetz{};
        ASSERT_EQ(oak_timetzToString({time, tz}, OAK_HHMMSSFFFF, text, sizeof text, nullptr),
                  sOKAY);
        ASSERT_EQ(oak_timetzFromString(text, &timetz), sOKAY) << text;
        ASSERT_TRUE(timetz.time == time && timetz.tz == tz) << text;
    }
}

// ---- Format words ---------------------------------------------------------------------------

TEST(Format, ValidatorsKnowTheirNumbersAndCharacters) {
    for (int32_t number = -2; number <= 10; ++number) {
        EXPECT_EQ(oak_dateValidateFormat(static_cast<OAK_DATE_FORMAT>(number)),
                  number >= 1 && number <= 3 ? sOKAY : eINVDATEFMT);
        EXPECT_EQ(oak_timeValidateFormat(static_cast<OAK_TIME_FORMAT>(number)),
                  number >= 1 && number <= 7 ? sOKAY : eINVTIMEFMT);
    }
    for (const int32_t number : {INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(oak_dateValidateFormat(static_cast<OAK_DATE_FORMAT>(number)), eINVDATEFMT);
        EXPECT_EQ(oak_timeValidateFormat(static_cast<OAK_TIME_FORMAT>(number)), eINVTIMEFMT);
    }
    for (int code = 0; code < 256; ++code) {
        const char ch = static_cast<char>(code);
        EXPECT_EQ(oak_dateValidateSeparator(ch),
                  ch == '-' || ch == '/' || ch == '.' ? sOKAY : eINVDATESEP)
            << code;
    }
}

TEST(Format, DateWordsAreReadInAnyCaseWithAnySeparator) {
    const struct {
        const char *word;
        OAK_DATE_FORMAT format;
        char separator;
    } rows[] = {
        {"MM/DD/YYYY", OAK_MMDDYYYY, '/'}, {"mm-dd-yyyy", OAK_MMDDYYYY, '-'},
        {"YYYY-MM-DD", OAK_YYYYMMDD, '-'}, {"yYyY.mM.Dd", OAK_YYYYMMDD, '.'},
        {"DD.MM.YYYY", OAK_DDMMYYYY, '.'}, {"dd/mm/yyyy", OAK_DDMMYYYY, '/'},
    };
    for (const auto &row : rows) {
        OAK_DATE_FORMAT format = kNoDateFormat;
        char separator = '~';
        EXPECT_EQ(oak_dateParseFormatString(row.word, &format, &separator), sOKAY) << row.word;
        EXPECT_EQ(format, row.format) << row.word;
        EXPECT_EQ(separator, row.separator) << row.word;
    }
}

TEST(Format, AnotherDateWordIsRefusedAfterItsSeparatorWasStored) {
    const struct {
        const char *word;
        char separator; // '~' for none found
    } rows[] = {
        {"", '~'},
        {"YYYYMMDD", '~'},
        {"YYYY MM DD", '~'},
        {"-", '-'},
        {"--", '-'},
        {"-MM-DD", '-'},
        {"YYYY--DD", '-'},
        {"YYYY-MM-", '-'},
        {"YYYY-MM", '-'},
        {"YYYY/MM-DD", '/'},
        {"YYYY-MM-DD-", '-'},
        {"YYYY-MM-DD-DD", '-'},
        {"YYYY-DD-MM", '-'},
        {"MM.YYYY.DD", '.'},
        {"DD-YYYY-MM", '-'},
        {"YY-MM-DD", '-'},
        {"YYYYY-MM-DD", '-'},
        {"YYYY-MM-DD ", '-'},
        {" YYYY-MM-DD", '-'},
        {"MM-DD-YY", '-'},
        {"MM-MM-YYYY", '-'},
        {"-YYYY-MM-DD", '-'},
    };
    for (const auto &row : rows) {
        OAK_DATE_FORMAT format = kNoDateFormat;
        char separator = '~';
        EXPECT_EQ(oak_dateParseFormatString(row.word, &format, &separator), eINVDATEFMT)
            << row.word;
        EXPECT_EQ(format, kNoDateFormat) << row.word;
        EXPECT_EQ(separator, row.separator) << row.word;
    }
}

TEST(Format, DateWordsAreMadeUnderTheTag) {
    const oaktest::Tag tag;
    const char *const words[] = {"MM%DD%YYYY", "YYYY%MM%DD", "DD%MM%YYYY"};
    for (int32_t number = 1; number <= 3; ++number)
        for (const char sep : {'-', '/', '.'}) {
            std::string expected = words[number - 1];
            std::replace(expected.begin(), expected.end(), '%', sep);
            char *word = nullptr;
            const auto format = static_cast<OAK_DATE_FORMAT>(number);
            ASSERT_EQ(oak_dateCreateFormatString(format, sep, &word, tag), sOKAY);
            EXPECT_EQ(word, expected);
            OAK_DATE_FORMAT read = kNoDateFormat;
            char separator = '~';
            EXPECT_EQ(oak_dateParseFormatString(word, &read, &separator), sOKAY);
            EXPECT_EQ(read, format);
            EXPECT_EQ(separator, sep);
            OSL_FREE(word, tag);
        }
    char *word = nullptr;
    EXPECT_EQ(oak_dateCreateFormatString(kNoDateFormat, 'x', &word, tag), eINVDATEFMT);
    EXPECT_EQ(oak_dateCreateFormatString(OAK_YYYYMMDD, 'x', &word, tag), eINVDATESEP);
    EXPECT_EQ(oak_dateCreateFormatString(OAK_YYYYMMDD, '\0', &word, tag), eINVDATESEP);
    EXPECT_EQ(word, nullptr);
    EXPECT_EQ(oak_dateCreateFormatString(OAK_YYYYMMDD, '-', nullptr, tag), eINVNULLARG);
}

TEST(Format, TimeWordsAreMadeAndReadBack) {
    const oaktest::Tag tag;
    const char *const words[] = {"HH",          "HH:MM",        "HH:MM:SS",     "HH:MM:SS.F",
                                 "HH:MM:SS.FF", "HH:MM:SS.FFF", "HH:MM:SS.FFFF"};
    for (int32_t number = 1; number <= 7; ++number) {
        const auto format = static_cast<OAK_TIME_FORMAT>(number);
        char *word = nullptr;
        ASSERT_EQ(oak_timeCreateFormatString(format, &word, tag), sOKAY);
        EXPECT_STREQ(word, words[number - 1]);
        OAK_TIME_FORMAT read = kNoTimeFormat;
        EXPECT_EQ(oak_timeParseFormatString(word, &read), sOKAY);
        EXPECT_EQ(read, format);
        for (char *ch = word; *ch != '\0'; ++ch)
            *ch = static_cast<char>(*ch >= 'A' ? *ch | 0x20 : *ch);
        read = kNoTimeFormat;
        EXPECT_EQ(oak_timeParseFormatString(word, &read), sOKAY) << word;
        EXPECT_EQ(read, format);
        OSL_FREE(word, tag);
    }
    char *word = nullptr;
    EXPECT_EQ(oak_timeCreateFormatString(kNoTimeFormat, &word, tag), eINVTIMEFMT);
    EXPECT_EQ(oak_timeCreateFormatString(static_cast<OAK_TIME_FORMAT>(8), &word, tag), eINVTIMEFMT);
    EXPECT_EQ(word, nullptr);
    EXPECT_EQ(oak_timeCreateFormatString(OAK_HH, nullptr, tag), eINVNULLARG);
    for (const char *text : {"", "H", "HHH", "HH:", "HH-MM", "HH:MM:S", "HH:MM:SS.", "HH:MM:SS,F",
                             "HH:MM:SS.FFFFF", "MM:HH", " HH", "HH "}) {
        OAK_TIME_FORMAT read = kNoTimeFormat;
        EXPECT_EQ(oak_timeParseFormatString(text, &read), eINVTIMEFMT) << text;
        EXPECT_EQ(read, kNoTimeFormat);
    }
}

TEST(Format, ParsersRefuseNullPointers) {
    OAK_DATE_FORMAT date_format;
    OAK_TIME_FORMAT time_format;
    char separator;
    EXPECT_EQ(oak_dateParseFormatString(nullptr, &date_format, &separator), eINVNULLARG);
    EXPECT_EQ(oak_dateParseFormatString("YYYY-MM-DD", nullptr, &separator), eINVNULLARG);
    EXPECT_EQ(oak_dateParseFormatString("YYYY-MM-DD", &date_format, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_timeParseFormatString(nullptr, &time_format), eINVNULLARG);
    EXPECT_EQ(oak_timeParseFormatString("HH", nullptr), eINVNULLARG);
}

TEST(Format, WordsSurviveExhaustedMemory) {
    const oaktest::Tag tag;
    uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        char *word = nullptr;
        const OAK_RETCODE rc = oak_dateCreateFormatString(OAK_YYYYMMDD, '-', &word, tag);
        EXPECT_EQ(word != nullptr, rc == sOKAY);
        OSL_FREE(word, tag);
        return rc;
    });
    runs += oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        char *word = nullptr;
        const OAK_RETCODE rc = oak_timeCreateFormatString(OAK_HHMMSS, &word, tag);
        EXPECT_EQ(word != nullptr, rc == sOKAY);
        OSL_FREE(word, tag);
        return rc;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

// ---- Now as text ------------------------------------------------------------------------------

TEST(NowAsText, IsTheCurrentTimeInTheFixedFormats) {
    for (const int zone : {0, 90, -840}) {
        const auto tz = static_cast<int16_t>(zone);
        char date[OAK_DATE_TEXT_SIZE];
        char time[OAK_TIME_TEXT_SIZE];
        char timetz[OAK_TIMETZ_TEXT_SIZE];
        char timestamp[OAK_TIMESTAMP_TEXT_SIZE];
        char timestamptz[OAK_TIMESTAMPTZ_TEXT_SIZE];
        OAK_PACKED_TIMESTAMPTZ_T before;
        ASSERT_EQ(oak_timestamptzNow(tz, &before), sOKAY);
        ASSERT_EQ(oak_dateNowAsString(tz, date, sizeof date), sOKAY);
        ASSERT_EQ(oak_timeNowAsString(tz, time, sizeof time), sOKAY);
        ASSERT_EQ(oak_timetzNowAsString(tz, timetz, sizeof timetz), sOKAY);
        ASSERT_EQ(oak_timestampNowAsString(tz, timestamp, sizeof timestamp), sOKAY);
        ASSERT_EQ(oak_timestamptzNowAsString(tz, timestamptz, sizeof timestamptz), sOKAY);
        OAK_PACKED_TIMESTAMPTZ_T after;
        ASSERT_EQ(oak_timestamptzNow(tz, &after), sOKAY);

        EXPECT_EQ(std::strlen(date), 10u);
        EXPECT_EQ(std::strlen(time), 13u);
        EXPECT_EQ(std::strlen(timetz), 20u);
        EXPECT_EQ(std::strlen(timestamp), 24u);
        EXPECT_EQ(std::strlen(timestamptz), 31u);
        const char *const zone_text = zone == 0 ? " +00:00" : zone == 90 ? " +01:30" : " -14:00";
        EXPECT_STREQ(timetz + 13, zone_text);
        EXPECT_STREQ(timestamptz + 24, zone_text);

        const auto absolute = [](const OAK_PACKED_TIMESTAMPTZ_T &v) {
            return v.date * int64_t{864000000} + v.time;
        };
        OAK_PACKED_TIMESTAMPTZ_T shown;
        ASSERT_EQ(oak_timestamptzFromString(timestamptz, OAK_YYYYMMDD, &shown), sOKAY);
        EXPECT_GE(absolute(shown), absolute(before));
        EXPECT_LE(absolute(shown), absolute(after));
        EXPECT_EQ(shown.tz, tz);
        const std::string local = std::string(timestamp) + zone_text;
        ASSERT_EQ(oak_timestamptzFromString(local.c_str(), OAK_YYYYMMDD, &shown), sOKAY);
        EXPECT_GE(absolute(shown), absolute(before));
        EXPECT_LE(absolute(shown), absolute(after));
        const std::string joined = std::string(date) + " " + time + zone_text;
        ASSERT_EQ(oak_timestamptzFromString(joined.c_str(), OAK_YYYYMMDD, &shown), sOKAY);
        OAK_PACKED_TIMETZ_T clock;
        EXPECT_EQ(oak_timetzFromString(timetz, &clock), sOKAY);
        EXPECT_EQ(clock.tz, tz);
    }
}

TEST(NowAsText, IsCutWithoutAWord) {
    char buffer[8];
    std::memset(buffer, '~', sizeof buffer);
    EXPECT_EQ(oak_dateNowAsString(0, buffer, 5), sOKAY);
    EXPECT_EQ(std::strlen(buffer), 4u);
    EXPECT_EQ(buffer[5], '~');
    EXPECT_EQ(oak_timeNowAsString(0, buffer, 1), sOKAY);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(oak_timetzNowAsString(0, buffer, 3), sOKAY);
    EXPECT_EQ(oak_timestampNowAsString(0, buffer, 3), sOKAY);
    EXPECT_EQ(oak_timestamptzNowAsString(0, buffer, 3), sOKAY);
    EXPECT_EQ(std::strlen(buffer), 2u);
    EXPECT_EQ(oak_dateNowAsString(0, nullptr, 0), sOKAY) << "nothing is shown";
}

TEST(NowAsText, ChecksTheZone) {
    for (const int16_t tz : {int16_t{-841}, int16_t{841}}) {
        char buffer[40] = "~";
        EXPECT_EQ(oak_dateNowAsString(tz, buffer, sizeof buffer), eBASE_INVTIMEZONE);
        EXPECT_EQ(oak_timeNowAsString(tz, buffer, sizeof buffer), eBASE_INVTIMEZONE);
        EXPECT_EQ(oak_timetzNowAsString(tz, buffer, sizeof buffer), eBASE_INVTIMEZONE);
        EXPECT_EQ(oak_timestampNowAsString(tz, buffer, sizeof buffer), eBASE_INVTIMEZONE);
        EXPECT_EQ(oak_timestamptzNowAsString(tz, buffer, sizeof buffer), eBASE_INVTIMEZONE);
        EXPECT_STREQ(buffer, "~");
    }
}
