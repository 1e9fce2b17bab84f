// The 28 tables of type operations and their lookup. The operations stand in
// oakvaluetypes_text.cpp (text), oakvaluetypes_order.cpp (compare and hash),
// oakvaluetypes_copy.cpp (values and record buffers) and oakvaluetypes_pack.cpp
// (streams). Called by the schema, which puts a table into each column's type.
#include "oakvaluetypes.h"

// ---- Columns of functions -------------------------------------------------------

#define TEXT_OF(type)        b_type_tostring_##type, b_type_fromstring_##type
#define ORDER_OF(type, hash) b_type_cmp_##type, b_type_hash_##hash
#define STORE_OF(type)                                                                             \
    b_type_schema_copy_##type, b_type_schema_copy_to_buff_##type,                                  \
        b_type_schema_copy_from_buff_##type, b_type_schema_assign_from_buff_##type,                \
        b_type_schema_pack_##type, b_type_schema_unpack_##type,                                    \
        b_type_schema_unpack_to_buff_##type

// All the functions of a type; with another type's hash and no free function;
// and those of a large object.
#define OPERATIONS(type)                                                                           \
    TEXT_OF(type), ORDER_OF(type, type), STORE_OF(type), b_type_schema_free_##type
#define DATETIME_OPERATIONS(type, hash) TEXT_OF(type), ORDER_OF(type, hash), STORE_OF(type), nullptr
#define LARGE_OBJECT_OPERATIONS(type)                                                              \
    nullptr, nullptr, nullptr, nullptr, b_type_schema_copy_##type, nullptr,                        \
        b_type_schema_copy_from_buff_##type, b_type_schema_assign_from_buff_##type, nullptr,       \
        nullptr, nullptr, b_type_schema_free_##type

// ---- The tables -----------------------------------------------------------------

#define NUMBER_TABLE(type, align, code, field, ddl, sql)                                           \
    const OAK_TYPE_INFO type##_type_info = {align, code,      field,      ddl,                     \
                                            sql,   field " ", field " *", OPERATIONS(type)};

// The Objective-C field of a boolean is a byte, whatever the C type.
const OAK_TYPE_INFO bool_type_info = {ALN_INT32, "OAK_BOOL", "OAK_BOOL_T", "boolean",
                                      "BOOLEAN", "int8_t ",  "int8_t *",   OPERATIONS(bool)};
NUMBER_TABLE(int8, ALN_CHAR, "OAK_INT8", "int8_t", "int8", "TINYINT")
NUMBER_TABLE(uint8, ALN_CHAR, "OAK_UINT8", "uint8_t", "uint8", "BIT")
NUMBER_TABLE(int16, ALN_INT16, "OAK_INT16", "int16_t", "int16", "SMALLINT")
NUMBER_TABLE(uint16, ALN_INT16, "OAK_UINT16", "uint16_t", "uint16", "UINT16")
NUMBER_TABLE(int32, ALN_INT32, "OAK_INT32", "int32_t", "int32", "INTEGER")
NUMBER_TABLE(uint32, ALN_INT32, "OAK_UINT32", "uint32_t", "uint32", "UINT32")
NUMBER_TABLE(int64, ALN_INT64, "OAK_INT64", "int64_t", "int64", "BIGINT")
NUMBER_TABLE(uint64, ALN_INT64, "OAK_UINT64", "uint64_t", "uint64", "UINT64")
NUMBER_TABLE(float, ALN_FLOAT, "OAK_FLOAT", "float", "float", "FLOAT")
NUMBER_TABLE(double, ALN_DOUBLE, "OAK_DOUBLE", "double", "double", "DOUBLE")
#undef NUMBER_TABLE

const OAK_TYPE_INFO decimal_type_info = {ALN_CHAR,  "OAK_BCD",    "OAK_BCD_T",   "decimal",
                                         "DECIMAL", "OAK_BCD_T ", "OAK_BCD_T *", OPERATIONS(bcd)};

#define DATETIME_TABLE(type, hash, code, field, ddl, sql)                                          \
    const OAK_TYPE_INFO type##_type_info = {                                                       \
        ALN_INT32, code, field, ddl, sql, field " ", field " *", DATETIME_OPERATIONS(type, hash)};

DATETIME_TABLE(date, uint32, "OAK_DATE", "OAK_PACKED_DATE_T", "date", "DATE")
DATETIME_TABLE(time, uint32, "OAK_TIME", "OAK_PACKED_TIME_T", "time", "TIME")
DATETIME_TABLE(timetz, timetz, "OAK_TIMETZ", "OAK_PACKED_TIMETZ_T", "timetz", "TIMETZ")
DATETIME_TABLE(timestamp, timestamp, "OAK_TIMESTAMP", "OAK_PACKED_TIMESTAMP_T", "timestamp",
               "TIMESTAMP")
// Code and field are those of the timestamp without a zone: generated source has
// always declared such columns so, and what was generated must stay valid.
DATETIME_TABLE(timestamptz, timestamptz, "OAK_TIMESTAMP", "OAK_PACKED_TIMESTAMP_T", "timestamptz",
               "TIMESTAMPTZ")
