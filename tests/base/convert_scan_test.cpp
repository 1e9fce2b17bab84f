// The text scanners. A plain walker reads the state tables from their text form, entry
// by entry, and says what the scanners must do: on literal texts, on a text for every
// entry of every state, on every short text over the alphabet of numbers, and on random
// texts made of the words that matter.
#include <cstring>
#include <map>
#include <set>
#include <sstream>

#include "convert_block.h"
#include "convert_scan.h"
#include "convert_scan_tables.h"
#include "datetime.h"
#include "test_support.h"

namespace {

// ---- The plain walker ---------------------------------------------------------------------

constexpr int kEnd = 0;
constexpr int kDigit = 1;
constexpr int kOther = 2;

struct Entry {
    int symbol; // a character, or one of the three above
    int rule;
    bool shift;
    int next; // -1 is done
};

using Table = std::vector<std::vector<Entry>>;

int symbol_of(const std::string &word) {
    static const std::map<std::string, int> words = {
        {"end", kEnd}, {"digit", kDigit}, {"other", kOther},    {"space", ' '},
        {"tab", '\t'}, {"newline", '\n'}, {"apostrophe", '\''}, {"quote", '"'}};
    const auto found = words.find(word);
    if (found != words.end())
        return found->second;
    EXPECT_EQ(word.size(), 1u) << "no symbol: " << word;
    return static_cast<unsigned char>(word[0]);
}

// symbol: [rule N,] shift|stay, N|done
Entry parse_entry(const std::string &text) {
    Entry entry{};
    const size_t colon = text.find(": ");
    entry.symbol = symbol_of(text.substr(0, colon));
    std::istringstream rest(text.substr(colon + 2));
    std::string word;
    rest >> word;
    if (word == "rule") {
        rest >> entry.rule >> word >> word; // the number, its comma, the move
    }
    EXPECT_TRUE(word == "shift," || word == "stay,") << text;
    entry.shift = word == "shift,";
    rest >> word;
    entry.next = word == "done" ? -1 : std::stoi(word);
    return entry;
}

Table parse_table(const char *text) {
    Table table;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty())
            continue;
        const size_t bar = line.find(" | ");
        EXPECT_EQ(std::stoul(line.substr(0, bar)), table.size());
        std::vector<Entry> state;
        std::string entries = line.substr(bar + 3) + "; ";
        for (size_t at; (at = entries.find("; ")) != std::string::npos; entries.erase(0, at + 2))
            state.push_back(parse_entry(entries.substr(0, at)));
        EXPECT_EQ(state.back().symbol, kOther);
        table.push_back(state);
    }
    return table;
}

const Table &number_table() {
    static const Table table = parse_table(oaktest::kNumberTable);
    return table;
}
const Table &date_table() {
    static const Table table = parse_table(oaktest::kDateTable);
    return table;
}
const Table &escape_table() {
    static const Table table = parse_table(oaktest::kEscapeTable);
    return table;
}

bool is_digit(int ch) {
    return ch >= '0' && ch <= '9';
}

// Which entries of a table have been taken, as state * 100 + place.
using Coverage = std::set<size_t>;

size_t entry_count(const Table &table) {
    size_t count = 0;
    for (const auto &state : table)
        count += state.size();
    return count;
}

// The number and date walk: `act` takes (rule, character) and returns false to end it.
template <class Act>
void plain_walk(const Table &table, const std::string &text, Coverage *coverage, Act act) {
    int state = 0;
    for (size_t at = 0; state >= 0;) {
        const int ch = at < text.size() ? static_cast<unsigned char>(text[at]) : kEnd;
        const auto &entries = table[static_cast<size_t>(state)];
        size_t i = 0;
        for (;; ++i) {
            const int symbol = entries[i].symbol;
            if (symbol == kOther || (symbol == kDigit ? is_digit(ch) : symbol == ch))
                break;
        }
        coverage->insert(static_cast<size_t>(state) * 100 + i);
        if (!act(entries[i].rule, ch))
            return;
        at += entries[i].shift;
        state = entries[i].next;
    }
}

// ---- Numbers, plainly -------------------------------------------------------------------------

