// The library's one lexer.
//
// Characters come from an input one at a time, with one character of reading
// ahead (`ungetch`). Line and column follow from counts: `charno` grows with
// every character taken, `linestart` is its value at the last newline, and a
// character that is put back takes both back again. The end of the text is the
// character 0, which counts like any other and comes as often as it is asked for.
//
// Speed. Nearly every token of a catalog stands whole in the input's window and is
// measured and taken there (scan_in_window). Of the others, runs of like characters
// (words, digits, white space, the plain insides of strings) are taken from the
// window as a whole, so that text in memory costs no call a character; only what
// ends a run goes through get_input. The text of a token is gathered in `tokbuf`,
// which is kept from token to token, and is copied once, when the token has a text
// to hand out.
//
// Memory that runs out is noted in `outOfMemory` where it happens and turned into
// an error token at the end of the token; nothing in between has to look.
//
// A recording gets each token when it is complete (record_token), and blanks as
// they are skipped.
//
// Rests on the input, on decimals and on the platform's memory and text; serves
// the JSON reader, key-value strings and the compilers above the library.
#include "lex.h"

#include <array>
#include <cmath>
#include <cstring>
#include <iterator>

#include <strings.h>

#include "bcd.h"
#include "lex_internal.h"
#include "lex_reserved.h"

