// Decimal arithmetic: known answers, every rounding mode at the half and one digit past,
// conditions and their statuses, and the library against the plain decimal of
// bcd_reference.h on random, boundary and damaged operands.
#include "bcd_fixed.h"
#include "bcd_reference.h"
#include "bcd_words.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace {

using namespace bcd_reference;
using oaktest::Random;

constexpr auto EVEN = OAK_BCD_ROUND_NEAREST_TIES_TO_EVEN;
constexpr auto AWAY = OAK_BCD_ROUND_NEAREST_TIES_AWAY_FROM_ZERO;
constexpr auto UP = OAK_BCD_ROUND_UP;
constexpr auto DOWN = OAK_BCD_ROUND_DOWN;
constexpr auto ZERO = OAK_BCD_ROUND_TOWARDS_ZERO;
constexpr auto NO_MODE = static_cast<OAK_BCD_ROUNDING_MODE>(99);
constexpr OAK_BCD_ROUNDING_MODE MODES[] = {EVEN, AWAY, UP, DOWN, ZERO, NO_MODE};

using BINARY = OAK_RETCODE (*)(const OAK_BCD_T *, const OAK_BCD_T *, OAK_BCD_ROUNDING_MODE,
                               OAK_BCD_T *);
using PLAIN_BINARY = Plain (*)(const Plain &, const Plain &);

struct Operation {
    const char *name;
    BINARY library;
    PLAIN_BINARY plain;
};
constexpr Operation OPERATIONS[] = {{"add", oak_bcdAdd, plain_add},
                                    {"sub", oak_bcdSub, plain_sub},
                                    {"mult", oak_bcdMult, plain_mult},
                                    {"div", oak_bcdDiv, plain_div}};

const std::string NINES(32, '9');

bool same(const OAK_BCD_T &a, const OAK_BCD_T &b) {
    return memcmp(&a, &b, sizeof a) == 0;
}

OAK_COMPARE order(const OAK_BCD_T &left, const OAK_BCD_T &right) {
    return oak_bcdCompare(&left, &right);
}

int sign_of(const OAK_BCD_T &bcd) {
    return oak_bcdSign(&bcd);
}

OAK_BOOL_T is_zero(const OAK_BCD_T &bcd) {
    return oak_bcdIsZero(&bcd);
}

// A record that no operation leaves behind, to tell what was written.
OAK_BCD_T canary() {
    OAK_BCD_T bcd;
    memset(&bcd, 0xA5, sizeof bcd);
    return bcd;
}

// ---- Records -------------------------------------------------------------------------

TEST(Decimal, IsThirtySevenBytesWithoutPadding) {
    EXPECT_EQ(sizeof(OAK_BCD_T), 37u);
    EXPECT_EQ(alignof(OAK_BCD_T), 1u);
}

TEST(Decimal, HoldsThirtyTwoDigitsAndPlaces) {
    EXPECT_EQ(oak_bcdMaxprec(), 32);
    EXPECT_EQ(oak_bcdMaxscale(), 32);
}

TEST(Decimal, ValidatesDigitsAndTheirCountAlone) {
    EXPECT_EQ(oak_bcdValidate(nullptr), eINVNULLARG);
    OAK_BCD_T bcd = record(NINES, 127, 5, 0xFF);
    EXPECT_EQ(oak_bcdValidate(&bcd), sOKAY);
    bcd.data[0] = 9;
    EXPECT_EQ(oak_bcdValidate(&bcd), sOKAY);
    bcd.data[0] = 10;
    EXPECT_EQ(oak_bcdValidate(&bcd), eINVALID);
    bcd.data[0] = 0;
    bcd.data[32] = 10;
    EXPECT_EQ(oak_bcdValidate(&bcd), eINVALID);
    bcd.prec = 31; // the bad digit is past prec now
    EXPECT_EQ(oak_bcdValidate(&bcd), sOKAY);
    bcd = decimal("1");
    bcd.prec = 33;
    EXPECT_EQ(oak_bcdValidate(&bcd), eINVALID);
    bcd.prec = 255;
    EXPECT_EQ(oak_bcdValidate(&bcd), eINVALID);
    bcd = decimal("0");
    EXPECT_EQ(oak_bcdValidate(&bcd), sOKAY);
}

TEST(Decimal, CopiesTheDigitsInUseAndClearsTheRest) {
    OAK_BCD_T source = record("12345", 2, -1, 9);
    memset(source.data + 6, 7, 27);
    OAK_BCD_T copy = canary();
    oak_bcdCopy(&source, &copy);
    EXPECT_EQ(show(copy), "prec 5 exp 2 flags 9 sign -1 digits 12345");
    oak_bcdCopy(&source, &source);
    EXPECT_TRUE(same(source, copy));
    source.prec = 200;
    oak_bcdCopy(&source, &copy);
    EXPECT_TRUE(same(source, copy));
}

