/* The decimal: 32 digits one a byte, exact addition, subtraction and
 * multiplication, division by a reciprocal, rounding by mode, comparison, and
 * the roads to and from text, native numbers and the packed form of a column.
 *
 * Law: the value is sign * 0.d1d2d3... * 10^exp (oakbcdtypes.h). Magnitudes lie
 * below 10^32 and have at most 32 digits behind the point. Every operation that
 * hands out a decimal leaves the bytes past `prec` zero. Condition bits in
 * `flags` are sticky through arithmetic: an operand that was once rounded makes
 * a later result report sPRECISIONLOSS as well; only a zero result clears them.
 *
 * Threads: pure functions on records of the caller; safe on any thread.
 * Memory: nothing is allocated and nothing is kept. A result may be the same
 * object as an operand.
 *
 * Contents: conditions; arithmetic; arithmetic with native numbers; signs,
 * integers and order; fitting to a column; native numbers; text; packed form.
 *
 *     OAK_BCD_T price, total;
 *     rc = oak_bcdFromString("19.90", &price);
 *     rc = oak_bcdMultInt32(&price, 3, OAK_BCD_ROUND_NEAREST_TIES_TO_EVEN, &total);
 *     rc = oak_bcdToString(&total, OAK_FALSE, text, sizeof text, NULL);   59.7
 *
 * Statuses that every function returning one shares, said here once:
 *   sOKAY        done
 *   eINVNULLARG  a required pointer is null; nothing was written
 *   eINVBCD      an operand's `prec` is above 32 or its `exp` outside -40 to
 *                40: it is no decimal. The result, number or packed form is
 *                zero; no text is written.
 * Arithmetic ends in the status of the result's conditions, the first of:
 *   eNOMEMORY      an operand carries BCD_FLAG_NOMEM; the result is untouched
 *   eDIVBY0        division by zero; the result is zero
 *   eNOTANUMBER    an operand carries BCD_FLAG_NAN; the result is zero
 *   eRANGE         more than 32 digits before the point; the result is zero
 *   sPRECISIONLOSS digits were rounded away, here or in an operand's past
 *   sUNDERFLOW     an operand carries BCD_FLAG_UNDERFLOW
 * An operand with one of the three fatal conditions (BCD_FLAG_FATAL) makes the
 * result zero with the conditions of all operands. */
#ifndef BCD_H
#define BCD_H

#include "oakbcdtypes.h"
#include "oaktypes.h"

OAK_C_BEGIN

/* ---- Bounds and conditions --------------------------------------------- */

/* Digits that a decimal holds: 32. */
OAK_API uint8_t oak_bcdMaxprec(void);
/* Digits that it holds behind the point: 32. */
OAK_API uint8_t oak_bcdMaxscale(void);

/* Tells a well-formed record: eINVALID if `prec` is above 32 or a digit in
 * data[0] to data[prec] above 9. `exp`, `sign` and `flags` are not looked at. */
OAK_API OAK_RETCODE oak_bcdValidate(const OAK_BCD_T *bcd);

/* Copies the digits in use and clears the rest of `dest`; neither may be null. A record whose
 * `prec` is above 32 is copied as it stands. */
OAK_API void oak_bcdCopy(const OAK_BCD_T *src, OAK_BCD_T *dest);

/* ---- Arithmetic -------------------------------------------------------- */

/* res = l + r, l - r, l * r. The exact result is cut to 40 digits, then rounded
 * to 32 digits, and to 32 places behind the point, by `mode`. */
OAK_API OAK_RETCODE oak_bcdAdd(const OAK_BCD_T *l, const OAK_BCD_T *r, OAK_BCD_ROUNDING_MODE mode,
                               OAK_BCD_T *res);
OAK_API OAK_RETCODE oak_bcdSub(const OAK_BCD_T *l, const OAK_BCD_T *r, OAK_BCD_ROUNDING_MODE mode,
                               OAK_BCD_T *res);
OAK_API OAK_RETCODE oak_bcdMult(const OAK_BCD_T *l, const OAK_BCD_T *r, OAK_BCD_ROUNDING_MODE mode,
                                OAK_BCD_T *res);

/* res = l / r, as the product of l and the 40-digit reciprocal of r. A quotient
 * with a short exact form may come out one digit in the 40th place below it:
 * 4 / 2 is 2 in the nearest modes and 1.9999999999999999999999999999999 towards
 * zero, with sPRECISIONLOSS in both. A zero r is eDIVBY0. */
