// A catalog with every kind of object and a column of every type, for tests and
// fuzz targets of what stands on a schema. The golden rows belong to its tables:
//
//   owners     a primary key for others to refer to
//   every      a column of each type, arrays, large objects, a domain, a dropped
//              column (12), the rowid (18), a foreign key (31), a NOT NULL one (32),
//              two AVL keys, a hash and an R-tree key
//   linked     two AVL keys and a reference, values of mixed alignment
//   ints       three nullable integers
//   documents  a large object with a value in front, one behind
//   dropped    three integers, the middle one dropped
#ifndef RICH_CATALOG_H
#define RICH_CATALOG_H

namespace oaktest {

inline constexpr char kRichCatalog[] = R"({"database": {
  "catver": 1, "dbver": 1, "name": "rich", "encryption": "none",
  "maxdrawers": 24, "nodrawers": 21, "nextdrawer": 21, "nodoms": 1, "maxdoms": 1,
  "maxtabs": 8, "notabs": 7, "nexttab": 7,
  "drawers": [
    {"dwrid": 5, "tabid": "1", "srcid": 1, "type": "table"},
    {"dwrid": 6, "tabid": "1", "srcid": 0, "type": "btree"},
    {"dwrid": 7, "tabid": "2", "srcid": 2, "type": "table"},
    {"dwrid": 8, "tabid": "2", "srcid": 0, "type": "ref"},
    {"dwrid": 9, "tabid": "2", "srcid": 28, "type": "blob"},
    {"dwrid": 10, "tabid": "2", "srcid": 29, "type": "blob"},
    {"dwrid": 11, "tabid": "2", "srcid": 30, "type": "blob"},
    {"dwrid": 12, "tabid": "2", "srcid": 2, "type": "hash"},
    {"dwrid": 13, "tabid": "2", "srcid": 3, "type": "rtree"},
    {"dwrid": 14, "tabid": "3", "srcid": 3, "type": "table"},
    {"dwrid": 15, "tabid": "3", "srcid": 0, "type": "ref"},
    {"dwrid": 16, "tabid": "4", "srcid": 4, "type": "table"},
    {"dwrid": 17, "tabid": "5", "srcid": 5, "type": "table"},
    {"dwrid": 18, "tabid": "5", "srcid": 1, "type": "blob"},
    {"dwrid": 19, "tabid": "5", "srcid": 3, "type": "blob"},
    {"dwrid": 20, "tabid": "6", "srcid": 6, "type": "table"}],
  "domains": [
    {"domid": 0, "name": "money",
     "type": {"data_type": "decimal", "length": 7, "scale": 2, "checkStr": "value < 99999",
              "checkName": "not_too_much"},
     "width": 12, "format": "0.00", "defValue": "0"}],
  "tables": [
    {"tabid": 1, "dwrid": 5, "type": "standard", "name": "owners",
     "nocols": 1, "nextcol": 1, "maxcols": 1, "nokeys": 1, "nextkey": 1, "maxkeys": 1,
     "columns": [{"colid": 0, "name": "id", "keyid": 0, "usage": 1,
                  "type": {"data_type": "int32"}}],
     "keys": [{"keyid": 0, "dwrid": 6, "name": "pk", "type": "primary", "method": "btree",
               "refcount": 2, "nocols": 1, "cols": [{"colid": "0", "order": "asc"}]}]},
    {"tabid": 2, "dwrid": 7, "type": "standard", "name": "every",
     "checkStr": "must > 0", "checkName": "positive", "maxrows": 1000,
     "nocols": 32, "nextcol": 33, "maxcols": 33, "nokeys": 4, "nextkey": 4, "maxkeys": 4,
     "norefs": 1, "maxrefs": 1,
     "columns": [
       {"colid": 0, "name": "flag", "type": {"data_type": "bool"}, "defValue": "true"},
       {"colid": 1, "name": "tiny", "type": {"data_type": "int8"}, "defValue": "-1"},
       {"colid": 2, "name": "utiny", "type": {"data_type": "uint8"}},
       {"colid": 3, "name": "small", "type": {"data_type": "int16"}},
       {"colid": 4, "name": "usmall", "type": {"data_type": "uint16"}},
       {"colid": 5, "name": "medium", "type": {"data_type": "int32"}, "width": 9, "format": "0"},
       {"colid": 6, "name": "umedium", "type": {"data_type": "uint32"}},
       {"colid": 7, "name": "large", "type": {"data_type": "int64"}},
       {"colid": 8, "name": "ularge", "type": {"data_type": "uint64"}},
       {"colid": 9, "name": "single", "type": {"data_type": "float"}, "defValue": "0.5"},
       {"colid": 10, "name": "wide", "type": {"data_type": "double"}},
       {"colid": 11, "name": "price", "domid": "0"},
       {"colid": 12, "type": {"data_type": "int32"}},
       {"colid": 13, "name": "day", "type": {"data_type": "date"}, "defValue": "current_date"},
       {"colid": 14, "name": "moment", "type": {"data_type": "time"}},
       {"colid": 15, "name": "zoned", "type": {"data_type": "timetz"}},
       {"colid": 16, "name": "stamp", "type": {"data_type": "timestamp"}},
       {"colid": 17, "name": "zstamp", "type": {"data_type": "timestamptz"}, "defNull": true},
       {"colid": 18, "name": "id", "type": {"data_type": "rowid"}, "defValue": "auto"},
       {"colid": 19, "name": "guid", "type": {"data_type": "uuid"}, "defValue": "auto"},
       {"colid": 20, "name": "code", "type": {"data_type": "char", "length": 9}},
       {"colid": 21, "name": "name", "type": {"data_type": "varchar", "length": 41}},
       {"colid": 22, "name": "wcode", "type": {"data_type": "wchar", "length": 9}},
       {"colid": 23, "name": "wname", "type": {"data_type": "wvarchar", "length": 41}},
       {"colid": 24, "name": "fixed", "type": {"data_type": "binary", "length": 3}},
       {"colid": 25, "name": "bytes", "type": {"data_type": "varbinary", "length": 8}},
       {"colid": 26, "name": "marks", "type": {"data_type": "int16", "noelts": 3}},
       {"colid": 27, "name": "weights", "type": {"data_type": "double", "noelts": 2}},
       {"colid": 28, "name": "picture", "dwrid": 9, "type": {"data_type": "blob"}},
       {"colid": 29, "name": "words", "dwrid": 10, "type": {"data_type": "clob"}},
       {"colid": 30, "name": "wwords", "dwrid": 11, "type": {"data_type": "wclob"}},
       {"colid": 31, "name": "owner", "refid": 0, "r_tabid": "1", "r_colid": "0", "usage": 2,
        "type": {"data_type": "int32"}},
       {"colid": 32, "name": "must", "not_null": "must_be_there",
        "type": {"data_type": "int32"}}],
     "keys": [
       {"keyid": 0, "name": "by_tiny", "type": "nonunique", "method": "avl", "nocols": 1,
        "cols": [{"colid": "1", "order": "asc"}]},
       {"keyid": 1, "name": "by_code", "type": "nonunique", "method": "avl", "nocols": 1,
        "cols": [{"colid": "20", "order": "desc"}]},
       {"keyid": 2, "dwrid": 12, "type": "unique", "method": "hash", "nocols": 2,
        "cols": [{"colid": "32", "order": "asc"}, {"colid": "21", "order": "desc"}]},
       {"keyid": 3, "dwrid": 13, "name": "by_place", "type": "nonunique", "method": "rtree",
        "nocols": 1, "cols": [{"colid": "27", "order": "asc"}]}],
     "refs": [
       {"refid": 0, "dwrid": 8, "name": "owned", "otabid": "1", "pkeyid": "0",
        "on_upd": "cascade", "on_del": "set null", "nocols": 1, "nosortcols": 1,
        "cols": ["31"], "sortcols": [{"colid": "13", "order": "desc"}]}]},
    {"tabid": 3, "dwrid": 14, "type": "standard", "name": "linked",
     "nocols": 5, "nextcol": 5, "maxcols": 5, "nokeys": 2, "nextkey": 2, "maxkeys": 2,
     "norefs": 1, "maxrefs": 1,
     "columns": [
       {"colid": 0, "name": "a", "type": {"data_type": "int8"}},
       {"colid": 1, "name": "b", "type": {"data_type": "int64"}},
       {"colid": 2, "name": "c", "type": {"data_type": "int16"}},
       {"colid": 3, "name": "d", "type": {"data_type": "char", "length": 3}},
       {"colid": 4, "name": "fk", "refid": 0, "r_tabid": "1", "r_colid": "0",
        "type": {"data_type": "int32"}}],
     "keys": [
       {"keyid": 0, "name": "by_a", "type": "nonunique", "method": "avl", "nocols": 1,
        "cols": [{"colid": "0", "order": "asc"}]},
       {"keyid": 1, "name": "by_b", "type": "nonunique", "method": "avl", "nocols": 1,
        "cols": [{"colid": "1", "order": "asc"}]}],
     "refs": [
       {"refid": 0, "dwrid": 15, "name": "fk", "otabid": "1", "pkeyid": "0",
        "nocols": 1, "cols": ["4"]}]},
    {"tabid": 4, "dwrid": 16, "type": "standard", "name": "ints",
     "nocols": 3, "nextcol": 3, "maxcols": 3,
     "columns": [
       {"colid": 0, "name": "a", "type": {"data_type": "int32"}},
       {"colid": 1, "name": "b", "type": {"data_type": "int32"}},
       {"colid": 2, "name": "c", "type": {"data_type": "int32"}}]},
    {"tabid": 5, "dwrid": 17, "type": "standard", "name": "documents",
     "nocols": 4, "nextcol": 4, "maxcols": 4,
     "columns": [
       {"colid": 0, "name": "n", "type": {"data_type": "int32"}},
       {"colid": 1, "name": "picture", "dwrid": 18, "type": {"data_type": "blob"}},
       {"colid": 2, "name": "m", "type": {"data_type": "int32"}},
       {"colid": 3, "name": "words", "dwrid": 19, "type": {"data_type": "clob"}}]},
    {"tabid": 6, "dwrid": 20, "type": "standard", "name": "dropped",
     "nocols": 2, "nextcol": 3, "maxcols": 3,
     "columns": [
       {"colid": 0, "name": "a", "type": {"data_type": "int32"}},
       {"colid": 1, "type": {"data_type": "int32"}},
       {"colid": 2, "name": "c", "type": {"data_type": "int32"}}]}]}})";

} // namespace oaktest

#endif
