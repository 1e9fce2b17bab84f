// The lookup of tables by name: its order, its positions, and when its index is
// made and goes stale.
#include "schema.h"

#include "schema_fixture.h"

namespace {

using oaktest::Schema;

constexpr OAK_TBL_INDEX kUntouched = 777;

/// Where a name stands, or would stand.
OAK_TBL_INDEX position_of(SCH_INFO_C sch, const char *name) {
    OAK_TBL_INDEX position = kUntouched;
    sch_find_table_by_name(sch, name, &position);
    return position;
}

TEST(TableByName, IsFoundInAnyCaseWithItsPosition) {
    Schema sch;
    SCH_TBL_INFO m = sch.table(1, "Middle");
    SCH_TBL_INFO z = sch.table(2, "zulu");
    SCH_TBL_INFO a = sch.table(5, "ALPHA");
    const struct {
        const char *name;
        SCH_TBL_INFO table;
        OAK_TBL_INDEX position;
    } rows[] = {
        {"alpha", a, 0},     {"ALPHA", a, 0},
        {"middle", m, 1},    {"ZULU", z, 2},
        {"aaa", nullptr, 0}, {"alphabet", nullptr, 1},
        {"n", nullptr, 2},   {"zz", nullptr, 3},
        {"", nullptr, 0},    {"_sys_files", nullptr, 0},
    };
    for (const auto &row : rows) {
        OAK_TBL_INDEX position = kUntouched;
        EXPECT_EQ(sch_find_table_by_name(sch, row.name, &position), row.table) << row.name;
        EXPECT_EQ(position, row.position) << row.name;
        EXPECT_EQ(sch_find_table_by_name(sch, row.name, nullptr), row.table);
    }
    EXPECT_EQ(a->nameNdx, 0);
    EXPECT_EQ(m->nameNdx, 1);
    EXPECT_EQ(z->nameNdx, 2);
}

TEST(TableByName, LeavesThePositionWithoutUserTables) {
    Schema sch;
    EXPECT_EQ(position_of(sch, "t"), kUntouched);
    EXPECT_EQ(sch_find_table_by_name(sch, "_sys_files", nullptr), nullptr);
    SCH_TBL_INFO ti = sch.table(1, "t");
    ASSERT_EQ(sch_set_num_tables(sch, 1), sOKAY);
    EXPECT_EQ(position_of(sch, "t"), kUntouched) << "none is counted";
    ASSERT_EQ(sch_set_num_tables(sch, 2), sOKAY);
    EXPECT_EQ(sch_find_table_by_name(sch, "t", nullptr), ti);
    EXPECT_EQ(sch_find_table_by_name(nullptr, "t", nullptr), nullptr);
    EXPECT_EQ(sch_find_table_by_name(sch, nullptr, nullptr), nullptr);
}

TEST(TableByName, SeesANewTableOnlyWhenTheTablesAreCountedAgain) {
    Schema sch;
    sch.table(1, "a");
    EXPECT_EQ(position_of(sch, "a"), 0);
    ASSERT_EQ(sch_set_max_table(sch, 3), sOKAY);
    ASSERT_EQ(sch_set_next_table(sch, 3), sOKAY);
    SCH_TBL_INFO added = nullptr;
    ASSERT_EQ(sch_tbl_create(sch, 2, &added), sOKAY);
    ASSERT_EQ(sch_tbl_set_name(added, "b"), sOKAY);
    EXPECT_EQ(sch_find_table_by_name(sch, "b", nullptr), nullptr);
    ASSERT_EQ(sch_set_num_tables(sch, 3), sOKAY);
    EXPECT_EQ(sch_find_table_by_name(sch, "b", nullptr), added);
}

TEST(TableByName, GoesByTheTablesThatAreThereAndNotByTheirCount) {
    Schema sch;
    SCH_TBL_INFO last = nullptr;
    for (OAK_TBL_INDEX n = 1; n <= 40; ++n) {
        last = sch.table(n, ("t" + std::to_string(100 + n)).c_str());
    }
    for (const OAK_TBL_INDEX count : {2, 41, 65535}) {
        ASSERT_EQ(sch_set_num_tables(sch, count), sOKAY);
        EXPECT_EQ(sch_find_table_by_name(sch, "t140", nullptr), last);
        EXPECT_EQ(position_of(sch, "t140"), 39);
        EXPECT_EQ(position_of(sch, "u"), 40);
    }
}

TEST(TableByName, PassesOverTablesWithoutAName) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    sch.table(2, nullptr);
    sch.table(3, nullptr);
    EXPECT_EQ(sch_find_table_by_name(sch, "t", nullptr), ti);
    EXPECT_EQ(position_of(sch, "z"), 1);
}

