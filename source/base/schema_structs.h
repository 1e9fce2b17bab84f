/* Getters and setters of the schema's objects.
 *
 * Law of the getters: they take a read-only handle that must not be null, never
 * fail, and cost a field access or two. A getter of an object returns that
 * object's own handle, or null when there is none; who only reads keeps it in
 * the _C type, which is what the few getters that end in _c return. A getter of
 * an index returns OAK_INDEX_NONE, of a drawer number OAK_DRAWER_NONE, when there
 * is nothing to number. Texts belong to the schema and are null when not set.
 * "Bytes" are bytes of the column data, of a key buffer or of a sort buffer, as
 * the function says.
 *
 * Law of the setters: they return sOKAY, or a failure that leaves the object as
 * it was. eINVNULLARG: the object is null. eBADCAT: the object is part of the
 * system table, which never changes; or what the comment of the setter says.
 * eNOMEMORY: no memory for a text, an array or a list entry. Texts are copied
 * under the schema's tag, and null clears them.
 *
 * Building belongs to one thread; getters of a finalized schema may run on any
 * number of threads.
 *
 * Contents: helpers; schema; type; domain; drawer; table; column; key and
 * element; reference and sort column; trigger. */
#ifndef SCHEMA_STRUCTS_H
#define SCHEMA_STRUCTS_H

#include "schema_handles.h"
#include "schema_type.h"
#include "schema_types.h"

OAK_C_BEGIN

/* ---- Helpers of the setters -------------------------------------------- */

/* The one rule for every array's capacity: makes room at `*ptr` for `new_items`
 * items of `item_size` bytes, where there is room for `curr_items`. The new part
 * is zeroed. Equal sizes do nothing. eRANGE for a smaller size; eNOMEMORY; both
 * leave the array as it was. eINVNULLARG: a null `ptr`. Cost: amortised, whatever
 * the steps. */
OAK_API OAK_RETCODE sch_new_size_input(uint32_t curr_items, uint32_t new_items, size_t item_size,
                                       void **ptr, OSL_MEMTAG tag);

/* Replaces the text at `*pstr` by a copy of `val` under `tag`; a null `val`
 * clears it. `keepCase` changes nothing: every text keeps its case. eNOMEMORY
 * leaves the old text. eINVNULLARG: a null `pstr`. */
OAK_API OAK_RETCODE sch_string_input(const char *val, const char **pstr, OAK_BOOL_T keepCase,
                                     OSL_MEMTAG tag);

/* ---- Schema ------------------------------------------------------------ */

OAK_API const char *sch_name(SCH_INFO_C sch);
OAK_API uint32_t sch_catver(SCH_INFO_C sch);         /* catalog format version */
OAK_API uint32_t sch_dbver(SCH_INFO_C sch);          /* database version */
OAK_API OSL_LOCALE sch_locale(SCH_INFO_C sch);       /* null until a locale is set */
OAK_API const char *sch_locale_text(SCH_INFO_C sch); /* its name as given */
OAK_API OAK_ENC_TYPE sch_encryption(SCH_INFO_C sch);
/* "none", "xor", "aes128", "aes192", "aes256" or "default"; null for any other. */
OAK_API const char *sch_encryption_text(SCH_INFO_C sch);
OAK_API OAK_INDEX sch_ndx(SCH_INFO_C sch);         /* always 0 */
OAK_API OAK_DRAWER sch_max_drawer(SCH_INFO_C sch); /* capacity */
/* As the catalog counts them, the 5 reserved numbers included. */
OAK_API OAK_DRAWER sch_num_drawers(SCH_INFO_C sch);
OAK_API OAK_DRAWER sch_num_user_drawers(SCH_INFO_C sch); /* less those 5 */
OAK_API OAK_DRAWER sch_next_drawer(SCH_INFO_C sch);      /* numbers in use lie below */
OAK_API OAK_DOM_INDEX sch_num_domains(SCH_INFO_C sch);
OAK_API OAK_DOM_INDEX sch_next_domain(SCH_INFO_C sch); /* capacity and limit of indexes */
OAK_API OAK_TBL_INDEX sch_max_table(SCH_INFO_C sch);   /* capacity */
/* As the catalog counts them, the system table included; 0 for a null schema. */
OAK_API OAK_TBL_INDEX sch_num_tables(SCH_INFO_C sch);
OAK_API OAK_TBL_INDEX sch_num_user_tables(SCH_INFO_C sch); /* less one, not below 0 */
OAK_API OAK_TBL_INDEX sch_next_table(SCH_INFO_C sch);      /* indexes in use lie below */
OAK_API uint32_t sch_num_refs(SCH_INFO_C sch);             /* from sch_calc_num_refs */
OAK_API OSL_MEMTAG sch_tag(SCH_INFO_C sch);                /* the schema's own tag */

OAK_API OAK_RETCODE sch_set_name(SCH_INFO sch, const char *val);
OAK_API OAK_RETCODE sch_set_catver(SCH_INFO sch, uint32_t val);
OAK_API OAK_RETCODE sch_set_dbver(SCH_INFO sch, uint32_t val);
OAK_API OAK_RETCODE sch_set_encryption(SCH_INFO sch, OAK_ENC_TYPE val);
/* Makes text compare by the locale named `val`. The same name again changes
 * nothing. eLOCALEMISMATCH: another name is set; eINVLOCALE: the platform has
 * no such locale; eINVNULLARG: `val` is null. */