struct Number {
    OAK_RETCODE rc = sOKAY;
    int sign = 1;
    int mag = 0;
    int scale = 0;
    int expt = 0;
    bool operator==(const Number &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Number &n) {
    return out << n.rc << " sign " << n.sign << " mag " << n.mag << " scale " << n.scale << " expt "
               << n.expt;
}

Number plain_number(const std::string &text, Coverage *coverage) {
    Number n;
    int16_t expt = 0;
    int exponent_sign = 1;
    bool bad = false;
    plain_walk(number_table(), text, coverage, [&](int rule, int ch) {
        switch (rule) {
            case 1:
                n.sign = -1;
                break;
            case 2:
                bad = true;
                break;
            case 3:
                ++n.mag;
                break;
            case 4:
                ++n.scale;
                break;
            case 5:
                exponent_sign = -1;
                break;
            case 6:
                expt = static_cast<int16_t>(expt * 10 + (ch - '0'));
                break;
            case 7:
                expt = static_cast<int16_t>(expt * exponent_sign);
                break;
            default:
                break;
        }
        return true;
    });
    n.expt = expt;
    if (expt < -308 || expt > 308)
        n = {.rc = eRANGE};
    else if (bad)
        n = {.rc = eINVLITERAL};
    return n;
}

// What the library says; a failure must store nothing.
Number scanned(const std::string &text) {
    int16_t sign = 99;
    uint16_t mag = 99;
    uint16_t scale = 99;
    int16_t expt = 99;
    Number n;
    n.rc = convert_parseNumber(text.c_str(), &sign, &mag, &scale, &expt);
    if (n.rc == sOKAY) {
        n.sign = sign;
        n.mag = mag;
        n.scale = scale;
        n.expt = expt;
    } else {
        EXPECT_TRUE(sign == 99 && mag == 99 && scale == 99 && expt == 99) << text;
    }
    return n;
}

// A text that leads from state 0 to each state.
template <class Step>
std::vector<std::string> shortest_texts(const Table &table, Step step) {
    std::vector<std::string> texts(table.size());
    std::vector<bool> known(table.size());
    known[0] = true;
    for (bool grew = true; grew;) {
        grew = false;
        for (size_t state = 0; state < table.size(); ++state) {
            if (!known[state])
                continue;
            for (const Entry &entry : table[state]) {
                if (entry.next < 0 || known[static_cast<size_t>(entry.next)] ||
                    entry.symbol == kEnd)
                    continue;
                const auto next = static_cast<size_t>(entry.next);
                texts[next] = texts[state] + (entry.shift ? step(state, entry) : "");
                known[next] = true;
                grew = true;
            }
        }
    }
    for (size_t state = 0; state < table.size(); ++state)
        EXPECT_TRUE(known[state]) << "no way to state " << state;
    return texts;
}

// A character that an entry matches and none before it.
std::string sample_of(const Table &table, size_t state, const Entry &entry) {
    if (entry.symbol == kDigit)
        return "1";
    if (entry.symbol != kOther)
        return std::string(1, static_cast<char>(entry.symbol));
    for (const char candidate : {'x', '~', '7'}) {
        bool taken = false;
        for (const Entry &other : table[state])
            taken = taken || other.symbol == candidate ||
                    (other.symbol == kDigit && is_digit(candidate));
        if (!taken)
            return std::string(1, candidate);
    }
    ADD_FAILURE() << "no character for the last entry of state " << state;
    return "";
}

// Every character after the way to every state, each with some tails.
std::vector<std::string> texts_for_every_entry(const Table &table,
                                               const std::vector<std::string> &tails) {
    const std::vector<std::string> ways = shortest_texts(
        table, [&](size_t state, const Entry &entry) { return sample_of(table, state, entry); });
    std::vector<std::string> texts;
    for (const std::string &way : ways) {
        texts.push_back(way);
        for (int ch = 1; ch < 256; ++ch)
            for (const std::string &tail : tails)
                texts.push_back(way + static_cast<char>(ch) + tail);
    }
    return texts;
}

} // namespace

// ---- Numbers -----------------------------------------------------------------------------------

TEST(ParseNumber, ClassifiesKnownTexts) {
    const struct {
        const char *text;
        Number expected;
    } rows[] = {
        {"-12.50e+3", {sOKAY, -1, 2, 2, 3}},
        {"0", {sOKAY, 1, 1, 0, 0}},
        {"+7", {sOKAY, 1, 1, 0, 0}},
        {"-7", {sOKAY, -1, 1, 0, 0}},
        {"007.500", {sOKAY, 1, 3, 3, 0}},
        {" \t\n 42", {sOKAY, 1, 2, 0, 0}},
        {".5", {sOKAY, 1, 0, 1, 0}},
        {"5.", {sOKAY, 1, 1, 0, 0}},
        {"-.5E-2", {sOKAY, -1, 0, 1, -2}},
        {"1e5", {sOKAY, 1, 1, 0, 5}},
        {"1E308", {sOKAY, 1, 1, 0, 308}},
        {"1e-308", {sOKAY, 1, 1, 0, -308}},
        {"1e000000308", {sOKAY, 1, 1, 0, 308}},
        // A lone point, a lone sign, and an exponent's lone sign pass.
        {".", {sOKAY, 1, 0, 0, 0}},
        {"+", {sOKAY, 1, 0, 0, 0}},
        {"-", {sOKAY, -1, 0, 0, 0}},
        {"-.", {sOKAY, -1, 0, 0, 0}},
        {"1e+", {sOKAY, 1, 1, 0, 0}},
        {"1e-", {sOKAY, 1, 1, 0, 0}},
        {".e+", {sOKAY, 1, 0, 0, 0}},
        {"+e1", {sOKAY, 1, 0, 0, 1}},
        // Bad texts.
        {"", {.rc = eINVLITERAL}},
        {" ", {.rc = eINVLITERAL}},
        {"1 ", {.rc = eINVLITERAL}},
        {"1\n", {.rc = eINVLITERAL}},
        {"- 1", {.rc = eINVLITERAL}},
        {"--1", {.rc = eINVLITERAL}},
        {"1-", {.rc = eINVLITERAL}},
        {"1e", {.rc = eINVLITERAL}},
        {"1e ", {.rc = eINVLITERAL}},
        {"1e+ 5", {.rc = eINVLITERAL}},
        {"1e5.0", {.rc = eINVLITERAL}},
        {"1e5e5", {.rc = eINVLITERAL}},
        {"1.2.3", {.rc = eINVLITERAL}},
        {"1,5", {.rc = eINVLITERAL}},
        {"e5", {.rc = eINVLITERAL}},
        {"0x10", {.rc = eINVLITERAL}},
        {"inf", {.rc = eINVLITERAL}},
        {"\r1", {.rc = eINVLITERAL}},
        {"\x01", {.rc = eINVLITERAL}},
        {"1\x02", {.rc = eINVLITERAL}},
        {"1\xFF", {.rc = eINVLITERAL}},
        // The exponent's range is tested before a bad text, and before its sign counts.
        {"1e309", {.rc = eRANGE}},
        {"1e-309", {.rc = eRANGE}},
        {"1e309x", {.rc = eRANGE}},
        {"1e-400 ", {.rc = eRANGE}},
        {"1e308x", {.rc = eINVLITERAL}},
        {"1e-308x", {.rc = eINVLITERAL}},
        // An exponent is a 16-bit number and wraps like one.
        {"1e32767", {.rc = eRANGE}},
        {"1e32768", {.rc = eRANGE}},
        {"1e65535", {sOKAY, 1, 1, 0, -1}},
        {"1e65536", {sOKAY, 1, 1, 0, 0}},
        {"1e65537", {sOKAY, 1, 1, 0, 1}},
        {"1e-65537", {sOKAY, 1, 1, 0, -1}},
        {"1e65844", {sOKAY, 1, 1, 0, 308}},
        {"1e65845", {.rc = eRANGE}},
    };
    for (const auto &row : rows) {
        Coverage ignored;
        EXPECT_EQ(scanned(row.text), row.expected) << row.text;
        EXPECT_EQ(plain_number(row.text, &ignored), row.expected) << row.text;
    }
}