TEST(Decimal, KnowsItsConstants) {
    struct {
        const WORK_BCD *constant;
        const char *text;
    } const rows[] = {
        {&c_0, "prec 0 exp 0 flags 0 sign 1 digits none"},
        {&c_1_2, "prec 1 exp 0 flags 0 sign 1 digits 5"},
        {&c_1, "prec 1 exp 1 flags 0 sign 1 digits 1"},
        {&c_2, "prec 1 exp 1 flags 0 sign 1 digits 2"},
        {&c_e, "prec 40 exp 1 flags 1 sign 1 digits 2718281828459045235360287471352662497757"},
        {&c_2_3, "prec 40 exp 0 flags 1 sign 1 digits 6666666666666666666666666666666666666667"},
        {&c_4_3, "prec 40 exp 1 flags 1 sign 1 digits 1333333333333333333333333333333333333333"},
        {&c_ln2, "prec 40 exp 0 flags 1 sign 1 digits 6931471805599453094172321214581765680755"},
        {&c_ln10, "prec 40 exp 1 flags 1 sign 1 digits 2302585092994045684017991454684364207601"},
        {&c_1_ln10, "prec 40 exp 0 flags 1 sign 1 digits 4342944819032518276511289189166050822944"},
        {&c_pi, "prec 40 exp 1 flags 1 sign 1 digits 3141592653589793238462643383279502884197"},
        {&c_2pi, "prec 40 exp 1 flags 1 sign 1 digits 6283185307179586476925286766559005768394"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(show(*row.constant), row.text);
}

// ---- Known answers ----------------------------------------------------------------------

struct Answer {
    BINARY operation;
    const char *left, *right;
    OAK_BCD_ROUNDING_MODE mode;
    OAK_RETCODE status;
    const char *result;
};

TEST(DecimalArithmetic, GivesTheKnownAnswers) {
    const Answer rows[] = {
        {oak_bcdAdd, "99999999999999999999999999999999", "0.4", EVEN, sPRECISIONLOSS,
         "prec 32 exp 32 flags 1 sign 1 digits 99999999999999999999999999999999"},
        {oak_bcdAdd, "0.1", "0.2", EVEN, sOKAY, "prec 1 exp 0 flags 0 sign 1 digits 3"},
        {oak_bcdSub, "1", "1.00000000000000000000000000000001", EVEN, sOKAY,
         "prec 0 exp 0 flags 0 sign 1 digits none"},
        {oak_bcdMult, "12345678901234567890.123456789", "98765.4321", EVEN, sPRECISIONLOSS,
         "prec 32 exp 25 flags 1 sign 1 digits 12193263112482853211248285321113"},
        {oak_bcdMult, "0.00000000000000001", "0.0000000000000003", EVEN, sOKAY,
         "prec 0 exp 0 flags 0 sign 1 digits none"},
        {oak_bcdDiv, "1", "3", EVEN, sPRECISIONLOSS,
         "prec 32 exp 0 flags 1 sign 1 digits 33333333333333333333333333333333"},
        {oak_bcdDiv, "2", "3", EVEN, sPRECISIONLOSS,
         "prec 32 exp 0 flags 1 sign 1 digits 66666666666666666666666666666667"},
        {oak_bcdDiv, "1", "7", EVEN, sPRECISIONLOSS,
         "prec 32 exp 0 flags 1 sign 1 digits 14285714285714285714285714285714"},
        {oak_bcdDiv, "100", "0.0125", EVEN, sOKAY, "prec 4 exp 4 flags 0 sign 1 digits 8000"},
        {oak_bcdDiv, "22", "7", EVEN, sPRECISIONLOSS,
         "prec 32 exp 1 flags 1 sign 1 digits 31428571428571428571428571428571"},
        {oak_bcdDiv, "1", "0", EVEN, eDIVBY0, "prec 0 exp 0 flags 4 sign 1 digits none"},
        {oak_bcdDiv, "4", "2", ZERO, sPRECISIONLOSS,
         "prec 32 exp 1 flags 1 sign 1 digits 19999999999999999999999999999999"},
        // A sum that no longer fits, and one that just fits.
        {oak_bcdAdd, "99999999999999999999999999999999", "1", EVEN, eRANGE,
         "prec 0 exp 0 flags 2 sign 1 digits none"},
        {oak_bcdAdd, "99999999999999999999999999999998", "1", EVEN, sOKAY,
         "prec 32 exp 32 flags 0 sign 1 digits 99999999999999999999999999999999"},
        {oak_bcdAdd, "99999999999999999999999999999999", "0.5", AWAY, eRANGE,
         "prec 0 exp 0 flags 3 sign 1 digits none"},
        {oak_bcdMult, "100000000000000000000", "1000000000000", EVEN, eRANGE,
         "prec 0 exp 0 flags 2 sign 1 digits none"},
        {oak_bcdMult, "10000000000000000000000000000000", "10000000000000000000000000000000", EVEN,
         eRANGE, "prec 0 exp 0 flags 2 sign 1 digits none"}, // more than 40 integer digits
        {oak_bcdSub, "-1", "1", EVEN, sOKAY, "prec 1 exp 1 flags 0 sign -1 digits 2"},
        {oak_bcdSub, "1", "100", EVEN, sOKAY, "prec 2 exp 2 flags 0 sign -1 digits 99"},
        {oak_bcdAdd, "1", "-100", EVEN, sOKAY, "prec 2 exp 2 flags 0 sign -1 digits 99"},
        {oak_bcdAdd, "95", "5", EVEN, sOKAY, "prec 3 exp 3 flags 0 sign 1 digits 100"},
        {oak_bcdAdd, "0", "-0.05", EVEN, sOKAY, "prec 1 exp -1 flags 0 sign -1 digits 5"},
        {oak_bcdMult, "-1.5", "-4", EVEN, sOKAY, "prec 1 exp 1 flags 0 sign 1 digits 6"},
        {oak_bcdMult, "0", "-4", EVEN, sOKAY, "prec 0 exp 0 flags 0 sign 1 digits none"},
        {oak_bcdDiv, "0", "-4", EVEN, sOKAY, "prec 0 exp 0 flags 0 sign 1 digits none"},
        {oak_bcdDiv, "0", "0", EVEN, eDIVBY0, "prec 0 exp 0 flags 4 sign 1 digits none"},
        {oak_bcdDiv, "-1", "0.625", EVEN, sOKAY, "prec 2 exp 1 flags 0 sign -1 digits 16"},
    };
    for (const Answer &row : rows) {
        OAK_BCD_T left, right, result = canary();
        EXPECT_GE(oak_bcdFromString(row.left, &left), sOKAY);
        EXPECT_GE(oak_bcdFromString(row.right, &right), sOKAY);
        EXPECT_EQ(row.operation(&left, &right, row.mode, &result), row.status)
            << row.left << " " << row.right;
        EXPECT_EQ(show(result), row.result) << row.left << " " << row.right;
    }
}

TEST(DecimalArithmetic, KeepsIntegerDigitsOfAReciprocal) {
    struct {
        const char *operand;
        OAK_RETCODE status;
        const char *result;
    } const rows[] = {
        {"0.0125", sOKAY, "prec 2 exp 2 flags 0 sign 1 digits 80"},
        {"0.00000000000000000000000000125", sOKAY,
         "prec 27 exp 27 flags 0 sign 1 digits 800000000000000000000000000"},
        {"-0.625", sOKAY, "prec 2 exp 1 flags 0 sign -1 digits 16"},
        {"8", sPRECISIONLOSS, "prec 3 exp 0 flags 1 sign 1 digits 125"},
        {"0.1", sPRECISIONLOSS, "prec 2 exp 2 flags 1 sign 1 digits 10"},
        {"0.00000000000000000000000000000001", eRANGE, "prec 0 exp 0 flags 3 sign 1 digits none"},
        {"99999999999999999999999999999999", sPRECISIONLOSS,
         "prec 1 exp -31 flags 1 sign 1 digits 1"},
        {"0", eDIVBY0, "prec 0 exp 0 flags 4 sign 1 digits none"},
    };
    for (const auto &row : rows) {
        const OAK_BCD_T operand = decimal(row.operand);
        OAK_BCD_T result = canary();
        EXPECT_EQ(oak_bcdReciprocal(&operand, EVEN, &result), row.status) << row.operand;
        EXPECT_EQ(show(result), row.result) << row.operand;
    }
}

TEST(DecimalArithmetic, ComesOutBelowAShortQuotientTowardsZero) {
    const OAK_BCD_T ten = decimal("10"), two = decimal("2"), five = decimal("5");
    OAK_BCD_T result;
    EXPECT_EQ(oak_bcdDiv(&ten, &two, EVEN, &result), sPRECISIONLOSS);
    EXPECT_EQ(oak_bcdCompare(&result, &five), OAK_EQ);
    EXPECT_EQ(oak_bcdDiv(&ten, &two, ZERO, &result), sPRECISIONLOSS);
    EXPECT_EQ(oak_bcdCompare(&result, &five), OAK_LT);
}

// ---- Rounding -----------------------------------------------------------------------------

// A 32-digit integer that ends in the kept digit, and what lies behind the point.
struct Rounding {
    char kept;
    const char *dropped;
    OAK_BCD_ROUNDING_MODE mode;
    bool up_if_positive, up_if_negative;
};

TEST(DecimalRounding, FollowsTheModesAtTheHalfAndOneDigitPast) {
    const Rounding rows[] = {
        {'2', "0.4", EVEN, false, false},
        {'2', "0.49999999", EVEN, false, false},
        {'2', "0.5", EVEN, false, false},
        {'3', "0.5", EVEN, true, true},
        {'2', "0.50000001", EVEN, true, true},
        {'2', "0.51", EVEN, true, true},
        {'2', "0.6", EVEN, true, true},
        {'0', "0.5", EVEN, false, false},
        {'2', "0.4", AWAY, false, false},
        {'2', "0.49999999", AWAY, false, false},
        {'2', "0.5", AWAY, true, true},
        {'3', "0.5", AWAY, true, true},
        {'2', "0.50000001", AWAY, true, true},
        {'2', "0.9", AWAY, true, true},
        {'2', "0.00000001", UP, true, false},
        {'2', "0.5", UP, true, false},
        {'2', "0.99999999", UP, true, false},
        {'2', "0.00000001", DOWN, false, true},
        {'2', "0.5", DOWN, false, true},
        {'2', "0.99999999", DOWN, false, true},
        {'2', "0.5", ZERO, false, false},
        {'3', "0.99999999", ZERO, false, false},
        {'3', "0.99999999", NO_MODE, false, false},
    };
    for (const Rounding &row : rows)
        for (const int sign : {1, -1}) {
            OAK_BCD_T integer = record(std::string(31, '7') + row.kept, 32, sign);
            OAK_BCD_T fraction = decimal(row.dropped);
            fraction.sign = static_cast<int8_t>(sign);
            const bool up = sign > 0 ? row.up_if_positive : row.up_if_negative;
            const std::string last(1, static_cast<char>(row.kept + (up ? 1 : 0)));
            OAK_BCD_T result = canary();
            EXPECT_EQ(oak_bcdAdd(&integer, &fraction, row.mode, &result), sPRECISIONLOSS);
            EXPECT_EQ(show(result), "prec 32 exp 32 flags 1 sign " + std::to_string(sign) +
                                        " digits " + std::string(31, '7') + last)
                << row.kept << row.dropped << " mode " << row.mode;
        }
}

// The value d * 10^-33 has no digit within the 32 places: the carry slot takes the one.
TEST(DecimalRounding, RoundsTheFirstPlacePastTheLastIntoTheCarrySlot) {
    struct {
        const char *left; // times 10^-16
        OAK_BCD_ROUNDING_MODE mode;
        bool up;
    } const rows[] = {
        {"0.00000000000000006", EVEN, true},  {"0.00000000000000005", EVEN, false},
        {"0.000000000000000051", EVEN, true}, {"0.00000000000000004", EVEN, false},
        {"0.00000000000000005", AWAY, true},  {"0.00000000000000004", AWAY, false},
        {"0.00000000000000001", UP, true},    {"-0.00000000000000001", UP, false},
        {"-0.00000000000000001", DOWN, true}, {"0.00000000000000009", DOWN, false},
        {"0.00000000000000009", ZERO, false},
    };
    const OAK_BCD_T right = decimal("0.0000000000000001");
    for (const auto &row : rows) {
        const OAK_BCD_T left = decimal(row.left);
        OAK_BCD_T result = canary();
        EXPECT_EQ(oak_bcdMult(&left, &right, row.mode, &result), row.up ? sPRECISIONLOSS : sOKAY);
        const std::string sign = row.left[0] == '-' ? "-1" : "1";
        EXPECT_EQ(show(result), row.up ? "prec 1 exp -31 flags 1 sign " + sign + " digits 1"
                                       : "prec 0 exp 0 flags 0 sign 1 digits none")
            << row.left << " mode " << row.mode;
    }
}

// Below 10^-33 there is nothing to round from: zero in every mode, and it says so.
TEST(DecimalRounding, GivesZeroWithALossBelowTheLastPlace) {
    const OAK_BCD_T left = decimal("0.99999999999999999999"), tiny = decimal("-0.0000000000000001");
    OAK_BCD_T smallest;
    ASSERT_EQ(oak_bcdMult(&tiny, &tiny, EVEN, &smallest), sOKAY); // 10^-32
    for (const auto mode : MODES) {
        OAK_BCD_T square, result = canary();
        ASSERT_EQ(oak_bcdMult(&left, &smallest, ZERO, &square), sOKAY); // cut at 32 places
        EXPECT_EQ(show(square), "prec 0 exp 0 flags 0 sign 1 digits none");
        EXPECT_EQ(oak_bcdMult(&tiny, &smallest, mode, &result), sOKAY) << "10^-48 is no work value";
        EXPECT_EQ(show(result), "prec 0 exp 0 flags 0 sign 1 digits none");
        const OAK_BCD_T thousandth = decimal("-0.009");
        result = canary();
        EXPECT_EQ(oak_bcdMult(&thousandth, &smallest, mode, &result), sPRECISIONLOSS);
        EXPECT_EQ(show(result), "prec 0 exp 0 flags 1 sign 1 digits none");
    }
}

TEST(DecimalRounding, CarriesThroughAllNines) {
    const OAK_BCD_T almost_ten = decimal("9.9999999999999999999999999999999");
    const OAK_BCD_T half = decimal("0.00000000000000000000000000000005");
    OAK_BCD_T result;
    EXPECT_EQ(oak_bcdAdd(&almost_ten, &half, AWAY, &result), sPRECISIONLOSS);
    EXPECT_EQ(show(result), "prec 2 exp 2 flags 1 sign 1 digits 10");
}

// (1 - 10^-32) * (1 - 10^-19) is 1 - 10^-19 - 10^-32 + 10^-51, and the last term lies
// beyond the 40th digit: what is left has 32 digits and tells of no loss.
TEST(DecimalRounding, DoesNotSeeWhatTheWorkLevelCutsOff) {
    const OAK_BCD_T l = record(NINES, 0), r = record(NINES.substr(13), 0);
    for (const auto mode : MODES) {
        OAK_BCD_T result = canary();
        EXPECT_EQ(oak_bcdMult(&l, &r, mode, &result), sOKAY);
        EXPECT_EQ(show(result),
                  "prec 32 exp 0 flags 0 sign 1 digits 99999999999999999989999999999999");
    }
}

TEST(DecimalRounding, ChecksTheLengthAgainAfterACarry) {
    const OAK_BCD_T most = record(NINES, 32, -1), half = decimal("-0.5");
    OAK_BCD_T result = canary();
    EXPECT_EQ(oak_bcdAdd(&most, &half, DOWN, &result), eRANGE);
    EXPECT_EQ(show(result), "prec 0 exp 0 flags 3 sign 1 digits none");
    EXPECT_EQ(oak_bcdAdd(&most, &half, UP, &result), sPRECISIONLOSS);
    EXPECT_EQ(show(result), "prec 32 exp 32 flags 1 sign -1 digits " + NINES);
}

// ---- Conditions ------------------------------------------------------------------------------

TEST(DecimalConditions, TurnIntoStatusesInTheirOrder) {
    for (int flags = 0; flags < 256; ++flags)
        EXPECT_EQ(bcd_retcode(static_cast<uint8_t>(flags)), plain_status(flags)) << flags;
    EXPECT_EQ(bcd_retcode(0x3F), eNOMEMORY);
    EXPECT_EQ(bcd_retcode(0x2F), eDIVBY0);
    EXPECT_EQ(bcd_retcode(0x2B), eNOTANUMBER);
    EXPECT_EQ(bcd_retcode(0x0B), eRANGE);
    EXPECT_EQ(bcd_retcode(0x09), sPRECISIONLOSS);
    EXPECT_EQ(bcd_retcode(0x08), sUNDERFLOW);
    EXPECT_EQ(bcd_retcode(0xC0), sOKAY);
    EXPECT_EQ(BCD_FLAG_FATAL, 0x26);
}

TEST(DecimalConditions, StickToResultsUntilAZeroClearsThem) {
    OAK_BCD_T rounded = record("5", 1, 1, BCD_FLAG_PRECISION);
    const OAK_BCD_T one = decimal("1");
    OAK_BCD_T result;
    for (const BINARY operation : {oak_bcdAdd, oak_bcdSub, oak_bcdMult}) {
        EXPECT_EQ(operation(&rounded, &one, EVEN, &result), sPRECISIONLOSS);
        EXPECT_EQ(result.flags, BCD_FLAG_PRECISION);
        EXPECT_EQ(operation(&one, &rounded, EVEN, &result), sPRECISIONLOSS);
    }
    EXPECT_EQ(oak_bcdSub(&rounded, &rounded, EVEN, &result), sOKAY);
    EXPECT_EQ(show(result), "prec 0 exp 0 flags 0 sign 1 digits none");
    OAK_BCD_T zero = decimal("0");
    zero.flags = BCD_FLAG_PRECISION | BCD_FLAG_UNDERFLOW;
    EXPECT_EQ(oak_bcdMult(&rounded, &zero, EVEN, &result), sOKAY);
    EXPECT_EQ(oak_bcdAdd(&zero, &zero, EVEN, &result), sOKAY);
    EXPECT_EQ(result.flags, 0);
    rounded.flags = BCD_FLAG_UNDERFLOW;
    EXPECT_EQ(oak_bcdAdd(&rounded, &one, EVEN, &result), sUNDERFLOW);
    EXPECT_EQ(result.flags, BCD_FLAG_UNDERFLOW);
}

// A divisor whose seed is already the exact reciprocal never meets a digit operation that
// would hand its conditions on.
TEST(DecimalConditions, OfADivisorAreLostWhereItsSeedIsExact) {
    const OAK_BCD_T one = decimal("1");
    OAK_BCD_T result;
    for (const char *exact : {"125", "625"}) {
        const OAK_BCD_T divisor = record(exact, 0, 1, BCD_FLAG_PRECISION);
        EXPECT_EQ(oak_bcdDiv(&one, &divisor, EVEN, &result), sOKAY);
        EXPECT_EQ(result.flags, 0);
    }
    const OAK_BCD_T divisor = record("5", 0, 1, BCD_FLAG_PRECISION);
    EXPECT_EQ(oak_bcdReciprocal(&divisor, EVEN, &result), sPRECISIONLOSS);
}

// A condition other than lost precision ends the reciprocal's steps after the first.
TEST(DecimalConditions, OtherThanPrecisionEndTheReciprocalEarly) {
    const OAK_BCD_T one = decimal("1");
    const OAK_BCD_T divisor = record("3", 1, 1, BCD_FLAG_UNDERFLOW);
    OAK_BCD_T result;
    EXPECT_EQ(oak_bcdDiv(&one, &divisor, EVEN, &result), sUNDERFLOW);
    // The seed for 30 is 3.278689, and 1 - 0.3 * 3.278689 is 0.0163933;
    // 3.278689 + 3.278689 * 0.0163933 is 3.3324375323837.
    EXPECT_EQ(show(result), "prec 14 exp 0 flags 8 sign 1 digits 33324375323837");
}

TEST(DecimalConditions, FatalOnesPoisonEveryOperation) {
    for (const int fatal : {BCD_FLAG_OVERFLOW, BCD_FLAG_DIVBY0, BCD_FLAG_NAN})
        for (const Operation &operation : OPERATIONS)
            for (const bool on_left : {true, false}) {
                const OAK_BCD_T bad = record("7", 1, -1, fatal);
                const OAK_BCD_T good = record("2", 1, -1, BCD_FLAG_PRECISION);
                OAK_BCD_T result = canary();
                EXPECT_EQ(on_left ? operation.library(&bad, &good, EVEN, &result)
                                  : operation.library(&good, &bad, EVEN, &result),
                          plain_status(fatal));
                EXPECT_EQ(show(result), "prec 0 exp 0 flags " + std::to_string(fatal | 1) +
                                            " sign 1 digits none");
            }
    const OAK_BCD_T bad = record("7", 1, -1, BCD_FLAG_NAN | BCD_FLAG_UNDERFLOW);
    OAK_BCD_T result = canary();
    EXPECT_EQ(oak_bcdReciprocal(&bad, EVEN, &result), eNOTANUMBER);
    EXPECT_EQ(show(result), "prec 0 exp 0 flags 40 sign 1 digits none");
    for (const auto operation : {oak_bcdChgSign, oak_bcdCeiling, oak_bcdFloor, oak_bcdRound}) {
        result = canary();
        EXPECT_EQ(operation(&bad, &result), eNOTANUMBER);
        EXPECT_TRUE(same(result, canary()));
    }
}

TEST(DecimalConditions, NoMemoryLeavesTheResultUntouched) {
    const OAK_BCD_T bad = record("7", 1, 1, BCD_FLAG_NOMEM), one = decimal("1");
    for (const Operation &operation : OPERATIONS) {
        OAK_BCD_T result = canary();
        EXPECT_EQ(operation.library(&bad, &one, EVEN, &result), eNOMEMORY) << operation.name;
        EXPECT_TRUE(same(result, canary())) << operation.name;
    }
    // A poisoned zero carries it too; a computed zero has no conditions.
    const OAK_BCD_T worse = record("7", 1, 1, BCD_FLAG_NOMEM | BCD_FLAG_NAN);
    OAK_BCD_T result = canary();
    EXPECT_EQ(oak_bcdAdd(&worse, &one, EVEN, &result), eNOMEMORY);
    EXPECT_TRUE(same(result, canary()));
    EXPECT_EQ(oak_bcdSub(&bad, &bad, EVEN, &result), sOKAY);
}

// ---- Arguments and damaged records
// ----------------------------------------------------------------

TEST(DecimalArguments, NullIsRefused) {
    const OAK_BCD_T one = decimal("1");
    OAK_BCD_T result = canary();
    for (const Operation &operation : OPERATIONS) {
        EXPECT_EQ(operation.library(nullptr, &one, EVEN, &result), eINVNULLARG);
        EXPECT_EQ(operation.library(&one, nullptr, EVEN, &result), eINVNULLARG);
        EXPECT_EQ(operation.library(&one, &one, EVEN, nullptr), eINVNULLARG);
    }
    EXPECT_EQ(oak_bcdReciprocal(nullptr, EVEN, &result), eINVNULLARG);
    EXPECT_EQ(oak_bcdReciprocal(&one, EVEN, nullptr), eINVNULLARG);
    for (const auto operation : {oak_bcdChgSign, oak_bcdCeiling, oak_bcdFloor, oak_bcdRound}) {
        EXPECT_EQ(operation(nullptr, &result), eINVNULLARG);
        EXPECT_EQ(operation(&one, nullptr), eINVNULLARG);
    }
    EXPECT_EQ(oak_bcdAdjust(nullptr, 5, 2), eINVNULLARG);
    EXPECT_EQ(oak_bcdAddInt32(nullptr, 1, EVEN, &result), eINVNULLARG);
    EXPECT_EQ(oak_bcdSubFromDouble(1.0, &one, EVEN, nullptr), eINVNULLARG);
    EXPECT_TRUE(same(result, canary()));
}

TEST(DecimalArguments, RecordsThatAreNoDecimalsAreRefusedWithAZero) {
    const OAK_BCD_T one = decimal("1");
    OAK_BCD_T bad[4];
    for (OAK_BCD_T &bcd : bad)
        bcd = record("12", 1, -1, BCD_FLAG_NAN);
    bad[0].prec = 33;
    bad[1].prec = 255;
    bad[2].exp = 41;
    bad[3].exp = -41;
    const std::string zero = show(decimal("0"));
    for (const OAK_BCD_T &bcd : bad) {
        OAK_BCD_T result;
        for (const Operation &operation : OPERATIONS) {
            result = canary();
            EXPECT_EQ(operation.library(&bcd, &one, EVEN, &result), eINVBCD);
            EXPECT_EQ(show(result), zero);
            result = canary();
            EXPECT_EQ(operation.library(&one, &bcd, EVEN, &result), eINVBCD);
            EXPECT_EQ(show(result), zero);
        }
        result = canary();
        EXPECT_EQ(oak_bcdReciprocal(&bcd, EVEN, &result), eINVBCD);
        EXPECT_EQ(show(result), zero);
        for (const auto operation : {oak_bcdChgSign, oak_bcdCeiling, oak_bcdFloor, oak_bcdRound}) {
            result = canary();
            EXPECT_EQ(operation(&bcd, &result), eINVBCD);
            EXPECT_EQ(show(result), zero);
        }
        result = bcd;
        EXPECT_EQ(oak_bcdAdjust(&result, 5, 2), eINVBCD);
        EXPECT_EQ(show(result), zero);
    }
}

TEST(DecimalArguments, ExponentsToFortyAreComputedWith) {
    const OAK_BCD_T one = decimal("1");
    const OAK_BCD_T high = record(NINES, 40), low = record("1", -40, -1);
    OAK_BCD_T result;
    EXPECT_EQ(oak_bcdMult(&low, &one, EVEN, &result), sOKAY); // below 40 places
    EXPECT_EQ(oak_bcdAdd(&high, &one, EVEN, &result), eRANGE);
    EXPECT_EQ(oak_bcdMult(&high, &low, ZERO, &result), sPRECISIONLOSS);
    EXPECT_EQ(show(result), "prec 31 exp -1 flags 1 sign -1 digits " + NINES.substr(1));
    const OAK_BCD_T whole = record("1" + std::string(31, '0'), 40);
    EXPECT_EQ(oak_bcdSub(&whole, &low, EVEN, &result), eRANGE);
}

TEST(DecimalArguments, BytesPastThePrecisionDoNotMatter) {
    Random random(1);
    for (int i = 0; i < 300; ++i) {
        const OAK_BCD_T left = random_decimal(random), right = random_decimal(random);
        OAK_BCD_T dirty_left = left, dirty_right = right;
        for (int k = left.prec + 1; k <= 32; ++k)
            dirty_left.data[k] = static_cast<uint8_t>(random.next());
        for (int k = right.prec + 1; k <= 32; ++k)
            dirty_right.data[k] = static_cast<uint8_t>(random.next());
        for (const Operation &operation : OPERATIONS) {
            OAK_BCD_T clean = canary(), result = canary();
            EXPECT_EQ(operation.library(&left, &right, EVEN, &clean),
                      operation.library(&dirty_left, &dirty_right, EVEN, &result));
            EXPECT_TRUE(same(clean, result)) << show(left) << "\n" << show(right);
        }
        EXPECT_EQ(oak_bcdCompare(&left, &right), oak_bcdCompare(&dirty_left, &dirty_right));
        EXPECT_EQ(oak_bcdCompare(&left, &dirty_left), OAK_EQ);
        for (const auto operation : {oak_bcdChgSign, oak_bcdCeiling, oak_bcdFloor, oak_bcdRound}) {
            OAK_BCD_T clean = canary(), result = canary();
            EXPECT_EQ(operation(&left, &clean), operation(&dirty_left, &result));
            EXPECT_TRUE(same(clean, result)) << show(left);
        }
    }
}

// ---- Against the plain decimal
// ----------------------------------------------------------------------

void expect_as_plain(const Operation &operation, const OAK_BCD_T &l, const OAK_BCD_T &r,
                     const Plain &exact, OAK_BCD_ROUNDING_MODE mode) {
    OAK_BCD_T expected, result = canary();
    const OAK_RETCODE status = plain_assign(exact, mode, result, &expected);
    EXPECT_EQ(operation.library(&l, &r, mode, &result), status)
        << operation.name << " mode " << mode << "\n"
        << show(l) << "\n"
        << show(r);
    EXPECT_TRUE(same(result, expected)) << operation.name << " mode " << mode << "\n"
                                        << show(l) << "\n"
                                        << show(r) << "\n"
                                        << show(result) << "\n"
                                        << show(expected);
}

void compare_with_plain(const Operation &operation, const OAK_BCD_T &l, const OAK_BCD_T &r) {
    const Plain exact = operation.plain(plain(l), plain(r));
    for (const auto mode : MODES)
        expect_as_plain(operation, l, r, exact, mode);
}

TEST(DecimalAgainstPlain, SumsAndProductsOfNormalizedValues) {
    Random random(2);
    for (int i = 0; i < 1500; ++i) {
        const OAK_BCD_T l = random_decimal(random), r = random_decimal(random);
        compare_with_plain(OPERATIONS[0], l, r);
        compare_with_plain(OPERATIONS[1], l, r);
        if (i % 3 == 0)
            compare_with_plain(OPERATIONS[2], l, r);
        if (::testing::Test::HasFailure())
            return;
    }
}

TEST(DecimalAgainstPlain, QuotientsOfNormalizedValues) {
    Random random(3);
    for (int i = 0; i < 250; ++i) {
        const OAK_BCD_T l = random_decimal(random), r = random_decimal(random);
        compare_with_plain(OPERATIONS[3], l, r);
        if (::testing::Test::HasFailure())
            return;
    }
}

TEST(DecimalAgainstPlain, EveryOperationOnDamagedRecords) {
    Random random(4);
    for (int i = 0; i < 800; ++i) {
        const OAK_BCD_T l = random_record(random), r = random_record(random);
        for (size_t k = 0; k < 3; ++k)
            compare_with_plain(OPERATIONS[k], l, r);
        if (i % 8 == 0)
            compare_with_plain(OPERATIONS[3], l, r);
        EXPECT_EQ(ucompare(&l, &r), plain_ucompare(plain(l), plain(r))) << show(l) << show(r);
        if (::testing::Test::HasFailure())
            return;
    }
}

// Every length against every length, with all nines: the carries go all the way.
TEST(DecimalAgainstPlain, EveryLengthAgainstEveryLength) {
    for (int left = 1; left <= 32; ++left)
        for (int right = 1; right <= 32; right += 1 + left % 3) {
            const OAK_BCD_T l = record(std::string(static_cast<size_t>(left), '9'), left % 17);
            const OAK_BCD_T r =
                record(std::string(static_cast<size_t>(right), '9'), right % 13 - 6, -1);
            for (size_t k = 0; k < 3; ++k) {
                const Plain exact = OPERATIONS[k].plain(plain(l), plain(r));
                expect_as_plain(OPERATIONS[k], l, r, exact, EVEN);
                expect_as_plain(OPERATIONS[k], l, r, exact, UP);
            }
        }
}

// Exponents at every distance, up to no overlap at all.
TEST(DecimalAgainstPlain, EveryDistanceOfExponents) {
    for (int distance = -72; distance <= 72; ++distance) {
        const int low = std::max(-40, -40 - distance);
        const OAK_BCD_T l = record("12345678901234567", low + distance > 40 ? 40 : low + distance);
        const OAK_BCD_T r = record("98765432109876543210", low);
        for (size_t k = 0; k < 2; ++k)
            expect_as_plain(OPERATIONS[k], l, r, OPERATIONS[k].plain(plain(l), plain(r)), EVEN);
    }
}

WORK_BCD random_work(Random &random) {
    const int prec = 1 + static_cast<int>(random.below(40));
    std::string digits = random_digits(random, prec);
    if (digits.front() == '0')
        digits.front() = static_cast<char>('1' + random.below(9));
    Plain value{static_cast<int>(random.below(81)) - 40, static_cast<int>(random.below(2)), 1, {0}};
    for (const char digit : digits)
        value.digits.push_back(digit - '0');
    return record_of<WORK_BCD>(value);
}

TEST(WorkLevel, ReciprocalsAgreeToTheLastOfFortyDigits) {
    Random random(5);
    for (int i = 0; i < 120; ++i) {
        const WORK_BCD operand = random_work(random);
        WORK_BCD result;
        work_reciprocal(&operand, &result);
        int steps = 0;
        EXPECT_EQ(show(result), show(record_of<WORK_BCD>(plain_reciprocal(plain(operand), &steps))))
            << show(operand);
        EXPECT_LE(steps, 8) << show(operand);
    }
}

// One and two digits with zeros and nines behind them: every seed, and quotients that are
// or nearly are short.
TEST(WorkLevel, ReciprocalsOfEverySeedAgree) {
    for (int n = 10; n < 100; ++n)
        for (const char *tail : {"", "00000000000000000000000000000000000001",
                                 "99999999999999999999999999999999999999"}) {
            if (n % 4 != 0 && tail[0] == '9')
                continue;
            const std::string digits = std::to_string(n) + tail;
            Plain value{0, 0, -1, {0}};
            for (const char digit : digits)
                value.digits.push_back(digit - '0');
            const WORK_BCD operand = record_of<WORK_BCD>(value);
            WORK_BCD result;
            work_reciprocal(&operand, &result);
            EXPECT_EQ(show(result), show(record_of<WORK_BCD>(plain_reciprocal(value)))) << digits;
        }
}

TEST(WorkLevel, OperationsOnFortyDigitsAgree) {
    Random random(6);
    for (int i = 0; i < 600; ++i) {
        const WORK_BCD l = random_work(random), r = random_work(random);
        WORK_BCD result;
        work_add(&l, &r, &result);
        EXPECT_EQ(show(result), show(record_of<WORK_BCD>(plain_add(plain(l), plain(r)))));
        work_sub(&l, &r, &result);
        EXPECT_EQ(show(result), show(record_of<WORK_BCD>(plain_sub(plain(l), plain(r)))));
        work_mult(&l, &r, &result);
        EXPECT_EQ(show(result), show(record_of<WORK_BCD>(plain_mult(plain(l), plain(r)))));
        if (::testing::Test::HasFailure())
            return;
    }
}

TEST(WorkLevel, ResultsMayBeOperands) {
    Random random(7);
    for (int i = 0; i < 100; ++i) {
        const WORK_BCD l = random_work(random), r = random_work(random);
        for (const auto work : {work_add, work_sub, work_mult, work_div}) {
            WORK_BCD apart, in_left = l, in_right = r;
            work(&l, &r, &apart);
            work(&in_left, &r, &in_left);
            work(&l, &in_right, &in_right);
            EXPECT_EQ(show(in_left), show(apart));
            EXPECT_EQ(show(in_right), show(apart));
        }
        WORK_BCD squared, in_place = l;
        work_mult(&l, &l, &squared);
        work_mult(&in_place, &in_place, &in_place);
        EXPECT_EQ(show(in_place), show(squared));
    }
}

TEST(WorkLevel, NormalizesInPlace) {
    WORK_BCD work = record_of<WORK_BCD>(Plain{3, 1, 1, {0, 0, 0, 5, 0, 0}});
    normalize_work(&work);
    EXPECT_EQ(show(work), "prec 1 exp 1 flags 1 sign 1 digits 5");
    work = record_of<WORK_BCD>(Plain{0, 1, -1, {1, 2, 0}});
    normalize_work(&work);
    EXPECT_EQ(show(work), "prec 2 exp 1 flags 1 sign -1 digits 12");
    work = record_of<WORK_BCD>(Plain{2, 1, -1, {0, 0, 0}});
    normalize_work(&work);
    EXPECT_EQ(show(work), "prec 0 exp 0 flags 0 sign 1 digits none");
    work = record_of<WORK_BCD>(Plain{3, 1, -1, {0, 4}});
    normalize_work(&work);
    EXPECT_EQ(show(work), "prec 0 exp 0 flags 3 sign 1 digits none");
}

TEST(WorkLevel, CleanCopiesCarryDigitsAndDropLeadingZeros) {
    struct {
        Plain value;
        const char *text;
    } const rows[] = {
        {{1, 0, 1, {0, 10}}, "prec 2 exp 2 flags 0 sign 1 digits 10"},
        {{2, 1, -1, {0, 9, 10, 0}}, "prec 4 exp 3 flags 1 sign -1 digits 1000"},
        {{2, 1, 1, {0, 0, 3}}, "prec 1 exp 1 flags 1 sign 1 digits 3"},
        {{2, 1, 1, {0, 0, 0}}, "prec 0 exp 0 flags 1 sign 1 digits none"},
        {{0, 0, 1, {255, 255}}, "prec 4 exp 3 flags 0 sign 1 digits 2805"},
        {{0, 0, 1, {7}}, "prec 1 exp 1 flags 0 sign 1 digits 7"},
    };
    for (const auto &row : rows) {
        const WORK_BCD work = record_of<WORK_BCD>(row.value);
        WORK_BCD clean;
        work_clean_copy(&work, &clean);
        EXPECT_EQ(show(clean), row.text);
        EXPECT_EQ(show(clean), show(record_of<WORK_BCD>(plain_clean(row.value))));
    }
}

TEST(DecimalArithmetic, ResultsMayBeOperands) {
    Random random(8);
    for (int i = 0; i < 200; ++i) {
        const OAK_BCD_T l = random_decimal(random), r = random_decimal(random);
        for (const Operation &operation : OPERATIONS) {
            OAK_BCD_T apart, in_left = l, in_right = r;
            const OAK_RETCODE status = operation.library(&l, &r, EVEN, &apart);
            EXPECT_EQ(operation.library(&in_left, &r, EVEN, &in_left), status);
            EXPECT_EQ(operation.library(&l, &in_right, EVEN, &in_right), status);
            EXPECT_TRUE(same(apart, in_left) && same(apart, in_right));
        }
    }
}

// ---- Words and fixed-point numbers
// ---------------------------------------------------------------

TEST(DigitWords, TurnIntoLimbsAndBack) {
    Random random(11);
    for (int i = 0; i < 20000; ++i) {
        const uint64_t limb = i < 10000 ? static_cast<uint64_t>(i) : random.below(100000000);
        char text[9];
        snprintf(text, sizeof text, "%08u", static_cast<unsigned>(limb));
        uint8_t digits[8];
        bcd_words::store_word(digits, bcd_words::word_of(limb));
        for (int k = 0; k < 8; ++k)
            ASSERT_EQ(digits[k], text[k] - '0') << text;
        ASSERT_EQ(bcd_words::limb_of(bcd_words::load_word(digits)), limb);
    }
    EXPECT_EQ(bcd_words::word_of(99999999), 0x0909090909090909u);
}

TEST(DigitWords, TellDigitsAboveNine) {
    for (int position = 0; position < 8; ++position)
        for (int digit = 0; digit < 256; ++digit) {
            const uint64_t word = 0x0909090909090909u & ~(uint64_t{0xFF} << (8 * position));
            EXPECT_EQ(
                bcd_words::odd_digits(word | static_cast<uint64_t>(digit) << (8 * position)) != 0,
                digit > 9);
        }
}

TEST(DigitWords, MoveBackByAnyCount) {
    for (int digits = 0; digits <= 40; ++digits) {
        uint8_t bytes[32], moved[32];
        uint64_t row[4];
        for (int i = 0; i < 32; ++i)
            bytes[i] = static_cast<uint8_t>(i + 1);
        for (int i = 0; i < 4; ++i)
            row[i] = bcd_words::load_word(bytes + 8 * i);
        bcd_words::move_back(row, 4, digits);
        for (int i = 0; i < 4; ++i)
            bcd_words::store_word(moved + 8 * i, row[i]);
        for (int i = 0; i < 32; ++i)
            ASSERT_EQ(moved[i], i < digits ? 0 : i - digits + 1) << digits;
    }
}

using bcd_fixed::Fixed;

// 48 digits, eight before the point.
std::string digits_of(const Fixed &number) {
    uint64_t limbs[bcd_fixed::FIXED_LIMBS];
    bcd_fixed::limbs_of(number, limbs);
    std::string text;
    for (const uint64_t limb : limbs) {
        char eight[9];
        snprintf(eight, sizeof eight, "%08u", static_cast<unsigned>(limb));
        text += eight;
    }
    return text;
}

Fixed fixed_of(const std::string &forty_digits) {
    uint64_t limbs[bcd_fixed::FRACTION_LIMBS];
    for (size_t i = 0; i < bcd_fixed::FRACTION_LIMBS; ++i)
        limbs[i] = std::stoull(forty_digits.substr(8 * i, 8));
    return bcd_fixed::fraction_of(limbs);
}

// Both texts have their point behind the eighth of 48 digits.
std::string product_of(const std::string &a, const std::string &b) {
    std::vector<int> digits(96, 0);
    for (size_t i = 48; i-- > 0;)
        for (size_t k = 48; k-- > 0;)
            digits[i + k + 1] += (a[i] - '0') * (b[k] - '0');
    for (size_t i = 95; i > 0; --i) {
        digits[i - 1] += digits[i] / 10;
        digits[i] %= 10;
    }
    std::string text; // sixteen digits before the point, of which eight are zero
    for (size_t i = 8; i < 56; ++i)
        text += static_cast<char>('0' + digits[i]);
    return text;
}

TEST(Fixed, KnowsItsConstants) {
    EXPECT_EQ(digits_of(bcd_fixed::ONE), "00000001" + std::string(40, '0'));
    EXPECT_EQ(digits_of(bcd_fixed::TEN), "00000010" + std::string(40, '0'));
    // 2^320 / 10^40 in words, the highest first.
    EXPECT_EQ(bcd_fixed::INVERSE.high, 0x08b61313bbabce2cu);
    EXPECT_EQ(bcd_fixed::high_word(bcd_fixed::INVERSE.low), 0x62323ac4b3b3da01u);
    EXPECT_EQ(bcd_fixed::low_word(bcd_fixed::INVERSE.low), 0x53b62be7bc1a0042u);
}

TEST(Fixed, ComesBackFromLimbs) {
    Random random(12);
    for (int i = 0; i < 500; ++i) {
        const std::string digits = random_digits(random, 40);
        EXPECT_EQ(digits_of(fixed_of(digits)), "00000000" + digits);
        EXPECT_EQ(digits_of(bcd_fixed::ten_times(fixed_of(digits))), "0000000" + digits + "0");
    }
}

TEST(Fixed, ProductsAreCutToFortyPlaces) {
    Random random(13);
    for (int i = 0; i < 300; ++i) {
        const Fixed a = bcd_fixed::ten_times(fixed_of(random_digits(random, 40)));
        const Fixed b = fixed_of(random_digits(random, 40));
        EXPECT_EQ(digits_of(bcd_fixed::multiply(a, b)), product_of(digits_of(a), digits_of(b)));
        // Products without a remainder, where the quotient's fraction is next to one.
        EXPECT_EQ(bcd_fixed::multiply(a, bcd_fixed::ONE), a);
        EXPECT_EQ(bcd_fixed::multiply(bcd_fixed::ONE, b), b);
        EXPECT_EQ(bcd_fixed::multiply(b, bcd_fixed::TEN), bcd_fixed::ten_times(b));
        // And one short of that.
        if (i % 10 == 0) {
            const Fixed less = bcd_fixed::subtract(bcd_fixed::ONE, Fixed{1, 0});
            EXPECT_EQ(digits_of(bcd_fixed::multiply(a, less)),
                      product_of(digits_of(a), digits_of(less)));
        }
    }
}

TEST(Fixed, CutsAPlaceForEachDigitBeforeThePoint) {
    Random random(14);
    for (int i = 0; i < 500; ++i) {
        const Fixed fraction = fixed_of(random_digits(random, 40));
        EXPECT_EQ(bcd_fixed::cut_to_40_digits(fraction), fraction);
        for (const int integer : {1, 9, 10, 99}) {
            Fixed number = fraction;
            for (int k = 0; k < integer; ++k)
                number = bcd_fixed::add(number, bcd_fixed::ONE);
            std::string expected = digits_of(number);
            for (int dropped = integer < 10 ? 1 : 2; dropped > 0; --dropped)
                expected[48 - static_cast<size_t>(dropped)] = '0';
            EXPECT_EQ(digits_of(bcd_fixed::cut_to_40_digits(number)), expected);
        }
    }
}

// ---- Native operands ---------------------------------------------------------------------------

// One native number in every form, against the core on the converted decimal.
template <typename Native>
struct Forms {
    using RIGHT = OAK_RETCODE (*)(const OAK_BCD_T *, Native, OAK_BCD_ROUNDING_MODE, OAK_BCD_T *);
    using LEFT = OAK_RETCODE (*)(Native, const OAK_BCD_T *, OAK_BCD_ROUNDING_MODE, OAK_BCD_T *);
    RIGHT add, sub, mult, div_by;
    LEFT sub_from, div;
    OAK_RETCODE (*convert)(Native, OAK_BCD_T *);
};

#define FORMS(suffix, type)                                                                        \
    Forms<type> {                                                                                  \
        oak_bcdAdd##suffix, oak_bcdSub##suffix, oak_bcdMult##suffix, oak_bcdDivBy##suffix,         \
            oak_bcdSubFrom##suffix, oak_bcdDiv##suffix, oak_bcdFrom##suffix                        \
    }

template <typename Native>
void expect_forms(const Forms<Native> &forms, Native number) {
    OAK_BCD_T converted, expected, result;
    ASSERT_GE(forms.convert(number, &converted), sOKAY);
    for (const OAK_BCD_T &other : {decimal("-12.5"), decimal("0"), record(NINES, 20)})
        for (const auto mode : {EVEN, UP}) {
            const auto expect_right = [&](BINARY core, typename Forms<Native>::RIGHT form) {
                const OAK_RETCODE status = core(&other, &converted, mode, &expected);
                EXPECT_EQ(form(&other, number, mode, &result), status) << number;
                EXPECT_TRUE(same(result, expected)) << number << show(result) << show(expected);
            };
            const auto expect_left = [&](BINARY core, typename Forms<Native>::LEFT form) {
                const OAK_RETCODE status = core(&converted, &other, mode, &expected);
                EXPECT_EQ(form(number, &other, mode, &result), status) << number;
                EXPECT_TRUE(same(result, expected)) << number << show(result) << show(expected);
            };
            expect_right(oak_bcdAdd, forms.add);
            expect_right(oak_bcdSub, forms.sub);
            expect_right(oak_bcdMult, forms.mult);
            expect_right(oak_bcdDiv, forms.div_by);
            expect_left(oak_bcdSub, forms.sub_from);
            expect_left(oak_bcdDiv, forms.div);
        }
}

template <typename Native>
void expect_forms_at_both_ends(const Forms<Native> &forms) {
    for (const Native number : {Native{0}, Native{1}, Native{7}, std::numeric_limits<Native>::min(),
                                std::numeric_limits<Native>::max()})
        expect_forms(forms, number);
}

TEST(DecimalNativeForms, AgreeWithTheConvertedDecimal) {
    expect_forms_at_both_ends(FORMS(Int32, int32_t));
    expect_forms_at_both_ends(FORMS(UInt32, uint32_t));
    expect_forms_at_both_ends(FORMS(Int64, int64_t));
    expect_forms_at_both_ends(FORMS(UInt64, uint64_t));
    for (const double number : {0.0, -0.5, 0.1, 1e31, -123456789.125})
        expect_forms(FORMS(Double, double), number);
}

TEST(DecimalNativeForms, HaveTheOrderOfTheirNames) {
    const OAK_BCD_T eight = decimal("8");
    OAK_BCD_T result;
    EXPECT_EQ(oak_bcdSubInt32(&eight, 3, EVEN, &result), sOKAY);
    EXPECT_EQ(show(result), show(decimal("5")));
    EXPECT_EQ(oak_bcdSubFromInt32(3, &eight, EVEN, &result), sOKAY);
    EXPECT_EQ(show(result), show(decimal("-5")));
    EXPECT_GE(oak_bcdDivByUInt64(&eight, 32, EVEN, &result), sOKAY);
    EXPECT_EQ(order(result, decimal("0.25")), OAK_EQ);
    EXPECT_GE(oak_bcdDivUInt64(32, &eight, EVEN, &result), sOKAY);
    EXPECT_EQ(order(result, decimal("4")), OAK_EQ);
}

TEST(DecimalNativeForms, ReturnAFailedConversionBeforeAnythingElse) {
    const OAK_BCD_T one = decimal("1");
    const Forms<double> forms = FORMS(Double, double);
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::infinity(), 1e32, -1e300}) {
        OAK_BCD_T result = canary();
        for (const auto form : {forms.add, forms.sub, forms.mult, forms.div_by})
            EXPECT_EQ(form(&one, bad, EVEN, &result), eRANGE);
        for (const auto form : {forms.sub_from, forms.div})
            EXPECT_EQ(form(bad, &one, EVEN, &result), eRANGE);
        EXPECT_TRUE(same(result, canary()));
    }
}

