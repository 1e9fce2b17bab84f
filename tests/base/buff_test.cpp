// The byte buffer: both ways to grow as they show in `size`, static views, copies,
// padding, reading and what happens when memory ends.
#include "buff.h"

#include <cstring>
#include <string>
#include <vector>

#include "buff_internal.h"
#include "test_support.h"

namespace {

/// An empty buffer that is taken down with the test.
class Buffer : public OAK_BUFFER {
  public:
    explicit Buffer(OSL_MEMTAG under) { b_buffInit(this, under); }
    ~Buffer() { b_buffTerm(this); }
    Buffer(const Buffer &) = delete;
    Buffer &operator=(const Buffer &) = delete;
    std::string text() const {
        return len == 0 ? std::string() : std::string(reinterpret_cast<const char *>(data), len);
    }
};

constexpr char kView[] = "static";
constexpr size_t kViewLength = 6;

bool views(const OAK_BUFFER &buffer, const char *data, size_t length) {
    return buffer.data == reinterpret_cast<const uint8_t *>(data) && buffer.size == 0 &&
           buffer.len == length && buffer.pos == 0;
}

TEST(ByteBuffer, BeginsEmpty) {
    oaktest::Tag tag;
    OAK_BUFFER buffer;
    std::memset(static_cast<void *>(&buffer), 0xA5, sizeof(buffer));
    b_buffInit(&buffer, tag);
    EXPECT_EQ(buffer.data, nullptr);
    EXPECT_EQ(buffer.size, 0u);
    EXPECT_EQ(buffer.len, 0u);
    EXPECT_EQ(buffer.pos, 0u);
    EXPECT_EQ(buffer.tag, tag.get());
    EXPECT_EQ(b_buffLength(&buffer), 0u);
    b_buffTerm(&buffer);
}

// ---- Growth -----------------------------------------------------------------

TEST(ByteBuffer, GrowsBySixteenByteByByte) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    std::string model;
    for (size_t i = 0; i < 100; ++i) {
        const auto byte = static_cast<uint32_t>(0x100 + i * 7);
        const auto emit = i % 2 == 0 ? b_buffEmitByte : b_buffEmitChar;
        ASSERT_EQ(emit(&buffer, byte), sOKAY);
        model += static_cast<char>(byte); // the low eight bits
        EXPECT_EQ(buffer.len, i + 1);
        EXPECT_EQ(buffer.size, (i / 16 + 1) * 16);
    }
    EXPECT_EQ(buffer.text(), model);
}

TEST(ByteBuffer, IsExactlyAsLargeAsItsContentsAfterABulkWrite) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    ASSERT_EQ(b_buffEmitByte(&buffer, 'a'), sOKAY);
    EXPECT_EQ(buffer.size, 16u);
    ASSERT_EQ(b_buffEmitBytesBulk(&buffer, "bc", 2), sOKAY);
    EXPECT_EQ(buffer.size, 3u) << "also where it had been larger";
    ASSERT_EQ(b_buffEmitString(&buffer, "def"), sOKAY);
    EXPECT_EQ(buffer.size, 6u);
    ASSERT_EQ(b_buffEmitByte(&buffer, 'g'), sOKAY);
    EXPECT_EQ(buffer.size, 22u) << "sixteen on from the exact size";
    void *place = nullptr;
    ASSERT_EQ(b_buffAllocateBuffer(&buffer, 4, &place), sOKAY);
    EXPECT_EQ(buffer.size, 11u);
    EXPECT_EQ(place, buffer.data + 7);
    std::memcpy(place, "hijk", 4);
    EXPECT_EQ(buffer.text(), "abcdefghijk");
}

TEST(ByteBuffer, AppliesTheExactSizeToNothingWritten) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    ASSERT_EQ(b_buffEmitBytesBulk(&buffer, nullptr, 0), sOKAY);
    EXPECT_EQ(buffer.data, nullptr);
    ASSERT_EQ(b_buffIncreaseSize(&buffer, 10), sOKAY);
    ASSERT_EQ(b_buffEmitBytesBulk(&buffer, nullptr, 0), sOKAY);
    EXPECT_EQ(buffer.size, 10u) << "an owned buffer's size never becomes 0";
    ASSERT_EQ(b_buffEmitByte(&buffer, 'x'), sOKAY);
    ASSERT_EQ(b_buffEmitString(&buffer, ""), sOKAY);
    EXPECT_EQ(buffer.size, 1u);
}

