/* What a storable type can do: one constant table of operations for each type,
 * reached from a column's type by one indirection.
 *
 * Law: the tables are constant and the operations keep no state, so any thread
 * can use them on values of its own. Every operation takes the column's type
 * (`pi`) and reads element count, lengths, precision and locale from it; none
 * looks at a value's NULL, which is the column's affair (schema_fcns.h).
 *
 * Three places hold a column's value: an OAK_VALUE; a record buffer, the flat
 * form of rows and keys; a stream, the stored form of encoder.h.
 *
 *   Type                     In a record buffer            In a stream
 *   boolean, integers        machine form, a boolean 4     one varying integer,
 *                            bytes; arrays one by one      signed ones mapped;
 *                                                          arrays as run lists
 *   float, double            machine form                  4 or 8 bytes in
 *                                                          stored order; arrays
 *                                                          as run lists
 *   date, time               4 bytes                       one varying integer
 *   timetz, timestamp        8 bytes                       two varying integers
 *   timestamptz              12 bytes: date, time, zone    three
 *   decimal                  the 37 bytes of OAK_BCD_T     packed, prec / 2 + 1
 *   UUID                     16 bytes                      16 bytes
 *   text                     bytes with a terminator       length, then bytes
 *   binary                   the column's length           the same bytes
 *   varbinary                16-bit length, then bytes     length, then bytes
 *   large objects            none                          none
 *
 * A boolean array has elements of four bytes everywhere. The values of an array
 * lie behind the pointer in `vt` when the value's `elts` is not 0, and no more
 * of them than `elts` are ever read, whatever the column says.
 *
 * Contents: function types; the table record and the 28 tables; lookup; the
 * operations by family, each under b_type_<operation>_<type>. */
#ifndef OAKVALUETYPES_H
#define OAKVALUETYPES_H

#include "encoder.h"
#include "hashfcn.h"
#include "oaktypes.h"
#include "schema_handles.h"

OAK_C_BEGIN

/* ---- Function types ---------------------------------------------------- */

/* Bits of `flags` in the text operations. */
enum {
    B_TYPE_TEXT_BASE64 = 0x40, /* text and binary as base 64 */
    B_TYPE_TEXT_DISCARD = 0x80 /* tostring writes nothing; the binary types do not look at it */
};

/* Writes one value, or element `elem` of an array column, as text. eRANGE for an
 * `elem` that the array does not have; eINVNULLARG without a value, its payload or
 * an output function; the output function's failure. */
typedef OAK_RETCODE (*B_TYPE_TOSTRING_FCN)(SCH_TYPE_INFO_C pi, const OAK_VALUE *value,
                                           uint32_t elem, uint32_t flags, OAK_OUTPUT_FCN fcn,
                                           OAK_OUTPUT_CTX ctx);
/* Reads one value, or element `elem` of a new, zeroed array, from text. What
 * it allocates lies in `tag` and is freed when the text is refused. eRANGE for an
 * `elem` beyond the column's elements; eINVNULLARG without a value or text;
 * eNOMEMORY; what the type's parser says of the text, see fromstring below. */
typedef OAK_RETCODE (*B_TYPE_FROMSTRING_FCN)(SCH_TYPE_INFO_C pi, OAK_VALUE *value, uint32_t elem,
                                             uint32_t flags, OSL_MEMTAG tag, const char *text);
/* Three-way comparison; an absent value, or one whose payload is a null pointer,
 * sorts first. `limit`, when not 0, bounds the bytes that are looked at in texts
 * and OAK_BINARY; other types pass over it. Allocates nothing, cannot fail. */
typedef OAK_COMPARE (*B_TYPE_CMP_FCN)(SCH_TYPE_INFO_C pi, uint32_t limit, const OAK_VALUE *col1,
                                      const OAK_VALUE *col2);
/* Feeds a value to a hash. eINVNULLARG, nothing being fed, without a value, its
 * payload or a context. */
typedef OAK_RETCODE (*B_TYPE_HASH_FCN)(SCH_TYPE_INFO_C pi, const OAK_VALUE *col,
                                       B_HASHCTX *hashctx);

