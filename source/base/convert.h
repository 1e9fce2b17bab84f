/* Conversion of values: the front door, the matrix behind it, and arrays.
 *
 * Law: every conversion between two types goes through one matrix of 22 by 22
 * cells. A pair without a cell is eINVCONVERT before any data is read. A value
 * beyond the destination's range is eRANGE, a text that is no number
 * eINVLITERAL; cutting an array, a text or binary is sTRUNCATE and the
 * conversion counts as done. NULL and NOVAL never reach the matrix: they are
 * copied, type and all.
 *
 *     oak_valueInit(&to);
 *     rc = oak_valueConvert(&to, &from, OAK_INT32, 0, OAK_YYYYMMDD, '-', OAK_HHMMSSFFFF, 0, tag);
 *
 * What a destination needs beyond its inline payload is allocated in `mtag`,
 * and a conversion of inline scalars allocates nothing. The functions keep no
 * state: any thread can run them on values of its own. The scanners of numbers,
 * dates and escapes stand in convert_scan.h.
 *
 * Common parameters: `date_format` and `date_sep` order and separate the parts
 * of dates, `time_format` chooses the fraction digits of times, `tz_disp` is
 * the zone to assume, in minutes east of UTC. */
#ifndef CONVERT_H
#define CONVERT_H

#include "oaktypes.h"

OAK_C_BEGIN

/* An index into the table of conversion functions; 0 is no conversion. */
typedef uint16_t CNVCODE;

/* ---- The front door ---------------------------------------------------- */

/* Converts `sVal` into `dVal`, whose earlier contents are forgotten; both may be
 * the same record.
 *   dstType     the type to convert to
 *   uDstMaxLen  bytes that a text may take, its terminator counted; 0 is not
 *               limited. Binary to a number is a raw image, which needs at least
 *               its own size here. A plain copy, a large text, binary and binary
 *               to text have the size that the source gives
 *   mtag        takes the payload; not used where that lies in the value
 * A copy is made of NULL and NOVAL, of a value that has the type already, and
 * between narrow text and wide text stored as UTF-8: the destination then
 * carries the source's type. A text of one character converted to OAK_INT8
 * without a limit gives the character's code. An array converts to an array.
 * sOKAY         converted or copied
 * sTRUNCATE     converted, with a text or binary cut, or with fraction digits
 *               dropped from a text
 * sPRECISIONLOSS, sUNDERFLOW  as decimals give them; the value stands, with the
 *               source's status
 * eINVCONVERT   no such conversion, or an array to what is none
 * eRANGE        out of the destination's range
 * eINVLITERAL, eINVBINLITERAL  a text that is no number, date or binary
 * eDATALOST     too little room for a date, a UUID or a raw image
 * eTYPEMISMATCH binary of a value without a length; a row id with a fraction
 * eINVDATEFMT and the other statuses of dates, decimals and UUIDs
 * eNOMEMORY; eINVNULLARG (a null value, payload or tag where one is needed)
 * After a failure `dVal` is absent (vsNOVAL) and holds no memory, but for an
 * array, which stands where an element did not convert. */
OAK_API OAK_RETCODE oak_valueConvert(OAK_VALUE *dVal, const OAK_VALUE *sVal, OAK_TYPE dstType,
                                     size_t uDstMaxLen, OAK_DATE_FORMAT date_format,
                                     int8_t date_sep, OAK_TIME_FORMAT time_format, int16_t tz_disp,
                                     OSL_MEMTAG mtag);

/* The same for a raw source: `srcLen` bytes at `pSrcVal` that hold a value of
 * `srcType`, at any alignment. A text is terminated, and `srcLen` counts its
 * terminator, or is 0 to have it counted here; a type of fixed size lies there
 * whole, whatever `srcLen` is. Every value goes through the matrix: one that has
 * the type already is converted, and cut, and a single letter is no code.
 * eINVNULLARG: a null destination, or a null source but for binary without
 * bytes. */
