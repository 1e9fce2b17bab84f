// The system table: every field of its records, and that nothing changes them.
#include "schema_sysfiles.h"

#include "schema_fixture.h"

namespace {

using oak::schema::own_handle;

TEST(SystemTable, HasItsFields) {
    SCH_TBL_INFO_C ti = sch_get_sysfiles_table();
    ASSERT_EQ(ti, &_SysFilesTable);
    EXPECT_EQ(ti->sch, nullptr);
    EXPECT_EQ(sch_tbl_index(ti), 0);
    EXPECT_STREQ(sch_tbl_name(ti), "_sys_files");
    EXPECT_EQ(sch_tbl_check_str(ti), nullptr);
    EXPECT_EQ(sch_tbl_check_name(ti), nullptr);
    EXPECT_EQ(sch_tbl_type(ti), OAK_TABLE_STANDARD);
    EXPECT_EQ(sch_tbl_max_rows(ti), 0u);
    EXPECT_EQ(sch_tbl_drawer(ti), 2u);
    EXPECT_EQ(sch_tbl_drawer_info(ti), &_SysFilesDrawer0);
    EXPECT_EQ(sch_tbl_num_cols(ti), 5);
    EXPECT_EQ(sch_tbl_next_col(ti), 5);
    EXPECT_EQ(sch_tbl_max_cols(ti), 5);
    EXPECT_EQ(ti->active_ndx, nullptr);
    EXPECT_EQ(sch_tbl_max_keys(ti), 1);
    EXPECT_EQ(sch_tbl_num_keys(ti), 1);
    EXPECT_EQ(sch_tbl_next_key(ti), 1);
    EXPECT_EQ(sch_tbl_primary_key(ti), &_SysFilesNameKey);
    EXPECT_EQ(sch_tbl_num_refs(ti), 0);
    EXPECT_EQ(sch_tbl_next_ref(ti), 0);
    EXPECT_EQ(sch_tbl_num_avls(ti), 0);
    EXPECT_EQ(sch_tbl_max_avls(ti), 0);
    EXPECT_EQ(sch_tbl_next_avl(ti), 0);
    EXPECT_EQ(sch_tbl_num_drawers(ti), 3u);
    EXPECT_EQ(sch_tbl_num_owners(ti), 0);
    EXPECT_EQ(sch_tbl_max_owner(ti), 0);
    EXPECT_EQ(sch_tbl_next_owner(ti), 0);
    EXPECT_EQ(sch_tbl_has_value_offset(ti), 64520u);
    EXPECT_EQ(sch_tbl_byte_len(ti), 64528u);
    EXPECT_EQ(ti->nameNdx, 0);
    EXPECT_EQ(sch_tbl_offset(ti), 0);
    EXPECT_EQ(sch_tbl_triggers(ti), nullptr);
    EXPECT_EQ(sch_tbl_sch_ndx(ti), 0);
}

TEST(SystemTable, HasItsRowBuffer) {
    OAK_ROW_BUFFER_INFO info;
    sch_tbl_get_buffer_info(sch_get_sysfiles_table(), &info);
    EXPECT_EQ(info.avl_offset, 0u);
    EXPECT_EQ(info.ref_offset, 0u);
    EXPECT_EQ(info.col_status_offset, 0u);
    EXPECT_EQ(info.col_data_offset, 24u);
    EXPECT_EQ(info.col_data_size, 64528u);
    EXPECT_EQ(info.row_buffer_size, 65452u) << "900 more than its parts";
    EXPECT_EQ(info.num_avls, 0);
    EXPECT_EQ(info.num_refs, 0);
    EXPECT_EQ(info.num_cols, 5);
}

struct ColumnRow {
    const char *name;
    OAK_TYPE type;
    uint32_t byte_len;
    OAK_BOOL_T not_null;
    uint32_t ptr;
    uint32_t has_value_off;
    const OAK_TYPE_INFO *type_info;
    const _SCH_COL_INFO *record;
};

TEST(SystemTable, HasItsColumns) {
    const ColumnRow rows[] = {
        {"name", OAK_CHAR, 1024, OAK_TRUE, 0, 0, &utf8_type_info, &_SysFilesColName},
        {"data", OAK_CHAR, 63480, OAK_FALSE, 1024, 64520, &utf8_type_info, &_SysFilesColData},
        {"data_len", OAK_UINT64, 8, OAK_TRUE, 64504, 0, &uint64_type_info, &_SysFilesColLen},
        {"version", OAK_UINT64, 8, OAK_TRUE, 64512, 0, &uint64_type_info, &_SysFilesColVersion},
        {"data_blob", OAK_BLOB, 0, OAK_FALSE, 0, 64521, &clob_type_info, &_SysFilesColBlob},
    };
    for (OAK_COL_INDEX n = 0; n < 5; ++n) {
        SCOPED_TRACE(rows[n].name);
        SCH_COL_INFO_C ci = _SysFilesCols[n];
        EXPECT_EQ(ci, rows[n].record);
        EXPECT_EQ(sch_get_col_by_index(sch_get_sysfiles_table(), n), ci);
        EXPECT_EQ(sch_col_ndx(ci), n);
        EXPECT_EQ(sch_col_table(ci), &_SysFilesTable);
        EXPECT_STREQ(sch_col_name(ci), rows[n].name);
        EXPECT_EQ(sch_col_data_type(ci), rows[n].type);
        EXPECT_EQ(sch_col_byte_len(ci), rows[n].byte_len);
        EXPECT_EQ(sch_col_length(ci), 0u) << "the lengths exist only as byte lengths";
        EXPECT_EQ(sch_col_num_elems(ci), 0);
        EXPECT_EQ(sch_col_not_null(ci), rows[n].not_null);
        EXPECT_EQ(sch_col_not_null_cname(ci), nullptr);
        EXPECT_EQ(sch_col_offset(ci), rows[n].ptr);
        EXPECT_EQ(sch_col_has_value_offset(ci), rows[n].has_value_off);
        EXPECT_EQ(ci->type.type_info, rows[n].type_info);
        EXPECT_EQ(ci->type.sch, nullptr);
        EXPECT_EQ(sch_col_domain(ci), nullptr);
        EXPECT_EQ(ci->def.status, vsNOVAL);
        EXPECT_EQ(sch_col_def(ci), nullptr);
        EXPECT_EQ(sch_col_key_ndx(ci), n == 0 ? 0 : 65535);
        EXPECT_EQ(sch_col_key(ci), n == 0 ? &_SysFilesNameKey : nullptr);
        EXPECT_EQ(sch_col_usage(ci), n == 0 ? 1 : 0);
        EXPECT_EQ(ci->num_keys, n == 0 ? 1 : 0);
        EXPECT_EQ(ci->num_refs, 0);
        EXPECT_EQ(ci->num_sortrefs, 0);
        EXPECT_EQ(sch_col_lob_drawer(ci), n == 4 ? &_SysFilesDrawer2 : nullptr);
    }
    EXPECT_EQ(_SysFilesColName.keys[0], &_SysFilesNameKey);
    EXPECT_EQ(sch_get_sysfiles_blob_col(), &_SysFilesColBlob);
    EXPECT_EQ(sch_get_sysfiles_version_col(), &_SysFilesColVersion);
}

TEST(SystemTable, HasItsDrawers) {
    const struct {
        const _SCH_DRAWER_INFO *record;
        OAK_DRAWER_TYPE type;
        OAK_INDEX src_id;
    } rows[] = {{&_SysFilesDrawer0, OAK_DRAWER_TABLE, 0},
                {&_SysFilesDrawer1, OAK_DRAWER_BTREE, 0},
                {&_SysFilesDrawer2, OAK_DRAWER_BLOB, 3}}; // the column's index is 4
    for (OAK_DRAWER n = 0; n < 3; ++n) {
        SCH_DRAWER_INFO_C di = _SysFilesDrawers[n];
        EXPECT_EQ(di, rows[n].record);
        EXPECT_EQ(sch_tbl_related_drawer(sch_get_sysfiles_table(), n), di);
        EXPECT_EQ(sch_drawer_id(di), n + 2);
        EXPECT_EQ(di->tbl_ndx, n);
        EXPECT_EQ(di->sch, nullptr);
        EXPECT_EQ(sch_drawer_type(di), rows[n].type);
        EXPECT_EQ(sch_drawer_compact(di), OAK_FALSE);
        EXPECT_EQ(sch_drawer_src_table_id(di), 0);
        EXPECT_EQ(sch_drawer_src_ndx(di), rows[n].src_id);
    }
    EXPECT_EQ(sch_drawer_table(&_SysFilesDrawer0), &_SysFilesTable);
    EXPECT_EQ(sch_drawer_key(&_SysFilesDrawer1), &_SysFilesNameKey);
    EXPECT_EQ(sch_drawer_blob_col(&_SysFilesDrawer2), &_SysFilesColBlob);
    EXPECT_EQ(sch_tbl_related_drawer(sch_get_sysfiles_table(), 3), nullptr);
}

TEST(SystemTable, HasItsKey) {
    SCH_KEY_INFO_C ki = &_SysFilesNameKey;
    EXPECT_EQ(sch_get_key_by_index(sch_get_sysfiles_table(), 0), ki);
    EXPECT_EQ(_SysFilesKeys[0], ki);
    EXPECT_EQ(_SysFilesColNameKeys[0], ki);
    EXPECT_EQ(sch_key_ndx(ki), 0);
    EXPECT_EQ(sch_key_table(ki), &_SysFilesTable);
    EXPECT_EQ(sch_key_schema(ki), nullptr);
    EXPECT_STREQ(sch_key_name(ki), "name");
    EXPECT_EQ(sch_key_type(ki), OAK_KEY_TYPE_PRIMARY);
    EXPECT_EQ(sch_key_method(ki), OAK_KEY_METHOD_BTREE);
    EXPECT_EQ(sch_key_restr(ki), OAK_FALSE);
    EXPECT_EQ(sch_key_drawer_ndx(ki), 3u);
    EXPECT_EQ(sch_key_num_elems(ki), 1);
    EXPECT_EQ(sch_key_refcount(ki), 0u);
    EXPECT_EQ(sch_key_byte_len(ki), 1024u);
    EXPECT_EQ(sch_key_has_value_offset(ki), 1024u);
    EXPECT_EQ(sch_key_inline(ki), OAK_TRUE);
    EXPECT_EQ(sch_avl_index(ki), 0);
    SCH_ELEM_INFO_C ei = sch_key_elem_c(ki, 0);
    EXPECT_EQ(ei, &_SysFilesNameKeyElem0);
    EXPECT_EQ(sch_elem_index(ei), 0);
    EXPECT_EQ(ei->key, ki);
    EXPECT_EQ(sch_elem_col(ei), &_SysFilesColName);
    EXPECT_EQ(sch_elem_dir(ei), OAK_FORWARD);
    EXPECT_EQ(sch_elem_offset(ei), 0u);
    EXPECT_EQ(sch_elem_has_value_offset(ei), 0u);
}

// The columns' offsets are those that finalization would give.
TEST(SystemTable, IsLaidOutAsFinalizationWould) {
    oaktest::Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "like_sys_files");
    oaktest::Schema::not_null_column(ti, 0, "name", OAK_CHAR, 1024);
    oaktest::Schema::column(ti, 1, "data", OAK_CHAR, 63480);
    oaktest::Schema::not_null_column(ti, 2, "data_len", OAK_UINT64);
    oaktest::Schema::not_null_column(ti, 3, "version", OAK_UINT64);
    oaktest::Schema::column(ti, 4, "data_blob", OAK_BLOB);
    oaktest::Schema::key(ti, 0, nullptr, OAK_KEY_TYPE_PRIMARY, OAK_KEY_METHOD_BTREE, {0});
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    for (OAK_COL_INDEX n = 0; n < 5; ++n) {
        SCOPED_TRACE(n);
        EXPECT_EQ(ti->cols[n]->ptr, _SysFilesCols[n]->ptr);
        EXPECT_EQ(ti->cols[n]->has_value_off, _SysFilesCols[n]->has_value_off);
        EXPECT_EQ(ti->cols[n]->type.byte_len, _SysFilesCols[n]->type.byte_len);
    }
    EXPECT_EQ(ti->has_value_off, 64520u);
    EXPECT_EQ(ti->byte_len, 64528u);
    EXPECT_STREQ(sch_key_name(ti->pkey), "name");
    EXPECT_EQ(ti->pkey->byte_len, 1024u);
    EXPECT_EQ(ti->pkey->has_value_off, 1024u);
    EXPECT_EQ(ti->bufferInfo.col_data_offset, 24u);
    EXPECT_EQ(ti->bufferInfo.row_buffer_size, 64552u);
}

