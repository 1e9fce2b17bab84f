// The catalog reader: each member of each object with its effect, its kind and
// its bounds; the order that members need; the final pass; refusals and where
// they stand.
#include "schema_load.h"

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "catalog.h"
#include "schema.h"
#include "schema_drop.h"
#include "schema_structs.h"
#include "schema_type.h"

namespace {

using oaktest::one_table;

/// Every member of every object once, in the order of the catalog's grammar.
const char kFull[] = R"({"database": {
  "catver": 7, "dbver": 8, "name": "shop", "encryption": "AES128",
  "maxdrawers": 12, "nodrawers": 11, "nextdrawer": 11, "nodoms": 2, "maxdoms": 3,
  "maxtabs": 4, "notabs": 3, "nexttab": 3,
  "drawers": [
    {"dwrid": 5, "tabid": "1", "srcid": 1, "type": "table"},
    {"dwrid": 6, "tabid": "1", "srcid": 0, "type": "BTree"},
    {"dwrid": 7, "tabid": "2", "srcid": 2, "type": "table"},
    {"dwrid": 8, "tabid": "2", "srcid": 0, "type": "ref"},
    {"dwrid": 9, "tabid": "2", "srcid": 2, "type": "blob"},
    {"dwrid": 10, "tabid": "1", "srcid": 1, "type": "hash"}],
  "domains": [
    {"domid": 0, "name": "money", "type": {"data_type": "decimal", "length": 10, "scale": 2,
        "checkStr": "value >= 0", "checkName": "positive"},
     "width": 12, "format": "#,##0.00", "defValue": "1.50"},
    {"domid": 1, "name": "notes", "type": {"data_type": "clob"}, "defNull": true}],
  "tables": [
    {"tabid": 1, "dwrid": 5, "type": "standard", "name": "customer",
     "checkStr": "id > 0", "checkName": "ids", "maxrows": 0,
     "nocols": 3, "nextcol": 3, "maxcols": 4, "nokeys": 2, "nextkey": 2, "maxkeys": 3,
     "columns": [
       {"colid": 0, "name": "id", "keyid": 0, "usage": 65537, "not_null": "id_set", "width": 8,
        "format": "0", "type": {"data_type": "int32"}},
       {"colid": 1, "name": "code", "type": {"data_type": "char", "length": 5}, "defValue": "x"},
       {"colid": 2, "name": "marks", "defNull": false,
        "type": {"data_type": "int16", "noelts": 4}}],
     "keys": [
       {"keyid": 0, "dwrid": 6, "name": "pk", "type": "primary", "method": "btree",
        "restrict": true, "refcount": 1, "nocols": 1, "cols": [{"colid": "0", "order": "asc"}]},
       {"keyid": 1, "dwrid": 10, "name": "byid", "type": "unique", "method": "hash",
        "nocols": 2, "cols": [{"colid": "1", "order": "desc"}, {"colid": "0"}]}]},
    {"tabid": 2, "dwrid": 7, "type": "circular", "name": "visit", "maxrows": 100,
     "nocols": 4, "nextcol": 4, "maxcols": 4, "norefs": 1, "maxrefs": 1,
     "columns": [
       {"colid": 0, "name": "day", "type": {"data_type": "date"}},
       {"colid": 1, "name": "who", "refid": 0, "r_tabid": "1", "r_colid": "0",
        "type": {"data_type": "int32"}},
       {"colid": 2, "name": "text", "domid": "1", "dwrid": 9},
       {"colid": 3, "name": "paid", "domid": "0"}],
     "refs": [
       {"refid": 0, "dwrid": 8, "name": "visitor", "otabid": "1", "pkeyid": "0",
        "on_upd": "cascade", "on_del": "set null", "nocols": 1, "nosortcols": 1, "cols": ["1"],
        "sortcols": [{"colid": "0", "order": "desc"}]}]}]}})";

