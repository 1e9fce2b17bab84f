// Lengths and offsets for fewer bytes per UTF-8 character.
#include "schema_mult.h"

#include "schema_fixture.h"
#include "schema_sysfiles.h"

namespace {

using oaktest::Schema;

constexpr uint32_t kPoison = 4711;

// ---- The common step ---------------------------------------------------------

TEST(ColumnStep, ShortensUtf8TextAlone) {
    const struct {
        OAK_TYPE type;
        uint32_t length;     // declared
        uint32_t lengths[4]; // for 1 to 4 bytes a character
    } rows[] = {
        {OAK_CHAR, 41, {11, 21, 31, 41}},
        {OAK_VARCHAR, 41, {11, 21, 31, 41}},
        {OAK_WCHAR_UTF8, 41, {11, 21, 31, 41}},
        {OAK_WVARCHAR_UTF8, 41, {11, 21, 31, 41}},
        {OAK_WCHAR, 41, {41, 41, 41, 41}},
        {OAK_WVARCHAR, 41, {41, 41, 41, 41}},
        {OAK_BINARY, 41, {41, 41, 41, 41}},
        {OAK_VARBINARY, 41, {43, 43, 43, 43}},
        {OAK_INT32, 0, {4, 4, 4, 4}},
        {OAK_BCD, 9, {37, 37, 37, 37}},
        {OAK_CLOB, 0, {0, 0, 0, 0}},
        {OAK_CHAR, 1, {1, 1, 1, 1}},
        {OAK_CHAR, 4, {1, 1, 1, 1}},
        {OAK_CHAR, 5, {2, 3, 4, 5}},
        {OAK_CHAR, 8, {2, 3, 4, 5}},
        {OAK_CHAR, 65535, {16384, 32767, 49150, 65533}},
        {OAK_CHAR, 0, {1, 1, 1, 1}},
    };
    for (const auto &row : rows) {
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, "t");
        SCH_COL_INFO ci = Schema::column(ti, 0, "c", row.type, row.length);
        ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
        for (uint32_t multiplier = 1; multiplier <= 4; ++multiplier) {
            uint32_t length = kPoison;
            EXPECT_EQ(sch_col_offset_ex(ci, 0, multiplier, &length), 0u);
            EXPECT_EQ(length, row.lengths[multiplier - 1])
                << row.type << " of " << row.length << " times " << multiplier;
        }
    }
}

TEST(ColumnStep, AlignsTheOffset) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    SCH_COL_INFO number = Schema::column(ti, 0, "a", OAK_INT64);
    SCH_COL_INFO text = Schema::column(ti, 1, "b", OAK_CHAR, 5);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(sch_col_offset_ex(number, 0, 1, nullptr), 0u);
    EXPECT_EQ(sch_col_offset_ex(number, 1, 1, nullptr), 8u);
    EXPECT_EQ(sch_col_offset_ex(number, 8, 1, nullptr), 8u);
    EXPECT_EQ(sch_col_offset_ex(number, 9, 1, nullptr), 16u);
    EXPECT_EQ(sch_col_offset_ex(text, 9, 1, nullptr), 9u);
}

// ---- A table -----------------------------------------------------------------

/// id int32 primary, name char 41, blob, total int64, note varchar 9, wide wchar 10.
class MultipliedTable : public ::testing::Test {
  protected:
    void SetUp() override {
        Schema::column(ti_, 0, "id", OAK_INT32);
        Schema::column(ti_, 1, "name", OAK_CHAR, 41);
        Schema::column(ti_, 2, "blob", OAK_BLOB);
        Schema::not_null_column(ti_, 3, "total", OAK_INT64);
        Schema::column(ti_, 4, "note", OAK_VARCHAR, 9);
        Schema::column(ti_, 5, "wide", OAK_WCHAR, 10);
        Schema::key(ti_, 0, "p", OAK_KEY_TYPE_PRIMARY, OAK_KEY_METHOD_BTREE, {0});
        key_ = Schema::key(ti_, 1, "k", OAK_KEY_TYPE_UNIQUE, OAK_KEY_METHOD_BTREE, {1, 3, 0, 4});
        ASSERT_EQ(sch_tbl_finalize(ti_, OAK_FALSE), sOKAY);
    }

