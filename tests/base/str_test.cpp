// The growing string: contents, room, both kinds of tag, and both ways in which a
// failed allocation comes out.
#include "str.h"

#include <csetjmp>
#include <string>

#include "test_support.h"

namespace {

TEST(GrowingString, AppendsAndReadsBack) {
    oaktest::Tag tag;
    B_STR string = nullptr;
    ASSERT_EQ(b_strCreate(&string, nullptr, tag), sOKAY);
    EXPECT_EQ(b_strSize(string), 0u);
    EXPECT_STREQ(b_strString(string), "");
    EXPECT_EQ(b_strAppend(string, "oakbase", 3), sOKAY);
    EXPECT_EQ(b_strAppend(string, "-14", 3), sOKAY);
    EXPECT_EQ(b_strAppend(string, nullptr, 0), sOKAY);
    EXPECT_EQ(b_strSize(string), 6u);
    EXPECT_STREQ(b_strString(string), "oak-14");
    EXPECT_EQ(b_strSize(string), 6u) << "the terminator is not counted";
    EXPECT_EQ(b_strAppend(string, "!", 1), sOKAY);
    EXPECT_STREQ(b_strString(string), "oak-14!");
    b_strDestroy(string);
}

TEST(GrowingString, ReadsZeroBeyondItsEnd) {
    oaktest::Tag tag;
    B_STR string = nullptr;
    ASSERT_EQ(b_strCreate(&string, nullptr, tag), sOKAY);
    EXPECT_EQ(b_strChar(string, 0), '\0');
    ASSERT_EQ(b_strAppend(string, "ab", 2), sOKAY);
    EXPECT_EQ(b_strChar(string, 0), 'a');
    EXPECT_EQ(b_strChar(string, 1), 'b');
    EXPECT_EQ(b_strChar(string, 2), '\0');
    EXPECT_EQ(b_strChar(string, SIZE_MAX), '\0');
    b_strDestroy(string);
}

// Room comes in steps of 256; the terminator asks for its own when a step is full.
TEST(GrowingString, HoldsTextsAroundTheStepsOfItsRoom) {
    oaktest::Tag tag;
    B_STR string = nullptr;
    ASSERT_EQ(b_strCreate(&string, nullptr, tag), sOKAY);
    for (const size_t length : {1, 255, 256, 257, 511, 512, 513, 5000}) {
        const std::string text(length, 'x');
        b_strReset(string, nullptr);
        EXPECT_EQ(b_strSize(string), 0u);
        EXPECT_EQ(b_strAppend(string, text.data(), length), sOKAY);
        EXPECT_EQ(std::string(b_strString(string)), text);
    }
    std::string model;
    b_strReset(string, nullptr);
    for (int i = 0; i < 2000; ++i) {
        const std::string piece = std::to_string(i);
        model += piece;
        ASSERT_EQ(b_strAppend(string, piece.data(), piece.size()), sOKAY);
    }
    EXPECT_EQ(std::string(b_strString(string)), model);
    b_strDestroy(string);
}

TEST(GrowingString, MakesATagOfItsOwnWithoutOne) {
    const oaktest::Live before = oaktest::Live::now();
    B_STR string = nullptr;
    ASSERT_EQ(b_strCreate(&string, nullptr, nullptr), sOKAY);
    ASSERT_EQ(b_strAppend(string, "abc", 3), sOKAY);
    EXPECT_STREQ(b_strString(string), "abc");
    b_strDestroy(string);
    EXPECT_EQ(oaktest::Live::now(), before);
}

TEST(GrowingString, RefusesNullArgumentsAndImpossibleLengths) {
    oaktest::Tag tag;
    B_STR string = nullptr;
    EXPECT_EQ(b_strCreate(nullptr, nullptr, tag), eINVNULLARG);
    ASSERT_EQ(b_strCreate(&string, nullptr, tag), sOKAY);
    EXPECT_EQ(b_strAppend(nullptr, "a", 1), eINVNULLARG);
    EXPECT_EQ(b_strAppend(string, nullptr, 1), eINVNULLARG);
    ASSERT_EQ(b_strAppend(string, "a", 1), sOKAY);
    for (const size_t length : {SIZE_MAX, SIZE_MAX - 1, SIZE_MAX - 256, SIZE_MAX / 2}) {
        EXPECT_EQ(b_strAppend(string, "a", length), eNOMEMORY);
    }
    EXPECT_STREQ(b_strString(string), "a");
    EXPECT_EQ(b_strSize(nullptr), 0u);
    EXPECT_EQ(b_strChar(nullptr, 0), '\0');
    EXPECT_EQ(b_strString(nullptr), nullptr);
    b_strReset(nullptr, nullptr);
    b_strDestroy(nullptr);
    b_strDestroy(string);
}

// Writes a text of 600 bytes piece by piece; the statuses tell of a failure.
OAK_RETCODE write_by_status(OSL_MEMTAG tag) {
    B_STR string = nullptr;
    OAK_RETCODE rc = b_strCreate(&string, nullptr, tag);
    size_t written = 0;
    for (int i = 0; i < 60 && rc == sOKAY; ++i) {
        rc = b_strAppend(string, "0123456789", 10);
        written += rc == sOKAY ? 10 : 0;
    }
    EXPECT_EQ(b_strSize(string), written);
    if (rc == sOKAY && b_strString(string) == nullptr) {
        rc = eNOMEMORY;
    }
    b_strDestroy(string);
    return rc;
}

TEST(GrowingString, ReturnsTheStatusWithoutAJump) {
    oaktest::Tag tag;
    for (OSL_MEMTAG under : {tag.get(), OSL_MEMTAG{nullptr}}) {
        const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY},
                                                    [&] { return write_by_status(under); });
        EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
    }
}