OAK_API OAK_RETCODE oak_bcdDiv(const OAK_BCD_T *l, const OAK_BCD_T *r, OAK_BCD_ROUNDING_MODE mode,
                               OAK_BCD_T *res);

/* res = 1 / bcd, rounded from 40 digits; eDIVBY0 for a zero. */
OAK_API OAK_RETCODE oak_bcdReciprocal(const OAK_BCD_T *bcd, OAK_BCD_ROUNDING_MODE mode,
                                      OAK_BCD_T *res);

/* ---- Arithmetic with native numbers ------------------------------------ */

/* The six forms for one native type. AddX, SubX, MultX and DivByX have the
 * native number on the right, SubFromX and DivX on the left. A double is turned
 * into a decimal of about 15 digits first (oak_bcdFromDouble); eRANGE of that
 * conversion, for a NaN, an infinity or a magnitude of 10^32 and above, is
 * returned before anything is computed, and `res` is untouched. */
#define OAK_BCD_NATIVE_FORMS(suffix, type)                                                         \
    OAK_API OAK_RETCODE oak_bcdAdd##suffix(const OAK_BCD_T *l, type r, OAK_BCD_ROUNDING_MODE mode, \
                                           OAK_BCD_T *res);                                        \
    OAK_API OAK_RETCODE oak_bcdSub##suffix(const OAK_BCD_T *l, type r, OAK_BCD_ROUNDING_MODE mode, \
                                           OAK_BCD_T *res);                                        \
    OAK_API OAK_RETCODE oak_bcdSubFrom##suffix(type l, const OAK_BCD_T *r,                         \
                                               OAK_BCD_ROUNDING_MODE mode, OAK_BCD_T *res);        \
    OAK_API OAK_RETCODE oak_bcdMult##suffix(const OAK_BCD_T *l, type r,                            \
                                            OAK_BCD_ROUNDING_MODE mode, OAK_BCD_T *res);           \
    OAK_API OAK_RETCODE oak_bcdDivBy##suffix(const OAK_BCD_T *l, type r,                           \
                                             OAK_BCD_ROUNDING_MODE mode, OAK_BCD_T *res);          \
    OAK_API OAK_RETCODE oak_bcdDiv##suffix(type l, const OAK_BCD_T *r, OAK_BCD_ROUNDING_MODE mode, \
                                           OAK_BCD_T *res);

/* The native types with their suffixes: oak_bcdAddInt32, ..., oak_bcdDivDouble. */
#define OAK_BCD_NATIVE_TYPES(forms)                                                                \
    forms(Int32, int32_t) forms(UInt32, uint32_t) forms(Int64, int64_t) forms(UInt64, uint64_t)    \
        forms(Double, double)

OAK_BCD_NATIVE_TYPES(OAK_BCD_NATIVE_FORMS)

/* ---- Signs, integers and order ----------------------------------------- */

/* The first three take no null. */

/* 0 for a zero, else the sign, +1 or -1. */
OAK_API int16_t oak_bcdSign(const OAK_BCD_T *bcd);

/* True when data[0] to data[prec] are all 0. */
OAK_API OAK_BOOL_T oak_bcdIsZero(const OAK_BCD_T *bcd);

/* Orders by value: -1, 0 or +1 as `left` is below, equal to or above `right`.
 * +0 and -0 are equal; `flags` play no part. */
OAK_API OAK_COMPARE oak_bcdCompare(const OAK_BCD_T *left, const OAK_BCD_T *right);

/* The four that follow return the status of the operand's conditions, which the
 * result keeps. A fatal one leaves `result` untouched. */

/* result = -operand, for the zero that has `prec` 0 as well: it becomes -0. */
OAK_API OAK_RETCODE oak_bcdChgSign(const OAK_BCD_T *operand, OAK_BCD_T *result);

/* The smallest integer not below the operand, the largest not above it. */
OAK_API OAK_RETCODE oak_bcdCeiling(const OAK_BCD_T *operand, OAK_BCD_T *result);
OAK_API OAK_RETCODE oak_bcdFloor(const OAK_BCD_T *operand, OAK_BCD_T *result);

