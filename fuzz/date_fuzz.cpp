// Feeds the calendar arbitrary texts and arbitrary packed values. The first byte chooses
// format and separator; the rest is a text for every parser and, as far as it goes, a
// packed value for every printer. Traps when a cursor leaves its text, when a parser
// stores on failure or yields a value out of range, and when a value that was printed in
// full does not come back.
#include <cstdint>
#include <cstring>
#include <string>

#include "datetime.h"
#include "datetime_internal.h"

namespace {

void require(bool holds) {
    if (!holds)
        __builtin_trap();
}

bool zone_is_valid(int16_t tz) {
    return tz >= -OAK_TIMEZONE_MAX && tz <= OAK_TIMEZONE_MAX;
}

void check_portions(const std::string &text, OAK_DATE_FORMAT format) {
    const char *const first = text.c_str();
    const char *const last = first + text.size();
    const char *cursor = first;
    OAK_DATE_T fields;
    OAK_RETCODE rc = convertStringToDatePortion(&cursor, format, &fields);
    require(rc == sOKAY ? cursor > first && cursor <= last : cursor == first);
    OAK_PACKED_TIME_T time;
    cursor = first;
    rc = convertStringToTimePortion(&cursor, &time);
    require(rc == sOKAY ? cursor > first && cursor <= last : cursor == first);
    require(rc != sOKAY || time <= OAK_TIME_MAX);
    int16_t zone;
    cursor = first;
    rc = convertStringToTimezonePortion(&cursor, &zone);
    require(rc == sOKAY ? cursor > first && cursor <= last : cursor == first);
    require(rc != sOKAY || (zone >= -1499 && zone <= 1499));
}

void check_parsers(const char *text, OAK_DATE_FORMAT format) {
    OAK_PACKED_TIMETZ_T timetz = {77, 7};
    if (oak_timetzFromString(text, &timetz) == sOKAY)
        require(timetz.time <= OAK_TIME_MAX && zone_is_valid(timetz.tz));
    else
        require(timetz.time == 77 && timetz.tz == 7);
    OAK_PACKED_TIMESTAMP_T timestamp = {77, 77};
    if (oak_timestampFromString(text, format, &timestamp) == sOKAY)
        require(timestamp.time <= OAK_TIME_MAX);
    else
        require(timestamp.date == 77 && timestamp.time == 77);
    OAK_PACKED_TIMESTAMPTZ_T timestamptz = {77, 77, 7};
    if (oak_timestamptzFromString(text, format, &timestamptz) == sOKAY)
        require(timestamptz.time <= OAK_TIME_MAX && zone_is_valid(timestamptz.tz));
    else
        require(timestamptz.date == 77 && timestamptz.time == 77 && timestamptz.tz == 7);
    OAK_DATE_FORMAT date_format;
    OAK_TIME_FORMAT time_format;
    char separator;
    if (oak_dateParseFormatString(text, &date_format, &separator) == sOKAY)
        require(oak_dateValidateFormat(date_format) == sOKAY &&
                oak_dateValidateSeparator(separator) == sOKAY && std::strlen(text) == 10);
    if (oak_timeParseFormatString(text, &time_format) == sOKAY)
        require(oak_timeValidateFormat(time_format) == sOKAY);
}

void check_value(OAK_PACKED_TIMESTAMPTZ_T value, OAK_DATE_FORMAT format, char separator) {
    char text[OAK_TIMESTAMPTZ_TEXT_SIZE];
    const OAK_RETCODE rc = oak_timestamptzToString(value, format, separator, OAK_HHMMSSFFFF, text,
                                                   sizeof text, nullptr);
    require(rc != sTRUNCATE);
    // Away from the ends of calendar and day the text says it all; a time beyond its day
    // can become a time of the next one by its zone.
    if (rc == sOKAY && value.time <= OAK_TIME_MAX && oak_dateValidateFormat(format) == sOKAY &&
        value.date > 2 && value.date < OAK_DATE_MAX - 1) {
        OAK_PACKED_TIMESTAMPTZ_T back;
        require(oak_timestamptzFromString(text, format, &back) == sOKAY);
        require(back.date == value.date && back.time == value.time && back.tz == value.tz);
    }
    OAK_DATE_T fields;
    require(oak_dateUnpack(value.date, &fields) == sOKAY);
    require(value.date == 0 || (fields.month >= 1 && fields.month <= 12 && fields.day >= 1 &&
                                fields.day <= lastDayOfMonth(fields.year, fields.month)));
    require(oak_dateMonthName(value.date) != nullptr && oak_dateDayAbr(value.date) != nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0)
        return 0;
    const auto format = static_cast<OAK_DATE_FORMAT>(data[0] % 5);
    const char separator = "-/.x"[data[0] / 5 % 4];
    const std::string text(reinterpret_cast<const char *>(data + 1), size - 1);
    check_portions(text.c_str(), format);
    check_parsers(text.c_str(), format);

    OAK_PACKED_TIMESTAMPTZ_T value{};
    std::memcpy(&value, data + 1, size - 1 < 10 ? size - 1 : 10);
    check_value(value, format, separator);
    value.date %= OAK_DATE_MAX + 1;
    value.time %= OAK_TIME_MAX + 1;
    value.tz = static_cast<int16_t>(value.tz % (OAK_TIMEZONE_MAX + 1));
    check_value(value, format, separator);
    return 0;
}
