// Rows: packing and unpacking in both item formats, byte by byte, and the way
// from one form in memory to the other.
#include <cstring>
#include <string>
#include <vector>

#include "catalog.h"
#include "row_bench.h"
#include "schema_drop.h"
#include "schema_fcns.h"
#include "schema_layout.h"
#include "schema_structs.h"

namespace {

using oaktest::Bytes;
using oaktest::one_table;
using oaktest::RowBench;

std::string int32_column(int id) {
    return R"({"colid": )" + std::to_string(id) + R"(, "name": "c)" + std::to_string(id) +
           R"(", "type": {"data_type": "int32"}})";
}

std::string three_ints() {
    return one_table(int32_column(0) + "," + int32_column(1) + "," + int32_column(2), 3);
}

// ---- Known streams and layout ------------------------------------------------

TEST(Row, FormsHaveFixedNumbers) {
    EXPECT_EQ(OAK_ROW_FORMAT_BUFFER, 1);
    EXPECT_EQ(OAK_ROW_FORMAT_VALUE, 2);
    EXPECT_EQ(OAK_ROW_FORMAT_COMPACT, 3);
}

TEST(Row, HasTheKnownLayoutForThreeNullableInts) {
    const oaktest::Catalog catalog(three_ints());
    const SCH_TBL_INFO ti = catalog.table("t");
    for (OAK_COL_INDEX i = 0; i < 3; ++i) {
        EXPECT_EQ(sch_col_offset(sch_get_col_by_index(ti, i)), 4u * i);
        EXPECT_EQ(sch_col_has_value_offset(sch_get_col_by_index(ti, i)), 12u + i);
    }
    OAK_ROW_BUFFER_INFO layout;
    sch_tbl_get_buffer_info(ti, &layout);
    EXPECT_EQ(layout.col_data_size, 16u);
    EXPECT_EQ(layout.col_status_offset, 0u);
    EXPECT_EQ(layout.col_data_offset, 16u);
    EXPECT_EQ(layout.row_buffer_size, 32u);
}

TEST(CompactRow, WritesTheKnownStreams) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    EXPECT_EQ(row.compact(), "000000");
    row.set<int32_t>(0, 1);
    row.set<int32_t>(1, -1);
    row.set<int32_t>(2, 64);
    EXPECT_EQ(row.compact(), "000003000201800100");
    row.mark(1, vsNULL);
    row.set<int32_t>(2, 2);
    EXPECT_EQ(row.compact(), "000001000201020400");
}

TEST(CompactRow, ReadsTheKnownStreams) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    ASSERT_EQ(row.unpack_compact("000000"), sOKAY);
    for (OAK_COL_INDEX p = 0; p < 3; ++p) {
        EXPECT_EQ(row.status(p), vsNULL);
        EXPECT_EQ(row.has_value(p), 0);
    }
    ASSERT_EQ(row.unpack_compact("000003000201800100"), sOKAY);
    EXPECT_EQ(row.get<int32_t>(0), 1);
    EXPECT_EQ(row.get<int32_t>(1), -1);
    EXPECT_EQ(row.get<int32_t>(2), 64);
    ASSERT_EQ(row.unpack_compact("000001000201020400"), sOKAY);
    EXPECT_EQ(row.status(1), vsNULL);
    EXPECT_EQ(row.get<int32_t>(2), 2);
    EXPECT_EQ(row.has_value(2), 1);
    EXPECT_EQ(row.row_.rowid, 77u);
    EXPECT_EQ(row.row_.data_len, 32u);
    EXPECT_EQ(row.row_.avls, nullptr);
    EXPECT_EQ(row.row_.joins, nullptr);
}

TEST(CompactRow, StopsBehindItsEndMarkAndIgnoresPadding) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    EXPECT_EQ(row.unpack_compact("000003000201800100 000000000000"), sOKAY);
}

TEST(CompactRow, TakesOneAllocation) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    row.load(oaktest::unhex("000003000201800100"));
    row_free(&row.row_);
    const uint64_t before = row.tag_.live();
    ASSERT_EQ(row_unpack_compact(&row.row_, row.decoder_, 1, row.ti_, row.tag_, nullptr, nullptr),
              sOKAY);
    if (oaktest::faults_are_injected()) {
        EXPECT_EQ(row.tag_.live(), before + 1);
    }
}

// ---- Expanded ----------------------------------------------------------------

TEST(ExpandedRow, IsTheRowBufferBehindItsLength) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    row.set<int32_t>(0, 1);
    row.set<int32_t>(2, -1);
    EXPECT_EQ(row.expanded(), "2000000000000000"         // 32 bytes
                              "010000000200000001000000" // vsOKAY, vsNULL, vsOKAY
                              "00000000"                 // up to a multiple of 8
                              "0100000000000000ffffffff" // the values
                              "010001"                   // has-value bytes
                              "00");
}

TEST(ExpandedRow, ComesBackAsItWas) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    row.set<int32_t>(1, 123456);
    const Bytes image = oaktest::unhex(row.expanded());
    ASSERT_EQ(row.unpack_expanded(image), sOKAY);
    EXPECT_EQ(row.status(0), vsNULL);
    EXPECT_EQ(row.status(1), vsOKAY);
    EXPECT_EQ(row.get<int32_t>(1), 123456);
    EXPECT_EQ(oaktest::hex(row.row_.row_data, row.row_.data_len),
              oaktest::hex(image.data() + 8, image.size() - 8));
}

TEST(ExpandedRow, RefusesALengthThatIsNotTheTables) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    for (const uint64_t length : {uint64_t{0}, uint64_t{31}, uint64_t{33}, UINT64_MAX}) {
        Bytes image(40);
        std::memcpy(image.data(), &length, 8);
        EXPECT_EQ(row.unpack_expanded(image), eDBCORRUPTED) << length;
        EXPECT_EQ(row.row_.row_data, nullptr);
    }
}

