// Values between owners and record buffers: copies with every room from none to
// more than enough, buffers too short and exactly long enough, what a column
// refuses, and who owns what afterwards.
#include "oakvaluetypes.h"

#include <cstring>
#include <string>
#include <vector>

#include "bcd.h"
#include "test_support.h"
#include "type_descriptors.h"

using namespace oaktest;

namespace {

// A value whose every byte but its tag is set.
OAK_VALUE dirty() {
    OAK_VALUE value;
    memset(&value, 0x5A, sizeof value);
    return value;
}

const OAK_UUID_T kUuid = {0x04030201, 0x0605, 0x0807, 9, 10, {11, 12, 13, 14, 15, 16}};
const OAK_PACKED_TIMESTAMPTZ_T kMoment = {738000, 863999999, -90};

OAK_BCD_T some_decimal() {
    OAK_BCD_T number;
    EXPECT_EQ(oak_bcdFromString("-31.4", &number), sOKAY);
    return number;
}

// The tests of one column type.
struct Column {
    explicit Column(const _SCH_TYPE_INFO &column) : type(column), ops(*column.type_info) {}

    OAK_RETCODE copy(const OAK_VALUE &source, size_t room) {
        value = dirty();
        return ops.copy_fcn(&type, &value, &source, room, tag);
    }
    OAK_RETCODE from_buff(const void *buffer, size_t size) {
        value = dirty();
        return ops.copy_from_buff_fcn(&type, &value, buffer, size, tag);
    }
    OAK_RETCODE assign(const void *buffer, size_t size) {
        value = dirty();
        return ops.assign_from_buff_fcn(&type, &value, buffer, size);
    }
    void release() {
        OSL_FREE(const_cast<void *>(value.vt.pv), tag);
        value.vt.pv = nullptr;
    }
    std::string payload(size_t size) const { return hex(value.vt.pv, size); }

    _SCH_TYPE_INFO type;
    const OAK_TYPE_INFO &ops;
    OAK_VALUE value{};
    Tag tag;
};

// A record buffer with a border that nothing may touch.
struct Record {
    Record() { memset(bytes, 0xEE, sizeof bytes); }
    std::string head(size_t size) const { return hex(bytes, size); }
    // True when all from `size` on is as it was.
    bool untouched_from(size_t size) const {
        for (size_t i = size; i < sizeof bytes; ++i) {
            if (bytes[i] != 0xEE) {
                return false;
            }
        }
        return true;
    }
    uint8_t bytes[96];
};

// ---- copy: numbers ----------------------------------------------------------------------

template <class Native>
void expect_scalar_copied(OAK_TYPE code, Native number) {
    SCOPED_TRACE(code);
    Column column(number_type(code));
    for (const size_t room : {size_t{0}, size_t{1}, SIZE_MAX}) { // the room plays no part
        ASSERT_EQ(column.copy(scalar(code, number), room), sOKAY);
        EXPECT_EQ(column.value.status, vsOKAY);
        EXPECT_EQ(column.value.elts, 0u);
        EXPECT_EQ(column.value.len, 0u);
        EXPECT_EQ(memcmp(&column.value.vt, &number, sizeof number), 0);
    }
}

TEST(Copy, TakesScalarsAsTheyAre) {
    expect_scalar_copied(OAK_BOOL, 1u);
    expect_scalar_copied(OAK_INT8, int8_t{-1});
    expect_scalar_copied(OAK_UINT8, uint8_t{200});
    expect_scalar_copied(OAK_INT16, int16_t{-300});
    expect_scalar_copied(OAK_UINT16, uint16_t{60000});
    expect_scalar_copied(OAK_INT32, -70000);
    expect_scalar_copied(OAK_UINT32, 4000000000u);
    expect_scalar_copied(OAK_INT64, INT64_MIN);
    expect_scalar_copied(OAK_UINT64, UINT64_MAX);
    expect_scalar_copied(OAK_ROWID, UINT64_MAX);
    expect_scalar_copied(OAK_FLOAT, 1.5f);
    expect_scalar_copied(OAK_DOUBLE, -2.5);
}

template <class Element>
void expect_array_copied(OAK_TYPE code) {
    SCOPED_TRACE(code);
    const std::vector<Element> elements = {1, 2, 3, 4};
    const OAK_VALUE source = array_at(code, elements.data(), 4);
    Column column(number_type(code, 4));
    constexpr size_t width = sizeof(Element);
    // Nothing may be allocated: no value, and that is no failure.
    ASSERT_EQ(column.copy(source, 0), sOKAY);
    EXPECT_EQ(column.value.status, vsNOVAL);
    EXPECT_EQ(column.value.vt.pv, nullptr);
    EXPECT_EQ(column.tag.live(), 0u);
    for (const size_t room : {4 * width, 4 * width + 1, SIZE_MAX}) {
        ASSERT_EQ(column.copy(source, room), sOKAY);
        EXPECT_EQ(column.value.status, vsOKAY);
        EXPECT_EQ(column.value.elts, 4u);
        EXPECT_EQ(column.value.len, 0u);
        ASSERT_NE(column.value.vt.pv, elements.data());
        EXPECT_EQ(memcmp(column.value.vt.pv, elements.data(), 4 * width), 0);
        column.release();
    }
    // Half of it, and as many whole elements as fit.
    for (const size_t room : {2 * width, 3 * width - 1}) {
        ASSERT_EQ(column.copy(source, room), room / width < 4 ? sTRUNCATE : sOKAY);
        EXPECT_EQ(column.value.elts, room / width);
        EXPECT_EQ(memcmp(column.value.vt.pv, elements.data(), room / width * width), 0);
        column.release();
    }
    if (width > 1) {
        EXPECT_EQ(column.copy(source, width - 1), eBADDATALEN);
        EXPECT_EQ(column.copy(source, 1), eBADDATALEN);
    }
    EXPECT_EQ(column.tag.live(), 0u);
}

TEST(Copy, CutsArraysToWholeElementsThatFit) {
    expect_array_copied<uint32_t>(OAK_BOOL);
    expect_array_copied<int8_t>(OAK_INT8);
    expect_array_copied<uint8_t>(OAK_UINT8);
    expect_array_copied<int16_t>(OAK_INT16);
    expect_array_copied<uint16_t>(OAK_UINT16);
    expect_array_copied<int32_t>(OAK_INT32);
    expect_array_copied<uint32_t>(OAK_UINT32);
    expect_array_copied<int64_t>(OAK_INT64);
    expect_array_copied<uint64_t>(OAK_UINT64);
    expect_array_copied<float>(OAK_FLOAT);
    expect_array_copied<double>(OAK_DOUBLE);
}

TEST(Copy, RefusesAnArrayLongerThanItsColumn) {
    const int64_t elements[] = {1, 2, 3};
    // These count the source's elements ...
    for (const OAK_TYPE code :
         {OAK_INT8, OAK_UINT8, OAK_INT16, OAK_UINT16, OAK_UINT32, OAK_INT64, OAK_UINT64}) {
        Column column(number_type(code, 2));
        const OAK_VALUE source = array_at(code, elements, 3);
        EXPECT_EQ(column.copy(source, 100), eBADDATALEN) << code;
        EXPECT_EQ(column.tag.live(), 0u);
    }
    // ... and these take as many as the column has.
    for (const OAK_TYPE code : {OAK_BOOL, OAK_INT32, OAK_FLOAT, OAK_DOUBLE}) {
        Column column(number_type(code, 2));
        const OAK_VALUE source = array_at(code, elements, 3);
        EXPECT_EQ(column.copy(source, 100), sOKAY) << code;
        EXPECT_EQ(column.value.elts, 2u);
        column.release();
    }
}

TEST(Copy, RefusesAnArrayOfAColumnWithoutBytes) {
    _SCH_TYPE_INFO type = number_type(OAK_INT32, 2);
    type.byte_len = 0; // not finalized yet
    Column column(type);
    const int32_t elements[] = {1, 2};
    const OAK_VALUE source = array_at(OAK_INT32, elements, 2);
    EXPECT_EQ(column.copy(source, 100), eBADDATALEN);
}

TEST(Copy, FillsUpAnArrayThatIsShorterThanItsColumn) {
    const int32_t elements[] = {1, 2};
    const OAK_VALUE source = array_at(OAK_INT32, elements, 2);
    Column column(number_type(OAK_INT32, 3));
    ASSERT_EQ(column.copy(source, 100), sOKAY);
    EXPECT_EQ(column.value.elts, 3u);
    EXPECT_EQ(column.payload(12), "010000000200000000000000");
    column.release();
    ASSERT_EQ(column.copy(scalar(OAK_INT32, 9), 100), sOKAY); // one element
    EXPECT_EQ(column.payload(12), "090000000000000000000000");
    column.release();
    // The types that count the source keep it a scalar.
    Column shorts(number_type(OAK_INT16, 3));
    ASSERT_EQ(shorts.copy(scalar<int16_t>(OAK_INT16, 9), 100), sOKAY);
    EXPECT_EQ(shorts.value.elts, 0u);
    EXPECT_EQ(shorts.value.vt.i16v, 9);
}

TEST(Copy, TakesTheFirstElementForAScalarColumn) {
    const int32_t elements[] = {7, 2};
    const OAK_VALUE source = array_at(OAK_INT32, elements, 2);
    Column column(number_type(OAK_INT32));
    ASSERT_EQ(column.copy(source, 100), sOKAY);
    EXPECT_EQ(column.value.elts, 0u);
    EXPECT_EQ(column.value.vt.i32v, 7);
}

TEST(Copy, RefusesAnArrayWithoutABlock) {
    OAK_VALUE source = of_type(OAK_INT32);
    source.elts = 3;
    Column column(number_type(OAK_INT32, 3));
    EXPECT_EQ(column.copy(source, 100), eINVNULLARG);
}

// ---- copy: fixed records -----------------------------------------------------------------

TEST(Copy, TakesDatesAndTimesAsTheyAre) {
    struct {
        OAK_TYPE code;
        OAK_VALUE source;
    } const cases[] = {
        {OAK_DATE, scalar(OAK_DATE, 738000u)},
        {OAK_TIME, scalar(OAK_TIME, 5u)},
        {OAK_TIMETZ, scalar(OAK_TIMETZ, OAK_PACKED_TIMETZ_T{5, -90})},
        {OAK_TIMESTAMP, scalar(OAK_TIMESTAMP, OAK_PACKED_TIMESTAMP_T{1, 2})},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.code);
        Column column(descriptor(row.code));
        ASSERT_EQ(column.copy(row.source, 0), sOKAY);
        EXPECT_EQ(column.value.status, vsOKAY);
        EXPECT_EQ(column.value.elts, 0u);
        EXPECT_EQ(column.value.len, 0u);
        EXPECT_EQ(memcmp(&column.value.vt, &row.source.vt, sizeof row.source.vt), 0);
    }
}

