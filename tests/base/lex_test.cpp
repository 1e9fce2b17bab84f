// The lexer: every token in both dialects, every message, places, pushback,
// rewinding, files, and the recording of expressions.
#include "lex.h"

#include <cmath>
#include <cstring>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <strings.h>

#include "lex_internal.h"
#include "test_support.h"

namespace {

using oaktest::Resource;
using oaktest::Tag;

// ---- Helpers ---------------------------------------------------------------

// Digits, place and sign of a decimal: "0.12 exp 3" for 120.
std::string show(const OAK_BCD_T &bcd) {
    std::string digits;
    for (int i = 1; i <= bcd.prec; ++i) {
        digits += static_cast<char>('0' + bcd.data[i]);
    }
    return digits + "e" + std::to_string(bcd.exp);
}

std::string show_double(double value) {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out.precision(17);
    out << value;
    return out.str();
}

// What a token of this double looks like.
std::string dbl(double value) {
    return "dbl:" + show_double(value);
}

// A token in a word: kind and content.
std::string show(const B_TOKEN &token) {
    switch (token.type) {
        case tokERROR:
            return std::string("error:") + token.v.str;
        case tokEOS:
            return "eos";
        case tokIDENTIFIER:
            return std::string("id:") + token.v.id;
        case tokINTEGER:
            return "int:" + std::to_string(token.v.iv);
        case tokDECIMAL:
            return "dec:" + show(*token.v.bcd);
        case tokDOUBLE:
            return dbl(token.v.dv);
        case tokSTRING:
            return std::string("str:") + token.v.str;
        case tokBINARY:
            return "bin:" + oaktest::hex(token.v.bv, token.len);
        default:
            EXPECT_EQ(token.v.tok, static_cast<B_CHAR>(token.type));
            return std::string("chr:") + static_cast<char>(token.type);
    }
}

enum class Dialect { sql, sqlQuotedIdentifiers, other, keyValue };

// A lexer over a text. Token texts stay under its tag until its end.
class Lexer {
  public:
    explicit Lexer(Dialect dialect = Dialect::sql) {
        user_.may_keep_blocks();
        lexer_.may_keep_blocks(); // rewind points of its own inputs
        const bool sql = dialect == Dialect::sql || dialect == Dialect::sqlQuotedIdentifiers;
        lex_ = b_lexOpen(dialect == Dialect::keyValue ? "key/value" : "test",
                         sql ? OAK_TRUE : OAK_FALSE,
                         dialect == Dialect::sqlQuotedIdentifiers ? OAK_TRUE : OAK_FALSE, lexer_);
        EXPECT_NE(lex_, nullptr);
    }
    Lexer(const std::string &text, Dialect dialect = Dialect::sql) : Lexer(dialect) { init(text); }
    ~Lexer() { b_lexClose(lex_); }
    Lexer(const Lexer &) = delete;
    Lexer &operator=(const Lexer &) = delete;

    void init(const std::string &text, uint32_t line = 1) {
        text_ = text;
        b_lexInit(lex_, text_.c_str(), nullptr, line, user_);
    }
    void read_from(OAK_INPUT_OBJ input) { b_lexInitInput(lex_, input, user_); }

    B_TOKEN get() {
        B_TOKEN token;
        std::memset(&token, 0xA5, sizeof token);
        const B_TOKTYPE type = b_lexGet(lex_, &token);
        EXPECT_EQ(type, token.type);
        return token;
    }
    std::string next() { return show(get()); }
    /// Each token up to the end of the text.
    std::vector<std::string> all() {
        std::vector<std::string> tokens;
        for (std::string token = next(); token != "eos"; token = next()) {
            tokens.push_back(token);
        }
        return tokens;
    }
    /// What the whole text, recorded from its first token, comes to.
    std::string recorded() {
        get();
        b_lexExprSaveBegin(lex_);
        while (get().type != tokEOS) {
        }
        return taken_recording();
    }
    std::string taken_recording() {
        const char *text = b_lexExprGet(lex_);
        return text != nullptr ? text : "(null)";
    }
    OSL_MEMTAG user() const { return user_; }
    operator B_LEX() const { return lex_; }

