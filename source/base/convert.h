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

/* Converts `sVal` into `dVal`, whose earlier contents are forgotten.
 *   dstType     the type to convert to
 *   uDstMaxLen  bytes that a text, binary or array destination may take; 0 is
 *               not limited. It has no effect on a plain copy
 * A copy is made, in `mtag`, of NULL and NOVAL, of a value that has the type
 * already, and between narrow text and wide text stored as UTF-8: the
 * destination then carries the source's type. A text of one character converted
 * to OAK_INT8 without a limit gives the character's code.
 * sOKAY         converted or copied
 * sTRUNCATE     converted, with a text, binary or array cut, or with fraction
 *               digits dropped from a text
 * sPRECISIONLOSS, sUNDERFLOW  as decimals give them; the value stands
 * eINVCONVERT   no such conversion, or an array to what is none
 * eRANGE, eINVLITERAL, eINVBINLITERAL, eDATALOST, eTYPEMISMATCH, eINVDATEFMT and
 * the statuses of dates, decimals and UUIDs: the value does not convert
 * eNOMEMORY, eINVNULLARG (a null value) */
OAK_API OAK_RETCODE oak_valueConvert(OAK_VALUE *dVal, const OAK_VALUE *sVal, OAK_TYPE dstType,
                                     size_t uDstMaxLen, OAK_DATE_FORMAT date_format,
                                     int8_t date_sep, OAK_TIME_FORMAT time_format, int16_t tz_disp,
                                     OSL_MEMTAG mtag);

/* The same for a raw source: `srcLen` bytes at `pSrcVal` that hold a value of
 * `srcType` (a text with its terminator counted). eINVNULLARG for a null
 * destination, or a null source with bytes. */
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

/* Runs one conversion into a destination that is already prepared: its payload
 * has room for `uDstMaxLen` bytes (0: not limited) where the type lies behind a
 * pointer. Statuses as for oak_valueConvert. */
OAK_API OAK_RETCODE b_convertOakValue(const OAK_VALUE *pSrcVal, OAK_VALUE *pDstVal,
                                      OAK_TYPE dstType, size_t uDstMaxLen,
                                      OAK_DATE_FORMAT date_format, int8_t date_sep,
                                      OAK_TIME_FORMAT time_format, int16_t tz_disp,
                                      OSL_MEMTAG mtag);

/* Runs one conversion into a plain buffer of `bytesIn` bytes (0: not limited);
 * a null buffer measures. Arrays convert element by element, to text as
 * "ARRAY[1,2,3]". `pnOffset` is accepted and not used. `pBytesOut` (optional)
 * receives the bytes produced or needed when the status is not negative. */
OAK_API OAK_RETCODE b_convertOakValueToBuffer(const OAK_VALUE *pSrcVal, OAK_TYPE dstType,
                                              OAK_DATE_FORMAT date_format, int8_t date_sep,
                                              OAK_TIME_FORMAT time_format, int16_t tz_disp,
                                              void *pvDstBuf, size_t bytesIn, size_t *pnOffset,
                                              size_t *pBytesOut);

/* osl_atof of a text. */
OAK_API double b_convertAsciiToDouble(const char *str);

/* ---- Arrays ------------------------------------------------------------ */

/* Array to array, element by element, into a new block in `mtag`. The walk goes
 * on behind an element that fails, and the status is that of the last one.
 * eINVCONVERT: `dstType` cannot be an array; eNOMEMORY. */
OAK_API OAK_RETCODE b_convertOakArray(const OAK_VALUE *pSrcVal, OAK_VALUE *pDstVal,
                                      OAK_TYPE dstType, OSL_MEMTAG mtag);

/* The text "ARRAY[...]" of an array value in a new block of the exact size in
 * `mtag`. `width` (0: none) and `precision` are those of the floating types.
 * eINVCONVERT: a null `ppString`, or no array; eNOMEMORY. */
OAK_API OAK_RETCODE b_convertArrayToString(const OAK_VALUE *pVal, char **ppString, int32_t width,
                                           int32_t precision, OSL_MEMTAG mtag);

OAK_C_END

#endif
