// The encoder and the decoder: the bytes of every form, what a reader refuses, run
// lists, texts, and that the direct way into a buffer leaves the buffer exactly as
// the callbacks would.
#include "encoder.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "buff.h"
#include "encoder_internal.h"
#include "test_support.h"

namespace {

using Bytes = std::vector<uint8_t>;

// Callbacks that hand on to the buffer's: the direct way is not taken with them.
OAK_RETCODE emit_indirectly(OAK_OUTPUT_CTX ctx, uint32_t byte) {
    return b_buffEmitByte(ctx, byte);
}
OAK_RETCODE input_indirectly(OAK_INPUT_CTX ctx, uint32_t *byte) {
    return b_buffInputByte(ctx, byte);
}

enum class Way { direct, callback };

/// An encoder over a buffer of its own.
class Writer {
  public:
    explicit Writer(OSL_MEMTAG tag, Way way = Way::direct) {
        b_buffInit(&buffer, tag);
        EXPECT_EQ(b_encoderCreate(way == Way::direct ? b_buffEmitByte : emit_indirectly,
                                  b_buffEmitBytesBulk, &buffer, tag, &handle),
                  sOKAY);
    }
    ~Writer() {
        b_encoderDestroy(handle);
        b_buffTerm(&buffer);
    }
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;
    std::string hex() const { return oaktest::hex(buffer.data, buffer.len); }
    std::string take() {
        std::string text = hex();
        b_encoderReset(handle);
        return text;
    }

    OAK_BUFFER buffer;
    B_ENCODER handle = nullptr;
};

/// A decoder over given bytes.
class Reader {
  public:
    Reader(OSL_MEMTAG tag, Bytes bytes, Way way = Way::direct) : bytes_(std::move(bytes)) {
        b_buffInit(&buffer, tag);
        b_buffSetStatic(&buffer, bytes_.data(), bytes_.size());
        EXPECT_EQ(b_decoderCreate(way == Way::direct ? b_buffInputByte : input_indirectly,
                                  b_buffInputBytesBulk, &buffer, tag, &handle),
                  sOKAY);
    }
    Reader(OSL_MEMTAG tag, const char *hex, Way way = Way::direct)
        : Reader(tag, oaktest::unhex(hex), way) {}
    ~Reader() { b_decoderDestroy(handle); }
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;
    bool at_end() const { return buffer.pos == buffer.len; }

    OAK_BUFFER buffer;
    B_DECODER handle = nullptr;

