// The table of type codes, row by row, and what its readers say of codes with
// and without a row.
#include "types.h"

#include <set>
#include <string>

#include "test_support.h"

namespace {

struct Row {
    OAK_TYPE type;
    int32_t code;
    const char *str;
    int16_t prec;
    uint16_t display;
    size_t len;
};

// As the system states them, the numeric codes written out.
constexpr Row kRows[] = {
    {OAK_NOVAL, 0, "OAK_NOVAL", 0, 0, 0},
    {OAK_ROWID, 7, "OAK_ROWID", 19, 20, 8},
    {OAK_CHAR, 8, "OAK_CHAR", 0, 0, 0},
    {OAK_VARCHAR, 2056, "OAK_VARCHAR", 0, 0, 0},
    {OAK_BINARY, 6, "OAK_BINARY", 0, 0, 0},
    {OAK_VARBINARY, 2054, "OAK_VARBINARY", 0, 0, 0},
    {OAK_CLOB, 4104, "OAK_CLOB", 0, 0, 0},
    {OAK_WCHAR, 264, "OAK_WCHAR", 0, 0, 0},
    {OAK_WVARCHAR, 2312, "OAK_WVARCHAR", 0, 0, 0},
    {OAK_WCLOB, 4360, "OAK_WCLOB", 0, 0, 0},
    {OAK_BLOB, 4102, "OAK_BLOB", 0, 0, 0},
    {OAK_INT8, 2, "OAK_INT8", 3, 4, 1},
    {OAK_BOOL, 32769, "OAK_BOOL", 1, 6, 4},
    {OAK_UINT8, 32770, "OAK_UINT8", 3, 4, 1},
    {OAK_INT16, 258, "OAK_INT16", 5, 6, 2},
    {OAK_UINT16, 33026, "OAK_UINT16", 5, 6, 2},
    {OAK_INT32, 514, "OAK_INT32", 10, 11, 4},
    {OAK_UINT32, 33282, "OAK_UINT32", 10, 11, 4},
    {OAK_INT64, 770, "OAK_INT64", 19, 20, 8},
    {OAK_UINT64, 33538, "OAK_UINT64", 19, 20, 8},
    {OAK_FLOAT, 515, "OAK_FLOAT", 7, 14, 4},
    {OAK_DOUBLE, 771, "OAK_DOUBLE", 15, 24, 8},
    {OAK_DATE, 260, "OAK_DATE", 10, 10, 4},
    {OAK_TIME, 516, "OAK_TIME", 8, 13, 4},
    {OAK_TIMETZ, 1028, "OAK_TIMETZ", 8, 21, 8},
    {OAK_TIMESTAMP, 772, "OAK_TIMESTAMP", 24, 24, 8},
    {OAK_TIMESTAMPTZ, 1284, "OAK_TIMESTAMPTZ", 24, 31, 12},
    {OAK_BCD, 5, "OAK_BCD", 0, 0, 37},
    {OAK_UUID, 9, "OAK_UUID", 36, 40, 16},
    {OAK_PARAMREF, 59, "OAK_PARAMREF", 0, 0, 2},
    {OAK_PROCVAR, 107, "OAK_PROCVAR", 0, 0, 2},
    {OAK_GLOBALVAR, 24587, "OAK_GLOBALVAR", 0, 0, 2},
    {OAK_COLREF, 155, "OAK_COLREF", 0, 0, 2},
    {OAK_ZERODIV, 123, "OAK_ZERODIV", 0, 0, 0},
    {OAK_RESULTCOL, 139, "OAK_RESULTCOL", 0, 0, 0},
    {OAK_DEFAULT, 171, "OAK_DEFAULT", 0, 0, 0},
    {OAK_OAKVALUE, 75, "OAK_OAKVALUE", 0, 0, 40},
};
static_assert(std::size(kRows) == 37);
static_assert(std::size(kRows) == B_TYPE_INFO_ROWS);

// Codes that have no row, and numbers that are no codes.
constexpr OAK_TYPE kWithoutRow[] = {OAK_WCHAR_UTF8,
                                    OAK_WVARCHAR_UTF8,
                                    OAK_WCLOB_UTF8,
                                    OAK_SUBQUERY,
                                    OAK_OUTERREF,
                                    OAK_AUTOGEN,
                                    OAK_DEFAULT_AUTO,
                                    OAK_DEFAULT_CURRENT,
                                    OAK_DEFAULT_CURRDATE,
                                    OAK_DEFAULT_CURRTIME,
                                    OAK_DEFAULT_CURRTIMESTAMP,
                                    static_cast<OAK_TYPE>(1),
                                    static_cast<OAK_TYPE>(-1),
                                    static_cast<OAK_TYPE>(INT32_MIN)};

TEST(TypeTable, HoldsItsRowsInOrder) {
    for (size_t i = 0; i < std::size(kRows); ++i) {
        const Row &row = kRows[i];
        SCOPED_TRACE(row.str);
        EXPECT_EQ(row.type, row.code);
        EXPECT_EQ(typeInfo[i].type, row.type);
        EXPECT_STREQ(typeInfo[i].str, row.str);
        EXPECT_EQ(typeInfo[i].prec, row.prec);
        EXPECT_EQ(typeInfo[i].displaySize, row.display);
        EXPECT_EQ(typeInfo[i].len, row.len);
    }
}

TEST(TypeTable, HasNoCodeTwice) {
    std::set<int32_t> codes;
    for (const B_TYPE_INFO &row : typeInfo) {
        EXPECT_TRUE(codes.insert(row.type).second) << row.str;
    }
}

TEST(TypeTable, StatesTheCodesWithoutARow) {
    EXPECT_EQ(OAK_WCHAR_UTF8, 520);
    EXPECT_EQ(OAK_WVARCHAR_UTF8, 2568);
    EXPECT_EQ(OAK_WCLOB_UTF8, 4616);
    EXPECT_EQ(OAK_SUBQUERY, 27);
    EXPECT_EQ(OAK_OUTERREF, 43);
    EXPECT_EQ(OAK_AUTOGEN, 91);
    EXPECT_EQ(OAK_DEFAULT_AUTO, 4107);
    EXPECT_EQ(OAK_DEFAULT_CURRENT, 8203);
    EXPECT_EQ(OAK_DEFAULT_CURRDATE, 12299);
    EXPECT_EQ(OAK_DEFAULT_CURRTIME, 16395);
    EXPECT_EQ(OAK_DEFAULT_CURRTIMESTAMP, 20491);
}

TEST(TypeLength, IsThatOfTheRow) {
    for (const Row &row : kRows) {
        EXPECT_EQ(b_typeGetLength(row.type), row.len) << row.str;
    }
    EXPECT_EQ(b_typeGetLength(OAK_OAKVALUE), sizeof(OAK_VALUE));
}

TEST(TypeLength, IsZeroWithoutARow) {
    for (const OAK_TYPE type : kWithoutRow) {
        EXPECT_EQ(b_typeGetLength(type), 0u) << type;
    }
}

TEST(TypeName, IsThatOfTheRow) {
    for (const Row &row : kRows) {
        EXPECT_STREQ(b_typeGetStr(row.type), row.str);
    }
}

TEST(TypeName, IsEmptyWithoutARow) {
    for (const OAK_TYPE type : kWithoutRow) {
        EXPECT_STREQ(b_typeGetStr(type), "") << type;
    }
}

TEST(DisplaySize, OfAScalarIsThatOfTheRow) {
    for (const Row &row : kRows) {
        EXPECT_EQ(b_typeDisplaySize(row.type, 0), row.type == OAK_BCD ? 34u : row.display)
            << row.str;
    }
}

TEST(DisplaySize, OfAnArrayHasRoomForEachElementAndTheFrame) {
    EXPECT_EQ(b_typeDisplaySize(OAK_INT16, 3), 28u);
    for (const Row &row : kRows) {
        if (row.type == OAK_BCD) {
            continue;
        }
        for (const uint32_t elts : {1u, 2u, 255u, 65535u}) {
            EXPECT_EQ(b_typeDisplaySize(row.type, elts), (row.display + 1u) * elts + 7u)
                << row.str << " " << elts;
        }
    }
}

TEST(DisplaySize, HoldsTheLongestTextOfAnArray) {
    const std::string longest = "ARRAY[-32768,-32768,-32768]";
    EXPECT_LE(longest.size(), b_typeDisplaySize(OAK_INT16, 3));
}

TEST(DisplaySize, OfADecimalIsItsDigitsSignAndPoint) {
    EXPECT_EQ(b_typeDisplaySize(OAK_BCD, 0), 34u);
    EXPECT_EQ(b_typeDisplaySize(OAK_BCD, 5), 34u);
}

TEST(DisplaySize, IsZeroWithoutARow) {
    for (const OAK_TYPE type : kWithoutRow) {
        EXPECT_EQ(b_typeDisplaySize(type, 0), 0u) << type;
        EXPECT_EQ(b_typeDisplaySize(type, 3), 0u) << type;
    }
}

TEST(Precision, IsThatOfTheRowAndTheGreatestOfADecimal) {
    for (const Row &row : kRows) {
        EXPECT_EQ(b_typePrecision(row.type), row.type == OAK_BCD ? 32 : row.prec) << row.str;
    }
}

TEST(Precision, IsZeroWithoutARow) {
    for (const OAK_TYPE type : kWithoutRow) {
        EXPECT_EQ(b_typePrecision(type), 0) << type;
    }
}

} // namespace
