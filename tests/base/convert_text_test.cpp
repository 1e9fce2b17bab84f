// Conversions to and from text, binary and UUIDs: the forms of numbers against the C
// library's printf, the two-pass walk of arrays against a plain model at every room, the
// choice of parsers at every count of digits, pieces of long text, and hexadecimal.
#include <cfloat>
#include <cinttypes>
#include <clocale>
#include <cmath>
#include <limits>

#include "convert_support.h"
#include "uuid.h"

using namespace oaktest;

namespace {

// ---- Numbers to text ------------------------------------------------------------------------

// The C library's text with the point of the C locale.
std::string printed(int digits, double value) {
    char text[64];
    const locale_t c = newlocale(LC_ALL_MASK, "C", nullptr);
    const locale_t before = uselocale(c);
    std::snprintf(text, sizeof text, "%.*G", digits, value);
    uselocale(before);
    freelocale(c);
    return text;
}

template <class T>
std::string as_text(B_CNVFCN function, T value) {
    const Outcome outcome = run_single(function, value);
    EXPECT_EQ(outcome.status, sOKAY);
    EXPECT_EQ(outcome.size, outcome.text().size() + 1);
    EXPECT_TRUE(outcome.untouched_from(outcome.size));
    return outcome.text();
}

TEST(ConvertText, WritesIntegersPlainly) {
    EXPECT_EQ(as_text<int8_t>(cnv_int8ToString, -128), "-128");
    EXPECT_EQ(as_text<uint8_t>(cnv_uint8ToString, 255), "255");
    EXPECT_EQ(as_text<int16_t>(cnv_int16ToString, INT16_MIN), "-32768");
    EXPECT_EQ(as_text<uint16_t>(cnv_uint16ToString, UINT16_MAX), "65535");
    EXPECT_EQ(as_text<int32_t>(cnv_int32ToString, INT32_MIN), "-2147483648");
    EXPECT_EQ(as_text<uint32_t>(cnv_uint32ToString, UINT32_MAX), "4294967295");
    EXPECT_EQ(as_text<int64_t>(cnv_int64ToString, INT64_MIN), "-9223372036854775808");
    EXPECT_EQ(as_text<uint64_t>(cnv_uint64ToString, UINT64_MAX), "18446744073709551615");
    EXPECT_EQ(as_text<int32_t>(cnv_int32ToString, 0), "0");
}

// Every power of ten and of two and their neighbours, in either sign.
TEST(ConvertText, WritesIntegersOfEveryLength) {
    std::vector<uint64_t> numbers = {0, UINT64_MAX};
    for (const uint64_t base : {uint64_t{2}, uint64_t{10}})
        for (uint64_t power = 1; power <= UINT64_MAX / base;) {
            power *= base;
            numbers.insert(numbers.end(), {power - 1, power, power + 1});
        }
    for (const uint64_t number : numbers) {
        EXPECT_EQ(as_text(cnv_uint64ToString, number), std::to_string(number));
        for (const int64_t value : {static_cast<int64_t>(number), static_cast<int64_t>(0 - number)})
            EXPECT_EQ(as_text(cnv_int64ToString, value), std::to_string(value));
        const auto narrow = static_cast<int32_t>(number);
        EXPECT_EQ(as_text(cnv_int32ToString, narrow), std::to_string(narrow));
    }
}

// At every room: the whole text with its terminator and no byte more, or nothing.
TEST(ConvertText, WritesAnIntegerWholeOrNotAtAll) {
    for (const int64_t value : {int64_t{0}, int64_t{-1}, int64_t{1234567}, INT64_MAX, INT64_MIN}) {
        const std::string expected = std::to_string(value);
        for (size_t room = 1; room <= 48; ++room) {
            const Outcome outcome = run_single(cnv_int64ToString, value, room);
            const bool fits = room > expected.size();
            EXPECT_EQ(outcome.status, fits ? sOKAY : sTRUNCATE) << room;
            EXPECT_EQ(outcome.size, fits ? expected.size() + 1 : 1) << room;
            EXPECT_TRUE(outcome.untouched_from(fits ? outcome.size : 0)) << room;
            EXPECT_TRUE(!fits || outcome.text() == expected) << room;
            CNVCB sizing = block_over(&value, 0, 0, nullptr, room);
            EXPECT_EQ(cnv_int64ToString(&sizing), outcome.status) << room;
            EXPECT_EQ(sizing.tSize, outcome.size) << room;
        }
    }
}

struct FloatText {
    double value;
    const char *text;
};

TEST(ConvertText, WritesDoublesWithFifteenDigits) {
    const FloatText cases[] = {{0, "0"},
                               {-0.0, "-0"},
                               {1, "1"},
                               {-1.5, "-1.5"},
                               {0.1, "0.1"},
                               {1.0 / 3, "0.333333333333333"},
                               {2.0 / 3, "0.666666666666667"},
                               {123456789012345.0, "123456789012345"},
                               {999999999999999.0, "999999999999999"},
                               {1e15, "1E+15"},
                               {-1e15, "-1E+15"},
                               {1234567890123456.0, "1.23456789012346E+15"},
                               {0.0001, "0.0001"},
                               {0.00001, "1E-05"},
                               {1e100, "1E+100"},
                               {-1.25e-7, "-1.25E-07"},
                               {DBL_MAX, "1.79769313486232E+308"},
                               {DBL_MIN, "2.2250738585072E-308"},
                               {5e-324, "4.94065645841247E-324"}};
    for (const FloatText &c : cases)
        EXPECT_EQ(as_text(cnv_doubleToString, c.value), c.text);
}

TEST(ConvertText, WritesFloatsWithSevenDigits) {
    const FloatText cases[] = {{0, "0"},
                               {-0.0, "-0"},
                               {0.1F, "0.1"},
                               {16777216, "1.677722E+07"},
                               {9999999, "9999999"},
                               {1e7, "1E+07"},
                               {-1.5, "-1.5"},
                               {FLT_MAX, "3.402823E+38"},
                               {FLT_MIN, "1.175494E-38"},
                               {1.0F / 3, "0.3333333"}};
    for (const FloatText &c : cases)
        EXPECT_EQ(as_text(cnv_floatToString, static_cast<float>(c.value)), c.text);
}

TEST(ConvertText, WritesWordsForWhatIsNoNumber) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    const FloatText cases[] = {{std::copysign(nan, 1.0), "NAN"},
                               {std::copysign(nan, -1.0), "-NAN"},
                               {infinity, "INF"},
                               {-infinity, "-INF"}};
    for (const FloatText &c : cases) {
        EXPECT_EQ(as_text(cnv_doubleToString, c.value), c.text);
        EXPECT_EQ(as_text(cnv_floatToString, static_cast<float>(c.value)), c.text);
    }
    const std::vector<double> all = {-infinity, 1, nan};
    EXPECT_EQ(run_array(cnv_doubleToString, all, 3, 0).text(), "ARRAY[-INF,1,NAN]");
}

