// Drops: each with all its effects, what it leaves, and that no pointer to what
// went stays behind.
#include "schema_drop.h"

#include <set>

#include "schema_fixture.h"
#include "schema_sysfiles.h"

namespace {

using oaktest::Schema;

// ---- What may be pointed at --------------------------------------------------

/// Asserts that every pointer in the schema leads to an object that is there.
class Reachability {
  public:
    explicit Reachability(SCH_INFO_C sch) : sch_(sch) {
        live_.insert(nullptr);
        for (OAK_DRAWER n = 0; n < sch->drawers_used; ++n) {
            live_.insert(sch->drawers[n]);
        }
        for (OAK_DOM_INDEX n = 0; n < sch->next_domain; ++n) {
            live_.insert(sch->domains[n]);
        }
        for_each_table([this](SCH_TBL_INFO_C ti) { collect(ti); });
        for_each_table([this](SCH_TBL_INFO_C ti) { check(ti); });
        for (OAK_DRAWER n = 0; n < sch->drawers_used; ++n) {
            expect_live(sch->drawers[n]->obj.any, "object of a drawer");
        }
        EXPECT_EQ(sch->tablesByName, nullptr);
        EXPECT_EQ(sch->llKeys, nullptr);
        EXPECT_EQ(sch->llBlobCols, nullptr);
    }

  private:
    template <class Visit>
    void for_each_table(Visit visit) {
        for (OAK_TBL_INDEX n = 0; n < sch_->max_table; ++n) {
            if (sch_->tables[n] != nullptr) {
                visit(sch_->tables[n]);
            }
        }
    }
    template <class Record>
    void insert(Record *const *list, uint32_t count) {
        live_.insert(list, list + count);
    }
    void collect(SCH_TBL_INFO_C ti) {
        live_.insert(ti);
        insert(ti->cols, ti->max_col);
        insert(ti->keys, ti->max_keys);
        insert(ti->refs, ti->next_ref);
    }
    void expect_live(const void *object, const char *what) {
        EXPECT_TRUE(live_.count(object) == 1) << what;
    }
    template <class Record>
    void expect_all_live(Record *const *list, uint32_t count, const char *what) {
        for (uint32_t n = 0; n < count; ++n) {
            expect_live(list[n], what);
        }
    }
    void check(SCH_TBL_INFO_C ti) {
        expect_live(ti->drawer, "row drawer");
        expect_live(ti->pkey, "primary key");
        expect_all_live(ti->avls, ti->max_avls, "AVL key");
        expect_all_live(ti->drawers, ti->max_drawers, "drawer of a table");
        expect_all_live(ti->owners, ti->max_owns, "owner");
        for (OAK_COL_INDEX n = 0; n < ti->max_col; ++n) {
            if (ti->cols[n] != nullptr) {
                check(ti->cols[n]);
            }
        }
        for (OAK_KEY_INDEX n = 0; n < ti->max_keys; ++n) {
            if (ti->keys[n] != nullptr) {
                check(ti->keys[n]);
            }
        }
        for (OAK_REF_INDEX n = 0; n < ti->next_ref; ++n) {
            if (ti->refs[n] != nullptr) {
                check(ti->refs[n]);
            }
        }
    }
    void check(SCH_COL_INFO_C ci) {
        expect_live(ci->table, "table of a column");
        expect_live(ci->domain, "domain of a column");
        expect_live(ci->key, "key of a column");
        expect_live(ci->drawer, "drawer of a column");
        expect_live(ci->ref, "reference of a column");
        expect_live(ci->reftab, "table referred to by a column");
        expect_live(ci->refcol, "column referred to by a column");
        expect_all_live(ci->keys, ci->num_keys, "key that uses a column");
        expect_all_live(ci->refs, ci->num_refs, "reference that uses a column");
        expect_all_live(ci->sortrefs, ci->num_sortrefs, "reference that sorts on a column");
    }
    void check(SCH_KEY_INFO_C ki) {
        expect_live(ki->drawer, "drawer of a key");
        for (OAK_COL_INDEX n = 0; n < ki->num_elems; ++n) {
            expect_live(ki->elems[n].col, "column of a key");
        }
    }
    void check(SCH_REF_INFO_C ri) {
        expect_live(ri->reftab, "table referred to");
        expect_live(ri->refkey, "key referred to");
        expect_live(ri->drawer, "drawer of a reference");
        expect_all_live(ri->cols, ri->num_cols, "referencing column");
        for (OAK_COL_INDEX n = 0; n < ri->num_sort_cols; ++n) {
            expect_live(ri->sort_cols[n].col, "sort column");
        }
    }

    SCH_INFO_C sch_;
    std::set<const void *> live_;
};

#define EXPECT_NOTHING_DANGLES(sch)                                                                \
    do {                                                                                           \
        SCOPED_TRACE("dangling");                                                                  \
        Reachability reachability(sch);                                                            \
    } while (false)

// ---- Two tables with everything ----------------------------------------------

/// "owner": id (primary key, B-tree drawer), name, photo (blob). "member": id,
/// owner_id (references owner.id, sorted by seq), seq, text of a domain; a hash
/// key with a drawer, an AVL key, a nameless B-tree key.
class TwoTables : public ::testing::Test {
  protected:
    void SetUp() override {
        build_owner();
        build_member();
        ASSERT_EQ(sch_tbl_finalize(owner_, OAK_FALSE), sOKAY);
        ASSERT_EQ(sch_tbl_finalize(member_, OAK_FALSE), sOKAY);
        fill_caches();
    }

