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
// 64-bit word (bcd_words.h), and the inner loops never look at a single digit:
//
//   sums         the operands are laid into two rows of words, aligned at the
//                point, and added or subtracted eight digits at a time
//   products     each word becomes a number below 10^8, a limb; limbs are
//                multiplied column by column and turned back into words
//   reciprocals  run from the seed to the last step in binary integers that
//                count units of 10^-40 (bcd_fixed.h)
//
// All three give digit for digit what paper and pencil give: cuts fall on the same
// places, and no step is approximate. They need digits from 0 to 9. A record may
// hold others: oak_bcdRound leaves a digit 10, and a damaged record anything. Sums
// and products of those go a digit at a time (add_each_digit and its kin), where a
// digit too large gives its surplus to the next place, and where a subtraction
// drops it; reciprocals first carry the digits of a copy.
//
// What it costs. Nothing is allocated; a few records and two rows lie on the stack.
// A sum takes four words a row for 32 digits, a product 16 multiplications of limbs,
// a reciprocal five to seven steps of two products.
//
// The layers from below: operands as words; rows; products; the reciprocal; records;
// trimming and rounding; integers; operations on work values; operations on public
// decimals, with their forms for native operands.
#include "bcd_fixed.h"
#include "bcd_internal.h"
#include "bcd_words.h"

#include <algorithm>
#include <array>

using namespace bcd_words;

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

// ---- Operands as words -----------------------------------------------------------

constexpr int WORK_WORDS = BCD_WORK_DIGITS / WORD_DIGITS;
static_assert(OAK_BCD_MAX_DIGITS % WORD_DIGITS == 0 && BCD_WORK_DIGITS % WORD_DIGITS == 0);

/// Writes the digits from data[1] on as words, zeros behind `prec` in the last one,
/// and ors what odd digits they have into `odd`. Returns the count of words. A record
/// has room for whole words, so the loads stay within it.
[[gnu::always_inline]] inline int load_words(const BcdOperand &operand, uint64_t *words,
                                             uint64_t *odd) {
    const uint8_t *digits = operand.data + 1;
    const int prec = operand.prec;
    const int count = words_for(prec);
    uint64_t found = 0;
    for (int i = 0; i < count; ++i) {
        const int left = prec - i * WORD_DIGITS;
        const uint64_t word = load_word(digits + i * WORD_DIGITS);
        words[i] = left < WORD_DIGITS ? first_digits(word, left) : word;
        found |= odd_digits(words[i]);
    }
    *odd |= found;
    return count;
}

bool has_first_digit(const BcdOperand &operand) {
    return operand.prec > 0 && operand.data[0] == 0 && operand.data[1] != 0;
}

/// Whether an operand is normalized and has digits from 0 to 9 alone.
bool is_clean(const BcdOperand &operand) {
    uint64_t words[WORK_WORDS];
    uint64_t odd = 0;
    load_words(operand, words, &odd);
    return odd == 0 && has_first_digit(operand);
}

// ---- Order -------------------------------------------------------------------

/// Two operands of one exponent without a carry.
int compare_words(const BcdOperand &l, const BcdOperand &r) {
    if (l.prec >= WORD_DIGITS && r.prec >= WORD_DIGITS) { // which nearly always decides
        const uint64_t left = load_word(l.data + 1);
        const uint64_t right = load_word(r.data + 1);
        if (left != right)
            return left < right ? -1 : 1;
    }
    uint64_t left[WORK_WORDS] = {};
    uint64_t right[WORK_WORDS] = {};
    uint64_t odd = 0; // digits above 9 order as digits
    load_words(l, left, &odd);
    load_words(r, right, &odd);
    for (int i = 0; i < WORK_WORDS; ++i)
        if (left[i] != right[i])
            return left[i] < right[i] ? -1 : 1;
    return 0;
}

/// The digit at an index of an operand, 0 outside of it.
int digit_at(const BcdOperand &operand, int index) {
    return index >= 0 && index <= operand.prec ? operand.data[index] : 0;
}

