// Internal to the decimal subsystem (bcd.cpp, bcd_text.cpp, bcd_functions.cpp).
//
// The work level: decimals of 40 digits, the eight guard digits beyond the
// public form in which every operation computes, and the constants. A public
// operation checks its operands, runs work functions into a WORK_BCD of its own
// and ends in assign_result, which alone rounds.
//
// Law: digits beyond the 40th, and digits beyond 40 places behind the point, are
// cut off, not rounded, and without a flag. `prec` of an operand lies within its
// record; everything else in it may be anything. Bytes past `prec` are zero in
// every value that a work function makes. A result may be the same object as an
// operand.
#ifndef BCD_INTERNAL_H
#define BCD_INTERNAL_H

#include "bcd.h"

// ---- Records --------------------------------------------------------------

inline constexpr int BCD_DIGITS = OAK_BCD_MAX_DIGITS; // digits of the public form
inline constexpr int BCD_WORK_DIGITS = 40;            // digits of a work value
inline constexpr int BCD_EXP_LIMIT = 40;              // |exp| of a record that is a decimal

/// The working form. Same fields and meaning as OAK_BCD_T.
struct WORK_BCD {
    uint8_t prec;
    int8_t exp;
    uint8_t flags;
    int8_t sign;
    uint8_t data[BCD_WORK_DIGITS + 1];
};

static_assert(sizeof(OAK_BCD_T) == 37 && offsetof(OAK_BCD_T, data) == 4);
static_assert(sizeof(WORK_BCD) == 45 && offsetof(WORK_BCD, data) == 4);

/// Raw output of the digit loops, before normalize_res trims it: digits 1 to
/// `prec`, eight a word as in bcd_words.h. Zeros follow them to the end of their last
/// word and for ZERO_WORDS more. A product has at most 80 digits; the sum of two
/// operands at opposite ends of what `exp` can hold has fewer than 296.
struct DWORK_BCD {
    static constexpr int DIGIT_WORDS = 37;
    static constexpr int ZERO_WORDS = 5;

    int prec;
    int exp;
    uint8_t flags;
    int8_t sign;
    uint8_t carry; // digit 0
    uint64_t words[DIGIT_WORDS + ZERO_WORDS];
};

/// An operand: a public or a work value, read in place. It converts from a
/// pointer to either, so that work_add(&x, &c_1, &x) takes both.
struct BcdOperand {
    const uint8_t *data;
    int prec;
    int exp;
    uint8_t flags;
    int8_t sign;

    BcdOperand(const OAK_BCD_T *b)
        : data(b->data), prec(b->prec), exp(b->exp), flags(b->flags), sign(b->sign) {}
    BcdOperand(const WORK_BCD *w)
        : data(w->data), prec(w->prec), exp(w->exp), flags(w->flags), sign(w->sign) {}

    bool is_fatal() const { return (flags & BCD_FLAG_FATAL) != 0; }
};

// ---- Constants ------------------------------------------------------------

// Exact, flags 0.
extern const WORK_BCD c_0;
extern const WORK_BCD c_1_2;
extern const WORK_BCD c_1;
extern const WORK_BCD c_2;
// 40 digits and BCD_FLAG_PRECISION, so that a result built from them reports
// sPRECISIONLOSS.
extern const WORK_BCD c_e;
extern const WORK_BCD c_2_3;
extern const WORK_BCD c_4_3;
extern const WORK_BCD c_ln2;
extern const WORK_BCD c_ln10;
extern const WORK_BCD c_1_ln10;
extern const WORK_BCD c_pi;
extern const WORK_BCD c_2pi;

// ---- Conditions and results -----------------------------------------------

/// The status of the first condition set: BCD_FLAG_NOMEM, DIVBY0, NAN,
/// OVERFLOW, PRECISION, UNDERFLOW; else sOKAY.
OAK_RETCODE bcd_retcode(uint8_t flags);

/// Whether `prec` is at most 32 and `exp` from -40 to 40.
bool bcd_is_decimal(const OAK_BCD_T *bcd);

/// Sets the count of digits in use, cut to the record, and clears what is past it.
void bcd_set_digits_in_use(OAK_BCD_T *bcd, int count);
void work_set_digits_in_use(WORK_BCD *work, int count);

/// The zero value: `prec`, `exp` and digits 0, sign +1, with these conditions.
void bcd_set_zero(OAK_BCD_T *bcd, int flags = 0);
void work_set_zero(WORK_BCD *work, int flags = 0);

/// Trims raw digits to a work value: trailing zeros of the fraction go, leading
/// zeros are shifted out, digits past the 40th and past 40 places are cut. More
/// than 40 integer digits are zero with BCD_FLAG_OVERFLOW added.
void normalize_res(const DWORK_BCD *work, WORK_BCD *res);