  private:
    Bytes bytes_;
};

// ---- The forms written ------------------------------------------------------

TEST(Encoder, WritesUnsignedIntegers) {
    oaktest::Tag tag;
    Writer out(tag);
    const struct {
        uint64_t value;
        const char *bytes;
    } rows[] = {
        {0, "00"},
        {127, "7f"},
        {128, "8001"},
        {300, "ac02"},
        {16383, "ff7f"},
        {16384, "808001"},
        {4294967295, "ffffffff0f"},
        {9223372036854775808U, "80808080808080808001"},
        {18446744073709551615U, "ffffffffffffffffff01"},
    };
    for (const auto &row : rows) {
        ASSERT_EQ(b_encoderEncodeUint64(out.handle, row.value), sOKAY);
        EXPECT_EQ(out.take(), row.bytes);
        ASSERT_EQ(b_encoderEncodeSlot(out.handle, row.value), sOKAY);
        EXPECT_EQ(out.take(), row.bytes);
        Reader in(tag, row.bytes);
        uint64_t value = 0;
        ASSERT_EQ(b_decoderDecodeUint64(in.handle, &value), sOKAY);
        EXPECT_EQ(value, row.value);
    }
    ASSERT_EQ(b_encoderEncodeUint8(out.handle, 255), sOKAY);
    ASSERT_EQ(b_encoderEncodeUint16(out.handle, 65535), sOKAY);
    ASSERT_EQ(b_encoderEncodeUint32(out.handle, 4294967295), sOKAY);
    EXPECT_EQ(out.take(), "ff01"
                          "ffff03"
                          "ffffffff0f");
}

TEST(Encoder, WritesSignedIntegers) {
    oaktest::Tag tag;
    Writer out(tag);
    const struct {
        int64_t value;
        const char *bytes;
    } rows[] = {
        {0, "00"},
        {-1, "01"},
        {1, "02"},
        {-64, "7f"},
        {64, "8001"},
        {INT64_MAX, "feffffffffffffffff01"},
        {INT64_MIN, "ffffffffffffffffff01"},
    };
    for (const auto &row : rows) {
        ASSERT_EQ(b_encoderEncodeInt64(out.handle, row.value), sOKAY);
        EXPECT_EQ(out.take(), row.bytes);
        Reader in(tag, row.bytes);
        int64_t value = 5;
        ASSERT_EQ(b_decoderDecodeInt64(in.handle, &value), sOKAY);
        EXPECT_EQ(value, row.value);
    }
    ASSERT_EQ(b_encoderEncodeInt8(out.handle, -128), sOKAY);
    ASSERT_EQ(b_encoderEncodeInt16(out.handle, -32768), sOKAY);
    ASSERT_EQ(b_encoderEncodeInt32(out.handle, INT32_MIN), sOKAY);
    EXPECT_EQ(out.take(), "ff01"
                          "ffff03"
                          "ffffffff0f");
}

TEST(Encoder, WritesFloatsInStoredByteOrder) {
    oaktest::Tag tag;
    Writer out(tag);
    const struct {
        float value;
        const char *bytes;
    } floats[] = {{0.0F, "00000000"},
                  {1.0F, "3f800000"},
                  {-2.5F, "c0200000"},
                  {std::numeric_limits<float>::infinity(), "7f800000"}};
    for (const auto &row : floats) {
        ASSERT_EQ(b_encoderEncodeFloat(out.handle, row.value), sOKAY);
        EXPECT_EQ(out.take(), row.bytes);
        Reader in(tag, row.bytes);
        float value = 0;
        ASSERT_EQ(b_decoderDecodeFloat(in.handle, &value), sOKAY);
        EXPECT_EQ(value, row.value);
    }
    const struct {
        double value;
        const char *bytes;
    } doubles[] = {{-0.0, "8000000000000000"},
                   {1.0, "3ff0000000000000"},
                   {-2.5, "c004000000000000"},
                   {0.1, "3fb999999999999a"}};
    for (const auto &row : doubles) {
        ASSERT_EQ(b_encoderEncodeDouble(out.handle, row.value), sOKAY);
        EXPECT_EQ(out.take(), row.bytes);
        Reader in(tag, row.bytes);
        double value = 0;
        ASSERT_EQ(b_decoderDecodeDouble(in.handle, &value), sOKAY);
        EXPECT_EQ(std::memcmp(&value, &row.value, sizeof(value)), 0);
    }
}

TEST(Encoder, KeepsEveryBitOfANotANumber) {
    oaktest::Tag tag;
    Writer out(tag);
    Reader in(tag, "fff0000000000001"
                   "7fa00001");
    double wide = 0;
    float narrow = 0;
    ASSERT_EQ(b_decoderDecodeDouble(in.handle, &wide), sOKAY);
    ASSERT_EQ(b_decoderDecodeFloat(in.handle, &narrow), sOKAY);
    EXPECT_TRUE(std::isnan(wide));
    ASSERT_EQ(b_encoderEncodeDouble(out.handle, wide), sOKAY);
    ASSERT_EQ(b_encoderEncodeFloat(out.handle, narrow), sOKAY);
    EXPECT_EQ(out.take(), "fff0000000000001"
                          "7fa00001");
}

TEST(Encoder, WritesTextsAndBytes) {
    oaktest::Tag tag;
    Writer out(tag);
    ASSERT_EQ(b_encoderEncodeString(out.handle, ""), sOKAY);
    EXPECT_EQ(out.take(), "00");
    ASSERT_EQ(b_encoderEncodeString(out.handle, "oak"), sOKAY);
    EXPECT_EQ(out.take(), "036f616b");
    ASSERT_EQ(b_encoderEncodeString(out.handle, std::string(300, 'x').c_str()), sOKAY);
    EXPECT_EQ(out.take().substr(0, 8), "ac027878");
    ASSERT_EQ(b_encoderEncodeBytes(out.handle, "\x00\xff\x80", 3), sOKAY);
    ASSERT_EQ(b_encoderEncodeBytes(out.handle, nullptr, 0), sOKAY);
    ASSERT_EQ(b_encoderEncodeBytesBulk(out.handle, "ab", 2), sOKAY);
    EXPECT_EQ(out.take(), "00ff806162");
}

// ---- Widths -----------------------------------------------------------------

// The stream carries no width.
TEST(Decoder, ReadsAnyWidthThatHoldsTheValue) {
    oaktest::Tag tag;
    Writer out(tag);
    ASSERT_EQ(b_encoderEncodeUint64(out.handle, uint32_t{4000000000}), sOKAY);
    Reader in(tag, oaktest::unhex(out.hex()));
    uint32_t value = 0;
    ASSERT_EQ(b_decoderDecodeUint32(in.handle, &value), sOKAY);
    EXPECT_EQ(value, 4000000000u);
}

TEST(Decoder, DoesNotUndoTheSignedMappingForAnUnsignedReader) {
    oaktest::Tag tag;
    Reader in(tag, "01");
    uint64_t value = 0;
    ASSERT_EQ(b_decoderDecodeUint64(in.handle, &value), sOKAY);
    EXPECT_EQ(value, 1u) << "the signed form of -1";
}

template <class Element>
using Decode = OAK_RETCODE (*)(B_DECODER, Element *);

/// Reads `hex` with both ways; a failure leaves the output at 77.
template <class Element>
void expect_read(Decode<Element> decode, const char *hex, OAK_RETCODE rc, Element expected) {
    oaktest::Tag tag;
    for (const Way way : {Way::direct, Way::callback}) {
        Reader in(tag, hex, way);
        Element value = 77;
        EXPECT_EQ(decode(in.handle, &value), rc) << hex;
        EXPECT_EQ(value, rc == sOKAY ? expected : Element{77}) << hex;
    }
}

TEST(Decoder, RefusesUnsignedValuesThatAreTooWide) {
    expect_read<uint8_t>(b_decoderDecodeUint8, "ff01", sOKAY, 255);
    expect_read<uint8_t>(b_decoderDecodeUint8, "8002", eDBCORRUPTED, 0);
    expect_read<uint8_t>(b_decoderDecodeUint8, "ac02", eDBCORRUPTED, 0);
    expect_read<uint16_t>(b_decoderDecodeUint16, "ffff03", sOKAY, 65535);
    expect_read<uint16_t>(b_decoderDecodeUint16, "808004", eDBCORRUPTED, 0);
    expect_read<uint32_t>(b_decoderDecodeUint32, "ffffffff0f", sOKAY, UINT32_MAX);
    expect_read<uint32_t>(b_decoderDecodeUint32, "8080808010", eDBCORRUPTED, 0);
    expect_read<uint64_t>(b_decoderDecodeUint64, "ffffffffffffffffff01", sOKAY, UINT64_MAX);
    expect_read<uint64_t>(b_decoderDecodeSlot, "ffffffffffffffffff01", sOKAY, UINT64_MAX);
    expect_read<size_t>(b_decoderDecodeSize_t, "ffffffffffffffffff01", sOKAY, SIZE_MAX);
}

TEST(Decoder, RefusesSignedValuesThatAreTooWide) {
    expect_read<int8_t>(b_decoderDecodeInt8, "fe01", sOKAY, 127);
    expect_read<int8_t>(b_decoderDecodeInt8, "ff01", sOKAY, -128);
    expect_read<int8_t>(b_decoderDecodeInt8, "8002", eDBCORRUPTED, 0); // 128
    expect_read<int8_t>(b_decoderDecodeInt8, "8102", eDBCORRUPTED, 0); // -129
    expect_read<int16_t>(b_decoderDecodeInt16, "feff03", sOKAY, INT16_MAX);
    expect_read<int16_t>(b_decoderDecodeInt16, "ffff03", sOKAY, INT16_MIN);
    expect_read<int16_t>(b_decoderDecodeInt16, "808004", eDBCORRUPTED, 0);
    expect_read<int16_t>(b_decoderDecodeInt16, "818004", eDBCORRUPTED, 0);
    expect_read<int32_t>(b_decoderDecodeInt32, "feffffff0f", sOKAY, INT32_MAX);
    expect_read<int32_t>(b_decoderDecodeInt32, "ffffffff0f", sOKAY, INT32_MIN);
    expect_read<int32_t>(b_decoderDecodeInt32, "8080808010", eDBCORRUPTED, 0);
    expect_read<int32_t>(b_decoderDecodeInt32, "8180808010", eDBCORRUPTED, 0);
    expect_read<int64_t>(b_decoderDecodeInt64, "ffffffffffffffffff01", sOKAY, INT64_MIN);
}

TEST(Decoder, ReadsLongerFormsAndRefusesMalformedOnes) {
    expect_read<uint8_t>(b_decoderDecodeUint8, "808000", sOKAY, 0);
    expect_read<uint8_t>(b_decoderDecodeUint8, "85808080808080808000", sOKAY, 5);
    expect_read<uint64_t>(b_decoderDecodeUint64, "ffffffffffffffffff02", eINVVARINT, 0);
    expect_read<uint64_t>(b_decoderDecodeUint64, "8080808080808080808000", eINVVARINT, 0);
    expect_read<int64_t>(b_decoderDecodeInt64, "ffffffffffffffffff7f", eINVVARINT, 0);
    expect_read<uint8_t>(b_decoderDecodeUint8, "", eEOD, 0);
    expect_read<uint8_t>(b_decoderDecodeUint8, "80", eEOD, 0);
    expect_read<int32_t>(b_decoderDecodeInt32, "ffffff", eEOD, 0);
    expect_read<float>(b_decoderDecodeFloat, "3f8000", eEOD, 0);
    expect_read<double>(b_decoderDecodeDouble, "3ff00000000000", eEOD, 0);
}

// Every power of two at minus one, itself and plus one, in every width.
template <class Element>
void round_trip_around_powers(OAK_RETCODE (*encode)(B_ENCODER, Element), Decode<Element> decode) {
    oaktest::Tag tag;
    for (uint32_t shift = 0; shift < 8 * sizeof(Element); ++shift) {
        for (const int64_t nudge : {-1, 0, 1}) {
            for (const bool negative : {false, true}) {
                const uint64_t magnitude = (uint64_t{1} << shift) + static_cast<uint64_t>(nudge);
                const auto value = static_cast<Element>(negative ? 0 - magnitude : magnitude);
                Writer out(tag);
                ASSERT_EQ(encode(out.handle, value), sOKAY);
                Reader in(tag, oaktest::unhex(out.hex()));
                Element read = 77;
                ASSERT_EQ(decode(in.handle, &read), sOKAY);
                ASSERT_EQ(read, value);
                ASSERT_TRUE(in.at_end());
            }
        }
    }
}

TEST(Encoder, RoundTripsEveryWidth) {
    round_trip_around_powers<uint8_t>(b_encoderEncodeUint8, b_decoderDecodeUint8);
    round_trip_around_powers<uint16_t>(b_encoderEncodeUint16, b_decoderDecodeUint16);
    round_trip_around_powers<uint32_t>(b_encoderEncodeUint32, b_decoderDecodeUint32);
    round_trip_around_powers<uint64_t>(b_encoderEncodeUint64, b_decoderDecodeUint64);
    round_trip_around_powers<int8_t>(b_encoderEncodeInt8, b_decoderDecodeInt8);
    round_trip_around_powers<int16_t>(b_encoderEncodeInt16, b_decoderDecodeInt16);
    round_trip_around_powers<int32_t>(b_encoderEncodeInt32, b_decoderDecodeInt32);
    round_trip_around_powers<int64_t>(b_encoderEncodeInt64, b_decoderDecodeInt64);
}

// ---- Arrays -----------------------------------------------------------------

/// The three calls of one element type with the bytes that an array of three gives.
template <class Element>
struct ArrayFamily {
    const char *name;
    OAK_RETCODE (*encode)(B_ENCODER, uint32_t, const Element *);
    OAK_RETCODE (*decode)(B_DECODER, uint32_t, Element **, OSL_MEMTAG);
    OAK_RETCODE (*decode_buffer)(B_DECODER, uint32_t, Element *);
    Element values[3];
    const char *elements[3];
};

const ArrayFamily<uint8_t> kUint8 = {"uint8",
                                     b_encoderEncodeUint8Array,
                                     b_decoderDecodeUint8Array,
                                     b_decoderDecodeUint8ArrayBuffer,
                                     {0, 1, 255},
                                     {"00", "01", "ff01"}};
const ArrayFamily<uint16_t> kUint16 = {"uint16",
                                       b_encoderEncodeUint16Array,
                                       b_decoderDecodeUint16Array,
                                       b_decoderDecodeUint16ArrayBuffer,
                                       {2, 300, 65535},
                                       {"02", "ac02", "ffff03"}};
const ArrayFamily<uint32_t> kUint32 = {"uint32",
                                       b_encoderEncodeUint32Array,
                                       b_decoderDecodeUint32Array,
                                       b_decoderDecodeUint32ArrayBuffer,
                                       {3, 16384, 4294967295},
                                       {"03", "808001", "ffffffff0f"}};
const ArrayFamily<uint64_t> kUint64 = {"uint64",
                                       b_encoderEncodeUint64Array,
                                       b_decoderDecodeUint64Array,
                                       b_decoderDecodeUint64ArrayBuffer,
                                       {4, 127, 18446744073709551615U},
                                       {"04", "7f", "ffffffffffffffffff01"}};
const ArrayFamily<int8_t> kInt8 = {"int8",
                                   b_encoderEncodeInt8Array,
                                   b_decoderDecodeInt8Array,
                                   b_decoderDecodeInt8ArrayBuffer,
                                   {-1, 1, -128},
                                   {"01", "02", "ff01"}};
const ArrayFamily<int16_t> kInt16 = {"int16",
                                     b_encoderEncodeInt16Array,
                                     b_decoderDecodeInt16Array,
                                     b_decoderDecodeInt16ArrayBuffer,
                                     {-64, 64, -32768},
                                     {"7f", "8001", "ffff03"}};
const ArrayFamily<int32_t> kInt32 = {"int32",
                                     b_encoderEncodeInt32Array,
                                     b_decoderDecodeInt32Array,
                                     b_decoderDecodeInt32ArrayBuffer,
                                     {0, -2, INT32_MIN},
                                     {"00", "03", "ffffffff0f"}};
const ArrayFamily<int64_t> kInt64 = {"int64",
                                     b_encoderEncodeInt64Array,
                                     b_decoderDecodeInt64Array,
                                     b_decoderDecodeInt64ArrayBuffer,
                                     {2, -3, INT64_MIN},
                                     {"04", "05", "ffffffffffffffffff01"}};
const ArrayFamily<float> kFloat = {"float",
                                   b_encoderEncodeFloatArray,
                                   b_decoderDecodeFloatArray,
                                   b_decoderDecodeFloatArrayBuffer,
                                   {1.0F, -2.5F, 0.0F},
                                   {"3f800000", "c0200000", "00000000"}};
const ArrayFamily<double> kDouble = {"double",
                                     b_encoderEncodeDoubleArray,
                                     b_decoderDecodeDoubleArray,
                                     b_decoderDecodeDoubleArrayBuffer,
                                     {1.0, -2.5, 0.1},
                                     {"3ff0000000000000", "c004000000000000", "3fb999999999999a"}};

/// Runs a check over the family of each element type.
template <class Check>
void for_each_family(Check check) {
    check(kUint8);
    check(kUint16);
    check(kUint32);
    check(kUint64);
    check(kInt8);
    check(kInt16);
    check(kInt32);
    check(kInt64);
    check(kFloat);
    check(kDouble);
}

TEST(EncoderArrays, WriteOneRunWithoutASkip) {
    oaktest::Tag tag;
    for_each_family([&](const auto &family) {
        Writer out(tag);
        ASSERT_EQ(family.encode(out.handle, 3, family.values), sOKAY);
        EXPECT_EQ(out.take(), std::string("010300") + family.elements[0] + family.elements[1] +
                                  family.elements[2])
            << family.name;
        ASSERT_EQ(family.encode(out.handle, 0, nullptr), sOKAY);
        EXPECT_EQ(out.take(), "010000");
    });
}

TEST(EncoderArrays, ReadBackInBothWays) {
    oaktest::Tag tag;
    for_each_family([&](const auto &family) {
        using Element = std::remove_cvref_t<decltype(family.values[0])>;
        const std::string bytes =
            std::string("010300") + family.elements[0] + family.elements[1] + family.elements[2];
        Reader in(tag, bytes.c_str());
        Element *array = nullptr;
        ASSERT_EQ(family.decode(in.handle, 3, &array, tag), sOKAY) << family.name;
        EXPECT_EQ(std::memcmp(array, family.values, sizeof(family.values)), 0);
        OSL_FREE(array, tag);
        ASSERT_EQ(b_decoderSeek(in.handle, 0), sOKAY);
        Element buffer[3] = {};
        ASSERT_EQ(family.decode_buffer(in.handle, 3, buffer), sOKAY);
        EXPECT_EQ(std::memcmp(buffer, family.values, sizeof(family.values)), 0);
        EXPECT_TRUE(in.at_end());
    });
}

// Two values, skip one, one value.
TEST(EncoderArrays, LeaveSkippedPositionsAlone) {
    oaktest::Tag tag;
    for_each_family([&](const auto &family) {
        using Element = std::remove_cvref_t<decltype(family.values[0])>;
        const std::string bytes = std::string("02") + "0201" + family.elements[0] +
                                  family.elements[1] + "0100" + family.elements[2];
        Reader in(tag, bytes.c_str());
        Element buffer[4] = {7, 7, 7, 7};
        ASSERT_EQ(family.decode_buffer(in.handle, 4, buffer), sOKAY) << family.name;
        EXPECT_EQ(buffer[0], family.values[0]);
        EXPECT_EQ(buffer[1], family.values[1]);
        EXPECT_EQ(buffer[2], Element{7});
        EXPECT_EQ(buffer[3], family.values[2]);
        ASSERT_EQ(b_decoderSeek(in.handle, 0), sOKAY);
        Element *array = nullptr;
        ASSERT_EQ(family.decode(in.handle, 4, &array, tag), sOKAY);
        EXPECT_EQ(array[2], Element{0}) << "not what the block held before";
        EXPECT_EQ(array[3], family.values[2]);
        OSL_FREE(array, tag);
    });
}

// What stands for an array of two: statuses, and how far values were stored.
struct RunCase {
    const char *bytes;
    OAK_RETCODE rc;
    uint32_t stored[2];
};
constexpr uint32_t kOld = 99;
const RunCase kRunCases[] = {
    {"00", sOKAY, {kOld, kOld}},                  // no run at all
    {"01020a", eEOD, {kOld, kOld}},               // the bytes end behind the head
    {"0102000a0b", sOKAY, {10, 11}},              //
    {"0103000a0b0c", eDBCORRUPTED, {kOld, kOld}}, // a value too many
    {"020102"
     "0a"
     "0100"
     "0b",
     eDBCORRUPTED,
     {10, kOld}}, // the second run lies beyond
    {"020101"
     "0a"
     "0100"
     "0b",
     eDBCORRUPTED,
     {10, kOld}}, // just beyond
    {"020100"
     "0a"
     "0100"
     "0b",
     sOKAY,
     {10, 11}},
    {"020100"
     "0a"
     "0200"
     "0b0c",
     eDBCORRUPTED,
     {10, kOld}}, // the second run begins within and ends beyond
    {"0101ffffffffffffffffff01"
     "0a",
     sOKAY,
     {10, kOld}}, // a skip that ends it
    {"0201ffffffffffffffffff01"
     "0a"
     "0000",
     sOKAY,
     {10, kOld}},
    {"0201ffffffffffffffffff01"
     "0a"
     "0100"
     "0b",
     eDBCORRUPTED,
     {10, kOld}},
    {"0201feffffffffffffffff01"
     "0a"
     "0200"
     "0b0c",
     eDBCORRUPTED,
     {10, kOld}},                                             // wraps to 1
    {"01ffffffffffffffffff0100", eDBCORRUPTED, {kOld, kOld}}, // a count of all ones
    {"0180808080100a", eDBCORRUPTED, {kOld, kOld}},           // a count of 2 to the 32nd
    {"020001"
     "0102"
     "0b",
     sOKAY,
     {kOld, 11}},                                 // an empty run, then a value
    {"ffffffffffffffffff01", eEOD, {kOld, kOld}}, // runs without end
    {"0102000a8080", eEOD, {10, kOld}},
    {"0102000a8080808010", eDBCORRUPTED, {10, kOld}}, // a value too wide
    {"ffffffffffffffffff02", eINVVARINT, {kOld, kOld}},
    {"01ffffffffffffffffff02", eINVVARINT, {kOld, kOld}},
    {"0101ffffffffffffffffff02", eINVVARINT, {kOld, kOld}},
};

TEST(EncoderArrays, JudgeRunsThatAddressBeyondTheArray) {
    oaktest::Tag tag;
    for (const RunCase &row : kRunCases) {
        for (const Way way : {Way::direct, Way::callback}) {
            Reader in(tag, row.bytes, way);
            uint32_t buffer[2] = {kOld, kOld};
            EXPECT_EQ(b_decoderDecodeUint32ArrayBuffer(in.handle, 2, buffer), row.rc) << row.bytes;
            EXPECT_EQ(buffer[0], row.stored[0]) << row.bytes;
            EXPECT_EQ(buffer[1], row.stored[1]) << row.bytes;
            ASSERT_EQ(b_decoderSeek(in.handle, 0), sOKAY);
            uint32_t *array = nullptr;
            EXPECT_EQ(b_decoderDecodeUint32Array(in.handle, 2, &array, tag), row.rc) << row.bytes;
            EXPECT_EQ(array != nullptr, row.rc == sOKAY) << "handed out on success alone";
            OSL_FREE(array, tag);
        }
    }
}

TEST(EncoderArrays, TakeNoPositionsAtAll) {
    oaktest::Tag tag;
    Reader in(tag, "010000"
                   "010100");
    uint16_t *array = nullptr;
    ASSERT_EQ(b_decoderDecodeUint16Array(in.handle, 0, &array, tag), sOKAY);
    OSL_FREE(array, tag);
    EXPECT_EQ(b_decoderDecodeUint16ArrayBuffer(in.handle, 0, nullptr), eDBCORRUPTED);
}

// ---- Texts and bytes --------------------------------------------------------

TEST(Decoder, ReadsTexts) {
    oaktest::Tag tag;
    for (const Way way : {Way::direct, Way::callback}) {
        Reader in(tag,
                  "036f616b"
                  "00"
                  "01"
                  "41",
                  way);
        char *text = nullptr;
        uint32_t length = 0;
        ASSERT_EQ(b_decoderDecodeString(in.handle, &text, &length, tag), sOKAY);
        EXPECT_STREQ(text, "oak");
        EXPECT_EQ(length, 4u);
        OSL_FREE(text, tag);
        ASSERT_EQ(b_decoderDecodeString(in.handle, &text, &length, tag), sOKAY);
        EXPECT_STREQ(text, "");
        EXPECT_EQ(length, 1u);
        OSL_FREE(text, tag);
        ASSERT_EQ(b_decoderDecodeString(in.handle, &text, nullptr, tag), sOKAY);
        EXPECT_STREQ(text, "A");
        OSL_FREE(text, tag);
        EXPECT_TRUE(in.at_end());

        ASSERT_EQ(b_decoderSeek(in.handle, 0), sOKAY);
        char buffer[8] = "zzzzzzz";
        ASSERT_EQ(b_decoderDecodeStringToBuff(in.handle, buffer, &length), sOKAY);
        EXPECT_STREQ(buffer, "oak");
        EXPECT_EQ(buffer[4], 'z');
        EXPECT_EQ(length, 4u);
        ASSERT_EQ(b_decoderDecodeStringToBuff(in.handle, buffer, nullptr), sOKAY);
        EXPECT_STREQ(buffer, "");
    }
}

TEST(Decoder, ReadsTextsOfEveryLengthAroundItsSteps) {
    oaktest::Tag tag;
    for (const size_t length : {1, 255, 256, 257, 511, 512, 513, 1024, 1025, 5000}) {
        for (const Way way : {Way::direct, Way::callback}) {
            Writer out(tag);
            const std::string text(length, 't');
            ASSERT_EQ(b_encoderEncodeString(out.handle, text.c_str()), sOKAY);
            Reader in(tag, oaktest::unhex(out.hex()), way);
            char *read = nullptr;
            ASSERT_EQ(b_decoderDecodeString(in.handle, &read, nullptr, tag), sOKAY);
            EXPECT_EQ(std::string(read), text);
            OSL_FREE(read, tag);
        }
    }
}

TEST(Decoder, RefusesTextsThatAreCutOrTooLong) {
    const struct {
        const char *bytes;
        OAK_RETCODE rc;
    } rows[] = {
        {"", eEOD},
        {"036f61", eEOD},
        {"feffffff0f", eEOD},         // 4294967294 bytes announced, none there
        {"ffffffff0f", eDBCORRUPTED}, // no count holds the terminator
        {"8080808010", eDBCORRUPTED}, // 2 to the 32nd
        {"ffffffffffffffffff02", eINVVARINT},
    };
    oaktest::Tag tag;
    for (const auto &row : rows) {
        for (const Way way : {Way::direct, Way::callback}) {
            Reader in(tag, row.bytes, way);
            char *text = nullptr;
            uint32_t length = 77;
            EXPECT_EQ(b_decoderDecodeString(in.handle, &text, &length, tag), row.rc) << row.bytes;
            EXPECT_EQ(text, nullptr);
            EXPECT_EQ(length, 77u);
            ASSERT_EQ(b_decoderSeek(in.handle, 0), sOKAY);
            char buffer[8];
            EXPECT_EQ(b_decoderDecodeStringToBuff(in.handle, buffer, &length), row.rc);
            EXPECT_EQ(length, 77u);
        }
    }
}

TEST(Decoder, ReadsABoundedTextUpToItsCapacity) {
    oaktest::Tag tag;
    for (size_t capacity = 0; capacity < 6; ++capacity) {
        Reader in(tag, "036f616b");
        char buffer[8] = "zzzzzzz";
        uint32_t length = 77;
        const bool fits = capacity >= 4;
        EXPECT_EQ(decoderDecodeStringBounded(in.handle, buffer, capacity, &length),
                  fits ? sOKAY : eDBCORRUPTED);
        EXPECT_STREQ(buffer, fits ? "oak" : "zzzzzzz");
        EXPECT_EQ(length, fits ? 4u : 77u);
    }
}

TEST(Decoder, ReadsRunsOfBytes) {
    oaktest::Tag tag;
    for (const Way way : {Way::direct, Way::callback}) {
        Reader in(tag, "00ff8041", way);
        uint8_t bytes[4] = {9, 9, 9, 9};
        ASSERT_EQ(b_decoderDecodeBytes(in.handle, bytes, 3), sOKAY);
        EXPECT_EQ(oaktest::hex(bytes, 4), "00ff8009");
        EXPECT_EQ(b_decoderDecodeBytes(in.handle, nullptr, 0), sOKAY);
        EXPECT_EQ(b_decoderDecodeBytes(in.handle, bytes, 2), eEOD);
        EXPECT_EQ(oaktest::hex(bytes, 4), "41ff8009") << "what came before the failure";
        EXPECT_TRUE(in.at_end());
    }
}

TEST(Decoder, ReadsInBulk) {
    oaktest::Tag tag;
    Reader in(tag, "010203");
    uint8_t bytes[4] = {};
    size_t got = 0;
    ASSERT_EQ(b_decoderDecodeBytesBulk(in.handle, 2, bytes, &got), sOKAY);
    EXPECT_EQ(got, 2u);
    EXPECT_EQ(b_decoderDecodeBytesBulk(in.handle, 2, bytes, &got), eEOD);
    EXPECT_EQ(got, 1u);
    ASSERT_EQ(b_decoderSeek(in.handle, 0), sOKAY);
    EXPECT_EQ(b_decoderDecodeBytesBulk(in.handle, 3, bytes, nullptr), sOKAY);
    EXPECT_EQ(oaktest::hex(bytes, 3), "010203");
    EXPECT_EQ(b_decoderDecodeBytesBulk(in.handle, 0, nullptr, &got), sOKAY);
    EXPECT_EQ(got, 0u);
}

// ---- Handles ----------------------------------------------------------------

TEST(Encoder, WorksWithoutABulkCallbackButForBulkCalls) {
    oaktest::Tag tag;
    OAK_BUFFER buffer;
    b_buffInit(&buffer, tag);
    B_ENCODER encoder = nullptr;
    B_DECODER decoder = nullptr;
    ASSERT_EQ(b_encoderCreate(b_buffEmitByte, nullptr, &buffer, tag, &encoder), sOKAY);
    ASSERT_EQ(b_decoderCreate(b_buffInputByte, nullptr, &buffer, tag, &decoder), sOKAY);
    EXPECT_EQ(b_encoderEncodeUint8(encoder, 7), sOKAY);
    EXPECT_EQ(b_encoderEncodeBytesBulk(encoder, "a", 1), eNOTIMPLEMENTED);
    EXPECT_EQ(buffer.len, 1u);
    uint8_t value = 0;
    size_t got = 55;
    EXPECT_EQ(b_decoderDecodeBytesBulk(decoder, 1, &value, &got), eNOTIMPLEMENTED);
    EXPECT_EQ(got, 55u);
    EXPECT_EQ(b_decoderDecodeUint8(decoder, &value), sOKAY);
    EXPECT_EQ(value, 7u);
    EXPECT_EQ(b_encoderGetCtx(encoder), &buffer);
    EXPECT_EQ(b_decoderGetCtx(decoder), &buffer);
    b_encoderDestroy(encoder);
    b_decoderDestroy(decoder);
    EXPECT_EQ(buffer.len, 1u) << "the context is not touched";
    b_buffTerm(&buffer);
}

TEST(Encoder, ResetsAndSeeksItsBuffer) {
    oaktest::Tag tag;
    Writer out(tag);
    ASSERT_EQ(b_encoderEncodeUint8(out.handle, 7), sOKAY);
    b_encoderReset(out.handle);
    EXPECT_EQ(out.buffer.len, 0u);
    EXPECT_EQ(out.buffer.pos, 0u);
    Reader in(tag, "010203");
    EXPECT_EQ(b_decoderSeek(in.handle, 3), sOKAY);
    EXPECT_EQ(b_decoderSeek(in.handle, 4), eEOD);
    EXPECT_EQ(in.buffer.pos, 3u);
    EXPECT_EQ(b_decoderSeek(in.handle, 1), sOKAY);
    uint8_t value = 0;
    EXPECT_EQ(b_decoderDecodeUint8(in.handle, &value), sOKAY);
    EXPECT_EQ(value, 2u);
}

TEST(Encoder, RefusesNullArguments) {
    oaktest::Tag tag;
    Writer out(tag);
    Reader in(tag, "0101010101010101");
    uint8_t byte = 0;
    char *text = nullptr;
    uint32_t *array = nullptr;
    EXPECT_EQ(b_encoderCreate(nullptr, nullptr, nullptr, tag, &out.handle), eINVNULLARG);
    EXPECT_EQ(b_encoderCreate(b_buffEmitByte, nullptr, nullptr, tag, nullptr), eINVNULLARG);
    EXPECT_EQ(b_decoderCreate(nullptr, nullptr, nullptr, tag, &in.handle), eINVNULLARG);
    EXPECT_EQ(b_decoderCreate(b_buffInputByte, nullptr, nullptr, tag, nullptr), eINVNULLARG);
    b_encoderDestroy(nullptr);
    b_decoderDestroy(nullptr);
    b_encoderReset(nullptr);
    EXPECT_EQ(b_encoderGetCtx(nullptr), nullptr);
    EXPECT_EQ(b_decoderGetCtx(nullptr), nullptr);
    EXPECT_EQ(b_decoderSeek(nullptr, 0), eINVNULLARG);
    EXPECT_EQ(b_encoderEncodeUint8(nullptr, 1), eINVNULLARG);
    EXPECT_EQ(b_encoderEncodeDouble(nullptr, 1), eINVNULLARG);
    EXPECT_EQ(b_encoderEncodeString(nullptr, ""), eINVNULLARG);
    EXPECT_EQ(b_encoderEncodeString(out.handle, nullptr), eINVNULLARG);
    EXPECT_EQ(b_encoderEncodeBytes(nullptr, "a", 1), eINVNULLARG);
    EXPECT_EQ(b_encoderEncodeBytes(out.handle, nullptr, 1), eINVNULLARG);
    EXPECT_EQ(b_encoderEncodeBytesBulk(nullptr, "a", 1), eINVNULLARG);
    EXPECT_EQ(b_encoderEncodeBytesBulk(out.handle, nullptr, 1), eINVNULLARG);
    EXPECT_EQ(b_encoderEncodeBytesBulk(out.handle, nullptr, 0), sOKAY);
    EXPECT_EQ(b_encoderEncodeUint32Array(nullptr, 0, nullptr), eINVNULLARG);
    EXPECT_EQ(b_encoderEncodeUint32Array(out.handle, 1, nullptr), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeUint8(nullptr, &byte), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeUint8(in.handle, nullptr), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeSize_t(in.handle, nullptr), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeSize_t(nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeString(nullptr, &text, nullptr, tag), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeString(in.handle, nullptr, nullptr, tag), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeStringToBuff(nullptr, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeStringToBuff(in.handle, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeBytes(nullptr, &byte, 1), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeBytes(in.handle, nullptr, 1), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeBytesBulk(nullptr, 1, &byte, nullptr), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeBytesBulk(in.handle, 1, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeUint32Array(nullptr, 1, &array, tag), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeUint32Array(in.handle, 1, nullptr, tag), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeUint32ArrayBuffer(nullptr, 0, nullptr), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeUint32ArrayBuffer(in.handle, 1, nullptr), eINVNULLARG);
    EXPECT_EQ(out.buffer.len, 0u);
    EXPECT_EQ(in.buffer.pos, 0u);
}

// A handle over the buffer's functions whose context is missing fails like them.
TEST(Encoder, ReturnsTheBuffersStatusForAMissingContext) {
    oaktest::Tag tag;
    B_ENCODER encoder = nullptr;
    B_DECODER decoder = nullptr;
    ASSERT_EQ(b_encoderCreate(b_buffEmitByte, nullptr, nullptr, tag, &encoder), sOKAY);
    ASSERT_EQ(b_decoderCreate(b_buffInputByte, nullptr, nullptr, tag, &decoder), sOKAY);
    uint8_t byte = 0;
    EXPECT_EQ(b_encoderEncodeUint8(encoder, 1), eINVNULLARG);
    EXPECT_EQ(b_encoderEncodeBytes(encoder, &byte, 1), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeUint8(decoder, &byte), eINVNULLARG);
    EXPECT_EQ(b_decoderDecodeBytes(decoder, &byte, 1), eINVNULLARG);
    EXPECT_EQ(b_decoderSeek(decoder, 0), eINVNULLARG);
    b_encoderReset(encoder);
    b_encoderDestroy(encoder);
    b_decoderDestroy(decoder);
}

// ---- Callbacks --------------------------------------------------------------

// A sink and a source that fail after a number of bytes, and count their calls.
struct Wire {
    size_t room;
    size_t calls = 0;
};
OAK_RETCODE wire_emit(OAK_OUTPUT_CTX ctx, uint32_t byte) {
    auto *wire = static_cast<Wire *>(ctx);
    EXPECT_LE(byte, 255u);
    return wire->calls++ < wire->room ? sOKAY : eFAIL;
}
OAK_RETCODE wire_input(OAK_INPUT_CTX ctx, uint32_t *byte) {
    auto *wire = static_cast<Wire *>(ctx);
    *byte = 0xABCDEF01; // the low eight bits count
    return wire->calls++ < wire->room ? sOKAY : eFAIL;
}

TEST(Encoder, ReturnsTheStatusOfTheFirstFailedCallback) {
    oaktest::Tag tag;
    const uint32_t values[] = {1, 2};
    const struct {
        size_t bytes;
        std::function<OAK_RETCODE(B_ENCODER)> write;
    } rows[] = {
        {2, [](B_ENCODER e) { return b_encoderEncodeUint16(e, 300); }},
        {1, [](B_ENCODER e) { return b_encoderEncodeInt8(e, -1); }},
        {4, [](B_ENCODER e) { return b_encoderEncodeFloat(e, 1); }},
        {4, [](B_ENCODER e) { return b_encoderEncodeString(e, "oak"); }},
        {5, [](B_ENCODER e) { return b_encoderEncodeBytes(e, "abcde", 5); }},
        {5, [&](B_ENCODER e) { return b_encoderEncodeUint32Array(e, 2, values); }},
        {0, [](B_ENCODER e) { return b_encoderEncodeBytes(e, "abcde", 0); }},
    };
    for (const auto &row : rows) {
        for (size_t room = 0; room <= row.bytes; ++room) {
            Wire wire{room};
            B_ENCODER encoder = nullptr;
            ASSERT_EQ(b_encoderCreate(wire_emit, nullptr, &wire, tag, &encoder), sOKAY);
            EXPECT_EQ(row.write(encoder), room == row.bytes ? sOKAY : eFAIL);
            EXPECT_EQ(wire.calls, std::min(room + 1, row.bytes));
            b_encoderDestroy(encoder);
        }
    }
}

TEST(Decoder, ReturnsTheStatusOfTheFirstFailedCallback) {
    oaktest::Tag tag;
    // Every byte of the source is 01.
    const struct {
        size_t bytes;
        std::function<OAK_RETCODE(B_DECODER)> read;
    } rows[] = {
        {1,
         [](B_DECODER d) {
             uint16_t value = 0;
             return b_decoderDecodeUint16(d, &value);
         }},
        {8,
         [](B_DECODER d) {
             double value = 0;
             return b_decoderDecodeDouble(d, &value);
         }},
        {2,
         [&](B_DECODER d) {
             char *text = nullptr;
             const OAK_RETCODE rc = b_decoderDecodeString(d, &text, nullptr, tag);
             EXPECT_EQ(text != nullptr, rc == sOKAY);
             OSL_FREE(text, tag);
             return rc;
         }},
        {2,
         [](B_DECODER d) {
             char text[2];
             return b_decoderDecodeStringToBuff(d, text, nullptr);
         }},
        {4,
         [&](B_DECODER d) { // one run of one value, skip 1
             uint32_t *array = nullptr;
             const OAK_RETCODE rc = b_decoderDecodeUint32Array(d, 2, &array, tag);
             OSL_FREE(array, tag);
             return rc;
         }},
        {3,
         [](B_DECODER d) {
             uint8_t bytes[3];
             const OAK_RETCODE rc = b_decoderDecodeBytes(d, bytes, 3);
             EXPECT_TRUE(rc != sOKAY || bytes[2] == 1);
             return rc;
         }},
        {0, [](B_DECODER d) { return b_decoderDecodeBytes(d, nullptr, 0); }},
    };
    for (const auto &row : rows) {
        for (size_t room = 0; room <= row.bytes; ++room) {
            Wire wire{room};
            B_DECODER decoder = nullptr;
            ASSERT_EQ(b_decoderCreate(wire_input, nullptr, &wire, tag, &decoder), sOKAY);
            EXPECT_EQ(row.read(decoder), room == row.bytes ? sOKAY : eFAIL);
            EXPECT_EQ(wire.calls, std::min(room + 1, row.bytes));
            b_decoderDestroy(decoder);
        }
    }
}

// ---- The direct way and the callbacks ---------------------------------------

/// Writes one random value or run.
OAK_RETCODE write_something(B_ENCODER encoder, uint64_t kind, uint64_t value, const Bytes &bytes) {
    const uint64_t narrowed = value >> (kind * 7 % 64);
    switch (kind % 8) {
        case 0:
            return b_encoderEncodeUint64(encoder, narrowed);
        case 1:
            return b_encoderEncodeInt64(encoder, static_cast<int64_t>(narrowed));
        case 2:
            return b_encoderEncodeUint8(encoder, static_cast<uint8_t>(value));
        case 3:
            return b_encoderEncodeDouble(encoder, static_cast<double>(narrowed));
        case 4:
            return b_encoderEncodeBytes(encoder, bytes.data(), bytes.size());
        case 5:
            return b_encoderEncodeBytesBulk(encoder, bytes.data(), bytes.size());
        case 6:
            return b_encoderEncodeUint8Array(encoder, static_cast<uint32_t>(bytes.size()),
                                             bytes.data());
        default:
            return b_encoderEncodeString(encoder, std::string(bytes.size(), 'x').c_str());
    }
}

void expect_same(const OAK_BUFFER &direct, const OAK_BUFFER &callback) {
    ASSERT_EQ(direct.len, callback.len);
    ASSERT_EQ(direct.size, callback.size);
    ASSERT_EQ(direct.pos, callback.pos);
    ASSERT_EQ(oaktest::hex(direct.data, direct.len), oaktest::hex(callback.data, callback.len));
}

TEST(Encoder, LeavesTheBufferAsTheCallbacksWould) {
    oaktest::Tag tag;
    oaktest::Random random(3);
    for (int round = 0; round < 100; ++round) {
        Writer direct(tag, Way::direct);
        Writer callback(tag, Way::callback);
        const size_t reserved = random.below(3) * 11;
        for (OAK_BUFFER *buffer : {&direct.buffer, &callback.buffer}) {
            ASSERT_EQ(b_buffIncreaseSize(buffer, reserved), sOKAY);
            if (round % 5 == 0) {
                b_buffSetStatic(buffer, "a view", 6);
            }
        }
        for (int step = 0; step < 40; ++step) {
            const uint64_t kind = random.next();
            const uint64_t value = random.next();
            const Bytes bytes(random.below(50), static_cast<uint8_t>(step));
            ASSERT_EQ(write_something(direct.handle, kind, value, bytes), sOKAY);
            ASSERT_EQ(write_something(callback.handle, kind, value, bytes), sOKAY);
            expect_same(direct.buffer, callback.buffer);
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

/// Reads one random value or run and returns it with the status as text.
std::string read_something(B_DECODER decoder, uint64_t kind, OSL_MEMTAG tag) {
    alignas(8) uint8_t bytes[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    uint64_t wide = 9;
    char *text = nullptr;
    OAK_RETCODE rc = sOKAY;
    switch (kind % 7) {
        case 0:
            rc = b_decoderDecodeUint64(decoder, &wide);
            break;
        case 1:
            rc = b_decoderDecodeInt64(decoder, reinterpret_cast<int64_t *>(&wide));
            break;
        case 2:
            rc = b_decoderDecodeUint8(decoder, &bytes[0]);
            break;
        case 3:
            rc = b_decoderDecodeBytes(decoder, bytes, kind % 8);
            break;
        case 4:
            rc = b_decoderDecodeUint8ArrayBuffer(decoder, 8, bytes);
            break;
        case 5:
            rc = b_decoderDecodeFloat(decoder, reinterpret_cast<float *>(bytes));
            break;
        default:
            rc = b_decoderDecodeString(decoder, &text, nullptr, tag);
            break;
    }
    std::string told = std::to_string(rc) + " " + std::to_string(wide) + " " +
                       oaktest::hex(bytes, sizeof(bytes)) + " " + (text != nullptr ? text : "-");
    OSL_FREE(text, tag);
    return told;
}

TEST(Decoder, ReadsAsTheCallbacksWould) {
    oaktest::Tag tag;
    oaktest::Random random(4);
    for (int round = 0; round < 300; ++round) {
        Bytes bytes(random.below(60));
        for (uint8_t &byte : bytes) { // small numbers and long forms, often
            const uint64_t shape = random.below(4);
            byte = static_cast<uint8_t>(shape == 0   ? random.below(4)
                                        : shape == 1 ? 0x80 + random.below(2)
                                                     : random.below(256));
        }
        Reader direct(tag, bytes, Way::direct);
        Reader callback(tag, bytes, Way::callback);
        for (int step = 0; step < 30; ++step) {
            const uint64_t kind = random.next();
            ASSERT_EQ(read_something(direct.handle, kind, tag),
                      read_something(callback.handle, kind, tag));
            ASSERT_EQ(direct.buffer.pos, callback.buffer.pos);
        }
    }
}

// ---- Failures ---------------------------------------------------------------

TEST(Encoder, LeavesNothingBehindWhenMemoryEnds) {
    oaktest::Tag tag;
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        OAK_BUFFER buffer;
        b_buffInit(&buffer, tag);
        B_ENCODER encoder = nullptr;
        OAK_RETCODE rc = b_encoderCreate(b_buffEmitByte, nullptr, &buffer, tag, &encoder);
        for (uint64_t value = 1; value != 0 && rc == sOKAY; value <<= 7) {
            rc = b_encoderEncodeUint64(encoder, value);
        }
        rc = rc == sOKAY ? b_encoderEncodeString(encoder, std::string(100, 'x').c_str()) : rc;
        b_encoderDestroy(encoder);
        b_buffTerm(&buffer);
        return rc;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

TEST(Decoder, LeavesNothingBehindWhenMemoryEnds) {
    oaktest::Tag tag;
    Writer out(tag);
    const uint32_t values[] = {1, 2, 3};
    ASSERT_EQ(b_encoderEncodeString(out.handle, std::string(3000, 'x').c_str()), sOKAY);
    ASSERT_EQ(b_encoderEncodeUint32Array(out.handle, 3, values), sOKAY);
    uint64_t runs_of[2] = {};
    for (const Way way : {Way::direct, Way::callback}) {
        uint64_t &runs = runs_of[way == Way::callback];
        runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
            B_DECODER decoder = nullptr;
            char *text = nullptr;
            uint32_t *array = nullptr;
            out.buffer.pos = 0;
            OAK_RETCODE rc =
                b_decoderCreate(way == Way::direct ? b_buffInputByte : input_indirectly, nullptr,
                                &out.buffer, tag, &decoder);
            rc = rc == sOKAY ? b_decoderDecodeString(decoder, &text, nullptr, tag) : rc;
            rc = rc == sOKAY ? b_decoderDecodeUint32Array(decoder, 3, &array, tag) : rc;
            EXPECT_EQ(array != nullptr, rc == sOKAY);
            OSL_FREE(text, tag);
            OSL_FREE(array, tag);
            b_decoderDestroy(decoder);
            return rc;
        });
        EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
    }
    // All of the text is in sight in the buffer; through a callback memory grows with
    // what arrives, never to the announced length at once.
    EXPECT_EQ(runs_of[1] > runs_of[0], oaktest::faults_are_injected());
}

} // namespace
