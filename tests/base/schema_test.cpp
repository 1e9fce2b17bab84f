// Life, creators, triggers, identifiers and lookups of a schema. The lookup of
// tables by name has a test of its own.
#include "schema.h"

#include <malloc.h>

#include "schema_fixture.h"
#include "schema_sysfiles.h"

namespace {

using oaktest::Schema;
using oaktest::sweep_change;

// ---- Life --------------------------------------------------------------------

TEST(NewSchema, HoldsTheSystemTableAlone) {
    Schema sch;
    EXPECT_EQ(sch_num_user_tables(sch), 0);
    EXPECT_EQ(sch_num_tables(sch), 1);
    EXPECT_EQ(sch_next_table(sch), 1);
    EXPECT_EQ(sch_max_table(sch), 1);
    EXPECT_EQ(sch_num_drawers(sch), 5u);
    EXPECT_EQ(sch_next_drawer(sch), 5u);
    EXPECT_EQ(sch_max_drawer(sch), 5u);
    EXPECT_EQ(sch_num_domains(sch), 0);
    EXPECT_EQ(sch_next_domain(sch), 0);
    EXPECT_EQ(sch_catver(sch), 0u);
    EXPECT_EQ(sch_dbver(sch), 0u);
    EXPECT_EQ(sch_name(sch), nullptr);
    EXPECT_EQ(sch_encryption(sch), OAK_ENC_NONE);
    EXPECT_EQ(sch_iterate_tables(sch, nullptr, OAK_FORWARD), nullptr);
    EXPECT_EQ(sch_find_table_by_ndx(sch, 0), sch_get_sysfiles_table());
    EXPECT_EQ(sch_drawer(sch, 0), nullptr);
    EXPECT_EQ(sch_drawer(sch, 1), nullptr);
    EXPECT_EQ(sch_drawer(sch, 5), nullptr);
    EXPECT_EQ(sch->num_columns, 0u);
}

TEST(NewSchema, NeedsAPlace) {
    EXPECT_EQ(sch_create(nullptr), eINVNULLARG);
}

TEST(NewSchema, GivesEverythingBack) {
    const oaktest::Live before = oaktest::Live::now();
    {
        Schema sch;
        ASSERT_EQ(sch_set_locale(sch, "C"), sOKAY);
        SCH_TBL_INFO ti = sch.table(1, "t");
        Schema::column(ti, 0, "a", OAK_INT8);
        sch.drawer(9, OAK_DRAWER_TABLE, 1, 1);
    }
    EXPECT_EQ(oaktest::Live::now(), before);
    sch_destroy(nullptr);
}

TEST(NewSchema, IsNotMadeWhenMemoryIsExhausted) {
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [] {
        SCH_INFO sch = nullptr;
        const OAK_RETCODE rc = sch_create(&sch);
        EXPECT_EQ(rc == sOKAY, sch != nullptr);
        sch_destroy(sch);
        return rc;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

// 200 tables of 12 columns, each with a primary key of a generated name, fit into
// 4 MiB of everything.
TEST(NewSchema, KeepsTwoHundredTablesWithinFourMebibytes) {
    const auto in_use = [] {
        const struct mallinfo2 info = mallinfo2();
        return info.uordblks + info.hblkhd;
    };
    const size_t before = in_use();
    Schema sch;
    ASSERT_EQ(sch_set_max_table(sch, 201), sOKAY);
    for (OAK_TBL_INDEX t = 1; t <= 200; ++t) {
        SCH_TBL_INFO ti = sch.table(t, ("table_number_" + std::to_string(t)).c_str());
        for (OAK_COL_INDEX c = 0; c < 12; ++c) {
            Schema::column(ti, c, ("column_number_" + std::to_string(c)).c_str(), OAK_VARCHAR, 41);
        }
        Schema::key(ti, 0, nullptr, OAK_KEY_TYPE_PRIMARY, OAK_KEY_METHOD_BTREE, {0, 1});
        sch.drawer(5u + 2u * t, OAK_DRAWER_TABLE, t, t);
        sch.drawer(6u + 2u * t, OAK_DRAWER_BTREE, t, 0);
        ASSERT_EQ(sch_tbl_set_drawer(ti, 5u + 2u * t), sOKAY);
        ASSERT_EQ(sch_key_set_drawer(ti->keys[0], 6u + 2u * t), sOKAY);
        ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    }
    const size_t used = in_use() - before;
    EXPECT_LT(used, 4u << 20);
    RecordProperty("bytes", static_cast<int>(used));
}

// ---- Creators ----------------------------------------------------------------

TEST(TableCreator, TakesIndexesUpToTheLimitWithinTheCapacity) {
    Schema sch;
    ASSERT_EQ(sch_set_max_table(sch, 6), sOKAY);
    ASSERT_EQ(sch_set_next_table(sch, 3), sOKAY);
    SCH_TBL_INFO ti = nullptr;
    EXPECT_EQ(sch_tbl_create(sch, 4, &ti), eRANGE) << "above the limit";
    EXPECT_EQ(sch_tbl_create(sch, 0, &ti), eBADCAT) << "the system table's";
    EXPECT_EQ(ti, nullptr);
    EXPECT_EQ(sch_tbl_create(sch, 3, &ti), sOKAY) << "at the limit";
    ASSERT_NE(ti, nullptr);
    EXPECT_EQ(sch_tbl_index(ti), 3);
    EXPECT_EQ(sch_tbl_schema(ti), sch.get());
    EXPECT_EQ(sch_find_table_by_ndx(sch, 3), nullptr) << "not below the limit yet";
    ASSERT_EQ(sch_set_next_table(sch, 6), sOKAY);
    EXPECT_EQ(sch_find_table_by_ndx(sch, 3), ti);
    SCH_TBL_INFO again = nullptr;
    EXPECT_EQ(sch_tbl_create(sch, 3, &again), eBADCAT) << "taken";
    EXPECT_EQ(sch_tbl_create(sch, 6, &again), eRANGE) << "at the limit, but beyond the capacity";
    EXPECT_EQ(sch_tbl_create(sch, OAK_INDEX_NONE, &again), eRANGE);
    EXPECT_EQ(again, nullptr);
    EXPECT_EQ(sch_num_tables(sch), 1) << "creators do not count";
}

TEST(DrawerCreator, TakesNumbersUpToTheLimitWithinTheCapacity) {
    Schema sch;
    ASSERT_EQ(sch_set_max_drawer(sch, 9), sOKAY);
    SCH_DRAWER_INFO di = nullptr;
    EXPECT_EQ(sch_drawer_create(sch, 6, &di), eRANGE) << "above the limit";
    for (const OAK_DRAWER id : {2u, 3u, 4u}) {
        EXPECT_EQ(sch_drawer_create(sch, id, &di), eBADCAT) << "the system's";
    }
    EXPECT_EQ(di, nullptr);
    EXPECT_EQ(sch_drawer_create(sch, 5, &di), sOKAY) << "at the limit";
    EXPECT_EQ(sch_drawer_id(di), 5u);
    EXPECT_EQ(di->sch, sch.get());
    EXPECT_EQ(sch_drawer(sch, 5), nullptr) << "not below the limit yet";
    ASSERT_EQ(sch_set_next_drawer(sch, 9), sOKAY);
    EXPECT_EQ(sch_drawer(sch, 5), di);
    SCH_DRAWER_INFO again = nullptr;
    EXPECT_EQ(sch_drawer_create(sch, 5, &again), eBADCAT) << "taken";
    EXPECT_EQ(sch_drawer_create(sch, 9, &again), eRANGE) << "at the limit, beyond the capacity";
    EXPECT_EQ(sch_drawer_create(sch, OAK_DRAWER_NONE, &again), eRANGE);
    EXPECT_EQ(again, nullptr);
    EXPECT_EQ(sch_num_drawers(sch), 5u);
}

// Numbers are 32 bits wide; what lies between them costs nothing.
TEST(DrawerCreator, TakesNumbersFarApartInAnyOrder) {
    Schema sch;
    ASSERT_EQ(sch_set_max_drawer(sch, OAK_DRAWER_NONE), sOKAY);
    ASSERT_EQ(sch_set_next_drawer(sch, OAK_DRAWER_NONE), sOKAY);
    const OAK_DRAWER ids[] = {4294967294u, 5, 1000000, 7, 6, 4000000000u, 0, 1, 999999};
    std::vector<SCH_DRAWER_INFO> made;
    for (const OAK_DRAWER id : ids) {
        SCH_DRAWER_INFO di = nullptr;
        ASSERT_EQ(sch_drawer_create(sch, id, &di), sOKAY) << id;
        made.push_back(di);
    }
    for (size_t n = 0; n < made.size(); ++n) {
        EXPECT_EQ(sch_drawer(sch, ids[n]), made[n]) << ids[n];
        SCH_DRAWER_INFO again = nullptr;
        EXPECT_EQ(sch_drawer_create(sch, ids[n], &again), eBADCAT);
    }
    for (const OAK_DRAWER id : {8u, 999998u, 1000001u, 4294967293u}) {
        EXPECT_EQ(sch_drawer(sch, id), nullptr) << id;
    }
}

TEST(DomainCreator, TakesIndexesBelowTheLimit) {
    Schema sch;
    SCH_DOMAIN_INFO mi = nullptr;
    EXPECT_EQ(sch_dom_create(sch, 0, &mi), eRANGE) << "no capacity yet";
    ASSERT_EQ(sch_set_next_domain(sch, 3), sOKAY);
    EXPECT_EQ(sch_dom_create(sch, 3, &mi), eRANGE);
    EXPECT_EQ(mi, nullptr);
    EXPECT_EQ(sch_dom_create(sch, 2, &mi), sOKAY);
    ASSERT_NE(mi, nullptr);
    EXPECT_EQ(sch_dom_ndx(mi), 2);
    EXPECT_EQ(mi->sch, sch.get());
    EXPECT_EQ(mi->type.sch, sch.get());
    EXPECT_EQ(mi->type.type, 0);
    EXPECT_EQ(mi->def.status, vsNOVAL);
    EXPECT_EQ(sch_domain(sch, 2), mi);
    EXPECT_EQ(sch_domain(sch, 1), nullptr) << "a hole";
    EXPECT_EQ(sch_domain(sch, 3), nullptr) << "beyond";
    SCH_DOMAIN_INFO again = nullptr;
    EXPECT_EQ(sch_dom_create(sch, 2, &again), eBADCAT);
    EXPECT_EQ(again, nullptr);
}

TEST(ColumnCreator, TakesIndexesBelowTheCapacity) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t"); // 16 columns
    SCH_COL_INFO ci = nullptr;
    EXPECT_EQ(sch_col_create(ti, 16, &ci), eRANGE) << "unlike a table's, equal does not pass";
    EXPECT_EQ(ci, nullptr);
    EXPECT_EQ(sch_col_create(ti, 15, &ci), sOKAY);
    ASSERT_NE(ci, nullptr);
    EXPECT_EQ(sch_col_ndx(ci), 15);
    EXPECT_EQ(sch_col_table(ci), ti);
    EXPECT_EQ(ci->type.sch, sch.get());
    EXPECT_EQ(ci->keyid, 65535);
    EXPECT_EQ(ci->def.status, vsNOVAL);
    SCH_COL_INFO again = nullptr;
    EXPECT_EQ(sch_col_create(ti, 15, &again), eBADCAT);
    EXPECT_EQ(again, nullptr);
    EXPECT_EQ(sch_tbl_num_cols(ti), 0);
    EXPECT_EQ(sch_tbl_next_col(ti), 0);
}

TEST(KeyCreator, TakesIndexesBelowTheCapacity) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t"); // 8 keys
    SCH_KEY_INFO ki = nullptr;
    EXPECT_EQ(sch_key_create(ti, 8, &ki), eRANGE);
    EXPECT_EQ(ki, nullptr);
    EXPECT_EQ(sch_key_create(ti, 7, &ki), sOKAY);
    ASSERT_NE(ki, nullptr);
    EXPECT_EQ(sch_key_ndx(ki), 7);
    EXPECT_EQ(sch_key_table(ki), ti);
    SCH_KEY_INFO again = nullptr;
    EXPECT_EQ(sch_key_create(ti, 7, &again), eBADCAT);
    EXPECT_EQ(again, nullptr);
    EXPECT_EQ(sch_tbl_num_keys(ti), 0);
}

TEST(ReferenceCreator, TakesIndexesBelowTheLimit) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t"); // 8 references
    SCH_REF_INFO ri = nullptr;
    EXPECT_EQ(sch_ref_create(ti, 8, &ri), eRANGE);
    EXPECT_EQ(ri, nullptr);
    EXPECT_EQ(sch_ref_create(ti, 7, &ri), sOKAY);
    ASSERT_NE(ri, nullptr);
    EXPECT_EQ(sch_ref_ndx(ri), 7);
    EXPECT_EQ(sch_ref_table(ri), ti);
    SCH_REF_INFO again = nullptr;
    EXPECT_EQ(sch_ref_create(ti, 7, &again), eBADCAT);
    EXPECT_EQ(again, nullptr);
    EXPECT_EQ(sch_tbl_num_refs(ti), 0);
}