// 1.5e-20 has 15 digits past the 32nd place, which its conversion reports.
TEST(DecimalNativeForms, GoOnAfterALossOfPrecision) {
    const OAK_BCD_T one = decimal("1");
    OAK_BCD_T converted, result;
    ASSERT_EQ(oak_bcdFromDouble(1.5e-20, &converted), sPRECISIONLOSS);
    EXPECT_EQ(oak_bcdAddDouble(&one, 1.5e-20, EVEN, &result), sOKAY);
    EXPECT_EQ(show(result), show(decimal("1.000000000000000000015")));
}

// ---- Signs, integers and order
// ------------------------------------------------------------------------

TEST(DecimalOrder, SignIsZeroWithoutDigits) {
    EXPECT_EQ(sign_of(decimal("0")), 0);
    EXPECT_EQ(sign_of(decimal("0.001")), 1);
    EXPECT_EQ(sign_of(decimal("-7")), -1);
    const OAK_BCD_T minus_zero = record("", 0, -1);
    EXPECT_EQ(oak_bcdSign(&minus_zero), 0);
}

TEST(DecimalOrder, ZeroIsAllDigitsZero) {
    OAK_BCD_T bcd = record("000", 2, -1);
    EXPECT_EQ(oak_bcdIsZero(&bcd), OAK_TRUE);
    bcd.data[4] = 1; // past prec
    EXPECT_EQ(oak_bcdIsZero(&bcd), OAK_TRUE);
    bcd.data[0] = 1;
    EXPECT_EQ(oak_bcdIsZero(&bcd), OAK_FALSE);
    EXPECT_EQ(is_zero(decimal("0")), OAK_TRUE);
    EXPECT_EQ(is_zero(decimal("0.00000000000000000000000000000001")), OAK_FALSE);
    bcd = record("", 0);
    bcd.prec = 255;
    EXPECT_EQ(oak_bcdIsZero(&bcd), OAK_TRUE);
}