TEST(ParseNumber, TakesEveryEntryOfItsTableAsWritten) {
    Coverage coverage;
    for (const std::string &text :
         texts_for_every_entry(number_table(), {"", "1", "+", "e1", ".5", "e309", " "}))
        ASSERT_EQ(scanned(text), plain_number(text, &coverage)) << text;
    EXPECT_EQ(coverage.size(), entry_count(number_table()));
    EXPECT_EQ(number_table().size(), 5u);
}

TEST(ParseNumber, AgreesWithTheTableOnEveryShortText) {
    const std::string alphabet = "+-19.eE \nx";
    Coverage coverage;
    std::vector<std::string> texts = {""};
    for (int length = 1; length <= 4; ++length) {
        std::vector<std::string> longer;
        for (const std::string &text : texts)
            for (const char ch : alphabet)
                longer.push_back(text + ch);
        for (const std::string &text : longer)
            ASSERT_EQ(scanned(text), plain_number(text, &coverage)) << text;
        texts = std::move(longer);
    }
}

TEST(ParseNumber, CountsStayAtTheEndOf16Bits) {
    for (const size_t digits : {65534u, 65535u, 65536u, 65537u, 200000u}) {
        const int expected = digits < 65535 ? static_cast<int>(digits) : 65535;
        const std::string run(digits, '7');
        EXPECT_EQ(scanned(run), (Number{sOKAY, 1, expected, 0, 0})) << digits;
        EXPECT_EQ(scanned("-1." + run), (Number{sOKAY, -1, 1, expected, 0})) << digits;
    }
}

TEST(ParseNumber, OutputsMayBeLeftOut) {
    int16_t sign = 99;
    uint16_t mag = 99;
    uint16_t scale = 99;
    int16_t expt = 99;
    EXPECT_EQ(convert_parseNumber("-12.5e7", nullptr, nullptr, nullptr, nullptr), sOKAY);
    EXPECT_EQ(convert_parseNumber("-12.5e7", &sign, nullptr, nullptr, nullptr), sOKAY);
    EXPECT_EQ(convert_parseNumber("-12.5e7", nullptr, &mag, nullptr, nullptr), sOKAY);
    EXPECT_EQ(convert_parseNumber("-12.5e7", nullptr, nullptr, &scale, nullptr), sOKAY);
    EXPECT_EQ(convert_parseNumber("-12.5e7", nullptr, nullptr, nullptr, &expt), sOKAY);
    EXPECT_TRUE(sign == -1 && mag == 2 && scale == 1 && expt == 7);
    EXPECT_EQ(convert_parseNumber("x", nullptr, nullptr, nullptr, nullptr), eINVLITERAL);
    EXPECT_EQ(convert_parseNumber(nullptr, &sign, &mag, &scale, &expt), eINVNULLARG);
}

// ---- Date literals
// -------------------------------------------------------------------------------

