// Decimals and the outside: every row of the parser's table and every rule, text with
// each scale, native numbers at both ends of their ranges, and the packed form, whose
// bytes order as the numbers do.
#include "bcd_reference.h"

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

using namespace bcd_reference;
using oaktest::hex;
using oaktest::Random;

const std::string NINES(32, '9');

OAK_BCD_T canary() {
    OAK_BCD_T bcd;
    memset(&bcd, 0xA5, sizeof bcd);
    return bcd;
}

bool is_canary(const OAK_BCD_T &bcd) {
    const OAK_BCD_T other = canary();
    return memcmp(&bcd, &other, sizeof bcd) == 0;
}

std::string text_of(const OAK_BCD_T &bcd, OAK_BOOL_T use_exponent = OAK_FALSE) {
    char text[100];
    EXPECT_EQ(oak_bcdToString(&bcd, use_exponent, text, sizeof text, nullptr), sOKAY);
    return text;
}

// ---- Parsing ---------------------------------------------------------------------------

struct Parsed {
    const char *text;
    OAK_RETCODE status;
    const char *result;
};

void expect_parsed(const Parsed &row) {
    OAK_BCD_T bcd = canary();
    EXPECT_EQ(oak_bcdFromString(row.text, &bcd), row.status) << '"' << row.text << '"';
    EXPECT_EQ(show(bcd), row.result) << '"' << row.text << '"';
}

constexpr char NONE[] = "prec 0 exp 0 flags 0 sign 1 digits none";
constexpr char ONE[] = "prec 1 exp 1 flags 0 sign 1 digits 1";
constexpr char MINUS_ONE[] = "prec 1 exp 1 flags 0 sign -1 digits 1";

TEST(DecimalFromString, GivesTheKnownAnswers) {
    const Parsed rows[] = {
        {"  - 12.50E+1  ", sOKAY, "prec 3 exp 3 flags 0 sign -1 digits 125"},
        {"0.001", sOKAY, "prec 1 exp -2 flags 0 sign 1 digits 1"},
        {"1e5", sOKAY, "prec 6 exp 6 flags 0 sign 1 digits 100000"},
        {"-0", sOKAY, NONE},
        {"12abc", eRANGE, "prec 2 exp 2 flags 0 sign 1 digits 12"},
        {"1e-17", sPRECISIONLOSS, "prec 1 exp -16 flags 1 sign 1 digits 1"},
        {"1e-33", eRANGE, NONE},
        {".", sOKAY, NONE},
        {"+", eRANGE, NONE},
        {"999999999999999999999999999999999", eRANGE,
         "prec 32 exp 33 flags 2 sign 1 digits 99999999999999999999999999999999"},
        {"0.111111111111111111111111111111111", sPRECISIONLOSS,
         "prec 32 exp 0 flags 1 sign 1 digits 11111111111111111111111111111111"},
        {"1e400", eRANGE, "prec 32 exp 127 flags 2 sign 1 digits 10000000000000000000000000000000"},
    };
    for (const Parsed &row : rows)
        expect_parsed(row);
}

// In the order of the table: for each state a text for each of its rows.
TEST(DecimalFromString, TakesEveryRowOfItsTable) {
    const Parsed rows[] = {
        // Start: blank, '+', '-', anything.
        {"   1", sOKAY, ONE},
        {"+1", sOKAY, ONE},
        {"-1", sOKAY, MINUS_ONE},
        {"1", sOKAY, ONE},
        // Behind the sign: blank, digit, '.', anything, the end among it.
        {"-  1", sOKAY, MINUS_ONE},
        {"-1", sOKAY, MINUS_ONE},
        {"-.1", sOKAY, "prec 1 exp 0 flags 0 sign -1 digits 1"},
        {"--1", eRANGE, NONE},
        {"+-1", eRANGE, NONE},
        {"e5", eRANGE, NONE},
        {"", eRANGE, NONE},
        {"   ", eRANGE, NONE},
        {"-", eRANGE, NONE},
        {"\t1", eRANGE, NONE},
        // In the integer part: digit, '.', the end, anything.
        {"11", sOKAY, "prec 2 exp 2 flags 0 sign 1 digits 11"},
        {"1.1", sOKAY, "prec 2 exp 1 flags 0 sign 1 digits 11"},
        {"1.", sOKAY, ONE},
        {"1x", eRANGE, ONE},
        {"1,5", eRANGE, ONE},
        // In the fraction: digit, anything.
        {"1.00", sOKAY, ONE},
        {"1.0x", eRANGE, ONE},
        {"1.1.1", eRANGE, "prec 2 exp 1 flags 0 sign 1 digits 11"},
        // Behind the mantissa: blank, 'e', 'E', the end, anything.
        {"1   ", sOKAY, ONE},
        {"1  e1", sOKAY, "prec 2 exp 2 flags 0 sign 1 digits 10"},
        {"1E1", sOKAY, "prec 2 exp 2 flags 0 sign 1 digits 10"},
        {".1 ", sOKAY, "prec 1 exp 0 flags 0 sign 1 digits 1"},
        {"1 1", eRANGE, ONE},
        {"1\t", eRANGE, ONE},
        {"1 .", eRANGE, ONE},
        // Behind the 'e': '+', '-', anything.
        {"1e+1", sOKAY, "prec 2 exp 2 flags 0 sign 1 digits 10"},
        {"10e-1", sOKAY, ONE},
        {"1e1", sOKAY, "prec 2 exp 2 flags 0 sign 1 digits 10"},
        // Behind the exponent's sign: digit, anything.
        {"1e+01", sOKAY, "prec 2 exp 2 flags 0 sign 1 digits 10"},
        {"1e", eRANGE, ONE},
        {"1e+", eRANGE, ONE},
        {"1e 1", eRANGE, ONE},
        {"1e+-1", eRANGE, ONE},
        // In the exponent: digit, anything.
        {"1e11", sOKAY, "prec 12 exp 12 flags 0 sign 1 digits 100000000000"},
        {"1e1.", eRANGE, "prec 2 exp 2 flags 0 sign 1 digits 10"},
        // Behind the exponent: blank, the end, anything.
        {"1e1   ", sOKAY, "prec 2 exp 2 flags 0 sign 1 digits 10"},
        {"1e1 x", eRANGE, "prec 2 exp 2 flags 0 sign 1 digits 10"},
        {"1e1e1", eRANGE, "prec 2 exp 2 flags 0 sign 1 digits 10"},
    };
    for (const Parsed &row : rows)
        expect_parsed(row);
}

