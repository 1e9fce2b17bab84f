// The numeric structure: to and from decimals, and to double. The plain second way is
// the schoolbook one: multiply by 256 and add, digit by digit on text.
#include <cmath>
#include <cstring>

#include "bcd.h"
#include "numeric.h"
#include "test_support.h"

namespace {

constexpr OAK_BCD_ROUNDING_MODE kModes[] = {
    OAK_BCD_ROUND_NEAREST_TIES_TO_EVEN, OAK_BCD_ROUND_NEAREST_TIES_AWAY_FROM_ZERO, OAK_BCD_ROUND_UP,
    OAK_BCD_ROUND_DOWN, OAK_BCD_ROUND_TOWARDS_ZERO};
constexpr OAK_BCD_ROUNDING_MODE kMode = OAK_BCD_ROUND_NEAREST_TIES_TO_EVEN;

// ---- Arithmetic on texts of digits ------------------------------------------------------

// digits * factor + addend, as one does it on paper.
std::string times_plus(const std::string &digits, int factor, int addend) {
    std::string result;
    int carry = addend;
    for (size_t i = digits.size(); i-- > 0;) {
        carry += (digits[i] - '0') * factor;
        result.insert(result.begin(), static_cast<char>('0' + carry % 10));
        carry /= 10;
    }
    for (; carry > 0; carry /= 10)
        result.insert(result.begin(), static_cast<char>('0' + carry % 10));
    return result;
}

std::string plain_digits(const uint8_t (&val)[16]) {
    std::string digits;
    for (int i = 15; i >= 0; --i)
        digits = times_plus(digits, 256, val[i]);
    return digits;
}

// Bytes of a number, by halving the text eight times a byte.
std::vector<uint8_t> plain_bytes(std::string digits) {
    std::vector<uint8_t> bytes;
    do {
        int byte = 0;
        std::string quotient;
        for (const char ch : digits) {
            byte = byte * 10 + (ch - '0');
            quotient += static_cast<char>('0' + byte / 256);
            byte %= 256;
        }
        bytes.push_back(static_cast<uint8_t>(byte));
        digits = quotient;
    } while (digits.find_first_not_of('0') != std::string::npos);
    return bytes;
}

std::string digits_of(const OAK_BCD_T &bcd) {
    std::string digits;
    for (int i = 1; i <= bcd.prec; ++i)
        digits += static_cast<char>('0' + bcd.data[i]);
    return digits;
}

OAK_NUMERIC_T numeric_of(const std::string &digits, uint8_t sign = 1) {
    OAK_NUMERIC_T numeric{};
    numeric.sign = sign;
    const std::vector<uint8_t> bytes = plain_bytes(digits);
    EXPECT_LE(bytes.size(), sizeof numeric.val);
    std::memcpy(numeric.val, bytes.data(), std::min(bytes.size(), sizeof numeric.val));
    return numeric;
}

OAK_BCD_T bcd_of(const std::string &text) {
    OAK_BCD_T bcd;
    EXPECT_EQ(oak_bcdFromString(text.c_str(), &bcd), sOKAY) << text;
    return bcd;
}

void expect_zero(const OAK_BCD_T &bcd) {
    OAK_BCD_T zero{};
    zero.sign = 1;
    EXPECT_EQ(oaktest::hex(&bcd, sizeof bcd), oaktest::hex(&zero, sizeof zero));
}

} // namespace

// ---- To decimals -------------------------------------------------------------------------