namespace {

// ---- Constant tables -------------------------------------------------------

constexpr char kNoText[] = "must first call b_lexInit";
constexpr char kBadBinary[] = "bad binary literal";
constexpr char kNoEndQuote[] = "string literal missing terminal quote";
constexpr char kBadEscape[] = "invalid escape sequence";
constexpr char kUnicode[] = "Unicode characters are not supported";
constexpr char kBadUnicodeLiteral[] = "Invalid Unicode literal sequence";
constexpr char kUnsupported[] = "unsupported character";
constexpr char kDecimalOverflow[] = "decimal conversion overflow";
constexpr char kOutOfMemory[] = "not enough memory";

constexpr size_t kBufferStep = 65;
constexpr uint32_t kGreatestCodePoint = 0x10FFFF;
constexpr uint32_t kDecimalDigits = 16; // from here on a number may not fit a double

// Words that a recording leaves out.
constexpr const char *sqlIgnoreList[] = {"ALL", "DISTINCT", "FROM", "SELECT"};

// Escapes of one letter.
struct Escape {
    char letter;
    char value;
};
constexpr Escape kEscapes[] = {
    {'"', '"'}, {'\'', '\''}, {'?', '?'}, {'\\', '\\'}, {'a', 7},  {'b', 8},
    {'f', 12},  {'n', 10},    {'r', 13},  {'t', 9},     {'v', 11},
};

// Classes of characters, a bit each. They are ASCII's own and obey no locale.
enum : uint16_t {
    kSkipped = 0x01, // between tokens: white space and control characters, DEL among them
    kIndent = 0x02,  // the same without the newline
    kLetter = 0x04,  // starts an identifier
    kDigit = 0x08,
    kHexDigit = 0x10,
    kSqlWord = 0x20,   // goes on in an SQL identifier
    kOtherWord = 0x40, // goes on in an identifier of the other dialect
    kPlain = 0x80,     // inside a string: neither quote, backslash, newline nor end
    kAlone = 0x100     // a token of its own whatever follows, which '.', '-' and '/' are not
};

constexpr uint16_t class_of(uint8_t ch) {
    const bool upper = ch >= 'A' && ch <= 'Z';
    const bool lower = ch >= 'a' && ch <= 'z';
    const bool digit = ch >= '0' && ch <= '9';
    const bool letter = upper || lower || ch == '_';
    const bool hex = digit || (ch >= 'A' && ch <= 'F') || (ch >= 'a' && ch <= 'f');
    const bool skipped = (ch >= 1 && ch <= ' ') || ch == 127;
    const bool sqlWord = letter || digit || ch == '$';
    const bool otherWord = sqlWord || ch == '.' || ch == '/' || ch == ':' || ch == '\\';
    const bool special = ch == 0 || ch == '\n' || ch == '\'' || ch == '"' || ch == '\\';
    const bool quote = ch == '\'' || ch == '"';
    const bool alone =
        ch > ' ' && ch <= '~' && !letter && !digit && !quote && ch != '.' && ch != '-' && ch != '/';
    return static_cast<uint16_t>(
        (skipped ? kSkipped : 0) | (skipped && ch != '\n' ? kIndent : 0) | (letter ? kLetter : 0) |
        (digit ? kDigit : 0) | (hex ? kHexDigit : 0) | (sqlWord ? kSqlWord : 0) |
        (otherWord ? kOtherWord : 0) | (special ? 0 : kPlain) | (alone ? kAlone : 0));
}

constexpr auto kClasses = [] {
    std::array<uint16_t, 256> classes{};
    for (size_t ch = 0; ch < classes.size(); ++ch) {
        classes[ch] = class_of(static_cast<uint8_t>(ch));
    }
    return classes;
}();

inline bool is(B_CHAR ch, uint16_t classes) {
    return (kClasses[static_cast<uint8_t>(ch)] & classes) != 0;
}

template <uint16_t classes>
size_t run_length(const uint8_t *text, size_t size) {
    size_t length = 0;
    while (length < size && is(text[length], classes)) {
        length++;
    }
    return length;
}

// The two dialects' identifierFcn.
constexpr LEX_IDENTIFIER_FCN isSQLIdentifier = run_length<kSqlWord>;
constexpr LEX_IDENTIFIER_FCN isOtherIdentifier = run_length<kOtherWord>;

// The SQL dialect's saveExprFcn.
bool sqlSaveExpr(const char *word) {
    for (const char *ignored : sqlIgnoreList) {
        if (strcasecmp(word, ignored) == 0) {
            return false;
        }
    }
    return true;
}

// ---- Growing buffers -------------------------------------------------------

// Appends bytes to a buffer and keeps room for a terminator behind them. The
// sizes grow in small steps; the platform keeps the cost of that amortised.
bool append_bytes(char *&buffer, size_t &capacity, size_t &used, const void *bytes, size_t count,
                  OSL_MEMTAG tag) {
    const size_t needed = used + count + 1;
    if (needed > capacity) {
        const size_t wanted = (needed + kBufferStep - 1) / kBufferStep * kBufferStep;
        void *grown = osl_extendMem(buffer, wanted, tag, OSL_MEM_PLAIN, wanted - capacity, nullptr,
                                    __FILE__, __LINE__);
        if (grown == nullptr) {
            return false;
        }
        buffer = static_cast<char *>(grown);
        capacity = wanted;
    }
    if (count != 0) {
        std::memcpy(buffer + used, bytes, count);
    }
    used += count;
    return true;
}

inline void put_bytes(B_LEX lex, const void *bytes, size_t count) {
    if (lex->tokpos + count < lex->szTokbuf) {
        std::memcpy(lex->tokbuf + lex->tokpos, bytes, count);
        lex->tokpos += count;
    } else if (!append_bytes(lex->tokbuf, lex->szTokbuf, lex->tokpos, bytes, count, lex->lextag)) {
        lex->outOfMemory = OAK_TRUE;
    }
}

inline void put(B_LEX lex, B_CHAR ch) {
    if (lex->tokpos + 1 < lex->szTokbuf) {
        lex->tokbuf[lex->tokpos++] = static_cast<char>(ch);
    } else {
        const auto byte = static_cast<char>(ch);
        put_bytes(lex, &byte, 1);
    }
}

// A recording that cannot grow is given up.
void record_bytes(B_LEX lex, const void *bytes, size_t count) {
    if (count == 0 || lex->saveexpr == OAK_FALSE) {
        return;
    }
    if (!append_bytes(lex->xbuf, lex->szXbuf, lex->xpos, bytes, count, lex->lextag)) {
        lex->saveexpr = OAK_FALSE;
        lex->xpos = 0;
        return;
    }
    lex->exch = lex->xbuf[lex->xpos - 1];
}

// ---- Characters ------------------------------------------------------------

// A read failure counts as the end of the text.
inline B_CHAR read_char(OAK_INPUT_OBJ input) {
    if (input_isMemory(input)) {
        OAK_MEM_INPUT &in = input->u.mem;
        return in.pos < in.size ? in.buffer[in.pos++] : 0;
    }
    B_CHAR ch = 0;
    return input->readFcn(input, &ch) == sOKAY ? ch : 0;
}

inline B_CHAR get_input(B_LEX lex) {
    B_CHAR ch = lex->ungetch;
    if (ch == LEX_NO_CHAR) {
        ch = read_char(lex->input);
    } else {
        lex->ungetch = LEX_NO_CHAR;
    }
    lex->charno++;
    if (ch == '\n' && lex->lineno != 0) {
        lex->lineno++;
        lex->prevlinestart = lex->linestart;
        lex->linestart = lex->charno;
    }
    return ch;
}

// Looks at the next character without counting it.
inline B_CHAR peek_input(B_LEX lex) {
    if (lex->ungetch == LEX_NO_CHAR) {
        lex->ungetch = read_char(lex->input);
    }
    return lex->ungetch;
}

inline void unget_input(B_LEX lex, B_CHAR ch) {
    lex->ungetch = ch;
    lex->charno--;
    if (ch == '\n' && lex->lineno != 0) {
        lex->lineno--;
        lex->linestart = lex->prevlinestart;
    }
}

// Moves the input past the characters at the start of its window that `measure`
// counts, none of them a newline, into the token or, with `keep` false, nowhere.
// True when a character that it does not count stands next in the window.
template <typename Measure>
inline bool take_run(B_LEX lex, Measure measure, bool keep) {
    if (lex->ungetch != LEX_NO_CHAR) {
        return false;
    }
    const INPUT_WINDOW window = input_window(lex->input);
    const size_t count = measure(window.bytes, window.size);
    if (keep && count != 0) {
        put_bytes(lex, window.bytes, count);
    }
    input_advance(lex->input, count);
    lex->charno += count;
    return count < window.size;
}

// Takes all characters that `measure` counts into the token.
template <typename Measure>
void put_while(B_LEX lex, Measure measure) {
    while (!take_run(lex, measure, true)) {
        const B_CHAR ch = get_input(lex);
        const auto byte = static_cast<uint8_t>(ch);
        if (measure(&byte, 1) == 0) {
            unget_input(lex, ch);
            return;
        }
        put(lex, ch);
    }
}

// ---- Recording -------------------------------------------------------------

// A word or a number; the dialect says whether it is recorded.
void exprPutstr(B_LEX lex, const char *text) {
    if (lex->saveexpr != OAK_FALSE && lex->saveExprFcn != nullptr && lex->saveExprFcn(text)) {
        record_bytes(lex, text, std::strlen(text));
    }
}

// A literal is no word: it is recorded as it was read, between its quotes, with
// no filter and in either dialect.
void record_quoted(B_LEX lex) {
    lex_exprPutch(lex, lex->quote);
    record_bytes(lex, lex->tokbuf, lex->tokpos);
    lex_exprPutch(lex, lex->quote);
}

// A binary literal is recorded with its terminator, which ends the recorded text
// for whoever asks for it: settled behaviour.
void record_binary(B_LEX lex) {
    record_bytes(lex, lex->tokbuf, lex->tokpos + 1);
}

// Adds the token last read to the recording, of which there is one.
void record_token(B_LEX lex) {
    switch (lex->toktype) {
        case tokIDENTIFIER:
            lex->quote != 0 ? record_quoted(lex) : exprPutstr(lex, lex->tokbuf);
            break;
        case tokINTEGER:
        case tokDECIMAL:
        case tokDOUBLE:
            exprPutstr(lex, lex->tokbuf);
            break;
        case tokSTRING:
            record_quoted(lex);
            break;
        case tokBINARY:
            record_binary(lex);
            break;
        case tokEOS:
        case tokERROR:
        case tokSEMI:
            break;
        default:
            lex_exprPutch(lex, static_cast<B_CHAR>(lex->toktype));
    }
}

// ---- Between tokens --------------------------------------------------------

// Skips white space and control characters; a blank inside a recording is
// recorded. Returns the first other character.
B_CHAR skip_space(B_LEX lex) {
    for (;;) {
        if (lex->saveexpr == OAK_FALSE) {
            take_run(lex, run_length<kIndent>, false);
        }
        const B_CHAR ch = get_input(lex);
        if (!is(ch, kSkipped)) {
            return ch;
        }
        if (ch == ' ' && lex->xpos != 0) {
            lex_exprPutch(lex, ch); // never the first character
        }
    }
}

// Both skip to the end of the comment or up to the end of the text, whichever
// comes first.
void skip_block_comment(B_LEX lex) {
    B_CHAR before = 0;
    for (;;) {
        const B_CHAR ch = get_input(lex);
        if (ch == '/' && before == '*') {
            return;
        }
        if (ch == 0) {
            unget_input(lex, ch);
            return;
        }
        before = ch;
    }
}

void skip_line_comment(B_LEX lex) {
    B_CHAR ch = 0;
    do {
        ch = get_input(lex);
    } while (ch != 0 && ch != '\n');
    if (ch == 0) {
        unget_input(lex, ch);
    }
}

// Skips a comment that `ch` begins. False when none begins here.
bool skip_comment(B_LEX lex, B_CHAR ch) {
    if (ch == '/' && peek_input(lex) == '*') {
        get_input(lex);
        skip_block_comment(lex);
        return true;
    }
    if (ch == '-' && peek_input(lex) == '-') {
        skip_line_comment(lex);
        return true;
    }
    return false;
}

// The first character of the next token.
B_CHAR skip_to_token(B_LEX lex) {
    for (;;) {
        const B_CHAR ch = skip_space(lex);
        if (lex->skipcomments == OAK_FALSE || !skip_comment(lex, ch)) {
            return ch;
        }
    }
}

// ---- Tokens ----------------------------------------------------------------
// Each scanner fills the token and returns null, or returns a message.

// A copy of `count` bytes of the token's text for the caller.
char *copy_text(B_LEX lex, const char *text, size_t count) {
    auto *copy = static_cast<char *>(OSL_GET_COPY(text, count, lex->usertag));
    if (copy == nullptr) {
        lex->outOfMemory = OAK_TRUE;
    }
    return copy;
}

// Ends the text in tokbuf. False when memory has run out on the way.
bool finish_text(B_LEX lex) {
    if (lex->outOfMemory != OAK_FALSE) {
        return false;
    }
    lex->tokbuf[lex->tokpos] = 0; // there is always room for it
    return true;
}

// Unquoted identifiers of the SQL dialect are folded in the copy alone.
void fold(char *text) {
    for (; *text != 0; ++text) {
        if (*text >= 'a' && *text <= 'z') {
            *text = static_cast<char>(*text - 'a' + 'A');
        }
    }
}

// The first character is taken as it is, even a double quote; only the end of
// the text is not. A quoted identifier that something else than a double quote
// ends stands as it was read: settled behaviour.
const char *getIdentifier(B_CHAR ch, bool quoted, B_LEX lex, B_TOKEN *token) {
    if (ch != 0) {
        put(lex, ch);
    } else {
        unget_input(lex, ch);
    }
    put_while(lex, lex->identifierFcn);
    if (quoted && peek_input(lex) == '"') {
        get_input(lex);
    }
    if (!finish_text(lex)) {
        return kOutOfMemory;
    }
    char *id = copy_text(lex, lex->tokbuf, lex->tokpos + 1);
    if (id == nullptr) {
        return kOutOfMemory;
    }
    if (!quoted && lex->identifierFcn == isSQLIdentifier) {
        fold(id);
    }
    token->type = tokIDENTIFIER;
    token->len = lex->tokpos + 1;
    token->v.id = id;
    return nullptr;
}

// ---- Numbers ---------------------------------------------------------------

struct Number {
    uint64_t value = 0; // of the digits before the point, as far as they fit
    uint32_t significantDigits = 0;
    bool point = false;
    bool exponent = false;
    bool overflow = false;
};

// Counts a digit of the mantissa: a leading zero of the fraction does not count.
void count_digit(Number &number, B_CHAR ch) {
    const uint64_t digit = ch - '0';
    if (digit == 0 && number.significantDigits == 0) {
        return;
    }
    if (number.significantDigits < UINT32_MAX) {
        number.significantDigits++;
    }
    if (number.point || number.overflow) {
        return;
    }
    uint64_t next = 0;
    number.overflow = __builtin_mul_overflow(number.value, uint64_t{10}, &next) ||
                      __builtin_add_overflow(next, digit, &next);
    number.value = number.overflow ? number.value : next;
}

// Takes one character of a number. False when it belongs to none.
bool take_number_char(Number &number, B_CHAR ch, B_LEX lex) {
    if (is(ch, kDigit)) {
        if (ch == '0' && number.significantDigits == 0 && !number.point && !number.exponent) {
            return true; // a leading zero is dropped
        }
        if (!number.exponent) {
            count_digit(number, ch);
        }
    } else if ((ch == '.' && !number.point) || ch == 'e' || ch == 'E') {
        (ch == '.' ? number.point : number.exponent) = true;
        if (lex->tokpos == 0) {
            put(lex, '0');
        }
    } else if ((ch != '+' && ch != '-') || !number.exponent) {
        return false;
    }
    put(lex, ch);
    return true;
}

// How much of the text is a number: the characters behind an exponent letter
// were taken without a look at their order.
size_t numeric_length(const char *text) {
    const auto digits = [text](size_t at) {
        while (is(static_cast<uint8_t>(text[at]), kDigit)) {
            at++;
        }
        return at;
    };
    size_t end = digits(0);
    if (text[end] == '.') {
        end = digits(end + 1);
    }
    if (text[end] != 'e' && text[end] != 'E') {
        return end;
    }
    const size_t sign = text[end + 1] == '+' || text[end + 1] == '-' ? 1 : 0;
    const size_t exponent = digits(end + 1 + sign);
    return exponent > end + 1 + sign ? exponent : end;
}

// The double nearest to the number that the text begins with; infinity when it
// is too large for any.
double to_double(char *text) {
    char &behind = text[numeric_length(text)];
    const char kept = behind;
    behind = 0;
    double value = 0;
    if (osl_strtod(text, &value) != sOKAY) {
        value = HUGE_VAL;
    }
    behind = kept;
    return value;
}

// A number with 16 digits or more stays a decimal if its double says something
// else than its digits do.
const char *getDecimal(double value, B_LEX lex, B_TOKEN *token) {
    OAK_BCD_T exact;
    if (oak_bcdFromString(lex->tokbuf, &exact) < sOKAY) {
        return kDecimalOverflow;
    }
    OAK_BCD_T rounded;
    if (oak_bcdFromDouble(value, &rounded) >= sOKAY && oak_bcdCompare(&exact, &rounded) == OAK_EQ) {
        return nullptr;
    }
    auto *bcd = static_cast<OAK_BCD_T *>(OSL_GET_COPY(&exact, sizeof exact, lex->usertag));
    if (bcd == nullptr) {
        lex->outOfMemory = OAK_TRUE;
        return kOutOfMemory;
    }
    token->type = tokDECIMAL;
    token->v.bcd = bcd;
    return nullptr;
}

const char *getNumber(B_CHAR ch, B_LEX lex, B_TOKEN *token) {
    Number number;
    while (take_number_char(number, ch, lex)) {
        ch = get_input(lex);
    }
    unget_input(lex, ch);
    if (lex->tokpos == 0) {
        put(lex, '0');
    }
    if (!finish_text(lex)) {
        return kOutOfMemory;
    }
    if (!number.point && !number.exponent && !number.overflow) {
        token->type = tokINTEGER;
        token->v.iv = number.value;
        return nullptr;
    }
    const double value = to_double(lex->tokbuf);
    token->type = tokDOUBLE;
    token->v.dv = value;
    return number.significantDigits >= kDecimalDigits && !number.exponent
               ? getDecimal(value, lex, token)
               : nullptr;
}

// ---- Binary literals -------------------------------------------------------

// Reads pairs of hexadecimal digits behind what tokbuf holds already.
const char *getBinary(B_LEX lex, B_TOKEN *token) {
    const size_t start = lex->tokpos;
    put_while(lex, run_length<kHexDigit>);
    if ((lex->tokpos - start) % 2 != 0) {
        get_input(lex); // what stands in the place of the second digit
        return kBadBinary;
    }
    if (!finish_text(lex)) {
        return kOutOfMemory;
    }
    const size_t count = (lex->tokpos - start) / 2;
    // One byte to spare, so that an empty literal has an address as well.
    auto *bytes = static_cast<uint8_t *>(OSL_GET(count + 1, lex->usertag));
    if (bytes == nullptr) {
        lex->outOfMemory = OAK_TRUE;
        return kOutOfMemory;
    }
    const char *digits = lex->tokbuf + start;
    for (size_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<uint8_t>(osl_hexdigit(digits[2 * i]) << 4 |
                                        osl_hexdigit(digits[2 * i + 1]));
    }
    token->type = tokBINARY;
    token->len = count;
    token->v.bv = bytes;
    return nullptr;
}

// x'4142'. The text in tokbuf is that of the source.
const char *getQuotedBinary(B_CHAR ch, B_LEX lex, B_TOKEN *token) {
    put(lex, ch);
    put(lex, get_input(lex));
    if (const char *message = getBinary(lex, token); message != nullptr) {
        return message;
    }
    const B_CHAR quote = get_input(lex);
    put(lex, quote);
    if (quote == '\'' && finish_text(lex)) {
        return nullptr;
    }
    b_lexTokenFree(lex, token);
    return lex->outOfMemory != OAK_FALSE ? kOutOfMemory : kBadBinary;
}

// 0x4142, without quotes.
const char *getPrefixedBinary(B_CHAR ch, B_LEX lex, B_TOKEN *token) {
    put(lex, ch);
    put(lex, get_input(lex));
    return getBinary(lex, token);
}

// ---- Strings ---------------------------------------------------------------

constexpr uint32_t kNoCode = UINT32_MAX;

// The value of `count` hexadecimal digits; kNoCode for anything else and for
// what is no code point.
uint32_t getUnicodeEscape(B_LEX lex, uint32_t count) {
    uint32_t value = 0;
    for (; count != 0; --count) {
        const B_CHAR ch = get_input(lex);
        if (!is(ch, kHexDigit)) {
            return kNoCode;
        }
        value = value << 4 | osl_hexdigit(static_cast<char>(ch));
    }
    return value <= kGreatestCodePoint ? value : kNoCode;
}

// Digits are those of hexadecimal text, yet A to F count 0 to 5 and the base is
// ten: settled behaviour. Without digits the value is 0.
uint32_t getDigitEscape(B_LEX lex) {
    uint32_t value = 0;
    for (;;) {
        const B_CHAR ch = get_input(lex);
        if (!is(ch, kHexDigit)) {
            unget_input(lex, ch);
            return value;
        }
        const uint32_t digit = is(ch, kDigit) ? ch - '0' : (ch | 0x20) - 'a';
        value = value * 10 + digit;
        if (value > kGreatestCodePoint) {
            return kNoCode;
        }
    }
}

// One to three octal digits, the first of which is `ch`.
uint32_t getOctalEscape(B_LEX lex, B_CHAR ch) {
    uint32_t value = 0;
    for (int digits = 0; digits < 3; ++digits) {
        if (ch < '0' || ch > '7') {
            unget_input(lex, ch);
            return value;
        }
        value = value * 8 + (ch - '0');
        if (digits < 2) {
            ch = get_input(lex);
        }
    }
    return value;
}

// What follows the backslash; kNoCode when it is no escape of one letter.
uint32_t simple_escape(B_CHAR ch) {
    for (const Escape &escape : kEscapes) {
        if (ch == static_cast<B_CHAR>(escape.letter)) {
            return static_cast<uint32_t>(escape.value);
        }
    }
    return kNoCode;
}

// The escapes of strings.
const char *put_escape(B_LEX lex) {
    const B_CHAR ch = get_input(lex);
    uint32_t value = simple_escape(ch);
    if (ch >= '0' && ch <= '7') {
        value = getOctalEscape(lex, ch);
    } else if (ch == 'x' || ch == 'X') {
        value = getDigitEscape(lex);
    } else if (ch == 'u' || ch == 'U') {
        value = getUnicodeEscape(lex, ch == 'u' ? 4 : 8);
    } else if (value == kNoCode) { // no escape at all: the backslash stays
        unget_input(lex, ch);
        value = '\\';
    }
    if (value == kNoCode) {
        return kBadEscape;
    }
    if (value > UINT8_MAX) {
        return kUnicode;
    }
    put(lex, value);
    return nullptr;
}

bool appendUnicodeAsUTF8(B_LEX lex, uint32_t code) {
    uint8_t bytes[6];
    const uint32_t count = osl_utf8_codes(code, bytes);
    put_bytes(lex, bytes, count);
    return count != 0;
}

// The escapes of Unicode literals.
const char *put_unicode_escape(B_LEX lex) {
    const B_CHAR ch = get_input(lex);
    if (ch == '\\') {
        put(lex, ch);
        return nullptr;
    }
    if (ch != '+') {
        unget_input(lex, ch);
    }
    const uint32_t code = getUnicodeEscape(lex, ch == '+' ? 6 : 4);
    return code != kNoCode && appendUnicodeAsUTF8(lex, code) ? nullptr : kBadEscape;
}

// Reads to the closing quote. A quote that is doubled stands for itself.
template <typename PutEscape>
const char *put_to_quote(B_CHAR quote, B_LEX lex, PutEscape putEscape) {
    for (;;) {
        take_run(lex, run_length<kPlain>, true);
        const B_CHAR ch = get_input(lex);
        if (ch == 0) {
            return kNoEndQuote;
        }
        if (ch == '\\') {
            if (const char *message = putEscape(lex); message != nullptr) {
                return message;
            }
            continue;
        }
        if (ch == quote) {
            if (peek_input(lex) != quote) {
                return nullptr;
            }
            get_input(lex);
        }
        put(lex, ch);
    }
}

template <typename PutEscape>
const char *getString(B_CHAR quote, B_LEX lex, B_TOKEN *token, PutEscape putEscape) {
    lex->quote = quote;
    if (const char *message = put_to_quote(quote, lex, putEscape); message != nullptr) {
        return message;
    }
    const char *text = finish_text(lex) ? copy_text(lex, lex->tokbuf, lex->tokpos + 1) : nullptr;
    if (text == nullptr) {
        return kOutOfMemory;
    }
    token->type = tokSTRING;
    token->v.str = text;
    return nullptr;
}

// U&'...': the characters in UTF-8.
const char *getUnicodeLiteral(B_LEX lex, B_TOKEN *token) {
    get_input(lex); // the '&'
    if (get_input(lex) != '\'') {
        return kBadUnicodeLiteral;
    }
    return getString('\'', lex, token, put_unicode_escape);
}

const char *getQuoted(B_CHAR ch, B_LEX lex, B_TOKEN *token) {
    if (ch == '"' && lex->doubleQuoteAsIdentifier != OAK_FALSE) {
        lex->quote = ch;
        return getIdentifier(get_input(lex), true, lex, token);
    }
    return getString(ch, lex, token, put_escape);
}

// ---- One token -------------------------------------------------------------

const char *getWord(B_CHAR ch, B_LEX lex, B_TOKEN *token) {
    if ((ch | 0x20) == 'x' && peek_input(lex) == '\'') {
        return getQuotedBinary(ch, lex, token);
    }
    if ((ch | 0x20) == 'u' && peek_input(lex) == '&') {
        return getUnicodeLiteral(lex, token);
    }
    return getIdentifier(ch, false, lex, token);
}

// A token of its own type, or the end of the text.
const char *getCharacter(B_CHAR ch, B_LEX lex, B_TOKEN *token) {
    lex->tokbuf[0] = static_cast<char>(ch);
    lex->tokbuf[1] = 0;
    token->type = static_cast<B_TOKTYPE>(ch);
    token->v.tok = ch;
    return nullptr;
}

const char *getToken(B_CHAR ch, B_LEX lex, B_TOKEN *token) {
    if (is(ch, kLetter)) {
        return getWord(ch, lex, token);
    }
    if (ch == '\'' || ch == '"') {
        return getQuoted(ch, lex, token);
    }
    if (ch == '0' && (peek_input(lex) | 0x20) == 'x') {
        return getPrefixedBinary(ch, lex, token);
    }
    if (is(ch, kDigit) || (ch == '.' && is(peek_input(lex), kDigit))) {
        return getNumber(ch, lex, token);
    }
    return ch > '~' ? kUnsupported : getCharacter(ch, lex, token);
}

void refuse(B_TOKEN *token, const char *message) {
    token->type = tokERROR;
    token->len = 0;
    token->v.str = message;
}

// ---- Tokens in the window --------------------------------------------------
//
// Nearly all tokens of a catalog stand in the window as they are meant, with the
// character behind them: single characters, strings without an escape, integers
// without a leading zero. These are measured in place and taken as a whole. For
// all others, and where every blank must be seen by a recording, the scanners
// above do the work, with the same result wherever both can.

// The token's first character is the `charno`th of the text.
inline void begin_token(B_LEX lex, size_t charno, B_TOKEN *token) {
    token->pos = charno - lex->linestart;
    token->line = lex->lineno;
    lex->tokpos = 0;
    lex->quote = 0;
    lex->outOfMemory = OAK_FALSE;
}

inline void advance(B_LEX lex, size_t count) {
    input_advance(lex->input, count);
    lex->charno += count;
}

// How much of the window lies between tokens; the lines in it are counted.
size_t measure_space(B_LEX lex, INPUT_WINDOW window) {
    size_t count = 0;
    while (count < window.size && is(window.bytes[count], kSkipped)) {
        count++;
        if (window.bytes[count - 1] == '\n' && lex->lineno != 0) {
            lex->lineno++;
            lex->prevlinestart = lex->linestart;
            lex->linestart = lex->charno + count;
        }
    }
    return count;
}

// The length of the string that begins the text; 0 when it is not simple.
size_t measure_string(B_LEX_C lex, const uint8_t *text, size_t size) {
    const uint8_t quote = text[0];
    const size_t count = 1 + run_length<kPlain>(text + 1, size - 1);
    const bool closed = size - count > 1 && text[count] == quote && text[count + 1] != quote;
    const bool string = quote == '\'' || lex->doubleQuoteAsIdentifier == OAK_FALSE;
    return closed && string ? count + 1 : 0;
}

// The length of the integer that begins the text; 0 when it is not simple: it may
// not fit, or be no integer by what follows, or lose a leading zero.
size_t measure_integer(const uint8_t *text, size_t size) {
    constexpr size_t kMostDigits = 18; // fit 64 bits for sure
    const size_t count = run_length<kDigit>(text, size);
    if (count == size || count > kMostDigits || (count > 1 && text[0] == '0')) {
        return 0;
    }
    const B_CHAR behind = text[count] | 0x20u;
    return behind == '.' || behind == 'e' || behind == 'x' ? 0 : count;
}

// Makes the token of `count` characters of text that were measured.
const char *take_string(B_LEX lex, const uint8_t *text, size_t count, B_TOKEN *token) {
    lex->quote = text[0];
    put_bytes(lex, text + 1, count - 2);
    char *copy = finish_text(lex) ? static_cast<char *>(OSL_GET(count - 1, lex->usertag)) : nullptr;
    if (copy == nullptr) {
        lex->outOfMemory = OAK_TRUE;
        return kOutOfMemory;
    }
    std::memcpy(copy, text + 1, count - 2);
    copy[count - 2] = 0;
    token->type = tokSTRING;
    token->v.str = copy;
    return nullptr;
}

const char *take_integer(B_LEX lex, const uint8_t *text, size_t count, B_TOKEN *token) {
    uint64_t value = 0;
    for (size_t i = 0; i < count; ++i) {
        value = value * 10 + (text[i] - '0');
    }
    put_bytes(lex, text, count);
    if (!finish_text(lex)) {
        return kOutOfMemory;
    }
    token->type = tokINTEGER;
    token->v.iv = value;
    return nullptr;
}

// Reads the next token, if it is simple, with its message or none. False when it
// is not; what lies before it was skipped then.
bool scan_in_window(B_LEX lex, B_TOKEN *token, const char **message) {
    if (lex->ungetch != LEX_NO_CHAR || lex->saveexpr != OAK_FALSE) {
        return false;
    }
    const INPUT_WINDOW window = input_window(lex->input);
    const size_t space = measure_space(lex, window);
    const uint8_t *text = window.bytes + space;
    const size_t size = window.size - space;
    const B_CHAR ch = size != 0 ? text[0] : 0;
    const bool quote = ch == '"' || ch == '\'';
    const size_t count = is(ch, kAlone)   ? 1
                         : quote          ? measure_string(lex, text, size)
                         : is(ch, kDigit) ? measure_integer(text, size)
                                          : 0;
    const size_t first = lex->charno + space + 1;
    advance(lex, space + count);
    if (count == 0) {
        return false;
    }
    begin_token(lex, first, token);
    *message = is(ch, kAlone) ? getCharacter(ch, lex, token)
               : quote        ? take_string(lex, text, count, token)
                              : take_integer(lex, text, count, token);
    return true;
}

// Apart from what most tokens need, so that they do not pay for its registers.
[[gnu::noinline]] const char *scan_characters(B_LEX lex, B_TOKEN *token) {
    const B_CHAR ch = skip_to_token(lex);
    begin_token(lex, lex->charno, token);
    return getToken(ch, lex, token);
}

void scan_token(B_LEX lex, B_TOKEN *token) {
    const char *message = nullptr;
    if (!scan_in_window(lex, token, &message)) {
        message = scan_characters(lex, token);
    }
    if (message != nullptr) {
        lex->tokbuf[0] = 0;
        refuse(token, lex->outOfMemory != OAK_FALSE ? kOutOfMemory : message);
    }
    lex->toktype = token->type;
}

// ---- Start -----------------------------------------------------------------

void start_over(B_LEX lex, OAK_INPUT_OBJ input, uint32_t lineno, OSL_MEMTAG usertag) {
    lex->input = input;
    lex->ungetch = LEX_NO_CHAR;
    lex->fileName = nullptr;
    lex->lineno = lineno;
    lex->charno = lex->linestart = lex->prevlinestart = 0;
    lex->tokpos = lex->xpos = 0;
    lex->tokbuf[0] = 0;
    lex->saveexpr = OAK_FALSE;
    lex->exch = 0;
    lex->pcnt = 0;
    lex->toktype = tokEOS;
    lex->hasPutback = OAK_FALSE;
    lex->usertag = usertag;
    lex->outOfMemory = OAK_FALSE;
}

void close_local_input(B_LEX lex) {
    b_inputClose(lex->local_input);
    lex->local_input = nullptr;
}

} // namespace

