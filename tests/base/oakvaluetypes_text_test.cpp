// The types as text, in both directions: every form, every refusal, the bounds of
// the number types at both ends, base 64 with its lag, and what happens when the
// output or the memory fails.
#include "oakvaluetypes.h"

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "bcd.h"
#include "test_support.h"
#include "type_descriptors.h"

using namespace oaktest;

namespace {

template <class Element>
OAK_VALUE array(OAK_TYPE type, const std::vector<Element> &elements) {
    return array_at(type, elements.data(), elements.size());
}

// Takes characters up to a number of them, and then fails.
struct Page {
    std::string text;
    size_t room = SIZE_MAX;
};

OAK_RETCODE put(OAK_OUTPUT_CTX ctx, uint32_t ch) {
    auto *page = static_cast<Page *>(ctx);
    if (page->text.size() == page->room) {
        return eOSL_FAILURE;
    }
    page->text.push_back(static_cast<char>(ch));
    return sOKAY;
}

std::string text_of(const _SCH_TYPE_INFO &type, const OAK_VALUE &value, uint32_t elem = 0,
                    uint32_t flags = 0) {
    Page page;
    EXPECT_EQ(type.type_info->tostring(&type, &value, elem, flags, put, &page), sOKAY);
    return page.text;
}

OAK_RETCODE status_of(const _SCH_TYPE_INFO &type, const OAK_VALUE *value, uint32_t elem = 0,
                      uint32_t flags = 0) {
    Page page;
    const OAK_RETCODE rc = type.type_info->tostring(&type, value, elem, flags, put, &page);
    EXPECT_EQ(page.text, "");
    return rc;
}

constexpr OAK_TYPE kTextTypes[] = {
    OAK_BOOL,   OAK_INT8,      OAK_UINT8,       OAK_INT16,    OAK_UINT16, OAK_INT32, OAK_UINT32,
    OAK_INT64,  OAK_UINT64,    OAK_FLOAT,       OAK_DOUBLE,   OAK_BCD,    OAK_DATE,  OAK_TIME,
    OAK_TIMETZ, OAK_TIMESTAMP, OAK_TIMESTAMPTZ, OAK_ROWID,    OAK_UUID,   OAK_CHAR,  OAK_VARCHAR,
    OAK_WCHAR,  OAK_WVARCHAR,  OAK_BINARY,      OAK_VARBINARY};

// ---- Writing numbers ---------------------------------------------------------------

TEST(ToString, WritesNumbersInDecimal) {
    EXPECT_EQ(text_of(number_type(OAK_INT8), scalar(OAK_INT8, INT8_MIN)), "-128");
    EXPECT_EQ(text_of(number_type(OAK_UINT8), scalar(OAK_UINT8, UINT8_MAX)), "255");
    EXPECT_EQ(text_of(number_type(OAK_INT16), scalar(OAK_INT16, INT16_MIN)), "-32768");
    EXPECT_EQ(text_of(number_type(OAK_UINT16), scalar(OAK_UINT16, UINT16_MAX)), "65535");
    EXPECT_EQ(text_of(number_type(OAK_INT32), scalar(OAK_INT32, INT32_MIN)), "-2147483648");
    EXPECT_EQ(text_of(number_type(OAK_UINT32), scalar(OAK_UINT32, UINT32_MAX)), "4294967295");
    EXPECT_EQ(text_of(number_type(OAK_INT64), scalar(OAK_INT64, INT64_MIN)),
              "-9223372036854775808");
    EXPECT_EQ(text_of(number_type(OAK_UINT64), scalar(OAK_UINT64, UINT64_MAX)),
              "18446744073709551615");
    EXPECT_EQ(text_of(number_type(OAK_ROWID), scalar(OAK_ROWID, UINT64_MAX)),
              "18446744073709551615");
    EXPECT_EQ(text_of(number_type(OAK_INT8), scalar<int8_t>(OAK_INT8, 0)), "0");
}

TEST(ToString, WritesFloatingNumbersWithSeventeenDigits) {
    EXPECT_EQ(text_of(number_type(OAK_DOUBLE), scalar(OAK_DOUBLE, 0.1)), "0.10000000000000001");
    EXPECT_EQ(text_of(number_type(OAK_DOUBLE), scalar(OAK_DOUBLE, -2.5)), "-2.5");
    EXPECT_EQ(text_of(number_type(OAK_DOUBLE), scalar(OAK_DOUBLE, 1e300)),
              "1.0000000000000001e+300");
    EXPECT_EQ(text_of(number_type(OAK_DOUBLE), scalar(OAK_DOUBLE, -0.0)), "-0");
    // A float is widened first, and shows all the digits that it really has.
    EXPECT_EQ(text_of(number_type(OAK_FLOAT), scalar(OAK_FLOAT, 0.1f)), "0.10000000149011612");
    EXPECT_EQ(text_of(number_type(OAK_FLOAT), scalar(OAK_FLOAT, 1.5f)), "1.5");
}

TEST(ToString, WritesTrueForExactlyOne) {
    const _SCH_TYPE_INFO type = number_type(OAK_BOOL);
    EXPECT_EQ(text_of(type, scalar(OAK_BOOL, 1u)), "true");
    for (const uint32_t other : {0u, 2u, 257u, 0xFFFFFFFFu}) {
        EXPECT_EQ(text_of(type, scalar(OAK_BOOL, other)), "false") << other;
    }
}

TEST(ToString, WritesOneElementOfAnArray) {
    const std::vector<int16_t> numbers = {1, -2, 3};
    const _SCH_TYPE_INFO type = number_type(OAK_INT16, 3);
    const OAK_VALUE value = array(OAK_INT16, numbers);
    EXPECT_EQ(text_of(type, value, 0), "1");
    EXPECT_EQ(text_of(type, value, 1), "-2");
    EXPECT_EQ(text_of(type, value, 2), "3");
    EXPECT_EQ(status_of(type, &value, 3), eRANGE);
    EXPECT_EQ(status_of(type, &value, UINT32_MAX), eRANGE);
    EXPECT_EQ(text_of(number_type(OAK_BOOL, 2), array<uint32_t>(OAK_BOOL, {0, 1}), 1), "true");
    EXPECT_EQ(text_of(number_type(OAK_DOUBLE, 2), array<double>(OAK_DOUBLE, {0, 1.5}), 1), "1.5");
}

TEST(ToString, WritesNoElementThatTheValueDoesNotHave) {
    const std::vector<int16_t> numbers = {1, 2};
    const _SCH_TYPE_INFO type = number_type(OAK_INT16, 3);
    const OAK_VALUE value = array(OAK_INT16, numbers);
    EXPECT_EQ(text_of(type, value, 1), "2");
    EXPECT_EQ(status_of(type, &value, 2), eRANGE);
    OAK_VALUE empty = of_type(OAK_INT16);
    empty.elts = 3;
    EXPECT_EQ(status_of(type, &empty, 0), eRANGE);
}

TEST(ToString, PassesOverTheElementOfAScalar) {
    EXPECT_EQ(text_of(number_type(OAK_INT16), scalar<int16_t>(OAK_INT16, 7), 9), "7");
}

// ---- Writing the other types ----------------------------------------------------------

TEST(ToString, WritesDecimalsInFreeScaleWithAnExponent) {
    const std::pair<const char *, const char *> cases[] = {
        {"0.05", "5e-002"}, {"-12.5", "-1.25e+001"}, {"0", "0e+000"}, {"7", "7e+000"}};
    for (const auto &[source, expected] : cases) {
        OAK_BCD_T number;
        ASSERT_EQ(oak_bcdFromString(source, &number), sOKAY);
        EXPECT_EQ(text_of(decimal_type(10, 2), pointed(OAK_BCD, &number)), expected);
    }
}

TEST(ToString, WritesDatesAndTimes) {
    EXPECT_EQ(text_of(descriptor(OAK_DATE), scalar(OAK_DATE, 1u)), "0001-01-01");
    EXPECT_EQ(text_of(descriptor(OAK_DATE), scalar(OAK_DATE, 3652059u)), "9999-12-31");
    EXPECT_EQ(text_of(descriptor(OAK_TIME), scalar(OAK_TIME, 863999999u)), "23:59:59.9999");
    EXPECT_EQ(text_of(descriptor(OAK_TIMETZ), scalar(OAK_TIMETZ, OAK_PACKED_TIMETZ_T{0, -90})),
              "22:30:00.0000 -01:30");
    EXPECT_EQ(text_of(descriptor(OAK_TIMESTAMP),
                      scalar(OAK_TIMESTAMP, OAK_PACKED_TIMESTAMP_T{1, 36000001})),
              "0001-01-01 01:00:00.0001");
    const OAK_PACKED_TIMESTAMPTZ_T moment = {2, 0, -60};
    EXPECT_EQ(text_of(descriptor(OAK_TIMESTAMPTZ), pointed(OAK_TIMESTAMPTZ, &moment)),
              "0001-01-01 23:00:00.0000 -01:00");
}

TEST(ToString, HandsOnWhatTheCalendarRefuses) {
    OAK_VALUE value = scalar(OAK_DATE, 0u);
    EXPECT_EQ(status_of(descriptor(OAK_DATE), &value), eBASE_INVDATE);
    value = scalar(OAK_TIME, 864000000u);
    EXPECT_EQ(status_of(descriptor(OAK_TIME), &value), eINVLITERAL);
    value = scalar(OAK_TIMETZ, OAK_PACKED_TIMETZ_T{0, 841});
    EXPECT_EQ(status_of(descriptor(OAK_TIMETZ), &value), eBASE_INVTIMEZONE);
}

TEST(ToString, WritesUuidsInBraces) {
    alignas(4) uint8_t room[17] = {0, 0x12, 0x34, 0x56, 0x78, 0x9a, 0xbc, 0xde, 0xf0,
                                   1, 2,    3,    4,    5,    6,    7,    8};
    EXPECT_EQ(text_of(descriptor(OAK_UUID), pointed(OAK_UUID, room + 1)),
              "{12345678-9abc-def0-0102-030405060708}");
}

TEST(ToString, WritesTextAsItIs) {
    for (const OAK_TYPE code : {OAK_CHAR, OAK_VARCHAR, OAK_WCHAR, OAK_WVARCHAR}) {
        EXPECT_EQ(text_of(text_type(100, code), pointed(code, "100% {oak}", 11)), "100% {oak}");
        EXPECT_EQ(text_of(text_type(100, code), pointed(code, "", 0)), "");
    }
}

// Base 64 as this system writes it: the last character of a whole group stays
// unwritten, and a NUL ends the text.
TEST(ToString, WritesTextInBase64) {
    const std::pair<const char *, std::string> cases[] = {
        {"", std::string(1, '\0')},
        {"a", std::string("YQ==\0", 5)},
        {"ab", std::string("YWI=\0", 5)},
        {"abc", std::string("YWJ\0", 4)},
        {"abcd", std::string("YWJjZA==\0", 9)},
    };
    for (const auto &[source, expected] : cases) {
        EXPECT_EQ(text_of(text_type(100), pointed(OAK_CHAR, source), 0, B_TYPE_TEXT_BASE64),
                  expected);
    }
}

TEST(ToString, WritesBinaryByTheLengthOfTheColumn) {
    const uint8_t bytes[] = {0x00, 0x1F, 0xAB, 0xFF};
    EXPECT_EQ(text_of(binary_type(4), pointed(OAK_BINARY, bytes, 4)), "001FABFF");
    EXPECT_EQ(text_of(binary_type(4), pointed(OAK_BINARY, bytes, 0)), "001FABFF");
    EXPECT_EQ(text_of(binary_type(2), pointed(OAK_BINARY, bytes, 4)), "001F");
    // Shorter than its column: it goes on in zeros.
    EXPECT_EQ(text_of(binary_type(4), pointed(OAK_BINARY, bytes, 2)), "001F0000");
    EXPECT_EQ(text_of(binary_type(0), pointed(OAK_BINARY, nullptr, 0)), "");
    EXPECT_EQ(text_of(binary_type(2), pointed(OAK_BINARY, "ab", 2), 0, B_TYPE_TEXT_BASE64),
              std::string("YWI=\0", 5));
}

TEST(ToString, WritesVarbinaryBehindItsOwnLength) {
    const _SCH_TYPE_INFO type = varbinary_type(10);
    alignas(2) uint8_t payload[5] = {0, 0, 0x0A, 0x0B, 0x0C};
    const uint16_t length = 2;
    memcpy(payload, &length, sizeof length);
    EXPECT_EQ(text_of(type, pointed(OAK_VARBINARY, payload)), "0A0B");
    EXPECT_EQ(text_of(type, pointed(OAK_VARBINARY, payload), 0, B_TYPE_TEXT_BASE64),
              std::string("Cgs=\0", 5));
    const uint16_t none = 0;
    memcpy(payload, &none, sizeof none);
    EXPECT_EQ(text_of(type, pointed(OAK_VARBINARY, payload)), "");
    EXPECT_EQ(text_of(type, pointed(OAK_VARBINARY, nullptr)), "");
}

TEST(ToString, WritesVarbinaryByTheLengthOfAValueThatHasOne) {
    const uint8_t bytes[] = {0xFF, 0xFF, 0x01};
    EXPECT_EQ(text_of(varbinary_type(10), pointed(OAK_VARBINARY, bytes, 3)), "FFFF01");
}

TEST(ToString, WritesNothingWhenTold) {
    const uint8_t bytes[37] = {};
    for (const OAK_TYPE code : kTextTypes) {
        const bool binary = code == OAK_BINARY || code == OAK_VARBINARY;
        _SCH_TYPE_INFO type = descriptor(code);
        OAK_VALUE value = pointed(code, bytes, 1);
        Page page;
        if (binary) {
            type.x.b.len = 1;
        }
        EXPECT_EQ(type.type_info->tostring(&type, &value, 99, B_TYPE_TEXT_DISCARD, put, &page),
                  sOKAY)
            << code;
        EXPECT_EQ(page.text, binary ? "00" : "") << code;
        if (!binary) {
            EXPECT_EQ(type.type_info->tostring(&type, &value, 0, 0xFF, nullptr, nullptr), sOKAY);
        }
    }
}

TEST(ToString, RefusesNullPointers) {
    const uint8_t bytes[37] = {1};
    for (const OAK_TYPE code : kTextTypes) {
        _SCH_TYPE_INFO type = descriptor(code);
        type.x.b.len = 1;
        EXPECT_EQ(status_of(type, nullptr), eINVNULLARG) << code;
        const OAK_VALUE value = pointed(code, bytes, 1);
        EXPECT_EQ(type.type_info->tostring(&type, &value, 0, 0, nullptr, nullptr), eINVNULLARG)
            << code;
    }
    for (const OAK_TYPE code : {OAK_CHAR, OAK_BINARY, OAK_VARBINARY}) {
        const _SCH_TYPE_INFO type = text_type(4, code);
        const OAK_VALUE value = pointed(code, bytes, 1);
        EXPECT_EQ(type.type_info->tostring(&type, &value, 0, B_TYPE_TEXT_BASE64, nullptr, nullptr),
                  eINVNULLARG);
    }
    for (const OAK_TYPE code : {OAK_BCD, OAK_TIMESTAMPTZ, OAK_UUID, OAK_CHAR}) {
        const OAK_VALUE value = of_type(code);
        EXPECT_EQ(status_of(descriptor(code), &value), eINVNULLARG) << code;
    }
    const OAK_VALUE binary = pointed(OAK_BINARY, nullptr, 2);
    EXPECT_EQ(status_of(binary_type(2), &binary), eINVNULLARG);
    const OAK_VALUE varbinary = pointed(OAK_VARBINARY, nullptr, 2);
    EXPECT_EQ(status_of(varbinary_type(2), &varbinary), eINVNULLARG);
}

TEST(ToString, EndsAtTheFirstFailingCharacter) {
    OAK_BCD_T number;
    ASSERT_EQ(oak_bcdFromString("-12.5", &number), sOKAY);
    const OAK_PACKED_TIMESTAMPTZ_T moment = {2, 0, -60};
    const uint8_t bytes[16] = {1, 2, 3};
    struct {
        _SCH_TYPE_INFO type;
        OAK_VALUE value;
        uint32_t flags;
    } const cases[] = {
        {number_type(OAK_BOOL), scalar(OAK_BOOL, 1u), 0},
        {number_type(OAK_INT32), scalar(OAK_INT32, -12), 0},
        {number_type(OAK_UINT64), scalar(OAK_UINT64, uint64_t{12}), 0},
        {number_type(OAK_DOUBLE), scalar(OAK_DOUBLE, 1.5), 0},
        {decimal_type(4, 1), pointed(OAK_BCD, &number), 0},
        {descriptor(OAK_DATE), scalar(OAK_DATE, 1u), 0},
        {descriptor(OAK_TIMESTAMPTZ), pointed(OAK_TIMESTAMPTZ, &moment), 0},
        {descriptor(OAK_UUID), pointed(OAK_UUID, bytes), 0},
        {text_type(10), pointed(OAK_CHAR, "oak"), 0},
        {text_type(10), pointed(OAK_CHAR, "oak"), B_TYPE_TEXT_BASE64},
        {binary_type(3), pointed(OAK_BINARY, bytes, 3), 0},
        {binary_type(2), pointed(OAK_BINARY, bytes, 2), B_TYPE_TEXT_BASE64},
        {varbinary_type(3), pointed(OAK_VARBINARY, bytes, 3), 0},
    };
    for (const auto &row : cases) {
        const std::string whole = text_of(row.type, row.value, 0, row.flags);
        for (size_t room = 0; room < whole.size(); ++room) {
            Page page;
            page.room = room;
            EXPECT_EQ(row.type.type_info->tostring(&row.type, &row.value, 0, row.flags, put, &page),
                      eOSL_FAILURE);
            EXPECT_EQ(page.text, whole.substr(0, room));
        }
    }
}

// ---- Reading: the frame -----------------------------------------------------------------

// Reads a text into a value that holds something else, under a tag of the test.
struct Reading {
    explicit Reading(const _SCH_TYPE_INFO &column) : type(column) {
        memset(&value, 0x5A, sizeof value);
        value.status = vsNOVAL;
    }