    void build_owner() {
        Schema::column(owner_, 0, "id", OAK_INT32);
        Schema::column(owner_, 1, "name", OAK_VARCHAR, 41);
        Schema::column(owner_, 2, "photo", OAK_BLOB);
        Schema::key(owner_, 0, "o_id", OAK_KEY_TYPE_PRIMARY, OAK_KEY_METHOD_BTREE, {0});
        add_drawer(10, OAK_DRAWER_TABLE, 1, 1);
        add_drawer(11, OAK_DRAWER_BTREE, 1, 0);
        add_drawer(12, OAK_DRAWER_BLOB, 1, 2);
        ASSERT_EQ(sch_tbl_set_drawer(owner_, 10), sOKAY);
        ASSERT_EQ(sch_key_set_drawer(owner_->keys[0], 11), sOKAY);
        ASSERT_EQ(sch_col_set_blob_drawer(owner_->cols[2], 12), sOKAY);
        ASSERT_EQ(sch_col_set_key(owner_->cols[0], 0), sOKAY);
    }

    void build_member() {
        sch_.domain(1, "text", OAK_VARCHAR, 21);
        Schema::column(member_, 0, "id", OAK_INT32);
        Schema::column(member_, 1, "owner_id", OAK_INT32);
        Schema::column(member_, 2, "seq", OAK_INT32);
        ASSERT_EQ(sch_col_set_domain(Schema::column(member_, 3, "text", OAK_NOVAL), 1), sOKAY);
        Schema::key(member_, 0, "m_hash", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_HASH, {0});
        Schema::key(member_, 1, "m_avl", OAK_KEY_TYPE_NONUNIQUE, OAK_KEY_METHOD_AVL, {0, 3});
        Schema::key(member_, 2, nullptr, OAK_KEY_TYPE_NONUNIQUE, OAK_KEY_METHOD_BTREE, {2, 0});
        ASSERT_EQ(sch_key_finalize(member_->keys[1]), sOKAY);
        add_drawer(20, OAK_DRAWER_TABLE, 2, 2);
        add_drawer(21, OAK_DRAWER_HASH, 2, 0);
        add_drawer(22, OAK_DRAWER_REF, 2, 0);
        ASSERT_EQ(sch_tbl_set_drawer(member_, 20), sOKAY);
        ASSERT_EQ(sch_key_set_drawer(member_->keys[0], 21), sOKAY);
        SCH_REF_INFO ri = Schema::reference(member_, 0, "m_owner", 1, {1}, {2});
        ASSERT_EQ(sch_ref_set_refkey(ri, 0), sOKAY);
        ASSERT_EQ(sch_ref_set_drawer(ri, 22), sOKAY);
        ASSERT_EQ(sch_ref_finalize(ri), sOKAY);
        SCH_COL_INFO ci = member_->cols[1];
        ASSERT_EQ(sch_col_set_reftab(ci, 1), sOKAY);
        ASSERT_EQ(sch_col_set_refcol(ci, 0), sOKAY);
        ASSERT_EQ(sch_col_set_usage(ci, 7), sOKAY);
        ASSERT_EQ(sch_col_set_usage(member_->cols[2], 7), sOKAY);
    }

    void add_drawer(OAK_DRAWER id, OAK_DRAWER_TYPE type, OAK_TBL_INDEX table, OAK_INDEX item) {
        sch_.drawer(id, type, table, item);
    }

    void fill_caches() {
        sch_find_table_by_name(sch_, "owner", nullptr);
        sch_find_key_by_name(sch_, "o_id");
        sch_iterate_all_lob_cols(sch_, nullptr, OAK_FORWARD);
        ASSERT_NE(sch_->tablesByName, nullptr);
        ASSERT_NE(sch_->llKeys, nullptr);
        ASSERT_NE(sch_->llBlobCols, nullptr);
    }

