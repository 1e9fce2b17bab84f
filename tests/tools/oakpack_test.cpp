// The program oakpack: every type and its limits there and back, what the CSV may
// leave out, and every way in which it refuses, with the item file as before.
#include <cstring>

#include "item_file.h"
#include "tool_run.h"

namespace {

using oaktest::column;
using oaktest::one_table;
using oaktest::Result;
using oaktest::Strings;
using oaktest::Workplace;

constexpr const char *kFormats[] = {"compact", "expanded"};
constexpr const char *kMethods[] = {"none", "lzma", "zero"};

/// Packs and unpacks rows of a table "t" in one place.
class Bench {
  public:
    explicit Bench(const std::string &catalog, const std::string &table = "t") : table_(table) {
        place.write("catalog", catalog);
    }
    static Bench of_columns(const std::string &columns, int count) {
        return Bench(one_table(columns, count));
    }
    static Bench of_library(const std::string &table) {
        return Bench(oaktest::read_all(oaktest::example("library.json")), table);
    }

    Result pack(const std::string &csv, const Strings &options = {},
                const std::string &items = "items") const {
        place.write("rows.csv", csv);
        Strings args = {"--catalog", "catalog", "--table", table_};
        args.insert(args.end(), options.begin(), options.end());
        args.insert(args.end(), {"rows.csv", items});
        return place.run("oakpack", args);
    }
    std::string unpacked(const std::string &items = "items") const {
        const Result run =
            place.run("oakunpack", {"--catalog", "catalog", "--table", table_, items});
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");
        return run.out;
    }
    /// That rows pack, and give back `expected`.
    void expect_rows(const std::string &csv, const std::string &expected,
                     const Strings &options = {}) const {
        std::filesystem::remove(place.path("items"));
        const Result run = pack(csv, options);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(unpacked(), expected);
    }
    /// That rows are refused with this message, and that there is no item file
    /// then; `with_file` looks at one that was there before, too.
    void expect_refused(const std::string &csv, const std::string &message,
                        bool with_file = false) const {
        std::filesystem::remove(place.path("items"));
        Result run = pack(csv);
        EXPECT_EQ(run.status, 1) << csv;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, "oakpack: rows.csv: " + message + "\n") << csv;
        EXPECT_FALSE(place.has("items"));
        if (!with_file) {
            return;
        }
        const tools::ItemBytes empty = tools::file_header(16);
        const std::string before(empty.begin(), empty.end());
        place.write("items", before);
        run = pack(csv);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(place.read("items"), before);
    }

    Workplace place;

  private:
    std::string table_;
};

std::string in_column(const std::string &what, int line = 2) {
    return "line " + std::to_string(line) + ", column 'c': " + what;
}

/// A table with the one column "c".
Bench one_column(const std::string &type, const std::string &more = "") {
    return Bench::of_columns(column(0, "c", type, more), 1);
}

/// A table with a column c0, c1 ... for each case, and one row of all cases.
class ManyColumns {
  public:
    void add(const std::string &type, const std::string &text, const std::string &expected,
             const std::string &more = "") {
        const std::string comma = count_ > 0 ? "," : "";
        const std::string name = "c" + std::to_string(count_);
        columns_ += comma + column(count_++, name, type, more);
        header_ += comma + name;
        row_ += comma + text;
        expected_ += comma + expected;
    }
    Bench bench() const { return Bench(one_table(columns_, count_)); }
    std::string header() const { return header_ + "\n"; }
    std::string row() const { return row_ + "\n"; }
    std::string expected() const { return expected_ + "\n"; }

  private:
    int count_ = 0;
    std::string columns_, header_, row_, expected_;
};

// ---- Every type there and back -----------------------------------------------

constexpr const char *kTypedRows[] = {
    // The least values.
    "false,-128,0,-32768,0,-2147483648,0,-9223372036854775808,0,-3.40282347e+38,"
    "-1.7976931348623157e+308,-9999999.999,0001-01-01,00:00:00.0000,00:00:00.0000 -14:00,"
    "0001-01-01 00:00:00.0000,0001-01-02 00:00:00.0000 +14:00,1,"
    "00000000-0000-0000-0000-000000000000,\"\",\"\",\"\",\"\",0x000000,0x,\"ARRAY[false,false]\","
    "\"ARRAY[-128,-128,-128]\",ARRAY[0],\"ARRAY[-9223372036854775808,0]\","
    "\"ARRAY[-3.40282347e+38,0]\",\"ARRAY[-1.7976931348623157e+308,0,0]\"",
    // The greatest.
    "true,127,255,32767,65535,2147483647,4294967295,9223372036854775807,18446744073709551615,"
    "3.40282347e+38,1.7976931348623157e+308,9999999.999,9999-12-31,23:59:59.9999,"
    "23:59:59.9999 +14:00,9999-12-31 23:59:59.9999,9999-12-30 23:59:59.9999 -14:00,2,"
    "ffffffff-ffff-ffff-ffff-ffffffffffff,12345678,12345678,12345678,12345678,0xFFFFFF,"
    "0x0102030405,\"ARRAY[true,true]\",\"ARRAY[127,127,127]\",ARRAY[65535],"
    "\"ARRAY[9223372036854775807,1]\",\"ARRAY[3.40282347e+38,1]\","
    "\"ARRAY[1.7976931348623157e+308,1,1]\"",
    // Ordinary ones; numbers of one digit, which are no characters.
    "true,5,7,9,1,2,3,4,5,0.5,0.1,1.500,2024-02-29,12:34:56.7890,12:34:56.7890 +02:00,"
    "2024-02-29 12:34:56.7890,2024-02-29 12:34:56.7890 -05:30,3,"
    "12345678-9abc-4def-8012-3456789abcde,a,\xC3\xA5\xC3\xA4\xC3\xB6,\"a,b\",\"\"\"\",0x0A0B0C,"
    "0x00,"
    "\"ARRAY[true,false]\",\"ARRAY[1,-2,3]\",ARRAY[7],\"ARRAY[1,-1]\",\"ARRAY[0.5,-0.25]\","
    "\"ARRAY[0.1,0.2,0.30000000000000004]\"",
    // None at all.
    ",,,,,,,,,,,,,,,,,4,,,,,,,,,,,,,",
};

