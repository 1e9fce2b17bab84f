// A second decimal, written only to be read: digits in vectors of numbers, one step a
// line, no words, no limbs, no shared code with the library. The tests compare the
// library with it on random and boundary operands. Also what both decimal tests use to
// write and read records.
#ifndef BCD_REFERENCE_H
#define BCD_REFERENCE_H

#include <string>
#include <vector>

#include "bcd.h"
#include "bcd_internal.h"
#include "test_support.h"

namespace bcd_reference {

// ---- Records for people -----------------------------------------------------------

// As in a table of known answers: "prec 3 exp 3 flags 0 sign 1 digits 125". A digit
// above 9 stands in brackets, a carry slot in use in front of a colon, and bytes past
// `prec` that are not zero are told.
template <class Record>
std::string show(const Record &bcd) {
    std::string text = "prec " + std::to_string(bcd.prec) + " exp " + std::to_string(bcd.exp) +
                       " flags " + std::to_string(bcd.flags) + " sign " + std::to_string(bcd.sign) +
                       " digits ";
    const auto digit = [](unsigned d) {
        return d <= 9 ? std::to_string(d) : "[" + std::to_string(d) + "]";
    };
    if (bcd.data[0] != 0)
        text += digit(bcd.data[0]) + ":";
    if (bcd.prec == 0)
        text += "none";
    constexpr unsigned SIZE = sizeof bcd.data;
    for (unsigned i = 1; i <= bcd.prec && i < SIZE; ++i)
        text += digit(bcd.data[i]);
    for (unsigned i = bcd.prec + 1u; i < SIZE; ++i)
        if (bcd.data[i] != 0)
            return text + " and bytes past prec";
    return text;
}

// A record as it is written here: nothing is normalized.
inline OAK_BCD_T record(const std::string &digits, int exp, int sign = 1, int flags = 0) {
    OAK_BCD_T bcd{};
    bcd.prec = static_cast<uint8_t>(digits.size());
    bcd.exp = static_cast<int8_t>(exp);
    bcd.sign = static_cast<int8_t>(sign);
    bcd.flags = static_cast<uint8_t>(flags);
    for (size_t i = 0; i < digits.size() && i < OAK_BCD_MAX_DIGITS; ++i)
        bcd.data[i + 1] = static_cast<uint8_t>(digits[i] - '0');
    return bcd;
}

// A normalized record from plain decimal notation: "-12.50", "100", ".001".
inline OAK_BCD_T decimal(std::string text) {
    const int sign = text[0] == '-' ? -1 : 1;
    if (sign < 0)
        text.erase(0, 1);
    const size_t point = text.find('.');
    int exp = static_cast<int>(point == std::string::npos ? text.size() : point);
    if (point != std::string::npos) {
        text.erase(point, 1);
        while (static_cast<int>(text.size()) > exp && text.back() == '0')
            text.pop_back();
    }
    while (!text.empty() && text.front() == '0') {
        text.erase(0, 1);
        --exp;
    }
    return text.empty() ? record("", 0) : record(text, exp, sign);
}

// ---- The plain decimal --------------------------------------------------------------

constexpr int WORK_DIGITS = 40;
constexpr int PUBLIC_DIGITS = 32;

struct Plain {
    int exp = 0;
    int flags = 0;
    int sign = 1;
    std::vector<int> digits = {0}; // [0] is the carry slot