    Schema sch_;
    SCH_TBL_INFO owner_ = sch_.table(1, "owner");
    SCH_TBL_INFO member_ = sch_.table(2, "member");
};

// ---- Tables ------------------------------------------------------------------

TEST_F(TwoTables, DropOneWithItsKeysAndReferences) {
    ASSERT_EQ(sch_tbl_drop(member_), sOKAY);
    EXPECT_EQ(sch_num_tables(sch_), 2);
    EXPECT_EQ(sch_find_table_by_ndx(sch_, 2), nullptr);
    EXPECT_EQ(sch_tbl_num_owners(owner_), 0);
    EXPECT_EQ(sch_num_drawers(sch_), 10u) << "only the reference's drawer went";
    for (const OAK_DRAWER id : {20u, 21u}) {
        ASSERT_NE(sch_drawer(sch_, id), nullptr) << id;
        EXPECT_EQ(sch_drawer(sch_, id)->obj.any, nullptr) << "drawers stay without an object";
    }
    EXPECT_EQ(sch_drawer(sch_, 22), nullptr);
    EXPECT_NOTHING_DANGLES(sch_);
    EXPECT_EQ(sch_find_table_by_name(sch_, "member", nullptr), nullptr);
    EXPECT_EQ(sch_find_table_by_name(sch_, "owner", nullptr), owner_);
    EXPECT_EQ(sch_find_key_by_name(sch_, "m_hash"), nullptr);
    EXPECT_EQ(sch_num_domains(sch_), 1) << "domains stay";
}

TEST_F(TwoTables, DropOneThatIsReferredTo) {
    ASSERT_EQ(sch_tbl_drop(owner_), sOKAY);
    EXPECT_EQ(sch_num_tables(sch_), 2);
    SCH_REF_INFO ri = member_->refs[0];
    EXPECT_EQ(sch_ref_owner(ri), nullptr);
    EXPECT_EQ(sch_ref_key(ri), nullptr);
    EXPECT_EQ(sch_col_reftab(member_->cols[1]), nullptr);
    EXPECT_EQ(sch_col_refcol(member_->cols[1]), nullptr);
    EXPECT_EQ(sch_col_ref(member_->cols[1]), ri) << "the reference itself is still there";
    EXPECT_NOTHING_DANGLES(sch_);
    EXPECT_EQ(sch_ref_drop(member_, 0), sOKAY);
    EXPECT_NOTHING_DANGLES(sch_);
}

TEST_F(TwoTables, DropBothWithTheirDrawers) {
    for (SCH_TBL_INFO ti : {member_, owner_}) {
        ASSERT_EQ(sch_tbl_drawers_drop(ti), sOKAY);
        ASSERT_EQ(sch_tbl_drop(ti), sOKAY);
        EXPECT_NOTHING_DANGLES(sch_);
    }
    EXPECT_EQ(sch_num_user_tables(sch_), 0);
    EXPECT_EQ(sch_num_user_drawers(sch_), 0u);
    EXPECT_EQ(sch_iterate_user_drawers(sch_, nullptr, OAK_FORWARD), nullptr);
    EXPECT_EQ(sch_iterate_tables(sch_, nullptr, OAK_FORWARD), nullptr);
    // The places are free again.
    SCH_TBL_INFO again = nullptr;
    EXPECT_EQ(sch_tbl_create(sch_, 1, &again), sOKAY);
    SCH_DRAWER_INFO di = nullptr;
    EXPECT_EQ(sch_drawer_create(sch_, 10, &di), sOKAY);
}

TEST_F(TwoTables, RefuseADropAtOrAboveTheLimit) {
    ASSERT_EQ(sch_set_next_table(sch_, 2), sOKAY);
    EXPECT_EQ(sch_tbl_drop(member_), eRANGE);
    EXPECT_STREQ(sch_tbl_name(member_), "member");
    EXPECT_EQ(sch_tbl_num_refs(member_), 1);
    EXPECT_EQ(sch_tbl_drop(nullptr), eINVNULLARG);
}

TEST_F(TwoTables, CountNoTableBelowZero) {
    ASSERT_EQ(sch_set_num_tables(sch_, 0), sOKAY);
    ASSERT_EQ(sch_tbl_drop(member_), sOKAY);
    EXPECT_EQ(sch_num_tables(sch_), 0);
}

TEST(TableDrop, OfATableThatRefersToItself) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    Schema::reference(ti, 0, "r", 1, {0}, {0});
    Schema::reference(ti, 5, "s", 1, {0});
    ASSERT_EQ(sch_tbl_drop(ti), sOKAY);
    EXPECT_EQ(sch_num_user_tables(sch), 0);
    EXPECT_NOTHING_DANGLES(sch);
}

// ---- Drawers of a table ------------------------------------------------------

TEST_F(TwoTables, DropTheirDrawers) {
    EXPECT_EQ(sch_tbl_drawers_drop(owner_), sOKAY);
    for (const OAK_DRAWER id : {10u, 11u, 12u}) {
        EXPECT_EQ(sch_drawer(sch_, id), nullptr) << id;
    }
    EXPECT_EQ(sch_num_drawers(sch_), 8u);
    EXPECT_EQ(sch_tbl_num_drawers(owner_), 0u);
    EXPECT_EQ(sch_iterate_table_drawers(owner_, nullptr, OAK_FORWARD), nullptr);
    EXPECT_EQ(sch_tbl_drawer(owner_), OAK_DRAWER_NONE);
    EXPECT_EQ(sch_key_drawer(owner_->keys[0]), nullptr);
    EXPECT_EQ(sch_col_lob_drawer(owner_->cols[2]), nullptr);
    EXPECT_EQ(sch_tbl_drawers_drop(owner_), eRANGE) << "none is left";
    EXPECT_EQ(sch_num_drawers(sch_), 8u);
    EXPECT_EQ(sch_tbl_drawers_drop(nullptr), eINVNULLARG);
}

TEST_F(TwoTables, DropTheirOtherDrawersWithoutARowDrawer) {
    ASSERT_EQ(sch_set_next_drawer(sch_, 20), sOKAY); // the row drawer is at the limit
    EXPECT_EQ(sch_tbl_drawers_drop(member_), eRANGE);
    EXPECT_EQ(sch_tbl_num_drawers(member_), 0u);
    EXPECT_EQ(sch_key_drawer(member_->keys[0]), nullptr);
    EXPECT_EQ(sch_ref_drawer(member_->refs[0]), nullptr);
    EXPECT_EQ(sch_tbl_drawer(member_), 20u) << "it stays";
    EXPECT_EQ(sch_num_drawers(sch_), 9u);
}

// Without a row drawer the first drawer of the list is another one, and the walk
// begins behind it.
TEST(TableDrawersDrop, LeavesTheFirstDrawerOfATableWithoutARowDrawer) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    for (const OAK_KEY_INDEX n : {0, 1}) {
        SCH_KEY_INFO ki = Schema::key(ti, n, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0});
        sch.drawer(5u + n, OAK_DRAWER_BTREE, 1, n);
        ASSERT_EQ(sch_key_set_drawer(ki, 5u + n), sOKAY);
    }
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(sch_tbl_drawers_drop(ti), eRANGE);
    EXPECT_EQ(sch_drawer(sch, 5), sch_key_drawer(ti->keys[0]));
    EXPECT_EQ(sch_drawer(sch, 6), nullptr);
    EXPECT_EQ(sch_key_drawer(ti->keys[1]), nullptr);
}