// Commas outside parentheses are not recorded, and of a run of blanks one.
void lex_exprPutch(B_LEX lex, B_CHAR ch) {
    if (lex->saveexpr == OAK_FALSE || (ch == ',' && lex->pcnt == 0) ||
        (ch == ' ' && lex->exch == ' ')) {
        return;
    }
    if (ch > 127) {
        char utf8[5];
        exprPutstr(lex, osl_uchar_to_utf8(ch, utf8, sizeof utf8));
        return;
    }
    const int step = ch == '(' ? 1 : ch == ')' ? -1 : 0;
    lex->pcnt = static_cast<int16_t>(lex->pcnt + step);
    const auto byte = static_cast<char>(ch);
    record_bytes(lex, &byte, 1);
}

// ---- Exported functions ----------------------------------------------------

B_LEX b_lexOpen(const char *name, OAK_BOOL_T useSQLIdentifiers, OAK_BOOL_T doubleQuoteAsIdentifier,
                OSL_MEMTAG lextag) {
    auto *lex = static_cast<B_LEX>(OSL_GET_ZERO(sizeof(b_lexstate), lextag));
    if (lex == nullptr) {
        return nullptr;
    }
    lex->tokbuf = static_cast<char *>(OSL_GET_ZERO(kBufferStep, lextag));
    if (lex->tokbuf == nullptr) {
        OSL_FREE(lex, lextag);
        return nullptr;
    }
    const bool sql = useSQLIdentifiers != OAK_FALSE;
    lex->szTokbuf = kBufferStep;
    lex->name = name;
    lex->ungetch = LEX_NO_CHAR;
    lex->skipcomments =
        name != nullptr && std::strcmp(name, "key/value") == 0 ? OAK_FALSE : OAK_TRUE;
    lex->doubleQuoteAsIdentifier = doubleQuoteAsIdentifier;
    lex->identifierFcn = sql ? isSQLIdentifier : isOtherIdentifier;
    lex->saveExprFcn = sql ? sqlSaveExpr : nullptr;
    lex->lextag = lextag;
    return lex;
}

