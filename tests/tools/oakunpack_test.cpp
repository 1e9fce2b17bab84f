// The program oakunpack: what it prints and where, and that damage is told and
// passed over. That every type comes back is shown with oakpack.
#include "item_file.h"
#include "tool_run.h"

namespace {

using oaktest::column;
using oaktest::one_table;
using oaktest::Result;
using oaktest::Strings;
using oaktest::Workplace;

std::string damaged(const std::string &why) {
    return tools::status_text(eDBCORRUPTED) + ": " + why;
}

/// An item file with stored objects given as hex, numbered from 1.
std::string item_file(const std::vector<std::string> &objects) {
    std::string items;
    uint64_t row = 0;
    for (const std::string &text : objects) {
        std::vector<uint8_t> object = oaktest::unhex(text);
        object.resize((object.size() + 15) / 16 * 16);
        const tools::ItemBytes header =
            tools::item_header(static_cast<uint32_t>(object.size()), ++row);
        items.append(header.begin(), header.end());
        items.append(object.begin(), object.end());
    }
    const tools::ItemBytes header = tools::file_header(16 + items.size());
    return std::string(header.begin(), header.end()) + items;
}

class Bench {
  public:
    explicit Bench(const std::string &catalog) { place.write("catalog", catalog); }

    Result unpack(const std::string &items, const Strings &more = {}) const {
        place.write("items", items);
        Strings args = {"-c", "catalog", "-t", "t", "items"};
        args.insert(args.end(), more.begin(), more.end());
        return place.run("oakunpack", args);
    }

    Workplace place;
};

std::string two_columns() {
    return one_table(
        column(0, "a", R"("int32")") + "," + column(1, "b", R"("varchar", "length": 9)"), 2);
}

// The row 5, "x": no AVL keys, no joins, 2 columns from 0, 5 as 10, text of 1.
constexpr char kRow[] = "11 00 00 02 00 0a 01 78 00";

TEST(Oakunpack, PrintsRowsBehindAHeader) {
    const Bench bench(two_columns());
    Result run = bench.unpack(item_file({kRow, "11 00 00 00", "11 00 00 01 01 00 00"}));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, "a,b\n5,x\n,\n,\"\"\n");
    run = bench.unpack(item_file({}));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "a,b\n");
}

TEST(Oakunpack, WritesToAFileOrToStandardOutput) {
    const Bench bench(two_columns());
    Result run = bench.unpack(item_file({kRow}), {"rows.csv"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(bench.place.read("rows.csv"), "a,b\n5,x\n");
    bench.place.write("rows.csv", std::string(1000, 'x'));
    bench.unpack(item_file({kRow}), {"rows.csv"});
    EXPECT_EQ(bench.place.read("rows.csv"), "a,b\n5,x\n") << "what was there is gone";
    run = bench.place.run("oakunpack", {"-c", "catalog", "-t", "t", "-"}, item_file({kRow}));
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "a,b\n5,x\n");
}

TEST(Oakunpack, QuotesColumnNamesThatNeedIt) {
    const Bench bench(one_table(column(0, "a,b", R"("int32")"), 1));
    EXPECT_EQ(bench.unpack(item_file({})).out, "\"a,b\"\n");
}

TEST(Oakunpack, ColumnsAddedSinceAreEmpty) {
    const Bench bench(one_table(
        column(0, "a", R"("int32")") + "," + column(1, "b", R"("int32")", R"("not_null": "")"), 2));
    const Result run = bench.unpack(item_file({"11 00 00 01 00 0a 00"}));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "a,b\n5,\n");
}

