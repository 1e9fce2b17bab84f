// The calendar and the clock. Rests on the status codes and, for the clock and for
// cut texts, on the platform layer. Called by the value, type and conversion modules,
// by the schema for column defaults, and by users directly.
//
// Five kinds of value (date, time, time with zone, timestamp, timestamp with zone)
// differ only in which of three parts they have. Each family of functions (pack,
// unpack, print, parse, now) is therefore one template over a Kind, and the exported
// names are its five instances.
//
// Printing renders into a small record on the stack and only then hands the text out,
// so a value that is refused halfway has shown nothing. Parsing moves a cursor over
// the caller's text. Neither allocates, and neither obeys a locale.
//
// The day number of a date is a sum. The way back (queryDate) is the usual trick of
// counting years from 1 March, so that the leap day comes last, with the divisions by
// 36524.25, 365.25 and 30.6 turned into one integer division each (C. Neri and
// L. Schneider, Euclidean affine functions and their application to calendar
// algorithms, 2022).

#include "datetime_internal.h"

#include <cassert>
#include <cstddef>

#include "text_output.h"

namespace {

// ---- Types --------------------------------------------------------------------

// A kind of value: its records and the parts that it has.
template <class PackedForm, class FieldsForm, bool Date, bool Time, bool Zone>
struct Kind {
    using Packed = PackedForm;
    using Fields = FieldsForm;
    static constexpr bool hasDate = Date;
    static constexpr bool hasTime = Time;
    static constexpr bool hasZone = Zone;
    // The text of a plain timestamp may lack either part.
    static constexpr bool partsAreOptional = Date && Time && !Zone;
};

using DateKind = Kind<OAK_PACKED_DATE_T, OAK_DATE_T, true, false, false>;
using TimeKind = Kind<OAK_PACKED_TIME_T, OAK_TIME_T, false, true, false>;
using TimetzKind = Kind<OAK_PACKED_TIMETZ_T, OAK_TIMETZ_T, false, true, true>;
using TimestampKind = Kind<OAK_PACKED_TIMESTAMP_T, OAK_TIMESTAMP_T, true, true, false>;
using TimestamptzKind = Kind<OAK_PACKED_TIMESTAMPTZ_T, OAK_TIMESTAMPTZ_T, true, true, true>;

// How a value is printed.
struct Layout {
    OAK_DATE_FORMAT dateFormat;
    char separator;
    OAK_TIME_FORMAT timeFormat;
};

// A text in the making. The longest is a timestamp with zone: 31 characters, or 33
// when the zone is any 16-bit number.
struct Text {
    char bytes[48];
    size_t length = 0;
};

// A time moved by a zone, and the days that it passed into.
struct ShiftedTime {
    OAK_PACKED_TIME_T time;
    int32_t days;
};

// What a time format shows, beside its word.
struct TimeFormatRow {
    OAK_TIME_FORMAT format;
    const char *word;
    uint8_t fields;         // 1 hour, 2 and minute, 3 and second
    uint8_t fractionDigits; // at least so many
    uint16_t rounding;      // added before the fraction is divided by `unit`
    uint16_t unit;
};

struct DateFormatRow {
    OAK_DATE_FORMAT format;
    const char *word; // with '-' where the separator goes
};

// The records as callers and stored columns know them.
static_assert(sizeof(OAK_PACKED_DATE_T) == 4 && sizeof(OAK_PACKED_TIME_T) == 4);
static_assert(sizeof(OAK_PACKED_TIMESTAMP_T) == 8 && offsetof(OAK_PACKED_TIMESTAMP_T, time) == 4);
static_assert(sizeof(OAK_PACKED_TIMETZ_T) == 8 && offsetof(OAK_PACKED_TIMETZ_T, tz) == 4);
static_assert(sizeof(OAK_PACKED_TIMESTAMPTZ_T) == 12 &&
              offsetof(OAK_PACKED_TIMESTAMPTZ_T, time) == 4 &&
              offsetof(OAK_PACKED_TIMESTAMPTZ_T, tz) == 8);
static_assert(sizeof(OAK_DATE_T) == 8 && sizeof(OAK_TIME_T) == 8 && sizeof(OAK_TIMETZ_T) == 10);
static_assert(sizeof(OAK_TIMESTAMP_T) == 16 && offsetof(OAK_TIMESTAMP_T, fraction) == 14);
static_assert(sizeof(OAK_TIMESTAMPTZ_T) == 20 && offsetof(OAK_TIMESTAMPTZ_T, tz) == 16);

// ---- Constants ----------------------------------------------------------------

constexpr uint32_t fractionsPerSecond = 10000;
constexpr uint32_t fractionsPerMinute = 60 * fractionsPerSecond;
constexpr uint32_t fractionsPerHour = 60 * fractionsPerMinute;
constexpr uint32_t fractionsPerDay = 24 * fractionsPerHour;
static_assert(OAK_TIME_MAX == fractionsPerDay - 1);

constexpr uint32_t daysPerWeek = 7;
constexpr size_t longestMonthWord = 49; // letters that the scanner takes for a month

constexpr const char *dayAbbreviations[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr const char *dayNames[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                    "Thursday", "Friday", "Saturday"};
constexpr const char *monthAbbrev[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr const char *monthNames[] = {"January",   "February", "March",    "April",
                                      "May",       "June",     "July",     "August",
                                      "September", "October",  "November", "December"};
constexpr uint16_t daysPerMonth[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
constexpr uint16_t monthsPerYear = sizeof daysPerMonth / sizeof daysPerMonth[0];

static_assert(sizeof dayAbbreviations == sizeof dayNames &&
              sizeof dayNames == daysPerWeek * sizeof dayNames[0]);
static_assert(sizeof monthAbbrev == sizeof monthNames &&
              sizeof monthNames == monthsPerYear * sizeof monthNames[0]);

// Days of a common year before the first of each month.
struct DaysBeforeMonth {
    uint16_t days[monthsPerYear];
    constexpr DaysBeforeMonth() : days{} {
        for (uint16_t i = 1; i < monthsPerYear; ++i)
            days[i] = static_cast<uint16_t>(days[i - 1] + daysPerMonth[i - 1]);
    }
};
constexpr DaysBeforeMonth daysBeforeMonth;
static_assert(daysBeforeMonth.days[monthsPerYear - 1] == 365 - 31);

constexpr DateFormatRow dateFormats[] = {
    {OAK_MMDDYYYY, "MM-DD-YYYY"},
    {OAK_YYYYMMDD, "YYYY-MM-DD"},
    {OAK_DDMMYYYY, "DD-MM-YYYY"},
};

// The rounding never carries into the seconds, so 9999 shows as .10, .100, .1000.
constexpr TimeFormatRow timeFormats[] = {
    {OAK_HH, "HH", 1, 0, 0, 1},
    {OAK_HHMM, "HH:MM", 2, 0, 0, 1},
    {OAK_HHMMSS, "HH:MM:SS", 3, 0, 0, 1},
    {OAK_HHMMSSF, "HH:MM:SS.F", 3, 1, 500, 1000},
    {OAK_HHMMSSFF, "HH:MM:SS.FF", 3, 2, 50, 100},
    {OAK_HHMMSSFFF, "HH:MM:SS.FFF", 3, 3, 5, 10},
    {OAK_HHMMSSFFFF, "HH:MM:SS.FFFF", 3, 4, 0, 1},
};

// A row of either table stands at its format's number less 1.
template <class Row, size_t N>
constexpr bool rowsAreInOrder(const Row (&rows)[N]) {
    for (size_t i = 0; i < N; ++i)
        if (static_cast<size_t>(rows[i].format) != i + 1)
            return false;
    return true;
}
static_assert(rowsAreInOrder(dateFormats) && rowsAreInOrder(timeFormats));

// The row of a format, null for a number that is none.
template <class Row, size_t N, class Format>
const Row *findRow(const Row (&rows)[N], Format format) {
    const auto number = static_cast<uint32_t>(format);
    return number >= 1 && number <= N ? &rows[number - 1] : nullptr;
}

// The current time as text.
constexpr Layout nowLayout = {OAK_YYYYMMDD, '-', OAK_HHMMSSFFFF};

// ---- Parts of a packed value ----------------------------------------------------

template <class K, class Packed>
auto &dateOf(Packed &packed) {
    if constexpr (K::hasTime)
        return packed.date;
    else
        return packed;
}

template <class K, class Packed>
auto &timeOf(Packed &packed) {
    if constexpr (K::hasDate || K::hasZone)
        return packed.time;
    else
        return packed;
}

// ---- Checks -------------------------------------------------------------------

bool zoneIsValid(int32_t minutes) {
    return minutes >= -OAK_TIMEZONE_MAX && minutes <= OAK_TIMEZONE_MAX;
}

// The day is not held against its month's length: 31 February is a day of March.
bool dateIsValid(int32_t year, uint16_t month, uint16_t day) {
    return year >= 1 && month >= 1 && month <= monthsPerYear && day >= 1 && day <= 31;
}

bool timeIsValid(uint32_t hour, uint32_t minute, uint32_t second, uint32_t fraction) {
    return hour <= 23 && minute <= 59 && second <= 59 && fraction < fractionsPerSecond;
}

bool isDateSeparator(char ch) {
    return ch == '-' || ch == '/' || ch == '.';
}
bool isTimeSeparator(char ch) {
    return ch == ':';
}
bool isFractionSeparator(char ch) {
    return ch == '.';
}
bool isTimezoneSign(char ch) {
    return ch == '-' || ch == '+';
}

// ---- Characters, in every locale alike --------------------------------------------

bool isSpace(char ch) {
    return ch == ' ' || (ch >= '\t' && ch <= '\r');
}
bool isDigit(char ch) {
    return ch >= '0' && ch <= '9';
}
char lowerCase(char ch) {
    return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
}
bool isLetter(char ch) {
    const char lower = lowerCase(ch);
    return lower >= 'a' && lower <= 'z';
}

bool equalIgnoringCase(const char *left, const char *right, size_t length) {
    for (size_t i = 0; i < length; ++i)
        if (lowerCase(left[i]) != lowerCase(right[i]))
            return false;
    return true;
}

// A format word against a text, with `separator` for each '-' of the word.
bool matchesWord(const char *text, const char *word, char separator) {
    for (; *word != '\0'; ++word, ++text)
        if (lowerCase(*text) != (*word == '-' ? separator : lowerCase(*word)))
            return false;
    return *text == '\0';
}

// ---- The calendar ---------------------------------------------------------------

bool isLeapYear(int32_t year) {
    const int32_t inCycle = year % 400;
    return (year & 3) == 0 && inCycle != 100 && inCycle != 200 && inCycle != 300;
}

// Days from 0001-01-01 to 1 January of a year, modulo 2 to the 32nd. The divisions
// truncate towards zero, which shows only for the year 0 of the lenient ends.
uint32_t daysBeforeYear(int32_t year) {
    const int64_t y = int64_t{year} - 1;
    return static_cast<uint32_t>(y * 365 + y / 4 - y / 100 + y / 400);
}

// The day of a count from 1 March of year 0, by the arithmetic of the essay's source.
void splitMarchDays(uint32_t marchDays, int32_t *year, uint16_t *month, uint16_t *day) {
    constexpr uint32_t daysPerCycle = 146097; // 400 years
    constexpr uint32_t firstOfJanuary = 306;  // days from 1 March

    const uint32_t inCenturies = 4 * marchDays + 3;
    const uint32_t century = inCenturies / daysPerCycle;
    const uint32_t inYears = inCenturies % daysPerCycle | 3;
    // Division by 1461, four years' days, by its rounded inverse.
    const uint64_t product = uint64_t{2939745} * inYears;
    const auto yearOfCentury = static_cast<uint32_t>(product >> 32);
    const uint32_t dayOfYear = static_cast<uint32_t>(product) / 2939745 / 4;
    const uint32_t inMonths = 2141 * dayOfYear + 197913;
    const bool nextYear = dayOfYear >= firstOfJanuary;

    *year = static_cast<int32_t>(100 * century + yearOfCentury) + nextYear;
    *month = static_cast<uint16_t>((inMonths >> 16) - (nextYear ? monthsPerYear : 0));
    *day = static_cast<uint16_t>((inMonths & 0xFFFF) / 2141 + 1);
}

ShiftedTime shiftTime(OAK_PACKED_TIME_T time, int32_t minutes) {
    const int64_t shifted = int64_t{time} + int64_t{minutes} * fractionsPerMinute;
    if (shifted >= int64_t{fractionsPerDay})
        return {static_cast<OAK_PACKED_TIME_T>(shifted - fractionsPerDay), 1};
    if (shifted < 0)
        return {static_cast<OAK_PACKED_TIME_T>(shifted + fractionsPerDay), -1};
    return {static_cast<OAK_PACKED_TIME_T>(shifted), 0};
}

// ---- Pack and unpack --------------------------------------------------------------

template <class K>
OAK_RETCODE checkFields(const typename K::Fields &fields) {
    if constexpr (K::hasZone)
        if (!zoneIsValid(fields.tz))
            return eBASE_INVTIMEZONE;
    if constexpr (K::hasDate)
        if (!dateIsValid(fields.year, fields.month, fields.day))
            return eBASE_INVDATE;
    if constexpr (K::hasTime)
        if (!timeIsValid(fields.hour, fields.minute, fields.second, fields.fraction))
            return eINVLITERAL;
    return sOKAY;
}

template <class Fields>
OAK_PACKED_TIME_T makeTime(const Fields &fields) {
    return fields.hour * fractionsPerHour + fields.minute * fractionsPerMinute +
           fields.second * fractionsPerSecond + fields.fraction;
}

template <class K>
OAK_RETCODE packFields(const typename K::Fields &fields, typename K::Packed *packed) {
    const OAK_RETCODE rc = checkFields<K>(fields);
    if (rc != sOKAY)
        return rc;
    if constexpr (K::hasDate)
        dateOf<K>(*packed) = makeDate(fields.year, fields.month, fields.day);
    if constexpr (K::hasTime)
        timeOf<K>(*packed) = makeTime(fields);
    if constexpr (K::hasZone)
        packed->tz = fields.tz;
    return sOKAY;
}

template <class K>
OAK_RETCODE unpackFields(const typename K::Packed &packed, typename K::Fields *fields) {
    if constexpr (K::hasTime) {
        OAK_TIME_T clock;
        const OAK_RETCODE rc = timeUnpack(timeOf<K>(packed), &clock);
        if (rc != sOKAY)
            return rc;
        fields->hour = clock.hour;
        fields->minute = clock.minute;
        fields->second = clock.second;
        fields->fraction = clock.fraction;
    }
    if constexpr (K::hasDate)
        queryDate(dateOf<K>(packed), &fields->year, &fields->month, &fields->day);
    if constexpr (K::hasZone)
        fields->tz = packed.tz;
    return sOKAY;
}

// A time alone shows its first fields even when it is refused.
template <>
OAK_RETCODE unpackFields<TimeKind>(const OAK_PACKED_TIME_T &packed, OAK_TIME_T *fields) {
    return timeUnpack(packed, fields);
}

template <class K>
OAK_RETCODE packChecked(const typename K::Fields *fields, typename K::Packed *packed) {
    return fields == nullptr || packed == nullptr ? eINVNULLARG : packFields<K>(*fields, packed);
}

template <class K>
OAK_RETCODE unpackChecked(const typename K::Packed &packed, typename K::Fields *fields) {
    return fields == nullptr ? eINVNULLARG : unpackFields<K>(packed, fields);
}

// ---- Field readers ----------------------------------------------------------------

OAK_DATE_T fieldsOfDate(OAK_PACKED_DATE_T date) {
    OAK_DATE_T fields;
    dateUnpack(date, &fields);
    return fields;
}

int32_t readYear(OAK_PACKED_DATE_T date) {
    return fieldsOfDate(date).year;
}
uint16_t readMonth(OAK_PACKED_DATE_T date) {
    return fieldsOfDate(date).month;
}
uint16_t readDayOfMonth(OAK_PACKED_DATE_T date) {
    return fieldsOfDate(date).day;
}
uint16_t readDayOfWeek(OAK_PACKED_DATE_T date) {
    return static_cast<uint16_t>(date % daysPerWeek + 1);
}
uint16_t readDayOfYear(OAK_PACKED_DATE_T date) {
    return static_cast<uint16_t>(date + 1 - makeDate(readYear(date), 1, 1));
}
uint16_t readWeek(OAK_PACKED_DATE_T date) {
    return static_cast<uint16_t>((date - makeDate(readYear(date), 1, 1)) / daysPerWeek + 1);
}
uint16_t readQuarter(OAK_PACKED_DATE_T date) {
    return static_cast<uint16_t>((readMonth(date) + 2) / 3);
}
// Day 1 was a Monday, which is what the remainder says: the tables need no offset.
const char *readDayAbr(OAK_PACKED_DATE_T date) {
    return dayAbbreviations[date % daysPerWeek];
}
const char *readDayName(OAK_PACKED_DATE_T date) {
    return dayNames[date % daysPerWeek];
}
const char *readMonthAbr(OAK_PACKED_DATE_T date) {
    return monthAbbrev[readMonth(date) - 1];
}
const char *readMonthName(OAK_PACKED_DATE_T date) {
    return monthNames[readMonth(date) - 1];
}

// All zero when the time is refused.
OAK_TIME_T fieldsOfTime(OAK_PACKED_TIME_T time) {
    OAK_TIME_T fields;
    return timeUnpack(time, &fields) == sOKAY ? fields : OAK_TIME_T{};
}

// Unlike its siblings it shows the hour of a refused time, which is out of range: it
// is stored before the refusal, and callers tell a damaged time by it.
uint16_t readHour(OAK_PACKED_TIME_T time) {
    OAK_TIME_T fields;
    OAK_IGNORE_STATUS(timeUnpack(time, &fields), "the hour is stored in any case");
    return fields.hour;
}
uint16_t readMinute(OAK_PACKED_TIME_T time) {
    return fieldsOfTime(time).minute;
}
uint16_t readSecond(OAK_PACKED_TIME_T time) {
    return fieldsOfTime(time).second;
}
uint16_t readFraction(OAK_PACKED_TIME_T time) {
    return fieldsOfTime(time).fraction;
}

// ---- Values to text -----------------------------------------------------------------

void put(Text &text, char ch) {
    assert(text.length < sizeof text.bytes);
    text.bytes[text.length++] = ch;
}

// A number of at least `width` digits, filled with zeros; at most 65535.
void putNumber(Text &text, uint32_t value, uint32_t width) {
    constexpr uint32_t powersOfTen[] = {1, 10, 100, 1000, 10000, 100000};
    while (value >= powersOfTen[width])
        ++width;
    text.length += width;
    assert(text.length <= sizeof text.bytes);
    for (char *at = text.bytes + text.length; width > 0; --width, value /= 10)
        *--at = static_cast<char>('0' + value % 10);
}

void putDateFields(Text &text, const OAK_DATE_T &fields, const Layout &layout) {
    const auto year = static_cast<uint32_t>(fields.year);
    if (layout.dateFormat == OAK_YYYYMMDD) {
        putNumber(text, year, 4);
        put(text, layout.separator);
        putNumber(text, fields.month, 2);
        put(text, layout.separator);
        putNumber(text, fields.day, 2);
        return;
    }
    const bool monthFirst = layout.dateFormat == OAK_MMDDYYYY;
    putNumber(text, monthFirst ? fields.month : fields.day, 2);
    put(text, layout.separator);
    putNumber(text, monthFirst ? fields.day : fields.month, 2);
    put(text, layout.separator);
    putNumber(text, year, 4);
}

OAK_RETCODE renderDate(Text &text, OAK_PACKED_DATE_T date, const Layout &layout) {
    const OAK_RETCODE rc = oak_dateValidateSeparator(layout.separator);
    if (rc != sOKAY)
        return rc;
    const OAK_DATE_T fields = fieldsOfDate(date);
    if (!dateIsValid(fields.year, fields.month, fields.day))
        return eBASE_INVDATE;
    if (oak_dateValidateFormat(layout.dateFormat) == sOKAY)
        putDateFields(text, fields, layout);
    return sOKAY;
}

void putTimeFields(Text &text, const OAK_TIME_T &fields, const TimeFormatRow &row) {
    putNumber(text, fields.hour, 2);
    if (row.fields >= 2) {
        put(text, ':');
        putNumber(text, fields.minute, 2);
    }
    if (row.fields >= 3) {
        put(text, ':');
        putNumber(text, fields.second, 2);
    }
    if (row.fractionDigits > 0) {
        put(text, '.');
        putNumber(text, (uint32_t{fields.fraction} + row.rounding) / row.unit, row.fractionDigits);
    }
}

OAK_RETCODE renderTime(Text &text, OAK_PACKED_TIME_T time, const Layout &layout) {
    OAK_TIME_T fields;
    const OAK_RETCODE rc = timeUnpack(time, &fields);
    if (rc != sOKAY)
        return rc;
    if (const TimeFormatRow *row = findRow(timeFormats, layout.timeFormat))
        putTimeFields(text, fields, *row);
    return sOKAY;
}

void renderZone(Text &text, int16_t tz) {
    const auto minutes = static_cast<uint32_t>(tz < 0 ? -int32_t{tz} : int32_t{tz});
    put(text, tz < 0 ? '-' : '+');
    putNumber(text, minutes / 60, 2);
    put(text, ':');
    putNumber(text, minutes % 60, 2);
}

// A zoned value in local time of its own zone; the others as they are.
template <class K>
OAK_RETCODE toLocal(typename K::Packed &packed) {
    if constexpr (K::hasZone) {
        if (!zoneIsValid(packed.tz))
            return eBASE_INVTIMEZONE;
        const ShiftedTime local = shiftTime(packed.time, packed.tz);
        packed.time = local.time;
        if constexpr (K::hasDate)
            return setDate(packed.date, local.days, &packed.date);
    }
    return sOKAY;
}

template <class K>
OAK_RETCODE render(Text &text, typename K::Packed packed, const Layout &layout) {
    OAK_RETCODE rc = toLocal<K>(packed);
    if (rc != sOKAY)
        return rc;
    if constexpr (K::hasDate) {
        rc = renderDate(text, dateOf<K>(packed), layout);
        if (rc != sOKAY)
            return rc;
    }
    if constexpr (K::hasDate && K::hasTime)
        put(text, ' ');
    if constexpr (K::hasTime) {
        rc = renderTime(text, timeOf<K>(packed), layout);
        if (rc != sOKAY)
            return rc;
    }
    if constexpr (K::hasZone) {
        put(text, ' ');
        renderZone(text, packed.tz);
    }
    return sOKAY;
}

// The two ways out: through an output function, and into a buffer.
template <class K>
OAK_RETCODE emitValue(const typename K::Packed &packed, const Layout &layout, OAK_OUTPUT_FCN fcn,
                      OAK_OUTPUT_CTX ctx) {
    Text text;
    const OAK_RETCODE rc = render<K>(text, packed, layout);
    return rc != sOKAY ? rc : emitText(text.bytes, text.length, fcn, ctx);
}

template <class K>
OAK_RETCODE writeValue(const typename K::Packed &packed, const Layout &layout, char *buf,
                       size_t bufSize, size_t *puSize) {
    Text text;
    const OAK_RETCODE rc = render<K>(text, packed, layout);
    if (rc != sOKAY)
        return rc;
    const TextDelivery delivery = deliverText(text.bytes, text.length, buf, bufSize);
    if (puSize != nullptr)
        *puSize = buf != nullptr ? delivery.written : delivery.needed;
    return buf != nullptr && delivery.needed > bufSize ? sTRUNCATE : sOKAY;
}

// ---- Scanners -----------------------------------------------------------------------
//
// Each moves a cursor behind what it reads; where it fails, the cursor is not used
// again.

void skipSpaces(const char **pstr) {
    while (isSpace(**pstr))
        ++*pstr;
}

// Digits at once: no blanks, no sign.
OAK_RETCODE parseInt32(const char **pstr, int32_t *value) {
    const char *at = *pstr;
    if (!isDigit(*at))
        return eRANGE;
    int64_t sum = 0;
    do {
        sum = sum * 10 + (*at - '0');
        if (sum > INT32_MAX)
            return eRANGE;
    } while (isDigit(*++at));
    *pstr = at;
    *value = static_cast<int32_t>(sum);
    return sOKAY;
}

OAK_RETCODE parseUInt16(const char **pstr, uint16_t *value) {
    int32_t wide;
    const OAK_RETCODE rc = parseInt32(pstr, &wide);
    if (rc != sOKAY)
        return rc;
    if (wide > UINT16_MAX)
        return eRANGE;
    *value = static_cast<uint16_t>(wide);
    return sOKAY;
}

// One character that the predicate accepts; `found` may be null.
template <class Predicate>
OAK_RETCODE getSeparator(const char **pstr, Predicate accepts, char *found) {
    if (!accepts(**pstr))
        return eRANGE;
    if (found != nullptr)
        *found = **pstr;
    ++*pstr;
    return sOKAY;
}

// Three numbers, joined by the same separator twice.
OAK_RETCODE scanThreeNumbers(const char **pstr, int32_t numbers[3]) {
    char separator;
    OAK_RETCODE rc = parseInt32(pstr, &numbers[0]);
    if (rc == sOKAY)
        rc = getSeparator(pstr, isDateSeparator, &separator);
    if (rc == sOKAY)
        rc = parseInt32(pstr, &numbers[1]);
    if (rc == sOKAY)
        rc = getSeparator(
            pstr, [separator](char ch) { return ch == separator; }, nullptr);
    if (rc == sOKAY)
        rc = parseInt32(pstr, &numbers[2]);
    return rc;
}

// Each number must fit 16 bits with a sign.
OAK_RETCODE scanNumericDate(const char **pstr, OAK_DATE_FORMAT format, OAK_DATE_T *fields) {
    int32_t numbers[3];
    if (scanThreeNumbers(pstr, numbers) != sOKAY || numbers[0] > INT16_MAX ||
        numbers[1] > INT16_MAX || numbers[2] > INT16_MAX)
        return eBASE_INVDATE;
    const auto first = static_cast<uint16_t>(numbers[0]);
    const auto second = static_cast<uint16_t>(numbers[1]);
    const auto third = static_cast<uint16_t>(numbers[2]);
    switch (format) {
        case OAK_YYYYMMDD:
            *fields = {first, second, third};
            return sOKAY;
        case OAK_DDMMYYYY:
            *fields = {third, second, first};
            return sOKAY;
        case OAK_MMDDYYYY:
            *fields = {third, first, second};
            return sOKAY;
        default:
            return eINVDATEFMT;
    }
}

bool isWholeWord(const char *text, size_t length, const char *word) {
    return std::strlen(word) == length && equalIgnoringCase(text, word, length);
}

// The month, 1 to 12, that a run of letters names, or 0.
uint16_t findMonth(const char *word, size_t length) {
    for (uint16_t i = 0; i < monthsPerYear; ++i)
        if (isWholeWord(word, length, monthNames[i]) || isWholeWord(word, length, monthAbbrev[i]))
            return static_cast<uint16_t>(i + 1);
    return 0;
}

// Month, day, an optional comma, year. The day must follow the month's letters at
// once: Jan5, 2020 is a date and Jan 5, 2020 is none.
OAK_RETCODE scanWordDate(const char **pstr, OAK_DATE_T *fields) {
    const char *word = *pstr;
    size_t length = 0;
    while (length < longestMonthWord && isLetter(word[length]))
        ++length;
    *pstr += length;
    fields->month = findMonth(word, length);
    if (fields->month == 0 || parseUInt16(pstr, &fields->day) != sOKAY)
        return eBASE_INVDATE;
    skipSpaces(pstr);
    if (**pstr == ',')
        ++*pstr;
    skipSpaces(pstr);
    return parseInt32(pstr, &fields->year) == sOKAY ? sOKAY : eBASE_INVDATE;
}

OAK_RETCODE scanClock(const char **pstr, OAK_TIME_T *fields) {
    OAK_RETCODE rc = parseUInt16(pstr, &fields->hour);
    if (rc == sOKAY)
        rc = getSeparator(pstr, isTimeSeparator, nullptr);
    if (rc == sOKAY)
        rc = parseUInt16(pstr, &fields->minute);
    if (rc == sOKAY)
        rc = getSeparator(pstr, isTimeSeparator, nullptr);
    if (rc == sOKAY)
        rc = parseUInt16(pstr, &fields->second);
    return rc;
}

// The number behind the point counts ten-thousandths as it stands, whatever its number
// of digits: .5 is five of them. Deliberate, and unlike what is printed.
OAK_RETCODE scanFraction(const char **pstr, uint16_t *fraction) {
    *fraction = 0;
    if (!isFractionSeparator(**pstr))
        return sOKAY;
    ++*pstr;
    return parseUInt16(pstr, fraction);
}

// A p or a, with an m right behind it or not.
void scanHalfOfDay(const char **pstr, uint16_t *hour) {
    const char half = lowerCase(**pstr);
    if (half != 'p' && half != 'a')
        return;
    if (half == 'p' && *hour < 12)
        *hour = static_cast<uint16_t>(*hour + 12);
    if (half == 'a' && *hour == 12)
        *hour = 0;
    ++*pstr;
    if (lowerCase(**pstr) == 'm')
        ++*pstr;
}

// ---- Text to values -------------------------------------------------------------------

template <class K>
OAK_RETCODE scanDate(const char **pstr, OAK_DATE_FORMAT format, OAK_PACKED_DATE_T *date) {
    OAK_DATE_T fields;
    const OAK_RETCODE rc = convertStringToDatePortion(pstr, format, &fields);
    if (K::partsAreOptional && rc == eBASE_INVDATE)
        fields = {1, 1, 1};
    else if (rc != sOKAY)
        return rc;
    return packFields<DateKind>(fields, date);
}

template <class K>
OAK_RETCODE scanTime(const char **pstr, OAK_PACKED_TIME_T *time) {
    if (K::partsAreOptional && **pstr == '\0') {
        *time = oak_timeZero;
        return sOKAY;
    }
    return convertStringToTimePortion(pstr, time);
}

// The zone behind a local value, which becomes UTC.
template <class K>
OAK_RETCODE scanZone(const char **pstr, typename K::Packed *packed) {
    int16_t tz;
    const OAK_RETCODE rc = convertStringToTimezonePortion(pstr, &tz);
    if (rc != sOKAY)
        return rc;
    if (!zoneIsValid(tz))
        return eBASE_INVTIMEZONE;
    const ShiftedTime utc = shiftTime(packed->time, -int32_t{tz});
    packed->time = utc.time;
    packed->tz = tz;
    if constexpr (K::hasDate)
        return setDate(packed->date, utc.days, &packed->date);
    return sOKAY;
}

template <class K>
OAK_RETCODE parseValue(const char *text, OAK_DATE_FORMAT format, typename K::Packed *result) {
    typename K::Packed packed{};
    OAK_RETCODE rc = sOKAY;
    if constexpr (K::hasDate)
        rc = scanDate<K>(&text, format, &dateOf<K>(packed));
    if constexpr (K::hasTime)
        if (rc == sOKAY)
            rc = scanTime<K>(&text, &timeOf<K>(packed));
    if constexpr (K::hasZone)
        if (rc == sOKAY)
            rc = scanZone<K>(&text, &packed);
    if (rc == sOKAY)
        *result = packed;
    return rc;
}

template <class K>
OAK_RETCODE parseChecked(const char *text, OAK_DATE_FORMAT format, typename K::Packed *result) {
    return text == nullptr || result == nullptr ? eINVNULLARG : parseValue<K>(text, format, result);
}

// ---- The current time -----------------------------------------------------------------

template <class K>
OAK_RETCODE currentValue(int16_t time_zone, typename K::Packed *now) {
    OAK_PACKED_TIMESTAMP_T timestamp;
    const OAK_RETCODE rc = K::hasZone ? getCurrentUTC(&timestamp.date, &timestamp.time)
                                      : timestampNow(time_zone, &timestamp);
    if (rc != sOKAY)
        return rc;
    if constexpr (K::hasDate)
        dateOf<K>(*now) = timestamp.date;
    if constexpr (K::hasTime)
        timeOf<K>(*now) = timestamp.time;
    if constexpr (K::hasZone)
        now->tz = time_zone;
    return sOKAY;
}

template <class K>
OAK_RETCODE currentChecked(int16_t time_zone, typename K::Packed *now) {
    if (!zoneIsValid(time_zone))
        return eBASE_INVTIMEZONE;
    return now == nullptr ? sOKAY : currentValue<K>(time_zone, now);
}

template <class K>
OAK_RETCODE currentAsString(int16_t time_zone, char *buf, size_t bufSize) {
    typename K::Packed now;
    OAK_RETCODE rc = currentChecked<K>(time_zone, &now);
    if (rc != sOKAY)
        return rc;
    rc = writeValue<K>(now, nowLayout, buf, bufSize, nullptr);
    return rc == sTRUNCATE ? sOKAY : rc;
}

} // namespace

// ---- Cores of the calendar and the clock --------------------------------------------------

uint16_t lastDayOfMonth(int32_t year, uint16_t month) {
    assert(month >= 1 && month <= monthsPerYear);
    return month == 2 && isLeapYear(year) ? uint16_t{29} : daysPerMonth[month - 1];
}

OAK_PACKED_DATE_T makeDate(int32_t year, uint16_t month, uint16_t day) {
    assert(month >= 1 && month <= monthsPerYear);
    const bool behindLeapDay = month > 2 && isLeapYear(year);
    return daysBeforeYear(year) + daysBeforeMonth.days[month - 1] + behindLeapDay + day;
}

// Date 0 belongs to no month: its parts are what the sums give in 32 unsigned bits,
// and what dt_dateFormat refuses.
void queryDate(OAK_PACKED_DATE_T date, int32_t *year, uint16_t *month, uint16_t *day) {
    constexpr uint32_t marchDayOfZero = 305; // 0000-12-31, counted from 0000-03-01
    if (date > OAK_DATE_MAX)
        date = 1;
    if (date != 0)
        return splitMarchDays(date + marchDayOfZero, year, month, day);
    *year = 0;
    *month = 1;
    *day = 365;
}

void dateUnpack(OAK_PACKED_DATE_T date, OAK_DATE_T *fields) {
    queryDate(date, &fields->year, &fields->month, &fields->day);
}

OAK_RETCODE timePack(const OAK_TIME_T *fields, OAK_PACKED_TIME_T *time) {
    return packFields<TimeKind>(*fields, time);
}

OAK_RETCODE timeUnpack(OAK_PACKED_TIME_T time, OAK_TIME_T *fields) {
    fields->fraction = static_cast<uint16_t>(time % fractionsPerSecond);
    fields->hour = static_cast<uint16_t>(time / fractionsPerHour);
    if (fields->hour > 23)
        return eINVLITERAL;
    const uint32_t seconds = time / fractionsPerSecond;
    fields->minute = static_cast<uint16_t>(seconds % 3600 / 60);
    fields->second = static_cast<uint16_t>(seconds % 60);
    return sOKAY;
}

OAK_RETCODE timestampPack(const OAK_TIMESTAMP_T *fields, OAK_PACKED_TIMESTAMP_T *timestamp) {
    return packFields<TimestampKind>(*fields, timestamp);
}

OAK_RETCODE timestampUnpack(OAK_PACKED_TIMESTAMP_T timestamp, OAK_TIMESTAMP_T *fields) {
    return unpackFields<TimestampKind>(timestamp, fields);
}

// Exact for shifts of one day, the only ones that a zone can cause. At the ends of the
// calendar the sums decide: the day before 1 is 1, and the day after OAK_DATE_MAX is
// the next number, which unpacks as 0001-01-01.
OAK_RETCODE setDate(OAK_PACKED_DATE_T date, int32_t diff, OAK_PACKED_DATE_T *out) {
    if (out == nullptr)
        return sOKAY;
    if (diff != 0) {
        OAK_DATE_T fields = fieldsOfDate(date);
        const int32_t day = int32_t{fields.day} + diff;
        if (day > lastDayOfMonth(fields.year, fields.month)) {
            const bool yearEnds = fields.month == monthsPerYear;
            date = makeDate(fields.year + yearEnds,
                            static_cast<uint16_t>(yearEnds ? 1 : fields.month + 1), 1);
        } else if (day == 0) {
            const bool yearStarts = fields.month == 1;
            fields.year -= yearStarts;
            fields.month = static_cast<uint16_t>(yearStarts ? monthsPerYear : fields.month - 1);
            date = makeDate(fields.year, fields.month, lastDayOfMonth(fields.year, fields.month));
        } else {
            date = makeDate(fields.year, fields.month, static_cast<uint16_t>(day));
        }
    }
    *out = date;
    return sOKAY;
}

OAK_RETCODE timestamptzToLocalTimestamp(OAK_PACKED_TIMESTAMPTZ_T timestamptz, int16_t tz_disp,
                                        OAK_PACKED_TIMESTAMP_T *out) {
    if (!zoneIsValid(tz_disp))
        return eBASE_INVTIMEZONE;
    if (out == nullptr)
        return sOKAY;
    const ShiftedTime local = shiftTime(timestamptz.time, tz_disp);
    out->time = local.time;
    return setDate(timestamptz.date, local.days, &out->date);
}

OAK_RETCODE getCurrentUTC(OAK_PACKED_DATE_T *date, OAK_PACKED_TIME_T *time) {
    struct tm utc;
    uint16_t fraction;
    osl_timeUTC(&utc, &fraction);
    const OAK_DATE_T day = {utc.tm_year + 1900, static_cast<uint16_t>(utc.tm_mon + 1),
                            static_cast<uint16_t>(utc.tm_mday)};
    const OAK_TIME_T clock = {static_cast<uint16_t>(utc.tm_hour), static_cast<uint16_t>(utc.tm_min),
                              static_cast<uint16_t>(utc.tm_sec), fraction};
    OAK_RETCODE rc = sOKAY;
    if (date != nullptr)
        rc = oak_datePack(&day, date);
    if (rc == sOKAY && time != nullptr)
        rc = timePack(&clock, time);
    return rc;
}

OAK_RETCODE timestampNow(int16_t time_zone, OAK_PACKED_TIMESTAMP_T *pts) {
    OAK_PACKED_TIMESTAMPTZ_T utc{};
    const OAK_RETCODE rc = getCurrentUTC(&utc.date, &utc.time);
    return rc != sOKAY ? rc : timestamptzToLocalTimestamp(utc, time_zone, pts);
}

// ---- Cores of printing ----------------------------------------------------------------

OAK_RETCODE dt_dateFormat(OAK_PACKED_DATE_T date, OAK_DATE_FORMAT format, char separator,
                          OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx) {
    return emitValue<DateKind>(date, {format, separator, {}}, fcn, ctx);
}

OAK_RETCODE dt_timeFormat(OAK_PACKED_TIME_T time, OAK_TIME_FORMAT format, OAK_OUTPUT_FCN fcn,
                          OAK_OUTPUT_CTX ctx) {
    return emitValue<TimeKind>(time, {{}, {}, format}, fcn, ctx);
}

OAK_RETCODE dt_timezoneFormat(int16_t tz, OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx) {
    Text text;
    renderZone(text, tz);
    return emitText(text.bytes, text.length, fcn, ctx);
}

OAK_RETCODE dt_timetzFormat(OAK_PACKED_TIMETZ_T timetz, OAK_TIME_FORMAT format, OAK_OUTPUT_FCN fcn,
                            OAK_OUTPUT_CTX ctx) {
    return emitValue<TimetzKind>(timetz, {{}, {}, format}, fcn, ctx);
}

OAK_RETCODE dt_timestampFormat(OAK_PACKED_TIMESTAMP_T timestamp, OAK_DATE_FORMAT dateFormat,
                               char separator, OAK_TIME_FORMAT timeFormat, OAK_OUTPUT_FCN fcn,
                               OAK_OUTPUT_CTX ctx) {
    return emitValue<TimestampKind>(timestamp, {dateFormat, separator, timeFormat}, fcn, ctx);
}

OAK_RETCODE dt_timestamptzFormat(OAK_PACKED_TIMESTAMPTZ_T timestamptz, OAK_DATE_FORMAT dateFormat,
                                 char separator, OAK_TIME_FORMAT timeFormat, OAK_OUTPUT_FCN fcn,
                                 OAK_OUTPUT_CTX ctx) {
    return emitValue<TimestamptzKind>(timestamptz, {dateFormat, separator, timeFormat}, fcn, ctx);
}

// ---- Cores of parsing -----------------------------------------------------------------

OAK_RETCODE convertStringToDatePortion(const char **pstr, OAK_DATE_FORMAT date_fmt,
                                       OAK_DATE_T *cd) {
    const char *at = *pstr;
    skipSpaces(&at);
    OAK_DATE_T fields;
    OAK_RETCODE rc = eBASE_INVDATE;
    if (isDigit(*at))
        rc = scanNumericDate(&at, date_fmt, &fields);
    else if (isLetter(*at))
        rc = scanWordDate(&at, &fields);
    if (rc != sOKAY)
        return rc;
    rc = checkFields<DateKind>(fields);
    if (rc != sOKAY)
        return rc;
    *cd = fields;
    *pstr = at;
    return sOKAY;
}

OAK_RETCODE convertStringToTimePortion(const char **pstr, OAK_PACKED_TIME_T *ptm) {
    const char *at = *pstr;
    skipSpaces(&at);
    OAK_TIME_T fields;
    if (scanClock(&at, &fields) != sOKAY || scanFraction(&at, &fields.fraction) != sOKAY)
        return eINVLITERAL;
    scanHalfOfDay(&at, &fields.hour);
    const OAK_RETCODE rc = timePack(&fields, ptm);
    if (rc == sOKAY)
        *pstr = at;
    return rc;
}

OAK_RETCODE convertStringToTimezonePortion(const char **pstr, int16_t *ptz) {
    const char *at = *pstr;
    skipSpaces(&at);
    char sign;
    uint16_t hours;
    uint16_t minutes;
    OAK_RETCODE rc = getSeparator(&at, isTimezoneSign, &sign);
    if (rc == sOKAY)
        rc = parseUInt16(&at, &hours);
    if (rc == sOKAY)
        rc = getSeparator(&at, isTimeSeparator, nullptr);
    if (rc == sOKAY)
        rc = parseUInt16(&at, &minutes);
    if (rc != sOKAY)
        return rc;
    if (minutes > 59 || hours > 24)
        return eINVLITERAL;
    const int32_t displacement = hours * 60 + minutes;
    *ptz = static_cast<int16_t>(sign == '-' ? -displacement : displacement);
    *pstr = at;
    return sOKAY;
}

OAK_RETCODE dt_dateFromString(const char *text, OAK_DATE_FORMAT format, OAK_PACKED_DATE_T *date) {
    return parseValue<DateKind>(text, format, date);
}

OAK_RETCODE dt_timetzFromString(const char *text, OAK_PACKED_TIMETZ_T *timetz) {
    return parseValue<TimetzKind>(text, {}, timetz);
}

OAK_RETCODE dt_timestampFromString(const char *text, OAK_DATE_FORMAT format,
                                   OAK_PACKED_TIMESTAMP_T *timestamp) {
    return parseValue<TimestampKind>(text, format, timestamp);
}

OAK_RETCODE dt_timestamptzFromString(const char *text, OAK_DATE_FORMAT format,
                                     OAK_PACKED_TIMESTAMPTZ_T *timestamptz) {
    return parseValue<TimestamptzKind>(text, format, timestamptz);
}

// ---- Zero values ------------------------------------------------------------------------

const OAK_PACKED_DATE_T oak_dateZero = 1;
const OAK_PACKED_TIME_T oak_timeZero = 0;
const OAK_PACKED_TIMETZ_T oak_timetzZero = {0, 0};
const OAK_PACKED_TIMESTAMP_T oak_timestampZero = {1, 0};
const OAK_PACKED_TIMESTAMPTZ_T oak_timestamptzZero = {1, 0, 0};

// ---- Exported: families over the five kinds -----------------------------------------------

// Pack, unpack, now, now as text.
#define DATETIME_FAMILY(name, now, nowAsString, K)                                                 \
    OAK_RETCODE oak_##name##Pack(const K::Fields *fields, K::Packed *packed) {                     \
        return packChecked<K>(fields, packed);                                                     \
    }                                                                                              \
    OAK_RETCODE oak_##name##Unpack(K::Packed packed, K::Fields *fields) {                          \
        return unpackChecked<K>(packed, fields);                                                   \
    }                                                                                              \
    OAK_RETCODE now(int16_t time_zone, K::Packed *value) {                                         \
        return currentChecked<K>(time_zone, value);                                                \
    }                                                                                              \
    OAK_RETCODE nowAsString(int16_t time_zone, char *buf, size_t bufSize) {                        \
        return currentAsString<K>(time_zone, buf, bufSize);                                        \
    }

DATETIME_FAMILY(date, oak_dateToday, oak_dateNowAsString, DateKind)
DATETIME_FAMILY(time, oak_timeNow, oak_timeNowAsString, TimeKind)
DATETIME_FAMILY(timetz, oak_timetzNow, oak_timetzNowAsString, TimetzKind)
DATETIME_FAMILY(timestamp, oak_timestampNow, oak_timestampNowAsString, TimestampKind)
DATETIME_FAMILY(timestamptz, oak_timestamptzNow, oak_timestamptzNowAsString, TimestamptzKind)
#undef DATETIME_FAMILY

// One field, read from a date or time and from that part of a timestamp.
#define DATETIME_READER(part, type, Field)                                                         \
    type oak_##part##Field(uint32_t part) {                                                        \
        return read##Field(part);                                                                  \
    }                                                                                              \
    type oak_timestamp##Field(OAK_PACKED_TIMESTAMP_T timestamp) {                                  \
        return read##Field(timestamp.part);                                                        \
    }

