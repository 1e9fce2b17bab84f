// Internal to the decimal subsystem: the numbers in which a reciprocal is found.
//
// A Fixed is a number from 0 to below 100 with 40 decimal places, held as a binary
// integer that counts units of 10^-40. To cut a product to 40 places is then to
// divide by 10^40 and drop the remainder. The division multiplies by 2^320 / 10^40,
// which can come out one too small, and corrects that; so every result is the one
// that decimal arithmetic with 40 places gives, digit for digit.
//
// Rests on bcd_words.h for limbs; used by bcd.cpp alone.
#ifndef BCD_FIXED_H
#define BCD_FIXED_H

#include "bcd_words.h"

namespace bcd_fixed {

__extension__ using uint128 = unsigned __int128;

/// 192 bits in two parts.
struct Fixed {
    uint128 low;
    uint64_t high;

    constexpr bool operator==(const Fixed &) const = default;
};

constexpr bool is_below(const Fixed &a, const Fixed &b) {
    return a.high != b.high ? a.high < b.high : a.low < b.low;
}

constexpr Fixed add(const Fixed &a, const Fixed &b) {
    const uint128 low = a.low + b.low;
    return {low, a.high + b.high + (low < a.low)};
}

constexpr Fixed subtract(const Fixed &a, const Fixed &b) {
    return {a.low - b.low, a.high - b.high - (a.low < b.low)};
}

constexpr uint64_t low_word(uint128 value) {
    return static_cast<uint64_t>(value);
}

constexpr uint64_t high_word(uint128 value) {
    return static_cast<uint64_t>(value >> 64);
}

constexpr uint128 product_of(uint64_t a, uint64_t b) {
    return uint128{a} * b;
}

// ---- Constants -------------------------------------------------------------

constexpr Fixed ten_times(const Fixed &number) {
    const Fixed twice = add(number, number);
    const Fixed four = add(twice, twice);
    return add(add(four, four), twice);
}

constexpr Fixed power_of_ten(int exponent) {
    Fixed power{1, 0};
    for (; exponent > 0; --exponent)
        power = ten_times(power);
    return power;
}

constexpr Fixed ONE = power_of_ten(40);
constexpr Fixed TEN = power_of_ten(41);

/// 2^320 / 10^40, rounded down, by long division in base 2.
constexpr Fixed inverse_of_one() {
    Fixed quotient{0, 0};
    Fixed remainder{1, 0};
    for (int bit = 320; bit > 0; --bit) {
        remainder = add(remainder, remainder);
        quotient = add(quotient, quotient);
        if (is_below(remainder, ONE))
            continue;
        remainder = subtract(remainder, ONE);
        quotient = add(quotient, Fixed{1, 0});
    }
    return quotient;
}

constexpr Fixed INVERSE = inverse_of_one();

// ---- Products ----------------------------------------------------------------

/// Five words, the least significant first.
struct Product {
    uint64_t word[5];
};

/// The product of two numbers whose high parts are below 2^12, by columns.
constexpr Product multiply_exactly(const Fixed &a, const Fixed &b) {
    const uint64_t a0 = low_word(a.low), a1 = high_word(a.low);
    const uint64_t b0 = low_word(b.low), b1 = high_word(b.low);
    const uint128 p00 = product_of(a0, b0), p01 = product_of(a0, b1);
    const uint128 p10 = product_of(a1, b0), p11 = product_of(a1, b1);
    const uint128 column1 = uint128{high_word(p00)} + low_word(p01) + low_word(p10);
    const uint128 column2 = uint128{high_word(column1)} + high_word(p01) + high_word(p10) +
                            low_word(p11) + product_of(a0, b.high) + product_of(a.high, b0);
    const uint128 column3 = uint128{high_word(column2)} + high_word(p11) + product_of(a1, b.high) +
                            product_of(a.high, b1);
    return {{low_word(p00), low_word(column1), low_word(column2), low_word(column3),
             high_word(column3) + a.high * b.high}};
}

/// A quotient by 10^40 and its fraction in units of 2^-64.
struct Quotient {
    Fixed whole;
    uint64_t fraction;
};

/// The upper three words of a product times INVERSE, over 2^192. Products that do not
/// reach the fraction are left out.
constexpr Quotient divide_by_one(const Product &product) {
    const uint64_t n0 = product.word[2], n1 = product.word[3], n2 = product.word[4];
    constexpr uint64_t i0 = low_word(INVERSE.low), i1 = high_word(INVERSE.low);
    constexpr uint64_t i2 = INVERSE.high;
    const uint128 p02 = product_of(n0, i2), p11 = product_of(n1, i1), p12 = product_of(n1, i2);
    const uint128 column2 = uint128{high_word(product_of(n0, i1))} + high_word(product_of(n1, i0)) +
                            low_word(p02) + low_word(p11) + product_of(n2, i0);
    const uint128 column3 = uint128{high_word(column2)} + high_word(p02) + high_word(p11) +
                            low_word(p12) + product_of(n2, i1);
    const uint128 column4 = uint128{high_word(column3)} + high_word(p12) + product_of(n2, i2);
    return {{column4 << 64 | low_word(column3), high_word(column4)}, low_word(column2)};
}

/// a * b, cut to 40 places; the product is below 100.
///
/// The quotient leaves out the product's two low words, which are less than 0.035 of
/// a unit, what INVERSE was rounded by, and the smallest partial products, both far
/// less. It is therefore right unless its fraction comes within that of the next
/// integer; only there the remainder has to decide.
constexpr Fixed multiply(const Fixed &a, const Fixed &b) {
    constexpr uint64_t SURELY_BELOW_ONE = UINT64_MAX / 16 * 15;
    const Product product = multiply_exactly(a, b);
    const Quotient quotient = divide_by_one(product);
    if (quotient.fraction < SURELY_BELOW_ONE)
        return quotient.whole;
    const Product back = multiply_exactly(quotient.whole, ONE);
    const Fixed remainder =
        subtract(Fixed{uint128{product.word[1]} << 64 | product.word[0], product.word[2]},
                 Fixed{uint128{back.word[1]} << 64 | back.word[0], back.word[2]});
    return is_below(remainder, ONE) ? quotient.whole : add(quotient.whole, Fixed{1, 0});
}

/// Cuts to 40 digits: one place goes for each digit before the point.
constexpr Fixed cut_to_40_digits(const Fixed &number) {
    if (is_below(number, ONE))
        return number;
    // The words weigh 1, 2^64 and 2^128, which end in 16 and 56.
    const uint64_t last_two =
        (low_word(number.low) % 100 + high_word(number.low) % 100 * 16 + number.high % 100 * 56) %
        100;
    const uint64_t dropped = is_below(number, TEN) ? last_two % 10 : last_two;
    return subtract(number, Fixed{dropped, 0});
}

// ---- Limbs ---------------------------------------------------------------------

constexpr int FRACTION_LIMBS = 5;
constexpr int FIXED_LIMBS = 1 + FRACTION_LIMBS;

/// The fraction 0.d1d2d3... of 40 digits in five limbs.
inline Fixed fraction_of(const uint64_t *limb) {
    const uint128 high = uint128{limb[0] * bcd_words::LIMB_BASE + limb[1]} *
                             (bcd_words::LIMB_BASE * bcd_words::LIMB_BASE) +
                         (limb[2] * bcd_words::LIMB_BASE + limb[3]); // below 10^32
    const uint128 low = product_of(low_word(high), bcd_words::LIMB_BASE) + limb[4];
    const uint128 upper = product_of(high_word(high), bcd_words::LIMB_BASE) + high_word(low);
    return {upper << 64 | low_word(low), high_word(upper)};
}

/// The number in limbs, the first before the point: 32 binary digits at a time
/// from the top, each step shifting what is there.
inline void limbs_of(const Fixed &number, uint64_t *limb) {
    constexpr int BITS = 32;
    const uint64_t upper = high_word(number.low), lower = low_word(number.low);
    const uint64_t halves[] = {upper >> BITS, upper & UINT32_MAX, lower >> BITS,
                               lower & UINT32_MAX};
    for (int i = 0; i < FIXED_LIMBS; ++i)
        limb[i] = 0;
    limb[FIXED_LIMBS - 1] = number.high; // below 2^12
    for (uint64_t carry : halves)
        for (int i = FIXED_LIMBS - 1; i >= 0; --i) {
            const uint64_t total = (limb[i] << BITS) + carry;
            limb[i] = total % bcd_words::LIMB_BASE;
            carry = total / bcd_words::LIMB_BASE;
        }
}

} // namespace bcd_fixed

#endif
