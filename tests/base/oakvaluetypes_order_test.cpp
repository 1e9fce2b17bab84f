// How the types compare and hash. Hashes are checked against the bytes that must
// be fed, laid out by hand in big-endian order, through the byte hash itself.
#include "oakvaluetypes.h"

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "bcd.h"
#include "hashfcn.h"
#include "test_support.h"
#include "type_descriptors.h"

using namespace oaktest;

namespace {

template <class Element>
OAK_VALUE array(OAK_TYPE type, const std::vector<Element> &elements) {
    return array_at(type, elements.data(), elements.size());
}

OAK_COMPARE reversed(OAK_COMPARE order) {
    return static_cast<OAK_COMPARE>(-order);
}

// Compares both ways and checks that the answers mirror each other.
OAK_COMPARE compare(const _SCH_TYPE_INFO &type, const OAK_VALUE &first, const OAK_VALUE &second,
                    uint32_t limit = 0) {
    const B_TYPE_CMP_FCN cmp = type.type_info->cmp;
    const OAK_COMPARE order = cmp(&type, limit, &first, &second);
    EXPECT_EQ(cmp(&type, limit, &second, &first), reversed(order));
    EXPECT_EQ(cmp(&type, limit, &first, &first), OAK_EQ);
    return order;
}

// ---- The frame ----------------------------------------------------------------------

TEST(Compare, PutsAnAbsentValueFirstForEveryType) {
    const char *text = "x";
    const OAK_BCD_T zero = {};
    for (const OAK_TYPE code :
         {OAK_BOOL,      OAK_INT8,        OAK_UINT8,    OAK_INT16,  OAK_UINT16,
          OAK_INT32,     OAK_UINT32,      OAK_INT64,    OAK_UINT64, OAK_FLOAT,
          OAK_DOUBLE,    OAK_BCD,         OAK_DATE,     OAK_TIME,   OAK_TIMETZ,
          OAK_TIMESTAMP, OAK_TIMESTAMPTZ, OAK_ROWID,    OAK_UUID,   OAK_CHAR,
          OAK_VARCHAR,   OAK_WCHAR,       OAK_WVARCHAR, OAK_BINARY, OAK_VARBINARY}) {
        SCOPED_TRACE(code);
        const _SCH_TYPE_INFO type = descriptor(code);
        const OAK_VALUE value =
            pointed(code, code == OAK_BCD ? static_cast<const void *>(&zero) : text);
        const B_TYPE_CMP_FCN cmp = type.type_info->cmp;
        EXPECT_EQ(cmp(&type, 0, nullptr, nullptr), OAK_EQ);
        EXPECT_EQ(cmp(&type, 0, nullptr, &value), OAK_LT);
        EXPECT_EQ(cmp(&type, 0, &value, nullptr), OAK_GT);
    }
}

TEST(Compare, PutsAMissingPayloadFirst) {
    const uint8_t bytes[37] = {};
    for (const OAK_TYPE code : {OAK_BCD, OAK_TIMESTAMPTZ, OAK_UUID, OAK_CHAR, OAK_BINARY}) {
        SCOPED_TRACE(code);
        const _SCH_TYPE_INFO type = descriptor(code);
        EXPECT_EQ(compare(type, pointed(code, nullptr), pointed(code, bytes)), OAK_LT);
        EXPECT_EQ(compare(type, pointed(code, nullptr), pointed(code, nullptr)), OAK_EQ);
    }
}

// ---- Numbers ------------------------------------------------------------------------

template <class Native>
void expect_ascending(OAK_TYPE code, const std::vector<Native> &ascending) {
    SCOPED_TRACE(code);
    const _SCH_TYPE_INFO type = number_type(code);
    for (size_t i = 0; i < ascending.size(); ++i) {
        for (size_t j = 0; j < ascending.size(); ++j) {
            const OAK_COMPARE expected = i < j ? OAK_LT : i > j ? OAK_GT : OAK_EQ;
            EXPECT_EQ(compare(type, scalar(code, ascending[i]), scalar(code, ascending[j])),
                      expected)
                << i << " " << j;
            // The limit means nothing to numbers.
            EXPECT_EQ(compare(type, scalar(code, ascending[i]), scalar(code, ascending[j]), 1),
                      expected);
        }
    }
}

TEST(Compare, OrdersNumbersByValueWithTheSignOfTheType) {
    expect_ascending<int8_t>(OAK_INT8, {INT8_MIN, -1, 0, 1, INT8_MAX});
    expect_ascending<uint8_t>(OAK_UINT8, {0, 1, 127, 128, 255});
    expect_ascending<int16_t>(OAK_INT16, {INT16_MIN, -256, -1, 0, 1, 256, INT16_MAX});
    expect_ascending<uint16_t>(OAK_UINT16, {0, 255, 256, 32767, 32768, 65535});
    expect_ascending<int32_t>(OAK_INT32, {INT32_MIN, -1, 0, 65536, INT32_MAX});
    expect_ascending<uint32_t>(OAK_UINT32, {0, 65535, 65536, 2147483648u, UINT32_MAX});
    expect_ascending<int64_t>(OAK_INT64, {INT64_MIN, -1, 0, INT64_C(4294967296), INT64_MAX});
    expect_ascending<uint64_t>(OAK_UINT64,
                               {0, UINT64_C(4294967296), UINT64_C(1) << 63, UINT64_MAX});
    expect_ascending<uint64_t>(OAK_ROWID, {0, 1, UINT64_C(1) << 63, UINT64_MAX});
    expect_ascending<uint32_t>(OAK_BOOL, {0, 1, 2, 0x80000000u});
    expect_ascending<uint32_t>(OAK_DATE, {0, 1, 3652059, 0x80000000u});
    expect_ascending<uint32_t>(OAK_TIME, {0, 1, 863999999, 0xFFFFFFFFu});
}

TEST(Compare, OrdersFloatingNumbersWithTheNaNLast) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    expect_ascending<double>(
        OAK_DOUBLE, {-inf, -DBL_MAX, -1, -DBL_TRUE_MIN, 0, DBL_TRUE_MIN, 1, DBL_MAX, inf, nan});
    expect_ascending<float>(OAK_FLOAT, {-FLT_MAX, -1, 0, FLT_TRUE_MIN, 1, FLT_MAX,
                                        static_cast<float>(inf), static_cast<float>(nan)});
    const _SCH_TYPE_INFO type = number_type(OAK_DOUBLE);
    EXPECT_EQ(compare(type, scalar(OAK_DOUBLE, 0.0), scalar(OAK_DOUBLE, -0.0)), OAK_EQ);
    EXPECT_EQ(compare(type, scalar(OAK_DOUBLE, nan), scalar(OAK_DOUBLE, -nan)), OAK_EQ);
}