namespace {

// The whole conversion, plainly.
OAK_RETCODE plain_date(const std::string &given, OAK_DATE_FORMAT format, char sep,
                       OAK_PACKED_DATE_T *date, Coverage *coverage) {
    std::string text = given;
    if (text.size() < 8 || text.size() > 25)
        return eINVLITERAL;
    if (format != OAK_YYYYMMDD || sep != '-') {
        if (sep == '\0' ||
            (format != OAK_YYYYMMDD && format != OAK_MMDDYYYY && format != OAK_DDMMYYYY))
            return eINVLITERAL;
        const size_t one = text.find(sep);
        const size_t two = one == std::string::npos ? one : text.find(sep, one + 1);
        if (two == std::string::npos)
            return eINVLITERAL;
        const std::string first = text.substr(0, one);
        const std::string second = text.substr(one + 1, two - one - 1);
        std::string third = text.substr(two + 1);
        if (text.size() > 10) {
            if (third.find(' ') == std::string::npos)
                return eINVLITERAL;
            third.erase(third.find(' '));
        }
        text = format == OAK_YYYYMMDD   ? first + "-" + second + "-" + third
               : format == OAK_MMDDYYYY ? third + "-" + first + "-" + second
                                        : third + "-" + second + "-" + first;
    }
    OAK_DATE_T fields = {0, 0, 0};
    bool bad = false;
    plain_walk(date_table(), text, coverage, [&](int rule, int ch) {
        const int digit = ch - '0';
        switch (rule) {
            case 1:
                bad = true;
                break;
            case 2:
                fields.year = fields.year * 10 + digit;
                break;
            case 3:
                fields.month = static_cast<uint16_t>(fields.month * 10 + digit);
                break;
            case 4:
                fields.day = static_cast<uint16_t>(fields.day * 10 + digit);
                break;
            default:
                break;
        }
        return !bad;
    });
    return bad ? eINVLITERAL : oak_datePack(&fields, date);
}

struct DateResult {
    OAK_RETCODE rc;
    OAK_PACKED_DATE_T date;
    bool operator==(const DateResult &) const = default;
};

std::ostream &operator<<(std::ostream &out, const DateResult &r) {
    return out << r.rc << " date " << r.date;
}

CNVCB date_block(const char *text, OAK_DATE_FORMAT format, char sep, void *destination) {
    CNVCB block{};
    block.pvSrc = text;
    block.tSrcLen = std::strlen(text) + 1;
    block.date_format = format;
    block.date_sep = static_cast<int8_t>(sep);
    block.pvDst = destination;
    block.tDstLen = sizeof(OAK_PACKED_DATE_T);
    return block;
}

DateResult converted(const std::string &text, OAK_DATE_FORMAT format = OAK_YYYYMMDD,
                     char sep = '-') {
    DateResult result = {sOKAY, 77};
    CNVCB block = date_block(text.c_str(), format, sep, &result.date);
    result.rc = cnv_stringToDate(&block);
    if (result.rc == sOKAY)
        EXPECT_EQ(block.tSize, 4u);
    else
        EXPECT_EQ(result.date, 77u) << "a failure writes nothing: " << text;
    return result;
}

DateResult plainly(const std::string &text, Coverage *coverage,
                   OAK_DATE_FORMAT format = OAK_YYYYMMDD, char sep = '-') {
    DateResult result = {sOKAY, 77};
    result.rc = plain_date(text, format, sep, &result.date, coverage);
    return result;
}

constexpr uint32_t kLeapDay = 738945; // 2024-02-29
constexpr uint32_t kJanuary2 = 738887;

} // namespace

TEST(StringToDate, ReadsTheFormsOfADateLiteral) {
    for (const char *text :
         {"2024-02-29", "  2024-02-29", "'2024-02-29'", "\"2024-02-29\"", "'2024-02-29\"",
          "'2024-02-29", "@'2024-02-29'", "@ \"2024-02-29\"", "DATE '2024-02-29'",
          "date'2024-02-29'", "dAtE  '2024-02-29'", "TIMESTAMP '2024-02-29'",
          "timestamp\"2024-02-29\"", "2024-2-29", "2024-02-29 12:00:00", "2024-02-29x",
          "2024-02-299", "'2024-02-29 12:00:00'"})
        EXPECT_EQ(converted(text), (DateResult{sOKAY, kLeapDay})) << text;
    EXPECT_EQ(converted("2024-1-2"), (DateResult{sOKAY, kJanuary2}));
    EXPECT_EQ(converted("2024-1-2x"), (DateResult{sOKAY, kJanuary2}));
    EXPECT_EQ(converted("'2024-1-2'"), (DateResult{sOKAY, kJanuary2}));
}

TEST(StringToDate, RefusesOtherForms) {
    for (const char *text : {"24-02-29",
                             "024-02-29",
                             "20240-02-29",
                             "2024-022-29",
                             "2024--02-29",
                             "2024-02--29",
                             "2024/02/29",
                             "2024-02-x9",
                             "DATE 2024-02-29",
                             "@2024-02-29",
                             "DATE@'2024-02-29'",
                             "TIME '2024-02-29'",
                             "DATES '2024-02-29'",
                             "' 2024-02-29'",
                             "'DATE 2024-02-29'",
                             "\t2024-02-29",
                             "2024 -02-29",
                             "x2024-02-29",
                             "TIMESTAMP",
                             "timestam'2024-02-29'",
                             "''2024-02-29'",
                             "2024-02 -29",
                             "\x01\x01\x01\x01-01-01"})
        EXPECT_EQ(converted(text), (DateResult{eINVLITERAL, 77})) << text;
}

