// Base 64 as this system writes and reads it: the lag of both directions, the
// padding, and refusals.
#include "base64.h"

#include <string>
#include <vector>

#include "test_support.h"

namespace {

/// The buffer's contents as text.
std::string contents(const OAK_BUFFER &buffer) {
    return std::string(reinterpret_cast<const char *>(buffer.data), buffer.len);
}

std::string encode(const std::string &input) {
    oaktest::Tag tag;
    OAK_BUFFER buffer;
    b_buffInit(&buffer, tag);
    EXPECT_EQ(b_base64EncodeToBuffer(input.data(), input.size(), &buffer), sOKAY);
    std::string text = contents(buffer);
    b_buffTerm(&buffer);
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(text.back(), '\0') << "the terminator is part of the length";
    text.pop_back();
    return text;
}

struct Decoded {
    OAK_RETCODE rc;
    std::string bytes;
    bool operator==(const Decoded &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Decoded &decoded) {
    return out << decoded.rc << " " << decoded.bytes;
}

Decoded decode(const std::string &text) {
    oaktest::Tag tag;
    OAK_BUFFER input;
    OAK_BUFFER output;
    b_buffInit(&input, tag);
    b_buffInit(&output, tag);
    b_buffSetStatic(&input, text.data(), text.size());
    const OAK_RETCODE rc = b_base64DecodeFcn(b_buffInputByte, &input, b_buffEmitByte, &output);
    Decoded decoded{rc, contents(output)};
    b_buffTerm(&output);
    return decoded;
}

// RFC 4648 gives "Zg==", "Zm8=", "Zm9v", "Zm9vYg==", ... for the same inputs: here
// a full group lacks its last character.
TEST(Base64, EncodesWithItsLag) {
    EXPECT_EQ(encode(""), "");
    EXPECT_EQ(encode("f"), "Zg==");
    EXPECT_EQ(encode("fo"), "Zm8=");
    EXPECT_EQ(encode("foo"), "Zm9");
    EXPECT_EQ(encode("foob"), "Zm9vYg==");
    EXPECT_EQ(encode("fooba"), "Zm9vYmE=");
    EXPECT_EQ(encode("foobar"), "Zm9vYmF");
    EXPECT_EQ(encode(std::string("\0\0\0\0", 4)), "AAAAAA==");
    EXPECT_EQ(encode("\xff\xff\xff\xff"), "/////w==");
    EXPECT_EQ(encode("\xfb\xef\xbe\xfb"), "++++"
                                          "+w==");
}

TEST(Base64, EndsNoInputWithTheTerminatorAlone) {
    oaktest::Tag tag;
    OAK_BUFFER buffer;
    b_buffInit(&buffer, tag);
    B_BASE64 record;
    b_base64EncodeStart(&record, b_buffEmitByte, &buffer);
    EXPECT_EQ(b_base64EncodeEnd(&record), sOKAY);
    ASSERT_EQ(buffer.len, 1u);
    EXPECT_EQ(buffer.data[0], 0);
    b_buffTerm(&buffer);
}

TEST(Base64, HoldsSixBitsUntilTheNextByte) {
    oaktest::Tag tag;
    OAK_BUFFER buffer;
    b_buffInit(&buffer, tag);
    B_BASE64 record;
    b_base64EncodeStart(&record, b_buffEmitByte, &buffer);
    const struct {
        uint8_t byte;
        size_t length;
        uint16_t held;
    } rows[] = {{'f', 1, 2}, {'o', 2, 4}, {'o', 3, 6}, {'b', 5, 2}, {'a', 6, 4}, {'r', 7, 6}};
    for (const auto &row : rows) {
        EXPECT_EQ(b_base64EncodeByte(&record, row.byte), sOKAY);
        EXPECT_EQ(buffer.len, row.length);
        EXPECT_EQ(record.numbits, row.held);
    }
    b_buffTerm(&buffer);
}

TEST(Base64, AppendsToWhatTheBufferHolds) {
    oaktest::Tag tag;
    OAK_BUFFER buffer;
    b_buffInit(&buffer, tag);
    ASSERT_EQ(b_buffEmitString(&buffer, "key="), sOKAY);
    ASSERT_EQ(b_base64EncodeToBuffer("f", 1, &buffer), sOKAY);
    EXPECT_EQ(contents(buffer), std::string("key=Zg==\0", 9));
    b_buffTerm(&buffer);
}

TEST(Base64, DecodesPaddedText) {
    EXPECT_EQ(decode(""), (Decoded{sOKAY, ""}));
    EXPECT_EQ(decode("Zg=="), (Decoded{sOKAY, "f"}));
    EXPECT_EQ(decode("Zm8="), (Decoded{sOKAY, "fo"}));
    EXPECT_EQ(decode("Zm9vYg=="), (Decoded{sOKAY, "foob"}));
    EXPECT_EQ(decode("Zm9vYmE="), (Decoded{sOKAY, "fooba"}));
    EXPECT_EQ(decode("/////w=="), (Decoded{sOKAY, "\xff\xff\xff\xff"}));
}

// The last byte of a full group stays behind.
TEST(Base64, DecodesFullGroupsWithItsLag) {
    EXPECT_EQ(decode("Zm9v"), (Decoded{sOKAY, "fo"}));
    EXPECT_EQ(decode("Zm9vYmFy"), (Decoded{sOKAY, "fooba"}));
}

// The encoder's own text of a full group is a character short of one.
TEST(Base64, RefusesTextWhoseCountIsNoMultipleOfFour) {
    EXPECT_EQ(decode("Z"), (Decoded{eRANGE, ""}));
    EXPECT_EQ(decode("Zm"), (Decoded{eRANGE, "f"}));
    EXPECT_EQ(decode(encode("foo")), (Decoded{eRANGE, "fo"}));
    EXPECT_EQ(decode("Zm8"), (Decoded{eRANGE, "fo"}));
    EXPECT_EQ(decode("Zg="), (Decoded{eRANGE, "f"}));
}

TEST(Base64, RefusesPaddingAtTheStartOfAGroup) {
    EXPECT_EQ(decode("="), (Decoded{eRANGE, ""}));
    EXPECT_EQ(decode("Z==="), (Decoded{eRANGE, ""}));
    EXPECT_EQ(decode("Zm9v="), (Decoded{eRANGE, "fo"}));
    EXPECT_EQ(decode("Zm8=="), (Decoded{eRANGE, "fo"}));
}

TEST(Base64, RefusesCharactersAfterThePadding) {
    EXPECT_EQ(decode("Zg=g"), (Decoded{eRANGE, "f"}));
    EXPECT_EQ(decode("Zg==Zg=="), (Decoded{eRANGE, "f"}));
}

TEST(Base64, RefusesWhatIsNotOfTheAlphabet) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    oaktest::Tag tag;
    OAK_BUFFER output;
    b_buffInit(&output, tag);
    for (uint32_t ch = 0; ch < 300; ++ch) {
        B_BASE64 record;
        b_base64DecodeStart(&record, b_buffEmitByte, &output);
        const size_t value =
            ch < 256 && ch != 0 ? alphabet.find(static_cast<char>(ch)) : std::string::npos;
        EXPECT_EQ(b_base64DecodeChar(&record, ch), value == std::string::npos ? eRANGE : sOKAY);
        if (value != std::string::npos) {
            EXPECT_EQ(record.bits, value);
        }
    }
    EXPECT_EQ(decode("Zm8\n"), (Decoded{eRANGE, "fo"}));
    b_buffTerm(&output);
}

TEST(Base64, CountsEveryCharacter) {
    oaktest::Tag tag;
    OAK_BUFFER output;
    b_buffInit(&output, tag);
    B_BASE64 record;
    b_base64DecodeStart(&record, b_buffEmitByte, &output);
    for (const char ch : std::string("Zg==")) {
        EXPECT_EQ(b_base64DecodeChar(&record, static_cast<uint32_t>(ch)), sOKAY);
    }
    EXPECT_EQ(record.pos, 4u);
    EXPECT_EQ(record.done, OAK_TRUE);
    EXPECT_EQ(b_base64DecodeEnd(&record), sOKAY);
    b_buffTerm(&output);
}

TEST(Base64, StopsReadingAtANulCharacter) {
    EXPECT_EQ(decode(std::string("Zg==\0!!!!", 9)), (Decoded{sOKAY, "f"}));
    EXPECT_EQ(decode(std::string("\0Zg==", 5)), (Decoded{sOKAY, ""}));
}

TEST(Base64, ReadsBackWhatItWroteUnlessTheLastGroupIsFull) {
    oaktest::Random random(2);
    for (size_t size = 0; size < 200; ++size) {
        std::string bytes;
        for (size_t i = 0; i < size; ++i) {
            bytes += static_cast<char>(random.below(256));
        }
        const Decoded decoded = decode(encode(bytes));
        if (size % 3 != 0 || size == 0) {
            EXPECT_EQ(decoded, (Decoded{sOKAY, bytes})) << size;
        } else {
            EXPECT_EQ(decoded, (Decoded{eRANGE, bytes.substr(0, size - 1)})) << size;
        }
    }
}

// A sink that fails after a number of characters.
struct Sink {
    size_t room;
};
OAK_RETCODE sink_emit(OAK_OUTPUT_CTX ctx, uint32_t) {
    auto *sink = static_cast<Sink *>(ctx);
    return sink->room-- > 0 ? sOKAY : eFAIL;
}
OAK_RETCODE broken_source(OAK_INPUT_CTX, uint32_t *) {
    return eFAIL;
}

TEST(Base64, ReturnsTheStatusesOfItsCallbacks) {
    for (size_t room = 0; room < 9; ++room) { // "Zm9vYg==" and the terminator
        Sink sink{room};
        B_BASE64 record;
        b_base64EncodeStart(&record, sink_emit, &sink);
        OAK_RETCODE rc = sOKAY;
        for (const char ch : std::string("foob")) {
            rc = rc == sOKAY ? b_base64EncodeByte(&record, static_cast<uint8_t>(ch)) : rc;
        }
        rc = rc == sOKAY ? b_base64EncodeEnd(&record) : rc;
        EXPECT_EQ(rc, eFAIL) << room;
    }
    Sink sink{0};
    OAK_BUFFER input;
    b_buffInit(&input, OSL_TAG_PROCESS);
    b_buffSetStatic(&input, "Zg==", 4);
    EXPECT_EQ(b_base64DecodeFcn(b_buffInputByte, &input, sink_emit, &sink), eFAIL);
    EXPECT_EQ(b_base64DecodeFcn(broken_source, nullptr, sink_emit, &sink), eFAIL);
}

TEST(Base64, RefusesNullArguments) {
    B_BASE64 record;
    OAK_BUFFER buffer;
    b_buffInit(&buffer, OSL_TAG_PROCESS);
    b_base64EncodeStart(nullptr, b_buffEmitByte, &buffer);
    b_base64EncodeStart(&record, nullptr, &buffer);
    EXPECT_EQ(b_base64EncodeByte(&record, 1), eINVNULLARG);
    EXPECT_EQ(b_base64EncodeEnd(&record), eINVNULLARG);
    EXPECT_EQ(b_base64DecodeChar(&record, 'A'), eINVNULLARG);
    EXPECT_EQ(b_base64DecodeEnd(&record), eINVNULLARG);
    EXPECT_EQ(b_base64EncodeByte(nullptr, 1), eINVNULLARG);
    EXPECT_EQ(b_base64EncodeToBuffer("a", 1, nullptr), eINVNULLARG);
    EXPECT_EQ(b_base64EncodeToBuffer(nullptr, 1, &buffer), eINVNULLARG);
    EXPECT_EQ(b_base64EncodeToBuffer(nullptr, 0, nullptr), eINVNULLARG);
    EXPECT_EQ(b_base64DecodeFcn(nullptr, nullptr, b_buffEmitByte, &buffer), eINVNULLARG);
    EXPECT_EQ(b_base64DecodeFcn(b_buffInputByte, &buffer, nullptr, nullptr), eINVNULLARG);
}

TEST(Base64, LeavesNothingBehindWhenMemoryEnds) {
    oaktest::Tag tag;
    const std::string input(100, 'x');
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        OAK_BUFFER buffer;
        b_buffInit(&buffer, tag);
        const OAK_RETCODE rc = b_base64EncodeToBuffer(input.data(), input.size(), &buffer);
        b_buffTerm(&buffer);
        return rc;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

} // namespace