template <class Element>
void expect_arrays(OAK_TYPE code, Element small, Element large) {
    SCOPED_TRACE(code);
    const _SCH_TYPE_INFO type = number_type(code, 3);
    const std::vector<Element> base = {small, large, small};
    for (size_t i = 0; i < 3; ++i) {
        std::vector<Element> other = base;
        EXPECT_EQ(compare(type, array(code, base), array(code, other)), OAK_EQ);
        other[i] = base[i] == small ? large : small;
        const OAK_COMPARE expected = base[i] == small ? OAK_LT : OAK_GT;
        EXPECT_EQ(compare(type, array(code, base), array(code, other)), expected);
        // What differs behind the first difference does not count.
        std::vector<Element> later = other;
        for (size_t j = i + 1; j < 3; ++j) {
            later[j] = small;
        }
        EXPECT_EQ(compare(type, array(code, base), array(code, later)), expected);
    }
}

TEST(Compare, OrdersArraysByTheFirstElementThatDiffers) {
    expect_arrays<uint32_t>(OAK_BOOL, 0, 1);
    expect_arrays<int8_t>(OAK_INT8, -1, 1);
    expect_arrays<uint8_t>(OAK_UINT8, 1, 200);
    expect_arrays<int16_t>(OAK_INT16, -1, 1);
    expect_arrays<uint16_t>(OAK_UINT16, 255, 256);
    expect_arrays<int32_t>(OAK_INT32, -1, 1);
    expect_arrays<uint32_t>(OAK_UINT32, 255, 256);
    expect_arrays<int64_t>(OAK_INT64, -1, 1);
    expect_arrays<uint64_t>(OAK_UINT64, 255, 256);
    expect_arrays<float>(OAK_FLOAT, -0.5f, 0.25f);
    expect_arrays<double>(OAK_DOUBLE, -0.5, 0.25);
}