TEST(Copy, DuplicatesRecordsBehindAPointerWhateverTheRoom) {
    const OAK_BCD_T number = some_decimal();
    struct {
        OAK_TYPE code;
        const void *payload;
        size_t size;
    } const cases[] = {
        {OAK_TIMESTAMPTZ, &kMoment, 12}, {OAK_UUID, &kUuid, 16}, {OAK_BCD, &number, 37}};
    for (const auto &row : cases) {
        SCOPED_TRACE(row.code);
        Column column(descriptor(row.code));
        for (const size_t room : {size_t{0}, size_t{1}, SIZE_MAX}) {
            ASSERT_EQ(column.copy(pointed(row.code, row.payload, 5), room), sOKAY);
            ASSERT_NE(column.value.vt.pv, row.payload);
            EXPECT_EQ(memcmp(column.value.vt.pv, row.payload, row.size), 0);
            EXPECT_EQ(column.value.len, row.code == OAK_BCD ? 5u : 0u);
            EXPECT_EQ(column.value.elts, 0u);
            column.release();
        }
        EXPECT_EQ(column.copy(of_type(row.code), 100), eINVNULLARG);
    }
}

// ---- copy: text -----------------------------------------------------------------------------

TEST(Copy, DuplicatesATextThatFits) {
    Column column(text_type(6));
    for (const size_t len : {size_t{6}, size_t{0}}) { // told, or measured
        for (const size_t room : {size_t{6}, size_t{7}, SIZE_MAX}) {
            ASSERT_EQ(column.copy(pointed(OAK_CHAR, "birch", len), room), sOKAY);
            EXPECT_EQ(column.value.status, vsOKAY);
            EXPECT_STREQ(column.value.vt.cv, "birch");
            EXPECT_EQ(column.value.len, 6u);
            EXPECT_EQ(column.value.elts, 0u);
            column.release();
        }
    }
}

TEST(Copy, CutsATextAndTerminatesIt) {
    Column column(text_type(6));
    const std::pair<size_t, const char *> cases[] = {{5, "birc"}, {3, "bi"}, {2, "b"}, {1, ""}};
    for (const auto &[room, expected] : cases) {
        ASSERT_EQ(column.copy(pointed(OAK_CHAR, "birch", 6), room), sTRUNCATE);
        EXPECT_STREQ(column.value.vt.cv, expected);
        EXPECT_EQ(column.value.len, room);
        EXPECT_EQ(column.value.status, vsOKAY);
        column.release();
    }
}

TEST(Copy, LeavesATextOutWhereNothingMayBeAllocated) {
    Column column(text_type(6));
    ASSERT_EQ(column.copy(pointed(OAK_CHAR, "birch", 6), 0), sOKAY);
    EXPECT_EQ(column.value.status, vsNOVAL);
    EXPECT_EQ(column.value.vt.pv, nullptr);
    EXPECT_EQ(column.value.len, 0u);
    EXPECT_EQ(column.value.elts, 0u);
    EXPECT_EQ(column.tag.live(), 0u);
}

TEST(Copy, RefusesATextLongerThanItsColumn) {
    Column column(text_type(5));
    EXPECT_EQ(column.copy(pointed(OAK_CHAR, "birch", 6), 100), eBADDATALEN);
    EXPECT_EQ(column.copy(pointed(OAK_CHAR, "birch", 0), 100), eBADDATALEN);
    EXPECT_EQ(column.copy(pointed(OAK_CHAR, "birch", 6), 0), eBADDATALEN);
    EXPECT_EQ(column.copy(pointed(OAK_CHAR, "oaks", 0), 100), sOKAY);
    column.release();
    EXPECT_EQ(column.copy(of_type(OAK_CHAR), 100), eINVNULLARG);
}

