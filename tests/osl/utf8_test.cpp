// UTF-8 at every boundary of its lengths, bounded buffers, locales by name.
#include <cstring>

#include <string.h>

#include "test_support.h"

namespace {

struct Row {
    uint32_t code_point;
    const char *bytes; // hex; empty: no code point
};
const Row kRows[] = {
    {0x00, "00"},       {0x01, "01"},          {0x41, "41"},          {0x7f, "7f"},
    {0x80, "c280"},     {0xe9, "c3a9"},        {0x7ff, "dfbf"},       {0x800, "e0a080"},
    {0x20ac, "e282ac"}, {0xd7ff, "ed9fbf"},    {0xd800, ""},          {0xdbff, ""},
    {0xdc00, ""},       {0xdfff, ""},          {0xe000, "ee8080"},    {0xfffd, "efbfbd"},
    {0xffff, "efbfbf"}, {0x10000, "f0908080"}, {0x1d11e, "f09d849e"}, {0x10ffff, "f48fbfbf"},
    {0x110000, ""},     {0x7fffffff, ""},      {UINT32_MAX, ""},
};

/// Emits the characters into a buffer of `size` bytes and ends it.
OAK_OUTPUT_BUFF emit_all(char *buffer, size_t size, std::initializer_list<uint32_t> characters) {
    OAK_OUTPUT_BUFF out;
    osl_utf8BuffInit(&out, buffer, size);
    for (const uint32_t character : characters) {
        EXPECT_EQ(osl_emitCharAsUtf8(&out, character), sOKAY);
    }
    osl_utf8BuffTerm(&out);
    return out;
}

} // namespace

TEST(Utf8, EncodesEveryLengthAndRefusesWhatIsNoCodePoint) {
    for (const Row &row : kRows) {
        uint8_t bytes[6];
        const uint32_t length = osl_utf8_codes(row.code_point, bytes);
        EXPECT_EQ(oaktest::hex(bytes, length), row.bytes) << std::hex << row.code_point;
    }
    EXPECT_EQ(osl_utf8_codes('x', nullptr), 0u);
}

TEST(Utf8, MakesATerminatedText) {
    for (const Row &row : kRows) {
        char text[5] = "xxxx";
        EXPECT_EQ(osl_uchar_to_utf8(row.code_point, text, sizeof text), text);
        const std::vector<uint8_t> expected = oaktest::unhex(row.bytes);
        EXPECT_EQ(oaktest::hex(text, expected.size()), row.bytes);
        EXPECT_EQ(text[expected.size()], '\0');
    }
}

TEST(Utf8, MakesAnEmptyTextWhereTheCharacterDoesNotFit) {
    char text[5] = "xxxx";
    EXPECT_STREQ(osl_uchar_to_utf8(0x20ac, text, 3), "");
    EXPECT_EQ(text[1], 'x');
    EXPECT_STREQ(osl_uchar_to_utf8(0x20ac, text, 4), "€");
    EXPECT_STREQ(osl_uchar_to_utf8('x', text, 1), "");
    text[0] = 'y';
    osl_uchar_to_utf8('x', text, 0);
    EXPECT_EQ(text[0], 'y');
    EXPECT_EQ(osl_uchar_to_utf8('x', nullptr, 0), nullptr);
}

TEST(OutputBuffer, CountsBytesAndCharacters) {
    char buffer[20];
    const OAK_OUTPUT_BUFF out = emit_all(buffer, sizeof buffer, {'a', 0xe9, 0x20ac, 0x1d11e});
    EXPECT_STREQ(buffer, "aé€𝄞");
    EXPECT_EQ(out.used_elems, 4u);
    EXPECT_EQ(out.needed_elems, 4u);
    EXPECT_EQ(out.used_chars, 11u);
    EXPECT_EQ(out.needed_chars, 11u);
    EXPECT_EQ(out.done, OAK_FALSE);
}