    Schema sch_;
    SCH_TBL_INFO ti_ = sch_.table(1, "t");
    SCH_KEY_INFO key_ = nullptr;
};

// Stored: id 0-4, name 4-45, total 48-56, note 56-65, wide 65-75; four nullable
// columns (name, blob, note, wide) make 79, rounded up to 80.
TEST_F(MultipliedTable, HasItsStoredLayout) {
    EXPECT_EQ(ti_->cols[3]->ptr, 48u);
    EXPECT_EQ(ti_->cols[5]->ptr, 65u);
    EXPECT_EQ(sch_tbl_has_value_offset(ti_), 75u);
    EXPECT_EQ(sch_tbl_byte_len(ti_), 80u);
    EXPECT_EQ(sch_key_byte_len(key_), 72u);
}

TEST_F(MultipliedTable, GivesStoredValuesForFour) {
    ti_->byte_len = 1001; // so that a walk would show
    ti_->has_value_off = 1002;
    key_->byte_len = 1003;
    ti_->cols[1]->ptr = 1004;
    key_->elems[1].ptr = 1005;
    key_->elems[0].has_value_off = 1006;
    uint32_t length = kPoison;
    EXPECT_EQ(sch_tbl_byte_len_ex(ti_, 4), 1001u);
    EXPECT_EQ(sch_tbl_has_value_offset_with_mult(ti_, 4), 1002u);
    EXPECT_EQ(sch_key_byte_len_with_mult(key_, 4), 1003u);
    EXPECT_EQ(sch_col_offset_with_mult(ti_->cols[1], 4, &length), 1004u);
    EXPECT_EQ(sch_elem_offset_with_mult(&key_->elems[1], 4, &length), 1005u);
    EXPECT_EQ(sch_elem_has_value_offset_with_mult(&key_->elems[0], 4), 1006u);
    EXPECT_EQ(length, kPoison) << "not written for a stored value";
}

// Times 1: id 0-4, name 4-15, blob aligns to 16, total 16-24, note 24-27, wide
// 27-37; four nullable columns make 41, rounded up to 48.
TEST_F(MultipliedTable, IsLaidOutForOneByteACharacter) {
    const uint32_t offsets[] = {0, 4, 16, 16, 24, 27};
    const uint32_t lengths[] = {4, 11, 0, 8, 3, 10};
    for (OAK_COL_INDEX n = 0; n < 6; ++n) {
        SCOPED_TRACE(n);
        uint32_t length = kPoison;
        EXPECT_EQ(sch_col_offset_with_mult(ti_->cols[n], 1, &length), offsets[n]);
        EXPECT_EQ(length, lengths[n]);
    }
    EXPECT_EQ(sch_tbl_has_value_offset_with_mult(ti_, 1), 37u);
    EXPECT_EQ(sch_tbl_byte_len_ex(ti_, 1), 48u);
}

// Times 2: id 0-4, name 4-25, blob aligns to 32, total 32-40, note 40-45, wide
// 45-55; with four bytes 59, rounded up to 64.
TEST_F(MultipliedTable, IsLaidOutForTwoBytesACharacter) {
    uint32_t length = kPoison;
    EXPECT_EQ(sch_col_offset_with_mult(ti_->cols[3], 2, &length), 32u);
    EXPECT_EQ(length, 8u);
    EXPECT_EQ(sch_tbl_has_value_offset_with_mult(ti_, 2), 55u);
    EXPECT_EQ(sch_tbl_byte_len_ex(ti_, 2), 64u);
}

TEST_F(MultipliedTable, PassesOverDroppedColumns) {
    ASSERT_EQ(sch_tbl_col_drop(ti_->cols[1]), sOKAY);
    uint32_t length = kPoison;
    EXPECT_EQ(sch_col_offset_with_mult(ti_->cols[4], 1, &length), 16u);
    EXPECT_EQ(length, 3u);
    EXPECT_EQ(sch_tbl_has_value_offset_with_mult(ti_, 1), 29u);
}

