// Numbers out of text at their bounds, and small questions about numbers.
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>

#include "test_support.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

template <class Number>
struct Row {
    const char *text;
    OAK_RETCODE status;
    Number value;
};

template <class Number>
void check(const Row<Number> &row, OAK_RETCODE (*parse)(const char *, Number *)) {
    constexpr Number untouched = 77;
    Number value = untouched;
    EXPECT_EQ(parse(row.text, &value), row.status) << '"' << row.text << '"';
    const Number expected = row.status == sOKAY ? row.value : untouched;
    EXPECT_EQ(std::memcmp(&value, &expected, sizeof value), 0)
        << '"' << row.text << "\" gave " << value;
}

/// What no parser of numbers accepts.
const char *const kJunk[] = {"",      " ",     "+",    "-",   ".",    "+.",   "-.",  "++1",
                             "+-1",   "- 1",   "+ 1",  "1 ",  "1\n",  "x",    "1x",  "1,5",
                             "1,",    "0x",    "0x10", "1..", "1. ",  "..1",  "1.x", "\xff",
                             "1\xff", "one",   "inf",  "nan", "NAN",  "-inf", "INF", "infinity",
                             "1_000", "1'000", "1e",   "1e+", "1e1x", "e1",   ".e1", "--1"};

} // namespace

TEST(Atoi64, ReadsWholeTextsAtTheBounds) {
    const Row<int64_t> rows[] = {
        {"0", sOKAY, 0},
        {"-0", sOKAY, 0},
        {"+0", sOKAY, 0},
        {"7", sOKAY, 7},
        {"+7", sOKAY, 7},
        {"-7", sOKAY, -7},
        {"007", sOKAY, 7},
        {"  \t\n\v\f\r12", sOKAY, 12},
        {" -12", sOKAY, -12},
        {"12.", sOKAY, 12},
        {"-12.", sOKAY, -12},
        {"9223372036854775806", sOKAY, INT64_MAX - 1},
        {"9223372036854775807", sOKAY, INT64_MAX},
        {"9223372036854775807.", sOKAY, INT64_MAX},
        {"9223372036854775808", eRANGE, 0},
        {"-9223372036854775807", sOKAY, INT64_MIN + 1},
        {"-9223372036854775808", sOKAY, INT64_MIN},
        {"-9223372036854775809", eRANGE, 0},
        {"18446744073709551615", eRANGE, 0},
        {"18446744073709551616", eRANGE, 0},
        {"99999999999999999999999999", eRANGE, 0},
        {"00000000000000000000000000000001", sOKAY, 1},
        {"12.0", eRANGE, 0},
        {".5", eRANGE, 0},
        {"1e5", eRANGE, 0},
    };
    for (const auto &row : rows) {
        check(row, osl_atoi64);
    }
}

TEST(Atoui64, ReadsWholeTextsAtTheBounds) {
    const Row<uint64_t> rows[] = {
        {"0", sOKAY, 0},
        {"+0", sOKAY, 0},
        {"-0", eRANGE, 0},
        {"-1", eRANGE, 0},
        {" 12", sOKAY, 12},
        {"12.", sOKAY, 12},
        {"18446744073709551614", sOKAY, UINT64_MAX - 1},
        {"18446744073709551615", sOKAY, UINT64_MAX},
        {"18446744073709551615.", sOKAY, UINT64_MAX},
        {"18446744073709551616", eRANGE, 0},
        {"99999999999999999999999999", eRANGE, 0},
        {"12.0", eRANGE, 0},
        {"1e5", eRANGE, 0},
    };
    for (const auto &row : rows) {
        check(row, osl_atoui64);
    }
}

TEST(Strtod, ReadsWholeTextsAtTheBounds) {
    const std::string many_digits = "0." + std::string(2000, '0') + "1";
    const std::string large_digits = std::string(308, '9') + "." + std::string(500, '9');
    const Row<double> rows[] = {
        {"0", sOKAY, 0.0},
        {"-0", sOKAY, -0.0},
        {"1", sOKAY, 1.0},
        {"+1.5", sOKAY, 1.5},
        {"-1.5", sOKAY, -1.5},
        {"  2.25", sOKAY, 2.25},
        {"1.", sOKAY, 1.0},
        {".5", sOKAY, 0.5},
        {"-.5", sOKAY, -0.5},
        {"1.e2", sOKAY, 100.0},
        {"1e2", sOKAY, 100.0},
        {"1E+2", sOKAY, 100.0},
        {"1e-2", sOKAY, 0.01},
        {"0.1", sOKAY, 0.1},
        {"1.7976931348623157e308", sOKAY, std::numeric_limits<double>::max()},
        {"-1.7976931348623157e308", sOKAY, std::numeric_limits<double>::lowest()},
        {"1.7976931348623159e308", eRANGE, 0},
        {"-1.8e308", eRANGE, 0},
        {"1e309", eRANGE, 0},
        {"1e99999999999999999999", eRANGE, 0},
        {large_digits.c_str(), sOKAY, 1e308},
        {"2.2250738585072014e-308", sOKAY, std::numeric_limits<double>::min()},
        {"4.9406564584124654e-324", sOKAY, std::numeric_limits<double>::denorm_min()},
        {"3e-324", sOKAY, std::numeric_limits<double>::denorm_min()},
        {"2e-324", sOKAY, 0.0},
        {"-2e-324", sOKAY, -0.0},
        {"1e-400", sOKAY, 0.0},
        {"1e-99999999999999999999", sOKAY, 0.0},
        {many_digits.c_str(), sOKAY, 0.0},
        {"0e99999999999999999999", sOKAY, 0.0},
    };
    for (const auto &row : rows) {
        check(row, osl_strtod);
    }
}