TEST(DecimalFromString, CountsDigitsByItsRules) {
    const std::string ones(32, '1');
    const std::string many(5000, '7');
    const std::string zeros(5000, '0');
    const struct {
        std::string text;
        OAK_RETCODE status;
        std::string result;
    } rows[] = {
        // Leading zeros of the integer part do not count, zeros of the fraction do.
        {"000123", sOKAY, "prec 3 exp 3 flags 0 sign 1 digits 123"},
        {"00100", sOKAY, "prec 3 exp 3 flags 0 sign 1 digits 100"},
        {"0100.00100", sOKAY, "prec 6 exp 3 flags 0 sign 1 digits 100001"},
        {zeros + "5", sOKAY, "prec 1 exp 1 flags 0 sign 1 digits 5"},
        {"0." + std::string(31, '0') + "1", sOKAY, "prec 1 exp -31 flags 0 sign 1 digits 1"},
        // The 33rd stored digit is dropped, even a zero, even when all before are zeros.
        {"0." + std::string(32, '0') + "1", sPRECISIONLOSS, NONE},
        {"1." + std::string(32, '0'), sPRECISIONLOSS, "prec 1 exp 1 flags 1 sign 1 digits 1"},
        {ones + ".5", sPRECISIONLOSS, "prec 32 exp 32 flags 1 sign 1 digits " + ones},
        {ones + ".", sOKAY, "prec 32 exp 32 flags 0 sign 1 digits " + ones},
        {ones + "1", eRANGE, "prec 32 exp 33 flags 2 sign 1 digits " + ones},
        // Flags tell of the last loss, the status of the worse one.
        {ones + "1.5", eRANGE, "prec 32 exp 33 flags 1 sign 1 digits " + ones},
        {many, eRANGE, "prec 32 exp 127 flags 2 sign 1 digits " + many.substr(0, 32)},
        {"." + many, sPRECISIONLOSS, "prec 32 exp 0 flags 1 sign 1 digits " + many.substr(0, 32)},
        // What was lost comes before what is malformed.
        {"0." + ones + "1x", sPRECISIONLOSS, "prec 32 exp 0 flags 1 sign 1 digits " + ones},
    };
    for (const auto &row : rows)
        expect_parsed({row.text.c_str(), row.status, row.result.c_str()});
}

TEST(DecimalFromString, AppliesExponents) {
    const std::string big(400, '9');
    const struct {
        std::string text;
        OAK_RETCODE status;
        std::string result;
    } rows[] = {
        {"1.25e1", sOKAY, "prec 3 exp 2 flags 0 sign 1 digits 125"},
        {"1.25e2", sOKAY, "prec 3 exp 3 flags 0 sign 1 digits 125"},
        {"1.25e3", sOKAY, "prec 4 exp 4 flags 0 sign 1 digits 1250"},
        {"0.001e3", sOKAY, ONE},
        {"0.001e5", sOKAY, "prec 3 exp 3 flags 0 sign 1 digits 100"},
        {"125e-3", sOKAY, "prec 3 exp 0 flags 0 sign 1 digits 125"},
        {"125e-5", sOKAY, "prec 3 exp -2 flags 0 sign 1 digits 125"},
        {"1e31", sOKAY, "prec 32 exp 32 flags 0 sign 1 digits 1" + std::string(31, '0')},
        {"1e32", eRANGE, "prec 32 exp 33 flags 2 sign 1 digits 1" + std::string(31, '0')},
        {"1e0", sOKAY, ONE},
        {"1e-0", sOKAY, ONE},
        {"100e-2", sOKAY, ONE},
        {"1e-16", sOKAY, "prec 1 exp -15 flags 0 sign 1 digits 1"},
        {"1e-32", sPRECISIONLOSS, "prec 1 exp -31 flags 1 sign 1 digits 1"},
        {"12e-33", eRANGE, "prec 1 exp -31 flags 3 sign 1 digits 1"},
        // Seven digits at 35 places, of which 32 stay.
        {"1234567e-35", eRANGE, "prec 4 exp -28 flags 3 sign 1 digits 1234"},
        // A zero is padded like any number.
        {".e5", sOKAY, NONE},
        {"0e32", sOKAY, NONE},
        {"0e33", eRANGE, NONE},
        {"0e-33", eRANGE, NONE},
        // Exponents saturate at the ends of eight bits.
        {"1e" + big, eRANGE, "prec 32 exp 127 flags 2 sign 1 digits 1" + std::string(31, '0')},
        {"1e-" + big, eRANGE, NONE},
        {"1e256", eRANGE, "prec 32 exp 127 flags 2 sign 1 digits 1" + std::string(31, '0')},
        {"1e-256", eRANGE, NONE},
    };
    for (const auto &row : rows)
        expect_parsed({row.text.c_str(), row.status, row.result.c_str()});
}

TEST(DecimalFromString, RefusesNull) {
    OAK_BCD_T bcd = canary();
    EXPECT_EQ(oak_bcdFromString(nullptr, &bcd), eINVNULLARG);
    EXPECT_TRUE(is_canary(bcd));
    EXPECT_EQ(oak_bcdFromString("1", nullptr), eINVNULLARG);
}

TEST(DecimalFromString, ReadsWhatIsPrinted) {
    Random random(1);
    for (int i = 0; i < 3000; ++i) {
        OAK_BCD_T value = random_decimal(random), back;
        value.flags = 0;
        const std::string text = text_of(value);
        EXPECT_EQ(oak_bcdFromString(text.c_str(), &back), sOKAY) << text;
        EXPECT_EQ(show(back), show(value)) << text;
    }
}

// ---- Printing ----------------------------------------------------------------------------

struct Printed {
    OAK_BCD_T value;
    int scale;
    const char *plain, *with_exponent;
};