TEST(Oakunpack, PassesDamagedItemsOver) {
    const Bench bench(two_columns());
    const std::string kind = "oakunpack: items: ";
    const std::tuple<const char *, OAK_RETCODE> objects[] = {
        {"13", eSYS_ERROR},                     // no compression method 3
        {"41", eDBCORRUPTED},                   // no item format 64
        {"11 00 00 02 00 0a 7f", eDBCORRUPTED}, // a text longer than its column
        {"11 00 00 01 07 00 00", eDBCORRUPTED}, // column 7
        {"11 ff ff ff ff ff ff ff ff ff 7f", eINVVARINT},
        {"21 05", eDBCORRUPTED},                            // a row buffer of 5 bytes
        {"12 ff ff ff ff ff ff ff ff ff 01", eDBCORRUPTED}, // a length of 2 to the 64th less 1
    };
    for (const auto &[object, status] : objects) {
        const Result run = bench.unpack(item_file({kRow, object, kRow}));
        EXPECT_EQ(run.status, 1) << object;
        EXPECT_EQ(run.out, "a,b\n5,x\n5,x\n") << object;
        EXPECT_EQ(run.err, kind + "item at 48: " + tools::status_text(status) + "\n") << object;
    }
}

TEST(Oakunpack, TellsAValueThatHasNoText) {
    const Bench bench(
        one_table(column(0, "a", R"("time")") + "," + column(1, "b", R"("bool")"), 2));
    const Result run = bench.unpack(item_file({
        "11 00 00 01 00 80 a0 ff 9b 03 00", // 864000000, no time of the day
        "11 00 00 01 01 06 00",             // 3, no boolean
        "11 00 00 01 01 02 00",
    }));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "a,b\n,true\n");
    EXPECT_EQ(run.err,
              "oakunpack: items: item at 16: column 'a': " + tools::status_text(eINVLITERAL) +
                  "\noakunpack: items: item at 48: column 'b': " +
                  tools::status_text(eDBCORRUPTED) + "\n");
}

// An expanded row: length, two statuses, a float, four bytes of padding, a double,
// two has-value bytes, padding.
std::string float_row(const std::string &single, const std::string &twice) {
    return "21 2000000000000000 01000000 01000000" + single + "00000000" + twice +
           "01 01 000000000000";
}

TEST(Oakunpack, WhatIsNoNumberHasTheWordsOfTheLibrary) {
    const Bench bench(
        one_table(column(0, "a", R"("float")") + "," + column(1, "b", R"("double")"), 2));
    const Result run = bench.unpack(item_file({
        float_row("0000c07f", "000000000000f07f"),
        float_row("0000c0ff", "000000000000f0ff"),
        float_row("0000807f", "000000000000f87f"),
        float_row("000080ff", "000000000000f8ff"),
        float_row("0000803f", "000000000000e0bf"),
    }));
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "a,b\nNAN,INF\n-NAN,-INF\nINF,NAN\n-INF,-NAN\n1,-0.5\n");
}

TEST(Oakunpack, TellsAnElementThatHasNoText) {
    const Bench bench(one_table(column(0, "a", R"("bool", "noelts": 2)"), 1));
    const Result run = bench.unpack(item_file({
        "11 00 00 01 00 01 02 00 02 06 00", // one run of 2 elements: true, and 3
        "11 00 00 01 00 01 02 00 02 00 00",
    }));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "a\n\"ARRAY[true,false]\"\n");
    EXPECT_EQ(run.err, "oakunpack: items: item at 16: column 'a': " +
                           tools::status_text(eDBCORRUPTED) + "\n");
}

TEST(Oakunpack, TellsALargeObjectWhoseValueLiesElsewhere) {
    const Bench bench(
        one_table(column(0, "a", R"("int32")") + "," + column(1, "b", R"("blob")", R"("dwrid": 6)"),
                  2, "", R"(, {"dwrid": 6, "tabid": "1", "srcid": 1, "type": "blob"})", 7));
    const Result run = bench.unpack(item_file({"11 00 00 02 00 0a 01 00", "11 00 00 01 00 0a 00"}));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "a,b\n5,\n");
    EXPECT_EQ(run.err, "oakunpack: items: item at 16: column 'b' has a value that lies outside the "
                       "row\n");
}