TEST(ExpandedRow, ReportsAnImageThatEndsEarly) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    const Bytes image = oaktest::unhex(row.expanded());
    for (size_t cut = 0; cut < image.size(); ++cut) {
        EXPECT_EQ(row.unpack_expanded(Bytes(image.begin(), image.begin() + static_cast<long>(cut))),
                  eEOD);
        EXPECT_EQ(row.row_.row_data, nullptr);
    }
}

TEST(ExpandedRow, PacksACompactRowAsAnEmptyImage) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    ASSERT_EQ(row_convert(&row.row_, OAK_ROW_FORMAT_COMPACT), sOKAY);
    EXPECT_EQ(row.expanded(), "0000000000000000");
}

TEST(ExpandedRow, NeedsABulkCallback) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    B_ENCODER encoder = nullptr;
    B_DECODER decoder = nullptr;
    ASSERT_EQ(b_encoderCreate(b_buffEmitByte, nullptr, &row.buffer_, row.tag_, &encoder), sOKAY);
    ASSERT_EQ(b_decoderCreate(b_buffInputByte, nullptr, &row.buffer_, row.tag_, &decoder), sOKAY);
    EXPECT_EQ(row_pack_expanded(&row.row_, encoder), eNOTIMPLEMENTED);
    OAK_ROW other{};
    EXPECT_EQ(row_unpack_expanded(&other, decoder, 1, row.ti_, row.tag_, nullptr, nullptr),
              eNOTIMPLEMENTED);
    b_encoderDestroy(encoder);
    b_decoderDestroy(decoder);
}

// ---- What is stored ----------------------------------------------------------

TEST(CompactRow, SplitsItsGroupsWhereAColumnIsDropped) {
    const oaktest::Catalog catalog(three_ints());
    const SCH_TBL_INFO ti = catalog.table("t");
    std::string before;
    {
        RowBench row(ti);
        row.set<int32_t>(0, 5);
        row.set<int32_t>(1, 6);
        row.set<int32_t>(2, 7);
        before = row.compact();
        EXPECT_EQ(before, "00000300"
                          "0a0c0e"
                          "00");
    }
    ASSERT_EQ(sch_tbl_col_drop(sch_get_col_by_index(ti, 1)), sOKAY);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    RowBench row(ti);
    row.set<int32_t>(0, 5);
    row.set<int32_t>(1, 7); // the second live column
    EXPECT_EQ(row.compact(), "0000"
                             "01000a"
                             "01020e"
                             "00");
    // A stream of before the drop still reads; the dropped value is thrown away.
    ASSERT_EQ(row.unpack_compact(before), sOKAY);
    EXPECT_EQ(row.get<int32_t>(0), 5);
    EXPECT_EQ(row.get<int32_t>(1), 7);
}

TEST(CompactRow, ReadsAColumnAddedLaterAsNullOrAbsent) {
    const std::string columns = int32_column(0) + "," + int32_column(1) +
                                R"(,{"colid": 2, "name": "must", "not_null": "",
                                    "type": {"data_type": "int32"}})";
    const oaktest::Catalog catalog(one_table(columns, 3));
    RowBench row(catalog.table("t"));
    ASSERT_EQ(row.unpack_compact("0000 0100 0a 00"), sOKAY);
    EXPECT_EQ(row.status(0), vsOKAY);
    EXPECT_EQ(row.status(1), vsNULL);
    EXPECT_EQ(row.status(2), vsNOVAL);
}

TEST(CompactRow, MarksALargeObjectAndNothingElse) {
    const std::string columns = int32_column(0) + R"(,{"colid": 1, "name": "b", "dwrid": 6,
        "type": {"data_type": "blob"}},)" +
                                int32_column(2);
    const oaktest::Catalog catalog(
        one_table(columns, 3, "", R"(,{"dwrid": 6, "tabid": "1", "srcid": 1, "type": "blob"})", 7));
    RowBench row(catalog.table("t"));
    row.set<int32_t>(0, 1);
    row.mark(1, vsNOVAL); // a value that lies in the blob drawer
    row.row_.data.b.col_data[schema_view::live_column(row.ti_, 1)->has_value_off] = 1;
    row.set<int32_t>(2, 2);
    EXPECT_EQ(row.compact(), "00000300"
                             "02"
                             "01"
                             "04"
                             "00");
    ASSERT_EQ(row.unpack_compact("00000300020104 00"), sOKAY);
    EXPECT_EQ(row.status(1), vsNOVAL);
    EXPECT_EQ(row.has_value(1), 1);
    EXPECT_EQ(row.get<int32_t>(2), 2);
    row.mark(1, vsNULL);
    EXPECT_EQ(row.compact(), "0000"
                             "010002"
                             "010204"
                             "00");
    ASSERT_EQ(row.unpack_compact("0000 010002 010204 00"), sOKAY);
    EXPECT_EQ(row.status(1), vsNULL);
}

TEST(CompactRow, ThrowsAwayTheMarkOfADroppedLargeObject) {
    const std::string columns = int32_column(0) + R"(,{"colid": 1, "name": "b", "dwrid": 6,
        "type": {"data_type": "blob"}},)" +
                                int32_column(2);
    const oaktest::Catalog catalog(
        one_table(columns, 3, "", R"(,{"dwrid": 6, "tabid": "1", "srcid": 1, "type": "blob"})", 7));
    const SCH_TBL_INFO ti = catalog.table("t");
    ASSERT_EQ(sch_tbl_col_drop(sch_get_col_by_index(ti, 1)), sOKAY);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    RowBench row(ti);
    ASSERT_EQ(row.unpack_compact("0000 0300 02 01 04 00"), sOKAY);
    EXPECT_EQ(row.get<int32_t>(0), 1);
    EXPECT_EQ(row.get<int32_t>(1), 2);
}

