// Decimal arithmetic: records, the work level, rounding, and the operations on
// public decimals that are not conversions (those stand in bcd_text.cpp).
//
// What the results are. Every operation computes in work values of 40 digits,
// eight more than a public decimal has, and rounds once, in assign_result. The
// work level cuts: a product of 64 digits keeps its first 40, the sum of a very
// large and a very small number loses what lies beyond the 40th, and nothing is
// flagged there. Division multiplies by a Newton reciprocal that is stable at 40
// digits, so a quotient with a short exact form can come out as 1.9999... to 40
// digits; in the nearest modes the rounding to 32 brings it back.
//
// How they are computed. A record holds a digit a byte, so eight digits are one
// 64-bit word, and the two inner loops never look at a single digit:
//
//   sums      the operands are laid into two rows, aligned at the point, and
//             added eight digits at a time: 0xF6 is put under each digit, so
//             that a decimal carry becomes a binary one (add_words).
//   products  each word becomes a number below 10^8, a limb; limbs are
//             multiplied column by column and turned back into digits
//             (multiply_limbs). The reciprocal stays in limbs from its seed to
//             its last step (FIXED).
//
// Both give digit for digit what paper and pencil give, since a limb is only
// eight digits written at once, cuts fall on the same places, and no step is
// approximate. They need digits from 0 to 9. A record may hold others: oak_bcdRound
// leaves a digit 10, and a damaged record anything. Those take the same rows a
// digit at a time (add_each_digit, subtract_each_digit, multiply_each_digit),
// where a digit too large gives its surplus to the next place, and where a
// subtraction drops it.
//
// What it costs. Nothing is allocated; a few records and two rows lie on the
// stack. A sum takes five words for 32 digits, a product at most 25
// multiplications of limbs, a reciprocal five to seven steps of two products.
//
// The layers from below: words and limbs; records; trimming and rounding;
// operations on work values; operations on public decimals; forms with a native
// operand.
#include "bcd_internal.h"

#include <algorithm>
#include <array>

namespace {

// ---- The reciprocal's seeds -------------------------------------------------

/// A first approximation of 1 / a for a in [0.1, 1), by the first two digits of a.
struct X0_LOOKUP {
    uint8_t prec;
    int8_t exp;
    uint8_t data[7];
};

constexpr int SEED_DIGITS = 7;
constexpr int SEED_FIRST = 10; // the two digits that row 0 stands for
constexpr int SEED_COUNT = 90;

/// 100 / (n + 0.5), rounded half up to seven digits. All lie between 1 and 10.
constexpr X0_LOOKUP seed_row(uint32_t n) {
    uint32_t millionths = (400000000 / (2 * n + 1) + 1) / 2;
    X0_LOOKUP row{SEED_DIGITS, 1, {}};
    for (int i = SEED_DIGITS - 1; i >= 0; --i, millionths /= 10)
        row.data[i] = static_cast<uint8_t>(millionths % 10);
    while (row.data[row.prec - 1] == 0)
        --row.prec;
    return row;
}

constexpr auto x0_start = [] {
    std::array<X0_LOOKUP, SEED_COUNT> rows{};
    for (uint32_t i = 0; i < SEED_COUNT; ++i)
        rows[i] = seed_row(SEED_FIRST + i);
    return rows;
}();

constexpr bool seed_is(int row, uint8_t prec, uint32_t millionths) {
    uint32_t value = 0;
    for (uint8_t digit : x0_start[static_cast<size_t>(row)].data)
        value = value * 10 + digit;
    return x0_start[static_cast<size_t>(row)].prec == prec && value == millionths;
}
static_assert(seed_is(0, 6, 9523810));  // 100 / 10.5
static_assert(seed_is(2, 1, 8000000));  // 100 / 12.5
static_assert(seed_is(89, 7, 1005025)); // 100 / 99.5

// ---- Words of eight digits ---------------------------------------------------

constexpr uint64_t HIGH_BITS = 0x8080808080808080;
constexpr uint64_t CARRY_FILL = 0xF6F6F6F6F6F6F6F6; // 256 - 10 under each digit

/// Not zero if some byte is above 9.
uint64_t odd_digits(uint64_t word) {
    return ((word + 0x7676767676767676) | word) & HIGH_BITS;
}

/// Adds words of proper digits; `carry` is 0 or 1, in and out. Over the filling a
/// digit sum of 10 and more leaves its byte as a carry and what stays is right;
/// bytes that did not overflow still hold the filling and have their high bit set.
uint64_t add_digit_words(uint64_t a, uint64_t b, uint64_t *carry) {
    uint64_t sum;
    const bool first = __builtin_add_overflow(a + CARRY_FILL, b, &sum);
    const bool second = __builtin_add_overflow(sum, *carry, &sum);
    *carry = first || second;
    return sum - ((sum & HIGH_BITS) >> 7) * 0xF6;
}

/// Subtracts; a byte that borrowed is 246 too high and has its high bit set.
uint64_t subtract_digit_words(uint64_t a, uint64_t b, uint64_t *borrow) {
    uint64_t difference;
    const bool first = __builtin_sub_overflow(a, b, &difference);
    const bool second = __builtin_sub_overflow(difference, *borrow, &difference);
    *borrow = first || second;
    return difference - ((difference & HIGH_BITS) >> 7) * 0xF6;
}

int leading_zero_digits(uint64_t word) {
    return std::countl_zero(word) / 8;
}
int trailing_zero_digits(uint64_t word) {
    return std::countr_zero(word) / 8;
}

// ---- Order -------------------------------------------------------------------

/// Two operands of one exponent: their digits as they lie, then what is longer.
int compare_aligned(const BCD_OPERAND &l, const BCD_OPERAND &r) {
    const int common = std::min(l.prec, r.prec);
    if (const int order = memcmp(l.data, r.data, static_cast<size_t>(common) + 1); order != 0)
        return order < 0 ? -1 : 1;
    const BCD_OPERAND &longer = l.prec > r.prec ? l : r;
    const uint8_t *tail = longer.data + common + 1;
    const uint8_t *end = longer.data + longer.prec + 1;
    if (std::all_of(tail, end, [](uint8_t digit) { return digit == 0; }))
        return 0;
    return l.prec > r.prec ? 1 : -1;
}

/// The digit at an index of an operand, 0 outside of it.
int digit_at(const BCD_OPERAND &operand, int index) {
    return index >= 0 && index <= operand.prec ? operand.data[index] : 0;
}

/// Place by place from one before the longer integer part, which takes in the
/// carry slots, to the end of the longer fraction.
int compare_places(const BCD_OPERAND &l, const BCD_OPERAND &r) {
    const int exp = std::max(l.exp, r.exp);
    const int last = exp + std::max(l.prec - l.exp, r.prec - r.exp);
    for (int place = 0; place <= last; ++place) {
        const int left = digit_at(l, place - (exp - l.exp));
        const int right = digit_at(r, place - (exp - r.exp));
        if (left != right)
            return left < right ? -1 : 1;
    }
    return 0;
}

bool has_first_digit(const BCD_OPERAND &operand) {
    return operand.prec > 0 && operand.data[0] == 0 && operand.data[1] != 0;
}

// ---- Two operands aligned at the point ----------------------------------------

/// The rows have the layout of DWORK_BCD: position i of 0 to `prec` is byte
/// CARRY + i, and `words` words hold them all.
class ALIGNED_ROWS {
  public:
    ALIGNED_ROWS(const BCD_OPERAND &l, const BCD_OPERAND &r)
        : exp(std::max(l.exp, r.exp)), prec(exp + std::max(l.prec - l.exp, r.prec - r.exp)),
          words((DWORK_BCD::CARRY + prec) / WORD_DIGITS + 1), left(first_), right(second_) {
        place(l, first_);
        place(r, second_);
    }
    ALIGNED_ROWS(const ALIGNED_ROWS &) = delete;
    ALIGNED_ROWS &operator=(const ALIGNED_ROWS &) = delete;