TEST(Strtof, ReadsWholeTextsAtTheBounds) {
    const Row<float> rows[] = {
        {"1.5", sOKAY, 1.5f},
        {"-1.5", sOKAY, -1.5f},
        {"1.", sOKAY, 1.0f},
        {"16777217", sOKAY, 16777216.0f},
        {"3.4028235e38", sOKAY, std::numeric_limits<float>::max()},
        {"3.4028235677973366e38", sOKAY, std::numeric_limits<float>::max()}, // below the half
        {"3.4028235677973367e38", eRANGE, 0},
        {"-3.5e38", eRANGE, 0},
        {"1e39", eRANGE, 0},
        {"1.17549435e-38", sOKAY, std::numeric_limits<float>::min()},
        {"1.4e-45", sOKAY, std::numeric_limits<float>::denorm_min()},
        {"7e-46", sOKAY, 0.0f},
        {"-1e-46", sOKAY, -0.0f},
    };
    for (const auto &row : rows) {
        check(row, osl_strtof);
    }
}

TEST(NumberParsing, RefusesJunkAndStoresNothing) {
    for (const char *text : kJunk) {
        check(Row<int64_t>{text, eRANGE, 0}, osl_atoi64);
        check(Row<uint64_t>{text, eRANGE, 0}, osl_atoui64);
        check(Row<double>{text, eRANGE, 0}, osl_strtod);
        check(Row<float>{text, eRANGE, 0}, osl_strtof);
    }
}

TEST(NumberParsing, RefusesMissingArguments) {
    int64_t signed_value = 0;
    uint64_t unsigned_value = 0;
    double double_value = 0;
    float float_value = 0;
    EXPECT_EQ(osl_atoi64(nullptr, &signed_value), eINVNULLARG);
    EXPECT_EQ(osl_atoi64("1", nullptr), eINVNULLARG);
    EXPECT_EQ(osl_atoui64(nullptr, &unsigned_value), eINVNULLARG);
    EXPECT_EQ(osl_atoui64("1", nullptr), eINVNULLARG);
    EXPECT_EQ(osl_strtod(nullptr, &double_value), eINVNULLARG);
    EXPECT_EQ(osl_strtod("1", nullptr), eINVNULLARG);
    EXPECT_EQ(osl_strtof(nullptr, &float_value), eINVNULLARG);
    EXPECT_EQ(osl_strtof("1", nullptr), eINVNULLARG);
    EXPECT_EQ(osl_atof(nullptr), 0.0);
}

TEST(NumberParsing, UndoesPrintingOfEveryDouble) {
    oaktest::Random random;
    for (int i = 0; i < 20000; ++i) {
        const uint64_t bits = random.next();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) {
            continue;
        }
        char text[64];
        osl_snprintf(text, sizeof text, "%.17g", value);
        double back = 0;
        ASSERT_EQ(osl_strtod(text, &back), sOKAY) << text;
        ASSERT_EQ(std::memcmp(&value, &back, sizeof value), 0) << text;
        ASSERT_EQ(osl_atof(text), value) << text;
    }
}

TEST(NumberParsing, UndoesPrintingOfIntegersAroundPowersOfTwo) {
    for (int power = 0; power < 64; ++power) {
        for (int change = -1; change <= 1; ++change) {
            const uint64_t value = (uint64_t{1} << power) + static_cast<uint64_t>(change);
            char text[32];
            osl_snprintf(text, sizeof text, "%llu", static_cast<unsigned long long>(value));
            uint64_t back = 0;
            EXPECT_EQ(osl_atoui64(text, &back), sOKAY);
            EXPECT_EQ(back, value);
            int64_t signed_back = 0;
            const bool fits = value <= static_cast<uint64_t>(INT64_MAX);
            EXPECT_EQ(osl_atoi64(text, &signed_back), fits ? sOKAY : eRANGE);
            EXPECT_EQ(signed_back, fits ? static_cast<int64_t>(value) : 0);
        }
    }
}

TEST(NumberParsing, TakesAPointUnderACommaLocale) {
    const std::string old = std::setlocale(LC_ALL, nullptr);
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) {
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    }
    double value = 0;
    float single = 0;
    EXPECT_EQ(osl_strtod("1.5", &value), sOKAY);
    EXPECT_EQ(value, 1.5);
    EXPECT_EQ(osl_strtod("1,5", &value), eRANGE);
    EXPECT_EQ(osl_strtod("2.5e-324", &value), sOKAY)
        << "the road of the numbers that are too small";
    EXPECT_EQ(value, std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(osl_strtof("1.5", &single), sOKAY);
    EXPECT_EQ(osl_atof("1.5"), 1.5);
    std::setlocale(LC_ALL, old.c_str());
}