// A column of `len` bytes in a schema with the locale.
struct LocaleColumn : Column {
    LocaleColumn(uint16_t len, const char *locale) : Column(text_type(len)) {
        schema.locale_text = locale;
        type.sch = &schema;
    }
    _SCH_INFO schema{};
};

TEST(Copy, ChecksTextWhereTheLocaleIsUtf8) {
    const char *sound[] = {"",
                           "plain",
                           "\xC3\xA4",
                           "\xE2\x82\xAC",
                           "\xF0\x9F\x8C\xB3",
                           "a\xC3\xA4z\xE2\x82\xACz",
                           "\xC0\x80", // the form counts, not the code point
                           "\xED\xA0\x80",
                           "\xF7\xBF\xBF\xBF"};
    const char *unsound[] = {"\x80",
                             "\xBF",
                             "a\xC3",
                             "\xC3",
                             "\xC3z",
                             "\xE2\x82",
                             "\xE2z\x82",
                             "\xE2\x82z",
                             "\xF0\x9F\x8C",
                             "\xF0\x9F\x8Cz",
                             "\xF8\x80\x80\x80\x80",
                             "\xFF",
                             "ok\xFE",
                             "\xC3\xC3\xA4"};
    LocaleColumn column(101, "de_DE.UTF-8");
    for (const char *text : sound) {
        EXPECT_EQ(column.copy(pointed(OAK_CHAR, text, strlen(text) + 1), 200), sOKAY) << text;
        column.release();
    }
    for (const char *text : unsound) {
        EXPECT_EQ(column.copy(pointed(OAK_CHAR, text, strlen(text) + 1), 200), eINVUTF)
            << hex(text, strlen(text));
        EXPECT_EQ(column.copy(pointed(OAK_CHAR, text, 0), 0), eINVUTF);
    }
    EXPECT_EQ(column.tag.live(), 0u);
}

TEST(Copy, ChecksNoTextUnderOtherLocalesOrNone) {
    const OAK_VALUE damaged = pointed(OAK_CHAR, "\xC3", 2);
    for (const char *locale : {static_cast<const char *>(nullptr), "C", "de_DE.ISO-8859-1"}) {
        LocaleColumn column(101, locale);
        EXPECT_EQ(column.copy(damaged, 200), sOKAY);
        column.release();
    }
    Column column(text_type(101)); // no schema at all
    EXPECT_EQ(column.copy(damaged, 200), sOKAY);
    column.release();
}

TEST(Copy, CountsCharactersWhereTheLocaleIsUtf8) {
    // 13 bytes declare three characters of up to four bytes.
    LocaleColumn column(13, "de_DE.UTF-8");
    EXPECT_EQ(column.copy(pointed(OAK_CHAR, "abc", 4), 200), sOKAY);
    column.release();
    EXPECT_EQ(column.copy(pointed(OAK_CHAR, "\xF0\x9F\x8C\xB3\xC3\xA4z", 8), 200), sOKAY);
    column.release();
    EXPECT_EQ(column.copy(pointed(OAK_CHAR, "abcd", 5), 200), eSTRTOOLONG);
    EXPECT_EQ(column.copy(pointed(OAK_CHAR, "\xC3\xA4\xC3\xA4\xC3\xA4z", 8), 200), eSTRTOOLONG);
    EXPECT_EQ(column.copy(pointed(OAK_CHAR, "abcdefghijklm", 14), 200), eBADDATALEN);
    LocaleColumn unlimited(13, "C");
    EXPECT_EQ(unlimited.copy(pointed(OAK_CHAR, "abcdefghijkl", 13), 200), sOKAY);
    unlimited.release();
}

TEST(Copy, ChecksATextUpToItsTerminator) {
    LocaleColumn column(101, "de_DE.UTF-8");
    EXPECT_EQ(column.copy(pointed(OAK_CHAR, "ab\0\xC3\xC3", 6), 200), sOKAY);
    EXPECT_EQ(column.value.len, 6u);
    column.release();
}

// ---- copy: binaries and large objects ----------------------------------------------------------

TEST(Copy, GivesABinaryTheLengthOfItsColumn) {
    const uint8_t bytes[] = {1, 2, 3, 4};
    Column column(binary_type(4));
    for (const size_t len : {size_t{4}, size_t{0}}) {
        ASSERT_EQ(column.copy(pointed(OAK_BINARY, bytes, len), 4), sOKAY);
        EXPECT_EQ(column.value.len, 4u);
        EXPECT_EQ(column.payload(4), "01020304");
        column.release();
    }
    ASSERT_EQ(column.copy(pointed(OAK_BINARY, bytes, 2), 100), sOKAY); // goes on in zeros
    EXPECT_EQ(column.value.len, 4u);
    EXPECT_EQ(column.payload(4), "01020000");
    column.release();
    ASSERT_EQ(column.copy(pointed(OAK_BINARY, bytes, 4), 3), sTRUNCATE);
    EXPECT_EQ(column.value.len, 3u);
    EXPECT_EQ(column.payload(3), "010203");
    column.release();
    ASSERT_EQ(column.copy(pointed(OAK_BINARY, bytes, 4), 0), sOKAY);
    EXPECT_EQ(column.value.status, vsNOVAL);
    EXPECT_EQ(column.value.vt.pv, nullptr);
    EXPECT_EQ(column.value.len, 0u);
    EXPECT_EQ(column.copy(pointed(OAK_BINARY, bytes, 5), 100), eBADDATALEN);
    EXPECT_EQ(column.copy(pointed(OAK_BINARY, nullptr, 4), 100), eINVNULLARG);
}

TEST(Copy, GivesAVarbinaryItsOwnLength) {
    const uint8_t bytes[] = {1, 2, 3, 4, 5, 6, 7};
    Column column(varbinary_type(4)); // takes 6 bytes in a record
    for (size_t len = 1; len <= 6; ++len) {
        ASSERT_EQ(column.copy(pointed(OAK_VARBINARY, bytes, len), 100), sOKAY);
        EXPECT_EQ(column.value.len, len);
        EXPECT_EQ(memcmp(column.value.vt.pv, bytes, len), 0);
        column.release();
    }
    EXPECT_EQ(column.copy(pointed(OAK_VARBINARY, bytes, 7), 100), eBADDATALEN);
    ASSERT_EQ(column.copy(pointed(OAK_VARBINARY, bytes, 4), 3), sTRUNCATE);
    EXPECT_EQ(column.value.len, 3u);
    column.release();
    ASSERT_EQ(column.copy(pointed(OAK_VARBINARY, bytes, 4), 0), sOKAY);
    EXPECT_EQ(column.value.status, vsNOVAL);
    EXPECT_EQ(column.value.vt.pv, nullptr);
    for (const size_t room : {size_t{100}, size_t{0}}) { // empty, and a value
        ASSERT_EQ(column.copy(pointed(OAK_VARBINARY, bytes, 0), room), sOKAY);
        EXPECT_EQ(column.value.status, vsOKAY);
        EXPECT_EQ(column.value.len, 0u);
        EXPECT_EQ(column.value.vt.pv, nullptr);
    }
    EXPECT_EQ(column.copy(pointed(OAK_VARBINARY, nullptr, 4), 100), eINVNULLARG);
}