  private:
    Tag user_;
    Tag lexer_;
    std::string text_;
    B_LEX lex_ = nullptr;
};

using Tokens = std::vector<std::string>;

Tokens tokens(const std::string &text, Dialect dialect = Dialect::sql) {
    return Lexer(text, dialect).all();
}

struct Row {
    const char *text;
    Tokens expected;
};

void expect_rows(const std::vector<Row> &rows, Dialect dialect = Dialect::sql) {
    for (const Row &row : rows) {
        EXPECT_EQ(tokens(row.text, dialect), row.expected) << row.text;
    }
}

constexpr char kBadBinary[] = "error:bad binary literal";
constexpr char kNoEndQuote[] = "error:string literal missing terminal quote";
constexpr char kBadEscape[] = "error:invalid escape sequence";
constexpr char kUnicode[] = "error:Unicode characters are not supported";
constexpr char kBadUnicode[] = "error:Invalid Unicode literal sequence";
constexpr char kUnsupported[] = "error:unsupported character";
constexpr char kOverflow[] = "error:decimal conversion overflow";

// ---- Single characters -----------------------------------------------------

TEST(LexCharacters, TypesAreTheAsciiCodes) {
    const std::pair<B_TOKTYPE, int> rows[] = {
        {tokEOS, 0},       {tokEXCL, 33},      {tokQUOTE, 34},       {tokPOUND, 35},
        {tokDOLLAR, 36},   {tokPCT, 37},       {tokAMP, 38},         {tokAPOS, 39},
        {tokLPAR, 40},     {tokRPAR, 41},      {tokSTAR, 42},        {tokPLUS, 43},
        {tokCOMMA, 44},    {tokMINUS, 45},     {tokPERIOD, 46},      {tokFSLASH, 47},
        {tokCOLON, 58},    {tokSEMI, 59},      {tokLT, 60},          {tokEQ, 61},
        {tokGR, 62},       {tokQUESTION, 63},  {tokAT, 64},          {tokLBRACK, 91},
        {tokBSLASH, 92},   {tokRBRACK, 93},    {tokCIRCUM, 94},      {tokUNDERSCORE, 95},
        {tokGRAVE, 96},    {tokLBRACE, 123},   {tokBAR, 124},        {tokRBRACE, 125},
        {tokTILDE, 126},   {tokSPECCHAR, 255}, {tokIDENTIFIER, 256}, {tokINTEGER, 257},
        {tokDECIMAL, 258}, {tokDOUBLE, 259},   {tokSTRING, 260},     {tokWSTRING, 261},
        {tokBINARY, 262},  {tokERROR, -1},
    };
    for (const auto &[type, value] : rows) {
        EXPECT_EQ(static_cast<int>(type), value);
    }
}

TEST(LexCharacters, EachPunctuationMarkIsATokenOfItsOwn) {
    // All of ASCII but letters, digits, '_' and the two quotes.
    const std::string marks = "!#$%&()*+,-./:;<=>?@[\\]^`{|}~";
    EXPECT_EQ(marks.size(), 29u);
    for (const Dialect dialect : {Dialect::sql, Dialect::other, Dialect::keyValue}) {
        for (const char mark : marks) {
            Lexer lex(std::string(1, mark), dialect);
            const B_TOKEN token = lex.get();
            EXPECT_EQ(token.type, static_cast<B_TOKTYPE>(mark));
            EXPECT_EQ(token.v.tok, static_cast<B_CHAR>(mark));
            EXPECT_EQ(token.len, 0u);
            EXPECT_EQ(b_lexGetTokString(lex), std::string(1, mark));
            EXPECT_EQ(lex.next(), "eos");
        }
    }
}

TEST(LexCharacters, BytesAbove127AreUnsupportedAndScanningGoesOn) {
    for (int byte = 128; byte <= 255; ++byte) {
        EXPECT_EQ(tokens(std::string("a") + static_cast<char>(byte) + "b"),
                  (Tokens{"id:A", kUnsupported, "id:B"}))
            << byte;
    }
}

TEST(LexCharacters, ControlCharactersAndBlanksAreSkipped) {
    for (int byte = 1; byte <= 32; ++byte) {
        EXPECT_EQ(tokens(std::string("a") + static_cast<char>(byte) + "b"),
                  (Tokens{"id:A", "id:B"}));
    }
    EXPECT_EQ(tokens("a\x7F"
                     "b"),
              (Tokens{"id:A", "id:B"}))
        << "DEL is a control character";
}

TEST(LexCharacters, EndOfTextComesAsOftenAsItIsAskedFor) {
    Lexer lex("");
    for (int i = 0; i < 3; ++i) {
        const B_TOKEN token = lex.get();
        EXPECT_EQ(token.type, tokEOS);
        EXPECT_EQ(token.v.tok, 0u);
    }
    EXPECT_STREQ(b_lexGetTokString(lex), "");
}

TEST(LexCharacters, NulByteInAnInputIsAnEnd) {
    Tag tag;
    Lexer lex;
    OAK_INPUT_OBJ input = nullptr;
    ASSERT_EQ(b_inputCreateFromMemory(&input, reinterpret_cast<const uint8_t *>("a\0b"), 3, tag),
              sOKAY);
    lex.read_from(input);
    EXPECT_EQ(lex.next(), "id:A");
    EXPECT_EQ(lex.next(), "eos");
    EXPECT_EQ(lex.next(), "id:B") << "who goes on reads on";
    b_inputClose(input);
}

// ---- Comments --------------------------------------------------------------

TEST(LexComments, AreSkipped) {
    expect_rows({
        {"a/*b*/c", {"id:A", "id:C"}},
        {"a/**/c", {"id:A", "id:C"}},
        {"a/***/c", {"id:A", "id:C"}},
        {"a/*/c*/d", {"id:A", "id:D"}},
        {"a/* x\ny */c", {"id:A", "id:C"}},
        {"a--b\nc", {"id:A", "id:C"}},
        {"a--\nc", {"id:A", "id:C"}},
        {"/*1*//*2*/ --3\n--4\na", {"id:A"}},
        {"a - - b", {"id:A", "chr:-", "chr:-", "id:B"}},
        {"a / * b", {"id:A", "chr:/", "chr:*", "id:B"}},
        {"a-b/c", {"id:A", "chr:-", "id:B", "chr:/", "id:C"}},
        {"- -", {"chr:-", "chr:-"}},
        {"/", {"chr:/"}},
        {"-", {"chr:-"}},
    });
}

TEST(LexComments, DoNotNest) {
    EXPECT_EQ(tokens("/* a /* b */ c */"), (Tokens{"id:C", "chr:*", "chr:/"}));
}

TEST(LexComments, UnclosedOnesEndWithTheText) {
    for (const char *text : {"a/*", "a/* b", "a/*b*", "a/*/", "a--", "a-- b", "a---"}) {
        EXPECT_EQ(tokens(text), (Tokens{"id:A"})) << text;
    }
}

TEST(LexComments, NameKeyValueTurnsThemOff) {
    EXPECT_EQ(tokens("a--b", Dialect::keyValue), (Tokens{"id:a", "chr:-", "chr:-", "id:b"}));
    EXPECT_EQ(tokens("/*", Dialect::keyValue), (Tokens{"chr:/", "chr:*"}));
    EXPECT_EQ(tokens("a--b\nc", Dialect::other), (Tokens{"id:a", "id:c"}));
    Tag tag;
    for (const char *name : {"Key/Value", "key/value2", "key/", ""}) {
        B_LEX lex = b_lexOpen(name, OAK_FALSE, OAK_FALSE, tag);
        b_lexInit(lex, "--x", nullptr, 1, tag);
        B_TOKEN token;
        EXPECT_EQ(b_lexGet(lex, &token), tokEOS) << name;
        b_lexClose(lex);
    }
}

TEST(LexComments, NullNameKeepsThemOn) {
    Tag tag;
    B_LEX lex = b_lexOpen(nullptr, OAK_FALSE, OAK_FALSE, tag);
    b_lexInit(lex, "--x", nullptr, 1, tag);
    B_TOKEN token;
    EXPECT_EQ(b_lexGet(lex, &token), tokEOS);
    b_lexClose(lex);
}

// ---- Identifiers -----------------------------------------------------------

TEST(LexIdentifiers, OfSqlAreFoldedToUpperCase) {
    expect_rows({
        {"select", {"id:SELECT"}},
        {"Select_1$x", {"id:SELECT_1$X"}},
        {"_a", {"id:_A"}},
        {"_", {"id:_"}},
        {"a.b", {"id:A", "chr:.", "id:B"}},
        {"a/b", {"id:A", "chr:/", "id:B"}},
        {"a:b\\c", {"id:A", "chr::", "id:B", "chr:\\", "id:C"}},
        {"$a", {"chr:$", "id:A"}},
        {"x", {"id:X"}},
        {"xy'", {"id:XY", kNoEndQuote}},
        {"u", {"id:U"}},
        {"U &", {"id:U", "chr:&"}},
        {"X ''", {"id:X", "str:"}},
        {"a'b'", {"id:A", "str:b"}},
    });
}

TEST(LexIdentifiers, OfTheOtherDialectTakeInPathsAndKeepTheirCase) {
    expect_rows(
        {
            {"Select", {"id:Select"}},
            {"a/b.c:d\\e$f_g1", {"id:a/b.c:d\\e$f_g1"}},
            {"/tmp/x", {"chr:/", "id:tmp/x"}},
            {".a", {"chr:.", "id:a"}},
            {"a-b", {"id:a", "chr:-", "id:b"}},
            {"C:\\d", {"id:C:\\d"}},
            {"a//b", {"id:a//b"}},
        },
        Dialect::other);
}

TEST(LexIdentifiers, LengthCountsTheTerminator) {
    for (const char *text : {"a", "abc", "\"abc\""}) {
        Lexer lex(text, Dialect::sqlQuotedIdentifiers);
        const B_TOKEN token = lex.get();
        EXPECT_EQ(token.len, std::strlen(token.v.id) + 1) << text;
    }
}

TEST(LexIdentifiers, TokStringIsTheSourceTextBeforeFolding) {
    Lexer lex("Abc");
    EXPECT_EQ(lex.next(), "id:ABC");
    EXPECT_STREQ(b_lexGetTokString(lex), "Abc");
}

TEST(LexIdentifiers, LongOnesGrowTheBuffer) {
    for (const size_t size : {63u, 64u, 65u, 66u, 129u, 130u, 131u, 5000u}) {
        const std::string name(size, 'Q');
        EXPECT_EQ(tokens(name), (Tokens{"id:" + name}));
        EXPECT_EQ(tokens("'" + name + "'"), (Tokens{"str:" + name}));
    }
}

TEST(LexQuotedIdentifiers, KeepTheirCase) {
    expect_rows(
        {
            {"\"select\"", {"id:select"}},
            {"\"a$_1\"b", {"id:a$_1", "id:B"}},
            {"\"aB\" \"C\"", {"id:aB", "id:C"}},
            {"\"1a\"", {"id:1a"}},
            {"'a'", {"str:a"}},
        },
        Dialect::sqlQuotedIdentifiers);
}

TEST(LexQuotedIdentifiers, TakeTheirFirstCharacterWhateverItIs) {
    expect_rows(
        {
            {"\"\"", {"id:\""}},
            {"\"\"\"", {"id:\""}},
            {"\"\"a\"", {"id:\"a"}},
            {"\" a\"", {"id: a"}},
            {"\"\xC3\"", {"id:\xC3"}},
            {"\"\n\"", {"id:\n"}},
            {"\"-\"", {"id:-"}},
        },
        Dialect::sqlQuotedIdentifiers);
}

TEST(LexQuotedIdentifiers, StandAsReadWhenSomethingElseEndsThem) {
    expect_rows(
        {
            {"\"ab", {"id:ab"}},
            {"\"", {"id:"}},
            {"\"a+", {"id:a", "chr:+"}},
            {"\"a b\"", {"id:a", "id:B", "id:"}},
        },
        Dialect::sqlQuotedIdentifiers);
}

TEST(LexQuotedIdentifiers, AreStringsToALexerThatWantsStrings) {
    EXPECT_EQ(tokens("\"Ab\""), (Tokens{"str:Ab"}));
    EXPECT_EQ(tokens("\"a'b\"\"c\""), (Tokens{"str:a'b\"c"}));
}

// ---- Numbers ---------------------------------------------------------------

TEST(LexNumbers, IntegersAreSixtyFourBitsWide) {
    expect_rows({
        {"0", {"int:0"}},
        {"000", {"int:0"}},
        {"007", {"int:7"}},
        {"10", {"int:10"}},
        {"100200", {"int:100200"}},
        {"9223372036854775807", {"int:9223372036854775807"}},
        {"18446744073709551615", {"int:18446744073709551615"}},
        {"00018446744073709551615", {"int:18446744073709551615"}},
        {"1a", {"int:1", "id:A"}},
        {"1+2", {"int:1", "chr:+", "int:2"}},
        {"-5", {"chr:-", "int:5"}},
    });
}

TEST(LexNumbers, PowersOfTwoAndTheirNeighbours) {
    for (int bits = 1; bits < 64; ++bits) {
        for (const int64_t delta : {-1, 0, 1}) {
            const uint64_t value = (uint64_t{1} << bits) + static_cast<uint64_t>(delta);
            EXPECT_EQ(tokens(std::to_string(value)), (Tokens{"int:" + std::to_string(value)}));
        }
    }
}

TEST(LexNumbers, PointOrExponentMakeADouble) {
    expect_rows({
        {"1.5", {dbl(1.5)}},
        {".5", {dbl(0.5)}},
        {"0.5", {dbl(0.5)}},
        {"00.5", {dbl(0.5)}},
        {"5.", {dbl(5.0)}},
        {"0.", {dbl(0.0)}},
        {"0.0", {dbl(0.0)}},
        {"1e5", {dbl(100000.0)}},
        {"1E5", {dbl(100000.0)}},
        {"1e+5", {dbl(100000.0)}},
        {"1e-2", {dbl(0.01)}},
        {"1.25e2", {dbl(125.0)}},
        {"1.e2", {dbl(100.0)}},
        {".5e1", {dbl(5.0)}},
        {"0e5", {dbl(0.0)}},
        {"000e5", {dbl(0.0)}},
        {"1e0", {dbl(1.0)}},
        {"1e007", {dbl(10000000.0)}},
        {"0.000000000000000000001", {dbl(1e-21)}},
        {"1e400", {dbl(HUGE_VAL)}},
        {"1e-400", {dbl(0.0)}},
    });
}

TEST(LexNumbers, SecondPointEndsTheNumber) {
    expect_rows({
        {"1.2.3", {dbl(1.2), dbl(.3)}},
        {"1..", {dbl(1.0), "chr:."}},
        {"1..2", {dbl(1.0), dbl(.2)}},
        {".", {"chr:."}},
        {"..5", {"chr:.", dbl(0.5)}},
        {".e5", {"chr:.", "id:E5"}},
    });
}

TEST(LexNumbers, BehindTheExponentLetterSignsAreTakenAnywhere) {
    expect_rows({
        {"1e5-3", {dbl(100000.0)}},
        {"1e5+3-2 7", {dbl(100000.0), "int:7"}},
        {"1e--5", {dbl(1.0)}},
        {"1e", {dbl(1.0)}},
        {"1e+", {dbl(1.0)}},
        {"2ex", {dbl(2.0), "id:X"}},
        {"1e5e3", {dbl(100000.0)}},
        {"1e5.3", {dbl(100000.0)}},
        {"1.5e5.3", {dbl(150000.0), dbl(.3)}},
    });
}

TEST(LexNumbers, TokStringDropsLeadingZerosAndCompletesTheFraction) {
    const std::pair<const char *, const char *> rows[] = {
        {"007", "7"},      {"000", "0"},       {".5", "0.5"},
        {"00.50", "0.50"}, {"1e5-3", "1e5-3"}, {"0e1", "0e1"},
    };
    for (const auto &[text, expected] : rows) {
        Lexer lex(text);
        lex.get();
        EXPECT_STREQ(b_lexGetTokString(lex), expected) << text;
    }
}

TEST(LexNumbers, SixteenDigitsStayExactOnlyIfADoubleWouldLoseSomething) {
    expect_rows({
        // Fifteen digits are a double whatever they are.
        {"1.23456789012345", {dbl(1.23456789012345)}},
        {"1.234567890123456", {"dec:1234567890123456e1"}},
        {"1.2345678901234567890",
         {"dec:123456789012345678"
          "9e1"}},
        {"1.5000000000000000", {dbl(1.5)}},
        {"123456789012345.5", {"dec:1234567890123455e15"}},
        {"1000000000000000.0", {dbl(1000000000000000.0)}},
        {"0.1234567890123456", {"dec:1234567890123456e0"}},
        // Leading zeros of the fraction do not count, zeros behind a digit do.
        {"0.000123456789012345", {dbl(0.000123456789012345)}},
        {"0.5000000000000000", {dbl(0.5)}},
        // Beyond 64 bits: powers of two and small multiples of powers of ten are
        // doubles, their neighbours are not.
        {"18446744073709551616", {dbl(18446744073709551616.0)}},
        {"18446744073709551617", {"dec:18446744073709551617e20"}},
        {"20000000000000000000", {dbl(2e19)}},
        {"10000000000000000000000", {dbl(1e22)}},
        {"100000000000000000000000", {"dec:100000000000000000000000e24"}},
    });
}

TEST(LexNumbers, ExponentKeepsALongNumberADouble) {
    EXPECT_EQ(tokens("1.2345678901234567890e0"), (Tokens{dbl(1.2345678901234567890)}));
}

TEST(LexNumbers, MoreDigitsThanADecimalHoldsOverflow) {
    EXPECT_EQ(tokens(std::string(32, '9')), (Tokens{"dec:" + std::string(32, '9') + "e32"}));
    EXPECT_EQ(tokens(std::string(33, '9') + " a"), (Tokens{kOverflow, "id:A"}));
    EXPECT_EQ(tokens(std::string(5000, '9')), (Tokens{kOverflow}));
}

TEST(LexNumbers, NoBlockIsLeftBehindByADecimalThatIsNotNeeded) {
    Tag tag;
    Tag user;
    B_LEX lex = b_lexOpen("x", OAK_TRUE, OAK_FALSE, tag);
    b_lexInit(lex, "1.5000000000000000 7 2.5", nullptr, 1, user);
    B_TOKEN token;
    EXPECT_EQ(b_lexGet(lex, &token), tokDOUBLE);
    EXPECT_EQ(b_lexGet(lex, &token), tokINTEGER);
    EXPECT_EQ(b_lexGet(lex, &token), tokDOUBLE);
    EXPECT_EQ(user.live(), 0u);
    b_lexClose(lex);
}

// ---- Binary literals -------------------------------------------------------

TEST(LexBinary, QuotedAndPrefixedFormsGiveBytes) {
    expect_rows({
        {"x'4142'", {"bin:4142"}},
        {"X'4142'", {"bin:4142"}},
        {"x'00fFaB'", {"bin:00ffab"}},
        {"x''", {"bin:"}},
        {"0xFF", {"bin:ff"}},
        {"0Xff01", {"bin:ff01"}},
        {"0x", {"bin:"}},
        {"0xg", {"bin:", "id:G"}},
        {"0x12 3", {"bin:12", "int:3"}},
        {"00x12", {"int:0", "id:X12"}},
        {"x'41'x'42'", {"bin:41", "bin:42"}},
    });
    expect_rows({{"x'4142'", {"bin:4142"}}, {"0xFF", {"bin:ff"}}}, Dialect::other);
}

TEST(LexBinary, FaultyOnesConsumeWhatTheyRead) {
    expect_rows({
        {"x'414'", {kBadBinary}}, // the quote stood in the digit's place
        {"x'414' 7", {kBadBinary, "int:7"}},
        {"x'4", {kBadBinary}},
        {"x'41", {kBadBinary}},
        {"x'41z'", {kBadBinary, kNoEndQuote}},
        {"x'41 42'", {kBadBinary, "int:42", kNoEndQuote}},
        {"x'", {kBadBinary}},
        {"0xF", {kBadBinary}},
        {"0xF+1", {kBadBinary, "int:1"}},
    });
}

TEST(LexBinary, LengthIsTheByteCountAndTheAddressIsNeverNull) {
    Lexer lex("x'' x'01' 0x010203");
    for (const size_t length : {0u, 1u, 3u}) {
        const B_TOKEN token = lex.get();
        EXPECT_EQ(token.type, tokBINARY);
        EXPECT_EQ(token.len, length);
        EXPECT_NE(token.v.bv, nullptr);
    }
}

TEST(LexBinary, TokStringIsTheSource) {
    Lexer lex("X'aB' 0xCd");
    lex.get();
    EXPECT_STREQ(b_lexGetTokString(lex), "X'aB'");
    lex.get();
    EXPECT_STREQ(b_lexGetTokString(lex), "0xCd");
}

TEST(LexBinary, FaultyOneLeavesNoBlockBehind) {
    Tag tag;
    Tag user;
    B_LEX lex = b_lexOpen("x", OAK_TRUE, OAK_FALSE, tag);
    b_lexInit(lex, "x'41z", nullptr, 1, user);
    B_TOKEN token;
    EXPECT_EQ(b_lexGet(lex, &token), tokERROR);
    EXPECT_EQ(token.len, 0u);
    EXPECT_EQ(user.live(), 0u);
    b_lexClose(lex);
}

// ---- Strings ---------------------------------------------------------------

TEST(LexStrings, BothQuotesAndDoubledQuotes) {
    expect_rows({
        {"'abc'", {"str:abc"}},
        {"\"abc\"", {"str:abc"}},
        {"''", {"str:"}},
        {"'a''b'", {"str:a'b"}},
        {"''''", {"str:'"}},
        {"'a\"b'", {"str:a\"b"}},
        {"\"a'b\"", {"str:a'b"}},
        {"\"a\"\"b\"", {"str:a\"b"}},
        {"'a' 'b'", {"str:a", "str:b"}},
        {"'a'\"b\"", {"str:a", "str:b"}},
        {"'a\nb\tc'", {"str:a\nb\tc"}},
        {"'\xC3\xA9\xFF'", {"str:\xC3\xA9\xFF"}},
        {"'--/*'", {"str:--/*"}},
        {"'a'7", {"str:a", "int:7"}},
    });
}

TEST(LexStrings, WithoutAClosingQuoteAreErrors) {
    expect_rows({
        {"'", {kNoEndQuote}},
        {"'abc", {kNoEndQuote}},
        {"\"abc'", {kNoEndQuote}},
        {"'a''", {kNoEndQuote}},
        {"'a\\", {kNoEndQuote}},
        {"'a\\'", {kNoEndQuote}},
    });
}

TEST(LexEscapes, EachOfOneCharacter) {
    const std::pair<char, char> rows[] = {
        {'"', '"'}, {'\'', '\''}, {'?', '?'}, {'\\', '\\'}, {'a', 7},  {'b', 8},
        {'f', 12},  {'n', 10},    {'r', 13},  {'t', 9},     {'v', 11},
    };
    for (const auto &[letter, value] : rows) {
        EXPECT_EQ(tokens(std::string("'<\\") + letter + ">'"),
                  (Tokens{std::string("str:<") + value + ">"}))
            << letter;
    }
}

TEST(LexEscapes, AnythingElseKeepsItsBackslash) {
    // Every printable character that begins no escape, and the letters' other case.
    const std::string known = "\"'?\\abfnrtv01234567xXuU";
    for (char ch = ' '; ch <= '~'; ++ch) {
        if (known.find(ch) == std::string::npos) {
            EXPECT_EQ(tokens(std::string("'<\\") + ch + ">'"),
                      (Tokens{std::string("str:<\\") + ch + ">"}))
                << ch;
        }
    }
    EXPECT_EQ(tokens("'\\\n'"), (Tokens{"str:\\\n"}));
    EXPECT_EQ(tokens("'\\/'"), (Tokens{"str:\\/"}));
}

TEST(LexEscapes, OneToThreeOctalDigits) {
    expect_rows({
        {"'\\101'", {"str:A"}},
        {"'\\1019'", {"str:A9"}},
        {"'\\1011'", {"str:A1"}},
        {"'\\60'", {"str:0"}},
        {"'\\060'", {"str:0"}},
        {"'\\0601'", {"str:01"}},
        {"'\\608'", {"str:08"}},
        {"'\\7x'", {"str:\x07x"}},
        {"'\\377'", {"str:\xFF"}},
        {"'\\400'", {kUnicode, kNoEndQuote}},
        {"'\\777'", {kUnicode, kNoEndQuote}},
    });
}

TEST(LexEscapes, XReadsDecimallyWithLettersFromZeroToFive) {
    expect_rows({
        {"'\\x41'", {"str:)"}}, // 41 in decimal
        {"'\\X41'", {"str:)"}},
        {"'\\x65'", {"str:A"}},
        {"'\\xG'", {"str:"}}, // no digits: a zero byte
        {"'\\x0065z'", {"str:Az"}},
        {"'\\xbc'", {"str:\x0C"}}, // 1 and 2
        {"'\\xFf'", {"str:7"}},    // 55
        {"'\\xfF'", {"str:7"}},
        {"'\\xaaabb'", {"str:\x0B"}},
        {"'\\x255'", {"str:\xFF"}},
        {"'\\x256'", {kUnicode, kNoEndQuote}},
        {"'\\x1114111'", {kUnicode, kNoEndQuote}},
        {"'\\x1114112'", {kBadEscape, kNoEndQuote}},
        {"'\\x99999999999999999999'", {kBadEscape, "int:9999999999999", kNoEndQuote}},
    });
}

TEST(LexEscapes, XWithoutDigitsIsAZeroByteInTheText) {
    Lexer lex("'a\\xg'");
    const B_TOKEN token = lex.get();
    ASSERT_EQ(token.type, tokSTRING);
    EXPECT_EQ(oaktest::hex(token.v.str, 4), "61006700");
}

TEST(LexEscapes, UnicodeEscapesMustFitAByte) {
    expect_rows({
        {"'\\u0041'", {"str:A"}},
        {"'\\u00e9'", {"str:\xE9"}},
        {"'\\u00FFx'", {"str:\xFFx"}},
        {"'\\u00411'", {"str:A1"}},
        {"'\\U00000041'", {"str:A"}},
        {"'\\u0100'", {kUnicode, kNoEndQuote}},
        {"'\\uFFFF'", {kUnicode, kNoEndQuote}},
        {"'\\U0010FFFF'", {kUnicode, kNoEndQuote}},
        {"'\\U00110000'", {kBadEscape, kNoEndQuote}},
        {"'\\UFFFFFFFF'", {kBadEscape, kNoEndQuote}},
    });
}

TEST(LexEscapes, BadDigitOfAUnicodeEscapeIsConsumed) {
    expect_rows({
        {"'\\u00g1'", {kBadEscape, "int:1", kNoEndQuote}},
        {"'\\u'", {kBadEscape}},
        {"'\\u004'", {kBadEscape}},
        {"'\\u004", {kBadEscape}},
        {"'\\U0000004 1'", {kBadEscape, "int:1", kNoEndQuote}},
    });
}

// ---- Unicode literals ------------------------------------------------------

TEST(LexUnicodeLiterals, HoldUtf8) {
    expect_rows({
        {"U&'abc'", {"str:abc"}},
        {"u&'abc'", {"str:abc"}},
        {"U&''", {"str:"}},
        {"U&'\\0041'", {"str:A"}},
        {"U&'\\0041\\0042c'", {"str:ABc"}},
        {"U&'\\00e9'", {"str:\xC3\xA9"}},
        {"U&'\\20AC'", {"str:\xE2\x82\xAC"}},
        {"U&'\\+01F600'", {"str:\xF0\x9F\x98\x80"}},
        {"U&'\\+000041'", {"str:A"}},
        {"U&'\\+10FFFF'", {"str:\xF4\x8F\xBF\xBF"}},
        {"U&'\\FFFF'", {"str:\xEF\xBF\xBF"}},
        {"U&'a\\\\b'", {"str:a\\b"}},
        {"U&'a''b'", {"str:a'b"}},
        {"U&'a\"b'", {"str:a\"b"}},
        {"U&'a'b", {"str:a", "id:B"}},
    });
}

TEST(LexUnicodeLiterals, FaultyOnes) {
    expect_rows({
        {"U&", {kBadUnicode}},
        {"U&a", {kBadUnicode}}, // the letter is consumed
        {"U&ab", {kBadUnicode, "id:B"}},
        {"U&\"a\"", {kBadUnicode, "id:A", kNoEndQuote}},
        {"u& 'a'", {kBadUnicode, "str:a"}},
        {"U&'abc", {kNoEndQuote}},
        {"U&'\\", {kBadEscape}},
        {"U&'\\n'", {kBadEscape, kNoEndQuote}},
        {"U&'\\004'", {kBadEscape}},
        {"U&'\\+0041'", {kBadEscape}},
        {"U&'\\''", {kBadEscape, kNoEndQuote}},
        {"U&'\\D800'", {kBadEscape, kNoEndQuote}}, // a surrogate
        {"U&'\\DFFF'", {kBadEscape, kNoEndQuote}},
        {"U&'\\+110000'", {kBadEscape, kNoEndQuote}},
        {"U&'\\+FFFFFF'", {kBadEscape, kNoEndQuote}},
    });
}

// ---- Errors ----------------------------------------------------------------

TEST(LexErrors, WithoutATextEveryGetSaysSo) {
    Lexer lex;
    EXPECT_EQ(lex.next(), "error:must first call b_lexInit");
    EXPECT_EQ(lex.next(), "error:must first call b_lexInit");
    lex.init("a");
    EXPECT_EQ(lex.next(), "id:A");
    b_lexInit(lex, nullptr, nullptr, 1, lex.user());
    EXPECT_EQ(lex.next(), "error:must first call b_lexInit");
    lex.init("b");
    EXPECT_EQ(lex.next(), "id:B");
    lex.read_from(nullptr);
    EXPECT_EQ(lex.next(), "error:must first call b_lexInit");
    B_TOKEN token;
    EXPECT_EQ(b_lexGet(nullptr, &token), tokERROR);
    EXPECT_STREQ(token.v.str, "must first call b_lexInit");
}

TEST(LexErrors, WithoutATokenNothingIsRead) {
    Lexer lex("a b");
    EXPECT_EQ(b_lexGet(lex, nullptr), tokERROR);
    EXPECT_EQ(lex.next(), "id:A");
    EXPECT_EQ(b_lexGet(nullptr, nullptr), tokERROR);
}

TEST(LexErrors, ErrorTokensHaveTheirPlace) {
    Lexer lex("a\n  \x80 'x");
    lex.get();
    B_TOKEN token = lex.get();
    EXPECT_EQ(token.type, tokERROR);
    EXPECT_EQ(token.line, 2u);
    EXPECT_EQ(token.pos, 3u);
    EXPECT_STREQ(b_lexGetTokString(lex), "");
    token = lex.get();
    EXPECT_EQ(token.type, tokERROR);
    EXPECT_EQ(token.pos, 5u);
}

TEST(LexErrors, NullArgumentsDoNoHarm) {
    Lexer lex("a");
    B_TOKEN token = {};
    b_lexInit(nullptr, "a", nullptr, 1, lex.user());
    b_lexInitInput(nullptr, nullptr, lex.user());
    b_lexPutback(nullptr, &token);
    b_lexPutback(lex, nullptr);
    b_lexTokenFree(nullptr, &token);
    b_lexTokenFree(lex, nullptr);
    b_lexExprSaveBegin(nullptr);
    EXPECT_EQ(b_lexExprGet(nullptr), nullptr);
    EXPECT_EQ(b_lexSQLReserved(nullptr), OAK_FALSE);
    EXPECT_EQ(b_lexGetTokString(nullptr), nullptr);
    EXPECT_EQ(b_lexGetLineNumber(nullptr), 0u);
    EXPECT_EQ(b_lexGetCharacterNumber(nullptr), 0u);
    EXPECT_EQ(b_lexGetFileName(nullptr), nullptr);
    b_lexClose(nullptr);
    EXPECT_EQ(lex.next(), "id:A") << "nothing was put back";
}

// ---- Places ----------------------------------------------------------------

std::string places(Lexer &lex) {
    std::string text;
    for (;;) {
        const B_TOKEN token = lex.get();
        text += std::to_string(token.line) + ":" + std::to_string(token.pos) + " ";
        if (token.type == tokEOS) {
            return text;
        }
    }
}

TEST(LexPlaces, AreLineAndCharacterFromOne) {
    const std::pair<const char *, const char *> rows[] = {
        {"a", "1:1 1:2 "},
        {"  ab cd", "1:3 1:6 1:8 "},
        {"a\nb\n\n  c", "1:1 2:1 4:3 4:4 "},
        {"'a\nb' c", "1:1 2:4 2:5 "},
        {"/* x\n */ a -- b\nc", "2:5 3:1 3:2 "},
        {"a'b'x'41'1.5(", "1:1 1:2 1:5 1:10 1:13 1:14 "},
        {"12\n34", "1:1 2:1 2:3 "},
        {"a\r\nb", "1:1 2:1 2:2 "},
        {"1e5\n", "1:1 2:1 "},
        {"'a\\\nb'c", "1:1 2:3 2:4 "},
        {"\n", "2:1 "},
        {"", "1:1 "},
    };
    for (const auto &[text, expected] : rows) {
        Lexer lex(text);
        EXPECT_EQ(places(lex), expected) << text;
    }
}

TEST(LexPlaces, LinesCountFromTheGivenNumber) {
    Lexer lex;
    lex.init("a\nb", 17);
    EXPECT_EQ(places(lex), "17:1 18:1 18:2 ");
}

TEST(LexPlaces, LineZeroTurnsTheCountingOff) {
    Lexer lex;
    lex.init("a\nbc\n12\nd", 0);
    EXPECT_EQ(places(lex), "0:1 0:3 0:6 0:9 0:10 ");
}

TEST(LexPlaces, AccessorsTellWhatHasBeenRead) {
    Lexer lex("ab\n cd");
    EXPECT_EQ(b_lexGetLineNumber(lex), 1u);
    EXPECT_EQ(b_lexGetCharacterNumber(lex), 0u);
    lex.get();
    EXPECT_EQ(b_lexGetLineNumber(lex), 1u) << "the newline that ended the word was put back";
    EXPECT_EQ(b_lexGetCharacterNumber(lex), 2u);
    lex.get();
    EXPECT_EQ(b_lexGetLineNumber(lex), 2u);
    EXPECT_EQ(b_lexGetCharacterNumber(lex), 3u);
}

TEST(LexPlaces, FileNameIsACopyUnderTheTokenTag) {
    Tag tag;
    Tag user;
    user.may_keep_blocks();
    B_LEX lex = b_lexOpen("x", OAK_TRUE, OAK_FALSE, tag);
    EXPECT_EQ(b_lexGetFileName(lex), nullptr);
    char name[] = "some.sql";
    b_lexInit(lex, "a", name, 1, user);
    name[0] = '?';
    EXPECT_STREQ(b_lexGetFileName(lex), "some.sql");
    EXPECT_EQ(user.live(), oaktest::faults_are_injected() ? 1u : 0u);
    b_lexInit(lex, "a", nullptr, 1, user);
    EXPECT_EQ(b_lexGetFileName(lex), nullptr);
    b_lexClose(lex);
}

// ---- Init ------------------------------------------------------------------

TEST(LexInit, StartsOver) {
    Lexer lex("a b\nc 'd");
    const B_TOKEN token = lex.get();
    lex.get();
    lex.get();
    b_lexExprSaveBegin(lex);
    b_lexPutback(lex, &token);
    lex.init("x\ny", 5);
    EXPECT_EQ(b_lexGetLineNumber(lex), 5u);
    EXPECT_EQ(b_lexGetCharacterNumber(lex), 0u);
    EXPECT_STREQ(b_lexGetTokString(lex), "");
    EXPECT_EQ(places(lex), "5:1 6:1 6:2 ");
    EXPECT_EQ(lex.taken_recording(), "(null)");
}

TEST(LexInit, TokenTextsOutlastTheLexer) {
    Tag tag;
    Tag user;
    B_LEX lex = b_lexOpen("x", OAK_TRUE, OAK_FALSE, tag);
    b_lexInit(lex, "'abc'", nullptr, 1, user);
    B_TOKEN token;
    ASSERT_EQ(b_lexGet(lex, &token), tokSTRING);
    b_lexClose(lex);
    EXPECT_EQ(tag.live(), 0u);
    EXPECT_STREQ(token.v.str, "abc");
    OSL_FREE(const_cast<char *>(token.v.str), user);
}

TEST(LexInit, InputStaysTheCallersAndIsReadFromItsPlace) {
    Tag tag;
    OAK_INPUT_OBJ input = nullptr;
    ASSERT_EQ(
        b_inputCreateFromMemory(&input, reinterpret_cast<const uint8_t *>("ab cd\nef"), 8, tag),
        sOKAY);
    B_CHAR ch = 0;
    ASSERT_EQ(b_inputRead(input, &ch), sOKAY);
    {
        Lexer lex;
        lex.read_from(input);
        EXPECT_EQ(lex.next(), "id:B");
        EXPECT_EQ(lex.next(), "id:CD");
        const B_TOKEN token = lex.get();
        EXPECT_EQ(token.line, 2u);
        EXPECT_EQ(b_lexGetFileName(lex), nullptr);
    }
    ASSERT_EQ(b_inputRewind(input, nullptr), sOKAY);
    {
        Lexer lex("other text");
        lex.read_from(input);
        EXPECT_EQ(lex.next(), "id:AB");
        lex.init("z");
        EXPECT_EQ(lex.next(), "id:Z");
    }
    b_inputClose(input);
}

// ---- Putting back and freeing ----------------------------------------------

TEST(LexPutback, GivesTheTokenAgainWithItsPlace) {
    Lexer lex("a\n 'b' 1.5 x'41' 1.2345678901234567890 ; \x80");
    for (int i = 0; i < 8; ++i) {
        const B_TOKEN first = lex.get();
        b_lexPutback(lex, &first);
        const B_TOKEN again = lex.get();
        EXPECT_EQ(show(again), show(first));
        EXPECT_EQ(again.line, first.line);
        EXPECT_EQ(again.pos, first.pos);
        EXPECT_EQ(again.len, first.len);
    }
}

TEST(LexPutback, HoldsOneToken) {
    Lexer lex("a b c");
    const B_TOKEN a = lex.get();
    const B_TOKEN b = lex.get();
    b_lexPutback(lex, &b);
    b_lexPutback(lex, &a);
    EXPECT_EQ(lex.next(), "id:A");
    EXPECT_EQ(lex.next(), "id:C");
}

TEST(LexPutback, TakesTheEndOfTheTextToo) {
    Lexer lex("a");
    lex.get();
    const B_TOKEN end = lex.get();
    b_lexPutback(lex, &end);
    EXPECT_EQ(lex.next(), "eos");
    EXPECT_EQ(lex.next(), "eos");
}

TEST(LexTokenFree, FreesStringsAndBinariesAlone) {
    Tag tag;
    Tag user;
    B_LEX lex = b_lexOpen("x", OAK_TRUE, OAK_FALSE, tag);
    b_lexInit(lex, "'a' x'41' 7 ( ", nullptr, 1, user);
    B_TOKEN token;
    ASSERT_EQ(b_lexGet(lex, &token), tokSTRING);
    b_lexTokenFree(lex, &token);
    EXPECT_EQ(token.v.str, nullptr);
    b_lexTokenFree(lex, &token); // freed already
    ASSERT_EQ(b_lexGet(lex, &token), tokBINARY);
    b_lexTokenFree(lex, &token);
    EXPECT_EQ(token.v.bv, nullptr);
    EXPECT_EQ(user.live(), 0u);
    ASSERT_EQ(b_lexGet(lex, &token), tokINTEGER);
    b_lexTokenFree(lex, &token);
    EXPECT_EQ(token.v.iv, 7u);
    ASSERT_EQ(b_lexGet(lex, &token), tokLPAR);
    b_lexTokenFree(lex, &token);
    EXPECT_EQ(token.v.tok, B_CHAR{'('});
    b_lexClose(lex);
}

TEST(LexTokenFree, LeavesIdentifiersAndDecimalsToTheTag) {
    Tag tag;
    Tag user;
    user.may_keep_blocks();
    B_LEX lex = b_lexOpen("x", OAK_TRUE, OAK_FALSE, tag);
    b_lexInit(lex, "abc 1.2345678901234567890", nullptr, 1, user);
    B_TOKEN token;
    ASSERT_EQ(b_lexGet(lex, &token), tokIDENTIFIER);
    b_lexTokenFree(lex, &token);
    EXPECT_STREQ(token.v.id, "ABC");
    ASSERT_EQ(b_lexGet(lex, &token), tokDECIMAL);
    b_lexTokenFree(lex, &token);
    EXPECT_EQ(show(*token.v.bcd), "1234567890123456789e1");
    b_lexClose(lex);
}

// ---- Rewinding -------------------------------------------------------------

// Each token from here on, with its place.
std::string rest(Lexer &lex) {
    std::string text;
    for (;;) {
        const B_TOKEN token = lex.get();
        text += std::to_string(token.line) + ":" + std::to_string(token.pos) + ":" +
                std::to_string(token.len) + " " + show(token) + " " + b_lexGetTokString(lex) + "\n";
        if (token.type == tokEOS) {
            return text;
        }
    }
}

const char *const kMixedText = "Select 'a\nb' , x'4142'\n 1.5(.7)\"q\"\n\n/* c */ 1e5-3 -- "
                               "d\nU&'\\0041' 0x41\\ 00 'z''' \xFF end ";

// From every token of a text, also right behind words, numbers and strings,
// whose next character has been read already.
TEST(LexRewind, SameTokensComeAgainWithTheSamePlaces) {
    for (size_t count = 0; count < 20; ++count) {
        Lexer lex(kMixedText, Dialect::sqlQuotedIdentifiers);
        for (size_t i = 0; i < count; ++i) {
            lex.get();
        }
        B_LEX_REWIND_POINT_OBJ point = nullptr;
        ASSERT_EQ(b_lexCreateRewindPoint(lex, &point), sOKAY);
        const uint32_t line = b_lexGetLineNumber(lex);
        const size_t place = b_lexGetCharacterNumber(lex);
        const std::string first = rest(lex);
        for (int round = 0; round < 2; ++round) {
            ASSERT_EQ(b_lexRewind(lex, point), sOKAY);
            EXPECT_EQ(b_lexGetLineNumber(lex), line);
            EXPECT_EQ(b_lexGetCharacterNumber(lex), place);
            EXPECT_EQ(rest(lex), first) << count;
        }
    }
}

TEST(LexRewind, PutBackTokenIsNoPartOfAPoint) {
    Lexer lex("a b c");
    const B_TOKEN a = lex.get();
    B_LEX_REWIND_POINT_OBJ point = nullptr;
    b_lexPutback(lex, &a);
    ASSERT_EQ(b_lexCreateRewindPoint(lex, &point), sOKAY);
    EXPECT_EQ(lex.next(), "id:A");
    EXPECT_EQ(lex.next(), "id:B");
    ASSERT_EQ(b_lexRewind(lex, point), sOKAY);
    EXPECT_EQ(lex.next(), "id:B") << "the point lies behind a, the slot is empty";
    const B_TOKEN c = lex.get();
    b_lexPutback(lex, &c);
    ASSERT_EQ(b_lexRewind(lex, point), sOKAY);
    EXPECT_EQ(lex.next(), "id:C") << "the slot is not emptied";
    EXPECT_EQ(lex.next(), "id:B");
}

TEST(LexRewind, StatusesAndOwners) {
    Tag tag;
    Tag user;
    B_LEX lex = b_lexOpen("x", OAK_TRUE, OAK_FALSE, tag);
    B_LEX_REWIND_POINT_OBJ point = nullptr;
    EXPECT_EQ(b_lexCreateRewindPoint(nullptr, &point), eINVNULLARG);
    EXPECT_EQ(b_lexCreateRewindPoint(lex, nullptr), eINVNULLARG);
    EXPECT_EQ(b_lexCreateRewindPoint(lex, &point), eINVFCNSEQ);
    EXPECT_EQ(b_lexRewind(nullptr, point), eINVNULLARG);
    EXPECT_EQ(b_lexRewind(lex, nullptr), eINVNULLARG);
    EXPECT_EQ(point, nullptr);

    OAK_INPUT_OBJ input = nullptr;
    Tag inputTag;
    ASSERT_EQ(
        b_inputCreateFromMemory(&input, reinterpret_cast<const uint8_t *>("1 2"), 3, inputTag),
        sOKAY);
    b_lexInitInput(lex, input, user);
    const uint64_t one = oaktest::faults_are_injected() ? 1 : 0;
    EXPECT_EQ(inputTag.live(), one);
    ASSERT_EQ(b_lexCreateRewindPoint(lex, &point), sOKAY);
    EXPECT_EQ(user.live(), one) << "the point";
    EXPECT_EQ(inputTag.live(), 2 * one) << "the input and its point";
    OSL_FREE(point->rewindPoint, inputTag);
    b_lexInitInput(lex, nullptr, user);
    EXPECT_EQ(b_lexRewind(lex, point), eINVFCNSEQ);
    OSL_FREE(point, user);
    b_lexClose(lex);
    b_inputClose(input);
}

OAK_RETCODE refuse_to_rewind(OAK_INPUT_OBJ, OAK_REWIND_POINT_OBJ) {
    return eFILEIO;
}

TEST(LexRewind, RefusalOfTheInputChangesNothing) {
    Lexer lex("a b c");
    lex.get();
    B_LEX_REWIND_POINT_OBJ point = nullptr;
    ASSERT_EQ(b_lexCreateRewindPoint(lex, &point), sOKAY);
    lex.get();
    const B_LEX state = lex;
    state->input->rewindFcn = refuse_to_rewind;
    EXPECT_EQ(b_lexRewind(lex, point), eFILEIO);
    const B_TOKEN token = lex.get();
    EXPECT_EQ(show(token), "id:C");
    EXPECT_EQ(token.pos, 5u);
}

// ---- Files and the slow road -----------------------------------------------

// A file with the given content, at its start.
class File {
  public:
    explicit File(const std::string &content) {
        uint32_t counter = 0;
        name_ = osl_fileCreateTmpName(&counter, "lextest", 0, 0, tag_);
        handle_ = osl_fileOpen(name_, OSL_OPEN_TRUNCATE, 0);
        const auto size = static_cast<uint32_t>(content.size());
        EXPECT_EQ(osl_fileSeekWrite(handle_, 0, content.data(), size), size);
        EXPECT_EQ(b_inputCreateFromFile(&input_, handle_, tag_), sOKAY);
    }
    ~File() {
        b_inputClose(input_);
        osl_fileClose(handle_);
        EXPECT_EQ(osl_fileRemove(name_), sOKAY);
        OSL_FREE(name_, tag_);
    }
    File(const File &) = delete;
    File &operator=(const File &) = delete;
    OAK_INPUT_OBJ input() const { return input_; }
    OSL_FH handle() const { return handle_; }
    OSL_MEMTAG tag() const { return tag_; }