TEST(Creators, RefuseNullArguments) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    ASSERT_EQ(sch_set_next_domain(sch, 3), sOKAY);
    EXPECT_EQ(sch_tbl_create(sch, 1, nullptr), eINVNULLARG);
    EXPECT_EQ(sch_drawer_create(sch, 1, nullptr), eINVNULLARG);
    EXPECT_EQ(sch_dom_create(sch, 1, nullptr), eINVNULLARG);
    EXPECT_EQ(sch_col_create(ti, 1, nullptr), eINVNULLARG);
    EXPECT_EQ(sch_key_create(ti, 1, nullptr), eINVNULLARG);
    EXPECT_EQ(sch_ref_create(ti, 1, nullptr), eINVNULLARG);
    EXPECT_EQ(sch_tbl_create(sch, 99, nullptr), eINVNULLARG) << "before the bound";
    SCH_DRAWER_INFO di = nullptr;
    SCH_DOMAIN_INFO mi = nullptr;
    SCH_COL_INFO ci = nullptr;
    SCH_KEY_INFO ki = nullptr;
    SCH_REF_INFO ri = nullptr;
    EXPECT_EQ(sch_tbl_create(nullptr, 1, &ti), eINVNULLARG);
    EXPECT_EQ(sch_drawer_create(nullptr, 1, &di), eINVNULLARG);
    EXPECT_EQ(sch_dom_create(nullptr, 1, &mi), eINVNULLARG);
    EXPECT_EQ(sch_col_create(nullptr, 1, &ci), eINVNULLARG);
    EXPECT_EQ(sch_key_create(nullptr, 1, &ki), eINVNULLARG);
    EXPECT_EQ(sch_ref_create(nullptr, 1, &ri), eINVNULLARG);
}

