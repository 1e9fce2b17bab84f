// Key-value strings: the grammar, every reading function, every status.
#include "keyvalue.h"

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <strings.h>

#include "test_support.h"

namespace {

using oaktest::Resource;
using oaktest::Tag;

// ---- Helpers ---------------------------------------------------------------

std::string show_status(OAK_RETCODE rc) {
    switch (rc) {
        case sOKAY:
            return "sOKAY";
        case sNOTFOUND:
            return "sNOTFOUND";
        case sTRUNCATE:
            return "sTRUNCATE";
        case sKVNOVALUE:
            return "sKVNOVALUE";
        case eNOMEMORY:
            return "eNOMEMORY";
        case eINVKEYVALUE:
            return "eINVKEYVALUE";
        case eVALUEISLIST:
            return "eVALUEISLIST";
        case eINVOPTIONVALUE:
            return "eINVOPTIONVALUE";
        case eRANGE:
            return "eRANGE";
        case eINVNULLARG:
            return "eINVNULLARG";
        default:
            return std::to_string(static_cast<int>(rc));
    }
}

// A parsed string.
class KeyValue {
  public:
    explicit KeyValue(const std::string &text, OAK_BOOL_T use_case = OAK_FALSE) {
        EXPECT_EQ(show_status(b_keyvalueCreate(text.c_str(), use_case, &kv_)), "sOKAY") << text;
    }
    ~KeyValue() { EXPECT_EQ(b_keyvalueDestroy(kv_), sOKAY); }
    KeyValue(const KeyValue &) = delete;
    KeyValue &operator=(const KeyValue &) = delete;
    operator B_KEYVALUE() const { return kv_; }