void b_lexInit(B_LEX hLex, const char *string, const char *fileName, uint32_t lineno,
               OSL_MEMTAG usertag) {
    if (hLex == nullptr) {
        return;
    }
    close_local_input(hLex);
    start_over(hLex, nullptr, lineno, usertag);
    if (string == nullptr) {
        return;
    }
    if (fileName != nullptr) {
        hLex->fileName = static_cast<const char *>(OSL_GET_STRING(fileName, usertag));
    }
    const OAK_RETCODE rc =
        b_inputCreateFromMemory(&hLex->local_input, reinterpret_cast<const uint8_t *>(string),
                                std::strlen(string), hLex->lextag);
    if (rc != sOKAY || (fileName != nullptr && hLex->fileName == nullptr)) {
        hLex->outOfMemory = OAK_TRUE; // and there is no text
        return;
    }
    hLex->input = hLex->local_input;
}

void b_lexInitInput(B_LEX hLex, OAK_INPUT_OBJ input, OSL_MEMTAG usertag) {
    if (hLex == nullptr) {
        return;
    }
    close_local_input(hLex);
    start_over(hLex, input, 1, usertag);
}

B_TOKTYPE b_lexGet(B_LEX hLex, B_TOKEN *pTokVal) {
    if (pTokVal == nullptr) {
        return tokERROR;
    }
    *pTokVal = B_TOKEN{};
    if (hLex == nullptr || hLex->input == nullptr) {
        refuse(pTokVal, kNoText);
        return tokERROR;
    }
    if (hLex->hasPutback != OAK_FALSE) {
        hLex->hasPutback = OAK_FALSE;
        *pTokVal = hLex->putback;
        return pTokVal->type;
    }
    scan_token(hLex, pTokVal);
    if (hLex->saveexpr != OAK_FALSE) {
        record_token(hLex);
    }
    return pTokVal->type;
}