    uint64_t left_word(int i) const { return load_digit_word(left + i * WORD_DIGITS); }
    uint64_t right_word(int i) const { return load_digit_word(right + i * WORD_DIGITS); }

    /// Digits 0 to 9 everywhere and nothing in the carry slots.
    bool are_proper() const {
        uint64_t odd = left_word(0) | right_word(0);
        for (int i = 1; i < words; ++i)
            odd |= odd_digits(left_word(i)) | odd_digits(right_word(i));
        return odd == 0;
    }

    int compare() const {
        for (int i = 0; i < words; ++i)
            if (const uint64_t l = left_word(i), r = right_word(i); l != r)
                return l < r ? -1 : 1;
        return 0;
    }

    void swap() { std::swap(left, right); }

    const int exp;
    const int prec;
    const int words;
    const uint8_t *left;
    const uint8_t *right;

  private:
    void place(const BCD_OPERAND &operand, uint8_t *row) const {
        memset(row, 0, static_cast<size_t>(words) * WORD_DIGITS);
        memcpy(row + DWORK_BCD::CARRY + (exp - operand.exp), operand.data,
               static_cast<size_t>(operand.prec) + 1);
    }

    alignas(8) uint8_t first_[DWORK_BCD::SIZE];
    alignas(8) uint8_t second_[DWORK_BCD::SIZE];
};

// 127 is the largest exponent; 40 digits and the exponent -128 end 168 places
// behind the point.
static_assert(DWORK_BCD::CARRY + 127 + 168 < DWORK_BCD::SIZE);
static_assert(DWORK_BCD::SIZE % WORD_DIGITS == 0 && (DWORK_BCD::CARRY + 1) % WORD_DIGITS == 0);

void add_words(const ALIGNED_ROWS &rows, DWORK_BCD *sum) {
    uint64_t carry = 0;
    for (int i = rows.words - 1; i >= 0; --i)
        store_digit_word(sum->digits + i * WORD_DIGITS,
                         add_digit_words(rows.left_word(i), rows.right_word(i), &carry));
}

/// The left row must not be below the right one.
void subtract_words(const ALIGNED_ROWS &rows, DWORK_BCD *difference) {
    uint64_t borrow = 0;
    for (int i = rows.words - 1; i >= 0; --i)
        store_digit_word(difference->digits + i * WORD_DIGITS,
                         subtract_digit_words(rows.left_word(i), rows.right_word(i), &borrow));
}

/// For rows with digits above 9: a sum gives its tenth to the place before it.
void add_each_digit(const ALIGNED_ROWS &rows, DWORK_BCD *sum) {
    memset(sum->digits, 0, static_cast<size_t>(rows.words) * WORD_DIGITS);
    int carry = 0;
    for (int i = DWORK_BCD::CARRY + rows.prec; i > DWORK_BCD::CARRY; --i) {
        const int total = rows.left[i] + rows.right[i] + carry;
        sum->digits[i] = static_cast<uint8_t>(total % 10);
        carry = total / 10;
    }
    sum->data()[0] =
        static_cast<uint8_t>(rows.left[DWORK_BCD::CARRY] + rows.right[DWORK_BCD::CARRY] + carry);
}

/// The same for differences. A place lends one and never more, and a difference
/// of 10 and more keeps its last digit alone.
void subtract_each_digit(const ALIGNED_ROWS &rows, DWORK_BCD *difference) {
    memset(difference->digits, 0, static_cast<size_t>(rows.words) * WORD_DIGITS);
    int borrow = 0;
    for (int i = DWORK_BCD::CARRY + rows.prec; i >= DWORK_BCD::CARRY; --i) {
        const int raised = rows.left[i] + 10 - rows.right[i] + borrow;
        difference->digits[i] = static_cast<uint8_t>((raised + 1000) % 10);
        borrow = raised < 10 ? -1 : 0;
    }
}

// ---- Limbs -----------------------------------------------------------------------

constexpr uint64_t LIMB_BASE = 100000000;
constexpr int WORK_LIMBS = BCD_WORK_DIGITS / WORD_DIGITS;
constexpr int PRODUCT_LIMBS = 2 * WORK_LIMBS;

/// Eight digits as a number; digit_word_of turns it back.
uint64_t limb_of(uint64_t word) {
    const uint64_t pairs = ((word >> 8) & 0x00FF00FF00FF00FF) * 10 + (word & 0x00FF00FF00FF00FF);
    const uint64_t fours =
        ((pairs >> 16) & 0x0000FFFF0000FFFF) * 100 + (pairs & 0x0000FFFF0000FFFF);
    return (fours >> 32) * 10000 + (fours & 0xFFFFFFFF);
}

/// The digits of an operand from data[1], eight a limb, zero-filled at the end.
struct LIMBS {
    uint64_t limb[WORK_LIMBS];
    int count;
    bool proper;