TEST(Copy, LimitsLargeObjectsByTheRoomAlone) {
    const uint8_t bytes[] = {1, 2, 3, 4, 5};
    for (const OAK_TYPE code : {OAK_BLOB, OAK_CLOB, OAK_WCLOB, OAK_WCLOB_UTF8}) {
        SCOPED_TRACE(code);
        Column column(descriptor(code));
        ASSERT_EQ(column.copy(pointed(code, bytes, 5), 5), sOKAY);
        EXPECT_EQ(column.value.len, 5u);
        EXPECT_EQ(column.payload(5), "0102030405");
        column.release();
        ASSERT_EQ(column.copy(pointed(code, bytes, 5), 2), sTRUNCATE);
        EXPECT_EQ(column.value.len, 2u);
        EXPECT_EQ(column.payload(2), "0102");
        column.release();
        ASSERT_EQ(column.copy(pointed(code, bytes, 5), 0), sTRUNCATE);
        EXPECT_EQ(column.value.len, 0u);
        EXPECT_EQ(column.value.vt.pv, nullptr);
        ASSERT_EQ(column.copy(pointed(code, bytes, 0), 9), sOKAY);
        EXPECT_EQ(column.value.status, vsOKAY);
        EXPECT_EQ(column.value.vt.pv, nullptr);
        EXPECT_EQ(column.copy(pointed(code, nullptr, 5), 5), eINVNULLARG);
    }
}

TEST(Copy, RefusesNullPointers) {
    for (const OAK_TYPE code :
         {OAK_INT32, OAK_DATE, OAK_UUID, OAK_CHAR, OAK_BINARY, OAK_VARBINARY, OAK_BLOB, OAK_CLOB}) {
        const _SCH_TYPE_INFO type = descriptor(code);
        OAK_VALUE value = of_type(code);
        Tag tag;
        EXPECT_EQ(type.type_info->copy_fcn(&type, nullptr, &value, 1, tag), eINVNULLARG);
        EXPECT_EQ(type.type_info->copy_fcn(&type, &value, nullptr, 1, tag), eINVNULLARG);
    }
}

TEST(Copy, LeavesNothingBehindWhenMemoryEnds) {
    const OAK_BCD_T number = some_decimal();
    const int32_t elements[] = {1, 2};
    const OAK_VALUE array = array_at(OAK_INT32, elements, 2);
    struct {
        _SCH_TYPE_INFO type;
        OAK_VALUE source;
    } const cases[] = {
        {number_type(OAK_INT32, 2), array},
        {descriptor(OAK_TIMESTAMPTZ), pointed(OAK_TIMESTAMPTZ, &kMoment)},
        {descriptor(OAK_UUID), pointed(OAK_UUID, &kUuid)},
        {decimal_type(4, 1), pointed(OAK_BCD, &number)},
        {text_type(10), pointed(OAK_CHAR, "oak", 4)},
        {binary_type(3), pointed(OAK_BINARY, "oak", 3)},
        {varbinary_type(3), pointed(OAK_VARBINARY, "oak", 3)},
        {descriptor(OAK_BLOB), pointed(OAK_BLOB, "oak", 3)},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.type.type);
        Tag tag;
        const uint64_t injected = sweep_faults(Resource::memory, {eNOMEMORY}, [&] {
            OAK_VALUE value = of_type(OAK_NOVAL);
            const OAK_RETCODE rc =
                row.type.type_info->copy_fcn(&row.type, &value, &row.source, 100, tag);
            EXPECT_EQ(value.vt.pv != nullptr, rc == sOKAY);
            OSL_FREE(const_cast<void *>(value.vt.pv), tag);
            return rc;
        });
        EXPECT_EQ(injected != 0, faults_are_injected());
    }
}

// ---- copy_to_buff
// -----------------------------------------------------------------------------------

// Writes with every room from none to too much; `image` is the whole form.
void expect_to_buff(const _SCH_TYPE_INFO &type, const OAK_VALUE &source, const std::string &image) {
    SCOPED_TRACE(type.type);
    const B_TYPE_SCHEMA_COPY_TO_BUFF_FCN to_buff = type.type_info->copy_to_buff_fcn;
    const size_t whole = image.size() / 2;
    {
        Record record;
        EXPECT_EQ(to_buff(&type, record.bytes, nullptr, &source), sOKAY);
        EXPECT_EQ(record.head(whole), image);
        EXPECT_TRUE(record.untouched_from(whole));
    }
    for (size_t room = 0; room <= whole + 2; ++room) {
        Record record;
        size_t size = room;
        const bool cut = room != 0 && room < whole;
        const size_t written = cut ? room : whole;
        EXPECT_EQ(to_buff(&type, record.bytes, &size, &source), cut ? sTRUNCATE : sOKAY) << room;
        EXPECT_EQ(size, written);
        EXPECT_EQ(record.head(written), image.substr(0, 2 * written));
        EXPECT_TRUE(record.untouched_from(written));
        // Measuring gives the same answers.
        size_t measured = room;
        EXPECT_EQ(to_buff(&type, nullptr, &measured, &source), cut ? sTRUNCATE : sOKAY);
        EXPECT_EQ(measured, size);
    }
    EXPECT_EQ(to_buff(&type, nullptr, nullptr, &source), sOKAY);
    Record record;
    EXPECT_EQ(to_buff(&type, record.bytes, nullptr, nullptr), eINVNULLARG);
}

TEST(CopyToBuff, WritesNumbersInMachineForm) {
    expect_to_buff(number_type(OAK_BOOL), scalar(OAK_BOOL, 1u), "01000000");
    expect_to_buff(number_type(OAK_INT8), scalar(OAK_INT8, int8_t{-2}), "fe");
    expect_to_buff(number_type(OAK_UINT8), scalar(OAK_UINT8, uint8_t{2}), "02");
    expect_to_buff(number_type(OAK_INT16), scalar(OAK_INT16, int16_t{-2}), "feff");
    expect_to_buff(number_type(OAK_UINT16), scalar(OAK_UINT16, uint16_t{258}), "0201");
    expect_to_buff(number_type(OAK_INT32), scalar(OAK_INT32, -2), "feffffff");
    expect_to_buff(number_type(OAK_UINT32), scalar(OAK_UINT32, 258u), "02010000");
    expect_to_buff(number_type(OAK_INT64), scalar(OAK_INT64, int64_t{-2}), "feffffffffffffff");
    expect_to_buff(number_type(OAK_UINT64), scalar(OAK_UINT64, uint64_t{258}), "0201000000000000");
    expect_to_buff(number_type(OAK_ROWID), scalar(OAK_ROWID, uint64_t{1}), "0100000000000000");
    expect_to_buff(number_type(OAK_FLOAT), scalar(OAK_FLOAT, 1.0f), "0000803f");
    expect_to_buff(number_type(OAK_DOUBLE), scalar(OAK_DOUBLE, 1.0), "000000000000f03f");
}

template <class Element>
OAK_VALUE array_of(OAK_TYPE type, const std::vector<Element> &elements) {
    return array_at(type, elements.data(), elements.size());
}

