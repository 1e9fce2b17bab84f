/* The vocabulary of the schema: the kinds of tables, keys, references, drawers
 * and triggers, and the two buffer descriptors that finalization computes.
 *
 * Law: every number in this header is stored (in catalogs, in items, in the
 * offsets of expanded rows and buckets) and never changes. The catalog words
 * that belong to the numbers stand in schema_words.h.
 *
 * Rests on the shared types alone; schema.h and the item formats include it. */
#ifndef SCHEMA_TYPES_H
#define SCHEMA_TYPES_H

#include "oaktypes.h"

/* ---- Kinds ------------------------------------------------------------- */

typedef enum OAK_ENC_TYPE OAK_INT32_ENUM {
    OAK_ENC_NONE = 0,
    OAK_ENC_XOR = 1,
    OAK_ENC_AES128 = 2,
    OAK_ENC_AES192 = 3,
    OAK_ENC_AES256 = 4,
    OAK_ENC_DEFAULT = 5 /* has a text, but no catalog word */
} OAK_ENC_TYPE;

typedef enum OAK_TABLE_TYPE OAK_INT32_ENUM {
    OAK_TABLE_STANDARD = 0,
    OAK_TABLE_CIRCULAR = 1, /* holds at most max_rows rows, the oldest give way */
    OAK_TABLE_VIRTUAL = 2,
    OAK_TABLE_TEMPORARY = 3
} OAK_TABLE_TYPE;

typedef enum OAK_KEY_TYPE OAK_INT32_ENUM {
    OAK_KEY_TYPE_NOVAL = 0,
    OAK_KEY_TYPE_NONUNIQUE = 1,
    OAK_KEY_TYPE_UNIQUE = 2,
    OAK_KEY_TYPE_PRIMARY = 3
} OAK_KEY_TYPE;

typedef enum OAK_KEY_METHOD OAK_INT32_ENUM {
    OAK_KEY_METHOD_NOVAL = 0,
    OAK_KEY_METHOD_ROWID = 1,
    OAK_KEY_METHOD_BTREE = 2,
    OAK_KEY_METHOD_HASH = 3,
    OAK_KEY_METHOD_AVL = 4, /* has no drawer: its links live in the rows */
    OAK_KEY_METHOD_RTREE = 5,
    OAK_KEY_METHOD_MONO = 6,
    OAK_KEY_METHOD_VIRTUAL = 7
} OAK_KEY_METHOD;

typedef enum OAK_REF_ACTION OAK_INT32_ENUM {
    OAK_REF_ACTION_NOVAL = 0,
    OAK_REF_ACTION_RESTRICT = 1,
    OAK_REF_ACTION_CASCADE = 2,
    OAK_REF_ACTION_SET_NULL = 3
} OAK_REF_ACTION;

/* What a drawer stores. */
typedef enum OAK_DRAWER_TYPE OAK_INT32_ENUM {
    OAK_DRAWER_BTREE = 0, /* the nodes of one B-tree key */
    OAK_DRAWER_HASH = 1,  /* the buckets of one hash key */
    OAK_DRAWER_REF = 2,   /* the join nodes of one reference */
    OAK_DRAWER_BLOB = 3,  /* the chunks of one large-object column */
    OAK_DRAWER_TABLE = 4, /* the rows of one table */
    OAK_DRAWER_RTREE = 5  /* the nodes of one R-tree key */
} OAK_DRAWER_TYPE;

typedef enum OAK_TRIG_TIMING OAK_INT32_ENUM {
    OAK_TRIG_WHENEVER = 0, /* in a search: any timing */
    OAK_TRIG_BEFORE = 1,
    OAK_TRIG_AFTER = 2
} OAK_TRIG_TIMING;

typedef enum OAK_TRIG_EVENT OAK_INT32_ENUM {
    OAK_TRIG_INSERT = 0,
    OAK_TRIG_DELETE = 1,
    OAK_TRIG_UPDATE = 2
} OAK_TRIG_EVENT;

typedef enum OAK_TRIG_COL_REF OAK_INT32_ENUM {
    OAK_TRIG_OLDNEW = 0, /* in a search: any row */
    OAK_TRIG_OLD = 1,
    OAK_TRIG_NEW = 2
} OAK_TRIG_COL_REF;

/* ---- Fixed numbers ----------------------------------------------------- */

enum {
    OAK_DRAWER_RESERVED = 5, /* 0 and 1 unused, 2 to 4 of the system table */
    OAK_BUCKET_ENTRIES = 31, /* the most entries that a bucket holds */
    OAK_UTF8_CHAR_BYTES = 4  /* bytes a character takes in declared lengths */
};

/* Bits of a column's usage. */
enum {
    OAK_COL_USAGE_KEY = 1, /* the column belongs to a key */
    OAK_COL_USAGE_REF = 2, /* ... to a reference */
    OAK_COL_USAGE_SORT = 4 /* ... to the order of a reference's join list */
};

/* ---- Buffer descriptors ------------------------------------------------ */

/* One row buffer: a single block of AVL records (24 bytes each), join records
 * (8), column status words (4) and the column data. All offsets and sizes are
 * bytes from the start of the block. */
typedef struct OAK_ROW_BUFFER_INFO {
    size_t avl_offset; /* always 0 */
    size_t ref_offset;
    size_t col_status_offset;
    size_t col_data_offset;
    size_t col_data_size;
    size_t row_buffer_size; /* the whole block */
    OAK_KEY_INDEX num_avls;
    OAK_REF_INDEX num_refs;
    OAK_COL_INDEX num_cols;
} OAK_ROW_BUFFER_INFO;

/* One bucket buffer: 31 entry records (40 bytes each), 31 key buffers and 31
 * slots (8), each area rounded up to a multiple of 8. All numbers are bytes. */
typedef struct OAK_BUCKET_BUFFER_INFO {
    size_t bucket_len;
    size_t data_len;
    size_t id_len;
    size_t key_byte_len; /* one key buffer, not rounded */
    size_t buffer_len;   /* the sum of the three areas */
} OAK_BUCKET_BUFFER_INFO;

#endif
