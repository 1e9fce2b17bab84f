/* The types that every part of the base library shares: the typed value, type
 * codes, comparisons, indexes and numbers of stored things.
 *
 * Law: a value owns nothing by itself; its payload is borrowed or lies in a
 * memory tag. Indexes are 16 bits wide and all ones means none. */
#ifndef OAKTYPES_H
#define OAKTYPES_H

#include "oakbcdtypes.h"
#include "oakdatetimetypes.h"
#include "oakretcodetypes.h"
#include "oakuuidtypes.h"
#include "osltypes.h"

/* ---- Small vocabularies ------------------------------------------------ */

typedef enum OAK_COMPARE OAK_INT32_ENUM { OAK_LT = -1, OAK_EQ = 0, OAK_GT = 1 } OAK_COMPARE;

typedef enum OAK_DIRECTION OAK_INT32_ENUM { OAK_REVERSE = -1, OAK_FORWARD = 1 } OAK_DIRECTION;

typedef uint16_t OAK_INDEX;
typedef OAK_INDEX OAK_COL_INDEX;
typedef OAK_INDEX OAK_KEY_INDEX;
typedef OAK_INDEX OAK_REF_INDEX;
typedef OAK_INDEX OAK_TBL_INDEX;
typedef OAK_INDEX OAK_DOM_INDEX;
typedef OAK_INDEX OAK_TRC_INDEX;
#define OAK_INDEX_NONE ((OAK_INDEX)UINT16_MAX)

typedef uint32_t OAK_DRAWER; /* a unit of storage; user drawers start at 5 */
#define OAK_DRAWER_NONE UINT32_MAX

typedef uint64_t OAK_SLOT;             /* an item's number in its drawer */
typedef uint64_t OAK_ROWID_T;          /* a row's number */
typedef uint32_t OAK_COLUMN_ID;        /* a column's public constant */
typedef uint32_t OAK_HAS_VALUE_OFFSET; /* where a has-value byte lies; 0 none */
typedef uint8_t OAK_HAS_VALUE_T;       /* 1: the column holds a value */

/* ---- Stored objects ---------------------------------------------------- */

/* How an object's bytes are laid out. */
typedef enum OAK_ITEM_FORMAT OAK_INT32_ENUM {
    OAK_ITEM_FORMAT_COMPACT = 16, /* a stream of varying integers and typed values */
    OAK_ITEM_FORMAT_EXPANDED = 32 /* an image of the object in memory */
} OAK_ITEM_FORMAT;

/* How an object is compressed. */
typedef enum OAK_COMPRESS_METHOD OAK_INT32_ENUM {
    OAK_COMPRESS_NONE = 1,
    OAK_COMPRESS_LZMA = 2,
    OAK_COMPRESS_ZERO = 4
} OAK_COMPRESS_METHOD;

/* An object's header value: the item format or-ed with the method. */
typedef enum OAK_OBJ_FORMAT OAK_INT32_ENUM {
    OBJ_COMPACT_NONE = 17,
    OBJ_COMPACT_LZMA = 18,
    OBJ_COMPACT_ZERO = 20,
    OBJ_EXPANDED_NONE = 33,
    OBJ_EXPANDED_LZMA = 34,
    OBJ_EXPANDED_ZERO = 36
} OAK_OBJ_FORMAT;

/* ---- Type codes -------------------------------------------------------- */

/* The low four bits are the class: 0 none, 1 boolean, 2 integer, 3 floating
 * point, 4 date and time, 5 decimal, 6 binary, 7 row id, 8 text, 9 UUID,
 * 11 reference or marker. */