TEST(Compare, NeverReadsMoreElementsThanAValueHas) {
    const _SCH_TYPE_INFO type = number_type(OAK_INT32, 5);
    const std::vector<int32_t> three = {1, 2, 3};
    const std::vector<int32_t> two = {1, 2};
    EXPECT_EQ(compare(type, array(OAK_INT32, two), array(OAK_INT32, three)), OAK_LT);
    EXPECT_EQ(compare(type, array(OAK_INT32, two), array(OAK_INT32, two)), OAK_EQ);
    // A scalar counts as its one element, an array without a block has none.
    EXPECT_EQ(compare(type, scalar(OAK_INT32, 1), array(OAK_INT32, two)), OAK_LT);
    EXPECT_EQ(compare(type, scalar(OAK_INT32, 2), array(OAK_INT32, two)), OAK_GT);
    OAK_VALUE empty = of_type(OAK_INT32);
    empty.elts = 5;
    EXPECT_EQ(compare(type, empty, array(OAK_INT32, two)), OAK_LT);
}

TEST(Compare, LooksAtTheElementsOfTheColumnAlone) {
    const std::vector<int32_t> first = {1, 2, 3};
    const std::vector<int32_t> second = {1, 2, 4};
    EXPECT_EQ(compare(number_type(OAK_INT32, 2), array(OAK_INT32, first), array(OAK_INT32, second)),
              OAK_EQ);
    const std::vector<int32_t> third = {1, 5};
    EXPECT_EQ(compare(number_type(OAK_INT32), array(OAK_INT32, first), array(OAK_INT32, third)),
              OAK_EQ);
}

TEST(Compare, ReadsElementsAtAnyAddress) {
    alignas(8) uint8_t room[2][1 + 2 * sizeof(double)];
    const double first[] = {1.5, -2};
    const double second[] = {1.5, -1};
    memcpy(room[0] + 1, first, sizeof first);
    memcpy(room[1] + 1, second, sizeof second);
    OAK_VALUE left = of_type(OAK_DOUBLE);
    OAK_VALUE right = of_type(OAK_DOUBLE);
    left.elts = right.elts = 2;
    left.vt.pv = room[0] + 1;
    right.vt.pv = room[1] + 1;
    EXPECT_EQ(compare(number_type(OAK_DOUBLE, 2), left, right), OAK_LT);
}

// ---- Dates and times ------------------------------------------------------------------

TEST(Compare, PassesOverTheZoneOfATime) {
    const _SCH_TYPE_INFO type = descriptor(OAK_TIMETZ);
    const auto time = [](uint32_t utc, int16_t tz) {
        return scalar(OAK_TIMETZ, OAK_PACKED_TIMETZ_T{utc, tz});
    };
    EXPECT_EQ(compare(type, time(5, 60), time(5, -60)), OAK_EQ);
    EXPECT_EQ(compare(type, time(5, 60), time(6, -60)), OAK_LT);
    EXPECT_EQ(compare(type, time(0x80000000u, 0), time(1, 0)), OAK_GT);
}

TEST(Compare, OrdersTimestampsByDateThenTime) {
    const _SCH_TYPE_INFO type = descriptor(OAK_TIMESTAMP);
    const auto moment = [](uint32_t date, uint32_t time) {
        return scalar(OAK_TIMESTAMP, OAK_PACKED_TIMESTAMP_T{date, time});
    };
    EXPECT_EQ(compare(type, moment(1, 9), moment(2, 0)), OAK_LT);
    EXPECT_EQ(compare(type, moment(2, 1), moment(2, 0x80000000u)), OAK_LT);
    EXPECT_EQ(compare(type, moment(2, 1), moment(2, 1)), OAK_EQ);
}

TEST(Compare, OrdersZonedTimestampsWithoutTheZone) {
    const _SCH_TYPE_INFO type = descriptor(OAK_TIMESTAMPTZ);
    const OAK_PACKED_TIMESTAMPTZ_T moments[] = {{1, 9, 0}, {2, 0, 60}, {2, 0, -60}, {2, 1, 0}};
    const auto moment = [&](size_t index) { return pointed(OAK_TIMESTAMPTZ, &moments[index]); };
    EXPECT_EQ(compare(type, moment(0), moment(1)), OAK_LT);
    EXPECT_EQ(compare(type, moment(1), moment(2)), OAK_EQ);
    EXPECT_EQ(compare(type, moment(2), moment(3)), OAK_LT);
    alignas(4) uint8_t room[13];
    memcpy(room + 1, &moments[1], 12);
    EXPECT_EQ(compare(type, pointed(OAK_TIMESTAMPTZ, room + 1), moment(2)), OAK_EQ);
}

