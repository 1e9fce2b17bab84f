// The system table "_sys_files": a small file store in every database. A unique
// name, text of up to 63480 bytes in "data" or larger content in "data_blob",
// the length in "data_len", and a version.
//
// The records are laid out by hand and never pass through finalization; their
// numbers size stored rows. Three of them differ from what finalization would
// give, and stand: the row buffer is 900 bytes longer than its parts, the blob
// column carries the operations of a character large object, and its drawer
// names column 3 as its source, while the column's index is 4.
#include "schema_sysfiles.h"

#include "schema.h"

using oak::schema::row_column;

namespace {

constexpr _SCH_TYPE_INFO type_of(OAK_TYPE type, uint16_t byte_len, const OAK_TYPE_INFO *type_info) {
    _SCH_TYPE_INFO info{};
    info.type = type;
    info.byte_len = byte_len;
    info.type_info = type_info;
    return info;
}

/// A column without key, domain or default.
constexpr _SCH_COL_INFO column(OAK_COL_INDEX ndx, const char *name, _SCH_TYPE_INFO type,
                               OAK_BOOL_T not_null, uint32_t ptr,
                               OAK_HAS_VALUE_OFFSET has_value_off) {
    _SCH_COL_INFO info{};
    info.ndx = ndx;
    info.table = const_cast<SCH_TBL_INFO>(&_SysFilesTable);
    info.name = name;
    info.not_null = not_null;
    info.type = type;
    info.keyid = OAK_INDEX_NONE;
    info.ptr = ptr;
    info.has_value_off = has_value_off;
    return info;
}

constexpr _SCH_COL_INFO name_column() {
    _SCH_COL_INFO info =
        column(0, "name", type_of(OAK_CHAR, 1024, &utf8_type_info), OAK_TRUE, 0, 0);
    info.keyid = 0;
    info.key = const_cast<SCH_KEY_INFO>(&_SysFilesNameKey);
    info.usage = OAK_COL_USAGE_KEY;
    info.num_keys = 1;
    info.keys = const_cast<SCH_KEY_INFO *>(_SysFilesColNameKeys);
    return info;
}

constexpr _SCH_COL_INFO blob_column() {
    _SCH_COL_INFO info =
        column(4, "data_blob", type_of(OAK_BLOB, 0, &clob_type_info), OAK_FALSE, 0, 64521);
    info.drawer = const_cast<SCH_DRAWER_INFO>(&_SysFilesDrawer2);
    return info;
}

constexpr _SCH_DRAWER_INFO drawer(OAK_DRAWER ndx, OAK_DRAWER tbl_ndx, OAK_DRAWER_TYPE type,
                                  OAK_INDEX src_id) {
    _SCH_DRAWER_INFO info{};
    info.ndx = ndx;
    info.tbl_ndx = tbl_ndx;
    info.type = type;
    info.src_id = src_id;
    return info;
}

constexpr _SCH_DRAWER_INFO table_drawer() {
    _SCH_DRAWER_INFO info = drawer(2, 0, OAK_DRAWER_TABLE, 0);
    info.obj.ti = const_cast<SCH_TBL_INFO>(&_SysFilesTable);
    return info;
}

constexpr _SCH_DRAWER_INFO key_drawer() {
    _SCH_DRAWER_INFO info = drawer(3, 1, OAK_DRAWER_BTREE, 0);
    info.obj.ki = const_cast<SCH_KEY_INFO>(&_SysFilesNameKey);
    return info;
}

constexpr _SCH_DRAWER_INFO blob_drawer() {
    _SCH_DRAWER_INFO info = drawer(4, 2, OAK_DRAWER_BLOB, 3);
    info.obj.ci = const_cast<SCH_COL_INFO>(&_SysFilesColBlob);
    return info;
}

constexpr _SCH_ELEM_INFO name_element() {
    _SCH_ELEM_INFO info{};
    info.key = const_cast<SCH_KEY_INFO>(&_SysFilesNameKey);
    info.col = const_cast<SCH_COL_INFO>(&_SysFilesColName);
    info.dir = OAK_FORWARD;
    return info;
}

constexpr _SCH_KEY_INFO name_key() {
    _SCH_KEY_INFO info{};
    info.table = const_cast<SCH_TBL_INFO>(&_SysFilesTable);
    info.name = "name";
    info.type = OAK_KEY_TYPE_PRIMARY;
    info.method = OAK_KEY_METHOD_BTREE;
    info.drawer = const_cast<SCH_DRAWER_INFO>(&_SysFilesDrawer1);
    info.num_elems = 1;
    info.elems = const_cast<_SCH_ELEM_INFO *>(&_SysFilesNameKeyElem0);
    info.byte_len = 1024;
    info.has_value_off = 1024;
    info.inline_key = OAK_TRUE;
    return info;
}

constexpr OAK_ROW_BUFFER_INFO row_buffer() {
    OAK_ROW_BUFFER_INFO info{};
    info.col_data_offset = 24;
    info.col_data_size = 64528;
    info.row_buffer_size = 65452;
    info.num_cols = 5;
    return info;
}

constexpr _SCH_TBL_INFO table() {
    _SCH_TBL_INFO info{};
    info.name = "_sys_files";
    info.type = OAK_TABLE_STANDARD;
    info.drawer = const_cast<SCH_DRAWER_INFO>(&_SysFilesDrawer0);
    info.num_cols = info.next_col = info.max_col = 5;
    info.cols = const_cast<SCH_COL_INFO *>(_SysFilesCols);
    info.max_keys = info.num_keys = info.next_key = 1;
    info.keys = const_cast<SCH_KEY_INFO *>(_SysFilesKeys);
    info.pkey = const_cast<SCH_KEY_INFO>(&_SysFilesNameKey);
    info.num_drawers = info.max_drawers = 3;
    info.drawers = const_cast<SCH_DRAWER_INFO *>(_SysFilesDrawers);
    info.has_value_off = 64520;
    info.byte_len = 64528;
    info.bufferInfo = row_buffer();
    info.row_columns = const_cast<SCH_ROW_COLUMN *>(_SysFilesRowColumns);
    info.num_row_columns = 5;
    return info;
}

} // namespace

