// The program oakcatalog: what it shows of a catalog, for people and for
// programs, and how it tells one that is refused.
#include "program.h"
#include "tool_run.h"

namespace {

using oaktest::column;
using oaktest::one_table;
using oaktest::Result;
using oaktest::Strings;
using oaktest::Workplace;

constexpr char kShelf[] =
    "database library: catalog version 1, database version 3, encryption none, locale -\n"
    "\n"
    "table shelf, standard: a row has 88 bytes of column data in a buffer of 104\n"
    "\n"
    "  column  type       length            default  offset  bytes  has value\n"
    "  label   varchar        33  not null  -             0     33          -\n"
    "  place   double[4]       -  null      -            40     32         82\n"
    "  lock    varbinary       8  null      -            72     10         83\n"
    "\n"
    "  key          type       method  columns    bytes  drawer\n"
    "  shelf_place  nonunique  rtree   place asc     40      14\n"
    "\n"
    "  drawer  type   content\n"
    "      13  table  rows of shelf\n"
    "      14  rtree  key shelf_place\n"
    "\n";

constexpr char kBook[] =
    "table book, standard: a row has 448 bytes of column data in a buffer of 512\n"
    "  check (price < 1000)\n"
    "\n"
    "  column     type      length            default  offset  bytes  has value\n"
    "  isbn       char          53  not null  -             0     53          -  primary key\n"
    "  title      wvarchar     321  not null  -            53    321          -\n"
    "  author     uint64         -  null      -           376      8        437  reference "
    "written_by to author.id\n"
    "  price      decimal      8,2  null      0.00        384     37        438  domain money, "
    "check (value >= 0)\n"
    "  published  date           -  null      -           424      4        439\n"
    "  cover      blob           -  null      -             -      -        440  drawer 9\n"
    "  summary    clob           -  null      -             -      -        441  drawer 10\n"
    "  language   char           9  null      en          428      9        442\n"
    "\n"
    "  key         type       method  columns                    bytes  drawer\n"
    "  book_isbn   primary    hash    isbn asc                      53       7\n"
    "  book_title  nonunique  avl     title asc, published desc    332       -\n"
    "\n"
    "  reference   columns  to      by key     on update  on delete  order           drawer\n"
    "  written_by  author   author  author_id  restrict   cascade    published desc       8\n"
    "\n"
    "  drawer  type   content\n"
    "       6  table  rows of book\n"
    "       7  hash   key book_isbn\n"
    "       8  ref    reference written_by\n"
    "       9  blob   column cover\n"
    "      10  blob   column summary\n";

Result show(const Strings &args, const std::string &input = "") {
    return Workplace().run("oakcatalog", args, input);
}

TEST(Oakcatalog, ShowsOneTable) {
    const Result run = show({"--table", "SHELF", oaktest::example("library.json")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, kShelf);
}

TEST(Oakcatalog, ShowsEveryTableWithAllThatItHas) {
    const Result run = show({oaktest::example("library.json")});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find(kBook), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("table author, standard"), std::string::npos);
    EXPECT_NE(run.out.find("table loan, circular with at most 1000 rows"), std::string::npos);
    EXPECT_NE(run.out.find("author_name  nonunique  avl "), std::string::npos);
    EXPECT_NE(run.out.find("on update"), std::string::npos);
    EXPECT_NE(run.out.find("cascade    set null"), std::string::npos);
    EXPECT_NE(run.out.find("current_timestamp"), std::string::npos);
}

TEST(Oakcatalog, ShowsDefaultsAsTheyAreWritten) {
    Workplace place;
    place.write("catalog",
                one_table(column(0, "none", R"("int32")") + "," +
                              column(1, "null", R"("int32")", R"("defNull": true)") + "," +
                              column(2, "empty", R"("char", "length": 5)", R"("defValue": "")") +
                              "," +
                              column(3, "word", R"("char", "length": 5)", R"("defValue": "NULL")"),
                          4));
    const Result run = place.run("oakcatalog", {"catalog"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("  none    int32       -  null  -     "), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("  null    int32       -  null  NULL  "), std::string::npos);
    EXPECT_NE(run.out.find("  empty   char        5  null  \"\"    "), std::string::npos);
}

TEST(Oakcatalog, ShowsTheSystemTable) {
    const Result run = show({"-t", "_sys_files", oaktest::example("unicode.json")});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("table _sys_files, standard: a row has 64528 bytes of column data in a "
                           "buffer of 65452\n"),
              std::string::npos);
    EXPECT_NE(run.out.find("       4  blob   column data_blob\n"), std::string::npos);
}

TEST(Oakcatalog, PrintsJsonForPrograms) {
    const Result run = show({"--json", "--table", "shelf", oaktest::example("library.json")});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(oaktest::JsonCheck::is_valid(run.out)) << run.out;
    EXPECT_EQ(
        run.out,
        "{\"database\":{\"name\":\"library\",\"catalog_version\":1,\"database_version\":3,"
        "\"encryption\":\"none\",\"locale\":null},\"tables\":[\n"
        "{\"name\":\"shelf\",\"index\":4,\"type\":\"standard\",\"max_rows\":null,\"drawer\":13,"
        "\"check\":null,\"row\":{\"column_bytes\":88,\"has_value_offset\":82,\"buffer_bytes\":104,"
        "\"column_data_offset\":16,\"column_status_offset\":0,\"references_offset\":0,"
        "\"avl_keys\":0},\"columns\":[\n"
        "{\"name\":\"label\",\"index\":0,\"type\":\"varchar\",\"elements\":0,\"length\":33,"
        "\"precision\":null,\"scale\":null,\"nullable\":false,\"not_null\":true,\"default\":null,"
        "\"default_null\":false,\"offset\":0,\"bytes\":33,\"has_value_offset\":null,"
        "\"primary_key\":false,\"domain\":null,\"reference\":null,\"refers_to_table\":null,"
        "\"refers_to_column\":null,\"drawer\":null,\"check\":null},\n"
        "{\"name\":\"place\",\"index\":1,\"type\":\"double\",\"elements\":4,\"length\":0,"
        "\"precision\":null,\"scale\":null,\"nullable\":true,\"not_null\":false,\"default\":null,"
        "\"default_null\":false,\"offset\":40,\"bytes\":32,\"has_value_offset\":82,"
        "\"primary_key\":false,\"domain\":null,\"reference\":null,\"refers_to_table\":null,"
        "\"refers_to_column\":null,\"drawer\":null,\"check\":null},\n"
        "{\"name\":\"lock\",\"index\":2,\"type\":\"varbinary\",\"elements\":0,\"length\":8,"
        "\"precision\":null,\"scale\":null,\"nullable\":true,\"not_null\":false,\"default\":null,"
        "\"default_null\":false,\"offset\":72,\"bytes\":10,\"has_value_offset\":83,"
        "\"primary_key\":false,\"domain\":null,\"reference\":null,\"refers_to_table\":null,"
        "\"refers_to_column\":null,\"drawer\":null,\"check\":null}],\"keys\":[\n"
        "{\"name\":\"shelf_place\",\"index\":0,\"type\":\"nonunique\",\"method\":\"rtree\","
        "\"bytes\":40,\"drawer\":14,\"columns\":[{\"name\":\"place\",\"direction\":\"asc\","
        "\"offset\":0,\"has_value_offset\":32}]}],\"references\":[],\"drawers\":[\n"
        "{\"number\":13,\"type\":\"table\",\"content\":\"rows of shelf\"},\n"
        "{\"number\":14,\"type\":\"rtree\",\"content\":\"key shelf_place\"}]}\n"
        "]}\n");
    const Result all = show({"-j", oaktest::example("library.json")});
    EXPECT_TRUE(oaktest::JsonCheck::is_valid(all.out));
    for (const char *part :
         {"\"name\":\"written_by\",\"index\":0,\"table\":\"author\",\"key\":\"author_id\","
          "\"on_update\":\"restrict\",\"on_delete\":\"cascade\",\"drawer\":8,\"columns\":["
          "\"author\"],"
          "\"order\":[{\"name\":\"published\",\"direction\":\"desc\"}]}",
          "\"type\":\"circular\",\"max_rows\":1000", "\"precision\":8,\"scale\":2",
          "\"name\":\"cover\",\"index\":5,\"type\":\"blob\"", "\"offset\":null,\"bytes\":0",
          "\"method\":\"avl\",\"bytes\":332,\"drawer\":null", "\"default\":\"en\""}) {
        EXPECT_NE(all.out.find(part), std::string::npos) << part << "\n" << all.out;
    }
}

TEST(Oakcatalog, ReadsStandardInput) {
    const Result run =
        show({"-t", "shelf", "-"}, oaktest::read_all(oaktest::example("library.json")));
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, kShelf);
}

