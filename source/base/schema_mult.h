/* Lengths and offsets for fewer bytes per UTF-8 character.
 *
 * Law: the schema's own lengths allow 4 bytes a character. For another
 * multiplier these functions compute what finalization would have, on the fly,
 * and change nothing. A multiplier of 4, and the system table "_sys_files" by
 * its very name, give the stored value. Native wide characters keep their
 * length.
 *
 * Each call walks the columns up to the one asked for; callers keep the results.
 * The table must be finalized. */
#ifndef SCHEMA_MULT_H
#define SCHEMA_MULT_H

#include "schema_handles.h"
#include "schema_types.h"

OAK_C_BEGIN

/* The step that the others share: where a value of the column lies when `off`
 * bytes lie before it. `col_length` (may be null) gets its length: a text of n
 * bytes takes (n - 1) / 4 characters of `multiplier` bytes and a terminator, any
 * other type its stored length. */
OAK_API uint32_t sch_col_offset_ex(SCH_COL_INFO_C ci, uint32_t off, uint32_t multiplier,
                                   uint32_t *col_length);

/* Bytes of a row's column data, and of a key buffer. */
OAK_API uint32_t sch_tbl_byte_len_ex(SCH_TBL_INFO_C ti, uint32_t multiplier);
OAK_API uint32_t sch_key_byte_len_with_mult(SCH_KEY_INFO_C ki, uint32_t multiplier);

/* Where a column lies in the column data, and an element in the key buffer, with
 * its length. `col_length` is not written where the stored value is returned; it
 * must not be null for a column. */
OAK_API uint32_t sch_col_offset_with_mult(SCH_COL_INFO_C ci, uint32_t multiplier,
                                          uint32_t *col_length);
OAK_API uint32_t sch_elem_offset_with_mult(SCH_ELEM_INFO_C ei, uint32_t multiplier,
                                           uint32_t *col_length);

/* Where the has-value bytes of a row begin. */
OAK_API uint32_t sch_tbl_has_value_offset_with_mult(SCH_TBL_INFO_C ti, uint32_t multiplier);
/* Where the has-value byte of an element lies: behind the values, and as many
 * bytes on as elements stand before it, nullable or not; the end of the values
 * for an element without such a byte. */
OAK_API uint32_t sch_elem_has_value_offset_with_mult(SCH_ELEM_INFO_C ei, uint32_t multiplier);

OAK_C_END

#endif
