/* Column operations: everything that touches a column's value, and defaults.
 *
 * Law: each operation resolves the effective type (a domain's where the column
 * has one), handles NULL and the has-value byte once, and calls the type's
 * operation of oakvaluetypes.h. A value in a row or key buffer is told absent by
 * its has-value byte, which a column that cannot be NULL does not have.
 *
 * Setters run while the schema is being built; all others only read the schema
 * and their arguments, on any thread. A null column, value, buffer or output is
 * eINVNULLARG where the result is a status. */
#ifndef SCHEMA_FCNS_H
#define SCHEMA_FCNS_H

#include "encoder.h"
#include "oaktypes.h"
#include "schema_handles.h"

OAK_C_BEGIN

/* The way in which a value is best shown as text. */
typedef enum SCH_FORMAT OAK_INT32_ENUM {
    SCH_NATIVE_FORMAT = 0,     /* as its text */
    SCH_BINARY_FORMAT = 1,     /* as binary */
    SCH_UTF8_BINARY_FORMAT = 2 /* text with bytes outside 32 to 254 */
} SCH_FORMAT;

/* ---- Comparing --------------------------------------------------------- */

/* Three-way comparison; NULL sorts below any value and equals NULL. `limit`,
 * when not 0, bounds the bytes that are looked at in texts and binaries. Large
 * objects, which have no order, are equal. */
OAK_API OAK_COMPARE sch_col_cmp_fcn(SCH_COL_INFO_C ci, uint32_t limit, const OAK_VALUE *col1,
                                    const OAK_VALUE *col2);
/* The same against a value in a record buffer of `col2Len` bytes; null is NULL. */
OAK_API OAK_COMPARE sch_col_cmp_buff_fcn(SCH_COL_INFO_C ci, uint32_t limit, const OAK_VALUE *col1,
                                         const void *col2, size_t col2Len);

/* ---- Copying ----------------------------------------------------------- */

/* Besides eINVNULLARG these return what the type's operation does, eBADDATALEN
 * for data that the column cannot hold and sTRUNCATE for what was cut among it. */

/* Deep copy into `tag`, at most `maxExtraBytes` bytes of it allocated. Only a
 * vsOKAY value has a payload to copy. */
OAK_API OAK_RETCODE sch_col_copy_fcn(SCH_COL_INFO_C ci, OAK_VALUE *dst, const OAK_VALUE *src,
                                     size_t maxExtraBytes, OSL_MEMTAG tag);
/* Value to record buffer: the payload of a vsOKAY value that is no large object
 * goes to `data`, with its room and size in `datasize`; the has-value byte
 * (`hasValue`, optional) becomes 1 unless the value is NULL. */
OAK_API OAK_RETCODE sch_col_copy_to_buff_fcn(SCH_COL_INFO_C ci, void *data, size_t *datasize,
                                             OAK_HAS_VALUE_T *hasValue, const OAK_VALUE *col);
/* Value to text in `str`: `*strsize` holds its room and receives the bytes, the
 * terminator included. Dates as YYYY-MM-DD, times with four fraction digits,
 * zoned ones in their own zone: `tz_disp` goes to the conversion, which for a text
 * does not use it. Of a NULL nothing is written, and its size is 0. A null `str`
 * measures; no room measures too, with sTRUNCATE. sTRUNCATE: the text was cut;
 * else as conversions fail. */
OAK_API OAK_RETCODE sch_col_copy_to_str_fcn(SCH_COL_INFO_C ci, int16_t tz_disp, char *str,
                                            size_t *strsize, OAK_HAS_VALUE_T *hasValue,
                                            const OAK_VALUE *col);
/* Record buffer to value, with a copy in `tag`. `hasValue` is the has-value
 * byte, null where none is to be looked at. */
OAK_API OAK_RETCODE sch_col_copy_from_buff_fcn(SCH_COL_INFO_C ci, OAK_VALUE *col, const void *data,
                                               size_t datasize, const OAK_HAS_VALUE_T *hasValue,
                                               OSL_MEMTAG tag);
/* Record buffer to value without a copy: the value points into the buffer. */
OAK_API OAK_RETCODE sch_col_assign_from_buff_fcn(SCH_COL_INFO_C ci, OAK_VALUE *col,
                                                 const void *data, size_t datasize,
                                                 const OAK_HAS_VALUE_T *hasValue);
/* The column's value at `data` in a row or key buffer to the encoder; nothing
 * is allocated. */
OAK_API OAK_RETCODE sch_col_pack_buffer_fcn(SCH_COL_INFO_C ci, const void *data, B_ENCODER encoder);
/* Frees what a vsOKAY value holds in `tag`; the status ends as vsNOVAL. */
OAK_API void sch_col_free_fcn(SCH_COL_INFO_C ci, OAK_VALUE *col, OSL_MEMTAG tag);

/* ---- Text -------------------------------------------------------------- */

/* Writes the value, or element `elem` of an array, as text; NULL as
 * "<OAK NULL>". eRANGE: no such element; eINVARG: the value is neither vsOKAY
 * nor NULL; eNOTIMPLEMENTED: a large object; the output function's failure. */
OAK_API OAK_RETCODE sch_col_tostring_fcn(SCH_COL_INFO_C ci, const OAK_VALUE *val, uint32_t elem,
                                         uint32_t flags, OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx);
/* Tells how the value is best shown; a NULL leaves `pformat` alone. eRANGE,
 * eINVARG as above. */
OAK_API OAK_RETCODE sch_col_tostring_type_fcn(SCH_COL_INFO_C ci, const OAK_VALUE *val,
                                              uint32_t elem, SCH_FORMAT *pformat);

/* ---- Types and defaults ------------------------------------------------ */

/* True for equal types and for any two of the character family. */
OAK_API OAK_BOOL_T sch_types_compatible(OAK_TYPE type1, OAK_TYPE type2);

/* Sets the default from its text, kept as given; null clears the text and makes
 * the default NULL. The words "current_date", "current_time",
 * "current_timestamp" and "auto" (on UUIDs) are kept as such, in any case;
 * "auto" is the one default of a rowid, and leaves the value vsNOVAL.
 * sOKAY, or a positive status of a decimal with the value kept
 * eBADCAT          no value of the type, or out of its range; or a column of the
 *                  system table, which nothing changes
 * eNOTIMPLEMENTED  the type has no defaults (wide large objects stored as UTF-8
 *                  have one in a domain alone)
 * the statuses of numbers, dates and UUIDs as they stand; eNOMEMORY
 * After a failure the text is set and the value is not: abandon the schema. */
OAK_API OAK_RETCODE sch_col_set_default(SCH_COL_INFO ci, const char *val);
OAK_API OAK_RETCODE sch_dom_set_default(SCH_DOMAIN_INFO mi, const char *val);

OAK_C_END

#endif