// The source of a blob drawer is not compared, so two columns may share one.
TEST(TableDrawersDrop, ClearsASharedBlobDrawerEverywhere) {
    Schema sch;
    SCH_TBL_INFO one = sch.table(1, "one");
    SCH_TBL_INFO two = sch.table(2, "two");
    sch.drawer(5, OAK_DRAWER_TABLE, 1, 1);
    sch.drawer(6, OAK_DRAWER_BLOB, 1, 0);
    ASSERT_EQ(sch_tbl_set_drawer(one, 5), sOKAY);
    for (SCH_TBL_INFO ti : {one, two}) {
        ASSERT_EQ(sch_col_set_blob_drawer(Schema::column(ti, 0, "a", OAK_BLOB), 6), sOKAY);
        ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    }
    EXPECT_EQ(sch_tbl_drawers_drop(one), sOKAY);
    EXPECT_EQ(sch_col_lob_drawer(two->cols[0]), nullptr);
    EXPECT_EQ(sch_tbl_related_drawer(two, 0), nullptr);
    EXPECT_NOTHING_DANGLES(sch);
}

// ---- Columns -----------------------------------------------------------------

TEST_F(TwoTables, DropALargeObjectWithItsDrawer) {
    SCH_COL_INFO ci = owner_->cols[2];
    ASSERT_EQ(sch_tbl_col_drop(ci), sOKAY);
    EXPECT_EQ(sch_col_name(ci), nullptr);
    EXPECT_EQ(sch_get_col_by_index(owner_, 2), ci) << "the record stays";
    EXPECT_EQ(sch_tbl_num_cols(owner_), 2);
    EXPECT_EQ(sch_tbl_next_col(owner_), 3) << "and its index is taken";
    EXPECT_EQ(sch_col_lob_drawer(ci), nullptr);
    EXPECT_EQ(sch_drawer(sch_, 12), nullptr);
    EXPECT_EQ(sch_num_drawers(sch_), 10u);
    EXPECT_EQ(sch_tbl_num_drawers(owner_), 2u);
    EXPECT_EQ(sch_tbl_related_drawer(owner_, 2), nullptr);
    EXPECT_NOTHING_DANGLES(sch_);
    ASSERT_EQ(sch_tbl_finalize(owner_, OAK_FALSE), sOKAY);
    EXPECT_NE(owner_->active_ndx, nullptr);
    EXPECT_EQ(sch_tbl_num_drawers(owner_), 2u);
}

TEST_F(TwoTables, DropAColumnOnceAlone) {
    SCH_COL_INFO ci = owner_->cols[1];
    ASSERT_EQ(sch_col_set_not_null(ci, "nn"), sOKAY);
    ASSERT_EQ(sch_tbl_col_drop(ci), sOKAY);
    EXPECT_EQ(sch_col_not_null_cname(ci), nullptr);
    EXPECT_EQ(sch_col_not_null(ci), OAK_TRUE);
    EXPECT_EQ(sch_tbl_num_cols(owner_), 2);
    ASSERT_EQ(sch_tbl_col_drop(ci), sOKAY);
    EXPECT_EQ(sch_tbl_num_cols(owner_), 2) << "a dropped column is not dropped again";
    EXPECT_EQ(sch_tbl_col_drop(nullptr), eINVNULLARG);
    ASSERT_EQ(sch_tbl_set_num_cols(owner_, 0), sOKAY);
    ASSERT_EQ(sch_tbl_col_drop(owner_->cols[0]), sOKAY);
    EXPECT_EQ(sch_tbl_num_cols(owner_), 0) << "no count falls below zero";
}

TEST_F(TwoTables, DropTheOnlyColumnOfADomainWithTheDomain) {
    SCH_COL_INFO ci = member_->cols[3];
    ASSERT_EQ(sch_type_set_check_str(sch_col_type(ci), "check"), sOKAY);
    ASSERT_EQ(sch_type_set_check_name(sch_col_type(ci), "check_name"), sOKAY);
    ASSERT_EQ(sch_tbl_col_drop(ci), sOKAY);
    EXPECT_EQ(sch_domain(sch_, 1), nullptr);
    EXPECT_EQ(sch_num_domains(sch_), 0);
    EXPECT_EQ(sch_col_domain(ci), nullptr);
    EXPECT_EQ(sch_col_data_type(ci), OAK_VARCHAR) << "the column keeps the type";
    EXPECT_EQ(sch_col_length(ci), 21u);
    EXPECT_EQ(sch_col_byte_len(ci), 21u);
    EXPECT_NE(ci->type.type_info, nullptr);
    EXPECT_EQ(sch_col_check_str(ci), nullptr);
    EXPECT_EQ(sch_col_check_name(ci), nullptr);
    EXPECT_NOTHING_DANGLES(sch_);
}

TEST_F(TwoTables, DropAColumnOfADomainInUse) {
    SCH_COL_INFO other = Schema::column(owner_, 3, "other", OAK_NOVAL);
    ASSERT_EQ(sch_col_set_domain(other, 1), sOKAY);
    ASSERT_EQ(sch_tbl_col_drop(member_->cols[3]), sOKAY);
    EXPECT_EQ(sch_domain(sch_, 1), sch_col_domain(other));
    EXPECT_EQ(sch_num_domains(sch_), 1);
}