TEST(Oakunpack, TellsDamagedHeadersAndEndings) {
    const Bench bench(two_columns());
    std::string items = item_file({kRow, kRow});
    items[12] ^= 1;
    Result run = bench.unpack(items);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "a,b\n5,x\n5,x\n");
    EXPECT_EQ(run.err, "oakunpack: items: " +
                           damaged("the file header's length and its check do not agree") + "\n");
    items = item_file({kRow, kRow});
    run = bench.unpack(items.substr(0, items.size() - 16));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "a,b\n5,x\n");
    EXPECT_EQ(run.err, "oakunpack: items: item at 48: " + damaged("the file ends inside the item") +
                           "\noakunpack: items: " +
                           damaged("the file ends at 64 where its header promises 80 bytes") +
                           "\n");
    run = bench.unpack("a,b\n5,x\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "oakunpack: items: " + damaged("the file ends inside its header") + "\n");
}

TEST(Oakunpack, TellsWhichFileFails) {
    const Bench bench(two_columns());
    bench.place.write("items", item_file({kRow}));
    const auto unpack = [&](const Strings &args) {
        const Result run = bench.place.run("oakunpack", args);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, "");
        return run.err;
    };
    const std::string no_file = tools::status_text(eNOFILE);
    EXPECT_EQ(unpack({"-c", "none", "-t", "t", "items"}), "oakunpack: none: " + no_file + "\n");
    EXPECT_EQ(unpack({"-c", "catalog", "-t", "t", "none"}), "oakunpack: none: " + no_file + "\n");
    EXPECT_EQ(unpack({"-c", "catalog", "-t", "u", "items"}),
              "oakunpack: catalog: no table 'u'; there are: t\n");
    EXPECT_EQ(unpack({"-c", "catalog", "-t", "t", "items", "none/rows"}),
              "oakunpack: none/rows: " + tools::status_text(eFILEOPEN) + "\n");
}

TEST(Oakunpack, TheRowsDoNotGoToTheItemFileItself) {
    const Bench bench(two_columns());
    const std::string items = item_file({kRow});
    std::filesystem::create_hard_link(
        (bench.place.write("items", items), bench.place.path("items")), bench.place.path("other"));
    for (const char *name : {"items", "./items", "other"}) {
        const Result run =
            bench.place.run("oakunpack", {"-c", "catalog", "-t", "t", "items", name});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err, std::string("oakunpack: ") + name +
                               ": the rows cannot go to the item file itself\n");
        EXPECT_EQ(bench.place.read("items"), items);
    }
}

TEST(Oakunpack, AFileThatAnotherProgramHoldsIsReadAndNotWritten) {
    const Bench bench(two_columns());
    const std::string items = item_file({kRow});
    bench.place.write("items", items);
    bench.place.write("held", "rows of old");
    const auto unpack_to = [&](const char *name) {
        return bench.place.run("oakunpack", {"-c", "catalog", "-t", "t", "items", name});
    };
    const auto expect_in_use = [&](const char *name) {
        const Result run = unpack_to(name);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err,
                  std::string("oakunpack: ") + name + ": " + tools::status_text(eFILEINUSE) + "\n");
    };
    tools::File held;
    ASSERT_EQ(held.open(bench.place.path("held").c_str(), OSL_OPEN_READ), "");
    ASSERT_EQ(osl_fileLock(held.handle()), sOKAY);
    expect_in_use("held");
    EXPECT_EQ(bench.place.read("held"), "rows of old");
    tools::File writer;
    ASSERT_EQ(writer.open(bench.place.path("items").c_str(), OSL_OPEN_READ), "");
    ASSERT_EQ(osl_fileLock(writer.handle()), sOKAY);
    expect_in_use("items");
    EXPECT_EQ(bench.place.read("items"), items);
    const Result run = unpack_to("rows.csv");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(bench.place.read("rows.csv"), "a,b\n5,x\n");
}

