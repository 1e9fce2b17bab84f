// One-character input over memory and files: what comes out, in what order, how
// it is set back, and how it fails.
#include "input.h"

#include <string>
#include <string_view>

#include "lex_internal.h"
#include "test_support.h"

namespace {

// A file with the given content in the temporary directory, open for reading.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::string &content) {
        uint32_t counter = 0;
        name_ = osl_fileCreateTmpName(&counter, "inputtest", 0, 0, tag_);
        handle_ = osl_fileOpen(name_, OSL_OPEN_TRUNCATE, 0);
        EXPECT_NE(handle_, nullptr);
        append(content);
        seek(0);
    }
    ~TemporaryFile() {
        osl_fileClose(handle_);
        EXPECT_EQ(osl_fileRemove(name_), sOKAY);
        OSL_FREE(name_, tag_);
    }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    void append(const std::string &content) {
        const auto size = static_cast<uint32_t>(content.size());
        EXPECT_EQ(osl_fileSeekWrite(handle_, osl_fileLength(handle_), content.data(), size), size);
    }
    void seek(uint64_t offset) {
        EXPECT_EQ(osl_fileSeek(handle_, offset, OSL_SEEK_START, nullptr), sOKAY);
    }
    void cut(uint64_t size) { EXPECT_EQ(osl_fileSetSize(handle_, size), sOKAY); }
    OSL_FH handle() const { return handle_; }

  private:
    oaktest::Tag tag_;
    char *name_ = nullptr;
    OSL_FH handle_ = nullptr;
};

// The text is borrowed.
OAK_INPUT_OBJ open_memory(std::string_view text, OSL_MEMTAG tag) {
    OAK_INPUT_OBJ input = nullptr;
    EXPECT_EQ(b_inputCreateFromMemory(&input, reinterpret_cast<const uint8_t *>(text.data()),
                                      text.size(), tag),
              sOKAY);
    return input;
}

OAK_INPUT_OBJ open_file(const TemporaryFile &file, OSL_MEMTAG tag) {
    OAK_INPUT_OBJ input = nullptr;
    EXPECT_EQ(b_inputCreateFromFile(&input, file.handle(), tag), sOKAY);
    return input;
}

B_CHAR read_one(OAK_INPUT_OBJ input) {
    B_CHAR ch = 0xDEAD;
    EXPECT_EQ(b_inputRead(input, &ch), sOKAY);
    return ch;
}

std::string read_some(OAK_INPUT_OBJ input, size_t count) {
    std::string text;
    for (; count != 0; --count) {
        text += static_cast<char>(read_one(input));
    }
    return text;
}

// A text in which every place of 1024 differs from its neighbours, without zeros.
std::string pattern(size_t size) {
    std::string text;
    for (size_t i = 0; i < size; ++i) {
        text += static_cast<char>(1 + (i * 7 + i / 1024 * 31) % 255);
    }
    return text;
}

// ---- Memory ----------------------------------------------------------------

TEST(MemoryInput, GivesEachByteThenZeroForEver) {
    oaktest::Tag tag;
    const std::string text("a\xFF\x80z", 4);
    OAK_INPUT_OBJ input = open_memory(text, tag);
    for (const B_CHAR expected : {0x61u, 0xFFu, 0x80u, 0x7Au, 0u, 0u, 0u}) {
        EXPECT_EQ(read_one(input), expected);
    }
    b_inputClose(input);
}

TEST(MemoryInput, ReadsNoFurtherThanItsSize) {
    oaktest::Tag tag;
    OAK_INPUT_OBJ input = nullptr;
    ASSERT_EQ(b_inputCreateFromMemory(&input, reinterpret_cast<const uint8_t *>("abc"), 2, tag),
              sOKAY);
    EXPECT_EQ(read_some(input, 3), std::string("ab\0", 3));
    b_inputClose(input);
}

TEST(MemoryInput, ZeroByteInsideDoesNotEndTheReading) {
    oaktest::Tag tag;
    const std::string text("a\0b", 3);
    OAK_INPUT_OBJ input = open_memory(text, tag);
    EXPECT_EQ(read_some(input, 4), std::string("a\0b\0", 4));
    b_inputClose(input);
}