  private:
    Tag tag_;
    char *name_ = nullptr;
    OSL_FH handle_ = nullptr;
    OAK_INPUT_OBJ input_ = nullptr;
};

// An input that offers no window: each character is a call.
const std::string *slow_text = nullptr;
size_t slow_place = 0;
OAK_RETCODE read_slowly(OAK_INPUT_OBJ, B_CHAR *ch) {
    *ch = slow_place < slow_text->size() ? static_cast<uint8_t>((*slow_text)[slow_place++]) : 0;
    return sOKAY;
}
std::string rest_read_slowly(const std::string &text, Dialect dialect) {
    OAK_INPUT input = {};
    input.u.file = {};
    input.readFcn = read_slowly;
    slow_text = &text;
    slow_place = 0;
    Lexer lex(dialect);
    lex.read_from(&input);
    return rest(lex);
}

// Every token of the text laid over each byte of a block's border.
TEST(LexFiles, TokensOverABlockBorderReadAsFromMemory) {
    const std::string text = kMixedText;
    for (size_t shift = 0; shift <= text.size(); ++shift) {
        const std::string shifted = std::string(INPUT_BLOCK_SIZE - shift, ' ') + text;
        File file(shifted);
        Lexer from_file(Dialect::sqlQuotedIdentifiers);
        from_file.read_from(file.input());
        Lexer from_memory(shifted, Dialect::sqlQuotedIdentifiers);
        EXPECT_EQ(rest(from_file), rest(from_memory)) << shift;
    }
}

TEST(LexFiles, LongTokensSpanBlocks) {
    for (const size_t size : {1000u, 1023u, 1024u, 1025u, 3000u}) {
        const std::string word(size, 'W');
        const std::string digits = std::string(size, '0') + "7";
        File file(word + " '" + word + "' " + digits + " x'" + std::string(2 * size, '4') + "' /*" +
                  word + "*/ end");
        Lexer lex;
        lex.read_from(file.input());
        EXPECT_EQ(lex.next(), "id:" + word);
        EXPECT_EQ(lex.next(), "str:" + word);
        EXPECT_EQ(lex.next(), "int:7");
        EXPECT_EQ(lex.next(), "bin:" + std::string(2 * size, '4'));
        EXPECT_EQ(lex.next(), "id:END");
        EXPECT_EQ(lex.next(), "eos");
    }
}

TEST(LexFiles, RewindingCrossesBlocks) {
    std::string text;
    for (int i = 0; i < 700; ++i) {
        text += "w" + std::to_string(i) + (i % 7 == 0 ? "\n" : " ");
    }
    File file(text);
    for (const int count : {0, 1, 200, 201, 202, 400, 699}) {
        ASSERT_EQ(b_inputRewind(file.input(), nullptr), sOKAY);
        Lexer lex;
        lex.read_from(file.input());
        for (int i = 0; i < count; ++i) {
            lex.get();
        }
        B_LEX_REWIND_POINT_OBJ point = nullptr;
        ASSERT_EQ(b_lexCreateRewindPoint(lex, &point), sOKAY);
        const std::string first = rest(lex);
        ASSERT_EQ(b_lexRewind(lex, point), sOKAY);
        EXPECT_EQ(rest(lex), first);
        OSL_FREE(point->rewindPoint, file.tag());
    }
}

TEST(LexFiles, FailedReadCountsAsTheEnd) {
    File file(std::string(1500, 'a') + " b");
    ASSERT_EQ(osl_fileSetSize(file.handle(), 1100), sOKAY);
    Lexer lex;
    lex.read_from(file.input());
    EXPECT_EQ(lex.next(), "id:" + std::string(1024, 'A')) << "the second block is short";
    EXPECT_EQ(lex.next(), "eos");
}

std::vector<std::string> split(const std::string &text) {
    std::istringstream in(text);
    std::vector<std::string> parts;
    for (std::string part; std::getline(in, part, '~');) {
        parts.push_back(part);
    }
    return parts;
}

// Random texts from an alphabet in which every state of the lexer is near.
std::string random_text(oaktest::Random &random) {
    static const std::vector<std::string> pieces =
        split("a~Zx~x'~'~\"~''~U&'~\\~\\u00~\\x~0x~4~1F~.~e~E+~-~--~/*~*/~\n~ ~\t~"
              "\x80~;~,~(~)~00~123~$_~\\0~+~{~}~:~9999999999999999~\x7F");
    std::string text;
    for (uint64_t count = random.below(60); count != 0; --count) {
        text += pieces[random.below(pieces.size())];
    }
    return text;
}

TEST(LexRandom, FastAndSlowRoadAgree) {
    oaktest::Random random(1);
    for (int i = 0; i < 3000; ++i) {
        const std::string text = random_text(random);
        const auto dialect = static_cast<Dialect>(random.below(4));
        Lexer lex(text, dialect);
        ASSERT_EQ(rest(lex), rest_read_slowly(text, dialect)) << text;
    }
}

// The character at a token's place is the one that the token begins with.
TEST(LexRandom, PlacesPointAtTheTokens) {
    oaktest::Random random(2);
    for (int i = 0; i < 2000; ++i) {
        const std::string text = random_text(random);
        std::vector<std::string> lines(1);
        for (const char ch : text) {
            if (ch == '\n') {
                lines.emplace_back();
            } else {
                lines.back() += ch;
            }
        }
        Lexer lex(text);
        for (B_TOKEN token = lex.get(); token.type != tokEOS; token = lex.get()) {
            ASSERT_GE(token.line, 1u);
            ASSERT_LE(token.line, lines.size());
            const std::string &line = lines[token.line - 1];
            ASSERT_GE(token.pos, 1u);
            ASSERT_LE(token.pos, line.size()) << text;
            const char at = line[token.pos - 1];
            switch (token.type) {
                case tokIDENTIFIER:
                    EXPECT_EQ(std::toupper(at), token.v.id[0]) << text;
                    break;
                case tokINTEGER:
                    EXPECT_TRUE(at >= '0' && at <= '9') << text;
                    break;
                case tokDOUBLE:
                case tokDECIMAL:
                    EXPECT_TRUE((at >= '0' && at <= '9') || at == '.') << text;
                    break;
                case tokSTRING:
                    EXPECT_NE(std::string("'\"Uu").find(at), std::string::npos) << text;
                    break;
                case tokBINARY:
                    EXPECT_NE(std::string("xX0").find(at), std::string::npos) << text;
                    break;
                case tokERROR:
                    break;
                default:
                    EXPECT_EQ(at, static_cast<char>(token.type)) << text;
            }
        }
    }
}

// ---- Recording -------------------------------------------------------------

std::string recorded(const std::string &text, Dialect dialect = Dialect::sql) {
    return Lexer(text, dialect).recorded();
}

TEST(LexRecording, KeepsTheSourceOfAnExpression) {
    const std::pair<const char *, const char *> rows[] = {
        {"a + b", "a + b"},
        {"Abc+dEF", "Abc+dEF"}, // the case of the source
        {"a  +\t b\n\n- c  ", "a + b- c"},
        {"a + 007 * .5", "a + 7 * 0.5"},
        {"a = 1.2345678901234567890", "a = 1.2345678901234567890"},
        {"f(a, b), c", "f(a, b) c"}, // commas outside parentheses are dropped
        {"f((a,b),c),d,e", "f((a,b),c)de"},
        {"a),b", "a),b"}, // a count below zero is not zero
        {"a; b", "a b"},
        {"a /* c */ + -- d\n b", "a + b"},
        {"count(distinct a)", "count( a)"},
        {"a from b", "a b"},
        {"x and ALL Select SELECTED", "x and SELECTED"},
        {"a = 'x'", "a = 'x'"},
        {"a = 'all'", "a = 'all'"}, // a literal is no word
        {"a = 'x,  y'", "a = 'x,  y'"},
        {"a = \"x\"", "a = \"x\""},
        {"a = ''", "a = ''"},
        {"a || U&'\\0041'", "a || 'A'"},
        {"a\x80 b", "a b"},
    };
    for (const auto &[text, expected] : rows) {
        EXPECT_EQ(recorded(text), expected) << text;
    }
}

TEST(LexRecording, BeginsWithTheTokenLastRead) {
    const std::pair<const char *, const char *> rows[] = {
        {"a", "a"},
        {"7+1", "7+1"},
        {"'x' || y", "'x' || y"},
        {"(a,b)", "(a,b)"},
        {"all a", " a"}, // filtered; nothing precedes the blank, so it is not recorded
        {"x'41' + 1", "x'41'"},
        {"0xfF", "0xfF"},
        {"", "(null)"},
        {"; a", "a"},
        {"\x80 a", "a"},
    };
    for (const auto &[text, expected] : rows) {
        const bool blank_first = expected[0] == ' ';
        EXPECT_EQ(recorded(text), blank_first ? expected + 1 : expected) << text;
    }
}

TEST(LexRecording, BeginsAnywhereAndEndsWithTheLastTokenRead) {
    Lexer lex("select a+b , c * (d,e) from");
    lex.get();
    lex.get();
    b_lexExprSaveBegin(lex);
    lex.get();
    lex.get();
    EXPECT_EQ(lex.taken_recording(), "a+b");
    EXPECT_EQ(lex.next(), "chr:,");
    lex.get();
    b_lexExprSaveBegin(lex);
    for (int i = 0; i < 6; ++i) {
        lex.get();
    }
    EXPECT_EQ(lex.taken_recording(), "c * (d,e)") << "the first recording's count is forgotten";
    EXPECT_EQ(lex.next(), "id:FROM");
}

TEST(LexRecording, QuotedIdentifiersKeepTheirQuotes) {
    EXPECT_EQ(recorded("\"aB\" + \"all\"", Dialect::sqlQuotedIdentifiers), "\"aB\" + \"all\"");
}

TEST(LexRecording, BinaryLiteralEndsTheText) {
    EXPECT_EQ(recorded("a = x'4142' + b"), "a = x'4142'");
    EXPECT_EQ(recorded("a = 0xFF"), "a = 0xFF");
}

TEST(LexRecording, WithoutSqlNoWordsAreRecorded) {
    EXPECT_EQ(recorded("a + b(c, d) - 7", Dialect::other), "+ (, ) -");
    EXPECT_EQ(recorded("a = 'x'", Dialect::other), "= 'x'");
    EXPECT_EQ(recorded("a b", Dialect::other), "(null)");
}

TEST(LexRecording, GetEndsItAndEmptiesTheToken) {
    Lexer lex("a b");
    EXPECT_EQ(lex.taken_recording(), "(null)") << "none was begun";
    lex.get();
    b_lexExprSaveBegin(lex);
    EXPECT_EQ(lex.taken_recording(), "a");
    EXPECT_STREQ(b_lexGetTokString(lex), "");
    EXPECT_EQ(lex.taken_recording(), "(null)");
    b_lexExprSaveBegin(lex);
    EXPECT_EQ(lex.taken_recording(), "(null)") << "the token was emptied";
    EXPECT_EQ(lex.next(), "id:B");
    EXPECT_EQ(lex.taken_recording(), "(null)") << "the recording has ended";
}

TEST(LexRecording, PutBackTokenIsNotRecordedAgain) {
    Lexer lex("a + b");
    lex.get();
    b_lexExprSaveBegin(lex);
    const B_TOKEN plus = lex.get();
    b_lexPutback(lex, &plus);
    lex.get();
    lex.get();
    EXPECT_EQ(lex.taken_recording(), "a + b");
}

TEST(LexRecording, LongTextsGrowTheBuffer) {
    std::string text = "a";
    for (int i = 0; i < 1000; ++i) {
        text += " + b" + std::to_string(i);
    }
    EXPECT_EQ(recorded(text), text);
}

TEST(LexRecording, CharactersAbove127GoInAsUtf8) {
    Lexer lex("a");
    lex.get();
    lex_exprPutch(lex, 'x');
    b_lexExprSaveBegin(lex);
    lex_exprPutch(lex, 127);
    lex_exprPutch(lex, 128);
    lex_exprPutch(lex, 0x20AC);
    lex_exprPutch(lex, ' ');
    lex_exprPutch(lex, ' ');
    lex_exprPutch(lex, ',');
    EXPECT_EQ(lex.taken_recording(), "a\x7F\xC2\x80\xE2\x82\xAC") << "and no x before it began";
}

TEST(LexRecording, DeepParenthesesCloseAgain) {
    const std::string text = std::string(40000, '(') + "a,b" + std::string(40000, ')') + ",c";
    EXPECT_EQ(recorded(text), std::string(40000, '(') + "a,b" + std::string(40000, ')') + "c");
}

// ---- Reserved words --------------------------------------------------------

const char *const kReserved =
    "ABS ALL ALLOCATE ALTER AND ANY ARE ARRAY AS ASENSITIVE ASYMMETRIC AT ATOMIC "
    "AUTHORIZATION AVG BEGIN BETWEEN BIGINT BINARY BLOB BOOLEAN BOTH BY CALL CALLED "
    "CARDINALITY CASCADED CASE CAST CEIL CEILING CHAR CHAR_LENGTH CHARACTER "
    "CHARACTER_LENGTH CHECK CLOB CLOSE COALESCE COLLATE COLLECT COLUMN COMMIT CONDITION "
    "CONNECT CONSTRAINT CONVERT CORR CORRESPONDING COUNT COVAR_POP COVAR_SAMP CREATE "
    "CROSS CUBE CUME_DIST CURRENT CURRENT_DATE CURRENT_DEFAULT_TRANSFORM_GROUP "
    "CURRENT_PATH CURRENT_ROLE CURRENT_TIME CURRENT_TIMESTAMP "
    "CURRENT_TRANSFORM_GROUP_FOR_TYPE CURRENT_USER CURSOR DATE DAY DEALLOCATE DEC DECIMAL "
    "DECLARE DEFAULT DELETE DENSE_RANK DEREF DESCRIBE DETERMINISTIC DISCONNECT DISTINCT "
    "DOUBLE DROP DYNAMIC EACH ELEMENT ELSE END END-EXEC ESCAPE EVERY EXCEPT EXEC EXECUTE "
    "EXISTS EXP EXTERNAL EXTRACT FALSE FETCH FILTER FLOAT FLOOR FOR FOREIGN FREE FROM "
    "FULL FUNCTION FUSION GET GLOBAL GRANT GROUP GROUPING HAVING HOLD HOUR IDENTITY IN "
    "INDICATOR INNER INOUT INSENSITIVE INSERT INT INTEGER INTERSECT INTERSECTION INTERVAL "
    "INTO IS JOIN LANGUAGE LARGE LATERAL LEADING LEFT LIKE LN LOCAL LOCALTIME "
    "LOCALTIMESTAMP LOWER MATCH MAX MEMBER MERGE METHOD MIN MINUTE MOD MODIFIES MODULE "
    "MONTH MULTISET NATIONAL NATURAL NCHAR NCLOB NEW NO NONE NORMALIZE NOT NULL NULLIF "
    "NUMERIC OCTET_LENGTH OF OLD ON ONLY OPEN OR ORDER OUT OUTER OVER OVERLAPS OVERLAY "
    "PARAMETER PARTITION PERCENT_RANK PERCENTILE_CONT PERCENTILE_DISC POSITION POWER "
    "PRECISION PREPARE PRIMARY PROCEDURE RANGE READ READS REAL RECURSIVE REF REFERENCES "
    "REFERENCING REGR_AVGX REGR_AVGY REGR_COUNT REGR_INTERCEPT REGR_R2 REGR_SLOPE "
    "REGR_SXX REGR_SXY REGR_SYY RELEASE RESULT RETURN RETURNS REVOKE RIGHT ROLLBACK "
    "ROLLUP ROW ROW_NUMBER ROWS SAVEPOINT SCOPE SCROLL SEARCH SECOND SELECT SENSITIVE "
    "SESSION_USER SET SIMILAR SMALLINT SOME SPECIFIC SPECIFICTYPE SQL SQLEXCEPTION "
    "SQLSTATE SQLWARNING SQRT START STATIC STDDEV_POP STDDEV_SAMP SUBMULTISET SUBSTRING "
    "SUM SYMMETRIC SYSTEM SYSTEM_USER TABLE TABLESAMPLE THEN TIME TIMESTAMP TIMEZONE_HOUR "
    "TIMEZONE_MINUTE TO TRAILING TRANSACTION TRANSLATE TRANSLATION TREAT TRIGGER TRIM "
    "TRUE UESCAPE UNION UNIQUE UNKNOWN UNNEST UPDATE UPPER USER USING VALUE VALUES "
    "VAR_POP VAR_SAMP VARCHAR VARYING WHEN WHENEVER WHERE WIDTH_BUCKET WINDOW WITH WITHIN "
    "WITHOUT YEAR ";

std::vector<std::string> reserved_words() {
    std::istringstream in(kReserved);
    std::vector<std::string> words;
    for (std::string word; in >> word;) {
        words.push_back(word);
    }
    return words;
}

TEST(LexReserved, AllTwoHundredAndEightyEightWordsInAnyCase) {
    const std::vector<std::string> words = reserved_words();
    ASSERT_EQ(words.size(), 288u);
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string &word = words[i];
        EXPECT_EQ(b_lexSQLReserved(word.c_str()), OAK_TRUE) << word;
        std::string lower = word;
        for (char &ch : lower) {
            ch = ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch | 0x20) : ch;
        }
        EXPECT_EQ(b_lexSQLReserved(lower.c_str()), OAK_TRUE) << lower;
        lower[0] = word[0];
        EXPECT_EQ(b_lexSQLReserved(lower.c_str()), OAK_TRUE) << lower;
        EXPECT_TRUE(i == 0 || strcasecmp(words[i - 1].c_str(), word.c_str()) < 0) << word;
    }
}

