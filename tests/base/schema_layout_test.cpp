// Finalization: layouts reckoned by hand, the length and alignment of each type,
// keys, sort columns, drawers, live columns, buffer descriptors, names, locking
// and symbol texts.
#include "schema_layout.h"

#include "schema_fixture.h"

namespace {

using oaktest::Schema;

/// The offsets of the columns, as "0 4 8 ".
std::string offsets(SCH_TBL_INFO_C ti) {
    std::string text;
    for (SCH_COL_INFO_C ci = nullptr;
         (ci = sch_iterate_cols_active(ti, ci, OAK_FORWARD)) != nullptr;) {
        text += std::to_string(ci->ptr) + " ";
    }
    return text;
}

/// The offsets of their has-value bytes.
std::string has_value_offsets(SCH_TBL_INFO_C ti) {
    std::string text;
    for (SCH_COL_INFO_C ci = nullptr;
         (ci = sch_iterate_cols_active(ti, ci, OAK_FORWARD)) != nullptr;) {
        text += std::to_string(ci->has_value_off) + " ";
    }
    return text;
}

// ---- Rows --------------------------------------------------------------------

TEST(RowLayout, OfThreeNullableIntegers) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    for (OAK_COL_INDEX n = 0; n < 3; ++n) {
        Schema::column(ti, n, "c", OAK_INT32);
    }
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(offsets(ti), "0 4 8 ");
    EXPECT_EQ(has_value_offsets(ti), "12 13 14 ");
    EXPECT_EQ(sch_tbl_has_value_offset(ti), 12u);
    EXPECT_EQ(sch_tbl_byte_len(ti), 16u);
    OAK_ROW_BUFFER_INFO info;
    sch_tbl_get_buffer_info(ti, &info);
    EXPECT_EQ(info.col_status_offset, 0u);
    EXPECT_EQ(info.col_data_offset, 16u);
    EXPECT_EQ(info.col_data_size, 16u);
    EXPECT_EQ(info.row_buffer_size, 32u);
}

TEST(RowLayout, OfEveryAlignment) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    const struct {
        OAK_TYPE type;
        uint32_t length;
    } columns[] = {{OAK_INT8, 0},      {OAK_INT64, 0},       {OAK_INT16, 0}, {OAK_FLOAT, 0},
                   {OAK_DOUBLE, 0},    {OAK_BCD, 0},         {OAK_UUID, 0},  {OAK_CHAR, 5},
                   {OAK_VARBINARY, 3}, {OAK_DATE, 0},        {OAK_BOOL, 0},  {OAK_TIMETZ, 0},
                   {OAK_TIMESTAMP, 0}, {OAK_TIMESTAMPTZ, 0}, {OAK_UINT8, 0}, {OAK_ROWID, 0}};
    OAK_COL_INDEX n = 0;
    for (const auto &column : columns) {
        Schema::not_null_column(ti, n++, "c", column.type, column.length);
    }
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(offsets(ti), "0 8 16 20 24 32 72 88 94 100 104 108 116 124 136 144 ");
    EXPECT_EQ(sch_tbl_has_value_offset(ti), 152u);
    EXPECT_EQ(sch_tbl_byte_len(ti), 152u);
}

TEST(RowLayout, AlignsItsEndToTheHighestAlignment) {
    const struct {
        OAK_TYPE type;
        uint32_t byte_len; // of a nullable column alone
    } rows[] = {{OAK_INT8, 2},    {OAK_INT16, 4}, {OAK_INT32, 8}, {OAK_FLOAT, 8}, {OAK_INT64, 16},
                {OAK_DOUBLE, 16}, {OAK_DATE, 8},  {OAK_UUID, 20}, {OAK_BCD, 38},  {OAK_ROWID, 16}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.type);
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        SCH_COL_INFO ci = Schema::column(ti, 0, "c", row.type);
        ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
        EXPECT_EQ(ci->ptr, 0u);
        EXPECT_EQ(ci->has_value_off, sch_col_byte_len(ci));
        EXPECT_EQ(sch_tbl_byte_len(ti), row.byte_len);
    }
}

TEST(RowLayout, OfLargeObjectsAloneHasOnlyHasValueBytes) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_BLOB);
    Schema::column(ti, 1, "b", OAK_CLOB);
    Schema::not_null_column(ti, 2, "c", OAK_WCLOB);
    Schema::column(ti, 3, "d", OAK_WCLOB_UTF8);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(offsets(ti), "0 0 0 0 ");
    EXPECT_EQ(has_value_offsets(ti), "0 1 0 2 ")
        << "the first falls on offset 0 and counts as having none";
    EXPECT_EQ(sch_tbl_has_value_offset(ti), 0u);
    EXPECT_EQ(sch_tbl_byte_len(ti), 3u) << "aligned as characters";
}

TEST(RowLayout, GivesLargeObjectsNoPlaceAmongOthers) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    Schema::column(ti, 1, "b", OAK_BLOB);
    Schema::column(ti, 2, "c", OAK_INT8);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(offsets(ti), "0 0 1 ");
    EXPECT_EQ(has_value_offsets(ti), "2 3 4 ");
    EXPECT_EQ(sch_tbl_byte_len(ti), 5u);
}

TEST(RowLayout, GivesNoHasValueByteToWhatCannotBeNull) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT32);
    Schema::not_null_column(ti, 1, "b", OAK_INT32);
    Schema::column(ti, 2, "c", OAK_INT32);
    Schema::column(ti, 3, "d", OAK_INT32);
    Schema::key(ti, 0, nullptr, OAK_KEY_TYPE_PRIMARY, OAK_KEY_METHOD_BTREE, {2});
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(has_value_offsets(ti), "16 0 0 17 ");
    EXPECT_EQ(sch_tbl_byte_len(ti), 20u);
}

TEST(RowLayout, PassesOverHolesAndDroppedColumns) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 1, "a", OAK_INT64);
    Schema::column(ti, 2, "b", OAK_INT64);
    Schema::column(ti, 5, "c", OAK_INT8);
    ASSERT_EQ(sch_tbl_col_drop(ti->cols[1]), sOKAY);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(offsets(ti), "0 8 ");
    EXPECT_EQ(has_value_offsets(ti), "9 10 ");
    EXPECT_EQ(sch_tbl_byte_len(ti), 16u);
}

TEST(RowLayout, OfAnEmptyTable) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_TRUE), sOKAY);
    EXPECT_EQ(sch_tbl_byte_len(ti), 0u);
    EXPECT_EQ(sch_tbl_num_drawers(ti), 0u);
    OAK_ROW_BUFFER_INFO info;
    sch_tbl_get_buffer_info(ti, &info);
    EXPECT_EQ(info.row_buffer_size, 0u);
}