TEST(CopyToBuff, WritesArraysInMachineForm) {
    expect_to_buff(number_type(OAK_BOOL, 2), array_of<uint32_t>(OAK_BOOL, {1, 0}),
                   "0100000000000000");
    expect_to_buff(number_type(OAK_INT8, 3), array_of<int8_t>(OAK_INT8, {1, -1, 2}), "01ff02");
    expect_to_buff(number_type(OAK_INT16, 2), array_of<int16_t>(OAK_INT16, {1, -1}), "0100ffff");
    expect_to_buff(number_type(OAK_UINT32, 2), array_of<uint32_t>(OAK_UINT32, {1, 2}),
                   "0100000002000000");
    expect_to_buff(number_type(OAK_DOUBLE, 1), array_of<double>(OAK_DOUBLE, {1.0}),
                   "000000000000f03f");
}

TEST(CopyToBuff, FillsAColumnThatItsValueDoesNotFill) {
    expect_to_buff(number_type(OAK_INT16, 3), array_of<int16_t>(OAK_INT16, {1, -1}),
                   "0100ffff0000");
    expect_to_buff(number_type(OAK_INT16, 3), scalar(OAK_INT16, int16_t{5}), "050000000000");
}

TEST(CopyToBuff, RefusesNumbersWiderThanTheirColumn) {
    Record record;
    size_t size = 0;
    const OAK_VALUE array = array_of<int16_t>(OAK_INT16, {1, 2, 3});
    const _SCH_TYPE_INFO two = number_type(OAK_INT16, 2);
    EXPECT_EQ(b_type_schema_copy_to_buff_int16(&two, record.bytes, &size, &array), eBADDATALEN);
    EXPECT_EQ(b_type_schema_copy_to_buff_int16(&two, nullptr, nullptr, &array), eBADDATALEN);
    _SCH_TYPE_INFO unfinished = number_type(OAK_INT32);
    unfinished.byte_len = 0;
    const OAK_VALUE number = scalar(OAK_INT32, 1);
    EXPECT_EQ(b_type_schema_copy_to_buff_int32(&unfinished, record.bytes, &size, &number),
              eBADDATALEN);
    EXPECT_EQ(size, 0u);
    EXPECT_TRUE(record.untouched_from(0));
    OAK_VALUE empty = of_type(OAK_INT16);
    empty.elts = 2;
    EXPECT_EQ(b_type_schema_copy_to_buff_int16(&two, record.bytes, nullptr, &empty), eINVNULLARG);
}

TEST(CopyToBuff, WritesDatesAndTimesWithZeroPadding) {
    expect_to_buff(descriptor(OAK_DATE), scalar(OAK_DATE, 0x01020304u), "04030201");
    expect_to_buff(descriptor(OAK_TIME), scalar(OAK_TIME, 5u), "05000000");
    expect_to_buff(descriptor(OAK_TIMESTAMP), scalar(OAK_TIMESTAMP, OAK_PACKED_TIMESTAMP_T{1, 2}),
                   "0100000002000000");
    OAK_VALUE zoned = of_type(OAK_TIMETZ);
    memset(&zoned.vt, 0xEE, sizeof zoned.vt);
    zoned.vt.tmzv.time = 5;
    zoned.vt.tmzv.tz = -90;
    expect_to_buff(descriptor(OAK_TIMETZ), zoned, "05000000a6ff0000");
    alignas(4) uint8_t moment[12];
    memset(moment, 0xEE, sizeof moment);
    const uint32_t date = 1;
    const uint32_t time = 2;
    const int16_t tz = 60;
    memcpy(moment, &date, 4);
    memcpy(moment + 4, &time, 4);
    memcpy(moment + 8, &tz, 2);
    expect_to_buff(descriptor(OAK_TIMESTAMPTZ), pointed(OAK_TIMESTAMPTZ, moment),
                   "01000000020000003c000000");
}

TEST(CopyToBuff, WritesRecordsBehindAPointer) {
    expect_to_buff(descriptor(OAK_UUID), pointed(OAK_UUID, &kUuid), hex(&kUuid, 16));
    OAK_BCD_T numbers[2] = {some_decimal(), some_decimal()};
    numbers[1].sign = 1;
    expect_to_buff(decimal_type(4, 1), pointed(OAK_BCD, numbers), hex(numbers, 37));
    const OAK_VALUE two = array_at(OAK_BCD, numbers, 2);
    expect_to_buff(decimal_type(4, 1), two, hex(numbers, 74));
    Record record;
    for (const OAK_TYPE code : {OAK_UUID, OAK_BCD, OAK_TIMESTAMPTZ}) {
        const _SCH_TYPE_INFO type = descriptor(code);
        const OAK_VALUE nothing = of_type(code);
        EXPECT_EQ(type.type_info->copy_to_buff_fcn(&type, record.bytes, nullptr, &nothing),
                  eINVNULLARG);
    }
    EXPECT_TRUE(record.untouched_from(0));
}

TEST(CopyToBuff, WritesTextWithItsTerminator) {
    expect_to_buff(text_type(20), pointed(OAK_CHAR, "oak", 4), "6f616b00");
    expect_to_buff(text_type(20), pointed(OAK_CHAR, "oak", 0), "6f616b00");
    expect_to_buff(text_type(20), pointed(OAK_CHAR, "", 0), "00");
    Record record;
    const OAK_VALUE nothing = of_type(OAK_CHAR);
    const _SCH_TYPE_INFO type = text_type(20);
    EXPECT_EQ(b_type_schema_copy_to_buff_utf8(&type, record.bytes, nullptr, &nothing), eINVNULLARG);
}

TEST(CopyToBuff, WritesBinaryByItsLengthOrTheColumns) {
    expect_to_buff(binary_type(4), pointed(OAK_BINARY, "oaks", 3), "6f616b");
    expect_to_buff(binary_type(4), pointed(OAK_BINARY, "oaks", 0), "6f616b73");
    Record record;
    const OAK_VALUE nothing = pointed(OAK_BINARY, nullptr, 3);
    const _SCH_TYPE_INFO type = binary_type(4);
    EXPECT_EQ(b_type_schema_copy_to_buff_binary(&type, record.bytes, nullptr, &nothing),
              eINVNULLARG);
}

TEST(CopyToBuff, RefusesTextAndBinaryBeyondTheColumnWhereNoRoomIsTold) {
    Record record;
    const OAK_VALUE text = pointed(OAK_CHAR, "birch", 6);
    const _SCH_TYPE_INFO five = text_type(5);
    EXPECT_EQ(b_type_schema_copy_to_buff_utf8(&five, record.bytes, nullptr, &text), eBADDATALEN);
    size_t size = 0;
    EXPECT_EQ(b_type_schema_copy_to_buff_utf8(&five, record.bytes, &size, &text), eBADDATALEN);
    size = 6; // the caller knows better
    EXPECT_EQ(b_type_schema_copy_to_buff_utf8(&five, record.bytes, &size, &text), sOKAY);
    record = Record();
    const OAK_VALUE binary = pointed(OAK_BINARY, "birch", 5);
    const _SCH_TYPE_INFO four = binary_type(4);
    EXPECT_EQ(b_type_schema_copy_to_buff_binary(&four, record.bytes, nullptr, &binary),
              eBADDATALEN);
    const OAK_VALUE varbinary = pointed(OAK_VARBINARY, "birch", 5);
    const _SCH_TYPE_INFO var_four = varbinary_type(4);
    EXPECT_EQ(b_type_schema_copy_to_buff_varbinary(&var_four, record.bytes, nullptr, &varbinary),
              eBADDATALEN);
    EXPECT_TRUE(record.untouched_from(0));
}