void b_lexPutback(B_LEX hLex, const B_TOKEN *pTokVal) {
    if (hLex != nullptr && pTokVal != nullptr) {
        hLex->putback = *pTokVal;
        hLex->hasPutback = OAK_TRUE;
    }
}

void b_lexTokenFree(B_LEX hLex, B_TOKEN *pTokVal) {
    if (hLex == nullptr || pTokVal == nullptr) {
        return;
    }
    if (pTokVal->type == tokSTRING) {
        OSL_FREE(const_cast<char *>(pTokVal->v.str), hLex->usertag);
        pTokVal->v.str = nullptr;
    } else if (pTokVal->type == tokBINARY) {
        OSL_FREE(const_cast<void *>(pTokVal->v.bv), hLex->usertag);
        pTokVal->v.bv = nullptr;
    }
}

void b_lexExprSaveBegin(B_LEX hLex) {
    if (hLex == nullptr) {
        return;
    }
    hLex->saveexpr = OAK_TRUE;
    hLex->xpos = 0;
    hLex->exch = 0;
    hLex->pcnt = 0;
    record_token(hLex);
}

const char *b_lexExprGet(B_LEX hLex) {
    if (hLex == nullptr) {
        return nullptr;
    }
    while (hLex->xpos != 0 && hLex->xbuf[hLex->xpos - 1] == ' ') {
        hLex->xpos--;
    }
    const char *text = nullptr;
    if (hLex->xpos != 0) {
        hLex->xbuf[hLex->xpos] = 0; // append_bytes kept room for it
        text = static_cast<const char *>(OSL_GET_STRING(hLex->xbuf, hLex->usertag));
    }
    hLex->saveexpr = OAK_FALSE;
    hLex->xpos = 0;
    hLex->tokpos = 0;
    hLex->tokbuf[0] = 0;
    hLex->toktype = tokEOS;
    return text;
}