TEST(DecimalOrder, ValuesInOrder) {
    const char *const ascending[] = {"-99999999999999999999999999999999",
                                     "-100",
                                     "-99.9",
                                     "-10.1",
                                     "-10",
                                     "-1",
                                     "-0.11",
                                     "-0.1",
                                     "-0.00000000000000000000000000000001",
                                     "0",
                                     "0.00000000000000000000000000000001",
                                     "0.1",
                                     "0.11",
                                     "0.2",
                                     "1",
                                     "1.0000000000000000000000000000001",
                                     "9",
                                     "10",
                                     "10.00000001",
                                     "10.00000002",
                                     "10.000000021",
                                     "10.0000000210000001",
                                     "99.9",
                                     "100",
                                     "12345678901234567890123456789011",
                                     "12345678901234567890123456789012",
                                     "99999999999999999999999999999999"};
    const size_t count = std::size(ascending);
    for (size_t i = 0; i < count; ++i)
        for (size_t k = 0; k < count; ++k) {
            const OAK_BCD_T left = decimal(ascending[i]), right = decimal(ascending[k]);
            EXPECT_EQ(oak_bcdCompare(&left, &right), i < k   ? OAK_LT
                                                     : i > k ? OAK_GT
                                                             : OAK_EQ)
                << ascending[i] << " " << ascending[k];
        }
}