#undef DATETIME_TABLE

// A row id is an unsigned 64-bit number in every respect but its name.
const OAK_TYPE_INFO rowid_type_info = {ALN_INT64,       "OAK_ROWID",       "OAK_ROWID_T",
                                       "rowid",         "ROWID",           "OAK_ROWID_T ",
                                       "OAK_ROWID_T *", OPERATIONS(uint64)};

const OAK_TYPE_INFO uuid_type_info = {ALN_INT32, "OAK_UUID",    "OAK_UUID_T",   "uuid",
                                      "GUID",    "OAK_UUID_T ", "OAK_UUID_T *", OPERATIONS(uuid)};

// The four text types differ in their names alone.
#define TEXT_TABLE(name, code, field, ddl, sql)                                                    \
    const OAK_TYPE_INFO name##_type_info = {                                                       \
        ALN_CHAR, code, field, ddl, sql, "NSString *", "NSArray *", OPERATIONS(utf8)};

TEXT_TABLE(utf8, "OAK_CHAR", "char", "char", "CHAR")
TEXT_TABLE(varutf8, "OAK_VARCHAR", "char", "varchar", "VARCHAR")
TEXT_TABLE(wchar_utf8, "OAK_WCHAR", "OAK_TCHAR_T", "wchar", "WCHAR")
TEXT_TABLE(varwchar_utf8, "OAK_WVARCHAR", "OAK_TCHAR_T", "wvarchar", "WVARCHAR")
#undef TEXT_TABLE

#define LARGE_OBJECT_TABLE(name, operations, code, ddl, sql)                                       \
    const OAK_TYPE_INFO name##_type_info = {ALN_INT64, code,                                       \
                                            "BLOB_ID", ddl,                                        \
                                            sql,       "NSMutableData *",                          \
                                            nullptr,   LARGE_OBJECT_OPERATIONS(operations)};

LARGE_OBJECT_TABLE(clob, clob, "OAK_CLOB", "clob", "LONG VARCHAR")
LARGE_OBJECT_TABLE(wclob_utf8, clob, "OAK_WCLOB", "wclob", "LONG WVARCHAR")
LARGE_OBJECT_TABLE(blob, blob, "OAK_BLOB", "blob", "LONG VARBINARY")
#undef LARGE_OBJECT_TABLE

const OAK_TYPE_INFO binary_type_info = {ALN_CHAR,          "OAK_BINARY",      "uint8_t",
                                        "binary",          "BINARY",          "NSMutableData *",
                                        "NSMutableData *", OPERATIONS(binary)};

const OAK_TYPE_INFO varbinary_type_info = {ALN_INT16,   "OAK_VARBINARY",      "uint8_t",
                                           "varbinary", "VARBINARY",          "NSMutableData *",
                                           nullptr,     OPERATIONS(varbinary)};

// ---- Lookup ---------------------------------------------------------------------

const OAK_TYPE_INFO *b_typeGetInfoEx(OAK_TYPE type, OAK_BOOL_T unicode_enabled) {
    (void)unicode_enabled; // wide text is UTF-8 either way
    switch (type) {
        case OAK_BOOL:
            return &bool_type_info;
        case OAK_INT8:
            return &int8_type_info;
        case OAK_UINT8:
            return &uint8_type_info;
        case OAK_INT16:
            return &int16_type_info;
        case OAK_UINT16:
            return &uint16_type_info;
        case OAK_INT32:
            return &int32_type_info;
        case OAK_UINT32:
            return &uint32_type_info;
        case OAK_INT64:
            return &int64_type_info;
        case OAK_UINT64:
            return &uint64_type_info;
        case OAK_FLOAT:
            return &float_type_info;
        case OAK_DOUBLE:
            return &double_type_info;
        case OAK_BCD:
            return &decimal_type_info;
        case OAK_DATE:
            return &date_type_info;
        case OAK_TIME:
            return &time_type_info;
        case OAK_TIMETZ:
            return &timetz_type_info;
        case OAK_TIMESTAMP:
            return &timestamp_type_info;
        case OAK_TIMESTAMPTZ:
            return &timestamptz_type_info;
        case OAK_ROWID:
            return &rowid_type_info;
        case OAK_UUID:
            return &uuid_type_info;
        case OAK_CHAR:
            return &utf8_type_info;
        case OAK_VARCHAR:
            return &varutf8_type_info;
        case OAK_WCHAR:
        case OAK_WCHAR_UTF8:
            return &wchar_utf8_type_info;
        case OAK_WVARCHAR:
        case OAK_WVARCHAR_UTF8:
            return &varwchar_utf8_type_info;
        case OAK_CLOB:
            return &clob_type_info;
        case OAK_WCLOB:
        case OAK_WCLOB_UTF8:
            return &wclob_utf8_type_info;
        case OAK_BINARY:
            return &binary_type_info;
        case OAK_VARBINARY:
            return &varbinary_type_info;
        case OAK_BLOB:
            return &blob_type_info;
        default:
            return nullptr;
    }
}

const OAK_TYPE_INFO *b_typeGetInfo(OAK_TYPE type) {
    return b_typeGetInfoEx(type, OAK_FALSE);
}
