/* The schema: the in-memory catalog of one database.
 *
 * It says how long a row is, where each column lies in it, what a key's bytes
 * are and which drawer stores what. A schema is built once, by the catalog
 * reader or by calling creators and setters in the same order, is finalized, and
 * is then read by many without locks.
 *
 * Law: all that a schema holds lies under its own tag, and sch_destroy frees the
 * whole; triggers alone lie under the tag of their maker. A handle dies with its
 * object. Every schema begins with the system table "_sys_files" at index 0, its
 * key and its three drawers 2 to 4, which all schemas share and nobody changes.
 * Creators do not count: counts and limits are set by the setters, since they
 * come from the catalog.
 *
 * Threads: building belongs to one thread. A finalized schema may be read by any
 * number of threads, but for three caches that are built at first use: the index
 * of names (sch_find_table_by_name), the list of keys (sch_find_key_by_name,
 * sch_iterate_all_keys) and the list of large objects (sch_iterate_all_lob_cols).
 * Whoever shares a schema calls these once before, or holds a lock.
 *
 * Cost: 200 tables of 12 columns take about 1.5 MB. Lookups by index are
 * constant time, by table name O(log n), by other names a scan; a drawer by its
 * number takes O(log n).
 *
 * Contents: life; creators; triggers; identifiers; lookups; the system table;
 * and by inclusion getters and setters (schema_structs.h), finalization and
 * layout (schema_layout.h), multipliers (schema_mult.h), iteration
 * (schema_iterate.h), drops (schema_drop.h).
 *
 *     SCH_INFO sch;
 *     SCH_TBL_INFO ti;
 *     rc = sch_create(&sch);                        // then with each rc tested:
 *     rc = sch_set_max_table(sch, 2);
 *     rc = sch_set_next_table(sch, 2);
 *     rc = sch_set_num_tables(sch, 2);
 *     rc = sch_tbl_create(sch, 1, &ti);
 *     rc = sch_tbl_set_name(ti, "customer");
 *     ...                                           // columns, keys, references
 *     rc = sch_tbl_finalize(ti, OAK_FALSE);
 *     ...
 *     sch_destroy(sch);
 */
#ifndef SCHEMA_H
#define SCHEMA_H

#include "schema_drop.h"
#include "schema_iterate.h"
#include "schema_layout.h"
#include "schema_mult.h"
#include "schema_structs.h"

OAK_C_BEGIN

/* ---- Life -------------------------------------------------------------- */

/* A new schema with nothing but the system table. eINVNULLARG without `psch`;
 * eNOMEMORY. The caller owns it. */
OAK_API OAK_RETCODE sch_create(SCH_INFO *psch);
/* Frees the schema and all in it, its locale too. Null is allowed. */
OAK_API void sch_destroy(SCH_INFO sch);

/* ---- Creators ---------------------------------------------------------- */

/* Each makes a zeroed object at index `id` of its parent and hands it out.
 * eINVNULLARG: the parent or the output is null. eRANGE: the index is above the
 * bound, or at or beyond the capacity. eBADCAT: the place is taken, or the
 * parent is the system table. eNOMEMORY. Nothing has changed after a failure. */

/* Bound: the schema's next table. */
OAK_API OAK_RETCODE sch_tbl_create(SCH_INFO sch, OAK_TBL_INDEX id, SCH_TBL_INFO *pti);
/* Bound: the schema's next drawer. */
OAK_API OAK_RETCODE sch_drawer_create(SCH_INFO sch, OAK_DRAWER id, SCH_DRAWER_INFO *pdi);
/* Bound: below the schema's next domain. The default is vsNOVAL. */
OAK_API OAK_RETCODE sch_dom_create(SCH_INFO sch, OAK_DOM_INDEX id, SCH_DOMAIN_INFO *pmi);
/* Bound: below the table's column capacity. No key, a vsNOVAL default. */
OAK_API OAK_RETCODE sch_col_create(SCH_TBL_INFO ti, OAK_COL_INDEX id, SCH_COL_INFO *pci);
/* Bound: below the table's key capacity. */
OAK_API OAK_RETCODE sch_key_create(SCH_TBL_INFO ti, OAK_KEY_INDEX id, SCH_KEY_INFO *pki);
/* Bound: below the table's next reference. */
OAK_API OAK_RETCODE sch_ref_create(SCH_TBL_INFO ti, OAK_REF_INDEX id, SCH_REF_INFO *pri);

/* ---- Triggers ---------------------------------------------------------- */

/* A zeroed trigger under `tag` with a copy of `name`. eINVNULLARG: a null name
 * or output; eNOMEMORY. */
OAK_API OAK_RETCODE sch_trig_allocate(const char *name, uint16_t sqltrig, uint64_t crtime,
                                      SCH_TRIG_INFO *ptrgi, OSL_MEMTAG tag);
/* The arrays of the trigger, zeroed, for as many entries as its counts say; an
 * earlier array stays with its tag. eINVNULLARG, eNOMEMORY. */
OAK_API OAK_RETCODE sch_trig_alloc_updcols(SCH_TRIG_INFO trgi, OSL_MEMTAG tag);
OAK_API OAK_RETCODE sch_trig_alloc_colrefs(SCH_TRIG_INFO trgi, OSL_MEMTAG tag);
/* A zeroed value for the column reference. eINVNULLARG, eNOMEMORY. */
OAK_API OAK_RETCODE sch_trigcol_alloc_val(SCH_TRIG_COL_INFO tci, OSL_MEMTAG tag);
/* Puts the trigger into the table's list, which ascends by creation time, behind
 * those of the same time. eINVNULLARG; eBADCAT for the system table. */
