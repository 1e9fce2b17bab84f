/* Rows: the item of a table's drawer, in its forms in memory.
 *
 * Law: the working form is the row buffer, one block laid out by the table's
 * OAK_ROW_BUFFER_INFO: the links of AVL keys, the joins, a status word for each
 * live column, the column data. A row can also be kept as its compact stream.
 * How rows are stored is told in row_compact.h and row_expanded.h.
 *
 *   status   has-value byte   meaning
 *   vsOKAY   1 or no byte     a value is in the column data
 *   vsNULL   0                NULL
 *   vsNOVAL  no byte, or 1    not in the row: a large object lies in its blob
 *            (large objects)  drawer, a foreign key column behind its join
 *
 * A row belongs to one thread. It owns `row_data`, or its compact buffer, under
 * its tag; row_free gives them back. */
#ifndef ROW_H
#define ROW_H

#include "buff.h"
#include "encoder.h"
#include "error.h"
#include "oaktypes.h"
#include "schema_handles.h"

OAK_C_BEGIN

/* ---- Records ----------------------------------------------------------- */

typedef enum OAK_ROW_FORMAT OAK_INT32_ENUM {
    OAK_ROW_FORMAT_BUFFER = 1, /* the row buffer */
    OAK_ROW_FORMAT_VALUE = 2,  /* an array of values: reserved, eNOTIMPLEMENTED */
    OAK_ROW_FORMAT_COMPACT = 3 /* the compact stream as it is */
} OAK_ROW_FORMAT;

/* What rows need of an open database, which the upper layers hold. */
typedef struct DB_INSTANCE {
    OAK_ROW_FORMAT row_format; /* the form that unpacked rows take */
    OSL_POOL bufferPool;       /* of OAK_BUFFER records; safe to share */
} DB_INSTANCE;

/* A row's links in one AVL key; the flags are carried, not interpreted. */
typedef struct OAK_AVL {
    uint16_t flags;
    OAK_SLOT left;
    OAK_SLOT right;
} OAK_AVL;

/* A row's link to its owner in one reference. */
typedef struct OAK_JOIN {
    OAK_SLOT owner; /* 0 when there is none */
} OAK_JOIN;

typedef struct OAK_ROW_DATA_BUFFER {
    uint8_t *col_data;      /* inside row_data */
    VAL_STATUS *col_status; /* inside row_data, by position among the live columns */
} OAK_ROW_DATA_BUFFER;

typedef struct OAK_ROW_DATA_VALUE {
    OAK_VALUE *col_values;
} OAK_ROW_DATA_VALUE;

typedef struct OAK_ROW_DATA_COMPACT {
    OAK_BUFFER *buffer;
} OAK_ROW_DATA_COMPACT;

typedef struct OAK_ROW {
    OAK_ROW_FORMAT format;
    OAK_ROWID_T rowid;
    OSL_MEMTAG tag;    /* of row_data and of a compact buffer's bytes */
    SCH_TBL_INFO_C ti; /* the row's table, finalized */
    OAK_AVL *avls;     /* inside row_data, or null */
    OAK_JOIN *joins;   /* inside row_data, or null */
    union {
        OAK_ROW_DATA_BUFFER b;
        OAK_ROW_DATA_VALUE v;
        OAK_ROW_DATA_COMPACT c;
    } data;
    uint8_t *row_data; /* the row buffer */
    size_t data_len;   /* its bytes; 0 in compact form */
    OAK_ERR hErr;      /* what misuse is reported on; may be null */
    DB_INSTANCE *dbi;  /* the database; may be null */
} OAK_ROW;

/* ---- Operations -------------------------------------------------------- */

/* Brings the row into another form; it stays as it was when that fails.
 * sOKAY           done, or it has the form already
 * eNOTIMPLEMENTED to the value form; reported on hErr
 * eNOMEMORY       reported on hErr
 * eSYS_ERROR      an unknown form, a row of none, or a compact stream that does
 *                 not unpack; reported on hErr
 * eINVNULLARG     a null row
 * else the statuses of row_pack_compact. */
OAK_API OAK_RETCODE row_convert(OAK_ROW *row, OAK_ROW_FORMAT format);

/* Gives back what the row owns: the row buffer to its tag, a compact buffer to
 * the database's pool, or to its tag without a database. data_len, tag and ti
 * stay. Null is allowed. */
OAK_API void row_free(OAK_ROW *row);

/* Stores the 8 bytes of a rowid where a rowid column lies in the column data. */
OAK_API void row_set_rowid_column(uint8_t *colData, OAK_ROWID_T rowid);

OAK_C_END

#endif