// As printf in the C locale, whatever the process's locale is.
TEST(ConvertText, WritesFloatingNumbersAsPrintfDoes) {
    Random random(1);
    for (int i = 0; i < 20000; ++i) {
        uint64_t bits = random.next();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        if (i % 3 == 0)
            value = static_cast<double>(static_cast<int64_t>(bits) >> random.below(60)) / 100;
        if (i % 7 == 0)
            value = std::trunc(value);
        if (std::isfinite(value)) {
            ASSERT_EQ(as_text(cnv_doubleToString, value), printed(15, value));
        }
        const auto narrow = static_cast<float>(value);
        if (std::isfinite(narrow)) {
            ASSERT_EQ(as_text(cnv_floatToString, narrow), printed(7, static_cast<double>(narrow)));
        }
    }
}

TEST(ConvertText, WritesWholeNumbersAsPrintfDoesAroundTheirLastDigit) {
    for (const double power : {1.0, 1e1, 1e6, 1e7, 1e14, 1e15, 1e16, 1e17})
        for (int step = -3; step <= 3; ++step)
            for (const double sign : {1.0, -1.0}) {
                const double value = sign * (power + step);
                EXPECT_EQ(as_text(cnv_doubleToString, value), printed(15, value));
                const auto narrow = static_cast<float>(value);
                EXPECT_EQ(as_text(cnv_floatToString, narrow),
                          printed(7, static_cast<double>(narrow)));
            }
}

TEST(ConvertText, WritesDecimalsWithoutAnExponent) {
    for (const char *text : {"0", "1.5", "-0.05", "12345678901234567890123456789012",
                             "-0.00000000000000000000000000000001", "100"})
        EXPECT_EQ(as_text(cnv_decimalToString, decimal(text)), text);
    OAK_BCD_T damaged = decimal("1");
    damaged.prec = 40;
    EXPECT_EQ(run_single(cnv_decimalToString, damaged).status, eINVBCD);
    EXPECT_TRUE(run_single(cnv_decimalToString, damaged).untouched_from(0));
    // The longest texts: 40 places before and behind the point.
    OAK_BCD_T longest{};
    longest.prec = 32;
    longest.sign = -1;
    for (int i = 1; i <= 32; ++i)
        longest.data[i] = 9;
    for (const int8_t exp : {int8_t{-40}, int8_t{40}}) {
        longest.exp = exp;
        const Outcome whole = run_single(cnv_decimalToString, longest);
        EXPECT_EQ(whole.status, sOKAY);
        EXPECT_EQ(whole.size, exp < 0 ? 76u : 42u);
    }
}

TEST(ConvertText, WritesUuidsWithoutBraces) {
    OAK_UUID_T uuid;
    ASSERT_EQ(oak_uuidFromString("{00112233-4455-6677-8899-AABBCCDDEEFF}", &uuid), sOKAY);
    EXPECT_EQ(as_text(cnv_uuidToString, uuid), "00112233-4455-6677-8899-aabbccddeeff");
    EXPECT_EQ(run_single(cnv_uuidToString, uuid, 37).status, sOKAY);
    EXPECT_EQ(run_single(cnv_uuidToString, uuid, 37).size, 37u);
    EXPECT_EQ(run_single(cnv_uuidToString, uuid, 36).status, sTRUNCATE);
    EXPECT_EQ(run_single(cnv_uuidToString, uuid, 36).size, 1u);
}

// ---- The walk at every room -----------------------------------------------------------------

struct Model {
    std::string text;
    size_t size;
    OAK_RETCODE status;
};

// What an array of these texts becomes in so much room; no elements is a single one.
Model model_of(const std::vector<std::string> &texts, bool array, size_t room) {
    size_t total = array ? 7 : 0;
    std::string text = array ? "ARRAY[" : "";
    size_t taken = 0;
    for (; taken < texts.size(); ++taken) {
        const std::string piece = (taken == 0 ? "" : ",") + texts[taken];
        if (room != 0 && room <= total + piece.size())
            break;
        total += piece.size();
        text += piece;
    }
    if (taken == 0)
        return {"", 1, sTRUNCATE};
    return {text + (array ? "]" : ""), total + 1, taken == texts.size() ? sOKAY : sTRUNCATE};
}