OAK_API OAK_RETCODE sch_set_locale(SCH_INFO sch, const char *val);
/* Capacities: eRANGE when smaller than now. */
OAK_API OAK_RETCODE sch_set_max_drawer(SCH_INFO sch, OAK_DRAWER val);
OAK_API OAK_RETCODE sch_set_max_table(SCH_INFO sch, OAK_TBL_INDEX val);
OAK_API OAK_RETCODE sch_set_next_domain(SCH_INFO sch, OAK_DOM_INDEX val);
/* Limits of indexes: eRANGE above the capacity. */
OAK_API OAK_RETCODE sch_set_next_drawer(SCH_INFO sch, OAK_DRAWER val);
OAK_API OAK_RETCODE sch_set_next_table(SCH_INFO sch, OAK_TBL_INDEX val);
/* Counts. That of the tables also discards the index of names. */
OAK_API OAK_RETCODE sch_set_num_drawers(SCH_INFO sch, OAK_DRAWER val);
OAK_API OAK_RETCODE sch_set_num_domains(SCH_INFO sch, OAK_DOM_INDEX val);
OAK_API OAK_RETCODE sch_set_num_tables(SCH_INFO sch, OAK_TBL_INDEX val);

/* ---- Type (getters: schema_type.h) ------------------------------------- */

/* The word of the type in a catalog; null for a type without one. */
OAK_API const char *sch_type_catalog_text(SCH_TYPE_INFO_C pi);
/* The type in the schema language, in SQL, and as a field of generated source;
 * null while no type is set. */
OAK_API const char *sch_type_ddl_text(SCH_TYPE_INFO_C pi);
OAK_API const char *sch_type_sql_text(SCH_TYPE_INFO_C pi);
OAK_API const char *sch_type_text(SCH_TYPE_INFO_C pi);

/* Sets the type. Without `unicode_enabled` OAK_WCHAR and OAK_WVARCHAR are stored
 * as their UTF-8 forms; any other type, OAK_WCLOB among them, as given. Text
 * types take over the schema's locale. */
OAK_API OAK_RETCODE sch_type_set_data_type(SCH_TYPE_INFO pi, OAK_TYPE type,
                                           OAK_BOOL_T unicode_enabled);
/* Elements of an array, 0 for a scalar. eBADCAT unless the type is a boolean, an
 * integer or a floating point type. */
OAK_API OAK_RETCODE sch_type_set_elems(SCH_TYPE_INFO pi, uint16_t val);
/* Bytes of a text or binary type; digits of a decimal or of a fraction of a
 * second. eRANGE above 65535 or 255; eBADCAT for OAK_DATE, for large objects
 * and for every other type. */
OAK_API OAK_RETCODE sch_type_set_length(SCH_TYPE_INFO pi, uint32_t val);
/* eBADCAT unless the type is a decimal. */
OAK_API OAK_RETCODE sch_type_set_scale(SCH_TYPE_INFO pi, uint8_t val);
/* Whether, and by which locale, a text type compares. The locale is borrowed;
 * other types carry it without a meaning. */
OAK_API OAK_RETCODE sch_type_set_use_locale(SCH_TYPE_INFO pi, OAK_BOOL_T val);
OAK_API OAK_RETCODE sch_type_set_locale(SCH_TYPE_INFO pi, OSL_LOCALE val);
OAK_API OAK_RETCODE sch_type_set_check_str(SCH_TYPE_INFO pi, const char *val);
OAK_API OAK_RETCODE sch_type_set_check_name(SCH_TYPE_INFO pi, const char *val);

/* ---- Domain ------------------------------------------------------------ */

OAK_API OAK_DOM_INDEX sch_dom_ndx(SCH_DOMAIN_INFO_C mi);
OAK_API const char *sch_dom_name(SCH_DOMAIN_INFO_C mi);
OAK_API const OAK_VALUE *sch_dom_def(SCH_DOMAIN_INFO_C mi); /* never null */
OAK_API const char *sch_dom_defstr(SCH_DOMAIN_INFO_C mi);
OAK_API const char *sch_dom_format(SCH_DOMAIN_INFO_C mi);
OAK_API uint16_t sch_dom_width(SCH_DOMAIN_INFO_C mi); /* characters */
OAK_API SCH_TYPE_INFO sch_dom_type(SCH_DOMAIN_INFO_C mi);
OAK_API SCH_TYPE_INFO_C sch_dom_type_c(SCH_DOMAIN_INFO_C mi);
OAK_API OAK_TYPE sch_dom_data_type(SCH_DOMAIN_INFO_C mi);
OAK_API const char *sch_dom_check_str(SCH_DOMAIN_INFO_C mi);
OAK_API const char *sch_dom_check_name(SCH_DOMAIN_INFO_C mi);