TEST(DecimalToString, CutsPadsAndNeverRounds) {
    const OAK_BCD_T smallest = decimal("-0.00000000000000000000000000000001");
    const Printed rows[] = {
        {decimal("0"), 255, "0", "0e+000"},
        {decimal("0.05"), 255, "0.05", "5e-002"},
        {decimal("1.5"), 255, "1.5", "1.5e+000"},
        {decimal("-1.5"), 255, "-1.5", "-1.5e+000"},
        {decimal("100"), 255, "100", "1.00e+002"},
        {decimal("123.456"), 255, "123.456", "1.23456e+002"},
        {decimal("0.5"), 255, "0.5", "5e-001"},
        {smallest, 255, "-0.00000000000000000000000000000001", "-1e-032"},
        {decimal(NINES), 255, "99999999999999999999999999999999",
         "9.9999999999999999999999999999999e+031"},
        {decimal("1.5"), 3, "1.500", "1.500e+000"},
        {decimal("1.5"), 0, "1", "1e+000"},
        {decimal("1.999"), 1, "1.9", "1.9e+000"},
        {decimal("-0.999"), 0, "-0", "-9e-001"},
        {decimal("0.001"), 2, "0.00", "1.00e-003"},
        {decimal("0.0012"), 3, "0.001", "1.200e-003"},
        {decimal("0"), 2, "0.00", "0.00e+000"},
        {record("500", 1), 255, "5.00", "5.00e+000"}, // zeros of a column stay
        {record("0050", 3), 255, "5.0", "5.0e+000"},  // leading ones do not
        {record("000", 2, -1), 255, "0", "0e+000"},   // a negative zero is zero
        {record("5", 3), 255, "500", "5e+002"},       // missing digits are zeros
        {record("1", -40), 255, "0.00000000000000000000000000000000000000001", "1e-041"},
    };
    for (const Printed &row : rows)
        for (const OAK_BOOL_T use_exponent : {OAK_FALSE, OAK_TRUE}) {
            const std::string expected = use_exponent ? row.with_exponent : row.plain;
            char text[300];
            size_t bytes = 0;
            EXPECT_EQ(oak_bcdToStringWithScale(&row.value, static_cast<uint8_t>(row.scale),
                                               use_exponent, text, sizeof text, &bytes),
                      sOKAY);
            EXPECT_EQ(text, expected) << show(row.value);
            EXPECT_EQ(bytes, expected.size() + 1);
            if (row.scale == 255) {
                EXPECT_EQ(text_of(row.value, use_exponent), expected);
            }
        }
}

TEST(DecimalToString, WritesTheLargestScale) {
    const OAK_BCD_T value = record("7", -40, -1);
    char text[300];
    size_t bytes;
    EXPECT_EQ(oak_bcdToStringWithScale(&value, 254, OAK_FALSE, text, sizeof text, &bytes), sOKAY);
    EXPECT_EQ(text, "-0." + std::string(40, '0') + "7" + std::string(213, '0'));
    EXPECT_EQ(bytes, 258u);
}

TEST(DecimalToString, CarriesADigitOfTen) {
    OAK_BCD_T ten;
    const OAK_BCD_T nine_and_half = decimal("-99.5");
    ASSERT_EQ(oak_bcdRound(&nine_and_half, &ten), sOKAY);
    ASSERT_EQ(ten.data[2], 10);
    EXPECT_EQ(text_of(ten), "-100");
    size_t bytes;
    EXPECT_EQ(oak_bcdToString(&ten, OAK_FALSE, nullptr, 0, &bytes), sOKAY);
    EXPECT_EQ(bytes, 5u);
    double number;
    EXPECT_EQ(oak_bcdToDouble(&ten, &number), sOKAY);
    EXPECT_EQ(number, -100.0);
    int32_t integer;
    EXPECT_EQ(oak_bcdToInt32(&ten, &integer), sOKAY);
    EXPECT_EQ(integer, -100);
}

TEST(DecimalToString, ReportsAShortBufferAsUnderflow) {
    const OAK_BCD_T value = decimal("-12.5");
    const struct {
        size_t size;
        OAK_RETCODE status;
        const char *text;
        size_t bytes;
    } rows[] = {
        {1, sUNDERFLOW, "", 1}, {2, sUNDERFLOW, "-", 2},  {5, sUNDERFLOW, "-12.", 5},
        {6, sOKAY, "-12.5", 6}, {100, sOKAY, "-12.5", 6},
    };
    for (const auto &row : rows) {
        char text[100];
        memset(text, '#', sizeof text);
        size_t bytes = 77;
        EXPECT_EQ(oak_bcdToString(&value, OAK_FALSE, text, row.size, &bytes), row.status);
        EXPECT_STREQ(text, row.text);
        EXPECT_EQ(bytes, row.bytes);
        if (row.size < sizeof text) {
            EXPECT_EQ(text[row.size], '#');
        }
        EXPECT_EQ(oak_bcdToString(&value, OAK_FALSE, text, row.size, nullptr), row.status);
    }
}

TEST(DecimalToString, MeasuresWithoutABuffer) {
    const OAK_BCD_T value = decimal("-12.5");
    char text[10] = "untouched";
    size_t bytes = 0;
    EXPECT_EQ(oak_bcdToString(&value, OAK_FALSE, nullptr, 100, &bytes), sOKAY);
    EXPECT_EQ(bytes, 6u);
    EXPECT_EQ(oak_bcdToString(&value, OAK_TRUE, text, 0, &bytes), sOKAY);
    EXPECT_EQ(bytes, 11u); // -1.25e+001
    EXPECT_STREQ(text, "untouched");
    // With nothing to write to and nothing to report, the text is longer than its room.
    EXPECT_EQ(oak_bcdToString(&value, OAK_FALSE, nullptr, 0, nullptr), sUNDERFLOW);
    EXPECT_EQ(oak_bcdToString(&value, OAK_FALSE, nullptr, 100, nullptr), sOKAY);
}

TEST(DecimalToString, RefusesNullAndRecordsThatAreNoDecimals) {
    char text[40] = "untouched";
    OAK_BCD_T bcd = decimal("1");
    EXPECT_EQ(oak_bcdToString(nullptr, OAK_FALSE, text, sizeof text, nullptr), eINVNULLARG);
    bcd.prec = 33;
    EXPECT_EQ(oak_bcdToString(&bcd, OAK_FALSE, text, sizeof text, nullptr), eINVBCD);
    bcd = record("1", 41);
    EXPECT_EQ(oak_bcdToStringWithScale(&bcd, 2, OAK_FALSE, text, sizeof text, nullptr), eINVBCD);
    EXPECT_STREQ(text, "untouched");
}

struct Measured {
    OAK_BCD_T value;
    int scale;
    OAK_BOOL_T use_exponent;
    int start, int_digits, frac_digits, exponent;
    size_t size;
};

