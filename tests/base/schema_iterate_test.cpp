// Every iterator, forward and in reverse, with holes, empty parents and its own
// oddities.
#include "schema_iterate.h"

#include "schema_fixture.h"
#include "schema_sysfiles.h"

namespace {

using oaktest::Schema;

/// What a walk delivers, as the objects' indexes: "1 3 4 ".
template <class Parent, class Walk>
std::string walk(Walk iterate, Parent parent, OAK_DIRECTION dir) {
    std::string order;
    auto *object = iterate(parent, nullptr, dir);
    while (object != nullptr) {
        order += std::to_string(object->ndx) + " ";
        object = iterate(parent, object, dir);
    }
    return order;
}

#define EXPECT_WALKS(iterate, parent, forward, reverse)                                            \
    EXPECT_EQ(walk(iterate, parent, OAK_FORWARD), forward);                                        \
    EXPECT_EQ(walk(iterate, parent, OAK_REVERSE), reverse)

// ---- Of a schema -------------------------------------------------------------

TEST(IterateTables, PassesOverTheSystemTableAndHoles) {
    Schema sch;
    EXPECT_WALKS(sch_iterate_tables, sch.get(), "", "");
    EXPECT_WALKS(sch_iterate_all_tables, sch.get(), "0 ", "0 ");
    sch.table(2, "a");
    sch.table(3, "b");
    sch.table(7, "c");
    ASSERT_EQ(sch_set_max_table(sch, 12), sOKAY);
    ASSERT_EQ(sch_set_next_table(sch, 12), sOKAY);
    EXPECT_WALKS(sch_iterate_tables, sch.get(), "2 3 7 ", "7 3 2 ");
    EXPECT_WALKS(sch_iterate_all_tables, sch.get(), "0 2 3 7 ", "7 3 2 0 ");
    ASSERT_EQ(sch_set_next_table(sch, 7), sOKAY);
    EXPECT_WALKS(sch_iterate_tables, sch.get(), "2 3 ", "3 2 ");
    ASSERT_EQ(sch_set_next_table(sch, 0), sOKAY);
    EXPECT_WALKS(sch_iterate_all_tables, sch.get(), "", "");
}

TEST(IterateTables, TakesANullSchema) {
    for (const OAK_DIRECTION dir : {OAK_FORWARD, OAK_REVERSE}) {
        EXPECT_EQ(sch_iterate_tables(nullptr, nullptr, dir), nullptr);
        EXPECT_EQ(sch_iterate_all_tables(nullptr, nullptr, dir), sch_get_sysfiles_table());
        EXPECT_EQ(sch_iterate_all_tables(nullptr, sch_get_sysfiles_table(), dir), nullptr);
    }
}

TEST(IterateDomains, GoesByTheCountAndNotByTheLimit) {
    Schema sch;
    EXPECT_WALKS(sch_iterate_domains, sch.get(), "", "");
    sch.domain(0, "a", OAK_INT8);
    sch.domain(2, "b", OAK_INT8);
    sch.domain(5, "c", OAK_INT8);
    EXPECT_WALKS(sch_iterate_domains, sch.get(), "0 2 ", "2 0 ") << "three domains";
    ASSERT_EQ(sch_set_num_domains(sch, 6), sOKAY);
    EXPECT_WALKS(sch_iterate_domains, sch.get(), "0 2 5 ", "5 2 0 ");
    ASSERT_EQ(sch_set_num_domains(sch, 65535), sOKAY);
    EXPECT_WALKS(sch_iterate_domains, sch.get(), "0 2 5 ", "5 2 0 ") << "not beyond the array";
}

TEST(IterateUserDrawers, DeliversDrawerFiveForwardAlone) {
    Schema sch;
    EXPECT_WALKS(sch_iterate_user_drawers, sch.get(), "", "");
    sch.drawer(5, OAK_DRAWER_TABLE, 1, 1);
    EXPECT_WALKS(sch_iterate_user_drawers, sch.get(), "5 ", "");
    sch.drawer(9, OAK_DRAWER_TABLE, 1, 1);
    sch.drawer(6, OAK_DRAWER_TABLE, 1, 1);
    EXPECT_WALKS(sch_iterate_user_drawers, sch.get(), "5 6 9 ", "9 6 ");
    ASSERT_EQ(sch_set_next_drawer(sch, 9), sOKAY);
    EXPECT_WALKS(sch_iterate_user_drawers, sch.get(), "5 6 ", "6 ") << "below the limit";
    ASSERT_EQ(sch_set_next_drawer(sch, 0), sOKAY);
    EXPECT_WALKS(sch_iterate_user_drawers, sch.get(), "", "");
}

TEST(IterateAllDrawers, EndsAboveDrawerTwoInReverse) {
    Schema sch;
    EXPECT_WALKS(sch_iterate_all_drawers, sch.get(), "2 3 4 ", "4 3 ");
    sch.drawer(5, OAK_DRAWER_TABLE, 1, 1);
    sch.drawer(1000000, OAK_DRAWER_TABLE, 1, 1);
    EXPECT_WALKS(sch_iterate_all_drawers, sch.get(), "2 3 4 5 1000000 ", "1000000 5 4 3 ");
}

TEST(IterateAllDrawers, PassesOverTheUnusedNumbers) {
    Schema sch;
    SCH_DRAWER_INFO di = nullptr;
    ASSERT_EQ(sch_drawer_create(sch, 0, &di), sOKAY);
    ASSERT_EQ(sch_drawer_create(sch, 1, &di), sOKAY);
    EXPECT_WALKS(sch_iterate_all_drawers, sch.get(), "2 3 4 ", "4 3 ");
    EXPECT_WALKS(sch_iterate_user_drawers, sch.get(), "", "");
}

TEST(IterateSystemDrawers, TakesAnySchema) {
    Schema sch;
    sch.drawer(5, OAK_DRAWER_TABLE, 1, 1);
    EXPECT_WALKS(sch_iterate_system_drawers, sch.get(), "2 3 4 ", "4 3 2 ");
    EXPECT_WALKS(sch_iterate_system_drawers, static_cast<SCH_INFO>(nullptr), "2 3 4 ", "4 3 2 ");
    EXPECT_WALKS(sch_iterate_all_drawers, static_cast<SCH_INFO>(nullptr), "2 3 4 ", "4 3 2 ");
}

/// The keys of a walk over the schema's list, as "table.key".
std::string walk_keys(SCH_INFO_C sch, OAK_DIRECTION dir) {
    std::string order;
    for (SCH_KEY_INFO_C ki = sch_iterate_all_keys(sch, nullptr, dir); ki != nullptr;
         ki = sch_iterate_all_keys(sch, ki, dir)) {
        order += std::to_string(ki->table->ndx) + "." + std::to_string(ki->ndx) + " ";
    }
    return order;
}

TEST(IterateAllKeys, GoesByTableThenIndexWithoutTheSystemKey) {
    Schema sch;
    SCH_TBL_INFO two = sch.table(2, "two");
    SCH_TBL_INFO one = sch.table(1, "one");
    for (const OAK_KEY_INDEX n : {5, 0}) {
        Schema::key(two, n, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
        Schema::key(one, n, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    }
    EXPECT_EQ(walk_keys(sch, OAK_FORWARD), "1.0 1.5 2.0 2.5 ");
    EXPECT_EQ(walk_keys(sch, OAK_REVERSE), "2.5 2.0 1.5 1.0 ");
    Schema::key(one, 7, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    EXPECT_EQ(walk_keys(sch, OAK_FORWARD), "1.0 1.5 2.0 2.5 ") << "the list was made before";
    EXPECT_EQ(sch_create_key_list(sch), sOKAY);
    EXPECT_EQ(walk_keys(sch, OAK_FORWARD), "1.0 1.5 1.7 2.0 2.5 ");
    EXPECT_EQ(sch_iterate_all_keys(nullptr, nullptr, OAK_FORWARD), nullptr);
    EXPECT_EQ(sch_create_key_list(nullptr), eINVNULLARG);
}

TEST(IterateAllKeys, KeepsItsPlaceInTheList) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    for (OAK_KEY_INDEX n = 0; n < 4; ++n) {
        Schema::key(ti, n, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    }
    SCH_KEY_INFO any = ti->keys[3]; // only whether it is null counts
    EXPECT_EQ(sch_iterate_all_keys(sch, nullptr, OAK_FORWARD), ti->keys[0]);
    EXPECT_EQ(sch_iterate_all_keys(sch, any, OAK_FORWARD), ti->keys[1]);
    EXPECT_EQ(sch_iterate_all_keys(sch, any, OAK_FORWARD), ti->keys[2]);
    EXPECT_EQ(sch_iterate_all_keys(sch, any, OAK_REVERSE), ti->keys[1]);
    EXPECT_EQ(sch_iterate_all_keys(sch, nullptr, OAK_REVERSE), ti->keys[3]);
    EXPECT_EQ(sch_iterate_all_keys(sch, any, OAK_FORWARD), nullptr);
    EXPECT_EQ(sch_iterate_all_keys(sch, any, OAK_FORWARD), nullptr) << "past the end it stays";
}

std::string walk_lobs(SCH_INFO_C sch, OAK_DIRECTION dir) {
    std::string order;
    for (SCH_COL_INFO_C ci = sch_iterate_all_lob_cols(sch, nullptr, dir); ci != nullptr;
         ci = sch_iterate_all_lob_cols(sch, ci, dir)) {
        order += std::to_string(ci->table->ndx) + "." + std::to_string(ci->ndx) + " ";
    }
    return order;
}

TEST(IterateAllLobColumns, IncludesTheSystemTableAndPassesOverDroppedColumns) {
    Schema sch;
    EXPECT_EQ(walk_lobs(sch, OAK_FORWARD), "0.4 ");
    SCH_TBL_INFO ti = sch.table(3, "t");
    sch.domain(1, "d", OAK_WCLOB);
    Schema::column(ti, 1, "a", OAK_BLOB);
    Schema::column(ti, 2, "b", OAK_INT8);
    SCH_COL_INFO c = Schema::column(ti, 3, "c", OAK_CLOB);
    ASSERT_EQ(sch_col_set_domain(Schema::column(ti, 5, "d", OAK_NOVAL), 1), sOKAY);
    EXPECT_EQ(walk_lobs(sch, OAK_FORWARD), "0.4 ") << "the list was made before";
    ASSERT_EQ(sch_tbl_col_drop(c), sOKAY); // discards the list
    EXPECT_EQ(walk_lobs(sch, OAK_FORWARD), "0.4 3.1 3.5 ");
    EXPECT_EQ(walk_lobs(sch, OAK_REVERSE), "3.5 3.1 0.4 ");
}

TEST(IterateAllLobColumns, OfANullSchemaIsTheSystemColumn) {
    for (const OAK_DIRECTION dir : {OAK_FORWARD, OAK_REVERSE}) {
        EXPECT_EQ(sch_iterate_all_lob_cols(nullptr, nullptr, dir), sch_get_sysfiles_blob_col());
        EXPECT_EQ(sch_iterate_all_lob_cols(nullptr, sch_get_sysfiles_blob_col(), dir), nullptr);
    }
}

#ifdef OSL_FAULT_INJECTION
TEST(LazyLists, AreNotThereWhenMemoryIsExhausted) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_BLOB);
    Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    for (uint64_t nth = 1; nth <= 2; ++nth) {
        osl_faultArm(OSL_FAULT_MEMORY, nth, OAK_TRUE);
        EXPECT_EQ(sch_iterate_all_keys(sch, nullptr, OAK_FORWARD), nullptr);
        EXPECT_EQ(sch_find_key_by_name(sch, "k"), nullptr);
        EXPECT_EQ(sch_create_key_list(sch), eNOMEMORY);
        EXPECT_EQ(sch_iterate_all_lob_cols(sch, nullptr, OAK_FORWARD), nullptr);
        osl_faultDisarm(OSL_FAULT_MEMORY);
        EXPECT_EQ(sch->llKeys, nullptr);
        EXPECT_EQ(sch->llBlobCols, nullptr);
    }
    EXPECT_EQ(walk_keys(sch, OAK_FORWARD), "1.0 ");
    EXPECT_EQ(walk_lobs(sch, OAK_FORWARD), "0.4 1.0 ");
}

TEST(LazyLists, AreNotLeftHalfFilled) {
    uint64_t injected = 1;
    for (uint64_t nth = 1; injected > 0; ++nth) {
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        for (OAK_KEY_INDEX n = 0; n < 3; ++n) {
            Schema::key(ti, n, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
            Schema::column(ti, n, "c", OAK_BLOB);
        }
        const uint64_t before = osl_faultLiveUnderTag(sch_tag(sch));
        osl_faultArm(OSL_FAULT_MEMORY, nth, OAK_FALSE);
        const OAK_RETCODE rc = sch_create_key_list(sch);
        injected = osl_faultDisarm(OSL_FAULT_MEMORY);
        EXPECT_EQ(rc, injected > 0 ? eNOMEMORY : sOKAY) << nth;
        EXPECT_EQ(sch->llKeys == nullptr, injected > 0) << nth;
        const uint64_t live = osl_faultLiveUnderTag(sch_tag(sch));
        EXPECT_EQ(live == before, injected > 0) << nth;
        EXPECT_EQ(sch_create_key_list(sch), sOKAY);
        EXPECT_EQ(osl_faultLiveUnderTag(sch_tag(sch)) == live, injected == 0)
            << "a list that was there is gone";
        osl_faultArm(OSL_FAULT_MEMORY, nth, OAK_FALSE);
        const bool built = sch_iterate_all_lob_cols(sch, nullptr, OAK_FORWARD) != nullptr;
        EXPECT_EQ(built, osl_faultDisarm(OSL_FAULT_MEMORY) == 0) << nth;
        EXPECT_EQ(sch->llBlobCols != nullptr, built) << nth;
        EXPECT_LT(nth, 10u);
    }
}
#endif

// ---- Of a table --------------------------------------------------------------

TEST(IterateColumns, DeliversDroppedOnesUnlessAskedForActiveOnes) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    EXPECT_WALKS(sch_iterate_cols, ti, "", "");
    Schema::column(ti, 1, "a", OAK_INT8);
    Schema::column(ti, 2, "b", OAK_BLOB);
    Schema::column(ti, 4, "c", OAK_INT8);
    Schema::column(ti, 5, "d", OAK_CLOB);
    Schema::column(ti, 7, "e", OAK_INT8);
    ASSERT_EQ(sch_tbl_col_drop(ti->cols[1]), sOKAY);
    ASSERT_EQ(sch_tbl_col_drop(ti->cols[5]), sOKAY);
    EXPECT_WALKS(sch_iterate_cols, ti, "1 2 4 5 7 ", "7 5 4 2 1 ");
    EXPECT_WALKS(sch_iterate_cols_active, ti, "2 4 7 ", "7 4 2 ");
    EXPECT_WALKS(sch_iterate_lob_cols, ti, "2 5 ", "5 2 ");
    EXPECT_WALKS(sch_iterate_non_lob_cols, ti, "1 4 7 ", "7 4 1 ");
    ASSERT_EQ(sch_tbl_set_next_col(ti, 5), sOKAY);
    EXPECT_WALKS(sch_iterate_cols, ti, "1 2 4 ", "4 2 1 ");
    ASSERT_EQ(sch_tbl_set_next_col(ti, 65535), sOKAY);
    EXPECT_WALKS(sch_iterate_cols, ti, "1 2 4 5 7 ", "7 5 4 2 1 ") << "not beyond the array";
}

TEST(IterateKeys, DeliversNamelessOnesUnlessAskedForActiveOnes) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    EXPECT_WALKS(sch_iterate_keys, ti, "", "");
    for (const OAK_KEY_INDEX n : {0, 3, 4, 6}) {
        Schema::key(ti, n, n == 3 ? nullptr : "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    }
    EXPECT_WALKS(sch_iterate_keys, ti, "0 3 4 6 ", "6 4 3 0 ");
    EXPECT_WALKS(sch_iterate_keys_active, ti, "0 4 6 ", "6 4 0 ");
    ASSERT_EQ(sch_tbl_set_next_key(ti, 65535), sOKAY);
    EXPECT_WALKS(sch_iterate_keys, ti, "0 3 4 6 ", "6 4 3 0 ") << "not beyond the array";
}

TEST(IterateReferences, EndsInReverseAtAHoleAboveTheCount) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t"); // 8 places
    for (const OAK_REF_INDEX n : {0, 2, 6, 7}) {
        Schema::reference(ti, n, "r", 1, {}); // counts to four
    }
    EXPECT_WALKS(sch_iterate_refs, ti, "0 2 6 7 ", "7 6 ") << "5 is a hole above the count";
    EXPECT_EQ(sch_iterate_refs(ti, ti->refs[6], OAK_REVERSE), nullptr);
    ASSERT_EQ(sch_tbl_set_num_refs(ti, 6), sOKAY);
    EXPECT_WALKS(sch_iterate_refs, ti, "0 2 6 7 ", "7 6 2 0 ");
    ASSERT_EQ(sch_tbl_set_num_refs(ti, 0), sOKAY);
    EXPECT_WALKS(sch_iterate_refs, ti, "0 2 6 7 ", "7 6 ");
    ASSERT_EQ(sch_tbl_set_next_ref(ti, 9), sOKAY);
    EXPECT_WALKS(sch_iterate_refs, ti, "0 2 6 7 ", "") << "the highest is a hole";
}

TEST(IterateReferences, OfATableWithoutAny) {
    Schema sch;
    ASSERT_EQ(sch_set_max_table(sch, 3), sOKAY);
    SCH_TBL_INFO ti = nullptr;
    ASSERT_EQ(sch_tbl_create(sch, 1, &ti), sOKAY);
    EXPECT_WALKS(sch_iterate_refs, ti, "", "");
    EXPECT_WALKS(sch_iterate_keys, ti, "", "");
    EXPECT_WALKS(sch_iterate_cols, ti, "", "");
    EXPECT_WALKS(sch_iterate_ref_owners, ti, "", "");
    EXPECT_WALKS(sch_iterate_table_drawers, ti, "", "");
}

TEST(IterateOwners, IsAPlainWalkThatEndsAtAHole) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    for (const OAK_REF_INDEX n : {3, 1, 0, 5}) { // owners in this order
        Schema::reference(ti, n, "r", 1, {});
    }
    EXPECT_WALKS(sch_iterate_ref_owners, ti, "3 1 0 5 ", "5 0 1 3 ");
    ASSERT_EQ(sch_ref_drop(ti, 1), sOKAY); // a hole at 1, and three owners counted
    EXPECT_WALKS(sch_iterate_ref_owners, ti, "3 ", "0 ");
}

TEST(IterateTableDrawers, FollowsTheOrderOfFinalization) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    SCH_COL_INFO blob = Schema::column(ti, 1, "b", OAK_BLOB);
    SCH_KEY_INFO ki = Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0});
    sch.drawer(5, OAK_DRAWER_BLOB, 1, 1);
    sch.drawer(6, OAK_DRAWER_BTREE, 1, 0);
    sch.drawer(7, OAK_DRAWER_TABLE, 1, 1);
    ASSERT_EQ(sch_col_set_blob_drawer(blob, 5), sOKAY);
    ASSERT_EQ(sch_key_set_drawer(ki, 6), sOKAY);
    ASSERT_EQ(sch_tbl_set_drawer(ti, 7), sOKAY);
    EXPECT_WALKS(sch_iterate_table_drawers, ti, "", "") << "not finalized";
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_WALKS(sch_iterate_table_drawers, ti, "7 6 5 ", "5 6 7 ");
    sch_key_drop_fcn(ki); // a hole at 1, and two drawers counted
    EXPECT_WALKS(sch_iterate_table_drawers, ti, "7 ", "7 ");
    EXPECT_WALKS(sch_iterate_table_drawers, sch_get_sysfiles_table(), "2 3 4 ", "4 3 2 ");
}