OAK_API OAK_RETCODE sch_dom_set_name(SCH_DOMAIN_INFO mi, const char *val);
OAK_API OAK_RETCODE sch_dom_set_width(SCH_DOMAIN_INFO mi, uint16_t val);
OAK_API OAK_RETCODE sch_dom_set_format(SCH_DOMAIN_INFO mi, const char *val);

/* ---- Drawer ------------------------------------------------------------ */

OAK_API OAK_DRAWER sch_drawer_id(SCH_DRAWER_INFO_C di);
OAK_API OAK_DRAWER_TYPE sch_drawer_type(SCH_DRAWER_INFO_C di);
OAK_API const char *sch_drawer_type_text(SCH_DRAWER_INFO_C di); /* catalog word */
/* The catalog word of a drawer type; null without one. */
OAK_API const char *sch_get_drawer_type_string(OAK_DRAWER_TYPE type);
/* "compact" or "expanded"; null for any other number. */
OAK_API const char *sch_get_item_format_string(OAK_ITEM_FORMAT format);
/* True when items of the drawer hold native wide characters, whose size is the
 * machine's; set by finalization. */
OAK_API OAK_BOOL_T sch_drawer_compact(SCH_DRAWER_INFO_C di);
OAK_API OAK_TBL_INDEX sch_drawer_src_table_id(SCH_DRAWER_INFO_C di);
OAK_API OAK_INDEX sch_drawer_src_ndx(SCH_DRAWER_INFO_C di);
/* The object that the drawer stores; null when it is linked to none, or its type
 * is another. B-tree, hash and R-tree drawers store a key. */
OAK_API SCH_TBL_INFO sch_drawer_table(SCH_DRAWER_INFO_C di);
OAK_API SCH_KEY_INFO sch_drawer_key(SCH_DRAWER_INFO_C di);
OAK_API SCH_REF_INFO sch_drawer_ref(SCH_DRAWER_INFO_C di);
OAK_API SCH_COL_INFO sch_drawer_blob_col(SCH_DRAWER_INFO_C di);

OAK_API OAK_RETCODE sch_drawer_set_source_table(SCH_DRAWER_INFO di, OAK_TBL_INDEX val);
OAK_API OAK_RETCODE sch_drawer_set_source_item(SCH_DRAWER_INFO di, OAK_INDEX val);
/* Another type than before also unlinks the drawer's object. */
OAK_API OAK_RETCODE sch_drawer_set_type(SCH_DRAWER_INFO di, OAK_DRAWER_TYPE val);

/* ---- Table ------------------------------------------------------------- */

OAK_API OAK_TBL_INDEX sch_tbl_index(SCH_TBL_INFO_C ti);
OAK_API OAK_TBL_INDEX sch_tbl_offset(SCH_TBL_INFO_C ti); /* among live tables, from 1 */
OAK_API OAK_INDEX sch_tbl_sch_ndx(SCH_TBL_INFO_C ti);    /* always 0 */
OAK_API SCH_INFO sch_tbl_schema(SCH_TBL_INFO_C ti);      /* null for the system table */
OAK_API const char *sch_tbl_name(SCH_TBL_INFO_C ti);
OAK_API const char *sch_tbl_check_str(SCH_TBL_INFO_C ti);
OAK_API const char *sch_tbl_check_name(SCH_TBL_INFO_C ti);
OAK_API OAK_TABLE_TYPE sch_tbl_type(SCH_TBL_INFO_C ti);
OAK_API const char *sch_tbl_type_text(SCH_TBL_INFO_C ti); /* catalog word */
OAK_API OAK_BOOL_T sch_tbl_circular(SCH_TBL_INFO_C ti);   /* type is circular */
OAK_API OAK_SLOT sch_tbl_max_rows(SCH_TBL_INFO_C ti);     /* of a circular table */
OAK_API OAK_DRAWER sch_tbl_drawer(SCH_TBL_INFO_C ti);     /* number of the row drawer */
OAK_API SCH_DRAWER_INFO sch_tbl_drawer_info(SCH_TBL_INFO_C ti);
OAK_API uint32_t sch_tbl_byte_len(SCH_TBL_INFO_C ti); /* column data of a row */
OAK_API OAK_HAS_VALUE_OFFSET sch_tbl_has_value_offset(SCH_TBL_INFO_C ti);
OAK_API SCH_KEY_INFO sch_tbl_primary_key(SCH_TBL_INFO_C ti);
OAK_API SCH_TRIG_INFO sch_tbl_triggers(SCH_TBL_INFO_C ti); /* the first */
OAK_API OAK_DRAWER sch_tbl_num_drawers(SCH_TBL_INFO_C ti);
/* Drawer `n` in the order of finalization; null where there is none. */
OAK_API SCH_DRAWER_INFO sch_tbl_related_drawer(SCH_TBL_INFO_C ti, OAK_DRAWER n);
/* num: live objects; next: indexes in use lie below; max: capacity. */
OAK_API OAK_COL_INDEX sch_tbl_num_cols(SCH_TBL_INFO_C ti);
OAK_API OAK_COL_INDEX sch_tbl_next_col(SCH_TBL_INFO_C ti);
OAK_API OAK_COL_INDEX sch_tbl_max_cols(SCH_TBL_INFO_C ti);
OAK_API OAK_KEY_INDEX sch_tbl_num_keys(SCH_TBL_INFO_C ti);
OAK_API OAK_KEY_INDEX sch_tbl_next_key(SCH_TBL_INFO_C ti);
OAK_API OAK_KEY_INDEX sch_tbl_max_keys(SCH_TBL_INFO_C ti);
OAK_API OAK_KEY_INDEX sch_tbl_num_avls(SCH_TBL_INFO_C ti);
OAK_API OAK_KEY_INDEX sch_tbl_next_avl(SCH_TBL_INFO_C ti);
OAK_API OAK_KEY_INDEX sch_tbl_max_avls(SCH_TBL_INFO_C ti);
OAK_API OAK_REF_INDEX sch_tbl_num_refs(SCH_TBL_INFO_C ti);
OAK_API OAK_REF_INDEX sch_tbl_next_ref(SCH_TBL_INFO_C ti); /* the capacity as well */
/* References, of any table, that point at this one. */
OAK_API OAK_REF_INDEX sch_tbl_num_owners(SCH_TBL_INFO_C ti);
OAK_API OAK_REF_INDEX sch_tbl_next_owner(SCH_TBL_INFO_C ti);
OAK_API OAK_REF_INDEX sch_tbl_max_owner(SCH_TBL_INFO_C ti);