TEST(OutputBuffer, HoldsExactlyWhatFits) {
    char buffer[4];
    const OAK_OUTPUT_BUFF out = emit_all(buffer, sizeof buffer, {'o', 'a', 'k'});
    EXPECT_STREQ(buffer, "oak");
    EXPECT_EQ(out.used_chars, 4u);
    EXPECT_EQ(out.needed_chars, 4u);
    EXPECT_EQ(out.done, OAK_FALSE);
}

TEST(OutputBuffer, KeepsWholeCharactersAndCountsOn) {
    char buffer[4];
    const OAK_OUTPUT_BUFF out = emit_all(buffer, sizeof buffer, {'a', 'b', 0x20ac, 'c'});
    EXPECT_STREQ(buffer, "ab") << "what follows a character that does not fit is left out";
    EXPECT_EQ(out.used_elems, 2u);
    EXPECT_EQ(out.used_chars, 3u);
    EXPECT_EQ(out.needed_elems, 4u);
    EXPECT_EQ(out.needed_chars, 7u);
    EXPECT_EQ(out.done, OAK_TRUE);
}

TEST(OutputBuffer, OfOneByteHoldsTheTerminator) {
    char buffer[2] = "x";
    const OAK_OUTPUT_BUFF out = emit_all(buffer, 1, {'a'});
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_EQ(out.used_chars, 1u);
    EXPECT_EQ(out.needed_chars, 2u);
}

TEST(OutputBuffer, MeasuresWithoutMemory) {
    char buffer[2] = "x";
    for (char *none : {static_cast<char *>(nullptr), buffer}) {
        const OAK_OUTPUT_BUFF out = emit_all(none, 0, {'a', 0x20ac});
        EXPECT_EQ(out.used_chars, 0u);
        EXPECT_EQ(out.used_elems, 0u);
        EXPECT_EQ(out.needed_chars, 5u);
        EXPECT_EQ(out.needed_elems, 2u);
    }
    EXPECT_EQ(buffer[0], 'x');
}

TEST(OutputBuffer, RefusesWhatIsNoCodePoint) {
    char buffer[8];
    OAK_OUTPUT_BUFF out;
    osl_utf8BuffInit(&out, buffer, sizeof buffer);
    EXPECT_EQ(osl_emitCharAsUtf8(&out, 0xd800), eINVUTF);
    EXPECT_EQ(osl_emitCharAsUtf8(&out, 0x110000), eINVUTF);
    EXPECT_EQ(out.needed_chars, 0u);
    EXPECT_EQ(osl_emitCharAsUtf8(&out, 'x'), sOKAY);
    osl_utf8BuffTerm(&out);
    EXPECT_STREQ(buffer, "x");
}

TEST(OutputBuffer, TakesTextsAsTheyStand) {
    // Malformed bytes go through as they are, each counted as one character.
    const struct {
        const char *text;
        size_t characters;
    } rows[] = {{"", 0},          {"oak", 3},          {"aé€𝄞", 4},
                {"\x80\xbf", 2},  {"\xc3", 1},         {"\xe2\x82", 2},
                {"\xe2\x82x", 3}, {"\xf0\x9d\x84", 3}, {"\xf8\xff\xfe", 3},
                {"\xc3z", 2},     {"\xe2x\x82", 3},    {"\xf0x\x84\x9e", 4}};
    for (const auto &row : rows) {
        char buffer[20];
        OAK_OUTPUT_BUFF out;
        osl_utf8BuffInit(&out, buffer, sizeof buffer);
        EXPECT_EQ(osl_outputString(osl_emitCharAsUtf8, &out, row.text), sOKAY);
        EXPECT_EQ(out.used_elems, row.characters) << row.text;
        osl_utf8BuffTerm(&out);
        EXPECT_STREQ(buffer, row.text);
    }
}