constinit const _SCH_TBL_INFO _SysFilesTable = table();

constexpr _SCH_COL_INFO _SysFilesColName = name_column();
constexpr _SCH_COL_INFO _SysFilesColData =
    column(1, "data", type_of(OAK_CHAR, 63480, &utf8_type_info), OAK_FALSE, 1024, 64520);
constexpr _SCH_COL_INFO _SysFilesColLen =
    column(2, "data_len", type_of(OAK_UINT64, 8, &uint64_type_info), OAK_TRUE, 64504, 0);
constexpr _SCH_COL_INFO _SysFilesColVersion =
    column(3, "version", type_of(OAK_UINT64, 8, &uint64_type_info), OAK_TRUE, 64512, 0);
constexpr _SCH_COL_INFO _SysFilesColBlob = blob_column();

constinit const SCH_ROW_COLUMN _SysFilesRowColumns[5] = {
    row_column(&_SysFilesColName), row_column(&_SysFilesColData), row_column(&_SysFilesColLen),
    row_column(&_SysFilesColVersion), row_column(&_SysFilesColBlob)};

constinit const _SCH_DRAWER_INFO _SysFilesDrawer0 = table_drawer();
constinit const _SCH_DRAWER_INFO _SysFilesDrawer1 = key_drawer();
constinit const _SCH_DRAWER_INFO _SysFilesDrawer2 = blob_drawer();

constinit const _SCH_KEY_INFO _SysFilesNameKey = name_key();
constinit const _SCH_ELEM_INFO _SysFilesNameKeyElem0 = name_element();

constinit const SCH_COL_INFO _SysFilesCols[5] = {
    const_cast<SCH_COL_INFO>(&_SysFilesColName), const_cast<SCH_COL_INFO>(&_SysFilesColData),
    const_cast<SCH_COL_INFO>(&_SysFilesColLen), const_cast<SCH_COL_INFO>(&_SysFilesColVersion),
    const_cast<SCH_COL_INFO>(&_SysFilesColBlob)};
constinit const SCH_DRAWER_INFO _SysFilesDrawers[3] = {
    const_cast<SCH_DRAWER_INFO>(&_SysFilesDrawer0), const_cast<SCH_DRAWER_INFO>(&_SysFilesDrawer1),
    const_cast<SCH_DRAWER_INFO>(&_SysFilesDrawer2)};
constinit const SCH_KEY_INFO _SysFilesKeys[1] = {const_cast<SCH_KEY_INFO>(&_SysFilesNameKey)};
constinit const SCH_KEY_INFO _SysFilesColNameKeys[1] = {
    const_cast<SCH_KEY_INFO>(&_SysFilesNameKey)};

SCH_TBL_INFO_C sch_get_sysfiles_table(void) {
    return &_SysFilesTable;
}

SCH_COL_INFO_C sch_get_sysfiles_blob_col(void) {
    return &_SysFilesColBlob;
}

SCH_COL_INFO_C sch_get_sysfiles_version_col(void) {
    return &_SysFilesColVersion;
}