std::string replaced(std::string text, const std::string &from, const std::string &to) {
    const size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << "not in the catalog: " << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

OAK_RETCODE load(const std::string &text, SCH_LOAD_WHERE *where = nullptr,
                 OAK_BOOL_T unicode_enabled = OAK_FALSE) {
    SCH_INFO schema = nullptr;
    const OAK_RETCODE status =
        sch_read_database_schema_at(&schema, nullptr, text.c_str(), unicode_enabled, where);
    EXPECT_EQ(schema != nullptr, status == sOKAY);
    sch_destroy(schema);
    return status;
}

// ---- Effects -----------------------------------------------------------------

TEST(Catalog, SetsTheDatabase) {
    const oaktest::Catalog catalog(kFull);
    const SCH_INFO sch = catalog.schema();
    EXPECT_EQ(sch_catver(sch), 7u);
    EXPECT_EQ(sch_dbver(sch), 8u);
    EXPECT_STREQ(sch_name(sch), "shop");
    EXPECT_STREQ(sch_encryption_text(sch), "aes128");
    EXPECT_EQ(sch_max_drawer(sch), 12u);
    EXPECT_EQ(sch_num_drawers(sch), 11u);
    EXPECT_EQ(sch_next_drawer(sch), 11u);
    EXPECT_EQ(sch_num_domains(sch), 2);
    EXPECT_EQ(sch_next_domain(sch), 3);
    EXPECT_EQ(sch_max_table(sch), 4);
    EXPECT_EQ(sch_num_tables(sch), 3);
    EXPECT_EQ(sch_next_table(sch), 3);
    EXPECT_EQ(sch_num_refs(sch), 1u);
}

TEST(Catalog, SetsDrawersAndDomains) {
    const oaktest::Catalog catalog(kFull);
    const SCH_DRAWER_INFO_C drawer = sch_drawer(catalog.schema(), 9);
    ASSERT_NE(drawer, nullptr);
    EXPECT_EQ(sch_drawer_type(drawer), OAK_DRAWER_BLOB);
    EXPECT_EQ(sch_drawer_src_table_id(drawer), 2);
    EXPECT_EQ(sch_drawer_src_ndx(drawer), 2);
    const SCH_DOMAIN_INFO_C money = sch_domain(catalog.schema(), 0);
    ASSERT_NE(money, nullptr);
    EXPECT_STREQ(sch_dom_name(money), "money");
    EXPECT_EQ(sch_dom_data_type(money), OAK_BCD);
    EXPECT_EQ(sch_type_prec(sch_dom_type_c(money)), 10);
    EXPECT_EQ(sch_type_scale(sch_dom_type_c(money)), 2);
    EXPECT_STREQ(sch_dom_check_str(money), "value >= 0");
    EXPECT_STREQ(sch_dom_check_name(money), "positive");
    EXPECT_EQ(sch_dom_width(money), 12);
    EXPECT_STREQ(sch_dom_format(money), "#,##0.00");
    EXPECT_STREQ(sch_dom_defstr(money), "1.50");
    EXPECT_EQ(sch_dom_def(money)->status, vsOKAY);
    EXPECT_EQ(sch_dom_def(sch_domain(catalog.schema(), 1))->status, vsNULL);
}

TEST(Catalog, SetsTablesAndColumns) {
    const oaktest::Catalog catalog(kFull);
    const SCH_TBL_INFO customer = catalog.table("customer");
    EXPECT_EQ(sch_tbl_type(customer), OAK_TABLE_STANDARD);
    EXPECT_EQ(sch_tbl_drawer(customer), 5u);
    EXPECT_STREQ(sch_tbl_check_str(customer), "id > 0");
    EXPECT_STREQ(sch_tbl_check_name(customer), "ids");
    EXPECT_EQ(sch_tbl_offset(customer), 1);
    EXPECT_EQ(sch_tbl_offset(catalog.table("visit")), 2);
    EXPECT_EQ(sch_tbl_max_rows(catalog.table("visit")), 100u);
    EXPECT_TRUE(sch_tbl_circular(catalog.table("visit")));
    EXPECT_EQ(sch_tbl_num_cols(customer), 3);
    EXPECT_EQ(sch_tbl_max_cols(customer), 4);
    const SCH_COL_INFO_C id = sch_get_col_by_index(customer, 0);
    EXPECT_STREQ(sch_col_name(id), "id");
    EXPECT_EQ(sch_col_key_ndx(id), 0);
    EXPECT_EQ(sch_col_key(id), sch_get_key_by_index(customer, 0));
    EXPECT_TRUE(sch_col_not_null(id));
    EXPECT_STREQ(sch_col_not_null_cname(id), "id_set");
    EXPECT_EQ(sch_col_usage(id), 1) << "the low 16 bits";
    EXPECT_EQ(sch_col_width(id), 8);
    EXPECT_STREQ(sch_col_format(id), "0");
    EXPECT_STREQ(sch_col_defstr(sch_get_col_by_index(customer, 1)), "x");
    EXPECT_EQ(sch_col_num_elems(sch_get_col_by_index(customer, 2)), 4);
    const SCH_TBL_INFO visit = catalog.table("visit");
    EXPECT_EQ(sch_col_lob_drawer_ndx(sch_get_col_by_index(visit, 2)), 9u);
    EXPECT_EQ(sch_col_domain(sch_get_col_by_index(visit, 3)), sch_domain(catalog.schema(), 0));
}

TEST(Catalog, SetsKeysReferencesAndTheirLinks) {
    const oaktest::Catalog catalog(kFull);
    const SCH_TBL_INFO customer = catalog.table("customer");
    const SCH_TBL_INFO visit = catalog.table("visit");
    const SCH_KEY_INFO pk = sch_get_key_by_index(customer, 0);
    EXPECT_EQ(sch_tbl_primary_key(customer), pk);
    EXPECT_EQ(sch_key_method(pk), OAK_KEY_METHOD_BTREE);
    EXPECT_EQ(sch_key_drawer_ndx(pk), 6u);
    EXPECT_TRUE(sch_key_restr(pk));
    EXPECT_EQ(sch_key_refcount(pk), 1u);
    const SCH_KEY_INFO byid = sch_get_key_by_index(customer, 1);
    EXPECT_EQ(sch_key_num_elems(byid), 2);
    EXPECT_EQ(sch_elem_dir(sch_key_elem(byid, 0)), OAK_REVERSE);
    EXPECT_EQ(sch_elem_col_index(sch_key_elem(byid, 1)), 0);
    const SCH_REF_INFO ref = sch_get_ref_by_index(visit, 0);
    EXPECT_STREQ(sch_ref_name(ref), "visitor");
    EXPECT_EQ(sch_ref_owner(ref), customer);
    EXPECT_EQ(sch_ref_key(ref), pk);
    EXPECT_EQ(sch_ref_drawer_ndx(ref), 8u);
    EXPECT_EQ(sch_ref_on_update(ref), OAK_REF_ACTION_CASCADE);
    EXPECT_EQ(sch_ref_on_delete(ref), OAK_REF_ACTION_SET_NULL);
    EXPECT_EQ(sch_ref_col(ref, 0), sch_get_col_by_index(visit, 1));
    EXPECT_EQ(sch_sort_dir(sch_ref_sort(ref, 0)), OAK_REVERSE);
    const SCH_COL_INFO_C who = sch_get_col_by_index(visit, 1);
    EXPECT_EQ(sch_col_ref(who), ref);
    EXPECT_EQ(sch_col_reftab(who), customer);
    EXPECT_EQ(sch_col_refcol(who), sch_get_col_by_index(customer, 0));
}

// ---- Kinds and bounds --------------------------------------------------------

struct Change {
    const char *from;
    const char *to;
};

TEST(Catalog, AcceptsEachMemberUpToItsBounds) {
    const Change changes[] = {
        {"\"catver\": 7", "\"catver\": 0"},
        {"\"catver\": 7", "\"catver\": 4294967295"},
        {"\"dbver\": 8", "\"dbver\": 4294967295"},
        {"\"maxdrawers\": 12", "\"maxdrawers\": 4294967295"},
        {"\"nodrawers\": 11", "\"nodrawers\": 4294967295"},
        {"\"refcount\": 1", "\"refcount\": 4294967295"},
        {"\"refcount\": 1", "\"refcount\": 9223372036854775807"},
        {"\"notabs\": 3", "\"notabs\": 65535"},
        {"\"maxdoms\": 3", "\"maxdoms\": 65535"},
        {"\"maxtabs\": 4", "\"maxtabs\": 65535"},
        {"\"maxcols\": 4,", "\"maxcols\": 65535,"},
        {"\"maxkeys\": 3", "\"maxkeys\": 65535"},
        {"\"maxrefs\": 1", "\"maxrefs\": 65535"},
        {"\"width\": 12", "\"width\": 255"},
        {"\"width\": 8", "\"width\": 0"},
        {"\"refcount\": 1", "\"refcount\": 4294967295"},
        {"\"maxrows\": 0", "\"maxrows\": -1"},
        {"\"usage\": 65537", "\"usage\": -1"},
        {"\"length\": 10", "\"length\": 255"},
        {"\"scale\": 2", "\"scale\": 255"},
        {"\"dwrid\": 5, \"type\": \"standard\"", "\"dwrid\": -1, \"type\": \"standard\""},
        {"\"dwrid\": 10, \"name\"", "\"dwrid\": -1, \"name\""},
        {"\"r_tabid\": \"1\"", "\"r_tabid\": \"1 and junk behind it\""},
        {"\"encryption\": \"AES128\"", "\"encryption\": \"none\""},
        {"\"nodoms\": 2", "\"nodoms\": 3"},
        {"\"nextdrawer\": 11", "\"nextdrawer\": 12"},
        {"\"nexttab\": 3", "\"nexttab\": 4"},
        {"\"dwrid\": 9, \"tabid\": \"2\", \"srcid\": 2",
         "\"dwrid\": 9, \"tabid\": \"65534\", \"srcid\": 65534"},
        {"\"nocols\": 3", "\"nocols\": 65535"},
        {"\"nextcol\": 3", "\"nextcol\": 4"},
        {"\"nokeys\": 2", "\"nokeys\": 65535"},
        {"\"nextkey\": 2", "\"nextkey\": 3"},
        {"\"length\": 5", "\"length\": 65535"},
        {"\"noelts\": 4", "\"noelts\": 32767"},
        {"\"database\"", "\"DataBase\""},
        {"\"catver\"", "\"CATVER\""},
        {"\"type\": \"hash\"", "\"type\": \"HASH\""},
        {"\"order\": \"desc\"", "\"order\": \"DESC\""},
    };
    for (const Change &change : changes) {
        SCH_LOAD_WHERE where{};
        EXPECT_EQ(load(replaced(kFull, change.from, change.to), &where), sOKAY)
            << change.to << " at " << where.path << ": " << (where.reason ? where.reason : "");
    }
}

TEST(Catalog, RefusesEachMemberBeyondItsBounds) {
    const Change changes[] = {
        {"\"catver\": 7", "\"catver\": -1"},
        {"\"catver\": 7", "\"catver\": 4294967296"},
        {"\"dbver\": 8", "\"dbver\": 4294967296"},
        {"\"encryption\": \"AES128\"", "\"encryption\": \"default\""},
        {"\"maxdrawers\": 12", "\"maxdrawers\": 4"},
        {"\"maxdrawers\": 12", "\"maxdrawers\": -1"},
        {"\"maxdrawers\": 12", "\"maxdrawers\": 4294967296"},
        {"\"nodrawers\": 11", "\"nodrawers\": -1"},
        {"\"nextdrawer\": 11", "\"nextdrawer\": 13"},
        {"\"nodoms\": 2", "\"nodoms\": 65536"},
        {"\"nodoms\": 2", "\"nodoms\": 4"},
        {"\"maxdoms\": 3", "\"maxdoms\": 65536"},
        {"\"maxtabs\": 4", "\"maxtabs\": 65536"},
        {"\"maxtabs\": 4", "\"maxtabs\": 0"},
        {"\"notabs\": 3", "\"notabs\": 65536"},
        {"\"nexttab\": 3", "\"nexttab\": 5"},
        {"\"nexttab\": 3", "\"nexttab\": 65536"},
        {"\"dwrid\": 5, \"tabid\"", "\"dwrid\": 4294967295, \"tabid\""},
        {"\"dwrid\": 5, \"tabid\"", "\"dwrid\": -1, \"tabid\""},
        {"\"dwrid\": 6, \"tabid\"", "\"dwrid\": 5, \"tabid\""}, // taken
        {"\"dwrid\": 6, \"tabid\"", "\"dwrid\": 3, \"tabid\""}, // the system's
        {"\"tabid\": \"2\", \"srcid\": 2", "\"tabid\": \"65535\", \"srcid\": 2"},
        {"\"tabid\": \"2\", \"srcid\": 2", "\"tabid\": \"\", \"srcid\": 2"},
        {"\"tabid\": \"2\", \"srcid\": 2", "\"tabid\": \"-1\", \"srcid\": 2"},
        {"\"tabid\": \"2\", \"srcid\": 2", "\"tabid\": \" 2\", \"srcid\": 2"},
        {"\"tabid\": \"2\", \"srcid\": 2", "\"tabid\": \"99999999999999999999\", \"srcid\": 2"},
        {"\"srcid\": 1", "\"srcid\": 65535"},
        {"\"srcid\": 1", "\"srcid\": -1"},
        {"\"type\": \"blob\"", "\"type\": \"chunk\""},
        {"\"domid\": 1, \"name\"", "\"domid\": 3, \"name\""},
        {"\"domid\": 1, \"name\"", "\"domid\": 0, \"name\""},
        {"\"domid\": 1, \"name\"", "\"domid\": 65536, \"name\""},
        {"\"width\": 12", "\"width\": 256"},
        {"\"width\": 12", "\"width\": -1"},
        {"\"defValue\": \"1.50\"", "\"defValue\": \"much\""},
        {"\"data_type\": \"decimal\"", "\"data_type\": \"bcd\""},
        {"\"noelts\": 4", "\"noelts\": 65536"},
        {"\"noelts\": 4", "\"noelts\": 32768"}, // 65536 bytes
        {"\"length\": 10", "\"length\": 256"},
        {"\"length\": 5", "\"length\": 65536"},
        {"\"scale\": 2", "\"scale\": 256"},
        {"\"tabid\": 1,", "\"tabid\": 4,"},
        {"\"tabid\": 1,", "\"tabid\": 0,"}, // the system table
        {"\"tabid\": 2,", "\"tabid\": 1,"}, // taken
        {"\"tabid\": 1,", "\"tabid\": 65536,"},
        {"\"dwrid\": 5, \"type\": \"standard\"", "\"dwrid\": -2, \"type\": \"standard\""},
        {"\"dwrid\": 5, \"type\": \"standard\"", "\"dwrid\": 6, \"type\": \"standard\""},
        {"\"dwrid\": 5, \"type\": \"standard\"", "\"dwrid\": 4294967296, \"type\": \"standard\""},
        {"\"type\": \"standard\"", "\"type\": \"square\""},
        {"\"nocols\": 3", "\"nocols\": 2"},
        {"\"nocols\": 3", "\"nocols\": 65536"},
        {"\"nextcol\": 3", "\"nextcol\": 5"},
        {"\"nextcol\": 3", "\"nextcol\": 65536"},
        {"\"maxcols\": 4,", "\"maxcols\": 2,"},
        {"\"maxcols\": 4,", "\"maxcols\": 65536,"},
        {"\"nokeys\": 2", "\"nokeys\": 65536"},
        {"\"nextkey\": 2", "\"nextkey\": 4"},
        {"\"nextkey\": 2", "\"nextkey\": 65536"},
        {"\"maxkeys\": 3", "\"maxkeys\": 1"},
        {"\"maxkeys\": 3", "\"maxkeys\": 65536"},
        {"\"norefs\": 1", "\"norefs\": 2"},
        {"\"norefs\": 1", "\"norefs\": 65536"},
        {"\"maxrefs\": 1", "\"maxrefs\": 0"},
        {"\"maxrefs\": 1", "\"maxrefs\": 65536"},
        {"\"colid\": 2, \"name\": \"marks\"", "\"colid\": 4, \"name\": \"marks\""},
        {"\"colid\": 2, \"name\": \"marks\"", "\"colid\": 1, \"name\": \"marks\""},
        {"\"colid\": 2, \"name\": \"marks\"", "\"colid\": 65536, \"name\": \"marks\""},
        {"\"colid\": 2, \"name\": \"marks\"", "\"colid\": -1, \"name\": \"marks\""},
        {"\"keyid\": 0, \"usage\"", "\"keyid\": 2, \"usage\""},
        {"\"domid\": \"0\"", "\"domid\": \"2\""},
        {"\"keyid\": 0, \"usage\"", "\"keyid\": 65536, \"usage\""},
        {"\"r_tabid\": \"1\"", "\"r_tabid\": \"one\""},
        {"\"refid\": 0, \"dwrid\"", "\"refid\": 65536, \"dwrid\""},
        {"{\"colid\": \"0\", \"order\": \"desc\"}]}", "{\"colid\": \"x\"}]}"},
        {"\"domid\": \"0\"", "\"domid\": \"x\""},
        {"\"r_tabid\": \"1\"", "\"r_tabid\": \"0\""}, // the system table
        {"\"r_tabid\": \"1\", ", ""},
        {", \"r_colid\": \"0\"", ""},
        {"\"domid\": \"1\", \"dwrid\": 9", "\"domid\": \"1\", \"dwrid\": -1"},
        {"\"domid\": \"1\", \"dwrid\": 9", "\"domid\": \"1\", \"dwrid\": 5"},
        {"\"domid\": \"1\", \"dwrid\": 9", "\"domid\": \"1\""},
        {"\"domid\": \"1\", \"dwrid\": 9", "\"domid\": \"0\", \"dwrid\": 9"},
        {"\"domid\": \"1\", \"dwrid\": 9", "\"dwrid\": 9, \"domid\": \"0\""},
        {"\"width\": 8", "\"width\": 256"},
        {"\"keyid\": 1,", "\"keyid\": 0,"},
        {"\"keyid\": 1,", "\"keyid\": 3,"},
        {"\"dwrid\": 6, \"name\"", "\"dwrid\": 10, \"name\""}, // another key's
        {"\"type\": \"unique\"", "\"type\": \"primary\""},     // a second one
        {"\"type\": \"unique\"", "\"type\": \"only\""},
        {"\"method\": \"btree\"", "\"method\": \"list\""},
        {"\"refcount\": 1", "\"refcount\": -1"},
        {"\"nocols\": 2, \"cols\"", "\"nocols\": 1, \"cols\""},
        {"\"nocols\": 2, \"cols\"", "\"nocols\": 3, \"cols\""}, // an element without a column
        {"{\"colid\": \"0\"}]", "{\"colid\": \"1\"}]"},         // a column twice
        {"{\"colid\": \"0\"}]", "{\"colid\": \"7\"}]"},
        {"{\"colid\": \"0\"}]", "{}]"},
        {"\"order\": \"asc\"", "\"order\": \"up\""},
        {"\"refid\": 0, \"dwrid\": 8", "\"refid\": 1, \"dwrid\": 8"},
        {"\"dwrid\": 8, \"name\"", "\"dwrid\": -1, \"name\""},
        {"\"dwrid\": 8, \"name\"", "\"dwrid\": 7, \"name\""},
        {"\"otabid\": \"1\"", "\"otabid\": \"0\""},
        {"\"otabid\": \"1\"", "\"otabid\": \"3\""},
        {"\"otabid\": \"1\", ", ""},
        {"\"pkeyid\": \"0\",", ""},
        {"\"pkeyid\": \"0\"", "\"pkeyid\": \"5\""},
        {"\"on_upd\": \"cascade\"", "\"on_upd\": \"explode\""},
        {"\"on_del\": \"set null\"", "\"on_del\": \"setnull\""},
        {"\"cols\": [\"1\"]", "\"cols\": []"},
        {"\"cols\": [\"1\"]", "\"cols\": [\"1\", \"0\"]"},
        {"\"cols\": [\"1\"]", "\"cols\": [\"65535\"]"},
        {"\"cols\": [\"1\"]", "\"cols\": [\"65537\"]"}, // would be 1 if it were cut
        {"\"cols\": [\"1\"]", "\"cols\": [\"x\"]"},
        {"\"nosortcols\": 1", "\"nosortcols\": 0"},
        {"\"nosortcols\": 1", "\"nosortcols\": 2"},
        {"{\"colid\": \"0\", \"order\": \"desc\"}]}", "{\"colid\": \"4\", \"order\": \"desc\"}]}"},
        {"{\"colid\": \"0\", \"order\": \"desc\"}]}", "{\"order\": \"down\"}]}"},
    };
    for (const Change &change : changes) {
        EXPECT_EQ(load(replaced(kFull, change.from, change.to)), eBADCAT) << change.to;
    }
}

TEST(Catalog, RefusesAMemberOfAnotherKind) {
    const Change changes[] = {
        {"\"catver\": 7", "\"catver\": \"7\""},
        {"\"catver\": 7", "\"catver\": 7.0"},
        {"\"catver\": 7", "\"catver\": null"},
        {"\"catver\": 7", "\"catver\": true"},
        {"\"catver\": 7", "\"catver\": [7]"},
        {"\"catver\": 7", "\"catver\": {}"},
        {"\"name\": \"shop\"", "\"name\": 5"},
        {"\"otabid\": \"1\"", "\"otabid\": 1"},
        {"\"tabid\": \"1\", \"srcid\"", "\"tabid\": 1, \"srcid\""},
        {"\"srcid\": 1", "\"srcid\": \"1\""},
        {"\"colid\": \"0\", \"order\"", "\"colid\": 0, \"order\""},
        {"\"domid\": \"0\"", "\"domid\": 0"},
        {"\"restrict\": true", "\"restrict\": \"true\""},
        {"\"defNull\": true", "\"defNull\": \"yes\""},
        {"\"cols\": [\"1\"]", "\"cols\": [1]"},
        {"\"cols\": [\"1\"]", "\"cols\": \"1\""},
        {"\"drawers\": [", "\"drawers\": [5, "},
        {"\"tables\": [", "\"tables\": [\"x\", "},
        {"\"type\": {\"data_type\": \"date\"}", "\"type\": \"date\""},
    };
    for (const Change &change : changes) {
        EXPECT_EQ(load(replaced(kFull, change.from, change.to)), eBADCAT) << change.to;
    }
}

// ---- Every member of every object ---------------------------------------------

enum class Kind { number, digits, text, flag, object, array };

struct Member {
    const char *name;
    Kind kind;
    int64_t least = 0, greatest = 0; // equal: without bounds
};

constexpr int64_t k8 = 255, k16 = 65535, k32 = 4294967295;

struct ObjectRow {
    const char *begin; // the catalog up to the object's first member
    const char *end;
    std::vector<Member> members;
};

const std::vector<ObjectRow> &object_rows() {
    static const std::vector<ObjectRow> rows = {
        {R"({"database": {)",
         "}}",
         {{"catver", Kind::number, 0, k32},
          {"dbver", Kind::number, 0, k32},
          {"name", Kind::text},
          {"locale", Kind::text},
          {"encryption", Kind::text},
          {"maxdrawers", Kind::number, 0, k32},
          {"nodrawers", Kind::number, 0, k32},
          {"nextdrawer", Kind::number, 0, k32},
          {"nodoms", Kind::number, 0, k16},
          {"maxdoms", Kind::number, 0, k16},
          {"maxtabs", Kind::number, 0, k16},
          {"notabs", Kind::number, 0, k16},
          {"nexttab", Kind::number, 0, k16},
          {"drawers", Kind::array},
          {"domains", Kind::array},
          {"tables", Kind::array}}},
        {R"({"database": {"drawers": [{)",
         "}]}}",
         {{"dwrid", Kind::number, 0, k32 - 1},
          {"tabid", Kind::digits, 0, k16 - 1},
          {"srcid", Kind::number, 0, k16 - 1},
          {"type", Kind::text}}},
        {R"({"database": {"domains": [{)",
         "}]}}",
         {{"domid", Kind::number, 0, k16},
          {"name", Kind::text},
          {"type", Kind::object},
          {"width", Kind::number, 0, k8},
          {"format", Kind::text},
          {"defValue", Kind::text},
          {"defNull", Kind::flag}}},
        {R"({"database": {"maxdoms": 1, "domains": [{"domid": 0, "type": {)",
         "}}]}}",
         {{"data_type", Kind::text},
          {"noelts", Kind::number, 0, k16},
          {"length", Kind::number, 0, k16},
          {"scale", Kind::number, 0, k8},
          {"checkStr", Kind::text},
          {"checkName", Kind::text}}},
        {R"({"database": {"tables": [{)",
         "}]}}",
         {{"tabid", Kind::number, 0, k16},
          {"dwrid", Kind::number, -1, k32},
          {"type", Kind::text},
          {"name", Kind::text},
          {"checkStr", Kind::text},
          {"checkName", Kind::text},
          {"maxrows", Kind::number},
          {"nocols", Kind::number, 0, k16},
          {"nextcol", Kind::number, 0, k16},
          {"maxcols", Kind::number, 0, k16},
          {"nokeys", Kind::number, 0, k16},
          {"nextkey", Kind::number, 0, k16},
          {"maxkeys", Kind::number, 0, k16},
          {"norefs", Kind::number, 0, k16},
          {"maxrefs", Kind::number, 0, k16},
          {"columns", Kind::array},
          {"keys", Kind::array},
          {"refs", Kind::array}}},
        {R"({"database": {"tables": [{"columns": [{)",
         "}]}]}}",
         {{"colid", Kind::number, 0, k16},
          {"name", Kind::text},
          {"domid", Kind::digits, 0, k16},
          {"keyid", Kind::number, 0, k16},
          {"refid", Kind::number, 0, k16},
          {"r_tabid", Kind::digits, 0, k16},
          {"r_colid", Kind::digits, 0, k16},
          {"dwrid", Kind::number, 0, k32},
          {"usage", Kind::number},
          {"not_null", Kind::text},
          {"width", Kind::number, 0, k8},
          {"format", Kind::text},
          {"defValue", Kind::text},
          {"defNull", Kind::flag},
          {"type", Kind::object}}},
        {R"({"database": {"tables": [{"keys": [{)",
         "}]}]}}",
         {{"keyid", Kind::number, 0, k16},
          {"dwrid", Kind::number, -1, k32},
          {"name", Kind::text},
          {"type", Kind::text},
          {"method", Kind::text},
          {"restrict", Kind::flag},
          {"refcount", Kind::number, 0, INT64_MAX},
          {"nocols", Kind::number, 0, k16},
          {"cols", Kind::array}}},
        {R"({"database": {"maxtabs": 2, "nexttab": 2, "tables": [{"tabid": 1, "maxkeys": 1,
             "keys": [{"keyid": 0, "nocols": 1, "cols": [{)",
         "}]}]}]}}",
         {{"colid", Kind::digits, 0, k16}, {"order", Kind::text}}},
        {R"({"database": {"tables": [{"refs": [{)",
         "}]}]}}",
         {{"refid", Kind::number, 0, k16},
          {"dwrid", Kind::number, 0, k32},
          {"name", Kind::text},
          {"otabid", Kind::digits, 0, k16},
          {"pkeyid", Kind::digits, 0, k16},
          {"on_upd", Kind::text},
          {"on_del", Kind::text},
          {"nocols", Kind::number, 0, k16},
          {"nosortcols", Kind::number, 0, k16},
          {"cols", Kind::array},
          {"sortcols", Kind::array}}},
        {R"({"database": {"tables": [{"refs": [{"sortcols": [{)",
         "}]}]}]}}",
         {{"colid", Kind::digits, 0, k16}, {"order", Kind::text}}},
    };
    return rows;
}

/// Why the catalog with this member alone in the object is refused.
std::string refusal(const ObjectRow &object, const char *name, const std::string &value) {
    SCH_LOAD_WHERE where{};
    OAK_IGNORE_STATUS(
        load(std::string(object.begin) + "\"" + name + "\": " + value + object.end, &where),
        "the reason tells more");
    return where.reason != nullptr ? where.reason : "";
}

TEST(CatalogMembers, TakeOneKindOfValueEach) {
    const struct {
        const char *value;
        std::vector<Kind> kinds; // of which it is one
    } values[] = {
        {"1", {Kind::number}},  {"\"1\"", {Kind::digits, Kind::text}},
        {"true", {Kind::flag}}, {"{}", {Kind::object}},
        {"[]", {Kind::array}},  {"1.5", {}},
        {"null", {}},
    };
    const std::string refused = "the value is of another kind than the member's";
    for (const ObjectRow &object : object_rows()) {
        for (const Member &member : object.members) {
            for (const auto &value : values) {
                const bool fits =
                    std::count(value.kinds.begin(), value.kinds.end(), member.kind) > 0;
                EXPECT_EQ(refusal(object, member.name, value.value) == refused, !fits)
                    << object.begin << member.name << ": " << value.value;
            }
        }
        EXPECT_EQ(refusal(object, "unheard_of", "1"), "no member of this object has the name");
    }
}

TEST(CatalogMembers, TakeNumbersWithinTheirBounds) {
    for (const ObjectRow &object : object_rows()) {
        for (const Member &member : object.members) {
            if (member.least == member.greatest) {
                continue;
            }
            const bool digits = member.kind == Kind::digits;
            const std::string refused = digits ? "the text is no number within its bounds"
                                               : "the number is out of its bounds";
            const auto is_refused = [&](int64_t number) {
                const std::string quote = digits ? "\"" : "";
                return refusal(object, member.name, quote + std::to_string(number) + quote) ==
                       refused;
            };
            SCOPED_TRACE(std::string(object.begin) + member.name);
            EXPECT_TRUE(is_refused(member.least - 1));
            EXPECT_FALSE(is_refused(member.least));
            EXPECT_FALSE(is_refused(member.greatest));
            if (member.greatest < INT64_MAX) {
                EXPECT_TRUE(is_refused(member.greatest + 1));
            }
        }
    }
}

TEST(Catalog, RefusesWhatIsUnknownOrStandsTwice) {
    const Change changes[] = {
        {"\"catver\": 7", "\"catver\": 7, \"colour\": 1"},
        {"\"catver\": 7", "\"catver\": 7, \"CATVER\": 7"},
        {"\"dwrid\": 5, \"type\": \"standard\"",
         "\"dwrid\": 5, \"dwrid\": 5, \"type\": \"standard\""},
        {"\"srcid\": 0", "\"srcid\": 0, \"srcid\": 0"},
        {"\"data_type\": \"date\"", "\"data_type\": \"date\", \"prec\": 1"},
        {"\"order\": \"asc\"", "\"order\": \"asc\", \"order\": \"asc\""},
        {"\"restrict\": true", "\"restrict\": true, \"restrict\": true"},
    };
    for (const Change &change : changes) {
        EXPECT_EQ(load(replaced(kFull, change.from, change.to)), eBADCAT) << change.to;
    }
}

// ---- Order of members --------------------------------------------------------

TEST(Catalog, RefusesAMemberThatStandsBeforeItsObjectsId) {
    const char *const objects[] = {
        R"("drawers": [{"type": "table", "dwrid": 5}])",
        R"("drawers": [{"tabid": "1"}])",
        R"("drawers": [{}])",
        R"("maxdoms": 1, "domains": [{"name": "x", "domid": 0}])",
        R"("maxdoms": 1, "domains": [{"type": {"data_type": "date"}}])",
        R"("maxdoms": 1, "domains": [{"width": 1}])",
        R"("maxdoms": 1, "domains": [{"format": "x"}])",
        R"("maxdoms": 1, "domains": [{"defValue": "x"}])",
        R"("maxdoms": 1, "domains": [{"defNull": true}])",
        R"("maxdoms": 1, "domains": [{}])",
        R"("maxtabs": 2, "tables": [{"name": "t", "tabid": 1}])",
        R"("maxtabs": 2, "tables": [{}])",
        R"("maxtabs": 2, "tables": [{"dwrid": -1}])",
        R"("maxtabs": 2, "tables": [{"nocols": 1}])",
        R"("maxtabs": 2, "tables": [{"maxcols": 1}])",
        R"("maxtabs": 2, "tables": [{"maxrefs": 1}])",
        R"("maxtabs": 2, "tables": [{"columns": [{"colid": 0}]}])",
        R"("maxtabs": 2, "tables": [{"keys": [{"keyid": 0}]}])",
        R"("maxtabs": 2, "tables": [{"refs": [{"refid": 0}]}])",
        R"("tables": [{"tabid": 1}])",
    };
    for (const char *object : objects) {
        EXPECT_EQ(load(std::string(R"({"database": {)") + object + "}}"), eBADCAT) << object;
    }
    const char *const columns[] = {
        R"({"name": "c"})",
        R"({"domid": "0"})",
        R"({"keyid": 0})",
        R"({"refid": 0})",
        R"({"r_tabid": "0"})",
        R"({"r_colid": "0"})",
        R"({"dwrid": 5})",
        R"({"usage": 1})",
        R"({"not_null": ""})",
        R"({"width": 1})",
        R"({"format": "x"})",
        R"({"defValue": "1"})",
        R"({"defNull": true})",
        R"({"type": {"data_type": "int8"}})",
        R"({})",
        R"({"colid": 0})",
        R"({"colid": 0, "type": {}})",
        R"({"colid": 0, "type": {"length": 5}})",
    };
    for (const char *column : columns) {
        EXPECT_EQ(load(one_table(column, 1)), eBADCAT) << column;
    }
    const char *const keys[] = {R"({"name": "k"})",
                                R"({"dwrid": -1})",
                                R"({"type": "unique"})",
                                R"({"method": "btree"})",
                                R"({"restrict": true})",
                                R"({"refcount": 1})",
                                R"({"nocols": 1})",
                                R"({"cols": [{"colid": "0"}]})",
                                R"({})"};
    const std::string column = R"({"colid": 0, "name": "c", "type": {"data_type": "int8"}})";
    for (const char *key : keys) {
        EXPECT_EQ(
            load(one_table(column, 1,
                           std::string(R"(, "nextkey": 1, "maxkeys": 1, "keys": [)") + key + "]")),
            eBADCAT)
            << key;
    }
    const char *const refs[] = {R"({"name": "r"})",
                                R"({"dwrid": 5})",
                                R"({"otabid": "1"})",
                                R"({"pkeyid": "0"})",
                                R"({"on_upd": "noval"})",
                                R"({"on_del": "noval"})",
                                R"({"nocols": 1})",
                                R"({"nosortcols": 1})",
                                R"({"cols": ["0"]})",
                                R"({"sortcols": [{"colid": "0"}]})",
                                R"({"sortcols": [{"order": "asc"}]})",
                                R"({})"};
    for (const char *ref : refs) {
        EXPECT_EQ(
            load(one_table(column, 1, std::string(R"(, "maxrefs": 1, "refs": [)") + ref + "]")),
            eBADCAT)
            << ref;
    }
}

TEST(Catalog, RefusesATypeBehindADomain) {
    EXPECT_EQ(load(replaced(kFull, "\"domid\": \"0\"}",
                            "\"domid\": \"0\", \"type\": {\"data_type\": \"int8\"}}")),
              eBADCAT);
    EXPECT_EQ(load(replaced(kFull, "\"domid\": \"0\"}",
                            "\"type\": {\"data_type\": \"int8\"}, \"domid\": \"0\"}")),
              eBADCAT);
}

TEST(Catalog, TakesADrawerBeforeOrBehindItsDomain) {
    EXPECT_EQ(
        load(replaced(kFull, "\"domid\": \"1\", \"dwrid\": 9", "\"dwrid\": 9, \"domid\": \"1\"")),
        sOKAY);
}

// ---- Small rules -------------------------------------------------------------

TEST(Catalog, MakesAColumnNotNullWithAnEmptyConstraintName) {
    const oaktest::Catalog catalog(one_table(
        R"({"colid": 0, "name": "c", "not_null": "", "type": {"data_type": "int8"}})", 1));
    const SCH_COL_INFO_C ci = sch_get_col_by_index(catalog.table("t"), 0);
    EXPECT_TRUE(sch_col_not_null(ci));
    EXPECT_STREQ(sch_col_not_null_cname(ci), "");
    EXPECT_EQ(sch_col_has_value_offset(ci), 0u);
}

TEST(Catalog, LetsDefNullDecideWhenItIsTrue) {
    const oaktest::Catalog first(one_table(
        R"({"colid": 0, "name": "a", "type": {"data_type": "int8"}, "defValue": "3", "defNull": false})",
        1));
    EXPECT_EQ(sch_col_def(sch_get_col_by_index(first.table("t"), 0))->status, vsOKAY);
    const oaktest::Catalog second(one_table(
        R"({"colid": 0, "name": "a", "type": {"data_type": "int8"}, "defNull": true})", 1));
    EXPECT_EQ(sch_col_def(sch_get_col_by_index(second.table("t"), 0))->status, vsNULL);
}

TEST(Catalog, StoresWideTypesAsUtf8UnlessUnicodeIsEnabled) {
    const std::string text = one_table(
        R"({"colid": 0, "name": "a", "type": {"data_type": "wchar", "length": 4}},
           {"colid": 1, "name": "b", "type": {"data_type": "wvarchar", "length": 4}})",
        2);
    const oaktest::Catalog disabled(text);
    EXPECT_EQ(sch_col_data_type(sch_get_col_by_index(disabled.table("t"), 0)), OAK_WCHAR_UTF8);
    EXPECT_EQ(sch_col_data_type(sch_get_col_by_index(disabled.table("t"), 1)), OAK_WVARCHAR_UTF8);
    EXPECT_FALSE(sch_drawer_compact(sch_tbl_drawer_info(disabled.table("t"))));
    const oaktest::Catalog enabled(text, true);
    EXPECT_EQ(sch_col_data_type(sch_get_col_by_index(enabled.table("t"), 0)), OAK_WCHAR);
    EXPECT_EQ(sch_col_data_type(sch_get_col_by_index(enabled.table("t"), 1)), OAK_WVARCHAR);
    EXPECT_TRUE(sch_drawer_compact(sch_tbl_drawer_info(enabled.table("t"))));
    // A large object of wide characters is stored as UTF-8 either way.
    const oaktest::Catalog large(
        one_table(R"({"colid": 0, "name": "c", "dwrid": 6, "type": {"data_type": "wclob"}})", 1, "",
                  R"(,{"dwrid": 6, "tabid": "1", "srcid": 0, "type": "blob"})", 7),
        true);
    EXPECT_EQ(sch_col_data_type(sch_get_col_by_index(large.table("t"), 0)), OAK_WCLOB_UTF8);
}

TEST(Catalog, GivesItsLocaleToTheTextColumnsBehindIt) {
    std::string text =
        one_table(R"({"colid": 0, "name": "a", "type": {"data_type": "char", "length": 4}})", 1);
    const oaktest::Catalog catalog(replaced(text, R"("name": "test")", R"("locale": "C")"));
    EXPECT_STREQ(sch_locale_text(catalog.schema()), "C");
    ASSERT_NE(sch_locale(catalog.schema()), nullptr);
    const SCH_TYPE_INFO_C pi = sch_col_type_c(sch_get_col_by_index(catalog.table("t"), 0));
    EXPECT_EQ(sch_type_locale(pi), sch_locale(catalog.schema()));
    EXPECT_TRUE(sch_type_use_locale(pi));
}

TEST(Catalog, KnowsEveryDataType) {
    const struct {
        const char *word;
        OAK_TYPE type;
    } rows[] = {
        {"bool", OAK_BOOL},
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
        {"wchar", OAK_WCHAR_UTF8},
        {"wvarchar", OAK_WVARCHAR_UTF8},
        {"binary", OAK_BINARY},
        {"varbinary", OAK_VARBINARY},
    };
    for (const auto &row : rows) {
        const oaktest::Catalog catalog(one_table(
            std::string(R"({"colid": 0, "name": "c", "type": {"data_type": ")") + row.word + "\"}}",
            1));
        EXPECT_EQ(sch_col_data_type(sch_get_col_by_index(catalog.table("t"), 0)), row.type)
            << row.word;
    }
    const struct {
        const char *word;
        OAK_TYPE type;
    } large[] = {{"blob", OAK_BLOB}, {"clob", OAK_CLOB}, {"wclob", OAK_WCLOB_UTF8}};
    for (const auto &row : large) {
        const oaktest::Catalog catalog(one_table(
            std::string(R"({"colid": 0, "name": "c", "dwrid": 6, "type": {"data_type": ")") +
                row.word + "\"}}",
            1, "", R"(,{"dwrid": 6, "tabid": "1", "srcid": 0, "type": "blob"})", 7));
        EXPECT_EQ(sch_col_data_type(sch_get_col_by_index(catalog.table("t"), 0)), row.type)
            << row.word;
    }
}

TEST(Catalog, DoesNotLookBehindTheDatabase) {
    EXPECT_EQ(load(std::string(kFull) + " what follows }}} is nobody's affair"), sOKAY);
    EXPECT_EQ(load(replaced(R"({"database": {}, "other": [1, 2)", "[1", "[1")), sOKAY);
    EXPECT_EQ(load(R"({"database": {}})"), sOKAY);
}

TEST(Catalog, WantsADatabaseObjectFirst) {
    EXPECT_EQ(load(R"({"catalog": {}})"), eBADCAT);
    EXPECT_EQ(load(R"({"database": 1})"), eBADCAT);
    EXPECT_EQ(load(R"({"database": []})"), eBADCAT);
    EXPECT_EQ(load(R"([{"database": {}}])"), eBADCAT);
    EXPECT_EQ(load(R"({})"), eBADCAT);
    EXPECT_EQ(load(R"("database")"), eBADCAT);
}

TEST(Catalog, ReturnsTheJsonReadersFailureAtTheTop) {
    EXPECT_EQ(load(""), eSYNTAX);
    EXPECT_EQ(load("}"), eSYNTAX);
    EXPECT_EQ(load(R"({"database")"), eSYNTAX);
    EXPECT_EQ(load(R"({"database": )"), eSYNTAX);
    // Inside the database object it is a bad catalog.
    EXPECT_EQ(load(R"({"database": {)"), eBADCAT);
    EXPECT_EQ(load(R"({"database": {"catver": })"), eBADCAT);
}

TEST(Catalog, PassesTwoStatusesOnUnchanged) {
    EXPECT_EQ(
        load(one_table(R"({"colid": 0, "name": "c", "dwrid": 6, "type": {"data_type": "wclob"},
                                 "defValue": "x"})",
                       1, "", R"(,{"dwrid": 6, "tabid": "1", "srcid": 0, "type": "blob"})", 7)),
        eNOTIMPLEMENTED);
    EXPECT_EQ(load(R"({"database": {"locale": "no_SUCH.locale"}})"), eBADCAT);
    // Before its type is known a column has no defaults.
    EXPECT_EQ(
        load(one_table(
            R"({"colid": 0, "name": "a", "defValue": "3", "type": {"data_type": "int8"}})", 1)),
        eNOTIMPLEMENTED);
}

TEST(Catalog, IsNotStoppedByAPositiveStatusOfADefault) {
    // More digits than a decimal keeps: the default is rounded, and kept.
    const oaktest::Catalog catalog(one_table(
        R"({"colid": 0, "name": "c", "type": {"data_type": "decimal", "length": 10, "scale": 2},
            "defValue": "0.1111111111111111111111111111111119"})",
        1));
    EXPECT_EQ(sch_col_def(sch_get_col_by_index(catalog.table("t"), 0))->status, vsOKAY);
}