TEST(OutputBuffer, CutsTextsBetweenCharacters) {
    const std::string text = "a€b€";
    for (size_t size = 1; size < 12; ++size) {
        char buffer[12];
        OAK_OUTPUT_BUFF out;
        osl_utf8BuffInit(&out, buffer, size);
        EXPECT_EQ(osl_outputString(osl_emitCharAsUtf8, &out, text.c_str()), sOKAY);
        osl_utf8BuffTerm(&out);
        size_t whole = 0; // the last end of a character that leaves room for the terminator
        for (const size_t end : {0, 1, 4, 5, 8}) {
            whole = end + 1 <= size ? end : whole;
        }
        EXPECT_EQ(text.substr(0, whole), buffer) << size;
        EXPECT_EQ(out.used_chars, whole + 1);
        EXPECT_EQ(out.needed_chars, 9u);
        EXPECT_EQ(out.done == OAK_TRUE, size < 9);
    }
}

TEST(OutputBuffer, TakesATextAsItTakesItsCharacters) {
    // Long runs of one byte a character go in at once; the counts must not show it.
    oaktest::Random random;
    const uint32_t others[] = {0xe9, 0x20ac, 0x1d11e};
    for (int round = 0; round < 300; ++round) {
        std::string text;
        std::vector<uint32_t> characters;
        for (uint64_t left = random.below(60); left > 0; --left) {
            const bool plain = random.below(12) != 0;
            characters.push_back(plain ? static_cast<uint32_t>('a' + random.below(26))
                                       : others[random.below(3)]);
            uint8_t bytes[6];
            const uint32_t length = osl_utf8_codes(characters.back(), bytes);
            text.append(reinterpret_cast<char *>(bytes), length);
        }
        const size_t size = random.below(80);
        std::string by_text(80, '#');
        std::string by_character(80, '#');
        OAK_OUTPUT_BUFF whole;
        OAK_OUTPUT_BUFF single;
        osl_utf8BuffInit(&whole, by_text.data(), size);
        osl_utf8BuffInit(&single, by_character.data(), size);
        EXPECT_EQ(osl_outputString(osl_emitCharAsUtf8, &whole, text.c_str()), sOKAY);
        for (const uint32_t character : characters) {
            EXPECT_EQ(osl_emitCharAsUtf8(&single, character), sOKAY);
        }
        osl_utf8BuffTerm(&whole);
        osl_utf8BuffTerm(&single);
        EXPECT_EQ(by_text, by_character);
        EXPECT_EQ(whole.used_chars, single.used_chars);
        EXPECT_EQ(whole.used_elems, single.used_elems);
        EXPECT_EQ(whole.needed_chars, single.needed_chars);
        EXPECT_EQ(whole.needed_elems, single.needed_elems);
        EXPECT_EQ(whole.done, single.done);
    }
}

TEST(Locale, IsMadeByNameForCollation) {
    OSL_LOCALE locale = osl_createlocale(8, "C");
    ASSERT_NE(locale, nullptr);
    EXPECT_LT(strcoll_l("a", "b", locale), 0);
    EXPECT_GT(strcoll_l("b", "a", locale), 0);
    EXPECT_EQ(strcoll_l("a", "a", locale), 0);
    osl_freelocale(locale);
    osl_freelocale(nullptr);
}

TEST(Locale, OfAnUnknownNameIsRefused) {
    EXPECT_EQ(osl_createlocale(8, "no_SUCH.locale"), nullptr);
    EXPECT_EQ(osl_createlocale(8, nullptr), nullptr);
}

TEST(Locale, TellsByItsNameWhetherItsTextIsUtf8) {
    const struct {
        const char *name;
        bool utf8;
    } rows[] = {{"en_US.UTF-8", true},
                {"en_US.utf8", true},
                {"de_DE.Utf-8@euro", true},
                {"C.UTF-8", true},
                {"xx_YY.UTF8", true},
                {"en_US.ISO-8859-1", false},
                {"en_US.UTF-16", false},
                {"en_US.UTF-80", false},
                {"en_US.", false},
                {"ja_JP.eucJP", false},
                {"C", false},
                {"POSIX", false},
                {"no_SUCH", false},
                {"", false},
                {nullptr, false}};
    for (const auto &row : rows) {
        EXPECT_EQ(osl_locale_validate_utf8(row.name) != 0, row.utf8)
            << (row.name != nullptr ? row.name : "null");
    }
}
