// Building and printing text: formats, long texts, growth, callbacks, tokens.
#include <clocale>
#include <cstdarg>
#include <cstring>
#include <limits>

#include "test_support.h"

namespace {

/// Puts the process under a decimal comma for a scope, where the machine has
/// such a locale.
class CommaLocale {
  public:
    CommaLocale() : old_(std::setlocale(LC_ALL, nullptr)) {
        set_ = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    }
    ~CommaLocale() { std::setlocale(LC_ALL, old_.c_str()); }
    CommaLocale(const CommaLocale &) = delete;
    CommaLocale &operator=(const CommaLocale &) = delete;
    bool set() const { return set_; }

  private:
    std::string old_;
    bool set_ = false;
};

/// Collects what goes through an output callback and fails after `room` bytes.
struct Sink {
    std::string text{};
    size_t room = std::numeric_limits<size_t>::max();
};

OAK_RETCODE emit(OAK_OUTPUT_CTX ctx, uint32_t byte) {
    auto *sink = static_cast<Sink *>(ctx);
    if (sink->text.size() == sink->room) {
        return eEOD;
    }
    EXPECT_LE(byte, 255u);
    sink->text.push_back(static_cast<char>(byte));
    return sOKAY;
}

OAK_RETCODE positive(OAK_OUTPUT_CTX, uint32_t) {
    return sTRUNCATE;
}

char *make_v(OSL_MEMTAG tag, const char *format, ...) OSL_PRINTF_LIKE(2, 3);
char *make_v(OSL_MEMTAG tag, const char *format, ...) {
    va_list args;
    va_start(args, format);
    char *text = osl_makeStrV(__FILE__, __LINE__, tag, format, args);
    va_end(args);
    return text;
}

// The same functions without the compiler's check of formats.
OAK_RETCODE(*const print_unchecked)
(OAK_OUTPUT_FCN, OAK_OUTPUT_CTX, const char *, ...) = osl_fnprintf;
OAK_RETCODE(*const make_unchecked)
(const char *, int32_t, char **, OSL_MEMTAG, const char *, ...) = osl_makeStrVA_rc;
OAK_RETCODE(*const append_unchecked)
(const char *, int32_t, char **, OSL_MEMTAG, char *, const char *, ...) = osl_appendStrVA_rc;

/// Lengths around the bounds inside: short texts, and those that need a block.
constexpr size_t kLengths[] = {0, 1, 2, 510, 511, 512, 513, 1000, 5000, 100000};

} // namespace

// ---- osl_snprintf -----------------------------------------------------------

TEST(Snprintf, PrintsAsTheStandardDoes) {
    char text[100];
    EXPECT_EQ(osl_snprintf(text, sizeof text, "%d|%5s|%-5s|%05d|%x|%lu|%%|%c", -7, "ab", "cd", 42,
                           255u, 18446744073709551615ul, 'z'),
              48);
    EXPECT_STREQ(text, "-7|   ab|cd   |00042|ff|18446744073709551615|%|z");
}

TEST(Snprintf, MeasuresWithoutABuffer) {
    EXPECT_EQ(osl_snprintf(nullptr, 0, "%s", "twelve chars"), 12);
    EXPECT_EQ(osl_snprintf(nullptr, 0, "%s", ""), 0);
}

TEST(Snprintf, CutsAndTerminates) {
    char text[8];
    std::memset(text, 'x', sizeof text);
    EXPECT_EQ(osl_snprintf(text, 4, "%s", "abcdef"), 6);
    EXPECT_EQ(std::memcmp(text, "abc\0xxxx", 8), 0);
}

TEST(Snprintf, PrintsAPointUnderACommaLocale) {
    const CommaLocale comma;
    if (!comma.set()) {
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    }
    char text[64];
    std::snprintf(text, sizeof text, "%.2f", 1.5);
    ASSERT_STREQ(text, "1,50") << "the locale is in force";
    osl_snprintf(text, sizeof text, "%.2f %g %e %a", 1.5, 2.25, 3.5, 0.5);
    EXPECT_STREQ(text, "1.50 2.25 3.500000e+00 0x1p-1");
    std::snprintf(text, sizeof text, "%.2f", 1.5);
    EXPECT_STREQ(text, "1,50") << "the process's locale is as before";
    Sink sink;
    EXPECT_EQ(osl_fnprintf(emit, &sink, "%.17g", 0.1), sOKAY);
    EXPECT_EQ(sink.text, "0.10000000000000001");
    oaktest::Tag tag;
    char *made = osl_makeStrVA("", 0, tag, "%g", 0.5);
    EXPECT_STREQ(made, "0.5");
    OSL_FREE(made, tag);
}

// ---- osl_makeStr, osl_appendStr ---------------------------------------------