TEST(Oakpack, EveryTypeComesBackInEveryFormatAndMethod) {
    std::string csv = oaktest::typed_header();
    for (const char *row : kTypedRows) {
        csv += std::string(row) + "\n";
    }
    const Bench bench(oaktest::typed_catalog());
    for (const char *format : kFormats) {
        for (const char *method : kMethods) {
            bench.expect_rows(csv, csv, {"--format", format, "--compress", method});
        }
    }
}

TEST(Oakpack, FormatsAndMethodsAreInTheHeaders) {
    const Bench bench = one_column(R"("int32")");
    const std::tuple<const char *, const char *, int> cases[] = {
        {"compact", "none", 17},  {"compact", "lzma", 18},  {"compact", "zero", 20},
        {"expanded", "none", 33}, {"expanded", "lzma", 34}, {"expanded", "zero", 36},
    };
    for (const auto &[format, method, header] : cases) {
        std::filesystem::remove(bench.place.path("items"));
        EXPECT_EQ(bench.pack("c\n1\n", {"-f", format, "-z", method}).status, 0);
        EXPECT_EQ(static_cast<int>(bench.place.read("items")[32]), header);
        std::filesystem::remove(bench.place.path("items"));
        EXPECT_EQ(bench.pack("c\n1\n", {"-f", format, "-z", method, "-m", "1000"}).status, 0);
        EXPECT_EQ(static_cast<int>(bench.place.read("items")[32]), header < 32 ? 17 : 33)
            << "too short to be compressed";
    }
}

TEST(Oakpack, MixedFormatsStandSideBySide) {
    const Bench bench = one_column(R"("int32")");
    EXPECT_EQ(bench.pack("c\n1\n").status, 0);
    EXPECT_EQ(bench.pack("c\n2\n", {"-f", "expanded"}).status, 0);
    EXPECT_EQ(bench.pack("c\n3\n", {"-z", "lzma"}).status, 0);
    EXPECT_EQ(bench.unpacked(), "c\n1\n2\n3\n");
}

TEST(Oakpack, TellsWhatItPacked) {
    const Bench bench = one_column(R"("int32")");
    const Result run = bench.pack("c\n1\n2\n");
    EXPECT_EQ(run.out, "2 rows: 6 bytes of CSV, 32 bytes in stored objects\n");
    EXPECT_EQ(bench.pack("c\n1\n").out, "1 row: 4 bytes of CSV, 16 bytes in stored objects\n");
    EXPECT_EQ(bench.pack("c\n1\n", {"--quiet"}).out, "");
}

TEST(Oakpack, ReadsStandardInput) {
    const Bench bench = one_column(R"("int32")");
    Result run = bench.place.run("oakpack", {"-c", "catalog", "-t", "t", "-", "items"}, "c\n5\n");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(bench.unpacked(), "c\n5\n");
    run = bench.place.run("oakpack", {"-c", "catalog", "-t", "t", "-", "items"}, "c\nx\n");
    EXPECT_EQ(run.err.rfind("oakpack: standard input: line 2, column 'c': eINVLITERAL", 0), 0u);
}

// ---- Texts that are taken ----------------------------------------------------