TEST(DecimalOrder, BothZerosAreOneValueAndConditionsDoNotMatter) {
    OAK_BCD_T plus = decimal("0"), minus = record("", 0, -1, 0x26);
    EXPECT_EQ(oak_bcdCompare(&plus, &minus), OAK_EQ);
    EXPECT_EQ(oak_bcdCompare(&minus, &plus), OAK_EQ);
    minus.exp = 1; // no zero shape any more: the negative one is smaller
    EXPECT_EQ(oak_bcdCompare(&minus, &plus), OAK_LT);
    EXPECT_EQ(oak_bcdCompare(&plus, &minus), OAK_GT);
    const OAK_BCD_T five = decimal("5"), flagged = record("5", 1, 1, 0xFF);
    EXPECT_EQ(oak_bcdCompare(&five, &flagged), OAK_EQ);
    EXPECT_EQ(oak_bcdCompare(&five, &five), OAK_EQ);
}

TEST(DecimalOrder, SeesThroughLeadingAndTrailingZeros) {
    const OAK_BCD_T five = record("5", 1), padded = record("0050000000000", 3);
    EXPECT_EQ(oak_bcdCompare(&five, &padded), OAK_EQ);
    EXPECT_EQ(oak_bcdCompare(&padded, &five), OAK_EQ);
    const OAK_BCD_T trailing = record("5000000000000", 1);
    EXPECT_EQ(oak_bcdCompare(&five, &trailing), OAK_EQ);
    OAK_BCD_T carried = record("0", 1);
    carried.data[0] = 1; // ten
    EXPECT_EQ(order(carried, decimal("10")), OAK_EQ);
    EXPECT_EQ(order(carried, decimal("9")), OAK_GT);
    EXPECT_EQ(order(decimal("11"), carried), OAK_GT);
}

