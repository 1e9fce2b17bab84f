// Decimals and the outside: text, native numbers and the packed form of a column.
//
// The parser is a state machine in a table (state_machine.h compiles and walks it).
// It takes blanks, a sign, blanks, digits with a point, blanks, an exponent and
// blanks, and the place where it stops does not undo what was read: "12abc" leaves
// 12 and reports eRANGE. The printer lays the whole text into a buffer on the
// stack, since its length has a bound, and text_output.h brings it to its caller.
//
// Doubles travel as text of 15 significant digits, in both directions: a double
// becomes the decimal that a person would write, and a decimal's double is right
// when it comes back as the same decimal. Nothing here obeys the process's locale.
//
// The packed form orders by memcmp: a sign bit that is set for positive values,
// then the digits of the column's places with the high ones first, complemented to
// 9 for negative values.
//
// Rests on bcd.cpp for copies and digit words, and on the platform layer for the
// text of a double. Nothing is allocated.
#include "bcd_internal.h"
#include "bcd_packed_internal.h"
#include "bcd_words.h"
#include "state_machine.h"
#include "text_output.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <type_traits>

using namespace bcd_words;

namespace {

// ---- The parser's table -------------------------------------------------------

enum Rule : int16_t {
    RULE_NONE = 0,
    RULE_NEGATIVE = 1,
    RULE_POINT = 2,
    RULE_DIGIT = 3,
    RULE_NEGATIVE_EXPONENT = 4,
    RULE_EXPONENT_DIGIT = 5,
    RULE_ACCEPT = 6 // put where the machine stops with success
};

constexpr int16_t FAILURE = -1;
constexpr int16_t SUCCESS = -2;

constexpr B_ACTION s0[] = {
    {' ', 0, 1, 0},
    {'+', 0, 1, 1},
    {'-', 1, 1, 1},
    {symbolOther, 0, 0, 1},
};
constexpr B_ACTION s1[] = {
    {' ', 0, 1, 1},
    {symbolDigit, 3, 1, 2},
    {'.', 2, 1, 3},
    {symbolOther, 0, 0, FAILURE},
};
constexpr B_ACTION s2[] = {
    {symbolDigit, 3, 1, 2},
    {'.', 2, 1, 3},
    {symbolEnd, 0, 0, SUCCESS},
    {symbolOther, 0, 0, 4},
};
constexpr B_ACTION s3[] = {
    {symbolDigit, 3, 1, 3},
    {symbolOther, 0, 0, 4},
};
constexpr B_ACTION s4[] = {
    {' ', 0, 1, 4},
    {'e', 0, 1, 5},
    {'E', 0, 1, 5},
    {symbolEnd, 0, 0, SUCCESS},
    {symbolOther, 0, 0, FAILURE},
};
constexpr B_ACTION s5[] = {
    {'+', 0, 1, 6},
    {'-', 4, 1, 6},
    {symbolOther, 0, 0, 6},
};
constexpr B_ACTION s6[] = {
    {symbolDigit, 5, 1, 7},
    {symbolOther, 0, 0, FAILURE},
};
constexpr B_ACTION s7[] = {
    {symbolDigit, 5, 1, 7},
    {symbolOther, 0, 0, 8},
};
constexpr B_ACTION s8[] = {
    {' ', 0, 1, 8},
    {symbolEnd, 0, 0, SUCCESS},
    {symbolOther, 0, 0, FAILURE},
};

constexpr const B_ACTION *const decimalStates[] = {s0, s1, s2, s3, s4, s5, s6, s7, s8};
constexpr StateTable<std::size(decimalStates)> decimalTable{decimalStates, nullptr};

/// The table with its successful ends marked, so that the walk tells of them.
constexpr auto decimalMachine = [] {
    auto machine = state_machine::compile<decimalTable>();
    for (auto &state : machine.steps)
        for (MachineStep &step : state)
            if (step.state == static_cast<uint8_t>(SUCCESS))
                step.rule = RULE_ACCEPT;
    return machine;
}();
static_assert(state_machine::isSound(decimalMachine));

// ---- The parser's rules --------------------------------------------------------

/// Counts beyond this make no difference any more.
constexpr int COUNT_LIMIT = 1000000;

int saturated_sum(int count, size_t more) {
    return more < COUNT_LIMIT ? std::min(count + static_cast<int>(more), COUNT_LIMIT) : COUNT_LIMIT;
}

int exp_in_eight_bits(int exp) {
    return std::clamp<int>(exp, INT8_MIN, INT8_MAX);
}

/// What the machine gathers. Digits fill data[1] to data[32] as they come, zeros
/// right behind the point included; only leading zeros of the integer part do not
/// count. `significant` is the place of the last digit that is not 0.
struct DecimalParser {
    OAK_BCD_T *bcd;
    int next_slot = 1;
    int integer_count = 0;
    int significant = 0;
    bool in_fraction = false;
    bool accepted = false;
    int exponent = 0;
    int exponent_sign = 1;
    OAK_RETCODE status = sOKAY;
    int flags = 0;

