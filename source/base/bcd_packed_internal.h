// Internal to the decimals and the item formats: the packed form of a column by
// whole words, for decimals that are as every operation leaves them.
//
// What these two take, oak_bcdPack and oak_bcdUnpack (bcd_text.cpp) do with sOKAY;
// false is said before anything counts, and those functions then decide.
#ifndef BCD_PACKED_INTERNAL_H
#define BCD_PACKED_INTERNAL_H

#include <cstddef>

#include "bcd.h"

/// What both touch at `packed` whatever the precision: the longest packed form in
/// whole words. Bytes behind the form are written without meaning, and read
/// without effect.
constexpr size_t BCD_PACKED_BLOCK = 20;
static_assert(OAK_PACKED_BCD_SIZE(OAK_BCD_MAX_DIGITS) <= BCD_PACKED_BLOCK);

/// Packs a decimal without leading zeros or digits above 9 that fits the column
/// digit for digit.
bool bcd_pack_clean(const OAK_BCD_T *bcd, uint8_t prec, uint8_t scale, uint8_t *packed);

/// Unpacks what has digits 0 to 9 alone. On false the target may hold anything.
bool bcd_unpack_clean(const uint8_t *packed, uint8_t prec, uint8_t scale, OAK_BCD_T *bcd);

#endif
