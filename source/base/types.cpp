// The table of type codes and its readers. Rests on the decimals alone, for
// their greatest precision; called by the values, the conversions and every
// layer that prints a type's name or sizes a column of text.
//
// The table is scanned from its first row. It has 37 rows and no hot path asks
// it: what runs for every value goes by a switch or through a type's operations.
#include "types.h"

#include "bcd.h"

const B_TYPE_INFO typeInfo[B_TYPE_INFO_ROWS] = {
    {OAK_NOVAL, "OAK_NOVAL", 0, 0, 0},
    {OAK_ROWID, "OAK_ROWID", 19, 20, 8},
    {OAK_CHAR, "OAK_CHAR", 0, 0, 0},
    {OAK_VARCHAR, "OAK_VARCHAR", 0, 0, 0},
    {OAK_BINARY, "OAK_BINARY", 0, 0, 0},
    {OAK_VARBINARY, "OAK_VARBINARY", 0, 0, 0},
    {OAK_CLOB, "OAK_CLOB", 0, 0, 0},
    {OAK_WCHAR, "OAK_WCHAR", 0, 0, 0},
    {OAK_WVARCHAR, "OAK_WVARCHAR", 0, 0, 0},
    {OAK_WCLOB, "OAK_WCLOB", 0, 0, 0},
    {OAK_BLOB, "OAK_BLOB", 0, 0, 0},
    {OAK_INT8, "OAK_INT8", 3, 4, 1},
    {OAK_BOOL, "OAK_BOOL", 1, 6, 4},
    {OAK_UINT8, "OAK_UINT8", 3, 4, 1},
    {OAK_INT16, "OAK_INT16", 5, 6, 2},
    {OAK_UINT16, "OAK_UINT16", 5, 6, 2},
    {OAK_INT32, "OAK_INT32", 10, 11, 4},
    {OAK_UINT32, "OAK_UINT32", 10, 11, 4},
    {OAK_INT64, "OAK_INT64", 19, 20, 8},
    {OAK_UINT64, "OAK_UINT64", 19, 20, 8},
    {OAK_FLOAT, "OAK_FLOAT", 7, 14, 4},
    {OAK_DOUBLE, "OAK_DOUBLE", 15, 24, 8},
    {OAK_DATE, "OAK_DATE", 10, 10, 4},
    {OAK_TIME, "OAK_TIME", 8, 13, 4},
    {OAK_TIMETZ, "OAK_TIMETZ", 8, 21, 8},
    {OAK_TIMESTAMP, "OAK_TIMESTAMP", 24, 24, 8},
    {OAK_TIMESTAMPTZ, "OAK_TIMESTAMPTZ", 24, 31, 12},
    {OAK_BCD, "OAK_BCD", 0, 0, 37},
    {OAK_UUID, "OAK_UUID", 36, 40, 16},
    {OAK_PARAMREF, "OAK_PARAMREF", 0, 0, 2},
    {OAK_PROCVAR, "OAK_PROCVAR", 0, 0, 2},
    {OAK_GLOBALVAR, "OAK_GLOBALVAR", 0, 0, 2},
    {OAK_COLREF, "OAK_COLREF", 0, 0, 2},
    {OAK_ZERODIV, "OAK_ZERODIV", 0, 0, 0},
    {OAK_RESULTCOL, "OAK_RESULTCOL", 0, 0, 0},
    {OAK_DEFAULT, "OAK_DEFAULT", 0, 0, 0},
    {OAK_OAKVALUE, "OAK_OAKVALUE", 0, 0, 40},
};

// The payloads whose sizes the table states.
static_assert(sizeof(OAK_BOOL_T) == 4 && sizeof(OAK_ROWID_T) == 8);
static_assert(sizeof(OAK_PACKED_DATE_T) == 4 && sizeof(OAK_PACKED_TIME_T) == 4);
static_assert(sizeof(OAK_PACKED_TIMETZ_T) == 8 && sizeof(OAK_PACKED_TIMESTAMP_T) == 8);
static_assert(sizeof(OAK_PACKED_TIMESTAMPTZ_T) == 12);
static_assert(sizeof(OAK_BCD_T) == 37 && sizeof(OAK_UUID_T) == 16);
static_assert(sizeof(OAK_VALUE) == 40);

namespace {

const B_TYPE_INFO *find_row(OAK_TYPE type) {
    for (const B_TYPE_INFO &row : typeInfo) {
        if (row.type == type) {
            return &row;
        }
    }
    return nullptr;
}

// Room around the elements of an array's text: "ARRAY[" and "]".
constexpr uint32_t ARRAY_FRAME = 7;

} // namespace

size_t b_typeGetLength(OAK_TYPE type) {
    const B_TYPE_INFO *row = find_row(type);
    return row == nullptr ? 0 : row->len;
}

const char *b_typeGetStr(OAK_TYPE type) {
    const B_TYPE_INFO *row = find_row(type);
    return row == nullptr ? "" : row->str;
}

uint32_t b_typeDisplaySize(OAK_TYPE type, uint32_t elts) {
    const B_TYPE_INFO *row = find_row(type);
    if (row == nullptr) {
        return 0;
    }
    if (type == OAK_BCD) {
        return static_cast<uint32_t>(oak_bcdMaxprec()) + 2; // a sign and a point
    }
    if (elts == 0) {
        return row->displaySize;
    }
    return (row->displaySize + 1U) * elts + ARRAY_FRAME;
}

int16_t b_typePrecision(OAK_TYPE type) {
    if (type == OAK_BCD) {
        return static_cast<int16_t>(oak_bcdMaxprec());
    }
    const B_TYPE_INFO *row = find_row(type);
    return row == nullptr ? int16_t{0} : row->prec;
}