    OAK_RETCODE perform(uint8_t rule, const char *run, size_t length) {
        switch (rule) {
            case RULE_NEGATIVE:
                bcd->sign = -1;
                break;
            case RULE_POINT:
                in_fraction = true;
                break;
            case RULE_DIGIT:
                take_digits(run, length);
                break;
            case RULE_NEGATIVE_EXPONENT:
                exponent_sign = -1;
                break;
            case RULE_EXPONENT_DIGIT:
                take_exponent(run, length);
                break;
            default:
                accepted = true;
                break;
        }
        return sOKAY;
    }

    void take_digits(const char *run, size_t length) {
        if (!in_fraction) {
            for (; length > 0 && integer_count == 0 && *run == '0'; ++run)
                --length;
            integer_count = saturated_sum(integer_count, length);
        }
        const auto room = static_cast<size_t>(BCD_DIGITS + 1 - next_slot);
        store_digits(run, static_cast<int>(std::min(length, room)));
        if (length > room)
            note_dropped_digits();
    }

    void store_digits(const char *run, int count) {
        for (int i = 0; i < count; ++i) {
            const auto digit = static_cast<uint8_t>(run[i] - '0');
            bcd->data[next_slot + i] = digit;
            significant = digit != 0 ? next_slot + i : significant;
        }
        next_slot += count;
    }

    /// Flags tell of the last loss, the status of the first or the worse one.
    void note_dropped_digits() {
        if (in_fraction) {
            flags = BCD_FLAG_PRECISION;
            note_precision_loss();
        } else {
            flags = BCD_FLAG_OVERFLOW;
            status = eRANGE;
        }
    }

    void note_precision_loss() { status = status == sOKAY ? sPRECISIONLOSS : status; }

    void take_exponent(const char *run, size_t length) {
        for (size_t i = 0; i < length && exponent < COUNT_LIMIT; ++i)
            exponent = exponent * 10 + (run[i] - '0');
    }

    /// Turns the counts into `prec` and `exp`. An exponent pads the digits with
    /// zeros, on either side, and what no longer fits 32 places is eRANGE; digits
    /// behind the 32nd place are cut off.
    OAK_RETCODE finish() {
        int prec = std::max(integer_count, significant);
        const int exp = exp_in_eight_bits(exponent_sign * exponent + integer_count);
        if (exponent > 0) {
            prec = exp > prec ? exp : exp < 0 ? prec - exp : prec;
            if (prec > BCD_DIGITS) {
                flags |= BCD_FLAG_OVERFLOW;
                status = eRANGE;
            }
        }
        prec = std::min(prec, BCD_DIGITS);
        if (prec - exp > BCD_DIGITS) {
            prec = std::max(exp + BCD_DIGITS, 0);
            flags |= BCD_FLAG_PRECISION;
            note_precision_loss();
        }
        while (prec > 0 && prec > exp && bcd->data[prec] == 0)
            --prec;
        bcd->exp = static_cast<int8_t>(exp);
        bcd->flags = static_cast<uint8_t>(flags);
        bcd_set_digits_in_use(bcd, prec);
        normalize(bcd);
        if (status != sOKAY)
            return status;
        return accepted ? sOKAY : eRANGE;
    }
};

// ---- The printer -----------------------------------------------------------------

/// A sign, 42 digits, a point, at most 254 digits that a scale asks for, "e-040"
/// and a terminator.
constexpr int TEXT_SIZE = 320;

/// Digits from an index of the value on, '0' where there is none.
char *put_digits(char *out, const OAK_BCD_T &bcd, int index, int count) {
    memset(out, '0', static_cast<size_t>(count));
    const int first = std::max(index, 1);
    const int end = std::min(index + count, bcd.prec + 1);
    for (int i = first; i < end; ++i)
        out[i - index] = static_cast<char>('0' + bcd.data[i]);
    return out + count;
}

/// The exponent with its sign and three digits at least.
char *put_exponent(char *out, int exponent) {
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    const int magnitude = std::abs(exponent);
    for (int unit = 100; unit > 0; unit /= 10)
        *out++ = static_cast<char>('0' + magnitude / unit % 10);
    return out;
}

/// A value's text, finished and terminated.
struct DecimalText {
    char text[TEXT_SIZE];
    size_t length;