    explicit LIMBS(const BCD_OPERAND &operand)
        : count((operand.prec + WORD_DIGITS - 1) / WORD_DIGITS) {
        uint64_t odd = 0;
        for (int i = 0; i < count; ++i) {
            // The record has room for whole words, so this stays within it.
            uint64_t word = load_digit_word(operand.data + 1 + i * WORD_DIGITS);
            const int used = operand.prec - i * WORD_DIGITS;
            if (used < WORD_DIGITS)
                word &= ~uint64_t{0} << (8 * (WORD_DIGITS - used));
            odd |= odd_digits(word);
            limb[i] = limb_of(word);
        }
        proper = odd == 0;
    }
};

static_assert(OAK_BCD_MAX_DIGITS % WORD_DIGITS == 0 && BCD_WORK_DIGITS % WORD_DIGITS == 0);

/// The digits of l times those of r. A column is a sum of at most five products
/// below 10^16 and a carry, which 64 bits hold.
void multiply_limbs(const LIMBS &l, const LIMBS &r, DWORK_BCD *product) {
    uint64_t column[PRODUCT_LIMBS] = {};
    for (int i = 0; i < l.count; ++i)
        for (int j = 0; j < r.count; ++j)
            column[i + j + 1] += l.limb[i] * r.limb[j];
    uint64_t carry = 0;
    uint8_t *digits = product->digits + WORD_DIGITS;
    for (int i = l.count + r.count - 1; i >= 0; --i) {
        const uint64_t total = column[i] + carry;
        carry = total / LIMB_BASE;
        store_digit_word(digits + i * WORD_DIGITS,
                         digit_word_of(static_cast<uint32_t>(total % LIMB_BASE)));
    }
    memset(product->digits, 0, WORD_DIGITS);
}

/// Whether an operand is normalized and has digits from 0 to 9 alone.
bool is_clean(const BCD_OPERAND &operand) {
    return has_first_digit(operand) && LIMBS(operand).proper;
}

/// For digits above 9: rows of the schoolbook, a carry at a time.
void multiply_each_digit(const BCD_OPERAND &l, const BCD_OPERAND &r, DWORK_BCD *product) {
    memset(product->digits, 0, (PRODUCT_LIMBS + 1) * WORD_DIGITS);
    uint8_t *work = product->data();
    for (int i = l.prec; i >= 1; --i) {
        if (l.data[i] == 0)
            continue;
        int carry = 0;
        for (int j = r.prec; j >= 1; --j) {
            const int total = l.data[i] * r.data[j] + work[i + j] + carry;
            work[i + j] = static_cast<uint8_t>(total % 10);
            carry = total / 10;
        }
        work[i] = static_cast<uint8_t>(carry);
    }
}

// ---- Fixed-point numbers of the reciprocal -----------------------------------------

/// A number from 0 to 99999999 with 40 places: limb[0] before the point, five
/// limbs behind it.
struct FIXED {
    static constexpr int LIMBS_USED = 1 + WORK_LIMBS;
    uint64_t limb[LIMBS_USED] = {};