TEST(Compare, HasAFixedAnswerForColumnsWithElementsOfTypesWithoutArrays) {
    const char *first = "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa";
    const char *second = "bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb";
    for (const OAK_TYPE code : {OAK_DATE, OAK_TIME, OAK_TIMESTAMP, OAK_TIMESTAMPTZ, OAK_UUID,
                                OAK_BCD, OAK_CHAR, OAK_BINARY, OAK_VARBINARY}) {
        _SCH_TYPE_INFO type = descriptor(code);
        type.elems = 2;
        EXPECT_EQ(compare(type, pointed(code, first, 5), pointed(code, second, 5)), OAK_EQ) << code;
    }
    _SCH_TYPE_INFO type = descriptor(OAK_TIMETZ);
    type.elems = 2;
    const OAK_VALUE value = scalar(OAK_TIMETZ, OAK_PACKED_TIMETZ_T{1, 1});
    EXPECT_EQ(b_type_cmp_timetz(&type, 0, &value, &value), OAK_GT);
}

// ---- Payloads behind a pointer ------------------------------------------------------------

TEST(Compare, OrdersUuidsByUnsignedBytes) {
    const _SCH_TYPE_INFO type = descriptor(OAK_UUID);
    uint8_t first[16] = {};
    uint8_t second[16] = {};
    const auto order = [&] {
        return compare(type, pointed(OAK_UUID, first), pointed(OAK_UUID, second));
    };
    EXPECT_EQ(order(), OAK_EQ);
    first[15] = 0x7F;
    second[15] = 0x80;
    EXPECT_EQ(order(), OAK_LT);
    first[0] = 1;
    EXPECT_EQ(order(), OAK_GT);
}

TEST(Compare, OrdersDecimalsByValue) {
    const _SCH_TYPE_INFO type = decimal_type(10, 2);
    const char *ascending[] = {"-100", "-0.5", "0", "0.05", "3", "20"};
    OAK_BCD_T numbers[std::size(ascending)];
    for (size_t i = 0; i < std::size(ascending); ++i) {
        ASSERT_EQ(oak_bcdFromString(ascending[i], &numbers[i]), sOKAY);
    }
    for (size_t i = 0; i + 1 < std::size(ascending); ++i) {
        EXPECT_EQ(compare(type, pointed(OAK_BCD, &numbers[i]), pointed(OAK_BCD, &numbers[i + 1])),
                  OAK_LT);
    }
}

TEST(Compare, OrdersTextByUnsignedBytes) {
    const _SCH_TYPE_INFO type = text_type(100);
    const char *ascending[] = {"", "Z", "a", "ab", "b", "\xC3\xA4", "\xFF"};
    for (size_t i = 0; i + 1 < std::size(ascending); ++i) {
        EXPECT_EQ(
            compare(type, pointed(OAK_CHAR, ascending[i]), pointed(OAK_CHAR, ascending[i + 1])),
            OAK_LT)
            << i;
    }
    EXPECT_EQ(compare(type, pointed(OAK_CHAR, "oak", 4), pointed(OAK_CHAR, "oak", 0)), OAK_EQ);
}

TEST(Compare, LooksAtNoMoreOfATextThanTheLimit) {
    const _SCH_TYPE_INFO type = text_type(100);
    const OAK_VALUE first = pointed(OAK_CHAR, "oakwood");
    const OAK_VALUE second = pointed(OAK_CHAR, "oaktree");
    EXPECT_EQ(compare(type, first, second, 0), OAK_GT);
    EXPECT_EQ(compare(type, first, second, 3), OAK_EQ);
    EXPECT_EQ(compare(type, first, second, 4), OAK_GT);
    EXPECT_EQ(compare(type, first, pointed(OAK_CHAR, "oak"), 100), OAK_GT);
}

// A collation that does not order by bytes; any of these will do.
OSL_LOCALE some_collation() {
    for (const char *name : {"de_DE.UTF-8", "en_US.UTF-8", "fr_FR.UTF-8"}) {
        if (const OSL_LOCALE locale = osl_createlocale(8, name)) {
            return locale;
        }
    }
    return nullptr;
}