OAK_API OAK_RETCODE sch_trig_create(SCH_TBL_INFO ti, SCH_TRIG_INFO trgi);

/* ---- Identifiers ------------------------------------------------------- */

/* The public number of an object, stable as long as the schema: bits 15 and 16
 * tell the kind (00 column, 01 key, 10 table, 11 reference), the low 15 bits
 * hold the index, the bits above 16 the table's index. */
OAK_API uint32_t sch_col_constant(SCH_COL_INFO_C ci);
OAK_API uint32_t sch_key_constant(SCH_KEY_INFO_C ki);
OAK_API uint32_t sch_tbl_constant(SCH_TBL_INFO_C ti);
OAK_API uint32_t sch_ref_constant(SCH_REF_INFO_C ri);

/* ---- Lookups ----------------------------------------------------------- */

/* Lookups take read-only parents and return the object's own handle, null when
 * there is none; who only reads keeps it in the _C type. Names compare without
 * regard to the case of ASCII letters. */

/* A user table by name. `nameNdx` (may be null) gets its position in the order
 * of names, on a miss the position where it would stand; it is untouched when
 * the schema counts no user table. The index of names is built at the first
 * call and goes stale in one way: a table that is added or renamed is found only
 * after sch_set_num_tables. Null also when the index cannot be built, for want
 * of memory or because two tables bear one name. */
OAK_API SCH_TBL_INFO sch_find_table_by_name(SCH_INFO_C sch, const char *name,
                                            OAK_TBL_INDEX *nameNdx);
/* The table whose row drawer is `drawer`: a scan. */
OAK_API SCH_TBL_INFO sch_find_table(SCH_INFO_C sch, OAK_DRAWER drawer);
/* The table at an index; for 0 the system table, without a look at the schema. */
OAK_API SCH_TBL_INFO sch_find_table_by_ndx(SCH_INFO_C sch, OAK_TBL_INDEX ndx);
OAK_API SCH_TBL_INFO sch_table(SCH_INFO_C sch, OAK_TBL_INDEX ndx); /* the same */
/* A table by its constant. `pndx` (may be null) gets 0 for the system table,
 * OAK_INDEX_NONE when `id` is no table's constant, and when no such table exists
 * the highest index that holds one; for a table that exists it is untouched. */
OAK_API SCH_TBL_INFO sch_find_table_by_constant(SCH_INFO_C sch, uint32_t id, OAK_TBL_INDEX *pndx);

/* A column of a table, dropped ones passed over. */
OAK_API SCH_COL_INFO sch_find_col_by_name(SCH_TBL_INFO_C ti, const char *name);
OAK_API SCH_COL_INFO sch_find_col_by_ndx(SCH_INFO_C sch, OAK_TBL_INDEX table, OAK_COL_INDEX col);
OAK_API SCH_COL_INFO sch_find_col_by_constant(SCH_INFO_C sch, uint32_t id);
/* The position of column `ndx` among the live ones; OAK_INDEX_NONE when it was
 * dropped. While no column was dropped it is `ndx` itself, whatever that is. */
OAK_API OAK_COL_INDEX sch_find_col_active_ndx(SCH_TBL_INFO_C ti, OAK_COL_INDEX ndx);

/* The first key of any user table that bears the name. */
OAK_API SCH_KEY_INFO sch_find_key_by_name(SCH_INFO_C sch, const char *name);
OAK_API SCH_KEY_INFO sch_find_key_by_ndx(SCH_INFO_C sch, OAK_TBL_INDEX table, OAK_KEY_INDEX key);
OAK_API SCH_KEY_INFO sch_find_key_by_constant(SCH_INFO_C sch, uint32_t id);

/* A reference, by the table that holds it. */
OAK_API SCH_REF_INFO sch_find_ref_by_ndx(SCH_INFO_C sch, OAK_TBL_INDEX table, OAK_REF_INDEX ref);
OAK_API SCH_REF_INFO sch_find_ref_by_constant(SCH_INFO_C sch, uint32_t id);

/* What stands at an index; null at or beyond the limit. Dropped columns and keys
 * that keep a record are returned. */
OAK_API SCH_COL_INFO sch_get_col_by_index(SCH_TBL_INFO_C ti, OAK_COL_INDEX ndx);
OAK_API SCH_KEY_INFO sch_get_key_by_index(SCH_TBL_INFO_C ti, OAK_KEY_INDEX ndx);
OAK_API SCH_REF_INFO sch_get_ref_by_index(SCH_TBL_INFO_C ti, OAK_REF_INDEX ndx);
OAK_API SCH_DOMAIN_INFO sch_domain(SCH_INFO_C sch, OAK_DOM_INDEX ndx);
/* The drawer of that number; 2 to 4 are the system's, without a look at the
 * schema. */
OAK_API SCH_DRAWER_INFO sch_drawer(SCH_INFO_C sch, OAK_DRAWER id);

/* Adds up the references of all tables into the schema's count. */
OAK_API void sch_calc_num_refs(SCH_INFO sch);

/* ---- The system table -------------------------------------------------- */

/* The table, and two of its columns; the same records in every schema. */
OAK_API SCH_TBL_INFO_C sch_get_sysfiles_table(void);
OAK_API SCH_COL_INFO_C sch_get_sysfiles_blob_col(void);    /* "data_blob" */
OAK_API SCH_COL_INFO_C sch_get_sysfiles_version_col(void); /* "version" */

OAK_C_END

#endif
