// The 28 tables of type operations, row by row and member by member, and which
// table each type code is given.
#include "oakvaluetypes.h"

#include <set>

#include "test_support.h"

namespace {

// ---- The texts ------------------------------------------------------------------

struct Row {
    const OAK_TYPE_INFO *table;
    ALIGN_TYPE align;
    const char *code;
    const char *field;
    const char *ddl;
    const char *sql;
    const char *objc;
    const char *objc_array;
};

const Row kRows[] = {
    {&bool_type_info, ALN_INT32, "OAK_BOOL", "OAK_BOOL_T", "boolean", "BOOLEAN", "int8_t ",
     "int8_t *"},
    {&int8_type_info, ALN_CHAR, "OAK_INT8", "int8_t", "int8", "TINYINT", "int8_t ", "int8_t *"},
    {&uint8_type_info, ALN_CHAR, "OAK_UINT8", "uint8_t", "uint8", "BIT", "uint8_t ", "uint8_t *"},
    {&int16_type_info, ALN_INT16, "OAK_INT16", "int16_t", "int16", "SMALLINT", "int16_t ",
     "int16_t *"},
    {&uint16_type_info, ALN_INT16, "OAK_UINT16", "uint16_t", "uint16", "UINT16", "uint16_t ",
     "uint16_t *"},
    {&int32_type_info, ALN_INT32, "OAK_INT32", "int32_t", "int32", "INTEGER", "int32_t ",
     "int32_t *"},
    {&uint32_type_info, ALN_INT32, "OAK_UINT32", "uint32_t", "uint32", "UINT32", "uint32_t ",
     "uint32_t *"},
    {&int64_type_info, ALN_INT64, "OAK_INT64", "int64_t", "int64", "BIGINT", "int64_t ",
     "int64_t *"},
    {&uint64_type_info, ALN_INT64, "OAK_UINT64", "uint64_t", "uint64", "UINT64", "uint64_t ",
     "uint64_t *"},
    {&float_type_info, ALN_FLOAT, "OAK_FLOAT", "float", "float", "FLOAT", "float ", "float *"},
    {&double_type_info, ALN_DOUBLE, "OAK_DOUBLE", "double", "double", "DOUBLE", "double ",
     "double *"},
    {&decimal_type_info, ALN_CHAR, "OAK_BCD", "OAK_BCD_T", "decimal", "DECIMAL", "OAK_BCD_T ",
     "OAK_BCD_T *"},
    {&date_type_info, ALN_INT32, "OAK_DATE", "OAK_PACKED_DATE_T", "date", "DATE",
     "OAK_PACKED_DATE_T ", "OAK_PACKED_DATE_T *"},
    {&time_type_info, ALN_INT32, "OAK_TIME", "OAK_PACKED_TIME_T", "time", "TIME",
     "OAK_PACKED_TIME_T ", "OAK_PACKED_TIME_T *"},
    {&timetz_type_info, ALN_INT32, "OAK_TIMETZ", "OAK_PACKED_TIMETZ_T", "timetz", "TIMETZ",
     "OAK_PACKED_TIMETZ_T ", "OAK_PACKED_TIMETZ_T *"},
    {&timestamp_type_info, ALN_INT32, "OAK_TIMESTAMP", "OAK_PACKED_TIMESTAMP_T", "timestamp",
     "TIMESTAMP", "OAK_PACKED_TIMESTAMP_T ", "OAK_PACKED_TIMESTAMP_T *"},
    {&timestamptz_type_info, ALN_INT32, "OAK_TIMESTAMP", "OAK_PACKED_TIMESTAMP_T", "timestamptz",
     "TIMESTAMPTZ", "OAK_PACKED_TIMESTAMP_T ", "OAK_PACKED_TIMESTAMP_T *"},
    {&rowid_type_info, ALN_INT64, "OAK_ROWID", "OAK_ROWID_T", "rowid", "ROWID", "OAK_ROWID_T ",
     "OAK_ROWID_T *"},
    {&uuid_type_info, ALN_INT32, "OAK_UUID", "OAK_UUID_T", "uuid", "GUID", "OAK_UUID_T ",
     "OAK_UUID_T *"},
    {&utf8_type_info, ALN_CHAR, "OAK_CHAR", "char", "char", "CHAR", "NSString *", "NSArray *"},
    {&varutf8_type_info, ALN_CHAR, "OAK_VARCHAR", "char", "varchar", "VARCHAR", "NSString *",
     "NSArray *"},
    {&wchar_utf8_type_info, ALN_CHAR, "OAK_WCHAR", "OAK_TCHAR_T", "wchar", "WCHAR", "NSString *",
     "NSArray *"},
    {&varwchar_utf8_type_info, ALN_CHAR, "OAK_WVARCHAR", "OAK_TCHAR_T", "wvarchar", "WVARCHAR",
     "NSString *", "NSArray *"},
    {&clob_type_info, ALN_INT64, "OAK_CLOB", "BLOB_ID", "clob", "LONG VARCHAR", "NSMutableData *",
     nullptr},
    {&wclob_utf8_type_info, ALN_INT64, "OAK_WCLOB", "BLOB_ID", "wclob", "LONG WVARCHAR",
     "NSMutableData *", nullptr},
    {&binary_type_info, ALN_CHAR, "OAK_BINARY", "uint8_t", "binary", "BINARY", "NSMutableData *",
     "NSMutableData *"},
    {&varbinary_type_info, ALN_INT16, "OAK_VARBINARY", "uint8_t", "varbinary", "VARBINARY",
     "NSMutableData *", nullptr},
    {&blob_type_info, ALN_INT64, "OAK_BLOB", "BLOB_ID", "blob", "LONG VARBINARY", "NSMutableData *",
     nullptr},
};
static_assert(std::size(kRows) == 28);

TEST(TypeTables, HoldTheirTexts) {
    std::set<const OAK_TYPE_INFO *> tables;
    for (const Row &row : kRows) {
        SCOPED_TRACE(row.ddl);
        EXPECT_TRUE(tables.insert(row.table).second);
        EXPECT_EQ(row.table->ext_align, row.align);
        EXPECT_STREQ(row.table->enum_name, row.code);
        EXPECT_STREQ(row.table->field_type_text, row.field);
        EXPECT_STREQ(row.table->ddl_type_text, row.ddl);
        EXPECT_STREQ(row.table->sql_type_text, row.sql);
        EXPECT_STREQ(row.table->objc_field_type_text, row.objc);
        EXPECT_STREQ(row.table->objc_field_array_type_text, row.objc_array);
    }
}

// ---- The functions ----------------------------------------------------------------

#define EXPECT_STORE(table, type)                                                                  \
    EXPECT_EQ((table).copy_fcn, b_type_schema_copy_##type);                                        \
    EXPECT_EQ((table).copy_from_buff_fcn, b_type_schema_copy_from_buff_##type);                    \
    EXPECT_EQ((table).assign_from_buff_fcn, b_type_schema_assign_from_buff_##type)

#define EXPECT_OPERATIONS(table, type, hash)                                                       \
    do {                                                                                           \
        SCOPED_TRACE(#table);                                                                      \
        EXPECT_EQ((table).tostring, b_type_tostring_##type);                                       \
        EXPECT_EQ((table).fromstring, b_type_fromstring_##type);                                   \
        EXPECT_EQ((table).cmp, b_type_cmp_##type);                                                 \
        EXPECT_EQ((table).hashfcn, b_type_hash_##hash);                                            \
        EXPECT_STORE(table, type);                                                                 \
        EXPECT_EQ((table).copy_to_buff_fcn, b_type_schema_copy_to_buff_##type);                    \
        EXPECT_EQ((table).pack_fcn, b_type_schema_pack_##type);                                    \
        EXPECT_EQ((table).unpack_fcn, b_type_schema_unpack_##type);                                \
        EXPECT_EQ((table).unpack_to_buff_fcn, b_type_schema_unpack_to_buff_##type);                \
    } while (false)

#define EXPECT_FREED(table, type, hash)                                                            \
    EXPECT_OPERATIONS(table, type, hash);                                                          \
    EXPECT_EQ((table).free_fcn, b_type_schema_free_##type)

#define EXPECT_NEVER_FREED(table, type, hash)                                                      \
    EXPECT_OPERATIONS(table, type, hash);                                                          \
    EXPECT_EQ((table).free_fcn, nullptr)

TEST(TypeTables, HoldTheFunctionsOfTheirNumbers) {
    EXPECT_FREED(bool_type_info, bool, bool);
    EXPECT_FREED(int8_type_info, int8, int8);
    EXPECT_FREED(uint8_type_info, uint8, uint8);
    EXPECT_FREED(int16_type_info, int16, int16);
    EXPECT_FREED(uint16_type_info, uint16, uint16);
    EXPECT_FREED(int32_type_info, int32, int32);
    EXPECT_FREED(uint32_type_info, uint32, uint32);
    EXPECT_FREED(int64_type_info, int64, int64);
    EXPECT_FREED(uint64_type_info, uint64, uint64);
    EXPECT_FREED(float_type_info, float, float);
    EXPECT_FREED(double_type_info, double, double);
    EXPECT_FREED(decimal_type_info, bcd, bcd);
}

TEST(TypeTables, TreatARowIdAsAnUnsignedNumber) {
    EXPECT_FREED(rowid_type_info, uint64, uint64);
}

TEST(TypeTables, NeverFreeDatesAndTimes) {
    EXPECT_NEVER_FREED(date_type_info, date, uint32);
    EXPECT_NEVER_FREED(time_type_info, time, uint32);
    EXPECT_NEVER_FREED(timetz_type_info, timetz, timetz);
    EXPECT_NEVER_FREED(timestamp_type_info, timestamp, timestamp);
    EXPECT_NEVER_FREED(timestamptz_type_info, timestamptz, timestamptz);
}

TEST(TypeTables, ShareTheFunctionsOfTheFourTextTypes) {
    EXPECT_FREED(utf8_type_info, utf8, utf8);
    EXPECT_FREED(varutf8_type_info, utf8, utf8);
    EXPECT_FREED(wchar_utf8_type_info, utf8, utf8);
    EXPECT_FREED(varwchar_utf8_type_info, utf8, utf8);
}

TEST(TypeTables, HoldTheFunctionsOfBinariesAndUuids) {
    EXPECT_FREED(uuid_type_info, uuid, uuid);
    EXPECT_FREED(binary_type_info, binary, binary);
    EXPECT_FREED(varbinary_type_info, varbinary, varbinary);
}

void expect_no_operations(const OAK_TYPE_INFO &table) {
    EXPECT_EQ(table.tostring, nullptr);
    EXPECT_EQ(table.fromstring, nullptr);
    EXPECT_EQ(table.cmp, nullptr);
    EXPECT_EQ(table.hashfcn, nullptr);
    EXPECT_EQ(table.copy_to_buff_fcn, nullptr);
    EXPECT_EQ(table.pack_fcn, nullptr);
    EXPECT_EQ(table.unpack_fcn, nullptr);
    EXPECT_EQ(table.unpack_to_buff_fcn, nullptr);
}

TEST(TypeTables, GiveLargeObjectsCopiesAlone) {
    expect_no_operations(clob_type_info);
    EXPECT_STORE(clob_type_info, clob);
    EXPECT_EQ(clob_type_info.free_fcn, b_type_schema_free_clob);
    expect_no_operations(wclob_utf8_type_info);
    EXPECT_STORE(wclob_utf8_type_info, clob);
    EXPECT_EQ(wclob_utf8_type_info.free_fcn, b_type_schema_free_clob);
    expect_no_operations(blob_type_info);
    EXPECT_STORE(blob_type_info, blob);
    EXPECT_EQ(blob_type_info.free_fcn, b_type_schema_free_blob);
}

// ---- Lookup -------------------------------------------------------------------------

struct Lookup {
    OAK_TYPE type;
    const OAK_TYPE_INFO *table;
};

const Lookup kLookups[] = {
    {OAK_BOOL, &bool_type_info},
    {OAK_INT8, &int8_type_info},
    {OAK_UINT8, &uint8_type_info},
    {OAK_INT16, &int16_type_info},
    {OAK_UINT16, &uint16_type_info},
    {OAK_INT32, &int32_type_info},
    {OAK_UINT32, &uint32_type_info},
    {OAK_INT64, &int64_type_info},
    {OAK_UINT64, &uint64_type_info},
    {OAK_FLOAT, &float_type_info},
    {OAK_DOUBLE, &double_type_info},
    {OAK_BCD, &decimal_type_info},
    {OAK_DATE, &date_type_info},
    {OAK_TIME, &time_type_info},
    {OAK_TIMETZ, &timetz_type_info},
    {OAK_TIMESTAMP, &timestamp_type_info},
    {OAK_TIMESTAMPTZ, &timestamptz_type_info},
    {OAK_ROWID, &rowid_type_info},
    {OAK_UUID, &uuid_type_info},
    {OAK_CHAR, &utf8_type_info},
    {OAK_VARCHAR, &varutf8_type_info},
    {OAK_WCHAR, &wchar_utf8_type_info},
    {OAK_WCHAR_UTF8, &wchar_utf8_type_info},
    {OAK_WVARCHAR, &varwchar_utf8_type_info},
    {OAK_WVARCHAR_UTF8, &varwchar_utf8_type_info},
    {OAK_CLOB, &clob_type_info},
    {OAK_WCLOB, &wclob_utf8_type_info},
    {OAK_WCLOB_UTF8, &wclob_utf8_type_info},
    {OAK_BINARY, &binary_type_info},
    {OAK_VARBINARY, &varbinary_type_info},
    {OAK_BLOB, &blob_type_info},
};
static_assert(std::size(kLookups) == 31);

TEST(TypeLookup, GivesEachStorableCodeItsTable) {
    for (const Lookup &row : kLookups) {
        EXPECT_EQ(b_typeGetInfo(row.type), row.table) << row.type;
        EXPECT_EQ(b_typeGetInfoEx(row.type, OAK_FALSE), row.table) << row.type;
        EXPECT_EQ(b_typeGetInfoEx(row.type, OAK_TRUE), row.table) << row.type;
    }
}

TEST(TypeLookup, FindsNothingForAnyOtherCode) {
    std::set<int32_t> storable;
    for (const Lookup &row : kLookups) {
        storable.insert(row.type);
    }
    for (int32_t code = -2; code <= 0x10000; ++code) {
        const auto type = static_cast<OAK_TYPE>(code);
        EXPECT_EQ(b_typeGetInfo(type) != nullptr, storable.count(code) != 0) << code;
    }
}

} // namespace