TEST(Oakpack, TakesOtherTextsForTheSameValues) {
    const std::tuple<const char *, const char *, const char *> cases[] = {
        {R"("bool")", "TRUE", "true"},
        {R"("bool")", "yes", "true"},
        {R"("bool")", "no", "false"},
        {R"("bool")", "2", "true"},
        {R"("bool")", "0", "false"},
        {R"("int32")", "+7", "7"},
        {R"("int32")", " 7", "7"},
        {R"("int32")", "007", "7"},
        {R"("int8")", "7", "7"},
        {R"("uint8")", "7", "7"},
        {R"("double")", "1e3", "1000"},
        {R"("double")", ".5", "0.5"},
        {R"("double")", "3.", "3"},
        {R"("float")", "0.1", "0.1"},
        {R"("float")", "16777217", "16777216"},
        {R"("double")", "9007199254740993", "9007199254740992"},
        {R"("decimal", "length": 6, "scale": 2)", "1", "1.00"},
        {R"("decimal", "length": 6, "scale": 2)", "-.5", "-0.50"},
        {R"("decimal", "length": 6, "scale": 2)", "1e2", "100.00"},
        {R"("time")", "1:02:03", "01:02:03.0000"},
        {R"("time")", "1:02:03.5pm", "13:02:03.0005"},
        {R"("timestamp")", "2024-02-29", "2024-02-29 00:00:00.0000"},
        {R"("timestamp")", "01:02:03", "0001-01-01 01:02:03.0000"},
        {R"("timestamp")", "2024/2/9 1:02:03.0004", "2024-02-09 01:02:03.0004"},
        {R"("timestamp")", "\"Feb29, 2024\"", "2024-02-29 00:00:00.0000"},
        {R"("timestamp")", "\" February29,2024 1:02:03.0004pm\"", "2024-02-29 13:02:03.0004"},
        {R"("timestamp")", "\"\"", "0001-01-01 00:00:00.0000"},
        {R"("timestamptz")", "2024-02-29 1:02:03 +02:00", "2024-02-29 01:02:03.0000 +02:00"},
        {R"("timestamptz")", "\"Feb29, 2024 1:02:03 +02:00\"", "2024-02-29 01:02:03.0000 +02:00"},
        {R"("uuid")", "{12345678-9ABC-4DEF-8012-3456789ABCDE}",
         "12345678-9abc-4def-8012-3456789abcde"},
        {R"("binary", "length": 3)", "0x0a", "0x0A0000"},
        {R"("binary", "length": 3)", "0A", "0x0A0000"},
        {R"("binary", "length": 3)", "0x", "0x000000"},
        {R"("binary", "length": 3)", "\"\"", "0x000000"},
        {R"("varbinary", "length": 3)", "0A", "0x0A"},
        {R"("varbinary", "length": 3)", "\"\"", "0x"},
        {R"("int16", "noelts": 2)", "\"array[1,2]\"", "\"ARRAY[1,2]\""},
    };
    ManyColumns columns;
    for (const auto &[type, text, expected] : cases) {
        columns.add(type, text, expected);
    }
    for (const char *format : kFormats) {
        columns.bench().expect_rows(columns.header() + columns.row(),
                                    columns.header() + columns.expected(), {"-f", format});
    }
}

TEST(Oakpack, DropsDigitsBehindThePointAndSaysSo) {
    const std::tuple<const char *, const char *, const char *> cases[] = {
        {R"("int32")", "12.50", "12"},
        {R"("int8")", "-0.9", "0"},
        {R"("uint64")", "18446744073709551615.5", "18446744073709551615"},
        {R"("decimal", "length": 6, "scale": 2)", "1.239", "1.23"},
        {R"("decimal", "length": 6, "scale": 2)", "0.123456789012345678901234567890123", "0.12"},
        {R"("int16", "noelts": 2)", "\"ARRAY[1.5,2]\"", "\"ARRAY[1,2]\""},
    };
    ManyColumns columns;
    for (const auto &[type, text, expected] : cases) {
        columns.add(type, text, expected);
    }
    const Bench bench = columns.bench();
    Result run = bench.pack(columns.header() + columns.row() + columns.row());
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "oakpack: 12 fields had digits behind the point that were dropped, the "
                       "first in line 2, column 'c0'\n");
    EXPECT_EQ(bench.unpacked(), columns.header() + columns.expected() + columns.expected());
    run = bench.pack("c1\n-0.9\n");
    EXPECT_EQ(run.err, "oakpack: 1 field had digits behind the point that were dropped, the first "
                       "in line 2, column 'c1'\n");
}

// ---- Texts that are refused --------------------------------------------------

TEST(Oakpack, RefusesTextsThatAreNoValueOfTheType) {
    const std::tuple<const char *, const char *, OAK_RETCODE> cases[] = {
        {R"("bool")", "maybe", eINVLITERAL},
        {R"("int8")", "128", eRANGE},
        {R"("int8")", "-129", eRANGE},
        {R"("int8")", "x", eINVLITERAL},
        {R"("uint8")", "256", eRANGE},
        {R"("uint8")", "-1", eRANGE},
        {R"("int16")", "32768", eRANGE},
        {R"("uint16")", "65536", eRANGE},
        {R"("int32")", "2147483648", eRANGE},
        {R"("int32")", "12abc", eINVLITERAL},
        {R"("uint32")", "4294967296", eRANGE},
        {R"("int64")", "9223372036854775808", eRANGE},
        {R"("uint64")", "18446744073709551616", eRANGE},
        {R"("float")", "1e39", eRANGE},
        {R"("double")", "1e309", eRANGE},
        {R"("double")", "1e-400", eRANGE},
        {R"("double")", "NAN", eINVLITERAL},
        {R"("decimal", "length": 6, "scale": 2)", "10000", eRANGE},
        {R"("decimal", "length": 6, "scale": 2)", "abc", eINVLITERAL},
        {R"("date")", "0000-01-01", eBASE_INVDATE},
        {R"("date")", "2024/02/29", eINVLITERAL},
        {R"("time")", "24:00:00", eINVLITERAL},
        {R"("timestamp")", "2024-13-01 00:00:00", eINVLITERAL},
        {R"("uuid")", "12345678", eINVLITERAL},
        {R"("binary", "length": 3)", "0x0", eINVBINLITERAL},
        {R"("binary", "length": 3)", "0x0G", eINVBINLITERAL},
        {R"("binary", "length": 3)", "0x01020304", sTRUNCATE},
        {R"("varbinary", "length": 3)", "0x01020304", sTRUNCATE},
    };
    ManyColumns columns;
    for (const auto &[type, text, status] : cases) {
        columns.add(type, text, "");
    }
    const Bench bench = columns.bench();
    int id = 0;
    for (const auto &[type, text, status] : cases) {
        const std::string name = "c" + std::to_string(id++);
        const Result run = bench.pack(name + "\n" + text + "\n");
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err, "oakpack: rows.csv: line 2, column '" + name +
                               "': " + tools::status_text(status) + ": '" + text + "'\n");
        EXPECT_FALSE(bench.place.has("items"));
    }
}