OAK_API OAK_RETCODE sch_tbl_set_name(SCH_TBL_INFO ti, const char *val);
OAK_API OAK_RETCODE sch_tbl_set_check_str(SCH_TBL_INFO ti, const char *val);
OAK_API OAK_RETCODE sch_tbl_set_check_name(SCH_TBL_INFO ti, const char *val);
OAK_API OAK_RETCODE sch_tbl_set_type(SCH_TBL_INFO ti, OAK_TABLE_TYPE val);
OAK_API OAK_RETCODE sch_tbl_set_max_rows(SCH_TBL_INFO ti, OAK_SLOT val);
OAK_API OAK_RETCODE sch_tbl_set_offset(SCH_TBL_INFO ti, OAK_TBL_INDEX val);
/* Links the table and its row drawer. OAK_DRAWER_NONE changes nothing. eBADCAT
 * unless the drawer exists, is of type table, and names this table as its source
 * table and source item. */
OAK_API OAK_RETCODE sch_tbl_set_drawer(SCH_TBL_INFO ti, OAK_DRAWER drawer);
/* Counts and limits are stored as given; finalization compares them. */
OAK_API OAK_RETCODE sch_tbl_set_num_cols(SCH_TBL_INFO ti, OAK_COL_INDEX val);
OAK_API OAK_RETCODE sch_tbl_set_next_col(SCH_TBL_INFO ti, OAK_COL_INDEX val);
OAK_API OAK_RETCODE sch_tbl_set_num_keys(SCH_TBL_INFO ti, OAK_KEY_INDEX val);
OAK_API OAK_RETCODE sch_tbl_set_next_key(SCH_TBL_INFO ti, OAK_KEY_INDEX val);
OAK_API OAK_RETCODE sch_tbl_set_num_avls(SCH_TBL_INFO ti, OAK_KEY_INDEX val);
OAK_API OAK_RETCODE sch_tbl_set_next_avl(SCH_TBL_INFO ti, OAK_KEY_INDEX val);
OAK_API OAK_RETCODE sch_tbl_set_num_refs(SCH_TBL_INFO ti, OAK_REF_INDEX val);
OAK_API OAK_RETCODE sch_tbl_set_num_owners(SCH_TBL_INFO ti, OAK_REF_INDEX val);
OAK_API OAK_RETCODE sch_tbl_set_next_owner(SCH_TBL_INFO ti, OAK_REF_INDEX val);
/* Capacities: eRANGE when smaller than now. */
OAK_API OAK_RETCODE sch_tbl_set_max_cols(SCH_TBL_INFO ti, OAK_COL_INDEX val);
OAK_API OAK_RETCODE sch_tbl_set_max_keys(SCH_TBL_INFO ti, OAK_KEY_INDEX val);
OAK_API OAK_RETCODE sch_tbl_set_max_avls(SCH_TBL_INFO ti, OAK_KEY_INDEX val);
OAK_API OAK_RETCODE sch_tbl_set_max_owners(SCH_TBL_INFO ti, OAK_REF_INDEX val);
/* The capacity of the references, and sOKAY in any case: where the array cannot
 * be sized so, the old limit stays. */
OAK_API OAK_RETCODE sch_tbl_set_next_ref(SCH_TBL_INFO ti, OAK_REF_INDEX val);

/* ---- Column ------------------------------------------------------------ */

/* Where a column has a domain, type, element count, length, byte length, check,
 * precision and scale are the domain's; format, width and default are the
 * domain's when the column has none of its own. */
