/* LZMA: compresses one stored object at a time, a row or a chunk of a few
 * kilobytes, into the stream of this system.
 *
 * Law: the stream is the object's length as a varying unsigned integer and then
 * the bytes of the range coder; there is no header, no property byte and no end
 * mark. lc is 3, lp 0, pb 2, the window 16384 bytes, and nothing carries over
 * from one object to the next. It is the bit-level coding of LZMA1 but for two
 * states (after a short repeat comes 8, after a long one 9), so that published
 * decoders do not read it. docs/formats.md gives the form.
 *
 * An LZMA is working storage for one object at a time and one thread at a time. */
#ifndef LZMA_H
#define LZMA_H

#include "buff.h"

OAK_C_BEGIN

typedef struct _LZMA *LZMA;

/* Makes a coder with a memory tag of its own, about 20 KB. eINVNULLARG for a
 * null output, eNOMEMORY when memory ends. */
OAK_API OAK_RETCODE b_lzmaCreate(LZMA *lzma);
/* Frees it; null is allowed. */
OAK_API void b_lzmaDestroy(LZMA lzma);

/* Appends the stream of the whole source, from its first byte to its length, to
 * what `dst` holds. Takes about 320 KB for the time of the call. eINVNULLARG
 * for a null argument; eRANGE for a source of 4 GiB or more; eNOMEMORY when
 * memory ends, the contents of `dst` then being as before. */
OAK_API OAK_RETCODE b_lzmaCompress(LZMA lzma, const OAK_BUFFER *src, OAK_BUFFER *dst);

/* Reads a stream from the source's position and makes `dst` hold the object,
 * from its first byte. Bytes behind the stream are not looked at. A stream cut
 * short yields what was decoded, with sOKAY. sNOTFOUND for an empty source;
 * sEOS for a length cut short and eINVVARINT for a malformed one; eDBCORRUPTED
 * for a length of 4 GiB or more and for a distance beyond the bytes decoded;
 * eNOMEMORY when memory ends; eINVNULLARG for a null argument. After a failure
 * the length of `dst` is as before. Memory grows with what is decoded, not by
 * the announced length. */
OAK_API OAK_RETCODE b_lzmaDecompress(LZMA lzma, const OAK_BUFFER *src, OAK_BUFFER *dst);

OAK_C_END

#endif
