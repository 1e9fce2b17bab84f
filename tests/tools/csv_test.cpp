// The CSV reader and writer: fields, line ends, quotes, refusals, and that it
// makes no difference in what pieces the text arrives.
#include "csv.h"

#include <cstring>

#include "test_support.h"

namespace {

using tools::CsvReader;
using Records = std::vector<std::vector<std::string>>;

constexpr size_t kRooms[] = {1, 4, 5, 7, 16, 1000};

CsvReader::Source source_of(std::string text) {
    return [text, at = size_t{0}](char *place, uint32_t count) mutable {
        const size_t got = std::min<size_t>(count, text.size() - at);
        std::memcpy(place, text.data() + at, got);
        at += got;
        return static_cast<uint32_t>(got);
    };
}

struct Read {
    Records records;
    std::string complaint;
};

Read read(const std::string &text, size_t room) {
    CsvReader reader(source_of(text), room);
    Read result;
    for (;;) {
        const CsvReader::Outcome outcome = reader.next();
        if (outcome != CsvReader::Outcome::record) {
            EXPECT_EQ(outcome == CsvReader::Outcome::refused, !reader.complaint().empty());
            EXPECT_EQ(reader.next(), outcome) << "it stays so";
            result.complaint = reader.complaint();
            return result;
        }
        result.records.emplace_back();
        for (const tools::CsvField &field : reader.fields()) {
            EXPECT_EQ(std::strlen(field.text), field.length);
            result.records.back().push_back(field.text);
        }
    }
}

void expect_records(const std::string &text, const Records &records) {
    for (const size_t room : kRooms) {
        const Read result = read(text, room);
        EXPECT_EQ(result.complaint, "") << text;
        EXPECT_EQ(result.records, records) << text << " in pieces of " << room;
    }
}

void expect_refused(const std::string &text, const std::string &complaint, size_t records = 0) {
    for (const size_t room : kRooms) {
        const Read result = read(text, room);
        EXPECT_EQ(result.complaint, complaint) << text << " in pieces of " << room;
        EXPECT_EQ(result.records.size(), records) << text;
    }
}

TEST(Csv, SplitsRecordsAndFields) {
    expect_records("", {});
    expect_records("a", {{"a"}});
    expect_records("a\n", {{"a"}});
    expect_records("a,b\nc,d\n", {{"a", "b"}, {"c", "d"}});
    expect_records("a,b\nc,d", {{"a", "b"}, {"c", "d"}});
    expect_records(",", {{"", ""}});
    expect_records(",\n,", {{"", ""}, {"", ""}});
    expect_records("a,,c\n", {{"a", "", "c"}});
    expect_records(" a , b \n", {{" a ", " b "}});
}

TEST(Csv, TakesBothLineEnds) {
    expect_records("a\r\nb\r\n", {{"a"}, {"b"}});
    expect_records("a,b\r\nc,\r\n", {{"a", "b"}, {"c", ""}});
    expect_records("\"a\"\r\n\"b\"\r\n", {{"a"}, {"b"}});
    expect_records("a\rb\n", {{"a\rb"}}); // alone it is a character like others
    expect_records("a\r", {{"a\r"}});
    expect_records("a\r\r\n", {{"a\r"}});
}

TEST(Csv, AnEmptyLineIsARecordOfOneEmptyField) {
    expect_records("\n", {{""}});
    expect_records("\n\n", {{""}, {""}});
    expect_records("a\n\nb\n", {{"a"}, {""}, {"b"}});
    expect_records("\r\n", {{""}});
}

TEST(Csv, QuotedFieldsHoldAnything) {
    expect_records("\"a,b\",c\n", {{"a,b", "c"}});
    expect_records("\"a\nb\"\n", {{"a\nb"}});
    expect_records("\"a\r\nb\"\r\n", {{"a\r\nb"}});
    expect_records("\"\"\n", {{""}});
    expect_records("\"\"", {{""}});
    expect_records("\"\"\"\"\n", {{"\""}});
    expect_records("\"\"\"a\"\"\",\"\"\"\"\"\"\n", {{"\"a\"", "\"\""}});
    expect_records("\"a\"", {{"a"}});
    expect_records("\"a\",", {{"a", ""}});
}

TEST(Csv, TellsQuotedFromUnquoted) {
    CsvReader reader(source_of("a,\"b\",,\"\"\n"));
    ASSERT_EQ(reader.next(), CsvReader::Outcome::record);
    ASSERT_EQ(reader.fields().size(), 4u);
    EXPECT_FALSE(reader.fields()[0].quoted);
    EXPECT_TRUE(reader.fields()[1].quoted);
    EXPECT_FALSE(reader.fields()[2].quoted);
    EXPECT_TRUE(reader.fields()[3].quoted);
}

TEST(Csv, CountsLinesAlsoInsideFields) {
    CsvReader reader(source_of("a,b\n\"1\n2\",\"3\n4\"\nx,y\n"));
    ASSERT_EQ(reader.next(), CsvReader::Outcome::record);
    EXPECT_EQ(reader.line(), 1u);
    ASSERT_EQ(reader.next(), CsvReader::Outcome::record);
    EXPECT_EQ(reader.line(), 2u);
    EXPECT_EQ(reader.fields()[0].line, 2u);
    EXPECT_EQ(reader.fields()[1].line, 3u);
    ASSERT_EQ(reader.next(), CsvReader::Outcome::record);
    EXPECT_EQ(reader.line(), 5u);
    EXPECT_EQ(reader.bytes_read(), 20u);
}

TEST(Csv, PassesAByteOrderMarkOver) {
    expect_records("\xEF\xBB\xBF"
                   "a,b\n",
                   {{"a", "b"}});
    expect_records("\xEF\xBB\xBF", {});
    expect_records("\xEF\xBB", {{"\xEF\xBB"}});
    expect_records("a\n\xEF\xBB\xBF"
                   "b\n",
                   {{"a"},
                    {"\xEF\xBB\xBF"
                     "b"}});
}

TEST(Csv, RefusesWhatIsNoCsv) {
    expect_refused("a\nb\"c\n", "line 2: a quote inside a field that does not begin with one", 1);
    expect_refused(" \"a\"\n", "line 1: a quote inside a field that does not begin with one");
    expect_refused("\"a\"b\n", "line 1: neither a comma nor a line end behind a closing quote");
    expect_refused("\"a\"\rb\n", "line 1: neither a comma nor a line end behind a closing quote");
    expect_refused("\"a\"\r", "line 1: neither a comma nor a line end behind a closing quote");
    expect_refused("a\n\"b\nc", "line 2: a quoted field begins here and never ends", 1);
    expect_refused("\"", "line 1: a quoted field begins here and never ends");
    expect_refused("\"\"\"", "line 1: a quoted field begins here and never ends");
    expect_refused(std::string("a\0b\n", 4), "line 1: a zero byte");
    expect_refused(std::string("\"a\n\0\"\n", 6), "line 2: a zero byte");
}

TEST(Csv, TellsThatTheTextCannotBeRead) {
    CsvReader at_once([](char *, uint32_t) { return OSL_READ_ERROR; });
    EXPECT_EQ(at_once.next(), CsvReader::Outcome::refused);
    EXPECT_EQ(at_once.complaint(), "the text cannot be read");
    int calls = 0;
    CsvReader later(
        [&](char *place, uint32_t count) {
            std::memset(place, 'a', count);
            return calls++ == 0 ? count : OSL_READ_ERROR;
        },
        16);
    EXPECT_EQ(later.next(), CsvReader::Outcome::refused);
    EXPECT_EQ(later.next(), CsvReader::Outcome::refused);
}

TEST(Csv, ReadsRecordsLongerThanItsRoom) {
    const std::string longest(100000, 'x');
    expect_records("a," + longest + "\n\"" + longest + "\",b\n", {{"a", longest}, {longest, "b"}});
}

TEST(Csv, QuotesOnlyWhatNeedsIt) {
    const std::pair<const char *, const char *> cases[] = {
        {"a", "a"},
        {"", "\"\""},
        {"a b", "a b"},
        {"a,b", "\"a,b\""},
        {"\"", "\"\"\"\""},
        {"a\nb", "\"a\nb\""},
        {"a\rb", "\"a\rb\""},
        {"a\"b", "\"a\"\"b\""},
        {"0x00", "0x00"},
        {";", ";"},
        {"\xC3\xA5", "\xC3\xA5"},
        {"\xEF\xBB\xBF", "\"\xEF\xBB\xBF\""},
    };
    for (const auto &[text, written] : cases) {
        std::string out;
        tools::append_csv_field(&out, text);
        EXPECT_EQ(out, written);
    }
}

TEST(Csv, WhatIsWrittenReadsBack) {
    oaktest::Random random(7);
    for (int run = 0; run < 200; ++run) {
        Records records;
        std::string text;
        for (uint64_t r = random.below(4) + 1; r > 0; --r) {
            records.emplace_back();
            for (uint64_t f = random.below(4) + 1; f > 0; --f) {
                std::string field;
                for (uint64_t n = random.below(6); n > 0; --n) {
                    field += "a,\"\r\n b"[random.below(7)];
                }
                text += records.back().empty() ? "" : ",";
                tools::append_csv_field(&text, field);
                records.back().push_back(field);
            }
            text += random.below(2) == 0 ? "\n" : "\r\n";
        }
        expect_records(text, records);
    }
}

} // namespace