OAK_API OAK_COL_INDEX sch_col_ndx(SCH_COL_INFO_C ci);
OAK_API OAK_TBL_INDEX sch_col_tbl_ndx(SCH_COL_INFO_C ci);
OAK_API SCH_TBL_INFO sch_col_table(SCH_COL_INFO_C ci);
OAK_API const char *sch_col_name(SCH_COL_INFO_C ci); /* null: dropped */
OAK_API SCH_DOMAIN_INFO sch_col_domain(SCH_COL_INFO_C ci);
OAK_API SCH_TYPE_INFO sch_col_type(SCH_COL_INFO_C ci);
OAK_API SCH_TYPE_INFO_C sch_col_type_c(SCH_COL_INFO_C ci);
OAK_API OAK_TYPE sch_col_data_type(SCH_COL_INFO_C ci);
/* The domain's name, else the type as a field of generated source. */
OAK_API const char *sch_col_data_type_text(SCH_COL_INFO_C ci);
OAK_API uint16_t sch_col_num_elems(SCH_COL_INFO_C ci);
OAK_API uint32_t sch_col_length(SCH_COL_INFO_C ci);
OAK_API uint32_t sch_col_byte_len(SCH_COL_INFO_C ci);
OAK_API uint8_t sch_col_prec(SCH_COL_INFO_C ci);
OAK_API uint8_t sch_col_scale(SCH_COL_INFO_C ci);
OAK_API OAK_BOOL_T sch_col_is_lob(SCH_COL_INFO_C ci); /* a large object */
OAK_API const char *sch_col_check_str(SCH_COL_INFO_C ci);
OAK_API const char *sch_col_check_name(SCH_COL_INFO_C ci);
OAK_API const char *sch_col_defstr(SCH_COL_INFO_C ci);
/* The column's own default unless its status is vsNOVAL, else its domain's; null
 * without a domain. */
OAK_API const OAK_VALUE *sch_col_def(SCH_COL_INFO_C ci);
OAK_API const char *sch_col_format(SCH_COL_INFO_C ci);
OAK_API uint16_t sch_col_width(SCH_COL_INFO_C ci); /* characters; 0: not told */
OAK_API uint16_t sch_col_usage(SCH_COL_INFO_C ci); /* OAK_COL_USAGE_KEY and kin */
OAK_API OAK_BOOL_T sch_col_not_null(SCH_COL_INFO_C ci);
OAK_API const char *sch_col_not_null_cname(SCH_COL_INFO_C ci);
/* True when the column is an element of its table's primary key. */
OAK_API OAK_BOOL_T sch_col_is_pkey_elem(SCH_COL_INFO_C ci);
/* Neither declared NOT NULL nor an element of the primary key. */
OAK_API OAK_BOOL_T sch_col_nullable(SCH_COL_INFO_C ci);
OAK_API uint32_t sch_col_offset(SCH_COL_INFO_C ci);                       /* in the column data */
OAK_API OAK_HAS_VALUE_OFFSET sch_col_has_value_offset(SCH_COL_INFO_C ci); /* 0: none */
/* The key that the column is tied to, as the catalog says it. */
OAK_API OAK_KEY_INDEX sch_col_key_ndx(SCH_COL_INFO_C ci);
OAK_API SCH_KEY_INFO sch_col_key(SCH_COL_INFO_C ci);
/* Of a foreign key column: its reference, the table and the column referred to. */
OAK_API SCH_REF_INFO sch_col_ref(SCH_COL_INFO_C ci);
OAK_API SCH_TBL_INFO sch_col_reftab(SCH_COL_INFO_C ci);
OAK_API SCH_COL_INFO sch_col_refcol(SCH_COL_INFO_C ci);
/* The blob drawer of a large object. */
OAK_API SCH_DRAWER_INFO sch_col_lob_drawer(SCH_COL_INFO_C ci);
OAK_API OAK_DRAWER sch_col_lob_drawer_ndx(SCH_COL_INFO_C ci);

OAK_API OAK_RETCODE sch_col_set_name(SCH_COL_INFO ci, const char *val);
OAK_API OAK_RETCODE sch_col_set_width(SCH_COL_INFO ci, uint16_t val);
OAK_API OAK_RETCODE sch_col_set_format(SCH_COL_INFO ci, const char *val);
OAK_API OAK_RETCODE sch_col_set_usage(SCH_COL_INFO ci, uint16_t val);
/* Declares NOT NULL; `val`, if not null, becomes the constraint's name. */
OAK_API OAK_RETCODE sch_col_set_not_null(SCH_COL_INFO ci, const char *val);
/* Takes the declaration and its name back. */
OAK_API OAK_RETCODE sch_col_drop_not_null(SCH_COL_INFO ci);
/* eBADCAT: the column has a type of its own, or there is no such domain. */
OAK_API OAK_RETCODE sch_col_set_domain(SCH_COL_INFO ci, OAK_DOM_INDEX id);
/* Links the column and its blob drawer, whose source is not compared. eRANGE:
 * `id` is not below the schema's next drawer; eBADCAT: no such drawer, not of
 * type blob, or one of the system's. */
OAK_API OAK_RETCODE sch_col_set_blob_drawer(SCH_COL_INFO ci, OAK_DRAWER id);
/* Ties the column to a key, or with OAK_INDEX_NONE to none; makes it a foreign
 * key column of a reference. eRANGE: the index is not below the table's limit;
 * eBADCAT: nothing stands there. */