// ---- The final pass ----------------------------------------------------------

std::string two_references(const std::string &first_table, const std::string &second_table) {
    const std::string visit = replaced(
        replaced(replaced(kFull, "\"norefs\": 1, \"maxrefs\": 1", "\"norefs\": 2, \"maxrefs\": 2"),
                 "\"refs\": [",
                 R"("refs": [
        {"refid": 1, "name": "other", "otabid": ")" +
                     second_table + R"(", "pkeyid": "0",
         "nocols": 1, "cols": ["0"]},)"),
        "\"otabid\": \"1\", \"pkeyid\": \"0\",\n        \"on_upd\"",
        "\"otabid\": \"" + first_table + "\", \"pkeyid\": \"0\",\n        \"on_upd\"");
    return visit;
}

TEST(Catalog, CountsTheLastReferencesStatusAlone) {
    EXPECT_EQ(load(two_references("1", "1")), sOKAY);
    EXPECT_EQ(load(two_references("9", "1")), sOKAY) << "a failing reference before a good one";
    EXPECT_EQ(load(two_references("1", "9")), eBADCAT) << "a failing last reference";
}

TEST(Catalog, ReturnsTheStatusesOfTheFinalPassAsTheyStand) {
    const Change changes[] = {
        {"\"refid\": 0, \"r_tabid\"", "\"refid\": 1, \"r_tabid\""},
        {"\"r_tabid\": \"1\"", "\"r_tabid\": \"3\""},
        {"\"r_colid\": \"0\"", "\"r_colid\": \"9\""},
    };
    for (const Change &change : changes) {
        EXPECT_EQ(load(replaced(kFull, change.from, change.to)), eRANGE) << change.to;
    }
}