// ---- Of a column, a key, a reference -----------------------------------------

TEST(IterateColumnKeys, SearchesThePreviousOne) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO ci = Schema::column(ti, 0, "a", OAK_INT8);
    EXPECT_WALKS(sch_iterate_col_keys, ci, "", "");
    for (const OAK_KEY_INDEX n : {2, 0, 1}) {
        Schema::key(ti, n, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0});
    }
    SCH_KEY_INFO other = Schema::key(ti, 3, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    EXPECT_WALKS(sch_iterate_col_keys, ci, "2 0 1 ", "1 0 2 ");
    EXPECT_EQ(sch_iterate_col_keys(ci, other, OAK_FORWARD), nullptr) << "not in the list";
    EXPECT_EQ(sch_iterate_col_keys(ci, other, OAK_REVERSE), nullptr);
}

TEST(IterateColumnReferences, SearchesThePreviousOne) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO a = Schema::column(ti, 0, "a", OAK_INT8);
    SCH_COL_INFO b = Schema::column(ti, 1, "b", OAK_INT8);
    EXPECT_WALKS(sch_iterate_col_refs, a, "", "");
    EXPECT_WALKS(sch_iterate_sortcol_refs, b, "", "");
    for (const OAK_REF_INDEX n : {5, 0, 3}) {
        Schema::reference(ti, n, "r", 1, {0}, {1});
    }
    SCH_REF_INFO other = Schema::reference(ti, 7, "r", 1, {});
    EXPECT_WALKS(sch_iterate_col_refs, a, "5 0 3 ", "3 0 5 ");
    EXPECT_WALKS(sch_iterate_sortcol_refs, b, "5 0 3 ", "3 0 5 ");
    EXPECT_WALKS(sch_iterate_col_refs, b, "", "");
    EXPECT_EQ(sch_iterate_col_refs(a, other, OAK_FORWARD), nullptr);
    EXPECT_EQ(sch_iterate_sortcol_refs(b, other, OAK_FORWARD), nullptr);
}