    int prec() const { return static_cast<int>(digits.size()) - 1; }
    int digit(int index) const {
        return index >= 0 && index <= prec() ? digits[static_cast<size_t>(index)] : 0;
    }
    int &at(int index) { return digits[static_cast<size_t>(index)]; }
    bool is_fatal() const { return (flags & BCD_FLAG_FATAL) != 0; }
};

template <class Record>
Plain plain(const Record &bcd) {
    Plain value{bcd.exp, bcd.flags, bcd.sign, {}};
    for (int i = 0; i <= bcd.prec; ++i)
        value.digits.push_back(bcd.data[i]);
    return value;
}

inline Plain plain_zero(int flags) {
    return Plain{0, flags, 1, {0}};
}

template <class Record = OAK_BCD_T>
Record record_of(const Plain &value) {
    Record bcd{};
    bcd.prec = static_cast<uint8_t>(value.prec());
    bcd.exp = static_cast<int8_t>(value.exp);
    bcd.flags = static_cast<uint8_t>(value.flags);
    bcd.sign = static_cast<int8_t>(value.sign);
    for (int i = 0; i <= value.prec(); ++i)
        bcd.data[i] = static_cast<uint8_t>(value.digit(i));
    return bcd;
}

inline void strip_fraction_zeros(Plain *value) {
    while (value->prec() > 0 && value->prec() > value->exp && value->digits.back() == 0)
        value->digits.pop_back();
}

// The index of the first digit that is not 0, or -1.
inline int first_digit(const Plain &value) {
    for (int i = 0; i <= value.prec(); ++i)
        if (value.digit(i) != 0)
            return i;
    return -1;
}

// Moves the digit at an index to place 1.
inline void bring_to_front(Plain *value, int index) {
    value->exp += 1 - index;
    if (index == 0)
        value->digits.insert(value->digits.begin(), 0);
    else
        value->digits.erase(value->digits.begin() + 1, value->digits.begin() + index);
}

inline Plain plain_normalize_res(Plain value) {
    strip_fraction_zeros(&value);
    const int lead = first_digit(value);
    if (lead < 0)
        return plain_zero(value.flags);
    bring_to_front(&value, lead);
    int count = std::min(value.prec(), WORK_DIGITS);
    if (count - value.exp > WORK_DIGITS)
        count = value.exp >= -WORK_DIGITS ? value.exp + WORK_DIGITS : 0;
    if (value.exp > count)
        return plain_zero(value.flags | BCD_FLAG_OVERFLOW);
    if (count == 0)
        return plain_zero(value.flags);
    value.digits.resize(static_cast<size_t>(count) + 1);
    value.digits[0] = 0;
    return value;
}

inline Plain plain_normalize_work(Plain value) {
    strip_fraction_zeros(&value);
    const int lead = first_digit(value);
    if (lead < 0)
        return plain_zero(0);
    bring_to_front(&value, lead);
    if (value.exp > value.prec())
        return plain_zero(value.flags | BCD_FLAG_OVERFLOW);
    return value;
}

// ---- Digit loops --------------------------------------------------------------------

inline int plain_ucompare(const Plain &l, const Plain &r) {
    const int top = std::max(l.exp, r.exp) + 1;
    const int bottom = 1 - std::max(l.prec() - l.exp, r.prec() - r.exp);
    for (int place = top; place >= bottom; --place) {
        // Place n counts from the point; an operand's digit 1 is at place `exp`.
        const int left = l.digit(l.exp - place + 1);
        const int right = r.digit(r.exp - place + 1);
        if (left != right)
            return left < right ? -1 : 1;
    }
    return 0;
}

struct Aligned {
    int exp;
    int prec;
    Aligned(const Plain &l, const Plain &r)
        : exp(std::max(l.exp, r.exp)), prec(exp + std::max(l.prec() - l.exp, r.prec() - r.exp)) {}
    int digit(const Plain &value, int position) const {
        return value.digit(position - (exp - value.exp));
    }
};

inline Plain plain_add_digits(const Plain &l, const Plain &r) {
    const Aligned aligned(l, r);
    Plain sum{aligned.exp, l.flags | r.flags, l.sign, {}};
    sum.digits.assign(static_cast<size_t>(aligned.prec) + 1, 0);
    int carry = 0;
    for (int i = aligned.prec; i >= 1; --i) {
        const int total = aligned.digit(l, i) + aligned.digit(r, i) + carry;
        sum.at(i) = total % 10;
        carry = total / 10;
    }
    sum.at(0) = (aligned.digit(l, 0) + aligned.digit(r, 0) + carry) & 0xFF;
    return plain_normalize_res(sum);
}

inline Plain plain_sub_digits(const Plain &l, const Plain &r) {
    const int order = plain_ucompare(l, r);
    if (order == 0)
        return plain_zero(l.flags | r.flags);
    if (order < 0) {
        Plain swapped = plain_sub_digits(r, l);
        if (first_digit(swapped) >= 0)
            swapped.sign = static_cast<int8_t>(-l.sign);
        return swapped;
    }
    const Aligned aligned(l, r);
    Plain difference{aligned.exp, l.flags | r.flags, l.sign, {}};
    difference.digits.assign(static_cast<size_t>(aligned.prec) + 1, 0);
    int borrow = 0;
    for (int i = aligned.prec; i >= 0; --i) {
        const int raised = aligned.digit(l, i) + 10 - aligned.digit(r, i) + borrow;
        difference.at(i) = ((raised % 10) + 10) % 10;
        borrow = raised < 10 ? -1 : 0;
    }
    return plain_normalize_res(difference);
}

// ---- Operations ---------------------------------------------------------------------

inline Plain plain_add(const Plain &l, const Plain &r) {
    if (l.is_fatal() || r.is_fatal())
        return plain_zero(l.flags | r.flags);
    return l.sign == r.sign ? plain_add_digits(l, r) : plain_sub_digits(l, r);
}

inline Plain plain_sub(const Plain &l, const Plain &r) {
    if (l.is_fatal() || r.is_fatal())
        return plain_zero(l.flags | r.flags);
    return l.sign == r.sign ? plain_sub_digits(l, r) : plain_add_digits(l, r);
}

inline Plain plain_mult(const Plain &l, const Plain &r) {
    if (l.is_fatal() || r.is_fatal() || l.prec() == 0 || r.prec() == 0)
        return plain_zero(l.flags | r.flags);
    Plain product{l.exp + r.exp, l.flags | r.flags, static_cast<int8_t>(l.sign * r.sign), {}};
    product.digits.assign(static_cast<size_t>(l.prec() + r.prec()) + 1, 0);
    for (int i = l.prec(); i >= 1; --i) {
        if (l.digit(i) == 0)
            continue;
        int carry = 0;
        for (int j = r.prec(); j >= 1; --j) {
            const int total = l.digit(i) * r.digit(j) + product.digit(i + j) + carry;
            product.at(i + j) = total % 10;
            carry = total / 10;
        }
        product.at(i) = carry & 0xFF;
    }
    return plain_normalize_res(product);
}

// Leading zeros out, digits above 9 carried, at most 40 digits.
inline Plain plain_clean(const Plain &value) {
    Plain clean = value;
    int places_in_front = 0;
    for (size_t i = clean.digits.size(); i-- > 0;) {
        const int carry = clean.digits[i] / 10;
        clean.digits[i] %= 10;
        if (carry == 0)
            continue;
        if (i == 0) {
            clean.digits.insert(clean.digits.begin(), 0);
            ++places_in_front;
            i = 1;
        }
        clean.digits[i - 1] += carry;
    }
    clean.exp += places_in_front;
    const int lead = first_digit(clean);
    if (lead < 0)
        return plain_zero(value.flags);
    bring_to_front(&clean, lead);
    if (clean.prec() > WORK_DIGITS)
        clean.digits.resize(WORK_DIGITS + 1);
    return clean;
}

// 100 / (n + 0.5), rounded half up to seven digits, by long division.
inline Plain plain_seed(int n) {
    Plain seed{1, 0, 1, {0}};
    int remainder = 200;
    const int divisor = 2 * n + 1;
    for (int i = 0; i < 7; ++i) {
        seed.digits.push_back(remainder / divisor);
        remainder = remainder % divisor * 10;
    }
    if (remainder / divisor >= 5)
        for (int i = 7; ++seed.at(i) == 10; --i)
            seed.at(i) = 0;
    while (seed.digits.back() == 0)
        seed.digits.pop_back();
    return seed;
}

inline Plain plain_reciprocal(const Plain &operand, int *steps = nullptr) {
    if (operand.is_fatal())
        return plain_zero(operand.flags);
    Plain a = plain_clean(operand);
    if (a.prec() == 0)
        return plain_zero(BCD_FLAG_DIVBY0);
    const int exp = a.exp;
    const int sign = a.sign;
    a.exp = 0;
    a.sign = 1;
    const Plain one{1, 0, 1, {0, 1}};
    Plain x = plain_seed(a.digit(1) * 10 + a.digit(2));
    int count = 0;
    while ((x.flags & ~BCD_FLAG_PRECISION) == 0) {
        ++count;
        const Plain p = plain_mult(x, a);
        if (p.prec() == 1 && p.exp == 1 && p.digit(1) == 1)
            break;
        const Plain next = plain_add(x, plain_mult(x, plain_sub(one, p)));
        if (plain_ucompare(x, next) == 0)
            break;
        x = next;
    }
    if (steps != nullptr)
        *steps = count;
    x.exp -= exp;
    x.sign = sign;
    if (x.exp > x.prec())
        x.digits.resize(static_cast<size_t>(std::min(x.exp, WORK_DIGITS)) + 1, 0);
    return x;
}

inline Plain plain_div(const Plain &l, const Plain &r) {
    if (l.is_fatal() || r.is_fatal())
        return plain_zero(l.flags | r.flags);
    return plain_mult(plain_clean(l), plain_reciprocal(r));
}

// ---- Rounding -----------------------------------------------------------------------

inline bool plain_rounds_up(const Plain &value, int keep, int mode) {
    const int dropped = value.digit(keep + 1);
    const bool more = value.prec() > keep + 1;
    if (mode == 0)
        return dropped > 5 || (dropped == 5 && (more || value.digit(keep) % 2 == 1));
    if (mode == 1)
        return dropped >= 5;
    return (mode == 2 && value.sign == 1) || (mode == 3 && value.sign == -1);
}

// The value in public form; null where the result stays untouched.
inline Plain plain_round(Plain value, int mode) {
    for (;;) {
        value = plain_normalize_work(value);
        if (value.prec() == 0)
            return plain_zero(value.flags);
        if (value.exp > PUBLIC_DIGITS)
            return plain_zero(value.flags | BCD_FLAG_OVERFLOW);
        if (value.exp < -PUBLIC_DIGITS)
            return plain_zero(value.flags | BCD_FLAG_PRECISION);
        int keep = std::min(value.prec(), PUBLIC_DIGITS);
        if (keep - value.exp > PUBLIC_DIGITS)
            keep = value.exp + PUBLIC_DIGITS;
        if (keep == value.prec())
            return value;
        value.flags |= BCD_FLAG_PRECISION;
        const bool up = plain_rounds_up(value, keep, mode);
        value.digits.resize(static_cast<size_t>(keep) + 1);
        for (int i = keep; up; --i) {
            ++value.at(i);
            if (i == 0 || value.at(i) <= 9)
                break;
            value.at(i) -= 10;
        }
    }
}

inline OAK_RETCODE plain_status(int flags) {
    return flags & BCD_FLAG_NOMEM       ? eNOMEMORY
           : flags & BCD_FLAG_DIVBY0    ? eDIVBY0
           : flags & BCD_FLAG_NAN       ? eNOTANUMBER
           : flags & BCD_FLAG_OVERFLOW  ? eRANGE
           : flags & BCD_FLAG_PRECISION ? sPRECISIONLOSS
           : flags & BCD_FLAG_UNDERFLOW ? sUNDERFLOW
                                        : sOKAY;
}

// What a public operation does with a work value: the record, or `untouched` for a
// value that carries BCD_FLAG_NOMEM.
inline OAK_RETCODE plain_assign(Plain value, int mode, const OAK_BCD_T &untouched,
                                OAK_BCD_T *result) {
    if (!value.is_fatal())
        value = plain_round(value, mode);
    *result = value.flags & BCD_FLAG_NOMEM ? untouched : record_of(value);
    return plain_status(value.flags);
}

// ---- Random operands ------------------------------------------------------------------

// Digits with runs of nines and zeros, where carries and cuts go wrong.
inline std::string random_digits(oaktest::Random &random, int count) {
    std::string digits;
    while (static_cast<int>(digits.size()) < count) {
        const uint64_t kind = random.below(6);
        const size_t run = kind >= 4 ? 1 + random.below(3) : 1 + random.below(12);
        for (size_t i = 0; i < run; ++i)
            digits += kind == 0 ? '9' : kind == 1 ? '0' : static_cast<char>('0' + random.below(10));
    }
    digits.resize(static_cast<size_t>(count));
    return digits;
}

// A normalized value of the public range.
inline OAK_BCD_T random_decimal(oaktest::Random &random) {
    const int prec = static_cast<int>(random.below(PUBLIC_DIGITS + 1));
    if (prec == 0)
        return record("", 0);
    std::string digits = random_digits(random, prec);
    if (digits.front() == '0')
        digits.front() = static_cast<char>('1' + random.below(9));
    if (digits.back() == '0')
        digits.back() = static_cast<char>('1' + random.below(9));
    const int lowest = prec - PUBLIC_DIGITS; // 32 places behind the point
    const int exp =
        lowest + static_cast<int>(random.below(static_cast<uint64_t>(prec - lowest + 1)));
    return record(digits, exp, random.below(2) == 0 ? 1 : -1, random.below(8) == 0 ? 1 : 0);
}

// A record that passes for a decimal and may have anything else wrong: leading zeros, a
// carry slot in use, digits above 9, odd conditions, exponents out of range.
inline OAK_BCD_T random_record(oaktest::Random &random) {
    OAK_BCD_T bcd = random_decimal(random);
    for (uint64_t faults = random.below(3); faults > 0; --faults)
        switch (random.below(6)) {
            case 0:
                bcd.data[0] = static_cast<uint8_t>(random.below(4) == 0 ? random.next() : 1);
                break;
            case 1:
                bcd.data[1] = 0;
                break;
            case 2:
                if (bcd.prec != 0)
                    bcd.data[1 + random.below(bcd.prec)] = 10;
                break;
            case 3:
                if (bcd.prec != 0)
                    bcd.data[1 + random.below(bcd.prec)] = static_cast<uint8_t>(random.next());
                break;
            case 4:
                bcd.flags = static_cast<uint8_t>(random.below(4) == 0 ? random.next() : 8);
                break;
            default:
                bcd.exp = static_cast<int8_t>(static_cast<int>(random.below(81)) - 40);
                break;
        }
    return bcd;
}

} // namespace bcd_reference

#endif
