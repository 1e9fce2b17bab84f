/* The compact row: a stream of varying integers and typed values that holds
 * only the columns that have a value, independent of the machine's layout.
 *
 *   AVL count, then number, left, right, flags of each
 *   count of joins with an owner, then reference index and owner of each
 *   column groups: size (at least 1), first column index, the values
 *   a group size of 0
 *
 * A group is a run of storable columns with consecutive indexes. Rowid and
 * foreign key columns are never stored, a large object as the mark 1. All
 * integers are unsigned varying ones. docs/formats.md has examples. */
#ifndef ROW_COMPACT_H
#define ROW_COMPACT_H

#include "row.h"

OAK_C_BEGIN

/* Writes the row. A row in compact form appends its stream as it is to the
 * encoder's context, which must then be an OAK_BUFFER, and sets its position
 * to 0.
 * eNOTIMPLEMENTED  a row in value form; reported on hErr
 * eINVNULLARG      a null row or encoder, or a compact row that was freed
 * else the encoder's status and that of the types' pack functions; the stream
 * is then to be thrown away. */
OAK_API OAK_RETCODE row_pack_compact(const OAK_ROW *row, B_ENCODER encoder);

/* Reads a row from the beginning of the decoder's OAK_BUFFER into `row`, which
 * need not be initialised. With a database whose row_format is compact the
 * stream is copied and kept as it is (of a static buffer: viewed); else it is
 * decoded. After a failure the row holds nothing.
 *   rowid   the row's number, from which rowid columns are filled
 *   ti      the table, finalized
 *   tag     for the row's memory
 *   hErr    what misuse is reported on; may be null
 *   dbi     the database; may be null
 * eDBCORRUPTED     a number or length that the table does not allow
 * eEOD, eINVVARINT the stream ends early or is malformed
 * eNOTIMPLEMENTED  the database's row_format is the value form or unknown;
 *                  reported on hErr
 * eNOMEMORY, eINVNULLARG (row, decoder or ti) */
OAK_API OAK_RETCODE row_unpack_compact(OAK_ROW *row, B_DECODER decoder, OAK_ROWID_T rowid,
                                       SCH_TBL_INFO_C ti, OSL_MEMTAG tag, OAK_ERR hErr,
                                       DB_INSTANCE *dbi);

/* The decoding proper, whatever the database's row_format. A nullable column
 * that the stream does not name is NULL, any other vsNOVAL; the values of
 * columns dropped since are read and thrown away. One allocation for the row,
 * and none that lasts beyond it. */
OAK_API OAK_RETCODE row_unpack_compact_buffer(OAK_ROW *row, B_DECODER decoder, OAK_ROWID_T rowid,
                                              SCH_TBL_INFO_C ti, OSL_MEMTAG tag, OAK_ERR hErr,
                                              DB_INSTANCE *dbi);

OAK_C_END

#endif
