// A column's value as text, and back. Conversions go through oak_valueConvert,
// texts of dates, decimals and UUIDs come from the library; the numbers, of which
// there are many, are printed here.
#include "value_text.h"

#include <charconv>
#include <cstring>
#include <strings.h>

#include "bcd.h"
#include "convert.h"
#include "datetime.h"
#include "types.h"
#include "uuid.h"
#include "value.h"

namespace tools {

namespace {

constexpr char kArrayStart[] = "ARRAY[";
constexpr size_t kArrayStartLength = sizeof kArrayStart - 1;
constexpr char kDateSeparator = '-';
constexpr size_t kTextRoom = 80; // for a number, date or UUID

// ---- Numbers ----------------------------------------------------------------

template <class Number>
void append_number(std::string *out, Number value) {
    char text[kTextRoom];
    const char *end = std::to_chars(text, text + sizeof text, value).ptr;
    out->append(text, static_cast<size_t>(end - text));
}

template <class Float>
bool append_if_same(std::string *out, Float value, int digits) {
    char text[kTextRoom];
    const char *end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::general, digits).ptr;
    Float back = 0;
    if (std::from_chars(text, end, back).ec != std::errc() || back != value) {
        return false;
    }
    out->append(text, static_cast<size_t>(end - text));
    return true;
}

// What is no number has the library's words.
template <class Float>
void append_float(std::string *out, Float value, int short_digits, int long_digits) {
    OAK_FP_TYPE kind = OAK_FP_POSITIVE_INF;
    if (osl_validateDouble(&kind, value) != OAK_TRUE) {
        *out += kind == OAK_FP_NEGATIVE_NAN || kind == OAK_FP_NEGATIVE_INF ? "-" : "";
        *out += kind == OAK_FP_POSITIVE_NAN || kind == OAK_FP_NEGATIVE_NAN ? "NAN" : "INF";
    } else if (!append_if_same(out, value, short_digits)) {
        append_if_same(out, value, long_digits);
    }
}

OAK_RETCODE append_boolean(std::string *out, int32_t value) {
    if (value != 0 && value != 1) {
        return eDBCORRUPTED;
    }
    *out += value != 0 ? "true" : "false";
    return sOKAY;
}

template <class Number>
Number number_at(const void *place) {
    Number value;
    std::memcpy(&value, place, sizeof value);
    return value;
}

// A boolean or number of `type` at any place, an element or a payload.
OAK_RETCODE append_scalar(std::string *out, OAK_TYPE type, const void *place) {
    switch (type) {
        case OAK_BOOL:
            return append_boolean(out, number_at<int32_t>(place));
        case OAK_INT8:
            append_number<int>(out, number_at<int8_t>(place));
            return sOKAY;
        case OAK_UINT8:
            append_number<int>(out, number_at<uint8_t>(place));
            return sOKAY;
        case OAK_INT16:
            append_number(out, number_at<int16_t>(place));
            return sOKAY;
        case OAK_UINT16:
            append_number(out, number_at<uint16_t>(place));
            return sOKAY;
        case OAK_INT32:
            append_number(out, number_at<int32_t>(place));
            return sOKAY;
        case OAK_UINT32:
            append_number(out, number_at<uint32_t>(place));
            return sOKAY;
        case OAK_INT64:
            append_number(out, number_at<int64_t>(place));
            return sOKAY;
        case OAK_UINT64:
        case OAK_ROWID:
            append_number(out, number_at<uint64_t>(place));
            return sOKAY;
        case OAK_FLOAT:
            append_float(out, number_at<float>(place), 6, 9);
            return sOKAY;
        case OAK_DOUBLE:
            append_float(out, number_at<double>(place), 15, 17);
            return sOKAY;
        default:
            return eINVCONVERT;
    }
}

OAK_RETCODE append_array(std::string *out, const Column &column, const void *elements) {
    const size_t size = b_typeGetLength(column.type);
    const char *place = static_cast<const char *>(elements);
    *out += kArrayStart;
    for (uint16_t i = 0; i < column.elements; ++i) {
        *out += i > 0 ? "," : "";
        const OAK_RETCODE status = append_scalar(out, column.type, place + i * size);
        if (status != sOKAY) {
            return status;
        }
    }
    *out += ']';
    return sOKAY;
}

// ---- Other values -----------------------------------------------------------

OAK_RETCODE append_decimal(std::string *out, const OAK_BCD_T &decimal, uint8_t scale) {
    char text[kTextRoom];
    size_t size = 0;
    OAK_RETCODE status = oak_bcdValidate(&decimal);
    if (status == sOKAY) {
        status = oak_bcdToStringWithScale(&decimal, scale, OAK_FALSE, text, sizeof text, &size);
    }
    if (status == sOKAY) {
        *out += text;
    }
    return status;
}

OAK_RETCODE date_text(const OAK_VALUE &value, char *text, size_t room) {
    switch (value.type) {
        case OAK_DATE:
            return oak_dateToString(value.vt.dtv, OAK_YYYYMMDD, kDateSeparator, text, room,
                                    nullptr);
        case OAK_TIME:
            return oak_timeToString(value.vt.tmv, OAK_HHMMSSFFFF, text, room, nullptr);
        case OAK_TIMETZ:
            return oak_timetzToString(value.vt.tmzv, OAK_HHMMSSFFFF, text, room, nullptr);
        case OAK_TIMESTAMP:
            return oak_timestampToString(value.vt.tsv, OAK_YYYYMMDD, kDateSeparator, OAK_HHMMSSFFFF,
                                         text, room, nullptr);
        default:
            return oak_timestamptzToString(number_at<OAK_PACKED_TIMESTAMPTZ_T>(value.vt.tszv),
                                           OAK_YYYYMMDD, kDateSeparator, OAK_HHMMSSFFFF, text, room,
                                           nullptr);
    }
}

OAK_RETCODE append_date(std::string *out, const OAK_VALUE &value) {
    char text[kTextRoom];
    const OAK_RETCODE status = date_text(value, text, sizeof text);
    if (status == sOKAY) {
        *out += text;
    }
    return status;
}

OAK_RETCODE append_uuid(std::string *out, const void *place) {
    const OAK_UUID_T uuid = number_at<OAK_UUID_T>(place);
    char text[OAK_UUID_TEXT_SIZE];
    const OAK_RETCODE status = oak_uuidToString(&uuid, text, sizeof text, OAK_FALSE);
    if (status == sOKAY) {
        *out += text;
    }
    return status;
}

} // namespace