/* Deep copy of a value into `tag`. At most `maxExtraBytes` bytes are allocated
 * for arrays, texts and binaries: what is longer is cut with sTRUNCATE, and 0
 * leaves `dst` vsNOVAL with a null pointer and sOKAY. */
typedef OAK_RETCODE (*B_TYPE_SCHEMA_COPY_FCN)(SCH_TYPE_INFO_C pi, OAK_VALUE *dst,
                                              const OAK_VALUE *src, size_t maxExtraBytes,
                                              OSL_MEMTAG tag);
/* Value to record buffer. `*size` gives the room at `dst` (0: not limited) and
 * receives the bytes written; less room than bytes is sTRUNCATE. `size` may be
 * null (not limited), and `dst` to measure only. A varbinary's length is never
 * cut: less room than its two bytes, 0 included, is sTRUNCATE with nothing written. */
typedef OAK_RETCODE (*B_TYPE_SCHEMA_COPY_TO_BUFF_FCN)(SCH_TYPE_INFO_C pi, void *dst, size_t *size,
                                                      const OAK_VALUE *src);
/* Record buffer of `size` bytes (0: not limited) to value, with a copy in `tag`
 * of what a value keeps behind a pointer. */
typedef OAK_RETCODE (*B_TYPE_SCHEMA_COPY_FROM_BUFF_FCN)(SCH_TYPE_INFO_C pi, OAK_VALUE *dst,
                                                        const void *buff, size_t size,
                                                        OSL_MEMTAG tag);
/* The same without a copy: the value points into the buffer, which must outlive
 * it. Allocates nothing. */
typedef OAK_RETCODE (*B_TYPE_SCHEMA_ASSIGN_FROM_BUFF_FCN)(SCH_TYPE_INFO_C pi, OAK_VALUE *dst,
                                                          const void *buff, size_t size);
/* Value to stream. */
typedef OAK_RETCODE (*B_TYPE_SCHEMA_PACK_FCN)(SCH_TYPE_INFO_C pi, const OAK_VALUE *col,
                                              B_ENCODER encoder);
/* Stream to value; payloads behind a pointer are allocated in `tag`. Status, type,
 * `elts` and `len` are set first; a failure leaves nothing allocated and `vt` as
 * it was. */
typedef OAK_RETCODE (*B_TYPE_SCHEMA_UNPACK_FCN)(SCH_TYPE_INFO_C pi, OAK_VALUE *col, OSL_MEMTAG tag,
                                                B_DECODER decoder);
/* Stream to record buffer of the column's byte length. `*hasValue` (optional)
 * becomes 1 on success. */
typedef OAK_RETCODE (*B_TYPE_SCHEMA_UNPACK_TO_BUFF_FCN)(SCH_TYPE_INFO_C pi, void *colData,
                                                        OAK_HAS_VALUE_T *hasValue,
                                                        B_DECODER decoder);
/* Frees what `vt` points to and makes it null. */
typedef void (*B_TYPE_SCHEMA_FREE_FCN)(OAK_VALUE *col, OSL_MEMTAG tag);

/* ---- The tables -------------------------------------------------------- */

typedef struct OAK_TYPE_INFO {
    ALIGN_TYPE ext_align;                   /* alignment class in a C-style record */
    const char *enum_name;                  /* the type code in generated source */
    const char *field_type_text;            /* a field of it in generated source */
    const char *ddl_type_text;              /* the type in the schema language */
    const char *sql_type_text;              /* the type in SQL */
    const char *objc_field_type_text;       /* a field of it in generated Objective-C */
    const char *objc_field_array_type_text; /* an array field there, or null */
    B_TYPE_TOSTRING_FCN tostring;
    B_TYPE_FROMSTRING_FCN fromstring;
    B_TYPE_CMP_FCN cmp;
    B_TYPE_HASH_FCN hashfcn;
    B_TYPE_SCHEMA_COPY_FCN copy_fcn;
    B_TYPE_SCHEMA_COPY_TO_BUFF_FCN copy_to_buff_fcn;
    B_TYPE_SCHEMA_COPY_FROM_BUFF_FCN copy_from_buff_fcn;
    B_TYPE_SCHEMA_ASSIGN_FROM_BUFF_FCN assign_from_buff_fcn;
    B_TYPE_SCHEMA_PACK_FCN pack_fcn;
    B_TYPE_SCHEMA_UNPACK_FCN unpack_fcn;
    B_TYPE_SCHEMA_UNPACK_TO_BUFF_FCN unpack_to_buff_fcn;
    B_TYPE_SCHEMA_FREE_FCN free_fcn;
} OAK_TYPE_INFO;