TEST(StringToDate, WantsEightToTwentyFiveCharacters) {
    EXPECT_EQ(converted("").rc, eINVLITERAL);
    EXPECT_EQ(converted("2024-1-").rc, eINVLITERAL);
    EXPECT_EQ(converted("202-1-2").rc, eINVLITERAL) << "seven, whatever they are";
    EXPECT_EQ(converted("2024-1-2").rc, sOKAY);
    EXPECT_EQ(converted("2024-02-29 12:34:56.78901").rc, sOKAY) << "25";
    EXPECT_EQ(converted("2024-02-29 12:34:56.789012").rc, eINVLITERAL) << "26";
    EXPECT_EQ(converted(std::string(100000, ' ') + "2024-02-29").rc, eINVLITERAL);
}

TEST(StringToDate, PacksWithTheCalendarsChecks) {
    for (const char *text : {"0000-01-01", "2024-00-01", "2024-13-01", "2024-01-00", "2024-01-32"})
        EXPECT_EQ(converted(text), (DateResult{eBASE_INVDATE, 77})) << text;
    EXPECT_EQ(converted("2023-02-31"), (DateResult{sOKAY, 738582})) << "a day of March";
    EXPECT_EQ(converted("0001-01-01"), (DateResult{sOKAY, 1}));
    EXPECT_EQ(converted("9999-12-31"), (DateResult{sOKAY, 3652059}));
}

TEST(StringToDate, ReordersTheOtherFormats) {
    const struct {
        const char *text;
        OAK_DATE_FORMAT format;
        char sep;
        DateResult expected;
    } rows[] = {
        {"02/29/2024", OAK_MMDDYYYY, '/', {sOKAY, kLeapDay}},
        {"02-29-2024", OAK_MMDDYYYY, '-', {sOKAY, kLeapDay}},
        {"29.02.2024", OAK_DDMMYYYY, '.', {sOKAY, kLeapDay}},
        {"2024/02/29", OAK_YYYYMMDD, '/', {sOKAY, kLeapDay}},
        {"1/2/2024", OAK_MMDDYYYY, '/', {sOKAY, kJanuary2}},
        {"2/1/2024", OAK_DDMMYYYY, '/', {sOKAY, kJanuary2}},
        // Any separator does.
        {"02x29x2024", OAK_MMDDYYYY, 'x', {sOKAY, kLeapDay}},
        {"02 29 2024", OAK_MMDDYYYY, ' ', {sOKAY, kLeapDay}},
        // Behind more than ten characters the date ends at a blank, which is cut.
        {"02/29/2024 12:00:00", OAK_MMDDYYYY, '/', {sOKAY, kLeapDay}},
        {"2024/02/29 ", OAK_YYYYMMDD, '/', {sOKAY, kLeapDay}},
        {"02/29/2024x", OAK_MMDDYYYY, '/', {eINVLITERAL, 77}},
        {"DATE '2024/02/29'", OAK_YYYYMMDD, '/', {eINVLITERAL, 77}},
        {"DATE '2024/02/29 '", OAK_YYYYMMDD, '/', {sOKAY, kLeapDay}},
        {"DATE '02/29/2024 '", OAK_MMDDYYYY, '/', {eINVLITERAL, 77}}, // the word moves along
        // In a short text the third part is the rest.
        {"2/2/2024 x", OAK_MMDDYYYY, '/', {eINVLITERAL, 77}},
        {"2024/2/9 x", OAK_YYYYMMDD, '/', {sOKAY, 738925}},
        // A missing separator.
        {"02-29-2024", OAK_MMDDYYYY, '/', {eINVLITERAL, 77}},
        {"02/29-2024", OAK_MMDDYYYY, '/', {eINVLITERAL, 77}},
        {"02292024//", OAK_MMDDYYYY, '/', {eINVLITERAL, 77}},
        // Formats and separators that are none.
        {"2024-02-29", static_cast<OAK_DATE_FORMAT>(0), '-', {eINVLITERAL, 77}},
        {"2024-02-29", static_cast<OAK_DATE_FORMAT>(4), '-', {eINVLITERAL, 77}},
        {"2024-02-29", OAK_YYYYMMDD, '\0', {eINVLITERAL, 77}},
        {"2024-02-29", OAK_MMDDYYYY, '\0', {eINVLITERAL, 77}},
        // The calendar's word.
        {"29/02/2024", OAK_MMDDYYYY, '/', {eBASE_INVDATE, 77}},
        // The longest.
        {"02/29/2024 12:34:56.78901", OAK_MMDDYYYY, '/', {sOKAY, kLeapDay}},
        {"000000000000000000000// 2", OAK_MMDDYYYY, '/', {eINVLITERAL, 77}},
        {"//12345678901234567890123", OAK_MMDDYYYY, '/', {eINVLITERAL, 77}},
    };
    for (const auto &row : rows) {
        Coverage ignored;
        EXPECT_EQ(converted(row.text, row.format, row.sep), row.expected) << row.text;
        EXPECT_EQ(plainly(row.text, &ignored, row.format, row.sep), row.expected) << row.text;
    }
}