// ---- Domains -----------------------------------------------------------------

TEST_F(TwoTables, KeepADomainInUse) {
    SCH_DOMAIN_INFO mi = sch_domain(sch_, 1);
    EXPECT_EQ(sch_dom_drop(mi), sOKAY);
    EXPECT_EQ(sch_domain(sch_, 1), mi);
    EXPECT_EQ(sch_num_domains(sch_), 1);
    EXPECT_STREQ(sch_dom_name(mi), "text");
    EXPECT_EQ(sch_dom_drop(nullptr), eINVNULLARG);
}

TEST_F(TwoTables, KeepADomainOfADroppedColumn) {
    SCH_COL_INFO ci = member_->cols[3];
    ASSERT_EQ(sch_col_set_name(ci, nullptr), sOKAY); // dropped, but still of the domain
    EXPECT_EQ(sch_dom_drop(sch_domain(sch_, 1)), sOKAY);
    EXPECT_NE(sch_domain(sch_, 1), nullptr);
}

TEST(DomainDrop, FreesItsPlace) {
    Schema sch;
    SCH_DOMAIN_INFO mi = sch.domain(3, "d", OAK_INT8);
    ASSERT_EQ(sch_dom_set_format(mi, "%d"), sOKAY);
    ASSERT_EQ(sch_string_input("5", &mi->defstr, OAK_TRUE, sch_tag(sch)), sOKAY);
    ASSERT_EQ(sch_set_num_domains(sch, 0), sOKAY);
    EXPECT_EQ(sch_dom_drop(mi), sOKAY);
    EXPECT_EQ(sch_domain(sch, 3), nullptr);
    EXPECT_EQ(sch_num_domains(sch), 0) << "no count falls below zero";
    sch.domain(3, "again", OAK_INT8);
}

// ---- Keys --------------------------------------------------------------------

TEST_F(TwoTables, DropAKeyWithItsDrawer) {
    sch_key_drop_fcn(member_->keys[0]);
    EXPECT_EQ(sch_get_key_by_index(member_, 0), nullptr);
    EXPECT_EQ(sch_tbl_num_keys(member_), 2);
    EXPECT_EQ(sch_tbl_next_key(member_), 3);
    EXPECT_EQ(sch_drawer(sch_, 21), nullptr);
    EXPECT_EQ(sch_num_drawers(sch_), 10u);
    EXPECT_EQ(sch_tbl_num_drawers(member_), 2u);
    EXPECT_EQ(member_->cols[0]->num_keys, 2);
    EXPECT_EQ(member_->cols[0]->keys[0], member_->keys[1]);
    EXPECT_EQ(member_->cols[0]->keys[1], member_->keys[2]);
    EXPECT_NOTHING_DANGLES(sch_);
    EXPECT_EQ(sch_find_key_by_name(sch_, "m_hash"), nullptr);
    EXPECT_EQ(sch_find_key_by_name(sch_, "m_avl"), member_->keys[1]);
}

TEST_F(TwoTables, DropThePrimaryKeyThatIsReferredTo) {
    EXPECT_EQ(sch_col_nullable(owner_->cols[0]), OAK_FALSE);
    sch_key_drop_fcn(owner_->keys[0]);
    EXPECT_EQ(sch_tbl_primary_key(owner_), nullptr);
    EXPECT_EQ(sch_col_nullable(owner_->cols[0]), OAK_TRUE);
    EXPECT_EQ(sch_col_key(owner_->cols[0]), nullptr);
    EXPECT_EQ(sch_col_key_ndx(owner_->cols[0]), OAK_INDEX_NONE);
    EXPECT_EQ(sch_ref_key(member_->refs[0]), nullptr);
    EXPECT_EQ(owner_->cols[0]->num_keys, 0);
    EXPECT_EQ(owner_->cols[0]->keys, nullptr) << "its only key";
    EXPECT_NOTHING_DANGLES(sch_);
}

TEST_F(TwoTables, DropAnAvlKeyButKeepItsRecord) {
    SCH_KEY_INFO ki = member_->keys[1];
    ASSERT_EQ(sch_tbl_num_avls(member_), 1);
    sch_key_drop_fcn(ki);
    EXPECT_EQ(sch_get_key_by_index(member_, 1), ki);
    EXPECT_EQ(sch_key_name(ki), nullptr);
    EXPECT_EQ(sch_key_num_elems(ki), 0);
    EXPECT_EQ(sch_key_method(ki), OAK_KEY_METHOD_AVL);
    EXPECT_EQ(sch_tbl_num_keys(member_), 3) << "as it was";
    EXPECT_EQ(sch_tbl_num_avls(member_), 0);
    EXPECT_EQ(sch_tbl_next_avl(member_), 1);
    EXPECT_EQ(member_->avls[0], nullptr);
    EXPECT_EQ(member_->cols[3]->num_keys, 0);
    EXPECT_NOTHING_DANGLES(sch_);
    sch_key_drop_fcn(ki); // once more
    EXPECT_EQ(sch_tbl_num_avls(member_), 0);
    EXPECT_EQ(sch_iterate_keys_active(member_, member_->keys[0], OAK_FORWARD), member_->keys[2]);
    ASSERT_EQ(sch_tbl_finalize(member_, OAK_FALSE), sOKAY);
    EXPECT_EQ(member_->bufferInfo.num_avls, 0);
    sch_key_drop_fcn(nullptr);
}