template <class T>
void check_rooms(B_CNVFCN function, const std::vector<T> &values,
                 const std::vector<std::string> &texts) {
    for (const bool array : {false, true}) {
        const std::vector<std::string> shown(texts.begin(),
                                             array ? texts.end() : texts.begin() + 1);
        const auto elements = static_cast<uint32_t>(array ? values.size() : 0);
        for (size_t room = 0; room <= 60; ++room) {
            SCOPED_TRACE(std::to_string(room) + (array ? " for an array" : " for one"));
            const Model wanted = model_of(shown, array, room);
            const Outcome outcome = run_array(function, values, elements, room);
            EXPECT_EQ(outcome.status, wanted.status);
            EXPECT_EQ(outcome.size, wanted.size);
            if (wanted.size == 1) {
                EXPECT_TRUE(outcome.untouched_from(0)); // not even a terminator
            } else {
                EXPECT_EQ(outcome.text(), wanted.text);
                EXPECT_TRUE(outcome.untouched_from(wanted.size));
            }
            CNVCB block = block_over(values.data(), 0, elements, nullptr, room);
            EXPECT_EQ(function(&block), wanted.status); // measuring obeys the room as well
            EXPECT_EQ(block.tSize, wanted.size);
        }
    }
}

TEST(ConvertText, DropsWholeElementsAndClosesTheArrayAtEveryRoom) {
    check_rooms<int32_t>(cnv_int32ToString, {100, -20000, 3, 4}, {"100", "-20000", "3", "4"});
    check_rooms<int8_t>(cnv_int8ToString, {1, -128}, {"1", "-128"});
    check_rooms<uint8_t>(cnv_uint8ToString, {0, 255}, {"0", "255"});
    check_rooms<uint64_t>(cnv_uint64ToString, {UINT64_MAX, 1}, {"18446744073709551615", "1"});
    check_rooms<double>(cnv_doubleToString, {1.5, -0.25, 1e20}, {"1.5", "-0.25", "1E+20"});
    check_rooms<float>(cnv_floatToString, {2.5F, -INFINITY}, {"2.5", "-INF"});
    check_rooms<OAK_BCD_T>(cnv_decimalToString, {decimal("1.25"), decimal("-7")}, {"1.25", "-7"});
    check_rooms<int64_t>(cnv_int64ToString, {7}, {"7"});
}

TEST(ConvertText, StopsADoubleArrayBeforeTheElementThatDoesNotFit) {
    const std::vector<double> values = {1.5, 2.25, 1e20};
    const Outcome outcome = run_array(cnv_doubleToString, values, 3, 16);
    EXPECT_EQ(outcome.status, sTRUNCATE);
    EXPECT_EQ(outcome.text(), "ARRAY[1.5,2.25]");
    EXPECT_EQ(outcome.size, 16u);
}

TEST(ConvertText, PrintsTruthValuesOfAnArrayAsNumbers) {
    std::vector<OAK_BOOL_T> truths = {OAK_TRUE, OAK_FALSE, OAK_TRUE};
    const OAK_VALUE value = value_over(OAK_BOOL, truths.data(), 0, 3);
    char text[32];
    size_t size = 0;
    EXPECT_EQ(to_buffer(&value, OAK_CHAR, text, sizeof text, &size), sOKAY);
    EXPECT_STREQ(text, "ARRAY[1,0,1]");
    EXPECT_EQ(size, 13u);
}

// ---- Text to numbers ------------------------------------------------------------------------

struct NumberCase {
    const char *text;
    OAK_RETCODE status;
    int64_t value;
};

void check_numbers(B_CNVFCN function, size_t width, std::initializer_list<NumberCase> cases) {
    for (const NumberCase &c : cases) {
        SCOPED_TRACE(c.text);
        const Outcome outcome = run_text(function, c.text);
        EXPECT_EQ(outcome.status, c.status);
        CNVCB block = block_over(c.text, std::strlen(c.text) + 1, 0, nullptr, 0);
        EXPECT_EQ(function(&block), c.status); // a sizing run reads the text as well
        if (c.status < sOKAY) {
            EXPECT_TRUE(outcome.untouched_from(0));
            continue;
        }
        EXPECT_EQ(block.tSize, width);
        EXPECT_EQ(outcome.size, width);
        EXPECT_EQ(std::memcmp(outcome.bytes.data(), &c.value, width), 0);
        EXPECT_TRUE(outcome.untouched_from(width));
    }
}

TEST(ConvertText, ReadsNarrowIntegersWithinTheirRange) {
    check_numbers(cnv_stringToInt8, 1,
                  {{"-128", sOKAY, -128},
                   {"127", sOKAY, 127},
                   {"128", eRANGE, 0},
                   {"-129", eRANGE, 0},
                   {"-128.9", sTRUNCATE, -128},
                   {"127.9", sTRUNCATE, 127},
                   {"128.0", eRANGE, 0}});
    check_numbers(cnv_stringToUInt8, 1,
                  {{"0", sOKAY, 0},
                   {"255", sOKAY, 255},
                   {"256", eRANGE, 0},
                   {"-1", eRANGE, 0},
                   {"255.5", sTRUNCATE, 255},
                   {"-0.5", sTRUNCATE, 0},
                   {"-1.5", eRANGE, 0}});
    check_numbers(cnv_stringToInt16, 2,
                  {{"-32768", sOKAY, -32768},
                   {"32767", sOKAY, 32767},
                   {"32768", eRANGE, 0},
                   {"-32769", eRANGE, 0}});
    check_numbers(cnv_stringToUInt16, 2,
                  {{"65535", sOKAY, 65535}, {"65536", eRANGE, 0}, {"-1", eRANGE, 0}});
    check_numbers(cnv_stringToInt32, 4,
                  {{"-2147483648", sOKAY, INT32_MIN},
                   {"2147483647", sOKAY, INT32_MAX},
                   {"2147483648", eRANGE, 0},
                   {"-2147483649", eRANGE, 0},
                   {"12.50", sTRUNCATE, 12},
                   {" \t\n+7", sOKAY, 7},
                   {"-0", sOKAY, 0}});
    check_numbers(
        cnv_stringToUInt32, 4,
        {{"4294967295", sOKAY, UINT32_MAX}, {"4294967296", eRANGE, 0}, {"-1", eRANGE, 0}});
}

