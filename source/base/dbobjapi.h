/* Stored objects: the layer between a packed object and the drawer. It puts the
 * header in front, compresses what is worth it and pads; on the way back it
 * deciphers, reads the header, decompresses and tells the item format.
 *
 * Law: a stored object is the header value (OAK_OBJ_FORMAT, one byte), for the
 * methods LZMA and ZERO the unpacked length as a varying unsigned integer, the
 * body, and zero bytes up to a multiple of 16. The header is the only mark of
 * the item format. docs/formats.md shows it byte by byte.
 *
 *     obj_compress(lzma, OAK_COMPRESS_LZMA, 128, OAK_ITEM_FORMAT_COMPACT, &packed, &stored);
 *     obj_convert_in(&packed, &stored, NULL, &format, lzma);
 *
 * An LZMA serves one conversion at a time; each thread has its own. */
#ifndef DBOBJAPI_H
#define DBOBJAPI_H

#include "buff.h"
#include "lzma.h"
#include "oaktypes.h"

OAK_C_BEGIN

/* What a stored object's length is a multiple of. */
#define OAK_OBJ_PADDING 16

/* An encipherment made by the platform: `data` is its key, and the functions
 * work in place on `length` bytes. */
typedef OAK_RETCODE (*OAK_ENCRYPT_FCN)(void *data, void *bytes, size_t length);
typedef struct OAK_ENCRYPT_S {
    void *data;
    OAK_ENCRYPT_FCN encFcn;
    OAK_ENCRYPT_FCN decFcn;
} OAK_ENCRYPT_S;
typedef OAK_ENCRYPT_S *OAK_ENCRYPT;
typedef const OAK_ENCRYPT_S *OAK_ENCRYPT_C;

/* Appends the stored form of the packed object `src` to `dst`. The method in
 * force is OAK_COMPRESS_NONE when `src` holds fewer than `rowCompressMinSize`
 * bytes, else `method`; ZERO takes the same road as LZMA. An object that grows
 * under LZMA stays compressed. The padding makes the whole length of `dst` a
 * multiple of 16. The object is what `src` holds from its position when it is
 * stored, and from its first byte when it is compressed: hand it over at
 * position 0. eINVNULLARG for a null argument (`compressInfo` may be null for an
 * object that is stored); eSYS_ERROR for another method, the header having been
 * written; else the statuses of b_lzmaCompress and of the buffer. */
OAK_API OAK_RETCODE obj_compress(LZMA compressInfo, OAK_COMPRESS_METHOD method,
                                 uint32_t rowCompressMinSize, OAK_ITEM_FORMAT itemFormat,
                                 const OAK_BUFFER *src, OAK_BUFFER *dst);

/* Turns the stored object in `buffer` back into the packed one in `dst`.
 * An empty `buffer` gives sOKAY and leaves `item_format` alone. With `enc_in`
 * the bytes are deciphered in place, in memory of the buffer's own: what a
 * static buffer views stays as it is. A stored body keeps its padding, up to 15
 * bytes, which the unpack functions ignore; from a static `buffer` it becomes a
 * static view, so `dst` then lives no longer than `buffer`. `item_format`
 * receives the header's high nibble, which is not judged. The position of `dst`
 * is 0 on every path. eSYS_ERROR for an unknown method; eEOD for an object that
 * ends in its header; eINVVARINT for a malformed header or length; the statuses
 * of b_lzmaDecompress, of the decipherment and of the buffer; eINVNULLARG. After
 * a failure `buffer` stays deciphered and must not be deciphered again. */
OAK_API OAK_RETCODE obj_convert_in(OAK_BUFFER *dst, OAK_BUFFER *buffer, OAK_ENCRYPT_C enc_in,
                                   OAK_ITEM_FORMAT *item_format, LZMA compress_info);

/* The inner half of obj_convert_in: reads the header at the position of `src`,
 * which it steps over, and does the rest. An empty `src` is eEOD, and a stored
 * body is appended to what `dst` holds; else as above. */
OAK_API OAK_RETCODE obj_decompress(LZMA compress_info, OAK_BUFFER *src, OAK_BUFFER *dst,
                                   OAK_ITEM_FORMAT *item_format);

OAK_C_END

#endif