    DecimalText(const OAK_BCD_T &bcd, uint8_t scale, OAK_BOOL_T use_exponent) {
        OAK_BCD_T clean;
        clean_copy(&clean, &bcd);
        int16_t start, int_digits, frac_digits, exponent;
        calc_needed_size(&clean, &start, &int_digits, &frac_digits, &exponent, scale, use_exponent);
        char *out = text;
        if (clean.sign < 0)
            *out++ = '-';
        out = put_digits(out, clean, start, int_digits);
        if (frac_digits != 0) {
            *out++ = '.';
            out = put_digits(out, clean, start + int_digits, frac_digits);
        }
        if (use_exponent != OAK_FALSE)
            out = put_exponent(out, exponent);
        *out = '\0';
        length = static_cast<size_t>(out - text);
    }
};

template <typename Value>
void set_if_asked(Value *place, int value) {
    if (place != nullptr)
        *place = static_cast<Value>(value);
}

// ---- Native numbers ----------------------------------------------------------------

OAK_RETCODE from_magnitude(uint64_t magnitude, int8_t sign, OAK_BCD_T *bcd) {
    if (bcd == nullptr)
        return eINVNULLARG;
    constexpr int SPACE = 3 * WORD_DIGITS; // a 64-bit number has at most 20 digits
    uint8_t digits[SPACE];
    for (int i = SPACE - WORD_DIGITS; i >= 0; i -= WORD_DIGITS, magnitude /= LIMB_BASE)
        store_word(digits + i, word_of(magnitude % LIMB_BASE));
    int first = 0;
    while (first < SPACE && digits[first] == 0)
        ++first;
    bcd_set_zero(bcd);
    if (first == SPACE)
        return sOKAY;
    const int count = SPACE - first;
    bcd->prec = static_cast<uint8_t>(count);
    bcd->exp = static_cast<int8_t>(count);
    bcd->sign = sign;
    memcpy(bcd->data + 1, digits + first, static_cast<size_t>(count));
    return sOKAY;
}

/// What each conversion to a number asks first.
template <typename Number>
OAK_RETCODE check_source(const OAK_BCD_T *bcd, Number *value) {
    if (bcd == nullptr || value == nullptr)
        return eINVNULLARG;
    if (!bcd_is_decimal(bcd)) {
        *value = 0;
        return eINVBCD;
    }
    return sOKAY;
}

OAK_RETCODE to_native(const OAK_BCD_T *bcd, int64_t *value) {
    OAK_BCD_T copy;
    normalized_copy(&copy, bcd);
    const uint64_t limit = uint64_t{INT64_MAX} + (copy.sign < 0 ? 1 : 0);
    uint64_t magnitude;
    const OAK_RETCODE rc = bcd_integer_part(&copy, limit, &magnitude);
    *value = static_cast<int64_t>(copy.sign < 0 ? 0 - magnitude : magnitude);
    return rc;
}

OAK_RETCODE to_native(const OAK_BCD_T *bcd, uint64_t *value) {
    OAK_BCD_T copy;
    normalized_copy(&copy, bcd);
    if (copy.sign < 0) {
        *value = 0;
        return eRANGE;
    }
    return bcd_integer_part(&copy, UINT64_MAX, value);
}

/// The narrower integers: the 64-bit number of their signedness, cut.
template <typename Integer>
OAK_RETCODE to_integer(const OAK_BCD_T *bcd, Integer *value) {
    const OAK_RETCODE bad = check_source(bcd, value);
    if (bad != sOKAY)
        return bad;
    std::conditional_t<std::is_signed_v<Integer>, int64_t, uint64_t> wide;
    const OAK_RETCODE rc = to_native(bcd, &wide);
    *value = static_cast<Integer>(wide);
    return rc >= sOKAY && *value != wide ? eRANGE : rc;
}

/// A floating-point number is right when it turns back into the same decimal.
template <typename Floating>
OAK_RETCODE to_floating(const OAK_BCD_T *bcd, Floating *value) {
    const OAK_RETCODE bad = check_source(bcd, value);
    if (bad != sOKAY)
        return bad;
    OAK_BCD_T copy;
    clean_copy(&copy, bcd);
    const DecimalText decimal(copy, OAK_BCD_FREE_SCALE, OAK_FALSE);
    *value = static_cast<Floating>(osl_atof(decimal.text));
    OAK_BCD_T back;
    bcd_set_zero(&back);
    OAK_IGNORE_STATUS(oak_bcdFromDouble(*value, &back), "the comparison tells");
    return oak_bcdCompare(&copy, &back) == OAK_EQ ? sOKAY : eRANGE;
}

// ---- Packed form -------------------------------------------------------------------

constexpr uint8_t PACKED_POSITIVE = 0x40;

/// Digit places from 1 on: odd ones are low nibbles, even ones high nibbles.
int nibble_shift(int place) {
    return place % 2 == 0 ? 4 : 0;
}

bool fits_a_column(uint8_t prec, uint8_t scale) {
    return prec <= BCD_DIGITS && scale <= BCD_DIGITS;
}

// The packed form by words: place 0, where the sign is, and the places of the
// digits behind it, eight to a word.
constexpr int MOST_PLACES = 1 + BCD_DIGITS;
constexpr int MOST_WORDS = words_for(MOST_PLACES);
constexpr int WORD_BYTES = WORD_DIGITS / 2; // packed
static_assert(MOST_WORDS * WORD_BYTES == BCD_PACKED_BLOCK);
static_assert(MOST_PLACES == (MOST_WORDS - 1) * WORD_DIGITS + 1);

// Nearly every column has up to 15 digits: place 0 and the digits are then one
// number of 16 bytes, and moving digits is a shift.
constexpr int WIDE_PLACES = 16;
__extension__ using Wide = unsigned __int128;

Wide wide_of(uint64_t high, uint64_t low) {
    return Wide{high} << 64 | low;
}
uint64_t high_word(Wide wide) {
    return static_cast<uint64_t>(wide >> 64);
}
uint64_t low_word(Wide wide) {
    return static_cast<uint64_t>(wide);
}
uint64_t odd_digits(Wide wide) {
    return bcd_words::odd_digits(high_word(wide)) | bcd_words::odd_digits(low_word(wide));
}

/// The first `places` places, 1 to 16; the others become zero.
Wide first_places(Wide wide, int places) {
    const int behind = 8 * (WIDE_PLACES - places);
    return wide >> behind << behind;
}

/// A 9 at each digit's place of a column.
Wide wide_nines(int prec) {
    return first_places(wide_of(0x0009090909090909, 0x0909090909090909), prec + 1);
}

/// bcd_pack_clean for a column of up to 15 digits. The digits are brought to their
/// places in two shifts, the first of which drops what is past them.
bool pack_wide(const OAK_BCD_T *bcd, int prec, int leading, uint8_t *packed) {
    Wide digits = wide_of(load_word(bcd->data), load_word(bcd->data + WORD_DIGITS));
    digits = digits >> 8 * (WIDE_PLACES - 1 - bcd->prec)
                           << 8 * (WIDE_PLACES - 1 - bcd->prec - leading);
    if (odd_digits(digits) != 0)
        return false;
    if (bcd->sign <= 0)
        digits = wide_nines(prec) - digits;
    store_nibbles(packed, nibbles_of(high_word(digits)));
    store_nibbles(packed + WORD_DIGITS / 2, nibbles_of(low_word(digits)));
    return true;
}

/// bcd_unpack_clean's digits for such a column; their count, below 0 for a nibble
/// that is no digit.
int unpack_wide(const uint8_t *packed, int prec, bool positive, OAK_BCD_T *bcd) {
    Wide digits = wide_of(word_of_nibbles(load_nibbles(packed)) & ~uint64_t{0} >> 8,
                          word_of_nibbles(load_nibbles(packed + WORD_DIGITS / 2)));
    digits = first_places(digits, prec + 1);
    if (odd_digits(digits) != 0)
        return -1;
    if (!positive)
        digits = wide_nines(prec) - digits;
    const uint64_t high = high_word(digits);
    const int zeros =
        high != 0 ? leading_zero_digits(high) : WORD_DIGITS + leading_zero_digits(low_word(digits));
    const int first = std::min(zeros, prec + 1); // place 0 is zero, so it is 1 at least
    digits <<= 8 * (first - 1);
    memset(bcd->data, 0, sizeof bcd->data);
    store_word(bcd->data, high_word(digits));
    store_word(bcd->data + WORD_DIGITS, low_word(digits));
    return prec + 1 - first;
}

/// Of word `i` the places that lie below `places`; the others become zero.
uint64_t places_below(int places, int i, uint64_t word) {
    const int left = places - i * WORD_DIGITS;
    if (left <= 0)
        return 0;
    return left < WORD_DIGITS ? first_digits(word, left) : word;
}

/// A 9 at each digit's place of a column, in word `i`.
uint64_t nines(int prec, int i) {
    constexpr uint64_t NINES = 0x0909090909090909;
    return places_below(prec + 1, i, i == 0 ? NINES >> 8 : NINES);
}

/// Word `i` of the digits; the last one has a single place.
uint64_t load_places(const OAK_BCD_T *bcd, int i) {
    return i < MOST_WORDS - 1 ? load_word(bcd->data + i * WORD_DIGITS)
                              : uint64_t{bcd->data[MOST_PLACES - 1]} << (8 * (WORD_DIGITS - 1));
}

void store_places(OAK_BCD_T *bcd, const uint64_t *row) {
    for (int i = 0; i < MOST_WORDS - 1; ++i)
        store_word(bcd->data + i * WORD_DIGITS, row[i]);
    bcd->data[MOST_PLACES - 1] = static_cast<uint8_t>(row[MOST_WORDS - 1] >> 56);
}

/// True for zero as every operation leaves it, and for digits without a carry or a
/// zero in front. The digits themselves are not looked at.
bool begins_clean(const OAK_BCD_T *bcd) {
    if (bcd->data[0] != 0)
        return false;
    return bcd->prec == 0 ? bcd->exp == 0 && bcd->sign > 0 : bcd->data[1] != 0;
}

/// How many places of a row come before its first digit other than 0.
int places_before_digits(const uint64_t *row, int words) {
    int i = 0;
    while (i < words && row[i] == 0)
        ++i;
    return i == words ? words * WORD_DIGITS : i * WORD_DIGITS + leading_zero_digits(row[i]);
}

// The two for any column stay out of line, so that the usual way needs no frame.

/// pack_wide for any column.
[[gnu::noinline]] bool pack_words(const OAK_BCD_T *bcd, int prec, int leading, uint8_t *packed) {
    const int words = words_for(prec + 1);
    uint64_t row[MOST_WORDS];
    uint64_t odd = 0;
    for (int i = 0; i < words; ++i) {
        row[i] = places_below(bcd->prec + 1, i, load_places(bcd, i));
        odd |= bcd_words::odd_digits(row[i]);
    }
    if (odd != 0)
        return false;
    move_back(row, words, leading);
    for (int i = 0; i < words; ++i)
        store_nibbles(packed + i * WORD_BYTES,
                      nibbles_of(bcd->sign > 0 ? row[i] : nines(prec, i) - row[i]));
    return true;
}

/// unpack_wide for any column.
[[gnu::noinline]] int unpack_words(const uint8_t *packed, int prec, bool positive, OAK_BCD_T *bcd) {
    const int words = words_for(prec + 1);
    uint64_t row[MOST_WORDS] = {};
    uint64_t odd = 0;
    for (int i = 0; i < words; ++i) {
        const uint64_t digits = word_of_nibbles(load_nibbles(packed + i * WORD_BYTES));
        row[i] = places_below(prec + 1, i, i == 0 ? digits & ~uint64_t{0} >> 8 : digits);
        odd |= bcd_words::odd_digits(row[i]);
        row[i] = positive ? row[i] : nines(prec, i) - row[i];
    }
    if (odd != 0)
        return -1;
    const int first = std::min(places_before_digits(row, words), prec + 1);
    move_forward(row, words, first - 1);
    store_places(bcd, row);
    return prec + 1 - first;
}

} // namespace