TEST(Creators, LeaveTheParentAsItWasWhenMemoryIsExhausted) {
    const auto build = [](Schema &sch) {
        sch.table(1, "t");
        ASSERT_EQ(sch_set_max_table(sch, 3), sOKAY);
        ASSERT_EQ(sch_set_next_domain(sch, 3), sOKAY);
        sch.drawer(7, OAK_DRAWER_TABLE, 1, 1);
    };
    const struct {
        const char *name;
        OAK_RETCODE (*create)(Schema &);
    } creators[] = {
        {"sch_tbl_create",
         [](Schema &sch) {
             SCH_TBL_INFO out = nullptr;
             return sch_tbl_create(sch, 2, &out);
         }},
        {"sch_drawer_create",
         [](Schema &sch) {
             SCH_DRAWER_INFO out = nullptr;
             return sch_drawer_create(sch, 6, &out);
         }},
        {"sch_dom_create",
         [](Schema &sch) {
             SCH_DOMAIN_INFO out = nullptr;
             return sch_dom_create(sch, 1, &out);
         }},
        {"sch_col_create",
         [](Schema &sch) {
             SCH_COL_INFO out = nullptr;
             return sch_col_create(sch->tables[1], 1, &out);
         }},
        {"sch_key_create",
         [](Schema &sch) {
             SCH_KEY_INFO out = nullptr;
             return sch_key_create(sch->tables[1], 1, &out);
         }},
        {"sch_ref_create",
         [](Schema &sch) {
             SCH_REF_INFO out = nullptr;
             return sch_ref_create(sch->tables[1], 1, &out);
         }},
    };
    for (const auto &creator : creators) {
        SCOPED_TRACE(creator.name);
        sweep_change(build, creator.create);
    }
}

