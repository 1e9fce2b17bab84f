// The catalog's words: each table as it is promised, in its order, both ways.
#include "schema_words.h"

#include <string>
#include <utility>
#include <vector>

#include "schema_fixture.h"

namespace {

using namespace oak::schema;

template <class Value>
using Rows = std::vector<std::pair<std::string, Value>>;

/// The table is exactly `rows`; each word gives the number of its first row, in
/// any case, and each number the word of its first row.
template <class Value, size_t kCount>
void expect_table(const SCHEMA_ITEM<Value> (&items)[kCount], const Rows<Value> &rows) {
    ASSERT_EQ(kCount, rows.size());
    for (size_t n = 0; n < kCount; ++n) {
        SCOPED_TRACE(rows[n].first);
        EXPECT_EQ(items[n].name, rows[n].first);
        EXPECT_EQ(items[n].value, rows[n].second);
        EXPECT_EQ(word_of(items, rows[n].second), rows[n].first);
        const auto first = std::find_if(
            rows.begin(), rows.end(), [&](const auto &row) { return row.first == rows[n].first; });
        std::string upper = rows[n].first;
        std::transform(upper.begin(), upper.end(), upper.begin(), ::toupper);
        ASSERT_NE(item_of(items, upper.c_str()), nullptr);
        EXPECT_EQ(item_of(items, upper.c_str())->value, first->second);
    }
    EXPECT_EQ(word_of(items, static_cast<Value>(12345)), nullptr);
    EXPECT_EQ(item_of(items, "no such word"), nullptr);
    EXPECT_EQ(item_of(items, ""), nullptr);
}

TEST(CatalogWords, OfEncryptions) {
    expect_table(encryption_items, Rows<OAK_ENC_TYPE>{{"none", OAK_ENC_NONE},
                                                      {"xor", OAK_ENC_XOR},
                                                      {"aes128", OAK_ENC_AES128},
                                                      {"aes192", OAK_ENC_AES192},
                                                      {"aes256", OAK_ENC_AES256}});
    EXPECT_EQ(word_of(encryption_items, OAK_ENC_DEFAULT), nullptr);
}

TEST(CatalogWords, OfDrawerTypes) {
    expect_table(drawer_type_items, Rows<OAK_DRAWER_TYPE>{{"table", OAK_DRAWER_TABLE},
                                                          {"btree", OAK_DRAWER_BTREE},
                                                          {"rtree", OAK_DRAWER_RTREE},
                                                          {"hash", OAK_DRAWER_HASH},
                                                          {"ref", OAK_DRAWER_REF},
                                                          {"blob", OAK_DRAWER_BLOB}});
}

TEST(CatalogWords, OfTableTypes) {
    expect_table(table_type_items, Rows<OAK_TABLE_TYPE>{{"standard", OAK_TABLE_STANDARD},
                                                        {"circular", OAK_TABLE_CIRCULAR},
                                                        {"virtual", OAK_TABLE_VIRTUAL},
                                                        {"temporary", OAK_TABLE_TEMPORARY}});
}

TEST(CatalogWords, OfKeyTypes) {
    expect_table(key_type_items, Rows<OAK_KEY_TYPE>{{"noval", OAK_KEY_TYPE_NOVAL},
                                                    {"nonunique", OAK_KEY_TYPE_NONUNIQUE},
                                                    {"unique", OAK_KEY_TYPE_UNIQUE},
                                                    {"primary", OAK_KEY_TYPE_PRIMARY}});
}

TEST(CatalogWords, OfKeyMethods) {
    expect_table(key_method_items, Rows<OAK_KEY_METHOD>{{"noval", OAK_KEY_METHOD_NOVAL},
                                                        {"rowid", OAK_KEY_METHOD_ROWID},
                                                        {"btree", OAK_KEY_METHOD_BTREE},
                                                        {"hash", OAK_KEY_METHOD_HASH},
                                                        {"avl", OAK_KEY_METHOD_AVL},
                                                        {"rtree", OAK_KEY_METHOD_RTREE},
                                                        {"mono", OAK_KEY_METHOD_MONO},
                                                        {"virtual", OAK_KEY_METHOD_VIRTUAL}});
}

TEST(CatalogWords, OfReferenceActions) {
    expect_table(ref_action_items, Rows<OAK_REF_ACTION>{{"noval", OAK_REF_ACTION_NOVAL},
                                                        {"restrict", OAK_REF_ACTION_RESTRICT},
                                                        {"cascade", OAK_REF_ACTION_CASCADE},
                                                        {"set null", OAK_REF_ACTION_SET_NULL}});
}

TEST(CatalogWords, OfDirections) {
    expect_table(direction_items, Rows<OAK_DIRECTION>{{"asc", OAK_FORWARD}, {"desc", OAK_REVERSE}});
}

TEST(CatalogWords, OfItemFormats) {
    expect_table(item_format_items, Rows<OAK_ITEM_FORMAT>{{"compact", OAK_ITEM_FORMAT_COMPACT},
                                                          {"expanded", OAK_ITEM_FORMAT_EXPANDED}});
}

TEST(CatalogWords, OfDataTypes) {
    expect_table(data_type_items, Rows<OAK_TYPE>{{"bool", OAK_BOOL},
                                                 {"int8", OAK_INT8},
                                                 {"uint8", OAK_UINT8},
                                                 {"int16", OAK_INT16},
                                                 {"uint16", OAK_UINT16},
                                                 {"int32", OAK_INT32},
                                                 {"uint32", OAK_UINT32},
                                                 {"int64", OAK_INT64},
                                                 {"uint64", OAK_UINT64},
                                                 {"float", OAK_FLOAT},
                                                 {"double", OAK_DOUBLE},
                                                 {"decimal", OAK_BCD},
                                                 {"date", OAK_DATE},
                                                 {"time", OAK_TIME},
                                                 {"timetz", OAK_TIMETZ},
                                                 {"timestamp", OAK_TIMESTAMP},
                                                 {"timestamptz", OAK_TIMESTAMPTZ},
                                                 {"rowid", OAK_ROWID},
                                                 {"uuid", OAK_UUID},
                                                 {"char", OAK_CHAR},
                                                 {"varchar", OAK_VARCHAR},
                                                 {"wchar", OAK_WCHAR},
                                                 {"wchar", OAK_WCHAR_UTF8},
                                                 {"wvarchar", OAK_WVARCHAR},
                                                 {"wvarchar", OAK_WVARCHAR_UTF8},
                                                 {"binary", OAK_BINARY},
                                                 {"varbinary", OAK_VARBINARY},
                                                 {"blob", OAK_BLOB},
                                                 {"clob", OAK_CLOB},
                                                 {"wclob", OAK_WCLOB_UTF8},
                                                 {"wclob", OAK_WCLOB}});
}

// The vocabulary's numbers are stored.
TEST(CatalogWords, StandForFixedNumbers) {
    EXPECT_EQ(OAK_ENC_NONE, 0);
    EXPECT_EQ(OAK_ENC_XOR, 1);
    EXPECT_EQ(OAK_ENC_AES128, 2);
    EXPECT_EQ(OAK_ENC_AES192, 3);
    EXPECT_EQ(OAK_ENC_AES256, 4);
    EXPECT_EQ(OAK_ENC_DEFAULT, 5);
    EXPECT_EQ(OAK_DRAWER_BTREE, 0);
    EXPECT_EQ(OAK_DRAWER_HASH, 1);
    EXPECT_EQ(OAK_DRAWER_REF, 2);
    EXPECT_EQ(OAK_DRAWER_BLOB, 3);
    EXPECT_EQ(OAK_DRAWER_TABLE, 4);
    EXPECT_EQ(OAK_DRAWER_RTREE, 5);
    EXPECT_EQ(OAK_TABLE_STANDARD, 0);
    EXPECT_EQ(OAK_TABLE_CIRCULAR, 1);
    EXPECT_EQ(OAK_TABLE_VIRTUAL, 2);
    EXPECT_EQ(OAK_TABLE_TEMPORARY, 3);
    EXPECT_EQ(OAK_KEY_TYPE_NOVAL, 0);
    EXPECT_EQ(OAK_KEY_TYPE_NONUNIQUE, 1);
    EXPECT_EQ(OAK_KEY_TYPE_UNIQUE, 2);
    EXPECT_EQ(OAK_KEY_TYPE_PRIMARY, 3);
    EXPECT_EQ(OAK_KEY_METHOD_NOVAL, 0);
    EXPECT_EQ(OAK_KEY_METHOD_ROWID, 1);
    EXPECT_EQ(OAK_KEY_METHOD_BTREE, 2);
    EXPECT_EQ(OAK_KEY_METHOD_HASH, 3);
    EXPECT_EQ(OAK_KEY_METHOD_AVL, 4);
    EXPECT_EQ(OAK_KEY_METHOD_RTREE, 5);
    EXPECT_EQ(OAK_KEY_METHOD_MONO, 6);
    EXPECT_EQ(OAK_KEY_METHOD_VIRTUAL, 7);
    EXPECT_EQ(OAK_REF_ACTION_NOVAL, 0);
    EXPECT_EQ(OAK_REF_ACTION_RESTRICT, 1);
    EXPECT_EQ(OAK_REF_ACTION_CASCADE, 2);
    EXPECT_EQ(OAK_REF_ACTION_SET_NULL, 3);
    EXPECT_EQ(OAK_TRIG_WHENEVER, 0);
    EXPECT_EQ(OAK_TRIG_BEFORE, 1);
    EXPECT_EQ(OAK_TRIG_AFTER, 2);
    EXPECT_EQ(OAK_TRIG_INSERT, 0);
    EXPECT_EQ(OAK_TRIG_DELETE, 1);
    EXPECT_EQ(OAK_TRIG_UPDATE, 2);
    EXPECT_EQ(OAK_TRIG_OLDNEW, 0);
    EXPECT_EQ(OAK_TRIG_OLD, 1);
    EXPECT_EQ(OAK_TRIG_NEW, 2);
    EXPECT_EQ(OAK_ITEM_FORMAT_COMPACT, 16);
    EXPECT_EQ(OAK_ITEM_FORMAT_EXPANDED, 32);
    EXPECT_EQ(OAK_COL_USAGE_KEY, 1);
    EXPECT_EQ(OAK_COL_USAGE_REF, 2);
    EXPECT_EQ(OAK_COL_USAGE_SORT, 4);
    EXPECT_EQ(OAK_INDEX_NONE, 65535);
    EXPECT_EQ(OAK_DRAWER_NONE, 4294967295u);
    EXPECT_EQ(OAK_FORWARD, 1);
    EXPECT_EQ(OAK_REVERSE, -1);
}

} // namespace