DATETIME_READER(date, int32_t, Year)
DATETIME_READER(date, uint16_t, Month)
DATETIME_READER(date, uint16_t, DayOfMonth)
DATETIME_READER(date, uint16_t, DayOfWeek)
DATETIME_READER(date, uint16_t, DayOfYear)
DATETIME_READER(date, uint16_t, Week)
DATETIME_READER(date, uint16_t, Quarter)
DATETIME_READER(date, const char *, DayAbr)
DATETIME_READER(date, const char *, DayName)
DATETIME_READER(date, const char *, MonthAbr)
DATETIME_READER(date, const char *, MonthName)
DATETIME_READER(time, uint16_t, Hour)
DATETIME_READER(time, uint16_t, Minute)
DATETIME_READER(time, uint16_t, Second)
DATETIME_READER(time, uint16_t, Fraction)
#undef DATETIME_READER

// ---- Exported: values to text -----------------------------------------------------------

OAK_RETCODE oak_dateToString(OAK_PACKED_DATE_T date, OAK_DATE_FORMAT format, char separator,
                             char *buf, size_t bufSize, size_t *puSize) {
    return writeValue<DateKind>(date, {format, separator, {}}, buf, bufSize, puSize);
}

OAK_RETCODE oak_timeToString(OAK_PACKED_TIME_T time, OAK_TIME_FORMAT format, char *buf,
                             size_t bufSize, size_t *puSize) {
    return writeValue<TimeKind>(time, {{}, {}, format}, buf, bufSize, puSize);
}