TEST(CopyToBuff, WritesTheLengthOfAVarbinaryFirst) {
    const _SCH_TYPE_INFO type = varbinary_type(10);
    const OAK_VALUE source = pointed(OAK_VARBINARY, "oak", 3);
    struct {
        size_t room;
        OAK_RETCODE rc;
        size_t written;
        const char *image;
    } const cases[] = {
        {0, sTRUNCATE, 0, ""},        {1, sTRUNCATE, 0, ""},         {2, sTRUNCATE, 2, "0300"},
        {3, sTRUNCATE, 3, "03006f"},  {4, sTRUNCATE, 4, "03006f61"}, {5, sOKAY, 5, "03006f616b"},
        {90, sOKAY, 5, "03006f616b"},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.room);
        Record record;
        size_t size = row.room;
        EXPECT_EQ(b_type_schema_copy_to_buff_varbinary(&type, record.bytes, &size, &source),
                  row.rc);
        EXPECT_EQ(record.head(row.written), row.image);
        EXPECT_TRUE(record.untouched_from(row.written));
        EXPECT_EQ(size, row.written == 0 ? row.room : row.written);
    }
    Record record;
    EXPECT_EQ(b_type_schema_copy_to_buff_varbinary(&type, record.bytes, nullptr, &source), sOKAY);
    EXPECT_EQ(record.head(5), "03006f616b");
    size_t size = 0;
    EXPECT_EQ(b_type_schema_copy_to_buff_varbinary(&type, nullptr, &size, &source), sOKAY);
    EXPECT_EQ(size, 5u);
    size = 4;
    EXPECT_EQ(b_type_schema_copy_to_buff_varbinary(&type, nullptr, &size, &source), sTRUNCATE);
    EXPECT_EQ(size, 4u);
}

TEST(CopyToBuff, WritesTwoZerosForAnEmptyVarbinary) {
    const _SCH_TYPE_INFO type = varbinary_type(10);
    const OAK_VALUE source = pointed(OAK_VARBINARY, nullptr, 0);
    for (const size_t room : {size_t{2}, size_t{50}}) {
        Record record;
        size_t size = room;
        EXPECT_EQ(b_type_schema_copy_to_buff_varbinary(&type, record.bytes, &size, &source), sOKAY);
        EXPECT_EQ(size, 2u);
        EXPECT_EQ(record.head(2), "0000");
        EXPECT_TRUE(record.untouched_from(2));
    }
}

TEST(CopyToBuff, RefusesAVarbinaryThatItsLengthCannotTell) {
    const std::vector<uint8_t> bytes(65536, 7);
    const _SCH_TYPE_INFO type = varbinary_type(100);
    std::vector<uint8_t> room(70000, 0xEE);
    size_t size = room.size();
    OAK_VALUE source = pointed(OAK_VARBINARY, bytes.data(), 65536);
    EXPECT_EQ(b_type_schema_copy_to_buff_varbinary(&type, room.data(), &size, &source),
              eBADDATALEN);
    source.len = 65535;
    EXPECT_EQ(b_type_schema_copy_to_buff_varbinary(&type, room.data(), &size, &source), sOKAY);
    EXPECT_EQ(size, 65537u);
    EXPECT_EQ(hex(room.data(), 3), "ffff07");
    source.vt.pv = nullptr;
    EXPECT_EQ(b_type_schema_copy_to_buff_varbinary(&type, room.data(), &size, &source),
              eINVNULLARG);
    EXPECT_EQ(b_type_schema_copy_to_buff_varbinary(&type, room.data(), &size, nullptr),
              eINVNULLARG);
}

// ---- copy_from_buff, assign_from_buff
// ---------------------------------------------------------------------

struct Image {
    _SCH_TYPE_INFO type;
    std::string bytes; // hexadecimal
};

const Image kInline[] = {
    {number_type(OAK_BOOL), "01000000"},
    {number_type(OAK_INT8), "fe"},
    {number_type(OAK_UINT8), "02"},
    {number_type(OAK_INT16), "feff"},
    {number_type(OAK_UINT16), "0201"},
    {number_type(OAK_INT32), "feffffff"},
    {number_type(OAK_UINT32), "02010000"},
    {number_type(OAK_INT64), "feffffffffffffff"},
    {number_type(OAK_UINT64), "0201000000000000"},
    {number_type(OAK_ROWID), "0100000000000000"},
    {number_type(OAK_FLOAT), "0000803f"},
    {number_type(OAK_DOUBLE), "000000000000f03f"},
    {descriptor(OAK_DATE), "04030201"},
    {descriptor(OAK_TIME), "05000000"},
    {descriptor(OAK_TIMETZ), "05000000a6ff0000"},
    {descriptor(OAK_TIMESTAMP), "0100000002000000"},
};

TEST(FromBuff, ReadsScalarsFromExactlyTheirBytes) {
    for (const Image &image : kInline) {
        SCOPED_TRACE(image.type.type);
        const std::vector<uint8_t> bytes = unhex(image.bytes);
        Column column(image.type);
        for (const size_t size : {bytes.size(), bytes.size() + 1, size_t{0}}) {
            for (const bool copies : {true, false}) {
                ASSERT_EQ(copies ? column.from_buff(bytes.data(), size)
                                 : column.assign(bytes.data(), size),
                          sOKAY);
                EXPECT_EQ(column.value.status, vsOKAY);
                EXPECT_EQ(column.value.elts, 0u);
                EXPECT_EQ(column.value.len, 0u);
                EXPECT_EQ(hex(&column.value.vt, bytes.size()), image.bytes);
            }
        }
        EXPECT_EQ(column.tag.live(), 0u);
    }
}

TEST(FromBuff, StoresNothingOfAScalarThatIsCut) {
    for (const Image &image : kInline) {
        SCOPED_TRACE(image.type.type);
        const std::vector<uint8_t> bytes = unhex(image.bytes);
        Column column(image.type);
        for (size_t size = 1; size < bytes.size(); ++size) {
            const std::vector<uint8_t> exact(bytes.begin(),
                                             bytes.begin() + static_cast<long>(size));
            EXPECT_EQ(column.from_buff(exact.data(), size), sTRUNCATE);
            EXPECT_EQ(hex(&column.value.vt, 8), "5a5a5a5a5a5a5a5a");
            EXPECT_EQ(column.assign(exact.data(), size), sTRUNCATE);
            EXPECT_EQ(hex(&column.value.vt, 8), "5a5a5a5a5a5a5a5a");
        }
    }
}

TEST(FromBuff, ReadsAtAnyAddress) {
    for (const Image &image : kInline) {
        std::vector<uint8_t> bytes = unhex("00" + image.bytes);
        Column column(image.type);
        ASSERT_EQ(column.assign(bytes.data() + 1, 0), sOKAY);
        EXPECT_EQ(hex(&column.value.vt, bytes.size() - 1), image.bytes);
    }
}