TEST(DecimalOrder, ReadsNothingOutsideRecordsThatAreNone) {
    OAK_BCD_T bad = record("1", 1), one = decimal("1");
    bad.prec = 255;
    for (const int exp : {-128, -40, 0, 127}) {
        bad.exp = static_cast<int8_t>(exp);
        EXPECT_EQ(oak_bcdCompare(&bad, &one), -oak_bcdCompare(&one, &bad));
        EXPECT_EQ(oak_bcdCompare(&bad, &bad), OAK_EQ);
    }
}

struct Unary {
    const char *operand;
    const char *ceiling, *floor, *round;
};

TEST(DecimalIntegers, CeilingFloorAndRound) {
    const Unary rows[] = {
        {"0", "0", "0", "0"},
        {"1", "1", "1", "1"},
        {"-1", "-1", "-1", "-1"},
        {"100", "100", "100", "100"},
        {"0.5", "1", "0", "1"},
        {"0.4", "1", "0", "0"},
        {"-0.5", "0", "-1", "-1"},
        {"-0.4", "0", "-1", "0"},
        {"0.05", "1", "0", "1"},
        {"-0.05", "0", "-1", "-1"},
        {"0.001", "1", "0", "1"},
        {"2.4", "3", "2", "2"},
        {"2.5", "3", "2", "3"},
        {"-2.4", "-2", "-3", "-2"},
        {"-2.5", "-2", "-3", "-3"},
        {"9.4", "10", "9", "9"},
        {"99.01", "100", "99", "99"},
        {"-99.99", "-99", "-100", nullptr},
        {"129.5", "130", "129", nullptr},
        {"128.5", "129", "128", "129"},
        {"9999999999999999999999999999999.9", "10000000000000000000000000000000",
         "9999999999999999999999999999999", nullptr},
        {"99999999999999999999999999999999", "99999999999999999999999999999999",
         "99999999999999999999999999999999", "99999999999999999999999999999999"},
    };
    for (const Unary &row : rows) {
        const OAK_BCD_T operand = decimal(row.operand);
        OAK_BCD_T result = canary();
        EXPECT_EQ(oak_bcdCeiling(&operand, &result), sOKAY);
        EXPECT_EQ(show(result), show(decimal(row.ceiling))) << "ceiling " << row.operand;
        EXPECT_EQ(oak_bcdFloor(&operand, &result), sOKAY);
        EXPECT_EQ(show(result), show(decimal(row.floor))) << "floor " << row.operand;
        EXPECT_EQ(oak_bcdRound(&operand, &result), sOKAY);
        if (row.round != nullptr) {
            EXPECT_EQ(show(result), show(decimal(row.round))) << "round " << row.operand;
        }
        OAK_BCD_T in_place = operand;
        EXPECT_EQ(oak_bcdRound(&in_place, &in_place), sOKAY);
        EXPECT_TRUE(same(in_place, result));
    }
}