// ---- What bcd_functions.cpp shares --------------------------------------------------

OAK_RETCODE bcd_integer_part(const BcdOperand &b, uint64_t limit, uint64_t *magnitude) {
    uint64_t value = 0;
    bool too_large = false;
    for (int i = 1; i <= b.exp; ++i) {
        const uint8_t digit = i <= b.prec ? b.data[i] : 0;
        too_large |= __builtin_mul_overflow(value, uint64_t{10}, &value);
        too_large |= __builtin_add_overflow(value, digit, &value);
        too_large |= value > limit;
    }
    *magnitude = value;
    if (too_large)
        return eRANGE;
    const bool has_fraction = b.exp < 1 ? b.prec != 0 && b.data[1] != 0 : b.prec != b.exp;
    return has_fraction ? sPRECISIONLOSS : sOKAY;
}

// ---- From native numbers --------------------------------------------------------------

OAK_RETCODE oak_bcdFromInt64(int64_t value, OAK_BCD_T *bcd) {
    const auto magnitude = static_cast<uint64_t>(value);
    return value < 0 ? from_magnitude(0 - magnitude, -1, bcd) : from_magnitude(magnitude, 1, bcd);
}

OAK_RETCODE oak_bcdFromUInt64(uint64_t value, OAK_BCD_T *bcd) {
    return from_magnitude(value, 1, bcd);
}

