// The legacy statuses: every row, and both maps over every code and over every
// number near the table.
#include <climits>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "berror_legacy.h"
#include "errorapi.h"
#include "retcode_rows.h"

namespace {

using oaktest::optional_text;

std::map<int32_t, std::string> expected_rows() {
    std::map<int32_t, std::string> rows;
    for (const std::string &line : oaktest::golden_lines("legacy_rows.txt")) {
        const size_t blank = line.find(' ');
        rows[std::stoi(line.substr(0, blank))] = line.substr(blank + 1);
    }
    return rows;
}

std::map<std::string, int32_t> expected_numbers() {
    std::map<std::string, int32_t> numbers;
    for (const std::string &line : oaktest::golden_lines("legacy_map.txt")) {
        const size_t blank = line.find(' ');
        numbers[line.substr(0, blank)] = std::stoi(line.substr(blank + 1));
    }
    return numbers;
}

// Where the way back is not the way there.
const std::map<int32_t, OAK_RETCODE> kReverse = {
    {-1, eDBOPEN},        {-80, eDBOPEN},        {-24, eNOTLOCKED}, {3, sDUPLICATE},
    {-4, eINVDBNAMESPEC}, {-933, eTFS_FCNSEQ},   {-55, eDEFUNCT},   {-131, eSYS_BADERRCODE},
    {-17, eNOTKEY},       {-53, eOPENMODE},      {-30, eDBOPENED},  {-219, eTFS_DBOPEN},
    {-212, eTFS_INVDBID}, {-105, eLOSTPOSITION}, {-47, eINVKEYID},  {-901, eSYS_ERROR},
};

std::map<int32_t, OAK_RETCODE> expected_codes() {
    std::map<int32_t, OAK_RETCODE> codes;
    for (const auto &[name, number] : expected_numbers()) {
        OAK_RETCODE code = eFAIL;
        EXPECT_EQ(oakErrorCodeByName(name.c_str(), &code), sOKAY) << name;
        if (!kReverse.contains(number)) {
            EXPECT_FALSE(codes.contains(number)) << "two codes share " << number;
            codes[number] = code;
        }
    }
    codes.insert(kReverse.begin(), kReverse.end());
    return codes;
}

constexpr int32_t kBelow = -9100;
constexpr int32_t kAbove = 1100;

TEST(LegacyTable, HoldsEveryRowWithItsName) {
    const std::map<int32_t, std::string> rows = expected_rows();
    ASSERT_EQ(rows.size(), 272u);
    size_t i = 0;
    for (const auto &[number, name] : rows) {
        EXPECT_EQ(oak_errors_old[i].sStatus, number);
        EXPECT_EQ(oak_errors_old[i].name, name);
        ++i;
    }
}

TEST(LegacyTable, FindsNamesAndHasNoneForNumbersWithoutARow) {
    const std::map<int32_t, std::string> rows = expected_rows();
    for (int32_t number = kBelow; number <= kAbove; ++number) {
        const auto row = rows.find(number);
        if (row == rows.end()) {
            ASSERT_EQ(b_errorname(number), nullptr) << number;
            ASSERT_EQ(b_errorstr(number), nullptr) << number;
        } else {
            ASSERT_EQ(b_errorname(number), row->second) << number;
        }
    }
    for (const int32_t number : {-9022, -9008, -59, 8, 28, 1002, INT_MIN, INT_MAX}) {
        EXPECT_EQ(b_errorname(number), nullptr) << number;
        EXPECT_EQ(b_errorstr(number), nullptr) << number;
    }
}

TEST(LegacyTable, GivesATextForAllButTheFourJoinedRows) {
    std::set<std::string> texts;
    for (const OAK_ERROR &row : oak_errors_old) {
        const bool joined = row.sStatus >= -235 && row.sStatus <= -232;
        EXPECT_EQ(row.errorstring == nullptr, joined) << row.name;
        EXPECT_EQ(b_errorstr(row.sStatus), row.errorstring) << row.name;
        EXPECT_TRUE(joined || texts.insert(row.errorstring).second) << row.errorstring;
    }
    EXPECT_STREQ(b_errorname(-9021), "SYS_BADHASH");
    EXPECT_STREQ(b_errorstr(-9021), "hash malformed");
    EXPECT_STREQ(b_errorname(-235), "S_TX_DISABLEDHTTP listener is disabled");
    EXPECT_STREQ(b_errorname(-234), "S_TX_NO_TFSNo TFS available for this TFS library");
    EXPECT_STREQ(b_errorname(-233), "S_TX_NO_SQLNo SQL available for this TFS library");
    EXPECT_STREQ(b_errorname(-232), "S_TX_NO_MIRNo MIR available for this TFS library");
    EXPECT_STREQ(b_errorname(27), "S_NOMORE_PAGE");
}

TEST(LegacyMap, HasANumberForEveryCode) {
    const std::map<std::string, int32_t> numbers = expected_numbers();
    ASSERT_EQ(numbers.size(), 188u);
    for (const oaktest::RetcodeRow &row : oaktest::retcode_rows()) {
        const auto own = numbers.find(row.name);
        EXPECT_EQ(b_errorToLegacy(row.code), own != numbers.end() ? own->second : -901) << row.name;
    }
}

TEST(LegacyMap, CallsUnknownCodesASystemError) {
    for (const int32_t code : {1, -2, 10041, -10105, INT_MIN, INT_MAX}) {
        EXPECT_EQ(b_errorToLegacy(static_cast<OAK_RETCODE>(code)), -901) << code;
    }
}

TEST(LegacyMap, HasACodeForEveryNumber) {
    const std::map<int32_t, OAK_RETCODE> codes = expected_codes();
    for (int32_t number = kBelow; number <= kAbove; ++number) {
        const auto code = codes.find(number);
        ASSERT_EQ(b_errorFromLegacy(number), code != codes.end() ? code->second : eSYS_BADERRCODE)
            << number;
    }
    EXPECT_EQ(b_errorFromLegacy(INT_MIN), eSYS_BADERRCODE);
    EXPECT_EQ(b_errorFromLegacy(INT_MAX), eSYS_BADERRCODE);
}

TEST(LegacyMap, LeavesNinetyEightRowsWithoutACode) {
    size_t without = 0;
    for (const OAK_ERROR &row : oak_errors_old) {
        without += b_errorFromLegacy(row.sStatus) == eSYS_BADERRCODE;
    }
    EXPECT_EQ(without, 98u);
}

TEST(LegacyMap, KnowsSevenNumbersThatHaveNoRow) {
    const std::map<int32_t, OAK_RETCODE> expected = {
        {1002, eOSL_FAILURE}, {1007, eOSL_NOSOURCE}, {1008, eOSL_NODEST}, {1009, eOSL_PRIV},
        {1012, eOSL_INVUUID}, {1016, eOSL_INVUSER},  {1017, eOSL_INVPASS}};
    for (const auto &[number, code] : expected) {
        EXPECT_EQ(b_errorToLegacy(code), number);
        EXPECT_EQ(b_errorFromLegacy(number), code);
        EXPECT_EQ(b_errorname(number), nullptr);
    }
}

TEST(LegacyMap, KeepsCommonStatusesPositiveBothWays) {
    EXPECT_EQ(b_errorToLegacy(sOKAY), 0);
    EXPECT_EQ(b_errorFromLegacy(0), sOKAY);
    EXPECT_EQ(b_errorToLegacy(sNOTFOUND), 2);
    EXPECT_EQ(b_errorFromLegacy(2), sNOTFOUND);
    EXPECT_EQ(b_errorToLegacy(sEOS), 1);
    EXPECT_EQ(b_errorFromLegacy(1), sEOS);
    EXPECT_EQ(b_errorToLegacy(eFAIL), -901);
    EXPECT_EQ(b_errorToLegacy(eSYS_ERROR), -901);
    EXPECT_EQ(b_errorFromLegacy(-901), eSYS_ERROR);
    EXPECT_EQ(b_errorToLegacy(sTRUNCATE), 20);
    EXPECT_EQ(b_errorFromLegacy(20), sTRUNCATE);
    EXPECT_EQ(b_errorFromLegacy(-100), eTRUNCATED);
}

} // namespace