TEST_F(TwoTables, CountNoKeyBelowZero) {
    ASSERT_EQ(sch_tbl_set_num_keys(member_, 0), sOKAY);
    ASSERT_EQ(sch_tbl_set_num_avls(member_, 0), sOKAY);
    ASSERT_EQ(sch_set_num_drawers(sch_, 0), sOKAY);
    member_->num_drawers = 0;
    sch_key_drop_fcn(member_->keys[0]);
    sch_key_drop_fcn(member_->keys[1]);
    EXPECT_EQ(sch_tbl_num_keys(member_), 0);
    EXPECT_EQ(sch_tbl_num_avls(member_), 0);
    EXPECT_EQ(sch_num_drawers(sch_), 0u);
    EXPECT_EQ(sch_tbl_num_drawers(member_), 0u);
}

// A column that does not list the key loses its last entry all the same.
TEST(KeyDrop, TakesTheLastEntryOfAColumnThatDoesNotListIt) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO ci = Schema::column(ti, 0, "a", OAK_INT8);
    SCH_KEY_INFO keys[3] = {};
    for (OAK_KEY_INDEX n = 0; n < 3; ++n) {
        keys[n] = Schema::key(ti, n, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0});
    }
    ci->keys[0] = keys[1]; // 1 1 2: key 0 is not there
    sch_key_drop_fcn(keys[0]);
    ASSERT_EQ(ci->num_keys, 2);
    EXPECT_EQ(ci->keys[0], keys[1]);
    EXPECT_EQ(ci->keys[1], keys[1]);
    ci->num_keys = 0;
    sch_key_drop_fcn(keys[1]);
    EXPECT_EQ(ci->num_keys, 0);
}

TEST(KeyDrop, OfAnAvlKeyThatWasNeverNumberedLeavesTheOthers) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    SCH_KEY_INFO one = Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_AVL, {0});
    SCH_KEY_INFO two = Schema::key(ti, 1, "l", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_AVL, {0});
    ASSERT_EQ(sch_key_finalize(one), sOKAY);
    sch_key_drop_fcn(two); // its number is still 0
    EXPECT_EQ(ti->avls[0], one);
    EXPECT_EQ(sch_tbl_num_avls(ti), 1);
}

// ---- References --------------------------------------------------------------

TEST_F(TwoTables, DropTheirReference) {
    EXPECT_EQ(sch_ref_drop(member_, 0), sOKAY);
    EXPECT_EQ(sch_get_ref_by_index(member_, 0), nullptr);
    EXPECT_EQ(sch_tbl_num_refs(member_), 0);
    EXPECT_EQ(sch_tbl_next_ref(member_), 8);
    EXPECT_EQ(sch_drawer(sch_, 22), nullptr);
    EXPECT_EQ(sch_tbl_num_drawers(member_), 2u);
    EXPECT_EQ(sch_tbl_num_owners(owner_), 0);
    EXPECT_EQ(sch_tbl_next_owner(owner_), 1);
    EXPECT_EQ(owner_->owners[0], nullptr);
    SCH_COL_INFO ci = member_->cols[1];
    EXPECT_EQ(ci->num_refs, 0);
    EXPECT_EQ(ci->ref, nullptr);
    EXPECT_EQ(ci->reftab, nullptr);
    EXPECT_EQ(ci->refcol, nullptr);
    EXPECT_EQ(sch_col_usage(ci), 1) << "bits 2 and 4 are cleared on the referencing column";
    EXPECT_EQ(member_->cols[2]->num_sortrefs, 0);
    EXPECT_EQ(sch_col_usage(member_->cols[2]), 7) << "the sort column's own bit stays";
    EXPECT_EQ(sch_ref_drop(member_, 0), sOKAY) << "an empty place";
    EXPECT_EQ(sch_ref_drop(member_, 8), eRANGE);
    EXPECT_EQ(sch_ref_drop(member_, OAK_INDEX_NONE), eRANGE);
    EXPECT_EQ(sch_ref_drop(nullptr, 0), eINVNULLARG);
}

TEST(ReferenceDrop, KeepsTheUsageOfColumnsThatOthersUse) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO a = Schema::column(ti, 0, "a", OAK_INT8);
    SCH_COL_INFO b = Schema::column(ti, 1, "b", OAK_INT8);
    ASSERT_EQ(sch_col_set_usage(a, 7), sOKAY);
    ASSERT_EQ(sch_col_set_usage(b, 7), sOKAY);
    Schema::reference(ti, 0, "r", 1, {0, 1}, {0});
    SCH_REF_INFO second = Schema::reference(ti, 1, "s", 1, {0}, {0});
    ASSERT_EQ(sch_col_set_ref(a, 1), sOKAY);
    ASSERT_EQ(sch_ref_drop(ti, 0), sOKAY);
    EXPECT_EQ(sch_col_usage(a), 7) << "the second reference uses it and sorts on it";
    EXPECT_EQ(sch_col_usage(b), 5) << "beyond the sort positions bit 4 is not looked at";
    EXPECT_EQ(sch_col_ref(a), second) << "of the other reference";
    ASSERT_EQ(a->num_refs, 1);
    EXPECT_EQ(a->refs[0], second);
    ASSERT_EQ(a->num_sortrefs, 1);
    EXPECT_EQ(a->sortrefs[0], second);
    EXPECT_EQ(b->num_refs, 0);
    EXPECT_EQ(b->refs, nullptr);
    ASSERT_EQ(sch_ref_drop(ti, 1), sOKAY);
    EXPECT_EQ(sch_col_usage(a), 1) << "the last one clears bit 2";
    EXPECT_EQ(sch_col_ref(a), nullptr);
    EXPECT_EQ(sch_tbl_num_refs(ti), 0);
}