#define FROM_NARROW(suffix, type, wide)                                                            \
    OAK_RETCODE oak_bcdFrom##suffix(type value, OAK_BCD_T *bcd) {                                  \
        return oak_bcdFrom##wide(value, bcd);                                                      \
    }
FROM_NARROW(Int8, int8_t, Int64)
FROM_NARROW(Int16, int16_t, Int64)
FROM_NARROW(Int32, int32_t, Int64)
FROM_NARROW(UInt8, uint8_t, UInt64)
FROM_NARROW(UInt16, uint16_t, UInt64)
FROM_NARROW(UInt32, uint32_t, UInt64)

OAK_RETCODE oak_bcdFromDouble(double value, OAK_BCD_T *bcd) {
    constexpr int SIGNIFICANT = 14; // behind the first digit
    constexpr int BUFFER_SIZE = 80; // a sign, 32 digits, a point, 32 digits
    if (bcd == nullptr)
        return eINVNULLARG;
    if (!std::isfinite(value))
        return eRANGE;
    const double exponent = value == 0.0 ? 0.0 : std::trunc(std::log10(std::fabs(value)));
    if (exponent > BCD_DIGITS - 1)
        return eRANGE;
    const int wanted = SIGNIFICANT - static_cast<int>(exponent);
    char text[BUFFER_SIZE];
    const auto printed = std::to_chars(text, text + BUFFER_SIZE - 1, value,
                                       std::chars_format::fixed, std::clamp(wanted, 0, BCD_DIGITS));
    *printed.ptr = '\0';
    const OAK_RETCODE rc = oak_bcdFromString(text, bcd);
    return rc == sOKAY && wanted > BCD_DIGITS ? sPRECISIONLOSS : rc;
}