    bool operator==(const FIXED &) const = default;
    bool is_one() const { return *this == FIXED{{1}}; }
};

/// a * b, cut to 40 places.
FIXED multiply(const FIXED &a, const FIXED &b) {
    constexpr int LAST = FIXED::LIMBS_USED - 1;
    uint64_t column[2 * LAST + 1] = {};
    int first = 0;
    int last = LAST;
    while (first < LAST && b.limb[first] == 0)
        ++first;
    while (last > first && b.limb[last] == 0)
        --last;
    for (int i = 0; i <= LAST; ++i)
        if (a.limb[i] != 0)
            for (int j = first; j <= last; ++j)
                column[i + j] += a.limb[i] * b.limb[j];
    FIXED product;
    uint64_t carry = 0;
    for (int i = 2 * LAST; i >= 0; --i) {
        const uint64_t total = column[i] + carry;
        carry = total / LIMB_BASE;
        if (i <= LAST)
            product.limb[i] = total % LIMB_BASE;
    }
    return product;
}

FIXED add(const FIXED &a, const FIXED &b) {
    FIXED sum;
    uint64_t carry = 0;
    for (int i = FIXED::LIMBS_USED - 1; i >= 0; --i) {
        const uint64_t total = a.limb[i] + b.limb[i] + carry;
        carry = total >= LIMB_BASE;
        sum.limb[i] = total - carry * LIMB_BASE;
    }
    return sum;
}

/// a - b for b not above a.
FIXED subtract(const FIXED &a, const FIXED &b) {
    FIXED difference;
    uint64_t borrow = 0;
    for (int i = FIXED::LIMBS_USED - 1; i >= 0; --i) {
        const uint64_t subtrahend = b.limb[i] + borrow;
        borrow = a.limb[i] < subtrahend;
        difference.limb[i] = a.limb[i] + borrow * LIMB_BASE - subtrahend;
    }
    return difference;
}

/// Cuts to 40 digits: one place goes for each digit before the point.
FIXED cut_to_work_digits(FIXED number) {
    uint64_t &last = number.limb[FIXED::LIMBS_USED - 1];
    if (number.limb[0] >= 10)
        last -= last % 100;
    else if (number.limb[0] >= 1)
        last -= last % 10;
    return number;
}

/// The digits as a fraction: 0.d1d2...d40.
FIXED fixed_of(const WORK_BCD &work) {
    const LIMBS limbs(&work);
    FIXED number;
    std::copy(limbs.limb, limbs.limb + limbs.count, number.limb + 1);
    return number;
}

/// The seed for the first two digits of a divisor.
FIXED seed_for(const WORK_BCD &divisor) {
    const X0_LOOKUP &row =
        x0_start[static_cast<size_t>(divisor.data[1] * 10 + divisor.data[2] - SEED_FIRST)];
    FIXED seed;
    seed.limb[0] = row.data[0];
    for (int i = 1; i < SEED_DIGITS; ++i)
        seed.limb[1] = seed.limb[1] * 10 + row.data[i];
    seed.limb[1] *= 100; // six places in a limb of eight
    return seed;
}

/// A FIXED as raw digits, its point behind the eighth.
void raw_digits_of(const FIXED &number, DWORK_BCD *raw) {
    raw->prec = FIXED::LIMBS_USED * WORD_DIGITS;
    raw->exp = WORD_DIGITS;
    memset(raw->digits, 0, WORD_DIGITS);
    for (int i = 0; i < FIXED::LIMBS_USED; ++i)
        store_digit_word(raw->digits + (i + 1) * WORD_DIGITS,
                         digit_word_of(static_cast<uint32_t>(number.limb[i])));
}

/// 1 / a for a in [0.1, 1) by Newton's x + x * (1 - x * a), each intermediate cut
/// to 40 digits, until x is stable. The last sum is handed out before its cut,
/// since trimming it counts digits. `flags` are those of a, which x takes over
/// with the first sum; any but BCD_FLAG_PRECISION end the loop there.
///
/// It ends. x * a is at most 1 after the first sum, but for the last of its 40
/// digits, so from there x never falls, is bounded by 1 / a and its last digit,
/// and has a last digit to rise by. It ends fast: the seed errs by less than 1
/// in 20 and each step squares the error, which is below 10^-40 after six; the
/// bound on the loop is for what no proof foresees.
FIXED newton_reciprocal(const WORK_BCD &divisor, uint8_t *flags) {
    constexpr int STEPS_MAX = 64;
    const FIXED a = fixed_of(divisor);
    const FIXED one{{1}};
    FIXED sum = seed_for(divisor);
    FIXED x = sum;
    *flags = 0;
    for (int step = 0; step < STEPS_MAX && (*flags & ~BCD_FLAG_PRECISION) == 0; ++step) {
        const FIXED product = cut_to_work_digits(multiply(x, a));
        if (product == one)
            break;
        const bool too_large = product.limb[0] != 0;
        const FIXED error = too_large ? subtract(product, one) : subtract(one, product);
        const FIXED change = multiply(x, error);
        const FIXED next_sum = too_large ? subtract(x, change) : add(x, change);
        const FIXED next = cut_to_work_digits(next_sum);
        if (next == x)
            break;
        sum = next_sum;
        x = next;
        *flags = divisor.flags;
    }
    return sum;
}

// ---- Records ---------------------------------------------------------------------

constexpr WORK_BCD work_constant(const char *digits, int8_t exp) {
    WORK_BCD work{0, exp, 0, 1, {}};
    while (digits[work.prec] != '\0') {
        work.data[work.prec + 1] = static_cast<uint8_t>(digits[work.prec] - '0');
        ++work.prec;
    }
    work.flags = work.prec == BCD_WORK_DIGITS ? BCD_FLAG_PRECISION : 0;
    return work;
}

int8_t sign_product(int8_t l, int8_t r) {
    return static_cast<int8_t>(l * r);
}

int8_t opposite(int8_t sign) {
    return static_cast<int8_t>(-sign);
}

uint8_t joined_flags(const BCD_OPERAND &l, const BCD_OPERAND &r) {
    return static_cast<uint8_t>(l.flags | r.flags);
}

bool either_is_fatal(const BCD_OPERAND &l, const BCD_OPERAND &r) {
    return l.is_fatal() || r.is_fatal();
}

void set_one(OAK_BCD_T *bcd) {
    bcd->exp = 1;
    bcd->data[0] = 0;
    bcd->data[1] = 1;
    bcd_set_digits_in_use(bcd, 1);
}

/// Adds 1 at a digit and carries towards the front.
void increment_digit(uint8_t *data, int index) {
    for (; index > 0 && data[index] >= 9; --index)
        data[index] = static_cast<uint8_t>(data[index] - 9);
    ++data[index];
}

/// An operand of a record that may be none: digits past the record do not exist.
BCD_OPERAND bounded_operand(const OAK_BCD_T *bcd) {
    BCD_OPERAND operand(bcd);
    operand.prec = std::min(operand.prec, BCD_DIGITS);
    return operand;
}

/// The shape in which +0 and -0 are one value.
bool is_zero_shape(const OAK_BCD_T &bcd) {
    return bcd.prec == 0 && bcd.exp == 0 && bcd.data[0] == 0;
}

// ---- Rounding ----------------------------------------------------------------------

/// Whether cutting a trimmed value to `keep` digits adds 1 to the last of them.
bool rounds_up(const WORK_BCD &work, int keep, OAK_BCD_ROUNDING_MODE mode) {
    const uint8_t dropped = work.data[keep + 1];
    switch (mode) {
        case OAK_BCD_ROUND_NEAREST_TIES_TO_EVEN:
            if (dropped == 5 && work.prec == keep + 1)
                return work.data[keep] % 2 == 1;
            return dropped >= 5;
        case OAK_BCD_ROUND_NEAREST_TIES_AWAY_FROM_ZERO:
            return dropped >= 5;
        case OAK_BCD_ROUND_UP:
            return work.sign == 1;
        case OAK_BCD_ROUND_DOWN:
            return work.sign == -1;
        default:
            return false;
    }
}

void drop_digits(WORK_BCD *work, int keep, OAK_BCD_ROUNDING_MODE mode) {
    const bool up = rounds_up(*work, keep, mode);
    memset(work->data + keep + 1, 0, static_cast<size_t>(work->prec - keep));
    work->prec = static_cast<uint8_t>(keep);
    work->flags |= BCD_FLAG_PRECISION;
    if (up)
        increment_digit(work->data, keep);
}

/// Brings a value without fatal conditions into the public range: magnitudes
/// below 10^32, at most 32 digits and 32 places. A carry into the slot at the
/// front goes round once more. Below 10^-33 no digit is left to round, and the
/// value is zero in every mode with BCD_FLAG_PRECISION; a zero that rounding
/// makes of 10^-33 to 10^-32 goes through normalize_work and has no conditions.
void round_to_public(WORK_BCD *work, OAK_BCD_ROUNDING_MODE mode) {
    for (;;) {
        normalize_work(work);
        if (work->prec == 0) {
            work->sign = 1;
            work->exp = 0;
            return;
        }
        if (work->exp > BCD_DIGITS)
            return work_set_zero(work, work->flags | BCD_FLAG_OVERFLOW);
        if (work->exp < -BCD_DIGITS)
            return work_set_zero(work, work->flags | BCD_FLAG_PRECISION);
        const int keep = std::min<int>({work->prec, BCD_DIGITS, work->exp + BCD_DIGITS});
        if (keep == work->prec)
            return;
        drop_digits(work, keep, mode);
    }
}

// ---- Integers ----------------------------------------------------------------------

/// Cuts the fraction off.
void cut_fraction(OAK_BCD_T *bcd) {
    if (bcd->exp < 0) {
        bcd->exp = 0;
        bcd->sign = 1;
    }
    bcd_set_digits_in_use(bcd, bcd->exp);
    normalize(bcd);
}

/// Raises the magnitude to the next integer.
void raise_to_integer(OAK_BCD_T *bcd) {
    if (bcd->exp < 0)
        set_one(bcd);
    if (bcd->prec > bcd->exp)
        increment_digit(bcd->data, bcd->exp);
    bcd_set_digits_in_use(bcd, bcd->exp);
    normalize(bcd);
}

void ceiling_core(OAK_BCD_T *bcd) {
    bcd->sign > 0 ? raise_to_integer(bcd) : cut_fraction(bcd);
}

void floor_core(OAK_BCD_T *bcd) {
    bcd->sign < 0 ? raise_to_integer(bcd) : cut_fraction(bcd);
}

/// Ties away from zero, on purpose without a carry and with everything below 0.1
/// going to 1: callers rely on the results as they are.
void round_core(OAK_BCD_T *bcd) {
    if (bcd->exp < 0)
        set_one(bcd);
    const bool up = bcd->prec > bcd->exp && bcd->data[bcd->exp + 1] > 4;
    if (up)
        ++bcd->data[bcd->exp];
    bcd_set_digits_in_use(bcd, bcd->exp);
    if (bcd->exp == 0)
        normalize(bcd);
}

void change_sign_core(OAK_BCD_T *bcd) {
    bcd->sign = opposite(bcd->sign);
}

/// What ceiling, floor, round and change of sign have in common.
template <void (*core)(OAK_BCD_T *)>
OAK_RETCODE rewrite_in_place(const OAK_BCD_T *operand, OAK_BCD_T *result) {
    if (operand == nullptr || result == nullptr)
        return eINVNULLARG;
    if (!bcd_is_decimal(operand)) {
        bcd_set_zero(result);
        return eINVBCD;
    }
    if ((operand->flags & BCD_FLAG_FATAL) != 0)
        return bcd_retcode(operand->flags);
    OAK_BCD_T value;
    normalized_copy(&value, operand);
    core(&value);
    *result = value;
    return bcd_retcode(result->flags);
}

// ---- Fitting to a column -----------------------------------------------------------

/// The high digits of an integer part that is `excess` digits too long are lost.
/// Required as it is: one digit fewer than what is left is moved, so the last
/// place keeps what stood there (12345 in three places is 3 4 3), and where one
/// place or none is left nothing moves and `exp` stays.
void drop_high_digits(OAK_BCD_T *bcd, int excess) {
    const int left = bcd->prec - excess;
    if (left > 1) {
        memmove(bcd->data + 1, bcd->data + 1 + excess, static_cast<size_t>(left - 1));
        bcd->exp = static_cast<int8_t>(bcd->exp - excess);
    }
    bcd_set_digits_in_use(bcd, left);
}

/// Puts `zeros` leading zero places before data[1]; digits pushed past the record
/// are those that the scale cuts off.
void insert_leading_zeros(OAK_BCD_T *bcd, int zeros) {
    const int shift = std::min(zeros, BCD_DIGITS + 1);
    const int kept = std::min<int>(bcd->prec + 1, BCD_DIGITS + 1 - shift);
    memmove(bcd->data + shift, bcd->data, static_cast<size_t>(kept));
    memset(bcd->data, 0, static_cast<size_t>(shift));
    bcd->exp = static_cast<int8_t>(bcd->exp + zeros);
}

// ---- Native operands -----------------------------------------------------------------

OAK_RETCODE bcd_from_native(int64_t value, OAK_BCD_T *bcd) {
    return oak_bcdFromInt64(value, bcd);
}
OAK_RETCODE bcd_from_native(uint64_t value, OAK_BCD_T *bcd) {
    return oak_bcdFromUInt64(value, bcd);
}
OAK_RETCODE bcd_from_native(double value, OAK_BCD_T *bcd) {
    return oak_bcdFromDouble(value, bcd);
}
OAK_RETCODE bcd_from_native(int32_t value, OAK_BCD_T *bcd) {
    return bcd_from_native(int64_t{value}, bcd);
}
OAK_RETCODE bcd_from_native(uint32_t value, OAK_BCD_T *bcd) {
    return bcd_from_native(uint64_t{value}, bcd);
}

using BINARY_OPERATION = OAK_RETCODE (*)(const OAK_BCD_T *, const OAK_BCD_T *,
                                         OAK_BCD_ROUNDING_MODE, OAK_BCD_T *);

/// An operation with a native number on one side. An error of its conversion is
/// returned as it stands; a loss of precision there does not stop the operation.
template <BINARY_OPERATION operation, typename Native>
OAK_RETCODE native_on_right(const OAK_BCD_T *l, Native r, OAK_BCD_ROUNDING_MODE mode,
                            OAK_BCD_T *res) {
    OAK_BCD_T right;
    const OAK_RETCODE rc = bcd_from_native(r, &right);
    return rc < sOKAY ? rc : operation(l, &right, mode, res);
}

template <BINARY_OPERATION operation, typename Native>
OAK_RETCODE native_on_left(Native l, const OAK_BCD_T *r, OAK_BCD_ROUNDING_MODE mode,
                           OAK_BCD_T *res) {
    OAK_BCD_T left;
    const OAK_RETCODE rc = bcd_from_native(l, &left);
    return rc < sOKAY ? rc : operation(&left, r, mode, res);
}

} // namespace