/// Place by place from one before the longer integer part, which takes in the
/// carry slots, to the end of the longer fraction.
int compare_places(const BcdOperand &l, const BcdOperand &r) {
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

// ---- Two operands aligned at the point ----------------------------------------

/// How two operands lie under each other: digit i of one stands at place
/// i + (exp - operand.exp) of 0 to `prec`.
struct Alignment {
    int exp;
    int prec;

    Alignment(const BcdOperand &l, const BcdOperand &r)
        : exp(std::max(l.exp, r.exp)), prec(exp + std::max(l.prec - l.exp, r.prec - r.exp)) {}
};

constexpr int ROW_DIGITS = DWORK_BCD::DIGIT_WORDS * WORD_DIGITS;

// 127 is the largest exponent; 40 digits and the exponent -128 end 168 places
// behind the point.
static_assert(127 + 168 <= ROW_DIGITS);

void end_words(DWORK_BCD *raw, int words) {
    std::fill_n(raw->words + words, DWORK_BCD::ZERO_WORDS, 0);
}

void prepare_raw(const Alignment &alignment, uint8_t flags, int8_t sign, DWORK_BCD *raw) {
    raw->prec = alignment.prec;
    raw->exp = alignment.exp;
    raw->flags = flags;
    raw->sign = sign;
}

/// Rows of words, place 1 first. They serve operands of proper digits with nothing
/// in the carry slot; others make them improper.
class WordRows {
  public:
    const Alignment alignment;
    const int words;
    uint64_t left[DWORK_BCD::DIGIT_WORDS];
    uint64_t right[DWORK_BCD::DIGIT_WORDS];

    WordRows(const BcdOperand &l, const BcdOperand &r)
        : alignment(l, r), words(words_for(alignment.prec)) {
        place(l, left);
        place(r, right);
    }

    bool are_proper() const { return odd_ == 0; }

    int compare() const {
        for (int i = 0; i < words; ++i)
            if (left[i] != right[i])
                return left[i] < right[i] ? -1 : 1;
        return 0;
    }

  private:
    void place(const BcdOperand &operand, uint64_t *row) {
        odd_ |= operand.data[0];
        const int used = load_words(operand, row, &odd_);
        for (int i = used; i < words; ++i)
            row[i] = 0;
        if (const int offset = alignment.exp - operand.exp; offset != 0)
            move_back(row, words, offset);
    }

    uint64_t odd_ = 0;
};

void add_rows(const WordRows &rows, DWORK_BCD *sum) {
    uint64_t carry = 0;
    for (int i = rows.words - 1; i >= 0; --i)
        sum->words[i] = add_words(rows.left[i], rows.right[i], &carry);
    sum->carry = static_cast<uint8_t>(carry);
    end_words(sum, rows.words);
}

/// Subtracts the smaller row from the larger.
void subtract_rows(const WordRows &rows, bool from_right, DWORK_BCD *difference) {
    const uint64_t *larger = from_right ? rows.right : rows.left;
    const uint64_t *smaller = from_right ? rows.left : rows.right;
    uint64_t borrow = 0;
    for (int i = rows.words - 1; i >= 0; --i)
        difference->words[i] = subtract_words(larger[i], smaller[i], &borrow);
    difference->carry = 0;
    end_words(difference, rows.words);
}

// ---- The same a digit at a time --------------------------------------------------

/// Rows of digits, place 0 first, for all other operands.
struct DigitRows {
    const int prec;
    uint8_t left[ROW_DIGITS + 1] = {};
    uint8_t right[ROW_DIGITS + 1] = {};

    DigitRows(const BcdOperand &l, const BcdOperand &r) : prec(Alignment(l, r).prec) {
        place(l, Alignment(l, r).exp - l.exp, left);
        place(r, Alignment(l, r).exp - r.exp, right);
    }

  private:
    static void place(const BcdOperand &operand, int offset, uint8_t *row) {
        memcpy(row + offset, operand.data, static_cast<size_t>(operand.prec) + 1);
    }
};

/// Digits from place 0 on, in a row that is zero behind them, as raw words.
void take_digits(const uint8_t *digits, DWORK_BCD *raw) {
    const int words = words_for(raw->prec);
    raw->carry = digits[0];
    for (int i = 0; i < words; ++i)
        raw->words[i] = load_word(digits + 1 + i * WORD_DIGITS);
    end_words(raw, words);
}

/// A sum gives its tenth to the place before it.
void add_each_digit(const DigitRows &rows, DWORK_BCD *sum) {
    uint8_t digits[ROW_DIGITS + 1] = {};
    int carry = 0;
    for (int i = rows.prec; i >= 1; --i) {
        const int total = rows.left[i] + rows.right[i] + carry;
        digits[i] = static_cast<uint8_t>(total % 10);
        carry = total / 10;
    }
    digits[0] = static_cast<uint8_t>(rows.left[0] + rows.right[0] + carry);
    take_digits(digits, sum);
}

/// A place borrows one and never more, and a difference of 10 and more keeps its
/// last digit alone.
void subtract_each_digit(const DigitRows &rows, DWORK_BCD *difference) {
    constexpr int MANY_TENS = 1000; // so that no remainder is negative
    uint8_t digits[ROW_DIGITS + 1] = {};
    int borrow = 0;
    for (int i = rows.prec; i >= 0; --i) {
        const int raised = rows.left[i] + 10 - rows.right[i] + borrow;
        digits[i] = static_cast<uint8_t>((raised + MANY_TENS) % 10);
        borrow = raised < 10 ? -1 : 0;
    }
    take_digits(digits, difference);
}

/// Rows of the schoolbook. The last carry of a row is not carried on.
void multiply_each_digit(const BcdOperand &l, const BcdOperand &r, DWORK_BCD *product) {
    uint8_t work[2 * BCD_WORK_DIGITS + 1] = {};
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
    take_digits(work, product);
}

// ---- Products of limbs -------------------------------------------------------------

/// The digits of an operand from data[1] on as limbs, zero-filled at the end.
struct Limbs {
    uint64_t limb[WORK_WORDS];
    int count;
    bool proper;

    explicit Limbs(const BcdOperand &operand) {
        uint64_t odd = 0;
        count = load_words(operand, limb, &odd);
        proper = odd == 0;
        for (int i = 0; i < count; ++i)
            limb[i] = limb_of(limb[i]);
    }
};

/// The digits of l times those of r, column by column from the last. A column is a sum
/// of at most five products below 10^16 and a carry, which 64 bits hold.
void multiply_limbs(const Limbs &l, const Limbs &r, DWORK_BCD *product) {
    const int words = l.count + r.count;
    uint64_t total = 0;
    for (int i = words - 1; i > 0; --i) {
        const int last = std::min(i, l.count);
        for (int k = std::max(i - r.count, 0); k < last; ++k)
            total += l.limb[k] * r.limb[i - 1 - k];
        product->words[i] = word_of(total % LIMB_BASE);
        total /= LIMB_BASE;
    }
    product->words[0] = word_of(total);
    product->carry = 0;
    end_words(product, words);
}

// ---- The reciprocal ------------------------------------------------------------------

using bcd_fixed::Fixed;

/// The seed for the first two digits of a divisor.
Fixed seed_for(const WORK_BCD &divisor) {
    const X0_LOOKUP &row =
        x0_start[static_cast<size_t>(divisor.data[1] * 10 + divisor.data[2] - SEED_FIRST)];
    uint64_t tenth[WORK_WORDS] = {};
    for (int i = 0; i < SEED_DIGITS; ++i)
        tenth[0] = tenth[0] * 10 + row.data[i];
    tenth[0] *= 10; // seven digits in a limb of eight
    return bcd_fixed::ten_times(bcd_fixed::fraction_of(tenth));
}

Fixed fraction_of(const WORK_BCD &work) {
    Limbs limbs(&work);
    std::fill(limbs.limb + limbs.count, std::end(limbs.limb), 0);
    return bcd_fixed::fraction_of(limbs.limb);
}

/// A Fixed as raw digits, its point behind the first eight.
void take_fixed(const Fixed &number, DWORK_BCD *raw) {
    raw->prec = bcd_fixed::FIXED_LIMBS * WORD_DIGITS;
    raw->exp = WORD_DIGITS;
    raw->carry = 0;
    bcd_fixed::limbs_of(number, raw->words);
    for (int i = 0; i < bcd_fixed::FIXED_LIMBS; ++i)
        raw->words[i] = word_of(raw->words[i]);
    end_words(raw, bcd_fixed::FIXED_LIMBS);
}

/// 1 / a for a in [0.1, 1) by Newton's x + x * (1 - x * a), each intermediate cut
/// to 40 digits, until x is stable. The last sum is handed out before its cut,
/// since trimming it counts digits. `flags` are those of a, which x takes over
/// with the first sum; any but BCD_FLAG_PRECISION end the loop there.
///
/// It ends. After the first sum x * a exceeds 1 by less than a last digit, which the
/// cut takes away, so from there x never falls; it cannot pass 1 / a by more than a
/// last digit either, and can only rise by whole ones. It ends fast: the seed errs by
/// less than 1 in 20 and each step squares the error, which is below 10^-40 after
/// six. The bound on the loop is a promise to the reader.
Fixed newton_reciprocal(const WORK_BCD &divisor, uint8_t *flags) {
    using namespace bcd_fixed;
    constexpr int STEPS_MAX = 64;
    const Fixed a = ::fraction_of(divisor);
    Fixed sum = seed_for(divisor);
    Fixed x = sum;
    *flags = 0;
    for (int step = 0; step < STEPS_MAX && (*flags & ~BCD_FLAG_PRECISION) == 0; ++step) {
        const Fixed product = cut_to_40_digits(multiply(x, a));
        if (product == ONE)
            break;
        const bool too_large = is_below(ONE, product);
        const Fixed error = too_large ? subtract(product, ONE) : subtract(ONE, product);
        const Fixed change = multiply(x, error);
        const Fixed next_sum = too_large ? subtract(x, change) : add(x, change);
        const Fixed next = cut_to_40_digits(next_sum);
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

uint8_t joined_flags(const BcdOperand &l, const BcdOperand &r) {
    return static_cast<uint8_t>(l.flags | r.flags);
}

bool either_is_fatal(const BcdOperand &l, const BcdOperand &r) {
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
BcdOperand bounded_operand(const OAK_BCD_T *bcd) {
    BcdOperand operand(bcd);
    operand.prec = std::min(operand.prec, BCD_DIGITS);
    return operand;
}

/// The shape in which +0 and -0 are one value.
bool is_zero_shape(const OAK_BCD_T &bcd) {
    return bcd.prec == 0 && bcd.exp == 0 && bcd.data[0] == 0;
}

// ---- Trimming -----------------------------------------------------------------------

/// The first and the last digit that is not 0, from 0 for the carry to `prec`; for a
/// zero the first is behind the last.
struct RawSpan {
    int first;
    int last;
};

RawSpan find_span(const DWORK_BCD &work) {
    int end = words_for(work.prec);
    while (end > 0 && work.words[end - 1] == 0)
        --end;
    if (end == 0)
        return work.carry != 0 ? RawSpan{0, 0} : RawSpan{1, 0};
    const int last = end * WORD_DIGITS - trailing_zero_digits(work.words[end - 1]);
    if (work.carry != 0)
        return {0, last};
    int begin = 0;
    while (work.words[begin] == 0)
        ++begin;
    return {begin * WORD_DIGITS + 1 + leading_zero_digits(work.words[begin]), last};
}

/// Fills data[] of a work value with the digits from `first` on, 40 of them.
void copy_raw_digits(const DWORK_BCD &work, int first, WORK_BCD *res) {
    const int skipped = first - 1; // -1 where the carry becomes the first digit
    const int from = skipped & (WORD_DIGITS - 1);
    int source = (skipped - from) / WORD_DIGITS;
    uint64_t word = source < 0 ? work.carry : work.words[source];
    res->data[0] = 0;
    for (int i = 1; i <= BCD_WORK_DIGITS; i += WORD_DIGITS) {
        const uint64_t next = work.words[++source];
        store_word(res->data + i, digits_across(word, next, from));
        word = next;
    }
}

/// Whether nothing needs stripping or shifting.
bool is_trimmed(const WORK_BCD &work) {
    if (work.prec == 0 || work.data[0] != 0 || work.data[1] == 0)
        return false;
    return work.prec == work.exp || (work.prec > work.exp && work.data[work.prec] != 0);
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
    work_set_digits_in_use(work, keep);
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

using BinaryOperation = OAK_RETCODE (*)(const OAK_BCD_T *, const OAK_BCD_T *, OAK_BCD_ROUNDING_MODE,
                                        OAK_BCD_T *);

/// An operation with a native number on one side. An error of its conversion is
/// returned as it stands; a loss of precision there does not stop the operation.
template <BinaryOperation operation, typename Native>
OAK_RETCODE native_on_right(const OAK_BCD_T *l, Native r, OAK_BCD_ROUNDING_MODE mode,
                            OAK_BCD_T *res) {
    OAK_BCD_T right;
    const OAK_RETCODE rc = bcd_from_native(r, &right);
    return rc < sOKAY ? rc : operation(l, &right, mode, res);
}

template <BinaryOperation operation, typename Native>
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
    if (flags == 0)
        return sOKAY;
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

void work_set_digits_in_use(WORK_BCD *work, int count) {
    count = std::clamp(count, 0, BCD_WORK_DIGITS);
    work->prec = static_cast<uint8_t>(count);
    memset(work->data + 1 + count, 0, static_cast<size_t>(BCD_WORK_DIGITS - count));
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
    const RawSpan span = find_span(*work);
    const uint8_t flags = work->flags;
    if (span.first > span.last)
        return work_set_zero(res, flags);
    const int stripped = work->prec > work->exp ? std::max(span.last, work->exp) : work->prec;
    const int exp = work->exp + 1 - span.first;
    int count = std::min(stripped + 1 - span.first, BCD_WORK_DIGITS);
    if (count - exp > BCD_WORK_DIGITS)
        count = std::max(exp + BCD_WORK_DIGITS, 0);
    if (exp > count)
        return work_set_zero(res, flags | BCD_FLAG_OVERFLOW);
    if (count == 0)
        return work_set_zero(res, flags);
    res->prec = static_cast<uint8_t>(count);
    res->exp = static_cast<int8_t>(exp);
    res->flags = flags;
    res->sign = work->sign;
    copy_raw_digits(*work, span.first, res);
    if (count <= span.last - span.first) // digits were cut
        memset(res->data + 1 + count, 0, static_cast<size_t>(BCD_WORK_DIGITS - count));
}

void normalize_work(WORK_BCD *res) {
    if (is_trimmed(*res))
        return;
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
    if (lead != 1)
        memmove(res->data + 1, res->data + lead, static_cast<size_t>(count));
    res->data[0] = 0;
    res->exp = static_cast<int8_t>(exp);
    work_set_digits_in_use(res, count);
}

OAK_RETCODE assign_result(WORK_BCD *work, OAK_BCD_ROUNDING_MODE mode, OAK_BCD_T *result) {
    if ((work->flags & BCD_FLAG_FATAL) == 0)
        round_to_public(work, mode);
    if ((work->flags & BCD_FLAG_NOMEM) != 0)
        return eNOMEMORY;
    result->prec = std::min<uint8_t>(work->prec, BCD_DIGITS);
    result->exp = work->exp;
    result->flags = work->flags;
    result->sign = work->sign;
    result->data[0] = work->data[0];
    for (int i = 1; i <= BCD_DIGITS; i += WORD_DIGITS)
        store_word(result->data + i, load_word(work->data + i));
    return bcd_retcode(work->flags);
}

// ---- Digits --------------------------------------------------------------------------

int ucompare(const BcdOperand &l, const BcdOperand &r) {
    if (l.data == r.data)
        return 0;
    if (!has_first_digit(l) || !has_first_digit(r))
        return compare_places(l, r);
    if (l.exp != r.exp)
        return l.exp < r.exp ? -1 : 1;
    return compare_words(l, r);
}

void add_digits(const BcdOperand &l, const BcdOperand &r, WORK_BCD *res) {
    DWORK_BCD sum;
    const WordRows rows(l, r);
    prepare_raw(rows.alignment, joined_flags(l, r), l.sign, &sum);
    if (rows.are_proper())
        add_rows(rows, &sum);
    else
        add_each_digit(DigitRows(l, r), &sum);
    normalize_res(&sum, res);
}

void sub_digits(const BcdOperand &l, const BcdOperand &r, WORK_BCD *res) {
    const WordRows rows(l, r);
    const int order = rows.are_proper() ? rows.compare() : ucompare(l, r);
    if (order == 0)
        return work_set_zero(res, joined_flags(l, r));
    const bool from_right = order < 0;
    DWORK_BCD difference;
    prepare_raw(rows.alignment, joined_flags(l, r), from_right ? opposite(l.sign) : l.sign,
                &difference);
    if (rows.are_proper())
        subtract_rows(rows, from_right, &difference);
    else
        subtract_each_digit(from_right ? DigitRows(r, l) : DigitRows(l, r), &difference);
    normalize_res(&difference, res);
}

// ---- Operations on work values ---------------------------------------------------------

void work_copy(const BcdOperand &src, WORK_BCD *res) {
    WORK_BCD copy{
        static_cast<uint8_t>(src.prec), static_cast<int8_t>(src.exp), src.flags, src.sign, {}};
    memcpy(copy.data, src.data, static_cast<size_t>(src.prec) + 1);
    *res = copy;
}

void work_clean_copy(const BcdOperand &src, WORK_BCD *res) {
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

void work_add(const BcdOperand &l, const BcdOperand &r, WORK_BCD *res) {
    if (either_is_fatal(l, r))
        return work_set_zero(res, joined_flags(l, r));
    l.sign == r.sign ? add_digits(l, r, res) : sub_digits(l, r, res);
}

void work_sub(const BcdOperand &l, const BcdOperand &r, WORK_BCD *res) {
    if (either_is_fatal(l, r))
        return work_set_zero(res, joined_flags(l, r));
    l.sign == r.sign ? sub_digits(l, r, res) : add_digits(l, r, res);
}

void work_mult(const BcdOperand &l, const BcdOperand &r, WORK_BCD *res) {
    if (either_is_fatal(l, r) || l.prec == 0 || r.prec == 0)
        return work_set_zero(res, joined_flags(l, r));
    DWORK_BCD product;
    product.prec = l.prec + r.prec;
    product.exp = l.exp + r.exp;
    product.flags = joined_flags(l, r);
    product.sign = sign_product(l.sign, r.sign);
    const Limbs left(l);
    const Limbs right(r);
    if (left.proper && right.proper)
        multiply_limbs(left, right, &product);
    else
        multiply_each_digit(l, r, &product);
    normalize_res(&product, res);
}

void work_reciprocal(const BcdOperand &bcd, WORK_BCD *res) {
    if (bcd.is_fatal())
        return work_set_zero(res, bcd.flags);
    WORK_BCD divisor;
    work_clean_copy(bcd, &divisor);
    if (divisor.prec == 0)
        return work_set_zero(res, BCD_FLAG_DIVBY0);
    DWORK_BCD raw;
    take_fixed(newton_reciprocal(divisor, &raw.flags), &raw);
    raw.sign = divisor.sign;
    normalize_res(&raw, res);
    res->exp = static_cast<int8_t>(res->exp - divisor.exp);
    // Digits before the point are kept in every value: 1 / 0.0125 is 80.
    if (res->exp > res->prec)
        work_set_digits_in_use(res, res->exp);
}

void work_div(const BcdOperand &l, const BcdOperand &r, WORK_BCD *res) {
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