// ---- Triggers ----------------------------------------------------------------

TEST(Triggers, CopyTheirNameUnderTheGivenTag) {
    oaktest::Tag tag;
    tag.may_keep_blocks();
    char name[] = "trig";
    SCH_TRIG_INFO trgi = nullptr;
    EXPECT_EQ(sch_trig_allocate(nullptr, 1, 2, &trgi, tag), eINVNULLARG);
    EXPECT_EQ(sch_trig_allocate(name, 1, 2, nullptr, tag), eINVNULLARG);
    ASSERT_EQ(sch_trig_allocate(name, 1, 2, &trgi, tag), sOKAY);
    name[0] = 'X';
    EXPECT_STREQ(sch_trig_name(trgi), "trig");
    EXPECT_EQ(trgi->next, nullptr);
    EXPECT_EQ(trgi->updcols, nullptr);
    EXPECT_EQ(trgi->colrefs, nullptr);
    EXPECT_EQ(sch_trig_alloc_updcols(trgi, tag), sOKAY) << "of none";
    EXPECT_EQ(trgi->updcols, nullptr);
    EXPECT_EQ(sch_trig_alloc_updcols(nullptr, tag), eINVNULLARG);
    EXPECT_EQ(sch_trig_alloc_colrefs(nullptr, tag), eINVNULLARG);
    EXPECT_EQ(sch_trigcol_alloc_val(nullptr, tag), eINVNULLARG);
}

