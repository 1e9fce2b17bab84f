/* OAK_BUFFER: a byte buffer that grows as it is written and is read from a
 * position of its own. Its emit and input functions have the shapes of the
 * stream callbacks, so an OAK_BUFFER* serves as the context of an encoder, a
 * decoder, a coder or a text writer.
 *
 * Law: a buffer with `size` above 0 owns the block at `data`, which lies under
 * `tag`. A buffer with data and a `size` of 0 is static: it views bytes of the
 * caller and frees nothing. Writing into a static buffer lets go of the view
 * first: the buffer takes memory of its own and starts empty, without the old
 * contents; b_buffDuplicate is the way to keep them. One thread at a time.
 *
 * Growth, visible in `size`: byte by byte in steps of 16; b_buffEmitBytesBulk,
 * b_buffEmitString and b_buffAllocateBuffer to exactly what they need, which
 * may also lower it. Both are cheap: the platform keeps room behind a block
 * that grows, so n steps copy O(n) bytes in all.
 *
 *     OAK_BUFFER out;
 *     b_buffInit(&out, tag);
 *     rc = b_buffEmitBytesBulk(&out, "abc", 3);
 *     ...
 *     b_buffTerm(&out);
 *
 * Every function with a status answers eINVNULLARG to a null buffer or a null
 * output, and eNOMEMORY when memory ends, the contents then being as before. */
#ifndef BUFF_H
#define BUFF_H

#include "osltypes.h"

OAK_C_BEGIN

typedef struct OAK_BUFFER {
    uint8_t *data;  /* the bytes; null while there are none */
    size_t size;    /* bytes owned; 0 for a static buffer */
    size_t len;     /* bytes used */
    size_t pos;     /* where the next read begins, 0 to len */
    OSL_MEMTAG tag; /* what owned memory lies under */
} OAK_BUFFER;

/* ---- Life -------------------------------------------------------------- */

/* Makes an empty buffer of any record: the tag set, everything else cleared. */
OAK_API void b_buffInit(OAK_BUFFER *buffer, OSL_MEMTAG tag);
/* Frees owned memory and leaves the buffer as after b_buffInit. Null is allowed. */
OAK_API void b_buffTerm(OAK_BUFFER *buffer);
/* Position and length become 0; memory is kept. */
OAK_API void b_buffReset(OAK_BUFFER *buffer);
/* Frees owned memory and makes the buffer a view of `length` bytes at `data`,
 * read from 0. The bytes stay the caller's and must outlive the view. */
OAK_API void b_buffSetStatic(OAK_BUFFER *buffer, const void *data, size_t length);
/* The bytes used. */
OAK_API size_t b_buffLength(const OAK_BUFFER *buffer);

/* ---- Room -------------------------------------------------------------- */

/* Grows the owned memory to `newSize` bytes when it has fewer. */
OAK_API OAK_RETCODE b_buffIncreaseSize(OAK_BUFFER *buffer, size_t newSize);
/* Grows the owned memory by `added` bytes. */
OAK_API OAK_RETCODE b_buffExpand(OAK_BUFFER *buffer, size_t added);

/* ---- Copies ------------------------------------------------------------ */

/* Hands on what `source` holds from its position to its length, the position
 * staying where it is. An owned source is appended to `destination`. A static
 * source makes an empty destination a static view of the same bytes, its own
 * memory being freed; a destination that holds bytes has them appended. */
OAK_API OAK_RETCODE b_buffCopy(const OAK_BUFFER *source, OAK_BUFFER *destination);
/* The same for at most the first `length` bytes of that part. */
OAK_API OAK_RETCODE b_buffCopyPartial(const OAK_BUFFER *source, size_t length,
                                      OAK_BUFFER *destination);
/* Turns a static view into memory of the buffer's own with the same contents
 * and position; does nothing to a buffer that owns its memory. */
OAK_API OAK_RETCODE b_buffDuplicate(OAK_BUFFER *buffer);

/* ---- Writing ----------------------------------------------------------- */

/* Appends the low 8 bits of `byte`. An OAK_OUTPUT_FCN; `buffer` is an OAK_BUFFER*. */
OAK_API OAK_RETCODE b_buffEmitByte(OAK_OUTPUT_CTX buffer, uint32_t byte);
/* The same for a character of text. */
OAK_API OAK_RETCODE b_buffEmitChar(OAK_OUTPUT_CTX buffer, uint32_t ch);
/* Appends `size` bytes. An OAK_BULK_OUTPUT_FCN; `data` may be null when `size`
 * is 0 and may not lie in the buffer itself. */
OAK_API OAK_RETCODE b_buffEmitBytesBulk(OAK_OUTPUT_CTX buffer, const void *data, size_t size);
/* Appends a text, which may not lie in the buffer itself, without its terminator. */
OAK_API OAK_RETCODE b_buffEmitString(OAK_BUFFER *buffer, const char *text);
/* Appends `length` bytes of undefined contents and hands out where they begin;
 * the place holds until the buffer is next written. */
OAK_API OAK_RETCODE b_buffAllocateBuffer(OAK_BUFFER *buffer, size_t length, void **pPlace);
/* Appends zero bytes until the length is a multiple of `multiple`; an exact
 * multiple gets none. eINVARG when `multiple` is 0. */
OAK_API OAK_RETCODE b_buffPad(OAK_BUFFER *buffer, size_t multiple);

/* ---- Reading ----------------------------------------------------------- */

/* Delivers the byte at the position and steps on; eEOD at the end, the output
 * untouched. An OAK_INPUT_FCN. */
OAK_API OAK_RETCODE b_buffInputByte(OAK_INPUT_CTX buffer, uint32_t *pByte);
/* Copies `requested` bytes from the position to `data` and steps on. Where
 * fewer are left they are delivered, the position moves to the end, and the
 * status is eEOD. `pGot` (optional) receives the count. An OAK_BULK_INPUT_FCN. */
OAK_API OAK_RETCODE b_buffInputBytesBulk(OAK_INPUT_CTX buffer, size_t requested, void *data,
                                         size_t *pGot);
/* Moves the position; eEOD beyond the length, the position staying. */
OAK_API OAK_RETCODE b_buffSeek(OAK_BUFFER *buffer, size_t position);

OAK_C_END

#endif