TEST(CompactRow, RestoresTheRowidFromItsArgument) {
    const std::string columns =
        R"({"colid": 0, "name": "id", "type": {"data_type": "rowid"}},)" + int32_column(1);
    const oaktest::Catalog catalog(one_table(columns, 2));
    RowBench row(catalog.table("t"));
    row.set<uint64_t>(0, 5);
    row.set<int32_t>(1, 3);
    EXPECT_EQ(row.compact(), "0000"
                             "010106"
                             "00"); // the rowid is never stored
    ASSERT_EQ(row.unpack_compact("0000 010106 00", 0x1122334455667788u), sOKAY);
    EXPECT_EQ(row.get<uint64_t>(0), 0x1122334455667788u);
    EXPECT_EQ(row.status(0), vsOKAY);
    EXPECT_EQ(row.has_value(0), 1);
    // Stored bytes for it are read and overruled.
    ASSERT_EQ(row.unpack_compact("0000 020005 06 00", 9), sOKAY);
    EXPECT_EQ(row.get<uint64_t>(0), 9u);
}

// Two tables: "p" with a primary key, and "t" with a reference to it and two
// AVL keys.
std::string linked_tables() {
    return R"({"database": {"maxdrawers": 9, "nodrawers": 9, "nextdrawer": 9,
      "maxtabs": 3, "notabs": 3, "nexttab": 3,
      "drawers": [{"dwrid": 5, "tabid": "1", "srcid": 1, "type": "table"},
                  {"dwrid": 6, "tabid": "1", "srcid": 0, "type": "btree"},
                  {"dwrid": 7, "tabid": "2", "srcid": 2, "type": "table"},
                  {"dwrid": 8, "tabid": "2", "srcid": 0, "type": "ref"}],
      "tables": [
        {"tabid": 1, "dwrid": 5, "name": "p", "nocols": 1, "nextcol": 1, "maxcols": 1,
         "nokeys": 1, "nextkey": 1, "maxkeys": 1,
         "columns": [{"colid": 0, "name": "id", "type": {"data_type": "int32"}}],
         "keys": [{"keyid": 0, "dwrid": 6, "name": "pk", "type": "primary", "method": "btree",
                   "nocols": 1, "cols": [{"colid": "0", "order": "asc"}]}]},
        {"tabid": 2, "dwrid": 7, "name": "t", "nocols": 2, "nextcol": 2, "maxcols": 2,
         "nokeys": 2, "nextkey": 2, "maxkeys": 2, "norefs": 1, "maxrefs": 1,
         "columns": [{"colid": 0, "name": "a", "type": {"data_type": "int32"}},
                     {"colid": 1, "name": "owner", "refid": 0, "r_tabid": "1", "r_colid": "0",
                      "type": {"data_type": "int32"}}],
         "keys": [{"keyid": 0, "name": "avl0", "type": "nonunique", "method": "avl", "nocols": 1,
                   "cols": [{"colid": "0", "order": "asc"}]},
                  {"keyid": 1, "name": "avl1", "type": "nonunique", "method": "avl", "nocols": 1,
                   "cols": [{"colid": "0", "order": "desc"}]}],
         "refs": [{"refid": 0, "dwrid": 8, "name": "fk", "otabid": "1", "pkeyid": "0",
                   "nocols": 1, "cols": ["1"]}]}]}})";
}

TEST(CompactRow, StoresLinksAndJoinsAndNoForeignKey) {
    const oaktest::Catalog catalog(linked_tables());
    RowBench row(catalog.table("t"));
    ASSERT_EQ(row.ti_->num_avls, 2);
    ASSERT_NE(row.row_.avls, nullptr);
    ASSERT_NE(row.row_.joins, nullptr);
    row.set<int32_t>(0, 1);
    row.set<int32_t>(1, 2); // reached through the join, never stored
    row.row_.avls[0] = OAK_AVL{3, 1, 2};
    row.row_.avls[1] = OAK_AVL{0, 128, 0};
    EXPECT_EQ(row.compact(), "02"
                             "00010203"
                             "0180010000"
                             "00"
                             "010002"
                             "00");
    row.row_.joins[0].owner = 300;
    const std::string stream = row.compact();
    EXPECT_EQ(stream, "02"
                      "00010203"
                      "0180010000"
                      "01"
                      "00ac02"
                      "010002"
                      "00");
    ASSERT_EQ(row.unpack_compact(stream), sOKAY);
    EXPECT_EQ(row.row_.avls[0].left, 1u);
    EXPECT_EQ(row.row_.avls[0].right, 2u);
    EXPECT_EQ(row.row_.avls[0].flags, 3);
    EXPECT_EQ(row.row_.avls[1].left, 128u);
    EXPECT_EQ(row.row_.joins[0].owner, 300u);
    EXPECT_EQ(row.status(1), vsNOVAL); // a foreign key column
    // Its status is vsNOVAL whatever the stream holds.
    ASSERT_EQ(row.unpack_compact("00 00 02000204 00"), sOKAY);
    EXPECT_EQ(row.status(1), vsNOVAL);
}

TEST(CompactRow, ThrowsAwayLinksAndJoinsThatTheTableDoesNotHave) {
    const oaktest::Catalog catalog(linked_tables());
    RowBench row(catalog.table("t"));
    ASSERT_EQ(row.unpack_compact("02 07 010203 01 040500 02 05 09 00 08 00"), sOKAY);
    EXPECT_EQ(row.row_.avls[0].left, 0u);
    EXPECT_EQ(row.row_.avls[1].left, 4u);
    EXPECT_EQ(row.row_.joins[0].owner, 8u);
}

TEST(CompactRow, PutsLinksBackByTheRankOfTheirKey) {
    const oaktest::Catalog catalog(linked_tables());
    const SCH_TBL_INFO ti = catalog.table("t");
    sch_key_drop_fcn(sch_get_key_by_index(ti, 0));
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    RowBench row(ti);
    ASSERT_EQ(row.ti_->num_avls, 1);
    ASSERT_EQ(row.unpack_compact("02 00 010203 01 040506 00 00"), sOKAY);
    EXPECT_EQ(row.row_.avls[0].left, 4u);
    EXPECT_EQ(row.row_.avls[0].flags, 6);
    EXPECT_EQ(row.compact(), "01"
                             "01040506"
                             "00"
                             "00");
}

