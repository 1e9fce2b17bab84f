/* Text scanners of the conversions: what a number looks like, and the escape
 * clauses of call-level SQL.
 *
 * Law: each makes one pass over a terminated text, by a constant state table, in
 * a small fixed work area; none allocates, none keeps state, none obeys a locale,
 * and all may run on any thread. */
#ifndef CONVERT_SCAN_H
#define CONVERT_SCAN_H

#include <stddef.h>
#include <stdint.h>

#include "oakretcodetypes.h"

OAK_C_BEGIN

/* Classifies a numeric literal without computing it, so that a caller can choose
 * the conversion. Blanks, tabs and newlines may lead; then a sign, digits with a
 * point among them, and an exponent: e and at least a sign or a digit.
 *   sign   1 or -1
 *   mag    digits before the point, leading zeros counted
 *   scale  digits behind the point
 *   expt   the exponent, as a 16-bit number
 * The outputs may each be null; a failure stores none. Counts stay at 65535 where
 * 16 bits do not hold them; an exponent wraps, so 1e65537 has exponent 1. A lone
 * point and a lone sign pass with no digits.
 * eINVNULLARG: null `szNum`. eRANGE: an exponent outside -308 to 308, tested first,
 * even where the text goes bad behind it. eINVLITERAL: any other text, the empty one
 * and trailing blanks among them.
 * Cost: one table step a character.
 * Example: -12.50e+3 gives sign -1, mag 2, scale 2, expt 3. */
OAK_API OAK_RETCODE convert_parseNumber(const char *szNum, int16_t *sign, uint16_t *mag,
                                        uint16_t *scale, int16_t *expt);

/* Copies SQL text, taking out its escape clauses:
 *   {d '...'} {t '...'} {ts '...'}   become @'...'
 *   {fn ...} {oj ...}                lose keyword and braces
 *   {call ...} {escape '...'}        keep the keyword, lose the braces
 * and the same clauses between --(*vendor(...),product(...) and *)--. Quoted strings
 * pass untouched.
 *   tOutLen   bytes of `pszOut`; the input's length plus two always suffices. What
 *             does not fit is dropped, and the text is terminated all the same.
 *   ptResLen  may be null; receives the length of the text in `pszOut`. It counts one
 *             zero byte where the input ends in c_data and a word that begins with st
 * eINVNULLARG: null `pszIn` or `pszOut`. eESCAPE: a clause that is broken or not
 * closed, or a quoted string without end; `pszOut` then holds what was written so
 * far, unterminated. */
OAK_API OAK_RETCODE b_convertEscapesToSQL(const char *pszIn, char *pszOut, size_t tOutLen,
                                          size_t *ptResLen);

OAK_C_END

#endif