OAK_API OAK_RETCODE sch_col_set_key(SCH_COL_INFO ci, OAK_KEY_INDEX id);
OAK_API OAK_RETCODE sch_col_set_ref(SCH_COL_INFO ci, OAK_REF_INDEX id);
/* The table referred to, then its column. eRANGE: the index is not below the
 * schema's next table, or the referred table's column capacity; eBADCAT: nothing
 * stands there, the table is the system table, or no table was set yet. */
OAK_API OAK_RETCODE sch_col_set_reftab(SCH_COL_INFO ci, OAK_TBL_INDEX id);
OAK_API OAK_RETCODE sch_col_set_refcol(SCH_COL_INFO ci, OAK_COL_INDEX id);

/* ---- Key and element --------------------------------------------------- */

OAK_API OAK_KEY_INDEX sch_key_ndx(SCH_KEY_INFO_C ki);
OAK_API OAK_TBL_INDEX sch_key_tbl_ndx(SCH_KEY_INFO_C ki);
OAK_API SCH_TBL_INFO sch_key_table(SCH_KEY_INFO_C ki);
OAK_API SCH_INFO sch_key_schema(SCH_KEY_INFO_C ki); /* null for the system key */
OAK_API const char *sch_key_name(SCH_KEY_INFO_C ki);
OAK_API OAK_BOOL_T sch_key_inline(SCH_KEY_INFO_C ki); /* the name was generated */
OAK_API OAK_KEY_TYPE sch_key_type(SCH_KEY_INFO_C ki);
OAK_API const char *sch_key_type_text(SCH_KEY_INFO_C ki); /* catalog word */
OAK_API OAK_KEY_METHOD sch_key_method(SCH_KEY_INFO_C ki);
OAK_API const char *sch_key_method_text(SCH_KEY_INFO_C ki); /* catalog word */
OAK_API OAK_BOOL_T sch_key_restr(SCH_KEY_INFO_C ki);
OAK_API uint32_t sch_key_refcount(SCH_KEY_INFO_C ki);
OAK_API SCH_DRAWER_INFO sch_key_drawer(SCH_KEY_INFO_C ki);
OAK_API OAK_DRAWER sch_key_drawer_ndx(SCH_KEY_INFO_C ki);
OAK_API OAK_KEY_INDEX sch_avl_index(SCH_KEY_INFO_C ki); /* of an AVL key */
OAK_API OAK_COL_INDEX sch_key_num_elems(SCH_KEY_INFO_C ki);
OAK_API uint32_t sch_key_byte_len(SCH_KEY_INFO_C ki); /* one key buffer */
OAK_API OAK_HAS_VALUE_OFFSET sch_key_has_value_offset(SCH_KEY_INFO_C ki);
/* Element `n`; null beyond the last. */
OAK_API SCH_ELEM_INFO sch_key_elem(SCH_KEY_INFO_C ki, OAK_COL_INDEX n);
OAK_API SCH_ELEM_INFO_C sch_key_elem_c(SCH_KEY_INFO_C ki, OAK_COL_INDEX n);

OAK_API OAK_COL_INDEX sch_elem_index(SCH_ELEM_INFO_C ei); /* position in the key */
OAK_API SCH_COL_INFO sch_elem_col(SCH_ELEM_INFO_C ei);
OAK_API OAK_COL_INDEX sch_elem_col_index(SCH_ELEM_INFO_C ei);
OAK_API OAK_DIRECTION sch_elem_dir(SCH_ELEM_INFO_C ei);
OAK_API const char *sch_elem_dir_text(SCH_ELEM_INFO_C ei);                  /* catalog word */
OAK_API uint32_t sch_elem_offset(SCH_ELEM_INFO_C ei);                       /* in the key buffer */
OAK_API OAK_HAS_VALUE_OFFSET sch_elem_has_value_offset(SCH_ELEM_INFO_C ei); /* 0: none */

OAK_API OAK_RETCODE sch_key_set_name(SCH_KEY_INFO ki, const char *val);
OAK_API OAK_RETCODE sch_key_set_method(SCH_KEY_INFO ki, OAK_KEY_METHOD val);
OAK_API OAK_RETCODE sch_key_set_refcount(SCH_KEY_INFO ki, uint32_t val);
OAK_API OAK_RETCODE sch_key_set_restr(SCH_KEY_INFO ki, OAK_BOOL_T val);
/* Stores the type; the first primary key becomes the table's. eBADCAT: the table
 * has a primary key already; the key's own type has changed all the same. */
OAK_API OAK_RETCODE sch_key_set_type(SCH_KEY_INFO ki, OAK_KEY_TYPE val);
/* Links the key and its drawer; OAK_DRAWER_NONE takes the drawer away. eBADCAT
 * unless the drawer exists, is of type btree, hash or rtree, and names this
 * key's table and this key as its source. */
OAK_API OAK_RETCODE sch_key_set_drawer(SCH_KEY_INFO ki, OAK_DRAWER drawer);
/* Makes room for elements; handles of elements taken before are void. eRANGE
 * when smaller than now. */
OAK_API OAK_RETCODE sch_key_set_num_elems(SCH_KEY_INFO ki, OAK_COL_INDEX val);
/* Gives the element its column, and the column the key. eBADCAT: no such column,
 * or another element of the key has it. */
