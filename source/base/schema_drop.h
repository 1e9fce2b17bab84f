/* Removing objects from a schema.
 *
 * Law: a drop is for a schema in the hands of one thread. It frees the object
 * and leaves no pointer to it inside the schema; handles that the caller keeps
 * are void. The indexes of what remains do not change, and no count falls below
 * zero. Where a table, a column or a key goes, the index of names and the lists
 * of keys and of large objects are discarded, and built again at their next use.
 * eINVNULLARG: a null object; eBADCAT: it belongs to the system table. Nothing
 * here allocates.
 *
 * A dropped column stays in its table as a record without a name, so that its
 * index stays taken; after the drop of a column the table must be finalized
 * again before rows are packed. */
#ifndef SCHEMA_DROP_H
#define SCHEMA_DROP_H

#include "schema_handles.h"
#include "schema_types.h"

OAK_C_BEGIN

/* Drops a table with its keys and references. Its drawers stay: drop them first
 * with sch_tbl_drawers_drop. eRANGE: its index is not below the schema's next
 * table. */
OAK_API OAK_RETCODE sch_tbl_drop(SCH_TBL_INFO ti);
/* Drops the table's row drawer and the drawers from position 1 of its list; the
 * table then has none in its list. eRANGE: it has no row drawer below the
 * schema's next drawer; the others are dropped all the same. */
OAK_API OAK_RETCODE sch_tbl_drawers_drop(SCH_TBL_INFO_C ti);
/* Drops a column: its name, its blob drawer, its domain if no other column has
 * it. The column keeps its domain's type. A column without a name is left as it
 * is. */
OAK_API OAK_RETCODE sch_tbl_col_drop(SCH_COL_INFO ci);
/* Drops a key and its drawer. An AVL key stays in the table's keys as a record
 * without name and elements, and counted, since the rows hold its links. */
OAK_API void sch_key_drop_fcn(SCH_KEY_INFO ki);
/* Drops reference `id` of the table, with its drawer. A column that is used by
 * no other reference loses that bit of its usage. sOKAY when there is none;
 * eRANGE: `id` is not below the table's next reference. */
OAK_API OAK_RETCODE sch_ref_drop(SCH_TBL_INFO ti, OAK_REF_INDEX id);
/* Drops a domain unless a column of a user table, live or dropped, has it; then
 * it stays, and the result is sOKAY. */
OAK_API OAK_RETCODE sch_dom_drop(SCH_DOMAIN_INFO_C mi);
/* Takes the first trigger of that name, in any case, out of the table's list and
 * leaves the record to its tag. eNOTFOUND. */
OAK_API OAK_RETCODE sch_trig_drop(SCH_TBL_INFO ti, const char *name);

OAK_C_END

#endif