TEST(RowLayout, TakesTheTypeOfTheDomain) {
    Schema sch;
    SCH_DOMAIN_INFO mi = sch.domain(0, "d", OAK_INT64);
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::not_null_column(ti, 0, "a", OAK_INT8);
    SCH_COL_INFO ci = Schema::not_null_column(ti, 1, "b", OAK_NOVAL);
    ASSERT_EQ(sch_col_set_domain(ci, 0), sOKAY);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(offsets(ti), "0 8 ");
    EXPECT_EQ(mi->type.byte_len, 8);
    EXPECT_EQ(sch_tbl_byte_len(ti), 16u);
}

// ---- Types -------------------------------------------------------------------

struct TypeRow {
    OAK_TYPE type;
    uint32_t declared; // length given to the type, 0 for none
    uint16_t elems;
    uint32_t byte_len;
    ALIGN_TYPE align;
};

constexpr TypeRow kTypeRows[] = {
    {OAK_BOOL, 0, 0, 4, ALN_INT32},         {OAK_BOOL, 0, 3, 12, ALN_INT32},
    {OAK_BOOL, 0, 16383, 65532, ALN_INT32}, {OAK_INT8, 0, 0, 1, ALN_CHAR},
    {OAK_INT8, 0, 1, 1, ALN_CHAR},          {OAK_INT8, 0, 65535, 65535, ALN_CHAR},
    {OAK_UINT8, 0, 0, 1, ALN_CHAR},         {OAK_UINT8, 0, 7, 7, ALN_CHAR},
    {OAK_INT16, 0, 0, 2, ALN_INT16},        {OAK_INT16, 0, 32767, 65534, ALN_INT16},
    {OAK_UINT16, 0, 0, 2, ALN_INT16},       {OAK_UINT16, 0, 3, 6, ALN_INT16},
    {OAK_INT32, 0, 0, 4, ALN_INT32},        {OAK_INT32, 0, 16383, 65532, ALN_INT32},
    {OAK_UINT32, 0, 0, 4, ALN_INT32},       {OAK_UINT32, 0, 3, 12, ALN_INT32},
    {OAK_INT64, 0, 0, 8, ALN_INT64},        {OAK_INT64, 0, 8191, 65528, ALN_INT64},
    {OAK_UINT64, 0, 0, 8, ALN_INT64},       {OAK_UINT64, 0, 3, 24, ALN_INT64},
    {OAK_FLOAT, 0, 0, 4, ALN_FLOAT},        {OAK_FLOAT, 0, 16383, 65532, ALN_FLOAT},
    {OAK_DOUBLE, 0, 0, 8, ALN_DOUBLE},      {OAK_DOUBLE, 0, 8191, 65528, ALN_DOUBLE},
    {OAK_BCD, 12, 0, 37, ALN_CHAR},         {OAK_DATE, 0, 0, 4, ALN_INT32},
    {OAK_TIME, 3, 0, 4, ALN_INT32},         {OAK_TIMETZ, 3, 0, 8, ALN_INT32},
    {OAK_TIMESTAMP, 3, 0, 8, ALN_INT32},    {OAK_TIMESTAMPTZ, 3, 0, 12, ALN_INT32},
    {OAK_ROWID, 0, 0, 8, ALN_INT64},        {OAK_UUID, 0, 0, 16, ALN_INT32},
    {OAK_CHAR, 0, 0, 0, ALN_CHAR},          {OAK_CHAR, 41, 0, 41, ALN_CHAR},
    {OAK_CHAR, 65535, 0, 65535, ALN_CHAR},  {OAK_VARCHAR, 41, 0, 41, ALN_CHAR},
    {OAK_WCHAR, 41, 0, 41, ALN_CHAR},       {OAK_WCHAR_UTF8, 41, 0, 41, ALN_CHAR},
    {OAK_WVARCHAR, 41, 0, 41, ALN_CHAR},    {OAK_WVARCHAR_UTF8, 41, 0, 41, ALN_CHAR},
    {OAK_BINARY, 41, 0, 41, ALN_CHAR},      {OAK_BINARY, 65535, 0, 65535, ALN_CHAR},
    {OAK_VARBINARY, 41, 0, 43, ALN_INT16},  {OAK_VARBINARY, 65533, 0, 65535, ALN_INT16},
    {OAK_BLOB, 0, 0, 0, ALN_INT64},         {OAK_CLOB, 0, 0, 0, ALN_INT64},
    {OAK_WCLOB, 0, 0, 0, ALN_INT64},        {OAK_WCLOB_UTF8, 0, 0, 0, ALN_INT64},
};

TEST(TypeLengths, AndAlignments) {
    for (const TypeRow &row : kTypeRows) {
        SCOPED_TRACE(::testing::Message()
                     << row.type << " of " << row.declared << ", " << row.elems);
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        Schema::not_null_column(ti, 0, "a", OAK_INT8);
        SCH_COL_INFO ci = Schema::not_null_column(ti, 1, "b", row.type, row.declared, row.elems);
        ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
        EXPECT_EQ(sch_col_byte_len(ci), row.byte_len);
        EXPECT_EQ(ci->type.type_info->ext_align, row.align);
        const bool large = (row.type & 0x1000) != 0;
        const uint32_t boundary[] = {1, 2, 4, 4, 4, 8, 8};
        EXPECT_EQ(ci->ptr, large ? 0u : boundary[row.align]);
    }
}

TEST(TypeLengths, AboveSixteenBitsAreRefused) {
    const TypeRow rows[] = {
        {OAK_BOOL, 0, 16384, 0, ALN_CHAR},      {OAK_INT16, 0, 32768, 0, ALN_CHAR},
        {OAK_UINT16, 0, 32768, 0, ALN_CHAR},    {OAK_INT32, 0, 16384, 0, ALN_CHAR},
        {OAK_UINT32, 0, 65535, 0, ALN_CHAR},    {OAK_INT64, 0, 8192, 0, ALN_CHAR},
        {OAK_UINT64, 0, 65535, 0, ALN_CHAR},    {OAK_FLOAT, 0, 16384, 0, ALN_CHAR},
        {OAK_DOUBLE, 0, 8192, 0, ALN_CHAR},     {OAK_VARBINARY, 65534, 0, 0, ALN_CHAR},
        {OAK_VARBINARY, 65535, 0, 0, ALN_CHAR},
    };
    for (const TypeRow &row : rows) {
        SCOPED_TRACE(row.type);
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        Schema::column(ti, 0, "a", row.type, row.declared, row.elems);
        EXPECT_EQ(sch_tbl_finalize(ti, OAK_FALSE), eBADCAT);
    }
}

TEST(TypeLengths, OfTypesWithoutArraysDoNotMultiply) {
    for (const OAK_TYPE type :
         {OAK_BCD, OAK_DATE, OAK_TIMESTAMPTZ, OAK_ROWID, OAK_UUID, OAK_CHAR, OAK_VARBINARY}) {
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        SCH_COL_INFO ci = Schema::column(ti, 0, "a", type);
        ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
        const uint32_t scalar = sch_col_byte_len(ci);
        ci->type.elems = 9; // the setter refuses it
        ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
        EXPECT_EQ(sch_col_byte_len(ci), scalar) << type;
    }
}