TEST(StringToDate, SizesWithoutADestination) {
    CNVCB block = date_block("2024-02-29", OAK_YYYYMMDD, '-', nullptr);
    EXPECT_EQ(cnv_stringToDate(&block), sOKAY);
    EXPECT_EQ(block.tSize, 4u);
    block = date_block("2024-13-29", OAK_YYYYMMDD, '-', nullptr);
    EXPECT_EQ(cnv_stringToDate(&block), eBASE_INVDATE);
}

TEST(StringToDate, TakesEveryEntryOfItsTableAsWritten) {
    Coverage coverage;
    for (const std::string &text : texts_for_every_entry(
             date_table(), {"", "'2024-02-29'", "2024-02-29", "-02-29", "24-2-9'", "9", "       "}))
        ASSERT_EQ(converted(text), plainly(text, &coverage)) << text;
    EXPECT_EQ(coverage.size(), entry_count(date_table()));
    EXPECT_EQ(date_table().size(), 24u);
}

TEST(StringToDate, AgreesWithTheTableOnDamagedTexts) {
    const std::string good[] = {"2024-02-29", "DATE '2024-02-29'", "29.02.2024 11:12", "2/29/2024",
                                "@\"2024-02-29\""};
    const std::string alphabet = "0123456789-/. '\"@datemisp";
    oaktest::Random random(7);
    Coverage coverage;
    for (int i = 0; i < 20000; ++i) {
        std::string text = good[random.below(5)];
        for (uint64_t changes = random.below(4); changes > 0; --changes) {
            const size_t at = random.below(text.size());
            const char ch = alphabet[random.below(alphabet.size())];
            switch (random.below(3)) {
                case 0:
                    text[at] = ch;
                    break;
                case 1:
                    text.insert(at, 1, ch);
                    break;
                default:
                    text.erase(at, text.size() > 1 ? 1 : 0);
                    break;
            }
        }
        const auto format = static_cast<OAK_DATE_FORMAT>(random.below(4));
        const char sep = "-/."[random.below(3)];
        ASSERT_EQ(converted(text, format, sep), plainly(text, &coverage, format, sep))
            << text << " format " << format << " separator " << sep;
    }
}

// ---- Escape clauses
// --------------------------------------------------------------------------------

namespace {

struct Escape {
    OAK_RETCODE rc = sOKAY;
    std::string out; // with the zero bytes that the table writes
};

// The entry that the escape walk takes: at the end of the text only an end entry matches,
// and without one the state's number decides.
const Entry *plain_escape_entry(size_t state, int ch, Coverage *coverage) {
    static const Entry fail = {kEnd, 4, false, -1};
    static const Entry close = {kEnd, 0, false, 0};
    const auto &entries = escape_table()[state];
    for (size_t i = 0; i < entries.size(); ++i)
        if (entries[i].symbol == ch || (entries[i].symbol == kOther && ch != kEnd)) {
            coverage->insert(state * 100 + i);
            return &entries[i];
        }
    return (state >= 26 && state <= 32) || state == 38 ? &fail : &close;
}

Escape plain_escape(const std::string &text, Coverage *coverage) {
    Escape result;
    std::string hold;
    int state = 0;
    for (size_t at = 0; state >= 0;) {
        const int ch = at < text.size() ? static_cast<unsigned char>(text[at]) : kEnd;
        const Entry *entry = plain_escape_entry(static_cast<size_t>(state), ch, coverage);
        switch (entry->rule) {
            case 1:
                hold += static_cast<char>(ch);
                break;
            case 2:
                result.out += static_cast<char>(ch);
                break;
            case 3:
                result.out += hold;
                hold.clear();
                break;
            case 4:
                result.rc = eESCAPE;
                return result;
            case 5:
                result.out += '@';
                break;
            case 6:
                hold.clear();
                break;
            default:
                break;
        }
        EXPECT_LE(hold.size(), 20u);
        at += entry->shift;
        state = entry->next;
    }
    return result;
}

// Runs the rewriter into `size` bytes and compares it with the plain one.
void expect_rewrite(const std::string &text, const Escape &expected, size_t size) {
    std::vector<char> buffer(size + 8, '~');
    size_t length = 99999;
    ASSERT_EQ(b_convertEscapesToSQL(text.c_str(), buffer.data(), size, &length), expected.rc)
        << text;
    const std::string whole(buffer.data(), size);
    if (expected.rc != sOKAY) {
        EXPECT_EQ(length, 99999u);
        const size_t written = std::min(size, expected.out.size());
        ASSERT_EQ(whole.substr(0, written), expected.out.substr(0, written)) << text;
    } else {
        const size_t count = expected.out.size();
        const size_t kept = size == 0 ? 0 : (count < size ? count : size) - 1;
        ASSERT_EQ(length, kept) << text;
        ASSERT_EQ(whole.substr(0, kept), expected.out.substr(0, kept)) << text;
        ASSERT_EQ(buffer[kept], size > 0 ? '\0' : '~') << text;
    }
    ASSERT_EQ(std::string(buffer.data() + size, 8), "~~~~~~~~") << "nothing behind the buffer";
}

void expect_as_the_table_says(const std::string &text, Coverage *coverage) {
    const Escape expected = plain_escape(text, coverage);
    expect_rewrite(text, expected, text.size() + 2);
    expect_rewrite(text, expected, text.size() / 2);
}

std::string rewritten(const std::string &text) {
    std::vector<char> buffer(text.size() + 2);
    size_t length = 0;
    const OAK_RETCODE rc =
        b_convertEscapesToSQL(text.c_str(), buffer.data(), buffer.size(), &length);
    return rc == sOKAY ? std::string(buffer.data(), length) : rc == eESCAPE ? "eESCAPE" : "?";
}

} // namespace

