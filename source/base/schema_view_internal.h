// Internal to the schema and the item formats: a finalized table as the item
// formats read it, inline, since every column of every row passes here. The
// records stay the schema's; nothing is changed through these.
#ifndef SCHEMA_VIEW_INTERNAL_H
#define SCHEMA_VIEW_INTERNAL_H

#include "schema.h"
#include "schema_internal.h"

namespace schema_view {

/// The row buffer's layout.
inline const OAK_ROW_BUFFER_INFO &row_layout(SCH_TBL_INFO_C ti) {
    return ti->bufferInfo;
}

/// The column with an index, live or dropped; null where the table has none.
inline SCH_COL_INFO_C column_at(SCH_TBL_INFO_C ti, uint32_t ndx) {
    return oak::schema::entry(ti->cols, ti->next_col, ndx);
}

/// The column at a position among the live columns, below num_cols. Null where the
/// catalog counted more columns than it named: only a named column was laid out
/// and has a place in the row buffer.
inline SCH_COL_INFO_C live_column(SCH_TBL_INFO_C ti, OAK_COL_INDEX position) {
    const SCH_COL_INFO_C ci =
        column_at(ti, ti->active_ndx != nullptr ? ti->active_ndx[position] : position);
    return ci != nullptr && ci->name != nullptr ? ci : nullptr;
}

/// The position of a column among the live ones; OAK_INDEX_NONE for a dropped one.
inline OAK_COL_INDEX live_position(SCH_TBL_INFO_C ti, SCH_COL_INFO_C ci) {
    return ci->name != nullptr ? sch_find_col_active_ndx(ti, ci->ndx) : OAK_INDEX_NONE;
}

inline SCH_TYPE_INFO_C type_of(SCH_COL_INFO_C ci) {
    return oak::schema::effective_type(ci);
}

inline bool is_large_object(SCH_COL_INFO_C ci) {
    return oak::is_large_object(type_of(ci)->type);
}

inline bool is_rowid(SCH_COL_INFO_C ci) {
    return type_of(ci)->type == OAK_ROWID;
}

/// A foreign key column: its value is reached through the join.
inline bool is_foreign_key(SCH_COL_INFO_C ci) {
    return ci->ref != nullptr;
}

/// The key with an AVL number, null where none is.
inline SCH_KEY_INFO_C avl_key(SCH_TBL_INFO_C ti, OAK_KEY_INDEX number) {
    return oak::schema::entry(ti->avls, ti->next_avl, number);
}

} // namespace schema_view

#endif