OAK_RETCODE oak_bcdFromFloat(float value, OAK_BCD_T *bcd) {
    return oak_bcdFromDouble(value, bcd);
}

// ---- To native numbers ----------------------------------------------------------------

#define TO_INTEGER(suffix, type)                                                                   \
    OAK_RETCODE oak_bcdTo##suffix(const OAK_BCD_T *bcd, type *value) {                             \
        return to_integer(bcd, value);                                                             \
    }
TO_INTEGER(Int8, int8_t)
TO_INTEGER(Int16, int16_t)
TO_INTEGER(Int32, int32_t)
TO_INTEGER(Int64, int64_t)
TO_INTEGER(UInt8, uint8_t)
TO_INTEGER(UInt16, uint16_t)
TO_INTEGER(UInt32, uint32_t)
TO_INTEGER(UInt64, uint64_t)

OAK_RETCODE oak_bcdToDouble(const OAK_BCD_T *bcd, double *value) {
    return to_floating(bcd, value);
}

OAK_RETCODE oak_bcdToFloat(const OAK_BCD_T *bcd, float *value) {
    return to_floating(bcd, value);
}

// ---- Text -----------------------------------------------------------------------------

OAK_RETCODE oak_bcdFromString(const char *str, OAK_BCD_T *bcd) {
    if (str == nullptr || bcd == nullptr)
        return eINVNULLARG;
    bcd_set_zero(bcd);
    DecimalParser parser{bcd};
    OAK_IGNORE_STATUS(walkMachine(decimalMachine, str, parser), "no rule fails");
    return parser.finish();
}