OAK_BOOL_T b_lexSQLReserved(const char *id) {
    size_t low = 0;
    size_t high = id != nullptr ? std::size(sql_reserved_words) : 0;
    while (low < high) {
        const size_t middle = (low + high) / 2;
        const int order = strcasecmp(id, sql_reserved_words[middle]);
        if (order == 0) {
            return OAK_TRUE;
        }
        (order < 0 ? high : low) = order < 0 ? middle : middle + 1;
    }
    return OAK_FALSE;
}

OAK_RETCODE b_lexCreateRewindPoint(B_LEX hLex, B_LEX_REWIND_POINT_OBJ *pRewindPoint) {
    if (hLex == nullptr || pRewindPoint == nullptr) {
        return eINVNULLARG;
    }
    if (hLex->input == nullptr) {
        return eINVFCNSEQ;
    }
    auto *point =
        static_cast<B_LEX_REWIND_POINT_OBJ>(OSL_GET(sizeof(B_LEX_REWIND_POINT), hLex->usertag));
    if (point == nullptr) {
        return eNOMEMORY;
    }
    const OAK_RETCODE rc = b_inputCreateRewindPoint(hLex->input, &point->rewindPoint);
    if (rc != sOKAY) {
        OSL_FREE(point, hLex->usertag);
        return rc;
    }
    point->ungetch = hLex->ungetch;
    point->lineno = hLex->lineno;
    point->charno = hLex->charno;
    point->linestart = hLex->linestart;
    point->prevlinestart = hLex->prevlinestart;
    *pRewindPoint = point;
    return sOKAY;
}