/* Large objects have no text, order, hash, stream form or place in a record
 * buffer: those members are null in their tables. The five date and time types
 * have no free_fcn. */
OAK_API extern const OAK_TYPE_INFO bool_type_info;
OAK_API extern const OAK_TYPE_INFO int8_type_info;
OAK_API extern const OAK_TYPE_INFO uint8_type_info;
OAK_API extern const OAK_TYPE_INFO int16_type_info;
OAK_API extern const OAK_TYPE_INFO uint16_type_info;
OAK_API extern const OAK_TYPE_INFO int32_type_info;
OAK_API extern const OAK_TYPE_INFO uint32_type_info;
OAK_API extern const OAK_TYPE_INFO int64_type_info;
OAK_API extern const OAK_TYPE_INFO uint64_type_info;
OAK_API extern const OAK_TYPE_INFO float_type_info;
OAK_API extern const OAK_TYPE_INFO double_type_info;
OAK_API extern const OAK_TYPE_INFO decimal_type_info;
OAK_API extern const OAK_TYPE_INFO date_type_info;
OAK_API extern const OAK_TYPE_INFO time_type_info;
OAK_API extern const OAK_TYPE_INFO timetz_type_info;
OAK_API extern const OAK_TYPE_INFO timestamp_type_info;
OAK_API extern const OAK_TYPE_INFO timestamptz_type_info;
OAK_API extern const OAK_TYPE_INFO rowid_type_info;
OAK_API extern const OAK_TYPE_INFO uuid_type_info;
OAK_API extern const OAK_TYPE_INFO utf8_type_info;
OAK_API extern const OAK_TYPE_INFO varutf8_type_info;
OAK_API extern const OAK_TYPE_INFO wchar_utf8_type_info;
OAK_API extern const OAK_TYPE_INFO varwchar_utf8_type_info;
OAK_API extern const OAK_TYPE_INFO clob_type_info;
OAK_API extern const OAK_TYPE_INFO wclob_utf8_type_info;
OAK_API extern const OAK_TYPE_INFO binary_type_info;
OAK_API extern const OAK_TYPE_INFO varbinary_type_info;
OAK_API extern const OAK_TYPE_INFO blob_type_info;

/* ---- Lookup ------------------------------------------------------------ */

/* The table of a type code, or null for a code that cannot be stored. Wide text
 * is UTF-8 whether `unicode_enabled` is set or not, so the wide and the _UTF8
 * codes share a table and the argument changes nothing. Constant time. */
OAK_API const OAK_TYPE_INFO *b_typeGetInfoEx(OAK_TYPE type, OAK_BOOL_T unicode_enabled);
/* The same with `unicode_enabled` false. */
OAK_API const OAK_TYPE_INFO *b_typeGetInfo(OAK_TYPE type);

/* ---- The operations ---------------------------------------------------- */

/* The types by what they share. An operation of a family is declared for every
 * type of its lists. */
#define B_TYPE_LIST_ARRAYABLE(item)                                                                \
    item(bool) item(int8) item(uint8) item(int16) item(uint16) item(int32) item(uint32)            \
        item(int64) item(uint64) item(float) item(double)
#define B_TYPE_LIST_DATETIME(item)                                                                 \
    item(date) item(time) item(timetz) item(timestamp) item(timestamptz)