TEST(ExpandedRow, HoldsLinksAndJoinsInFront) {
    const oaktest::Catalog catalog(linked_tables());
    RowBench row(catalog.table("t"));
    std::memset(row.row_.avls, 0xee, sizeof(OAK_AVL)); // padding must not be stored
    row.row_.avls[0].flags = 3;
    row.row_.avls[0].left = 1;
    row.row_.avls[0].right = 2;
    row.row_.joins[0].owner = 300;
    const Bytes image = oaktest::unhex(row.expanded());
    EXPECT_EQ(oaktest::hex(image.data() + 8, 24), "0300000000000000"
                                                  "0100000000000000"
                                                  "0200000000000000");
    EXPECT_EQ(oaktest::hex(image.data() + 8 + 48, 8), "2c01000000000000");
    ASSERT_EQ(row.unpack_expanded(image), sOKAY);
    EXPECT_EQ(row.row_.avls[0].right, 2u);
    EXPECT_EQ(row.row_.joins[0].owner, 300u);
}

TEST(CompactRow, OfATableWithoutColumnsEndsBehindItsJoins) {
    const oaktest::Catalog catalog(one_table("", 0));
    RowBench row(catalog.table("t"));
    ASSERT_EQ(row.unpack_compact("0000"), sOKAY); // not even an end mark is read
    EXPECT_EQ(row.row_.row_data, nullptr);
    EXPECT_EQ(row.row_.data.b.col_status, nullptr);
}

TEST(ExpandedRow, OfATableWithoutColumnsIsEmpty) {
    const oaktest::Catalog catalog(one_table("", 0));
    RowBench row(catalog.table("t"));
    EXPECT_EQ(row.expanded(), "0000000000000000");
    ASSERT_EQ(row.unpack_expanded(Bytes(8)), sOKAY);
    EXPECT_EQ(row.row_.row_data, nullptr);
    EXPECT_EQ(row.row_.avls, nullptr);
    EXPECT_EQ(row.row_.joins, nullptr);
    EXPECT_EQ(row.row_.data.b.col_status, nullptr);
    EXPECT_EQ(row.row_.data.b.col_data, nullptr);
}

// ---- Damage ------------------------------------------------------------------

TEST(CompactRow, ReportsAStreamThatEndsEarly) {
    const oaktest::Catalog catalog(linked_tables());
    RowBench row(catalog.table("t"));
    const std::string stream = "02 00010203 0180010000 01 00ac02 010002 00";
    const Bytes bytes = oaktest::unhex(stream);
    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        EXPECT_EQ(row.unpack_compact(oaktest::hex(bytes.data(), cut)), eEOD) << cut;
        EXPECT_EQ(row.row_.row_data, nullptr);
        EXPECT_EQ(row.row_.avls, nullptr);
    }
}

TEST(CompactRow, RefusesAColumnThatTheTableDoesNotHave) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    EXPECT_EQ(row.unpack_compact("0000 0103 02 00"), eDBCORRUPTED);
    EXPECT_EQ(row.unpack_compact("0000 0400 02020202 00"), eDBCORRUPTED);
    EXPECT_EQ(row.unpack_compact("0000 01ffff03 02 00"), eDBCORRUPTED);
    EXPECT_EQ(row.unpack_compact("0000 ffff03ffff03 02 00"), eDBCORRUPTED);
}

TEST(CompactRow, RefusesNumbersThatAreTooWide) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    EXPECT_EQ(row.unpack_compact("808004"), eDBCORRUPTED);                  // AVL count 65536
    EXPECT_EQ(row.unpack_compact("00 808004"), eDBCORRUPTED);               // join count
    EXPECT_EQ(row.unpack_compact("0000 808004"), eDBCORRUPTED);             // group size
    EXPECT_EQ(row.unpack_compact("0000 01 808004"), eDBCORRUPTED);          // first index
    EXPECT_EQ(row.unpack_compact("0000 0100 8080808020 00"), eDBCORRUPTED); // a value
    EXPECT_EQ(row.unpack_compact("0000 0100 ffffffffffffffffffff7f"), eINVVARINT);
}

TEST(CompactRow, RefusesATextLongerThanItsColumn) {
    const oaktest::Catalog catalog(one_table(
        R"({"colid": 0, "name": "s", "type": {"data_type": "varchar", "length": 5}})", 1));
    RowBench row(catalog.table("t"));
    row.set_text(0, "abcd");
    EXPECT_EQ(row.compact(), "0000"
                             "0100"
                             "0461626364"
                             "00");
    ASSERT_EQ(row.unpack_compact("0000 0100 0461626364 00"), sOKAY);
    EXPECT_STREQ(reinterpret_cast<char *>(row.row_.data.b.col_data), "abcd");
    const uint32_t most = sch_col_byte_len(sch_get_col_by_index(catalog.table("t"), 0)) - 1;
    const std::string too_long(2 * (most + 1), '6');
    EXPECT_EQ(row.unpack_compact("0000 0100" +
                                 oaktest::hex(Bytes{static_cast<uint8_t>(most + 1)}.data(), 1) +
                                 too_long + "00"),
              eDBCORRUPTED);
}

// ---- Forms in memory ---------------------------------------------------------

TEST(RowForms, ConvertToCompactAndBack) {
    const oaktest::Catalog catalog(linked_tables());
    RowBench row(catalog.table("t"));
    row.set<int32_t>(0, 42);
    row.row_.joins[0].owner = 6;
    row.mark(1, vsNOVAL);
    ASSERT_EQ(row_convert(&row.row_, OAK_ROW_FORMAT_COMPACT), sOKAY);
    EXPECT_EQ(row.row_.format, OAK_ROW_FORMAT_COMPACT);
    EXPECT_EQ(row.row_.data_len, 0u);
    EXPECT_EQ(row.row_.row_data, nullptr);
    const OAK_BUFFER *buffer = row.row_.data.c.buffer;
    EXPECT_EQ(row_convert(&row.row_, OAK_ROW_FORMAT_COMPACT), sOKAY); // a second time nothing
    EXPECT_EQ(row.row_.data.c.buffer, buffer);
    ASSERT_EQ(row_convert(&row.row_, OAK_ROW_FORMAT_BUFFER), sOKAY);
    EXPECT_EQ(row.row_.format, OAK_ROW_FORMAT_BUFFER);
    EXPECT_EQ(row.get<int32_t>(0), 42);
    EXPECT_EQ(row.status(1), vsNOVAL);
    EXPECT_EQ(row.row_.joins[0].owner, 6u);
    EXPECT_EQ(row_convert(&row.row_, OAK_ROW_FORMAT_BUFFER), sOKAY);
}