TEST(ByteBuffer, GrowsOnRequestOnlyUpwards) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    ASSERT_EQ(b_buffIncreaseSize(&buffer, 0), sOKAY);
    EXPECT_EQ(buffer.data, nullptr);
    ASSERT_EQ(b_buffIncreaseSize(&buffer, 100), sOKAY);
    EXPECT_EQ(buffer.size, 100u);
    ASSERT_EQ(b_buffIncreaseSize(&buffer, 99), sOKAY);
    EXPECT_EQ(buffer.size, 100u);
    ASSERT_EQ(b_buffExpand(&buffer, 28), sOKAY);
    EXPECT_EQ(buffer.size, 128u);
    ASSERT_EQ(b_buffExpand(&buffer, 0), sOKAY);
    EXPECT_EQ(buffer.size, 128u);
    EXPECT_EQ(buffer.len, 0u);
    for (int i = 0; i < 128; ++i) {
        ASSERT_EQ(b_buffEmitByte(&buffer, 'x'), sOKAY);
    }
    EXPECT_EQ(buffer.size, 128u);
    ASSERT_EQ(b_buffEmitByte(&buffer, 'x'), sOKAY);
    EXPECT_EQ(buffer.size, 144u);
}

TEST(ByteBuffer, KeepsItsMemoryOverAReset) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    ASSERT_EQ(b_buffEmitString(&buffer, "abc"), sOKAY);
    ASSERT_EQ(b_buffSeek(&buffer, 2), sOKAY);
    const uint8_t *data = buffer.data;
    b_buffReset(&buffer);
    EXPECT_EQ(buffer.len, 0u);
    EXPECT_EQ(buffer.pos, 0u);
    EXPECT_EQ(buffer.size, 3u);
    EXPECT_EQ(buffer.data, data);
}

TEST(ByteBuffer, IsEmptyAgainAfterItsEnd) {
    oaktest::Tag tag;
    OAK_BUFFER buffer;
    b_buffInit(&buffer, tag);
    ASSERT_EQ(b_buffEmitString(&buffer, "abc"), sOKAY);
    b_buffTerm(&buffer);
    EXPECT_EQ(buffer.data, nullptr);
    EXPECT_EQ(buffer.size, 0u);
    EXPECT_EQ(buffer.len, 0u);
    EXPECT_EQ(tag.live(), 0u);
    ASSERT_EQ(b_buffEmitString(&buffer, "d"), sOKAY) << "its tag stays";
    b_buffTerm(&buffer);
    b_buffTerm(&buffer);
}

// The way that the encoder takes for a run of bytes must leave the buffer as single
// bytes would.
TEST(ByteBuffer, GrowsForARunOfBytesAsForEachOfThem) {
    oaktest::Tag tag;
    const std::string bytes(100, 'r');
    const auto *data = reinterpret_cast<const uint8_t *>(bytes.data());
    for (size_t before = 0; before < 40; before += 3) {
        for (size_t size = 0; size <= bytes.size(); ++size) {
            Buffer run(tag);
            Buffer single(tag);
            for (OAK_BUFFER *buffer :
                 {static_cast<OAK_BUFFER *>(&run), static_cast<OAK_BUFFER *>(&single)}) {
                ASSERT_EQ(b_buffEmitBytesBulk(buffer, bytes.data(), before), sOKAY);
            }
            ASSERT_EQ(oak::buff_append_as_bytes(&run, data, size), sOKAY);
            for (size_t i = 0; i < size; ++i) {
                ASSERT_EQ(b_buffEmitByte(&single, data[i]), sOKAY);
            }
            ASSERT_EQ(run.size, single.size);
            ASSERT_EQ(run.text(), single.text());
        }
    }
}