// The same with a jump: after creation no call returns a failure.
OAK_RETCODE write_by_jump(OSL_MEMTAG tag) {
    jmp_buf exit;
    B_STR volatile string = nullptr;
    volatile size_t written = 0;
    const int landed = setjmp(exit);
    if (landed == 0) {
        B_STR made = nullptr;
        const OAK_RETCODE rc = b_strCreate(&made, &exit, tag);
        if (rc != sOKAY) {
            return rc;
        }
        string = made;
        for (int i = 0; i < 60; ++i) {
            EXPECT_EQ(b_strAppend(string, "0123456789", 10), sOKAY);
            written = written + 10;
        }
        EXPECT_NE(b_strString(string), nullptr);
    }
    EXPECT_EQ(b_strSize(string), written) << "what was appended before stays";
    b_strDestroy(string);
    return static_cast<OAK_RETCODE>(landed);
}

TEST(GrowingString, JumpsWithTheStatusWhenAJumpIsSet) {
    oaktest::Tag tag;
    for (OSL_MEMTAG under : {tag.get(), OSL_MEMTAG{nullptr}}) {
        const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY},
                                                    [&] { return write_by_jump(under); });
        EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
    }
}

// b_strReset sets another jump, or none, also on a string whose own tag was made
// with the first one.
TEST(GrowingString, JumpsWhereItWasResetTo) {
    jmp_buf first;
    jmp_buf second;
    B_STR volatile string = nullptr;
    if (setjmp(first) != 0) {
        ADD_FAILURE() << "jumped to the buffer that was replaced";
    } else if (const int landed = setjmp(second); landed == 0) {
        B_STR made = nullptr;
        ASSERT_EQ(b_strCreate(&made, &first, nullptr), sOKAY);
        string = made;
        b_strReset(string, &second);
        (void)b_strAppend(string, "a", SIZE_MAX);
        ADD_FAILURE() << "did not jump";
    } else {
        EXPECT_EQ(landed, eNOMEMORY);
        b_strReset(string, nullptr);
        EXPECT_EQ(b_strAppend(string, "a", SIZE_MAX), eNOMEMORY);
    }
    b_strDestroy(string);
}

} // namespace