// Digits that are zeros are digits: the status tells that there was a fraction.
TEST(ConvertText, TellsOfAFractionEvenOfZeros) {
    check_numbers(cnv_stringToInt64, 8,
                  {{"12.", sOKAY, 12},
                   {"12.0", sTRUNCATE, 12},
                   {"-12.75", sTRUNCATE, -12},
                   {".5", sTRUNCATE, 0},
                   {"-.5", sTRUNCATE, 0},
                   {"1.5e3", sTRUNCATE, 1500},
                   {"1.5E-3", sTRUNCATE, 0}});
}

TEST(ConvertText, ChoosesTheParserOfAnInt64ByItsDigits) {
    check_numbers(cnv_stringToInt64, 8,
                  {{"9223372036854775807", sOKAY, INT64_MAX},
                   {"-9223372036854775808", sOKAY, INT64_MIN},
                   {"9223372036854775808", eRANGE, 0},
                   {"-9223372036854775809", eRANGE, 0},
                   {"00000000000000000001", eRANGE, 0}, // 20 digits, whatever they are
                   {"0000000000000000001", sOKAY, 1},
                   // 19 digits before the point, or 18 and a minus: exact.
                   {"1234567890123456789.5", sTRUNCATE, 1234567890123456789},
                   {"  +1234567890123456789.5", sTRUNCATE, 1234567890123456789},
                   {"-123456789012345678.5", sTRUNCATE, -123456789012345678},
                   {"9223372036854775807.9", sTRUNCATE, INT64_MAX},
                   {"-9223372036854775808.9", sTRUNCATE, INT64_MIN},
                   {"9223372036854775808.5", eRANGE, 0},
                   {"9999999999999999999.5", eRANGE, 0},
                   {"12345678901234567890.5", eRANGE, 0},
                   // Fewer go by way of a double, whose 53 bits show.
                   {"123456789012345678.5", sTRUNCATE, 123456789012345680},
                   {"-12345678901234567.5", sTRUNCATE, -12345678901234568},
                   {"4503599627370495.5", sTRUNCATE, 4503599627370495}});
}

TEST(ConvertText, RefusesAFractionWhoseIntegerPartNeedsMoreThanSixtyFourBits) {
    check_numbers(cnv_stringToInt64, 8,
                  {{"1.5e300", eRANGE, 0},
                   {"-1.5e300", eRANGE, 0},
                   {"9.3e18", eRANGE, 0},
                   {"-9.3e18", eRANGE, 0},
                   {"9.2e18", sTRUNCATE, 9200000000000000000},
                   {"-9.2e18", sTRUNCATE, -9200000000000000000},
                   {"9.223372036854775808e18", eRANGE, 0},
                   {"-9.223372036854775808e18", sTRUNCATE, INT64_MIN},
                   {"-9.223372036854777856e18", eRANGE, 0}}); // the next double
    check_numbers(cnv_stringToUInt64, 8,
                  {{"1.5e300", eRANGE, 0},
                   {"1.9e19", eRANGE, 0},
                   {"1.8446744073709551616e19", eRANGE, 0},
                   {"1.8e19", sTRUNCATE, static_cast<int64_t>(18000000000000000000U)}});
}

// An exponent is no part of an integer, and behind a fraction of a long number it is
// not looked at.
TEST(ConvertText, TakesAnExponentByWayOfADoubleAlone) {
    for (const B_CNVFCN function : {cnv_stringToInt8, cnv_stringToInt64, cnv_stringToUInt64,
                                    cnv_stringToRowid, cnv_stringToBoolean})
        EXPECT_EQ(run_text(function, "1e2").status, eRANGE);
    check_numbers(cnv_stringToInt64, 8,
                  {{"1234567890123456789.5e-3", sTRUNCATE, 1234567890123456789}});
    check_numbers(cnv_stringToUInt64, 8,
                  {{"1234567890123456789.5e3", sTRUNCATE, 1234567890123456789}});
}

TEST(ConvertText, ReadsUnsignedSixtyFourBitsByTheirOwnRoad) {
    check_numbers(cnv_stringToUInt64, 8,
                  {{"18446744073709551615", sOKAY, -1},
                   {"18446744073709551616", eRANGE, 0},
                   {"9223372036854775808", sOKAY, INT64_MIN},
                   {"-1", eRANGE, 0},
                   {"-0", eRANGE, 0}, // the sign alone decides
                   {"+5", sOKAY, 5},
                   {"000000000000000000001", eRANGE, 0}, // 21 digits
                   {"00000000000000000001", sOKAY, 1},
                   {"12.75", sTRUNCATE, 12},
                   {"-0.5", eRANGE, 0},
                   {"-0.0", sTRUNCATE, 0},
                   {"18446744073709551615.9", sTRUNCATE, -1},
                   {"18446744073709551616.1", eRANGE, 0},
                   {"-1234567890123456789.5", eRANGE, 0}});
}

