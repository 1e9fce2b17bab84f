// Internal to the decimal subsystem: digits eight at a time.
//
// A word holds eight digits, one a byte, the first in the highest byte, so that
// words compare as their digits do and a carry runs the way it does on paper. A
// limb is the same eight digits as one number below 10^8, for multiplication.
// Rests on the stored order of bytes; used by bcd.cpp and bcd_text.cpp.
#ifndef BCD_WORDS_H
#define BCD_WORDS_H

#include <bit>
#include <cstdint>

#include "swaporder_inline.h"

namespace bcd_words {

constexpr int WORD_DIGITS = 8;
constexpr uint64_t LIMB_BASE = 100000000;

constexpr int words_for(int digits) {
    return (digits + WORD_DIGITS - 1) / WORD_DIGITS;
}

// ---- Words in memory -------------------------------------------------------

inline uint64_t load_word(const uint8_t *digits) {
    return osl::load_stored<uint64_t>(digits);
}

inline void store_word(uint8_t *digits, uint64_t word) {
    osl::store_stored(digits, word);
}

/// The word of the first `count` digits, 1 to 8, with zeros behind them.
inline uint64_t first_digits(uint64_t word, int count) {
    return word & ~uint64_t{0} << (8 * (WORD_DIGITS - count));
}

constexpr uint64_t HIGH_BITS = 0x8080808080808080;

/// Not zero if some byte is above 9.
inline uint64_t odd_digits(uint64_t word) {
    return ((word + 0x7676767676767676) | word) & HIGH_BITS;
}

inline int leading_zero_digits(uint64_t word) {
    return std::countl_zero(word) / 8;
}

inline int trailing_zero_digits(uint64_t word) {
    return std::countr_zero(word) / 8;
}

// ---- Moving digits across words ---------------------------------------------

/// Eight of the sixteen digits of two neighbours, from digit 0 to 7 on.
inline uint64_t digits_across(uint64_t word, uint64_t next, int from) {
    return word << (8 * from) | next >> 8 >> (56 - 8 * from);
}

/// Moves a row of words back by some digits, whose places become zero. What leaves
/// the row at its end is lost.
inline void move_back(uint64_t *row, int words, int digits) {
    const int whole = digits / WORD_DIGITS;
    const int part = digits % WORD_DIGITS;
    for (int i = words - 1; i > whole; --i)
        row[i] = row[i - whole] >> (8 * part) | row[i - whole - 1] << 8 << (56 - 8 * part);
    if (whole < words)
        row[whole] = row[0] >> (8 * part);
    for (int i = 0; i < whole && i < words; ++i)
        row[i] = 0;
}

/// Moves a row of words forward by some digits; zeros follow.
inline void move_forward(uint64_t *row, int words, int digits) {
    const int whole = digits / WORD_DIGITS;
    const int part = digits % WORD_DIGITS;
    for (int i = 0; i < words; ++i) {
        const uint64_t word = i + whole < words ? row[i + whole] : 0;
        const uint64_t next = i + whole + 1 < words ? row[i + whole + 1] : 0;
        row[i] = digits_across(word, next, part);
    }
}

// ---- Nibbles -----------------------------------------------------------------

/// The eight digits of a word as eight nibbles, and back.
inline uint32_t nibbles_of(uint64_t word) {
    word = (word | word >> 4) & 0x00FF00FF00FF00FF;
    word = (word | word >> 8) & 0x0000FFFF0000FFFF;
    return static_cast<uint32_t>(word | word >> 16);
}
inline uint64_t word_of_nibbles(uint32_t nibbles) {
    uint64_t word = (nibbles | uint64_t{nibbles} << 16) & 0x0000FFFF0000FFFF;
    word = (word | word << 8) & 0x00FF00FF00FF00FF;
    return (word | word << 4) & 0x0F0F0F0F0F0F0F0F;
}

/// Eight nibbles in memory, the first in the high half of the first byte.
inline uint32_t load_nibbles(const uint8_t *packed) {
    return osl::load_stored<uint32_t>(packed);
}
inline void store_nibbles(uint8_t *packed, uint32_t nibbles) {
    osl::store_stored(packed, nibbles);
}

// ---- Sums of words -------------------------------------------------------------

/// Adds words of digits 0 to 9; `carry` is 0 or 1, in and out. 0xF6 under each digit
/// makes a digit sum of 10 and more leave its byte, and what stays is right; bytes
/// that did not overflow still hold the filling and have their high bit set.
inline uint64_t add_words(uint64_t a, uint64_t b, uint64_t *carry) {
    uint64_t sum;
    const bool first = __builtin_add_overflow(a + 0xF6F6F6F6F6F6F6F6, b, &sum);
    const bool second = __builtin_add_overflow(sum, *carry, &sum);
    *carry = first || second;
    return sum - ((sum & HIGH_BITS) >> 7) * 0xF6;
}

/// Subtracts; a byte that borrowed is 246 too high and has its high bit set.
inline uint64_t subtract_words(uint64_t a, uint64_t b, uint64_t *borrow) {
    uint64_t difference;
    const bool first = __builtin_sub_overflow(a, b, &difference);
    const bool second = __builtin_sub_overflow(difference, *borrow, &difference);
    *borrow = first || second;
    return difference - ((difference & HIGH_BITS) >> 7) * 0xF6;
}

// ---- Limbs ------------------------------------------------------------------------

/// The eight digits of a word as a number: neighbours are joined to fields of two,
/// four and eight digits, all fields of a word in one multiplication.
inline uint64_t limb_of(uint64_t word) {
    constexpr uint64_t PAIRS = 0x00FF00FF00FF00FF;
    constexpr uint64_t FOURS = 0x0000FFFF0000FFFF;
    const uint64_t pairs = (word >> 8 & PAIRS) * 10 + (word & PAIRS);
    const uint64_t fours = (pairs >> 16 & FOURS) * 100 + (pairs & FOURS);
    return (fours >> 32) * 10000 + (fours & 0xFFFFFFFF);
}

/// The way back, halving fields; x * 5243 >> 19 is x / 100 below 10^4, and
/// x * 103 >> 10 is x / 10 below 100.
inline uint64_t word_of(uint64_t limb) {
    uint64_t fields = limb / 10000 << 32 | limb % 10000;
    const uint64_t hundreds = fields * 5243 >> 19 & 0x0000007F0000007F;
    fields = (hundreds << 16) + (fields - hundreds * 100);
    const uint64_t tens = fields * 103 >> 10 & 0x000F000F000F000F;
    return (tens << 8) + (fields - tens * 10);
}

} // namespace bcd_words

#endif