TEST(TypeLengths, OfUnknownTypesAreRefused) {
    for (const int32_t type : {0, 0x0011, 0x001B, 0x100B, 0x0302 + 0x0100, 0x0001, -1}) {
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        Schema::column(ti, 0, "a", static_cast<OAK_TYPE>(type));
        EXPECT_EQ(sch_tbl_finalize(ti, OAK_FALSE), eBADCAT) << type;
    }
}

// ---- Keys --------------------------------------------------------------------

TEST(KeyLayout, PutsItsHasValueBytesBehindTheValues) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    Schema::column(ti, 1, "b", OAK_INT32);
    SCH_KEY_INFO ki = Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0, 1});
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(ki->elems[0].ptr, 0u);
    EXPECT_EQ(ki->elems[1].ptr, 4u);
    EXPECT_EQ(sch_key_has_value_offset(ki), 8u);
    EXPECT_EQ(ki->elems[0].has_value_off, 8u);
    EXPECT_EQ(ki->elems[1].has_value_off, 9u);
    EXPECT_EQ(sch_key_byte_len(ki), 12u);
}

TEST(KeyLayout, GivesPrimaryKeyColumnsNoHasValueByte) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT64);
    Schema::column(ti, 1, "b", OAK_INT16);
    Schema::not_null_column(ti, 2, "c", OAK_INT8);
    Schema::key(ti, 0, "p", OAK_KEY_TYPE_PRIMARY, OAK_KEY_METHOD_BTREE, {0});
    SCH_KEY_INFO ki = Schema::key(ti, 1, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0, 1, 2});
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(ki->elems[0].ptr, 0u);
    EXPECT_EQ(ki->elems[1].ptr, 8u);
    EXPECT_EQ(ki->elems[2].ptr, 10u);
    EXPECT_EQ(sch_key_has_value_offset(ki), 11u);
    EXPECT_EQ(ki->elems[0].has_value_off, 0u);
    EXPECT_EQ(ki->elems[1].has_value_off, 11u);
    EXPECT_EQ(ki->elems[2].has_value_off, 0u);
    EXPECT_EQ(sch_key_byte_len(ki), 16u);
    EXPECT_EQ(sch_key_byte_len(ti->pkey), 8u);
}

TEST(KeyLayout, OfNoElementsIsEmpty) {
    Schema sch;
    SCH_KEY_INFO ki =
        Schema::key(sch.table(1, "t"), 0, nullptr, OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {});
    EXPECT_EQ(sch_key_finalize(ki), sOKAY);
    EXPECT_EQ(sch_key_byte_len(ki), 0u);
    EXPECT_EQ(sch_key_has_value_offset(ki), 0u);
    EXPECT_EQ(sch_key_name(ki), nullptr);
}

TEST(KeyLayout, IsMadeAgainWithTheTable) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::not_null_column(ti, 0, "a", OAK_INT8);
    Schema::not_null_column(ti, 1, "b", OAK_INT64);
    SCH_KEY_INFO ki = Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_HASH, {0, 1});
    EXPECT_EQ(sch_key_finalize(ki), sOKAY);
    EXPECT_EQ(sch_key_byte_len(ki), 0u) << "the lengths of the columns are not known yet";
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(sch_key_byte_len(ki), 16u);
    OAK_BUCKET_BUFFER_INFO info;
    sch_bucket_get_buffer_info(ki, &info);
    EXPECT_EQ(info.key_byte_len, 16u);
    ki->elems[1].ptr = 99;
    sch_key_finalize_offsets(ki);
    EXPECT_EQ(ki->elems[1].ptr, 8u);
}

TEST(KeyFinalize, RefusesAnElementWithoutAColumn) {
    for (const OAK_COL_INDEX missing : {0, 1, 2}) {
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        SCH_KEY_INFO ki = nullptr;
        ASSERT_EQ(sch_key_create(ti, 0, &ki), sOKAY);
        ASSERT_EQ(sch_tbl_set_next_key(ti, 1), sOKAY);
        ASSERT_EQ(sch_key_set_method(ki, OAK_KEY_METHOD_AVL), sOKAY);
        ASSERT_EQ(sch_key_set_num_elems(ki, 3), sOKAY);
        for (OAK_COL_INDEX n = 0; n < 3; ++n) {
            Schema::column(ti, n, "c", OAK_INT8);
            if (n != missing) {
                ASSERT_EQ(sch_elem_set_col(sch_key_elem(ki, n), n), sOKAY);
            }
        }
        EXPECT_EQ(sch_key_finalize(ki), eBADCAT);
        EXPECT_EQ(sch_tbl_next_avl(ti), 0);
        EXPECT_EQ(sch_key_finalize_name(ki), eBADCAT);
        EXPECT_EQ(sch_tbl_finalize(ti, OAK_FALSE), eBADCAT);
        sch_key_finalize_offsets(ki);
    }
}

TEST(AvlKeys, AreNumberedInTheOrderOfFinalization) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    SCH_KEY_INFO keys[7] = {};
    for (OAK_KEY_INDEX n = 0; n < 7; ++n) {
        const bool empty = n == 1;
        keys[n] = Schema::key(ti, n, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_AVL,
                              empty ? std::vector<OAK_COL_INDEX>{} : std::vector<OAK_COL_INDEX>{0});
        EXPECT_EQ(sch_key_finalize(keys[n]), sOKAY);
        EXPECT_EQ(sch_avl_index(keys[n]), n);
        EXPECT_EQ(sch_tbl_next_avl(ti), n + 1);
        EXPECT_EQ(sch_tbl_max_avls(ti), n < 5 ? 5 : 10) << "in steps of five";
        EXPECT_EQ(ti->avls[n], empty ? nullptr : keys[n]);
    }
    EXPECT_EQ(sch_tbl_num_avls(ti), 6) << "the one without elements takes a number, no count";
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(sch_tbl_next_avl(ti), 7) << "the table numbers no key";
    OAK_ROW_BUFFER_INFO info;
    sch_tbl_get_buffer_info(ti, &info);
    EXPECT_EQ(info.num_avls, 6);
}

TEST(AvlKeys, HaveAnEndOfNumbers) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_KEY_INFO ki = Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_AVL, {});
    ASSERT_EQ(sch_tbl_set_next_avl(ti, 65534), sOKAY);
    EXPECT_EQ(sch_key_finalize(ki), sOKAY);
    EXPECT_EQ(sch_avl_index(ki), 65534);
    EXPECT_EQ(sch_tbl_max_avls(ti), 65535);
    EXPECT_EQ(sch_key_finalize(ki), eRANGE);
}