TEST(Triggers, AscendByCreationTimeBehindThoseOfTheSameTime) {
    oaktest::Tag tag;
    tag.may_keep_blocks();
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    const struct {
        const char *name;
        uint64_t crtime;
    } made[] = {{"b1", 5}, {"d", 9}, {"a", 1}, {"b2", 5}, {"b3", 5}, {"c", 7}};
    for (const auto &trigger : made) {
        SCH_TRIG_INFO trgi = nullptr;
        ASSERT_EQ(sch_trig_allocate(trigger.name, 0, trigger.crtime, &trgi, tag), sOKAY);
        EXPECT_EQ(sch_trig_create(ti, trgi), sOKAY);
    }
    std::string order;
    for (SCH_TRIG_INFO_C trgi = sch_tbl_triggers(ti); trgi != nullptr; trgi = trgi->next) {
        order += std::string(sch_trig_name(trgi)) + " ";
    }
    EXPECT_EQ(order, "a b1 b2 b3 c d ");
    EXPECT_EQ(sch_trig_create(ti, nullptr), eINVNULLARG);
    EXPECT_EQ(sch_trig_create(nullptr, sch_tbl_triggers(ti)), eINVNULLARG);
}

TEST(Triggers, AreNotMadeWhenMemoryIsExhausted) {
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [] {
        OSL_MEMTAG tag = OSL_CREATE_TAG();
        if (tag == nullptr) {
            return eNOMEMORY;
        }
        SCH_TRIG_INFO trgi = nullptr;
        OAK_RETCODE rc = sch_trig_allocate("t", 1, 2, &trgi, tag);
        if (rc == sOKAY) {
            EXPECT_EQ(sch_trig_set_num_updcols(trgi, 3), sOKAY);
            EXPECT_EQ(sch_trig_set_num_colrefs(trgi, 3), sOKAY);
            rc = sch_trig_alloc_updcols(trgi, tag);
            EXPECT_EQ(sch_trig_set_updcol(trgi, 0, 1), rc == sOKAY ? sOKAY : eRANGE);
        }
        if (rc == sOKAY) {
            rc = sch_trig_alloc_colrefs(trgi, tag);
            EXPECT_EQ(sch_trig_colref(trgi, 0) != nullptr, rc == sOKAY);
        }
        if (rc == sOKAY) {
            rc = sch_trigcol_alloc_val(sch_trig_colref(trgi, 0), tag);
            EXPECT_EQ(sch_trigcol_val(sch_trig_colref(trgi, 0)) != nullptr, rc == sOKAY);
        }
#ifdef OSL_FAULT_INJECTION
        if (trgi == nullptr) {
            EXPECT_EQ(osl_faultLiveUnderTag(tag), 0u);
        }
#endif
        OSL_FREE_TAG(tag);
        return rc;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

// ---- Identifiers -------------------------------------------------------------

TEST(Constants, HoldTableKindAndIndex) {
    Schema sch;
    ASSERT_EQ(sch_set_max_table(sch, 40000), sOKAY);
    SCH_TBL_INFO ti = sch.table(3, "t");
    SCH_COL_INFO ci = Schema::column(ti, 5, "c", OAK_INT8);
    SCH_KEY_INFO ki = Schema::key(ti, 6, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {5});
    SCH_REF_INFO ri = Schema::reference(ti, 7, "r", 3, {5});
    EXPECT_EQ(sch_col_constant(ci), 0x60005u);
    EXPECT_EQ(sch_key_constant(ki), 0x68006u);
    EXPECT_EQ(sch_tbl_constant(ti), 0x10003u);
    EXPECT_EQ(sch_ref_constant(ri), 0x78007u);
    EXPECT_EQ(sch_tbl_constant(sch_get_sysfiles_table()), 65536u);
    EXPECT_EQ(sch_key_constant(sch_get_sysfiles_table()->pkey), 32768u);
    EXPECT_EQ(sch_col_constant(sch_get_sysfiles_blob_col()), 4u);
    EXPECT_EQ(sch_find_col_by_constant(sch, 0x60005), ci);
    EXPECT_EQ(sch_find_key_by_constant(sch, 0x68006), ki);
    EXPECT_EQ(sch_find_table_by_constant(sch, 0x10003, nullptr), ti);
    EXPECT_EQ(sch_find_ref_by_constant(sch, 0x78007), ri);
    // Each kind is found by its own lookup alone.
    for (const uint32_t id : {0x68006u, 0x10003u, 0x70005u, 0x78007u}) {
        EXPECT_EQ(sch_find_col_by_constant(sch, id), nullptr) << id;
    }
    for (const uint32_t id : {0x60006u, 0x10003u, 0x70006u, 0x78006u}) {
        EXPECT_EQ(sch_find_key_by_constant(sch, id), nullptr) << id;
    }
    for (const uint32_t id : {0x60007u, 0x10003u, 0x68007u, 0x70007u}) {
        EXPECT_EQ(sch_find_ref_by_constant(sch, id), nullptr) << id;
    }
}

TEST(Constants, CutIndexesToFifteenBits) {
    _SCH_TBL_INFO table{};
    table.ndx = 32767;
    _SCH_COL_INFO col{};
    col.table = &table;
    col.ndx = 65535;
    EXPECT_EQ(sch_col_constant(&col), 0xffff7fffu & 0xfffe7fffu);
    EXPECT_EQ(sch_tbl_constant(&table), 0x17fffu);
    table.ndx = 32768;
    EXPECT_EQ(sch_tbl_constant(&table), 0x10000u);
}

TEST(Constants, OfTheSystemTableAreTheSameInEverySchema) {
    Schema sch;
    OAK_TBL_INDEX ndx = 99;
    EXPECT_EQ(sch_find_table_by_constant(sch, 65536, &ndx), sch_get_sysfiles_table());
    EXPECT_EQ(ndx, 0);
    EXPECT_EQ(sch_find_key_by_constant(sch, 32768), sch_get_sysfiles_table()->pkey);
    for (uint32_t n = 0; n < 5; ++n) {
        EXPECT_EQ(sch_find_col_by_constant(sch, n), _SysFilesCols[n]);
    }
    EXPECT_EQ(sch_find_col_by_constant(sch, 5), nullptr);
    EXPECT_EQ(sch_find_key_by_constant(sch, 32769), nullptr);
    EXPECT_EQ(sch_find_ref_by_constant(sch, 0x18000), nullptr);
}

// ---- Lookups: tables ---------------------------------------------------------

TEST(TableByConstant, TellsWhereAMissingTableWouldBe) {
    Schema sch;
    SCH_TBL_INFO two = sch.table(2, "two");
    SCH_TBL_INFO five = sch.table(5, "five");
    ASSERT_EQ(sch_set_max_table(sch, 9), sOKAY);
    ASSERT_EQ(sch_set_next_table(sch, 9), sOKAY);
    OAK_TBL_INDEX ndx = 77;
    EXPECT_EQ(sch_find_table_by_constant(sch, 0x10002, &ndx), two);
    EXPECT_EQ(ndx, 77) << "a table that exists leaves it";
    EXPECT_EQ(sch_find_table_by_constant(sch, 0x10003, &ndx), nullptr);
    EXPECT_EQ(ndx, 5) << "the highest that holds a table";
    EXPECT_EQ(sch_find_table_by_constant(sch, 0x17fff, &ndx), nullptr);
    EXPECT_EQ(ndx, 5);
    for (const uint32_t id : {2u, 0x8002u, 0x18002u, 0u}) {
        ndx = 77;
        EXPECT_EQ(sch_find_table_by_constant(sch, id, &ndx), nullptr) << id;
        EXPECT_EQ(ndx, 65535) << id;
    }
    EXPECT_EQ(sch_find_table_by_constant(sch, 0x10005, nullptr), five);
    EXPECT_EQ(sch_find_table_by_constant(sch, 0x50005, nullptr), five)
        << "bits above the kind are not looked at";
    ASSERT_EQ(sch_set_next_table(sch, 0), sOKAY);
    EXPECT_EQ(sch_find_table_by_constant(sch, 0x10003, &ndx), nullptr);
    EXPECT_EQ(ndx, 3) << "without any table";
    EXPECT_EQ(sch_find_table_by_constant(sch, 65536, &ndx), sch_get_sysfiles_table());
}

TEST(TableByIndex, IsTheSystemTableForZero) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(2, "t");
    EXPECT_EQ(sch_find_table_by_ndx(nullptr, 0), sch_get_sysfiles_table());
    EXPECT_EQ(sch_table(nullptr, 0), sch_get_sysfiles_table());
    EXPECT_EQ(sch_find_table_by_ndx(sch, 1), nullptr);
    EXPECT_EQ(sch_find_table_by_ndx(sch, 2), ti);
    EXPECT_EQ(sch_table(sch, 2), ti);
    EXPECT_EQ(sch_find_table_by_ndx(sch, 3), nullptr);
    EXPECT_EQ(sch_table(sch, OAK_INDEX_NONE), nullptr);
    ASSERT_EQ(sch_set_next_table(sch, 2), sOKAY);
    EXPECT_EQ(sch_find_table_by_ndx(sch, 2), nullptr) << "at the limit";
}

TEST(TableByDrawer, LooksAtTheRowDrawersAlone) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(2, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    SCH_KEY_INFO ki = Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0});
    sch.drawer(7, OAK_DRAWER_TABLE, 2, 2);
    sch.drawer(8, OAK_DRAWER_BTREE, 2, 0);
    ASSERT_EQ(sch_tbl_set_drawer(ti, 7), sOKAY);
    ASSERT_EQ(sch_key_set_drawer(ki, 8), sOKAY);
    EXPECT_EQ(sch_find_table(sch, 7), ti);
    EXPECT_EQ(sch_find_table(sch, 8), nullptr);
    EXPECT_EQ(sch_find_table(sch, 2), sch_get_sysfiles_table());
    EXPECT_EQ(sch_find_table(sch, 3), nullptr);
    EXPECT_EQ(sch_find_table(sch, OAK_DRAWER_NONE), nullptr);
}