TEST(FromNumeric, TakesTheIntegerScaleAndSign) {
    const struct {
        const char *digits;
        uint8_t sign;
        uint8_t scale;
        int8_t bcd_sign;
        int8_t exp;
    } rows[] = {
        {"1", 1, 0, 1, 1},
        {"1", 0, 0, -1, 1},
        {"1", 2, 0, -1, 1},
        {"1", 255, 0, -1, 1},
        {"1234", 1, 2, 1, 2},
        {"1234", 0, 4, -1, 0},
        {"1234", 1, 32, 1, -28},
        {"5", 1, 32, 1, -31},
        {"1000", 1, 0, 1, 4},
        {"1000", 1, 3, 1, 1},
        {"255", 1, 0, 1, 3},
        {"256", 1, 0, 1, 3},
        {"65536", 1, 1, 1, 4},
        {"99999999999999999999999999999999", 1, 0, 1, 32},
        {"99999999999999999999999999999999", 0, 32, -1, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.digits);
        const OAK_NUMERIC_T numeric = numeric_of(row.digits, row.sign);
        for (const OAK_BCD_ROUNDING_MODE mode : kModes) {
            OAK_BCD_T bcd;
            std::memset(&bcd, 0x77, sizeof bcd);
            ASSERT_EQ(oak_bcdFromNumericStruct(&numeric, 32, row.scale, mode, &bcd), sOKAY);
            EXPECT_EQ(digits_of(bcd), row.digits);
            EXPECT_EQ(bcd.prec, std::strlen(row.digits));
            EXPECT_EQ(bcd.sign, row.bcd_sign);
            EXPECT_EQ(bcd.exp, row.exp);
            EXPECT_EQ(bcd.flags, 0);
            EXPECT_EQ(bcd.data[0], 0);
            for (int i = bcd.prec + 1; i <= OAK_BCD_MAX_DIGITS; ++i)
                EXPECT_EQ(bcd.data[i], 0) << "bytes past the digits are zero";
        }
    }
}

TEST(FromNumeric, ZeroIsThePositiveZeroWhateverItsSignAndScale) {
    for (const uint8_t sign : {0, 1, 7})
        for (const uint8_t scale : {0, 5, 32}) {
            OAK_NUMERIC_T numeric{};
            numeric.sign = sign;
            OAK_BCD_T bcd;
            ASSERT_EQ(oak_bcdFromNumericStruct(&numeric, 10, scale, kMode, &bcd), sOKAY);
            expect_zero(bcd);
        }
}

TEST(FromNumeric, DoesNotLookAtTheStructuresOwnPrecisionAndScale) {
    OAK_NUMERIC_T numeric = numeric_of("1234");
    numeric.precision = 1;
    numeric.scale = -77;
    OAK_BCD_T bcd;
    ASSERT_EQ(oak_bcdFromNumericStruct(&numeric, 0, 2, kMode, &bcd), sOKAY);
    EXPECT_EQ(digits_of(bcd), "1234");
    EXPECT_EQ(bcd.exp, 2);
}

TEST(FromNumeric, RefusesPrecisionAndScaleAbove32) {
    const OAK_NUMERIC_T numeric = numeric_of("1");
    OAK_BCD_T bcd;
    std::memset(&bcd, 0x77, sizeof bcd);
    const OAK_BCD_T before = bcd;
    EXPECT_EQ(oak_bcdFromNumericStruct(&numeric, 33, 0, kMode, &bcd), eRANGE);
    EXPECT_EQ(oak_bcdFromNumericStruct(&numeric, 0, 33, kMode, &bcd), eRANGE);
    EXPECT_EQ(oak_bcdFromNumericStruct(&numeric, 255, 255, kMode, &bcd), eRANGE);
    EXPECT_EQ(std::memcmp(&bcd, &before, sizeof bcd), 0);
    EXPECT_EQ(oak_bcdFromNumericStruct(&numeric, 32, 32, kMode, &bcd), sOKAY);
}

TEST(FromNumeric, RefusesMoreThan32Digits) {
    for (const char *digits :
         {"100000000000000000000000000000000", "340282366920938463463374607431768211455"}) {
        const OAK_NUMERIC_T numeric = numeric_of(digits);
        OAK_BCD_T bcd;
        std::memset(&bcd, 0x77, sizeof bcd);
        const OAK_BCD_T before = bcd;
        EXPECT_EQ(oak_bcdFromNumericStruct(&numeric, 32, 0, kMode, &bcd), eRANGE) << digits;
        EXPECT_EQ(std::memcmp(&bcd, &before, sizeof bcd), 0);
    }
}