TEST(Oakunpack, TellsThatTheRowsCannotBeWritten) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP();
    }
    const Bench bench(two_columns());
    bench.place.write("items", item_file({kRow}));
    const std::string command = "cd " + oaktest::shell_word(bench.place.path("")) + " && " +
                                OAK_BINARY_DIR "/oakunpack -c catalog -t t items >/dev/full 2>err";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1);
    EXPECT_EQ(bench.place.read("err"),
              "oakunpack: standard output: " + tools::status_text(eBADWRITE) + "\n");
    const Result run =
        bench.place.run("oakunpack", {"-c", "catalog", "-t", "t", "items", "/dev/full"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "oakunpack: /dev/full: " + tools::status_text(eBADWRITE) + "\n");
    EXPECT_TRUE(std::filesystem::exists("/dev/full")) << "only what was made goes";
}

// A table with one text, and 400 rows of it, 400 KB: more than is gathered before
// it is written.
constexpr int kLongRows = 400;

Bench long_bench() {
    return Bench(one_table(column(0, "a", R"("varchar", "length": 1001)"), 1));
}

std::string long_items() {
    std::string object = "11 00 00 01 00 e8 07"; // 1000 bytes
    for (int i = 0; i < 1000; ++i) {
        object += "78";
    }
    return item_file(Strings(kLongRows, object + "00"));
}

std::string long_rows() {
    std::string rows = "a\n";
    for (int i = 0; i < kLongRows; ++i) {
        rows += std::string(1000, 'x') + "\n";
    }
    return rows;
}

TEST(Oakunpack, ManyRowsArriveWhole) {
    const Bench bench = long_bench();
    const std::string items = long_items();
    Result run = bench.unpack(items);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(run.out == long_rows());
    run = bench.unpack(items, {"rows.csv"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(bench.place.read("rows.csv") == long_rows());
}

TEST(Oakunpack, TellsOnceThatManyRowsCannotBeWritten) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP();
    }
    const Bench bench = long_bench();
    bench.place.write("items", long_items());
    const std::string command = "cd " + oaktest::shell_word(bench.place.path("")) + " && " +
                                OAK_BINARY_DIR "/oakunpack -c catalog -t t items >/dev/full 2>err";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1);
    EXPECT_EQ(bench.place.read("err"),
              "oakunpack: standard output: " + tools::status_text(eBADWRITE) + "\n");
}

TEST(Oakunpack, AFileThatCannotBeFinishedGoesOrIsLeftEmpty) {
    const Bench bench = long_bench();
    bench.place.write("items", long_items());
    // Files of 100 blocks at most, 51,200 or 102,400 bytes.
    const std::string command = "cd " + oaktest::shell_word(bench.place.path("")) +
                                " && trap '' XFSZ && ulimit -f 100 && " +
                                OAK_BINARY_DIR "/oakunpack -c catalog -t t items rows.csv 2>err";
    const std::string message = "oakunpack: rows.csv: " + tools::status_text(eBADWRITE) + "\n";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1);
    EXPECT_EQ(bench.place.read("err"), message);
    EXPECT_FALSE(bench.place.has("rows.csv"));
    bench.place.write("rows.csv", "rows of old");
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1);
    EXPECT_EQ(bench.place.read("err"), message);
    EXPECT_TRUE(bench.place.has("rows.csv"));
    EXPECT_EQ(bench.place.read("rows.csv"), "");
}

TEST(Oakunpack, RefusesAWrongCommandLineAndShowsItsHelp) {
    const Workplace place;
    const std::pair<Strings, const char *> cases[] = {
        {{"-t", "t", "a"}, "error: Missing option '--catalog' ('--help' for more information)\n"},
        {{"-c", "x", "a"}, "error: Missing option '--table' ('--help' for more information)\n"},
        {{"-c", "x", "-t", "t"},
         "error: Missing argument 'ITEMS' ('--help' for more information)\n"},
        {{"-c", "x", "-t", "t", "a", "b", "c"},
         "error: Stray argument 'c' ('--help' for more information)\n"},
    };
    for (const auto &[args, message] : cases) {
        const Result run = place.run("oakunpack", args);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err, message);
    }
    const Result help = place.run("oakunpack", {"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char *word : {"--catalog=FILE", "--table=NAME", "ITEMS [CSV]"}) {
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
    }
}

} // namespace
