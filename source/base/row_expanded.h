/* The expanded row: the row buffer as it lies in memory behind its length, as a
 * size_t of 8 bytes in the machine's order. One copy to load, but it depends on
 * the machine and stores every column. */
#ifndef ROW_EXPANDED_H
#define ROW_EXPANDED_H

#include "row.h"

OAK_C_BEGIN

/* Writes the row, which must be in buffer form: a row in compact form has a
 * data_len of 0 and packs as an empty image. The encoder must have a bulk
 * callback (eNOTIMPLEMENTED without one). eINVNULLARG. */
OAK_API OAK_RETCODE row_pack_expanded(const OAK_ROW *row, B_ENCODER encoder);

/* Reads a row from the beginning of the decoder's OAK_BUFFER into `row`, which
 * need not be initialised; the decoder must have a bulk callback. Statuses and
 * has-value bytes are those of the stored image. After a failure the row holds
 * nothing. The arguments are those of row_unpack_compact.
 * eDBCORRUPTED  the length is not that of the table's rows
 * eEOD          the image ends early
 * eNOTIMPLEMENTED without a bulk callback, eNOMEMORY, eINVNULLARG */
OAK_API OAK_RETCODE row_unpack_expanded(OAK_ROW *row, B_DECODER decoder, OAK_ROWID_T rowid,
                                        SCH_TBL_INFO_C ti, OSL_MEMTAG tag, OAK_ERR hErr,
                                        DB_INSTANCE *dbi);

OAK_C_END

#endif