TEST(FromNumeric, AgreesWithPaperAndWithTheDecimalOperations) {
    oaktest::Random random(5);
    for (int i = 0; i < 500; ++i) {
        OAK_NUMERIC_T numeric{};
        numeric.sign = 1;
        const uint64_t length = random.below(14); // 13 bytes stay below 32 digits
        for (uint64_t at = 0; at < length; ++at)
            numeric.val[at] = static_cast<uint8_t>(random.next());
        OAK_BCD_T bcd;
        ASSERT_EQ(oak_bcdFromNumericStruct(&numeric, 32, 0, kMode, &bcd), sOKAY);
        std::string expected = plain_digits(numeric.val);
        expected.erase(0, std::min(expected.find_first_not_of('0'), expected.size()));
        EXPECT_EQ(digits_of(bcd), expected);

        OAK_BCD_T sum;
        ASSERT_EQ(oak_bcdFromUInt8(0, &sum), sOKAY);
        for (int at = 15; at >= 0; --at) {
            OAK_BCD_T byte;
            ASSERT_EQ(oak_bcdFromUInt8(numeric.val[at], &byte), sOKAY);
            ASSERT_EQ(oak_bcdMultUInt64(&sum, 256, kMode, &sum), sOKAY);
            ASSERT_EQ(oak_bcdAdd(&sum, &byte, kMode, &sum), sOKAY);
        }
        EXPECT_EQ(oaktest::hex(&bcd, sizeof bcd), oaktest::hex(&sum, sizeof sum));
    }
}

// ---- From decimals --------------------------------------------------------------------------

TEST(ToNumeric, TakesDigitsScaleAndSign) {
    const struct {
        const char *text;
        uint8_t prec;
        uint8_t scale;
        const char *digits;
        uint8_t precision;
        int8_t numeric_scale;
        uint8_t sign;
    } rows[] = {
        {"1", 5, 0, "1", 1, 0, 1},
        {"-1", 5, 0, "1", 1, 0, 0},
        {"1.5", 5, 2, "150", 3, 2, 1},
        {"-1.5", 5, 2, "150", 3, 2, 0},
        {"12.34", 4, 2, "1234", 4, 2, 1},
        {"12.349", 4, 2, "1234", 4, 2, 1}, // cut, not rounded, and no status
        {"-12.349", 4, 2, "1234", 4, 2, 0},
        {"0.005", 5, 3, "5", 1, 3, 1},
        {"0.005", 5, 2, "0", 0, 0, 1}, // nothing is left
        {"-0.005", 5, 2, "0", 0, 0, 1},
        {"1000", 4, 0, "1000", 4, 0, 1},
        {"1000", 32, 28, "10000000000000000000000000000000", 32, 28, 1},
        {"255", 3, 0, "255", 3, 0, 1},
        {"256", 3, 0, "256", 3, 0, 1},
        {"65535", 5, 0, "65535", 5, 0, 1},
        {"65536", 5, 0, "65536", 5, 0, 1},
        {"99999999999999999999999999999999", 32, 0, "99999999999999999999999999999999", 32, 0, 1},
        {"0.99999999999999999999999999999999", 32, 32, "99999999999999999999999999999999", 32, 32,
         1},
        {"-0.00000000000000000000000000000001", 32, 32, "1", 1, 32, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text);
        const OAK_BCD_T bcd = bcd_of(row.text);
        for (const OAK_BCD_ROUNDING_MODE mode : kModes) {
            OAK_NUMERIC_T numeric{};
            ASSERT_EQ(oak_bcdToNumericStruct(&bcd, row.prec, row.scale, mode, &numeric), sOKAY);
            const OAK_NUMERIC_T expected = numeric_of(row.digits);
            EXPECT_EQ(oaktest::hex(numeric.val, 16), oaktest::hex(expected.val, 16));
            EXPECT_EQ(numeric.precision, row.precision);
            EXPECT_EQ(numeric.scale, row.numeric_scale);
            EXPECT_EQ(numeric.sign, row.sign);
        }
    }
}