TEST(DecimalNeededSize, FollowsItsTable) {
    const Measured rows[] = {
        {decimal("12.5"), 255, OAK_FALSE, 1, 2, 1, 0, 5},
        {decimal("-12.5"), 255, OAK_FALSE, 1, 2, 1, 0, 6},
        {decimal("12.5"), 0, OAK_FALSE, 1, 2, 0, 0, 3},
        {decimal("12.5"), 4, OAK_FALSE, 1, 2, 4, 0, 8},
        {decimal("0.001"), 255, OAK_FALSE, -2, 1, 3, 0, 6},
        {decimal("0.1"), 255, OAK_FALSE, 0, 1, 1, 0, 4},
        {decimal("0"), 255, OAK_FALSE, 0, 1, 0, 0, 2},
        {decimal("100"), 255, OAK_FALSE, 1, 3, 0, 0, 4},
        {decimal("12.5"), 255, OAK_TRUE, 1, 1, 2, 1, 10},
        {decimal("5"), 255, OAK_TRUE, 1, 1, 0, 0, 7},
        {decimal("-0.05"), 255, OAK_TRUE, 1, 1, 0, -2, 8},
        {decimal("0"), 255, OAK_TRUE, 1, 1, 0, 0, 7},
        {decimal("12.5"), 4, OAK_TRUE, 1, 1, 4, 1, 12},
    };
    for (const Measured &row : rows) {
        int16_t start = 99, int_digits = 99, frac_digits = 99, exponent = 99;
        const auto scale = static_cast<uint8_t>(row.scale);
        EXPECT_EQ(calc_needed_size(&row.value, &start, &int_digits, &frac_digits, &exponent, scale,
                                   row.use_exponent),
                  row.size)
            << show(row.value);
        EXPECT_EQ(start, row.start);
        EXPECT_EQ(int_digits, row.int_digits);
        EXPECT_EQ(frac_digits, row.frac_digits);
        EXPECT_EQ(exponent, row.exponent);
        EXPECT_EQ(calc_needed_size(&row.value, nullptr, nullptr, nullptr, nullptr, scale,
                                   row.use_exponent),
                  row.size);
    }
}

// An output function that takes so many characters and then fails.
struct Sink {
    std::string text;
    size_t room;
    static OAK_RETCODE put(OAK_OUTPUT_CTX ctx, uint32_t ch) {
        auto *sink = static_cast<Sink *>(ctx);
        if (sink->text.size() == sink->room)
            return eFILEIO;
        sink->text += static_cast<char>(ch);
        return sOKAY;
    }
};

TEST(DecimalFormat, EmitsThroughAFunctionAndStopsWhereItFails) {
    const OAK_BCD_T value = decimal("-12.5");
    const std::string whole = "-1.250e+001";
    for (size_t room = 0; room <= whole.size(); ++room) {
        Sink sink{{}, room};
        EXPECT_EQ(oak_bcdFormatWithScale(&value, 3, OAK_TRUE, Sink::put, &sink),
                  room < whole.size() ? eFILEIO : sOKAY);
        EXPECT_EQ(sink.text, whole.substr(0, room));
    }
    Sink sink{{}, 0};
    EXPECT_EQ(oak_bcdFormatWithScale(nullptr, 3, OAK_TRUE, Sink::put, &sink), eINVNULLARG);
    EXPECT_EQ(oak_bcdFormatWithScale(&value, 3, OAK_TRUE, nullptr, &sink), eINVNULLARG);
    const OAK_BCD_T bad = record("1", 41);
    EXPECT_EQ(oak_bcdFormatWithScale(&bad, 3, OAK_TRUE, Sink::put, &sink), eINVBCD);
}

TEST(DecimalFormat, MeasuresWhatItWrites) {
    Random random(2);
    for (int i = 0; i < 2000; ++i) {
        const OAK_BCD_T value = random_record(random);
        const auto scale = static_cast<uint8_t>(random.below(3) == 0 ? 255 : random.below(255));
        const OAK_BOOL_T use_exponent = random.below(2) == 0 ? OAK_FALSE : OAK_TRUE;
        char text[400];
        size_t needed, written;
        ASSERT_EQ(oak_bcdToStringWithScale(&value, scale, use_exponent, nullptr, 0, &needed),
                  sOKAY);
        ASSERT_EQ(oak_bcdToStringWithScale(&value, scale, use_exponent, text, needed, &written),
                  sOKAY)
            << show(value);
        EXPECT_EQ(written, needed);
        EXPECT_EQ(strlen(text) + 1, needed);
        EXPECT_EQ(strspn(text, "-0123456789.e+"), needed - 1) << text;
    }
}

// ---- From native numbers ---------------------------------------------------------------------

