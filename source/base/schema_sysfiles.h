// Internal to the schema: the records of the system table "_sys_files".
//
// Law: they are constant, lie in read-only memory and are shared by all schemas
// and threads; their `sch` is null. The schema's handles are mutable ones, so
// the handles below are too, and every function that changes an object refuses
// one whose schema is null.
#ifndef SCHEMA_SYSFILES_H
#define SCHEMA_SYSFILES_H

#include "schema_internal.h"

extern const _SCH_TBL_INFO _SysFilesTable;
extern const _SCH_COL_INFO _SysFilesColName;
extern const _SCH_COL_INFO _SysFilesColData;
extern const _SCH_COL_INFO _SysFilesColLen;
extern const _SCH_COL_INFO _SysFilesColVersion;
extern const _SCH_COL_INFO _SysFilesColBlob;
extern const _SCH_DRAWER_INFO _SysFilesDrawer0;
extern const _SCH_DRAWER_INFO _SysFilesDrawer1;
extern const _SCH_DRAWER_INFO _SysFilesDrawer2;
extern const _SCH_KEY_INFO _SysFilesNameKey;
extern const _SCH_ELEM_INFO _SysFilesNameKeyElem0;

extern const SCH_COL_INFO _SysFilesCols[5];
extern const SCH_ROW_COLUMN _SysFilesRowColumns[5];
extern const SCH_DRAWER_INFO _SysFilesDrawers[3];
extern const SCH_KEY_INFO _SysFilesKeys[1];
extern const SCH_KEY_INFO _SysFilesColNameKeys[1];

namespace oak::schema {

enum : OAK_DRAWER { kFirstSystemDrawer = 2, kLastSystemDrawer = 4 };

constexpr bool is_system_drawer(OAK_DRAWER id) {
    return id >= kFirstSystemDrawer && id <= kLastSystemDrawer;
}

/// The handle by which schemas hold the system table.
inline SCH_TBL_INFO system_table() {
    return own_handle(&_SysFilesTable);
}

} // namespace oak::schema

#endif