TEST(MemoryInput, MayBeEmptyAndNull) {
    oaktest::Tag tag;
    OAK_INPUT_OBJ input = nullptr;
    ASSERT_EQ(b_inputCreateFromMemory(&input, nullptr, 0, tag), sOKAY);
    EXPECT_EQ(read_one(input), 0u);
    EXPECT_EQ(b_inputRewind(input, nullptr), sOKAY);
    EXPECT_EQ(read_one(input), 0u);
    b_inputClose(input);
}

TEST(MemoryInput, RewindsToAPointAnyNumberOfTimes) {
    oaktest::Tag tag;
    OAK_INPUT_OBJ input = open_memory("abcdef", tag);
    EXPECT_EQ(read_some(input, 2), "ab");
    OAK_REWIND_POINT_OBJ point = nullptr;
    ASSERT_EQ(b_inputCreateRewindPoint(input, &point), sOKAY);
    EXPECT_EQ(tag.live(), oaktest::faults_are_injected() ? 2u : 0u) << "input and point";
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(read_some(input, 5), std::string("cdef\0", 5));
        ASSERT_EQ(b_inputRewind(input, point), sOKAY);
    }
    ASSERT_EQ(b_inputRewind(input, nullptr), sOKAY);
    EXPECT_EQ(read_some(input, 3), "abc");
    OSL_FREE(point, tag);
    b_inputClose(input);
}

TEST(MemoryInput, PointAtTheEndIsTheEnd) {
    oaktest::Tag tag;
    OAK_INPUT_OBJ input = open_memory("ab", tag);
    EXPECT_EQ(read_some(input, 3), std::string("ab\0", 3));
    OAK_REWIND_POINT_OBJ point = nullptr;
    ASSERT_EQ(b_inputCreateRewindPoint(input, &point), sOKAY);
    ASSERT_EQ(b_inputRewind(input, nullptr), sOKAY);
    ASSERT_EQ(b_inputRewind(input, point), sOKAY);
    EXPECT_EQ(read_one(input), 0u);
    OSL_FREE(point, tag);
    b_inputClose(input);
}

// ---- Files -----------------------------------------------------------------

TEST(FileInput, ReadsFilesOfAllSizesAroundABlock) {
    oaktest::Tag tag;
    for (const size_t size : {0u, 1u, 2u, 1023u, 1024u, 1025u, 2047u, 2048u, 2049u, 5000u}) {
        const std::string content = pattern(size);
        TemporaryFile file(content);
        OAK_INPUT_OBJ input = open_file(file, tag);
        EXPECT_EQ(read_some(input, size), content) << size;
        EXPECT_EQ(read_one(input), 0u);
        EXPECT_EQ(read_one(input), 0u);
        b_inputClose(input);
    }
}

TEST(FileInput, StartsAtTheFilesOffset) {
    oaktest::Tag tag;
    const std::string content = pattern(4000);
    TemporaryFile file(content);
    for (const size_t start : {0u, 1u, 700u, 1023u, 1024u, 1025u, 2048u, 3999u, 4000u}) {
        file.seek(start);
        OAK_INPUT_OBJ input = open_file(file, tag);
        EXPECT_EQ(read_some(input, 4000 - start), content.substr(start)) << start;
        EXPECT_EQ(read_one(input), 0u);
        b_inputClose(input);
    }
}

TEST(FileInput, StartBehindTheEndIsEmpty) {
    oaktest::Tag tag;
    TemporaryFile file("abc");
    file.seek(10);
    OAK_INPUT_OBJ input = open_file(file, tag);
    EXPECT_EQ(read_one(input), 0u);
    b_inputClose(input);
}

TEST(FileInput, RewindsToItsOwnStart) {
    oaktest::Tag tag;
    const std::string content = pattern(3000);
    TemporaryFile file(content);
    file.seek(500);
    OAK_INPUT_OBJ input = open_file(file, tag);
    for (const size_t count : {1u, 1024u, 1025u, 2500u}) {
        EXPECT_EQ(read_some(input, count), content.substr(500, count));
        ASSERT_EQ(b_inputRewind(input, nullptr), sOKAY);
    }
    b_inputClose(input);
}

TEST(FileInput, RewindsToPointsOnBothSidesOfABlockBorder) {
    oaktest::Tag tag;
    const std::string content = pattern(3000);
    TemporaryFile file(content);
    file.seek(3);
    OAK_INPUT_OBJ input = open_file(file, tag);
    for (const size_t place : {0u, 1u, 1020u, 1023u, 1024u, 1025u, 2048u, 2996u, 2997u}) {
        ASSERT_EQ(b_inputRewind(input, nullptr), sOKAY);
        read_some(input, place);
        OAK_REWIND_POINT_OBJ point = nullptr;
        ASSERT_EQ(b_inputCreateRewindPoint(input, &point), sOKAY);
        const std::string rest = content.substr(3 + place);
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(read_some(input, rest.size()), rest) << place;
            EXPECT_EQ(read_one(input), 0u);
            ASSERT_EQ(b_inputRewind(input, point), sOKAY);
        }
        OSL_FREE(point, tag);
    }
    b_inputClose(input);
}