TEST(Oakpack, TakesDatesAndTimesWholeOrNotAtAll) {
    const std::tuple<const char *, const char *, const char *> cases[] = {
        {"date", "2023-02-29", "day"},
        {"date", "2023-04-31", "day"},
        {"timestamp", "10000-01-01 00:00:00", "day"},
        {"timestamp", "2023-02-29 01:02:03", "day"},
        {"timestamp", "Feb29, 2023", "day"},
        {"timestamp", "Apr31, 2023 01:02:03", "day"},
        {"timestamptz", "2023-02-29 23:02:03 +02:00", "day"},
        {"date", "2023-02-28 13:00:00", "more"},
        {"date", "2023-02-28x", "more"},
        {"time", "12:00:00 +02:00", "more"},
        {"time", "1:02:03 pm", "more"},
        {"time", "1:02:03m", "more"},
        {"time", "12:00:00 5", "more"},
        {"time", "12:00:00 -", "more"},
        {"time", "12:00:00 -5", "more"},
        {"date", "2023-02-28 -", "more"},
        {"timestamp", "2023-02-28 12:00:00 5", "more"},
        {"timestamp", "2023-02-28 12:00:00 +5", "more"},
        {"time", "1:02:03pmpm", "more"},
        {"timestamp", "2023-02-28 13:00:00 +02:00", "more"},
        {"timestamp", "Feb28, 2023 13:00:00 +02:00", "more"},
        {"timestamp", "Feb28, 2023 13:00:00 x", "more"},
        {"timetz", "12:00:00.0000 +02:00 7", "more"},
        {"timestamptz", "2023-02-28 13:00:00.0000 +02:00 7 8", "more"},
    };
    ManyColumns columns;
    for (const auto &[type, text, expected] : cases) {
        columns.add(std::string("\"") + type + "\"", text, "");
    }
    const Bench bench = columns.bench();
    int id = 0;
    for (const auto &[type, text, why] : cases) {
        const std::string name = "c" + std::to_string(id++);
        const bool no_day = std::string(why) == "day";
        const std::string quoted = std::string("'") + text + "'";
        bench.expect_refused(
            name + "\n\"" + text + "\"\n",
            "line 2, column '" + name + "': " +
                (no_day ? tools::status_text(eBASE_INVDATE) + ": there is no day " + quoted
                        : tools::status_text(eINVLITERAL) + ": " + quoted +
                              " holds more than the column takes"));
    }
}

TEST(Oakpack, RefusesTextsLongerThanTheColumn) {
    for (const char *type : {"char", "varchar", "wchar", "wvarchar"}) {
        const Bench bench = one_column(std::string("\"") + type + R"(", "length": 9)");
        bench.expect_rows("c\n12345678\n", "c\n12345678\n");
        bench.expect_refused("c\n123456789\n",
                             in_column("sTRUNCATE (Result is truncated): 9 bytes where the column "
                                       "takes 8"));
    }
    one_column(R"("char")")
        .expect_refused("c\nx\n", in_column(tools::status_text(eBADDATALEN) + ": 'x'"));
}

TEST(Oakpack, RefusesArraysThatAreNot) {
    const Bench bench = one_column(R"("int16", "noelts": 2)");
    const std::string form = tools::status_text(eINVLITERAL) + ": an array is written as "
                                                               "ARRAY[1,2,3]";
    bench.expect_refused("c\n7\n", in_column(form));
    bench.expect_refused("c\n\"ARRAY[1,2\"\n", in_column(form));
    bench.expect_refused("c\n\"ARRAY\"\n", in_column(form));
    bench.expect_refused("c\n\"\"\n", in_column(form));
    const std::string length = tools::status_text(eBADDATALEN);
    bench.expect_refused("c\nARRAY[1]\n", in_column(length + ": 1 element where the column has 2"));
    bench.expect_refused("c\n\"ARRAY[1,2,3]\"\n",
                         in_column(length + ": 3 elements where the column has 2"));
    bench.expect_refused("c\n\"ARRAY[1,x]\"\n",
                         in_column(tools::status_text(eINVLITERAL) + ": element 2"));
    bench.expect_refused("c\n\"ARRAY[1,40000]\"\n",
                         in_column(tools::status_text(eRANGE) + ": element 2"));
}