TEST(KeyName, IsJoinedFromTheColumns) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "alpha", OAK_INT8);
    Schema::column(ti, 1, "Beta", OAK_INT8);
    Schema::column(ti, 2, "c", OAK_INT8);
    SCH_KEY_INFO one = Schema::key(ti, 0, nullptr, OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {1});
    SCH_KEY_INFO three =
        Schema::key(ti, 1, nullptr, OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {1, 0, 2});
    SCH_KEY_INFO named =
        Schema::key(ti, 2, "mine", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {1, 0});
    SCH_KEY_INFO empty = Schema::key(ti, 3, "", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {1});
    EXPECT_EQ(sch_key_finalize(one), sOKAY);
    EXPECT_STREQ(sch_key_name(one), "Beta");
    EXPECT_EQ(sch_key_inline(one), OAK_TRUE);
    EXPECT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_STREQ(sch_key_name(three), "Beta_alpha_c");
    EXPECT_EQ(sch_key_inline(three), OAK_TRUE);
    EXPECT_STREQ(sch_key_name(named), "mine");
    EXPECT_EQ(sch_key_inline(named), OAK_FALSE);
    EXPECT_STREQ(sch_key_name(empty), "") << "an empty name is one";
}

TEST(BucketBuffer, HasRoomForThirtyOneEntries) {
    const struct {
        uint32_t key; // bytes of a key
        size_t data;
    } rows[] = {{1, 32}, {2, 64}, {8, 248}, {12, 376}, {65535, 2031592}};
    for (const auto &row : rows) {
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        Schema::not_null_column(ti, 0, "a", OAK_CHAR, row.key);
        SCH_KEY_INFO ki = Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_HASH, {0});
        ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
        OAK_BUCKET_BUFFER_INFO info;
        sch_bucket_get_buffer_info(ki, &info);
        EXPECT_EQ(info.key_byte_len, row.key);
        EXPECT_EQ(info.bucket_len, 1240u);
        EXPECT_EQ(info.data_len, row.data);
        EXPECT_EQ(info.id_len, 248u);
        EXPECT_EQ(info.buffer_len, 1488 + row.data);
    }
}

TEST(BucketBuffer, IsMadeForHashKeysAlone) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::not_null_column(ti, 0, "a", OAK_INT8);
    SCH_KEY_INFO ki = Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0});
    ASSERT_EQ(sch_key_finalize(ki), sOKAY);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    OAK_BUCKET_BUFFER_INFO info;
    sch_bucket_get_buffer_info(ki, &info);
    EXPECT_EQ(info.buffer_len, 0u);
    sch_bucket_generate_buffer_info(ki);
    sch_bucket_get_buffer_info(ki, &info);
    EXPECT_EQ(info.buffer_len, 1520u);
}

// ---- References --------------------------------------------------------------

TEST(SortLayout, HasNoFinalAlignmentAndIgnoresThePrimaryKey) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    Schema::column(ti, 1, "b", OAK_INT64); // in the primary key
    Schema::not_null_column(ti, 2, "c", OAK_INT16);
    Schema::key(ti, 0, "p", OAK_KEY_TYPE_PRIMARY, OAK_KEY_METHOD_BTREE, {1});
    SCH_REF_INFO ri = Schema::reference(ti, 0, "r", 1, {}, {0, 1, 2});
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(ri->sort_cols[0].ptr, 0u);
    EXPECT_EQ(ri->sort_cols[1].ptr, 8u);
    EXPECT_EQ(ri->sort_cols[2].ptr, 16u);
    EXPECT_EQ(ri->sort_cols[0].has_value_off, 18u);
    EXPECT_EQ(ri->sort_cols[1].has_value_off, 19u) << "in contrast to a key";
    EXPECT_EQ(ri->sort_cols[2].has_value_off, 0u);
    EXPECT_EQ(sch_ref_sort_byte_len(ri), 20u);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(sch_ref_sort_byte_len(ri), 20u) << "a second time as well";
}

TEST(SortLayout, GoesByTheCountOfReferences) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT32);
    SCH_REF_INFO first = Schema::reference(ti, 0, "r", 1, {}, {0});
    SCH_REF_INFO third = Schema::reference(ti, 2, "s", 1, {}, {0});
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(sch_ref_sort_byte_len(first), 5u);
    EXPECT_EQ(sch_ref_sort_byte_len(third), 0u) << "index 2 of a count of 2";
    ASSERT_EQ(sch_tbl_set_num_refs(ti, 3), sOKAY);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(sch_ref_sort_byte_len(third), 5u);
}

TEST(ReferenceFinalize, RefusesASortColumnThatIsNotSet) {
    for (const OAK_COL_INDEX missing : {0, 1}) {
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        Schema::column(ti, 0, "a", OAK_INT8);
        Schema::column(ti, 1, "b", OAK_INT8);
        SCH_REF_INFO ri = Schema::reference(ti, 0, "r", 1, {});
        ASSERT_EQ(sch_ref_set_num_sort_cols(ri, 2), sOKAY);
        ASSERT_EQ(sch_ref_set_sort_col(ri, static_cast<OAK_COL_INDEX>(1 - missing), 0), sOKAY);
        EXPECT_EQ(sch_ref_finalize(ri), eBADCAT);
        EXPECT_EQ(sch_tbl_finalize(ti, OAK_FALSE), eBADCAT);
    }
}

TEST(ReferenceFinalize, MakesItsColumnsForeignKeyColumns) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    Schema::column(ti, 1, "b", OAK_INT8);
    SCH_REF_INFO ri = Schema::reference(ti, 3, "r", 1, {});
    ASSERT_EQ(sch_ref_set_num_cols(ri, 3), sOKAY);
    ASSERT_EQ(sch_ref_set_col(ri, 0, 1), sOKAY);
    ASSERT_EQ(sch_ref_set_col(ri, 2, 0), sOKAY); // position 1 is not linked yet
    EXPECT_EQ(sch_ref_finalize(ri), sOKAY);
    EXPECT_EQ(sch_col_ref(ti->cols[0]), ri);
    EXPECT_EQ(sch_col_ref(ti->cols[1]), ri);
    EXPECT_EQ(sch_ref_finalize(nullptr), eINVNULLARG);
}

TEST(ReferenceName, IsMadeOfTheTableAndTheFirstColumn) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "Orders");
    Schema::column(ti, 0, "id", OAK_INT8);
    Schema::column(ti, 1, "Customer", OAK_INT8);
    SCH_REF_INFO ri = Schema::reference(ti, 0, nullptr, 1, {1, 0});
    EXPECT_EQ(sch_ref_name_default(ri), OAK_FALSE) << "no name yet";
    EXPECT_EQ(sch_ref_finalize(ri), sOKAY);
    EXPECT_STREQ(sch_ref_name(ri), "Orders_Customer");
    EXPECT_EQ(sch_ref_name_default(ri), OAK_TRUE);
    const struct {
        const char *name;
        OAK_BOOL_T is_default;
    } names[] = {{"ORDERS_customer", OAK_TRUE},   {"Orders_Custome", OAK_FALSE},
                 {"Orders_Customers", OAK_FALSE}, {"Orders-Customer", OAK_FALSE},
                 {"Orders", OAK_FALSE},           {"", OAK_FALSE},
                 {"Customer", OAK_FALSE}};
    for (const auto &row : names) {
        ASSERT_EQ(sch_ref_set_name(ri, row.name), sOKAY);
        EXPECT_EQ(sch_ref_name_default(ri), row.is_default) << row.name;
        EXPECT_EQ(sch_ref_finalize_name(ri), sOKAY);
        EXPECT_STREQ(sch_ref_name(ri), row.name) << "a name is left alone";
    }
}