TEST(LexReserved, NothingElseIs) {
    const std::vector<std::string> words = reserved_words();
    const auto is_word = [&](const std::string &text) {
        return std::find(words.begin(), words.end(), text) != words.end();
    };
    for (const std::string &word : words) {
        for (const std::string &near : {word + "Z", word + "_", word.substr(0, word.size() - 1),
                                        word.substr(1), "A" + word, word + " "}) {
            EXPECT_EQ(b_lexSQLReserved(near.c_str()) == OAK_TRUE, is_word(near)) << near;
        }
    }
    for (const char *text : {"", "A", "ZZZ", "KEY", "INDEX", "~", "\xFF", "end_exec", "0"}) {
        EXPECT_EQ(b_lexSQLReserved(text), OAK_FALSE) << text;
    }
}

// ---- Exhausted memory ------------------------------------------------------

// Runs `operation` (lexer, tag) with a lexer of its own under a tag of its own.
template <class Operation>
OAK_RETCODE with_lexer(Operation operation) {
    OSL_MEMTAG tag = OSL_CREATE_TAG();
    if (tag == nullptr) {
        return eNOMEMORY;
    }
    B_LEX lex = b_lexOpen("x", OAK_TRUE, OAK_FALSE, tag);
    const OAK_RETCODE rc = lex != nullptr ? operation(lex, tag) : eNOMEMORY;
    b_lexClose(lex);
    OSL_FREE_TAG(tag);
    return rc;
}

