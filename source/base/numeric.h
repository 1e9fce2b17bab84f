/* The numeric structure of the call-level interface: a decimal as an unsigned
 * 128-bit integer, least significant byte first, with precision, scale and sign.
 *
 * Law: both conversions to and from OAK_BCD_T are exact or refused. No state, no
 * allocation; every function may run on any thread. */
#ifndef NUMERIC_H
#define NUMERIC_H

#include "oakbcdtypes.h"
#include "oakuuidtypes.h"

OAK_C_BEGIN

/* The integer in `val` as a decimal with `scale` digits behind the point. The
 * structure's own precision and scale are not looked at; the sign is, 1 being
 * positive and everything else negative, but zero is always the positive zero.
 *   prec, scale  each below 33, else eRANGE
 *   mode         rounding mode; no step rounds, since 32 digits hold or are exceeded
 * eINVNULLARG: a null pointer. eRANGE: the integer has more than 32 digits. */
OAK_API OAK_RETCODE oak_bcdFromNumericStruct(const OAK_NUMERIC_T *pVal, uint8_t prec, uint8_t scale,
                                             OAK_BCD_ROUNDING_MODE mode, OAK_BCD_T *result);

/* The decimal, cut to `scale` digits behind the point, as an integer. precision and
 * scale are those of the digits that result, without leading zeros. Only the bytes
 * of `val` that the integer needs are written, one at least: the caller provides a
 * cleared structure.
 *   prec, scale  each below 33, else eRANGE
 *   mode         rounding mode; no step rounds
 * eINVNULLARG: a null pointer. eRANGE: the digits before the point do not fit
 * prec - scale. eINVBCD: *b is no decimal. */
OAK_API OAK_RETCODE oak_bcdToNumericStruct(const OAK_BCD_T *b, uint8_t prec, uint8_t scale,
                                           OAK_BCD_ROUNDING_MODE mode, OAK_NUMERIC_T *result);

/* The value as a double, for numbers that fit a signed 64-bit integer: the first
 * eight bytes of `val` count, taken as signed, over a divisor of 10 to the `scale`
 * kept in 32 bits, which wraps from a scale of 10 on. A negative scale is ignored, a
 * sign of 0 negates. 0.0 for null. */
OAK_API double b_getDoubleFromNumeric(const OAK_NUMERIC_T *pNumStr);

OAK_C_END

#endif