// ---- Static views -----------------------------------------------------------

TEST(ByteBuffer, ViewsTheCallersBytes) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    ASSERT_EQ(b_buffEmitString(&buffer, "owned"), sOKAY);
    ASSERT_EQ(b_buffSeek(&buffer, 3), sOKAY);
    b_buffSetStatic(&buffer, kView, kViewLength);
    EXPECT_TRUE(views(buffer, kView, kViewLength));
    EXPECT_EQ(tag.live(), 0u) << "owned memory was freed";
    EXPECT_EQ(b_buffLength(&buffer), kViewLength);
    uint32_t byte = 0;
    EXPECT_EQ(b_buffInputByte(&buffer, &byte), sOKAY);
    EXPECT_EQ(byte, uint32_t{'s'});
}

// Each write into a view takes memory of the buffer's own, without the old contents.
TEST(ByteBuffer, LetsGoOfAViewWhenItIsWrittenTo) {
    oaktest::Tag tag;
    void *place = nullptr;
    const struct {
        const char *name;
        std::function<OAK_RETCODE(OAK_BUFFER *)> write;
        const char *contents;
        size_t size;
    } rows[] = {
        {"byte", [](OAK_BUFFER *b) { return b_buffEmitByte(b, 'x'); }, "x", 16},
        {"char", [](OAK_BUFFER *b) { return b_buffEmitChar(b, 'x'); }, "x", 16},
        {"bulk", [](OAK_BUFFER *b) { return b_buffEmitBytesBulk(b, "xyz", 3); }, "xyz", 3},
        {"text", [](OAK_BUFFER *b) { return b_buffEmitString(b, "xy"); }, "xy", 2},
        {"place",
         [&](OAK_BUFFER *b) {
             const OAK_RETCODE rc = b_buffAllocateBuffer(b, 1, &place);
             std::memcpy(place, "p", 1);
             return rc;
         },
         "p", 1},
        {"increase", [](OAK_BUFFER *b) { return b_buffIncreaseSize(b, 9); }, "", 9},
        {"expand", [](OAK_BUFFER *b) { return b_buffExpand(b, 5); }, "", 5},
        {"pad", [](OAK_BUFFER *b) { return b_buffPad(b, 4); }, "", 8},
        {"run",
         [](OAK_BUFFER *b) {
             return oak::buff_append_as_bytes(b, reinterpret_cast<const uint8_t *>("xyz"), 3);
         },
         "xyz", 16},
    };
    for (const auto &row : rows) {
        Buffer buffer(tag);
        b_buffSetStatic(&buffer, kView, kViewLength);
        ASSERT_EQ(b_buffSeek(&buffer, 4), sOKAY);
        EXPECT_EQ(row.write(&buffer), sOKAY) << row.name;
        EXPECT_EQ(buffer.text(), row.contents) << row.name;
        EXPECT_EQ(buffer.size, row.size) << row.name;
        EXPECT_EQ(buffer.pos, 0u) << row.name;
        EXPECT_STREQ(kView, "static");
    }
}

TEST(ByteBuffer, KeepsAViewWhenNothingIsWritten) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    b_buffSetStatic(&buffer, kView, kViewLength);
    EXPECT_EQ(b_buffEmitBytesBulk(&buffer, nullptr, 0), sOKAY);
    EXPECT_EQ(b_buffEmitString(&buffer, ""), sOKAY);
    EXPECT_EQ(b_buffIncreaseSize(&buffer, 0), sOKAY);
    EXPECT_EQ(b_buffExpand(&buffer, 0), sOKAY);
    EXPECT_EQ(b_buffPad(&buffer, 3), sOKAY);
    EXPECT_TRUE(views(buffer, kView, kViewLength));
}

// A view of no bytes at a byte step: its length equals its size.
TEST(ByteBuffer, LetsGoOfAnEmptyViewToo) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    b_buffSetStatic(&buffer, kView, 0);
    EXPECT_EQ(b_buffEmitByte(&buffer, 'x'), sOKAY);
    EXPECT_EQ(buffer.text(), "x");
    EXPECT_STREQ(kView, "static");
}

