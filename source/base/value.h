/* Typed values: how an OAK_VALUE is made, set, read, compared, copied and laid
 * out as raw bytes.
 *
 * Law: a value owns nothing. What a pointer in `vt` points to is borrowed, or
 * was copied by a setter into the value's `tag`, and nothing here ever frees
 * it: a tag is freed as a whole. Getters, comparers and oak_valueEqual look at
 * type and payload and never at `status`, so a caller that can meet a NULL
 * tests `status` first. Nothing converts: a getter widens and a comparer wants
 * the exact type. A value belongs to one thread at a time; only the text,
 * binary, UUID and deep copy functions allocate.
 *
 * Contents: making; scalar setters; setters of payloads and states; getters;
 * comparers; sign; limits; copies; length and raw bytes; equality.
 *
 *     OAK_VALUE value;
 *     int64_t number;
 *     oak_valueInit(&value);
 *     oak_valueSetInt32(&value, 5);
 *     rc = oak_valueGetInt64(&value, &number);     // sOKAY, 5
 *
 * A null value or a null output is eINVNULLARG wherever there is a status;
 * functions without one do nothing when the value is null. */
#ifndef VALUE_H
#define VALUE_H

#include "oaktypes.h"

OAK_C_BEGIN

/* ---- Making ------------------------------------------------------------ */

/* Each clears `elts`, `len`, `vt` and `tag`, whatever the record held before. */

/* The absence of a value: vsNOVAL, OAK_NOVAL. */
OAK_API void oak_valueInit(OAK_VALUE *pVal);
/* A NULL of no type: vsNULL, OAK_NOVAL. */
OAK_API void oak_valueInitAndSetNull(OAK_VALUE *pVal);
/* vsNOVAL of a type. */
OAK_API void oak_valueInitWithType(OAK_VALUE *pVal, OAK_TYPE type);
/* Any status of any type. */
OAK_API void oak_valueInitWithStatusAndType(OAK_VALUE *pVal, VAL_STATUS valStatus, OAK_TYPE type);

/* ---- Scalar setters ---------------------------------------------------- */

/* Each makes the value a valid scalar of the type in its name: vsOKAY, `len`
 * and `elts` 0, the payload's member set. `tag` stays. */
OAK_API void oak_valueSetBoolean(OAK_VALUE *pVal, OAK_BOOL_T value);
OAK_API void oak_valueSetInt8(OAK_VALUE *pVal, int8_t value);
OAK_API void oak_valueSetUInt8(OAK_VALUE *pVal, uint8_t value);
OAK_API void oak_valueSetInt16(OAK_VALUE *pVal, int16_t value);
OAK_API void oak_valueSetUInt16(OAK_VALUE *pVal, uint16_t value);
OAK_API void oak_valueSetInt32(OAK_VALUE *pVal, int32_t value);
OAK_API void oak_valueSetUInt32(OAK_VALUE *pVal, uint32_t value);
OAK_API void oak_valueSetInt64(OAK_VALUE *pVal, int64_t value);
OAK_API void oak_valueSetUInt64(OAK_VALUE *pVal, uint64_t value);
OAK_API void oak_valueSetFloat(OAK_VALUE *pVal, float value);
OAK_API void oak_valueSetDouble(OAK_VALUE *pVal, double value);
OAK_API void oak_valueSetDate(OAK_VALUE *pVal, OAK_PACKED_DATE_T value);
OAK_API void oak_valueSetTime(OAK_VALUE *pVal, OAK_PACKED_TIME_T value);
OAK_API void oak_valueSetTimeTZ(OAK_VALUE *pVal, OAK_PACKED_TIMETZ_T value);
OAK_API void oak_valueSetTimestamp(OAK_VALUE *pVal, OAK_PACKED_TIMESTAMP_T value);
OAK_API void oak_valueSetRowId(OAK_VALUE *pVal, OAK_ROWID_T value);
/* References keep their 16-bit number in i16v, the result column in u16v. */
OAK_API void oak_valueSetParamRef(OAK_VALUE *pVal, int16_t number);
OAK_API void oak_valueSetColRef(OAK_VALUE *pVal, int16_t number);
OAK_API void oak_valueSetProcVar(OAK_VALUE *pVal, int16_t number);
OAK_API void oak_valueSetResultCol(OAK_VALUE *pVal, uint16_t number);

/* ---- Setters of payloads and states ------------------------------------ */