TEST(Catalog, LinksEveryColumnOfAReference) {
    const oaktest::Catalog catalog(
        replaced(replaced(kFull, R"("nocols": 1, "nosortcols": 1, "cols": ["1"])",
                          R"("nocols": 2, "nosortcols": 2, "cols": ["1", "0"])"),
                 R"("sortcols": [)", R"("sortcols": [{"colid": "3", "order": "asc"}, )"));
    const SCH_TBL_INFO visit = catalog.table("visit");
    const SCH_REF_INFO ref = sch_get_ref_by_index(visit, 0);
    EXPECT_EQ(sch_ref_col(ref, 0), sch_get_col_by_index(visit, 1));
    EXPECT_EQ(sch_ref_col(ref, 1), sch_get_col_by_index(visit, 0));
    EXPECT_EQ(sch_ref_sort_col(ref, 0), sch_get_col_by_index(visit, 3));
    EXPECT_EQ(sch_sort_dir(sch_ref_sort(ref, 0)), OAK_FORWARD);
    EXPECT_EQ(sch_ref_sort_col(ref, 1), sch_get_col_by_index(visit, 0));
    EXPECT_EQ(sch_sort_dir(sch_ref_sort(ref, 1)), OAK_REVERSE);
}

TEST(Catalog, DecidesWhetherAnUpdateWritesTheJoinList) {
    const std::string with_key_usage =
        replaced(kFull, "\"name\": \"who\"", "\"name\": \"who\", \"usage\": 1");
    const struct {
        const std::string catalog;
        const char *on_update;
        bool requires_write;
    } rows[] = {
        {kFull, "noval", false},           {kFull, "restrict", false},
        {kFull, "cascade", false}, // the column is in no key and not sorted on
        {with_key_usage, "cascade", true}, {with_key_usage, "restrict", false},
        {kFull, "set null", true},
    };
    for (const auto &row : rows) {
        const oaktest::Catalog catalog(
            replaced(row.catalog, "\"on_upd\": \"cascade\"",
                     std::string("\"on_upd\": \"") + row.on_update + "\""));
        const SCH_REF_INFO_C ref = sch_get_ref_by_index(catalog.table("visit"), 0);
        EXPECT_EQ(sch_ref_requires_write_for_update(ref) != OAK_FALSE, row.requires_write)
            << row.on_update;
    }
}