// ---- Constants ---------------------------------------------------------------------

constinit const WORK_BCD c_0 = work_constant("", 0);
constinit const WORK_BCD c_1_2 = work_constant("5", 0);
constinit const WORK_BCD c_1 = work_constant("1", 1);
constinit const WORK_BCD c_2 = work_constant("2", 1);
constinit const WORK_BCD c_e = work_constant("2718281828459045235360287471352662497757", 1);
constinit const WORK_BCD c_2_3 = work_constant("6666666666666666666666666666666666666667", 0);
constinit const WORK_BCD c_4_3 = work_constant("1333333333333333333333333333333333333333", 1);
constinit const WORK_BCD c_ln2 = work_constant("6931471805599453094172321214581765680755", 0);
constinit const WORK_BCD c_ln10 = work_constant("2302585092994045684017991454684364207601", 1);
constinit const WORK_BCD c_1_ln10 = work_constant("4342944819032518276511289189166050822944", 0);
constinit const WORK_BCD c_pi = work_constant("3141592653589793238462643383279502884197", 1);
constinit const WORK_BCD c_2pi = work_constant("6283185307179586476925286766559005768394", 1);

// ---- Conditions and results ----------------------------------------------------------

OAK_RETCODE bcd_retcode(uint8_t flags) {
    if ((flags & BCD_FLAG_NOMEM) != 0)
        return eNOMEMORY;
    if ((flags & BCD_FLAG_DIVBY0) != 0)
        return eDIVBY0;
    if ((flags & BCD_FLAG_NAN) != 0)
        return eNOTANUMBER;
    if ((flags & BCD_FLAG_OVERFLOW) != 0)
        return eRANGE;
    if ((flags & BCD_FLAG_PRECISION) != 0)
        return sPRECISIONLOSS;
    if ((flags & BCD_FLAG_UNDERFLOW) != 0)
        return sUNDERFLOW;
    return sOKAY;
}