const Image kShared[] = {
    {number_type(OAK_BOOL, 2), "0100000000000000"},
    {number_type(OAK_INT8, 3), "01ff02"},
    {number_type(OAK_UINT8, 3), "01ff02"},
    {number_type(OAK_INT16, 2), "0100ffff"},
    {number_type(OAK_UINT16, 2), "0100ffff"},
    {number_type(OAK_INT32, 2), "01000000feffffff"},
    {number_type(OAK_UINT32, 2), "01000000feffffff"},
    {number_type(OAK_INT64, 1), "0100000000000000"},
    {number_type(OAK_UINT64, 1), "0100000000000000"},
    {number_type(OAK_FLOAT, 1), "0000803f"},
    {number_type(OAK_DOUBLE, 2), "000000000000f03f000000000000f0bf"},
    {descriptor(OAK_TIMESTAMPTZ), "01000000020000003c000000"},
    {descriptor(OAK_UUID), "000102030405060708090a0b0c0d0e0f"},
    {decimal_type(4, 1), "03020100000103010400000000000000000000000000000000000000"
                         "000000000000000000"},
};

TEST(FromBuff, SharesOrCopiesArraysAndRecords) {
    for (const Image &image : kShared) {
        SCOPED_TRACE(image.type.type);
        const std::vector<uint8_t> bytes = unhex(image.bytes);
        Column column(image.type);
        for (const size_t size : {bytes.size(), bytes.size() + 1, size_t{0}}) {
            ASSERT_EQ(column.assign(bytes.data(), size), sOKAY);
            EXPECT_EQ(column.value.vt.pv, bytes.data());
            EXPECT_EQ(column.value.status, vsOKAY);
            EXPECT_EQ(column.value.elts, image.type.elems);
            EXPECT_EQ(column.value.len, 0u);
            ASSERT_EQ(column.from_buff(bytes.data(), size), sOKAY);
            EXPECT_NE(column.value.vt.pv, bytes.data());
            EXPECT_EQ(column.payload(bytes.size()), image.bytes);
            EXPECT_EQ(column.value.elts, image.type.elems);
            EXPECT_EQ(column.value.len, 0u);
            column.release();
        }
    }
}

TEST(FromBuff, FillsUpACopyOfAShortBuffer) {
    for (const Image &image : kShared) {
        SCOPED_TRACE(image.type.type);
        const std::vector<uint8_t> bytes = unhex(image.bytes);
        Column column(image.type);
        for (size_t size = 1; size < bytes.size(); ++size) {
            const std::vector<uint8_t> exact(bytes.begin(),
                                             bytes.begin() + static_cast<long>(size));
            ASSERT_EQ(column.from_buff(exact.data(), size), sTRUNCATE);
            EXPECT_EQ(column.payload(bytes.size()),
                      hex(exact.data(), size) + std::string(2 * (bytes.size() - size), '0'));
            column.release();
            EXPECT_EQ(column.assign(exact.data(), size), sTRUNCATE); // and shares nothing
            EXPECT_EQ(hex(&column.value.vt, 8), "5a5a5a5a5a5a5a5a");
        }
    }
}

TEST(FromBuff, MeasuresText) {
    Column column(text_type(20));
    const char buffer[] = "oak\0birch";
    for (const size_t size : {size_t{0}, size_t{4}, size_t{9}}) {
        ASSERT_EQ(column.assign(buffer, size), sOKAY);
        EXPECT_EQ(column.value.vt.cv, buffer);
        EXPECT_EQ(column.value.len, 4u);
        EXPECT_EQ(column.value.status, vsOKAY);
        ASSERT_EQ(column.from_buff(buffer, size), sOKAY);
        EXPECT_NE(column.value.vt.cv, buffer);
        EXPECT_STREQ(column.value.vt.cv, "oak");
        EXPECT_EQ(column.value.len, 4u);
        column.release();
    }
    ASSERT_EQ(column.assign("", 1), sOKAY);
    EXPECT_EQ(column.value.len, 1u);
}

TEST(FromBuff, RefusesTextWithoutATerminatorInTheBuffer) {
    Column column(text_type(20));
    for (size_t size = 1; size <= 5; ++size) {
        const std::vector<char> exact(size, 'x');
        EXPECT_EQ(column.assign(exact.data(), size), eBADDATALEN);
        EXPECT_EQ(column.from_buff(exact.data(), size), eBADDATALEN);
        EXPECT_EQ(hex(&column.value.vt, 8), "5a5a5a5a5a5a5a5a");
    }
    EXPECT_EQ(column.tag.live(), 0u);
}

TEST(FromBuff, GivesABinaryTheLengthOfItsColumn) {
    Column column(binary_type(4));
    const uint8_t buffer[] = {1, 2, 3, 4, 5};
    for (const size_t size : {size_t{0}, size_t{4}, size_t{5}}) {
        ASSERT_EQ(column.assign(buffer, size), sOKAY);
        EXPECT_EQ(column.value.vt.pv, buffer);
        EXPECT_EQ(column.value.len, 4u);
        EXPECT_EQ(column.value.status, vsOKAY);
        EXPECT_EQ(column.value.elts, 0u);
        ASSERT_EQ(column.from_buff(buffer, size), sOKAY);
        EXPECT_EQ(column.payload(4), "01020304");
        EXPECT_EQ(column.value.len, 4u);
        EXPECT_EQ(column.value.status, vsOKAY);
        EXPECT_EQ(column.value.elts, 0u);
        column.release();
    }
    ASSERT_EQ(column.from_buff(buffer, 2), sTRUNCATE);
    EXPECT_EQ(column.payload(4), "01020000");
    EXPECT_EQ(column.value.len, 4u);
    column.release();
    EXPECT_EQ(column.assign(buffer, 2), sTRUNCATE);
}

TEST(FromBuff, ReadsTheLengthOfAVarbinary) {
    Column column(varbinary_type(10));
    const std::vector<uint8_t> buffer = unhex("0300 6f616b ff");
    for (const size_t size : {size_t{0}, size_t{5}, size_t{6}}) {
        ASSERT_EQ(column.assign(buffer.data(), size), sOKAY);
        EXPECT_EQ(column.value.vt.pv, buffer.data() + 2);
        EXPECT_EQ(column.value.len, 3u);
        ASSERT_EQ(column.from_buff(buffer.data(), size), sOKAY);
        EXPECT_EQ(column.payload(3), "6f616b");
        EXPECT_EQ(column.value.len, 3u);
        column.release();
    }
    for (size_t size = 1; size < 5; ++size) {
        EXPECT_EQ(column.assign(buffer.data(), size), eBADDATALEN) << size;
        EXPECT_EQ(column.from_buff(buffer.data(), size), eBADDATALEN) << size;
    }
    const uint8_t empty[] = {0, 0};
    for (const size_t size : {size_t{0}, size_t{2}}) {
        ASSERT_EQ(column.assign(empty, size), sOKAY);
        EXPECT_EQ(column.value.len, 0u);
        EXPECT_EQ(column.value.status, vsOKAY);
        EXPECT_EQ(column.value.vt.pv, nullptr);
        ASSERT_EQ(column.from_buff(empty, size), sOKAY);
        EXPECT_EQ(column.value.len, 0u);
        EXPECT_EQ(column.value.vt.pv, nullptr);
    }
}