OAK_RETCODE oak_timetzToString(OAK_PACKED_TIMETZ_T timetz, OAK_TIME_FORMAT format, char *buf,
                               size_t bufSize, size_t *puSize) {
    return writeValue<TimetzKind>(timetz, {{}, {}, format}, buf, bufSize, puSize);
}

OAK_RETCODE oak_timestampToString(OAK_PACKED_TIMESTAMP_T timestamp, OAK_DATE_FORMAT dateFormat,
                                  char separator, OAK_TIME_FORMAT timeFormat, char *buf,
                                  size_t bufSize, size_t *puSize) {
    return writeValue<TimestampKind>(timestamp, {dateFormat, separator, timeFormat}, buf, bufSize,
                                     puSize);
}

OAK_RETCODE oak_timestamptzToString(OAK_PACKED_TIMESTAMPTZ_T timestamptz,
                                    OAK_DATE_FORMAT dateFormat, char separator,
                                    OAK_TIME_FORMAT timeFormat, char *buf, size_t bufSize,
                                    size_t *puSize) {
    return writeValue<TimestamptzKind>(timestamptz, {dateFormat, separator, timeFormat}, buf,
                                       bufSize, puSize);
}

// ---- Exported: text to values -----------------------------------------------------------

OAK_RETCODE oak_dateFromString(const char *text, OAK_DATE_FORMAT format, OAK_PACKED_DATE_T *date) {
    return parseChecked<DateKind>(text, format, date);
}

