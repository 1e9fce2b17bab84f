/* B_ENCODER and B_DECODER: the two handles through which every stored object is
 * written and read. An encoder turns native values into bytes for a callback; a
 * decoder draws bytes from a callback and rebuilds the values.
 *
 * Law: every integer of every width travels as one varying-length unsigned
 * form (osl_vintEncodeUIntmax), signed ones through osl_vintConvertToUnsigned
 * first; the stream carries no width, so a reader of a narrower type judges
 * the value, and one that does not fit is eDBCORRUPTED. Fixed-width data are
 * raw bytes and the 4 and 8 bytes of floating numbers in stored byte order.
 * A failed callback ends the call with the callback's status (eEOD where a
 * buffer is exhausted). On failure a decoder's scalar output is untouched. A
 * handle belongs to one thread, together with its context, and keeps no error.
 *
 * Contents: handles; writing scalars, bytes, arrays; reading the same.
 *
 * The usual context is an OAK_BUFFER with the functions of buff.h:
 *
 *     B_ENCODER out;
 *     rc = b_encoderCreate(b_buffEmitByte, b_buffEmitBytesBulk, &buffer, tag, &out);
 *     rc = b_encoderEncodeUint32(out, 300);           // ac 02
 *
 * With that pairing the bytes go straight into and out of the buffer; the
 * buffer's state afterwards is the one that the callbacks would leave.
 *
 * Every function with a status answers eINVNULLARG to a null handle, a null
 * output, or null data with a size above 0. */
#ifndef ENCODER_H
#define ENCODER_H

#include "oaktypes.h"

OAK_C_BEGIN

typedef struct _B_ENCODER *B_ENCODER;
typedef const struct _B_ENCODER *B_ENCODER_C;
typedef struct _B_DECODER *B_DECODER;
typedef const struct _B_DECODER *B_DECODER_C;

/* ---- Handles ----------------------------------------------------------- */

/* Makes an encoder over `fcn` (required) and `bulk_fcn` (may be null; only the
 * bulk call needs it), which both receive `ctx` unchanged. The handle lies
 * under `tag`. eINVNULLARG without `fcn` or `pencoder`; eNOMEMORY. */
OAK_API OAK_RETCODE b_encoderCreate(OAK_OUTPUT_FCN fcn, OAK_BULK_OUTPUT_FCN bulk_fcn,
                                    OAK_OUTPUT_CTX ctx, OSL_MEMTAG tag, B_ENCODER *pencoder);
/* The same for a decoder. */
OAK_API OAK_RETCODE b_decoderCreate(OAK_INPUT_FCN fcn, OAK_BULK_INPUT_FCN bulk_fcn,
                                    OAK_INPUT_CTX ctx, OSL_MEMTAG tag, B_DECODER *pdecoder);
/* Frees the handle; the context is not touched. Null is allowed. */
OAK_API void b_encoderDestroy(B_ENCODER encoder);
OAK_API void b_decoderDestroy(B_DECODER decoder);
/* The context given at creation. */
OAK_API OAK_OUTPUT_CTX b_encoderGetCtx(B_ENCODER_C encoder);
OAK_API OAK_INPUT_CTX b_decoderGetCtx(B_DECODER_C decoder);
/* b_buffReset on the context, which must be an OAK_BUFFER: nothing checks it. */
OAK_API void b_encoderReset(B_ENCODER encoder);
/* b_buffSeek on the context, which must be an OAK_BUFFER: nothing checks it.
 * eEOD when `newPos` lies beyond the buffer's length. */
OAK_API OAK_RETCODE b_decoderSeek(B_DECODER decoder, size_t newPos);

/* ---- Writing scalars --------------------------------------------------- */

/* The unsigned form of the value. */
OAK_API OAK_RETCODE b_encoderEncodeUint8(B_ENCODER encoder, uint8_t value);
OAK_API OAK_RETCODE b_encoderEncodeUint16(B_ENCODER encoder, uint16_t value);
OAK_API OAK_RETCODE b_encoderEncodeUint32(B_ENCODER encoder, uint32_t value);
OAK_API OAK_RETCODE b_encoderEncodeUint64(B_ENCODER encoder, uint64_t value);
OAK_API OAK_RETCODE b_encoderEncodeSlot(B_ENCODER encoder, OAK_SLOT value);
/* The signed form of the value. */
OAK_API OAK_RETCODE b_encoderEncodeInt8(B_ENCODER encoder, int8_t value);
OAK_API OAK_RETCODE b_encoderEncodeInt16(B_ENCODER encoder, int16_t value);
OAK_API OAK_RETCODE b_encoderEncodeInt32(B_ENCODER encoder, int32_t value);
OAK_API OAK_RETCODE b_encoderEncodeInt64(B_ENCODER encoder, int64_t value);
/* 4 and 8 raw bytes in stored byte order. */
OAK_API OAK_RETCODE b_encoderEncodeFloat(B_ENCODER encoder, float value);
OAK_API OAK_RETCODE b_encoderEncodeDouble(B_ENCODER encoder, double value);