TEST(DecimalIntegers, RoundLeavesADigitOfTen) {
    struct {
        const char *operand, *result;
    } const rows[] = {
        {"9.5", "prec 1 exp 1 flags 0 sign 1 digits [10]"},
        {"-99.99", "prec 2 exp 2 flags 0 sign -1 digits 9[10]"},
        {"129.5", "prec 3 exp 3 flags 0 sign 1 digits 12[10]"},
    };
    for (const auto &row : rows) {
        const OAK_BCD_T operand = decimal(row.operand);
        OAK_BCD_T result = canary();
        EXPECT_EQ(oak_bcdRound(&operand, &result), sOKAY);
        EXPECT_EQ(show(result), row.result);
        EXPECT_EQ(oak_bcdValidate(&result), eINVALID);
    }
}

TEST(DecimalIntegers, ADigitOfTenCountsAsTen) {
    const OAK_BCD_T nine_and_half = decimal("9.5"), one = decimal("1"), four = decimal("4");
    OAK_BCD_T ten, result;
    ASSERT_EQ(oak_bcdRound(&nine_and_half, &ten), sOKAY);
    EXPECT_EQ(oak_bcdAdd(&ten, &one, EVEN, &result), sOKAY);
    EXPECT_EQ(show(result), show(decimal("11")));
    EXPECT_EQ(oak_bcdSub(&ten, &one, EVEN, &result), sOKAY);
    EXPECT_EQ(show(result), show(decimal("9")));
    EXPECT_EQ(oak_bcdMult(&ten, &four, EVEN, &result), sOKAY);
    EXPECT_EQ(show(result), show(decimal("40")));
    EXPECT_EQ(oak_bcdDiv(&ten, &four, EVEN, &result), sPRECISIONLOSS);
    EXPECT_EQ(order(result, decimal("2.5")), OAK_EQ);
    EXPECT_EQ(oak_bcdDiv(&four, &ten, EVEN, &result), sPRECISIONLOSS);
    EXPECT_EQ(order(result, decimal("0.4")), OAK_EQ);
}

// A place of a difference keeps its last digit alone, and comparison sees one digit.
TEST(DecimalIntegers, ADigitOfTenIsLostWhereNothingIsSubtractedFromIt) {
    const OAK_BCD_T nine_and_half = decimal("9.5"), zero = decimal("0");
    OAK_BCD_T ten, result;
    ASSERT_EQ(oak_bcdRound(&nine_and_half, &ten), sOKAY);
    EXPECT_EQ(oak_bcdSub(&ten, &zero, EVEN, &result), sOKAY);
    EXPECT_EQ(show(result), show(zero));
    EXPECT_EQ(order(ten, decimal("9.9")), OAK_GT);
    EXPECT_EQ(order(ten, decimal("10")), OAK_LT);
}

TEST(DecimalIntegers, CarryConditionsOn) {
    const OAK_BCD_T rounded = record("25", 1, 1, BCD_FLAG_PRECISION);
    OAK_BCD_T result;
    EXPECT_EQ(oak_bcdCeiling(&rounded, &result), sPRECISIONLOSS);
    EXPECT_EQ(show(result), "prec 1 exp 1 flags 1 sign 1 digits 3");
    EXPECT_EQ(oak_bcdFloor(&rounded, &result), sPRECISIONLOSS);
    EXPECT_EQ(oak_bcdRound(&rounded, &result), sPRECISIONLOSS);
    EXPECT_EQ(oak_bcdChgSign(&rounded, &result), sPRECISIONLOSS);
    const OAK_BCD_T small = record("5", 0, 1, BCD_FLAG_PRECISION);
    EXPECT_EQ(oak_bcdFloor(&small, &result), sOKAY); // zero clears them
    const OAK_BCD_T zero = record("000", 2, -1, BCD_FLAG_UNDERFLOW);
    EXPECT_EQ(oak_bcdCeiling(&zero, &result), sOKAY);
    EXPECT_EQ(show(result), show(decimal("0")));
}