// The records lie in read-only memory: a write would end the program.
TEST(SystemTable, RefusesEveryChange) {
    SCH_TBL_INFO ti = own_handle(&_SysFilesTable);
    SCH_COL_INFO ci = own_handle(&_SysFilesColData);
    SCH_COL_INFO blob = own_handle(&_SysFilesColBlob);
    SCH_KEY_INFO ki = own_handle(&_SysFilesNameKey);
    SCH_ELEM_INFO ei = own_handle(&_SysFilesNameKeyElem0);
    SCH_DRAWER_INFO di = own_handle(&_SysFilesDrawer0);
    SCH_TYPE_INFO pi = sch_col_type(ci);
    SCH_COL_INFO new_col = nullptr;
    SCH_KEY_INFO new_key = nullptr;
    SCH_REF_INFO new_ref = nullptr;
    _SCH_TRIG_INFO trigger{};
    const OAK_RETCODE statuses[] = {
        sch_col_create(ti, 0, &new_col),
        sch_key_create(ti, 0, &new_key),
        sch_ref_create(ti, 0, &new_ref),
        sch_trig_create(ti, &trigger),
        sch_type_set_data_type(pi, OAK_INT8, OAK_TRUE),
        sch_type_set_elems(pi, 1),
        sch_type_set_length(pi, 1),
        sch_type_set_scale(pi, 1),
        sch_type_set_use_locale(pi, OAK_TRUE),
        sch_type_set_locale(pi, nullptr),
        sch_type_set_check_str(pi, "x"),
        sch_type_set_check_name(pi, "x"),
        sch_drawer_set_source_table(di, 1),
        sch_drawer_set_source_item(di, 1),
        sch_drawer_set_type(di, OAK_DRAWER_BLOB),
        sch_tbl_set_name(ti, "x"),
        sch_tbl_set_check_str(ti, "x"),
        sch_tbl_set_check_name(ti, "x"),
        sch_tbl_set_type(ti, OAK_TABLE_CIRCULAR),
        sch_tbl_set_max_rows(ti, 1),
        sch_tbl_set_offset(ti, 1),
        sch_tbl_set_drawer(ti, 5),
        sch_tbl_set_drawer(ti, OAK_DRAWER_NONE),
        sch_tbl_set_num_cols(ti, 1),
        sch_tbl_set_next_col(ti, 1),
        sch_tbl_set_num_keys(ti, 2),
        sch_tbl_set_next_key(ti, 2),
        sch_tbl_set_num_avls(ti, 1),
        sch_tbl_set_next_avl(ti, 1),
        sch_tbl_set_num_refs(ti, 1),
        sch_tbl_set_num_owners(ti, 1),
        sch_tbl_set_next_owner(ti, 1),
        sch_tbl_set_max_cols(ti, 9),
        sch_tbl_set_max_keys(ti, 9),
        sch_tbl_set_max_avls(ti, 9),
        sch_tbl_set_max_owners(ti, 9),
        sch_tbl_set_next_ref(ti, 9),
        sch_col_set_name(ci, "x"),
        sch_col_set_width(ci, 1),
        sch_col_set_format(ci, "x"),
        sch_col_set_usage(ci, 1),
        sch_col_set_not_null(ci, "x"),
        sch_col_drop_not_null(ci),
        sch_col_set_domain(ci, 1),
        sch_col_set_blob_drawer(blob, 4),
        sch_col_set_key(ci, 0),
        sch_col_set_ref(ci, 0),
        sch_col_set_reftab(ci, 0),
        sch_col_set_refcol(ci, 0),
        sch_key_set_name(ki, "x"),
        sch_key_set_method(ki, OAK_KEY_METHOD_AVL),
        sch_key_set_refcount(ki, 1),
        sch_key_set_restr(ki, OAK_TRUE),
        sch_key_set_type(ki, OAK_KEY_TYPE_UNIQUE),
        sch_key_set_drawer(ki, 3),
        sch_key_set_num_elems(ki, 2),
        sch_elem_set_col(ei, 0),
        sch_elem_set_order(ei, OAK_REVERSE),
        sch_col_finalize(ci),
        sch_key_finalize(ki),
        sch_key_finalize_name(ki),
        sch_tbl_finalize(ti, OAK_FALSE),
        sch_tbl_drop(ti),
        sch_tbl_drawers_drop(ti),
        sch_tbl_col_drop(ci),
        sch_ref_drop(ti, 0),
        sch_trig_drop(ti, "x"),
    };
    size_t n = 0;
    for (const OAK_RETCODE status : statuses) {
        EXPECT_EQ(status, eBADCAT) << "call " << n;
        ++n;
    }
    sch_key_finalize_offsets(ki);
    sch_tbl_generate_buffer_info(ti);
    sch_bucket_generate_buffer_info(ki);
    sch_key_drop_fcn(ki);
    EXPECT_EQ(new_col, nullptr);
    EXPECT_EQ(new_key, nullptr);
    EXPECT_EQ(new_ref, nullptr);
}

} // namespace