OAK_RETCODE oak_timeFromString(const char *text, OAK_PACKED_TIME_T *time) {
    return parseChecked<TimeKind>(text, {}, time);
}

OAK_RETCODE oak_timetzFromString(const char *text, OAK_PACKED_TIMETZ_T *timetz) {
    return parseChecked<TimetzKind>(text, {}, timetz);
}

OAK_RETCODE oak_timestampFromString(const char *text, OAK_DATE_FORMAT format,
                                    OAK_PACKED_TIMESTAMP_T *timestamp) {
    return parseChecked<TimestampKind>(text, format, timestamp);
}

OAK_RETCODE oak_timestamptzFromString(const char *text, OAK_DATE_FORMAT format,
                                      OAK_PACKED_TIMESTAMPTZ_T *timestamptz) {
    return parseChecked<TimestamptzKind>(text, format, timestamptz);
}

OAK_RETCODE oak_timezoneFromString(const char *text, int16_t *tz_disp) {
    if (text == nullptr || tz_disp == nullptr)
        return eINVNULLARG;
    return convertStringToTimezonePortion(&text, tz_disp);
}

// ---- Exported: formats --------------------------------------------------------------------

OAK_RETCODE oak_dateValidateFormat(OAK_DATE_FORMAT format) {
    return findRow(dateFormats, format) != nullptr ? sOKAY : eINVDATEFMT;
}