size_t calc_needed_size(const OAK_BCD_T *bcd, int16_t *start, int16_t *int_digits,
                        int16_t *frac_digits, int16_t *exponent, uint8_t scale,
                        OAK_BOOL_T use_exponent) {
    const bool scientific = use_exponent != OAK_FALSE;
    const bool is_zero = bcd->prec == 0;
    const int before = scientific ? 1 : std::max<int>(bcd->exp, 1);
    const int free_scale = scientific ? bcd->prec - 1 : bcd->prec - bcd->exp;
    const int behind = scale == OAK_BCD_FREE_SCALE ? std::max(free_scale, 0) : scale;
    set_if_asked(start, scientific ? 1 : std::min<int>(bcd->exp, 1));
    set_if_asked(int_digits, before);
    set_if_asked(frac_digits, behind);
    set_if_asked(exponent, scientific && !is_zero ? bcd->exp - 1 : 0);
    constexpr int TERMINATOR = 1;
    constexpr int EXPONENT = 5; // e+001
    const int fraction = behind != 0 ? 1 + behind : 0;
    const int sign = bcd->sign < 0 ? 1 : 0;
    return static_cast<size_t>(sign + before + fraction + (scientific ? EXPONENT : 0) + TERMINATOR);
}

OAK_RETCODE oak_bcdFormatWithScale(const OAK_BCD_T *bcd, uint8_t scale, OAK_BOOL_T use_exponent,
                                   OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx) {
    if (bcd == nullptr || fcn == nullptr)
        return eINVNULLARG;
    if (!bcd_is_decimal(bcd))
        return eINVBCD;
    const DecimalText decimal(*bcd, scale, use_exponent);
    return emitText(decimal.text, decimal.length, fcn, ctx);
}

OAK_RETCODE oak_bcdToStringWithScale(const OAK_BCD_T *bcd, uint8_t scale, OAK_BOOL_T use_exponent,
                                     char *str, size_t len, size_t *bytesOut) {
    if (bcd == nullptr)
        return eINVNULLARG;
    if (!bcd_is_decimal(bcd))
        return eINVBCD;
    const DecimalText decimal(*bcd, scale, use_exponent);
    const bool is_measured = str == nullptr || len == 0;
    if (is_measured && bytesOut != nullptr) {
        *bytesOut = decimal.length + 1;
        return sOKAY;
    }
    const TextDelivery delivery = deliverText(decimal.text, decimal.length, str, len);
    if (bytesOut != nullptr)
        *bytesOut = delivery.written;
    return delivery.needed > len ? sUNDERFLOW : sOKAY;
}