TEST(Escapes, BecomePlainSql) {
    const struct {
        const char *text;
        const char *expected;
    } rows[] = {
        {"", ""},
        {"select 1", "select 1"},
        // Literals.
        {"{d '2024-02-29'}", "@'2024-02-29'"},
        {"{d'2024-02-29'}", "@'2024-02-29'"},
        {"{ d   '2024-02-29' }", "@'2024-02-29' "},
        {"{t '12:00:00'}", "@'12:00:00'"},
        {"{ts '2024-02-29 12:00:00'}", "@'2024-02-29 12:00:00'"},
        {"{\n d '2024-02-29'}", "@'2024-02-29'"},
        {"select {d '2024-02-29'}, {t '12:00:00'}", "select @'2024-02-29', @'12:00:00'"},
        {"{t'12:00:00'}", "eESCAPE"},    // t wants a blank or an s
        {"{D '2024-02-29'}", "eESCAPE"}, // keywords are lower case
        {"{d 2024-02-29}", "eESCAPE"},
        {"{d '2024-02-29'", "eESCAPE"},
        {"{d '2024-02-29", "eESCAPE"},
        {"{d '' }", "@'' "},
        // Functions and outer joins.
        {"{fn now()}", " now()"},
        {"{fn ucase(a)} b", " ucase(a) b"},
        {"{oj a left outer join b}", " a left outer join b"},
        {"{fnnow()}", "eESCAPE"},
        {"{fn now()", "eESCAPE"},
        {"{oj", "eESCAPE"},
        {"{ojx a}", "eESCAPE"},
        // call and escape keep their keyword.
        {"{call p(1)}", "call p(1)"},
        {"{callp(1)}", "eESCAPE"},
        {"{call", "eESCAPE"},
        {"{cal", "eESCAPE"},
        {"like 'a' {escape '!'}", "like 'a' escape '!'"},
        {"{escape'!'}", "escape'!'"},
        {"{escape '!!'}", "eESCAPE"}, // one character
        {"{escapx '!'}", "eESCAPE"},
        // The vendor's form.
        {"--(*vendor(Any),product(Any) d '2024-02-29'*)--", "@'2024-02-29'"},
        {"--(* VENDOR (Any) , PRODUCT (Any) fn now() *)--", " now() "},
        {"--(*vendor(Any),product(Any)call p(1)*)--x", "call p(1)x"},
        // Nothing of the head is held until the clause's own keyword is written.
        {"--(*  VENDOR  (Any)  ,  PRODUCT  (Any) \n call p(1)*)--x", "call p(1)x"},
        {"--(*vendor(Any) product(Any) fn now()*)--", "eESCAPE"},
        {"--(*vendor(Any", "eESCAPE"},
        {"--(*other*)--", "eESCAPE"},
        {"--(*vendor(Any),product(Any) fn a*b*)--", " a*b"},
        {"--(*vendor(Any),product(Any) fn a*)b*)-c*)--", " a*)b*)-c"},
        // Hyphens.
        {"a-b", "a-b"},
        {"a--b", "a--b"},
        {"a--(b", "a--(b"},
        {"a-", "a"}, // a hyphen at the end is held and lost
        {"a--", "a"},
        {"a--(", "a"},
        // Quoted strings pass untouched, and must end.
        {"'{d ''x''}'", "'{d ''x''}'"},
        {"\"{fn\"", "\"{fn\""},
        {"'--(*'", "'--(*'"},
        {"'abc", "eESCAPE"},
        {"\"abc", "eESCAPE"},
        // Broken clauses.
        {"{", ""},
        {"{}", "eESCAPE"},
        {"{x}", "eESCAPE"},
        {"{f", "eESCAPE"},
        {"{fn", "eESCAPE"},
        {"{t", ""},
        {"{d", "@"},
        // A word with c: the character behind it is copied, whatever it is.
        {"c", "c"},
        {"abc {d '2024-02-29'}", "abc @'2024-02-29'"},
        {"c{fn x}", "c{fn x}"},
        {"c'", "c'"},
        // c_data and its brace.
        {"c_data struct {int a}", "c_data struct {int a}"},
        {"C_DATA[3] [4] STRUCT{fn x}", "C_DATA[3] [4] STRUCT{fn x}"},
        {"c_data x {fn y}", "c_data x  y"},
        {"c_data sx {fn y}", "c_data sx  y"},
        {"c_data[2]struct{{fn y}", "c_data[2]struct{ y"},
        {"c_data", "c_data"},
        {"c_dat", "c_dat"},
        {"c_data[", "c_data["},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(rewritten(row.text), row.expected) << row.text;
        Coverage ignored;
        expect_as_the_table_says(row.text, &ignored);
    }
}