TEST(DecimalIntegers, TakeUnnormalizedOperands) {
    OAK_BCD_T operand = record("0025", 3); // 2.5
    OAK_BCD_T result;
    EXPECT_EQ(oak_bcdCeiling(&operand, &result), sOKAY);
    EXPECT_EQ(show(result), show(decimal("3")));
    EXPECT_EQ(oak_bcdRound(&operand, &result), sOKAY);
    EXPECT_EQ(show(result), show(decimal("3")));
    operand = record("5", 3); // digits before the point are missing: 500
    EXPECT_EQ(oak_bcdFloor(&operand, &result), sOKAY);
    EXPECT_EQ(show(result), show(decimal("500")));
    operand = record(NINES, 40); // and cannot all be filled in
    EXPECT_EQ(oak_bcdRound(&operand, &result), sOKAY);
    EXPECT_EQ(show(result), "prec 32 exp 40 flags 0 sign 1 digits " + NINES);
    operand = record(NINES, 3); // a carry slot in use pushes the last digit out
    operand.data[0] = 1;
    EXPECT_EQ(oak_bcdChgSign(&operand, &result), sPRECISIONLOSS);
    EXPECT_EQ(show(result), "prec 32 exp 4 flags 1 sign -1 digits 1" + NINES.substr(1));
}

TEST(DecimalIntegers, ChangeOfSignTakesInZero) {
    OAK_BCD_T bcd = decimal("12.5");
    EXPECT_EQ(oak_bcdChgSign(&bcd, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), show(decimal("-12.5")));
    EXPECT_EQ(oak_bcdChgSign(&bcd, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), show(decimal("12.5")));
    bcd = decimal("0");
    EXPECT_EQ(oak_bcdChgSign(&bcd, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), "prec 0 exp 0 flags 0 sign -1 digits none");
}

// ---- Fitting to a column
// --------------------------------------------------------------------------------

struct Fit {
    const char *value;
    int prec, scale;
    OAK_RETCODE status;
    const char *result;
};

TEST(DecimalAdjust, LaysDigitsOutInTheColumn) {
    const Fit rows[] = {
        {"1.5", 5, 2, sOKAY, "prec 5 exp 3 flags 0 sign 1 digits 00150"},
        {"-1.5", 5, 2, sOKAY, "prec 5 exp 3 flags 0 sign -1 digits 00150"},
        {"0", 3, 0, sOKAY, "prec 3 exp 3 flags 0 sign 1 digits 000"},
        {"0", 5, 5, sOKAY, "prec 5 exp 0 flags 0 sign 1 digits 00000"},
        {"123.45", 5, 2, sOKAY, "prec 5 exp 3 flags 0 sign 1 digits 12345"},
        {"0.001", 5, 3, sOKAY, "prec 5 exp 2 flags 0 sign 1 digits 00001"},
        {"0.0012", 2, 4, sOKAY, "prec 2 exp -2 flags 0 sign 1 digits 12"},
        {"99999999999999999999999999999999", 32, 0, sOKAY,
         "prec 32 exp 32 flags 0 sign 1 digits 99999999999999999999999999999999"},
        {"0.00000000000000000000000000000001", 32, 32, sOKAY,
         "prec 32 exp 0 flags 0 sign 1 digits 00000000000000000000000000000001"},
        // The fraction is cut, never rounded.
        {"1.999", 5, 2, sPRECISIONLOSS, "prec 5 exp 3 flags 1 sign 1 digits 00199"},
        {"-0.009", 3, 2, sPRECISIONLOSS, "prec 3 exp 1 flags 1 sign -1 digits 000"},
        {"0.001", 2, 2, sPRECISIONLOSS, "prec 2 exp 0 flags 1 sign 1 digits 00"},
        {"0.00000000000000000000000000000001", 32, 0, sPRECISIONLOSS,
         "prec 32 exp 32 flags 1 sign 1 digits 00000000000000000000000000000000"},
        {"1.2345678901234567890123456789012", 32, 10, sPRECISIONLOSS,
         "prec 32 exp 22 flags 1 sign 1 digits 00000000000000000000012345678901"},
        {"0.5", 0, 0, sPRECISIONLOSS, "prec 0 exp 0 flags 1 sign 1 digits none"},
        // The integer part is too long: the last place keeps what stood there.
        {"12345", 3, 0, eRANGE, "prec 3 exp 3 flags 2 sign 1 digits 343"},
        {"12345.67", 5, 2, eRANGE, "prec 5 exp 3 flags 2 sign 1 digits 34565"},
        {"12345.678", 5, 2, eRANGE, "prec 5 exp 3 flags 3 sign 1 digits 34567"},
        // One place left, or none: nothing moves and exp stays.
        {"123", 1, 0, eRANGE, "prec 1 exp 3 flags 2 sign 1 digits 1"},
        {"5", 0, 0, eRANGE, "prec 0 exp 1 flags 2 sign 1 digits none"},
        {"100000", 5, 5, eRANGE, "prec 5 exp 6 flags 2 sign 1 digits 00000"},
        {"12", 4, 3, eRANGE, "prec 4 exp 2 flags 2 sign 1 digits 1000"},
        {"0", 2, 4, eRANGE, "prec 2 exp 0 flags 2 sign 1 digits 00"},
        {"0.5", 2, 4, eRANGE, "prec 2 exp 0 flags 2 sign 1 digits 00"},
    };
    for (const Fit &row : rows) {
        OAK_BCD_T bcd = decimal(row.value);
        bcd.flags = 0x3F; // overwritten
        EXPECT_EQ(
            oak_bcdAdjust(&bcd, static_cast<uint8_t>(row.prec), static_cast<uint8_t>(row.scale)),
            row.status)
            << row.value << " " << row.prec << "," << row.scale;
        EXPECT_EQ(show(bcd), row.result) << row.value << " " << row.prec << "," << row.scale;
    }
}

TEST(DecimalAdjust, RefusesAPrecisionAboveThirtyTwo) {
    for (const int prec : {33, 64, 255}) {
        OAK_BCD_T bcd = decimal("-12.5");
        EXPECT_EQ(oak_bcdAdjust(&bcd, static_cast<uint8_t>(prec), 2), eRANGE);
        EXPECT_EQ(show(bcd), "prec 3 exp 2 flags 2 sign -1 digits 125");
    }
}

// Whatever goes in, data[1] to data[prec] are the column's places afterwards.
TEST(DecimalAdjust, AlwaysGivesTheColumnsPlaces) {
    Random random(9);
    for (int i = 0; i < 4000; ++i) {
        OAK_BCD_T bcd = i % 2 == 0 ? random_decimal(random) : random_record(random);
        const auto prec = static_cast<uint8_t>(random.below(33));
        const auto scale = static_cast<uint8_t>(random.below(i % 8 == 0 ? 256 : 33));
        const OAK_BCD_T before = bcd;
        const OAK_RETCODE status = oak_bcdAdjust(&bcd, prec, scale);
        ASSERT_EQ(bcd.prec, prec) << show(before);
        ASSERT_EQ(show(bcd).find("bytes past"), std::string::npos) << show(before);
        if (status == eRANGE)
            continue;
        ASSERT_EQ(bcd.exp, prec - scale) << show(before);
        for (int place = 1; place <= prec; ++place) {
            const int source = place - (bcd.exp - before.exp);
            const int digit = source >= 0 && source <= before.prec ? before.data[source] : 0;
            ASSERT_EQ(bcd.data[place], digit) << show(before) << show(bcd);
        }
    }
}

// ---- Anything at all
// ------------------------------------------------------------------------------------

TEST(DecimalDamage, RandomBytesNeverLeadOutsideTheRecord) {
    Random random(10);
    for (int i = 0; i < 3000; ++i) {
        OAK_BCD_T operands[2];
        for (OAK_BCD_T &bcd : operands) {
            for (size_t k = 0; k < sizeof bcd; ++k)
                reinterpret_cast<uint8_t *>(&bcd)[k] = static_cast<uint8_t>(random.next());
            if (random.below(4) != 0) {
                bcd.prec %= 33;
                bcd.exp = static_cast<int8_t>(bcd.exp % 41);
                bcd.flags &= random.below(2) == 0 ? 0 : 0x09;
            }
        }
        const auto mode = static_cast<OAK_BCD_ROUNDING_MODE>(random.below(6));
        for (const Operation &operation : OPERATIONS) {
            OAK_BCD_T result = decimal("0");
            OAK_IGNORE_STATUS(operation.library(&operands[0], &operands[1], mode, &result),
                              "any will do");
            EXPECT_EQ(show(result).find("bytes past"), std::string::npos);
            EXPECT_LE(result.prec, 32);
        }
        OAK_IGNORE_STATUS(oak_bcdCompare(&operands[0], &operands[1]), "it returns");
        for (const auto operation : {oak_bcdChgSign, oak_bcdCeiling, oak_bcdFloor, oak_bcdRound}) {
            OAK_BCD_T result = decimal("0");
            OAK_IGNORE_STATUS(operation(&operands[0], &result), "any will do");
            EXPECT_LE(result.prec, 32);
        }
    }
}

} // namespace