TEST(Catalog, RefusesAForeignKeyColumnThatIsTiedToAKeyAllTheSame) {
    EXPECT_EQ(
        load(replaced(kFull, "\"keyid\": 0, \"usage\"", "\"keyid\": 0, \"refid\": 0, \"usage\"")),
        eBADCAT);
}

// A table may stand at the limit itself; the final pass ends below it, so that
// nothing of the table is linked.
TEST(Catalog, LeavesATableAtTheLimitUnlinked) {
    const std::string text = R"({"database": {"maxtabs": 3, "nexttab": 2, "tables": [
        {"tabid": 2, "name": "t", "nocols": 1, "nextcol": 1, "maxcols": 1, "columns": [
            {"colid": 0, "name": "c", "refid": 0, "type": {"data_type": "int8"}}]}]}})";
    const oaktest::Catalog catalog(text);
    EXPECT_EQ(sch_find_table_by_ndx(catalog.schema(), 2), nullptr);
    EXPECT_EQ(load(replaced(text, "\"nexttab\": 2", "\"nexttab\": 3")), eBADCAT);
}

TEST(Catalog, RefusesANamelessReferenceWithColumns) {
    EXPECT_EQ(load(replaced(kFull, "\"name\": \"visitor\", ", "")), eBADCAT);
}