OAK_RETCODE b_lexRewind(B_LEX hLex, B_LEX_REWIND_POINT_OBJ rewindPoint) {
    if (hLex == nullptr || rewindPoint == nullptr) {
        return eINVNULLARG;
    }
    if (hLex->input == nullptr) {
        return eINVFCNSEQ;
    }
    const OAK_RETCODE rc = b_inputRewind(hLex->input, rewindPoint->rewindPoint);
    if (rc != sOKAY) {
        return rc;
    }
    hLex->ungetch = rewindPoint->ungetch;
    hLex->lineno = rewindPoint->lineno;
    hLex->charno = rewindPoint->charno;
    hLex->linestart = rewindPoint->linestart;
    hLex->prevlinestart = rewindPoint->prevlinestart;
    return sOKAY;
}

const char *b_lexGetTokString(B_LEX_C hLex) {
    return hLex != nullptr ? hLex->tokbuf : nullptr;
}

uint32_t b_lexGetLineNumber(B_LEX_C hLex) {
    return hLex != nullptr ? hLex->lineno : 0;
}

size_t b_lexGetCharacterNumber(B_LEX_C hLex) {
    return hLex != nullptr ? hLex->charno - hLex->linestart : 0;
}

const char *b_lexGetFileName(B_LEX_C hLex) {
    return hLex != nullptr ? hLex->fileName : nullptr;
}

void b_lexClose(B_LEX hLex) {
    if (hLex == nullptr) {
        return;
    }
    close_local_input(hLex);
    OSL_FREE(hLex->tokbuf, hLex->lextag);
    OSL_FREE(hLex->xbuf, hLex->lextag);
    OSL_FREE(hLex, hLex->lextag);
}