TEST(Compare, FollowsTheCollationOfALocale) {
    const OSL_LOCALE locale = some_collation();
    if (locale == nullptr) {
        GTEST_SKIP() << "no locale is installed";
    }
    _SCH_TYPE_INFO type = text_type(100);
    type.x.c.use_locale = OAK_TRUE;
    type.x.c.locale = locale;
    const OAK_VALUE lower = pointed(OAK_CHAR, "apple");
    const OAK_VALUE upper = pointed(OAK_CHAR, "Banana");
    EXPECT_EQ(compare(text_type(100), lower, upper), OAK_GT); // by bytes
    EXPECT_EQ(compare(type, lower, upper), OAK_LT);
    EXPECT_EQ(compare(type, lower, lower), OAK_EQ);
    osl_freelocale(locale);
}

TEST(Compare, AsksTheLocaleThatAColumnHas) {
    const OSL_LOCALE plain = osl_createlocale(8, "C");
    ASSERT_NE(plain, nullptr);
    _SCH_TYPE_INFO type = text_type(100);
    type.x.c.use_locale = OAK_TRUE;
    type.x.c.locale = plain;
    EXPECT_EQ(compare(type, pointed(OAK_CHAR, "Z"), pointed(OAK_CHAR, "a")), OAK_LT);
    EXPECT_EQ(compare(type, pointed(OAK_CHAR, "a"), pointed(OAK_CHAR, "a")), OAK_EQ);
    osl_freelocale(plain);
}

TEST(Compare, FindsTextsEqualUnderALocaleWithAnyLimit) {
    _SCH_TYPE_INFO type = text_type(100);
    type.x.c.use_locale = OAK_TRUE; // the locale is not even asked
    for (const uint32_t limit : {1u, 2u, 100u, UINT32_MAX}) {
        EXPECT_EQ(compare(type, pointed(OAK_CHAR, "a"), pointed(OAK_CHAR, "b"), limit), OAK_EQ);
    }
    EXPECT_EQ(compare(type, pointed(OAK_CHAR, "a"), pointed(OAK_CHAR, "b"), 0), OAK_LT);
}

TEST(Compare, OrdersBinariesByTheLengthOfTheColumn) {
    const _SCH_TYPE_INFO type = binary_type(4);
    const auto order = [&](const char *first, const char *second, uint32_t limit = 0) {
        return compare(type, pointed(OAK_BINARY, first, 4), pointed(OAK_BINARY, second, 4), limit);
    };
    EXPECT_EQ(order("ab\0d", "ab\0d"), OAK_EQ);
    EXPECT_EQ(order("ab\0d", "ab\0e"), OAK_LT);
    EXPECT_EQ(order("\x80zzz", "\x7Fzzz"), OAK_GT);
    EXPECT_EQ(order("abcdX", "abcdY"), OAK_EQ);
    EXPECT_EQ(order("abcd", "abce", 3), OAK_EQ);
    EXPECT_EQ(order("abcd", "abce", 4), OAK_LT);
    EXPECT_EQ(order("abcd", "abce", 100), OAK_LT);
}

TEST(Compare, ContinuesAShortBinaryInZeros) {
    const _SCH_TYPE_INFO type = binary_type(4);
    const auto short_one = pointed(OAK_BINARY, "ab", 2);
    EXPECT_EQ(compare(type, short_one, pointed(OAK_BINARY, "ab\0\0", 4)), OAK_EQ);
    EXPECT_EQ(compare(type, short_one, pointed(OAK_BINARY, "ab\0\1", 4)), OAK_LT);
    EXPECT_EQ(compare(type, short_one, pointed(OAK_BINARY, "aa", 2)), OAK_GT);
    EXPECT_EQ(compare(type, short_one, pointed(OAK_BINARY, "ab\0\1", 4), 3), OAK_EQ);
    EXPECT_EQ(compare(type, short_one, pointed(OAK_BINARY, "ab", 2)), OAK_EQ);
    // A length of 0 says nothing, and the column's holds.
    EXPECT_EQ(compare(type, pointed(OAK_BINARY, "abcd", 0), pointed(OAK_BINARY, "abce", 0)),
              OAK_LT);
}

TEST(Compare, PutsTheShorterOfTwoVarbinariesFirst) {
    const _SCH_TYPE_INFO type = varbinary_type(10);
    const auto order = [&](const char *first, size_t len1, const char *second, size_t len2) {
        return compare(type, pointed(OAK_VARBINARY, first, len1),
                       pointed(OAK_VARBINARY, second, len2));
    };
    EXPECT_EQ(order("ab", 2, "abc", 3), OAK_LT);
    EXPECT_EQ(order("abc", 3, "abc", 3), OAK_EQ);
    EXPECT_EQ(order("b", 1, "abc", 3), OAK_GT);
    EXPECT_EQ(order("\x7F", 1, "\x80", 1), OAK_LT);
    EXPECT_EQ(order(nullptr, 0, "a", 1), OAK_LT);
    EXPECT_EQ(order(nullptr, 0, nullptr, 0), OAK_EQ);
    EXPECT_EQ(order(nullptr, 3, "a", 1), OAK_LT); // a length without bytes is none
}