TEST(Catalog, GivesNamelessKeysTheNamesOfTheirColumns) {
    const oaktest::Catalog catalog(replaced(kFull, "\"name\": \"byid\", ", ""));
    EXPECT_STREQ(sch_key_name(sch_get_key_by_index(catalog.table("customer"), 1)), "code_id");
}

TEST(Catalog, TakesDrawerNumbersThatLieFarApart) {
    const oaktest::Catalog catalog(R"({"database": {"maxdrawers": 4294967295,
        "nextdrawer": 4294967295, "nodrawers": 6,
        "drawers": [{"dwrid": 4294967294, "type": "blob"}]}})");
    EXPECT_EQ(sch_max_drawer(catalog.schema()), 4294967295u);
    EXPECT_NE(sch_drawer(catalog.schema(), 4294967294u), nullptr);
    EXPECT_EQ(sch_drawer(catalog.schema(), 4294967293u), nullptr);
}

TEST(Catalog, KeepsTheLow32BitsOfAReferenceCount) {
    const oaktest::Catalog catalog(replaced(kFull, "\"refcount\": 1", "\"refcount\": 4294967303"));
    EXPECT_EQ(sch_key_refcount(sch_get_key_by_index(catalog.table("customer"), 0)), 7u);
}

// ---- Where a refusal stands --------------------------------------------------