TEST(ConvertText, RefusesTextThatIsNoNumber) {
    for (const B_CNVFCN function :
         {cnv_stringToInt8, cnv_stringToUInt8, cnv_stringToInt16, cnv_stringToUInt16,
          cnv_stringToInt32, cnv_stringToUInt32, cnv_stringToInt64, cnv_stringToUInt64,
          cnv_stringToFloat, cnv_stringToDouble, cnv_stringToRowid}) {
        for (const char *text : {"", "abc", "1a", "1 ", "--1", "1.2.3", "1e", "0x10", "NAN", "INF"})
            EXPECT_EQ(run_text(function, text).status, eINVLITERAL) << text;
        EXPECT_EQ(run_text(function, "1e309").status, eRANGE);
        // The scanner lets a lone sign and a lone point pass, the parsers do not.
        EXPECT_EQ(run_text(function, "-").status, eRANGE);
        EXPECT_EQ(run_text(function, ".").status, eRANGE);
    }
}

TEST(ConvertText, ReadsFloatingNumbersWithinTheirExponents) {
    EXPECT_EQ(run_text(cnv_stringToDouble, "-12.50e+3").at<double>(), -12500);
    EXPECT_EQ(run_text(cnv_stringToDouble, "1.7976931348623157e308").at<double>(), DBL_MAX);
    EXPECT_EQ(run_text(cnv_stringToDouble, "1e-308").at<double>(), 1e-308);
    EXPECT_EQ(run_text(cnv_stringToDouble, "1e-309").status, eRANGE);
    EXPECT_EQ(run_text(cnv_stringToDouble, "9e308").status, eRANGE);
    EXPECT_EQ(run_text(cnv_stringToDouble, "5.").at<double>(), 5);
    EXPECT_EQ(run_text(cnv_stringToDouble, "1").size, 8u);
    EXPECT_EQ(run_text(cnv_stringToFloat, "1.5e38").at<float>(), 1.5e38F);
    EXPECT_EQ(run_text(cnv_stringToFloat, "1e39").status, eRANGE);
    EXPECT_EQ(run_text(cnv_stringToFloat, "1e-39").status, eRANGE);
    EXPECT_EQ(run_text(cnv_stringToFloat, "1e-38").at<float>(), 1e-38F);
    EXPECT_EQ(run_text(cnv_stringToFloat, "9e38").status, eRANGE);
    EXPECT_EQ(run_text(cnv_stringToFloat, "1").size, 4u);
}

TEST(ConvertText, ReadsDecimalsAndCallsWhatIsNoneALiteral) {
    const Outcome outcome = run_text(cnv_stringToDecimal, " - 12.50E+1 ");
    EXPECT_EQ(outcome.status, sOKAY);
    EXPECT_EQ(outcome.size, 37u);
    const OAK_BCD_T wanted = decimal("-125");
    EXPECT_EQ(std::memcmp(outcome.bytes.data(), &wanted, sizeof wanted), 0);
    EXPECT_EQ(run_text(cnv_stringToDecimal, "12abc").status, eINVLITERAL);
    EXPECT_EQ(run_text(cnv_stringToDecimal, "12abc").untouched_from(0), true);
    EXPECT_EQ(run_text(cnv_stringToDecimal, "1e400").status, eINVLITERAL);
    EXPECT_EQ(run_text(cnv_stringToDecimal, "999999999999999999999999999999999").status,
              eINVLITERAL);
    const Outcome rounded = run_text(cnv_stringToDecimal, "0.111111111111111111111111111111111");
    EXPECT_EQ(rounded.status, sPRECISIONLOSS);
    EXPECT_EQ(rounded.size, 37u);
    CNVCB block = block_over("no number", 10, 0, nullptr, 0);
    EXPECT_EQ(cnv_stringToDecimal(&block), sOKAY); // a sizing run does not look
    EXPECT_EQ(block.tSize, 37u);
}

TEST(ConvertText, ReadsRowIdsWithoutALookAtTheSign) {
    check_numbers(cnv_stringToRowid, 8,
                  {{"0", sOKAY, 0},
                   {"5", sOKAY, 5},
                   {"-5", sOKAY, -5},
                   {"9223372036854775807", sOKAY, INT64_MAX},
                   {"9223372036854775808", eRANGE, 0},
                   {"12345678901234567890", eRANGE, 0},
                   {"1.5", eTYPEMISMATCH, 0},
                   {"1.", sOKAY, 1}});
}

TEST(ConvertText, ReadsTruthFromNumbersAndWords) {
    check_numbers(cnv_stringToBoolean, 1,
                  {{"0", sOKAY, 0},
                   {"1", sOKAY, 1},
                   {"-7", sOKAY, 1},
                   {"000", sOKAY, 0},
                   {"true", sOKAY, 1},
                   {"TRUE", sOKAY, 1},
                   {"Yes", sOKAY, 1},
                   {"false", sOKAY, 0},
                   {"No", sOKAY, 0},
                   {"", eINVLITERAL, 0},
                   {"y", eINVLITERAL, 0},
                   {"true ", eINVLITERAL, 0},
                   {"1.5", eRANGE, 0},
                   {"1e309", eRANGE, 0},
                   {"99999999999999999999", eRANGE, 0}});
}

TEST(ConvertText, ReadsUuids) {
    OAK_UUID_T wanted;
    const char *text = "{00112233-4455-6677-8899-AABBCCDDEEFF}";
    ASSERT_EQ(oak_uuidFromString(text, &wanted), sOKAY);
    const Outcome outcome = run_text(cnv_stringToUuid, text);
    EXPECT_EQ(outcome.status, sOKAY);
    EXPECT_EQ(outcome.size, 16u);
    EXPECT_EQ(std::memcmp(outcome.bytes.data(), &wanted, 16), 0);
    EXPECT_EQ(run_text(cnv_stringToUuid, "00112233").status, eINVLITERAL);
    EXPECT_TRUE(run_text(cnv_stringToUuid, "00112233").untouched_from(0));
    CNVCB block = block_over("none", 5, 0, nullptr, 0);
    EXPECT_EQ(cnv_stringToUuid(&block), sOKAY);
    EXPECT_EQ(block.tSize, 16u);
}