TEST(Oakcatalog, QuietTellsByItsExitStatusAlone) {
    const Result run = show({"-q", oaktest::example("library.json")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
}

TEST(Oakcatalog, TellsWhereARefusedCatalogStands) {
    const std::string bad_catalog = tools::status_text(eBADCAT);
    const Workplace place;
    const auto refused = [&](const std::string &text) {
        place.write("catalog", text);
        const Result run = place.run("oakcatalog", {"catalog"});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, "");
        return run.err;
    };
    std::string err = refused("{\"database\": {\n  \"catver\": 1,\n  \"colour\": 2}}");
    EXPECT_EQ(err.rfind("oakcatalog: catalog: " + bad_catalog + ": line 3, column ", 0), 0u) << err;
    EXPECT_NE(err.find(", at database.colour: "), std::string::npos) << err;
    err = refused(one_table(column(0, "c", R"("decimal", "length": 300)"), 1));
    EXPECT_NE(err.find(", at database.tables[0].columns[0].type.length: "), std::string::npos)
        << err;
    err = refused("");
    EXPECT_EQ(err.rfind("oakcatalog: catalog: e", 0), 0u) << err;
    err = refused("[]");
    EXPECT_EQ(err.rfind("oakcatalog: catalog: " + bad_catalog, 0), 0u) << err;
}

TEST(Oakcatalog, TellsWhichFileOrTableIsMissing) {
    Result run = show({"none"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "oakcatalog: none: " + tools::status_text(eNOFILE) + "\n");
    const std::string library = oaktest::example("library.json");
    run = show({"-t", "none", library});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "oakcatalog: " + library +
                           ": no table 'none'; there are: author, book, loan, shelf\n");
    run = show({"-t", "x", "-"}, R"({"database": {"catver": 1}})");
    EXPECT_EQ(run.err, "oakcatalog: standard input: no table 'x'; there is none\n");
    run = show({"/"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "oakcatalog: /: " + tools::status_text(eFILEIO) + "\n");
}

TEST(Oakcatalog, ShowsTheExamplesWithoutComplaint) {
    for (const char *name : {"unicode.json", "library.json"}) {
        for (const char *option : {"-j", "-q"}) {
            const Result run = show({option, oaktest::example(name)});
            EXPECT_EQ(run.status, 0);
            EXPECT_EQ(run.err, "");
        }
    }
}

TEST(Oakcatalog, RefusesAWrongCommandLineAndShowsItsHelp) {
    Result run = show({});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "error: Missing argument 'CATALOG' ('--help' for more information)\n");
    run = show({"--help"});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("--json"), std::string::npos);
    EXPECT_NE(run.out.find("--table=NAME"), std::string::npos);
    run = show({"--version"});
    EXPECT_EQ(run.status, 0);
}

} // namespace