// ---- Lookups: columns, keys, references, drawers -----------------------------

TEST(ColumnLookup, PassesOverHolesAndDroppedColumns) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO one = Schema::column(ti, 1, "One", OAK_INT8);
    SCH_COL_INFO dropped = Schema::column(ti, 2, "two", OAK_INT8);
    SCH_COL_INFO three = Schema::column(ti, 4, "two", OAK_INT8);
    ASSERT_EQ(sch_tbl_col_drop(dropped), sOKAY);
    EXPECT_EQ(sch_find_col_by_name(ti, "ONE"), one);
    EXPECT_EQ(sch_find_col_by_name(ti, "tWo"), three);
    EXPECT_EQ(sch_find_col_by_name(ti, "on"), nullptr);
    EXPECT_EQ(sch_find_col_by_name(sch_get_sysfiles_table(), "NAME"), _SysFilesCols[0]);
    EXPECT_EQ(sch_find_col_by_name(ti, ""), nullptr);
    EXPECT_EQ(sch_find_col_by_name(ti, nullptr), nullptr);
    EXPECT_EQ(sch_find_col_by_ndx(sch, 1, 0), nullptr) << "a hole";
    EXPECT_EQ(sch_find_col_by_ndx(sch, 1, 1), one);
    EXPECT_EQ(sch_find_col_by_ndx(sch, 1, 2), nullptr) << "dropped";
    EXPECT_EQ(sch_find_col_by_ndx(sch, 1, 5), nullptr) << "at the limit";
    EXPECT_EQ(sch_find_col_by_ndx(sch, 2, 1), nullptr) << "no table";
    EXPECT_EQ(sch_find_col_by_ndx(sch, 0, 1), _SysFilesCols[1]);
    EXPECT_EQ(sch_get_col_by_index(ti, 2), dropped) << "the record stays";
    EXPECT_EQ(sch_get_col_by_index(ti, 0), nullptr);
    EXPECT_EQ(sch_get_col_by_index(ti, 5), nullptr);
    ASSERT_EQ(sch_tbl_set_next_col(ti, 4), sOKAY);
    EXPECT_EQ(sch_find_col_by_name(ti, "two"), nullptr) << "the limit holds";
}