OAK_API OAK_RETCODE sch_elem_set_col(SCH_ELEM_INFO ei, OAK_COL_INDEX id);
OAK_API OAK_RETCODE sch_elem_set_order(SCH_ELEM_INFO ei, OAK_DIRECTION val);

/* ---- Reference and sort column ----------------------------------------- */

OAK_API OAK_REF_INDEX sch_ref_ndx(SCH_REF_INFO_C ri);
OAK_API OAK_TBL_INDEX sch_ref_tbl_ndx(SCH_REF_INFO_C ri);
OAK_API SCH_TBL_INFO sch_ref_table(SCH_REF_INFO_C ri); /* the holding table */
OAK_API SCH_INFO sch_ref_schema(SCH_REF_INFO_C ri);
OAK_API const char *sch_ref_name(SCH_REF_INFO_C ri);
OAK_API SCH_TBL_INFO sch_ref_owner(SCH_REF_INFO_C ri); /* the table referred to */
OAK_API OAK_TBL_INDEX sch_ref_owner_tbl_ndx(SCH_REF_INFO_C ri);
OAK_API OAK_REF_INDEX sch_ref_owner_ndx(SCH_REF_INFO_C ri); /* among that table's owners */
OAK_API SCH_KEY_INFO sch_ref_key(SCH_REF_INFO_C ri);        /* that table's key referred to */
OAK_API OAK_KEY_INDEX sch_ref_key_index(SCH_REF_INFO_C ri);
OAK_API SCH_DRAWER_INFO sch_ref_drawer(SCH_REF_INFO_C ri);
OAK_API OAK_DRAWER sch_ref_drawer_ndx(SCH_REF_INFO_C ri);
OAK_API OAK_REF_ACTION sch_ref_on_update(SCH_REF_INFO_C ri);
OAK_API OAK_REF_ACTION sch_ref_on_delete(SCH_REF_INFO_C ri);
OAK_API const char *sch_ref_on_update_text(SCH_REF_INFO_C ri); /* catalog words */
OAK_API const char *sch_ref_on_delete_text(SCH_REF_INFO_C ri);
OAK_API OAK_BOOL_T sch_ref_requires_write_for_update(SCH_REF_INFO_C ri);
OAK_API OAK_COL_INDEX sch_ref_num_cols(SCH_REF_INFO_C ri);
OAK_API SCH_COL_INFO sch_ref_col(SCH_REF_INFO_C ri, OAK_COL_INDEX n); /* null beyond */
/* One value for each referencing column, `columnId` filled in; for the caller to
 * fill. Null without columns. */
OAK_API OAK_COLUMN_VALUE *sch_ref_col_vals(SCH_REF_INFO_C ri);
OAK_API OAK_COL_INDEX sch_ref_num_sort_cols(SCH_REF_INFO_C ri);
OAK_API SCH_SORT_INFO sch_ref_sort(SCH_REF_INFO_C ri, OAK_COL_INDEX n);    /* null beyond */
OAK_API SCH_COL_INFO sch_ref_sort_col(SCH_REF_INFO_C ri, OAK_COL_INDEX n); /* null beyond */
OAK_API uint32_t sch_ref_sort_byte_len(SCH_REF_INFO_C ri);                 /* one sort buffer */

OAK_API OAK_COL_INDEX sch_sort_index(SCH_SORT_INFO_C si); /* position in the order */
OAK_API SCH_COL_INFO sch_sort_col(SCH_SORT_INFO_C si);
OAK_API OAK_COL_INDEX sch_sort_col_index(SCH_SORT_INFO_C si);
OAK_API SCH_REF_INFO sch_sort_ref(SCH_SORT_INFO_C si);
OAK_API OAK_REF_INDEX sch_sort_ref_index(SCH_SORT_INFO_C si);
OAK_API OAK_TBL_INDEX sch_sort_table_index(SCH_SORT_INFO_C si); /* the holding table */
OAK_API OAK_DIRECTION sch_sort_dir(SCH_SORT_INFO_C si);
OAK_API const char *sch_sort_dir_text(SCH_SORT_INFO_C si);                  /* catalog word */
OAK_API uint32_t sch_sort_offset(SCH_SORT_INFO_C si);                       /* in the sort buffer */
OAK_API OAK_HAS_VALUE_OFFSET sch_sort_has_value_offset(SCH_SORT_INFO_C si); /* 0: none */

OAK_API OAK_RETCODE sch_ref_set_name(SCH_REF_INFO ri, const char *val);
OAK_API OAK_RETCODE sch_ref_set_on_update(SCH_REF_INFO ri, OAK_REF_ACTION val);
OAK_API OAK_RETCODE sch_ref_set_on_delete(SCH_REF_INFO ri, OAK_REF_ACTION val);
/* Links the reference and its drawer. eBADCAT unless the drawer exists, is of
 * type ref, and names this reference's table and this reference as its source. */
OAK_API OAK_RETCODE sch_ref_set_drawer(SCH_REF_INFO ri, OAK_DRAWER drawer);
/* The table referred to, which takes the reference among its owners. eBADCAT: no
 * such table, or the system table; eRANGE: the table has 65535 owners. */