TEST(RowForms, PackACompactRowAsItIs) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    row.set<int32_t>(0, 1);
    const std::string stream = row.compact();
    ASSERT_EQ(row_convert(&row.row_, OAK_ROW_FORMAT_COMPACT), sOKAY);
    EXPECT_EQ(row.compact(), stream);
    EXPECT_EQ(row.compact(), stream); // and again, from its first byte
}

TEST(RowForms, LeaveACorruptCompactRowAsItWas) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    ASSERT_EQ(row_convert(&row.row_, OAK_ROW_FORMAT_COMPACT), sOKAY);
    OAK_BUFFER *buffer = row.row_.data.c.buffer;
    b_buffReset(buffer);
    ASSERT_EQ(b_buffEmitBytesBulk(buffer, "\0\0\1\7", 4), sOKAY);
    EXPECT_EQ(row_convert(&row.row_, OAK_ROW_FORMAT_BUFFER), eSYS_ERROR);
    EXPECT_EQ(row.row_.format, OAK_ROW_FORMAT_COMPACT);
    EXPECT_EQ(row.row_.data.c.buffer, buffer);
    EXPECT_EQ(oaktest::hex(buffer->data, buffer->len), "00000107");
}

struct Reported {
    OAK_ERR handle = nullptr;
    explicit Reported(OSL_MEMTAG tag) { EXPECT_EQ(oakErrorOpen(tag, &handle), sOKAY); }
    ~Reported() { EXPECT_EQ(oakErrorClose(handle), sOKAY); }
    std::string last() const {
        const char *info = nullptr;
        const OAK_RETCODE status =
            oakErrorInfoEx(handle, nullptr, &info, nullptr, nullptr, nullptr, nullptr, nullptr);
        return std::to_string(status) + " " + (info != nullptr ? info : "");
    }
};

TEST(RowForms, ReportMisuseUnderTheirOwnNames) {
    const oaktest::Catalog catalog(three_ints());
    oaktest::Tag tag;
    Reported error(nullptr);
    RowBench row(catalog.table("t"), nullptr, error.handle);
    EXPECT_EQ(row_convert(&row.row_, OAK_ROW_FORMAT_VALUE), eNOTIMPLEMENTED);
    EXPECT_EQ(error.last(), std::to_string(eNOTIMPLEMENTED) + " row_convert");
    EXPECT_EQ(row_convert(&row.row_, static_cast<OAK_ROW_FORMAT>(9)), eSYS_ERROR);
    EXPECT_EQ(error.last(), std::to_string(eSYS_ERROR) + " row_convert");
    OAK_ROW valued = row.row_;
    valued.format = OAK_ROW_FORMAT_VALUE;
    EXPECT_EQ(row_pack_compact(&valued, row.encoder_), eNOTIMPLEMENTED);
    EXPECT_EQ(error.last(), std::to_string(eNOTIMPLEMENTED) + " row_pack_compact");
    EXPECT_EQ(row_convert(&valued, OAK_ROW_FORMAT_BUFFER), eSYS_ERROR);
    EXPECT_EQ(error.last(), std::to_string(eSYS_ERROR) + " row_convert_to_buffer");
    EXPECT_EQ(row_convert(&valued, OAK_ROW_FORMAT_COMPACT), eNOTIMPLEMENTED);
    row_free(&valued); // nothing to free in this form
    valued.format = static_cast<OAK_ROW_FORMAT>(0);
    EXPECT_EQ(row_pack_compact(&valued, row.encoder_), eNOTIMPLEMENTED);
}

// ---- With a database ---------------------------------------------------------

class RowOfDatabase : public testing::Test {
  protected:
    void SetUp() override {
        pool_tag_.may_keep_blocks(); // the pool's own
        ASSERT_EQ(osl_poolCreateEx(pool_tag_, OSL_POOL_FIXED_SIZE, 0, nullptr, nullptr, nullptr,
                                   &dbi_.bufferPool),
                  sOKAY);
    }
    oaktest::Tag pool_tag_;
    DB_INSTANCE dbi_{OAK_ROW_FORMAT_COMPACT, nullptr};
    oaktest::Catalog catalog_{three_ints()};
};

TEST_F(RowOfDatabase, KeepsItsStreamWhereTheDatabaseSaysSo) {
    RowBench row(catalog_.table("t"), &dbi_);
    ASSERT_EQ(row.unpack_compact("000003000201800100"), sOKAY);
    EXPECT_EQ(row.row_.format, OAK_ROW_FORMAT_COMPACT);
    EXPECT_EQ(row.row_.row_data, nullptr);
    const OAK_BUFFER *stream = row.row_.data.c.buffer;
    ASSERT_EQ(row_convert(&row.row_, OAK_ROW_FORMAT_BUFFER), sOKAY);
    EXPECT_EQ(row.get<int32_t>(2), 64);
    void *returned =
        osl_poolGetMem(dbi_.bufferPool, sizeof(OAK_BUFFER), OSL_MEM_PLAIN, 0, __FILE__, __LINE__);
    EXPECT_EQ(returned, stream) << "its buffer is the pool's";
    osl_poolPut(dbi_.bufferPool, returned);
    ASSERT_EQ(row_convert(&row.row_, OAK_ROW_FORMAT_COMPACT), sOKAY);
    EXPECT_EQ(row.compact(), "000003000201800100");
}

TEST_F(RowOfDatabase, IsDecodedWhereTheDatabaseSaysSo) {
    dbi_.row_format = OAK_ROW_FORMAT_BUFFER;
    RowBench row(catalog_.table("t"), &dbi_);
    ASSERT_EQ(row.unpack_compact("000003000201800100"), sOKAY);
    EXPECT_EQ(row.row_.format, OAK_ROW_FORMAT_BUFFER);
}

