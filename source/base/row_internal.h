// Internal to the row formats: how a row in memory begins.
#ifndef ROW_INTERNAL_H
#define ROW_INTERNAL_H

#include "row.h"
#include "schema_view_internal.h"

/// Fills every field: no memory yet, every pointer null.
void row_init(OAK_ROW *row, OAK_ROW_FORMAT format, OAK_ROWID_T rowid, SCH_TBL_INFO_C ti,
              OSL_MEMTAG tag, OAK_ERR hErr, DB_INSTANCE *dbi);
/// Allocates the row buffer of the table, zero-filled; nothing for a size of 0.
OAK_RETCODE row_allocate(OAK_ROW *row);
/// Points avls, joins and the column areas into the row buffer, each only when
/// the table has any.
void row_point(OAK_ROW *row);
/// A buffer record from the database's pool, or from the row's tag without a
/// database, initialised under the tag; null when memory ends.
OAK_BUFFER *row_take_buffer(const OAK_ROW *row);
/// Frees the buffer's bytes and gives the record back.
void row_give_buffer(const OAK_ROW *row, OAK_BUFFER *buffer);
/// Reports on the row's handle; `where` is the name that upper layers know.
OAK_RETCODE row_report(const OAK_ROW *row, OAK_RETCODE status, const char *where, int32_t line);

/// True when a column goes into the compact stream.
bool calc_storable_buffer(SCH_COL_INFO_C ci, const OAK_ROW *row);
/// Writes one closed group, whose columns are live and storable: its size, its first
/// index, its values.
OAK_RETCODE row_pack_compact_column_group_buffer(OAK_COL_INDEX grp_first, OAK_COL_INDEX grp_size,
                                                 const OAK_ROW *row, B_ENCODER encoder);

#endif