/* ---- Writing bytes ----------------------------------------------------- */

/* The unsigned form of the text's length, then its bytes; no terminator. */
OAK_API OAK_RETCODE b_encoderEncodeString(B_ENCODER encoder, const char *str);
/* `size` bytes, one call of the byte callback each. */
OAK_API OAK_RETCODE b_encoderEncodeBytes(B_ENCODER encoder, const void *data, size_t size);
/* `size` bytes in one call of the bulk callback; eNOTIMPLEMENTED without one. */
OAK_API OAK_RETCODE b_encoderEncodeBytesBulk(B_ENCODER encoder, const void *data, size_t size);

/* ---- Writing arrays ---------------------------------------------------- */

/* An array travels as a list of runs: the number of runs; then for each run the
 * number of its values, the number of positions to skip after it, and the
 * values. Writers emit one run of `size` values with skip 0, so the bytes are
 * 1, size, 0 and the elements. */
OAK_API OAK_RETCODE b_encoderEncodeUint8Array(B_ENCODER encoder, uint32_t size,
                                              const uint8_t *array);
OAK_API OAK_RETCODE b_encoderEncodeUint16Array(B_ENCODER encoder, uint32_t size,
                                               const uint16_t *array);
OAK_API OAK_RETCODE b_encoderEncodeUint32Array(B_ENCODER encoder, uint32_t size,
                                               const uint32_t *array);
OAK_API OAK_RETCODE b_encoderEncodeUint64Array(B_ENCODER encoder, uint32_t size,
                                               const uint64_t *array);
OAK_API OAK_RETCODE b_encoderEncodeInt8Array(B_ENCODER encoder, uint32_t size, const int8_t *array);
OAK_API OAK_RETCODE b_encoderEncodeInt16Array(B_ENCODER encoder, uint32_t size,
                                              const int16_t *array);
OAK_API OAK_RETCODE b_encoderEncodeInt32Array(B_ENCODER encoder, uint32_t size,
                                              const int32_t *array);
OAK_API OAK_RETCODE b_encoderEncodeInt64Array(B_ENCODER encoder, uint32_t size,
                                              const int64_t *array);
OAK_API OAK_RETCODE b_encoderEncodeFloatArray(B_ENCODER encoder, uint32_t size, const float *array);
OAK_API OAK_RETCODE b_encoderEncodeDoubleArray(B_ENCODER encoder, uint32_t size,
                                               const double *array);

/* ---- Reading scalars --------------------------------------------------- */

/* The unsigned form; a value too wide for the type is eDBCORRUPTED, a malformed
 * one eINVVARINT. */
OAK_API OAK_RETCODE b_decoderDecodeUint8(B_DECODER decoder, uint8_t *pvalue);
OAK_API OAK_RETCODE b_decoderDecodeUint16(B_DECODER decoder, uint16_t *pvalue);
OAK_API OAK_RETCODE b_decoderDecodeUint32(B_DECODER decoder, uint32_t *pvalue);
OAK_API OAK_RETCODE b_decoderDecodeUint64(B_DECODER decoder, uint64_t *pvalue);
OAK_API OAK_RETCODE b_decoderDecodeSlot(B_DECODER decoder, OAK_SLOT *pvalue);
OAK_API OAK_RETCODE b_decoderDecodeSize_t(B_DECODER decoder, size_t *pvalue);
/* The signed form, judged in the same way. */
OAK_API OAK_RETCODE b_decoderDecodeInt8(B_DECODER decoder, int8_t *pvalue);
OAK_API OAK_RETCODE b_decoderDecodeInt16(B_DECODER decoder, int16_t *pvalue);
OAK_API OAK_RETCODE b_decoderDecodeInt32(B_DECODER decoder, int32_t *pvalue);
OAK_API OAK_RETCODE b_decoderDecodeInt64(B_DECODER decoder, int64_t *pvalue);
/* 4 and 8 raw bytes in stored byte order; any bit pattern is taken. */
OAK_API OAK_RETCODE b_decoderDecodeFloat(B_DECODER decoder, float *pvalue);
OAK_API OAK_RETCODE b_decoderDecodeDouble(B_DECODER decoder, double *pvalue);

/* ---- Reading bytes ----------------------------------------------------- */

/* A text in a new block under `tag`, terminated; `*plen` (optional) receives
 * its length plus 1. A length above 4294967294 is eDBCORRUPTED. Memory grows
 * with the bytes that arrive, never by the announced length alone; a failure
 * (eNOMEMORY among them) frees it and leaves the outputs untouched. */
OAK_API OAK_RETCODE b_decoderDecodeString(B_DECODER decoder, char **pstr, uint32_t *plen,
                                          OSL_MEMTAG tag);