// ---- Text to text ---------------------------------------------------------------------------

TEST(ConvertText, CopiesTextIntoTheRoomThatThereIs) {
    struct Case {
        size_t room;
        const char *text;
        size_t size;
        OAK_RETCODE status;
    };
    for (const Case &c : {Case{0, "abcd", 5, sOKAY},
                          {2, "a", 2, sTRUNCATE},
                          {4, "abc", 4, sTRUNCATE},
                          {5, "abcd", 5, sOKAY},
                          {6, "abcd", 5, sOKAY}}) {
        const Outcome outcome = run_text(cnv_strcpyTrunc, "abcd", c.room);
        EXPECT_EQ(outcome.text(), c.text) << c.room;
        EXPECT_EQ(outcome.size, c.size) << c.room;
        EXPECT_EQ(outcome.status, c.status) << c.room;
        EXPECT_TRUE(outcome.untouched_from(c.size)) << c.room;
    }
    CNVCB block = block_over("abcd", 5, 0, nullptr, 2);
    EXPECT_EQ(cnv_strcpyTrunc(&block), sOKAY);
    EXPECT_EQ(block.tSize, 5u);
    EXPECT_EQ(block.offset, 0u);
    EXPECT_EQ(run_text(cnv_strcpyTrunc, "").size, 1u);
    EXPECT_EQ(run_text(cnv_strcpyTrunc, "").text(), "");
}

// One byte of room takes one character and no terminator; the size says two.
TEST(ConvertText, TakesOneCharacterIntoOneByte) {
    const Outcome outcome = run_text(cnv_strcpyTrunc, "abcd", 1);
    EXPECT_EQ(outcome.status, sOKAY);
    EXPECT_EQ(outcome.size, 2u);
    EXPECT_EQ(outcome.bytes[0], 'a');
    EXPECT_TRUE(outcome.untouched_from(1));
    const Outcome empty = run_text(cnv_strcpyTrunc, "", 1);
    EXPECT_EQ(empty.bytes[0], 0);
    EXPECT_TRUE(empty.untouched_from(1));
    CNVCB block = block_over("abcd", 5, 0, nullptr, 1);
    EXPECT_EQ(cnv_strcpyTrunc(&block), sOKAY);
    EXPECT_EQ(block.tSize, 5u);
}

// The pieces of a text in a room, joined; every piece but the last is sTRUNCATE.
std::string in_pieces(const std::string &text, size_t room) {
    std::vector<char> piece(room);
    CNVCB block = block_over(text.c_str(), text.size() + 1, 0, piece.data(), room);
    std::string joined;
    for (int calls = 0; calls < 100; ++calls) {
        const size_t before = block.offset;
        const OAK_RETCODE rc = cnv_strcpyTrunc(&block);
        if (rc == sNODATA)
            return joined;
        EXPECT_TRUE(rc == sOKAY || rc == sTRUNCATE);
        joined.append(piece.data(), block.offset - before);
        EXPECT_EQ(rc == sTRUNCATE && room > 1, room > 1 && block.offset < text.size());
    }
    return "endless";
}

TEST(ConvertText, ReadsALongTextInPiecesOfAnyRoom) {
    for (size_t room = 2; room < 12; ++room)
        EXPECT_EQ(in_pieces("hello, world", room), "hello, world") << room;
    EXPECT_EQ(in_pieces("hello", 1), std::string("hello\0", 6)); // the terminator goes last
}

// ---- Binary ---------------------------------------------------------------------------------

Outcome run_bytes(B_CNVFCN function, const std::string &digits, size_t room) {
    const std::vector<uint8_t> bytes = unhex(digits);
    return run(function, block_over(bytes.data(), bytes.size(), 0, nullptr, room),
               room == 0 || room > 4096 ? 4096 : std::max<size_t>(room, 64));
}

TEST(ConvertText, CopiesBinaryIntoTheRoomThatThereIs) {
    EXPECT_EQ(run_bytes(cnv_memcpyTrunc, "010203", 0).size, 3u);
    EXPECT_EQ(run_bytes(cnv_memcpyTrunc, "010203", 3).status, sOKAY);
    const Outcome cut = run_bytes(cnv_memcpyTrunc, "010203", 2);
    EXPECT_EQ(cut.status, sTRUNCATE);
    EXPECT_EQ(cut.size, 2u);
    EXPECT_EQ(hex(cut.bytes.data(), 3), "0102ee");
    const uint8_t bytes[] = {1, 2, 3, 4, 5};
    CNVCB block = block_over(bytes, 5, 0, nullptr, 2);
    EXPECT_EQ(cnv_memcpyTrunc(&block), sOKAY);
    EXPECT_EQ(block.tSize, 5u);
    EXPECT_EQ(block.offset, 0u);
    uint8_t piece[2];
    block.pvDst = piece;
    EXPECT_EQ(cnv_memcpyTrunc(&block), sTRUNCATE);
    EXPECT_EQ(cnv_memcpyTrunc(&block), sTRUNCATE);
    EXPECT_EQ(hex(piece, 2), "0304");
    EXPECT_EQ(cnv_memcpyTrunc(&block), sOKAY);
    EXPECT_EQ(block.tSize, 1u);
    EXPECT_EQ(piece[0], 5);
    EXPECT_EQ(cnv_memcpyTrunc(&block), sNODATA);
    EXPECT_EQ(run_bytes(cnv_memcpyTrunc, "", 4).size, 0u);
    EXPECT_EQ(run_bytes(cnv_memcpyTrunc, "", 4).status, sOKAY);
}