TEST(MakeStr, MakesTextsOfEveryLength) {
    oaktest::Tag tag;
    for (const size_t length : kLengths) {
        const std::string source(length, 'o');
        char *texts[3] = {osl_makeStrVA(__FILE__, __LINE__, tag, "%s", source.c_str()),
                          make_v(tag, "%s", source.c_str()), nullptr};
        EXPECT_EQ(osl_makeStrVA_rc(__FILE__, __LINE__, &texts[2], tag, "%s", source.c_str()),
                  sOKAY);
        for (char *text : texts) {
            ASSERT_NE(text, nullptr);
            EXPECT_EQ(source, text);
            OSL_FREE(text, tag);
        }
    }
}

TEST(MakeStr, RefusesMissingArguments) {
    oaktest::Tag tag;
    char *text = nullptr;
    EXPECT_EQ(osl_makeStrVA_rc("", 0, nullptr, tag, "x"), eINVNULLARG);
    EXPECT_EQ(osl_makeStrVA_rc("", 0, &text, nullptr, "x"), eINVNULLARG);
    EXPECT_EQ(make_unchecked("", 0, &text, tag, nullptr), eINVNULLARG);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(osl_makeStrVA("", 0, nullptr, "x"), nullptr);
}

TEST(AppendStr, ExtendsTheOldText) {
    oaktest::Tag tag;
    char *text = osl_appendStrVA("", 0, tag, nullptr, "%s=%d", "cache_size", 64);
    EXPECT_STREQ(text, "cache_size=64");
    text = osl_appendStrVA("", 0, tag, text, ";%s", "durability=consistent");
    EXPECT_STREQ(text, "cache_size=64;durability=consistent");
    EXPECT_EQ(osl_appendStrVA_rc("", 0, &text, tag, text, "!"), sOKAY);
    EXPECT_STREQ(text, "cache_size=64;durability=consistent!");
    OSL_FREE(text, tag);
    text = nullptr;
    EXPECT_EQ(osl_appendStrVA_rc("", 0, &text, tag, nullptr, "new"), sOKAY);
    EXPECT_STREQ(text, "new");
    OSL_FREE(text, tag);
}

TEST(AppendStr, TakesAdditionsOfEveryLength) {
    oaktest::Tag tag;
    std::string expected;
    char *text = nullptr;
    for (const size_t length : kLengths) {
        const std::string addition(length, static_cast<char>('a' + expected.size() % 26));
        expected += addition;
        text = osl_appendStrVA("", 0, tag, text, "%s", addition.c_str());
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(expected, text);
    }
    OSL_FREE(text, tag);
}

TEST(AppendStr, MayPrintTheOldTextItself) {
    oaktest::Tag tag;
    std::string expected = "oak";
    char *text = static_cast<char *>(OSL_GET_STRING("oak", tag));
    for (int i = 0; i < 12; ++i) {
        text = osl_appendStrVA("", 0, tag, text, "+%s", text);
        expected += "+" + expected;
        ASSERT_EQ(expected, text);
    }
    OSL_FREE(text, tag);
}

TEST(AppendStr, RefusesMissingArguments) {
    oaktest::Tag tag;
    char *old = static_cast<char *>(OSL_GET_STRING("oak", tag));
    char *text = nullptr;
    EXPECT_EQ(osl_appendStrVA_rc("", 0, nullptr, tag, old, "x"), eINVNULLARG);
    EXPECT_EQ(append_unchecked("", 0, &text, tag, old, nullptr), eINVNULLARG);
    EXPECT_EQ(osl_appendStrVA_rc("", 0, &text, nullptr, old, "x"), eINVNULLARG);
    EXPECT_EQ(text, nullptr);
    EXPECT_STREQ(old, "oak");
    OSL_FREE(old, tag);
}

TEST(AppendStr, LeavesTheOldTextToTheCallerWhenItFails) {
    oaktest::Tag tag;
    const std::string long_text(3000, 'x');
    const uint64_t failures = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        char *old = osl_makeStrVA("", 0, tag, "%s", long_text.c_str());
        if (old == nullptr) {
            return eNOMEMORY;
        }
        char *text = nullptr;
        const OAK_RETCODE status =
            osl_appendStrVA_rc("", 0, &text, tag, old, "%s", long_text.c_str());
        EXPECT_EQ(text == nullptr, status != sOKAY);
        EXPECT_EQ(text == nullptr ? long_text : long_text + long_text,
                  text == nullptr ? old : text);
        OSL_FREE(text == nullptr ? old : text, tag);
        return status;
    });
    EXPECT_EQ(failures, oaktest::faults_are_injected() ? 6u : 0u);
}