#define B_TYPE_LIST_POINTED(item) item(bcd) item(uuid) item(utf8) item(binary) item(varbinary)
#define B_TYPE_LIST_LOB(item)     item(blob) item(clob)
#define B_TYPE_LIST_STREAMED(item)                                                                 \
    B_TYPE_LIST_ARRAYABLE(item) B_TYPE_LIST_DATETIME(item) B_TYPE_LIST_POINTED(item)

/* tostring. Booleans "true" for exactly 1 and "false"; integers in decimal;
 * floating numbers by "%.17g"; decimals in free scale with an exponent; dates
 * as YYYY-MM-DD, times as HH:MM:SS.FFFF, zones behind a blank; UUIDs in braces;
 * text as it is; binary as upper-case hexadecimal digits. With
 * B_TYPE_TEXT_BASE64 text and binary go out as base64.h writes them, the NUL
 * at the end included, and a null output function is eINVNULLARG.
 *
 * fromstring. The forms above; dates as YYYY-MM-DD. Booleans "true" and
 * "false" in any case, eRANGE for others. Integers eRANGE outside their type. A
 * float refuses zero and what is below its smallest normal or above its
 * largest number with eRANGE; a double takes any text, 0 for one that is no
 * number. Binary text is checked to be pairs of hexadecimal digits (eRANGE) and
 * yields as many zero bytes as pairs: only the form of the text counts here, and
 * text that must yield its bytes comes as base 64. An OAK_VARBINARY is read and
 * written in the form of a record buffer, its 16-bit length in front and `len`
 * 0; assign_from_buff makes a value with a length of it. A value that has a
 * `len` is written by that. */
#define B_TYPE_TEXT_FUNCTIONS(type)                                                                \
    OAK_API OAK_RETCODE b_type_tostring_##type(SCH_TYPE_INFO_C pi, const OAK_VALUE *value,         \
                                               uint32_t elem, uint32_t flags, OAK_OUTPUT_FCN fcn,  \
                                               OAK_OUTPUT_CTX ctx);                                \
    OAK_API OAK_RETCODE b_type_fromstring_##type(SCH_TYPE_INFO_C pi, OAK_VALUE *value,             \
                                                 uint32_t elem, uint32_t flags, OSL_MEMTAG tag,    \
                                                 const char *text);
B_TYPE_LIST_STREAMED(B_TYPE_TEXT_FUNCTIONS)
#undef B_TYPE_TEXT_FUNCTIONS

/* cmp. Numbers by value, arrays by the first element that differs; a NaN above
 * all numbers and equal to itself; booleans as unsigned numbers; dates and times
 * by date, then time, zones not counting; UUIDs and binary by unsigned bytes, the
 * shorter OAK_VARBINARY first where one begins the other; decimals by value.
 * Text by bytes, by at most `limit` of them when it is not 0; under a locale by
 * its collation, and then any `limit` but 0 is OAK_EQ, because the order of a
 * locale has no prefix. A column with elements of a type that has no arrays is
 * OAK_EQ whatever it holds, of timetz OAK_GT. */
#define B_TYPE_CMP_FUNCTION(type)                                                                  \
    OAK_API OAK_COMPARE b_type_cmp_##type(SCH_TYPE_INFO_C pi, uint32_t limit,                      \
                                          const OAK_VALUE *col1, const OAK_VALUE *col2);
B_TYPE_LIST_STREAMED(B_TYPE_CMP_FUNCTION)
#undef B_TYPE_CMP_FUNCTION

/* hash. Numbers in stored byte order, a boolean as a 32-bit number, arrays
 * element by element; decimals in packed form (eINVBCD for one that does not
 * pack into the column); zones as two bytes; text up to its terminator; binary
 * `len` bytes. Dates and times hash as uint32. */
#define B_TYPE_HASH_FUNCTION(type)                                                                 \
    OAK_API OAK_RETCODE b_type_hash_##type(SCH_TYPE_INFO_C pi, const OAK_VALUE *col,               \
                                           B_HASHCTX *hashctx);
