// Numbers out of text, and small questions about numbers.
//
// A number is leading white space, one sign, digits, and for the floating forms
// a fraction and an exponent; a point with nothing behind it belongs to the
// number. It takes up the rest of the text. Everything else, and what the type
// cannot hold, is eRANGE, and nothing is stored. A floating number too small for
// its type is what is nearest. No locale plays a part.
//
// Digits go through std::from_chars, which neither allocates nor looks at the
// locale. It leaves open whether a number was too large or too small; then, and
// for osl_atof's wider grammar, strtod_l decides in the C locale.
#include "osl_internal.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

bool is_space(char ch) {
    return ch == ' ' || (ch >= '\t' && ch <= '\r');
}

bool is_digit(char ch) {
    return ch >= '0' && ch <= '9';
}

struct SignedText {
    bool negative;
    const char *number; // behind the sign
    const char *end;
};

SignedText split_sign(const char *text) {
    while (is_space(*text)) {
        ++text;
    }
    const bool negative = *text == '-';
    if (negative || *text == '+') {
        ++text;
    }
    return {negative, text, text + std::strlen(text)};
}

/// The digits of an integer, which may end in a point, up to the text's end.
OAK_RETCODE parse_magnitude(const SignedText &text, uint64_t *magnitude) {
    uint64_t value = 0;
    auto [rest, error] = std::from_chars(text.number, text.end, value);
    if (error != std::errc()) {
        return eRANGE;
    }
    if (rest != text.end && *rest == '.') {
        ++rest;
    }
    if (rest != text.end) {
        return eRANGE;
    }
    *magnitude = value;
    return sOKAY;
}

double convert_anyhow(const char *text, double) {
    return strtod_l(text, nullptr, osl::c_locale());
}

float convert_anyhow(const char *text, float) {
    return strtof_l(text, nullptr, osl::c_locale());
}

template <class Float>
OAK_RETCODE parse_floating(const char *text, Float *out) {
    if (text == nullptr || out == nullptr) {
        return eINVNULLARG;
    }
    const SignedText parts = split_sign(text);
    const char *number = parts.number;
    if (!is_digit(*number) && *number != '.') {
        return eRANGE; // the words for infinities and NaNs are no numbers here
    }
    Float value = 0;
    const auto [rest, error] = std::from_chars(number, parts.end, value);
    if (error == std::errc::invalid_argument || rest != parts.end) {
        return eRANGE;
    }
    if (error == std::errc::result_out_of_range) {
        value = convert_anyhow(number, Float{});
    }
    if (std::isinf(value)) {
        return eRANGE;
    }
    *out = parts.negative ? -value : value;
    return sOKAY;
}

// ---- Hexadecimal digits -----------------------------------------------------

constexpr uint8_t kNoHexDigit = 255;

constexpr std::array<uint8_t, 256> make_hex_digits() {
    std::array<uint8_t, 256> values{};
    values.fill(kNoHexDigit);
    for (uint8_t i = 0; i < 10; ++i) {
        values[static_cast<size_t>('0' + i)] = i;
    }
    for (uint8_t i = 0; i < 6; ++i) {
        values[static_cast<size_t>('a' + i)] = static_cast<uint8_t>(10 + i);
        values[static_cast<size_t>('A' + i)] = static_cast<uint8_t>(10 + i);
    }
    return values;
}
constexpr std::array<uint8_t, 256> kHexDigits = make_hex_digits();

// ---- Finite values ----------------------------------------------------------

template <class Float>
OAK_BOOL_T validate(OAK_FP_TYPE *kind, Float value) {
    if (std::isfinite(value)) {
        return OAK_TRUE;
    }
    if (kind != nullptr && std::isnan(value)) {
        *kind = std::signbit(value) ? OAK_FP_NEGATIVE_NAN : OAK_FP_POSITIVE_NAN;
    } else if (kind != nullptr) {
        *kind = value < 0 ? OAK_FP_NEGATIVE_INF : OAK_FP_POSITIVE_INF;
    }
    return OAK_FALSE;
}

} // namespace

OAK_RETCODE osl_atoi64(const char *text, int64_t *pValue) {
    if (text == nullptr || pValue == nullptr) {
        return eINVNULLARG;
    }
    const SignedText parts = split_sign(text);
    uint64_t magnitude = 0;
    const OAK_RETCODE status = parse_magnitude(parts, &magnitude);
    if (status != sOKAY) {
        return status;
    }
    constexpr auto largest = static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
    if (magnitude > largest + (parts.negative ? 1 : 0)) {
        return eRANGE;
    }
    *pValue = static_cast<int64_t>(parts.negative ? 0 - magnitude : magnitude);
    return sOKAY;
}

OAK_RETCODE osl_atoui64(const char *text, uint64_t *pValue) {
    if (text == nullptr || pValue == nullptr) {
        return eINVNULLARG;
    }
    const SignedText parts = split_sign(text);
    return parts.negative ? eRANGE : parse_magnitude(parts, pValue);
}

OAK_RETCODE osl_strtod(const char *text, double *pValue) {
    return parse_floating(text, pValue);
}

OAK_RETCODE osl_strtof(const char *text, float *pValue) {
    return parse_floating(text, pValue);
}

double osl_atof(const char *text) {
    return text != nullptr ? strtod_l(text, nullptr, osl::c_locale()) : 0.0;
}

uint8_t osl_hexdigit(char ch) {
    return kHexDigits[static_cast<uint8_t>(ch)];
}

OAK_BOOL_T osl_isnan(double value) {
    return std::isnan(value) ? OAK_TRUE : OAK_FALSE;
}

OAK_BOOL_T osl_isnanf(float value) {
    return std::isnan(value) ? OAK_TRUE : OAK_FALSE;
}

float osl_ceilf(float value) {
    return std::ceil(value);
}

float osl_floorf(float value) {
    return std::floor(value);
}

OAK_BOOL_T osl_validateDouble(OAK_FP_TYPE *pKind, double value) {
    return validate(pKind, value);
}

OAK_BOOL_T osl_validateFloat(OAK_FP_TYPE *pKind, float value) {
    return validate(pKind, value);
}

uint32_t osl_bitFirstSet(uint32_t value) {
    return static_cast<uint32_t>(std::bit_width(value));
}