TEST(ToNumeric, KeepsTheBytesThatTheIntegerDoesNotNeed) {
    const struct {
        const char *text;
        const char *val;
    } rows[] = {
        {"0", "00777777777777777777777777777777"},
        {"255", "ff777777777777777777777777777777"},
        {"256", "00017777777777777777777777777777"},
        {"16777216", "00000001777777777777777777777777"},
    };
    for (const auto &row : rows) {
        OAK_NUMERIC_T numeric;
        std::memset(&numeric, 0x77, sizeof numeric);
        const OAK_BCD_T bcd = bcd_of(row.text);
        ASSERT_EQ(oak_bcdToNumericStruct(&bcd, 10, 0, kMode, &numeric), sOKAY);
        EXPECT_EQ(oaktest::hex(numeric.val, 16), row.val);
    }
}

TEST(ToNumeric, NormalizesItsOperandFirst) {
    OAK_BCD_T leading{}; // 0 0 1 5 with the point behind the third: 1.5
    leading.prec = 4;
    leading.exp = 3;
    leading.sign = 1;
    leading.data[3] = 1;
    leading.data[4] = 5;
    OAK_NUMERIC_T numeric{};
    ASSERT_EQ(oak_bcdToNumericStruct(&leading, 5, 1, kMode, &numeric), sOKAY);
    EXPECT_EQ(numeric.val[0], 15);
    EXPECT_EQ(numeric.precision, 2);
    EXPECT_EQ(numeric.scale, 1);

    OAK_BCD_T carry{}; // a digit 10, as rounding 9.5 leaves it
    carry.prec = 1;
    carry.exp = 1;
    carry.sign = -1;
    carry.data[1] = 10;
    numeric = {};
    ASSERT_EQ(oak_bcdToNumericStruct(&carry, 5, 0, kMode, &numeric), sOKAY);
    EXPECT_EQ(numeric.val[0], 10);
    EXPECT_EQ(numeric.precision, 2);
    EXPECT_EQ(numeric.sign, 0);

    OAK_BCD_T negative_zero{};
    negative_zero.sign = -1;
    numeric = {};
    ASSERT_EQ(oak_bcdToNumericStruct(&negative_zero, 5, 0, kMode, &numeric), sOKAY);
    EXPECT_EQ(numeric.sign, 1);
    EXPECT_EQ(numeric.precision, 0);
}

TEST(ToNumeric, LeavesItsOperandAlone) {
    const OAK_BCD_T bcd = bcd_of("12.3456");
    const OAK_BCD_T before = bcd;
    OAK_NUMERIC_T numeric{};
    ASSERT_EQ(oak_bcdToNumericStruct(&bcd, 10, 2, kMode, &numeric), sOKAY);
    EXPECT_EQ(std::memcmp(&bcd, &before, sizeof bcd), 0);
}

TEST(ToNumeric, RefusesWhatDoesNotFit) {
    OAK_NUMERIC_T numeric;
    std::memset(&numeric, 0x77, sizeof numeric);
    const OAK_NUMERIC_T before = numeric;
    const OAK_BCD_T hundred = bcd_of("100");
    const OAK_BCD_T small = bcd_of("0.5");
    EXPECT_EQ(oak_bcdToNumericStruct(&hundred, 2, 0, kMode, &numeric), eRANGE);
    EXPECT_EQ(oak_bcdToNumericStruct(&hundred, 5, 3, kMode, &numeric), eRANGE);
    EXPECT_EQ(oak_bcdToNumericStruct(&small, 2, 5, kMode, &numeric), eRANGE);
    EXPECT_EQ(oak_bcdToNumericStruct(&small, 33, 0, kMode, &numeric), eRANGE);
    EXPECT_EQ(oak_bcdToNumericStruct(&small, 0, 33, kMode, &numeric), eRANGE);
    OAK_BCD_T broken = small;
    broken.prec = 33;
    EXPECT_EQ(oak_bcdToNumericStruct(&broken, 5, 0, kMode, &numeric), eINVBCD);
    broken = small;
    broken.exp = 41;
    EXPECT_EQ(oak_bcdToNumericStruct(&broken, 5, 0, kMode, &numeric), eINVBCD);
    EXPECT_EQ(std::memcmp(&numeric, &before, sizeof numeric), 0);
}