/* A text into the caller's buffer, terminated; `*plen` (optional) receives its
 * length plus 1. The capacity is not checked: readers of stored bytes that
 * know it use decoderDecodeStringBounded of encoder_internal.h. */
OAK_API OAK_RETCODE b_decoderDecodeStringToBuff(B_DECODER decoder, char *str, uint32_t *plen);
/* `size` bytes, one call of the byte callback each; a failure leaves the bytes
 * that came before it. */
OAK_API OAK_RETCODE b_decoderDecodeBytes(B_DECODER decoder, void *data, size_t size);
/* `bytesRequested` bytes in one call of the bulk callback, which fills
 * `*bytesRead` (optional); eNOTIMPLEMENTED without one. */
OAK_API OAK_RETCODE b_decoderDecodeBytesBulk(B_DECODER decoder, size_t bytesRequested, void *data,
                                             size_t *bytesRead);

/* ---- Reading arrays ---------------------------------------------------- */

/* Any number of runs is accepted. A run whose values would lie beyond position
 * `size` - 1 is eDBCORRUPTED, judged when its count is read, before any of its
 * values; what the skip of the last run addresses does no harm.
 *
 * Into a new block of `size` elements under `tag`, handed out on success alone;
 * positions that no run covers are 0. eNOMEMORY before anything is read. */
OAK_API OAK_RETCODE b_decoderDecodeUint8Array(B_DECODER decoder, uint32_t size, uint8_t **parray,
                                              OSL_MEMTAG tag);
OAK_API OAK_RETCODE b_decoderDecodeUint16Array(B_DECODER decoder, uint32_t size, uint16_t **parray,
                                               OSL_MEMTAG tag);
OAK_API OAK_RETCODE b_decoderDecodeUint32Array(B_DECODER decoder, uint32_t size, uint32_t **parray,
                                               OSL_MEMTAG tag);
OAK_API OAK_RETCODE b_decoderDecodeUint64Array(B_DECODER decoder, uint32_t size, uint64_t **parray,
                                               OSL_MEMTAG tag);
OAK_API OAK_RETCODE b_decoderDecodeInt8Array(B_DECODER decoder, uint32_t size, int8_t **parray,
                                             OSL_MEMTAG tag);
OAK_API OAK_RETCODE b_decoderDecodeInt16Array(B_DECODER decoder, uint32_t size, int16_t **parray,
                                              OSL_MEMTAG tag);
OAK_API OAK_RETCODE b_decoderDecodeInt32Array(B_DECODER decoder, uint32_t size, int32_t **parray,
                                              OSL_MEMTAG tag);
OAK_API OAK_RETCODE b_decoderDecodeInt64Array(B_DECODER decoder, uint32_t size, int64_t **parray,
                                              OSL_MEMTAG tag);
OAK_API OAK_RETCODE b_decoderDecodeFloatArray(B_DECODER decoder, uint32_t size, float **parray,
                                              OSL_MEMTAG tag);
OAK_API OAK_RETCODE b_decoderDecodeDoubleArray(B_DECODER decoder, uint32_t size, double **parray,
                                               OSL_MEMTAG tag);
/* Into the caller's array of `size` elements, in place: positions that no run
 * covers stay as they were, and so do values read before a failure. */
OAK_API OAK_RETCODE b_decoderDecodeUint8ArrayBuffer(B_DECODER decoder, uint32_t size,
                                                    uint8_t *array);
OAK_API OAK_RETCODE b_decoderDecodeUint16ArrayBuffer(B_DECODER decoder, uint32_t size,
                                                     uint16_t *array);
OAK_API OAK_RETCODE b_decoderDecodeUint32ArrayBuffer(B_DECODER decoder, uint32_t size,
                                                     uint32_t *array);
OAK_API OAK_RETCODE b_decoderDecodeUint64ArrayBuffer(B_DECODER decoder, uint32_t size,
                                                     uint64_t *array);
OAK_API OAK_RETCODE b_decoderDecodeInt8ArrayBuffer(B_DECODER decoder, uint32_t size, int8_t *array);
OAK_API OAK_RETCODE b_decoderDecodeInt16ArrayBuffer(B_DECODER decoder, uint32_t size,
                                                    int16_t *array);
OAK_API OAK_RETCODE b_decoderDecodeInt32ArrayBuffer(B_DECODER decoder, uint32_t size,
                                                    int32_t *array);
OAK_API OAK_RETCODE b_decoderDecodeInt64ArrayBuffer(B_DECODER decoder, uint32_t size,
                                                    int64_t *array);
OAK_API OAK_RETCODE b_decoderDecodeFloatArrayBuffer(B_DECODER decoder, uint32_t size, float *array);
OAK_API OAK_RETCODE b_decoderDecodeDoubleArrayBuffer(B_DECODER decoder, uint32_t size,
                                                     double *array);

OAK_C_END

#endif