// The end of the text behind c_data and its word writes its own zero byte before state 0
// writes another, and both count.
TEST(Escapes, AnUnfinishedStructOfCDataCountsOneZeroByteMore) {
    EXPECT_EQ(rewritten("c_data st"), std::string("c_data st\0", 10));
    EXPECT_EQ(rewritten("c_data struct x"), std::string("c_data struct x\0", 16));
}

TEST(Escapes, TakeEveryEntryOfTheirTableAsWritten) {
    Coverage coverage;
    for (const std::string &text : texts_for_every_entry(
             escape_table(), {"", "}", "'x'}", " x}", "*)--", "(a),product(b)d'x'*)--"}))
        expect_as_the_table_says(text, &coverage);
    // State 46 passes every blank before state 48 is entered, so its own blank is never
    // met.
    EXPECT_FALSE(coverage.contains(48 * 100));
    EXPECT_EQ(coverage.size(), entry_count(escape_table()) - 1);
    EXPECT_EQ(escape_table().size(), 59u);
}

TEST(Escapes, EndOfTextInEveryStateIsAsTheStateSays) {
    const auto ways = shortest_texts(escape_table(), [](size_t state, const Entry &entry) {
        return sample_of(escape_table(), state, entry);
    });
    const std::set<size_t> closing = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 12, 13, 14, 15,
                                      16, 17, 18, 19, 20, 22, 23, 24, 46, 47, 48, 49, 51, 52,
                                      53, 54, 55, 56, 57, 58, 0,  41, 42, 43, 44, 45, 50};
    for (size_t state = 0; state < ways.size(); ++state) {
        std::vector<char> buffer(ways[state].size() + 2);
        EXPECT_EQ(b_convertEscapesToSQL(ways[state].c_str(), buffer.data(), buffer.size(), nullptr),
                  closing.contains(state) ? sOKAY : eESCAPE)
            << "state " << state << ": " << ways[state];
    }
}

TEST(Escapes, AgreeWithTheTableOnRandomTexts) {
    const std::string words[] = {"{",         "}",      "d ",
                                 "t ",        "ts ",    "fn ",
                                 "oj ",       "call ",  "escape",
                                 "'x'",       "'",      "\"",
                                 "--(*",      "*)--",   "-",
                                 "(",         ")",      "*",
                                 "vendor(a)", ",",      "product(b)",
                                 "c_data",    "[1]",    "struct",
                                 "c",         "C",      " ",
                                 "\n",        "select", "\xC3\xA4",
                                 "\x01",      "\x02",   "{d '2024-02-29'}",
                                 "{fn now()}"};
    oaktest::Random random(8);
    Coverage coverage;
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        for (uint64_t count = random.below(12); count > 0; --count)
            text += words[random.below(std::size(words))];
        expect_as_the_table_says(text, &coverage);
    }
}

TEST(Escapes, AreCutToTheBufferAndTerminated) {
    const std::string text = "select {d '2024-02-29'} from t";
    const std::string whole = "select @'2024-02-29' from t";
    for (size_t size = 0; size <= whole.size() + 3; ++size) {
        Coverage ignored;
        expect_rewrite(text, plain_escape(text, &ignored), size);
    }
    char buffer[64];
    size_t length = 0;
    EXPECT_EQ(b_convertEscapesToSQL(text.c_str(), buffer, whole.size() + 1, &length), sOKAY);
    EXPECT_STREQ(buffer, whole.c_str());
    EXPECT_EQ(length, whole.size());
    EXPECT_EQ(b_convertEscapesToSQL(text.c_str(), buffer, whole.size(), &length), sOKAY);
    EXPECT_EQ(buffer, whole.substr(0, whole.size() - 1));
    EXPECT_EQ(length, whole.size() - 1);
}

TEST(Escapes, LongTextsAreNotLimitedTo16Bits) {
    const std::string filler(100000, 'x');
    EXPECT_EQ(rewritten(filler + "{fn now()}" + filler), filler + " now()" + filler);
    EXPECT_EQ(rewritten("'" + filler + "'"), "'" + filler + "'");
    EXPECT_EQ(rewritten("{fn " + filler + "}"), " " + filler);
}

TEST(Escapes, RefuseNullPointers) {
    char buffer[8];
    size_t length = 77;
    EXPECT_EQ(b_convertEscapesToSQL(nullptr, buffer, sizeof buffer, &length), eINVNULLARG);
    EXPECT_EQ(b_convertEscapesToSQL("x", nullptr, 8, &length), eINVNULLARG);
    EXPECT_EQ(length, 77u);
    EXPECT_EQ(b_convertEscapesToSQL("x", buffer, sizeof buffer, nullptr), sOKAY);
    EXPECT_STREQ(buffer, "x");
}