TEST(LexMemory, EachFailedAllocationIsSeen) {
    std::string text;
    const auto operation = [&](B_LEX lex, OSL_MEMTAG tag) {
        b_lexInit(lex, text.c_str(), "file", 1, tag);
        B_TOKEN token;
        while (b_lexGet(lex, &token) != tokEOS) {
            if (token.type == tokERROR) {
                const std::string message = token.v.str;
                EXPECT_TRUE(message == "not enough memory" ||
                            message == "must first call b_lexInit")
                    << message;
                return lex_refusal(lex, eSYNTAX);
            }
        }
        return sOKAY;
    };
    // Every kind of token short, and each of the growing ones as the first to grow.
    for (const std::string &each :
         {std::string("select 'abc' x'41' 0x4142 1.2345678901234567890 U&'x' 7 1.5 ("),
          std::string(500, 'w'), "'" + std::string(500, 'w') + "'",
          "U&'" + std::string(500, 'w') + "'", "1e" + std::string(500, '0'),
          "x'" + std::string(500, '4') + "'", "0x" + std::string(500, '4')}) {
        text = each;
        const uint64_t failures = oaktest::sweep_faults(Resource::memory, {eNOMEMORY},
                                                        [&] { return with_lexer(operation); });
        EXPECT_EQ(failures >= 10, oaktest::faults_are_injected()) << text;
    }
}

