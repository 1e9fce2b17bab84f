// Column operations: NULL and the has-value byte, the effective type, text, and
// defaults of every type.
#include "schema_fcns.h"

#include <cstring>
#include <string>
#include <vector>

#include "bcd.h"
#include "buff.h"
#include "catalog.h"
#include "datetime.h"
#include "oakvaluetypes.h"
#include "schema_internal.h"
#include "schema_structs.h"
#include "types.h"
#include "uuid.h"
#include "value.h"

namespace {

using oaktest::one_table;

std::string column(const char *type, const char *more = "", int id = 0) {
    return "{\"colid\": " + std::to_string(id) + ", \"name\": \"c" + std::to_string(id) +
           "\", \"type\": {\"data_type\": \"" + type + "\"" + more + "}}";
}

std::string large_column(const char *type) {
    return one_table(
        std::string(R"({"colid": 0, "name": "c", "dwrid": 6, "type": {"data_type": ")") + type +
            "\"}}",
        1, "", R"(,{"dwrid": 6, "tabid": "1", "srcid": 0, "type": "blob"})", 7);
}

/// The only column of a one-column table.
struct OneColumn {
    oaktest::Catalog catalog;
    SCH_COL_INFO ci;
    explicit OneColumn(const std::string &text)
        : catalog(text), ci(sch_get_col_by_index(catalog.table("t"), 0)) {}
    OneColumn(const char *type, const char *more) : OneColumn(one_table(column(type, more), 1)) {}
};

OAK_VALUE int32_value(int32_t number) {
    OAK_VALUE value;
    oak_valueInit(&value);
    oak_valueSetInt32(&value, number);
    return value;
}

OAK_VALUE null_value() {
    OAK_VALUE value;
    oak_valueInitAndSetNull(&value);
    return value;
}

// ---- Comparing ---------------------------------------------------------------

TEST(ColumnCompare, SortsNullBelowAnyValue) {
    const OneColumn c("int32", "");
    const OAK_VALUE null = null_value(), one = int32_value(1), two = int32_value(2);
    EXPECT_EQ(sch_col_cmp_fcn(c.ci, 0, &null, &null), OAK_EQ);
    EXPECT_EQ(sch_col_cmp_fcn(c.ci, 0, &null, &one), OAK_LT);
    EXPECT_EQ(sch_col_cmp_fcn(c.ci, 0, &one, &null), OAK_GT);
    EXPECT_EQ(sch_col_cmp_fcn(c.ci, 0, &one, &two), OAK_LT);
    EXPECT_EQ(sch_col_cmp_fcn(c.ci, 0, &two, &one), OAK_GT);
    EXPECT_EQ(sch_col_cmp_fcn(c.ci, 0, &two, &two), OAK_EQ);
}

TEST(ColumnCompare, TakesANullBufferForNull) {
    const OneColumn c("int32", "");
    const OAK_VALUE null = null_value(), one = int32_value(1);
    const int32_t two = 2;
    EXPECT_EQ(sch_col_cmp_buff_fcn(c.ci, 0, &null, nullptr, 0), OAK_EQ);
    EXPECT_EQ(sch_col_cmp_buff_fcn(c.ci, 0, &null, &two, sizeof two), OAK_LT);
    EXPECT_EQ(sch_col_cmp_buff_fcn(c.ci, 0, &one, nullptr, 0), OAK_GT);
    EXPECT_EQ(sch_col_cmp_buff_fcn(c.ci, 0, &one, &two, sizeof two), OAK_LT);
}

TEST(ColumnCompare, HandsTheLimitOnToTexts) {
    const OneColumn c("varchar", ", \"length\": 10");
    OAK_VALUE one, other;
    oak_valueInit(&one);
    oak_valueInit(&other);
    ASSERT_EQ(oak_valueSetString(&one, "abc"), sOKAY);
    ASSERT_EQ(oak_valueSetString(&other, "abd"), sOKAY);
    EXPECT_EQ(sch_col_cmp_fcn(c.ci, 0, &one, &other), OAK_LT);
    EXPECT_EQ(sch_col_cmp_fcn(c.ci, 2, &one, &other), OAK_EQ);
    EXPECT_EQ(sch_col_cmp_buff_fcn(c.ci, 0, &one, "abd", 4), OAK_LT);
    EXPECT_EQ(sch_col_cmp_buff_fcn(c.ci, 2, &one, "abd", 4), OAK_EQ);
}

TEST(ColumnCompare, FindsLargeObjectsEqual) {
    const OneColumn c(large_column("blob"));
    OAK_VALUE value;
    oak_valueInit(&value);
    ASSERT_EQ(oak_valueSetBinary(&value, "x", 1), sOKAY);
    EXPECT_EQ(sch_col_cmp_fcn(c.ci, 0, &value, &value), OAK_EQ);
}

// ---- Copying -----------------------------------------------------------------

TEST(ColumnCopy, CopiesThePayloadOfAValueAlone) {
    oaktest::Tag tag;
    const OneColumn c("varchar", ", \"length\": 10");
    OAK_VALUE from, to{};
    oak_valueInit(&from);
    ASSERT_EQ(oak_valueSetString(&from, "abc"), sOKAY);
    ASSERT_EQ(sch_col_copy_fcn(c.ci, &to, &from, 100, tag), sOKAY);
    EXPECT_EQ(to.status, vsOKAY);
    EXPECT_STREQ(to.vt.cv, "abc");
    EXPECT_NE(to.vt.cv, from.vt.cv);
    sch_col_free_fcn(c.ci, &to, tag);
    EXPECT_EQ(to.status, vsNOVAL);
    // No more than the extra bytes are allocated: two characters and their end.
    EXPECT_EQ(sch_col_copy_fcn(c.ci, &to, &from, 3, tag), sTRUNCATE);
    EXPECT_STREQ(to.vt.cv, "ab");
    sch_col_free_fcn(c.ci, &to, tag);
    OAK_VALUE null = null_value();
    null.type = OAK_VARCHAR;
    null.elts = 3;
    to = OAK_VALUE{};
    ASSERT_EQ(sch_col_copy_fcn(c.ci, &to, &null, 100, tag), sOKAY);
    EXPECT_EQ(to.status, vsNULL);
    EXPECT_EQ(to.type, OAK_VARCHAR);
    EXPECT_EQ(to.elts, 3u);
    EXPECT_EQ(to.vt.cv, nullptr);
}

TEST(ColumnCopy, GoesToARecordBufferWithItsHasValueByte) {
    const OneColumn c(one_table(column("int32") + "," + column("int32", "", 1), 2));
    const OAK_VALUE seven = int32_value(7), null = null_value();
    int32_t data = 0;
    size_t size = sizeof data;
    OAK_HAS_VALUE_T has_value = 9;
    ASSERT_EQ(sch_col_copy_to_buff_fcn(c.ci, &data, &size, &has_value, &seven), sOKAY);
    EXPECT_EQ(data, 7);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(has_value, 1);
    ASSERT_EQ(sch_col_copy_to_buff_fcn(c.ci, &data, &size, &has_value, &null), sOKAY);
    EXPECT_EQ(has_value, 0);
    EXPECT_EQ(data, 7);
    EXPECT_EQ(sch_col_copy_to_buff_fcn(c.ci, &data, &size, nullptr, &seven), sOKAY);
    OAK_VALUE none;
    oak_valueInit(&none);
    data = 5;
    ASSERT_EQ(sch_col_copy_to_buff_fcn(c.ci, &data, &size, &has_value, &none), sOKAY);
    EXPECT_EQ(has_value, 1) << "what is not NULL has a value, though none is written";
    EXPECT_EQ(data, 5);
    // A column that cannot be NULL has no byte to set.
    const OneColumn set(one_table(
        R"({"colid": 0, "name": "c", "not_null": "", "type": {"data_type": "int32"}})", 1));
    has_value = 9;
    ASSERT_EQ(sch_col_copy_to_buff_fcn(set.ci, &data, &size, &has_value, &seven), sOKAY);
    EXPECT_EQ(has_value, 9);
}

TEST(ColumnCopy, LeavesALargeObjectsBytesWhereTheyAre) {
    const OneColumn c(large_column("blob"));
    OAK_VALUE value;
    oak_valueInit(&value);
    ASSERT_EQ(oak_valueSetBinary(&value, "xyz", 3), sOKAY);
    char data[4] = "...";
    size_t size = sizeof data;
    OAK_HAS_VALUE_T has_value = 9;
    ASSERT_EQ(sch_col_copy_to_buff_fcn(c.ci, data, &size, &has_value, &value), sOKAY);
    EXPECT_STREQ(data, "...");
    EXPECT_EQ(size, sizeof data);
}

TEST(ColumnCopy, WritesTextWithItsSize) {
    const OneColumn c(one_table(column("int32") + "," + column("int32", "", 1), 2));
    const OAK_VALUE number = int32_value(-1234), null = null_value();
    char text[20];
    size_t size = sizeof text;
    OAK_HAS_VALUE_T has_value = 9;
    ASSERT_EQ(sch_col_copy_to_str_fcn(c.ci, 0, text, &size, &has_value, &number), sOKAY);
    EXPECT_STREQ(text, "-1234");
    EXPECT_EQ(size, 6u);
    EXPECT_EQ(has_value, 1);
    size = sizeof text;
    ASSERT_EQ(sch_col_copy_to_str_fcn(c.ci, 0, text, &size, &has_value, &null), sOKAY);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(has_value, 0);
    OAK_VALUE day;
    oak_valueInit(&day);
    oak_valueSetDate(&day, 1);
    size = sizeof text;
    ASSERT_EQ(sch_col_copy_to_str_fcn(c.ci, 0, text, &size, nullptr, &day), sOKAY);
    EXPECT_STREQ(text, "0001-01-01");
    OAK_VALUE moment; // 01:02:03.0004
    oak_valueInit(&moment);
    oak_valueSetTime(&moment, 37230004);
    size = sizeof text;
    ASSERT_EQ(sch_col_copy_to_str_fcn(c.ci, 0, text, &size, nullptr, &moment), sOKAY);
    EXPECT_STREQ(text, "01:02:03.0004");
    EXPECT_EQ(size, 14u);
    const OAK_PACKED_TIMESTAMPTZ_T zoned = {2, 36000000, 60}; // 01:00 UTC, an hour east of it
    moment.type = OAK_TIMESTAMPTZ;
    moment.vt.tszv = &zoned;
    for (const int16_t zone : {0, 120}) {
        char shown[40];
        size = sizeof shown;
        ASSERT_EQ(sch_col_copy_to_str_fcn(c.ci, zone, shown, &size, nullptr, &moment), sOKAY);
        EXPECT_STREQ(shown, "0001-01-02 02:00:00.0000 +01:00") << "in its own zone";
    }
    OAK_VALUE word;
    oak_valueInit(&word);
    ASSERT_EQ(oak_valueSetString(&word, "too long for it"), sOKAY);
    size = 4;
    EXPECT_EQ(sch_col_copy_to_str_fcn(c.ci, 0, text, &size, &has_value, &word), sTRUNCATE);
    EXPECT_STREQ(text, "too");
    EXPECT_EQ(has_value, 1);
    size = 0; // no room: nothing is written
    std::strcpy(text, "before");
    EXPECT_EQ(sch_col_copy_to_str_fcn(c.ci, 0, text, &size, nullptr, &number), sTRUNCATE);
    EXPECT_EQ(size, 6u);
    EXPECT_STREQ(text, "before");
    size = 0;
    EXPECT_EQ(sch_col_copy_to_str_fcn(c.ci, 0, nullptr, &size, nullptr, &number), sOKAY);
    EXPECT_EQ(size, 6u);
}

TEST(ColumnCopy, ComesFromARecordBuffer) {
    oaktest::Tag tag;
    const OneColumn c(one_table(column("varchar", ", \"length\": 10"), 1));
    const char data[11] = "abc";
    const OAK_HAS_VALUE_T yes = 1, no = 0;
    OAK_VALUE value{};
    ASSERT_EQ(sch_col_copy_from_buff_fcn(c.ci, &value, data, sizeof data, &yes, tag), sOKAY);
    EXPECT_EQ(value.status, vsOKAY);
    EXPECT_EQ(value.type, OAK_VARCHAR);
    EXPECT_STREQ(value.vt.cv, "abc");
    EXPECT_NE(value.vt.cv, data);
    sch_col_free_fcn(c.ci, &value, tag);
    ASSERT_EQ(sch_col_assign_from_buff_fcn(c.ci, &value, data, sizeof data, &yes), sOKAY);
    EXPECT_EQ(value.vt.cv, data);
    ASSERT_EQ(sch_col_assign_from_buff_fcn(c.ci, &value, data, sizeof data, nullptr), sOKAY);
    EXPECT_EQ(value.status, vsOKAY);
    ASSERT_EQ(sch_col_assign_from_buff_fcn(c.ci, &value, data, sizeof data, &no), sOKAY);
    EXPECT_EQ(value.status, vsNULL);
    ASSERT_EQ(sch_col_copy_from_buff_fcn(c.ci, &value, data, sizeof data, &no, tag), sOKAY);
    EXPECT_EQ(value.status, vsNULL);
    const OAK_HAS_VALUE_T other = 2; // 1 alone says that there is a value
    ASSERT_EQ(sch_col_assign_from_buff_fcn(c.ci, &value, data, sizeof data, &other), sOKAY);
    EXPECT_EQ(value.status, vsNULL);
    // A column without such a byte is never NULL.
    const OneColumn set(one_table(
        R"({"colid": 0, "name": "c", "not_null": "", "type": {"data_type": "int8"}})", 1));
    const int8_t eight = 8;
    ASSERT_EQ(sch_col_assign_from_buff_fcn(set.ci, &value, &eight, 1, &no), sOKAY);
    EXPECT_EQ(value.status, vsOKAY);
    EXPECT_EQ(value.vt.i8v, 8);
    value.status = vsNOVAL;
    ASSERT_EQ(sch_col_copy_from_buff_fcn(set.ci, &value, &eight, 1, &no, tag), sOKAY);
    EXPECT_EQ(value.status, vsOKAY);
}

TEST(ColumnPack, WritesFromARecordBuffer) {
    oaktest::Tag tag;
    const OneColumn c("int32", "");
    const OneColumn blob(large_column("blob"));
    OAK_BUFFER buffer;
    b_buffInit(&buffer, tag);
    B_ENCODER encoder = nullptr;
    ASSERT_EQ(b_encoderCreate(b_buffEmitByte, b_buffEmitBytesBulk, &buffer, tag, &encoder), sOKAY);
    const int32_t data = -2;
    ASSERT_EQ(sch_col_pack_buffer_fcn(c.ci, &data, encoder), sOKAY);
    EXPECT_EQ(oaktest::hex(buffer.data, buffer.len), "03");
    EXPECT_EQ(sch_col_pack_buffer_fcn(blob.ci, &data, encoder), eNOTIMPLEMENTED);
    EXPECT_EQ(sch_col_pack_buffer_fcn(nullptr, &data, encoder), eINVNULLARG);
    EXPECT_EQ(sch_col_pack_buffer_fcn(c.ci, nullptr, encoder), eINVNULLARG);
    EXPECT_EQ(sch_col_pack_buffer_fcn(c.ci, &data, nullptr), eINVNULLARG);
    b_encoderDestroy(encoder);
    b_buffTerm(&buffer);
}

TEST(ColumnFree, LeavesANullValueAndSetsNoval) {
    oaktest::Tag tag;
    const OneColumn c("varchar", ", \"length\": 10");
    OAK_VALUE value = null_value();
    value.vt.cv = "borrowed: must not be freed";
    sch_col_free_fcn(c.ci, &value, tag);
    EXPECT_EQ(value.status, vsNOVAL);
    EXPECT_STREQ(value.vt.cv, "borrowed: must not be freed");
    sch_col_free_fcn(nullptr, &value, tag);
    sch_col_free_fcn(c.ci, nullptr, tag);
}

// ---- Text --------------------------------------------------------------------

std::string printed(SCH_COL_INFO_C ci, const OAK_VALUE &value, uint32_t elem,
                    OAK_RETCODE expected) {
    oaktest::Tag tag;
    OAK_BUFFER out;
    b_buffInit(&out, tag);
    EXPECT_EQ(sch_col_tostring_fcn(ci, &value, elem, 0, b_buffEmitChar, &out), expected);
    const std::string text(reinterpret_cast<char *>(out.data), out.len);
    b_buffTerm(&out);
    return text;
}

TEST(ColumnText, PrintsValuesAndNull) {
    const OneColumn c("int32", "");
    EXPECT_EQ(printed(c.ci, int32_value(-5), 0, sOKAY), "-5");
    EXPECT_EQ(printed(c.ci, null_value(), 0, sOKAY), "<OAK NULL>");
    OAK_VALUE none;
    oak_valueInit(&none);
    EXPECT_EQ(printed(c.ci, none, 0, eINVARG), "");
    EXPECT_EQ(printed(c.ci, int32_value(1), 1, eRANGE), "");
    const OneColumn array("int16", ", \"noelts\": 3");
    int16_t numbers[] = {7, 8, 9};
    OAK_VALUE value{};
    value.status = vsOKAY;
    value.type = OAK_INT16;
    value.elts = 3;
    value.vt.i16a = numbers;
    EXPECT_EQ(printed(array.ci, value, 2, sOKAY), "9");
    EXPECT_EQ(printed(array.ci, value, 3, eRANGE), "");
    const OneColumn blob(large_column("blob"));
    value.elts = 0;
    EXPECT_EQ(printed(blob.ci, value, 0, eNOTIMPLEMENTED), "");
    EXPECT_EQ(sch_col_tostring_fcn(nullptr, &value, 0, 0, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(sch_col_tostring_fcn(c.ci, nullptr, 0, 0, nullptr, nullptr), eINVNULLARG);
}

TEST(ColumnText, TellsHowAValueIsBestShown) {
    EXPECT_EQ(SCH_NATIVE_FORMAT, 0);
    EXPECT_EQ(SCH_BINARY_FORMAT, 1);
    EXPECT_EQ(SCH_UTF8_BINARY_FORMAT, 2);
    const OneColumn number("int32", ""), binary("binary", ", \"length\": 4"),
        text("char", ", \"length\": 20"), wide("wchar", ", \"length\": 20");
    OAK_VALUE value{};
    value.status = vsOKAY;
    const auto shown = [&](const OneColumn &c, const char *content) {
        SCH_FORMAT format = static_cast<SCH_FORMAT>(9);
        value.vt.cv = content;
        EXPECT_EQ(sch_col_tostring_type_fcn(c.ci, &value, 0, &format), sOKAY);
        return format;
    };
    EXPECT_EQ(shown(number, nullptr), SCH_NATIVE_FORMAT);
    EXPECT_EQ(shown(binary, "x"), SCH_BINARY_FORMAT);
    EXPECT_EQ(shown(text, " plain ~"), SCH_NATIVE_FORMAT);
    EXPECT_EQ(shown(text, "tab\there"), SCH_UTF8_BINARY_FORMAT);
    EXPECT_EQ(shown(text, "\x1f"), SCH_UTF8_BINARY_FORMAT);
    EXPECT_EQ(shown(text, "\x7f\x80\xfe"), SCH_NATIVE_FORMAT);
    EXPECT_EQ(shown(text, "\xff"), SCH_UTF8_BINARY_FORMAT);
    EXPECT_EQ(shown(wide, "\t"), SCH_NATIVE_FORMAT); // narrow text alone is scanned
    const struct {
        const char *type;
        SCH_FORMAT of_tab;
    } rows[] = {{"varchar", SCH_UTF8_BINARY_FORMAT},
                {"wvarchar", SCH_NATIVE_FORMAT},
                {"varbinary", SCH_BINARY_FORMAT}};
    for (const auto &row : rows) {
        const OneColumn c(row.type, ", \"length\": 20");
        EXPECT_EQ(shown(c, "\t"), row.of_tab) << row.type;
    }
    const OneColumn blob(large_column("blob")), clob(large_column("clob")),
        wclob(large_column("wclob"));
    EXPECT_EQ(shown(blob, "\t"), SCH_BINARY_FORMAT);
    EXPECT_EQ(shown(clob, "\t"), SCH_UTF8_BINARY_FORMAT);
    EXPECT_EQ(shown(wclob, "\t"), SCH_NATIVE_FORMAT);
    SCH_FORMAT format = static_cast<SCH_FORMAT>(9);
    value.status = vsNULL;
    EXPECT_EQ(sch_col_tostring_type_fcn(text.ci, &value, 0, &format), sOKAY);
    EXPECT_EQ(format, 9);
    value.status = vsNOVAL;
    EXPECT_EQ(sch_col_tostring_type_fcn(text.ci, &value, 0, &format), eINVARG);
    EXPECT_EQ(sch_col_tostring_type_fcn(text.ci, &value, 1, &format), eRANGE);
    EXPECT_EQ(sch_col_tostring_type_fcn(nullptr, &value, 0, &format), eINVNULLARG);
    EXPECT_EQ(sch_col_tostring_type_fcn(text.ci, nullptr, 0, &format), eINVNULLARG);
    EXPECT_EQ(sch_col_tostring_type_fcn(text.ci, &value, 0, nullptr), eINVNULLARG);
}

TEST(Types, AreCompatibleWhenEqualOrBothText) {
    EXPECT_TRUE(sch_types_compatible(OAK_INT32, OAK_INT32));
    EXPECT_FALSE(sch_types_compatible(OAK_INT32, OAK_UINT32));
    EXPECT_TRUE(sch_types_compatible(OAK_CHAR, OAK_WCLOB));
    EXPECT_FALSE(sch_types_compatible(OAK_CHAR, OAK_BINARY));
}

// ---- Defaults ----------------------------------------------------------------

OAK_RETCODE set_default(const OneColumn &c, const char *text) {
    return sch_col_set_default(c.ci, text);
}

TEST(Default, IsNullWithoutText) {
    const OneColumn c("varchar", ", \"length\": 10");
    ASSERT_EQ(set_default(c, "abc"), sOKAY);
    EXPECT_STREQ(c.ci->def.vt.cv, "abc");
    EXPECT_STREQ(sch_col_defstr(c.ci), "abc");
    ASSERT_EQ(set_default(c, nullptr), sOKAY);
    EXPECT_EQ(sch_col_defstr(c.ci), nullptr);
    EXPECT_EQ(c.ci->def.status, vsNULL);
    EXPECT_EQ(c.ci->def.vt.cv, nullptr);
}

struct NumberRow {
    const char *type;
    const char *text;
    OAK_RETCODE status;
    int64_t value;
};

TEST(Default, ReadsIntegersUpToTheirBounds) {
    const NumberRow rows[] = {
        {"int8", "-128", sOKAY, -128},
        {"int8", "127", sOKAY, 127},
        {"int8", "-129", eBADCAT, 0},
        {"int8", "128", eBADCAT, 0},
        {"int16", "-32768", sOKAY, -32768},
        {"int16", "32767", sOKAY, 32767},
        {"int16", "32768", eBADCAT, 0},
        {"int16", "-32769", eBADCAT, 0},
        {"int32", "-2147483648", sOKAY, INT32_MIN},
        {"int32", "2147483647", sOKAY, INT32_MAX},
        {"int32", "2147483648", eBADCAT, 0},
        {"int32", "-2147483649", eBADCAT, 0},
        {"int32", "auto", eBADCAT, 0},
        {"int32", "", eBADCAT, 0},
        {"int64", "-9223372036854775808", sOKAY, INT64_MIN},
        {"int64", "9223372036854775807", sOKAY, INT64_MAX},
        {"int64", "9223372036854775808", eRANGE, 0}, // the parser's own status
        {"uint8", "255", sOKAY, 255},
        {"uint8", "300", eBADCAT, 0},
        {"uint8", "256", eBADCAT, 0},
        {"uint16", "65535", sOKAY, 65535},
        {"uint16", "65536", eBADCAT, 0},
        {"uint16", "-1", eBADCAT, 0},
        {"uint32", "4294967295", sOKAY, 4294967295},
        {"uint32", "4294967296", eBADCAT, 0},
        {"uint64", "18446744073709551615", sOKAY, -1},
        {"uint64", "18446744073709551616", eRANGE, 0},
        {"uint64", "-1", eRANGE, 0},
    };
    for (const NumberRow &row : rows) {
        const OneColumn c(row.type, "");
        EXPECT_EQ(set_default(c, row.text), row.status) << row.type << " " << row.text;
        EXPECT_STREQ(sch_col_defstr(c.ci), row.text); // kept in any case
        if (row.status == sOKAY) {
            OAK_VALUE value = c.ci->def;
            uint64_t number = 0;
            ASSERT_EQ(oak_valueGetUInt64(&value, &number), sOKAY);
            const int bits = 8 * static_cast<int>(b_typeGetLength(value.type));
            const uint64_t mask = bits == 64 ? UINT64_MAX : (uint64_t{1} << bits) - 1;
            EXPECT_EQ(number & mask, static_cast<uint64_t>(row.value) & mask) << row.text;
        }
    }
}

TEST(Default, ReadsBooleansByTheirTwoWords) {
    const OneColumn c("bool", "");
    EXPECT_EQ(set_default(c, "TRUE"), sOKAY);
    EXPECT_EQ(c.ci->def.vt.bv, OAK_TRUE);
    EXPECT_EQ(set_default(c, "false"), sOKAY);
    EXPECT_EQ(c.ci->def.vt.bv, OAK_FALSE);
    EXPECT_EQ(set_default(c, "yes"), eBADCAT);
    EXPECT_EQ(set_default(c, "1"), eBADCAT);
}

TEST(Default, BoundsAFloatAndNothingOfADouble) {
    const OneColumn f("float", ""), d("double", "");
    EXPECT_EQ(set_default(f, "1.5"), sOKAY);
    EXPECT_EQ(f.ci->def.vt.fv, 1.5f);
    EXPECT_EQ(set_default(f, "1e39"), eBADCAT);
    EXPECT_EQ(set_default(f, "-1e39"), eBADCAT);
    EXPECT_EQ(set_default(f, "3.4028234663852886e38"), sOKAY);
    EXPECT_EQ(set_default(f, "nan"), sOKAY);
    EXPECT_TRUE(osl_isnanf(f.ci->def.vt.fv));
    EXPECT_EQ(set_default(d, "1e39"), sOKAY);
    EXPECT_EQ(d.ci->def.vt.dv, 1e39);
    EXPECT_EQ(set_default(d, "no number"), sOKAY);
    EXPECT_EQ(d.ci->def.vt.dv, 0.0);
}

TEST(Default, ReadsADecimalAndKeepsARoundedOne) {
    const OneColumn c("decimal", ", \"length\": 10, \"scale\": 2");
    EXPECT_EQ(set_default(c, "12.5"), sOKAY);
    ASSERT_NE(c.ci->def.vt.bcd, nullptr);
    EXPECT_EQ(c.ci->def.vt.bcd->prec, 3);
    EXPECT_EQ(set_default(c, "0.111111111111111111111111111111111"), sPRECISIONLOSS);
    ASSERT_NE(c.ci->def.vt.bcd, nullptr);
    EXPECT_EQ(c.ci->def.vt.bcd->prec, 32);
    EXPECT_EQ(set_default(c, "much"), eBADCAT);
    EXPECT_EQ(c.ci->def.vt.bcd, nullptr); // no freed memory is left
    EXPECT_EQ(c.ci->def.status, vsOKAY);
}

TEST(Default, ReadsDatesTimesAndTheirKeywords) {
    const struct {
        const char *type;
        const char *keyword;
        OAK_TYPE marker;
        const char *literal;
        OAK_TYPE plain;
    } rows[] = {
        {"date", "Current_Date", OAK_DEFAULT_CURRDATE, "2000-02-29", OAK_DATE},
        {"time", "current_time", OAK_DEFAULT_CURRTIME, "23:59:59", OAK_TIME},
        {"timetz", "CURRENT_TIME", OAK_DEFAULT_CURRTIME, "10:00:00+01:00", OAK_TIMETZ},
        {"timestamp", "current_timestamp", OAK_DEFAULT_CURRTIMESTAMP, "2000-02-29 10:00:00",
         OAK_TIMESTAMP},
        {"timestamptz", "current_timestamp", OAK_DEFAULT_CURRTIMESTAMP, "2000-02-29 10:00:00+01:00",
         OAK_TIMESTAMPTZ},
    };
    for (const auto &row : rows) {
        const OneColumn c(row.type, "");
        EXPECT_EQ(set_default(c, row.keyword), sOKAY) << row.type;
        EXPECT_EQ(c.ci->def.type, row.marker);
        EXPECT_EQ(c.ci->def.status, vsOKAY);
        EXPECT_EQ(set_default(c, row.literal), sOKAY) << row.type;
        EXPECT_EQ(c.ci->def.type, row.plain);
        EXPECT_LT(set_default(c, "no such moment"), sOKAY) << row.type;
    }
    const OneColumn day("date", "");
    ASSERT_EQ(set_default(day, "0001-01-02"), sOKAY);
    EXPECT_EQ(day.ci->def.vt.dtv, 2u);
    const OneColumn time("time", ""), timetz("timetz", ""), stamp("timestamp", "");
    ASSERT_EQ(set_default(time, "01:02:03"), sOKAY); // in ten-thousandths of a second
    EXPECT_EQ(time.ci->def.vt.tmv, 37230000u);
    ASSERT_EQ(set_default(timetz, "02:00:00+01:00"), sOKAY);
    EXPECT_EQ(timetz.ci->def.vt.tmzv.time, 36000000u); // held in UTC
    EXPECT_EQ(timetz.ci->def.vt.tmzv.tz, 60);
    ASSERT_EQ(set_default(stamp, "0001-01-02 02:00:00"), sOKAY);
    EXPECT_EQ(stamp.ci->def.vt.tsv.date, 2u);
    EXPECT_EQ(stamp.ci->def.vt.tsv.time, 72000000u);
    const OneColumn moment("timestamptz", "");
    ASSERT_EQ(set_default(moment, "0001-01-02 02:00:00+01:00"), sOKAY);
    ASSERT_NE(moment.ci->def.vt.tszv, nullptr);
    EXPECT_EQ(moment.ci->def.vt.tszv->date, 2u);
    EXPECT_EQ(moment.ci->def.vt.tszv->time, 36000000u); // held in UTC
    EXPECT_EQ(moment.ci->def.vt.tszv->tz, 60);
}

TEST(Default, KnowsAutoForRowidsAndUuids) {
    const OneColumn rowid("rowid", ""), uuid("uuid", "");
    EXPECT_EQ(set_default(rowid, "AUTO"), sOKAY);
    EXPECT_EQ(rowid.ci->def.status, vsNOVAL);
    EXPECT_EQ(rowid.ci->def.type, OAK_ROWID);
    EXPECT_EQ(sch_col_def(rowid.ci), nullptr);
    EXPECT_EQ(set_default(rowid, "1"), eBADCAT);
    EXPECT_EQ(set_default(uuid, "auto"), sOKAY);
    EXPECT_EQ(uuid.ci->def.type, OAK_DEFAULT_AUTO);
    EXPECT_EQ(uuid.ci->def.status, vsOKAY);
    EXPECT_EQ(set_default(uuid, "00112233-4455-6677-8899-aabbccddeeff"), sOKAY);
    ASSERT_NE(uuid.ci->def.vt.uuid, nullptr);
    EXPECT_EQ(oaktest::hex(uuid.ci->def.vt.uuid, 16), "00112233445566778899aabbccddeeff");
    EXPECT_EQ(set_default(uuid, "auto"), sOKAY); // the old one is freed
    EXPECT_EQ(uuid.ci->def.vt.uuid, nullptr);
    EXPECT_EQ(set_default(uuid, "no uuid"), eOSL_INVUUID);
}

TEST(Default, CopiesTextWithoutAnyTest) {
    for (const char *type : {"char", "varchar", "wchar", "wvarchar"}) {
        const OneColumn c(type, ", \"length\": 2");
        EXPECT_EQ(set_default(c, "longer than its column"), sOKAY) << type;
        EXPECT_STREQ(c.ci->def.vt.cv, "longer than its column");
        EXPECT_EQ(c.ci->def.len, 0u);
    }
    const OneColumn clob(large_column("clob"));
    EXPECT_EQ(set_default(clob, "text"), sOKAY);
    EXPECT_STREQ(clob.ci->def.vt.cv, "text");
    ASSERT_EQ(set_default(clob, nullptr), sOKAY); // frees it while the type still knows how
    ASSERT_EQ(sch_type_set_data_type(sch_col_type(clob.ci), OAK_WCLOB, OAK_TRUE), sOKAY);
    EXPECT_EQ(set_default(clob, "text"), sOKAY);
    EXPECT_STREQ(clob.ci->def.vt.cv, "text");
    const OneColumn wclob(large_column("wclob"));
    EXPECT_EQ(set_default(wclob, "text"), eNOTIMPLEMENTED);
}

TEST(Default, OfAWideLargeObjectIsADomainsAlone) {
    const oaktest::Catalog catalog(R"({"database": {"nodoms": 1, "maxdoms": 1,
        "domains": [{"domid": 0, "name": "d", "type": {"data_type": "wclob"}}]}})");
    const SCH_DOMAIN_INFO domain = sch_domain(catalog.schema(), 0);
    EXPECT_EQ(sch_dom_set_default(domain, "text"), sOKAY);
    EXPECT_STREQ(sch_dom_def(domain)->vt.cv, "text");
    EXPECT_EQ(sch_dom_set_default(nullptr, "text"), eINVNULLARG);
    EXPECT_EQ(sch_col_set_default(nullptr, "text"), eINVNULLARG);
}

TEST(Default, ReadsBinaryFromHexDigits) {
    for (const char *type : {"binary", "varbinary"}) {
        const OneColumn c(type, ", \"length\": 4");
        EXPECT_EQ(set_default(c, "0A0a"), sOKAY) << type;
        ASSERT_EQ(c.ci->def.len, 2u);
        EXPECT_EQ(oaktest::hex(c.ci->def.vt.pv, 2), "0a0a");
        EXPECT_EQ(set_default(c, "0"), eBADCAT);
        EXPECT_EQ(set_default(c, "0G"), eBADCAT);
        EXPECT_EQ(set_default(c, "G0"), eBADCAT);
        EXPECT_EQ(c.ci->def.vt.pv, nullptr);
        EXPECT_EQ(set_default(c, ""), sOKAY);
        EXPECT_EQ(c.ci->def.vt.pv, nullptr);
        EXPECT_EQ(c.ci->def.len, 0u);
    }
    const OneColumn blob(large_column("blob"));
    EXPECT_EQ(set_default(blob, "fF00"), sOKAY);
    ASSERT_EQ(blob.ci->def.len, 2u);
    EXPECT_EQ(oaktest::hex(blob.ci->def.vt.pv, 2), "ff00");
}

TEST(Default, IsNotThereForAColumnWithoutAType) {
    SCH_INFO schema = nullptr;
    ASSERT_EQ(sch_create(&schema), sOKAY);
    ASSERT_EQ(sch_set_max_table(schema, 2), sOKAY);
    SCH_TBL_INFO ti = nullptr;
    SCH_COL_INFO ci = nullptr;
    ASSERT_EQ(sch_tbl_create(schema, 1, &ti), sOKAY);
    ASSERT_EQ(sch_tbl_set_max_cols(ti, 1), sOKAY);
    ASSERT_EQ(sch_col_create(ti, 0, &ci), sOKAY);
    EXPECT_EQ(sch_col_set_default(ci, "1"), eNOTIMPLEMENTED);
    EXPECT_EQ(sch_col_set_default(ci, nullptr), sOKAY);
    sch_destroy(schema);
}

TEST(ColumnOperations, RefuseNullArguments) {
    oaktest::Tag tag;
    const OneColumn c("int32", "");
    OAK_VALUE value = int32_value(1);
    size_t size = 4;
    char data[4] = {};
    EXPECT_EQ(sch_col_copy_fcn(nullptr, &value, &value, 0, tag), eINVNULLARG);
    EXPECT_EQ(sch_col_copy_fcn(c.ci, nullptr, &value, 0, tag), eINVNULLARG);
    EXPECT_EQ(sch_col_copy_fcn(c.ci, &value, nullptr, 0, tag), eINVNULLARG);
    EXPECT_EQ(sch_col_copy_to_buff_fcn(nullptr, data, &size, nullptr, &value), eINVNULLARG);
    EXPECT_EQ(sch_col_copy_to_buff_fcn(c.ci, data, &size, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(sch_col_copy_to_str_fcn(nullptr, 0, data, &size, nullptr, &value), eINVNULLARG);
    EXPECT_EQ(sch_col_copy_to_str_fcn(c.ci, 0, data, nullptr, nullptr, &value), eINVNULLARG);
    EXPECT_EQ(sch_col_copy_to_str_fcn(c.ci, 0, data, &size, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(sch_col_copy_from_buff_fcn(nullptr, &value, data, 4, nullptr, tag), eINVNULLARG);
    EXPECT_EQ(sch_col_copy_from_buff_fcn(c.ci, nullptr, data, 4, nullptr, tag), eINVNULLARG);
    EXPECT_EQ(sch_col_assign_from_buff_fcn(nullptr, &value, data, 4, nullptr), eINVNULLARG);
    EXPECT_EQ(sch_col_assign_from_buff_fcn(c.ci, nullptr, data, 4, nullptr), eINVNULLARG);
}

TEST(Default, IsRefusedForAColumnOfTheSystemTable) {
    const oaktest::Catalog catalog(one_table("", 0));
    const SCH_TBL_INFO system = sch_find_table_by_ndx(catalog.schema(), 0);
    EXPECT_EQ(sch_col_set_default(sch_get_col_by_index(system, 0), "x"), eBADCAT);
    EXPECT_EQ(sch_col_defstr(sch_get_col_by_index(system, 0)), nullptr);
}

TEST(Default, KeepsItsTextAndNoValueWhenMemoryEnds) {
    // Not timestamptz: such payloads stay with the schema's tag by design.
    const struct {
        const char *type;
        const char *more;
        const char *text;
    } rows[] = {
        {"uuid", "", "00112233-4455-6677-8899-aabbccddeeff"},
        {"decimal", ", \"length\": 9", "12"},
        {"varchar", ", \"length\": 9", "12"},
        {"binary", ", \"length\": 9", "12"},
    };
    for (const auto &row : rows) {
        const OneColumn c(row.type, row.more);
        const uint64_t runs =
            oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&]() -> OAK_RETCODE {
                const OAK_RETCODE status = set_default(c, row.text);
                EXPECT_EQ(c.ci->def.vt.pv != nullptr, status == sOKAY) << row.type;
                EXPECT_EQ(set_default(c, nullptr), sOKAY);
                return status;
            });
        EXPECT_EQ(runs > 0, oaktest::faults_are_injected()) << row.type;
    }
}

} // namespace