// ---- Hashing ------------------------------------------------------------------------------

uint64_t hash_of_bytes(const std::string &hex_text) {
    B_HASHCTX context;
    b_hashFcnStart(&context);
    for (const uint8_t byte : unhex(hex_text)) {
        b_hashFcnEmit(&context, byte);
    }
    return b_hashFcnFinish(&context);
}

// The hash of the value, and that nothing else was fed: the offset agrees too.
void expect_hash(const _SCH_TYPE_INFO &type, const OAK_VALUE &value, const std::string &fed) {
    B_HASHCTX context;
    b_hashFcnStart(&context);
    ASSERT_EQ(type.type_info->hashfcn(&type, &value, &context), sOKAY);
    EXPECT_EQ(context.offset, unhex(fed).size()) << fed;
    EXPECT_EQ(b_hashFcnFinish(&context), hash_of_bytes(fed)) << fed;
}

TEST(Hash, FeedsNumbersInStoredOrder) {
    expect_hash(number_type(OAK_INT8), scalar<int8_t>(OAK_INT8, -2), "fe");
    expect_hash(number_type(OAK_UINT8), scalar<uint8_t>(OAK_UINT8, 0x41), "41");
    expect_hash(number_type(OAK_INT16), scalar<int16_t>(OAK_INT16, 0x0102), "0102");
    expect_hash(number_type(OAK_UINT16), scalar<uint16_t>(OAK_UINT16, 0xFEDC), "fedc");
    expect_hash(number_type(OAK_INT32), scalar(OAK_INT32, 0x01020304), "01020304");
    expect_hash(number_type(OAK_UINT32), scalar(OAK_UINT32, 0xFEDCBA98u), "fedcba98");
    expect_hash(number_type(OAK_INT64), scalar<int64_t>(OAK_INT64, -2), "fffffffffffffffe");
    expect_hash(number_type(OAK_UINT64), scalar(OAK_UINT64, UINT64_C(0x0102030405060708)),
                "0102030405060708");
    expect_hash(number_type(OAK_ROWID), scalar(OAK_ROWID, UINT64_C(0x0102030405060708)),
                "0102030405060708");
    expect_hash(number_type(OAK_FLOAT), scalar(OAK_FLOAT, 1.0f), "3f800000");
    expect_hash(number_type(OAK_DOUBLE), scalar(OAK_DOUBLE, -2.0), "c000000000000000");
    expect_hash(descriptor(OAK_DATE), scalar(OAK_DATE, 0x0037B9DBu), "0037b9db");
    expect_hash(descriptor(OAK_TIME), scalar(OAK_TIME, 0x01020304u), "01020304");
}

TEST(Hash, FeedsABooleanAsA32BitNumber) {
    expect_hash(number_type(OAK_BOOL), scalar(OAK_BOOL, 1u), "00000001");
    expect_hash(number_type(OAK_BOOL, 2), array<uint32_t>(OAK_BOOL, {1, 0}), "0000000100000000");
}

TEST(Hash, GivesTheKnownAnswersOfTheByteHash) {
    B_HASHCTX context;
    b_hashFcnStart(&context);
    const OAK_VALUE letter = scalar<uint8_t>(OAK_UINT8, 0x41);
    const _SCH_TYPE_INFO type = number_type(OAK_UINT8);
    ASSERT_EQ(b_type_hash_uint8(&type, &letter, &context), sOKAY);
    EXPECT_EQ(b_hashFcnFinish(&context), UINT64_C(0xab8f567623a410f2));
    b_hashFcnStart(&context);
    const OAK_VALUE text = pointed(OAK_CHAR, "oakbase");
    const _SCH_TYPE_INFO texts = text_type(20);
    ASSERT_EQ(b_type_hash_utf8(&texts, &text, &context), sOKAY);
    EXPECT_EQ(b_hashFcnFinish(&context), UINT64_C(0x341ba9d6ca4b9005));
}