bool bcd_is_decimal(const OAK_BCD_T *bcd) {
    return bcd->prec <= BCD_DIGITS && bcd->exp >= -BCD_EXP_LIMIT && bcd->exp <= BCD_EXP_LIMIT;
}

void bcd_set_digits_in_use(OAK_BCD_T *bcd, int count) {
    count = std::clamp(count, 0, BCD_DIGITS);
    bcd->prec = static_cast<uint8_t>(count);
    memset(bcd->data + 1 + count, 0, static_cast<size_t>(BCD_DIGITS - count));
}

void bcd_set_zero(OAK_BCD_T *bcd, int flags) {
    *bcd = OAK_BCD_T{};
    bcd->sign = 1;
    bcd->flags = static_cast<uint8_t>(flags);
}

void work_set_zero(WORK_BCD *work, int flags) {
    *work = WORK_BCD{};
    work->sign = 1;
    work->flags = static_cast<uint8_t>(flags);
}

void normalize_res(const DWORK_BCD *work, WORK_BCD *res) {
    const uint8_t flags = work->flags;
    const int words = (DWORK_BCD::CARRY + work->prec) / WORD_DIGITS + 1;
    int first_word = 0;
    uint64_t word = load_digit_word(work->digits);
    while (word == 0 && ++first_word < words)
        word = load_digit_word(work->digits + first_word * WORD_DIGITS);
    if (word == 0)
        return work_set_zero(res, flags);
    const int lead = first_word * WORD_DIGITS + leading_zero_digits(word) - DWORK_BCD::CARRY;
    int last_word = words - 1;
    while ((word = load_digit_word(work->digits + last_word * WORD_DIGITS)) == 0)
        --last_word;
    const int last =
        last_word * WORD_DIGITS + WORD_DIGITS - 1 - trailing_zero_digits(word) - DWORK_BCD::CARRY;

    const int stripped = work->prec > work->exp ? std::max(last, work->exp) : work->prec;
    const int exp = work->exp + 1 - lead;
    int count = std::min(stripped + 1 - lead, BCD_WORK_DIGITS);
    if (count - exp > BCD_WORK_DIGITS)
        count = std::max(exp + BCD_WORK_DIGITS, 0);
    if (exp > count)
        return work_set_zero(res, flags | BCD_FLAG_OVERFLOW);
    if (count == 0)
        return work_set_zero(res, flags);
    *res = WORK_BCD{static_cast<uint8_t>(count), static_cast<int8_t>(exp), flags, work->sign, {}};
    memcpy(res->data + 1, work->data() + lead, static_cast<size_t>(count));
}

void normalize_work(WORK_BCD *res) {
    int prec = res->prec;
    while (prec > 0 && prec > res->exp && res->data[prec] == 0)
        --prec;
    int lead = 0;
    while (lead <= prec && res->data[lead] == 0)
        ++lead;
    if (lead > prec)
        return work_set_zero(res);
    const int count = std::min(prec + 1 - lead, BCD_WORK_DIGITS);
    const int exp = res->exp + 1 - lead;
    if (exp > count)
        return work_set_zero(res, res->flags | BCD_FLAG_OVERFLOW);
    if (lead != 1) {
        memmove(res->data + 1, res->data + lead, static_cast<size_t>(count));
        res->data[0] = 0;
        memset(res->data + 1 + count, 0, static_cast<size_t>(BCD_WORK_DIGITS - count));
    }
    res->prec = static_cast<uint8_t>(count);
    res->exp = static_cast<int8_t>(exp);
}

OAK_RETCODE assign_result(WORK_BCD *work, OAK_BCD_ROUNDING_MODE mode, OAK_BCD_T *result) {
    if ((work->flags & BCD_FLAG_FATAL) == 0)
        round_to_public(work, mode);
    if ((work->flags & BCD_FLAG_NOMEM) != 0)
        return eNOMEMORY;
    const int prec = std::min<int>(work->prec, BCD_DIGITS);
    *result = OAK_BCD_T{static_cast<uint8_t>(prec), work->exp, work->flags, work->sign, {}};
    memcpy(result->data, work->data, static_cast<size_t>(prec) + 1);
    return bcd_retcode(work->flags);
}

// ---- Digits --------------------------------------------------------------------------

int ucompare(const BCD_OPERAND &l, const BCD_OPERAND &r) {
    if (l.data == r.data)
        return 0;
    if (l.exp == r.exp)
        return compare_aligned(l, r);
    if (has_first_digit(l) && has_first_digit(r))
        return l.exp < r.exp ? -1 : 1;
    return compare_places(l, r);
}

void add_digits(const BCD_OPERAND &l, const BCD_OPERAND &r, WORK_BCD *res) {
    const ALIGNED_ROWS rows(l, r);
    DWORK_BCD sum;
    sum.prec = rows.prec;
    sum.exp = rows.exp;
    sum.flags = joined_flags(l, r);
    sum.sign = l.sign;
    if (rows.are_proper())
        add_words(rows, &sum);
    else
        add_each_digit(rows, &sum);
    normalize_res(&sum, res);
}