/// The same in place on a work value, whose length needs no cut. A zero loses
/// its conditions.
void normalize_work(WORK_BCD *res);

/// Rounds a work value to the public form. The only road from one to the other.
/// Computes in place on `work`, so a constant needs a copy. Returns the status
/// of the conditions; with BCD_FLAG_NOMEM `result` is untouched.
OAK_RETCODE assign_result(WORK_BCD *work, OAK_BCD_ROUNDING_MODE mode, OAK_BCD_T *result);

// ---- Digits ---------------------------------------------------------------

/// Orders magnitudes: -1, 0 or +1.
int ucompare(const BcdOperand &l, const BcdOperand &r);

/// |l| + |r| with the sign of l.
void add_digits(const BcdOperand &l, const BcdOperand &r, WORK_BCD *res);
/// |l| - |r| with the sign of l, or its opposite where |r| is larger.
void sub_digits(const BcdOperand &l, const BcdOperand &r, WORK_BCD *res);

// ---- Operations on work values --------------------------------------------

// An operand with a fatal condition gives zero with the conditions of both.

void work_copy(const BcdOperand &src, WORK_BCD *res);
void work_add(const BcdOperand &l, const BcdOperand &r, WORK_BCD *res);
void work_sub(const BcdOperand &l, const BcdOperand &r, WORK_BCD *res);
void work_mult(const BcdOperand &l, const BcdOperand &r, WORK_BCD *res);
/// 1 / bcd, stable at 40 digits. A zero gives zero with BCD_FLAG_DIVBY0 alone.
void work_reciprocal(const BcdOperand &bcd, WORK_BCD *res);
/// l times the reciprocal of r.
void work_div(const BcdOperand &l, const BcdOperand &r, WORK_BCD *res);

/// A copy with leading zeros shifted out and digits above 9 carried, so that
/// every digit is one and the first is not 0; all-zero digits give `prec` 0 and
/// keep their conditions. Trailing zeros stay.
void work_clean_copy(const BcdOperand &src, WORK_BCD *res);

// ---- Public records -------------------------------------------------------

/// Shifts leading zeros out, or a carry slot in. Trailing digits stay and
/// nothing is rounded; where the carry slot pushes a 33rd digit out, that digit
/// is lost with BCD_FLAG_PRECISION. All-zero digits become the zero value.
void normalize(OAK_BCD_T *bcd);
void normalized_copy(OAK_BCD_T *dst, const OAK_BCD_T *src);

/// The same with digits above 9 carried, for whoever shows digits to the world.
void clean_copy(OAK_BCD_T *dst, const OAK_BCD_T *src);

/// The integer digits of a decimal as an unsigned 64-bit number: eRANGE past
/// `limit` (*magnitude then holds the low 64 bits), sPRECISIONLOSS for a
/// dropped fraction.
OAK_RETCODE bcd_integer_part(const BcdOperand &b, uint64_t limit, uint64_t *magnitude);

// ---- Text ------------------------------------------------------------------

/// The bytes that the text of a normalized value takes, with its terminator, and
/// its measures through every pointer that is not null: the digit index at which
/// output begins (below 1 for leading zeros), the digits before and behind the
/// point, and the printed exponent.
size_t calc_needed_size(const OAK_BCD_T *bcd, int16_t *start, int16_t *int_digits,
                        int16_t *frac_digits, int16_t *exponent, uint8_t scale,
                        OAK_BOOL_T use_exponent);

// ---- The shape of a public operation --------------------------------------

/// What every operation with two operands does around its work function.
template <void (*work)(const BcdOperand &, const BcdOperand &, WORK_BCD *)>
OAK_RETCODE bcd_binary_operation(const OAK_BCD_T *l, const OAK_BCD_T *r, OAK_BCD_ROUNDING_MODE mode,
                                 OAK_BCD_T *res) {
    if (l == nullptr || r == nullptr || res == nullptr)
        return eINVNULLARG;
    if (!bcd_is_decimal(l) || !bcd_is_decimal(r)) {
        bcd_set_zero(res);
        return eINVBCD;
    }
    WORK_BCD exact;
    work(l, r, &exact);
    return assign_result(&exact, mode, res);
}

/// The same for one operand.
template <void (*work)(const BcdOperand &, WORK_BCD *)>
OAK_RETCODE bcd_unary_operation(const OAK_BCD_T *bcd, OAK_BCD_ROUNDING_MODE mode, OAK_BCD_T *res) {
    if (bcd == nullptr || res == nullptr)
        return eINVNULLARG;
    if (!bcd_is_decimal(bcd)) {
        bcd_set_zero(res);
        return eINVBCD;
    }
    WORK_BCD exact;
    work(bcd, &exact);
    return assign_result(&exact, mode, res);
}

#endif