TEST(AppendStr, CopiesALinearAmountInAll) {
#ifdef OSL_SEPARATE_BLOCKS
    GTEST_SKIP() << "every growth moves the block";
#endif
    oaktest::Tag tag;
    char *text = nullptr;
    size_t copied = 0;
    for (size_t length = 0; length < 20000; ++length) {
        char *moved = osl_appendStrVA("", 0, tag, text, "x");
        copied += moved != text ? length : 0;
        text = moved;
    }
    EXPECT_LE(copied, 3u * 20000u);
    OSL_FREE(text, tag);
}

// ---- Output callbacks -------------------------------------------------------

TEST(Fnprintf, SendsTextsOfEveryLength) {
    for (const size_t length : kLengths) {
        const std::string source(length, 'q');
        Sink sink;
        EXPECT_EQ(osl_fnprintf(emit, &sink, "%s", source.c_str()), sOKAY);
        EXPECT_EQ(sink.text, source);
    }
}

TEST(Fnprintf, PrintsTheFormatsThatTheLibraryUses) {
    Sink sink;
    EXPECT_EQ(osl_fnprintf(emit, &sink, "%ld %lu %.17g e%+04hd %02X %4.4x-%2.2x", -5L, 7ul, 1e300,
                           static_cast<short>(-7), 10u, 0xabcu, 5u),
              sOKAY);
    EXPECT_EQ(sink.text, "-5 7 1.0000000000000001e+300 e-007 0A 0abc-05");
}

TEST(Fnprintf, ReturnsTheCallbacksStatus) {
    for (const size_t room : {0, 1, 4}) {
        Sink sink{.room = room};
        EXPECT_EQ(osl_fnprintf(emit, &sink, "%d", 12345), eEOD);
        EXPECT_EQ(sink.text, std::string("12345").substr(0, room));
        Sink plain{.room = room};
        EXPECT_EQ(osl_outputString(emit, &plain, "12345"), eEOD);
        EXPECT_EQ(plain.text, sink.text);
    }
    EXPECT_EQ(osl_fnprintf(positive, nullptr, "%d", 1), sTRUNCATE);
    EXPECT_EQ(osl_outputString(positive, nullptr, "1"), sTRUNCATE);
    EXPECT_EQ(osl_outputString(positive, nullptr, ""), sOKAY);
}

TEST(Fnprintf, SendsTheBytesOfUtf8AsTheyStand) {
    const char *text = "Öl ‰ 𝄞 \xff";
    Sink sink;
    EXPECT_EQ(osl_fnprintf(emit, &sink, "%s", text), sOKAY);
    EXPECT_EQ(osl_outputString(emit, &sink, text), sOKAY);
    EXPECT_EQ(sink.text, std::string(text) + text);
}

TEST(Fnprintf, SendsUtf8IntoACharacterBufferAsItStands) {
    char buffer[100];
    OAK_OUTPUT_BUFF out;
    osl_utf8BuffInit(&out, buffer, sizeof buffer);
    EXPECT_EQ(osl_fnprintf(osl_emitCharAsUtf8, &out, "%s=%d", "Öl‰𝄞", 1), sOKAY);
    EXPECT_EQ(osl_outputString(osl_emitCharAsUtf8, &out, "é"), sOKAY);
    EXPECT_EQ(out.used_elems, 7u);
    osl_utf8BuffTerm(&out);
    EXPECT_STREQ(buffer, "Öl‰𝄞=1é");
    EXPECT_EQ(out.used_chars, 2u + 1 + 3 + 4 + 2 + 2 + 1);
    EXPECT_EQ(out.needed_chars, out.used_chars);
}

TEST(Fnprintf, RefusesMissingArguments) {
    Sink sink;
    EXPECT_EQ(osl_fnprintf(nullptr, &sink, "x"), eINVNULLARG);
    EXPECT_EQ(print_unchecked(emit, &sink, nullptr), eINVNULLARG);
    EXPECT_EQ(osl_outputString(nullptr, &sink, "x"), eINVNULLARG);
    EXPECT_EQ(osl_outputString(emit, &sink, nullptr), eINVNULLARG);
}

TEST(Fnprintf, ReportsExhaustionForALongText) {
    const std::string source(2000, 'x');
    const uint64_t failures = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        Sink sink;
        const OAK_RETCODE status = osl_fnprintf(emit, &sink, "%s", source.c_str());
        EXPECT_EQ(sink.text, status == sOKAY ? source : "");
        return status;
    });
    EXPECT_EQ(failures, oaktest::faults_are_injected() ? 2u : 0u);
}