/* Rounds to an integer, ties away from zero, without a carry: 9.5 leaves a
 * single digit of value 10. Sums, products, quotients, text, numbers and the
 * packed form take it for ten; a difference keeps the last digit of a place
 * alone, so that 10 - 0 is 0; comparison sees a digit above 9 but below 10; and
 * oak_bcdValidate refuses it. A magnitude below 0.1 rounds to 1, not to 0, and
 * keeps its sign. */
OAK_API OAK_RETCODE oak_bcdRound(const OAK_BCD_T *operand, OAK_BCD_T *result);

/* ---- Fitting to a column ----------------------------------------------- */

/* Lays the value out in the places of a column, in place: data[1] to data[prec]
 * are then exactly `prec` digit places, leading zeros included, and `exp` is
 * prec - scale. 1.5 with prec 5 and scale 2 becomes 0 0 1 5 0, exp 3. `flags`
 * is overwritten with what happened here.
 *   sPRECISIONLOSS  digits behind the scale were cut off, never rounded; flag 0x01
 *   eRANGE          the integer part has more than prec - scale digits and its
 *                   high digits are lost, flag 0x02; or `prec` is above 32 and
 *                   nothing but the flag has changed */
OAK_API OAK_RETCODE oak_bcdAdjust(OAK_BCD_T *bcd, uint8_t prec, uint8_t scale);

/* ---- From native numbers ----------------------------------------------- */

/* Integers are exact. */
OAK_API OAK_RETCODE oak_bcdFromInt8(int8_t value, OAK_BCD_T *bcd);
OAK_API OAK_RETCODE oak_bcdFromInt16(int16_t value, OAK_BCD_T *bcd);
OAK_API OAK_RETCODE oak_bcdFromInt32(int32_t value, OAK_BCD_T *bcd);
OAK_API OAK_RETCODE oak_bcdFromInt64(int64_t value, OAK_BCD_T *bcd);
OAK_API OAK_RETCODE oak_bcdFromUInt8(uint8_t value, OAK_BCD_T *bcd);
OAK_API OAK_RETCODE oak_bcdFromUInt16(uint16_t value, OAK_BCD_T *bcd);
OAK_API OAK_RETCODE oak_bcdFromUInt32(uint32_t value, OAK_BCD_T *bcd);
OAK_API OAK_RETCODE oak_bcdFromUInt64(uint64_t value, OAK_BCD_T *bcd);

/* The double printed with about 15 significant digits, read back; so 0.1 is
 * 0.1. Independent of the process's locale.
 *   eRANGE          a NaN, an infinity, or 10^32 and above; `bcd` is untouched
 *   sPRECISIONLOSS  so small that 15 digits reach past 32 places; the digits
 *                   within the 32 places stand in `bcd` */
OAK_API OAK_RETCODE oak_bcdFromDouble(double value, OAK_BCD_T *bcd);
OAK_API OAK_RETCODE oak_bcdFromFloat(float value, OAK_BCD_T *bcd);

/* ---- To native numbers ------------------------------------------------- */

/* The integer part, cut towards zero. `flags` play no part.
 *   sPRECISIONLOSS  a fraction was dropped
 *   eRANGE          too large for the type, or negative for an unsigned one
 *                   (-0.5 as well); *value is then the low bits of the value,
 *                   0 for a negative one */
OAK_API OAK_RETCODE oak_bcdToInt8(const OAK_BCD_T *bcd, int8_t *value);
OAK_API OAK_RETCODE oak_bcdToInt16(const OAK_BCD_T *bcd, int16_t *value);
OAK_API OAK_RETCODE oak_bcdToInt32(const OAK_BCD_T *bcd, int32_t *value);
OAK_API OAK_RETCODE oak_bcdToInt64(const OAK_BCD_T *bcd, int64_t *value);
OAK_API OAK_RETCODE oak_bcdToUInt8(const OAK_BCD_T *bcd, uint8_t *value);
OAK_API OAK_RETCODE oak_bcdToUInt16(const OAK_BCD_T *bcd, uint16_t *value);
OAK_API OAK_RETCODE oak_bcdToUInt32(const OAK_BCD_T *bcd, uint32_t *value);
OAK_API OAK_RETCODE oak_bcdToUInt64(const OAK_BCD_T *bcd, uint64_t *value);