TEST(ByteBuffer, TurnsAViewIntoMemoryOfItsOwn) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    b_buffSetStatic(&buffer, kView, kViewLength);
    ASSERT_EQ(b_buffSeek(&buffer, 2), sOKAY);
    ASSERT_EQ(b_buffDuplicate(&buffer), sOKAY);
    EXPECT_NE(buffer.data, reinterpret_cast<const uint8_t *>(kView));
    EXPECT_EQ(buffer.size, kViewLength);
    EXPECT_EQ(buffer.pos, 2u);
    EXPECT_EQ(buffer.text(), kView);
    const uint8_t *data = buffer.data;
    ASSERT_EQ(b_buffDuplicate(&buffer), sOKAY);
    EXPECT_EQ(buffer.data, data) << "owned memory is left alone";

    b_buffSetStatic(&buffer, kView, 0);
    ASSERT_EQ(b_buffDuplicate(&buffer), sOKAY);
    EXPECT_EQ(buffer.data, nullptr);
}

// ---- Copies -----------------------------------------------------------------

TEST(ByteBuffer, AppendsACopyOfAnOwnedBuffer) {
    oaktest::Tag tag;
    Buffer source(tag);
    Buffer destination(tag);
    ASSERT_EQ(b_buffEmitString(&source, "abcdef"), sOKAY);
    ASSERT_EQ(b_buffSeek(&source, 2), sOKAY);
    ASSERT_EQ(b_buffEmitString(&destination, "x"), sOKAY);
    ASSERT_EQ(b_buffCopy(&source, &destination), sOKAY);
    EXPECT_EQ(destination.text(), "xcdef");
    EXPECT_EQ(destination.size, 5u);
    EXPECT_EQ(source.pos, 2u);
    ASSERT_EQ(b_buffCopyPartial(&source, 3, &destination), sOKAY);
    EXPECT_EQ(destination.text(), "xcdefcde");
    ASSERT_EQ(b_buffCopyPartial(&source, 0, &destination), sOKAY);
    ASSERT_EQ(b_buffCopyPartial(&source, 99, &destination), sOKAY);
    EXPECT_EQ(destination.text(), "xcdefcdecdef");
}

TEST(ByteBuffer, AppendsABufferToItself) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    std::string model = "0123456789";
    ASSERT_EQ(b_buffEmitString(&buffer, model.c_str()), sOKAY);
    ASSERT_EQ(b_buffSeek(&buffer, 1), sOKAY);
    for (int i = 0; i < 10; ++i) {
        model += model.substr(1);
        ASSERT_EQ(b_buffCopy(&buffer, &buffer), sOKAY);
        ASSERT_EQ(buffer.text(), model);
    }
}

TEST(ByteBuffer, MakesAnEmptyDestinationAViewOfAStaticSource) {
    oaktest::Tag tag;
    Buffer source(tag);
    Buffer destination(tag);
    b_buffSetStatic(&source, kView, kViewLength);
    ASSERT_EQ(b_buffSeek(&source, 2), sOKAY);
    ASSERT_EQ(b_buffIncreaseSize(&destination, 50), sOKAY);
    ASSERT_EQ(b_buffCopy(&source, &destination), sOKAY);
    EXPECT_TRUE(views(destination, kView + 2, 4));
    EXPECT_EQ(tag.live(), 0u) << "the destination's memory was freed";
    b_buffReset(&destination);
    ASSERT_EQ(b_buffCopyPartial(&source, 3, &destination), sOKAY);
    EXPECT_TRUE(views(destination, kView + 2, 3));
}

// What is already there stays: a header that was written before a body is copied.
TEST(ByteBuffer, AppendsAStaticSourceToADestinationThatHoldsBytes) {
    oaktest::Tag tag;
    Buffer source(tag);
    Buffer destination(tag);
    b_buffSetStatic(&source, kView, kViewLength);
    ASSERT_EQ(b_buffEmitByte(&destination, 'h'), sOKAY);
    ASSERT_EQ(b_buffCopy(&source, &destination), sOKAY);
    EXPECT_EQ(destination.text(), "hstatic");
    EXPECT_EQ(destination.size, 7u);
}