TEST(Format, ThatCannotBePrintedIsRefused) {
    // A wide text whose characters the C locale does not have.
    oaktest::Tag tag;
    Sink sink;
    char *text = nullptr;
    char old[] = "old";
    const wchar_t *wide = L"\u20ac";
    EXPECT_LT(osl_snprintf(nullptr, 0, "%ls", wide), 0);
    EXPECT_EQ(osl_fnprintf(emit, &sink, "%ls", wide), eINVARG);
    EXPECT_EQ(osl_makeStrVA_rc("", 0, &text, tag, "%ls", wide), eINVARG);
    EXPECT_EQ(osl_appendStrVA_rc("", 0, &text, tag, old, "%ls", wide), eINVARG);
    EXPECT_EQ(text, nullptr);
}

// ---- osl_strncpyZ -----------------------------------------------------------

TEST(StrncpyZ, CopiesWhatFitsAndTerminates) {
    struct Row {
        const char *source;
        size_t size;
        const char *copied;
    };
    const Row rows[] = {{"oak", 10, "oak"}, {"oak", 4, "oak"}, {"oak", 3, "oa"}, {"oak", 2, "o"},
                        {"oak", 1, ""},     {"", 1, ""},       {"", 5, ""},      {nullptr, 5, ""}};
    for (const Row &row : rows) {
        char text[10];
        std::memset(text, 'x', sizeof text);
        EXPECT_EQ(osl_strncpyZ(text, row.source, row.size), text);
        EXPECT_STREQ(text, row.copied);
        for (size_t i = row.size; i < sizeof text; ++i) {
            EXPECT_EQ(text[i], 'x') << "nothing is written beyond the size";
        }
    }
}

TEST(StrncpyZ, WritesNothingWithoutRoom) {
    char text[] = "old";
    EXPECT_EQ(osl_strncpyZ(text, "new", 0), text);
    EXPECT_STREQ(text, "old");
    EXPECT_EQ(osl_strncpyZ(nullptr, "new", 3), nullptr);
}

TEST(StrncpyZ, LooksAtNoMoreOfTheSourceThanItCopies) {
    const char unterminated[3] = {'o', 'a', 'k'};
    char text[4];
    osl_strncpyZ(text, unterminated, sizeof text);
    EXPECT_STREQ(text, "oak");
}

// ---- osl_tokenize -----------------------------------------------------------

TEST(Tokenize, SplitsAtEveryDelimiter) {
    struct Row {
        const char *text;
        const char *delimiters;
        std::vector<std::string> tokens;
    };
    const Row rows[] = {
        {"en-US", "-", {"en", "US"}},
        {"one", "-", {"one"}},
        {"", "-", {""}},
        {"-", "-", {"", ""}},
        {"--", "-", {"", "", ""}},
        {"a--b", "-", {"a", "", "b"}},
        {"-a-", "-", {"", "a", ""}},
        {"a-b_c-d", "-_", {"a", "b", "c", "d"}},
        {"a-b", "", {"a-b"}},
    };
    for (const Row &row : rows) {
        std::string text = row.text;
        char **tokens = nullptr;
        uint32_t count = 0;
        ASSERT_EQ(osl_tokenize(text.data(), row.delimiters, &tokens, &count, 1, 1), sOKAY);
        EXPECT_EQ(std::vector<std::string>(tokens, tokens + count), row.tokens) << row.text;
        EXPECT_EQ(tokens[0], text.data()) << "in place";
        OSL_FREE(tokens, OSL_TAG_PROCESS);
    }
}

TEST(Tokenize, RefusesMissingArguments) {
    char text[] = "a-b";
    char **tokens = nullptr;
    uint32_t count = 0;
    EXPECT_EQ(osl_tokenize(nullptr, "-", &tokens, &count, 1, 1), eINVNULLARG);
    EXPECT_EQ(osl_tokenize(text, nullptr, &tokens, &count, 1, 1), eINVNULLARG);
    EXPECT_EQ(osl_tokenize(text, "-", nullptr, &count, 1, 1), eINVNULLARG);
    EXPECT_EQ(osl_tokenize(text, "-", &tokens, nullptr, 1, 1), eINVNULLARG);
    EXPECT_STREQ(text, "a-b");
}

TEST(Tokenize, LeavesTheTextWhenMemoryIsExhausted) {
    const uint64_t failures = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [] {
        char text[] = "a-b";
        char **tokens = nullptr;
        uint32_t count = 0;
        const OAK_RETCODE status = osl_tokenize(text, "-", &tokens, &count, 1, 1);
        EXPECT_STREQ(text, status == sOKAY ? "a" : "a-b");
        EXPECT_EQ(count, status == sOKAY ? 2u : 0u);
        OSL_FREE(tokens, OSL_TAG_PROCESS);
        return status;
    });
    EXPECT_EQ(failures, oaktest::faults_are_injected() ? 2u : 0u);
}