TEST(FromBuff, GivesALargeObjectTheWholeBuffer) {
    for (const OAK_TYPE code : {OAK_BLOB, OAK_CLOB}) {
        Column column(descriptor(code));
        const uint8_t buffer[] = {1, 2, 3};
        ASSERT_EQ(column.assign(buffer, 3), sOKAY);
        EXPECT_EQ(column.value.vt.pv, buffer);
        EXPECT_EQ(column.value.len, 3u);
        EXPECT_EQ(column.value.status, vsOKAY);
        ASSERT_EQ(column.from_buff(buffer, 3), sOKAY);
        EXPECT_EQ(column.payload(3), "010203");
        EXPECT_EQ(column.value.len, 3u);
        column.release();
        for (const void *place :
             {static_cast<const void *>(nullptr), static_cast<const void *>(buffer)}) {
            ASSERT_EQ(column.assign(place, 0), sOKAY);
            EXPECT_EQ(column.value.status, vsNOVAL);
            EXPECT_EQ(column.value.vt.pv, nullptr);
            EXPECT_EQ(column.value.len, 0u);
            ASSERT_EQ(column.from_buff(place, 0), sOKAY);
            EXPECT_EQ(column.value.status, vsNOVAL);
        }
        EXPECT_EQ(column.assign(nullptr, 3), eINVNULLARG);
        EXPECT_EQ(column.from_buff(nullptr, 3), eINVNULLARG);
        EXPECT_EQ(column.ops.copy_from_buff_fcn(&column.type, nullptr, buffer, 3, column.tag),
                  eINVNULLARG);
        EXPECT_EQ(column.ops.assign_from_buff_fcn(&column.type, nullptr, buffer, 3), eINVNULLARG);
    }
}

TEST(FromBuff, RefusesNullPointers) {
    const uint8_t buffer[37] = {};
    for (const OAK_TYPE code : {OAK_INT32, OAK_DATE, OAK_TIMESTAMPTZ, OAK_UUID, OAK_BCD, OAK_CHAR,
                                OAK_BINARY, OAK_VARBINARY}) {
        Column column(descriptor(code));
        EXPECT_EQ(column.assign(nullptr, 0), eINVNULLARG) << code;
        EXPECT_EQ(column.from_buff(nullptr, 0), eINVNULLARG) << code;
        EXPECT_EQ(column.ops.assign_from_buff_fcn(&column.type, nullptr, buffer, 0), eINVNULLARG);
        EXPECT_EQ(column.ops.copy_from_buff_fcn(&column.type, nullptr, buffer, 0, column.tag),
                  eINVNULLARG);
    }
}

TEST(FromBuff, LeavesNothingBehindWhenMemoryEnds) {
    const std::vector<uint8_t> bytes = unhex("0300616263646500000000000000000000000000000000"
                                             "00000000000000000000000000000000");
    for (const _SCH_TYPE_INFO &type :
         {number_type(OAK_INT16, 3), descriptor(OAK_TIMESTAMPTZ), descriptor(OAK_UUID),
          decimal_type(4, 1), text_type(20), binary_type(5), varbinary_type(5),
          descriptor(OAK_BLOB), descriptor(OAK_CLOB)}) {
        SCOPED_TRACE(type.type);
        Tag tag;
        const uint64_t injected = sweep_faults(Resource::memory, {eNOMEMORY}, [&] {
            OAK_VALUE value = of_type(OAK_NOVAL);
            const OAK_RETCODE rc =
                type.type_info->copy_from_buff_fcn(&type, &value, bytes.data(), bytes.size(), tag);
            EXPECT_EQ(value.vt.pv != nullptr, rc == sOKAY);
            OSL_FREE(const_cast<void *>(value.vt.pv), tag);
            return rc;
        });
        EXPECT_EQ(injected != 0, faults_are_injected());
    }
}

// ---- Round trips
// ----------------------------------------------------------------------------------------

TEST(RecordBuffer, ReadsWhatItWrites) {
    std::vector<Image> images(std::begin(kInline), std::end(kInline));
    images.insert(images.end(), std::begin(kShared), std::end(kShared));
    images.push_back({text_type(10), "6f616b00"});
    images.push_back({binary_type(3), "6f616b"});
    images.push_back({varbinary_type(3), "03006f616b"});
    for (const Image &image : images) {
        SCOPED_TRACE(image.type.type);
        const std::vector<uint8_t> bytes = unhex(image.bytes);
        Column column(image.type);
        ASSERT_EQ(column.assign(bytes.data(), bytes.size()), sOKAY);
        Record record;
        size_t size = bytes.size();
        ASSERT_EQ(column.ops.copy_to_buff_fcn(&column.type, record.bytes, &size, &column.value),
                  sOKAY);
        EXPECT_EQ(size, bytes.size());
        EXPECT_EQ(record.head(bytes.size()), image.bytes);
    }
}

// ---- free
// -------------------------------------------------------------------------------------------------

TEST(Free, FreesArraysByTheirElements) {
    Tag tag;
    for (const OAK_TYPE code :
         {OAK_BOOL, OAK_INT8, OAK_UINT8, OAK_INT16, OAK_UINT16, OAK_INT32, OAK_UINT32, OAK_INT64,
          OAK_UINT64, OAK_FLOAT, OAK_DOUBLE, OAK_ROWID}) {
        OAK_VALUE value = pointed(code, OSL_GET(16, tag));
        value.elts = 2;
        b_typeGetInfo(code)->free_fcn(&value, tag);
        EXPECT_EQ(value.vt.pv, nullptr);
        EXPECT_EQ(tag.live(), 0u);
        value = scalar(code, uint64_t{77});
        b_typeGetInfo(code)->free_fcn(&value, tag);
        EXPECT_EQ(value.vt.u64v, 77u); // a scalar is no pointer
        b_typeGetInfo(code)->free_fcn(nullptr, tag);
    }
}

TEST(Free, FreesPointedPayloadsAlways) {
    Tag tag;
    for (const OAK_TYPE code : {OAK_UUID, OAK_BCD, OAK_CHAR, OAK_WVARCHAR, OAK_BINARY}) {
        OAK_VALUE value = pointed(code, OSL_GET(40, tag));
        b_typeGetInfo(code)->free_fcn(&value, tag);
        EXPECT_EQ(value.vt.pv, nullptr);
        EXPECT_EQ(tag.live(), 0u);
        b_typeGetInfo(code)->free_fcn(&value, tag); // once more does no harm
        b_typeGetInfo(code)->free_fcn(nullptr, tag);
    }
}

TEST(Free, FreesRunsThatHaveALength) {
    Tag tag;
    for (const OAK_TYPE code : {OAK_VARBINARY, OAK_BLOB, OAK_CLOB, OAK_WCLOB}) {
        void *block = OSL_GET(8, tag);
        OAK_VALUE value = pointed(code, block, 0);
        b_typeGetInfo(code)->free_fcn(&value, tag);
        EXPECT_EQ(value.vt.pv, block);
        value.len = 1;
        b_typeGetInfo(code)->free_fcn(&value, tag);
        EXPECT_EQ(value.vt.pv, nullptr);
        EXPECT_EQ(tag.live(), 0u);
        b_typeGetInfo(code)->free_fcn(nullptr, tag);
    }
}

} // namespace