void append_hex(std::string *out, const void *data, size_t length) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    const unsigned char *bytes = static_cast<const unsigned char *>(data);
    *out += "0x";
    for (size_t i = 0; i < length; ++i) {
        *out += kDigits[bytes[i] >> 4];
        *out += kDigits[bytes[i] & 15];
    }
}

OAK_RETCODE append_value_text(std::string *out, const Column &column, const OAK_VALUE &value) {
    if (value.elts != 0) {
        return append_array(out, column, value.vt.pv);
    }
    switch (class_of(value.type)) {
        case OAK_TYPE_CLASS_TEXT:
            *out += value.vt.cv;
            return sOKAY;
        case OAK_TYPE_CLASS_BINARY:
            append_hex(out, value.vt.pv, value.len);
            return sOKAY;
        case OAK_TYPE_CLASS_DECIMAL:
            return append_decimal(out, *value.vt.bcd, sch_col_scale(column.info));
        case OAK_TYPE_CLASS_DATETIME:
            return append_date(out, value);
        case OAK_TYPE_CLASS_UUID:
            return append_uuid(out, value.vt.uuid);
        default:
            return append_scalar(out, value.type, &value.vt);
    }
}

// ---- Reading ----------------------------------------------------------------

namespace {

OAK_VALUE text_value(OAK_TYPE type, const char *text, size_t length) {
    OAK_VALUE value{};
    value.status = vsOKAY;
    value.type = type;
    value.len = length + 1;
    value.vt.cv = text;
    return value;
}

// A text becomes a text by sharing its bytes. The limit on a number, its own
// length, keeps a text of one digit from being taken as a character's code.
OAK_RETCODE convert_text(OAK_TYPE type, const char *text, size_t length, OAK_VALUE *value,
                         OSL_MEMTAG tag) {
    const bool is_text = class_of(type) == OAK_TYPE_CLASS_TEXT;
    const OAK_VALUE source = text_value(is_text ? type : OAK_CHAR, text, length);
    return oak_valueConvert(value, &source, type, b_typeGetLength(type), OAK_YYYYMMDD,
                            kDateSeparator, OAK_HHMMSSFFFF, 0, is_text ? nullptr : tag);
}

// Row numbers are read as plain numbers, which keeps their sign and range.
OAK_TYPE type_to_read(const Column &column) {
    const bool is_row_number =
        column.kind == ColumnKind::rowid || column.kind == ColumnKind::foreign;
    return is_row_number ? OAK_UINT64 : column.type;
}

// ---- Dates and times that are taken whole -----------------------------------

constexpr size_t kMostNumbers = 9; // of a timestamp with a zone
constexpr char kDigits[] = "0123456789";
constexpr char kBlanks[] = " \t\n\v\f\r";
constexpr char kBeforeTime[] = " \t\n\v\f\r,-/:."; // between it and the day

// The numbers in a text, and the character behind the first of them.
struct Numbers {
    uint64_t number[kMostNumbers + 1]; // one more than there may be
    size_t count;
    char behind_first;
};

bool is_digit(char ch) {
    return ch >= '0' && ch <= '9';
}

Numbers numbers_of(const char *text) {
    Numbers numbers{};
    while (*text != '\0' && numbers.count <= kMostNumbers) {
        if (!is_digit(*text)) {
            ++text;
            continue;
        }
        uint64_t number = 0;
        for (; is_digit(*text); ++text) {
            number = number * 10 + static_cast<uint64_t>(*text - '0');
        }
        numbers.behind_first = numbers.count == 0 ? *text : numbers.behind_first;
        numbers.number[numbers.count++] = number;
    }
    return numbers;
}

size_t most_numbers(OAK_TYPE type) {
    switch (type) {
        case OAK_DATE:
            return 3;
        case OAK_TIME:
            return 4;
        case OAK_TIMETZ:
            return 6;
        case OAK_TIMESTAMP:
            return 7;
        default:
            return kMostNumbers;
    }
}

bool begins_with_day(OAK_TYPE type) {
    return type == OAK_DATE || type == OAK_TIMESTAMP || type == OAK_TIMESTAMPTZ;
}
bool has_zone(OAK_TYPE type) {
    return type == OAK_TIMETZ || type == OAK_TIMESTAMPTZ;
}

const char *behind_numbers(const char *text, size_t count) {
    for (; count > 0 && *text != '\0'; --count) {
        text += std::strcspn(text, kDigits);
        text += std::strspn(text, kDigits);
    }
    return text;
}

// Numbers with colons and points between them.
const char *behind_clock(const char *text) {
    for (;;) {
        text += std::strspn(text, kDigits);
        if ((*text != ':' && *text != '.') || !is_digit(text[1])) {
            return text;
        }
        ++text;
    }
}

const char *behind_blanks(const char *text) {
    return text + std::strspn(text, kBlanks);
}

// Whether a text is empty, or a time of the day and a zone where there may be one.
// A half of the day is told right behind the time.
bool is_time(const char *text, bool has_zone) {
    if (*behind_blanks(text) == '\0') {
        return true;
    }
    text += std::strspn(text, kBeforeTime);
    if (!is_digit(*text)) {
        return false;
    }
    text = behind_clock(text);
    if (*text != '\0' && std::strchr("aApP", *text) != nullptr) {
        text += text[1] == 'm' || text[1] == 'M' ? 2 : 1;
    }
    text = behind_blanks(text);
    if (has_zone && (*text == '+' || *text == '-')) {
        text = behind_blanks(behind_clock(behind_blanks(text + 1)));
    }
    return *text == '\0';
}

// Whether a text's numbers are the day of the canonical one, year-month-day. Day
// and year stand behind the name of a month.
bool is_same_day(const Numbers &given, bool names_month, const Numbers &canonical) {
    const uint64_t *day = canonical.number;
    return names_month ? given.number[0] == day[2] && given.number[1] == day[0]
                       : std::memcmp(given.number, day, 3 * sizeof *day) == 0;
}

// The conversions pass over what stands behind a date or time, and take the 30th
// of February for a day of March. Here a text is taken whole or not at all.
OAK_RETCODE check_whole(const Column &column, const char *text, const OAK_VALUE &value,
                        std::string *detail) {
    const Numbers given = numbers_of(text);
    if (given.count == 0) {
        return sOKAY; // an empty text is the first moment that there is
    }
    const size_t blanks = std::strspn(text, kBlanks);
    const size_t before = std::strcspn(text, kDigits);
    const bool names_month = before > blanks;
    const bool has_day = begins_with_day(column.type) && (names_month || given.behind_first != ':');
    const size_t of_day = !has_day ? 0 : names_month ? 2 : 3; // numbers
    if (given.count + (names_month ? 1 : 0) > most_numbers(column.type) ||
        !is_time(behind_numbers(text, of_day), has_zone(column.type))) {
        *detail = std::string("'") + text + "' holds more than the column takes";
        return eINVLITERAL;
    }
    std::string canonical;
    const OAK_RETCODE status = append_value_text(&canonical, column, value);
    const Numbers taken = numbers_of(canonical.c_str());
    if (status == sOKAY && of_day != 0 && !is_same_day(given, names_month, taken)) {
        *detail = std::string("there is no day '") + text + "'";
        return eBASE_INVDATE;
    }
    return status;
}

} // namespace

