// The JSON pull reader: what it accepts, what it refuses, how containers are
// walked, who owns the texts, and how it fails.
#include "json.h"

#include <cstring>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "json_internal.h"
#include "test_support.h"

namespace {

using oaktest::Resource;
using oaktest::Tag;

// ---- Helpers ---------------------------------------------------------------

// A reader on a text.
class Reader {
  public:
    explicit Reader(const std::string &text) : text_(text) {
        EXPECT_EQ(b_inputCreateFromMemory(&input_, reinterpret_cast<const uint8_t *>(text_.data()),
                                          text_.size(), tag_),
                  sOKAY);
        EXPECT_EQ(b_jsonOpen(&json_, input_), sOKAY);
    }
    ~Reader() {
        b_jsonClose(json_);
        b_inputClose(input_);
    }
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;
    operator OAK_JSON_OBJ() const { return json_; }

    /// The next value in a word, or the status.
    std::string value();
    /// The next pair as "name=value", "end", or the status.
    std::string pair();
    uint64_t live_blocks() const {
#ifdef OSL_FAULT_INJECTION
        return osl_faultLiveUnderTag(json_->tag);
#else
        return 0;
#endif
    }

  private:
    std::string text_;
    Tag tag_;
    OAK_INPUT_OBJ input_ = nullptr;
    OAK_JSON_OBJ json_ = nullptr;
};

std::string show_status(OAK_RETCODE rc) {
    switch (rc) {
        case eSYNTAX:
            return "eSYNTAX";
        case eNOMEMORY:
            return "eNOMEMORY";
        default:
            return std::to_string(static_cast<int>(rc));
    }
}

std::string show_double(double value) {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out.precision(17);
    out << value;
    return out.str();
}

std::string show(const OAK_JSON_VAL &value) {
    switch (value.type) {
        case jvEND:
            return "end";
        case jvSTRING:
            return std::string("'") + value.v.str + "'";
        case jvNUMBER:
            return std::to_string(value.v.num);
        case jvDOUBLE:
            return "dbl " + show_double(value.v.dbl);
        case jvBOOLEAN:
            return value.v.flag == OAK_TRUE ? "true" : "false";
        case jvOBJECT:
            return "{";
        case jvARRAY:
            return "[";
        case jvNULL:
            return "null";
        default:
            return "noval";
    }
}

std::string Reader::value() {
    OAK_JSON_VAL value;
    OAK_JSON_VALTYPE type = jvNOVAL;
    const OAK_RETCODE rc = b_jsonNextValue(json_, &type, &value);
    if (rc != sOKAY) {
        EXPECT_EQ(type, jvNOVAL);
        return show_status(rc);
    }
    EXPECT_EQ(type, value.type);
    return show(value);
}

std::string Reader::pair() {
    OAK_JSON_PAIR pair;
    OAK_JSON_VALTYPE type = jvNOVAL;
    const OAK_RETCODE rc = b_jsonNextPair(json_, &type, &pair);
    std::string text = rc == sOKAY ? show(pair.value) : show_status(rc);
    if (rc == sOKAY) {
        EXPECT_EQ(type, pair.value.type);
        EXPECT_EQ(pair.name == nullptr, type == jvEND);
        if (pair.name != nullptr) {
            text = std::string(pair.name) + "=" + text;
        }
    }
    b_jsonFreePair(json_, &pair);
    EXPECT_EQ(pair.name, nullptr);
    return text;
}

// The whole text walked with a stack: values and pairs with blanks between, up
// to the end of the top value or the first failure.
std::string walk(const std::string &text) {
    Reader reader(text);
    std::vector<char> open;
    std::string out;
    for (;;) {
        const bool in_object = !open.empty() && open.back() == '{';
        const std::string item = in_object ? reader.pair() : reader.value();
        out += (out.empty() ? "" : " ") + item;
        if (item[0] == 'e' && item != "end" && item.find('=') == std::string::npos) {
            return out; // a status
        }
        if (item.back() == '{' || item.back() == '[') {
            open.push_back(item.back());
        } else if (item == "end") {
            open.pop_back();
        }
        if (open.empty()) {
            return out;
        }
    }
}

struct Row {
    const char *text;
    const char *expected;
};

template <size_t count>
void expect_walks(const Row (&rows)[count]) {
    for (const Row &row : rows) {
        EXPECT_EQ(walk(row.text), row.expected) << row.text;
    }
}

// ---- Types -----------------------------------------------------------------

TEST(Json, ValueTypesHaveTheirNumbers) {
    const std::pair<OAK_JSON_VALTYPE, int> rows[] = {
        {jvEND, -1},    {jvNOVAL, 0},  {jvSTRING, 1}, {jvNUMBER, 2}, {jvDOUBLE, 3},
        {jvBOOLEAN, 4}, {jvOBJECT, 5}, {jvARRAY, 6},  {jvNULL, 7},
    };
    for (const auto &[type, number] : rows) {
        EXPECT_EQ(static_cast<int>(type), number);
    }
}

// ---- Values ----------------------------------------------------------------

TEST(JsonValues, OfEachKind) {
    expect_walks({
        {"\"a\"", "'a'"},
        {"\"\"", "''"},
        {"5", "5"},
        {"0", "0"},
        {"-5", "-5"},
        {"+5", "5"},
        {"- 5", "-5"},
        {"-0", "0"},
        {"5.0", "dbl 5"},
        {"0.25", "dbl 0.25"},
        {"1e3", "dbl 1000"},
        {"true", "true"},
        {"false", "false"},
        {"null", "null"},
        {"{}", "{ end"},
        {"[]", "[ end"},
    });
}

TEST(JsonValues, WordsAreMatchedInAnyCase) {
    expect_walks({
        {"TRUE", "true"},
        {"True", "true"},
        {"FALSE", "false"},
        {"fAlSe", "false"},
        {"NULL", "null"},
        {"Null", "null"},
        {"\"true\"", "'true'"},
        {"\"null\"", "'null'"},
    });
}

TEST(JsonValues, OtherWordsAreStringsFoldedToUpperCase) {
    expect_walks({
        {"word", "'WORD'"},
        {"nulls", "'NULLS'"},
        {"_a$1", "'_A$1'"},
        {"x", "'X'"},
    });
}

TEST(JsonValues, IntegersWrapInSixtyFourBits) {
    expect_walks({
        {"9223372036854775807", "9223372036854775807"},
        {"9223372036854775808", "-9223372036854775808"},
        {"18446744073709551615", "-1"},
        {"-9223372036854775808", "-9223372036854775808"},
        {"-9223372036854775809", "9223372036854775807"},
        {"-18446744073709551615", "1"},
        {"007", "7"},
    });
}

TEST(JsonValues, RealNumbersBehindASignAreRefused) {
    expect_walks({
        {"-5.0", "eSYNTAX"},
        {"+5.0", "eSYNTAX"},
        {"-.5", "eSYNTAX"},
        {"-1e5", "eSYNTAX"},
        {"- -5", "eSYNTAX"},
        {"+-5", "eSYNTAX"},
        {"-a", "eSYNTAX"},
        {"-'5'", "eSYNTAX"},
        {"-", "eSYNTAX"},
        {"-x'05'", "eSYNTAX"},
        {"-1.2345678901234567890", "eSYNTAX"},
        {"-[", "eSYNTAX"},
    });
}

TEST(JsonValues, LongRealNumberThatNoDoubleHoldsIsRefused) {
    expect_walks({
        {"1.2345678901234567890", "eSYNTAX"},
        {"18446744073709551617", "eSYNTAX"},
        {"999999999999999999999999999999999", "eSYNTAX"},
        {"1.5000000000000000000", "dbl 1.5"},
        {"18446744073709551616", "dbl 1.8446744073709552e+19"},
    });
}

TEST(JsonValues, TooLargeForADoubleIsInfinite) {
    Reader reader("1e999");
    OAK_JSON_VAL value;
    ASSERT_EQ(b_jsonNextValue(reader, nullptr, &value), sOKAY);
    EXPECT_EQ(value.type, jvDOUBLE);
    EXPECT_EQ(value.v.dbl, std::numeric_limits<double>::infinity());
}

TEST(JsonValues, RelaxedNumbers) {
    expect_walks({
        {".5", "dbl 0.5"},
        {"5.", "dbl 5"},
        {"1e", "dbl 1"},
        {"1e5-3", "dbl 100000"},
    });
}

TEST(JsonValues, StringsInTheLexersForms) {
    expect_walks({
        {"'a'", "'a'"},
        {"'a\"b'", "'a\"b'"},
        {"\"a'b\"", "'a'b'"},
        {"\"a\"\"b\"", "'a\"b'"},
        {"'it''s'", "'it's'"},
        {"\"a\\nb\\t\\\"c\\\\\"", "'a\nb\t\"c\\'"},
        {"\"a\\/b\"", "'a\\/b'"},
        {"\"\\u0041\"", "'A'"},
        {"\"\\u00e9\"", "'\xE9'"},
        {"\"\xC3\xA9\"", "'\xC3\xA9'"},
        {"U&'\\00e9'", "'\xC3\xA9'"},
        {"\"a\nb\"", "'a\nb'"},
    });
}

TEST(JsonValues, TokensThatAreNoValueAreRefused) {
    expect_walks({
        {"", "eSYNTAX"},
        {"  \n ", "eSYNTAX"},
        {"}", "eSYNTAX"},
        {"]", "eSYNTAX"},
        {",", "eSYNTAX"},
        {", 1", "eSYNTAX"},
        {":", "eSYNTAX"},
        {"(", "eSYNTAX"},
        {"x'41'", "eSYNTAX"},
        {"0x41", "eSYNTAX"},
        {"\"abc", "eSYNTAX"},
        {"\"\\u0100\"", "eSYNTAX"},
        {"\"\\u00g0\"", "eSYNTAX"},
        {"\x80", "eSYNTAX"},
        {"U&x", "eSYNTAX"},
        {"\xEF\xBB\xBF{}", "eSYNTAX"},
    });
}

TEST(JsonValues, EveryMarkButTheOpeningOnesIsRefused) {
    for (const char mark : std::string("!#$%&()*,./:;<=>?@\\]^`|}~")) {
        EXPECT_EQ(walk(std::string(1, mark)), "eSYNTAX") << mark;
    }
}

TEST(JsonValues, TextBehindTheTopValueIsNotLookedAt) {
    expect_walks({
        {"1 ???", "1"},
        {"{} \x80", "{ end"},
        {"[] ]", "[ end"},
        {"\"a\" \"", "'a'"},
    });
}

TEST(JsonValues, CommentsAreSkipped) {
    expect_walks({
        {"/* c */ [1, -- one\n 2 /* two */]", "[ 1 2 end"},
        {"--5\n6", "6"},
        {"{a /**/ : 1}", "{ A=1 end"},
    });
}

// ---- Arrays ----------------------------------------------------------------

TEST(JsonArrays, CommasAreOptionalAndOneMayStandBeforeAValueOrTheEnd) {
    expect_walks({
        {"[1,2,3]", "[ 1 2 3 end"},
        {"[1 2,3]", "[ 1 2 3 end"},
        {"[1 2 3]", "[ 1 2 3 end"},
        {"[1,]", "[ 1 end"},
        {"[,1]", "[ 1 end"},
        {"[,]", "[ end"},
        {"[1,,2]", "[ 1 eSYNTAX"},
        {"[1,,]", "[ 1 eSYNTAX"},
        {"[[1][2]]", "[ [ 1 end [ 2 end end"},
        {"[[1],[2],]", "[ [ 1 end [ 2 end end"},
    });
}

TEST(JsonArrays, MustEndWithTheirBracket) {
    expect_walks({
        {"[", "[ eSYNTAX"},
        {"[1", "[ 1 eSYNTAX"},
        {"[1,", "[ 1 eSYNTAX"},
        {"[1}", "[ 1 eSYNTAX"},
        {"[1:2]", "[ 1 eSYNTAX"},
        {"[[]", "[ [ end eSYNTAX"},
    });
}

// ---- Objects ---------------------------------------------------------------

TEST(JsonObjects, CommasAreOptionalAndMayRun) {
    expect_walks({
        {"{\"a\":1,\"b\":2}", "{ a=1 b=2 end"},
        {"{\"a\":1 \"b\":2}", "{ a=1 b=2 end"},
        {"{\"a\":1,,\"b\":2}", "{ a=1 b=2 end"},
        {"{,,,\"a\":1}", "{ a=1 end"},
        {"{\"a\":1,}", "{ a=1 eSYNTAX"},
        {"{,}", "{ eSYNTAX"},
        {"{\"a\":,1}", "{ eSYNTAX"},
    });
}

TEST(JsonObjects, NamesMayBeWordsAndEvenReservedOnes) {
    expect_walks({
        {"{a:true}", "{ A=true end"},
        {"{\"a\":TRUE}", "{ a=true end"},
        {"{\"a\":word}", "{ a='WORD' end"},
        {"{'a b':1}", "{ a b=1 end"},
        {"{true:false null:1}", "{ TRUE=false NULL=1 end"},
        {"{\"\":1}", "{ =1 end"},
        {"{\"a\":1,\"a\":2}", "{ a=1 a=2 end"},
    });
}

TEST(JsonObjects, WhatIsNoPairIsRefused) {
    expect_walks({
        {"{", "{ eSYNTAX"},
        {"{1:2}", "{ eSYNTAX"},
        {"{[", "{ eSYNTAX"},
        {"{]", "{ eSYNTAX"},
        {"{:1}", "{ eSYNTAX"},
        {"{\"a\"", "{ eSYNTAX"},
        {"{\"a\"}", "{ eSYNTAX"},
        {"{\"a\" 1}", "{ eSYNTAX"},
        {"{\"a\",1}", "{ eSYNTAX"},
        {"{\"a\":", "{ eSYNTAX"},
        {"{\"a\":}", "{ eSYNTAX"},
        {"{\"a\":]}", "{ eSYNTAX"},
        {"{\"a\":1", "{ a=1 eSYNTAX"},
        {"{\"a\":1]", "{ a=1 eSYNTAX"},
        {"{x'41':1}", "{ eSYNTAX"},
        {"{\"a\" \"b\":1}", "{ eSYNTAX"},
        {"{\"a", "{ eSYNTAX"},
        {"{1.2345678901234567890:1}", "{ eSYNTAX"},
    });
}

TEST(JsonObjects, AreWalkedWithPairsAndArraysWithValues) {
    expect_walks({
        {"{\"a\":{\"b\":[1,{\"c\":null}]},\"d\":[]}",
         "{ a={ b=[ 1 { c=null end end end d=[ end end"},
    });
}

TEST(JsonObjects, PairIsRefusedWhereNoObjectIsWalked) {
    Reader reader("{} {} [ {\"a\":1}");
    EXPECT_EQ(reader.pair(), "eSYNTAX") << "nothing is open";
    EXPECT_EQ(reader.value(), "{") << "and nothing was read";
    EXPECT_EQ(reader.pair(), "end");
    EXPECT_EQ(reader.pair(), "eSYNTAX") << "the top object has ended";
    EXPECT_EQ(reader.value(), "{");
    EXPECT_EQ(reader.pair(), "end");
    EXPECT_EQ(reader.value(), "[");
    EXPECT_EQ(reader.pair(), "eSYNTAX") << "an array is open";
    EXPECT_EQ(reader.value(), "{");
    EXPECT_EQ(reader.pair(), "a=1");
}

TEST(JsonObjects, BracketOfAnArrayCannotEndAnObject) {
    Reader reader("{]");
    EXPECT_EQ(reader.value(), "{");
    EXPECT_EQ(reader.value(), "eSYNTAX");
}

// ---- Nesting ---------------------------------------------------------------

TEST(JsonNesting, IsBoundByMemoryAlone) {
    for (const size_t depth : {9u, 10u, 11u, 20u, 21u, 40000u}) {
        Reader reader(std::string(depth, '[') + std::string(depth, ']'));
        for (size_t i = 0; i < depth; ++i) {
            ASSERT_EQ(reader.value(), "[");
        }
        for (size_t i = 0; i < depth; ++i) {
            ASSERT_EQ(reader.value(), "end");
        }
        EXPECT_EQ(reader.value(), "eSYNTAX");
    }
}

TEST(JsonNesting, ObjectsInArraysInObjects) {
    std::string text;
    std::string closing;
    std::string expected;
    std::string ends;
    for (int i = 0; i < 300; ++i) {
        text += "{\"a\":[";
        closing += "]}";
        expected += "{ a=[ ";
        ends += " end end";
    }
    EXPECT_EQ(walk(text + "1" + closing), expected + "1" + ends);
}

// ---- Outputs ---------------------------------------------------------------

TEST(JsonOutputs, MayBeLeftOut) {
    const std::string text = "{\"a\":\"b\",\"c\":[\"d\",1]}";
    Reader reader(text);
    OAK_JSON_VALTYPE type = jvNOVAL;
    EXPECT_EQ(b_jsonNextValue(reader, nullptr, nullptr), sOKAY);
    const uint64_t before = reader.live_blocks();
    EXPECT_EQ(b_jsonNextPair(reader, &type, nullptr), sOKAY);
    EXPECT_EQ(type, jvSTRING);
    EXPECT_EQ(b_jsonNextPair(reader, nullptr, nullptr), sOKAY);
    EXPECT_EQ(b_jsonNextValue(reader, &type, nullptr), sOKAY);
    EXPECT_EQ(type, jvSTRING);
    EXPECT_EQ(b_jsonNextValue(reader, nullptr, nullptr), sOKAY);
    EXPECT_EQ(b_jsonNextValue(reader, &type, nullptr), sOKAY);
    EXPECT_EQ(type, jvEND);
    EXPECT_EQ(b_jsonNextPair(reader, nullptr, nullptr), sOKAY);
    EXPECT_EQ(reader.live_blocks(), before) << "what nobody wanted is not kept";
}

TEST(JsonOutputs, FreedPairsLeaveNothingBehind) {
    Reader reader("{a:\"b\", \"c\":word, 'd':1.5, e:null, f:[], g:true}");
    EXPECT_EQ(reader.value(), "{");
    const uint64_t before = reader.live_blocks();
    for (const char *expected : {"a='b'", "c='WORD'", "d=dbl 1.5", "E=null", "F=["}) {
        const std::string pair = reader.pair();
        EXPECT_EQ(pair == "A='b'" ? "a='b'" : pair, expected);
    }
    EXPECT_EQ(reader.value(), "end");
    EXPECT_EQ(reader.pair(), "G=true");
    EXPECT_EQ(reader.pair(), "end");
    EXPECT_EQ(reader.live_blocks(), before);
}

TEST(JsonOutputs, FailuresLeaveNothingButTheNameBehind) {
    for (const char *text : {"{\"a\":1.2345678901234567890}", "{\"a\":x'41'}", "{\"a\" \"b\"}",
                             "{\"a\" b}", "{x'41'", "{\"a\":-'b'}", "{\"a\":-c}"}) {
        Reader reader(text);
        EXPECT_EQ(reader.value(), "{");
        const uint64_t before = reader.live_blocks();
        EXPECT_EQ(reader.pair(), "eSYNTAX") << text;
        EXPECT_EQ(reader.live_blocks(), before) << text;
    }
}

TEST(JsonOutputs, NameStaysInThePairWhenItsValueFails) {
    Reader reader("{\"abc\": }");
    EXPECT_EQ(reader.value(), "{");
    OAK_JSON_PAIR pair = {"stale", {jvSTRING, {}}};
    pair.value.v.str = "stale";
    OAK_JSON_VALTYPE type = jvNOVAL;
    EXPECT_EQ(b_jsonNextPair(reader, &type, &pair), eSYNTAX);
    EXPECT_STREQ(pair.name, "abc");
    EXPECT_EQ(pair.value.type, jvNOVAL) << "nothing stale is left to be freed";
    EXPECT_EQ(type, jvNOVAL);
    b_jsonFreePair(reader, &pair);
    b_jsonFreePair(reader, &pair);
}

TEST(JsonOutputs, FailedValueStoresNothing) {
    Reader reader("}");
    OAK_JSON_VAL value;
    value.type = jvNUMBER;
    value.v.num = 17;
    EXPECT_EQ(b_jsonNextValue(reader, nullptr, &value), eSYNTAX);
    EXPECT_EQ(value.type, jvNUMBER);
    EXPECT_EQ(value.v.num, 17);
}

TEST(JsonOutputs, StringsOfValuesGoWithTheReader) {
    Reader reader("[\"a\", b]");
    EXPECT_EQ(reader.value(), "[");
    const uint64_t before = reader.live_blocks();
    EXPECT_EQ(reader.value(), "'a'");
    EXPECT_EQ(reader.value(), "'B'");
    EXPECT_EQ(reader.live_blocks(), before + (oaktest::faults_are_injected() ? 2 : 0));
}

// ---- Opening, places, input ------------------------------------------------

TEST(JsonOpen, NullArgumentsAreRefused) {
    Reader reader("1");
    OAK_JSON_OBJ json = nullptr;
    OAK_JSON_VAL value;
    OAK_JSON_PAIR pair = {"stale", {jvSTRING, {}}};
    EXPECT_EQ(b_jsonOpen(nullptr, nullptr), eINVNULLARG);
    EXPECT_EQ(b_jsonOpen(&json, nullptr), eINVNULLARG);
    EXPECT_EQ(json, nullptr);
    EXPECT_EQ(b_jsonNextValue(nullptr, nullptr, &value), eINVNULLARG);
    EXPECT_EQ(b_jsonNextPair(nullptr, nullptr, &pair), eINVNULLARG);
    EXPECT_EQ(pair.name, nullptr);
    b_jsonFreePair(nullptr, &pair);
    b_jsonFreePair(reader, nullptr);
    b_jsonClose(nullptr);
}

TEST(JsonOpen, InputStaysTheCallersAndIsReadFromItsPlace) {
    Tag tag;
    const std::string text = "xx[1,2]";
    OAK_INPUT_OBJ input = nullptr;
    ASSERT_EQ(b_inputCreateFromMemory(&input, reinterpret_cast<const uint8_t *>(text.data()),
                                      text.size(), tag),
              sOKAY);
    B_CHAR ch = 0;
    ASSERT_EQ(b_inputRead(input, &ch), sOKAY);
    ASSERT_EQ(b_inputRead(input, &ch), sOKAY);
    OAK_JSON_OBJ json = nullptr;
    ASSERT_EQ(b_jsonOpen(&json, input), sOKAY);
    OAK_JSON_VALTYPE type = jvNOVAL;
    EXPECT_EQ(b_jsonNextValue(json, &type, nullptr), sOKAY);
    EXPECT_EQ(type, jvARRAY);
    b_jsonClose(json);
    ASSERT_EQ(b_inputRewind(input, nullptr), sOKAY);
    ASSERT_EQ(b_inputRead(input, &ch), sOKAY);
    EXPECT_EQ(ch, B_CHAR{'x'});
    b_inputClose(input);
}

TEST(JsonOpen, LexerTellsThePlaceOfAFailure) {
    Reader reader("{\n  \"a\": 1,\n  \"b\": ]\n}");
    EXPECT_EQ(reader.value(), "{");
    EXPECT_EQ(reader.pair(), "a=1");
    EXPECT_EQ(reader.pair(), "eSYNTAX");
    const OAK_JSON_OBJ json = reader;
    EXPECT_EQ(b_lexGetLineNumber(json->hLex), 3u);
    EXPECT_EQ(b_lexGetCharacterNumber(json->hLex), 8u);
}

// ---- Files -----------------------------------------------------------------

std::string catalog_text() {
    std::string text = "{\n";
    for (int i = 0; i < 200; ++i) {
        text += "  \"table" + std::to_string(i) + "\": { \"id\": " + std::to_string(i * 7919) +
                ", \"names\": [\"column one\", \"column two\"] },\n";
    }
    return text + "  \"end\": null\n}\n";
}

// Opens a reader on the file and walks to the end without keeping anything.
OAK_RETCODE walk_input(OAK_INPUT_OBJ input) {
    OAK_JSON_OBJ json = nullptr;
    OAK_RETCODE rc = b_jsonOpen(&json, input);
    if (rc != sOKAY) {
        return rc;
    }
    std::vector<OAK_JSON_VALTYPE> open;
    do {
        OAK_JSON_VALTYPE type = jvNOVAL;
        OAK_JSON_PAIR pair = {};
        if (!open.empty() && open.back() == jvOBJECT) {
            rc = b_jsonNextPair(json, &type, &pair);
            b_jsonFreePair(json, &pair);
        } else {
            rc = b_jsonNextValue(json, &type, &pair.value);
        }
        if (type == jvOBJECT || type == jvARRAY) {
            open.push_back(type);
        } else if (type == jvEND) {
            open.pop_back();
        }
    } while (rc == sOKAY && !open.empty());
    b_jsonClose(json);
    return rc;
}

class JsonFile : public testing::Test {
  protected:
    void SetUp() override {
        uint32_t counter = 0;
        name_ = osl_fileCreateTmpName(&counter, "jsontest", 0, 0, tag_);
        file_ = osl_fileOpen(name_, OSL_OPEN_TRUNCATE, 0);
        const std::string text = catalog_text();
        const auto size = static_cast<uint32_t>(text.size());
        ASSERT_EQ(osl_fileSeekWrite(file_, 0, text.data(), size), size);
    }
    void TearDown() override {
        osl_fileClose(file_);
        EXPECT_EQ(osl_fileRemove(name_), sOKAY);
        OSL_FREE(name_, tag_);
    }
    OAK_RETCODE read_file() {
        OAK_INPUT_OBJ input = nullptr;
        OAK_RETCODE rc = b_inputCreateFromFile(&input, file_, tag_);
        if (rc == sOKAY) {
            rc = walk_input(input);
            b_inputClose(input);
        }
        return rc;
    }
    Tag tag_;
    char *name_ = nullptr;
    OSL_FH file_ = nullptr;
};

TEST_F(JsonFile, ReadsOverBlockBorders) {
    EXPECT_GT(catalog_text().size(), 10000u);
    EXPECT_EQ(read_file(), sOKAY);
}

TEST_F(JsonFile, FailedReadIsAnEarlyEnd) {
    const uint64_t failures =
        oaktest::sweep_faults(Resource::file, {eSYNTAX, eFILEIO}, [&] { return read_file(); });
    EXPECT_EQ(failures >= 20, oaktest::faults_are_injected()) << "a seek and a read for each block";
}

// ---- Exhausted memory ------------------------------------------------------

TEST(JsonMemory, EachFailedAllocationIsSeen) {
    Tag tag;
    const std::string text = "{\"a\":\"" + std::string(300, 'x') +
                             "\",word:other,\"b\":[1,-2,3.5,[[[[[[[[[[[[\"deep\"]]]]]]]]]]]]],"
                             "\"c\":true}";
    const uint64_t failures = oaktest::sweep_faults(Resource::memory, {eNOMEMORY}, [&] {
        OAK_INPUT_OBJ input = nullptr;
        OAK_RETCODE rc = b_inputCreateFromMemory(
            &input, reinterpret_cast<const uint8_t *>(text.data()), text.size(), tag);
        if (rc == sOKAY) {
            rc = walk_input(input);
            b_inputClose(input);
        }
        return rc;
    });
    EXPECT_EQ(failures >= 30, oaktest::faults_are_injected());
}

TEST(JsonMemory, FailuresInTheMiddleOfRefusedTextsAreSeenToo) {
    Tag tag;
    for (const char *text : {"1.2345678901234567890", "{\"a\" \"b\"}", "[x'41']", "-'abc'"}) {
        const uint64_t failures =
            oaktest::sweep_faults(Resource::memory, {eNOMEMORY, eSYNTAX}, [&] {
                OAK_INPUT_OBJ input = nullptr;
                OAK_RETCODE rc = b_inputCreateFromMemory(
                    &input, reinterpret_cast<const uint8_t *>(text), std::strlen(text), tag);
                if (rc == sOKAY) {
                    rc = walk_input(input);
                    b_inputClose(input);
                    rc = rc == eSYNTAX ? sOKAY : rc; // what they come to without failures
                }
                return rc;
            });
        EXPECT_EQ(failures >= 8, oaktest::faults_are_injected()) << text;
    }
}

} // namespace
