// The program oakitem: rows taken apart to the last byte in both formats, damage
// told where it stands, and never a crash or a change of the file.
#include <cstring>

#include "dbobjapi.h"
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

std::string item_file(const std::vector<std::vector<uint8_t>> &objects) {
    std::string items;
    uint64_t row = 0;
    for (std::vector<uint8_t> object : objects) {
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

    /// Shows one object, and gives what is said of it.
    std::string show(const std::string &object, int status = 0) const {
        place.write("items", item_file({oaktest::unhex(object)}));
        const Result run = place.run("oakitem", {"-c", "catalog", "-t", "t", "items"});
        EXPECT_EQ(run.status, status) << run.out;
        EXPECT_EQ(run.err, "");
        const size_t first = run.out.find("  header ");
        const size_t end = run.out.find("\n\n");
        EXPECT_NE(first, std::string::npos) << run.out;
        return first == std::string::npos ? "" : run.out.substr(first, end + 1 - first);
    }
    Result run(const std::string &items, const Strings &more = {}) const {
        place.write("items", items);
        Strings args = {"-c", "catalog", "-t", "t", "items"};
        args.insert(args.end(), more.begin(), more.end());
        const Result result = place.run("oakitem", args);
        EXPECT_EQ(place.read("items"), items) << "it only reads";
        return result;
    }

    Workplace place;
};

std::string two_columns() {
    return one_table(
        column(0, "a", R"("int32")") + "," + column(1, "b", R"("varchar", "length": 9)"), 2);
}

/// A line of the dump: the place, the bytes in hex, and what they are.
std::string line(int place, std::string hex, const std::string &what) {
    std::string number = std::to_string(place);
    number.insert(0, 8 - number.size(), ' ');
    hex.resize(49, ' ');
    return number + "  " + hex + what + "\n";
}

std::string header_line(int header, const char *format, const char *method, int packed) {
    return "  header " + std::to_string(header) + ": " + format + ", compression " + method +
           "; packed object of " + std::to_string(packed) + " bytes\n";
}

// ---- Compact rows ------------------------------------------------------------

TEST(Oakitem, TakesACompactRowApart) {
    EXPECT_EQ(Bench(two_columns()).show("11 00 00 02 00 0a 03 61 22 62 00"),
              header_line(17, "compact", "none", 15) + line(0, "00", "AVL keys = 0") +
                  line(1, "00", "joins = 0") + line(2, "02", "columns in the group = 2") +
                  line(3, "00", "first column = 0") + line(4, "0a", "a = 5") +
                  line(5, "03 61 22 62", "b = \"a\\\"b\"") +
                  line(9, "00", "columns in the group = 0") +
                  line(10, "00 00 00 00 00", "padding"));
}

/// The stored object, in hex, of a packed one in hex.
std::string compressed(const std::string &packed, OAK_ITEM_FORMAT format,
                       OAK_COMPRESS_METHOD method) {
    const std::vector<uint8_t> bytes = oaktest::unhex(packed);
    const tools::Tag tag;
    LZMA lzma = nullptr;
    OAK_BUFFER from, to;
    b_buffInit(&from, tag);
    b_buffInit(&to, tag);
    b_buffSetStatic(&from, bytes.data(), bytes.size());
    EXPECT_EQ(b_lzmaCreate(&lzma), sOKAY);
    EXPECT_EQ(obj_compress(lzma, method, 0, format, &from, &to), sOKAY);
    const std::string stored = oaktest::hex(to.data, to.len);
    b_lzmaDestroy(lzma);
    b_buffTerm(&to);
    b_buffTerm(&from);
    return stored;
}

TEST(Oakitem, NamesTheMethodAndShowsWhatWasCompressed) {
    const Bench bench(two_columns());
    const std::string parts = line(0, "00", "AVL keys = 0") + line(1, "00", "joins = 0") +
                              line(2, "02", "columns in the group = 2") +
                              line(3, "00", "first column = 0") + line(4, "0a", "a = 5") +
                              line(5, "01 78", "b = \"x\"") +
                              line(7, "00", "columns in the group = 0");
    const std::tuple<OAK_COMPRESS_METHOD, int, const char *> cases[] = {
        {OAK_COMPRESS_LZMA, 18, "lzma"}, {OAK_COMPRESS_ZERO, 20, "zero"}};
    for (const auto &[method, header, name] : cases) {
        const std::string object =
            compressed("00 00 02 00 0a 01 78 00", OAK_ITEM_FORMAT_COMPACT, method);
        EXPECT_EQ(bench.show(object), header_line(header, "compact", name, 8) + parts);
        const Result json = bench.run(item_file({oaktest::unhex(object)}), {"--json"});
        const std::string member = std::string("\"compression\":\"") + name + "\"";
        EXPECT_NE(json.out.find(member), std::string::npos) << json.out;
    }
}

TEST(Oakitem, ARowOfATableWithoutColumnsEndsBehindItsJoins) {
    EXPECT_EQ(Bench(one_table("", 0)).show("11 00 00"),
              header_line(17, "compact", "none", 15) + line(0, "00", "AVL keys = 0") +
                  line(1, "00", "joins = 0") +
                  line(2, "00 00 00 00 00 00 00 00 00 00 00 00 00", "padding"));
}

TEST(Oakitem, NamesKeysAndReferences) {
    const Workplace place;
    place.write("rows.csv", "isbn,title,author,language\n1,T,300,\n");
    const std::string catalog = oaktest::example("library.json");
    ASSERT_EQ(place.run("oakpack", {"-c", catalog, "-t", "book", "rows.csv", "items"}).status, 0);
    const Result run = place.run("oakitem", {"-c", catalog, "-t", "book", "items"});
    EXPECT_EQ(run.status, 0);
    for (const std::string &part :
         {line(0, "01", "AVL keys = 1"), line(1, "00", "AVL key = 0"),
          line(2, "00", "AVL key book_title left = 0"),
          line(4, "00", "AVL key book_title flags = 0"), line(5, "01", "joins = 1"),
          line(6, "00", "reference = 0"), line(7, "ac 02", "reference written_by owner = 300")}) {
        EXPECT_NE(run.out.find(part), std::string::npos) << part << run.out;
    }
}

TEST(Oakitem, ShowsDroppedColumnsAndLargeObjects) {
    std::string catalog = one_table(
        column(0, "a", R"("int32")") + ", " + column(1, "b", R"("blob")", R"("dwrid": 6)"), 2, "",
        R"(, {"dwrid": 6, "tabid": "1", "srcid": 1, "type": "blob"})", 7);
    EXPECT_EQ(Bench(catalog).show("11 00 00 02 00 0a 01 00"),
              header_line(17, "compact", "none", 15) + line(0, "00", "AVL keys = 0") +
                  line(1, "00", "joins = 0") + line(2, "02", "columns in the group = 2") +
                  line(3, "00", "first column = 0") + line(4, "0a", "a = 5") +
                  line(5, "01", "b, mark of a large object = 1") +
                  line(6, "00", "columns in the group = 0") +
                  line(7, "00 00 00 00 00 00 00 00", "padding"));
    // A column without a name is a dropped one.
    catalog = one_table(
        R"({"colid": 0, "type": {"data_type": "int32"}},)" + column(1, "b", R"("int32")"), 2);
    const std::string num_cols = "\"nocols\": 2";
    catalog.replace(catalog.find(num_cols), num_cols.size(), "\"nocols\": 1");
    const std::string shown = Bench(catalog).show("11 00 00 02 00 0a 0c 00");
    EXPECT_NE(shown.find(line(4, "0a", "dropped column 0 = 5") + line(5, "0c", "b = 6")),
              std::string::npos)
        << shown;
}

TEST(Oakitem, ShowsEveryTypeInBothFormats) {
    const Bench bench(oaktest::typed_catalog());
    bench.place.write(
        "rows.csv", oaktest::typed_header() +
                        "true,-1,2,-3,4,-5,6,-7,8,0.5,0.25,1.5,2024-02-29,01:02:03.0004,"
                        "01:02:03.0004 +02:00,2024-02-29 01:02:03.0004,"
                        "2024-02-29 01:02:03.0004 -02:00,,12345678-9abc-4def-8012-3456789abcde,c,v,"
                        "w,x,0x0A0B0C,0x0D,\"ARRAY[true,false]\",\"ARRAY[1,2,3]\",ARRAY[4],"
                        "\"ARRAY[5,6]\",\"ARRAY[7,8]\",\"ARRAY[9,10,11]\"\n");
    const std::pair<const char *, const char *> values[] = {
        {"a_bool", "true"},
        {"a_int8", "-1"},
        {"a_uint8", "2"},
        {"a_int16", "-3"},
        {"a_uint16", "4"},
        {"a_int32", "-5"},
        {"a_uint32", "6"},
        {"a_int64", "-7"},
        {"a_uint64", "8"},
        {"a_float", "0.5"},
        {"a_double", "0.25"},
        {"a_decimal", "1.500"},
        {"a_date", "2024-02-29"},
        {"a_time", "01:02:03.0004"},
        {"a_timetz", "01:02:03.0004 +02:00"},
        {"a_timestamp", "2024-02-29 01:02:03.0004"},
        {"a_timestamptz", "2024-02-29 01:02:03.0004 -02:00"},
        {"a_uuid", "12345678-9abc-4def-8012-3456789abcde"},
        {"a_char", "\"c\""},
        {"a_varchar", "\"v\""},
        {"a_wchar", "\"w\""},
        {"a_wvarchar", "\"x\""},
        {"a_binary", "0x0A0B0C"},
        {"a_varbinary", "0x0D"},
        {"bools", "ARRAY[true,false]"},
        {"int8s", "ARRAY[1,2,3]"},
        {"uint16s", "ARRAY[4]"},
        {"int64s", "ARRAY[5,6]"},
        {"floats", "ARRAY[7,8]"},
        {"doubles", "ARRAY[9,10,11]"},
    };
    for (const char *format : {"compact", "expanded"}) {
        for (const char *method : {"none", "lzma"}) {
            std::filesystem::remove(bench.place.path("items"));
            ASSERT_EQ(bench.place
                          .run("oakpack", {"-c", "catalog", "-t", "t", "-f", format, "-z", method,
                                           "rows.csv", "items"})
                          .status,
                      0);
            const Result run = bench.place.run("oakitem", {"-c", "catalog", "-t", "t", "items"});
            EXPECT_EQ(run.status, 0) << run.out;
            for (const auto &[name, value] : values) {
                EXPECT_NE(run.out.find(std::string(" ") + name + " = " + value + "\n"),
                          std::string::npos)
                    << name << " in " << format << "\n"
                    << run.out;
            }
        }
    }
}

// ---- Expanded rows -----------------------------------------------------------

// a and b: 4 and 9 bytes, 2 has-value bytes, 16 in all behind 8 of statuses.
constexpr char kExpanded[] = "21 1800000000000000 01000000 01000000 05000000 "
                             "78 00 00 00 00 00 00 00 00 01 01 00";

TEST(Oakitem, TakesAnExpandedRowApart) {
    EXPECT_EQ(Bench(two_columns()).show(kExpanded),
              header_line(33, "expanded", "none", 47) +
                  line(0, "18 00 00 00 00 00 00 00", "length of the row buffer = 24") +
                  line(8, "01 00 00 00", "status of a = value") +
                  line(12, "01 00 00 00", "status of b = value") +
                  line(16, "05 00 00 00", "a = 5") +
                  line(20, "78 00 00 00 00 00 00 00 00", "b = \"x\"") +
                  line(29, "01", "a has a value = 1") + line(30, "01", "b has a value = 1") +
                  line(31, "00", "padding") +
                  line(32, "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00", "padding"));
}

TEST(Oakitem, ShowsLinksAndNullsOfAnExpandedRow) {
    const Workplace place;
    place.write("rows.csv", "isbn,title,author,language\n1,T,300,\n");
    const std::string catalog = oaktest::example("library.json");
    ASSERT_EQ(
        place.run("oakpack", {"-c", catalog, "-t", "book", "-f", "expanded", "rows.csv", "items"})
            .status,
        0);
    const Result run = place.run("oakitem", {"-c", catalog, "-t", "book", "items"});
    EXPECT_EQ(run.status, 0) << run.out;
    for (const std::string &part :
         {line(8, "00 00", "AVL key book_title flags = 0"),
          line(10, "00 00 00 00 00 00", "padding"),
          line(16, "00 00 00 00 00 00 00 00", "AVL key book_title left = 0"),
          line(32, "2c 01 00 00 00 00 00 00", "reference written_by owner = 300"),
          std::string("status of author = no value\n"), std::string("status of cover = NULL\n"),
          std::string("published has no value\n"), std::string("language has no value\n"),
          line(88, "00", "37 zero bytes")}) {
        EXPECT_NE(run.out.find(part), std::string::npos) << part << run.out;
    }
}

// ---- Without a catalog, in JSON, quiet ---------------------------------------

TEST(Oakitem, WithoutACatalogShowsHeadersAndLengths) {
    const Workplace place;
    place.write("items", item_file({oaktest::unhex("11 00 00 00"), oaktest::unhex(kExpanded)}));
    const Result run = place.run("oakitem", {"items"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "item at 16, row 1, object of 16 bytes\n" +
                           header_line(17, "compact", "none", 15) +
                           "\nitem at 48, row 2, object of 48 bytes\n" +
                           header_line(33, "expanded", "none", 47) + "\n2 items, 0 damaged\n");
}

TEST(Oakitem, PrintsJsonForPrograms) {
    const Bench bench(two_columns());
    const Result run = bench.run(item_file({oaktest::unhex("11 00 00 02 00 0a 01 22 00")}), {"-j"});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(oaktest::JsonCheck::is_valid(run.out)) << run.out;
    EXPECT_EQ(
        run.out,
        "{\"file\":\"items\",\"items\":[\n"
        "{\"place\":16,\"bytes\":32,\"row\":1,\"object_bytes\":16,\"header\":17,"
        "\"format\":\"compact\",\"compression\":\"none\",\"packed_bytes\":15,\"parts\":[\n"
        "{\"from\":0,\"to\":1,\"what\":\"AVL keys\",\"value\":\"0\",\"hex\":\"00\"},\n"
        "{\"from\":1,\"to\":2,\"what\":\"joins\",\"value\":\"0\",\"hex\":\"00\"},\n"
        "{\"from\":2,\"to\":3,\"what\":\"columns in the group\",\"value\":\"2\",\"hex\":\"02\"},\n"
        "{\"from\":3,\"to\":4,\"what\":\"first column\",\"value\":\"0\",\"hex\":\"00\"},\n"
        "{\"from\":4,\"to\":5,\"column\":\"a\",\"value\":\"5\",\"hex\":\"0A\"},\n"
        "{\"from\":5,\"to\":7,\"column\":\"b\",\"value\":\"\\\"\",\"hex\":\"0122\"},\n"
        "{\"from\":7,\"to\":8,\"what\":\"columns in the group\",\"value\":\"0\",\"hex\":\"00\"},\n"
        "{\"from\":8,\"to\":15,\"what\":\"padding\",\"value\":null,\"hex\":\"00000000000000\"}],"
        "\"damage\":null}\n"
        "],\"file_damage\":[],\"bytes_behind\":0,\"count\":1,\"damaged\":0}\n");
    const Result headers = bench.place.run("oakitem", {"--json", "items"});
    EXPECT_EQ(headers.out,
              "{\"file\":\"items\",\"items\":[\n"
              "{\"place\":16,\"bytes\":32,\"row\":1,\"object_bytes\":16,\"header\":17,"
              "\"format\":\"compact\",\"compression\":\"none\",\"packed_bytes\":15,\"parts\":[],"
              "\"damage\":null}\n"
              "],\"file_damage\":[],\"bytes_behind\":0,\"count\":1,\"damaged\":0}\n");
}

TEST(Oakitem, QuietTellsByItsExitStatusAlone) {
    const Bench bench(two_columns());
    const std::string items = item_file({oaktest::unhex("11 00 00 00")});
    Result run = bench.run(items, {"--quiet"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out + run.err, "");
    run = bench.run(items.substr(0, 40), {"--quiet"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out + run.err, "");
}

TEST(Oakitem, ReadsStandardInput) {
    const Workplace place;
    const Result run =
        place.run("oakitem", {"-j", "-"}, item_file({oaktest::unhex("11 00 00 00")}));
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("\"file\":\"standard input\""), std::string::npos);
}

TEST(Oakitem, CountsTheBytesOfAnAppendThatWasCutShort) {
    const Bench bench(two_columns());
    const Result run = bench.run(item_file({}) + std::string(1000, 'x'));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "1,000 bytes behind the items, of an append that was cut short\n"
                       "0 items, 0 damaged\n");
}

// ---- Damage ------------------------------------------------------------------

TEST(Oakitem, SaysWhereACompactRowIsDamaged) {
    const Bench bench(two_columns());
    const std::string corrupted = tools::status_text(eDBCORRUPTED);
    const std::pair<const char *, std::string> cases[] = {
        {"13 00", "the object: " + tools::status_text(eSYS_ERROR)},
        {"41 00", "the object: " + corrupted},
        {"12 ff ff ff ff ff ff ff ff ff 01", "the object: " + corrupted},
        {"11 ff ff ff ff ff ff ff ff ff 7f", "byte 0, AVL keys: " + tools::status_text(eINVVARINT)},
        {"11 40", "byte 15, AVL key number 0 right: " + tools::status_text(eEOD)},
        {"11 00 40", "byte 15, reference number 0 owner: " + tools::status_text(eEOD)},
        {"11 00 00 01 07", "byte 2, a group of columns that the table does not have: " + corrupted},
        {"11 00 00 03 00", "byte 2, a group of columns that the table does not have: " + corrupted},
        {"11 00 00 ff ff ff ff ff ff ff ff ff 01 00",
         "byte 2, a group of columns that the table does not have: " + corrupted},
        {"11 00 00 02 00 ff ff ff ff ff 01", "byte 4, a: " + corrupted},
        {"11 00 00 01 01 7f", "byte 4, b: " + corrupted},
        {"11 00 00 01 01 08 61 61 61 61 61 61 61 61 01", "byte 15, a: " + tools::status_text(eEOD)},
        {"11 00 00 00 00 00 05", "byte 5, padding that is not zero: " + corrupted},
        {"11 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00",
         "byte 3, 28 bytes behind the row: " + corrupted},
    };
    for (const auto &[object, damage] : cases) {
        const std::string shown = bench.show(object, 1);
        EXPECT_NE(shown.find("  damaged: " + damage + "\n"), std::string::npos) << object << "\n"
                                                                                << damage << "\n"
                                                                                << shown;
    }
}

TEST(Oakitem, ShowsTheBytesOfAValueThatHasNoText) {
    const Bench bench(
        one_table(column(0, "a", R"("bool")") + "," + column(1, "b", R"("bool", "noelts": 2)"), 2));
    const std::string start = header_line(17, "compact", "none", 15) +
                              line(0, "00", "AVL keys = 0") + line(1, "00", "joins = 0") +
                              line(2, "01", "columns in the group = 1");
    const std::string corrupted = tools::status_text(eDBCORRUPTED);
    EXPECT_EQ(bench.show("11 00 00 01 00 06 00", 1), // 3, no boolean
              start + line(3, "00", "first column = 0") + line(4, "06", "a") +
                  "  damaged: byte 4, a: " + corrupted + "\n");
    EXPECT_EQ(bench.show("11 00 00 01 01 01 02 00 02 06 00", 1), // one run: true, and 3
              start + line(3, "01", "first column = 1") + line(4, "01 02 00 02 06", "b") +
                  "  damaged: byte 4, b: " + corrupted + "\n");
}

TEST(Oakitem, SaysThatAColumnOfAGroupIsNotThere) {
    // Columns 0 and 2 of 3 are there.
    std::string catalog =
        one_table(column(0, "a", R"("int32")") + "," + column(2, "c", R"("int32")"), 2);
    for (const std::string member : {"\"nextcol\": ", "\"maxcols\": "}) {
        catalog.replace(catalog.find(member) + member.size(), 1, "3");
    }
    EXPECT_EQ(Bench(catalog).show("11 00 00 03 00 0a 0c 0e 00", 1),
              header_line(17, "compact", "none", 15) + line(0, "00", "AVL keys = 0") +
                  line(1, "00", "joins = 0") + line(2, "03", "columns in the group = 3") +
                  line(3, "00", "first column = 0") + line(4, "0a", "a = 5") +
                  "  damaged: byte 5, column 1: " + tools::status_text(eDBCORRUPTED) + "\n");
}

TEST(Oakitem, SaysThatAnExpandedRowEndsInsideItsLength) {
    const std::string object =
        compressed("18 00 00 00 00 00 00", OAK_ITEM_FORMAT_EXPANDED, OAK_COMPRESS_LZMA);
    EXPECT_EQ(Bench(two_columns()).show(object, 1),
              header_line(34, "expanded", "lzma", 7) +
                  "  damaged: byte 0, length of the row buffer: " + tools::status_text(eEOD) +
                  "\n");
}

TEST(Oakitem, SaysWhereAnExpandedRowIsDamaged) {
    const Bench bench(two_columns());
    const std::string corrupted = tools::status_text(eDBCORRUPTED);
    const std::tuple<size_t, uint8_t, std::string> cases[] = {
        {1, 0x17, "byte 0, a length that is not the table's, 24: " + corrupted},
        {9, 0x03, "byte 16, a: " + corrupted},
        {12, 0xFF, "byte 16, a: " + corrupted},
        {33, 0x01, "byte 32, padding that is not zero: " + corrupted},
    };
    for (const auto &[byte, value, damage] : cases) {
        std::vector<uint8_t> object = oaktest::unhex(kExpanded);
        object.resize(48);
        object[byte] = value;
        const std::string shown = bench.show(oaktest::hex(object.data(), object.size()), 1);
        EXPECT_NE(shown.find("  damaged: " + damage + "\n"), std::string::npos) << damage << "\n"
                                                                                << shown;
    }
    std::vector<uint8_t> object = oaktest::unhex(kExpanded);
    std::fill(object.begin() + 21, object.begin() + 30, uint8_t{'x'}); // no terminator
    std::string shown = bench.show(oaktest::hex(object.data(), object.size()), 1);
    EXPECT_NE(shown.find("  damaged: byte 20, b: " + tools::status_text(eBADDATALEN) + "\n"),
              std::string::npos)
        << shown;
    EXPECT_NE(shown.find("a = 5"), std::string::npos) << "the rest is shown";
    EXPECT_NE(shown.find("a has a value"), std::string::npos) << "the rest is shown";
    shown = bench.show("21 18 00 00 00 00 00 00 00", 1);
    EXPECT_NE(shown.find("  damaged: byte 15, row buffer: " + tools::status_text(eEOD) + "\n"),
              std::string::npos)
        << shown;
}

TEST(Oakitem, ShowsTheRestWhateverHeaderByteIsDamaged) {
    const Bench bench(two_columns());
    const auto row = oaktest::unhex("11 00 00 02 00 0a 01 78 00");
    const std::string sound = item_file({row, row, row});
    for (const size_t start : {size_t{0}, size_t{16}, size_t{48}, size_t{80}}) {
        for (size_t byte = start; byte < start + 16; ++byte) {
            std::string items = sound;
            items[byte] = static_cast<char>(items[byte] ^ 0x5A);
            const Result run = bench.run(items);
            EXPECT_EQ(run.status, 1) << byte;
            size_t rows = 0;
            for (size_t at = run.out.find(" a = 5\n"); at != std::string::npos;
                 at = run.out.find(" a = 5\n", at + 1)) {
                ++rows;
            }
            EXPECT_EQ(rows, 3u) << byte << "\n" << run.out;
            EXPECT_NE(run.out.find("damaged: eDBCORRUPTED"), std::string::npos) << byte;
        }
    }
}

TEST(Oakitem, TellsDamageInJson) {
    const Bench bench(two_columns());
    std::string items = item_file({oaktest::unhex("13 00"), oaktest::unhex("11 00 00 00")});
    items[0] = 'X';
    items[48] = 'X';
    items[63] = 'X';
    const Result run = bench.run(items, {"--json"});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(oaktest::JsonCheck::is_valid(run.out)) << run.out;
    const oaktest::Strings parts = {
        "\"header\":19,\"format\":\"compact\",\"compression\":null",
        ("\"damage\":\"the object: " + tools::status_text(eSYS_ERROR) + "\""),
        "\"place\":48,\"bytes\":32,\"row\":null,\"object_bytes\":0,\"header\":null",
        ("\"file_damage\":[\"" + damaged("the file does not begin as an item file does") + "\"]"),
        "\"count\":2,\"damaged\":2}"};
    for (const std::string &part : parts) {
        EXPECT_NE(run.out.find(part), std::string::npos) << part << "\n" << run.out;
    }
}

TEST(Oakitem, HostileFilesEndWithAnExitStatus) {
    const Bench bench(oaktest::typed_catalog());
    bench.place.write("rows.csv",
                      oaktest::typed_header() + std::string(oaktest::kTypedCount - 1, ',') + "\n");
    for (const char *format : {"compact", "expanded"}) {
        std::filesystem::remove(bench.place.path("items"));
        ASSERT_EQ(
            bench.place
                .run("oakpack", {"-c", "catalog", "-t", "t", "-f", format, "rows.csv", "items"})
                .status,
            0);
        const std::string sound = bench.place.read("items");
        oaktest::Random random(5);
        for (int run = 0; run < 10; ++run) {
            std::string items = sound;
            for (uint64_t flips = random.below(20) + 1; flips > 0; --flips) {
                items[random.below(items.size())] = static_cast<char>(random.next());
            }
            for (const char *tool : {"oakitem", "oakunpack"}) {
                bench.place.write("items", items);
                const Result result = bench.place.run(tool, {"-c", "catalog", "-t", "t", "items"});
                EXPECT_LE(result.status, 1)
                    << tool << " " << oaktest::hex(items.data(), items.size());
            }
        }
    }
}

// ---- The command line --------------------------------------------------------

TEST(Oakitem, RefusesAWrongCommandLineAndShowsItsHelp) {
    const Workplace place;
    const std::pair<Strings, const char *> cases[] = {
        {{"-c", "x", "a"},
         "error: The options '--catalog' and '--table' go together ('--help' for more "
         "information)\n"},
        {{"-t", "x", "a"},
         "error: The options '--catalog' and '--table' go together ('--help' for more "
         "information)\n"},
        {{}, "error: Missing argument 'ITEMS' ('--help' for more information)\n"},
    };
    for (const auto &[args, message] : cases) {
        const Result run = place.run("oakitem", args);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err, message);
    }
    Result run = place.run("oakitem", {"none"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "oakitem: none: " + tools::status_text(eNOFILE) + "\n");
    run = place.run("oakitem", {"-c", "none", "-t", "t", "none"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "oakitem: none: " + tools::status_text(eNOFILE) + "\n");
    run = place.run("oakitem", {"--help"});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("--json"), std::string::npos);
}

} // namespace