TEST(Oakpack, ShowsTheStartOfALongText) {
    const std::string text(100, 'x');
    one_column(R"("int32")")
        .expect_refused("c\n" + text + "\n", in_column(tools::status_text(eINVLITERAL) + ": '" +
                                                       text.substr(0, 40) + "...'"));
}

// ---- The CSV as a whole ------------------------------------------------------

std::string two_columns() {
    return column(0, "first", R"("int32")") + "," +
           column(1, "Second", R"("varchar", "length": 21)");
}

TEST(Oakpack, TheHeaderNamesColumnsInAnyOrderAndCase) {
    const Bench bench = Bench::of_columns(two_columns(), 2);
    bench.expect_rows("SECOND,First\nx,1\n", "first,Second\n1,x\n");
    bench.expect_rows("\"second\",\"first\"\r\nx,1\r\n", "first,Second\n1,x\n");
    bench.expect_rows("first\n1\n", "first,Second\n1,\n");
    bench.expect_rows("second,first\n", "first,Second\n");
}

TEST(Oakpack, FieldsHoldWhatQuotesAllow) {
    Bench::of_columns(two_columns(), 2)
        .expect_rows("first,second\n1,\"a\nb\"\n2,\"say \"\"x\"\"\"\n3,\"\"\n4,\n",
                     "first,Second\n1,\"a\nb\"\n2,\"say \"\"x\"\"\"\n3,\"\"\n4,\n");
}

TEST(Oakpack, AnEmptyLineIsANullOfATableWithOneColumn) {
    one_column(R"("int32")").expect_rows("c\n1\n\n2\n", "c\n1\n\n2\n");
}

TEST(Oakpack, RefusesAHeaderThatDoesNotFit) {
    const Bench bench = Bench::of_columns(two_columns(), 2);
    bench.expect_refused("", "line 1: there is no header that names columns", true);
    bench.expect_refused("first,third\n1,2\n", "line 1: 'third' is no column of table 't'");
    bench.expect_refused("first,FIRST\n1,2\n", "line 1: 'FIRST' is named twice");
    bench.expect_refused("first,\n1,2\n", "line 1: '' is no column of table 't'");
    bench.expect_refused("first,\"a\nb\"\n", "line 1: 'a\nb' is no column of table 't'");
}

TEST(Oakpack, RefusesRecordsThatDoNotFitTheHeader) {
    const Bench bench = Bench::of_columns(two_columns(), 2);
    bench.expect_refused("first,second\n1\n", "line 2: 1 field where the header has 2");
    bench.expect_refused("first,second\n1,a\n2,b,c\n", "line 3: 3 fields where the header has 2");
    bench.expect_refused("first,second\n1,\"a\nb\"\n\n", "line 4: 1 field where the header has 2");
}

TEST(Oakpack, RefusesWhatIsNoCsv) {
    const Bench bench = Bench::of_columns(two_columns(), 2);
    bench.expect_refused("first,second\n1,\"a\n", "line 2: a quoted field begins here and never "
                                                  "ends");
    bench.expect_refused("\"first\"x,second\n",
                         "line 1: neither a comma nor a line end behind a closing quote");
}

TEST(Oakpack, NamesTheLineOnWhichAFieldBegins) {
    Bench::of_columns(two_columns(), 2)
        .expect_refused("second,first\n\"a\nb\",1\n\"c\nd\",x\n",
                        "line 5, column 'first': " + tools::status_text(eINVLITERAL) + ": 'x'");
}

TEST(Oakpack, AFailureFarBehindLeavesNothing) {
    std::string csv = "first,second\n";
    for (int i = 0; i < 10000; ++i) { // some ten writes to the file
        csv += "1,some text to fill\n";
    }
    const Bench bench = Bench::of_columns(two_columns(), 2);
    bench.expect_refused(
        csv + "x,y\n", "line 10002, column 'first': " + tools::status_text(eINVLITERAL) + ": 'x'");
}

// ---- NULL and defaults -------------------------------------------------------

TEST(Oakpack, RefusesNullWhereTheColumnDoesNotTakeIt) {
    const Bench bench = one_column(R"("int32")", R"("not_null": "x")");
    bench.expect_refused("c\n\n", in_column("eNOTNULL (The column does not accept NULL)"), true);
    const Bench two = Bench::of_columns(
        column(0, "c", R"("int32")", R"("not_null": "x")") + "," + column(1, "d", R"("int32")"), 2);
    two.expect_refused("d,c\n1,\n", in_column("eNOTNULL (The column does not accept NULL)"));
    two.expect_refused("d\n1\n", "column 'c', which the CSV does not name: eNOTNULL (The column "
                                 "does not accept NULL); it has no default");
}