TEST(ReferenceName, NeedsTheFirstColumnUnlessThereIsNone) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_INT8);
    SCH_REF_INFO none = Schema::reference(ti, 0, nullptr, 1, {});
    EXPECT_EQ(sch_ref_finalize(none), sOKAY);
    EXPECT_EQ(sch_ref_name(none), nullptr);
    EXPECT_EQ(sch_ref_name_default(none), OAK_FALSE);
    SCH_REF_INFO unlinked = Schema::reference(ti, 1, nullptr, 1, {});
    ASSERT_EQ(sch_ref_set_num_cols(unlinked, 2), sOKAY);
    ASSERT_EQ(sch_ref_set_col(unlinked, 1, 0), sOKAY);
    EXPECT_EQ(sch_ref_finalize_name(unlinked), eBADCAT);
    EXPECT_EQ(sch_ref_finalize(unlinked), eBADCAT);
    ASSERT_EQ(sch_ref_set_name(unlinked, "r"), sOKAY);
    EXPECT_EQ(sch_ref_finalize(unlinked), sOKAY);
}

struct LockingCase {
    const char *name;
    OAK_REF_ACTION on_update;
    std::vector<OAK_COL_INDEX> cols;
    std::vector<OAK_COL_INDEX> sort_cols;
    OAK_COL_INDEX key_col; // has usage bit 1; 9 for none
    OAK_BOOL_T before;
    OAK_BOOL_T after;
};

// Columns 0 to 4.
const LockingCase kLocking[] = {
    {"no action", OAK_REF_ACTION_NOVAL, {0}, {0}, 0, OAK_TRUE, OAK_FALSE},
    {"restrict", OAK_REF_ACTION_RESTRICT, {0}, {0}, 0, OAK_TRUE, OAK_FALSE},
    {"set null", OAK_REF_ACTION_SET_NULL, {}, {}, 9, OAK_FALSE, OAK_TRUE},
    {"cascade without columns", OAK_REF_ACTION_CASCADE, {}, {0}, 0, OAK_FALSE, OAK_FALSE},
    {"cascade without columns, set before", OAK_REF_ACTION_CASCADE, {}, {}, 9, OAK_TRUE, OAK_TRUE},
    {"cascade set before", OAK_REF_ACTION_CASCADE, {0}, {}, 9, OAK_TRUE, OAK_TRUE},
    {"cascade over no key and no sort",
     OAK_REF_ACTION_CASCADE,
     {0, 1},
     {},
     9,
     OAK_FALSE,
     OAK_FALSE},
    {"cascade over a key column", OAK_REF_ACTION_CASCADE, {0, 1}, {}, 1, OAK_FALSE, OAK_TRUE},
    {"cascade over a sort column", OAK_REF_ACTION_CASCADE, {0}, {2, 0}, 9, OAK_FALSE, OAK_TRUE},
    {"cascade over other sort columns",
     OAK_REF_ACTION_CASCADE,
     {0},
     {2, 3},
     9,
     OAK_FALSE,
     OAK_FALSE},
    // Looking for column 0 walks the whole list; column 1 then finds nothing left.
    {"cascade over a later sort column",
     OAK_REF_ACTION_CASCADE,
     {0, 1},
     {1, 2},
     9,
     OAK_FALSE,
     OAK_FALSE},
    {"cascade over a later key column",
     OAK_REF_ACTION_CASCADE,
     {0, 1},
     {1, 2},
     1,
     OAK_FALSE,
     OAK_TRUE},
};

TEST(ReferenceLocking, FollowsTheActionOnUpdate) {
    for (const LockingCase &row : kLocking) {
        SCOPED_TRACE(row.name);
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        for (OAK_COL_INDEX n = 0; n < 5; ++n) {
            SCH_COL_INFO ci = Schema::column(ti, n, "c", OAK_INT8);
            ASSERT_EQ(sch_col_set_usage(ci, n == row.key_col ? 7 : 6), sOKAY);
        }
        SCH_REF_INFO ri = Schema::reference(ti, 0, "r", 1, row.cols, row.sort_cols);
        ASSERT_EQ(sch_ref_set_on_update(ri, row.on_update), sOKAY);
        ri->requires_write = row.before;
        sch_ref_finalize_locking(ri);
        EXPECT_EQ(sch_ref_requires_write_for_update(ri), row.after);
    }
    sch_ref_finalize_locking(nullptr);
}

// ---- Native wide characters --------------------------------------------------

TEST(CompactDrawers, HoldNativeWideCharacters) {
    for (const OAK_TYPE type : {OAK_WCHAR, OAK_WVARCHAR, OAK_WCHAR_UTF8, OAK_WVARCHAR_UTF8,
                                OAK_CHAR, OAK_VARCHAR, OAK_BINARY}) {
        SCOPED_TRACE(type);
        const OAK_BOOL_T native = type == OAK_WCHAR || type == OAK_WVARCHAR ? OAK_TRUE : OAK_FALSE;
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        Schema::column(ti, 0, "a", OAK_INT8);
        Schema::column(ti, 1, "b", type, 9);
        SCH_KEY_INFO with =
            Schema::key(ti, 0, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0, 1});
        SCH_KEY_INFO without =
            Schema::key(ti, 1, "l", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0});
        SCH_REF_INFO sorted = Schema::reference(ti, 0, "r", 1, {}, {0, 1});
        SCH_REF_INFO referencing = Schema::reference(ti, 1, "s", 1, {1}, {0});
        SCH_DRAWER_INFO rows = sch.drawer(5, OAK_DRAWER_TABLE, 1, 1);
        SCH_DRAWER_INFO with_drawer = sch.drawer(6, OAK_DRAWER_BTREE, 1, 0);
        SCH_DRAWER_INFO without_drawer = sch.drawer(7, OAK_DRAWER_BTREE, 1, 1);
        SCH_DRAWER_INFO sorted_drawer = sch.drawer(8, OAK_DRAWER_REF, 1, 0);
        SCH_DRAWER_INFO referencing_drawer = sch.drawer(9, OAK_DRAWER_REF, 1, 1);
        ASSERT_EQ(sch_tbl_set_drawer(ti, 5), sOKAY);
        ASSERT_EQ(sch_key_set_drawer(with, 6), sOKAY);
        ASSERT_EQ(sch_key_set_drawer(without, 7), sOKAY);
        ASSERT_EQ(sch_ref_set_drawer(sorted, 8), sOKAY);
        ASSERT_EQ(sch_ref_set_drawer(referencing, 9), sOKAY);
        ASSERT_EQ(sch_key_finalize(with), sOKAY);
        EXPECT_EQ(sch_drawer_compact(with_drawer), native) << "marked with the key";
        EXPECT_EQ(sch_drawer_compact(rows), OAK_FALSE);
        with_drawer->compact = OAK_FALSE;
        ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
        EXPECT_EQ(sch_drawer_compact(rows), native);
        EXPECT_EQ(sch_drawer_compact(with_drawer), native);
        EXPECT_EQ(sch_drawer_compact(without_drawer), OAK_FALSE);
        EXPECT_EQ(sch_drawer_compact(sorted_drawer), native);
        EXPECT_EQ(sch_drawer_compact(referencing_drawer), OAK_FALSE);
    }
}

