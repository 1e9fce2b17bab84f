// The tables of status codes and groups, held against a transcription of the
// vocabulary in the test tree.
#include <cstring>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "retcode_rows.h"
#include "rettables.h"

namespace {

using oaktest::optional_text;

TEST(StatusTable, HoldsEveryCodeWithItsNumberNameAndSqlstateInOrder) {
    const std::vector<oaktest::RetcodeRow> expected = oaktest::retcode_rows();
    ASSERT_EQ(expected.size(), 615u);
    ASSERT_EQ(no_oak_errors, 615u);
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(oak_errors[i].code, expected[i].code) << expected[i].name;
        EXPECT_EQ(oak_errors[i].name, expected[i].name);
        EXPECT_EQ(optional_text(oak_errors[i].sqlstate), expected[i].sqlstate) << expected[i].name;
    }
}

TEST(StatusTable, PutsTheCodesThatAreNotNegativeFirstAndLetsTheOthersFall) {
    EXPECT_EQ(oak_errors[0].code, 29000);
    for (int32_t i = 0; i <= 40; ++i) {
        EXPECT_EQ(oak_errors[1 + i].code, 10000 + i);
    }
    EXPECT_EQ(oak_errors[42].code, 0);
    EXPECT_EQ(oak_errors[43].code, -1);
    EXPECT_EQ(oak_errors[44].code, -10000);
    for (size_t i = 43; i + 1 < no_oak_errors; ++i) {
        EXPECT_GT(oak_errors[i].code, oak_errors[i + 1].code);
    }
    EXPECT_EQ(oak_errors[614].code, -30003);
}

TEST(StatusTable, CountsItsSqlstates) {
    size_t none = 0;
    size_t syntax = 0;
    for (const OAK_ERRDEFN &row : oak_errors) {
        none += row.sqlstate == nullptr;
        syntax += row.sqlstate != nullptr && std::strcmp(row.sqlstate, "42000") == 0;
        EXPECT_TRUE(row.sqlstate == nullptr || std::strlen(row.sqlstate) == 5) << row.name;
    }
    EXPECT_EQ(none, 271u);
    EXPECT_EQ(syntax, 140u);
}

TEST(StatusTable, KeepsTheSqlstatesThatLookLikeSlips) {
    const std::map<std::string, std::string> expected = {
        {"eSQL_FETCHVARS", "OT000"}, // the letter O
        {"eSQL_PREPNOCOLS", "0T000"}, {"eDBOPEN", "82117"},         {"sOKAYWITHINFO", "00001"},
        {"sIGNORE", "RX001"},         {"sDUPLICATE", "23000"},      {"eHASMEMBERS", "23000"},
        {"eDUPLICATE", "40002"},      {"eDDL_CRDBACTIVE", "RD001"},
    };
    size_t seen = 0;
    for (const OAK_ERRDEFN &row : oak_errors) {
        if (const auto found = expected.find(row.name); found != expected.end()) {
            EXPECT_EQ(row.sqlstate, found->second) << row.name;
            ++seen;
        }
    }
    EXPECT_EQ(seen, expected.size());
}

TEST(StatusTable, KeepsTheTextsThatProgramsRelyOn) {
    std::map<std::string, std::string> texts;
    for (const OAK_ERRDEFN &row : oak_errors) {
        texts[row.name] = row.descr;
    }
    const std::vector<std::string> lines = oaktest::golden_lines("retcode_texts.txt");
    EXPECT_EQ(lines.size(), 61u);
    for (const std::string &line : lines) {
        const size_t bar = line.find('|');
        const std::string name = line.substr(0, bar);
        EXPECT_EQ(texts[name], line.substr(bar + 1, line.size() - bar - 2)) << name;
    }
}

TEST(StatusTable, KeepsTheTrailingBlankOfUnionsMismatch) {
    const OAK_ERRDEFN &row = oak_errors[44 + 30];
    EXPECT_STREQ(row.name, "eUNOMISMATCH");
    EXPECT_STREQ(row.descr, "Unions mismatch ");
}

TEST(StatusTable, DescribesEveryCodeWithOneLineOfItsOwn) {
    std::set<std::string> texts;
    for (const OAK_ERRDEFN &row : oak_errors) {
        const std::string text = row.descr;
        EXPECT_GE(text.size(), 5u) << row.name;
        EXPECT_EQ(text.find('\n'), std::string::npos) << row.name;
        EXPECT_TRUE(texts.insert(text).second) << row.name << " shares its text: " << text;
    }
}

struct Group {
    const char *name;
    int32_t first;
    int32_t last;
    size_t rows;
};

constexpr Group kGroups[] = {
    {"status oakc", 29000, 29000, 1},
    {"status", 10000, 10040, 41},
    {"ok", 0, 0, 1},
    {"fail", -1, -1, 1},
    {"general", -10000, -10104, 105},
    {"base", -11000, -11003, 4},
    {"core", -12000, -12090, 91},
    {"tfs", -13000, -13033, 34},
    {"osl", -14000, -14009, 10},
    {"ddl", -14500, -14563, 64},
    {"sql", -15000, -15175, 176},
    {"mirroring", -16000, -16002, 3},
    {"oakc", -17000, -17025, 26},
    {"tx", -18000, -18009, 10},
    {"system", -20000, -20010, 11},
    {"http", -21000, -21006, 7},
    {"q/a", -29000, -29025, 26},
    {"embed", -30000, -30003, 4},
};

TEST(GroupTable, HoldsTheEighteenGroupsInOrder) {
    ASSERT_EQ(no_oak_errgroups, 18u);
    for (size_t i = 0; i < no_oak_errgroups; ++i) {
        EXPECT_STREQ(oak_errgroups[i].name, kGroups[i].name);
        EXPECT_EQ(oak_errgroups[i].firstcode, kGroups[i].first) << kGroups[i].name;
        EXPECT_EQ(oak_errgroups[i].lastcode, kGroups[i].last) << kGroups[i].name;
    }
}

TEST(GroupTable, CoversEveryRowOnceAndIsDense) {
    size_t total = 0;
    for (const Group &group : kGroups) {
        const int32_t low = std::min(group.first, group.last);
        const int32_t high = std::max(group.first, group.last);
        EXPECT_EQ(static_cast<size_t>(high - low + 1), group.rows) << group.name;
        size_t inside = 0;
        for (const OAK_ERRDEFN &row : oak_errors) {
            inside += low <= row.code && row.code <= high;
        }
        EXPECT_EQ(inside, group.rows) << group.name;
        total += inside;
    }
    EXPECT_EQ(total, no_oak_errors);
}

} // namespace
