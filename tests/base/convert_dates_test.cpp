// Conversions of dates and times: texts at every room and format, texts that are read,
// every pair among themselves with what comes from the clock, and each refusal.
#include "convert_support.h"
#include "datetime.h"

using namespace oaktest;

namespace {

constexpr OAK_PACKED_DATE_T kLeapDay = 738945;    // 2024-02-29
constexpr OAK_PACKED_TIME_T kQuarter = 495061234; // 13:45:06.1234
constexpr OAK_PACKED_TIME_T kDay = 864000000;     // one past the last time
constexpr OAK_PACKED_TIME_T kMinute = 600000;     // ten-thousandths of a second
constexpr OAK_PACKED_TIMESTAMP_T kMoment = {kLeapDay, kQuarter};
constexpr OAK_PACKED_TIMETZ_T kZoned = {kQuarter, 90};
constexpr OAK_PACKED_TIMESTAMPTZ_T kZonedMoment = {kLeapDay, kQuarter, 90};

struct Form {
    OAK_DATE_FORMAT date = OAK_YYYYMMDD;
    char separator = '-';
    OAK_TIME_FORMAT time = OAK_HHMMSSFFFF;
    int16_t zone = 0;
};

template <class T>
CNVCB block_of(const T *value, size_t room, const Form &form = {}) {
    CNVCB block = block_over(value, 0, 0, nullptr, room);
    block.date_format = form.date;
    block.date_sep = static_cast<int8_t>(form.separator);
    block.time_format = form.time;
    block.tz_disp = form.zone;
    return block;
}

template <class T>
Outcome run_moment(B_CNVFCN function, const T &value, size_t room, const Form &form = {}) {
    return run(function, block_of(&value, room, form), 64);
}

// A run without a destination.
template <class T>
OAK_RETCODE measure(B_CNVFCN function, const T &value, size_t room, const Form &form,
                    size_t *size) {
    CNVCB block = block_of(&value, room, form);
    const OAK_RETCODE rc = function(&block);
    *size = block.tSize;
    return rc;
}

// ---- To text --------------------------------------------------------------------------------

TEST(ConvertDates, WriteTextsInEveryForm) {
    EXPECT_EQ(run_moment(cnv_dateToString, kLeapDay, 0).text(), "2024-02-29");
    EXPECT_EQ(run_moment(cnv_dateToString, kLeapDay, 0, {OAK_MMDDYYYY, '/'}).text(), "02/29/2024");
    EXPECT_EQ(run_moment(cnv_dateToString, kLeapDay, 0, {OAK_DDMMYYYY, '.'}).text(), "29.02.2024");
    const Form seconds = {OAK_YYYYMMDD, '/', OAK_HHMMSS};
    EXPECT_EQ(run_moment(cnv_timeToString, kQuarter, 0, seconds).text(), "13:45:06");
    EXPECT_EQ(run_moment(cnv_timeToString, kQuarter, 0).text(), "13:45:06.1234");
    EXPECT_EQ(run_moment(cnv_timeTZToString, kZoned, 0, seconds).text(), "15:15:06 +01:30");
    EXPECT_EQ(run_moment(cnv_timestampToString, kMoment, 0, seconds).text(), "2024/02/29 13:45:06");
    EXPECT_EQ(run_moment(cnv_timestampToString, kMoment, 0).text(), "2024-02-29 13:45:06.1234");
    EXPECT_EQ(run_moment(cnv_timestampTZToString, kZonedMoment, 0).text(),
              "2024-02-29 15:15:06.1234 +01:30");
    EXPECT_EQ(run_moment(cnv_timestampTZToString, kZonedMoment, 0).size, 32u);
}

TEST(ConvertDates, MeasureTheirTexts) {
    size_t size = 0;
    for (const size_t room : {0, 1, 100}) { // the room does not count without a destination
        EXPECT_EQ(measure(cnv_dateToString, kLeapDay, room, {}, &size), sOKAY);
        EXPECT_EQ(size, 11u);
        EXPECT_EQ(measure(cnv_timeToString, kQuarter, room, {}, &size), sOKAY);
        EXPECT_EQ(size, 14u);
        EXPECT_EQ(measure(cnv_timeTZToString, kZoned, room, {}, &size), sOKAY);
        EXPECT_EQ(size, 21u);
        EXPECT_EQ(measure(cnv_timestampToString, kMoment, room, {}, &size), sOKAY);
        EXPECT_EQ(size, 25u);
        EXPECT_EQ(measure(cnv_timestampTZToString, kZonedMoment, room, {}, &size), sOKAY);
        EXPECT_EQ(size, 32u);
    }
}

// What fits is there, the size is the room, and the status says that data was lost.
template <class T>
void check_cut(B_CNVFCN function, const T &value) {
    const Outcome whole = run_moment(function, value, 0);
    ASSERT_EQ(whole.status, sOKAY);
    const std::string text = whole.text();
    for (size_t room = 1; room <= text.size() + 2; ++room) {
        SCOPED_TRACE(room);
        const Outcome outcome = run_moment(function, value, room);
        const bool fits = room > text.size();
        EXPECT_EQ(outcome.status, fits ? sOKAY : eDATALOST);
        EXPECT_EQ(outcome.size, fits ? text.size() + 1 : room);
        EXPECT_EQ(outcome.text(), text.substr(0, room - 1));
        EXPECT_TRUE(outcome.untouched_from(outcome.size));
    }
}

TEST(ConvertDates, LoseDataWhereATextOfOnePartIsCut) {
    check_cut(cnv_dateToString, kLeapDay);
    check_cut(cnv_timeToString, kQuarter);
    check_cut(cnv_timeTZToString, kZoned);
}

// Fraction digits may go, with a status that says so; a point without digits goes too.
TEST(ConvertDates, GiveUpFractionDigitsOfATimestamp) {
    struct Case {
        OAK_TIME_FORMAT format;
        size_t room;
        const char *text;
        OAK_RETCODE status;
    };
    for (const Case &c : {
             Case{OAK_HHMMSSFFFF, 25, "2024-02-29 13:45:06.1234", sOKAY},
             {OAK_HHMMSSFFFF, 24, "2024-02-29 13:45:06.123", sTRUNCATE},
             {OAK_HHMMSSFFFF, 23, "2024-02-29 13:45:06.12", sTRUNCATE},
             {OAK_HHMMSSFFFF, 22, "2024-02-29 13:45:06.1", sTRUNCATE},
             {OAK_HHMMSSFFFF, 21, "2024-02-29 13:45:06", sTRUNCATE},
             {OAK_HHMMSSFFFF, 20, "2024-02-29 13:45:06", sTRUNCATE},
             {OAK_HHMMSSFFFF, 19, "2024-02-29 13:45:0", eDATALOST},
             {OAK_HHMMSSFFFF, 1, "", eDATALOST},
             {OAK_HHMMSSFFF, 24, "2024-02-29 13:45:06.123", sOKAY},
             {OAK_HHMMSSFFF, 23, "2024-02-29 13:45:06.12", sTRUNCATE},
             {OAK_HHMMSSFFF, 21, "2024-02-29 13:45:06", sTRUNCATE},
             {OAK_HHMMSSFFF, 20, "2024-02-29 13:45:06", sTRUNCATE},
             {OAK_HHMMSSFFF, 19, "2024-02-29 13:45:0", eDATALOST},
             {OAK_HHMMSSFF, 23, "2024-02-29 13:45:06.12", sOKAY},
             {OAK_HHMMSSFF, 22, "2024-02-29 13:45:06.1", sTRUNCATE},
             {OAK_HHMMSSFF, 21, "2024-02-29 13:45:06", sTRUNCATE},
             {OAK_HHMMSSFF, 20, "2024-02-29 13:45:06", sTRUNCATE},
             {OAK_HHMMSSFF, 19, "2024-02-29 13:45:0", eDATALOST},
             {OAK_HHMMSSF, 22, "2024-02-29 13:45:06.1", sOKAY},
             {OAK_HHMMSSF, 21, "2024-02-29 13:45:06", sTRUNCATE},
             {OAK_HHMMSSF, 20, "2024-02-29 13:45:06", sTRUNCATE},
             {OAK_HHMMSSF, 19, "2024-02-29 13:45:0", eDATALOST},
             {OAK_HHMMSS, 20, "2024-02-29 13:45:06", sOKAY},
             {OAK_HHMMSS, 19, "2024-02-29 13:45:0", eDATALOST},
             {OAK_HHMM, 17, "2024-02-29 13:45", sOKAY},
             {OAK_HHMM, 16, "2024-02-29 13:4", eDATALOST},
             {OAK_HH, 14, "2024-02-29 13", sOKAY},
             {OAK_HH, 13, "2024-02-29 1", eDATALOST},
         }) {
        SCOPED_TRACE(std::to_string(c.format) + " in " + std::to_string(c.room));
        const Outcome outcome =
            run_moment(cnv_timestampToString, kMoment, c.room, {OAK_YYYYMMDD, '-', c.format});
        EXPECT_EQ(outcome.status, c.status);
        EXPECT_EQ(outcome.text(), c.text);
        EXPECT_EQ(outcome.size, std::strlen(c.text) + 1);
        EXPECT_TRUE(outcome.untouched_from(outcome.size));
    }
}

// The bytes go from the end, where a zone stands, as many as the fraction has.
TEST(ConvertDates, CutAZonedTimestampFromItsZone) {
    const auto in = [](size_t room, OAK_TIME_FORMAT format) {
        return run_moment(cnv_timestampTZToString, kZonedMoment, room, {OAK_YYYYMMDD, '-', format});
    };
    EXPECT_EQ(in(31, OAK_HHMMSSFFFF).status, sTRUNCATE);
    EXPECT_EQ(in(31, OAK_HHMMSSFFFF).text(), "2024-02-29 15:15:06.1234 +01:3");
    EXPECT_EQ(in(28, OAK_HHMMSSFFFF).text(), "2024-02-29 15:15:06.1234 +"); // one more goes
    EXPECT_EQ(in(28, OAK_HHMMSSFFFF).size, 27u);
    EXPECT_EQ(in(27, OAK_HHMMSSFFFF).status, sTRUNCATE);
    EXPECT_EQ(in(26, OAK_HHMMSSFFFF).status, eDATALOST);
    EXPECT_EQ(in(26, OAK_HHMMSS).status, eDATALOST);
    EXPECT_EQ(in(27, OAK_HHMMSS).status, sOKAY);
}

TEST(ConvertDates, LoseDataWhereTheFormatIsNone) {
    for (const int format : {0, 8, -1}) {
        const Form form = {OAK_YYYYMMDD, '-', static_cast<OAK_TIME_FORMAT>(format)};
        // The date and the blank behind it are all of the text.
        const Outcome outcome = run_moment(cnv_timestampToString, kMoment, 8, form);
        EXPECT_EQ(outcome.status, eDATALOST);
        EXPECT_EQ(outcome.size, 8u);
        EXPECT_EQ(outcome.text(), "2024-02");
        EXPECT_EQ(run_moment(cnv_timestampToString, kMoment, 0, form).text(), "2024-02-29 ");
    }
}

TEST(ConvertDates, WriteNothingOfWhatIsNoDate) {
    const Form bad_separator = {OAK_YYYYMMDD, ' '};
    EXPECT_EQ(run_moment(cnv_dateToString, kLeapDay, 0, bad_separator).status, eINVDATESEP);
    EXPECT_EQ(run_moment(cnv_dateToString, OAK_PACKED_DATE_T{0}, 0).status, eBASE_INVDATE);
    EXPECT_EQ(run_moment(cnv_timeToString, kDay, 0).status, eINVLITERAL);
    EXPECT_EQ(run_moment(cnv_timeTZToString, OAK_PACKED_TIMETZ_T{0, 841}, 0).status,
              eBASE_INVTIMEZONE);
    EXPECT_EQ(run_moment(cnv_timestampToString, OAK_PACKED_TIMESTAMP_T{0, 0}, 0).status,
              eBASE_INVDATE);
    EXPECT_EQ(run_moment(cnv_timestampTZToString, OAK_PACKED_TIMESTAMPTZ_T{1, 0, -841}, 0).status,
              eBASE_INVTIMEZONE);
    EXPECT_TRUE(run_moment(cnv_timeToString, kDay, 0).untouched_from(0));
}

// ---- From text ------------------------------------------------------------------------------

Outcome read_text(B_CNVFCN function, const char *text, const Form &form = {}) {
    return run(function, block_of(text, 0, form), 64);
}

TEST(ConvertDates, ReadEachKindFromText) {
    EXPECT_EQ(read_text(cnv_stringToDate, "2024-02-29").at<uint32_t>(), kLeapDay);
    EXPECT_EQ(read_text(cnv_stringToDate, "02/29/2024", {OAK_MMDDYYYY, '/'}).at<uint32_t>(),
              kLeapDay);
    EXPECT_EQ(read_text(cnv_stringToTime, "13:45:06.1234").at<uint32_t>(), kQuarter);
    EXPECT_EQ(read_text(cnv_stringToTime, "01:45:06.1234pm and more").at<uint32_t>(), kQuarter);
    const Outcome zoned = read_text(cnv_stringToTimeTZ, "15:15:06.1234 +01:30");
    EXPECT_EQ(zoned.at<OAK_PACKED_TIMETZ_T>().time, kQuarter);
    EXPECT_EQ(zoned.at<OAK_PACKED_TIMETZ_T>().tz, 90);
    EXPECT_EQ(hex(zoned.bytes.data() + 6, 2), "0000"); // what lies between is zero
    const Outcome moment =
        read_text(cnv_stringToTimestamp, "29.02.2024 13:45:06.1234", {OAK_DDMMYYYY, '.'});
    EXPECT_EQ(moment.at<OAK_PACKED_TIMESTAMP_T>().date, kLeapDay);
    EXPECT_EQ(moment.at<OAK_PACKED_TIMESTAMP_T>().time, kQuarter);
    const Outcome local = read_text(cnv_stringToTimestampTZ, "2024-02-29 15:15:06.1234 +01:30");
    EXPECT_EQ(local.at<OAK_PACKED_TIMESTAMPTZ_T>().date, kLeapDay);
    EXPECT_EQ(local.at<OAK_PACKED_TIMESTAMPTZ_T>().time, kQuarter);
    EXPECT_EQ(local.at<OAK_PACKED_TIMESTAMPTZ_T>().tz, 90);
    EXPECT_EQ(read_text(cnv_stringToDate, "2024-02-29").size, 4u);
    EXPECT_EQ(read_text(cnv_stringToTime, "13:45:06").size, 4u);
    EXPECT_EQ(zoned.size, 8u);
    EXPECT_EQ(moment.size, 8u);
    EXPECT_EQ(local.size, 12u);
}

TEST(ConvertDates, RefuseTextsThatAreNoDatesAndStoreNothing) {
    struct Case {
        B_CNVFCN function;
        const char *text;
        OAK_RETCODE status;
    };
    for (const Case &c :
         {Case{cnv_stringToDate, "yesterday", eINVLITERAL},
          {cnv_stringToDate, "2024-13-01", eBASE_INVDATE},
          {cnv_stringToTime, "noon", eINVLITERAL},
          {cnv_stringToTime, "24:00:00", eINVLITERAL},
          {cnv_stringToTimeTZ, "12:00:00", eRANGE},
          {cnv_stringToTimeTZ, "12:00:00 +14:01", eBASE_INVTIMEZONE},
          {cnv_stringToTimestamp, "2024-00-01 12:00:00", eINVLITERAL}, // read as a time then
          {cnv_stringToTimestampTZ, "2024-01-01 12:00:00 +23:00", eBASE_INVTIMEZONE}}) {
        const Outcome outcome = read_text(c.function, c.text);
        EXPECT_EQ(outcome.status, c.status) << c.text;
        EXPECT_TRUE(outcome.untouched_from(0)) << c.text;
    }
    EXPECT_EQ(read_text(cnv_stringToTimestamp, "1-2-3", {static_cast<OAK_DATE_FORMAT>(9)}).status,
              eINVDATEFMT);
}

TEST(ConvertDates, MeasureWhatTextsBecome) {
    const struct {
        B_CNVFCN function;
        const char *text;
        size_t size;
    } cases[] = {{cnv_stringToDate, "2024-02-29", 4},
                 {cnv_stringToTime, "13:45:06", 4},
                 {cnv_stringToTimeTZ, "13:45:06 +01:00", 8},
                 {cnv_stringToTimestamp, "2024-02-29 13:45:06", 8},
                 {cnv_stringToTimestampTZ, "2024-02-29 13:45:06 +01:00", 12}};
    for (const auto &c : cases) {
        CNVCB block = block_of(c.text, 0);
        EXPECT_EQ(c.function(&block), sOKAY);
        EXPECT_EQ(block.tSize, c.size);
    }
}

// ---- Among themselves -----------------------------------------------------------------------

// The time of now in a zone, local.
OAK_PACKED_TIME_T local_now(int16_t zone) {
    OAK_PACKED_TIME_T now = 0;
    EXPECT_EQ(oak_timeNow(zone, &now), sOKAY);
    return now;
}

OAK_PACKED_DATE_T local_today(int16_t zone) {
    OAK_PACKED_DATE_T today = 0;
    EXPECT_EQ(oak_dateToday(zone, &today), sOKAY);
    return today;
}

// Whether a time lies between two readings of the clock, midnight or not.
bool lies_between(OAK_PACKED_TIME_T before, OAK_PACKED_TIME_T time, OAK_PACKED_TIME_T after) {
    return before <= after ? before <= time && time <= after : before <= time || time <= after;
}

TEST(ConvertDates, TakeTheTimeOfNowForADate) {
    for (const int16_t zone : {int16_t{0}, int16_t{-480}, int16_t{840}}) {
        const Form form = {OAK_YYYYMMDD, '-', OAK_HHMMSS, zone};
        const OAK_PACKED_TIME_T before = local_now(zone);
        const Outcome outcome = run_moment(cnv_dateToTimestamp, kLeapDay, 8, form);
        const OAK_PACKED_TIME_T after = local_now(zone);
        EXPECT_EQ(outcome.status, sOKAY);
        EXPECT_EQ(outcome.size, 8u);
        EXPECT_EQ(outcome.at<OAK_PACKED_TIMESTAMP_T>().date, kLeapDay);
        EXPECT_TRUE(lies_between(before, outcome.at<OAK_PACKED_TIMESTAMP_T>().time, after));

        const OAK_PACKED_TIME_T utc_before = local_now(0);
        const Outcome zoned = run_moment(cnv_dateToTimestampTZ, kLeapDay, 12, form);
        const OAK_PACKED_TIME_T utc_after = local_now(0);
        EXPECT_EQ(zoned.status, sOKAY);
        EXPECT_EQ(zoned.size, 12u);
        EXPECT_EQ(zoned.at<OAK_PACKED_TIMESTAMPTZ_T>().date, kLeapDay);
        EXPECT_EQ(zoned.at<OAK_PACKED_TIMESTAMPTZ_T>().tz, zone);
        EXPECT_TRUE(lies_between(utc_before, zoned.at<OAK_PACKED_TIMESTAMPTZ_T>().time, utc_after));
        EXPECT_EQ(hex(zoned.bytes.data() + 10, 2), "0000");
    }
}

TEST(ConvertDates, TakeTodayForATime) {
    for (const int16_t zone : {int16_t{0}, int16_t{-840}, int16_t{840}}) {
        const Form form = {OAK_YYYYMMDD, '-', OAK_HHMMSS, zone};
        const OAK_PACKED_DATE_T before = local_today(zone);
        const Outcome local = run_moment(cnv_timeToTimestamp, kQuarter, 8, form);
        const Outcome zoned = run_moment(cnv_timeToTimestampTZ, kQuarter, 12, form);
        const OAK_PACKED_DATE_T after = local_today(zone);
        for (const OAK_PACKED_DATE_T date :
             {local.at<OAK_PACKED_TIMESTAMP_T>().date, zoned.at<OAK_PACKED_TIMESTAMPTZ_T>().date}) {
            EXPECT_LE(before, date);
            EXPECT_LE(date, after);
        }
        EXPECT_EQ(local.at<OAK_PACKED_TIMESTAMP_T>().time, kQuarter);
        EXPECT_EQ(zoned.at<OAK_PACKED_TIMESTAMPTZ_T>().time, kQuarter); // as it stands
        EXPECT_EQ(zoned.at<OAK_PACKED_TIMESTAMPTZ_T>().tz, zone);
    }
}

TEST(ConvertDates, TakeTodayInUtcForAZonedTime) {
    const OAK_PACKED_DATE_T before = local_today(0);
    const Outcome zoned = run_moment(cnv_timeTZToTimestampTZ, kZoned, 12);
    const Outcome shifted =
        run_moment(cnv_timeTZToTimestamp, kZoned, 8, {OAK_YYYYMMDD, '-', OAK_HHMMSS, 60});
    const OAK_PACKED_DATE_T after = local_today(0);
    EXPECT_LE(before, zoned.at<OAK_PACKED_TIMESTAMPTZ_T>().date);
    EXPECT_LE(zoned.at<OAK_PACKED_TIMESTAMPTZ_T>().date, after);
    EXPECT_EQ(zoned.at<OAK_PACKED_TIMESTAMPTZ_T>().time, kQuarter);
    EXPECT_EQ(zoned.at<OAK_PACKED_TIMESTAMPTZ_T>().tz, 90);
    EXPECT_LE(before, shifted.at<OAK_PACKED_TIMESTAMP_T>().date);
    EXPECT_LE(shifted.at<OAK_PACKED_TIMESTAMP_T>().date, after);
    // By the zone of the conversion, not the value's own.
    EXPECT_EQ(shifted.at<OAK_PACKED_TIMESTAMP_T>().time, kQuarter + 60 * kMinute);
    // Late in the day the shift moves the date along.
    const OAK_PACKED_TIMETZ_T late = {kDay - 1, 0};
    const Outcome next =
        run_moment(cnv_timeTZToTimestamp, late, 8, {OAK_YYYYMMDD, '-', OAK_HHMMSS, 1});
    EXPECT_GE(next.at<OAK_PACKED_TIMESTAMP_T>().date, before + 1);
    EXPECT_EQ(next.at<OAK_PACKED_TIMESTAMP_T>().time, kMinute - 1);
}

TEST(ConvertDates, TakeTheLocalPartsOfZonedValues) {
    const OAK_PACKED_TIMESTAMPTZ_T late = {kLeapDay, kDay - 30 * kMinute, 60}; // 23:30 UTC
    EXPECT_EQ(run_moment(cnv_timestampTZToDate, late, 4).at<uint32_t>(), kLeapDay + 1);
    EXPECT_EQ(run_moment(cnv_timestampTZToTime, late, 4).at<uint32_t>(), 30 * kMinute);
    const Outcome local = run_moment(cnv_timestampTZToTimestamp, late, 8);
    EXPECT_EQ(local.at<OAK_PACKED_TIMESTAMP_T>().date, kLeapDay + 1);
    EXPECT_EQ(local.at<OAK_PACKED_TIMESTAMP_T>().time, 30 * kMinute);
    const Outcome zoned = run_moment(cnv_timestampTZToTimeTZ, late, 8); // copied as they are
    EXPECT_EQ(zoned.at<OAK_PACKED_TIMETZ_T>().time, late.time);
    EXPECT_EQ(zoned.at<OAK_PACKED_TIMETZ_T>().tz, 60);
    EXPECT_EQ(run_moment(cnv_timeTZToTime, OAK_PACKED_TIMETZ_T{0, -30}, 4).at<uint32_t>(),
              kDay - 30 * kMinute);
}

TEST(ConvertDates, GiveZoneZeroToWhatHasNone) {
    const Form form = {OAK_YYYYMMDD, '-', OAK_HHMMSS, 120}; // the conversion's plays no part
    const auto time = run_moment(cnv_timeToTimeTZ, kQuarter, 8, form).at<OAK_PACKED_TIMETZ_T>();
    EXPECT_EQ(time.time, kQuarter);
    EXPECT_EQ(time.tz, 0);
    const auto part = run_moment(cnv_timestampToTimeTZ, kMoment, 8, form).at<OAK_PACKED_TIMETZ_T>();
    EXPECT_EQ(part.time, kQuarter);
    EXPECT_EQ(part.tz, 0);
    const auto moment =
        run_moment(cnv_timestampToTimestampTZ, kMoment, 12, form).at<OAK_PACKED_TIMESTAMPTZ_T>();
    EXPECT_EQ(moment.date, kLeapDay);
    EXPECT_EQ(moment.time, kQuarter);
    EXPECT_EQ(moment.tz, 0);
    EXPECT_EQ(run_moment(cnv_timestampToDate, kMoment, 4).at<uint32_t>(), kLeapDay);
    EXPECT_EQ(run_moment(cnv_timestampToTime, kMoment, 4).at<uint32_t>(), kQuarter);
}

TEST(ConvertDates, RefuseZonesThatAreNone) {
    const Form far = {OAK_YYYYMMDD, '-', OAK_HHMMSS, 841};
    for (const B_CNVFCN function : {cnv_dateToTimestamp, cnv_dateToTimestampTZ})
        EXPECT_EQ(run_moment(function, kLeapDay, 0, far).status, eBASE_INVTIMEZONE);
    for (const B_CNVFCN function : {cnv_timeToTimestamp, cnv_timeToTimestampTZ})
        EXPECT_EQ(run_moment(function, kQuarter, 0, far).status, eBASE_INVTIMEZONE);
    const OAK_PACKED_TIMETZ_T zoned = {kQuarter, -841};
    for (const B_CNVFCN function :
         {cnv_timeTZToTime, cnv_timeTZToTimestamp, cnv_timeTZToTimestampTZ})
        EXPECT_EQ(run_moment(function, zoned, 0).status, eBASE_INVTIMEZONE);
    EXPECT_EQ(run_moment(cnv_timeTZToTimestamp, kZoned, 0, far).status, eBASE_INVTIMEZONE);
    const OAK_PACKED_TIMESTAMPTZ_T moment = {kLeapDay, kQuarter, 900};
    for (const B_CNVFCN function :
         {cnv_timestampTZToDate, cnv_timestampTZToTime, cnv_timestampTZToTimestamp}) {
        EXPECT_EQ(run_moment(function, moment, 0).status, eBASE_INVTIMEZONE);
        EXPECT_TRUE(run_moment(function, moment, 0).untouched_from(0));
    }
    EXPECT_EQ(run_moment(cnv_timestampTZToTimeTZ, moment, 0).status, sOKAY);
}

// Each with a destination of one byte less, of its size, and without a limit.
struct Pair {
    const char *name;
    const void *source;
    size_t size;
};

TEST(ConvertDates, LoseDataInADestinationTooSmall) {
    const Pair pairs[] = {{"cnv_dateToTimestamp", &kLeapDay, 8},
                          {"cnv_dateToTimestampTZ", &kLeapDay, 12},
                          {"cnv_timeToTimestamp", &kQuarter, 8},
                          {"cnv_timeToTimestampTZ", &kQuarter, 12},
                          {"cnv_timeTZToTime", &kZoned, 4},
                          {"cnv_timeTZToTimestamp", &kZoned, 8},
                          {"cnv_timeTZToTimestampTZ", &kZoned, 12},
                          {"cnv_timestampToDate", &kMoment, 4},
                          {"cnv_timestampToTime", &kMoment, 4},
                          {"cnv_timestampToTimeTZ", &kMoment, 8},
                          {"cnv_timestampToTimestampTZ", &kMoment, 12},
                          {"cnv_timestampTZToDate", &kZonedMoment, 4},
                          {"cnv_timestampTZToTime", &kZonedMoment, 4},
                          {"cnv_timestampTZToTimeTZ", &kZonedMoment, 8},
                          {"cnv_timestampTZToTimestamp", &kZonedMoment, 8},
                          {"cnv_dateToDate", &kLeapDay, 4},
                          {"cnv_timeToTime", &kQuarter, 4},
                          {"cnv_timeTZToTimeTZ", &kZoned, 8},
                          {"cnv_timestampToTimestamp", &kMoment, 8},
                          {"cnv_timestampTZToTimestampTZ", &kZonedMoment, 12}};
    for (const Pair &pair : pairs) {
        SCOPED_TRACE(pair.name);
        const B_CNVFCN function = conversion_functions().at(pair.name);
        const Outcome small = run(function, block_of(pair.source, pair.size - 1), 64);
        EXPECT_EQ(small.status, eDATALOST);
        EXPECT_TRUE(small.untouched_from(0));
        for (const size_t room : {pair.size, size_t{0}, size_t{40}}) {
            const Outcome outcome = run(function, block_of(pair.source, room), 64);
            EXPECT_EQ(outcome.status, sOKAY);
            EXPECT_EQ(outcome.size, pair.size);
            EXPECT_TRUE(outcome.untouched_from(pair.size));
        }
        CNVCB block = block_of(pair.source, 1);
        EXPECT_EQ(function(&block), sOKAY);
        EXPECT_EQ(block.tSize, pair.size);
    }
    // The one that asks for no room.
    const Outcome outcome = run_moment(cnv_timeToTimeTZ, kQuarter, 1);
    EXPECT_EQ(outcome.status, sOKAY);
    EXPECT_EQ(outcome.size, 8u);
}

TEST(ConvertDates, CopySameToSame) {
    EXPECT_EQ(run_moment(cnv_dateToDate, kLeapDay, 4).at<uint32_t>(), kLeapDay);
    EXPECT_EQ(run_moment(cnv_timeToTime, kQuarter, 4).at<uint32_t>(), kQuarter);
    const Outcome zoned = run_moment(cnv_timestampTZToTimestampTZ, kZonedMoment, 12);
    EXPECT_EQ(std::memcmp(zoned.bytes.data(), &kZonedMoment, 10), 0);
}

} // namespace