OAK_RETCODE oak_bcdToString(const OAK_BCD_T *bcd, OAK_BOOL_T use_exponent, char *str, size_t len,
                            size_t *bytesOut) {
    return oak_bcdToStringWithScale(bcd, OAK_BCD_FREE_SCALE, use_exponent, str, len, bytesOut);
}

// ---- Packed form -----------------------------------------------------------------------

bool bcd_pack_clean(const OAK_BCD_T *bcd, uint8_t prec, uint8_t scale, uint8_t *packed) {
    const int leading = prec - scale - bcd->exp;
    if (!fits_a_column(prec, scale) || bcd->prec > BCD_DIGITS || !begins_clean(bcd) ||
        leading < 0 || leading + bcd->prec > prec)
        return false;
    const bool packs = prec < WIDE_PLACES ? pack_wide(bcd, prec, leading, packed)
                                          : pack_words(bcd, prec, leading, packed);
    if (bcd->sign > 0)
        packed[0] |= PACKED_POSITIVE;
    return packs;
}

bool bcd_unpack_clean(const uint8_t *packed, uint8_t prec, uint8_t scale, OAK_BCD_T *bcd) {
    if (!fits_a_column(prec, scale))
        return false;
    const bool positive = (packed[0] & PACKED_POSITIVE) != 0;
    const int count = prec < WIDE_PLACES ? unpack_wide(packed, prec, positive, bcd)
                                         : unpack_words(packed, prec, positive, bcd);
    if (count < 0)
        return false;
    bcd->prec = static_cast<uint8_t>(count);
    bcd->exp = static_cast<int8_t>(count > 0 ? count - scale : 0);
    bcd->flags = 0;
    bcd->sign = positive ? 1 : -1;
    return true;
}

OAK_RETCODE oak_bcdPack(const OAK_BCD_T *bcd, OAK_PACKED_BCD_T *packed, uint8_t prec,
                        uint8_t scale) {
    if (bcd == nullptr || packed == nullptr)
        return eINVNULLARG;
    if (!fits_a_column(prec, scale))
        return eRANGE;
    uint8_t block[BCD_PACKED_BLOCK];
    if (bcd_pack_clean(bcd, prec, scale, block)) {
        memcpy(packed, block, OAK_PACKED_BCD_SIZE(prec));
        return sOKAY;
    }
    memset(packed, 0, OAK_PACKED_BCD_SIZE(prec));
    if (!bcd_is_decimal(bcd)) {
        packed[0] = PACKED_POSITIVE;
        return eINVBCD;
    }
    OAK_BCD_T copy;
    clean_copy(&copy, bcd);
    const OAK_RETCODE rc = oak_bcdAdjust(&copy, prec, scale);
    const bool positive = copy.sign > 0;
    packed[0] = positive ? PACKED_POSITIVE : 0;
    for (int place = 1; place <= copy.prec; ++place) {
        const int digit = positive ? copy.data[place] : 9 - copy.data[place];
        packed[place / 2] |= static_cast<uint8_t>(digit << nibble_shift(place));
    }
    return rc;
}

OAK_RETCODE oak_bcdUnpack(const OAK_PACKED_BCD_T *packed, OAK_BCD_T *bcd, uint8_t prec,
                          uint8_t scale) {
    if (packed == nullptr || bcd == nullptr)
        return eINVNULLARG;
    if (!fits_a_column(prec, scale))
        return eRANGE;
    uint8_t block[BCD_PACKED_BLOCK] = {};
    memcpy(block, packed, OAK_PACKED_BCD_SIZE(prec));
    if (!bcd_unpack_clean(block, prec, scale, bcd)) {
        bcd_set_zero(bcd);
        return eINVBCD; // a nibble that is no digit
    }
    return sOKAY;
}