/* An error in place of a value: vsERROR with the code in vt.err, `len` and
 * `elts` 0, of type OAK_ZERODIV for eDIVBY0 and OAK_NOVAL for any other. */
OAK_API void oak_valueSetError(OAK_VALUE *pVal, OAK_RETCODE err);
/* Makes the status vsNULL; type and payload stay, and getters still see them. */
OAK_API void oak_valueSetNull(OAK_VALUE *pVal);
/* Makes the status vsNOVAL and the type OAK_NOVAL; the rest stays. */
OAK_API void oak_valueSetNoVal(OAK_VALUE *pVal);

/* An OAK_CHAR of the terminated text `str`, `len` counting the terminator.
 * With a `tag` in the value the text is copied into it, without one `str` is
 * borrowed and must outlive the value. eINVNULLARG for a null `str`; eNOMEMORY,
 * the value then being as it was. */
OAK_API OAK_RETCODE oak_valueSetString(OAK_VALUE *pVal, const char *str);
/* The same for an OAK_BINARY of `buflen` bytes; `buf` may be null when there
 * are none. */
OAK_API OAK_RETCODE oak_valueSetBinary(OAK_VALUE *pVal, const void *buf, size_t buflen);
/* The same for an OAK_UUID, whose `len` is 0. */
OAK_API OAK_RETCODE oak_valueSetUuid(OAK_VALUE *pVal, const OAK_UUID_T *uuid);

/* ---- Getters ----------------------------------------------------------- */

/* The integer types; eRANGE for an OAK_UINT64 with the top bit set, and
 * eINVARGTYPE for every other type. */
OAK_API OAK_RETCODE oak_valueGetInt64(const OAK_VALUE *pVal, int64_t *pValue);
/* The integer types, OAK_ROWID, OAK_FLOAT and OAK_DOUBLE; eINVARGTYPE for every
 * other. A signed integer narrower than 64 bits hands out its bits extended by
 * zeros, not by its sign: -1 in an OAK_INT8 is 255. A floating value is
 * truncated; a NaN and what lies below -(2 to the 63rd) give
 * 9223372036854775808, what lies at 2 to the 64th or above gives 0. */
OAK_API OAK_RETCODE oak_valueGetUInt64(const OAK_VALUE *pVal, uint64_t *pValue);
/* The integer types as oak_valueGetUInt64 has them; eINVARGTYPE for others. */
OAK_API OAK_RETCODE oak_valueGetSizeT(const OAK_VALUE *pVal, size_t *pValue);
/* The integer and floating types, OAK_BCD (with the status of oak_bcdToDouble),
 * and OAK_DATE and OAK_TIME by their packed number; eINVARGTYPE for others. */
OAK_API OAK_RETCODE oak_valueGetDouble(const OAK_VALUE *pVal, double *pValue);

/* ---- Comparers --------------------------------------------------------- */

/* The value against a native number. The type must be the one in the name,
 * else eTYPEMISMATCH; a null `pCmp` asks for that test alone. What is neither
 * less nor greater is OAK_EQ, so a NaN on either side is. */
OAK_API OAK_RETCODE oak_valueCompareToInt8(const OAK_VALUE *pVal, int8_t number, OAK_COMPARE *pCmp);
OAK_API OAK_RETCODE oak_valueCompareToUInt8(const OAK_VALUE *pVal, uint8_t number,
                                            OAK_COMPARE *pCmp);
OAK_API OAK_RETCODE oak_valueCompareToInt16(const OAK_VALUE *pVal, int16_t number,
                                            OAK_COMPARE *pCmp);
OAK_API OAK_RETCODE oak_valueCompareToUInt16(const OAK_VALUE *pVal, uint16_t number,
                                             OAK_COMPARE *pCmp);
OAK_API OAK_RETCODE oak_valueCompareToInt32(const OAK_VALUE *pVal, int32_t number,
                                            OAK_COMPARE *pCmp);
OAK_API OAK_RETCODE oak_valueCompareToUInt32(const OAK_VALUE *pVal, uint32_t number,
                                             OAK_COMPARE *pCmp);
OAK_API OAK_RETCODE oak_valueCompareToInt64(const OAK_VALUE *pVal, int64_t number,
                                            OAK_COMPARE *pCmp);
OAK_API OAK_RETCODE oak_valueCompareToUInt64(const OAK_VALUE *pVal, uint64_t number,
                                             OAK_COMPARE *pCmp);