TEST(DecimalFromInteger, IsExactAtBothEnds) {
    OAK_BCD_T bcd;
    EXPECT_EQ(oak_bcdFromInt64(INT64_MIN, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), "prec 19 exp 19 flags 0 sign -1 digits 9223372036854775808");
    EXPECT_EQ(oak_bcdFromInt64(INT64_MAX, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), "prec 19 exp 19 flags 0 sign 1 digits 9223372036854775807");
    EXPECT_EQ(oak_bcdFromUInt64(UINT64_MAX, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), "prec 20 exp 20 flags 0 sign 1 digits 18446744073709551615");
    EXPECT_EQ(oak_bcdFromInt32(INT32_MIN, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), show(decimal("-2147483648")));
    EXPECT_EQ(oak_bcdFromUInt32(UINT32_MAX, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), show(decimal("4294967295")));
    EXPECT_EQ(oak_bcdFromInt16(INT16_MIN, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), show(decimal("-32768")));
    EXPECT_EQ(oak_bcdFromUInt16(UINT16_MAX, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), show(decimal("65535")));
    EXPECT_EQ(oak_bcdFromInt8(INT8_MIN, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), show(decimal("-128")));
    EXPECT_EQ(oak_bcdFromUInt8(UINT8_MAX, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), show(decimal("255")));
    bcd = canary();
    EXPECT_EQ(oak_bcdFromInt8(0, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), NONE);
    EXPECT_EQ(oak_bcdFromUInt64(0, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), NONE);
    EXPECT_EQ(oak_bcdFromInt64(1, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_bcdFromUInt8(1, nullptr), eINVNULLARG);
}

TEST(DecimalFromInteger, AgreesWithTextAroundEveryPower) {
    for (int bit = 0; bit < 64; ++bit)
        for (const uint64_t near : {UINT64_MAX, uint64_t{0}, uint64_t{1}}) {
            const uint64_t number = (uint64_t{1} << bit) + near;
            OAK_BCD_T bcd;
            ASSERT_EQ(oak_bcdFromUInt64(number, &bcd), sOKAY);
            EXPECT_EQ(show(bcd), show(decimal(std::to_string(number))));
            const auto negative = static_cast<int64_t>(0 - number);
            ASSERT_EQ(oak_bcdFromInt64(negative, &bcd), sOKAY);
            EXPECT_EQ(show(bcd), show(decimal(std::to_string(negative))));
        }
    uint64_t power = 1;
    for (int i = 0; i < 19; ++i, power *= 10)
        for (const uint64_t near : {UINT64_MAX, uint64_t{0}, uint64_t{1}}) {
            OAK_BCD_T bcd;
            ASSERT_EQ(oak_bcdFromUInt64(power + near, &bcd), sOKAY);
            EXPECT_EQ(show(bcd), show(decimal(std::to_string(power + near))));
        }
}

TEST(DecimalFromDouble, CarriesFifteenDigits) {
    const struct {
        double number;
        OAK_RETCODE status;
        const char *result;
    } rows[] = {
        {0.0, sOKAY, NONE},
        {-0.0, sOKAY, NONE},
        {1.0, sOKAY, ONE},
        {-1.0, sOKAY, MINUS_ONE},
        {0.1, sOKAY, "prec 1 exp 0 flags 0 sign 1 digits 1"},
        {0.05, sOKAY, "prec 1 exp -1 flags 0 sign 1 digits 5"},
        {123456789.123456789, sOKAY, "prec 15 exp 9 flags 0 sign 1 digits 123456789123457"},
        {-2.5e-5, sOKAY, "prec 2 exp -4 flags 0 sign -1 digits 25"},
        {100.0, sOKAY, "prec 3 exp 3 flags 0 sign 1 digits 100"},
        {1.0 / 3, sOKAY, "prec 14 exp 0 flags 0 sign 1 digits 33333333333333"},
        {9007199254740993.0, sOKAY, "prec 16 exp 16 flags 0 sign 1 digits 9007199254740992"},
        // From 10^15 on the integer digits of the double, all of them.
        {1e31, sOKAY, "prec 31 exp 31 flags 0 sign 1 digits 9999999999999999635896294965248"},
        {2e31, sOKAY, "prec 32 exp 32 flags 0 sign 1 digits 19999999999999999271792589930496"},
        // From 10^-19 down the last of 15 digits lie past 32 places.
        {1e-18, sOKAY, "prec 1 exp -17 flags 0 sign 1 digits 1"},
        {1.5e-19, sOKAY, "prec 2 exp -18 flags 0 sign 1 digits 15"},
        {1.5e-20, sPRECISIONLOSS, "prec 2 exp -19 flags 0 sign 1 digits 15"},
        {1e-32, sPRECISIONLOSS, "prec 1 exp -31 flags 0 sign 1 digits 1"},
        {4e-33, sPRECISIONLOSS, NONE},
        {6e-33, sPRECISIONLOSS, "prec 1 exp -31 flags 0 sign 1 digits 1"},
        {5e-324, sPRECISIONLOSS, NONE},
        {DBL_MIN, sPRECISIONLOSS, NONE},
    };
    for (const auto &row : rows) {
        OAK_BCD_T bcd = canary();
        EXPECT_EQ(oak_bcdFromDouble(row.number, &bcd), row.status) << row.number;
        EXPECT_EQ(show(bcd), row.result) << row.number;
    }
}

TEST(DecimalFromDouble, RefusesWhatNoDecimalHolds) {
    constexpr double INF = std::numeric_limits<double>::infinity();
    constexpr float INFF = std::numeric_limits<float>::infinity();
    OAK_BCD_T bcd = canary();
    for (const double bad : {std::nan(""), INF, -INF, 1e32, -1e32, DBL_MAX})
        EXPECT_EQ(oak_bcdFromDouble(bad, &bcd), eRANGE) << bad;
    for (const float bad : {std::nanf(""), INFF, -INFF, 1e33f, -FLT_MAX})
        EXPECT_EQ(oak_bcdFromFloat(bad, &bcd), eRANGE) << bad;
    EXPECT_TRUE(is_canary(bcd));
    EXPECT_EQ(oak_bcdFromDouble(1.0, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_bcdFromFloat(1.0f, nullptr), eINVNULLARG);
}

TEST(DecimalFromFloat, IsTheDoubleOfTheSameValue) {
    OAK_BCD_T bcd;
    EXPECT_EQ(oak_bcdFromFloat(0.1f, &bcd), sOKAY);
    // Between 0.1 and 1 there are 14 digits, since the logarithm is cut towards zero.
    EXPECT_EQ(show(bcd), show(decimal("0.10000000149012")));
    EXPECT_EQ(oak_bcdFromFloat(-0.5f, &bcd), sOKAY);
    EXPECT_EQ(show(bcd), show(decimal("-0.5")));
}

// ---- To native numbers --------------------------------------------------------------------------

template <typename Integer>
using TO = OAK_RETCODE (*)(const OAK_BCD_T *, Integer *);

template <typename Integer>
void expect_integer(TO<Integer> convert, const char *text, OAK_RETCODE status, Integer expected) {
    const OAK_BCD_T bcd = decimal(text);
    Integer value = 77;
    EXPECT_EQ(convert(&bcd, &value), status) << text;
    EXPECT_EQ(value, expected) << text;
}

// Both ends, one beyond them, fractions at the ends.
template <typename Integer>
void expect_ends(TO<Integer> convert) {
    constexpr Integer LOWEST = std::numeric_limits<Integer>::min();
    constexpr Integer HIGHEST = std::numeric_limits<Integer>::max();
    OAK_BCD_T lowest, highest, one = decimal("1"), beyond;
    ASSERT_EQ(
        oak_bcdFromInt64(std::is_signed_v<Integer> ? static_cast<int64_t>(LOWEST) : 0, &lowest),
        sOKAY);
    ASSERT_EQ(oak_bcdFromUInt64(static_cast<uint64_t>(HIGHEST), &highest), sOKAY);
    Integer value = 77;
    EXPECT_EQ(convert(&lowest, &value), sOKAY);
    EXPECT_EQ(value, LOWEST);
    EXPECT_EQ(convert(&highest, &value), sOKAY);
    EXPECT_EQ(value, HIGHEST);
    ASSERT_EQ(oak_bcdAdd(&highest, &one, OAK_BCD_ROUND_UP, &beyond), sOKAY);
    EXPECT_EQ(convert(&beyond, &value), eRANGE);
    EXPECT_EQ(value, std::is_signed_v<Integer> ? LOWEST : Integer{0}); // the low bits
    ASSERT_EQ(oak_bcdSub(&lowest, &one, OAK_BCD_ROUND_UP, &beyond), sOKAY);
    EXPECT_EQ(convert(&beyond, &value), eRANGE);
    EXPECT_EQ(value, std::is_signed_v<Integer> ? HIGHEST : Integer{0});
    ASSERT_EQ(oak_bcdAddDouble(&highest, 0.5, OAK_BCD_ROUND_UP, &beyond), sOKAY);
    EXPECT_EQ(convert(&beyond, &value), sPRECISIONLOSS);
    EXPECT_EQ(value, HIGHEST);

    expect_integer<Integer>(convert, "0", sOKAY, 0);
    expect_integer<Integer>(convert, "100", sOKAY, 100);
    expect_integer<Integer>(convert, "0.9", sPRECISIONLOSS, 0);
    expect_integer<Integer>(convert, "0.001", sPRECISIONLOSS, 0);
    expect_integer<Integer>(convert, "99.999", sPRECISIONLOSS, 99);
    expect_integer<Integer>(convert, NINES.c_str(), eRANGE,
                            static_cast<Integer>(9632337040368467967ull)); // mod 2^64
    const OAK_BCD_T flagged = record("7", 1, 1, 0xFF);
    EXPECT_EQ(convert(&flagged, &value), sOKAY);
    EXPECT_EQ(value, 7);
    const OAK_BCD_T column = record("700", 1);
    EXPECT_EQ(convert(&column, &value), sPRECISIONLOSS) << "zeros of a column are a fraction";
    EXPECT_EQ(value, 7);
    const OAK_BCD_T minus_zero = record("", 0, -1);
    EXPECT_EQ(convert(&minus_zero, &value), sOKAY);
    EXPECT_EQ(value, 0);
    const OAK_BCD_T padded = record("0007", 4);
    EXPECT_EQ(convert(&padded, &value), sOKAY);
    EXPECT_EQ(value, 7);

    EXPECT_EQ(convert(nullptr, &value), eINVNULLARG);
    EXPECT_EQ(convert(&one, nullptr), eINVNULLARG);
    EXPECT_EQ(value, 7);
    const OAK_BCD_T bad = record("1", 41);
    EXPECT_EQ(convert(&bad, &value), eINVBCD);
    EXPECT_EQ(value, 0);
}

TEST(DecimalToInteger, CutsTowardsZeroAndTellsAtBothEnds) {
    expect_ends<int8_t>(oak_bcdToInt8);
    expect_ends<int16_t>(oak_bcdToInt16);
    expect_ends<int32_t>(oak_bcdToInt32);
    expect_ends<int64_t>(oak_bcdToInt64);
    expect_ends<uint8_t>(oak_bcdToUInt8);
    expect_ends<uint16_t>(oak_bcdToUInt16);
    expect_ends<uint32_t>(oak_bcdToUInt32);
    expect_ends<uint64_t>(oak_bcdToUInt64);
}

TEST(DecimalToInteger, NegativeNumbers) {
    expect_integer<int8_t>(oak_bcdToInt8, "-128.5", sPRECISIONLOSS, -128);
    expect_integer<int8_t>(oak_bcdToInt8, "-0.5", sPRECISIONLOSS, 0);
    expect_integer<int8_t>(oak_bcdToInt8, "-300", eRANGE, -44);
    expect_integer<int64_t>(oak_bcdToInt64, "-99999999999999999999", eRANGE,
                            -7766279631452241919); // 10^20 - 1 mod 2^64, negated
    expect_integer<uint8_t>(oak_bcdToUInt8, "-1", eRANGE, 0);
    expect_integer<uint64_t>(oak_bcdToUInt64, "-0.5", eRANGE, 0);
    // The 64-bit status comes first: 2^63 has no 8 low bits set.
    expect_integer<int8_t>(oak_bcdToInt8, "9223372036854775808", eRANGE, 0);
    // A fraction does not hide that the integer does not fit.
    expect_integer<int8_t>(oak_bcdToInt8, "128.5", eRANGE, -128);
}

// Every overflow of 64 bits is seen, also where the wrapped number looks harmless.
TEST(DecimalToInteger, SeesEveryOverflow) {
    expect_integer<uint64_t>(oak_bcdToUInt64, "18446744073709551616", eRANGE, 0);
    expect_integer<uint64_t>(oak_bcdToUInt64, "36893488147419103237", eRANGE, 5);
    expect_integer<uint64_t>(oak_bcdToUInt64, "55340232221128654848", eRANGE, 0);
    expect_integer<uint64_t>(oak_bcdToUInt64, "99999999999999999999", eRANGE, 7766279631452241919u);
    expect_integer<int64_t>(oak_bcdToInt64, "18446744073709551617", eRANGE, 1);
}

TEST(DecimalToDouble, IsOkayWhenTheSameDecimalComesBack) {
    const struct {
        OAK_BCD_T value;
        OAK_RETCODE status;
        double number;
    } rows[] = {
        {decimal("0"), sOKAY, 0.0},
        {decimal("0.1"), sOKAY, 0.1},
        {decimal("-12.5"), sOKAY, -12.5},
        {decimal("123456789012345"), sOKAY, 123456789012345.0},
        {decimal("0.000000000000001"), sOKAY, 1e-15},
        {decimal("12345678901234567"), eRANGE, 12345678901234568.0},
        {decimal("0.1234567890123456789"), eRANGE, 0.1234567890123456789},
        {decimal(NINES), eRANGE, 1e32},
        {decimal("10000000000000000000000000000000"), eRANGE, 1e31},
        {record("", 0, -1), sOKAY, 0.0},
        {record("0012500", 4, 1, 0xFF), sOKAY, 12.5},
    };
    for (const auto &row : rows) {
        double number = 77;
        EXPECT_EQ(oak_bcdToDouble(&row.value, &number), row.status) << show(row.value);
        EXPECT_EQ(number, row.number) << show(row.value);
    }
}

TEST(DecimalToFloat, IsOkayWhenTheSameDecimalComesBack) {
    const OAK_BCD_T half = decimal("-0.5"), tenth = decimal("0.1");
    float number;
    EXPECT_EQ(oak_bcdToFloat(&half, &number), sOKAY);
    EXPECT_EQ(number, -0.5f);
    EXPECT_EQ(oak_bcdToFloat(&tenth, &number), eRANGE);
    EXPECT_EQ(number, 0.1f);
}

TEST(DecimalToDouble, RefusesNullAndRecordsThatAreNoDecimals) {
    const OAK_BCD_T one = decimal("1"), bad = record("1", -41);
    double number = 77;
    float single = 77;
    EXPECT_EQ(oak_bcdToDouble(nullptr, &number), eINVNULLARG);
    EXPECT_EQ(oak_bcdToDouble(&one, nullptr), eINVNULLARG);
    EXPECT_EQ(oak_bcdToFloat(nullptr, &single), eINVNULLARG);
    EXPECT_EQ(number, 77);
    EXPECT_EQ(oak_bcdToDouble(&bad, &number), eINVBCD);
    EXPECT_EQ(number, 0);
    EXPECT_EQ(oak_bcdToFloat(&bad, &single), eINVBCD);
    EXPECT_EQ(single, 0);
}

// ---- The packed form
// -----------------------------------------------------------------------------

std::string packed(const OAK_BCD_T &bcd, int prec, int scale, OAK_RETCODE status = sOKAY) {
    uint8_t bytes[20];
    memset(bytes, 0xEE, sizeof bytes);
    EXPECT_EQ(oak_bcdPack(&bcd, bytes, static_cast<uint8_t>(prec), static_cast<uint8_t>(scale)),
              status)
        << show(bcd);
    const size_t size = OAK_PACKED_BCD_SIZE(prec);
    for (size_t i = size; i < sizeof bytes; ++i)
        EXPECT_EQ(bytes[i], 0xEE) << "byte " << i;
    return hex(bytes, size);
}

TEST(DecimalPack, WritesTheColumnsPlaces) {
    EXPECT_EQ(packed(decimal("1.5"), 5, 2), "400150");
    EXPECT_EQ(packed(decimal("-1.5"), 5, 2), "099849");
    EXPECT_EQ(packed(decimal("0"), 3, 0), "4000");
    EXPECT_EQ(packed(decimal("7"), 1, 0), "47");
    EXPECT_EQ(packed(decimal("-7"), 1, 0), "02");
    EXPECT_EQ(packed(decimal("12"), 2, 0), "4120");  // the last nibble stays 0
    EXPECT_EQ(packed(decimal("-12"), 2, 0), "0870"); // also behind complements
    EXPECT_EQ(packed(decimal("0.0012"), 2, 4), "4120");
    EXPECT_EQ(packed(decimal("0"), 0, 0), "40");
    EXPECT_EQ(packed(record(NINES, 16), 32, 16), "4999999999999999999999999999999990");
    EXPECT_EQ(packed(record(NINES, 16, -1), 32, 16), "0000000000000000000000000000000000");
    EXPECT_EQ(packed(record("0050", 3), 5, 2), "400500");
    EXPECT_EQ(packed(record("", 0, -1), 3, 0), "4000"); // a negative zero is zero
}

TEST(DecimalPack, WritesWhatIsLeftOfAValueThatDoesNotFit) {
    EXPECT_EQ(packed(decimal("1.999"), 5, 2, sPRECISIONLOSS), "400199");
    EXPECT_EQ(packed(decimal("-0.001"), 3, 2, sPRECISIONLOSS), "0999"); // a negative zero
    EXPECT_EQ(packed(decimal("12345"), 3, 0, eRANGE), "4343");
    EXPECT_EQ(packed(decimal("5"), 0, 0, eRANGE), "40");
    EXPECT_EQ(packed(decimal("0"), 2, 4, eRANGE), "4000");
}

TEST(DecimalPack, CarriesADigitOfTen) {
    OAK_BCD_T ten;
    const OAK_BCD_T nine_and_half = decimal("9.5");
    ASSERT_EQ(oak_bcdRound(&nine_and_half, &ten), sOKAY);
    EXPECT_EQ(packed(ten, 3, 0), "4010");
    EXPECT_EQ(packed(ten, 1, 0, eRANGE), "41");
    EXPECT_EQ(packed(ten, 20, 0), "4000000000000000000100"); // 20 places and a spare nibble
}

TEST(DecimalPack, RefusesWhatNoColumnHas) {
    OAK_BCD_T bcd = decimal("1");
    uint8_t bytes[4] = {1, 2, 3, 4};
    EXPECT_EQ(oak_bcdPack(&bcd, bytes, 33, 0), eRANGE);
    EXPECT_EQ(oak_bcdPack(&bcd, bytes, 5, 33), eRANGE);
    EXPECT_EQ(oak_bcdPack(&bcd, bytes, 255, 255), eRANGE);
    EXPECT_EQ(oak_bcdPack(nullptr, bytes, 5, 2), eINVNULLARG);
    EXPECT_EQ(oak_bcdPack(&bcd, nullptr, 5, 2), eINVNULLARG);
    EXPECT_EQ(hex(bytes, 4), "01020304");
    bcd.prec = 33;
    EXPECT_EQ(packed(bcd, 5, 2, eINVBCD), "400000");
}

std::string unpacked(const std::string &bytes, int prec, int scale, OAK_RETCODE status = sOKAY) {
    const std::vector<uint8_t> data = oaktest::unhex(bytes);
    OAK_BCD_T bcd = canary();
    EXPECT_EQ(
        oak_bcdUnpack(data.data(), &bcd, static_cast<uint8_t>(prec), static_cast<uint8_t>(scale)),
        status)
        << bytes;
    return show(bcd);
}

TEST(DecimalUnpack, ReadsTheColumnsPlaces) {
    EXPECT_EQ(unpacked("400150", 5, 2), "prec 3 exp 1 flags 0 sign 1 digits 150");
    EXPECT_EQ(unpacked("099849", 5, 2), "prec 3 exp 1 flags 0 sign -1 digits 150");
    EXPECT_EQ(unpacked("4000", 3, 0), NONE);
    EXPECT_EQ(unpacked("0999", 3, 2), "prec 0 exp 0 flags 0 sign -1 digits none");
    EXPECT_EQ(unpacked("400005", 5, 4), "prec 1 exp -3 flags 0 sign 1 digits 5");
    EXPECT_EQ(unpacked("400100", 4, 0), "prec 2 exp 2 flags 0 sign 1 digits 10");
    EXPECT_EQ(unpacked("40", 0, 0), NONE);
    EXPECT_EQ(unpacked("00", 0, 0), "prec 0 exp 0 flags 0 sign -1 digits none");
    EXPECT_EQ(unpacked("4999999999999999999999999999999990", 32, 32),
              "prec 32 exp 0 flags 0 sign 1 digits " + NINES);
    EXPECT_EQ(unpacked("f7", 1, 0), "prec 1 exp 1 flags 0 sign 1 digits 7");    // other bits
    EXPECT_EQ(unpacked("412f", 2, 0), "prec 2 exp 2 flags 0 sign 1 digits 12"); // past prec
}

TEST(DecimalUnpack, RefusesANibbleThatIsNoDigit) {
    for (const char *bytes : {"4a0150", "40a150", "400f50", "4001a0", "0c9849", "0998f9"})
        EXPECT_EQ(unpacked(bytes, 5, 2, eINVBCD), NONE) << bytes;
    EXPECT_EQ(unpacked("40000000000000000000a0", 20, 2, eINVBCD), NONE);
    EXPECT_EQ(unpacked("4a00000000000000000000", 20, 2, eINVBCD), NONE);
}

TEST(DecimalUnpack, RefusesWhatNoColumnHas) {
    const uint8_t bytes[20] = {0x40};
    OAK_BCD_T bcd = canary();
    EXPECT_EQ(oak_bcdUnpack(bytes, &bcd, 33, 0), eRANGE);
    EXPECT_EQ(oak_bcdUnpack(bytes, &bcd, 5, 33), eRANGE);
    EXPECT_EQ(oak_bcdUnpack(nullptr, &bcd, 5, 2), eINVNULLARG);
    EXPECT_TRUE(is_canary(bcd));
    EXPECT_EQ(oak_bcdUnpack(bytes, nullptr, 5, 2), eINVNULLARG);
}

// A value that fits a column of the given places.
OAK_BCD_T random_of_column(Random &random, int prec, int scale) {
    std::string digits =
        random_digits(random, static_cast<int>(random.below(static_cast<uint64_t>(prec) + 1)));
    const int exp = static_cast<int>(digits.size()) - scale;
    OAK_BCD_T value = record(digits, exp, random.below(2) == 0 ? 1 : -1);
    if (oak_bcdIsZero(&value))
        value = decimal("0");
    return value;
}

// The packed form nibble by nibble: the sign's, then a digit for each place of the
// column, of which the value's last one stands where the scale says; 9 less the
// digit for a negative value.
std::string plainly_packed(const OAK_BCD_T &value, int prec, int scale) {
    std::string places(static_cast<size_t>(prec), '0');
    const int first = prec - scale - value.exp; // where the value's first digit goes
    for (int i = 0; i < value.prec; ++i)
        places[static_cast<size_t>(first + i)] = static_cast<char>('0' + value.data[1 + i]);
    std::string nibbles = value.sign > 0 ? "4" : "0";
    for (const char digit : places)
        nibbles += value.sign > 0 ? digit : static_cast<char>('0' + '9' - digit);
    return nibbles.size() % 2 == 0 ? nibbles : nibbles + "0";
}

TEST(DecimalPack, WritesEveryColumnNibbleByNibble) {
    Random random(6);
    for (int prec = 1; prec <= 32; ++prec)
        for (int scale = 0; scale <= prec; ++scale)
            for (int i = 0; i < 8; ++i) {
                OAK_BCD_T value = random_of_column(random, prec, scale);
                const std::string expected = plainly_packed(value, prec, scale);
                EXPECT_EQ(packed(value, prec, scale), expected) << show(value);
                memset(value.data + 1 + value.prec, 0xAB, static_cast<size_t>(32 - value.prec));
                EXPECT_EQ(packed(value, prec, scale), expected) << "dirt behind the digits";
            }
}

TEST(DecimalUnpack, ReadsEveryColumnNibbleByNibble) {
    Random random(7);
    for (int prec = 1; prec <= 32; ++prec)
        for (int scale = 0; scale <= prec; ++scale)
            for (int i = 0; i < 8; ++i) {
                const std::string digits = random_digits(random, prec);
                const bool positive = random.below(2) == 0;
                std::string nibbles = positive ? "4" : "0";
                for (const char digit : digits)
                    nibbles += positive ? digit : static_cast<char>('0' + '9' - digit);
                nibbles += nibbles.size() % 2 == 0 ? "" : "0";
                const size_t zeros = std::min(digits.find_first_not_of('0'), digits.size());
                const int count = prec - static_cast<int>(zeros);
                OAK_BCD_T expected =
                    record(digits.substr(zeros), count != 0 ? count - scale : 0, positive ? 1 : -1);
                EXPECT_EQ(unpacked(nibbles, prec, scale), show(expected)) << nibbles;
            }
}

TEST(DecimalPack, ComesBackFromEveryColumn) {
    Random random(3);
    for (int prec = 1; prec <= 32; ++prec)
        for (int scale = 0; scale <= prec; ++scale)
            for (int i = 0; i < 4; ++i) {
                const OAK_BCD_T value = random_of_column(random, prec, scale);
                uint8_t bytes[OAK_PACKED_BCD_SIZE(32)];
                OAK_BCD_T back;
                ASSERT_EQ(oak_bcdPack(&value, bytes, static_cast<uint8_t>(prec),
                                      static_cast<uint8_t>(scale)),
                          sOKAY)
                    << show(value);
                ASSERT_EQ(oak_bcdUnpack(bytes, &back, static_cast<uint8_t>(prec),
                                        static_cast<uint8_t>(scale)),
                          sOKAY);
                EXPECT_EQ(oak_bcdCompare(&back, &value), OAK_EQ) << show(value) << show(back);
            }
}

TEST(DecimalPack, OrdersBytesAsNumbers) {
    Random random(4);
    for (int i = 0; i < 3000; ++i) {
        const int prec = 1 + static_cast<int>(random.below(32));
        const int scale = static_cast<int>(random.below(static_cast<uint64_t>(prec) + 1));
        const OAK_BCD_T left = random_of_column(random, prec, scale);
        OAK_BCD_T right = random_of_column(random, prec, scale);
        if (random.below(3) == 0)
            right = left;
        else if (random.below(3) == 0 && left.prec != 0) { // a neighbour
            right = left;
            right.data[right.prec] ^= 1;
            if (oak_bcdIsZero(&right))
                right = decimal("0");
        }
        uint8_t l[OAK_PACKED_BCD_SIZE(32)], r[OAK_PACKED_BCD_SIZE(32)];
        ASSERT_EQ(oak_bcdPack(&left, l, static_cast<uint8_t>(prec), static_cast<uint8_t>(scale)),
                  sOKAY);
        ASSERT_EQ(oak_bcdPack(&right, r, static_cast<uint8_t>(prec), static_cast<uint8_t>(scale)),
                  sOKAY);
        const int order = memcmp(l, r, OAK_PACKED_BCD_SIZE(prec));
        EXPECT_EQ(order < 0   ? OAK_LT
                  : order > 0 ? OAK_GT
                              : OAK_EQ,
                  oak_bcdCompare(&left, &right))
            << show(left) << "\n"
            << show(right);
    }
}

// ---- All roads agree
// --------------------------------------------------------------------------------

TEST(DecimalRoads, TextDoubleAndIntegerGiveTheSameDecimal) {
    Random random(5);
    for (int i = 0; i < 1000; ++i) {
        const auto number = static_cast<int64_t>(random.next() >> (12 + random.below(50)));
        const int64_t integer = random.below(2) == 0 ? number : -number;
        OAK_BCD_T from_integer, from_text, from_double;
        ASSERT_EQ(oak_bcdFromInt64(integer, &from_integer), sOKAY);
        ASSERT_EQ(oak_bcdFromString(std::to_string(integer).c_str(), &from_text), sOKAY);
        EXPECT_EQ(show(from_integer), show(from_text));
        ASSERT_EQ(oak_bcdFromDouble(static_cast<double>(integer), &from_double), sOKAY);
        EXPECT_EQ(show(from_integer), show(from_double));
        int64_t back;
        EXPECT_EQ(oak_bcdToInt64(&from_integer, &back), sOKAY);
        EXPECT_EQ(back, integer);
        EXPECT_EQ(text_of(from_integer), std::to_string(integer));
    }
}

} // namespace
