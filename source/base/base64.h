/* Base 64 with the alphabet of RFC 4648 and "=" padding, byte by byte through
 * callbacks, in the form that this system stores and reads.
 *
 * Law: the coder lags. The encoder keeps six held bits until another byte comes
 * and b_base64EncodeEnd does not write them, so an input whose length is a
 * multiple of 3 lacks its last character: "abc" gives "YWJ". The decoder keeps
 * eight held bits in the same way: of text that ends without "=" the last byte
 * of a full group does not come out. Stored texts depend on both. Constant time
 * a byte, no memory; one record belongs to one thread.
 *
 * Statuses of the callbacks end the call and are returned as they stand. A null
 * record, function or output is eINVNULLARG. */
#ifndef BASE64_H
#define BASE64_H

#include "buff.h"

OAK_C_BEGIN

typedef struct B_BASE64 {
    uint16_t bits;      /* bits held, in the low end */
    uint16_t numbits;   /* how many */
    OAK_BOOL_T done;    /* reading: the padding has begun */
    uint64_t pos;       /* reading: characters taken so far */
    OAK_OUTPUT_FCN fcn; /* where characters, or bytes, go */
    OAK_OUTPUT_CTX ctx;
} B_BASE64;

/* ---- Encoding ---------------------------------------------------------- */

/* Begins an encoding whose characters go to `fcn`. */
OAK_API void b_base64EncodeStart(B_BASE64 *record, OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx);
/* Takes a byte and emits a character for each six bits while more than six are held. */
OAK_API OAK_RETCODE b_base64EncodeByte(B_BASE64 *record, uint8_t byte);
/* Emits what two or four held bits ask for with their padding, nothing for any
 * other number, and then a NUL character in every case. */
OAK_API OAK_RETCODE b_base64EncodeEnd(B_BASE64 *record);
/* Appends the text of `size` bytes to `buffer`; its NUL counts in the length. */
OAK_API OAK_RETCODE b_base64EncodeToBuffer(const void *input, size_t size, OAK_BUFFER *buffer);

/* ---- Decoding ---------------------------------------------------------- */

/* Begins a decoding whose bytes go to `fcn`. */
OAK_API void b_base64DecodeStart(B_BASE64 *record, OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx);
/* Takes a character. eRANGE for one that is not of the alphabet, for any but
 * "=" after the padding began, and for "=" as the first or second of a group. */
OAK_API OAK_RETCODE b_base64DecodeChar(B_BASE64 *record, uint32_t ch);
/* Ends a decoding; emits nothing. eRANGE when the count of characters is not a
 * multiple of four. */
OAK_API OAK_RETCODE b_base64DecodeEnd(B_BASE64 *record);
/* Decodes characters from `inputFcn` up to a NUL character or eEOD. */
OAK_API OAK_RETCODE b_base64DecodeFcn(OAK_INPUT_FCN inputFcn, OAK_INPUT_CTX inputCtx,
                                      OAK_OUTPUT_FCN outputFcn, OAK_OUTPUT_CTX outputCtx);

OAK_C_END

#endif