TEST(Oakpack, ColumnsThatAreNotNamedGetTheirDefault) {
    const std::tuple<const char *, const char *, const char *> cases[] = {
        {R"("bool")", "true", "true"},
        {R"("int16")", "-5", "-5"},
        {R"("uint64")", "18446744073709551615", "18446744073709551615"},
        {R"("float")", "0.5", "0.5"},
        {R"("double")", "1.25", "1.25"},
        {R"("decimal", "length": 6, "scale": 2)", "1.5", "1.50"},
        {R"("decimal", "length": 6, "scale": 2)", "1.239", "1.23"},
        {R"("date")", "2024-02-29", "2024-02-29"},
        {R"("time")", "01:02:03.0004", "01:02:03.0004"},
        {R"("timetz")", "01:02:03.0004 +01:00", "01:02:03.0004 +01:00"},
        {R"("timestamp")", "2024-02-29 01:02:03.0004", "2024-02-29 01:02:03.0004"},
        {R"("timestamptz")", "2024-02-29 01:02:03.0004 -01:00", "2024-02-29 01:02:03.0004 -01:00"},
        {R"("uuid")", "12345678-9abc-4def-8012-3456789abcde",
         "12345678-9abc-4def-8012-3456789abcde"},
        {R"("char", "length": 9)", "abc", "abc"},
        {R"("varchar", "length": 9)", "", "\"\""},
        {R"("binary", "length": 2)", "0A0B", "0x0A0B"},
        {R"("varbinary", "length": 2)", "0A", "0x0A"},
        {R"("varbinary", "length": 2)", "", "0x"},
    };
    ManyColumns columns;
    columns.add(R"("int32")", "1", "1");
    for (const auto &[type, text, expected] : cases) {
        columns.add(type, "", expected,
                    std::string(R"("not_null": "", "defValue": ")") + text + "\"");
    }
    for (const char *format : kFormats) {
        columns.bench().expect_rows("c0\n1\n1\n",
                                    columns.header() + columns.expected() + columns.expected(),
                                    {"-f", format});
    }
}

TEST(Oakpack, ADefaultThatTheColumnHasNoRoomForIsRefused) {
    Bench::of_columns(column(0, "k", R"("int32")") + "," +
                          column(1, "c", R"("char", "length": 3)", R"("defValue": "abc")"),
                      2)
        .expect_refused("k\n1\n", "column 'c', which the CSV does not name: its default: sTRUNCATE "
                                  "(Result is truncated)");
}

TEST(Oakpack, ADefaultDoesNotStandInForAnEmptyField) {
    one_column(R"("int32")", R"("defValue": "7")").expect_rows("c\n\n", "c\n\n");
}

TEST(Oakpack, KeywordsGiveTheMomentOfTheRun) {
    std::string columns = column(0, "k", R"("int32")");
    const std::pair<const char *, const char *> keywords[] = {{"date", "current_date"},
                                                              {"time", "CURRENT_TIME"},
                                                              {"timetz", "current_time"},
                                                              {"timestamp", "current_timestamp"},
                                                              {"timestamptz", "current_timestamp"}};
    int id = 1;
    for (const auto &[type, keyword] : keywords) {
        columns += "," + column(id++, type, std::string("\"") + type + "\"",
                                std::string(R"("not_null": "", "defValue": ")") + keyword + "\"");
    }
    const Bench bench = Bench::of_columns(columns, 6);
    ASSERT_EQ(bench.pack("k\n1\n1\n").status, 0);
    const std::string out = bench.unpacked();
    const size_t first = out.find("\n1,") + 1;
    const size_t second = out.find("\n1,", first) + 1;
    EXPECT_EQ(out.substr(first, second - first), out.substr(second)) << "one moment for all rows";
    time_t now = time(nullptr);
    char today[11];
    strftime(today, sizeof today, "%Y-%m-%d", gmtime(&now));
    EXPECT_EQ(out.substr(first + 2, 8), std::string(today).substr(0, 8));
    EXPECT_NE(out.find(" +00:00\n"), std::string::npos);
}

TEST(Oakpack, AutoGivesEachRowAUuidOfItsOwn) {
    const Bench bench =
        Bench::of_columns(column(0, "k", R"("int32")") + "," +
                              column(1, "c", R"("uuid")", R"("not_null": "", "defValue": "auto")"),
                          2);
    ASSERT_EQ(bench.pack("k\n1\n1\n").status, 0);
    const std::string out = bench.unpacked();
    const std::string first = out.substr(out.find("\n1,") + 3, 36);
    const std::string second = out.substr(out.rfind("\n1,") + 3, 36);
    EXPECT_EQ(first[14], '4');
    EXPECT_NE(first, second);
}

// ---- Row numbers, references, large objects ----------------------------------

TEST(Oakpack, RowsAreNumberedOnFromWhatTheFileHolds) {
    const Bench bench = Bench::of_columns(column(0, "id", R"("rowid")", R"("defValue": "auto")") +
                                              "," + column(1, "c", R"("int32")"),
                                          2);
    for (const char *format : kFormats) {
        std::filesystem::remove(bench.place.path("items"));
        EXPECT_EQ(bench.pack("c\n7\n8\n", {"-f", format}).status, 0);
        EXPECT_EQ(bench.pack("id,c\n3,9\n,10\n", {"-f", format}).status, 0);
        EXPECT_EQ(bench.unpacked(), "id,c\n1,7\n2,8\n3,9\n4,10\n");
    }
    bench.expect_refused(
        "id,c\n2,9\n", "line 2, column 'id': " + tools::status_text(eINVROWIDVAL) +
                           ": '2' is not the number of this row, 1; an empty field stands for it");
    bench.expect_refused("id\n-1\n",
                         "line 2, column 'id': " + tools::status_text(eRANGE) +
                             ": '-1' is not the number of this row, 1; an empty field stands for "
                             "it");
}