TEST(ReferenceDrop, ReadsNothingBeyondItsColumns) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    for (OAK_COL_INDEX n = 0; n < 3; ++n) {
        Schema::column(ti, n, "c", OAK_INT8);
    }
    Schema::reference(ti, 0, "r", 1, {0}, {0, 1, 2}); // more sort columns than columns
    Schema::reference(ti, 1, "s", 1, {}, {1});
    ASSERT_EQ(sch_ref_drop(ti, 0), sOKAY);
    ASSERT_EQ(sch_ref_drop(ti, 1), sOKAY);
    for (OAK_COL_INDEX n = 0; n < 3; ++n) {
        EXPECT_EQ(ti->cols[n]->num_sortrefs, 0);
    }
}

TEST(ReferenceDrop, TakesReferencesThatAreNotComplete) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    SCH_REF_INFO ri = nullptr;
    ASSERT_EQ(sch_ref_create(ti, 0, &ri), sOKAY);
    ASSERT_EQ(sch_ref_set_num_cols(ri, 2), sOKAY);
    ASSERT_EQ(sch_ref_set_num_sort_cols(ri, 2), sOKAY);
    EXPECT_EQ(sch_ref_drop(ti, 0), sOKAY) << "no table, no columns";
    EXPECT_EQ(sch_tbl_num_refs(ti), 0) << "no count falls below zero";
}

TEST(ReferenceDrop, ClearsAColumnThatNamesItWithoutBeingOneOfIts) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO ci = Schema::column(ti, 0, "a", OAK_INT8);
    Schema::reference(ti, 0, "r", 1, {});
    ASSERT_EQ(sch_col_set_ref(ci, 0), sOKAY);
    ASSERT_EQ(sch_ref_drop(ti, 0), sOKAY);
    EXPECT_EQ(sch_col_ref(ci), nullptr);
}

// The payload of the first value goes by the type of the first sort column.
TEST(ReferenceDrop, FreesTheFirstColumnValue) {
    for (const bool matching : {true, false}) {
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        Schema::column(ti, 0, "a", OAK_VARCHAR, 9);
        Schema::column(ti, 1, "b", OAK_INT32);
        SCH_REF_INFO ri =
            Schema::reference(ti, 0, "r", 1, {0}, {static_cast<OAK_COL_INDEX>(matching ? 0 : 1)});
        OAK_COLUMN_VALUE *values = sch_ref_col_vals(ri); // stays with the schema's tag
        values[0].value.type = OAK_VARCHAR;
        values[0].value.status = vsOKAY;
        values[0].value.vt.cv = static_cast<const char *>(OSL_GET_STRING("text", sch_tag(sch)));
        ASSERT_EQ(sch_ref_drop(ti, 0), sOKAY);
        EXPECT_EQ(values[0].value.status, vsNOVAL);
        EXPECT_EQ(values[0].value.vt.cv == nullptr, matching);
    }
}

// ---- Triggers ----------------------------------------------------------------

TEST(TriggerDrop, FindsTheNameInAnyCaseAndLeavesTheRecord) {
    oaktest::Tag tag;
    tag.may_keep_blocks();
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_TRIG_INFO made[3] = {};
    const char *const names[] = {"First", "Second", "Third"};
    for (int n = 0; n < 3; ++n) {
        ASSERT_EQ(sch_trig_allocate(names[n], 0, static_cast<uint64_t>(n), &made[n], tag), sOKAY);
        ASSERT_EQ(sch_trig_create(ti, made[n]), sOKAY);
    }
    EXPECT_EQ(sch_trig_drop(ti, "unknown"), eNOTFOUND);
    EXPECT_EQ(sch_trig_drop(ti, "SECOND"), sOKAY);
    EXPECT_EQ(sch_trig_drop(ti, "second"), eNOTFOUND);
    EXPECT_EQ(sch_tbl_triggers(ti), made[0]);
    EXPECT_EQ(made[0]->next, made[2]);
    EXPECT_STREQ(sch_trig_name(made[1]), "Second");
    EXPECT_EQ(sch_trig_drop(ti, "first"), sOKAY);
    EXPECT_EQ(sch_trig_drop(ti, "third"), sOKAY);
    EXPECT_EQ(sch_tbl_triggers(ti), nullptr);
    EXPECT_EQ(sch_trig_drop(ti, "third"), eNOTFOUND);
    EXPECT_EQ(sch_trig_drop(ti, nullptr), eINVNULLARG);
    EXPECT_EQ(sch_trig_drop(nullptr, "third"), eINVNULLARG);
}

// ---- Memory ------------------------------------------------------------------