TEST(IterateKeyElements, GoesByPosition) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    Schema::column(ti, 1, "b", OAK_INT8);
    Schema::column(ti, 2, "c", OAK_INT8);
    SCH_KEY_INFO none = Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    SCH_KEY_INFO all =
        Schema::key(ti, 1, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {2, 0, 1});
    EXPECT_WALKS(sch_iterate_key_elems, none, "", "");
    EXPECT_WALKS(sch_iterate_key_elems, all, "0 1 2 ", "2 1 0 ");
    EXPECT_EQ(sch_iterate_key_elems(all, nullptr, OAK_FORWARD)->col, ti->cols[2]);
}

TEST(IterateReferenceColumns, GoesByPosition) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    Schema::column(ti, 1, "b", OAK_INT8);
    Schema::column(ti, 2, "c", OAK_INT8);
    SCH_REF_INFO none = Schema::reference(ti, 0, "r", 1, {});
    SCH_REF_INFO all = Schema::reference(ti, 1, "r", 1, {2, 0, 1}, {1, 2});
    EXPECT_WALKS(sch_iterate_ref_cols, none, "", "");
    EXPECT_WALKS(sch_iterate_sort_cols, none, "", "");
    EXPECT_WALKS(sch_iterate_ref_cols, all, "2 0 1 ", "1 0 2 ");
    EXPECT_WALKS(sch_iterate_sort_cols, all, "0 1 ", "1 0 ");
    EXPECT_EQ(sch_iterate_sort_cols(all, nullptr, OAK_REVERSE)->col, ti->cols[2]);
    EXPECT_EQ(sch_iterate_ref_cols(none, ti->cols[0], OAK_FORWARD), nullptr);
}