TEST(Oakpack, AReferenceToARowNumberIsPackedAsAJoin) {
    const Bench bench = Bench::of_library("book");
    const std::string rows = "isbn,title,author,price,published,cover,summary,language\n"
                             "1,One,7,1.00,2001-02-03,,,en\n"
                             "2,Two,,,,,,\n"
                             "3,Three,18446744073709551615,1.00,,,,en\n";
    for (const char *format : kFormats) {
        bench.expect_rows(rows, rows, {"-f", format});
    }
    bench.expect_refused("isbn,title,author\n1,One,0\n",
                         "line 2, column 'author': " + tools::status_text(eRANGE) + ": '0'");
    bench.expect_refused("isbn,title,author\n1,One,-3\n",
                         "line 2, column 'author': " + tools::status_text(eRANGE) + ": '-3'");
    bench.expect_refused("isbn,title,author\n1,One,1.5\n",
                         "line 2, column 'author': " + tools::status_text(sTRUNCATE) + ": '1.5'");
}

/// The library's catalog with another type and a default for the first column of
/// a type behind `place`.
std::string library_with(const std::string &place, const std::string &type,
                         const std::string &new_type, const std::string &value) {
    std::string catalog = oaktest::read_all(oaktest::example("library.json"));
    const std::string old = R"("type": {"data_type": )" + type + "}";
    const size_t at = catalog.find(old, catalog.find(place));
    return catalog.replace(at, old.size(),
                           R"("type": {"data_type": )" + new_type + R"(}, "defValue": ")" + value +
                               "\"");
}

TEST(Oakpack, TheDefaultOfAReferenceToARowNumberIsPackedAsAJoin) {
    const std::string header = "isbn,title,author,price,published,cover,summary,language\n";
    for (const char *type : {"int8", "int32", "int64", "uint16", "uint64"}) {
        const auto bench = [&](const std::string &number) {
            return Bench(library_with(R"("name": "author", "refid")", R"("uint64")",
                                      std::string("\"") + type + "\"", number),
                         "book");
        };
        for (const char *format : kFormats) {
            bench("107").expect_rows("isbn,title\n1,One\n", header + "1,One,107,0.00,,,,en\n",
                                     {"-f", format});
        }
        const std::string refused = "column 'author', which the CSV does not name: its default: " +
                                    tools::status_text(eRANGE);
        bench("0").expect_refused("isbn,title\n1,One\n", refused);
        if (type[0] != 'u') {
            bench("-7").expect_refused("isbn,title\n1,One\n", refused);
        }
        // It does not stand in for an empty field.
        bench("107").expect_rows("isbn,title,author\n1,One,\n", header + "1,One,,0.00,,,,en\n");
    }
}

TEST(Oakpack, DefaultsOfOtherReferencesAndLargeObjectsAreRefused) {
    const std::string refused =
        "', which the CSV does not name: its default: " + tools::status_text(eNOTIMPLEMENTED);
    const Bench loan(library_with(R"("name": "isbn", "refid")", R"("char", "length": 53)",
                                  R"("char", "length": 53)", "123"),
                     "loan");
    loan.expect_refused("member\nx\n", "column 'isbn" + refused);
    EXPECT_EQ(loan.pack("member,isbn\nx,\n").status, 0) << "where the CSV names it";
    const Bench book(library_with(R"("name": "summary")", R"("clob")", R"("clob")", "short"),
                     "book");
    book.expect_refused("isbn,title\n1,One\n", "column 'summary" + refused);
    EXPECT_EQ(book.pack("isbn,title,summary\n1,One,\n").status, 0) << "where the CSV names it";
}

TEST(Oakpack, OtherReferencesAndLargeObjectsCanOnlyBeNull) {
    const Bench loan = Bench::of_library("loan");
    loan.expect_refused("member,isbn\nx,123\n",
                        "line 2, column 'isbn': " + tools::status_text(eNOTIMPLEMENTED) +
                            ": the value of a foreign key lies in the row referred to, and only a "
                            "reference to a row number is packed");
    EXPECT_EQ(loan.pack("member,isbn,reminders\nx,,\"ARRAY[1,2,3]\"\n").status, 0);
    const Bench book = Bench::of_library("book");
    for (const char *name : {"cover", "summary"}) {
        book.expect_refused(std::string("isbn,title,") + name + "\n1,x,y\n",
                            std::string("line 2, column '") + name +
                                "': " + tools::status_text(eNOTIMPLEMENTED) +
                                ": a large object lies in a drawer of its own, not in its row");
    }
}

TEST(Oakpack, EmptyArraysOfKeysAndColumnsOfBytesArePacked) {
    const Bench shelf = Bench::of_library("shelf");
    const std::string rows = "label,place,lock\n"
                             "A,\"ARRAY[0,0.5,1,1.5]\",0x0102\n"
                             "B,,\n";
    for (const char *format : kFormats) {
        shelf.expect_rows(rows, rows, {"-f", format});
    }
}