TEST(FileInput, ReadsOnAfterItsEndWasReached) {
    oaktest::Tag tag;
    TemporaryFile file("abc");
    OAK_INPUT_OBJ input = open_file(file, tag);
    EXPECT_EQ(read_some(input, 4), std::string("abc\0", 4));
    ASSERT_EQ(b_inputRewind(input, nullptr), sOKAY);
    EXPECT_EQ(read_some(input, 4), std::string("abc\0", 4));
    b_inputClose(input);
}

TEST(FileInput, SizeIsThatOfTheOpening) {
    oaktest::Tag tag;
    TemporaryFile file("abc");
    OAK_INPUT_OBJ input = open_file(file, tag);
    file.append("def");
    EXPECT_EQ(read_some(input, 4), std::string("abc\0", 4));
    b_inputClose(input);
}

TEST(FileInput, DoesNotCareWhereTheHandleIsMovedMeanwhile) {
    oaktest::Tag tag;
    const std::string content = pattern(2500);
    TemporaryFile file(content);
    OAK_INPUT_OBJ input = open_file(file, tag);
    EXPECT_EQ(read_some(input, 1000), content.substr(0, 1000));
    file.seek(17);
    EXPECT_EQ(read_some(input, 1500), content.substr(1000));
    b_inputClose(input);
}

TEST(FileInput, FileThatBecameShorterIsABadReadAndTheRestStaysReadable) {
    oaktest::Tag tag;
    const std::string content = pattern(3000);
    TemporaryFile file(content);
    OAK_INPUT_OBJ input = open_file(file, tag);
    EXPECT_EQ(read_some(input, 1024), content.substr(0, 1024));
    file.cut(2000);
    B_CHAR ch = 0xDEAD;
    EXPECT_EQ(b_inputRead(input, &ch), eBADREAD) << "1024 bytes were promised, 976 are there";
    EXPECT_EQ(ch, 0xDEADu);
    EXPECT_EQ(b_inputRead(input, &ch), eBADREAD) << "and it stays so";
    file.append(content.substr(2000));
    EXPECT_EQ(read_some(input, 1976), content.substr(1024)) << "until the file is whole again";
    EXPECT_EQ(read_one(input), 0u);
    b_inputClose(input);
}

TEST(FileInput, FailedLoadForgetsTheBlockBeforeIt) {
    oaktest::Tag tag;
    const std::string content = pattern(2048);
    TemporaryFile file(content);
    OAK_INPUT_OBJ input = open_file(file, tag);
    EXPECT_EQ(read_some(input, 1024), content.substr(0, 1024));
    file.cut(0);
    B_CHAR ch = 0;
    EXPECT_EQ(b_inputRead(input, &ch), eBADREAD);
    ASSERT_EQ(b_inputRewind(input, nullptr), sOKAY);
    EXPECT_EQ(b_inputRead(input, &ch), eBADREAD);
    b_inputClose(input);
}

// ---- Arguments and failures ------------------------------------------------