OAK_RETCODE oak_dateValidateSeparator(char separator) {
    return isDateSeparator(separator) ? sOKAY : eINVDATESEP;
}

OAK_RETCODE oak_timeValidateFormat(OAK_TIME_FORMAT format) {
    return findRow(timeFormats, format) != nullptr ? sOKAY : eINVTIMEFMT;
}

OAK_RETCODE oak_dateParseFormatString(const char *format, OAK_DATE_FORMAT *fmt_type,
                                      char *sep_char) {
    if (format == nullptr || fmt_type == nullptr || sep_char == nullptr)
        return eINVNULLARG;
    const char *separator = std::strpbrk(format, "-/.");
    if (separator == nullptr)
        return eINVDATEFMT;
    *sep_char = *separator;
    for (const DateFormatRow &row : dateFormats) {
        if (matchesWord(format, row.word, *separator)) {
            *fmt_type = row.format;
            return sOKAY;
        }
    }
    return eINVDATEFMT;
}

OAK_RETCODE oak_dateCreateFormatString(OAK_DATE_FORMAT df, char ds, char **fmtString,
                                       OSL_MEMTAG tag) {
    if (fmtString == nullptr)
        return eINVNULLARG;
    const DateFormatRow *row = findRow(dateFormats, df);
    if (row == nullptr)
        return eINVDATEFMT;
    const OAK_RETCODE rc = oak_dateValidateSeparator(ds);
    if (rc != sOKAY)
        return rc;
    auto *word = static_cast<char *>(OSL_GET_STRING(row->word, tag));
    if (word == nullptr)
        return eNOMEMORY;
    for (char *at = word; *at != '\0'; ++at)
        if (*at == '-')
            *at = ds;
    *fmtString = word;
    return sOKAY;
}