void sub_digits(const BCD_OPERAND &l, const BCD_OPERAND &r, WORK_BCD *res) {
    ALIGNED_ROWS rows(l, r);
    const int order = rows.compare();
    if (order == 0)
        return work_set_zero(res, joined_flags(l, r));
    if (order < 0)
        rows.swap();
    DWORK_BCD difference;
    difference.prec = rows.prec;
    difference.exp = rows.exp;
    difference.flags = joined_flags(l, r);
    difference.sign = order < 0 ? opposite(l.sign) : l.sign;
    if (rows.are_proper())
        subtract_words(rows, &difference);
    else
        subtract_each_digit(rows, &difference);
    normalize_res(&difference, res);
}

// ---- Operations on work values ---------------------------------------------------------

void work_copy(const BCD_OPERAND &src, WORK_BCD *res) {
    WORK_BCD copy{
        static_cast<uint8_t>(src.prec), static_cast<int8_t>(src.exp), src.flags, src.sign, {}};
    memcpy(copy.data, src.data, static_cast<size_t>(src.prec) + 1);
    *res = copy;
}

void work_clean_copy(const BCD_OPERAND &src, WORK_BCD *res) {
    if (is_clean(src))
        return work_copy(src, res);
    // The last places first; whatever the digits are, their surplus needs at most
    // three places before the carry slot.
    constexpr int ROOM = 3;
    uint8_t digits[ROOM + 1 + BCD_WORK_DIGITS];
    const int end = ROOM + 1 + src.prec;
    int surplus = 0;
    for (int i = end - 1; i >= 0; --i) {
        surplus += i >= ROOM ? src.data[i - ROOM] : 0;
        digits[i] = static_cast<uint8_t>(surplus % 10);
        surplus /= 10;
    }
    int first = 0;
    while (first < end && digits[first] == 0)
        ++first;
    if (first == end)
        return work_set_zero(res, src.flags);
    const int count = std::min(end - first, BCD_WORK_DIGITS);
    const int exp = src.exp + ROOM + 1 - first;
    *res = WORK_BCD{static_cast<uint8_t>(count), static_cast<int8_t>(exp), src.flags, src.sign, {}};
    memcpy(res->data + 1, digits + first, static_cast<size_t>(count));
}

void work_add(const BCD_OPERAND &l, const BCD_OPERAND &r, WORK_BCD *res) {
    if (either_is_fatal(l, r))
        return work_set_zero(res, joined_flags(l, r));
    l.sign == r.sign ? add_digits(l, r, res) : sub_digits(l, r, res);
}

void work_sub(const BCD_OPERAND &l, const BCD_OPERAND &r, WORK_BCD *res) {
    if (either_is_fatal(l, r))
        return work_set_zero(res, joined_flags(l, r));
    l.sign == r.sign ? sub_digits(l, r, res) : add_digits(l, r, res);
}

void work_mult(const BCD_OPERAND &l, const BCD_OPERAND &r, WORK_BCD *res) {
    if (either_is_fatal(l, r) || l.prec == 0 || r.prec == 0)
        return work_set_zero(res, joined_flags(l, r));
    DWORK_BCD product;
    product.prec = l.prec + r.prec;
    product.exp = l.exp + r.exp;
    product.flags = joined_flags(l, r);
    product.sign = sign_product(l.sign, r.sign);
    const LIMBS left(l);
    const LIMBS right(r);
    if (left.proper && right.proper)
        multiply_limbs(left, right, &product);
    else
        multiply_each_digit(l, r, &product);
    normalize_res(&product, res);
}

void work_reciprocal(const BCD_OPERAND &bcd, WORK_BCD *res) {
    if (bcd.is_fatal())
        return work_set_zero(res, bcd.flags);
    WORK_BCD divisor;
    work_clean_copy(bcd, &divisor);
    if (divisor.prec == 0)
        return work_set_zero(res, BCD_FLAG_DIVBY0);
    DWORK_BCD raw;
    raw_digits_of(newton_reciprocal(divisor, &raw.flags), &raw);
    raw.sign = divisor.sign;
    normalize_res(&raw, res);
    res->exp = static_cast<int8_t>(res->exp - divisor.exp);
    // Digits before the point are kept in every value: 1 / 0.0125 is 80.
    if (res->exp > res->prec)
        res->prec = static_cast<uint8_t>(std::min<int>(res->exp, BCD_WORK_DIGITS));
}

void work_div(const BCD_OPERAND &l, const BCD_OPERAND &r, WORK_BCD *res) {
    if (either_is_fatal(l, r))
        return work_set_zero(res, joined_flags(l, r));
    WORK_BCD reciprocal;
    work_reciprocal(r, &reciprocal);
    WORK_BCD dividend;
    work_clean_copy(l, &dividend);
    work_mult(&dividend, &reciprocal, res);
}

// ---- Public records --------------------------------------------------------------------

void normalize(OAK_BCD_T *bcd) {
    int lead = 0;
    while (lead <= bcd->prec && bcd->data[lead] == 0)
        ++lead;
    if (lead > bcd->prec)
        return bcd_set_zero(bcd);
    if (lead == 1)
        return;
    const int count = std::min(bcd->prec + 1 - lead, BCD_DIGITS);
    if (lead == 0 && bcd->prec == BCD_DIGITS && bcd->data[BCD_DIGITS] != 0)
        bcd->flags |= BCD_FLAG_PRECISION;
    memmove(bcd->data + 1, bcd->data + lead, static_cast<size_t>(count));
    bcd->data[0] = 0;
    bcd->exp = static_cast<int8_t>(bcd->exp + 1 - lead);
    bcd_set_digits_in_use(bcd, count);
}

void normalized_copy(OAK_BCD_T *dst, const OAK_BCD_T *src) {
    oak_bcdCopy(src, dst);
    normalize(dst);
}

void clean_copy(OAK_BCD_T *dst, const OAK_BCD_T *src) {
    normalized_copy(dst, src);
    if (std::none_of(dst->data, dst->data + dst->prec + 1, [](uint8_t d) { return d > 9; }))
        return;
    WORK_BCD carried;
    work_clean_copy(dst, &carried);
    memcpy(dst->data, carried.data, sizeof dst->data);
    dst->exp = carried.exp;
    bcd_set_digits_in_use(dst, carried.prec);
}

// ---- Bounds and conditions ---------------------------------------------------------------

uint8_t oak_bcdMaxprec(void) {
    return BCD_DIGITS;
}

uint8_t oak_bcdMaxscale(void) {
    return BCD_DIGITS;
}