TEST(Input, NullArgumentsAreRefused) {
    oaktest::Tag tag;
    TemporaryFile file("abc");
    OAK_INPUT_OBJ input = nullptr;
    const uint8_t byte = 0;
    EXPECT_EQ(b_inputCreateFromMemory(nullptr, &byte, 1, tag), eINVNULLARG);
    EXPECT_EQ(b_inputCreateFromMemory(&input, nullptr, 1, tag), eINVNULLARG);
    EXPECT_EQ(b_inputCreateFromFile(nullptr, file.handle(), tag), eINVNULLARG);
    EXPECT_EQ(b_inputCreateFromFile(&input, nullptr, tag), eINVNULLARG);
    EXPECT_EQ(input, nullptr);
    input = open_memory("a", tag);
    B_CHAR ch = 0;
    OAK_REWIND_POINT_OBJ point = nullptr;
    EXPECT_EQ(b_inputRead(nullptr, &ch), eINVNULLARG);
    EXPECT_EQ(b_inputRead(input, nullptr), eINVNULLARG);
    EXPECT_EQ(b_inputRewind(nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(b_inputCreateRewindPoint(nullptr, &point), eINVNULLARG);
    EXPECT_EQ(b_inputCreateRewindPoint(input, nullptr), eINVNULLARG);
    EXPECT_EQ(point, nullptr);
    b_inputClose(input);
    b_inputClose(nullptr);
}

// Marks the place, reads to the end, goes back and reads again.
OAK_RETCODE read_twice(OAK_INPUT_OBJ input, OSL_MEMTAG tag) {
    OAK_REWIND_POINT_OBJ point = nullptr;
    OAK_RETCODE rc = b_inputCreateRewindPoint(input, &point);
    for (int round = 0; round < 2 && rc == sOKAY; ++round) {
        B_CHAR ch = 1;
        while (rc == sOKAY && ch != 0) {
            rc = b_inputRead(input, &ch);
        }
        if (rc == sOKAY) {
            rc = b_inputRewind(input, point);
        }
    }
    OSL_FREE(point, tag);
    return rc;
}

// How many failures a sweep over a life of an input injects: `create` opens it.
template <class Create>
uint64_t sweep_life(oaktest::Resource resource, std::initializer_list<OAK_RETCODE> expected,
                    OSL_MEMTAG tag, Create create) {
    return oaktest::sweep_faults(resource, expected, [&] {
        OAK_INPUT_OBJ input = nullptr;
        const OAK_RETCODE rc = create(&input);
        EXPECT_EQ(input != nullptr, rc == sOKAY);
        const OAK_RETCODE read = rc == sOKAY ? read_twice(input, tag) : rc;
        b_inputClose(input);
        return read;
    });
}

TEST(Input, EveryAllocationAndEveryFileOperationMayFail) {
    oaktest::Tag tag;
    TemporaryFile file(pattern(2500));
    const auto from_memory = [&](OAK_INPUT_OBJ *input) {
        return b_inputCreateFromMemory(input, reinterpret_cast<const uint8_t *>("abc"), 3, tag);
    };
    const auto from_file = [&](OAK_INPUT_OBJ *input) {
        return b_inputCreateFromFile(input, file.handle(), tag);
    };
    const uint64_t one = oaktest::faults_are_injected() ? 1 : 0;
    EXPECT_EQ(sweep_life(oaktest::Resource::memory, {eNOMEMORY}, tag, from_memory), 4 * one);
    EXPECT_EQ(sweep_life(oaktest::Resource::memory, {eNOMEMORY}, tag, from_file), 4 * one);
    EXPECT_GE(sweep_life(oaktest::Resource::file, {eBADREAD, eFILEIO}, tag, from_file), 12 * one)
        << "a seek and three blocks, read twice, each failing in two ways";
}

// ---- The window ------------------------------------------------------------

TEST(InputWindow, OfMemoryIsTheRestOfTheText) {
    oaktest::Tag tag;
    OAK_INPUT_OBJ input = open_memory("abcd", tag);
    EXPECT_EQ(input_window(input).size, 4u);
    input_advance(input, 3);
    EXPECT_EQ(input_window(input).size, 1u);
    EXPECT_EQ(input_window(input).bytes[0], 'd');
    EXPECT_EQ(read_one(input), B_CHAR{'d'});
    EXPECT_EQ(input_window(input).size, 0u);
    b_inputClose(input);
}

TEST(InputWindow, OfAFileIsTheRestOfTheBlockThatIsLoaded) {
    oaktest::Tag tag;
    const std::string content = pattern(1100);
    TemporaryFile file(content);
    OAK_INPUT_OBJ input = open_file(file, tag);
    EXPECT_EQ(input_window(input).size, 0u) << "nothing is read before it is asked for";
    read_one(input);
    EXPECT_EQ(input_window(input).size, 1023u);
    input_advance(input, 1023);
    EXPECT_EQ(input_window(input).size, 0u);
    EXPECT_EQ(read_one(input), static_cast<uint8_t>(content[1024]));
    EXPECT_EQ(input_window(input).size, 75u);
    ASSERT_EQ(b_inputRewind(input, nullptr), sOKAY);
    EXPECT_EQ(input_window(input).size, 0u) << "the block in memory is another";
    EXPECT_EQ(read_one(input), static_cast<uint8_t>(content[0]));
    b_inputClose(input);
}

} // namespace