OAK_API OAK_RETCODE sch_ref_set_reftab(SCH_REF_INFO ri, OAK_TBL_INDEX id);
/* The key referred to. eBADCAT: no table was set yet, or it has no such key. */
OAK_API OAK_RETCODE sch_ref_set_refkey(SCH_REF_INFO ri, OAK_KEY_INDEX id);
/* Makes room for referencing columns and their values, or for sort columns, and
 * forgets those of before. */
OAK_API OAK_RETCODE sch_ref_set_num_cols(SCH_REF_INFO ri, OAK_COL_INDEX val);
OAK_API OAK_RETCODE sch_ref_set_num_sort_cols(SCH_REF_INFO ri, OAK_COL_INDEX val);
/* Makes column `id` of the holding table the referencing column at position
 * `col`. eBADCAT: no such position, no table referred to yet, no such column, or
 * another position has it. */
OAK_API OAK_RETCODE sch_ref_set_col(SCH_REF_INFO ri, OAK_COL_INDEX col, OAK_COL_INDEX id);
/* Makes column `id` of the holding table the sort column at position `col`.
 * eBADCAT: no such position, `id` is not below the count of live columns (not
 * the limit of indexes), no such column, or another position has it. */
OAK_API OAK_RETCODE sch_ref_set_sort_col(SCH_REF_INFO ri, OAK_COL_INDEX col, OAK_COL_INDEX id);
/* eBADCAT: no such position. */
OAK_API OAK_RETCODE sch_ref_set_sort_order(SCH_REF_INFO ri, OAK_COL_INDEX col, OAK_DIRECTION val);

/* ---- Trigger ----------------------------------------------------------- */

/* A trigger lies under the tag that its maker gave, with all that it holds, and
 * must outlive the table's use of it. */
OAK_API const char *sch_trig_name(SCH_TRIG_INFO_C trgi);
OAK_API uint16_t sch_trig_sqltrig(SCH_TRIG_INFO_C trgi);
OAK_API uint64_t sch_trig_crtime(SCH_TRIG_INFO_C trgi); /* creation time */
OAK_API OAK_TRIG_TIMING sch_trig_timing(SCH_TRIG_INFO_C trgi);
OAK_API OAK_TRIG_EVENT sch_trig_event(SCH_TRIG_INFO_C trgi);
OAK_API uint16_t sch_trig_num_updcols(SCH_TRIG_INFO_C trgi);
OAK_API OAK_TRC_INDEX sch_trig_num_colrefs(SCH_TRIG_INFO_C trgi);
/* Column `n` of those whose update fires it; OAK_INDEX_NONE beyond the last. */
OAK_API OAK_COL_INDEX sch_trig_updcol(SCH_TRIG_INFO_C trgi, uint16_t n);
/* Column reference `n`; null beyond the last. */
OAK_API SCH_TRIG_COL_INFO sch_trig_colref(SCH_TRIG_INFO_C trgi, OAK_TRC_INDEX n);

/* A column that the trigger's statement refers to: its index, the number of the
 * variable that stands for it, whether the row before or after is meant, and
 * where its value goes; null while no value was allocated or set. */
OAK_API OAK_COL_INDEX sch_trigcol_colid(SCH_TRIG_COL_INFO_C tci);
OAK_API uint16_t sch_trigcol_varno(SCH_TRIG_COL_INFO_C tci);
OAK_API OAK_TRIG_COL_REF sch_trigcol_ref(SCH_TRIG_COL_INFO_C tci);
OAK_API OAK_VALUE *sch_trigcol_val(SCH_TRIG_COL_INFO_C tci);

OAK_API OAK_RETCODE sch_trig_set_timing(SCH_TRIG_INFO trgi, OAK_TRIG_TIMING val);
OAK_API OAK_RETCODE sch_trig_set_event(SCH_TRIG_INFO trgi, OAK_TRIG_EVENT val);
/* Counts, set before the arrays are allocated (schema.h). */
OAK_API OAK_RETCODE sch_trig_set_num_updcols(SCH_TRIG_INFO trgi, uint16_t val);
OAK_API OAK_RETCODE sch_trig_set_num_colrefs(SCH_TRIG_INFO trgi, OAK_TRC_INDEX val);
/* eRANGE: `n` is beyond the array. */
OAK_API OAK_RETCODE sch_trig_set_updcol(SCH_TRIG_INFO trgi, uint16_t n, OAK_COL_INDEX val);
OAK_API OAK_RETCODE sch_trigcol_set_ndx(SCH_TRIG_COL_INFO tci, OAK_TRC_INDEX val);
OAK_API OAK_RETCODE sch_trigcol_set_colid(SCH_TRIG_COL_INFO tci, OAK_COL_INDEX val);
OAK_API OAK_RETCODE sch_trigcol_set_varno(SCH_TRIG_COL_INFO tci, uint16_t val);
OAK_API OAK_RETCODE sch_trigcol_set_ref(SCH_TRIG_COL_INFO tci, OAK_TRIG_COL_REF val);
/* Stores the pointer; the value stays the caller's. */
OAK_API OAK_RETCODE sch_trigcol_set_val(SCH_TRIG_COL_INFO tci, OAK_VALUE *val);

OAK_C_END

#endif