TEST(CompactDrawers, AreNotMarkedForTextStoredAsUtf8) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO ci = Schema::column(ti, 0, "a", OAK_NOVAL);
    ASSERT_EQ(sch_type_set_data_type(sch_col_type(ci), OAK_WCHAR, OAK_FALSE), sOKAY);
    SCH_DRAWER_INFO rows = sch.drawer(5, OAK_DRAWER_TABLE, 1, 1);
    ASSERT_EQ(sch_tbl_set_drawer(ti, 5), sOKAY);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(sch_drawer_compact(rows), OAK_FALSE);
}

TEST(CompactDrawers, AreNotMarkedForDroppedColumns) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO ci = Schema::column(ti, 0, "a", OAK_WCHAR, 9);
    SCH_DRAWER_INFO rows = sch.drawer(5, OAK_DRAWER_TABLE, 1, 1);
    ASSERT_EQ(sch_tbl_set_drawer(ti, 5), sOKAY);
    ASSERT_EQ(sch_tbl_col_drop(ci), sOKAY);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(sch_drawer_compact(rows), OAK_FALSE);
}

// ---- Drawers of a table ------------------------------------------------------

/// The table's drawers by number, each at its own position.
std::string drawers(SCH_TBL_INFO_C ti) {
    std::string text;
    for (OAK_DRAWER n = 0; n < sch_tbl_num_drawers(ti); ++n) {
        SCH_DRAWER_INFO_C di = sch_tbl_related_drawer(ti, n);
        EXPECT_EQ(di->tbl_ndx, n);
        text += std::to_string(di->ndx) + " ";
    }
    EXPECT_EQ(sch_tbl_related_drawer(ti, sch_tbl_num_drawers(ti)), nullptr);
    return text;
}

TEST(TableDrawers, StandInTheOrderTableKeysReferencesBlobs) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 0, "a", OAK_BLOB);
    Schema::column(ti, 1, "b", OAK_INT8);
    Schema::column(ti, 2, "c", OAK_CLOB);
    Schema::column(ti, 3, "without a drawer", OAK_CLOB);
    sch.drawer(20, OAK_DRAWER_BLOB, 1, 0);
    sch.drawer(19, OAK_DRAWER_BLOB, 1, 2);
    ASSERT_EQ(sch_col_set_blob_drawer(ti->cols[0], 20), sOKAY);
    ASSERT_EQ(sch_col_set_blob_drawer(ti->cols[2], 19), sOKAY);
    for (const OAK_KEY_INDEX n : {4, 1, 2}) {
        SCH_KEY_INFO ki = Schema::key(ti, n, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {1});
        if (n != 2) {
            sch.drawer(15u - n, OAK_DRAWER_BTREE, 1, n);
            ASSERT_EQ(sch_key_set_drawer(ki, 15u - n), sOKAY);
        }
    }
    for (const OAK_REF_INDEX n : {6, 0, 3}) { // 6 and 3 are not below the count
        SCH_REF_INFO ri = Schema::reference(ti, n, "r", 1, {});
        if (n != 0) {
            sch.drawer(30u - n, OAK_DRAWER_REF, 1, n);
            ASSERT_EQ(sch_ref_set_drawer(ri, 30u - n), sOKAY);
        }
    }
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(drawers(ti), "14 11 27 24 20 19 ") << "without a row drawer";
    sch.drawer(9, OAK_DRAWER_TABLE, 1, 1);
    ASSERT_EQ(sch_tbl_set_drawer(ti, 9), sOKAY);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(drawers(ti), "9 14 11 27 24 20 19 ");
}

// ---- Live columns ------------------------------------------------------------

TEST(LiveColumns, AreIndexedOnlyWhenSomeWereDropped) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    for (OAK_COL_INDEX n = 0; n < 5; ++n) {
        Schema::column(ti, n, "c", OAK_INT8);
    }
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(ti->active_ndx, nullptr);
    ASSERT_EQ(sch_tbl_col_drop(ti->cols[0]), sOKAY);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    ASSERT_NE(ti->active_ndx, nullptr);
    EXPECT_EQ(std::vector<OAK_COL_INDEX>(ti->active_ndx, ti->active_ndx + 4),
              (std::vector<OAK_COL_INDEX>{1, 2, 3, 4}));
    ASSERT_EQ(sch_tbl_col_drop(ti->cols[3]), sOKAY);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(std::vector<OAK_COL_INDEX>(ti->active_ndx, ti->active_ndx + 3),
              (std::vector<OAK_COL_INDEX>{1, 2, 4}));
    for (const OAK_COL_INDEX n : {1, 2, 4}) {
        ASSERT_EQ(sch_tbl_col_drop(ti->cols[n]), sOKAY);
    }
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(sch_find_col_active_ndx(ti, 0), OAK_INDEX_NONE) << "all were dropped";
    EXPECT_EQ(sch_tbl_byte_len(ti), 0u);
}

TEST(LiveColumns, MustBeAsManyAsCounted) {
    for (const OAK_COL_INDEX count : {0, 1, 2, 3}) {
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        Schema::column(ti, 0, "a", OAK_INT8);
        Schema::column(ti, 3, "b", OAK_INT8); // next column 4
        ASSERT_EQ(sch_tbl_set_num_cols(ti, count), sOKAY);
        EXPECT_EQ(sch_tbl_finalize(ti, OAK_FALSE), count == 2 ? sOKAY : eBADCAT) << count;
    }
}

TEST(LiveColumns, LoseTheirIndexWhenTheCountReachesTheLimit) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::column(ti, 1, "a", OAK_INT8);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_NE(ti->active_ndx, nullptr);
    Schema::column(ti, 0, "b", OAK_INT8);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(ti->active_ndx, nullptr);
}

// ---- Limits and counts -------------------------------------------------------