TEST(LexMemory, OpeningLeavesNothingBehindWhenItFails) {
    Tag tag;
    const uint64_t failures = oaktest::sweep_faults(Resource::memory, {eNOMEMORY}, [&] {
        B_LEX lex = b_lexOpen("x", OAK_TRUE, OAK_FALSE, tag);
        b_lexClose(lex);
        return lex != nullptr ? sOKAY : eNOMEMORY;
    });
    EXPECT_EQ(failures, oaktest::faults_are_injected() ? 4u : 0u) << "two allocations, two ways";
}

TEST(LexMemory, ScanningGoesOnAfterAFailure) {
    if (!oaktest::faults_are_injected()) {
        GTEST_SKIP() << "no faults in this build";
    }
#ifdef OSL_FAULT_INJECTION
    Lexer lex("abc 'def' 7 ghi");
    osl_faultArm(OSL_FAULT_MEMORY, 1, OAK_FALSE);
    EXPECT_EQ(lex.next(), "error:not enough memory");
    osl_faultDisarm(OSL_FAULT_MEMORY);
    EXPECT_EQ(lex.next(), "str:def");
    EXPECT_EQ(lex.next(), "int:7");
#endif
}

TEST(LexMemory, RecordingThatCannotGrowIsGivenUp) {
    const std::string text(1000, '(');
    const auto operation = [&](B_LEX lex, OSL_MEMTAG tag) {
        b_lexInit(lex, text.c_str(), nullptr, 1, tag);
        B_TOKEN token;
        b_lexGet(lex, &token);
        b_lexExprSaveBegin(lex);
        while (token.type == tokLPAR) {
            b_lexGet(lex, &token);
        }
        const char *recording = b_lexExprGet(lex);
        if (recording == nullptr) {
            return eNOMEMORY;
        }
        EXPECT_EQ(recording, text) << "all or nothing";
        return sOKAY;
    };
    const uint64_t failures =
        oaktest::sweep_faults(Resource::memory, {eNOMEMORY}, [&] { return with_lexer(operation); });
    EXPECT_EQ(failures >= 10, oaktest::faults_are_injected());
}