TEST(ConvertText, LaysBinaryIntoTheLowEndOfANumber) {
    const Outcome outcome = run_bytes(cnv_memcpy, "010203", 4);
    EXPECT_EQ(outcome.status, sOKAY);
    EXPECT_EQ(outcome.size, 3u);
    EXPECT_EQ(outcome.at<int32_t>(), 0x00030201);
    EXPECT_TRUE(outcome.untouched_from(4));
    EXPECT_EQ(run_bytes(cnv_memcpy, "0102030405", 4).status, eDATALOST);
    EXPECT_EQ(run_bytes(cnv_memcpy, "0102030405", 4).size, 5u);
    EXPECT_TRUE(run_bytes(cnv_memcpy, "0102030405", 4).untouched_from(0));
    EXPECT_EQ(run_bytes(cnv_memcpy, "01", 0).status, eDATALOST); // no room is no room here
    const Outcome empty = run_bytes(cnv_memcpy, "", 4);
    EXPECT_EQ(empty.status, sOKAY);
    EXPECT_EQ(empty.size, 0u);
    EXPECT_TRUE(empty.untouched_from(0));
    CNVCB block = block_over("x", 1, 0, nullptr, 4);
    EXPECT_EQ(cnv_memcpy(&block), sOKAY);
    EXPECT_EQ(block.tSize, 1u);
}

TEST(ConvertText, WritesBinaryAsHexadecimalInTheRoomThatThereIs) {
    struct Case {
        size_t room;
        const char *text; // null: nothing is written
        size_t size;
        OAK_RETCODE status;
    };
    const size_t wrapped = (size_t{1} << 32) + 3; // as a 32-bit number, a negative room
    for (const Case &c : {Case{0, "0x01ABFF", 9, sOKAY},
                          {1, nullptr, 9, sTRUNCATE},
                          {2, nullptr, 9, sTRUNCATE},
                          {3, "0x", 3, sTRUNCATE},
                          {4, "0x", 3, sTRUNCATE},
                          {5, "0x01", 5, sTRUNCATE},
                          {8, "0x01AB", 7, sTRUNCATE},
                          {9, "0x01ABFF", 9, sOKAY},
                          {100, "0x01ABFF", 9, sOKAY},
                          {wrapped - 2, "0x01ABFF", 9, sOKAY},
                          {wrapped, nullptr, 9, sTRUNCATE},
                          {SIZE_MAX, nullptr, 9, sTRUNCATE}}) {
        SCOPED_TRACE(c.room);
        const Outcome outcome = run_bytes(cnv_binaryToString, "01abff", c.room);
        EXPECT_EQ(outcome.status, c.status);
        EXPECT_EQ(outcome.size, c.size);
        if (c.text == nullptr) {
            EXPECT_TRUE(outcome.untouched_from(0));
        } else {
            EXPECT_EQ(outcome.text(), c.text);
            EXPECT_TRUE(outcome.untouched_from(c.size));
        }
    }
    EXPECT_EQ(run_bytes(cnv_binaryToString, "", 3).text(), "0x");
    CNVCB block = block_over("abc", 3, 0, nullptr, 4);
    EXPECT_EQ(cnv_binaryToString(&block), sOKAY);
    EXPECT_EQ(block.tSize, 9u);
    EXPECT_EQ(block.offset, 0u);
}

TEST(ConvertText, WritesLongBinaryInPieces) {
    const uint8_t bytes[] = {1, 2, 3};
    char text[7];
    CNVCB block = block_over(bytes, 3, 0, text, sizeof text);
    EXPECT_EQ(cnv_binaryToString(&block), sTRUNCATE);
    EXPECT_STREQ(text, "0x0102");
    EXPECT_EQ(cnv_binaryToString(&block), sOKAY);
    EXPECT_STREQ(text, "0x03");
    EXPECT_EQ(block.tSize, 5u);
    EXPECT_EQ(cnv_binaryToString(&block), sNODATA);
}

TEST(ConvertText, ReadsHexadecimalPairsOnly) {
    const Outcome plain = run_text(cnv_stringToBinary, "01abFF", 16);
    EXPECT_EQ(plain.status, sOKAY);
    EXPECT_EQ(plain.size, 3u);
    EXPECT_EQ(hex(plain.bytes.data(), 4), "01abffee");
    for (const char *text : {"0x01abff", "0X01ABFF"})
        EXPECT_EQ(hex(run_text(cnv_stringToBinary, text, 16).bytes.data(), 3), "01abff");
    EXPECT_EQ(run_text(cnv_stringToBinary, "0x", 16).size, 0u);
    EXPECT_EQ(run_text(cnv_stringToBinary, "0x", 16).status, sOKAY);
    EXPECT_EQ(run_text(cnv_stringToBinary, "", 16).size, 0u);
    EXPECT_EQ(run_text(cnv_stringToBinary, "", 16).status, sOKAY);
    for (const char *text : {"0", "012", "0x1", "0x012"})
        EXPECT_EQ(run_text(cnv_stringToBinary, text, 16).status, eINVBINLITERAL) << text;
    const Outcome bad = run_text(cnv_stringToBinary, "0102xy", 16);
    EXPECT_EQ(bad.status, eINVBINLITERAL);
    EXPECT_EQ(hex(bad.bytes.data(), 3), "0102ee"); // what stood before the fault is stored
    EXPECT_EQ(run_text(cnv_stringToBinary, "010g", 16).status, eINVBINLITERAL);
    CNVCB empty = block_over("", 0, 0, nullptr, 0);
    EXPECT_EQ(cnv_stringToBinary(&empty), eINVBINLITERAL); // no terminator was counted
}

