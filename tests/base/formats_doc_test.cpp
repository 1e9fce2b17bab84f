// docs/formats.md against the library: each worked example is what the library
// writes, and the tables of members, words, types, states and hash numbers are
// those of the code.
#include <array>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "bcd.h"
#include "catalog.h"
#include "dbobjapi.h"
#include "encoder_internal.h"
#include "hashfcn.h"
#include "rich_catalog.h"
#include "row_bench.h"
#include "schema_words.h"
#include "type_descriptors.h"

namespace {

using namespace oaktest;

std::string file_text(const std::string &path) {
    std::ifstream file(OAK_SOURCE_DIR "/" + path);
    EXPECT_TRUE(file.is_open()) << path;
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<std::string> lines_of(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

const std::vector<std::string> &page() {
    static const std::vector<std::string> lines = lines_of(file_text("docs/formats.md"));
    return lines;
}

// ---- Worked examples ---------------------------------------------------------

/// The hex blocks of the page by their names.
std::map<std::string, Bytes> examples() {
    const std::string begin = "```hex name=";
    std::map<std::string, Bytes> found;
    std::string name, text;
    for (const std::string &line : page()) {
        if (line.starts_with(begin)) {
            name = line.substr(begin.size());
            EXPECT_EQ(found.count(name), 0u) << name << " stands twice";
        } else if (line == "```" && !name.empty()) {
            found[name] = unhex(text);
            name.clear();
            text.clear();
        } else if (!name.empty()) {
            text += line + "\n";
        }
    }
    EXPECT_EQ(name, "") << "a block without an end";
    return found;
}

/// What an encoder is given by `write`.
Bytes encoded(const std::function<OAK_RETCODE(B_ENCODER)> &write) {
    Tag tag;
    OAK_BUFFER buffer;
    B_ENCODER encoder = nullptr;
    b_buffInit(&buffer, tag);
    EXPECT_EQ(b_encoderCreate(b_buffEmitByte, b_buffEmitBytesBulk, &buffer, tag, &encoder), sOKAY);
    EXPECT_EQ(write(encoder), sOKAY);
    const Bytes bytes(buffer.data, buffer.data + buffer.len);
    b_encoderDestroy(encoder);
    b_buffTerm(&buffer);
    return bytes;
}

Bytes unsigned_number(uint64_t number) {
    return encoded([number](B_ENCODER e) { return b_encoderEncodeUint64(e, number); });
}
Bytes signed_number(int64_t number) {
    return encoded([number](B_ENCODER e) { return b_encoderEncodeInt64(e, number); });
}

Bytes hash_of(const Bytes &bytes) {
    B_HASHCTX context;
    b_hashFcnStart(&context);
    for (const uint8_t byte : bytes) {
        b_hashFcnEmit(&context, byte);
    }
    Bytes result;
    for (int shift = 56; shift >= 0; shift -= 8) {
        result.push_back(static_cast<uint8_t>(b_hashFcnFinish(&context) >> shift));
    }
    return result;
}

Bytes packed_decimal(uint8_t prec, uint8_t scale, const char *text) {
    OAK_BCD_T value;
    Bytes packed(prec / 2u + 1);
    EXPECT_EQ(oak_bcdFromString(text, &value), sOKAY);
    EXPECT_EQ(oak_bcdPack(&value, packed.data(), prec, scale), sOKAY);
    return packed;
}

Bytes stream(const _SCH_TYPE_INFO &type, const OAK_VALUE &value) {
    return encoded([&](B_ENCODER e) { return type.type_info->pack_fcn(&type, &value, e); });
}

Bytes decimal_record(const char *text) {
    OAK_BCD_T value;
    EXPECT_EQ(oak_bcdFromString(text, &value), sOKAY);
    const _SCH_TYPE_INFO type = decimal_type(5, 2);
    const OAK_VALUE column = pointed(OAK_BCD, &value);
    Bytes record(sizeof value);
    size_t size = record.size();
    EXPECT_EQ(type.type_info->copy_to_buff_fcn(&type, record.data(), &size, &column), sOKAY);
    return record;
}

const Catalog &rich() {
    static const Catalog catalog(kRichCatalog);
    return catalog;
}

Bytes ints_row(const std::vector<std::pair<OAK_COL_INDEX, int32_t>> &values) {
    RowBench row(rich().table("ints"));
    for (const auto &[column, value] : values) {
        row.set(column, value);
    }
    return unhex(row.compact());
}

Bytes linked_row(bool expanded) {
    RowBench row(rich().table("linked"));
    row.row_.avls[0].flags = 1;
    row.row_.avls[0].left = 5;
    row.row_.avls[0].right = 300;
    row.row_.avls[1].flags = 0x8002;
    row.row_.avls[1].right = 4294967296;
    row.row_.joins[0].owner = 7;
    row.set<int8_t>(0, -2);
    row.set<int16_t>(2, 258);
    row.set_text(3, "no");
    row.row_.data.b.col_status[4] = vsNOVAL;
    return unhex(expanded ? row.expanded() : row.compact());
}

Bytes stored(OAK_ITEM_FORMAT format, OAK_COMPRESS_METHOD method, const Bytes &object) {
    Tag tag;
    OAK_BUFFER source, result;
    LZMA lzma = nullptr;
    b_buffInit(&source, tag);
    b_buffInit(&result, tag);
    b_buffSetStatic(&source, object.data(), object.size());
    EXPECT_EQ(b_lzmaCreate(&lzma), sOKAY);
    EXPECT_EQ(obj_compress(lzma, method, 0, format, &source, &result), sOKAY);
    const Bytes bytes(result.data, result.data + result.len);
    b_lzmaDestroy(lzma);
    b_buffTerm(&result);
    return bytes;
}

Bytes compressed(const std::string &object) {
    Tag tag;
    OAK_BUFFER source, result;
    LZMA lzma = nullptr;
    b_buffInit(&source, tag);
    b_buffInit(&result, tag);
    b_buffSetStatic(&source, object.data(), object.size());
    EXPECT_EQ(b_lzmaCreate(&lzma), sOKAY);
    EXPECT_EQ(b_lzmaCompress(lzma, &source, &result), sOKAY);
    const Bytes bytes(result.data, result.data + result.len);
    b_lzmaDestroy(lzma);
    b_buffTerm(&result);
    return bytes;
}

/// What the library writes for each example.
std::map<std::string, Bytes> written() {
    static const int16_t marks[] = {1, -1, 300};
    static const uint8_t three_bytes[] = {0, 0xff, 0x10};
    Bytes fourteen(14);
    for (size_t i = 0; i < fourteen.size(); ++i) {
        fourteen[i] = static_cast<uint8_t>(i);
    }
    return {
        {"vint-127", unsigned_number(127)},
        {"vint-300", unsigned_number(300)},
        {"vint-18446744073709551615", unsigned_number(UINT64_MAX)},
        {"vint-signed-64", signed_number(64)},
        {"vint-signed--300", signed_number(-300)},
        {"hash-4142", hash_of({0x41, 0x42})},
        {"decimal-5-2-1.5", packed_decimal(5, 2, "1.5")},
        {"decimal-5-2--1.5", packed_decimal(5, 2, "-1.5")},
        {"decimal-2-1-9.9", packed_decimal(2, 1, "9.9")},
        {"stream-bool", stream(number_type(OAK_BOOL), scalar(OAK_BOOL, uint32_t{1}))},
        {"stream-float", stream(number_type(OAK_FLOAT), scalar(OAK_FLOAT, 1.5f))},
        {"stream-int16-array", stream(number_type(OAK_INT16, 3), array_at(OAK_INT16, marks, 3))},
        {"stream-text", stream(text_type(9), pointed(OAK_CHAR, "Oak", 4))},
        {"stream-varbinary", stream(varbinary_type(8), pointed(OAK_VARBINARY, three_bytes, 3))},
        {"stream-timetz",
         stream(descriptor(OAK_TIMETZ), scalar(OAK_TIMETZ, OAK_PACKED_TIMETZ_T{452967890, 60}))},
        {"record-decimal", decimal_record("-1.5")},
        {"compact-row-nulls", ints_row({})},
        {"compact-row-1", ints_row({{0, 1}, {1, -1}, {2, 64}})},
        {"compact-row-2", ints_row({{0, 1}, {2, 2}})},
        {"compact-row-linked", linked_row(false)},
        {"expanded-row-linked", linked_row(true)},
        {"object-stored", stored(OAK_ITEM_FORMAT_COMPACT, OAK_COMPRESS_NONE, fourteen)},
        {"object-lzma", stored(OAK_ITEM_FORMAT_EXPANDED, OAK_COMPRESS_LZMA, Bytes(10, 'a'))},
        {"lzma-empty", compressed("")},
        {"lzma-a", compressed("a")},
        {"lzma-abc", compressed("abcabcabcabcabcabc")},
    };
}

TEST(FormatsPage, ExamplesAreWhatTheLibraryWrites) {
    std::map<std::string, Bytes> shown = examples();
    for (const auto &[name, bytes] : written()) {
        if (name == "expanded-row-linked" && std::endian::native != std::endian::little) {
            shown.erase(name);
            continue;
        }
        const auto example = shown.find(name);
        ASSERT_NE(example, shown.end()) << name << " is not on the page";
        EXPECT_EQ(hex(example->second.data(), example->second.size()),
                  hex(bytes.data(), bytes.size()))
            << name;
        shown.erase(example);
    }
    EXPECT_TRUE(shown.empty()) << "nothing checks " << shown.begin()->first;
}

// ---- Tables ------------------------------------------------------------------

using Row = std::vector<std::string>;

/// The cells of a table's line, without blanks around them.
Row cells_of(const std::string &line) {
    Row cells;
    std::istringstream in(line.substr(1));
    for (std::string cell; std::getline(in, cell, '|');) {
        const size_t begin = cell.find_first_not_of(' ');
        const size_t end = cell.find_last_not_of(' ');
        cells.push_back(begin == std::string::npos ? "" : cell.substr(begin, end - begin + 1));
    }
    return cells;
}

std::string without_ticks(std::string cell) {
    cell.erase(std::remove(cell.begin(), cell.end(), '`'), cell.end());
    return cell;
}

/// The texts in backticks of a cell.
std::vector<std::string> ticked(const std::string &cell) {
    static const std::regex word("`([^`]*)`");
    std::vector<std::string> words;
    for (std::sregex_iterator at(cell.begin(), cell.end(), word), end; at != end; ++at) {
        words.push_back((*at)[1]);
    }
    return words;
}

/// The rows of the first table behind a heading, or whose first line is `heading`.
std::vector<Row> table_behind(const std::string &heading) {
    std::vector<Row> rows;
    auto line = std::find(page().begin(), page().end(), heading);
    EXPECT_NE(line, page().end()) << heading;
    while (line != page().end() && !line->starts_with("|")) {
        ++line;
    }
    for (; line != page().end() && line->starts_with("|"); ++line) {
        rows.push_back(cells_of(*line));
    }
    EXPECT_GT(rows.size(), 2u) << heading;
    rows.erase(rows.begin(), rows.begin() + 2); // names of columns, dashes
    return rows;
}

struct Kind {
    const char *on_page;
    const char *in_code;
};
constexpr Kind kKinds[] = {
    {"number", "jvNUMBER"},   {"digits", "jvSTRING"}, {"string", "jvSTRING"}, {"word", "jvSTRING"},
    {"boolean", "jvBOOLEAN"}, {"object", "jvOBJECT"}, {"array", "jvARRAY"},
};

std::string code_of_kind(const std::string &kind) {
    for (const Kind &row : kKinds) {
        if (kind == row.on_page) {
            return row.in_code;
        }
    }
    return "no kind: " + kind;
}

/// Name and kind of each member, as the catalog reader's table has them.
std::vector<std::string> members_in_code(const std::string &items) {
    static const std::string source = file_text("source/base/schema_load.cpp");
    const size_t begin = source.find("SCHLOAD_ELEM_ITEM " + items + "[] = {");
    EXPECT_NE(begin, std::string::npos) << items;
    const std::string table = source.substr(begin, source.find("};", begin) - begin);
    static const std::regex row("\\{\"(\\w+)\", (jv\\w+),");
    std::vector<std::string> members;
    for (std::sregex_iterator at(table.begin(), table.end(), row), end; at != end; ++at) {
        members.push_back((*at)[1].str() + " " + (*at)[2].str());
    }
    return members;
}

TEST(FormatsPage, MembersAreThoseOfTheCatalogReader) {
    const std::pair<const char *, const char *> objects[] = {
        {"### Database", "database_items"}, {"### Drawer", "drawer_items"},
        {"### Domain", "domain_items"},     {"### Type", "type_items"},
        {"### Table", "table_items"},       {"### Column", "column_items"},
        {"### Key", "key_items"},           {"### Key column", "key_col_items"},
        {"### Reference", "ref_items"},     {"### Sort column", "sort_col_items"},
    };
    for (const auto &[heading, items] : objects) {
        std::vector<std::string> shown;
        for (const Row &row : table_behind(heading)) {
            shown.push_back(without_ticks(row[0]) + " " + code_of_kind(row[1]));
        }
        EXPECT_EQ(shown, members_in_code(items)) << heading;
    }
}

template <class Value, size_t kCount>
std::vector<std::string> words_of(const oak::schema::SCHEMA_ITEM<Value> (&items)[kCount]) {
    std::vector<std::string> words;
    for (const auto &item : items) {
        if (words.empty() || words.back() != item.name) {
            words.emplace_back(item.name);
        }
    }
    return words;
}

TEST(FormatsPage, WordsAreThoseOfTheSchema) {
    using namespace oak::schema;
    const std::map<std::string, std::vector<std::string>> lists = {
        {"### Database encryption", words_of(encryption_items)},
        {"### Drawer type", words_of(drawer_type_items)},
        {"### Table type", words_of(table_type_items)},
        {"### Key type", words_of(key_type_items)},
        {"### Key method", words_of(key_method_items)},
        {"### Key column order", words_of(direction_items)},
        {"### Reference on_upd", words_of(ref_action_items)},
        {"### Reference on_del", words_of(ref_action_items)},
        {"### Sort column order", words_of(direction_items)},
    };
    for (const auto &[place, words] : lists) {
        const size_t blank = place.rfind(' ');
        bool seen = false;
        for (const Row &row : table_behind(place.substr(0, blank))) {
            if (without_ticks(row[0]) == place.substr(blank + 1)) {
                EXPECT_EQ(ticked(row[2]), words) << place;
                seen = true;
            }
        }
        EXPECT_TRUE(seen) << place;
    }
}

/// What a cell of the types' table says of a column of 3 elements or of length 9.
uint32_t bytes_of(const std::string &cell) {
    if (cell.starts_with("length")) {
        return cell == "length" ? 9 : 9 + static_cast<uint32_t>(std::stoul(cell.substr(8)));
    }
    if (cell == "none") {
        return 0;
    }
    const auto number = static_cast<uint32_t>(std::stoul(cell));
    return cell.find("each") != std::string::npos ? 3 * number : number;
}

TEST(FormatsPage, TypesHaveTheirLengthsAndAlignments) {
    const std::vector<Row> rows = table_behind("## Types");
    std::vector<std::string> words;
    for (const Row &row : rows) {
        const std::string word = without_ticks(row[0]);
        words.push_back(word);
        SCOPED_TRACE(word);
        std::string more;
        if (row[1].find("each") != std::string::npos) {
            more = R"(, "noelts": 3)";
        } else if (row[1].starts_with("length")) {
            more = R"(, "length": 9)";
        }
        const bool is_lob = row[1] == "none";
        const Catalog catalog(one_table(
            R"({"colid": 0, "name": "a", "type": {"data_type": "int8"}},
               {"colid": 1, "name": "b", )" +
                std::string(is_lob ? R"("dwrid": 6, )" : "") + R"("type": {"data_type": ")" + word +
                "\"" + more + "}}",
            2, "", R"(,{"dwrid": 6, "tabid": "1", "srcid": 1, "type": "blob"})", 7));
        const SCH_COL_INFO ci = sch_get_col_by_index(catalog.table("t"), 1);
        EXPECT_EQ(sch_col_byte_len(ci), bytes_of(row[1]));
        if (!is_lob) {
            EXPECT_EQ(sch_col_offset(ci), std::stoul(row[2])); // behind one byte
        }
    }
    EXPECT_EQ(words, words_of(oak::schema::data_type_items));
}

TEST(FormatsPage, LzmaStatesAreThoseOfTheCoder) {
    const std::string source = file_text("source/base/lzma.cpp");
    const std::pair<const char *, const char *> tables[] = {
        {"After a literal", "LIT"},
        {"After a match", "MATCH"},
        {"After a long repeat", "LONGREP"},
        {"After a short repeat", "SHORTREP"},
    };
    for (const auto &[name, suffix] : tables) {
        const std::string start = std::string("lzma_next_state_") + suffix + "[kStates] = {";
        const size_t begin = source.find(start);
        ASSERT_NE(begin, std::string::npos) << name;
        const size_t values = begin + start.size();
        const std::string in_code = source.substr(values, source.find('}', values) - values);
        std::string shown;
        for (const std::string &line : page()) {
            if (line.starts_with(std::string("| ") + name)) {
                const Row cells = cells_of(line);
                for (size_t i = 1; i < cells.size(); ++i) {
                    shown += (i > 1 ? ", " : "") + cells[i];
                }
            }
        }
        EXPECT_EQ(shown, in_code) << name;
    }
}

TEST(FormatsPage, HashNumbersAreMadeAsItSays) {
    uint64_t state = 0x6F616B6261736531;
    std::vector<uint64_t> table;
    for (int i = 0; i < 2048; ++i) {
        state += 0x9E3779B97F4A7C15;
        uint64_t z = state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        table.push_back(z ^ (z >> 31));
    }
    for (const Row &row : table_behind("## The byte hash")) {
        table[std::stoul(row[0]) * 8 + std::stoul(row[1])] = std::stoull(row[2], nullptr, 16);
    }
    for (size_t i = 0; i < table.size(); ++i) {
        ASSERT_EQ(table[i], hashNumbers[i / 8][i % 8]) << i;
    }
}

TEST(FormatsPage, GivesTheAllowanceForCapacities) {
    // 1048576 entries, and 16 for each byte of the text.
    const auto load = [](const std::string &text) {
        SCH_INFO schema = nullptr;
        const OAK_RETCODE status =
            sch_read_database_schema(&schema, nullptr, text.c_str(), OAK_FALSE);
        sch_destroy(schema);
        return status;
    };
    std::string text = R"({"database": {"maxtabs": 18, "nexttab": 18, "tables": [)";
    for (int i = 1; i <= 16; ++i) {
        text += (i > 1 ? ", " : "") + std::string("{\"tabid\": ") + std::to_string(i) +
                ", \"maxcols\": 65535}";
    }
    const auto with_last = [&text](size_t columns) {
        return text + ", {\"tabid\": 17, \"maxcols\": " + std::to_string(columns) + "}]}}";
    };
    const size_t length = with_last(9000).size();
    const size_t left = (1u << 20) + 16 * length - 16 * 65535 - 18;
    ASSERT_EQ(with_last(left).size(), length);
    EXPECT_EQ(load(with_last(left)), sOKAY);
    EXPECT_EQ(load(with_last(left + 1)), eBADCAT);
}

} // namespace