TEST(ColumnLookup, OfLivePositions) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    for (OAK_COL_INDEX n = 0; n < 6; ++n) {
        Schema::column(ti, n, "c", OAK_INT8);
    }
    EXPECT_EQ(sch_find_col_active_ndx(ti, 3), 3);
    EXPECT_EQ(sch_find_col_active_ndx(ti, 999), 999) << "nothing is tested without an index";
    for (const OAK_COL_INDEX n : {1, 2, 4}) {
        ASSERT_EQ(sch_tbl_col_drop(ti->cols[n]), sOKAY);
    }
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(sch_find_col_active_ndx(ti, 0), 0);
    EXPECT_EQ(sch_find_col_active_ndx(ti, 1), 65535);
    EXPECT_EQ(sch_find_col_active_ndx(ti, 2), 65535);
    EXPECT_EQ(sch_find_col_active_ndx(ti, 3), 1);
    EXPECT_EQ(sch_find_col_active_ndx(ti, 4), 65535);
    EXPECT_EQ(sch_find_col_active_ndx(ti, 5), 2);
    EXPECT_EQ(sch_find_col_active_ndx(ti, 6), 65535);
}

TEST(KeyLookup, ByIndexAndByName) {
    Schema sch;
    SCH_TBL_INFO one = sch.table(1, "one");
    SCH_TBL_INFO two = sch.table(2, "two");
    SCH_KEY_INFO a = Schema::key(one, 1, "Alpha", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    SCH_KEY_INFO nameless =
        Schema::key(one, 2, nullptr, OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    SCH_KEY_INFO b = Schema::key(two, 0, "beta", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    Schema::key(two, 1, "ALPHA", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    EXPECT_EQ(sch_find_key_by_name(sch, "alpha"), a) << "the first match wins";
    EXPECT_EQ(sch_find_key_by_name(sch, "BETA"), b);
    EXPECT_EQ(sch_find_key_by_name(sch, "gamma"), nullptr);
    EXPECT_EQ(sch_find_key_by_name(sch, "name"), nullptr) << "the system key is not listed";
    EXPECT_EQ(sch_find_key_by_name(sch, nullptr), nullptr);
    EXPECT_EQ(sch_find_key_by_name(nullptr, "alpha"), nullptr);
    EXPECT_EQ(sch_find_key_by_ndx(sch, 1, 0), nullptr);
    EXPECT_EQ(sch_find_key_by_ndx(sch, 1, 1), a);
    EXPECT_EQ(sch_find_key_by_ndx(sch, 1, 2), nameless) << "the name is not looked at";
    EXPECT_EQ(sch_find_key_by_ndx(sch, 1, 3), nullptr);
    EXPECT_EQ(sch_find_key_by_ndx(sch, 3, 0), nullptr);
    EXPECT_EQ(sch_find_key_by_ndx(sch, 0, 0), _SysFilesKeys[0]);
    EXPECT_EQ(sch_get_key_by_index(one, 1), a);
    EXPECT_EQ(sch_get_key_by_index(one, 3), nullptr);
}

TEST(KeyLookup, ByNameSeesNewKeysWhenTheListIsMadeAgain) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "one");
    EXPECT_EQ(sch_find_key_by_name(sch, "k"), nullptr);
    SCH_KEY_INFO ki = Schema::key(ti, 1, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    EXPECT_EQ(sch_find_key_by_name(sch, "k"), nullptr);
    EXPECT_EQ(sch_create_key_list(sch), sOKAY);
    EXPECT_EQ(sch_find_key_by_name(sch, "k"), ki);
}

TEST(KeyLookup, ByNameLeavesAWalkOverTheKeysAlone) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "one");
    SCH_KEY_INFO a = Schema::key(ti, 0, "a", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    SCH_KEY_INFO b = Schema::key(ti, 1, "b", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    EXPECT_EQ(sch_iterate_all_keys(sch, nullptr, OAK_FORWARD), a);
    EXPECT_EQ(sch_find_key_by_name(sch, "b"), b);
    EXPECT_EQ(sch_iterate_all_keys(sch, a, OAK_FORWARD), b);
}

TEST(ReferenceLookup, ByIndex) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t"); // 8 references
    SCH_REF_INFO ri = Schema::reference(ti, 2, "r", 1, {});
    EXPECT_EQ(sch_find_ref_by_ndx(sch, 1, 2), ri);
    EXPECT_EQ(sch_find_ref_by_ndx(sch, 1, 1), nullptr);
    EXPECT_EQ(sch_find_ref_by_ndx(sch, 1, 8), nullptr);
    EXPECT_EQ(sch_find_ref_by_ndx(sch, 9, 2), nullptr);
    EXPECT_EQ(sch_find_ref_by_ndx(sch, 0, 0), nullptr);
    EXPECT_EQ(sch_get_ref_by_index(ti, 2), ri);
    EXPECT_EQ(sch_get_ref_by_index(ti, 8), nullptr);
}

TEST(DrawerLookup, GivesTheSystemDrawersWithoutASchema) {
    for (OAK_DRAWER id = 2; id < 5; ++id) {
        EXPECT_EQ(sch_drawer(nullptr, id), _SysFilesDrawers[id - 2]);
    }
}

TEST(ReferenceCount, SumsOverAllTables) {
    Schema sch;
    ASSERT_EQ(sch_tbl_set_num_refs(sch.table(1, "a"), 65535), sOKAY);
    ASSERT_EQ(sch_tbl_set_num_refs(sch.table(4, "b"), 65535), sOKAY);
    ASSERT_EQ(sch_tbl_set_num_refs(sch.table(6, "c"), 2), sOKAY);
    EXPECT_EQ(sch_num_refs(sch), 0u);
    sch_calc_num_refs(sch);
    EXPECT_EQ(sch_num_refs(sch), 131072u);
    sch_calc_num_refs(sch);
    EXPECT_EQ(sch_num_refs(sch), 131072u);
}

} // namespace