OAK_RETCODE oak_bcdValidate(const OAK_BCD_T *bcd) {
    if (bcd == nullptr)
        return eINVNULLARG;
    if (bcd->prec > BCD_DIGITS)
        return eINVALID;
    const uint8_t *end = bcd->data + bcd->prec + 1;
    return std::any_of(bcd->data, end, [](uint8_t d) { return d > 9; }) ? eINVALID : sOKAY;
}

void oak_bcdCopy(const OAK_BCD_T *src, OAK_BCD_T *dest) {
    *dest = *src;
    if (src->prec <= BCD_DIGITS)
        bcd_set_digits_in_use(dest, src->prec);
}

// ---- Arithmetic --------------------------------------------------------------------------

OAK_RETCODE oak_bcdAdd(const OAK_BCD_T *l, const OAK_BCD_T *r, OAK_BCD_ROUNDING_MODE mode,
                       OAK_BCD_T *res) {
    return bcd_binary_operation<work_add>(l, r, mode, res);
}

OAK_RETCODE oak_bcdSub(const OAK_BCD_T *l, const OAK_BCD_T *r, OAK_BCD_ROUNDING_MODE mode,
                       OAK_BCD_T *res) {
    return bcd_binary_operation<work_sub>(l, r, mode, res);
}

OAK_RETCODE oak_bcdMult(const OAK_BCD_T *l, const OAK_BCD_T *r, OAK_BCD_ROUNDING_MODE mode,
                        OAK_BCD_T *res) {
    return bcd_binary_operation<work_mult>(l, r, mode, res);
}

OAK_RETCODE oak_bcdDiv(const OAK_BCD_T *l, const OAK_BCD_T *r, OAK_BCD_ROUNDING_MODE mode,
                       OAK_BCD_T *res) {
    return bcd_binary_operation<work_div>(l, r, mode, res);
}

OAK_RETCODE oak_bcdReciprocal(const OAK_BCD_T *bcd, OAK_BCD_ROUNDING_MODE mode, OAK_BCD_T *res) {
    return bcd_unary_operation<work_reciprocal>(bcd, mode, res);
}

// ---- Arithmetic with native numbers --------------------------------------------------------

#define NATIVE_RIGHT(name, core, type)                                                             \
    OAK_RETCODE name(const OAK_BCD_T *l, type r, OAK_BCD_ROUNDING_MODE mode, OAK_BCD_T *res) {     \
        return native_on_right<core>(l, r, mode, res);                                             \
    }
#define NATIVE_LEFT(name, core, type)                                                              \
    OAK_RETCODE name(type l, const OAK_BCD_T *r, OAK_BCD_ROUNDING_MODE mode, OAK_BCD_T *res) {     \
        return native_on_left<core>(l, r, mode, res);                                              \
    }
#define NATIVE_FORMS(suffix, type)                                                                 \
    NATIVE_RIGHT(oak_bcdAdd##suffix, oak_bcdAdd, type)                                             \
    NATIVE_RIGHT(oak_bcdSub##suffix, oak_bcdSub, type)                                             \
    NATIVE_LEFT(oak_bcdSubFrom##suffix, oak_bcdSub, type)                                          \
    NATIVE_RIGHT(oak_bcdMult##suffix, oak_bcdMult, type)                                           \
    NATIVE_RIGHT(oak_bcdDivBy##suffix, oak_bcdDiv, type)                                           \
    NATIVE_LEFT(oak_bcdDiv##suffix, oak_bcdDiv, type)

OAK_BCD_NATIVE_TYPES(NATIVE_FORMS)

// ---- Signs, integers and order -------------------------------------------------------------

int16_t oak_bcdSign(const OAK_BCD_T *bcd) {
    return bcd->prec == 0 ? int16_t{0} : bcd->sign;
}

OAK_BOOL_T oak_bcdIsZero(const OAK_BCD_T *bcd) {
    const uint8_t *end = bcd->data + std::min<int>(bcd->prec, BCD_DIGITS) + 1;
    return std::all_of(bcd->data, end, [](uint8_t d) { return d == 0; }) ? OAK_TRUE : OAK_FALSE;
}

OAK_COMPARE oak_bcdCompare(const OAK_BCD_T *left, const OAK_BCD_T *right) {
    if (left->sign == right->sign) {
        const int order = ucompare(bounded_operand(left), bounded_operand(right));
        return static_cast<OAK_COMPARE>(left->sign < 0 ? -order : order);
    }
    if (is_zero_shape(*left) && is_zero_shape(*right))
        return OAK_EQ;
    return left->sign < right->sign ? OAK_LT : OAK_GT;
}

OAK_RETCODE oak_bcdChgSign(const OAK_BCD_T *operand, OAK_BCD_T *result) {
    return rewrite_in_place<change_sign_core>(operand, result);
}

OAK_RETCODE oak_bcdCeiling(const OAK_BCD_T *operand, OAK_BCD_T *result) {
    return rewrite_in_place<ceiling_core>(operand, result);
}

OAK_RETCODE oak_bcdFloor(const OAK_BCD_T *operand, OAK_BCD_T *result) {
    return rewrite_in_place<floor_core>(operand, result);
}

OAK_RETCODE oak_bcdRound(const OAK_BCD_T *operand, OAK_BCD_T *result) {
    return rewrite_in_place<round_core>(operand, result);
}

// ---- Fitting to a column -------------------------------------------------------------------

OAK_RETCODE oak_bcdAdjust(OAK_BCD_T *bcd, uint8_t prec, uint8_t scale) {
    if (bcd == nullptr)
        return eINVNULLARG;
    if (!bcd_is_decimal(bcd)) {
        bcd_set_zero(bcd);
        return eINVBCD;
    }
    if (prec > BCD_DIGITS) {
        bcd->flags = BCD_FLAG_OVERFLOW;
        return eRANGE;
    }
    // Places to add in front of and behind the digits; negative for places too many.
    const int leading = prec - scale - bcd->exp;
    const int trailing = scale - (bcd->prec - bcd->exp);
    bcd_set_digits_in_use(bcd, bcd->prec);
    if (leading < 0)
        drop_high_digits(bcd, -leading);
    else
        insert_leading_zeros(bcd, leading);
    bcd_set_digits_in_use(bcd, prec);
    bcd->flags = static_cast<uint8_t>((leading < 0 ? BCD_FLAG_OVERFLOW : 0) |
                                      (trailing < 0 ? BCD_FLAG_PRECISION : 0));
    return bcd_retcode(bcd->flags);
}