  private:
    B_KEYVALUE kv_ = nullptr;
};

OAK_RETCODE collect(void *ctx, const char *key) {
    static_cast<std::vector<std::string> *>(ctx)->push_back(key);
    return sOKAY;
}

std::vector<std::string> keys(B_KEYVALUE kv) {
    std::vector<std::string> found;
    EXPECT_EQ(b_keyvalueIterate(kv, &found, collect), sOKAY);
    return found;
}

std::vector<std::string> values(B_KEYVALUE kv, const char *key) {
    Tag tag;
    uint32_t count = 0;
    char **texts = nullptr;
    EXPECT_EQ(b_keyvalueGetValueList(kv, key, &count, tag, &texts), sOKAY) << key;
    std::vector<std::string> found;
    for (uint32_t i = 0; i < count; ++i) {
        found.push_back(texts[i]);
        OSL_FREE(texts[i], tag);
    }
    OSL_FREE(texts, tag);
    return found;
}

// All of a string: "key=<v><v> key=<v>" in map order, or the status.
std::string parsed(const char *text, OAK_BOOL_T use_case = OAK_TRUE) {
    B_KEYVALUE kv = nullptr;
    const OAK_RETCODE rc = b_keyvalueCreate(text, use_case, &kv);
    if (rc != sOKAY) {
        EXPECT_EQ(kv, nullptr) << "nothing is handed out";
        return show_status(rc);
    }
    std::string shown;
    for (const std::string &key : keys(kv)) {
        shown += (shown.empty() ? "" : " ") + key + "=";
        for (const std::string &value : values(kv, key.c_str())) {
            shown += "<" + value + ">";
        }
    }
    EXPECT_EQ(b_keyvalueDestroy(kv), sOKAY);
    return shown;
}

struct Row {
    const char *text;
    const char *expected;
};

template <size_t count>
void expect_parsed(const Row (&rows)[count]) {
    for (const Row &row : rows) {
        EXPECT_EQ(parsed(row.text), row.expected) << row.text;
    }
}

// The value of the one key "a".
std::string value_of(const char *text) {
    const std::string all = parsed((std::string("a=") + text).c_str());
    return all.rfind("a=<", 0) == 0 ? all.substr(3, all.size() - 4) : all;
}

void expect_values(std::initializer_list<Row> rows) {
    for (const Row &row : rows) {
        EXPECT_EQ(value_of(row.text), row.expected) << row.text;
    }
}

// ---- Pairs -----------------------------------------------------------------

TEST(KeyValuePairs, NullAndEmptyTextsGiveAnEmptyObject) {
    EXPECT_EQ(parsed(nullptr), "");
    expect_parsed({{"", ""}, {"   \n", ""}, {";", ""}, {";; ;", ""}});
}

TEST(KeyValuePairs, AreSeparatedByAnyNumberOfSemicolons) {
    expect_parsed({
        {"a=1", "a=<1>"},
        {"a=1;", "a=<1>"},
        {"a=1;b=2", "a=<1> b=<2>"},
        {";;a=1;;;b=2;;", "a=<1> b=<2>"},
        {"b=2;a=1", "a=<1> b=<2>"},
        {" a = 1 ; b = 2 ", "a=<1> b=<2>"},
        {"docroot=/var/db;cache_size=64k;storage=INMEMORY_VOLATILE",
         "cache_size=<64k> docroot=</var/db> storage=<INMEMORY_VOLATILE>"},
    });
}

TEST(KeyValuePairs, KeysAreWordsOrQuotedTexts) {
    expect_parsed({
        {"Some_Key$1=x", "Some_Key$1=<x>"},
        {"a/b.c:d\\e=x", "a/b.c:d\\e=<x>"},
        {"'a b'=x", "a b=<x>"},
        {"\"a=b;c\"=x", "a=b;c=<x>"},
        {"''=x", "=<x>"},
        {"1=x", "eINVKEYVALUE"},
        {"=x", "eINVKEYVALUE"},
        {",", "eINVKEYVALUE"},
        {"/a=x", "eINVKEYVALUE"},
        {"1.5=x", "eINVKEYVALUE"},
        {"x'41'=x", "eINVKEYVALUE"},
        {"'a=x", "eINVKEYVALUE"},
        {"\x80=x", "eINVKEYVALUE"},
        {"a=1;1", "eINVKEYVALUE"},
    });
}

TEST(KeyValuePairs, NeedTheirEqualsSign) {
    expect_parsed({
        {"a", "eINVKEYVALUE"},
        {"a;b=1", "eINVKEYVALUE"},
        {"a b=1", "eINVKEYVALUE"},
        {"a:=1", "a:=<1>"},
        {"a,b=1", "eINVKEYVALUE"},
        {"a==1", "a=<1>"},
        {"a==x", "a=<=x>"},
    });
}

TEST(KeyValuePairs, LastOccurrenceOfAKeyWins) {
    expect_parsed({
        {"a=1;a=2", "a=<2>"},
        {"a=1,2;b=3;a=4", "a=<4> b=<3>"},
        {"a=1;a=2,3", "a=<2><3>"},
        {"a=1;a=", "a=<>"},
    });
}

TEST(KeyValuePairs, CaseCountsOnlyWhenAsked) {
    EXPECT_EQ(parsed("A=1;a=2", OAK_FALSE), "a=<2>");
    EXPECT_EQ(parsed("A=1;a=2", OAK_TRUE), "A=<1> a=<2>");
    EXPECT_EQ(parsed("b=1;A=2;C=3", OAK_FALSE), "A=<2> b=<1> C=<3>");
    EXPECT_EQ(parsed("b=1;A=2;C=3", OAK_TRUE), "A=<2> C=<3> b=<1>");
    char text[8];
    KeyValue folding("Abc=x", OAK_FALSE);
    EXPECT_EQ(b_keyvalueGetValue(folding, "aBC", text, sizeof text), sOKAY);
    KeyValue exact("Abc=x", OAK_TRUE);
    EXPECT_EQ(b_keyvalueGetValue(exact, "aBC", text, sizeof text), sNOTFOUND);
    EXPECT_EQ(b_keyvalueGetValue(exact, "Abc", text, sizeof text), sOKAY);
}

TEST(KeyValuePairs, ManyKeysKeepTheirValues) {
    std::string text;
    for (int i = 0; i < 2000; ++i) {
        text += "key" + std::to_string(i * 7919 % 2000) + "=value" + std::to_string(i) + ";";
    }
    KeyValue kv(text);
    EXPECT_EQ(keys(kv).size(), 2000u);
    for (int i = 0; i < 2000; ++i) {
        const std::string key = "KEY" + std::to_string(i * 7919 % 2000);
        EXPECT_EQ(values(kv, key.c_str()), std::vector<std::string>{"value" + std::to_string(i)});
    }
}

// ---- Elements --------------------------------------------------------------

TEST(KeyValueElements, WordsAreAppended) {
    expect_values({
        {"abc", "abc"},
        {"abc def", "abcdef"},
        {"/tmp/x", "/tmp/x"},
        {"C:\\d", "C:\\d"},
        {"Select", "Select"},
        {".a", ".a"},
        {"a.b", "a.b"},
        {"x-y", "x-y"},
        {"x+y", "x+y"},
        {"x-y-z", "x-y-z"},
        {"/var/db-two/x", "/var/db-two/x"},
        {"/var/db-2/x", "2/x"}, // a number replaces what stood there: such paths need quotes
        {"'/var/db-2/x'", "/var/db-2/x"},
    });
}

TEST(KeyValueElements, QuotedTextsReplaceWhatStoodThere) {
    expect_values({
        {"'a b'", "a b"},
        {"\"a,b;c\"", "a,b;c"},
        {"'it''s'", "it's"},
        {"x 'y'", "y"},
        {"'x' 'y'", "y"},
        {"'x' y", "xy"},
        {"'x'.y", "x.y"},
        {"''", ""},
        {"x ''", ""},
        {"'\\n\\x65'", "\nA"},
        {"'--/*'", "--/*"},
    });
}

TEST(KeyValueElements, NumbersReplaceWhatStoodThere) {
    expect_values({
        {"5", "5"},
        {"007", "7"},
        {"18446744073709551615", "18446744073709551615"},
        {"1.5", "1.500000"},
        {".5", "0.500000"},
        {"1e3", "1000.000000"},
        {"0.1234567", "0.123457"},
        {"2.5e-7", "0.000000"},
        {"1e22", "10000000000000000000000.000000"},
        {"1e999", "inf"},
        {"x 5", "5"},
        {"x1 2", "2"},
        {"1 2", "2"},
        {"5 x", "5x"},
        {"64k", "64k"},
        {"1.5k", "1.500000k"},
        {"5.x", "5.000000x"},
    });
}

TEST(KeyValueElements, LargestDoubleFits) {
    const std::string text = value_of("1.7976931348623157e308");
    EXPECT_EQ(text.size(), 309u + 7u);
    EXPECT_EQ(text.substr(0, 17), "17976931348623157");
    EXPECT_EQ(text.substr(309), ".000000");
}

TEST(KeyValueElements, SignsJoinWordsOrPrecedeNumbers) {
    expect_values({
        {"-5", "-5"},
        {"+5", "5"},
        {"- 5", "-5"},
        {"-1.5", "-1.500000"},
        {"+1.5", "1.500000"},
        {"1-2", "-2"},
        {"1+2", "2"},
        {"x-", "x-"},
        {"x+", "x+"},
        {"x-5", "5"},   // joined, then replaced by the number
        {"x--5", "-5"}, // the mark of the word is used up
        {"x-y-5", "5"},
        {"x 1-2", "2"},     // the mark stays over the number
        {"'x'-5", "-5"},    // a quoted text is no word
        {"x 'y'-z", "y-z"}, // and does not take the mark of one
        {"-", "eINVKEYVALUE"},
        {"+", "eINVKEYVALUE"},
        {"-x", "eINVKEYVALUE"},
        {"--5", "eINVKEYVALUE"},
        {"x--y", "eINVKEYVALUE"},
        {"-'5'", "eINVKEYVALUE"},
        {"5-x", "eINVKEYVALUE"},
        {"-;", "eINVKEYVALUE"},
        {"-1.2345678901234567890", "eINVKEYVALUE"},
        {"-0x05", "eINVKEYVALUE"},
    });
}

TEST(KeyValueElements, MarksAreAppended) {
    for (const char mark : std::string("!#%&()*/<=>?@[\\]^{}~|`")) {
        const std::string one(1, mark);
        EXPECT_EQ(value_of(one.c_str()), one);
        EXPECT_EQ(value_of((one + one + " x" + one).c_str()),
                  mark == '/' || mark == '\\' ? one + one + "x" + one : one + one + "x" + one);
    }
    EXPECT_EQ(value_of("."), ".");
    EXPECT_EQ(value_of(".."), "..");
}

TEST(KeyValueElements, OtherTokensAreRefused) {
    expect_values({
        {":", "eINVKEYVALUE"},
        {"$", "eINVKEYVALUE"},
        {"5:6", "eINVKEYVALUE"},
        {"x'41'", "eINVKEYVALUE"},
        {"0xFF", "eINVKEYVALUE"},
        {"1.2345678901234567890", "eINVKEYVALUE"},
        {"18446744073709551617", "eINVKEYVALUE"},
        {"'abc", "eINVKEYVALUE"},
        {"'\\u0100'", "eINVKEYVALUE"},
        {"\x80", "eINVKEYVALUE"},
        {"U&x", "eINVKEYVALUE"},
        {"999999999999999999999999999999999", "eINVKEYVALUE"},
    });
}

TEST(KeyValueElements, ThereAreNoComments) {
    expect_values({
        {"x/*y*/", "x/*y*/"},
        {"/*", "/*"},
        {"x -- y", "eINVKEYVALUE"},
    });
}

TEST(KeyValueElements, RunNotEndedByASemicolonSwallowsTheNextPair) {
    expect_parsed({
        {"a=1 b=2", "a=<2>"},
        {"a=x b=y", "a=<xb=y>"},
        {"a=x\nb=y", "a=<xb=y>"},
        {"a='x' 'b'='y'", "a=<y>"},
    });
}

// ---- Lists -----------------------------------------------------------------

TEST(KeyValueLists, HoldTheirElementsInOrder) {
    expect_parsed({
        {"a=1,2", "a=<1><2>"},
        {"a=c,b,a", "a=<c><b><a>"},
        {"a=x,'y z',3,-4;b=5", "a=<x><y z><3><-4> b=<5>"},
        {"a=x-,y", "a=<x-><y>"},
    });
    std::string text = "a=0";
    std::string expected = "a=<0>";
    for (int i = 1; i < 100; ++i) {
        text += "," + std::to_string(i);
        expected += "<" + std::to_string(i) + ">";
    }
    EXPECT_EQ(parsed(text.c_str()), expected) << "beyond several steps of growth";
}

TEST(KeyValueLists, EmptyElements) {
    expect_parsed({
        {"a=", "a=<>"},
        {"a=;b=", "a=<> b=<>"},
        {"a=''", "a=<>"},
        {"a=,b", "eNOMEMORY"}, // settled: the word of a failed allocation
        {"a=,", "eNOMEMORY"},
        {"a=1,,2", "eNOMEMORY"},
        {"a='',b", "a=<><b>"},
        {"a=1,'',b", "a=<1><><b>"},
        {"a=1,2,", "eINVKEYVALUE"},
        {"a=1,", "eINVKEYVALUE"},
        {"a=1,;", "eINVKEYVALUE"},
        {"a=1,;b=2", "eINVKEYVALUE"},
        {"a=1,''", "eINVKEYVALUE"},
        {"a='',''", "eINVKEYVALUE"},
    });
}

TEST(KeyValueCreate, RefusesANullResult) {
    EXPECT_EQ(b_keyvalueCreate("a=1", OAK_FALSE, nullptr), eINVNULLARG);
    EXPECT_EQ(b_keyvalueDestroy(nullptr), sOKAY);
}

// ---- Texts -----------------------------------------------------------------

TEST(KeyValueGetValue, CopiesCutsAndReports) {
    KeyValue kv("a=hello;e=;l=1,2");
    char buffer[8];
    const auto get = [&](const char *key, size_t size) {
        std::memset(buffer, '#', sizeof buffer);
        const OAK_RETCODE rc = b_keyvalueGetValue(kv, key, buffer, size);
        return show_status(rc) + " " + std::string(buffer, strnlen(buffer, sizeof buffer));
    };
    EXPECT_EQ(get("a", 8), "sOKAY hello");
    EXPECT_EQ(get("a", 6), "sOKAY hello");
    EXPECT_EQ(get("a", 5), "sTRUNCATE hell");
    EXPECT_EQ(get("a", 2), "sTRUNCATE h");
    EXPECT_EQ(get("a", 1), "sTRUNCATE ");
    EXPECT_EQ(get("a", 0), "sOKAY ########") << "no room: nothing is copied";
    EXPECT_EQ(get("e", 8), "sKVNOVALUE ");
    EXPECT_EQ(get("e", 1), "sKVNOVALUE ");
    EXPECT_EQ(get("e", 0), "sKVNOVALUE ########");
    EXPECT_EQ(get("l", 8), "eVALUEISLIST ########");
    EXPECT_EQ(get("x", 8), "sNOTFOUND ########");
    EXPECT_EQ(b_keyvalueGetValue(kv, "a", nullptr, 0), sKVNOVALUE);
    EXPECT_EQ(b_keyvalueGetValue(kv, "a", nullptr, 8), sKVNOVALUE);
    EXPECT_EQ(b_keyvalueGetValue(kv, "l", nullptr, 0), eVALUEISLIST);
    EXPECT_EQ(b_keyvalueGetValue(kv, nullptr, buffer, 8), eINVNULLARG);
    EXPECT_EQ(b_keyvalueGetValue(nullptr, "a", buffer, 8), eINVNULLARG);
}

TEST(KeyValueGetValueString, CopiesUnderTheTag) {
    Tag tag;
    KeyValue kv("a=hello;e=;l=1,2");
    const char *const unset = "unset";
    const char *text = unset;
    EXPECT_EQ(b_keyvalueGetValueString(kv, "x", tag, &text), sNOTFOUND);
    EXPECT_EQ(b_keyvalueGetValueString(kv, "l", tag, &text), eVALUEISLIST);
    EXPECT_EQ(b_keyvalueGetValueString(nullptr, "a", tag, &text), eINVNULLARG);
    EXPECT_EQ(b_keyvalueGetValueString(kv, nullptr, tag, &text), eINVNULLARG);
    EXPECT_EQ(text, unset);
    EXPECT_EQ(b_keyvalueGetValueString(kv, "e", tag, &text), sKVNOVALUE);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(b_keyvalueGetValueString(kv, "e", tag, nullptr), sKVNOVALUE);
    EXPECT_EQ(b_keyvalueGetValueString(kv, "a", tag, nullptr), sOKAY);
    EXPECT_EQ(tag.live(), 0u);
    EXPECT_EQ(b_keyvalueGetValueString(kv, "a", tag, &text), sOKAY);
    EXPECT_STREQ(text, "hello");
    OSL_FREE(const_cast<char *>(text), tag);
}

TEST(KeyValueGetValueList, HandsOutCopies) {
    Tag tag;
    KeyValue kv("a=one;l=1,'two',3;e=");
    EXPECT_EQ(values(kv, "a"), std::vector<std::string>{"one"});
    EXPECT_EQ(values(kv, "l"), (std::vector<std::string>{"1", "two", "3"}));
    EXPECT_EQ(values(kv, "e"), std::vector<std::string>{""});
    uint32_t count = 77;
    EXPECT_EQ(b_keyvalueGetValueList(kv, "x", &count, tag, nullptr), sNOTFOUND);
    EXPECT_EQ(count, 77u);
    EXPECT_EQ(b_keyvalueGetValueList(kv, "l", &count, tag, nullptr), sOKAY);
    EXPECT_EQ(count, 3u);
    char **texts = nullptr;
    EXPECT_EQ(b_keyvalueGetValueList(kv, "l", nullptr, tag, &texts), eINVNULLARG);
    EXPECT_EQ(b_keyvalueGetValueList(nullptr, "l", &count, tag, &texts), eINVNULLARG);
    EXPECT_EQ(b_keyvalueGetValueList(kv, nullptr, &count, tag, &texts), eINVNULLARG);
    EXPECT_EQ(texts, nullptr);
}

// ---- Booleans --------------------------------------------------------------

TEST(KeyValueBoolean, WordsInAnyCase) {
    const std::pair<const char *, OAK_BOOL_T> rows[] = {
        {"yes", OAK_TRUE},    {"y", OAK_TRUE},   {"on", OAK_TRUE},  {"true", OAK_TRUE},
        {"1", OAK_TRUE},      {"YES", OAK_TRUE}, {"Y", OAK_TRUE},   {"oN", OAK_TRUE},
        {"True", OAK_TRUE},   {"n", OAK_FALSE},  {"no", OAK_FALSE}, {"off", OAK_FALSE},
        {"false", OAK_FALSE}, {"0", OAK_FALSE},  {"NO", OAK_FALSE}, {"Off", OAK_FALSE},
        {"FALSE", OAK_FALSE}, {"N", OAK_FALSE},
    };
    for (const auto &[word, expected] : rows) {
        OAK_BOOL_T value = expected == OAK_TRUE ? OAK_FALSE : OAK_TRUE;
        EXPECT_EQ(b_keyvalueGetBooleanFromString(word, &value), sOKAY) << word;
        EXPECT_EQ(value, expected) << word;
        EXPECT_EQ(b_keyvalueGetBooleanFromString(word, nullptr), sOKAY) << word;
        KeyValue kv(std::string("flag=") + word);
        value = expected == OAK_TRUE ? OAK_FALSE : OAK_TRUE;
        EXPECT_EQ(b_keyvalueGetValueBoolean(kv, "flag", &value), sOKAY) << word;
        EXPECT_EQ(value, expected) << word;
    }
}

TEST(KeyValueBoolean, OtherWordsAreRefused) {
    for (const char *word : {"", "maybe", "yess", "ye", "2", "01", " yes", "t", "f", "truefalse"}) {
        OAK_BOOL_T value = OAK_TRUE;
        EXPECT_EQ(b_keyvalueGetBooleanFromString(word, &value), eINVOPTIONVALUE) << word;
        EXPECT_EQ(value, OAK_TRUE);
        EXPECT_EQ(b_keyvalueGetBooleanFromString(word, nullptr), eINVOPTIONVALUE) << word;
    }
    EXPECT_EQ(b_keyvalueGetBooleanFromString(nullptr, nullptr), eINVNULLARG);
}

TEST(KeyValueBoolean, StatusesOfTheReading) {
    KeyValue kv("m=maybe;e=;l=1,0;long=yesyesyesyesyes;t=true");
    OAK_BOOL_T value = OAK_TRUE;
    EXPECT_EQ(b_keyvalueGetValueBoolean(kv, "m", &value), eINVOPTIONVALUE);
    EXPECT_EQ(b_keyvalueGetValueBoolean(kv, "e", &value), sKVNOVALUE);
    EXPECT_EQ(b_keyvalueGetValueBoolean(kv, "l", &value), eVALUEISLIST);
    EXPECT_EQ(b_keyvalueGetValueBoolean(kv, "x", &value), sNOTFOUND);
    EXPECT_EQ(b_keyvalueGetValueBoolean(kv, "long", &value), eINVOPTIONVALUE)
        << "cut to nine characters, which is no failure, and no word";
    EXPECT_EQ(b_keyvalueGetValueBoolean(nullptr, "t", &value), eINVNULLARG);
    EXPECT_EQ(b_keyvalueGetValueBoolean(kv, nullptr, &value), eINVNULLARG);
    EXPECT_EQ(value, OAK_TRUE);
    EXPECT_EQ(b_keyvalueGetValueBoolean(kv, "t", nullptr), sOKAY);
    EXPECT_EQ(b_keyvalueGetValueBoolean(kv, "m", nullptr), sOKAY) << "the word is not looked at";
    EXPECT_EQ(b_keyvalueGetValueBoolean(kv, "long", nullptr), sOKAY);
    EXPECT_EQ(b_keyvalueGetValueBoolean(kv, "e", nullptr), sKVNOVALUE);
    EXPECT_EQ(b_keyvalueGetValueBoolean(kv, "x", nullptr), sNOTFOUND);
}

// ---- Numbers ---------------------------------------------------------------

// The six readers under one face: the status, and the value as text.
template <class Number>
std::string read_number(OAK_RETCODE (*reader)(B_KEYVALUE, const char *, Number *),
                        const std::string &text) {
    KeyValue kv("n='" + text + "'");
    Number value = 77;
    const OAK_RETCODE rc = reader(kv, "n", &value);
    if (rc != sOKAY) {
        EXPECT_EQ(value, Number{77}) << text;
        return show_status(rc);
    }
    return std::to_string(value);
}

struct NumberRow {
    const char *text;
    const char *expected[6]; // int16, int32, int64, uint16, uint32, uint64
};

TEST(KeyValueNumbers, OfEachWidthAtTheirEnds) {
    const char *const R = "eRANGE";
    const NumberRow rows[] = {
        {"0", {"0", "0", "0", "0", "0", "0"}},
        {"5", {"5", "5", "5", "5", "5", "5"}},
        {"-1", {"-1", "-1", "-1", R, R, R}},
        {"+5", {"5", "5", "5", "5", "5", "5"}},
        {"32767", {"32767", "32767", "32767", "32767", "32767", "32767"}},
        {"32768", {R, "32768", "32768", "32768", "32768", "32768"}},
        {"-32768", {"-32768", "-32768", "-32768", R, R, R}},
        {"-32769", {R, "-32769", "-32769", R, R, R}},
        {"65535", {R, "65535", "65535", "65535", "65535", "65535"}},
        {"65536", {R, "65536", "65536", R, "65536", "65536"}},
        {"2147483647", {R, "2147483647", "2147483647", R, "2147483647", "2147483647"}},
        {"2147483648", {R, R, "2147483648", R, "2147483648", "2147483648"}},
        {"-2147483648", {R, "-2147483648", "-2147483648", R, R, R}},
        {"-2147483649", {R, R, "-2147483649", R, R, R}},
        {"4294967295", {R, R, "4294967295", R, "4294967295", "4294967295"}},
        {"4294967296", {R, R, "4294967296", R, R, "4294967296"}},
        {"9223372036854775807", {R, R, "9223372036854775807", R, R, "9223372036854775807"}},
        {"9223372036854775808", {R, R, R, R, R, "9223372036854775808"}},
        {"-9223372036854775808", {R, R, "-9223372036854775808", R, R, R}},
        {"-9223372036854775809", {R, R, R, R, R, R}},
        {"18446744073709551615", {R, R, R, R, R, "18446744073709551615"}},
        {"18446744073709551616", {R, R, R, R, R, R}},
        {"abc", {R, R, R, R, R, R}},
        {"1x", {R, R, R, R, R, R}},
        {"1 2", {R, R, R, R, R, R}},
        {"1.500000", {R, R, R, R, R, R}},
        // Size suffixes.
        {"1k", {"1000", "1000", "1000", "1000", "1000", "1000"}},
        {"64K", {R, "64000", "64000", "64000", "64000", "64000"}},
        {"2m", {R, "2000000", "2000000", R, "2000000", "2000000"}},
        {"2M", {R, "2000000", "2000000", R, "2000000", "2000000"}},
        {"3g", {R, R, "3000000000", R, "3000000000", "3000000000"}},
        {"3G", {R, R, "3000000000", R, "3000000000", "3000000000"}},
        {"4t", {R, R, "4000000000000", R, R, "4000000000000"}},
        {"4T", {R, R, "4000000000000", R, R, "4000000000000"}},
        {"5p", {R, R, "5000000000000000", R, R, "5000000000000000"}},
        {"5P", {R, R, "5000000000000000", R, R, "5000000000000000"}},
        {"-2k", {"-2000", "-2000", "-2000", R, R, R}},
        {"0k", {"0", "0", "0", "0", "0", "0"}},
        {"k", {"0", "0", "0", "0", "0", "0"}}, // nothing but zeros is left
        {"18446p", {R, R, R, R, R, "18446000000000000000"}},
        {"18447p", {R, R, R, R, R, R}},
        {"64kb", {R, R, R, R, R, R}},
        {"64kk", {R, R, R, R, R, R}},
        {"64k ", {R, R, R, R, R, R}},
        {"64\\nk", {R, R, R, R, R, R}},                               // the newline ends the search
        {"1k\\nx", {"1000", "1000", "1000", "1000", "1000", "1000"}}, // and the number
        {"token", {R, R, R, R, R, R}},
        {"1h", {R, R, R, R, R, R}},
        {"", {"sKVNOVALUE", "sKVNOVALUE", "sKVNOVALUE", "sKVNOVALUE", "sKVNOVALUE", "sKVNOVALUE"}},
    };
    for (const NumberRow &row : rows) {
        EXPECT_EQ(read_number(b_keyvalueGetInt16Value, row.text), row.expected[0]) << row.text;
        EXPECT_EQ(read_number(b_keyvalueGetIntValue, row.text), row.expected[1]) << row.text;
        EXPECT_EQ(read_number(b_keyvalueGetInt64Value, row.text), row.expected[2]) << row.text;
        EXPECT_EQ(read_number(b_keyvalueGetUInt16Value, row.text), row.expected[3]) << row.text;
        EXPECT_EQ(read_number(b_keyvalueGetUIntValue, row.text), row.expected[4]) << row.text;
        EXPECT_EQ(read_number(b_keyvalueGetUInt64Value, row.text), row.expected[5]) << row.text;
    }
}

TEST(KeyValueNumbers, UnquotedOnesReadAsWritten) {
    KeyValue kv("size=64k;n=-5;p=+5;d=1.5;x=token;kb=64kb");
    int32_t value = 0;
    EXPECT_EQ(b_keyvalueGetIntValue(kv, "size", &value), sOKAY);
    EXPECT_EQ(value, 64000);
    EXPECT_EQ(b_keyvalueGetIntValue(kv, "n", &value), sOKAY);
    EXPECT_EQ(value, -5);
    EXPECT_EQ(b_keyvalueGetIntValue(kv, "p", &value), sOKAY);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(b_keyvalueGetIntValue(kv, "d", &value), eRANGE);
    EXPECT_EQ(b_keyvalueGetIntValue(kv, "x", &value), eRANGE);
    EXPECT_EQ(b_keyvalueGetIntValue(kv, "kb", &value), eRANGE);
    EXPECT_EQ(value, 5);
}

template <class Number>
void expect_statuses(OAK_RETCODE (*reader)(B_KEYVALUE, const char *, Number *), bool wide) {
    KeyValue kv("n=5;e=;l=1,2;bad=abc");
    Number value = 77;
    EXPECT_EQ(reader(kv, "x", &value), sNOTFOUND);
    EXPECT_EQ(reader(kv, "l", &value), eVALUEISLIST);
    EXPECT_EQ(reader(kv, "e", &value), sKVNOVALUE);
    EXPECT_EQ(reader(kv, "bad", &value), eRANGE);
    EXPECT_EQ(reader(nullptr, "n", &value), eINVNULLARG);
    EXPECT_EQ(reader(kv, nullptr, &value), eINVNULLARG);
    EXPECT_EQ(value, Number{77});
    // Without a place the wide forms look no further, the narrow ones skip the
    // store alone.
    EXPECT_EQ(reader(kv, "x", nullptr), sNOTFOUND);
    EXPECT_EQ(reader(kv, "l", nullptr), eVALUEISLIST);
    EXPECT_EQ(reader(kv, "n", nullptr), sOKAY);
    EXPECT_EQ(reader(kv, "e", nullptr), wide ? sOKAY : sKVNOVALUE);
    EXPECT_EQ(reader(kv, "bad", nullptr), wide ? sOKAY : eRANGE);
}

TEST(KeyValueNumbers, Statuses) {
    expect_statuses(b_keyvalueGetInt64Value, true);
    expect_statuses(b_keyvalueGetUInt64Value, true);
    expect_statuses(b_keyvalueGetIntValue, false);
    expect_statuses(b_keyvalueGetUIntValue, false);
    expect_statuses(b_keyvalueGetInt16Value, false);
    expect_statuses(b_keyvalueGetUInt16Value, false);
}

// ---- Walking ---------------------------------------------------------------

struct Visits {
    B_KEYVALUE kv;
    std::vector<std::string> seen;
    size_t stop_after;
    B_KEYVALUE_CMP cmpfcn;
};

OAK_RETCODE stop_after(void *ctx, const char *key) {
    auto *visits = static_cast<Visits *>(ctx);
    visits->seen.push_back(key);
    return visits->seen.size() == visits->stop_after ? sEOS : sOKAY;
}

OAK_RETCODE look_up_others(void *ctx, const char *key) {
    auto *visits = static_cast<Visits *>(ctx);
    visits->seen.push_back(key);
    char text[4];
    OAK_IGNORE_STATUS(b_keyvalueGetValue(visits->kv, "a", text, sizeof text), "moves the cursor");
    OAK_IGNORE_STATUS(b_keyvalueGetValue(visits->kv, "zzz", text, sizeof text), "moves the cursor");
    return sOKAY;
}

OAK_RETCODE note_compare(const void *ctx, B_KEYVALUE_CMP cmpfcn, const char *key) {
    auto *visits = static_cast<Visits *>(const_cast<void *>(ctx));
    visits->seen.push_back(key);
    visits->cmpfcn = cmpfcn;
    return visits->seen.size() == visits->stop_after ? eFAIL : sOKAY;
}

const std::vector<std::string> kOrder = {"a", "b", "c", "d"};

TEST(KeyValueIterate, VisitsKeysInOrderUntilAStatus) {
    KeyValue kv("c=3;a=1;d=4;b=2");
    Visits all = {kv, {}, 0, nullptr};
    EXPECT_EQ(b_keyvalueIterate(kv, &all, stop_after), sOKAY);
    EXPECT_EQ(all.seen, kOrder);
    Visits some = {kv, {}, 2, nullptr};
    EXPECT_EQ(b_keyvalueIterate(kv, &some, stop_after), sEOS);
    EXPECT_EQ(some.seen, (std::vector<std::string>{"a", "b"}));
    Visits last = {kv, {}, 4, nullptr};
    EXPECT_EQ(b_keyvalueIterate(kv, &last, stop_after), sEOS);
}

TEST(KeyValueIterate, VisitorsMayReadOtherKeys) {
    std::string text;
    std::vector<std::string> expected;
    for (int i = 100; i < 400; ++i) {
        expected.push_back("k" + std::to_string(i));
        text += expected.back() + "=1;";
    }
    KeyValue kv(text);
    Visits visits = {kv, {}, 0, nullptr};
    EXPECT_EQ(b_keyvalueIterate(kv, &visits, look_up_others), sOKAY);
    EXPECT_EQ(visits.seen, expected);
}

TEST(KeyValueIterate, KeysFormHandsTheComparisonOn) {
    for (const OAK_BOOL_T use_case : {OAK_FALSE, OAK_TRUE}) {
        KeyValue kv("c=3;a=1;d=4;b=2", use_case);
        Visits visits = {kv, {}, 0, nullptr};
        EXPECT_EQ(b_keyvalueIterateKeys(kv, &visits, note_compare), sOKAY);
        EXPECT_EQ(visits.seen, kOrder);
        EXPECT_EQ(visits.cmpfcn("A", "a") == 0, use_case == OAK_FALSE);
        Visits some = {kv, {}, 3, nullptr};
        EXPECT_EQ(b_keyvalueIterateKeys(kv, &some, note_compare), eFAIL);
        EXPECT_EQ(some.seen.size(), 3u);
    }
}

TEST(KeyValueIterate, EmptyObjectsAndNullArguments) {
    KeyValue kv("");
    Visits visits = {kv, {}, 0, nullptr};
    EXPECT_EQ(b_keyvalueIterate(kv, &visits, stop_after), sOKAY);
    EXPECT_EQ(b_keyvalueIterateKeys(kv, &visits, note_compare), sOKAY);
    EXPECT_TRUE(visits.seen.empty());
    EXPECT_EQ(b_keyvalueIterate(nullptr, &visits, stop_after), eINVNULLARG);
    EXPECT_EQ(b_keyvalueIterate(kv, &visits, nullptr), eINVNULLARG);
    EXPECT_EQ(b_keyvalueIterateKeys(nullptr, &visits, note_compare), eINVNULLARG);
    EXPECT_EQ(b_keyvalueIterateKeys(kv, &visits, nullptr), eINVNULLARG);
}

// ---- Memory ----------------------------------------------------------------

TEST(KeyValueMemory, EachFailedAllocationOfCreateIsSeen) {
    const char *const text = "a=1;'b'=x,'y',-2.5;a=long/path/of/more/than/a/buffer/step.and/"
                             "still/longer/so/that/it/grows/again;c=;d=1,2,3";
    const uint64_t failures = oaktest::sweep_faults(Resource::memory, {eNOMEMORY}, [&] {
        B_KEYVALUE kv = nullptr;
        const OAK_RETCODE rc = b_keyvalueCreate(text, OAK_FALSE, &kv);
        EXPECT_EQ(kv != nullptr, rc == sOKAY);
        OAK_IGNORE_STATUS(b_keyvalueDestroy(kv), "always succeeds");
        return rc;
    });
    EXPECT_EQ(failures >= 40, oaktest::faults_are_injected());
}

TEST(KeyValueMemory, ManyKeysSplitTheTreeUnderFailures) {
    std::string text;
    for (int i = 0; i < 70; ++i) {
        text += "k" + std::to_string(i) + "=1;";
    }
    const uint64_t failures = oaktest::sweep_faults(Resource::memory, {eNOMEMORY}, [&] {
        B_KEYVALUE kv = nullptr;
        const OAK_RETCODE rc = b_keyvalueCreate(text.c_str(), OAK_FALSE, &kv);
        EXPECT_EQ(kv != nullptr, rc == sOKAY);
        OAK_IGNORE_STATUS(b_keyvalueDestroy(kv), "always succeeds");
        return rc;
    });
    EXPECT_EQ(failures >= 500, oaktest::faults_are_injected());
}

TEST(KeyValueMemory, RefusedTextsLeaveNothingBehind) {
    const oaktest::Live before = oaktest::Live::now();
    for (const char *text : {"a=1;b", "a=x,y,-", "a='x' 'y' 1.2345678901234567890", "'k'=1,,",
                             "a=1,2,", "a=0xFF", "a='x", "k 'l'"}) {
        B_KEYVALUE kv = nullptr;
        EXPECT_NE(b_keyvalueCreate(text, OAK_FALSE, &kv), sOKAY) << text;
        EXPECT_EQ(kv, nullptr);
        EXPECT_EQ(oaktest::Live::now(), before) << text;
    }
}

TEST(KeyValueMemory, EachFailedAllocationOfTheGettersIsSeen) {
    Tag tag;
    KeyValue kv("a=64k;l=1,2,3");
    const bool injected = oaktest::faults_are_injected();
    EXPECT_EQ(oaktest::sweep_faults(Resource::memory, {eNOMEMORY},
                                    [&] {
                                        const char *text = nullptr;
                                        const OAK_RETCODE rc =
                                            b_keyvalueGetValueString(kv, "a", tag, &text);
                                        EXPECT_EQ(text != nullptr, rc == sOKAY);
                                        OSL_FREE(const_cast<char *>(text), tag);
                                        return rc;
                                    }),
              injected ? 2u : 0u);
    EXPECT_EQ(oaktest::sweep_faults(Resource::memory, {eNOMEMORY},
                                    [&] {
                                        int16_t value = 77;
                                        const OAK_RETCODE rc =
                                            b_keyvalueGetInt16Value(kv, "a", &value);
                                        EXPECT_EQ(value, 77);
                                        return rc == eRANGE ? sOKAY : rc;
                                    }),
              injected ? 2u : 0u);
    EXPECT_EQ(oaktest::sweep_faults(Resource::memory, {eNOMEMORY},
                                    [&] {
                                        uint32_t count = 0;
                                        char **texts = nullptr;
                                        const OAK_RETCODE rc =
                                            b_keyvalueGetValueList(kv, "l", &count, tag, &texts);
                                        EXPECT_EQ(count, rc == sOKAY ? 3u : 0u);
                                        EXPECT_EQ(texts != nullptr, rc == sOKAY);
                                        for (uint32_t i = 0; i < count; ++i) {
                                            OSL_FREE(texts[i], tag);
                                        }
                                        OSL_FREE(texts, tag);
                                        return rc;
                                    }),
              injected ? 8u : 0u);
}

// A long run of tokens costs no more than its length.
TEST(KeyValueMemory, LongElementsGrowInLinearTime) {
    const std::string marks(100000, '!');
    KeyValue kv("a=" + marks);
    EXPECT_EQ(values(kv, "a"), std::vector<std::string>{marks});
}

} // namespace