OAK_RETCODE oak_timeCreateFormatString(OAK_TIME_FORMAT format, char **fmtString, OSL_MEMTAG tag) {
    if (fmtString == nullptr)
        return eINVNULLARG;
    const TimeFormatRow *row = findRow(timeFormats, format);
    if (row == nullptr)
        return eINVTIMEFMT;
    auto *word = static_cast<char *>(OSL_GET_STRING(row->word, tag));
    if (word == nullptr)
        return eNOMEMORY;
    *fmtString = word;
    return sOKAY;
}

OAK_RETCODE oak_timeParseFormatString(const char *text, OAK_TIME_FORMAT *format) {
    if (text == nullptr || format == nullptr)
        return eINVNULLARG;
    for (const TimeFormatRow &row : timeFormats) {
        if (matchesWord(text, row.word, '-')) {
            *format = row.format;
            return sOKAY;
        }
    }
    return eINVTIMEFMT;
}

// ---- Exported: zones ------------------------------------------------------------------------

OAK_RETCODE oak_timetzToTime(OAK_PACKED_TIMETZ_T timetz, int16_t local_timezone,
                             OAK_PACKED_TIME_T *out) {
    if (!zoneIsValid(local_timezone))
        return eBASE_INVTIMEZONE;
    if (out != nullptr)
        *out = shiftTime(timetz.time, local_timezone).time;
    return sOKAY;
}