B_TYPE_LIST_ARRAYABLE(B_TYPE_HASH_FUNCTION)
B_TYPE_HASH_FUNCTION(timetz)
B_TYPE_HASH_FUNCTION(timestamp)
B_TYPE_HASH_FUNCTION(timestamptz)
B_TYPE_LIST_POINTED(B_TYPE_HASH_FUNCTION)
#undef B_TYPE_HASH_FUNCTION

/* copy, copy_from_buff, assign_from_buff. eBADDATALEN: an array, text or binary
 * longer than the column, a text without a terminator in the buffer, a varbinary
 * longer than the buffer. eINVUTF, eSTRTOOLONG: text that is not UTF-8, or of
 * more characters than the column takes, where the schema's locale is UTF-8.
 * eINVNULLARG: a value or buffer whose payload is a null pointer. eNOMEMORY. A
 * fixed form that the buffer is too short for is sTRUNCATE with nothing stored. */
#define B_TYPE_COPY_FUNCTIONS(type)                                                                \
    OAK_API OAK_RETCODE b_type_schema_copy_##type(SCH_TYPE_INFO_C pi, OAK_VALUE *dst,              \
                                                  const OAK_VALUE *src, size_t maxExtraBytes,      \
                                                  OSL_MEMTAG tag);                                 \
    OAK_API OAK_RETCODE b_type_schema_copy_from_buff_##type(                                       \
        SCH_TYPE_INFO_C pi, OAK_VALUE *dst, const void *buff, size_t size, OSL_MEMTAG tag);        \
    OAK_API OAK_RETCODE b_type_schema_assign_from_buff_##type(SCH_TYPE_INFO_C pi, OAK_VALUE *dst,  \
                                                              const void *buff, size_t size);
B_TYPE_LIST_STREAMED(B_TYPE_COPY_FUNCTIONS)
B_TYPE_LIST_LOB(B_TYPE_COPY_FUNCTIONS)
#undef B_TYPE_COPY_FUNCTIONS

/* copy_to_buff, pack, unpack, unpack_to_buff. eBADDATALEN: a value that the
 * column cannot hold, an array with fewer elements than it declares. eINVBCD: a decimal that does
 * not pack or unpack. eDBCORRUPTED: a text or varbinary in the stream that is longer than its
 * column, a run list that leaves the array, a number out of its type's range;
 * eEOD, eINVVARINT and the like as the decoder gives them. eNOMEMORY. */
#define B_TYPE_STREAM_FUNCTIONS(type)                                                              \
    OAK_API OAK_RETCODE b_type_schema_copy_to_buff_##type(SCH_TYPE_INFO_C pi, void *dst,           \
                                                          size_t *size, const OAK_VALUE *src);     \
    OAK_API OAK_RETCODE b_type_schema_pack_##type(SCH_TYPE_INFO_C pi, const OAK_VALUE *col,        \
                                                  B_ENCODER encoder);                              \
    OAK_API OAK_RETCODE b_type_schema_unpack_##type(SCH_TYPE_INFO_C pi, OAK_VALUE *col,            \
                                                    OSL_MEMTAG tag, B_DECODER decoder);            \
    OAK_API OAK_RETCODE b_type_schema_unpack_to_buff_##type(                                       \
        SCH_TYPE_INFO_C pi, void *colData, OAK_HAS_VALUE_T *hasValue, B_DECODER decoder);
B_TYPE_LIST_STREAMED(B_TYPE_STREAM_FUNCTIONS)
#undef B_TYPE_STREAM_FUNCTIONS

/* free. Arrays by their `elts`; uuid, bcd, utf8 and binary always; varbinary and
 * large objects when `len` is not 0. */
#define B_TYPE_FREE_FUNCTION(type)                                                                 \
    OAK_API void b_type_schema_free_##type(OAK_VALUE *col, OSL_MEMTAG tag);
B_TYPE_LIST_ARRAYABLE(B_TYPE_FREE_FUNCTION)
B_TYPE_LIST_POINTED(B_TYPE_FREE_FUNCTION)
B_TYPE_LIST_LOB(B_TYPE_FREE_FUNCTION)
#undef B_TYPE_FREE_FUNCTION

OAK_C_END

#endif
