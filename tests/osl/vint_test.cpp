// Varying integers: known forms, both readers, malformed forms, the signed map.
#include <limits>

#include "test_support.h"
#include "vint_inline.h"

namespace {

struct Known {
    uint64_t value;
    const char *bytes;
};
const Known kKnown[] = {
    {0, "00"},
    {1, "01"},
    {127, "7f"},
    {128, "8001"},
    {300, "ac02"},
    {16383, "ff7f"},
    {16384, "808001"},
    {2097151, "ffff7f"},
    {2097152, "80808001"},
    {4294967295, "ffffffff0f"},
    {4294967296, "8080808010"},
    {9223372036854775807, "ffffffffffffffff7f"},
    {9223372036854775808u, "80808080808080808001"},
    {18446744073709551615u, "ffffffffffffffffff01"},
};

/// Bytes out of a callback, in or out, that fails with `status` at `fail_at`.
struct Stream {
    std::vector<uint8_t> bytes{};
    size_t at = 0;
    size_t fail_at = std::numeric_limits<size_t>::max();
    OAK_RETCODE status = eEOD;
};

OAK_RETCODE put(OAK_OUTPUT_CTX ctx, uint32_t byte) {
    auto *stream = static_cast<Stream *>(ctx);
    EXPECT_LE(byte, 255u);
    if (stream->bytes.size() == stream->fail_at) {
        return stream->status;
    }
    stream->bytes.push_back(static_cast<uint8_t>(byte));
    return sOKAY;
}

OAK_RETCODE take(OAK_INPUT_CTX ctx, uint32_t *byte) {
    auto *stream = static_cast<Stream *>(ctx);
    if (stream->at == stream->bytes.size()) {
        return stream->status;
    }
    *byte = stream->bytes[stream->at++];
    return sOKAY;
}

std::string encoded(uint64_t value) {
    Stream stream;
    EXPECT_EQ(osl_vintEncodeUIntmax(value, put, &stream), sOKAY);
    return oaktest::hex(stream.bytes.data(), stream.bytes.size());
}

constexpr uint64_t kUntouched = 0xabcdef;

struct Decoded {
    OAK_RETCODE status;
    uint64_t value = kUntouched;
    size_t used = 0;
    bool operator==(const Decoded &) const = default;
};
std::ostream &operator<<(std::ostream &out, const Decoded &decoded) {
    return out << "status " << decoded.status << " value " << decoded.value << " used "
               << decoded.used;
}

Decoded decoded(const std::string &hex) {
    Stream stream{.bytes = oaktest::unhex(hex)};
    Decoded result{sOKAY};
    result.status = osl_vintDecodeUIntmax(take, &stream, &result.value);
    result.used = stream.at;
    return result;
}

/// Groups of seven bits, least significant first: the rule written out plainly.
std::vector<uint8_t> plain_form(uint64_t value) {
    std::vector<uint8_t> bytes;
    do {
        bytes.push_back(static_cast<uint8_t>(value % 128));
        value /= 128;
    } while (value != 0);
    for (size_t i = 0; i + 1 < bytes.size(); ++i) {
        bytes[i] = static_cast<uint8_t>(bytes[i] + 128);
    }
    return bytes;
}

void check_round_trip(uint64_t value) {
    const std::vector<uint8_t> form = plain_form(value);
    const std::string hex = oaktest::hex(form.data(), form.size());
    ASSERT_EQ(encoded(value), hex) << value;
    ASSERT_EQ(decoded(hex + "55"), (Decoded{sOKAY, value, form.size()})) << "no byte more is read";
    uint8_t bytes[osl::kMostVintBytes + 1] = {};
    ASSERT_EQ(osl::vint_encode(value, bytes), form.size());
    ASSERT_EQ(osl::vint_size(value), form.size());
    uint64_t back = 0;
    size_t used = 0;
    ASSERT_EQ(osl::vint_decode(bytes, sizeof bytes, &back, &used), sOKAY);
    ASSERT_EQ(back, value);
    ASSERT_EQ(used, form.size());
}

} // namespace

TEST(Vint, HasTheKnownForms) {
    for (const Known &known : kKnown) {
        EXPECT_EQ(encoded(known.value), known.bytes);
        const size_t length = std::string(known.bytes).size() / 2;
        EXPECT_EQ(decoded(known.bytes), (Decoded{sOKAY, known.value, length}));
    }
}

TEST(Vint, ComesBackAroundEveryPowerOfTwo) {
    for (int power = 0; power < 64; ++power) {
        for (int change = -1; change <= 1; ++change) {
            check_round_trip((uint64_t{1} << power) + static_cast<uint64_t>(change));
        }
    }
    oaktest::Random random;
    for (int i = 0; i < 5000; ++i) {
        check_round_trip(random.next() >> random.below(64));
    }
}

TEST(Vint, AcceptsLongerFormsOfAtMostTenBytes) {
    EXPECT_EQ(decoded("8000"), (Decoded{sOKAY, 0, 2}));
    EXPECT_EQ(decoded("80808080808080808000"), (Decoded{sOKAY, 0, 10}));
    EXPECT_EQ(decoded("ff8000"), (Decoded{sOKAY, 127, 3}));
    EXPECT_EQ(decoded("81808080808080808000"), (Decoded{sOKAY, 1, 10}));
}