TEST_F(RowOfDatabase, IsRefusedInTheValueForm) {
    Reported error(nullptr);
    dbi_.row_format = OAK_ROW_FORMAT_VALUE;
    RowBench row(catalog_.table("t"), &dbi_, error.handle);
    EXPECT_EQ(row.unpack_compact("000000"), eNOTIMPLEMENTED);
    EXPECT_EQ(error.last(), std::to_string(eNOTIMPLEMENTED) + " row_unpack_compact");
    dbi_.row_format = static_cast<OAK_ROW_FORMAT>(7);
    EXPECT_EQ(row.unpack_compact("000000"), eNOTIMPLEMENTED);
}

TEST_F(RowOfDatabase, ReportsMemoryThatEndsUnderTheNamesOfItsSteps) {
    if (!oaktest::faults_are_injected()) {
        GTEST_SKIP() << "needs fault injection";
    }
#ifdef OSL_FAULT_INJECTION
    Reported error(nullptr);
    RowBench row(catalog_.table("t"), &dbi_, error.handle);
    const auto unpack = [&] {
        return row_unpack_compact(&row.row_, row.decoder_, 1, row.ti_, row.tag_, error.handle,
                                  &dbi_);
    };
    row.load(oaktest::unhex("000000"));
    row_free(&row.row_);
    osl_faultArm(OSL_FAULT_MEMORY, 1, OAK_FALSE);
    EXPECT_EQ(unpack(), eNOMEMORY);
    osl_faultDisarm(OSL_FAULT_MEMORY);
    EXPECT_EQ(error.last(), std::to_string(eNOMEMORY) + " row_compact_init_buffer");
    osl_faultArm(OSL_FAULT_MEMORY, 2, OAK_FALSE);
    EXPECT_EQ(unpack(), eNOMEMORY);
    osl_faultDisarm(OSL_FAULT_MEMORY);
    EXPECT_EQ(error.last(), std::to_string(eNOMEMORY) + " row_unpack_compact_compact");
    row.row_ = OAK_ROW{};
    row.row_.format = OAK_ROW_FORMAT_BUFFER;
    row.clear();
    row.row_.dbi = nullptr;
    osl_faultArm(OSL_FAULT_MEMORY, 1, OAK_FALSE);
    EXPECT_EQ(row_convert(&row.row_, OAK_ROW_FORMAT_COMPACT), eNOMEMORY);
    osl_faultDisarm(OSL_FAULT_MEMORY);
    EXPECT_EQ(error.last(), std::to_string(eNOMEMORY) + " row_convert_to_compact");
    row.row_.dbi = &dbi_;
#endif
}

// ---- Arguments and memory ----------------------------------------------------

TEST(Row, RefusesNullArguments) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    OAK_ROW other{};
    EXPECT_EQ(row_pack_compact(nullptr, row.encoder_), eINVNULLARG);
    EXPECT_EQ(row_pack_compact(&row.row_, nullptr), eINVNULLARG);
    EXPECT_EQ(row_pack_expanded(nullptr, row.encoder_), eINVNULLARG);
    EXPECT_EQ(row_pack_expanded(&row.row_, nullptr), eINVNULLARG);
    using Unpack = OAK_RETCODE (*)(OAK_ROW *, B_DECODER, OAK_ROWID_T, SCH_TBL_INFO_C, OSL_MEMTAG,
                                   OAK_ERR, DB_INSTANCE *);
    for (const Unpack unpack :
         {row_unpack_compact, row_unpack_compact_buffer, row_unpack_expanded}) {
        EXPECT_EQ(unpack(nullptr, row.decoder_, 1, row.ti_, row.tag_, nullptr, nullptr),
                  eINVNULLARG);
        EXPECT_EQ(unpack(&other, nullptr, 1, row.ti_, row.tag_, nullptr, nullptr), eINVNULLARG);
        EXPECT_EQ(unpack(&other, row.decoder_, 1, nullptr, row.tag_, nullptr, nullptr),
                  eINVNULLARG);
    }
    EXPECT_EQ(row_convert(nullptr, OAK_ROW_FORMAT_BUFFER), eINVNULLARG);
    row_free(nullptr);
}