    OAK_RETCODE read(const char *text, uint32_t elem = 0, uint32_t flags = 0) {
        return type.type_info->fromstring(&type, &value, elem, flags, tag, text);
    }

    // What a payload behind a pointer took.
    void release() {
        OSL_FREE(const_cast<void *>(value.vt.pv), tag);
        value.vt.pv = nullptr;
    }

    _SCH_TYPE_INFO type;
    OAK_VALUE value;
    Tag tag;
};

template <class Native>
Native read_scalar(OAK_TYPE code, const char *text) {
    Reading reading(number_type(code));
    EXPECT_EQ(reading.read(text), sOKAY) << text;
    EXPECT_EQ(reading.value.status, vsOKAY);
    EXPECT_EQ(reading.value.type, code);
    EXPECT_EQ(reading.value.elts, 0u);
    EXPECT_EQ(reading.value.len, 0u);
    Native number;
    memcpy(&number, &reading.value.vt, sizeof number);
    return number;
}

// The text is refused, the value stays without one, nothing stays allocated.
void expect_refused(const _SCH_TYPE_INFO &type, const char *text, OAK_RETCODE expected,
                    uint32_t flags = 0) {
    SCOPED_TRACE(text);
    Reading reading(type);
    const bool keeps_payload = type.type_info->free_fcn != nullptr;
    const uint64_t before = reading.value.vt.u64v;
    EXPECT_EQ(reading.read(text, 0, flags), expected);
    EXPECT_EQ(reading.value.status, vsNOVAL);
    if (keeps_payload) {
        EXPECT_EQ(reading.value.vt.u64v, before);
    }
}

TEST(FromString, RefusesNullPointers) {
    for (const OAK_TYPE code : kTextTypes) {
        const _SCH_TYPE_INFO type = descriptor(code);
        OAK_VALUE value = of_type(code);
        Tag tag;
        EXPECT_EQ(type.type_info->fromstring(&type, nullptr, 0, 0, tag, "1"), eINVNULLARG) << code;
        EXPECT_EQ(type.type_info->fromstring(&type, &value, 0, 0, tag, nullptr), eINVNULLARG)
            << code;
    }
}

// ---- Reading numbers ----------------------------------------------------------------------

TEST(FromString, ReadsIntegersToTheEndsOfTheirTypes) {
    EXPECT_EQ(read_scalar<int8_t>(OAK_INT8, "-128"), INT8_MIN);
    EXPECT_EQ(read_scalar<int8_t>(OAK_INT8, "127"), INT8_MAX);
    EXPECT_EQ(read_scalar<uint8_t>(OAK_UINT8, "255"), UINT8_MAX);
    EXPECT_EQ(read_scalar<uint8_t>(OAK_UINT8, "0"), 0);
    EXPECT_EQ(read_scalar<int16_t>(OAK_INT16, "-32768"), INT16_MIN);
    EXPECT_EQ(read_scalar<int16_t>(OAK_INT16, "32767"), INT16_MAX);
    EXPECT_EQ(read_scalar<uint16_t>(OAK_UINT16, "65535"), UINT16_MAX);
    EXPECT_EQ(read_scalar<int32_t>(OAK_INT32, "-2147483648"), INT32_MIN);
    EXPECT_EQ(read_scalar<int32_t>(OAK_INT32, "2147483647"), INT32_MAX);
    EXPECT_EQ(read_scalar<uint32_t>(OAK_UINT32, "4294967295"), UINT32_MAX);
    EXPECT_EQ(read_scalar<int64_t>(OAK_INT64, "-9223372036854775808"), INT64_MIN);
    EXPECT_EQ(read_scalar<int64_t>(OAK_INT64, "9223372036854775807"), INT64_MAX);
    EXPECT_EQ(read_scalar<uint64_t>(OAK_UINT64, "18446744073709551615"), UINT64_MAX);
    EXPECT_EQ(read_scalar<uint64_t>(OAK_ROWID, "18446744073709551615"), UINT64_MAX);
    EXPECT_EQ(read_scalar<int32_t>(OAK_INT32, "  +7"), 7);
}

TEST(FromString, RefusesIntegersOutOfRange) {
    const std::pair<OAK_TYPE, std::vector<const char *>> cases[] = {
        {OAK_INT8, {"-129", "128", "9223372036854775808"}},
        {OAK_UINT8, {"-1", "256"}},
        {OAK_INT16, {"-32769", "32768"}},
        {OAK_UINT16, {"-1", "65536"}},
        {OAK_INT32, {"-2147483649", "2147483648"}},
        {OAK_UINT32, {"-1", "4294967296"}},
        {OAK_INT64, {"-9223372036854775809", "9223372036854775808"}},
        {OAK_UINT64, {"-1", "18446744073709551616"}},
        {OAK_ROWID, {"-1", "18446744073709551616"}},
    };
    for (const auto &[code, texts] : cases) {
        for (const char *text : texts) {
            expect_refused(number_type(code), text, eRANGE);
        }
        for (const char *text : {"", "x", "1x", "1.5", "--1"}) {
            expect_refused(number_type(code), text, eRANGE);
        }
    }
}

TEST(FromString, ReadsBooleansByTwoWords) {
    for (const char *text : {"true", "TRUE", "True", "tRuE"}) {
        EXPECT_EQ(read_scalar<uint32_t>(OAK_BOOL, text), 1u);
    }
    for (const char *text : {"false", "FALSE", "False"}) {
        EXPECT_EQ(read_scalar<uint32_t>(OAK_BOOL, text), 0u);
    }
    for (const char *text : {"", "yes", "1", "0", "t", "true ", " true", "truefalse"}) {
        expect_refused(number_type(OAK_BOOL), text, eRANGE);
    }
}

TEST(FromString, TakesAnyTextForADouble) {
    EXPECT_EQ(read_scalar<double>(OAK_DOUBLE, "2.5"), 2.5);
    EXPECT_EQ(read_scalar<double>(OAK_DOUBLE, "-1e300"), -1e300);
    EXPECT_EQ(read_scalar<double>(OAK_DOUBLE, "1e-50"), 1e-50);
    EXPECT_EQ(read_scalar<double>(OAK_DOUBLE, "0"), 0.0);
    EXPECT_EQ(read_scalar<double>(OAK_DOUBLE, "oak"), 0.0);
    EXPECT_EQ(read_scalar<double>(OAK_DOUBLE, ""), 0.0);
    EXPECT_EQ(read_scalar<double>(OAK_DOUBLE, "1.5 birches"), 1.5);
    EXPECT_EQ(read_scalar<double>(OAK_DOUBLE, "1,5"), 1.0); // in every locale
    EXPECT_EQ(read_scalar<double>(OAK_DOUBLE, "1e999"), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(read_scalar<double>(OAK_DOUBLE, "nan")));
}

TEST(FromString, ReadsFloatsThatANormalNumberHolds) {
    EXPECT_EQ(read_scalar<float>(OAK_FLOAT, "1.5"), 1.5f);
    EXPECT_EQ(read_scalar<float>(OAK_FLOAT, "-0.25"), -0.25f);
    EXPECT_EQ(read_scalar<float>(OAK_FLOAT, "1.1754943508222875e-38"), FLT_MIN);
    EXPECT_EQ(read_scalar<float>(OAK_FLOAT, "3.4028234663852886e38"), FLT_MAX);
    EXPECT_EQ(read_scalar<float>(OAK_FLOAT, "-3.4028234663852886e38"), -FLT_MAX);
    EXPECT_EQ(read_scalar<float>(OAK_FLOAT, "0.1"), 0.1f);
    EXPECT_TRUE(std::isnan(read_scalar<float>(OAK_FLOAT, "nan")));
}

TEST(FromString, RefusesZeroForAFloat) {
    for (const char *text : {"0", "0.0", "-0", "oak", "", "1e-50", "1.1754943508222873e-38",
                             "-1e-38", "3.4028234663852888e38", "1e39", "-1e39", "inf", "-inf"}) {
        expect_refused(number_type(OAK_FLOAT), text, eRANGE);
    }
}

template <class Element>
void expect_element_read(OAK_TYPE code, const char *text, Element expected) {
    SCOPED_TRACE(code);
    Reading reading(number_type(code, 3));
    ASSERT_EQ(reading.read(text, 1), sOKAY);
    EXPECT_EQ(reading.value.status, vsOKAY);
    EXPECT_EQ(reading.value.type, code);
    EXPECT_EQ(reading.value.elts, 3u);
    EXPECT_EQ(reading.value.len, 0u);
    Element elements[3];
    memcpy(elements, reading.value.vt.pv, sizeof elements);
    EXPECT_EQ(elements[0], Element{0});
    EXPECT_EQ(elements[1], expected);
    EXPECT_EQ(elements[2], Element{0});
    reading.release();
}

TEST(FromString, ReadsOneElementIntoANewZeroedArray) {
    expect_element_read<uint32_t>(OAK_BOOL, "true", 1); // elements of four bytes
    expect_element_read<int8_t>(OAK_INT8, "-1", -1);
    expect_element_read<uint8_t>(OAK_UINT8, "200", 200);
    expect_element_read<int16_t>(OAK_INT16, "-300", -300);
    expect_element_read<uint16_t>(OAK_UINT16, "60000", 60000);
    expect_element_read<int32_t>(OAK_INT32, "-70000", -70000);
    expect_element_read<uint32_t>(OAK_UINT32, "4000000000", 4000000000u);
    expect_element_read<int64_t>(OAK_INT64, "-5000000000", INT64_C(-5000000000));
    expect_element_read<uint64_t>(OAK_UINT64, "18446744073709551615", UINT64_MAX);
    expect_element_read<float>(OAK_FLOAT, "1.5", 1.5f);
    expect_element_read<double>(OAK_DOUBLE, "1.5", 1.5);
}

TEST(FromString, RefusesElementsBeyondTheColumn) {
    Reading reading(number_type(OAK_INT32, 3));
    const uint64_t before = reading.value.vt.u64v;
    EXPECT_EQ(reading.read("1", 3), eRANGE);
    EXPECT_EQ(reading.read("1", UINT32_MAX), eRANGE);
    EXPECT_EQ(reading.read("x", 1), eRANGE);
    EXPECT_EQ(reading.value.vt.u64v, before);
    EXPECT_EQ(reading.value.status, vsNOVAL);
    EXPECT_EQ(reading.value.elts, 3u);
}

TEST(FromString, PassesOverTheElementOfAScalar) {
    Reading reading(number_type(OAK_INT32));
    EXPECT_EQ(reading.read("5", 9), sOKAY);
    EXPECT_EQ(reading.value.vt.i32v, 5);
}

// ---- Reading the other types ------------------------------------------------------------------

TEST(FromString, ReadsDecimals) {
    Reading reading(decimal_type(10, 2));
    ASSERT_EQ(reading.read("-12.50"), sOKAY);
    EXPECT_EQ(reading.value.status, vsOKAY);
    EXPECT_EQ(reading.value.type, OAK_BCD);
    OAK_BCD_T expected;
    ASSERT_EQ(oak_bcdFromString("-12.5", &expected), sOKAY);
    EXPECT_EQ(oak_bcdCompare(reading.value.vt.bcd, &expected), OAK_EQ);
    reading.release();
    expect_refused(decimal_type(10, 2), "12abc", eRANGE);
    expect_refused(decimal_type(10, 2), "", eRANGE);
}

TEST(FromString, KeepsADecimalThatLostDigitsAndSaysSo) {
    Reading reading(decimal_type(10, 2));
    EXPECT_EQ(reading.read("0.111111111111111111111111111111111"), sPRECISIONLOSS);
    EXPECT_EQ(reading.value.status, vsOKAY);
    ASSERT_NE(reading.value.vt.bcd, nullptr);
    EXPECT_EQ(reading.value.vt.bcd->prec, 32);
    reading.release();
}

TEST(FromString, PutsADecimalElementAtItsPlace) {
    _SCH_TYPE_INFO type = decimal_type(10, 2);
    type.elems = 3;
    Reading reading(type);
    ASSERT_EQ(reading.read("7", 2), sOKAY);
    EXPECT_EQ(reading.value.elts, 3u);
    EXPECT_EQ(reading.value.vt.bcd[0].prec, 0);
    EXPECT_EQ(reading.value.vt.bcd[2].data[1], 7);
    reading.release();
    EXPECT_EQ(reading.read("7", 3), eRANGE);
}

TEST(FromString, ReadsDatesAndTimes) {
    Reading date(descriptor(OAK_DATE));
    ASSERT_EQ(date.read("0001-01-02"), sOKAY);
    EXPECT_EQ(date.value.vt.dtv, 2u);
    EXPECT_EQ(date.value.status, vsOKAY);
    Reading time(descriptor(OAK_TIME));
    ASSERT_EQ(time.read("01:00:00.1"), sOKAY); // one ten-thousandth, not a tenth
    EXPECT_EQ(time.value.vt.tmv, 36000001u);
    Reading timetz(descriptor(OAK_TIMETZ));
    ASSERT_EQ(timetz.read("00:30:00 +01:00"), sOKAY);
    EXPECT_EQ(timetz.value.vt.tmzv.time, 846000000u);
    EXPECT_EQ(timetz.value.vt.tmzv.tz, 60);
    Reading timestamp(descriptor(OAK_TIMESTAMP));
    ASSERT_EQ(timestamp.read("0001-01-03 00:00:01"), sOKAY);
    EXPECT_EQ(timestamp.value.vt.tsv.date, 3u);
    EXPECT_EQ(timestamp.value.vt.tsv.time, 10000u);
    Reading timestamptz(descriptor(OAK_TIMESTAMPTZ));
    ASSERT_EQ(timestamptz.read("0001-01-03 00:30:00 +01:00"), sOKAY);
    EXPECT_EQ(timestamptz.value.vt.tszv->date, 2u);
    EXPECT_EQ(timestamptz.value.vt.tszv->time, 846000000u);
    EXPECT_EQ(timestamptz.value.vt.tszv->tz, 60);
    EXPECT_EQ(hex(reinterpret_cast<const uint8_t *>(timestamptz.value.vt.pv) + 10, 2), "0000");
    timestamptz.release();
}

TEST(FromString, HandsOnWhatTheCalendarRefusesInText) {
    expect_refused(descriptor(OAK_DATE), "2020-13-01", eBASE_INVDATE);
    expect_refused(descriptor(OAK_TIME), "12:30", eINVLITERAL);
    expect_refused(descriptor(OAK_TIMETZ), "12:30:00", eRANGE);
    expect_refused(descriptor(OAK_TIMESTAMP), "0001-01-01 25:00:00", eINVLITERAL);
    expect_refused(descriptor(OAK_TIMESTAMPTZ), "0001-01-01", eINVLITERAL);
    expect_refused(descriptor(OAK_TIMESTAMPTZ), "0001-01-01 00:00:00 +15:00", eBASE_INVTIMEZONE);
}

TEST(FromString, ReadsUuids) {
    Reading reading(descriptor(OAK_UUID));
    ASSERT_EQ(reading.read("{12345678-9ABC-def0-0102-030405060708}"), sOKAY);
    EXPECT_EQ(hex(reading.value.vt.pv, 16), "123456789abcdef00102030405060708");
    EXPECT_EQ(reading.value.len, 0u);
    reading.release();
    expect_refused(descriptor(OAK_UUID), "12345678", eOSL_INVUUID);
    expect_refused(descriptor(OAK_UUID), "", eOSL_INVUUID);
}

TEST(FromString, CopiesText) {
    for (const OAK_TYPE code : {OAK_CHAR, OAK_VARCHAR, OAK_WCHAR, OAK_WVARCHAR}) {
        const char *text = "oak and birch";
        Reading reading(text_type(4, code)); // longer than its column: not this function's affair
        ASSERT_EQ(reading.read(text), sOKAY);
        EXPECT_NE(reading.value.vt.cv, text);
        EXPECT_STREQ(reading.value.vt.cv, text);
        EXPECT_EQ(reading.value.len, 14u);
        EXPECT_EQ(reading.value.type, code);
        reading.release();
    }
    Reading empty(text_type(4));
    ASSERT_EQ(empty.read(""), sOKAY);
    EXPECT_STREQ(empty.value.vt.cv, "");
    EXPECT_EQ(empty.value.len, 1u);
    empty.release();
}

TEST(FromString, ReadsTextFromBase64) {
    const std::pair<const char *, const char *> cases[] = {
        {"", ""},       {"YQ==", "a"}, {"YWI=", "ab"}, {"YWJjZA==", "abcd"},
        {"YWJj", "ab"}, // a whole group at the end keeps its last byte
    };
    for (const auto &[source, expected] : cases) {
        Reading reading(text_type(20));
        ASSERT_EQ(reading.read(source, 0, B_TYPE_TEXT_BASE64), sOKAY) << source;
        EXPECT_STREQ(reading.value.vt.cv, expected);
        EXPECT_EQ(reading.value.len, strlen(expected) + 1);
        reading.release();
    }
    for (const char *text : {"Y", "YW", "YWJ", "=", "Y===", "YQ=x", "Y*Q=", "\xFF\xFF\xFF\xFF"}) {
        expect_refused(text_type(20), text, eRANGE, B_TYPE_TEXT_BASE64);
    }
}

TEST(FromString, ReadsTheFormOfABinaryAndYieldsZeros) {
    Reading reading(binary_type(1));
    ASSERT_EQ(reading.read("FF"), sOKAY);
    EXPECT_EQ(hex(reading.value.vt.pv, 1), "00");
    EXPECT_EQ(reading.value.len, 1u);
    reading.release();
    ASSERT_EQ(reading.read("0123456789abcdefABCDEF"), sOKAY);
    EXPECT_EQ(reading.value.len, 11u);
    EXPECT_EQ(hex(reading.value.vt.pv, 11), std::string(22, '0'));
    reading.release();
    for (const char *text : {"F", "FFF", "FG", "0x", " FF", "FF ", "F\xC3"}) {
        expect_refused(binary_type(4), text, eRANGE);
        expect_refused(varbinary_type(4), text, eRANGE);
    }
}

TEST(FromString, ReadsABinaryFromBase64) {
    Reading reading(binary_type(2));
    ASSERT_EQ(reading.read("YWI=", 0, B_TYPE_TEXT_BASE64), sOKAY);
    EXPECT_EQ(reading.value.len, 2u);
    EXPECT_EQ(hex(reading.value.vt.pv, 2), "6162");
    reading.release();
    expect_refused(binary_type(2), "YWI", eRANGE, B_TYPE_TEXT_BASE64);
}

TEST(FromString, ContinuesAShortBinaryInZerosUpToItsColumn) {
    Reading reading(binary_type(40));
    ASSERT_EQ(reading.read("YWI=", 0, B_TYPE_TEXT_BASE64), sOKAY);
    EXPECT_EQ(reading.value.len, 2u);
    EXPECT_EQ(hex(reading.value.vt.pv, 40), "6162" + std::string(76, '0'));
    EXPECT_EQ(text_of(reading.type, reading.value), "6162" + std::string(76, '0'));
    reading.release();
    ASSERT_EQ(reading.read(""), sOKAY);
    EXPECT_EQ(hex(reading.value.vt.pv, 40), std::string(80, '0'));
    reading.release();
}

TEST(FromString, PutsTheLengthOfAVarbinaryInFront) {
    Reading reading(varbinary_type(10));
    ASSERT_EQ(reading.read("YWI=", 0, B_TYPE_TEXT_BASE64), sOKAY);
    uint16_t length = 0;
    memcpy(&length, reading.value.vt.pv, sizeof length);
    EXPECT_EQ(length, 2);
    EXPECT_EQ(hex(static_cast<const uint8_t *>(reading.value.vt.pv) + 2, 2), "6162");
    EXPECT_EQ(reading.value.len, 0u);
    EXPECT_EQ(text_of(reading.type, reading.value), "6162");
    // It is the form of a record buffer.
    OAK_VALUE value = of_type(OAK_VARBINARY);
    ASSERT_EQ(
        b_type_schema_assign_from_buff_varbinary(&reading.type, &value, reading.value.vt.pv, 0),
        sOKAY);
    EXPECT_EQ(value.len, 2u);
    EXPECT_EQ(hex(value.vt.pv, 2), "6162");
    reading.release();
    ASSERT_EQ(reading.read("0102"), sOKAY);
    EXPECT_EQ(text_of(reading.type, reading.value), "0000");
    reading.release();
    ASSERT_EQ(reading.read(""), sOKAY);
    EXPECT_EQ(text_of(reading.type, reading.value), "");
    reading.release();
}

TEST(FromString, RefusesAVarbinaryOfMoreThan65535Bytes) {
    Reading reading(varbinary_type(10));
    const std::string longest(2 * 65535, 'a');
    ASSERT_EQ(reading.read(longest.c_str()), sOKAY);
    uint16_t length = 0;
    memcpy(&length, reading.value.vt.pv, sizeof length);
    EXPECT_EQ(length, 65535);
    reading.release();
    expect_refused(varbinary_type(10), (longest + "aa").c_str(), eRANGE);
}

// ---- Both ways ----------------------------------------------------------------------------------

TEST(TypeText, ReadsWhatItWrites) {
    struct {
        _SCH_TYPE_INFO type;
        const char *text;
        uint32_t flags;
    } const cases[] = {
        {number_type(OAK_BOOL), "true", 0},
        {number_type(OAK_INT8), "-128", 0},
        {number_type(OAK_UINT8), "255", 0},
        {number_type(OAK_INT16), "-32768", 0},
        {number_type(OAK_UINT16), "65535", 0},
        {number_type(OAK_INT32), "-2147483648", 0},
        {number_type(OAK_UINT32), "4294967295", 0},
        {number_type(OAK_INT64), "-9223372036854775808", 0},
        {number_type(OAK_UINT64), "18446744073709551615", 0},
        {number_type(OAK_ROWID), "18446744073709551615", 0},
        {number_type(OAK_FLOAT), "0.10000000149011612", 0},
        {number_type(OAK_DOUBLE), "1.0000000000000001e+300", 0},
        {decimal_type(10, 2), "-1.25e+001", 0},
        {descriptor(OAK_DATE), "2024-02-29", 0},
        {descriptor(OAK_TIME), "23:59:59.9999", 0},
        {descriptor(OAK_TIMETZ), "23:59:59.9999 -01:30", 0},
        {descriptor(OAK_TIMESTAMP), "2024-02-29 12:00:00.0000", 0},
        {descriptor(OAK_TIMESTAMPTZ), "2024-02-29 12:00:00.0000 +14:00", 0},
        {descriptor(OAK_UUID), "{12345678-9abc-def0-0102-030405060708}", 0},
        {text_type(20), "oak, birch", 0},
        {text_type(20), "YWI=", B_TYPE_TEXT_BASE64},
        {binary_type(2), "YWI=", B_TYPE_TEXT_BASE64},
        {varbinary_type(20), "YWI=", B_TYPE_TEXT_BASE64},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.text);
        Reading reading(row.type);
        ASSERT_EQ(reading.read(row.text, 0, row.flags), sOKAY);
        const std::string written = text_of(row.type, reading.value, 0, row.flags);
        EXPECT_STREQ(written.c_str(), row.text); // base 64 ends in a NUL of its own
        const OAK_TYPE code = row.type.type;
        if (code == OAK_BCD || code == OAK_TIMESTAMPTZ || code == OAK_UUID || code == OAK_CHAR ||
            code == OAK_BINARY || code == OAK_VARBINARY) {
            reading.release();
        }
    }
}