TEST(Oakpack, DroppedColumnsDoNotCount) {
    // Columns 0 and 2 of 3 are there.
    const std::string catalog =
        oaktest::one_table(column(0, "a", R"("int32")") + "," + column(2, "c", R"("int32")"), 2);
    std::string text = catalog;
    for (const char *member : {"\"nextcol\": 2", "\"maxcols\": 2"}) {
        text.replace(text.find(member), std::strlen(member),
                     std::string(member).substr(0, std::strlen(member) - 1) + "3");
    }
    const Bench bench(text);
    for (const char *format : kFormats) {
        bench.expect_rows("c,a\n3,1\n", "a,c\n1,3\n", {"-f", format});
    }
}

// ---- What else can fail ------------------------------------------------------

TEST(Oakpack, TellsWhichFileFails) {
    const Bench bench = one_column(R"("int32")");
    const auto pack = [&](const Strings &args) {
        const Result run = bench.place.run("oakpack", args);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, "");
        return run.err;
    };
    bench.place.write("rows.csv", "c\n1\n");
    const std::string no_file = tools::status_text(eNOFILE);
    EXPECT_EQ(pack({"-c", "none", "-t", "t", "rows.csv", "items"}),
              "oakpack: none: " + no_file + "\n");
    EXPECT_EQ(pack({"-c", "catalog", "-t", "t", "none", "items"}),
              "oakpack: none: " + no_file + "\n");
    EXPECT_EQ(pack({"-c", "catalog", "-t", "other", "rows.csv", "items"}),
              "oakpack: catalog: no table 'other'; there are: t\n");
    EXPECT_EQ(pack({"-c", "catalog", "-t", "t", "rows.csv", "none/items"}),
              "oakpack: none/items: " + tools::status_text(eFILEOPEN) + "\n");
    EXPECT_EQ(
        pack({"-c", "rows.csv", "-t", "t", "rows.csv", "items"}).rfind("oakpack: rows.csv: e", 0),
        0u);
    EXPECT_FALSE(bench.place.has("items"));
}

TEST(Oakpack, RefusesAnItemFileThatIsLockedOrDamaged) {
    const Bench bench = one_column(R"("int32")");
    ASSERT_EQ(bench.pack("c\n1\n").status, 0);
    const std::string before = bench.place.read("items");
    {
        tools::ItemWriter writer;
        const std::string name = bench.place.path("items");
        ASSERT_EQ(writer.open(name.c_str()), "");
        const Result run = bench.pack("c\n2\n");
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err, "oakpack: items: " + tools::status_text(eFILEINUSE) + "\n");
    }
    EXPECT_EQ(bench.place.read("items"), before);
    std::string damaged = before;
    damaged[16] ^= 1;
    bench.place.write("items", damaged);
    const Result run = bench.pack("c\n2\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "oakpack: items: at 16: " + tools::status_text(eDBCORRUPTED) +
                           ": the item's marker is not right\n");
    EXPECT_EQ(bench.place.read("items"), damaged);
}

TEST(Oakpack, AFullDiskLeavesTheFileAsItWas) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP();
    }
    const Bench bench = one_column(R"("int32")");
    bench.place.write("rows.csv", "c\n1\n");
    const Result run =
        bench.place.run("oakpack", {"-c", "catalog", "-t", "t", "rows.csv", "/dev/full"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "oakpack: /dev/full: " + tools::status_text(eBADWRITE) + "\n");
}

TEST(Oakpack, RefusesAWrongCommandLine) {
    const Bench bench = one_column(R"("int32")");
    const std::pair<Strings, const char *> cases[] = {
        {{"a", "b"}, "error: Missing option '--catalog' ('--help' for more information)\n"},
        {{"-c", "x", "a", "b"},
         "error: Missing option '--table' ('--help' for more information)\n"},
        {{"-c", "x", "-t", "t", "a"},
         "error: Missing argument 'ITEMS' ('--help' for more information)\n"},
        {{"-c", "x", "-t", "t", "-f", "flat", "a", "b"},
         "error: 'flat' for option '--format' is none of: compact, expanded ('--help' for more "
         "information)\n"},
        {{"-c", "x", "-t", "t", "-z", "zip", "a", "b"},
         "error: 'zip' for option '--compress' is none of: none, lzma, zero ('--help' for more "
         "information)\n"},
        {{"-c", "x", "-t", "t", "-m", "-5", "a", "b"},
         "error: '-5' for option '--min-size' is no number from 0 to 4294967295 ('--help' for more "
         "information)\n"},
        {{"-c", "x", "-t", "t", "-m", "4294967296", "a", "b"},
         "error: '4294967296' for option '--min-size' is no number from 0 to 4294967295 ('--help' "
         "for more information)\n"},
        {{"-c", "x", "-t", "t", "a", "-"},
         "error: An item file cannot be standard input ('--help' for more information)\n"},
    };
    for (const auto &[args, message] : cases) {
        const Result run = bench.place.run("oakpack", args);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, message);
    }
}

TEST(Oakpack, ShowsItsHelp) {
    const Workplace place;
    const Result run = place.run("oakpack", {"--help"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    for (const char *word : {"--catalog=FILE", "--table=NAME", "--format=FORMAT",
                             "--compress=METHOD", "--min-size=N", "CSV", "ITEMS"}) {
        EXPECT_NE(run.out.find(word), std::string::npos) << word;
    }
}

} // namespace