TEST(Row, LeavesNothingBehindWhenMemoryEnds) {
    const oaktest::Catalog catalog(linked_tables());
    const SCH_TBL_INFO ti = catalog.table("t");
    oaktest::Tag tag;
    const Bytes stream = oaktest::unhex("02 00010203 0180010000 01 00ac02 010002 00");
    const uint64_t runs = oaktest::sweep_faults(
        oaktest::Resource::memory, {eNOMEMORY, eSYS_ERROR}, [&]() -> OAK_RETCODE {
            OAK_BUFFER buffer;
            b_buffInit(&buffer, tag);
            b_buffSetStatic(&buffer, stream.data(), stream.size());
            B_DECODER decoder = nullptr;
            OAK_RETCODE status =
                b_decoderCreate(b_buffInputByte, b_buffInputBytesBulk, &buffer, tag, &decoder);
            OAK_ROW row{};
            row.format = OAK_ROW_FORMAT_BUFFER;
            if (status == sOKAY) {
                status = row_unpack_compact(&row, decoder, 1, ti, tag, nullptr, nullptr);
            }
            if (status == sOKAY) {
                status = row_convert(&row, OAK_ROW_FORMAT_COMPACT);
                EXPECT_EQ(row.format,
                          status == sOKAY ? OAK_ROW_FORMAT_COMPACT : OAK_ROW_FORMAT_BUFFER);
            }
            if (status == sOKAY) {
                status = row_convert(&row, OAK_ROW_FORMAT_BUFFER);
                EXPECT_EQ(row.format,
                          status == sOKAY ? OAK_ROW_FORMAT_BUFFER : OAK_ROW_FORMAT_COMPACT);
            }
            row_free(&row);
            b_decoderDestroy(decoder);
            return status;
        });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

TEST(ExpandedRow, LeavesNothingBehindWhenMemoryEnds) {
    const oaktest::Catalog catalog(linked_tables());
    RowBench row(catalog.table("t"));
    row.load(oaktest::unhex(row.expanded()));
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        OAK_ROW other{};
        const OAK_RETCODE status =
            row_unpack_expanded(&other, row.decoder_, 1, row.ti_, row.tag_, nullptr, nullptr);
        EXPECT_EQ(other.row_data != nullptr, status == sOKAY);
        row_free(&other);
        return status;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

TEST(CompactRow, TellsWhichColumnsAreStorable) {
    const oaktest::Catalog catalog(linked_tables());
    RowBench row(catalog.table("t"));
    const SCH_COL_INFO_C plain = sch_get_col_by_index(row.ti_, 0);
    const SCH_COL_INFO_C foreign = sch_get_col_by_index(row.ti_, 1);
    row.set<int32_t>(0, 1);
    row.set<int32_t>(1, 1);
    EXPECT_TRUE(calc_storable_buffer(plain, &row.row_));
    EXPECT_FALSE(calc_storable_buffer(foreign, &row.row_));
    row.row_.data.b.col_data[plain->has_value_off] = 0; // the byte overrules the status
    EXPECT_FALSE(calc_storable_buffer(plain, &row.row_));
    row.row_.data.b.col_data[plain->has_value_off] = 1;
    for (const VAL_STATUS status : {vsNOVAL, vsNULL, vsAUTO, vsERROR}) {
        row.row_.data.b.col_status[0] = status;
        EXPECT_FALSE(calc_storable_buffer(plain, &row.row_));
    }
}

TEST(CompactRow, HasNoPlaceForADroppedColumn) {
    const oaktest::Catalog catalog(three_ints());
    const SCH_TBL_INFO ti = catalog.table("t");
    const SCH_COL_INFO dropped = sch_get_col_by_index(ti, 1);
    ASSERT_EQ(sch_tbl_col_drop(dropped), sOKAY);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    RowBench row(ti);
    EXPECT_FALSE(calc_storable_buffer(dropped, &row.row_));
}

// A table may count columns that it lacks: one without a name was never laid out
// and reads as a dropped one, and a number without a column stands for nothing.
TEST(CompactRow, PassesOverColumnsThatAreCountedAndNotThere) {
    const std::string unnamed = R"({"colid": 1, "type": {"data_type": "int64"}},)";
    const oaktest::Catalog with_unnamed(
        one_table(int32_column(0) + "," + unnamed + int32_column(2), 3));
    RowBench row(with_unnamed.table("t"));
    ASSERT_EQ(row.unpack_compact("0000 0300 02 04 06 00"), sOKAY);
    EXPECT_EQ(row.get<int32_t>(0), 1);
    EXPECT_EQ(row.get<int32_t>(2), 3);
    EXPECT_EQ(row.status(1), vsNOVAL);
    EXPECT_EQ(row.compact(), "0000"
                             "010002"
                             "010206"
                             "00");

    const oaktest::Catalog only_unnamed(
        one_table(R"({"colid": 0, "type": {"data_type": "char", "length": 100}})", 1));
    RowBench empty(only_unnamed.table("t"));
    EXPECT_EQ(empty.ti_->byte_len, 0u);
    ASSERT_EQ(empty.unpack_compact("0000 0100 03616263 00"), sOKAY);
    EXPECT_EQ(empty.compact(), "000000");

    const std::string text = one_table(int32_column(0), 1);
    for (const char *counts : {R"("nocols": 9, "nextcol": 1, "maxcols": 1)",
                               R"("nocols": 9, "nextcol": 4, "maxcols": 4)"}) {
        const std::string from = R"("nocols": 1, "nextcol": 1, "maxcols": 1)";
        std::string more = text;
        more.replace(more.find(from), from.size(), counts);
        const oaktest::Catalog catalog(more);
        RowBench nine(catalog.table("t"));
        ASSERT_EQ(nine.unpack_compact("0000 0100 02 00"), sOKAY);
        EXPECT_EQ(nine.get<int32_t>(0), 1);
        EXPECT_EQ(nine.compact(), "0000"
                                  "010002"
                                  "00");
        EXPECT_EQ(nine.unpack_compact("0000 0200 02 04 00"), eDBCORRUPTED);
    }
}

TEST(CompactRow, HasNoStreamForADecimalOfMoreDigitsThanThereAre) {
    const oaktest::Catalog catalog(one_table(
        R"({"colid": 0, "name": "d", "type": {"data_type": "decimal", "length": 33}})", 1));
    RowBench row(catalog.table("t"));
    EXPECT_EQ(row.unpack_compact("0000 0100 4000000000000000000000000000000001 00 "
                                 "0000000000000000000000000000"),
              eINVBCD);
    row.clear();
    row.mark(0, vsOKAY); // the zero of a cleared row
    b_encoderReset(row.encoder_);
    EXPECT_EQ(row_pack_compact(&row.row_, row.encoder_), eINVBCD);
}

TEST(CompactRow, WritesOneGroupByItself) {
    const oaktest::Catalog catalog(three_ints());
    const SCH_TBL_INFO ti = catalog.table("t");
    RowBench row(ti);
    for (OAK_COL_INDEX p = 0; p < 3; ++p) {
        row.set<int32_t>(p, p + 1);
    }
    const auto group = [&row](OAK_COL_INDEX first, OAK_COL_INDEX size) {
        b_encoderReset(row.encoder_);
        EXPECT_EQ(row_pack_compact_column_group_buffer(first, size, &row.row_, row.encoder_),
                  sOKAY);
        return oaktest::hex(row.buffer_.data, row.buffer_.len);
    };
    EXPECT_EQ(group(0, 3), "0300020406");
    EXPECT_EQ(group(1, 1), "010104"); // no more than it was told
    EXPECT_EQ(group(1, 2), "02010406");
    ASSERT_EQ(sch_tbl_col_drop(sch_get_col_by_index(ti, 0)), sOKAY);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    RowBench two(ti); // columns 1 and 2 at the positions 0 and 1
    two.set<int32_t>(0, 5);
    two.set<int32_t>(1, 6);
    EXPECT_EQ(row_pack_compact_column_group_buffer(2, 1, &two.row_, two.encoder_), sOKAY);
    EXPECT_EQ(oaktest::hex(two.buffer_.data, two.buffer_.len), "01020c");
}

TEST(CompactRow, FollowsForeignKeysAndDropsWithoutAnotherFinalization) {
    const oaktest::Catalog catalog(linked_tables());
    const SCH_TBL_INFO ti = catalog.table("t");
    RowBench row(ti);
    row.set<int32_t>(0, 1);
    row.set<int32_t>(1, 2);
    const std::string links = "02 00000000 01000000 00";
    const auto stream = [&links](const char *columns) {
        const Bytes bytes = oaktest::unhex(links + columns);
        return oaktest::hex(bytes.data(), bytes.size());
    };
    EXPECT_EQ(row.compact(), stream("010002 00"));
    ASSERT_EQ(sch_col_set_ref(sch_get_col_by_index(ti, 0), 0), sOKAY); // both are foreign keys
    EXPECT_EQ(row.compact(), stream("00"));
    ASSERT_EQ(sch_ref_drop(ti, 0), sOKAY); // neither is
    EXPECT_EQ(row.compact(), stream("02000204 00"));
    ASSERT_EQ(sch_tbl_col_drop(sch_get_col_by_index(ti, 1)), sOKAY);
    EXPECT_EQ(row.compact(), stream("010002 00"));
    ASSERT_EQ(row.unpack_compact(stream("02000204 00")), sOKAY); // the second is thrown away
    EXPECT_EQ(row.get<int32_t>(0), 1);
}

TEST(CompactRow, RefusesAValueOfAColumnThatNeverHadAType) {
    std::string text = one_table(R"({"colid": 0, "domid": "0"},)" + int32_column(1), 2);
    const std::string tables = R"("tables")";
    text.insert(text.find(tables), R"("maxdoms": 1, "domains": [{"domid": 0}], )");
    const oaktest::Catalog catalog(text);
    RowBench row(catalog.table("t"));
    ASSERT_EQ(row.unpack_compact("0000 0101 02 00"), sOKAY);
    EXPECT_EQ(row.unpack_compact("0000 0100 02 00"), eDBCORRUPTED);
}

TEST(CompactRow, CountsNoJoinOfADroppedReference) {
    std::string text = linked_tables();
    const std::string from = R"("norefs": 1, "maxrefs": 1)";
    text.replace(text.find(from), from.size(), R"("norefs": 2, "maxrefs": 2)");
    const std::string refs = R"("refs": [)";
    text.insert(text.find(refs) + refs.size(), R"({"refid": 1, "name": "second", "otabid": "1",
        "pkeyid": "0", "nocols": 0},)");
    const oaktest::Catalog catalog(text);
    const SCH_TBL_INFO ti = catalog.table("t");
    {
        RowBench row(ti);
        row.row_.joins[0].owner = 5;
        row.row_.joins[1].owner = 6;
        EXPECT_EQ(row.compact(), "02"
                                 "0000000001000000"
                                 "02"
                                 "00050106"
                                 "00");
    }
    ASSERT_EQ(sch_ref_drop(ti, 0), sOKAY);
    ASSERT_EQ(sch_tbl_finalize(ti, OAK_FALSE), sOKAY);
    RowBench row(ti);
    row.row_.joins[0].owner = 5; // the place of the dropped one
    EXPECT_EQ(row.compact(), "02"
                             "0000000001000000"
                             "00"
                             "00");
    ASSERT_EQ(row.unpack_compact("02 00000000 01000000 02 0005 0106 00"), sOKAY);
    EXPECT_EQ(row.row_.joins[0].owner, 0u);
}

TEST(RowForms, RefuseToPackACompactRowThatWasFreed) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    ASSERT_EQ(row_convert(&row.row_, OAK_ROW_FORMAT_COMPACT), sOKAY);
    row_free(&row.row_);
    EXPECT_EQ(row_pack_compact(&row.row_, row.encoder_), eINVNULLARG);
    EXPECT_EQ(row_convert(&row.row_, OAK_ROW_FORMAT_BUFFER), eSYS_ERROR);
}