OAK_RETCODE oak_timetzToOakTime(OAK_PACKED_TIMETZ_T timetz, int16_t local_timezone,
                                OAK_TIME_T *ct) {
    OAK_PACKED_TIME_T local;
    const OAK_RETCODE rc = oak_timetzToTime(timetz, local_timezone, &local);
    return rc != sOKAY ? rc : unpackChecked<TimeKind>(local, ct);
}

OAK_RETCODE oak_timestamptzToTimestamp(OAK_PACKED_TIMESTAMPTZ_T timestamptz, int16_t local_tz,
                                       OAK_PACKED_TIMESTAMP_T *out) {
    return timestamptzToLocalTimestamp(timestamptz, local_tz, out);
}

OAK_RETCODE oak_timestamptzFromTimestamp(OAK_PACKED_TIMESTAMP_T timestamp, int16_t tz,
                                         OAK_PACKED_TIMESTAMPTZ_T *out) {
    if (!zoneIsValid(tz))
        return eBASE_INVTIMEZONE;
    if (out == nullptr)
        return eINVNULLARG;
    const ShiftedTime utc = shiftTime(timestamp.time, -int32_t{tz});
    out->time = utc.time;
    out->tz = tz;
    return setDate(timestamp.date, utc.days, &out->date);
}

// ---- Exported: the clock and differences --------------------------------------------------------

double oak_timestampNowAsDouble(void) {
    return static_cast<double>(osl_timeNanoSecs()) / 1e9;
}

OAK_RETCODE oak_timestampDaysDiff(OAK_PACKED_TIMESTAMP_T start, OAK_PACKED_TIMESTAMP_T end,
                                  uint32_t *diff) {
    if (diff == nullptr)
        return eINVNULLARG;
    if (start.date < end.date)
        *diff = end.date - start.date - (start.time > end.time);
    else if (start.date == end.date)
        *diff = 0;
    else
        *diff = start.date - end.date - (start.time < end.time);
    return sOKAY;
}