TEST(Hash, FeedsEveryElementOfAnArray) {
    expect_hash(number_type(OAK_INT8, 3), array<int8_t>(OAK_INT8, {1, -1, 2}), "01ff02");
    expect_hash(number_type(OAK_UINT8, 2), array<uint8_t>(OAK_UINT8, {1, 255}), "01ff");
    expect_hash(number_type(OAK_INT16, 2), array<int16_t>(OAK_INT16, {1, -1}), "0001ffff");
    expect_hash(number_type(OAK_UINT16, 2), array<uint16_t>(OAK_UINT16, {1, 258}), "00010102");
    expect_hash(number_type(OAK_INT32, 2), array<int32_t>(OAK_INT32, {1, -1}), "00000001ffffffff");
    expect_hash(number_type(OAK_UINT32, 1), array<uint32_t>(OAK_UINT32, {7}), "00000007");
    expect_hash(number_type(OAK_INT64, 1), array<int64_t>(OAK_INT64, {1}), "0000000000000001");
    expect_hash(number_type(OAK_UINT64, 2), array<uint64_t>(OAK_UINT64, {1, 2}),
                "00000000000000010000000000000002");
    expect_hash(number_type(OAK_FLOAT, 2), array<float>(OAK_FLOAT, {1.0f, -2.0f}),
                "3f800000c0000000");
    expect_hash(number_type(OAK_DOUBLE, 1), array<double>(OAK_DOUBLE, {1.0}), "3ff0000000000000");
}

TEST(Hash, StopsWhereAnArrayEnds) {
    expect_hash(number_type(OAK_INT16, 5), array<int16_t>(OAK_INT16, {1, 2}), "00010002");
    expect_hash(number_type(OAK_INT16, 1), array<int16_t>(OAK_INT16, {1, 2}), "0001");
    expect_hash(number_type(OAK_INT16, 3), scalar<int16_t>(OAK_INT16, 1), "0001");
}

TEST(Hash, FeedsTimesWithTheirZones) {
    expect_hash(descriptor(OAK_TIMETZ), scalar(OAK_TIMETZ, OAK_PACKED_TIMETZ_T{0x01020304, -90}),
                "01020304ffa6");
    expect_hash(descriptor(OAK_TIMESTAMP), scalar(OAK_TIMESTAMP, OAK_PACKED_TIMESTAMP_T{1, 2}),
                "0000000100000002");
    const OAK_PACKED_TIMESTAMPTZ_T moment = {1, 2, 60};
    expect_hash(descriptor(OAK_TIMESTAMPTZ), pointed(OAK_TIMESTAMPTZ, &moment),
                "0000000100000002003c");
}

// A payload of zero bytes is a value like any other.
TEST(Hash, FeedsZeros) {
    expect_hash(number_type(OAK_INT64), scalar<int64_t>(OAK_INT64, 0), "0000000000000000");
    expect_hash(descriptor(OAK_DATE), scalar(OAK_DATE, 0u), "00000000");
    expect_hash(descriptor(OAK_TIMETZ), scalar(OAK_TIMETZ, OAK_PACKED_TIMETZ_T{0, 0}),
                "000000000000");
    expect_hash(descriptor(OAK_TIMESTAMP), scalar(OAK_TIMESTAMP, OAK_PACKED_TIMESTAMP_T{0, 0}),
                "0000000000000000");
}

TEST(Hash, FeedsADecimalInPackedForm) {
    OAK_BCD_T number;
    ASSERT_EQ(oak_bcdFromString("1.5", &number), sOKAY);
    expect_hash(decimal_type(5, 2), pointed(OAK_BCD, &number), "400150");
    ASSERT_EQ(oak_bcdFromString("-1.5", &number), sOKAY);
    expect_hash(decimal_type(5, 2), pointed(OAK_BCD, &number), "099849");
    ASSERT_EQ(oak_bcdFromString("1.50", &number), sOKAY);
    expect_hash(decimal_type(5, 2), pointed(OAK_BCD, &number), "400150");
    ASSERT_EQ(oak_bcdFromString("0", &number), sOKAY);
    expect_hash(decimal_type(32, 0), pointed(OAK_BCD, &number), "40" + std::string(32, '0'));
}

TEST(Hash, RefusesADecimalThatDoesNotPack) {
    OAK_BCD_T number;
    ASSERT_EQ(oak_bcdFromString("1000", &number), sOKAY);
    const OAK_VALUE value = pointed(OAK_BCD, &number);
    for (const _SCH_TYPE_INFO &type :
         {decimal_type(3, 0), decimal_type(33, 0), decimal_type(255, 0), decimal_type(10, 33)}) {
        B_HASHCTX context;
        b_hashFcnStart(&context);
        EXPECT_EQ(b_type_hash_bcd(&type, &value, &context), eINVBCD);
        EXPECT_EQ(context.offset, 0u);
    }
}