// The alignment of a large object counts in the walk, though finalization passes
// it over.
TEST(MultipliedBlob, AlignsWhatComesBehind) {
    Schema sch;
    SCH_TBL_INFO ti = sch.table(1, "t");
    Schema::not_null_column(ti, 0, "a", OAK_CHAR, 5);
    Schema::not_null_column(ti, 1, "b", OAK_BLOB);
    Schema::not_null_column(ti, 2, "c", OAK_CHAR, 5);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    EXPECT_EQ(ti->cols[2]->ptr, 5u);
    EXPECT_EQ(sch_tbl_byte_len(ti), 10u);
    uint32_t length = kPoison;
    EXPECT_EQ(sch_col_offset_with_mult(ti->cols[2], 1, &length), 8u);
    EXPECT_EQ(sch_tbl_byte_len_ex(ti, 1), 16u);
}

// ---- A key -------------------------------------------------------------------

// Elements name, total, id (primary), note. Times 1: name 0-11, total 16-24, id
// 24-28, note 28-31; two nullable ones make 33, rounded up to 40.
TEST_F(MultipliedTable, LaysOutItsKeyForOneByteACharacter) {
    const uint32_t offsets[] = {0, 16, 24, 28};
    const uint32_t lengths[] = {11, 8, 4, 3};
    for (OAK_COL_INDEX n = 0; n < 4; ++n) {
        SCOPED_TRACE(n);
        uint32_t length = kPoison;
        EXPECT_EQ(sch_elem_offset_with_mult(&key_->elems[n], 1, &length), offsets[n]);
        EXPECT_EQ(length, lengths[n]);
        EXPECT_EQ(sch_elem_offset_with_mult(&key_->elems[n], 1, nullptr), offsets[n]);
    }
    EXPECT_EQ(sch_key_byte_len_with_mult(key_, 1), 40u);
}

// Every element before counts when this one has a byte, whatever those have.
TEST_F(MultipliedTable, CountsAllElementsBeforeForAHasValueByte) {
    EXPECT_EQ(sch_elem_has_value_offset_with_mult(&key_->elems[0], 1), 31u);
    EXPECT_EQ(sch_elem_has_value_offset_with_mult(&key_->elems[1], 1), 31u) << "has none";
    EXPECT_EQ(sch_elem_has_value_offset_with_mult(&key_->elems[2], 1), 31u) << "has none";
    EXPECT_EQ(sch_elem_has_value_offset_with_mult(&key_->elems[3], 1), 34u)
        << "three elements before, of which one has a byte";
}

// ---- The system table --------------------------------------------------------

TEST(MultipliedSystemTable, GivesStoredValuesWhateverTheMultiplier) {
    for (const uint32_t multiplier : {0u, 1u, 2u, 3u, 4u, 5u}) {
        uint32_t length = kPoison;
        EXPECT_EQ(sch_tbl_byte_len_ex(&_SysFilesTable, multiplier), 64528u);
        EXPECT_EQ(sch_tbl_has_value_offset_with_mult(&_SysFilesTable, multiplier), 64520u);
        EXPECT_EQ(sch_key_byte_len_with_mult(&_SysFilesNameKey, multiplier), 1024u);
        EXPECT_EQ(sch_col_offset_with_mult(&_SysFilesColLen, multiplier, &length), 64504u);
        EXPECT_EQ(sch_elem_offset_with_mult(&_SysFilesNameKeyElem0, multiplier, &length), 0u);
        EXPECT_EQ(sch_elem_has_value_offset_with_mult(&_SysFilesNameKeyElem0, multiplier), 0u);
        EXPECT_EQ(length, kPoison);
    }
}

TEST(MultipliedSystemTable, IsKnownByItsExactName) {
    for (const char *name : {"_sys_files", "_SYS_FILES", "_sys_files2"}) {
        Schema sch;
        SCH_TBL_INFO ti = sch.table(1, name);
        Schema::not_null_column(ti, 0, "a", OAK_CHAR, 41);
        ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
        EXPECT_EQ(sch_tbl_byte_len_ex(ti, 1), strcmp(name, "_sys_files") == 0 ? 41u : 11u);
    }
}

} // namespace