// ---- Triggers ----------------------------------------------------------------

class IterateTriggers : public ::testing::Test {
  protected:
    void SetUp() override {
        tag_.may_keep_blocks();
        add("insert before", OAK_TRIG_INSERT, OAK_TRIG_BEFORE);
        add("insert after", OAK_TRIG_INSERT, OAK_TRIG_AFTER);
        add("delete before", OAK_TRIG_DELETE, OAK_TRIG_BEFORE);
        add("insert whenever", OAK_TRIG_INSERT, OAK_TRIG_WHENEVER);
    }
    void add(const char *name, OAK_TRIG_EVENT event, OAK_TRIG_TIMING timing) {
        SCH_TRIG_INFO trgi = nullptr;
        ASSERT_EQ(sch_trig_allocate(name, 0, ++time_, &trgi, tag_), sOKAY);
        ASSERT_EQ(sch_trig_set_event(trgi, event), sOKAY);
        ASSERT_EQ(sch_trig_set_timing(trgi, timing), sOKAY);
        ASSERT_EQ(sch_trig_create(ti_, trgi), sOKAY);
    }
    std::string walk_all(OAK_DIRECTION dir) {
        std::string order;
        for (SCH_TRIG_INFO_C trgi = nullptr;
             (trgi = sch_iterate_all_triggers(ti_, trgi, dir)) != nullptr;) {
            order += std::string(trgi->name) + "; ";
        }
        return order;
    }
    std::string walk_some(OAK_TRIG_TIMING timing, OAK_TRIG_EVENT event) {
        std::string order;
        for (SCH_TRIG_INFO_C trgi = nullptr;
             (trgi = sch_iterate_triggers(ti_, trgi, timing, event)) != nullptr;) {
            order += std::string(trgi->name) + "; ";
        }
        return order;
    }