TEST(LexMemory, RewindPointsAreWholeOrNotThere) {
    const auto operation = [](B_LEX lex, OSL_MEMTAG tag) {
        b_lexInit(lex, "1 2", nullptr, 1, tag);
        B_LEX_REWIND_POINT_OBJ point = nullptr;
        const OAK_RETCODE rc = b_lexCreateRewindPoint(lex, &point);
        EXPECT_EQ(point != nullptr, rc == sOKAY);
        return rc == sOKAY ? b_lexRewind(lex, point) : lex_refusal(lex, rc);
    };
    const uint64_t failures =
        oaktest::sweep_faults(Resource::memory, {eNOMEMORY}, [&] { return with_lexer(operation); });
    EXPECT_EQ(failures >= 10, oaktest::faults_are_injected());
}

TEST(LexMemory, FailedPointLeavesNoHalfBehind) {
    Tag tag;
    Tag user;
    OAK_INPUT_OBJ input = nullptr;
    ASSERT_EQ(b_inputCreateFromMemory(&input, nullptr, 0, tag), sOKAY);
    B_LEX lex = b_lexOpen("x", OAK_TRUE, OAK_FALSE, tag);
    b_lexInitInput(lex, input, user);
    const uint64_t failures = oaktest::sweep_faults(Resource::memory, {eNOMEMORY}, [&] {
        B_LEX_REWIND_POINT_OBJ point = nullptr;
        const OAK_RETCODE rc = b_lexCreateRewindPoint(lex, &point);
        if (rc == sOKAY) {
            OSL_FREE(point->rewindPoint, tag);
            OSL_FREE(point, user);
        }
        return rc;
    });
    EXPECT_EQ(failures, oaktest::faults_are_injected() ? 4u : 0u);
    b_lexClose(lex);
    b_inputClose(input);
}