TEST(ConvertText, CutsHexadecimalToTheRoom) {
    const Outcome cut = run_text(cnv_stringToBinary, "0x01020304", 2);
    EXPECT_EQ(cut.status, sTRUNCATE);
    EXPECT_EQ(cut.size, 2u);
    EXPECT_EQ(hex(cut.bytes.data(), 3), "0102ee");
    EXPECT_EQ(run_text(cnv_stringToBinary, "01020304", 4).status, sOKAY);
    EXPECT_EQ(run_text(cnv_stringToBinary, "01020304", 0).size, 4u);
    CNVCB block = block_over("0102zz", 7, 0, nullptr, 1);
    EXPECT_EQ(cnv_stringToBinary(&block), eINVBINLITERAL); // a sizing run reads the digits
    uint8_t piece[2];
    block = block_over("0x0102030405", 13, 0, piece, 2);
    EXPECT_EQ(cnv_stringToBinary(&block), sTRUNCATE);
    EXPECT_EQ(cnv_stringToBinary(&block), sTRUNCATE);
    EXPECT_EQ(hex(piece, 2), "0304");
    EXPECT_EQ(cnv_stringToBinary(&block), sOKAY);
    EXPECT_EQ(block.tSize, 1u);
    EXPECT_EQ(cnv_stringToBinary(&block), sNODATA);
}

// A length that runs past a zero byte: the digits end there, the bytes go on as zeros.
TEST(ConvertText, EndsHexadecimalAtAZeroByte) {
    const Outcome outcome = run(cnv_stringToBinary, block_over("AB\0\0\0\0", 7, 0, nullptr, 8), 16);
    EXPECT_EQ(outcome.status, sOKAY);
    EXPECT_EQ(outcome.size, 3u);
    EXPECT_EQ(hex(outcome.bytes.data(), 4), "ab0000ee");
    EXPECT_EQ(run(cnv_stringToBinary, block_over("ABC\0\0\0", 7, 0, nullptr, 8), 16).status,
              eINVBINLITERAL);
}

TEST(ConvertText, ReadsTruthFromOneByteOfBinary) {
    EXPECT_EQ(run_bytes(cnv_binaryToBoolean, "00", 1).at<uint8_t>(), 0);
    EXPECT_EQ(run_bytes(cnv_binaryToBoolean, "80", 1).at<uint8_t>(), 1);
    EXPECT_EQ(run_bytes(cnv_binaryToBoolean, "80", 1).size, 1u);
    EXPECT_EQ(run_bytes(cnv_binaryToBoolean, "", 1).status, eDATALOST);
    EXPECT_EQ(run_bytes(cnv_binaryToBoolean, "0101", 1).status, eDATALOST);
}

TEST(ConvertText, ReadsUuidsFromBinary) {
    const std::string sixteen = "000102030405060708090a0b0c0d0e0f";
    const Outcome outcome = run_bytes(cnv_binaryToUuid, sixteen, 16);
    EXPECT_EQ(outcome.status, sOKAY);
    EXPECT_EQ(outcome.size, 16u);
    EXPECT_EQ(hex(outcome.bytes.data(), 16), sixteen);
    EXPECT_EQ(run_bytes(cnv_binaryToUuid, sixteen + "10", 16).status, sTRUNCATE);
    EXPECT_EQ(hex(run_bytes(cnv_binaryToUuid, sixteen + "10", 16).bytes.data(), 17),
              sixteen + "ee");
    EXPECT_EQ(run_bytes(cnv_binaryToUuid, sixteen.substr(2), 16).status, eRANGE);
    EXPECT_EQ(run_bytes(cnv_binaryToUuid, "", 16).status, eRANGE);

    const std::vector<uint8_t> two = unhex(sixteen + sixteen);
    OAK_UUID_T uuid;
    CNVCB block = block_over(two.data(), two.size(), 0, nullptr, 16);
    EXPECT_EQ(cnv_binaryToUuid(&block), sTRUNCATE);
    EXPECT_EQ(block.offset, 0u);
    block.pvDst = &uuid;
    EXPECT_EQ(cnv_binaryToUuid(&block), sTRUNCATE);
    EXPECT_EQ(block.offset, 16u);
    EXPECT_EQ(cnv_binaryToUuid(&block), sOKAY);
    EXPECT_EQ(cnv_binaryToUuid(&block), sNODATA);
}

// One byte more than the payload is asked for.
TEST(ConvertText, WritesUuidsIntoBinaryOfSeventeenBytes) {
    OAK_UUID_T uuid;
    ASSERT_EQ(oak_uuidFromString("00112233-4455-6677-8899-aabbccddeeff", &uuid), sOKAY);
    EXPECT_EQ(run_single(cnv_uuidToBinary, uuid, 16).status, eDATALOST);
    EXPECT_TRUE(run_single(cnv_uuidToBinary, uuid, 16).untouched_from(0));
    const Outcome outcome = run_single(cnv_uuidToBinary, uuid, 17);
    EXPECT_EQ(outcome.status, sOKAY);
    EXPECT_EQ(outcome.size, 16u);
    EXPECT_EQ(hex(outcome.bytes.data(), 17), "00112233445566778899aabbccddeeffee");
    EXPECT_EQ(run_single(cnv_uuidToBinary, uuid, 0).status, sOKAY); // no limit
    CNVCB block = block_over(&uuid, 0, 0, nullptr, 0);
    EXPECT_EQ(cnv_uuidToBinary(&block), sOKAY);
    EXPECT_EQ(block.tSize, 16u);
    EXPECT_EQ(run_single(cnv_uuidToUuidTrunc, uuid, 16).status, sOKAY);
    EXPECT_EQ(run_single(cnv_uuidToUuidTrunc, uuid, 15).status, sTRUNCATE);
    EXPECT_EQ(run_single(cnv_uuidToUuidTrunc, uuid, 15).size, 0u);
}

} // namespace