TEST(TableFinalize, RefusesLimitsAboveTheirCapacity) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t"); // 16 columns, 8 keys, 8 references
    EXPECT_EQ(sch_tbl_finalize(nullptr, OAK_FALSE), eINVNULLARG);
    ASSERT_EQ(sch_tbl_set_next_col(ti, 17), sOKAY);
    EXPECT_EQ(sch_tbl_finalize(ti, OAK_FALSE), eBADCAT);
    ASSERT_EQ(sch_tbl_set_next_col(ti, 16), sOKAY);
    EXPECT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    ASSERT_EQ(sch_tbl_set_next_key(ti, 9), sOKAY);
    EXPECT_EQ(sch_tbl_finalize(ti, OAK_FALSE), eBADCAT);
    ASSERT_EQ(sch_tbl_set_next_key(ti, 8), sOKAY);
    ASSERT_EQ(sch_tbl_set_num_refs(ti, 9), sOKAY);
    EXPECT_EQ(sch_tbl_finalize(ti, OAK_FALSE), eBADCAT);
    ASSERT_EQ(sch_tbl_set_num_refs(ti, 8), sOKAY);
    EXPECT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
}

// ---- Columns -----------------------------------------------------------------

TEST(ColumnFinalize, WantsATypeAndADrawerForLargeObjectsAlone) {
    Schema sch;
    sch.domain(0, "d", OAK_BLOB);
    SCH_TBL_INFO ti = sch.table(1, "t");
    sch.drawer(5, OAK_DRAWER_BLOB, 1, 0);
    EXPECT_EQ(sch_col_finalize(nullptr), eINVNULLARG);
    _SCH_COL_INFO alone{};
    alone.type.type = OAK_INT8;
    EXPECT_EQ(sch_col_finalize(&alone), eBADCAT) << "no table";
    SCH_COL_INFO ci = Schema::column(ti, 0, "a", OAK_NOVAL);
    EXPECT_EQ(sch_col_finalize(ci), eBADCAT) << "neither type nor domain";
    ASSERT_EQ(sch_col_set_domain(ci, 0), sOKAY);
    EXPECT_EQ(sch_col_finalize(ci), eBADCAT) << "a large object without a drawer";
    ASSERT_EQ(sch_col_set_blob_drawer(ci, 5), sOKAY);
    EXPECT_EQ(sch_col_finalize(ci), sOKAY);
    SCH_COL_INFO number = Schema::column(ti, 1, "b", OAK_INT8);
    EXPECT_EQ(sch_col_finalize(number), sOKAY);
    ASSERT_EQ(sch_col_set_blob_drawer(number, 5), sOKAY);
    EXPECT_EQ(sch_col_finalize(number), eBADCAT) << "a drawer for a number";
    SCH_COL_INFO text = Schema::column(ti, 2, "c", OAK_CLOB);
    EXPECT_EQ(sch_col_finalize(text), eBADCAT);
    ASSERT_EQ(sch_col_set_blob_drawer(text, 5), sOKAY);
    EXPECT_EQ(sch_col_finalize(text), sOKAY);
}

// ---- Row buffers -------------------------------------------------------------

TEST(RowBuffer, HoldsAvlsJoinsStatusesAndData) {
    const struct {
        uint16_t avls, refs, cols;
        size_t ref_offset, status_offset, data_offset;
    } rows[] = {
        {0, 0, 0, 0, 0, 0},
        {0, 0, 5, 0, 0, 24},
        {1, 1, 1, 24, 32, 40},
        {2, 3, 5, 48, 72, 96},
        {0, 7, 2, 0, 56, 64},
        {3, 0, 0, 72, 72, 72},
        {65535, 65535, 65535, 1572840, 2097120, 2359264},
    };
    for (const auto &row : rows) {
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        ti->num_avls = row.avls;
        ti->num_refs = row.refs;
        ti->num_cols = row.cols;
        ti->byte_len = 13;
        sch_tbl_generate_buffer_info(ti);
        OAK_ROW_BUFFER_INFO info;
        sch_tbl_get_buffer_info(ti, &info);
        EXPECT_EQ(info.num_avls, row.avls);
        EXPECT_EQ(info.num_refs, row.refs);
        EXPECT_EQ(info.num_cols, row.cols);
        EXPECT_EQ(info.avl_offset, 0u);
        EXPECT_EQ(info.ref_offset, row.ref_offset);
        EXPECT_EQ(info.col_status_offset, row.status_offset);
        EXPECT_EQ(info.col_data_offset, row.data_offset);
        EXPECT_EQ(info.col_data_size, 13u);
        EXPECT_EQ(info.row_buffer_size, row.data_offset + 13);
    }
}

// ---- Symbol texts ------------------------------------------------------------

class SymbolTexts : public ::testing::Test {
  protected:
    Schema sch_;
    SCH_TBL_INFO ti_ = sch_.table(1, "Customer");
    SCH_COL_INFO ci_ = Schema::column(ti_, 0, "Name\xc3\xa9", OAK_INT8);
    SCH_KEY_INFO ki_ =
        Schema::key(ti_, 0, "By_name", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {0});
    SCH_REF_INFO ri_ = Schema::reference(ti_, 0, "Owner", 1, {});
    char text_[64] = {};
};

TEST_F(SymbolTexts, AreInUpperCase) {
    EXPECT_EQ(sch_tbl_enum_text(ti_, text_, sizeof text_), sOKAY);
    EXPECT_STREQ(text_, "TABLE_CUSTOMER");
    EXPECT_EQ(sch_col_enum_text(ci_, text_, sizeof text_), sOKAY);
    EXPECT_STREQ(text_, "COL_CUSTOMER_NAME\xc3\xa9") << "letters of ASCII alone";
    EXPECT_EQ(sch_key_enum_text(ki_, text_, sizeof text_), sOKAY);
    EXPECT_STREQ(text_, "KEY_CUSTOMER_BY_NAME");
    EXPECT_EQ(sch_ref_enum_text(ri_, text_, sizeof text_), sOKAY);
    EXPECT_STREQ(text_, "REF_OWNER");
    EXPECT_EQ(sch_key_data_type_text(ki_, OAK_TRUE, text_, sizeof text_), sOKAY);
    EXPECT_STREQ(text_, "CUSTOMER_BY_NAME_KEY");
    EXPECT_EQ(sch_key_data_type_text(ki_, OAK_FALSE, text_, sizeof text_), sOKAY);
    EXPECT_STREQ(text_, "Customer_By_name_KEY");
}