TEST(ToNumeric, RoundTripsEveryLengthAndScale) {
    oaktest::Random random(6);
    for (uint8_t length = 1; length <= 32; ++length)
        for (uint8_t scale = 0; scale <= length; ++scale) {
            std::string digits(1, static_cast<char>('1' + random.below(9)));
            while (digits.size() < length)
                digits += static_cast<char>('0' + random.below(10));
            const auto sign = static_cast<uint8_t>(random.below(2));
            const OAK_NUMERIC_T numeric = numeric_of(digits, sign);
            OAK_BCD_T bcd;
            ASSERT_EQ(oak_bcdFromNumericStruct(&numeric, length, scale, kMode, &bcd), sOKAY);
            OAK_NUMERIC_T back{};
            ASSERT_EQ(oak_bcdToNumericStruct(&bcd, length, scale, kMode, &back), sOKAY) << digits;
            EXPECT_EQ(oaktest::hex(back.val, 16), oaktest::hex(numeric.val, 16)) << digits;
            EXPECT_EQ(back.precision, length);
            EXPECT_EQ(back.scale, scale);
            EXPECT_EQ(back.sign, sign);
        }
}

TEST(Numeric, RefusesNullPointers) {
    OAK_NUMERIC_T numeric{};
    OAK_BCD_T bcd = bcd_of("1");
    EXPECT_EQ(oak_bcdFromNumericStruct(nullptr, 5, 0, kMode, &bcd), eINVNULLARG);
    EXPECT_EQ(oak_bcdFromNumericStruct(&numeric, 5, 0, kMode, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_bcdToNumericStruct(nullptr, 5, 0, kMode, &numeric), eINVNULLARG);
    EXPECT_EQ(oak_bcdToNumericStruct(&bcd, 5, 0, kMode, nullptr), eINVNULLARG);
    EXPECT_EQ(b_getDoubleFromNumeric(nullptr), 0.0);
}

// ---- To double --------------------------------------------------------------------------------

TEST(NumericToDouble, DividesByTenToTheScale) {
    const struct {
        const char *digits;
        int8_t scale;
        uint8_t sign;
        double value;
    } rows[] = {
        {"1234", 2, 1, 12.34},
        {"1234", 2, 0, -12.34},
        {"1234", 2, 7, 12.34}, // 0 alone negates
        {"1234", 0, 1, 1234},
        {"1234", -2, 1, 1234}, // a negative scale is ignored
        {"1234", -128, 1, 1234},
        {"1", 9, 1, 1e-9},
        {"9223372036854775807", 0, 1, 9223372036854775807.0},
        {"9223372036854775808", 0, 1, -9223372036854775808.0}, // signed 64 bits
        {"18446744073709551615", 0, 1, -1},
        {"18446744073709551616", 0, 1, 0}, // the ninth byte does not count
        {"18446744073709551617", 0, 1, 1},
        {"340282366920938463463374607431768211455", 0, 0, 1},
        // From a scale of 10 on the divisor is what 32 bits leave of it.
        {"1410065408", 10, 1, 1.0},
        {"1215752192", 11, 1, 1.0},
        {"727379968", 12, 1, -1.0},
        {"1316134912", 13, 1, 1.0},
        {"1000", 31, 1, 1000.0 / -2147483648.0},
    };
    for (const auto &row : rows) {
        OAK_NUMERIC_T numeric = numeric_of(row.digits, row.sign);
        numeric.scale = row.scale;
        EXPECT_EQ(b_getDoubleFromNumeric(&numeric), row.value)
            << row.digits << " scale " << int{row.scale};
    }
}

TEST(NumericToDouble, DividesByZeroFromScale32On) {
    OAK_NUMERIC_T numeric = numeric_of("5");
    for (const int8_t scale : {32, 33, 127}) {
        numeric.scale = scale;
        numeric.sign = 1;
        EXPECT_EQ(b_getDoubleFromNumeric(&numeric), HUGE_VAL);
        numeric.sign = 0;
        EXPECT_EQ(b_getDoubleFromNumeric(&numeric), -HUGE_VAL);
    }
    numeric = numeric_of("0");
    numeric.scale = 32;
    EXPECT_TRUE(std::isnan(b_getDoubleFromNumeric(&numeric)));
}