OAK_RETCODE FieldConverter::convert(const Column &column, char *text, size_t length,
                                    OAK_VALUE *value) {
    detail_.clear();
    if (column.kind == ColumnKind::array) {
        return convert_array(column, text, length, value);
    }
    const OAK_RETCODE status = convert_text(type_to_read(column), text, length, value, tag_);
    const bool is_date =
        column.kind == ColumnKind::plain && class_of(column.type) == OAK_TYPE_CLASS_DATETIME;
    return status == sOKAY && is_date ? check_whole(column, text, *value, &detail_) : status;
}

OAK_RETCODE FieldConverter::convert_array(const Column &column, char *text, size_t length,
                                          OAK_VALUE *value) {
    if (length <= kArrayStartLength || text[length - 1] != ']' ||
        strncasecmp(text, kArrayStart, kArrayStartLength) != 0) {
        detail_ = "an array is written as ARRAY[1,2,3]";
        return eINVLITERAL;
    }
    const size_t size = b_typeGetLength(column.type);
    elements_.assign((column.elements * size + sizeof elements_[0] - 1) / sizeof elements_[0], 0);
    OAK_RETCODE result = sOKAY;
    size_t count = 0;
    char *const end = text + length - 1;
    for (char *next = text + kArrayStartLength; next <= end; ++count) {
        char *comma = static_cast<char *>(std::memchr(next, ',', static_cast<size_t>(end - next)));
        char *const stop = comma != nullptr ? comma : end;
        *stop = '\0';
        OAK_VALUE element;
        const OAK_RETCODE status =
            convert_text(column.type, next, static_cast<size_t>(stop - next), &element, tag_);
        if (status != sOKAY && status != sTRUNCATE) {
            detail_ = "element " + std::to_string(count + 1);
            return status;
        }
        result = status == sTRUNCATE ? status : result;
        if (count < column.elements) {
            std::memcpy(reinterpret_cast<char *>(elements_.data()) + count * size, &element.vt,
                        size);
        }
        next = stop + 1;
    }
    if (count != column.elements) {
        detail_ =
            counted(count, "element") + " where the column has " + std::to_string(column.elements);
        return eBADDATALEN;
    }
    *value = text_value(column.type, nullptr, 0);
    value->len = 0;
    value->elts = column.elements;
    value->vt.pv = elements_.data();
    return result;
}

void FieldConverter::release(const Column &column, OAK_VALUE *value) {
    const bool is_allocated = column.kind == ColumnKind::binary ||
                              column.kind == ColumnKind::decimal || column.type == OAK_UUID ||
                              column.type == OAK_TIMESTAMPTZ;
    if (is_allocated) {
        OSL_FREE(const_cast<void *>(value->vt.pv), tag_);
        value->vt.pv = nullptr;
    }
}

} // namespace tools