TEST(ExpandedRow, TakesASourceThatDeliversTooLittleForOneThatEnds) {
    const oaktest::Catalog catalog(three_ints());
    RowBench row(catalog.table("t"));
    const auto half = [](OAK_INPUT_CTX ctx, size_t requested, void *data, size_t *got) {
        return b_buffInputBytesBulk(ctx, requested / 2, data, got);
    };
    row.load(Bytes(40));
    B_DECODER decoder = nullptr;
    ASSERT_EQ(b_decoderCreate(b_buffInputByte, half, &row.buffer_, row.tag_, &decoder), sOKAY);
    OAK_ROW other{};
    EXPECT_EQ(row_unpack_expanded(&other, decoder, 1, row.ti_, row.tag_, nullptr, nullptr), eEOD);
    b_decoderDestroy(decoder);
}

TEST(CompactRow, ReturnsTheEncodersFailureAtEveryByte) {
    const oaktest::Catalog catalog(linked_tables());
    RowBench row(catalog.table("t"));
    row.set<int32_t>(0, 300);
    row.row_.joins[0].owner = 300;
    const size_t length = oaktest::unhex(row.compact()).size();
    static size_t room;
    const auto emit = [](OAK_OUTPUT_CTX, uint32_t) { return room-- > 0 ? sOKAY : eBADWRITE; };
    for (size_t fails_at = 0; fails_at < length; ++fails_at) {
        B_ENCODER encoder = nullptr;
        ASSERT_EQ(b_encoderCreate(emit, nullptr, nullptr, row.tag_, &encoder), sOKAY);
        room = fails_at;
        EXPECT_EQ(row_pack_compact(&row.row_, encoder), eBADWRITE) << fails_at;
        b_encoderDestroy(encoder);
    }
}

} // namespace