TEST(Hash, TakesADecimalWhoseFractionIsCut) {
    OAK_BCD_T number;
    ASSERT_EQ(oak_bcdFromString("1.25", &number), sOKAY);
    const _SCH_TYPE_INFO type = decimal_type(3, 1);
    const OAK_VALUE value = pointed(OAK_BCD, &number);
    B_HASHCTX context;
    b_hashFcnStart(&context);
    EXPECT_EQ(b_type_hash_bcd(&type, &value, &context), sOKAY);
    EXPECT_EQ(context.offset, 2u);
}

TEST(Hash, FeedsPayloadsByTheirBytes) {
    const uint8_t uuid[16] = {0x10, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 0xFF};
    expect_hash(descriptor(OAK_UUID), pointed(OAK_UUID, uuid), "100102030405060708090a0b0c0d0eff");
    expect_hash(text_type(20), pointed(OAK_CHAR, "AB", 3), "4142");
    expect_hash(text_type(20), pointed(OAK_CHAR, "", 1), "");
    expect_hash(binary_type(10), pointed(OAK_BINARY, "A\0B", 3), "410042");
    expect_hash(varbinary_type(10), pointed(OAK_VARBINARY, "A\0B", 2), "4100");
    expect_hash(varbinary_type(10), pointed(OAK_VARBINARY, nullptr, 0), "");
    expect_hash(binary_type(10), pointed(OAK_BINARY, "A", 0), "");
    expect_hash(binary_type(10), pointed(OAK_BINARY, nullptr, 0), "");
}

TEST(Hash, GoesOnFromWhatWasFedBefore) {
    B_HASHCTX context;
    b_hashFcnStart(&context);
    const _SCH_TYPE_INFO numbers = number_type(OAK_UINT16);
    const _SCH_TYPE_INFO texts = text_type(20);
    const OAK_VALUE number = scalar<uint16_t>(OAK_UINT16, 0x4142);
    const OAK_VALUE text = pointed(OAK_CHAR, "AB");
    ASSERT_EQ(b_type_hash_uint16(&numbers, &number, &context), sOKAY);
    ASSERT_EQ(b_type_hash_utf8(&texts, &text, &context), sOKAY);
    EXPECT_EQ(b_hashFcnFinish(&context), hash_of_bytes("41424142"));
}

TEST(Hash, RefusesNullPointers) {
    B_HASHCTX context;
    b_hashFcnStart(&context);
    for (const OAK_TYPE code : {OAK_BOOL, OAK_INT64, OAK_TIMETZ, OAK_TIMESTAMP, OAK_BCD,
                                OAK_TIMESTAMPTZ, OAK_UUID, OAK_CHAR, OAK_BINARY, OAK_VARBINARY}) {
        const _SCH_TYPE_INFO type = descriptor(code);
        const B_TYPE_HASH_FCN hash = type.type_info->hashfcn;
        const OAK_VALUE value = of_type(code);
        EXPECT_EQ(hash(&type, nullptr, &context), eINVNULLARG) << code;
        EXPECT_EQ(hash(&type, &value, nullptr), eINVNULLARG) << code;
    }
    for (const OAK_TYPE code : {OAK_BCD, OAK_TIMESTAMPTZ, OAK_UUID, OAK_CHAR}) {
        const _SCH_TYPE_INFO type = descriptor(code);
        const OAK_VALUE value = of_type(code);
        EXPECT_EQ(type.type_info->hashfcn(&type, &value, &context), eINVNULLARG) << code;
    }
    for (const OAK_TYPE code : {OAK_BINARY, OAK_VARBINARY}) {
        const _SCH_TYPE_INFO type = descriptor(code);
        const OAK_VALUE value = pointed(code, nullptr, 3);
        EXPECT_EQ(type.type_info->hashfcn(&type, &value, &context), eINVNULLARG) << code;
    }
    OAK_VALUE empty = of_type(OAK_INT8);
    empty.elts = 2;
    const _SCH_TYPE_INFO type = number_type(OAK_INT8, 2);
    EXPECT_EQ(b_type_hash_int8(&type, &empty, &context), eINVNULLARG);
    EXPECT_EQ(context.offset, 0u);
}

} // namespace