// ---- Exhausted memory
// -----------------------------------------------------------------------------

TEST(FromString, LeavesNothingBehindWhenMemoryEnds) {
    struct {
        _SCH_TYPE_INFO type;
        const char *text;
        uint32_t flags;
    } const cases[] = {
        {number_type(OAK_INT32, 4), "7", 0},
        {decimal_type(10, 2), "1.5", 0},
        {descriptor(OAK_TIMESTAMPTZ), "2024-02-29 12:00:00 +00:00", 0},
        {descriptor(OAK_UUID), "12345678-9abc-def0-0102-030405060708", 0},
        {text_type(20), "oak", 0},
        {text_type(20), "YWJjZA==", B_TYPE_TEXT_BASE64},
        {binary_type(2), "0102030405060708090a0b0c0d0e0f101112", 0},
        {binary_type(100), "YWI=", B_TYPE_TEXT_BASE64},
        {varbinary_type(20), "YWI=", B_TYPE_TEXT_BASE64},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.text);
        Tag tag;
        const uint64_t injected = sweep_faults(Resource::memory, {eNOMEMORY}, [&] {
            OAK_VALUE value = of_type(OAK_NOVAL);
            value.status = vsNOVAL;
            const OAK_RETCODE rc =
                row.type.type_info->fromstring(&row.type, &value, 0, row.flags, tag, row.text);
            EXPECT_EQ(value.status, rc == sOKAY ? vsOKAY : vsNOVAL);
            EXPECT_EQ(value.vt.pv != nullptr, rc == sOKAY);
            OSL_FREE(const_cast<void *>(value.vt.pv), tag);
            return rc;
        });
        EXPECT_EQ(injected != 0, faults_are_injected());
    }
}

} // namespace
