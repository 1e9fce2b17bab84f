/* Iteration over a schema.
 *
 * Law: an iterator takes the parent, the object that the call before returned
 * (null to begin) and a direction, and returns the next object, null at the end.
 * It keeps nothing: the place follows from the object passed in, which must
 * still exist. Forward begins at the lowest index, reverse at the highest; holes
 * are passed over. A column or key without a name is a dropped one and not
 * "active". Iterators take read-only parents and return the object's own handle.
 *
 *     for (ci = sch_iterate_cols_active(ti, NULL, OAK_FORWARD); ci;
 *          ci = sch_iterate_cols_active(ti, ci, OAK_FORWARD))
 *
 * Cost: a step is constant time but for holes, the drawers of the schema
 * (O(log n)) and the lists of related objects, which search the previous object.
 *
 * Threads: pure reads, but for sch_iterate_all_keys and sch_iterate_all_lob_cols:
 * these keep their place inside the schema, so that one walk at a time is
 * possible. */
#ifndef SCHEMA_ITERATE_H
#define SCHEMA_ITERATE_H

#include "schema_handles.h"
#include "schema_types.h"

OAK_C_BEGIN

/* ---- Of a schema ------------------------------------------------------- */

/* User tables; none for a null schema. */
OAK_API SCH_TBL_INFO sch_iterate_tables(SCH_INFO_C sch, SCH_TBL_INFO_C ti, OAK_DIRECTION dir);
/* The same with the system table; for a null schema that one alone. */
OAK_API SCH_TBL_INFO sch_iterate_all_tables(SCH_INFO_C sch, SCH_TBL_INFO_C ti, OAK_DIRECTION dir);
/* Domains with an index below the number of domains. */
OAK_API SCH_DOMAIN_INFO sch_iterate_domains(SCH_INFO_C sch, SCH_DOMAIN_INFO_C mi,
                                            OAK_DIRECTION dir);
/* Drawers from 5; in reverse the walk ends above drawer 5. */
OAK_API SCH_DRAWER_INFO sch_iterate_user_drawers(SCH_INFO_C sch, SCH_DRAWER_INFO_C di,
                                                 OAK_DIRECTION dir);
/* Drawers from 2; in reverse the walk ends above drawer 2. For a null schema the
 * system drawers. */
OAK_API SCH_DRAWER_INFO sch_iterate_all_drawers(SCH_INFO_C sch, SCH_DRAWER_INFO_C di,
                                                OAK_DIRECTION dir);
/* Drawers 2 to 4, in reverse 4 to 2; the schema is not looked at. */
OAK_API SCH_DRAWER_INFO sch_iterate_system_drawers(SCH_INFO_C sch, SCH_DRAWER_INFO_C di,
                                                   OAK_DIRECTION dir);
/* All keys of user tables by table and index, from a list that is built at first
 * use; null also when it cannot be built. Only whether `ki` is null counts: the
 * place is kept in the list. */
OAK_API SCH_KEY_INFO sch_iterate_all_keys(SCH_INFO_C sch, SCH_KEY_INFO_C ki, OAK_DIRECTION dir);
/* The same for the active large-object columns of all tables, the system table
 * included; for a null schema the one of the system table. */
OAK_API SCH_COL_INFO sch_iterate_all_lob_cols(SCH_INFO_C sch, SCH_COL_INFO_C ci, OAK_DIRECTION dir);
/* Builds the list of keys, in place of an earlier one. eNOMEMORY leaves none;
 * eINVNULLARG. */
OAK_API OAK_RETCODE sch_create_key_list(SCH_INFO sch);

/* ---- Of a table -------------------------------------------------------- */

/* All drawers of a finalized table, in the order that finalization gave. */
OAK_API SCH_DRAWER_INFO sch_iterate_table_drawers(SCH_TBL_INFO_C ti, SCH_DRAWER_INFO_C di,
                                                  OAK_DIRECTION dir);
/* Columns, dropped ones included; named ones; those that are no large objects;
 * those that are. */