TEST(TableByName, FindsNothingWhenTwoTablesBearOneName) {
    Schema sch;
    sch.table(1, "a");
    sch.table(2, "twice");
    SCH_TBL_INFO ti = sch.table(3, "TWICE");
    EXPECT_EQ(sch_find_table_by_name(sch, "a", nullptr), nullptr);
    EXPECT_EQ(position_of(sch, "a"), kUntouched);
    ASSERT_EQ(sch_tbl_set_name(ti, "once"), sOKAY);
    EXPECT_EQ(sch_find_table_by_name(sch, "once", nullptr), ti) << "no index was kept";
}

TEST(TableByName, FindsWhatWasThereWhenNamesChanged) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    EXPECT_EQ(position_of(sch, "t"), 0);
    ASSERT_EQ(sch_tbl_set_name(ti, nullptr), sOKAY);
    EXPECT_EQ(sch_find_table_by_name(sch, "t", nullptr), nullptr);
}

TEST(TableByName, AgreesWithAScanOnManyTables) {
    Schema sch;
    oaktest::Random random(7);
    constexpr OAK_TBL_INDEX kTables = 300;
    std::vector<std::string> names;
    for (OAK_TBL_INDEX n = 1; n <= kTables; ++n) {
        names.push_back("T" + std::to_string(random.below(1000000)) + "_" + std::to_string(n));
        sch.table(n, names.back().c_str());
    }
    std::sort(names.begin(), names.end(), [](const std::string &one, const std::string &other) {
        return strcasecmp(one.c_str(), other.c_str()) < 0;
    });
    for (OAK_TBL_INDEX n = 0; n < kTables; ++n) {
        OAK_TBL_INDEX position = kUntouched;
        SCH_TBL_INFO ti = sch_find_table_by_name(sch, names[n].c_str(), &position);
        ASSERT_NE(ti, nullptr) << names[n];
        EXPECT_EQ(sch_tbl_name(ti), names[n]);
        EXPECT_EQ(position, n);
        EXPECT_EQ(ti->nameNdx, n);
        EXPECT_EQ(position_of(sch, (names[n] + "!").c_str()), n + 1) << "just behind it";
    }
}

#ifdef OSL_FAULT_INJECTION
TEST(TableByName, IsNotFoundWhenMemoryIsExhausted) {
    Schema sch;
    for (OAK_TBL_INDEX n = 1; n <= 40; ++n) {
        sch.table(n, ("t" + std::to_string(n)).c_str());
    }
    const oaktest::Live live = oaktest::Live::now();
    for (uint64_t nth = 1;; ++nth) {
        osl_faultArm(OSL_FAULT_MEMORY, nth, OAK_FALSE);
        SCH_TBL_INFO ti = sch_find_table_by_name(sch, "t7", nullptr);
        if (osl_faultDisarm(OSL_FAULT_MEMORY) == 0) {
            EXPECT_EQ(ti, sch_find_table_by_ndx(sch, 7));
            EXPECT_GT(nth, 3u);
            return;
        }
        ASSERT_EQ(ti, nullptr);
        ASSERT_EQ(sch->tablesByName, nullptr);
        ASSERT_EQ(oaktest::Live::now(), live);
    }
}
#endif

} // namespace