TEST(ByteBuffer, CopiesNothingFromAPositionAtTheEnd) {
    oaktest::Tag tag;
    Buffer source(tag);
    Buffer destination(tag);
    ASSERT_EQ(b_buffCopy(&source, &destination), sOKAY);
    ASSERT_EQ(b_buffEmitString(&source, "abc"), sOKAY);
    ASSERT_EQ(b_buffSeek(&source, 3), sOKAY);
    ASSERT_EQ(b_buffCopy(&source, &destination), sOKAY);
    EXPECT_EQ(destination.len, 0u);
    EXPECT_EQ(destination.data, nullptr);
}

// ---- Padding ----------------------------------------------------------------

TEST(ByteBuffer, PadsToAMultipleWithZeros) {
    oaktest::Tag tag;
    for (const size_t multiple : {1, 2, 3, 8, 16, 100}) {
        for (size_t length = 0; length < 40; ++length) {
            Buffer buffer(tag);
            const std::string bytes(length, 'x');
            ASSERT_EQ(b_buffEmitBytesBulk(&buffer, bytes.data(), length), sOKAY);
            ASSERT_EQ(b_buffPad(&buffer, multiple), sOKAY);
            const size_t padded = (length + multiple - 1) / multiple * multiple;
            EXPECT_EQ(buffer.text(), bytes + std::string(padded - length, '\0'));
        }
    }
}

TEST(ByteBuffer, RefusesToPadToAMultipleOfZero) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    EXPECT_EQ(b_buffPad(&buffer, 0), eINVARG);
}

// ---- Reading ----------------------------------------------------------------

TEST(ByteBuffer, ReadsToItsEnd) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    uint32_t byte = 77;
    EXPECT_EQ(b_buffInputByte(&buffer, &byte), eEOD);
    ASSERT_EQ(b_buffEmitString(&buffer, "a\xff"), sOKAY);
    EXPECT_EQ(b_buffInputByte(&buffer, &byte), sOKAY);
    EXPECT_EQ(byte, 0x61u);
    EXPECT_EQ(b_buffInputByte(&buffer, &byte), sOKAY);
    EXPECT_EQ(byte, 0xffu);
    EXPECT_EQ(b_buffInputByte(&buffer, &byte), eEOD);
    EXPECT_EQ(byte, 0xffu) << "the output is untouched";
    EXPECT_EQ(buffer.pos, 2u);
}

TEST(ByteBuffer, DeliversWhatIsLeftOfABulkRead) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    ASSERT_EQ(b_buffEmitString(&buffer, "abcde"), sOKAY);
    char bytes[8] = "zzzzzzz";
    size_t got = 99;
    EXPECT_EQ(b_buffInputBytesBulk(&buffer, 3, bytes, &got), sOKAY);
    EXPECT_EQ(got, 3u);
    EXPECT_STREQ(bytes, "abczzzz");
    EXPECT_EQ(b_buffInputBytesBulk(&buffer, 3, bytes, &got), eEOD);
    EXPECT_EQ(got, 2u);
    EXPECT_STREQ(bytes, "deczzzz");
    EXPECT_EQ(buffer.pos, 5u) << "the position moves to the end";
    EXPECT_EQ(b_buffInputBytesBulk(&buffer, 1, bytes, &got), eEOD);
    EXPECT_EQ(got, 0u);
    EXPECT_EQ(b_buffInputBytesBulk(&buffer, 0, nullptr, &got), sOKAY);
    ASSERT_EQ(b_buffSeek(&buffer, 0), sOKAY);
    EXPECT_EQ(b_buffInputBytesBulk(&buffer, 5, bytes, nullptr), sOKAY);
    EXPECT_STREQ(bytes, "abcdezz");
}