TEST_F(SymbolTexts, AreCutToTheBufferAndKeepTheirCase) {
    EXPECT_EQ(sch_tbl_enum_text(ti_, text_, 15), sOKAY) << "14 characters and the end";
    EXPECT_STREQ(text_, "TABLE_CUSTOMER");
    EXPECT_EQ(sch_tbl_enum_text(ti_, text_, 14), sTRUNCATE);
    EXPECT_STREQ(text_, "TABLE_Custome");
    EXPECT_EQ(sch_col_enum_text(ci_, text_, 14), sTRUNCATE);
    EXPECT_STREQ(text_, "COL_Customer_");
    EXPECT_EQ(sch_key_enum_text(ki_, text_, 14), sTRUNCATE);
    EXPECT_STREQ(text_, "KEY_Customer_");
    EXPECT_EQ(sch_ref_enum_text(ri_, text_, 9), sTRUNCATE);
    EXPECT_STREQ(text_, "REF_Owne");
    EXPECT_EQ(sch_key_data_type_text(ki_, OAK_TRUE, text_, 12), sTRUNCATE);
    EXPECT_STREQ(text_, "Customer_By");
    EXPECT_EQ(sch_tbl_enum_text(ti_, text_, 1), sTRUNCATE);
    EXPECT_STREQ(text_, "");
    text_[0] = 'x';
    EXPECT_EQ(sch_tbl_enum_text(ti_, text_, 0), sTRUNCATE);
    EXPECT_EQ(text_[0], 'x') << "no byte of room";
}

TEST_F(SymbolTexts, TakeNamelessObjects) {
    ASSERT_EQ(sch_tbl_set_name(ti_, nullptr), sOKAY);
    ASSERT_EQ(sch_key_set_name(ki_, nullptr), sOKAY);
    EXPECT_EQ(sch_tbl_enum_text(ti_, text_, sizeof text_), sOKAY);
    EXPECT_STREQ(text_, "TABLE_");
    EXPECT_EQ(sch_key_enum_text(ki_, text_, sizeof text_), sOKAY);
    EXPECT_STREQ(text_, "KEY__");
}

TEST_F(SymbolTexts, RefuseNullArguments) {
    EXPECT_EQ(sch_tbl_enum_text(nullptr, text_, 9), eINVNULLARG);
    EXPECT_EQ(sch_col_enum_text(nullptr, text_, 9), eINVNULLARG);
    EXPECT_EQ(sch_key_enum_text(nullptr, text_, 9), eINVNULLARG);
    EXPECT_EQ(sch_ref_enum_text(nullptr, text_, 9), eINVNULLARG);
    EXPECT_EQ(sch_key_data_type_text(nullptr, OAK_TRUE, text_, 9), eINVNULLARG);
    EXPECT_EQ(sch_tbl_enum_text(ti_, nullptr, 9), eINVNULLARG);
    EXPECT_EQ(sch_col_enum_text(ci_, nullptr, 9), eINVNULLARG);
    EXPECT_EQ(sch_key_enum_text(ki_, nullptr, 9), eINVNULLARG);
    EXPECT_EQ(sch_ref_enum_text(ri_, nullptr, 9), eINVNULLARG);
    EXPECT_EQ(sch_key_data_type_text(ki_, OAK_TRUE, nullptr, 9), eINVNULLARG);
}

// ---- Random tables against a plain reckoning ---------------------------------

uint32_t round_up(uint32_t offset, uint32_t boundary) {
    return (offset + boundary - 1) / boundary * boundary;
}

// A second reckoning, written plainly: values in order, each rounded up to its
// boundary, then a byte for each nullable column, then the end rounded up.
TEST(RowLayout, AgreesWithAPlainReckoningOnRandomTables) {
    constexpr uint32_t kBoundary[] = {1, 2, 4, 4, 4, 8, 8};
    oaktest::Random random(51);
    for (int round = 0; round < 300; ++round) {
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        uint32_t end = 0;
        uint32_t highest = 1;
        std::vector<uint32_t> offset(16);
        std::vector<bool> nullable(16);
        const OAK_COL_INDEX count = static_cast<OAK_COL_INDEX>(random.below(16));
        for (OAK_COL_INDEX n = 0; n < count; ++n) {
            const TypeRow &row = kTypeRows[random.below(std::size(kTypeRows))];
            nullable[n] = random.below(2) == 0;
            if (nullable[n]) {
                Schema::column(ti, n, "c", row.type, row.declared, row.elems);
            } else {
                Schema::not_null_column(ti, n, "c", row.type, row.declared, row.elems);
            }
            if ((row.type & 0x1000) == 0) {
                offset[n] = round_up(end, kBoundary[row.align]);
                end = offset[n] + row.byte_len;
                highest = std::max(highest, kBoundary[row.align]);
            }
        }
        ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
        EXPECT_EQ(sch_tbl_has_value_offset(ti), end);
        for (OAK_COL_INDEX n = 0; n < count; ++n) {
            EXPECT_EQ(ti->cols[n]->ptr, offset[n]);
            EXPECT_EQ(ti->cols[n]->has_value_off, nullable[n] ? end++ : 0);
        }
        EXPECT_EQ(sch_tbl_byte_len(ti), round_up(end, highest));
        if (HasFailure()) {
            return;
        }
    }
}

// ---- Exhausted memory --------------------------------------------------------

#ifdef OSL_FAULT_INJECTION
TEST(ExhaustedMemory, EndsFinalizationWithItsStatus) {
    for (uint64_t nth = 1;; ++nth) {
        const oaktest::Live live = oaktest::Live::now();
        bool failed = false;
        {
            Schema sch;
            SCH_TBL_INFO ti = sch.table(1, "t");
            Schema::column(ti, 0, "a", OAK_INT8);
            Schema::column(ti, 1, "b", OAK_INT8);
            Schema::column(ti, 3, "c", OAK_INT8);
            SCH_KEY_INFO avl =
                Schema::key(ti, 0, nullptr, OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_AVL, {0, 1});
            SCH_KEY_INFO hash =
                Schema::key(ti, 1, nullptr, OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_HASH, {1});
            SCH_REF_INFO ri = Schema::reference(ti, 0, nullptr, 1, {0}, {1});
            sch.drawer(5, OAK_DRAWER_TABLE, 1, 1);
            ASSERT_EQ(sch_tbl_set_drawer(ti, 5), sOKAY);
            osl_faultArm(OSL_FAULT_MEMORY, nth, OAK_FALSE);
            OAK_RETCODE rc = sch_key_finalize(avl);
            if (rc == sOKAY) {
                rc = sch_ref_finalize(ri);
            }
            if (rc == sOKAY) {
                rc = sch_tbl_finalize(ti, OAK_FALSE);
            }
            failed = osl_faultDisarm(OSL_FAULT_MEMORY) > 0;
            EXPECT_EQ(rc, failed ? eNOMEMORY : sOKAY) << "allocation " << nth;
            if (!failed) {
                EXPECT_STREQ(sch_key_name(avl), "a_b");
                EXPECT_STREQ(sch_key_name(hash), "b");
                EXPECT_STREQ(sch_ref_name(ri), "t_a");
            }
        }
        EXPECT_EQ(oaktest::Live::now(), live);
        if (!failed || HasFailure()) {
            EXPECT_GT(nth, 4u);
            return;
        }
    }
}
#endif

} // namespace