TEST(Catalog, TellsWhereItStandsWhenItRefuses) {
    SCH_LOAD_WHERE where{};
    EXPECT_EQ(load("{\"database\": {\n  \"catver\": \"x\"}}", &where), eBADCAT);
    EXPECT_EQ(where.line, 2u);
    EXPECT_STREQ(where.path, "database.catver");
    EXPECT_STREQ(where.reason, "the value is of another kind than the member's");
    EXPECT_EQ(load(replaced(kFull, "\"width\": 8", "\"width\": 256"), &where), eBADCAT);
    EXPECT_STREQ(where.path, "database.tables[0].columns[0].width");
    EXPECT_STREQ(where.reason, "the number is out of its bounds");
    EXPECT_EQ(load(R"({"data": {}})", &where), eBADCAT);
    EXPECT_STREQ(where.path, "");
    EXPECT_EQ(where.line, 1u);
    EXPECT_EQ(load(two_references("1", "9"), &where), eBADCAT);
    EXPECT_STREQ(where.path, "database.tables: visit");
    const std::string long_name(1000, 'n');
    EXPECT_EQ(load("{\"database\": {\"" + long_name + "\": 1}}", &where), eBADCAT);
    EXPECT_EQ(std::string(where.path).size(), SCH_LOAD_PATH_SIZE - 1u);
}

