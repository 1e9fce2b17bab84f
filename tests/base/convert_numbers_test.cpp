// Conversions between numbers against a second implementation that reckons in long
// double, which holds every 64-bit integer and every double exactly: each source to each
// destination at every power of two less one, itself and one more, at the halves around,
// and at both ends. Then arrays, decimals, packed decimals, truth values, row ids and raw
// images, and that all roads to a value agree.
#include <cfloat>
#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>

#include "convert_support.h"

using namespace oaktest;

namespace {

// ---- Types and their values -----------------------------------------------------------------

template <class T>
struct Name;
#define NAMED(type, from, to)                                                                      \
    template <>                                                                                    \
    struct Name<type> {                                                                            \
        static constexpr const char *source = from;                                                \
        static constexpr const char *target = to;                                                  \
    };
NAMED(int8_t, "int8", "Int8")
NAMED(uint8_t, "uint8", "UInt8")
NAMED(int16_t, "int16", "Int16")
NAMED(uint16_t, "uint16", "UInt16")
NAMED(int32_t, "int32", "Int32")
NAMED(uint32_t, "uint32", "UInt32")
NAMED(int64_t, "int64", "Int64")
NAMED(uint64_t, "uint64", "UInt64")
NAMED(float, "float", "Float")
NAMED(double, "double", "Double")
NAMED(OAK_BCD_T, "decimal", "Decimal")
#undef NAMED

using Integers =
    std::tuple<int8_t, uint8_t, int16_t, uint16_t, int32_t, uint32_t, int64_t, uint64_t>;
using Numbers = std::tuple<int8_t, uint8_t, int16_t, uint16_t, int32_t, uint32_t, int64_t, uint64_t,
                           float, double>;

// Calls `each` with a value of every type of the tuple.
template <class Tuple, class Each>
void for_types(Each each) {
    std::apply([&](auto... values) { (each(values), ...); }, Tuple{});
}

B_CNVFCN function_of(const std::string &name) {
    const auto found = conversion_functions().find(name);
    EXPECT_NE(found, conversion_functions().end()) << name;
    return found->second;
}

template <class From, class To>
B_CNVFCN number_function() {
    return function_of(std::string("cnv_") + Name<From>::source + "To" + Name<To>::target +
                       "Trunc");
}

template <class From>
B_CNVFCN named_function(const char *rest) {
    return function_of(std::string("cnv_") + Name<From>::source + rest);
}

// Every value of the type that lies at a power of two, at one beside it, or between.
template <class T>
std::vector<T> interesting() {
    std::vector<long double> wide = {0};
    for (int power = 0; power <= 65; ++power) {
        const long double two = std::ldexp(1.0L, power);
        for (const long double step : {-1.0L, -0.9L, -0.5L, -0.1L, 0.0L, 0.1L, 0.5L, 0.9L, 1.0L}) {
            wide.push_back(two + step);
            wide.push_back(-two + step);
        }
    }
    std::vector<T> values;
    for (const long double value : wide) {
        if (std::is_floating_point_v<T>)
            values.push_back(static_cast<T>(value));
        else if (value == std::trunc(value) &&
                 value >= static_cast<long double>(std::numeric_limits<T>::min()) &&
                 value <= static_cast<long double>(std::numeric_limits<T>::max()))
            values.push_back(static_cast<T>(value));
    }
    if constexpr (std::is_floating_point_v<T>) {
        using Limits = std::numeric_limits<T>;
        for (const T value : {Limits::max(), Limits::min(), Limits::denorm_min(),
                              Limits::infinity(), Limits::quiet_NaN(), T{0}})
            for (const T sign : {T{1}, T{-1}})
                values.push_back(std::copysign(value, sign));
        for (const double value : {1e20, 3.4028234663852886e38, 3.4028235e38, 1e39, 9e15})
            values.push_back(static_cast<T>(value));
        // The neighbours of the bounds.
        for (const int power : {31, 63, 64})
            for (const T sign : {T{1}, T{-1}}) {
                const T bound = sign * std::ldexp(T{1}, power);
                values.push_back(std::nextafter(bound, T{0}));
                values.push_back(std::nextafter(bound, bound * 2));
            }
    }
    return values;
}

template <class T>
bool same_bits(T left, T right) {
    return std::memcmp(&left, &right, sizeof left) == 0 || (left != left && right != right);
}

// ---- The second implementation --------------------------------------------------------------

long double power_of_two(int power) {
    return std::ldexp(1.0L, power);
}

// What a number becomes, or nothing where it is out of range.
template <class From, class To>
std::optional<To> expected(From value) {
    const auto exact = static_cast<long double>(value);
    if constexpr (std::is_floating_point_v<To>) {
        if (std::is_same_v<From, uint64_t> && std::is_same_v<To, float> && exact > 2147483647.0L)
            return std::nullopt;
        if (std::isfinite(exact) && std::fabs(exact) > std::numeric_limits<To>::max())
            return std::nullopt;
        return static_cast<To>(exact);
    } else {
        if (!std::isfinite(exact))
            return std::nullopt;
        const long double whole = std::trunc(exact);
        if constexpr (std::is_floating_point_v<From>) {
            const int bits = std::is_same_v<From, float> ? 31 : 63;
            if (whole < -power_of_two(bits) || whole >= power_of_two(bits))
                return std::nullopt;
        }
        if (whole < static_cast<long double>(std::numeric_limits<To>::min()) ||
            whole > static_cast<long double>(std::numeric_limits<To>::max()))
            return std::nullopt;
        return static_cast<To>(whole);
    }
}

// ---- Number to number -----------------------------------------------------------------------

template <class From, class To>
void check_pair() {
    const B_CNVFCN convert = number_function<From, To>();
    for (const From value : interesting<From>()) {
        SCOPED_TRACE(std::string(Name<From>::source) + " " + std::to_string(value) + " to " +
                     Name<To>::target);
        const std::optional<To> wanted = expected<From, To>(value);
        const Outcome outcome = run_single(convert, value, sizeof(To));
        ASSERT_EQ(outcome.status, wanted ? sOKAY : eRANGE);
        ASSERT_EQ(outcome.size, sizeof(To)); // is told in both cases
        if (wanted) {
            ASSERT_TRUE(same_bits(outcome.at<To>(), *wanted)) << outcome.at<To>();
        }
        ASSERT_TRUE(outcome.untouched_from(wanted ? sizeof(To) : 0));
    }
}

TEST(ConvertNumbers, ConvertEachNumberToEachNumberAsReckoned) {
    for_types<Numbers>([](auto from) {
        for_types<Numbers>([](auto to) {
            if constexpr (!std::is_same_v<decltype(from), decltype(to)>)
                check_pair<decltype(from), decltype(to)>();
        });
    });
}

// The bounds in literals, each once.
TEST(ConvertNumbers, KeepTheLimitsOfFloatingSources) {
    EXPECT_EQ(run_single(cnv_doubleToUInt8Trunc, -0.9).status, sOKAY);
    EXPECT_EQ(run_single(cnv_doubleToUInt8Trunc, -0.9).at<uint8_t>(), 0);
    EXPECT_EQ(run_single(cnv_doubleToUInt8Trunc, -1.0).status, eRANGE);
    EXPECT_EQ(run_single(cnv_doubleToUInt8Trunc, 255.9).at<uint8_t>(), 255);
    EXPECT_EQ(run_single(cnv_doubleToUInt8Trunc, 256.0).status, eRANGE);
    EXPECT_EQ(run_single(cnv_floatToUInt32Trunc, 3e9F).status, eRANGE);
    EXPECT_EQ(run_single(cnv_doubleToUInt32Trunc, 3e9).at<uint32_t>(), 3000000000U);
    EXPECT_EQ(run_single(cnv_floatToInt64Trunc, 2147483648.0F).status, eRANGE);
    EXPECT_EQ(run_single(cnv_floatToInt64Trunc, -2147483648.0F).at<int64_t>(), -2147483648LL);
    EXPECT_EQ(run_single(cnv_doubleToInt64Trunc, 9223372036854775808.0).status, eRANGE);
    EXPECT_EQ(run_single(cnv_doubleToUInt64Trunc, 9223372036854775808.0).status, eRANGE);
    EXPECT_EQ(run_single(cnv_doubleToUInt64Trunc, 9223372036854774784.0).at<uint64_t>(),
              9223372036854774784U);
    EXPECT_EQ(run_single(cnv_doubleToInt64Trunc, -9223372036854775808.0).at<int64_t>(), INT64_MIN);
    EXPECT_EQ(run_single(cnv_uint64ToFloatTrunc, uint64_t{2147483647}).status, sOKAY);
    EXPECT_EQ(run_single(cnv_uint64ToFloatTrunc, uint64_t{2147483648}).status, eRANGE);
    EXPECT_EQ(run_single(cnv_int64ToFloatTrunc, int64_t{2147483648}).at<float>(), 2147483648.0F);
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(run_single(cnv_doubleToFloatTrunc, infinity).status, sOKAY);
    EXPECT_EQ(run_single(cnv_doubleToFloatTrunc, -infinity).at<float>(),
              -std::numeric_limits<float>::infinity());
    EXPECT_EQ(run_single(cnv_doubleToFloatTrunc, 1e39).status, eRANGE);
    EXPECT_EQ(run_single(cnv_doubleToFloatTrunc, -1e39).status, eRANGE);
    EXPECT_EQ(run_single(cnv_doubleToFloatTrunc, 3.4028234663852886e38).at<float>(), FLT_MAX);
    EXPECT_EQ(run_single(cnv_uint64ToDoubleTrunc, UINT64_MAX).at<double>(), 18446744073709551616.0);
    // A tie that the bit lost in halving decides: 2^63 + 1025 lies above the midpoint.
    EXPECT_EQ(run_single(cnv_uint64ToDoubleTrunc, (uint64_t{1} << 63) + 1025).at<double>(),
              9223372036854777856.0);
    EXPECT_EQ(run_single(cnv_uint64ToDoubleTrunc, (uint64_t{1} << 63) + 1024).at<double>(),
              9223372036854775808.0);
}

// ---- Arrays: the walk -----------------------------------------------------------------------

TEST(ConvertNumbers, MeasureWithoutLookingAtElements) {
    const std::vector<double> values = {1, NAN, 1e300};
    for (const uint32_t elements : {0U, 1U, 3U}) {
        CNVCB block = block_over(values.data() + 1, 0, elements, nullptr, 1);
        EXPECT_EQ(cnv_doubleToInt16Trunc(&block), sOKAY);
        EXPECT_EQ(block.tSize, 2 * std::max(elements, 1U));
    }
}

TEST(ConvertNumbers, CutAnArrayToWholeElementsOfTheRoom) {
    const std::vector<int32_t> values = {1, 2, 3, 4};
    struct Case {
        size_t room;
        size_t elements;
        OAK_RETCODE status;
    };
    for (const Case &c : {Case{0, 1, sTRUNCATE},
                          {1, 1, sTRUNCATE},
                          {7, 1, sTRUNCATE},
                          {8, 1, sTRUNCATE},
                          {15, 1, sTRUNCATE},
                          {16, 2, sTRUNCATE},
                          {31, 3, sTRUNCATE},
                          {32, 4, sOKAY},
                          {33, 4, sOKAY},
                          {1000, 4, sOKAY}}) {
        SCOPED_TRACE(c.room);
        const Outcome outcome = run_array(cnv_int32ToInt64Trunc, values, 4, c.room);
        EXPECT_EQ(outcome.status, c.status);
        EXPECT_EQ(outcome.size, c.elements * 8);
        for (size_t i = 0; i < c.elements; ++i)
            EXPECT_EQ(outcome.at<int64_t>(i), values[i]);
        EXPECT_TRUE(outcome.untouched_from(c.elements * 8));
    }
}

TEST(ConvertNumbers, EndAtTheFirstElementOutOfRange) {
    const std::vector<int32_t> values = {1, 300, 2};
    const Outcome outcome = run_array(cnv_int32ToInt8Trunc, values, 3, 3);
    EXPECT_EQ(outcome.status, eRANGE);
    EXPECT_EQ(outcome.size, 3u); // the size of all
    EXPECT_EQ(outcome.at<int8_t>(), 1);
    EXPECT_TRUE(outcome.untouched_from(1));
    // An element that was cut is not looked at.
    const Outcome cut = run_array(cnv_int32ToInt8Trunc, values, 3, 1);
    EXPECT_EQ(cut.status, sTRUNCATE);
    EXPECT_EQ(cut.size, 1u);
    const Outcome both = run_array(cnv_int32ToInt8Trunc, values, 3, 2);
    EXPECT_EQ(both.status, eRANGE);
    EXPECT_EQ(both.size, 2u);
}

// Sources and destinations at odd addresses, as in a row's buffer.
TEST(ConvertNumbers, TakeElementsAtAnyAlignment) {
    std::vector<uint8_t> source(1 + 3 * sizeof(double)), target(1 + 3 * sizeof(int64_t));
    for (int i = 0; i < 3; ++i) {
        const double value = i + 0.75;
        std::memcpy(source.data() + 1 + i * sizeof value, &value, sizeof value);
    }
    CNVCB block = block_over(source.data() + 1, 0, 3, target.data() + 1, 3 * sizeof(int64_t));
    EXPECT_EQ(cnv_doubleToInt64Trunc(&block), sOKAY);
    for (int i = 0; i < 3; ++i) {
        int64_t number;
        std::memcpy(&number, target.data() + 1 + i * sizeof number, sizeof number);
        EXPECT_EQ(number, i);
    }
}

// ---- Same to same, and raw images -----------------------------------------------------------

// The copy takes no room for no limit, and less than an element for none at all.
template <class T>
void check_copy(B_CNVFCN copy) {
    const std::vector<T> values = {interesting<T>()[0], interesting<T>()[1], interesting<T>()[2]};
    for (size_t room = 0; room <= 3 * sizeof(T) + 1; ++room) {
        SCOPED_TRACE(room);
        const size_t elements = room == 0 ? 3 : std::min<size_t>(room / sizeof(T), 3);
        const Outcome outcome = run_array(copy, values, 3, room);
        EXPECT_EQ(outcome.status, elements == 3 ? sOKAY : sTRUNCATE);
        EXPECT_EQ(outcome.size, elements * sizeof(T));
        EXPECT_EQ(std::memcmp(outcome.bytes.data(), values.data(), outcome.size), 0);
        EXPECT_TRUE(outcome.untouched_from(outcome.size));
    }
    CNVCB block = block_over(values.data(), 0, 3, nullptr, 1);
    EXPECT_EQ(copy(&block), sOKAY);
    EXPECT_EQ(block.tSize, 3 * sizeof(T));
}

TEST(ConvertNumbers, CopySameToSameAndRawImagesByWholeElements) {
    for_types<Numbers>([](auto value) {
        using T = decltype(value);
        SCOPED_TRACE(Name<T>::source);
        check_copy<T>(number_function<T, T>());
        check_copy<T>(named_function<T>("ToBinary"));
    });
}

TEST(ConvertNumbers, CopyDecimalsWhole) {
    const std::vector<OAK_BCD_T> values = {decimal("1.5"), decimal("-2")};
    for (const B_CNVFCN copy : {cnv_decimalToDecimalTrunc, cnv_decimalToBinary}) {
        EXPECT_EQ(run_array(copy, values, 2, 74).status, sOKAY);
        EXPECT_EQ(run_array(copy, values, 2, 74).size, 74u);
        EXPECT_EQ(run_array(copy, values, 2, 73).status, sTRUNCATE);
        EXPECT_EQ(run_array(copy, values, 2, 73).size, 37u);
        EXPECT_EQ(run_array(copy, values, 2, 36).size, 0u);
        EXPECT_EQ(run_array(copy, values, 2, 0).size, 74u);
        EXPECT_EQ(std::memcmp(run_array(copy, values, 2, 0).bytes.data(), values.data(), 74), 0);
    }
}

// ---- Row ids and truth values ---------------------------------------------------------------

TEST(ConvertNumbers, MakeRowIdsOfPositiveNumbersAlone) {
    for_types<Integers>([](auto type) {
        using From = decltype(type);
        SCOPED_TRACE(Name<From>::source);
        for (const From value : interesting<From>()) {
            const Outcome outcome = run_single(named_function<From>("ToRowidTrunc"), value, 8);
            EXPECT_EQ(outcome.status, value > 0 ? sOKAY : eRANGE);
            EXPECT_EQ(outcome.size, 8u);
            if (value > 0) {
                EXPECT_EQ(outcome.at<uint64_t>(), static_cast<uint64_t>(value));
            }
        }
    });
    const std::vector<int32_t> values = {7, 0, 8};
    EXPECT_EQ(run_array(cnv_int32ToRowidTrunc, values, 3, 24).status, eRANGE);
    EXPECT_EQ(run_array(cnv_int32ToRowidTrunc, values, 3, 24).at<uint64_t>(), 7u);
    EXPECT_EQ(run_array(cnv_int32ToRowidTrunc, values, 3, 8).status, sTRUNCATE);
}

TEST(ConvertNumbers, MakeTruthValuesOfOneByte) {
    for_types<Numbers>([](auto type) {
        using From = decltype(type);
        SCOPED_TRACE(Name<From>::source);
        for (const From value : interesting<From>()) {
            const Outcome outcome = run_single(named_function<From>("ToBooleanTrunc"), value, 1);
            const bool refused = !std::isfinite(static_cast<long double>(value));
            EXPECT_EQ(outcome.status, refused ? eRANGE : sOKAY);
            EXPECT_EQ(outcome.size, refused ? kSizeNotSet : 1);
            if (!refused) {
                EXPECT_EQ(outcome.at<uint8_t>(), value != 0 ? 1 : 0);
            }
            EXPECT_TRUE(outcome.untouched_from(refused ? 0 : 1));
        }
    });
}

TEST(ConvertNumbers, EndTruthValuesAtTheFirstInfinityWithoutASize) {
    const std::vector<double> values = {2.5, 0, INFINITY, 1};
    const Outcome outcome = run_array(cnv_doubleToBooleanTrunc, values, 4, 4);
    EXPECT_EQ(outcome.status, eRANGE);
    EXPECT_EQ(outcome.size, kSizeNotSet);
    EXPECT_EQ(outcome.at<uint8_t>(0), 1);
    EXPECT_EQ(outcome.at<uint8_t>(1), 0);
    EXPECT_TRUE(outcome.untouched_from(2));
}

// An array of truth values has four bytes an element on either side.
TEST(ConvertNumbers, TakeAndGiveTruthValuesOfArraysAsFourBytes) {
    std::vector<OAK_BOOL_T> truths = {OAK_TRUE, OAK_FALSE, OAK_TRUE};
    OAK_VALUE value = value_over(OAK_BOOL, truths.data(), 0, 3);
    uint8_t bytes[16];
    size_t size = 0;
    EXPECT_EQ(to_buffer(&value, OAK_UINT8, bytes, 3, &size), sOKAY);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(hex(bytes, 3), "010001");
    EXPECT_EQ(to_buffer(&value, OAK_UINT8, bytes, 2, &size), sTRUNCATE);
    EXPECT_EQ(size, 2u);
    EXPECT_EQ(to_buffer(&value, OAK_INT16, bytes, 6, &size), sOKAY);
    EXPECT_EQ(hex(bytes, 6), "010000000100");
    EXPECT_EQ(to_buffer(&value, OAK_BINARY, bytes, 12, &size), sOKAY);
    EXPECT_EQ(size, 12u);
    EXPECT_EQ(hex(bytes, 12), "010000000000000001000000");
    EXPECT_EQ(to_buffer(&value, OAK_BINARY, bytes, 11, &size), sTRUNCATE);
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(to_buffer(&value, OAK_BOOL, bytes, 12, &size), sOKAY);
    EXPECT_EQ(size, 12u);
    EXPECT_EQ(hex(bytes, 12), "010000000000000001000000");

    int16_t numbers[] = {-4, 0, 9};
    value = value_over(OAK_INT16, numbers, 0, 3);
    std::memset(bytes, 0xEE, sizeof bytes);
    EXPECT_EQ(to_buffer(&value, OAK_BOOL, bytes, 12, &size), sOKAY);
    EXPECT_EQ(size, 12u);
    EXPECT_EQ(hex(bytes, 16), "010000000000000001000000eeeeeeee");
    EXPECT_EQ(to_buffer(&value, OAK_BOOL, bytes, 11, &size), sTRUNCATE);
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(to_buffer(&value, OAK_BOOL, nullptr, 0, &size), sOKAY);
    EXPECT_EQ(size, 12u);
    // A single one stays one byte.
    value = scalar<int16_t>(OAK_INT16, 256);
    std::memset(bytes, 0xEE, sizeof bytes);
    EXPECT_EQ(to_buffer(&value, OAK_BOOL, bytes, 16, &size), sOKAY);
    EXPECT_EQ(size, 1u);
    EXPECT_EQ(hex(bytes, 2), "01ee");
}

// ---- Decimals -------------------------------------------------------------------------------

TEST(ConvertNumbers, MakeDecimalsOfIntegersExactly) {
    for_types<Integers>([](auto type) {
        using From = decltype(type);
        SCOPED_TRACE(Name<From>::source);
        for (const From value : interesting<From>()) {
            const Outcome outcome = run_single(number_function<From, OAK_BCD_T>(), value, 37);
            EXPECT_EQ(outcome.status, sOKAY);
            EXPECT_EQ(outcome.size, 37u);
            const OAK_BCD_T wanted = decimal(std::to_string(value).c_str());
            EXPECT_EQ(std::memcmp(outcome.bytes.data(), &wanted, sizeof wanted), 0) << value;
        }
    });
}

TEST(ConvertNumbers, CountDecimalsOfArraysByThirtySevenBytes) {
    const std::vector<int16_t> values = {1, 2, 3};
    EXPECT_EQ(run_array(cnv_int16ToDecimalTrunc, values, 3, 0).size, 37u);
    EXPECT_EQ(run_array(cnv_int16ToDecimalTrunc, values, 3, 36).size, 37u);
    EXPECT_EQ(run_array(cnv_int16ToDecimalTrunc, values, 3, 73).size, 37u);
    EXPECT_EQ(run_array(cnv_int16ToDecimalTrunc, values, 3, 74).size, 74u);
    EXPECT_EQ(run_array(cnv_int16ToDecimalTrunc, values, 3, 74).status, sTRUNCATE);
    EXPECT_EQ(run_array(cnv_int16ToDecimalTrunc, values, 3, 111).status, sOKAY);
}

// Any status but sOKAY ends the walk, and the size is told all the same.
TEST(ConvertNumbers, EndDecimalsOfFloatingNumbersAtAnyStatus) {
    const std::vector<double> small = {0.5, 1e-25, 2};
    const Outcome outcome = run_array(cnv_doubleToDecimalTrunc, small, 3, 111);
    EXPECT_EQ(outcome.status, sPRECISIONLOSS);
    EXPECT_EQ(outcome.size, 111u);
    OAK_BCD_T first;
    std::memcpy(&first, outcome.bytes.data(), sizeof first);
    const OAK_BCD_T half = decimal("0.5");
    EXPECT_EQ(oak_bcdCompare(&first, &half), OAK_EQ);
    EXPECT_TRUE(outcome.untouched_from(74)); // the third was not reached
    EXPECT_FALSE(outcome.untouched_from(37));

    const std::vector<double> large = {1e40, 2};
    const Outcome refused = run_array(cnv_doubleToDecimalTrunc, large, 2, 74);
    EXPECT_EQ(refused.status, eRANGE);
    EXPECT_EQ(refused.size, 74u);
    EXPECT_TRUE(refused.untouched_from(0));
    EXPECT_EQ(run_single(cnv_floatToDecimalTrunc, NAN, 37).status, eRANGE);
    EXPECT_EQ(run_single(cnv_floatToDecimalTrunc, 0.25F, 37).status, sOKAY);
}

struct DecimalCase {
    const char *text;
    const char *target;
    OAK_RETCODE status;
    long double value;
};

TEST(ConvertNumbers, DropTheFractionOfADecimalWithoutAWord) {
    const DecimalCase cases[] = {
        {"12.75", "Int8", sOKAY, 12},
        {"-128.9", "Int8", sOKAY, -128},
        {"127.9", "Int8", sOKAY, 127},
        {"128", "Int8", eRANGE, 0},
        {"-129", "Int8", eRANGE, 0},
        {"255.5", "UInt8", sOKAY, 255},
        {"256", "UInt8", eRANGE, 0},
        {"-0.5", "UInt8", eRANGE, 0},
        {"32767.1", "Int16", sOKAY, 32767},
        {"32768", "Int16", eRANGE, 0},
        {"65535.1", "UInt16", sOKAY, 65535},
        {"65536", "UInt16", eRANGE, 0},
        {"-2147483648.5", "Int32", sOKAY, -2147483648.0L},
        {"2147483648", "Int32", eRANGE, 0},
        {"4294967295.9", "UInt32", sOKAY, 4294967295.0L},
        {"4294967296", "UInt32", eRANGE, 0},
        {"-9223372036854775808", "Int64", sOKAY, -9223372036854775808.0L},
        {"9223372036854775808", "Int64", eRANGE, 0},
        {"18446744073709551615", "UInt64", sOKAY, 18446744073709551615.0L},
        {"18446744073709551616", "UInt64", eRANGE, 0},
    };
    for (const DecimalCase &c : cases) {
        SCOPED_TRACE(std::string(c.text) + " to " + c.target);
        const Outcome outcome = run_single(
            function_of(std::string("cnv_decimalTo") + c.target + "Trunc"), decimal(c.text), 8);
        EXPECT_EQ(outcome.status, c.status);
        if (c.status != sOKAY) {
            EXPECT_EQ(outcome.size, kSizeNotSet); // no size is told
            EXPECT_TRUE(outcome.untouched_from(0));
            continue;
        }
        uint64_t bits = 0;
        std::memcpy(&bits, outcome.bytes.data(), outcome.size);
        uint64_t wanted = c.value < 0 ? static_cast<uint64_t>(static_cast<int64_t>(c.value))
                                      : static_cast<uint64_t>(c.value);
        if (outcome.size < 8)
            wanted &= (uint64_t{1} << (outcome.size * 8)) - 1;
        EXPECT_EQ(bits, wanted);
    }
}

TEST(ConvertNumbers, PassOnWhatFloatingNumbersLoseOfADecimal) {
    EXPECT_EQ(run_single(cnv_decimalToDoubleTrunc, decimal("0.1")).at<double>(), 0.1);
    EXPECT_EQ(run_single(cnv_decimalToDoubleTrunc, decimal("0.1")).status, sOKAY);
    EXPECT_EQ(run_single(cnv_decimalToFloatTrunc, decimal("0.25")).at<float>(), 0.25F);
    double ignored = 0;
    const OAK_BCD_T digits = decimal("1.2345678901234567890123");
    EXPECT_EQ(run_single(cnv_decimalToDoubleTrunc, digits).status,
              oak_bcdToDouble(&digits, &ignored));
    EXPECT_EQ(run_single(cnv_decimalToDoubleTrunc, digits).status, eRANGE);
    EXPECT_EQ(run_single(cnv_decimalToDoubleTrunc, digits).size, kSizeNotSet);
}

TEST(ConvertNumbers, EndDecimalsAtTheFirstThatFails) {
    const std::vector<OAK_BCD_T> values = {decimal("1.5"), decimal("300"), decimal("2")};
    const Outcome outcome = run_array(cnv_decimalToInt8Trunc, values, 3, 3);
    EXPECT_EQ(outcome.status, eRANGE);
    EXPECT_EQ(outcome.size, kSizeNotSet);
    EXPECT_EQ(outcome.at<int8_t>(), 1);
    EXPECT_TRUE(outcome.untouched_from(1));
    const Outcome whole = run_array(cnv_decimalToInt16Trunc, values, 3, 6);
    EXPECT_EQ(whole.status, sOKAY);
    EXPECT_EQ(whole.size, 6u);
    EXPECT_EQ(whole.at<int16_t>(1), 300);
    EXPECT_EQ(run_array(cnv_decimalToInt16Trunc, values, 3, 4).status, sTRUNCATE);
}

TEST(ConvertNumbers, AskADecimalWhetherItIsOneBeforeItsTruth) {
    EXPECT_EQ(run_single(cnv_decimalToBooleanTrunc, decimal("0"), 1).at<uint8_t>(), 0);
    EXPECT_EQ(run_single(cnv_decimalToBooleanTrunc, decimal("-0.001"), 1).at<uint8_t>(), 1);
    EXPECT_EQ(run_single(cnv_decimalToBooleanTrunc, decimal("7"), 1).size, 1u);
    OAK_BCD_T damaged = decimal("7");
    damaged.data[1] = 10;
    const Outcome outcome = run_single(cnv_decimalToBooleanTrunc, damaged, 1);
    EXPECT_EQ(outcome.status, eRANGE);
    EXPECT_EQ(outcome.size, kSizeNotSet);
    damaged.prec = 33;
    EXPECT_EQ(run_single(cnv_decimalToInt32Trunc, damaged).status, eINVBCD);
}

// ---- Packed decimals ------------------------------------------------------------------------

Outcome run_packed(B_CNVFCN function, const char *text, uint8_t prec, uint8_t scale, size_t room) {
    const OAK_BCD_T value = decimal(text);
    OAK_PACKED_BCD_T packed[OAK_PACKED_BCD_SIZE(32)];
    EXPECT_EQ(oak_bcdPack(&value, packed, prec, scale), sOKAY);
    CNVCB block = block_over(packed, 0, 5, nullptr, room); // elements play no part
    block.prec = prec;
    block.scale = scale;
    return run(function, block, 64);
}

TEST(ConvertNumbers, UnpackDecimalsForEachTarget) {
    EXPECT_EQ(run_packed(cnv_packedDecimalToInt16, "-123.45", 7, 2, 2).at<int16_t>(), -123);
    EXPECT_EQ(run_packed(cnv_packedDecimalToUInt16, "123.45", 7, 2, 2).at<uint16_t>(), 123);
    EXPECT_EQ(run_packed(cnv_packedDecimalToInt32, "-123456", 9, 0, 4).at<int32_t>(), -123456);
    EXPECT_EQ(run_packed(cnv_packedDecimalToUInt32, "4294967295", 10, 0, 4).at<uint32_t>(),
              4294967295U);
    EXPECT_EQ(run_packed(cnv_packedDecimalToInt64, "-5", 3, 1, 8).at<int64_t>(), -5);
    EXPECT_EQ(run_packed(cnv_packedDecimalToUInt64, "5", 3, 1, 8).at<uint64_t>(), 5u);
    EXPECT_EQ(run_packed(cnv_packedDecimalToFloat, "0.5", 3, 1, 4).at<float>(), 0.5F);
    EXPECT_EQ(run_packed(cnv_packedDecimalToDouble, "-0.5", 3, 1, 8).at<double>(), -0.5);
    const Outcome whole = run_packed(cnv_packedDecimalToDecimal, "1.5", 3, 1, 37);
    EXPECT_EQ(whole.status, sOKAY);
    EXPECT_EQ(whole.size, 37u);
    OAK_BCD_T value;
    std::memcpy(&value, whole.bytes.data(), sizeof value);
    const OAK_BCD_T wanted = decimal("1.5");
    EXPECT_EQ(oak_bcdCompare(&value, &wanted), OAK_EQ);
    EXPECT_EQ(run_packed(cnv_packedDecimalToInt16, "-123.45", 7, 2, 2).size, 2u);
    EXPECT_EQ(run_packed(cnv_packedDecimalToInt16, "-123.45", 7, 2, 2).status, sOKAY);
}

TEST(ConvertNumbers, RefusePackedDecimalsThatAreNoneOrDoNotFit) {
    EXPECT_EQ(run_packed(cnv_packedDecimalToInt16, "40000", 5, 0, 2).status, eRANGE);
    EXPECT_EQ(run_packed(cnv_packedDecimalToUInt64, "-1", 5, 0, 8).status, eRANGE);
    EXPECT_EQ(run_packed(cnv_packedDecimalToDecimal, "1", 5, 0, 36).status, eDATALOST);
    EXPECT_EQ(run_packed(cnv_packedDecimalToDecimal, "1", 5, 0, 0).status, sOKAY);
    const OAK_PACKED_BCD_T damaged[3] = {0x4F, 0x00, 0x00};
    CNVCB block = block_over(damaged, 0, 0, nullptr, 8);
    block.prec = 5;
    EXPECT_EQ(run(cnv_packedDecimalToInt32, block, 8).status, eINVBCD);
    EXPECT_EQ(run(cnv_packedDecimalToDecimal, block, 64).status, eDATALOST);
    block.tDstLen = 37;
    EXPECT_EQ(run(cnv_packedDecimalToDecimal, block, 64).status, eINVBCD);
    block.prec = 33; // a precision that no column has
    EXPECT_EQ(run(cnv_packedDecimalToInt32, block, 8).status, eINVBCD);
}

TEST(ConvertNumbers, MeasurePackedDecimals) {
    const OAK_PACKED_BCD_T packed[3] = {0x40, 0x00, 0x12};
    CNVCB block = block_over(packed, 0, 0, nullptr, 0);
    block.prec = 5;
    EXPECT_EQ(cnv_packedDecimalToInt64(&block), sOKAY);
    EXPECT_EQ(block.tSize, 8u);
    EXPECT_EQ(cnv_packedDecimalToDecimal(&block), sOKAY);
    EXPECT_EQ(block.tSize, 37u);
    EXPECT_EQ(block.pvSrc, packed); // the caller's block still names its own source
}

// ---- All roads agree ------------------------------------------------------------------------

// A value that starts as text comes out the same by text, by decimal, by the double where
// that is exact, and by the widest integers; or every road refuses it.
template <class To>
void check_roads(const std::string &text) {
    SCOPED_TRACE(text + " to " + Name<To>::target);
    const Outcome by_text =
        run_text(function_of(std::string("cnv_stringTo") + Name<To>::target), text, sizeof(To));
    const Outcome by_decimal =
        run_single(number_function<OAK_BCD_T, To>(), decimal(text.c_str()), sizeof(To));
    ASSERT_EQ(by_text.status, by_decimal.status);
    ASSERT_EQ(by_text.status == sOKAY ? by_text.at<To>() : To{},
              by_decimal.status == sOKAY ? by_decimal.at<To>() : To{});
    const long double exact = std::strtold(text.c_str(), nullptr);
    if (exact >= -9223372036854775808.0L && exact <= 9223372036854775807.0L) {
        const auto wide = static_cast<int64_t>(exact);
        const Outcome by_integer = run_single(number_function<int64_t, To>(), wide, sizeof(To));
        if (!std::is_same_v<To, int64_t>) {
            ASSERT_EQ(by_integer.status, by_text.status);
        }
        if (by_text.status == sOKAY) {
            ASSERT_EQ(by_integer.at<To>(), by_text.at<To>());
        }
        const auto real = static_cast<double>(wide);
        if (static_cast<long double>(real) == exact) {
            const Outcome by_double = run_single(number_function<double, To>(), real, sizeof(To));
            ASSERT_EQ(by_double.status, by_text.status);
            if (by_text.status == sOKAY) {
                ASSERT_EQ(by_double.at<To>(), by_text.at<To>());
            }
        }
    }
}

TEST(ConvertNumbers, AgreeByEveryRoad) {
    for_types<Integers>([](auto type) {
        for (const int64_t value : interesting<int64_t>())
            check_roads<decltype(type)>(std::to_string(value));
        for (const uint64_t value : interesting<uint64_t>())
            check_roads<decltype(type)>(std::to_string(value));
    });
}

// And back: what a number is as text is the number again.
TEST(ConvertNumbers, ComeBackFromTheirText) {
    for_types<Integers>([](auto type) {
        using T = decltype(type);
        for (const T value : interesting<T>()) {
            const Outcome text = run_single(named_function<T>("ToString"), value, 30);
            EXPECT_EQ(text.text(), std::to_string(value));
            const Outcome back =
                run_text(function_of(std::string("cnv_stringTo") + Name<T>::target), text.text());
            EXPECT_EQ(back.status, sOKAY);
            EXPECT_EQ(back.at<T>(), value);
        }
    });
}

} // namespace