OAK_API SCH_COL_INFO sch_iterate_cols(SCH_TBL_INFO_C ti, SCH_COL_INFO_C ci, OAK_DIRECTION dir);
OAK_API SCH_COL_INFO sch_iterate_cols_active(SCH_TBL_INFO_C ti, SCH_COL_INFO_C ci,
                                             OAK_DIRECTION dir);
OAK_API SCH_COL_INFO sch_iterate_non_lob_cols(SCH_TBL_INFO_C ti, SCH_COL_INFO_C ci,
                                              OAK_DIRECTION dir);
OAK_API SCH_COL_INFO sch_iterate_lob_cols(SCH_TBL_INFO_C ti, SCH_COL_INFO_C ci, OAK_DIRECTION dir);
/* Keys, nameless ones included; named ones. */
OAK_API SCH_KEY_INFO sch_iterate_keys(SCH_TBL_INFO_C ti, SCH_KEY_INFO_C ki, OAK_DIRECTION dir);
OAK_API SCH_KEY_INFO sch_iterate_keys_active(SCH_TBL_INFO_C ti, SCH_KEY_INFO_C ki,
                                             OAK_DIRECTION dir);
/* References that the table holds. In reverse a hole at or above the number of
 * references ends the walk. */
OAK_API SCH_REF_INFO sch_iterate_refs(SCH_TBL_INFO_C ti, SCH_REF_INFO_C ri, OAK_DIRECTION dir);
/* References that point at the table, a plain walk over its number of owners: a
 * hole ends it. */
OAK_API SCH_REF_INFO sch_iterate_ref_owners(SCH_TBL_INFO_C ti, SCH_REF_INFO_C ri,
                                            OAK_DIRECTION dir);
/* Triggers by creation time; `dir` changes nothing. */
OAK_API SCH_TRIG_INFO sch_iterate_all_triggers(SCH_TBL_INFO_C ti, SCH_TRIG_INFO_C trgi,
                                               OAK_DIRECTION dir);
/* Triggers of an event and a timing; OAK_TRIG_WHENEVER takes any timing. */
OAK_API SCH_TRIG_INFO sch_iterate_triggers(SCH_TBL_INFO_C ti, SCH_TRIG_INFO_C trgi,
                                           OAK_TRIG_TIMING timing, OAK_TRIG_EVENT event);

/* ---- Of a column, a key, a reference, a trigger ------------------------ */

/* Keys that use the column, references that use it, references that sort on it. */
OAK_API SCH_KEY_INFO sch_iterate_col_keys(SCH_COL_INFO_C ci, SCH_KEY_INFO_C ki, OAK_DIRECTION dir);
OAK_API SCH_REF_INFO sch_iterate_col_refs(SCH_COL_INFO_C ci, SCH_REF_INFO_C ri, OAK_DIRECTION dir);
OAK_API SCH_REF_INFO sch_iterate_sortcol_refs(SCH_COL_INFO_C ci, SCH_REF_INFO_C ri,
                                              OAK_DIRECTION dir);
/* The elements of a key. */
OAK_API SCH_ELEM_INFO sch_iterate_key_elems(SCH_KEY_INFO_C ki, SCH_ELEM_INFO_C ei,
                                            OAK_DIRECTION dir);
/* The referencing columns and the sort columns of a reference. */
OAK_API SCH_COL_INFO sch_iterate_ref_cols(SCH_REF_INFO_C ri, SCH_COL_INFO_C ci, OAK_DIRECTION dir);
OAK_API SCH_SORT_INFO sch_iterate_sort_cols(SCH_REF_INFO_C ri, SCH_SORT_INFO_C si,
                                            OAK_DIRECTION dir);
/* The column references of a trigger; OAK_TRIG_OLDNEW takes any. */
OAK_API SCH_TRIG_COL_INFO sch_iterate_trig_cols(SCH_TRIG_INFO_C trgi, SCH_TRIG_COL_INFO_C tcol,
                                                OAK_TRIG_COL_REF ref);

OAK_C_END

#endif