OAK_API OAK_RETCODE oak_valueCompareToFloat(const OAK_VALUE *pVal, float number, OAK_COMPARE *pCmp);
OAK_API OAK_RETCODE oak_valueCompareToDouble(const OAK_VALUE *pVal, double number,
                                             OAK_COMPARE *pCmp);

/* ---- Sign -------------------------------------------------------------- */

/* True for a number (integer, floating or decimal) that oak_valueGetDouble
 * gives as 0.0. Booleans, texts and all other types are never zero. */
OAK_API OAK_BOOL_T oak_valueIsZero(const OAK_VALUE *pVal);
/* -1, 0 or 1 for an integer, floating or decimal value; a NaN gives 1.
 * eINVARGTYPE for every other type, OAK_BOOL and OAK_ROWID among them. */
OAK_API OAK_RETCODE oak_valueGetSign(const OAK_VALUE *pVal, int16_t *psSign);
/* Negates in place. The smallest signed integer stays as it is; an OAK_BOOL is
 * turned round; an unsigned integer becomes the signed type of the next width,
 * and an OAK_UINT64 an OAK_INT64, unless it is above 2 to the 63rd: then it
 * stays and the status becomes vsDATALOSS. Other types are left alone. A
 * decimal is negated where it lies, behind the pointer. */
OAK_API void oak_valueChangeSign(OAK_VALUE *pVal);

/* ---- Limits ------------------------------------------------------------ */

/* The largest or smallest value of a type, always as an OAK_DOUBLE: OAK_INT64
 * gives the power 2 to the 63rd and OAK_UINT64 2 to the 64th. The minimum of
 * OAK_FLOAT and OAK_DOUBLE is the smallest positive normal number. The maximum
 * of a date is today's (UTC), of a time the last of the day. 0.0 for types
 * without a limit. */
OAK_API void oak_valueTypeMax(OAK_VALUE *pVal, OAK_TYPE type);
OAK_API void oak_valueTypeMin(OAK_VALUE *pVal, OAK_TYPE type);

/* ---- Copies ------------------------------------------------------------ */

/* Shares the payload: `type`, `status`, `elts` and `vt` are copied, `len` and
 * `tag` are not. The fast path where the destination's `len` does not matter;
 * oak_valueCopyEx otherwise. */
OAK_API void oak_valueCopy(OAK_VALUE *pDstVal, const OAK_VALUE *pSrcVal);
/* Copies a value with its length. With a `tag` the payload is copied into it,
 * a text longer than `maxLen` bytes being cut to them, terminator included;
 * OAK_TIMESTAMPTZ shares its payload even so. Without a tag the payload is
 * shared. Of a vsNOVAL only the type is taken (and a large object's `vt`); of a
 * vsNULL type, `elts` and status. eNOMEMORY leaves the destination as it was. */
OAK_API OAK_RETCODE oak_valueCopyEx(OAK_VALUE *dval, const OAK_VALUE *sval, size_t maxLen,
                                    OSL_MEMTAG tag);

/* ---- Length and raw bytes ---------------------------------------------- */

/* The bytes of a payload that has a length of its own: text with its
 * terminator, binary and large objects `len`, decimals and UUIDs; 0 for the
 * fixed types. `len` may be null. eINVARG for a vsNOVAL or vsNULL. */
OAK_API OAK_RETCODE oak_valueLength(const OAK_VALUE *pVal, size_t *len);
/* Writes the raw payload without a header into `buffer` of `maxLen` bytes and
 * its size into `outLen` (optional); a null `buffer` asks for the size alone.
 * A vsNULL writes nothing and has the size SIZE_MAX. Texts are copied with a
 * terminator and their size is what was copied without it; sTRUNCATE when a
 * text was cut. Of an OAK_BINARY exactly `maxLen` bytes are copied, which the
 * payload must have, its size is `len`, and less than that is sTRUNCATE. A
 * fixed type that does not fit is sTRUNCATE with nothing written. eINVARGTYPE
 * for every other type. */
OAK_API OAK_RETCODE oak_valueToBuffer(const OAK_VALUE *pVal, void *buffer, size_t maxLen,
                                      size_t *outLen);

/* ---- Equality ---------------------------------------------------------- */

/* Equal status, type, `elts`, `len` and payload. Floating numbers by ==, so a
 * NaN is not equal to itself; zones do not count; texts of the wide types are
 * not compared, equal length suffices. */
OAK_API OAK_BOOL_T oak_valueEqual(const OAK_VALUE *pVal1, const OAK_VALUE *pVal2);

OAK_C_END

#endif