    oaktest::Tag tag_;
    Schema sch_;
    SCH_TBL_INFO ti_ = sch_.table(1, "t");
    uint64_t time_ = 0;
};

TEST_F(IterateTriggers, FollowsTheListInBothDirections) {
    const std::string all = "insert before; insert after; delete before; insert whenever; ";
    EXPECT_EQ(walk_all(OAK_FORWARD), all);
    EXPECT_EQ(walk_all(OAK_REVERSE), all);
    EXPECT_EQ(sch_iterate_all_triggers(sch_.table(2, "u"), nullptr, OAK_FORWARD), nullptr);
}

TEST_F(IterateTriggers, ChoosesByEventAndTiming) {
    EXPECT_EQ(walk_some(OAK_TRIG_BEFORE, OAK_TRIG_INSERT), "insert before; ");
    EXPECT_EQ(walk_some(OAK_TRIG_AFTER, OAK_TRIG_INSERT), "insert after; ");
    EXPECT_EQ(walk_some(OAK_TRIG_WHENEVER, OAK_TRIG_INSERT),
              "insert before; insert after; insert whenever; ");
    EXPECT_EQ(walk_some(OAK_TRIG_WHENEVER, OAK_TRIG_DELETE), "delete before; ");
    EXPECT_EQ(walk_some(OAK_TRIG_AFTER, OAK_TRIG_DELETE), "");
    EXPECT_EQ(walk_some(OAK_TRIG_WHENEVER, OAK_TRIG_UPDATE), "");
}