typedef enum OAK_TYPE OAK_INT32_ENUM {
    OAK_NOVAL = 0x0000,
    OAK_BOOL = 0x8001,
    OAK_INT8 = 0x0002,
    OAK_UINT8 = 0x8002,
    OAK_INT16 = 0x0102,
    OAK_UINT16 = 0x8102,
    OAK_INT32 = 0x0202,
    OAK_UINT32 = 0x8202,
    OAK_INT64 = 0x0302,
    OAK_UINT64 = 0x8302,
    OAK_FLOAT = 0x0203,
    OAK_DOUBLE = 0x0303,
    OAK_BCD = 0x0005,
    OAK_DATE = 0x0104,
    OAK_TIME = 0x0204,
    OAK_TIMETZ = 0x0404,
    OAK_TIMESTAMP = 0x0304,
    OAK_TIMESTAMPTZ = 0x0504,
    OAK_ROWID = 0x0007,
    OAK_UUID = 0x0009,
    OAK_CHAR = 0x0008,
    OAK_WCHAR = 0x0108,
    OAK_WCHAR_UTF8 = 0x0208,
    OAK_VARCHAR = 0x0808,
    OAK_WVARCHAR = 0x0908,
    OAK_WVARCHAR_UTF8 = 0x0A08,
    OAK_BINARY = 0x0006,
    OAK_VARBINARY = 0x0806,
    OAK_BLOB = 0x1006,
    OAK_CLOB = 0x1008,
    OAK_WCLOB = 0x1108,
    OAK_WCLOB_UTF8 = 0x1208,
    OAK_SUBQUERY = 0x001B,
    OAK_OUTERREF = 0x002B,
    OAK_PARAMREF = 0x003B,
    OAK_OAKVALUE = 0x004B,
    OAK_AUTOGEN = 0x005B,
    OAK_PROCVAR = 0x006B,
    OAK_ZERODIV = 0x007B,
    OAK_RESULTCOL = 0x008B,
    OAK_COLREF = 0x009B,
    OAK_DEFAULT = 0x00AB,
    OAK_DEFAULT_AUTO = 0x100B,
    OAK_DEFAULT_CURRENT = 0x200B,
    OAK_DEFAULT_CURRDATE = 0x300B,
    OAK_DEFAULT_CURRTIME = 0x400B,
    OAK_DEFAULT_CURRTIMESTAMP = 0x500B,
    OAK_GLOBALVAR = 0x600B
} OAK_TYPE;

enum {
    OAK_TYPE_CLASS_MASK = 0x000F,
    OAK_TYPE_CLASS_BOOL = 1,
    OAK_TYPE_CLASS_INTEGER = 2,
    OAK_TYPE_CLASS_FLOAT = 3,
    OAK_TYPE_CLASS_DATETIME = 4,
    OAK_TYPE_CLASS_DECIMAL = 5,
    OAK_TYPE_CLASS_BINARY = 6,
    OAK_TYPE_CLASS_ROWID = 7,
    OAK_TYPE_CLASS_TEXT = 8,
    OAK_TYPE_CLASS_UUID = 9,
    OAK_TYPE_LARGE_OBJECT = 0x1000 /* set in the BLOB and CLOB codes */
};

/* ---- The typed value --------------------------------------------------- */

typedef enum VAL_STATUS OAK_INT32_ENUM {
    vsNOVAL = 0,    /* no value at all */
    vsOKAY = 1,     /* a valid value */
    vsNULL = 2,     /* SQL NULL; the type stays meaningful */
    vsCURRENT = 3,  /* stands for the current date or time */
    vsAUTO = 4,     /* stands for a generated value */
    vsEMPTY = 5,    /* empty */
    vsTRUNCATE = 6, /* truncated */
    vsDATALOSS = 7, /* data was lost */
    vsERROR = 8     /* vt.err holds an error code */
} VAL_STATUS;

/* The payload. Every member starts at the union's start; the first is as wide as
 * the union, so that an initialiser {} clears all of it. */
typedef union OAK_COLUMN {
    uint64_t u64v;
    OAK_RETCODE err;
    OAK_BOOL_T bv;
    int8_t i8v;
    uint8_t u8v;
    int16_t i16v;
    uint16_t u16v;
    int32_t i32v;
    uint32_t u32v;
    int64_t i64v;
    OAK_ROWID_T ridv;
    float fv;
    double dv;
    const char *cv;
    const char *wcv;
    const void *pv;
    OAK_PACKED_DATE_T dtv;
    OAK_PACKED_TIME_T tmv;
    OAK_PACKED_TIMESTAMP_T tsv;
    OAK_PACKED_TIMETZ_T tmzv;
    const OAK_PACKED_TIMESTAMPTZ_T *tszv;
    const OAK_UUID_T *uuid;
    OAK_BCD_T *bcd;
    OAK_BOOL_T *ba;
    int8_t *i8a;
    uint8_t *u8a;
    int16_t *i16a;
    uint16_t *u16a;
    int32_t *i32a;
    uint32_t *u32a;
    int64_t *i64a;
    uint64_t *u64a;
    float *fa;
    double *da;
} OAK_COLUMN;

typedef struct OAK_VALUE {
    VAL_STATUS status;
    OAK_TYPE type;
    uint32_t elts; /* elements of an array; 0 for a scalar */
    size_t len;    /* bytes of a variable payload; text counts its terminator */
    OAK_COLUMN vt;
    OSL_MEMTAG tag; /* when set, text, binary and UUID setters copy into it */
} OAK_VALUE;

typedef struct OAK_COLUMN_VALUE {
    OAK_COLUMN_ID columnId;
    OAK_VALUE value;
} OAK_COLUMN_VALUE;

#endif