TEST(Vint, RefusesWhatExceedsTenBytesOr64Bits) {
    // The tenth byte tells: 0 and 1 alone may stand there.
    const std::string nine = "808080808080808080";
    for (const char *tenth : {"02", "03", "7f", "80", "81", "82", "ff"}) {
        const Decoded result = decoded(nine + tenth + "00");
        EXPECT_EQ(result, (Decoded{eINVVARINT, kUntouched, 10})) << tenth;
        const std::vector<uint8_t> bytes = oaktest::unhex(nine + tenth + "00");
        uint64_t value = kUntouched;
        size_t used = 77;
        EXPECT_EQ(osl::vint_decode(bytes.data(), bytes.size(), &value, &used), eINVVARINT);
        EXPECT_EQ(value, kUntouched);
        EXPECT_EQ(used, 77u);
    }
}

TEST(Vint, ReturnsTheCallbacksStatusWhereTheBytesEnd) {
    const std::string whole = "ffffffffffffffffff01";
    for (size_t length = 0; length < 10; ++length) {
        const std::string front = whole.substr(0, length * 2);
        EXPECT_EQ(decoded(front), (Decoded{eEOD, kUntouched, length}));
        const std::vector<uint8_t> bytes = oaktest::unhex(front);
        uint64_t value = kUntouched;
        size_t used = 77;
        EXPECT_EQ(osl::vint_decode(bytes.data(), bytes.size(), &value, &used), eEOD);
        EXPECT_EQ(value, kUntouched);
        EXPECT_EQ(used, 77u);
    }
    Stream positive{.status = sEOS};
    uintmax_t value = kUntouched;
    EXPECT_EQ(osl_vintDecodeUIntmax(take, &positive, &value), sEOS);
    EXPECT_EQ(value, kUntouched);
}

TEST(Vint, EndsTheWritingAtTheCallbacksFailure) {
    for (size_t length = 0; length < 3; ++length) {
        Stream stream{.fail_at = length, .status = eNOMEMORY};
        EXPECT_EQ(osl_vintEncodeUIntmax(16384, put, &stream), eNOMEMORY);
        EXPECT_EQ(stream.bytes.size(), length);
    }
    Stream stream{.fail_at = 1, .status = sTRUNCATE};
    EXPECT_EQ(osl_vintEncodeUIntmax(300, put, &stream), sTRUNCATE);
}

TEST(Vint, IsBoundedByItsDestination) {
    const auto read32 = [](const std::string &hex, uint32_t *value) {
        Stream stream{.bytes = oaktest::unhex(hex)};
        return osl_vintDecodeUInt32(take, &stream, value);
    };
    uint32_t value = 7;
    EXPECT_EQ(read32("ffffffff0f", &value), sOKAY);
    EXPECT_EQ(value, UINT32_MAX);
    EXPECT_EQ(read32("8080808010", &value), eRANGE);
    EXPECT_EQ(read32("ffffffffffffffffff01", &value), eRANGE);
    EXPECT_EQ(read32("ffffffffffffffffff02", &value), eINVVARINT);
    EXPECT_EQ(read32("80", &value), eEOD);
    EXPECT_EQ(value, UINT32_MAX) << "untouched by failures";
    EXPECT_EQ(read32("8000", &value), sOKAY);
    EXPECT_EQ(value, 0u);

    Stream stream{.bytes = oaktest::unhex("ffffffffffffffffff01")};
    size_t size = 0;
    EXPECT_EQ(osl_vintDecodeSize_t(take, &stream, &size), sOKAY);
    EXPECT_EQ(size, std::numeric_limits<size_t>::max());
    EXPECT_EQ(osl_vintDecodeSize_t(take, &stream, &size), eEOD);
}

TEST(Vint, RefusesMissingArguments) {
    Stream stream;
    uintmax_t value = 0;
    EXPECT_EQ(osl_vintEncodeUIntmax(1, nullptr, &stream), eINVNULLARG);
    EXPECT_EQ(osl_vintDecodeUIntmax(nullptr, &stream, &value), eINVNULLARG);
    EXPECT_EQ(osl_vintDecodeUIntmax(take, &stream, nullptr), eINVNULLARG);
    EXPECT_EQ(osl_vintDecodeUInt32(take, &stream, nullptr), eINVNULLARG);
    EXPECT_EQ(osl_vintDecodeSize_t(take, &stream, nullptr), eINVNULLARG);
}

TEST(VintSigned, HasTheKnownMap) {
    const struct {
        int64_t number;
        uint64_t mapped;
    } rows[] = {{0, 0},
                {-1, 1},
                {1, 2},
                {-2, 3},
                {2, 4},
                {-64, 127},
                {64, 128},
                {INT64_MAX, 18446744073709551614u},
                {INT64_MIN, 18446744073709551615u}};
    for (const auto &row : rows) {
        EXPECT_EQ(osl_vintConvertToUnsigned(row.number), row.mapped);
        EXPECT_EQ(osl_vintConvertToSigned(row.mapped), row.number);
    }
}

TEST(VintSigned, ComesBackAroundEveryPowerOfTwo) {
    for (int power = 0; power < 64; ++power) {
        for (int change = -1; change <= 1; ++change) {
            const auto number =
                static_cast<int64_t>((uint64_t{1} << power) + static_cast<uint64_t>(change));
            EXPECT_EQ(osl_vintConvertToSigned(osl_vintConvertToUnsigned(number)), number);
        }
    }
}
