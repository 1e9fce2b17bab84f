/* Finalization: from declared columns, keys and references to the byte layout of
 * rows, key buffers, sort buffers and buckets, and the texts made from names.
 *
 * Law: the layout is stored as raw bytes in expanded items, so a change of any
 * rule here changes stored data. Finalize each column, then each key and
 * reference, then the table, before a row of it is packed; a changed table is
 * finalized again.
 *
 * A value lies at the next offset that its type's alignment allows. After all
 * values follows one has-value byte for each nullable column (1: a value, 0:
 * NULL). Offset 0 means "no such byte", so a nullable column that falls on
 * offset 0, because no value lies before it, has none.
 *
 * Rests on the platform's osl_align and on the type tables; the catalog reader
 * and whoever alters a schema call it. */
#ifndef SCHEMA_LAYOUT_H
#define SCHEMA_LAYOUT_H

#include "schema_handles.h"
#include "schema_types.h"

OAK_C_BEGIN

/* ---- Finalization ------------------------------------------------------ */

/* Tests a column. eBADCAT: it has no table, neither a type nor a domain, is a
 * large object without a drawer, or has a drawer and is none. eINVNULLARG. */
OAK_API OAK_RETCODE sch_col_finalize(SCH_COL_INFO ci);

/* Lays out the table: columns, keys, sort columns, the list of its drawers, the
 * index of live columns and the row buffer. `unicode_enabled` changes nothing.
 * eBADCAT: a limit or count is above its capacity, a type is unknown, a column,
 * a row or a buffer is too long, an element or sort column has no column, or
 * the count of live columns is not the number of named ones. eNOMEMORY,
 * eINVNULLARG. After a failure the table is half done: destroy the schema. Cost:
 * linear in columns, elements and references. */
OAK_API OAK_RETCODE sch_tbl_finalize(SCH_TBL_INFO ti, OAK_BOOL_T unicode_enabled);

/* Completes a key once its elements are set; to be called once for each key, as
 * an AVL key takes its AVL number here, with or without elements. eBADCAT: an
 * element has no column; eRANGE: no AVL number is left; eNOMEMORY,
 * eINVNULLARG. */
OAK_API OAK_RETCODE sch_key_finalize(SCH_KEY_INFO ki);
/* Lays out the key buffer alone. An element that is NOT NULL or in the primary
 * key has no has-value byte. */
OAK_API void sch_key_finalize_offsets(SCH_KEY_INFO ki);
/* Gives a nameless key the names of its columns joined by "_", if it has any.
 * eBADCAT: an element has no column; eNOMEMORY, eINVNULLARG. */
OAK_API OAK_RETCODE sch_key_finalize_name(SCH_KEY_INFO ki);

/* Completes a reference: its name, and its columns that are linked become
 * foreign key columns of it. eBADCAT: a sort column is not set, or as
 * sch_ref_finalize_name; eNOMEMORY, eINVNULLARG. */
OAK_API OAK_RETCODE sch_ref_finalize(SCH_REF_INFO ri);
/* Gives a nameless reference that has columns the name of its table, "_", and
 * the name of its first column. eBADCAT: that column is not set; eNOMEMORY,
 * eINVNULLARG. */
OAK_API OAK_RETCODE sch_ref_finalize_name(SCH_REF_INFO ri);
/* Decides whether an update of the referred row needs write access to the join
 * list. */
OAK_API void sch_ref_finalize_locking(SCH_REF_INFO ri);
/* True when the name is the one that sch_ref_finalize_name would give, without
 * regard to case; false when none can be made. */
OAK_API OAK_BOOL_T sch_ref_name_default(SCH_REF_INFO_C ri);

/* ---- Buffer descriptors ------------------------------------------------ */

/* Fill the descriptor kept in the object from its lengths and counts. */
OAK_API void sch_tbl_generate_buffer_info(SCH_TBL_INFO ti);
OAK_API void sch_bucket_generate_buffer_info(SCH_KEY_INFO ki);
/* Copy it out. */
OAK_API void sch_tbl_get_buffer_info(SCH_TBL_INFO_C ti, OAK_ROW_BUFFER_INFO *info);
OAK_API void sch_bucket_get_buffer_info(SCH_KEY_INFO_C ki, OAK_BUCKET_BUFFER_INFO *info);

/* ---- Symbol texts ------------------------------------------------------ */

/* Each writes a symbol for generated source into `text` of `size` bytes, in
 * upper case. sTRUNCATE: it did not fit; what fits stands there, in the case of
 * the names. eINVNULLARG: a null object or text. */
OAK_API OAK_RETCODE sch_tbl_enum_text(SCH_TBL_INFO_C ti, char *text, size_t size); /* TABLE_T */
OAK_API OAK_RETCODE sch_col_enum_text(SCH_COL_INFO_C ci, char *text, size_t size); /* COL_T_C */
OAK_API OAK_RETCODE sch_key_enum_text(SCH_KEY_INFO_C ki, char *text, size_t size); /* KEY_T_K */
OAK_API OAK_RETCODE sch_ref_enum_text(SCH_REF_INFO_C ri, char *text, size_t size); /* REF_R */
/* "t_k_KEY", in upper case only when `upperCase` is true. */
OAK_API OAK_RETCODE sch_key_data_type_text(SCH_KEY_INFO_C ki, OAK_BOOL_T upperCase, char *text,
                                           size_t byteLen);

OAK_C_END

#endif