TEST(ByteBuffer, SeeksUpToItsLength) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    EXPECT_EQ(b_buffSeek(&buffer, 0), sOKAY);
    EXPECT_EQ(b_buffSeek(&buffer, 1), eEOD);
    ASSERT_EQ(b_buffIncreaseSize(&buffer, 10), sOKAY);
    ASSERT_EQ(b_buffEmitString(&buffer, "abc"), sOKAY);
    EXPECT_EQ(b_buffSeek(&buffer, 3), sOKAY);
    EXPECT_EQ(b_buffSeek(&buffer, 4), eEOD);
    EXPECT_EQ(buffer.pos, 3u);
}

// A record that somebody else filled in: reads and copies stay within its length.
TEST(ByteBuffer, ReadsNothingFromAPositionBeyondItsLength) {
    OAK_BUFFER buffer;
    b_buffInit(&buffer, OSL_TAG_PROCESS);
    b_buffSetStatic(&buffer, kView, 2);
    buffer.pos = 5;
    uint32_t byte = 0;
    char bytes[4];
    size_t got = 9;
    EXPECT_EQ(b_buffInputByte(&buffer, &byte), eEOD);
    EXPECT_EQ(b_buffInputBytesBulk(&buffer, 2, bytes, &got), eEOD);
    EXPECT_EQ(got, 0u);
    OAK_BUFFER copy;
    b_buffInit(&copy, OSL_TAG_PROCESS);
    EXPECT_EQ(b_buffCopy(&buffer, &copy), sOKAY);
    EXPECT_EQ(copy.len, 0u);
}

// ---- Failures ---------------------------------------------------------------