TEST(Atof, ReadsTheNumberAtTheFront) {
    const struct {
        const char *text;
        double value;
    } rows[] = {{"1.5", 1.5},         {" -2.5xyz", -2.5},     {"", 0},      {"abc", 0},
                {"1e3", 1000},        {".25", 0.25},          {"1.", 1},    {"0.5;", 0.5},
                {"1e999", kInfinity}, {"-1e999", -kInfinity}, {"1e-999", 0}};
    for (const auto &row : rows) {
        EXPECT_EQ(osl_atof(row.text), row.value) << row.text;
    }
}

TEST(Hexdigit, KnowsEveryCharacter) {
    const std::string lower = "0123456789abcdef";
    const std::string upper = "0123456789ABCDEF";
    for (int ch = -128; ch < 256; ++ch) {
        const auto character = static_cast<char>(ch);
        size_t place = lower.find(character);
        place = place != std::string::npos ? place : upper.find(character);
        EXPECT_EQ(osl_hexdigit(character), place != std::string::npos ? place : 255u) << ch;
    }
}

TEST(Floating, AnswersAboutNans) {
    EXPECT_EQ(osl_isnan(kNan), OAK_TRUE);
    EXPECT_EQ(osl_isnan(-kNan), OAK_TRUE);
    EXPECT_EQ(osl_isnan(kInfinity), OAK_FALSE);
    EXPECT_EQ(osl_isnan(0.0), OAK_FALSE);
    EXPECT_EQ(osl_isnanf(std::numeric_limits<float>::quiet_NaN()), OAK_TRUE);
    EXPECT_EQ(osl_isnanf(std::numeric_limits<float>::infinity()), OAK_FALSE);
    EXPECT_EQ(osl_isnanf(1.0f), OAK_FALSE);
}

TEST(Floating, RoundsUpAndDown) {
    const float rows[][3] = {{1.5f, 2, 1},  {-1.5f, -1, -2},     {2.0f, 2, 2},
                             {0.25f, 1, 0}, {-0.25f, -0.0f, -1}, {1e30f, 1e30f, 1e30f}};
    for (const auto &row : rows) {
        EXPECT_EQ(osl_ceilf(row[0]), row[1]);
        EXPECT_EQ(osl_floorf(row[0]), row[2]);
    }
}

TEST(Floating, TellsTheKindOfWhatIsNotFinite) {
    const struct {
        double value;
        OAK_BOOL_T finite;
        OAK_FP_TYPE kind;
    } rows[] = {{0.0, OAK_TRUE, {}},
                {-1.5, OAK_TRUE, {}},
                {std::numeric_limits<double>::denorm_min(), OAK_TRUE, {}},
                {kNan, OAK_FALSE, OAK_FP_POSITIVE_NAN},
                {-kNan, OAK_FALSE, OAK_FP_NEGATIVE_NAN},
                {kInfinity, OAK_FALSE, OAK_FP_POSITIVE_INF},
                {-kInfinity, OAK_FALSE, OAK_FP_NEGATIVE_INF}};
    constexpr auto untouched = static_cast<OAK_FP_TYPE>(99);
    for (const auto &row : rows) {
        OAK_FP_TYPE kind = untouched;
        EXPECT_EQ(osl_validateDouble(&kind, row.value), row.finite) << row.value;
        EXPECT_EQ(kind, row.finite ? untouched : row.kind);
        EXPECT_EQ(osl_validateDouble(nullptr, row.value), row.finite);
        kind = untouched;
        EXPECT_EQ(osl_validateFloat(&kind, static_cast<float>(row.value)), row.finite) << row.value;
        EXPECT_EQ(kind, row.finite ? untouched : row.kind);
        EXPECT_EQ(osl_validateFloat(nullptr, static_cast<float>(row.value)), row.finite);
    }
    EXPECT_EQ(osl_validateDouble(nullptr, std::numeric_limits<double>::max()), OAK_TRUE);
    EXPECT_EQ(osl_validateFloat(nullptr, std::numeric_limits<float>::lowest()), OAK_TRUE);
}

TEST(Bits, FindsTheHighestSetOne) {
    const uint32_t rows[][2] = {{0, 0}, {1, 1}, {2, 2}, {3, 2}, {4, 3}, {7, 3}, {8, 4}};
    for (const auto &row : rows) {
        EXPECT_EQ(osl_bitFirstSet(row[0]), row[1]);
    }
    for (uint32_t bit = 0; bit < 32; ++bit) {
        EXPECT_EQ(osl_bitFirstSet(1u << bit), bit + 1);
        EXPECT_EQ(osl_bitFirstSet((1u << bit) | 1), bit + 1);
    }
    EXPECT_EQ(osl_bitFirstSet(UINT32_MAX), 32u);
}