/* The nearest floating-point number, stored in any case.
 *   eRANGE  turned back into a decimal by oak_bcdFromDouble or oak_bcdFromFloat
 *           it is not the same value: a decimal with more digits than the type
 *           holds. So 0.1 is sOKAY as a double and eRANGE as a float. */
OAK_API OAK_RETCODE oak_bcdToDouble(const OAK_BCD_T *bcd, double *value);
OAK_API OAK_RETCODE oak_bcdToFloat(const OAK_BCD_T *bcd, float *value);

/* ---- Text -------------------------------------------------------------- */

/* A scale for the text functions: as many digits behind the point as there are. */
#define OAK_BCD_FREE_SCALE 255

/* Parses blanks, an optional sign, blanks, digits with an optional '.', blanks,
 * an optional exponent ('e' or 'E', sign, digits) and blanks, up to the NUL. A
 * lone "." is zero; "-0" is plain zero. Independent of the process's locale.
 *   sPRECISIONLOSS  digits past the 32nd, or past 32 places, were dropped
 *   eRANGE          more than 32 integer digits, an exponent out of range, or a
 *                   text that is no number; what was parsed so far stands in
 *                   `bcd`, so "12abc" leaves 12 */
OAK_API OAK_RETCODE oak_bcdFromString(const char *str, OAK_BCD_T *bcd);

/* Text of the value in a buffer of `len` bytes, always terminated when `len` is
 * not 0. Without exponent 0.05 is "0.05", with it "5e-002". A scale cuts or
 * pads the fraction and never rounds: 1.5 is "1.500" with 3, "1" with 0.
 * `bytesOut`, which may be null, receives the bytes written with the
 * terminator. With `str` null or `len` 0 nothing is written and `bytesOut`
 * receives the bytes needed.
 *   sUNDERFLOW  the text was cut to fit (the family's own word for it) */
OAK_API OAK_RETCODE oak_bcdToString(const OAK_BCD_T *bcd, OAK_BOOL_T use_exponent, char *str,
                                    size_t len, size_t *bytesOut);
OAK_API OAK_RETCODE oak_bcdToStringWithScale(const OAK_BCD_T *bcd, uint8_t scale,
                                             OAK_BOOL_T use_exponent, char *str, size_t len,
                                             size_t *bytesOut);

/* The same text through an output function, a character a call and without a
 * terminator. The first status other than sOKAY ends it and is returned. */
OAK_API OAK_RETCODE oak_bcdFormatWithScale(const OAK_BCD_T *bcd, uint8_t scale,
                                           OAK_BOOL_T use_exponent, OAK_OUTPUT_FCN fcn,
                                           OAK_OUTPUT_CTX ctx);

/* ---- Packed form ------------------------------------------------------- */

/* A decimal of a column with `prec` digits takes prec / 2 + 1 bytes, without a
 * header: bit 0x40 of byte 0 is set for a value that is not negative, the low
 * nibble of byte 0 is digit 1, and each further byte holds two digits, high
 * nibble first. A negative value stores 9 - d for each digit d. memcmp of two
 * packed values of one column orders them as numbers. 1.5 with prec 5, scale 2
 * is 40 01 50 and -1.5 is 09 98 49. */
typedef uint8_t OAK_PACKED_BCD_T;
#define OAK_PACKED_BCD_SIZE(prec) ((size_t)(prec) / 2 + 1)

/* Writes OAK_PACKED_BCD_SIZE(prec) bytes at `packed`. `bcd` is not changed.
 *   eRANGE          `prec` or `scale` is above 32, and nothing is written; or
 *                   the value does not fit, and what oak_bcdAdjust left of it
 *                   is written
 *   sPRECISIONLOSS  digits behind the scale were cut off; the rest is written */
OAK_API OAK_RETCODE oak_bcdPack(const OAK_BCD_T *bcd, OAK_PACKED_BCD_T *packed, uint8_t prec,
                                uint8_t scale);

/* Reads OAK_PACKED_BCD_SIZE(prec) bytes. Trailing zeros of the column stay, as
 * digits of the value. A zero stored as negative keeps sign -1.
 *   eRANGE   `prec` or `scale` is above 32; nothing is written
 *   eINVBCD  a nibble is no digit; `bcd` is zero */
OAK_API OAK_RETCODE oak_bcdUnpack(const OAK_PACKED_BCD_T *packed, OAK_BCD_T *bcd, uint8_t prec,
                                  uint8_t scale);

OAK_C_END

#endif