#ifdef OSL_FAULT_INJECTION
// Each makes an object in table 1, which has three columns, and drops it.
const struct {
    const char *name;
    uint64_t stays; // blocks that stay with the schema's tag
    void (*make_and_drop)(Schema &sch, SCH_TBL_INFO ti);
} kDrops[] = {
    {"a table", 0,
     [](Schema &sch, SCH_TBL_INFO) {
         SCH_TBL_INFO ti = sch.table(2, "dropped");
         ASSERT_EQ(sch_tbl_set_check_str(ti, "check"), sOKAY);
         ASSERT_EQ(sch_tbl_set_check_name(ti, "check_name"), sOKAY);
         ASSERT_EQ(sch_tbl_set_max_avls(ti, 3), sOKAY);
         Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
         Schema::reference(ti, 0, "r", 2, {});
         ASSERT_EQ(sch_tbl_set_next_col(ti, 1), sOKAY); // so that live columns are indexed
         ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
         ASSERT_NE(ti->active_ndx, nullptr);
         ASSERT_EQ(sch_tbl_drop(ti), sOKAY);
     }},
    {"a column", 1, // its record
     [](Schema &sch, SCH_TBL_INFO ti) {
         SCH_COL_INFO ci = Schema::not_null_column(ti, 3, "dropped", OAK_BLOB);
         ASSERT_EQ(sch_col_set_not_null(ci, "constraint"), sOKAY);
         sch.drawer(6, OAK_DRAWER_BLOB, 1, 3);
         ASSERT_EQ(sch_col_set_blob_drawer(ci, 6), sOKAY);
         ASSERT_EQ(sch_tbl_col_drop(ci), sOKAY);
     }},
    {"a key", 0,
     [](Schema &sch, SCH_TBL_INFO ti) {
         SCH_KEY_INFO ki =
             Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0, 1});
         sch.drawer(6, OAK_DRAWER_BTREE, 1, 0);
         ASSERT_EQ(sch_key_set_drawer(ki, 6), sOKAY);
         sch_key_drop_fcn(ki);
     }},
    {"a reference", 1, // its column values
     [](Schema &sch, SCH_TBL_INFO ti) {
         SCH_REF_INFO ri = Schema::reference(ti, 0, "r", 1, {0, 1}, {2});
         sch.drawer(6, OAK_DRAWER_REF, 1, 0);
         ASSERT_EQ(sch_ref_set_drawer(ri, 6), sOKAY);
         ASSERT_EQ(sch_ref_drop(ti, 0), sOKAY);
     }},
    {"a domain", 0,
     [](Schema &sch, SCH_TBL_INFO) {
         SCH_DOMAIN_INFO mi = sch.domain(2, "d", OAK_INT8);
         ASSERT_EQ(sch_dom_set_format(mi, "%d"), sOKAY);
         ASSERT_EQ(sch_string_input("5", &mi->defstr, OAK_TRUE, sch_tag(sch)), sOKAY);
         ASSERT_EQ(sch_dom_drop(mi), sOKAY);
     }},
};

TEST(Drops, GiveBackWhatTheObjectsHeld) {
    for (const auto &row : kDrops) {
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        for (OAK_COL_INDEX n = 0; n < 3; ++n) {
            Schema::column(ti, n, "c", OAK_INT8);
        }
        // What the schema and the table keep for more objects is there already.
        sch.domain(1, "d", OAK_INT8);
        sch.drawer(5, OAK_DRAWER_TABLE, 1, 1);
        Schema::reference(ti, 7, "r", 1, {});
        const uint64_t before = osl_faultLiveUnderTag(sch_tag(sch));
        row.make_and_drop(sch, ti);
        EXPECT_EQ(osl_faultLiveUnderTag(sch_tag(sch)), before + row.stays) << row.name;
    }
}
#endif

// ---- In any order ------------------------------------------------------------

/// Drops one object chosen at random, if there is one.
void drop_something(Schema &sch, oaktest::Random &random) {
    SCH_TBL_INFO ti = sch_find_table_by_ndx(sch, static_cast<OAK_TBL_INDEX>(1 + random.below(2)));
    if (ti == nullptr) {
        return;
    }
    const OAK_INDEX n = static_cast<OAK_INDEX>(random.below(4));
    switch (random.below(12)) {
        case 0:
            EXPECT_EQ(sch_tbl_drop(ti), sOKAY);
            return;
        case 1:
            OAK_IGNORE_STATUS(sch_tbl_drawers_drop(ti), "eRANGE where there is no row drawer");
            return;
        case 2:
        case 3:
        case 4:
            if (SCH_COL_INFO ci = sch_get_col_by_index(ti, n); ci != nullptr) {
                EXPECT_EQ(sch_tbl_col_drop(ci), sOKAY);
            }
            return;
        case 5:
            EXPECT_EQ(sch_ref_drop(ti, n), sOKAY);
            return;
        case 6:
            if (SCH_DOMAIN_INFO mi = sch_domain(sch, 1); mi != nullptr) {
                EXPECT_EQ(sch_dom_drop(mi), sOKAY);
            }
            return;
        case 7:
        case 8:
            OAK_IGNORE_STATUS(sch_tbl_finalize(ti, OAK_FALSE), "fails when counts went astray");
            return;
        default:
            if (SCH_KEY_INFO ki = sch_get_key_by_index(ti, n); ki != nullptr) {
                sch_key_drop_fcn(ki);
            }
    }
}

TEST_F(TwoTables, LeaveNothingDanglingWhateverTheOrderOfDrops) {
    oaktest::Random random(16);
    for (int step = 0; step < 40; ++step) {
        drop_something(sch_, random);
        oak::schema::discard_caches(sch_);
        EXPECT_NOTHING_DANGLES(sch_);
        if (HasFailure()) {
            return;
        }
    }
}

class ManyTwoTables : public TwoTables, public ::testing::WithParamInterface<uint64_t> {};

TEST_P(ManyTwoTables, LeaveNothingDangling) {
    oaktest::Random random(1000 + GetParam());
    for (int step = 0; step < 20; ++step) {
        drop_something(sch_, random);
        oak::schema::discard_caches(sch_);
        EXPECT_NOTHING_DANGLES(sch_);
    }
}

INSTANTIATE_TEST_SUITE_P(Orders, ManyTwoTables, ::testing::Range<uint64_t>(0, 100));

} // namespace