OAK_API OAK_RETCODE oak_valueConvertFromBuffer(OAK_VALUE *pDstVal, OAK_TYPE dstType,
                                               size_t dstMaxLen, const void *pSrcVal,
                                               OAK_TYPE srcType, size_t srcLen,
                                               OAK_DATE_FORMAT date_format, int8_t date_sep,
                                               OAK_TIME_FORMAT time_format, int16_t tz_disp,
                                               OSL_MEMTAG mtag);

/* ---- The matrix -------------------------------------------------------- */

/* Tells whether the conversion exists, and its code; `pCnvCode` may be null.
 * sOKAY or eINVCONVERT. */
OAK_API OAK_RETCODE b_convertVerify(OAK_TYPE typeSrc, OAK_TYPE typeDst, CNVCODE *pCnvCode);

/* Runs one conversion into a destination that is already prepared: where the
 * type lies behind a pointer, that points to `uDstMaxLen` bytes (0: not limited)
 * or is null to measure. Type, status, length and elements of the destination
 * are set when the status is not negative. Statuses as for oak_valueConvert; a
 * NULL is converted as if it were none. */
OAK_API OAK_RETCODE b_convertOakValue(const OAK_VALUE *pSrcVal, OAK_VALUE *pDstVal,
                                      OAK_TYPE dstType, size_t uDstMaxLen,
                                      OAK_DATE_FORMAT date_format, int8_t date_sep,
                                      OAK_TIME_FORMAT time_format, int16_t tz_disp,
                                      OSL_MEMTAG mtag);

/* Runs one conversion into a plain buffer of `bytesIn` bytes (0: not limited),
 * which holds at least one element of a type of fixed size; a null buffer
 * measures. Arrays convert element by element, to text as "ARRAY[1,2,3]", and
 * are cut to the whole elements that fit: sTRUNCATE. An OAK_BOOL takes four
 * bytes in an array and one by itself. `pnOffset` is accepted and not used.
 * `pBytesOut` (optional) receives the bytes produced or needed when the status
 * is not negative: 1 where not even one element fitted a text. Statuses as for
 * oak_valueConvert; nothing is allocated. */
OAK_API OAK_RETCODE b_convertOakValueToBuffer(const OAK_VALUE *pSrcVal, OAK_TYPE dstType,
                                              OAK_DATE_FORMAT date_format, int8_t date_sep,
                                              OAK_TIME_FORMAT time_format, int16_t tz_disp,
                                              void *pvDstBuf, size_t bytesIn, size_t *pnOffset,
                                              size_t *pBytesOut);

/* osl_atof of a text. */
OAK_API double b_convertAsciiToDouble(const char *str);

/* ---- Arrays ------------------------------------------------------------ */

/* Array to array, element by element, into a new block in `mtag`. The walk goes
 * on behind an element that fails, which stays zero, and the status is that of
 * the last one; the destination is an array whatever it is. eINVCONVERT: the
 * source is no array, or `dstType` cannot be one; eINVNULLARG; eNOMEMORY. */
OAK_API OAK_RETCODE b_convertOakArray(const OAK_VALUE *pSrcVal, OAK_VALUE *pDstVal,
                                      OAK_TYPE dstType, OSL_MEMTAG mtag);

/* The text "ARRAY[...]" of an array value in a new block of the exact size in
 * `mtag`. Truth values are the words true and false. `width` (0: none; negative:
 * blanks on the right) and `precision` (negative: 6) are those of the floating
 * types, which are printed without an exponent. eINVCONVERT: a null `ppString`,
 * or no array; eINVNULLARG; eNOMEMORY. */
OAK_API OAK_RETCODE b_convertArrayToString(const OAK_VALUE *pVal, char **ppString, int32_t width,
                                           int32_t precision, OSL_MEMTAG mtag);

OAK_C_END

#endif