TEST(ByteBuffer, RefusesNullArguments) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    void *place = nullptr;
    uint32_t byte = 0;
    b_buffInit(nullptr, tag);
    b_buffTerm(nullptr);
    b_buffReset(nullptr);
    b_buffSetStatic(nullptr, kView, 1);
    EXPECT_EQ(b_buffLength(nullptr), 0u);
    EXPECT_EQ(b_buffIncreaseSize(nullptr, 1), eINVNULLARG);
    EXPECT_EQ(b_buffExpand(nullptr, 1), eINVNULLARG);
    EXPECT_EQ(b_buffCopy(nullptr, &buffer), eINVNULLARG);
    EXPECT_EQ(b_buffCopy(&buffer, nullptr), eINVNULLARG);
    EXPECT_EQ(b_buffCopyPartial(nullptr, 1, &buffer), eINVNULLARG);
    EXPECT_EQ(b_buffDuplicate(nullptr), eINVNULLARG);
    EXPECT_EQ(b_buffEmitByte(nullptr, 1), eINVNULLARG);
    EXPECT_EQ(b_buffEmitChar(nullptr, 1), eINVNULLARG);
    EXPECT_EQ(b_buffEmitBytesBulk(nullptr, kView, 1), eINVNULLARG);
    EXPECT_EQ(b_buffEmitBytesBulk(&buffer, nullptr, 1), eINVNULLARG);
    EXPECT_EQ(b_buffEmitString(nullptr, ""), eINVNULLARG);
    EXPECT_EQ(b_buffEmitString(&buffer, nullptr), eINVNULLARG);
    EXPECT_EQ(b_buffAllocateBuffer(nullptr, 1, &place), eINVNULLARG);
    EXPECT_EQ(b_buffAllocateBuffer(&buffer, 1, nullptr), eINVNULLARG);
    EXPECT_EQ(b_buffPad(nullptr, 1), eINVNULLARG);
    EXPECT_EQ(b_buffInputByte(nullptr, &byte), eINVNULLARG);
    EXPECT_EQ(b_buffInputByte(&buffer, nullptr), eINVNULLARG);
    EXPECT_EQ(b_buffInputBytesBulk(nullptr, 1, &byte, nullptr), eINVNULLARG);
    EXPECT_EQ(b_buffInputBytesBulk(&buffer, 1, nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(b_buffSeek(nullptr, 0), eINVNULLARG);
    EXPECT_EQ(buffer.len, 0u);
}

TEST(ByteBuffer, RefusesSizesThatNoMemoryHas) {
    oaktest::Tag tag;
    Buffer buffer(tag);
    void *place = nullptr;
    ASSERT_EQ(b_buffEmitString(&buffer, "abc"), sOKAY);
    EXPECT_EQ(b_buffExpand(&buffer, SIZE_MAX), eNOMEMORY);
    EXPECT_EQ(b_buffExpand(&buffer, SIZE_MAX - 3), eNOMEMORY);
    EXPECT_EQ(b_buffIncreaseSize(&buffer, SIZE_MAX), eNOMEMORY);
    EXPECT_EQ(b_buffAllocateBuffer(&buffer, SIZE_MAX, &place), eNOMEMORY);
    EXPECT_EQ(b_buffAllocateBuffer(&buffer, SIZE_MAX - 3, &place), eNOMEMORY);
    EXPECT_EQ(b_buffPad(&buffer, SIZE_MAX), eNOMEMORY);
    EXPECT_EQ(buffer.text(), "abc");
    EXPECT_EQ(buffer.size, 3u);
    EXPECT_EQ(place, nullptr);
    b_buffSetStatic(&buffer, kView, SIZE_MAX);
    EXPECT_EQ(b_buffPad(&buffer, 1024), eNOMEMORY);
}

// Every call that grows, on a buffer that holds "abc" and on a view of it: a failure
// leaves what was there.
TEST(ByteBuffer, StaysAsItWasWhenMemoryEnds) {
    oaktest::Tag tag;
    void *place = nullptr;
    OAK_BUFFER more;
    b_buffInit(&more, OSL_TAG_PROCESS);
    b_buffSetStatic(&more, "0123456789012345678901234567890123456789", 40);
    Buffer bytes(OSL_TAG_PROCESS);
    ASSERT_EQ(b_buffEmitString(&bytes, "0123456789012345678901234567890123456789"), sOKAY);
    const std::function<OAK_RETCODE(OAK_BUFFER *)> writes[] = {
        [](OAK_BUFFER *b) { return b_buffEmitByte(b, 'x'); },
        [](OAK_BUFFER *b) { return b_buffEmitString(b, "0123456789012345678901234567890123"); },
        [&](OAK_BUFFER *b) { return b_buffAllocateBuffer(b, 100, &place); },
        [](OAK_BUFFER *b) { return b_buffIncreaseSize(b, 100); },
        [](OAK_BUFFER *b) { return b_buffExpand(b, 100); },
        [](OAK_BUFFER *b) { return b_buffPad(b, 100); },
        [&](OAK_BUFFER *b) { return b_buffCopy(&more, b); },
        [&](OAK_BUFFER *b) { return b_buffCopy(&bytes, b); },
        [&](OAK_BUFFER *b) { return oak::buff_append_as_bytes(b, more.data, 40); },
    };
    for (const bool owned : {false, true}) {
        for (const auto &write : writes) {
            const uint64_t runs =
                oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
                    Buffer buffer(tag);
                    b_buffSetStatic(&buffer, "abc", 3);
                    OAK_RETCODE rc = owned ? b_buffDuplicate(&buffer) : sOKAY;
                    const bool begun = rc == sOKAY;
                    rc = begun ? write(&buffer) : rc;
                    if (rc != sOKAY) {
                        EXPECT_EQ(buffer.text(), "abc");
                        EXPECT_EQ(buffer.size, begun && owned ? 3u : 0u);
                    }
                    return rc;
                });
            EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
        }
    }
}

// What fits is written before the run of bytes fails, as single bytes would have been.
TEST(ByteBuffer, WritesWhatFitsOfARunWhenMemoryEnds) {
    oaktest::Tag tag;
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        Buffer buffer(tag);
        OAK_RETCODE rc = b_buffEmitByte(&buffer, '0');
        if (rc != sOKAY) {
            return rc;
        }
        rc = oak::buff_append_as_bytes(&buffer,
                                       reinterpret_cast<const uint8_t *>("123456789012345678"), 18);
        EXPECT_EQ(buffer.text(), rc == sOKAY ? "0123456789012345678" : "0123456789012345");
        return rc;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

} // namespace