TEST(Catalog, RefusesCapacitiesOutOfProportionToItsLength) {
    SCH_LOAD_WHERE where{};
    std::string many = R"({"database": {"maxtabs": 65535, "nexttab": 65535, "tables": [)";
    for (int i = 1; i < 100; ++i) {
        many += (i > 1 ? ", " : "") + std::string("{\"tabid\": ") + std::to_string(i) +
                ", \"maxcols\": 65535}";
    }
    EXPECT_EQ(load(many + "]}}", &where), eBADCAT);
    EXPECT_STREQ(where.reason, "the capacities are out of proportion to the catalog's length");
}

// ---- Sources, arguments, failing resources -----------------------------------

class CatalogFile : public testing::Test {
  protected:
    void SetUp() override {
        name_ = testing::TempDir() + "catalog_" + std::to_string(osl_get_pid()) + ".json";
        OSL_FH fh = osl_fileOpen(name_.c_str(), OSL_OPEN_TRUNCATE, 0);
        ASSERT_NE(fh, nullptr);
        ASSERT_EQ(osl_fileWrite(fh, kFull, sizeof kFull - 1), sizeof kFull - 1);
        osl_fileClose(fh);
    }
    void TearDown() override { EXPECT_EQ(osl_fileRemove(name_.c_str()), sOKAY); }
    std::string name_;
};

TEST_F(CatalogFile, IsReadFromItsStart) {
    OSL_FH fh = osl_fileOpen(name_.c_str(), OSL_OPEN_READ, 0);
    ASSERT_NE(fh, nullptr);
    for (int i = 0; i < 2; ++i) { // the second time the file stands at its end
        SCH_INFO schema = nullptr;
        ASSERT_EQ(sch_read_database_schema(&schema, fh, nullptr, OAK_FALSE), sOKAY);
        EXPECT_STREQ(sch_name(schema), "shop");
        sch_destroy(schema);
    }
    osl_fileClose(fh);
}

TEST_F(CatalogFile, ThatCannotBeReadIsRefused) {
    const uint64_t runs = oaktest::sweep_faults(
        oaktest::Resource::file, {eBADCAT, eBADREAD, eSYNTAX, eOSL_FAILURE, eFILEOPEN, eFILEIO},
        [&]() -> OAK_RETCODE {
            OSL_FH fh = osl_fileOpen(name_.c_str(), OSL_OPEN_READ, 0);
            if (fh == nullptr) {
                return eFILEOPEN;
            }
            SCH_INFO schema = nullptr;
            const OAK_RETCODE status = sch_read_database_schema(&schema, fh, nullptr, OAK_FALSE);
            EXPECT_EQ(schema != nullptr, status == sOKAY);
            sch_destroy(schema);
            osl_fileClose(fh);
            return status;
        });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

TEST(Catalog, RefusesNullArguments) {
    SCH_INFO schema = nullptr;
    EXPECT_EQ(sch_read_database_schema(nullptr, nullptr, "{}", OAK_FALSE), eINVNULLARG);
    EXPECT_EQ(sch_read_database_schema(&schema, nullptr, nullptr, OAK_FALSE), eINVNULLARG);
}

TEST(Catalog, LeavesNothingBehindWhenMemoryEnds) {
    // Inside an object a failed allocation arrives as a bad catalog.
    const uint64_t runs =
        oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY, eBADCAT}, [] {
            SCH_INFO schema = nullptr;
            const OAK_RETCODE status = sch_read_database_schema(&schema, nullptr, kFull, OAK_FALSE);
            EXPECT_EQ(schema != nullptr, status == sOKAY);
            sch_destroy(schema);
            return status;
        });
    EXPECT_EQ(runs > 100, oaktest::faults_are_injected());
}

TEST(Catalog, OfTwoHundredTablesStaysUnderFourMegabytes) {
    std::string text = R"({"database": {"maxdrawers": 205, "nodrawers": 205, "nextdrawer": 205,
        "maxtabs": 201, "notabs": 201, "nexttab": 201, "drawers": [)";
    for (int t = 1; t <= 200; ++t) {
        text += (t > 1 ? "," : "") + std::string("{\"dwrid\": ") + std::to_string(t + 4) +
                ", \"tabid\": \"" + std::to_string(t) + "\", \"srcid\": " + std::to_string(t) +
                ", \"type\": \"table\"}";
    }
    text += "], \"tables\": [";
    for (int t = 1; t <= 200; ++t) {
        text += (t > 1 ? "," : "") + std::string("{\"tabid\": ") + std::to_string(t) +
                ", \"dwrid\": " + std::to_string(t + 4) + ", \"name\": \"table" +
                std::to_string(t) +
                "\", \"nocols\": 12, \"nextcol\": 12, \"maxcols\": 12, \"columns\": [";
        for (int c = 0; c < 12; ++c) {
            text += (c > 0 ? "," : "") + std::string("{\"colid\": ") + std::to_string(c) +
                    ", \"name\": \"column" + std::to_string(c) +
                    "\", \"type\": {\"data_type\": \"varchar\", \"length\": 40}}";
        }
        text += "]}";
    }
    text += "]}}";
    const auto heap = [] {
        const struct mallinfo2 info = mallinfo2(); // all zero under the sanitizers
        return info.uordblks + info.hblkhd;
    };
    const size_t before = heap();
    const oaktest::Catalog catalog(text);
    EXPECT_LT(heap() - before, 4u * 1024 * 1024);
    EXPECT_EQ(sch_num_user_tables(catalog.schema()), 200);
}

} // namespace