TEST_F(IterateTriggers, ChoosesColumnReferencesByTheRow) {
    SCH_TRIG_INFO trgi = ti_->triggers;
    EXPECT_EQ(sch_iterate_trig_cols(trgi, nullptr, OAK_TRIG_OLDNEW), nullptr);
    ASSERT_EQ(sch_trig_set_num_colrefs(trgi, 4), sOKAY);
    EXPECT_EQ(sch_iterate_trig_cols(trgi, nullptr, OAK_TRIG_OLDNEW), nullptr) << "not allocated";
    ASSERT_EQ(sch_trig_alloc_colrefs(trgi, tag_), sOKAY);
    const OAK_TRIG_COL_REF refs[] = {OAK_TRIG_NEW, OAK_TRIG_OLD, OAK_TRIG_OLDNEW, OAK_TRIG_NEW};
    for (OAK_TRC_INDEX n = 0; n < 4; ++n) {
        ASSERT_EQ(sch_trigcol_set_ref(sch_trig_colref(trgi, n), refs[n]), sOKAY);
    }
    const auto walk_cols = [trgi](OAK_TRIG_COL_REF ref) {
        std::string order;
        for (SCH_TRIG_COL_INFO_C tcol = nullptr;
             (tcol = sch_iterate_trig_cols(trgi, tcol, ref)) != nullptr;) {
            order += std::to_string(tcol - trgi->colrefs) + " ";
        }
        return order;
    };
    EXPECT_EQ(walk_cols(OAK_TRIG_OLDNEW), "0 1 2 3 ");
    EXPECT_EQ(walk_cols(OAK_TRIG_NEW), "0 3 ");
    EXPECT_EQ(walk_cols(OAK_TRIG_OLD), "1 ");
}

} // namespace