// A tag with a jump buffer: the failure leaves through it, and the lexer's tag
// still frees all.
TEST(LexMemory, TokenTagMayJump) {
    if (!oaktest::faults_are_injected()) {
        GTEST_SKIP() << "no faults in this build";
    }
#ifdef OSL_FAULT_INJECTION
    static jmp_buf exit;
    Tag tag;
    OSL_MEMTAG user = osl_createTagEx(&exit, BLOCK_ALLOCATOR, 0, 0, 0, __FILE__, __LINE__);
    B_LEX lex = b_lexOpen("x", OAK_TRUE, OAK_FALSE, tag);
    b_lexInit(lex, "abc def", nullptr, 1, user);
    static B_TOKEN token;
    const int status = setjmp(exit);
    if (status == 0) {
        osl_faultArm(OSL_FAULT_MEMORY, 1, OAK_FALSE);
        b_lexGet(lex, &token);
        ADD_FAILURE() << "no jump";
    }
    EXPECT_EQ(status, eNOMEMORY);
    osl_faultDisarm(OSL_FAULT_MEMORY);
    EXPECT_EQ(b_lexGet(lex, &token), tokIDENTIFIER);
    EXPECT_STREQ(token.v.id, "DEF");
    b_lexClose(lex);
    OSL_FREE_TAG(user);
#endif
}

} // namespace
