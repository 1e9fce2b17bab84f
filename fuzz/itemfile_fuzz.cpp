// Any bytes as an item file: items must follow each other without a gap, the size
// of the reader's window must make no difference, and every object must come
// apart as a row, or be refused, in both views.
#include <vector>

#include "item_file.h"
#include "row_dump.h"
#include "row_reader.h"
#include "schema_load.h"

namespace {

constexpr char kCatalog[] = R"({"database": {
  "maxdrawers": 7, "nodrawers": 7, "nextdrawer": 7, "maxtabs": 2, "notabs": 2, "nexttab": 2,
  "drawers": [{"dwrid": 5, "tabid": "1", "srcid": 1, "type": "table"},
              {"dwrid": 6, "tabid": "1", "srcid": 6, "type": "blob"}],
  "tables": [{"tabid": 1, "dwrid": 5, "type": "standard", "name": "t",
    "nocols": 9, "nextcol": 9, "maxcols": 9, "nokeys": 1, "nextkey": 1, "maxkeys": 1,
    "columns": [
      {"colid": 0, "name": "a", "type": {"data_type": "int32"}},
      {"colid": 1, "name": "b", "type": {"data_type": "varchar", "length": 9}},
      {"colid": 2, "name": "c", "type": {"data_type": "decimal", "length": 9, "scale": 2}},
      {"colid": 3, "name": "d", "type": {"data_type": "timestamptz"}},
      {"colid": 4, "name": "e", "type": {"data_type": "varbinary", "length": 5}},
      {"colid": 5, "name": "f", "type": {"data_type": "double", "noelts": 2}},
      {"colid": 6, "name": "g", "dwrid": 6, "type": {"data_type": "blob"}},
      {"colid": 7, "name": "h", "type": {"data_type": "bool"}},
      {"colid": 8, "name": "i", "type": {"data_type": "rowid"}}],
    "keys": [{"keyid": 0, "dwrid": -1, "name": "k", "type": "nonunique", "method": "avl",
      "nocols": 1, "cols": [{"colid": "0", "order": "asc"}]}]}]}})";

SCH_TBL_INFO_C table() {
    static SCH_INFO schema = nullptr;
    if (schema == nullptr &&
        sch_read_database_schema(&schema, nullptr, kCatalog, OAK_FALSE) != sOKAY) {
        __builtin_trap();
    }
    return sch_find_table_by_ndx(schema, 1);
}

struct Seen {
    uint64_t place, end, row;
    bool sound;
    size_t object;
    bool operator==(const Seen &) const = default;
};

void take_apart(std::span<const uint8_t> object) {
    tools::PackedObject packed;
    if (packed.read(object) != sOKAY) {
        return;
    }
    size_t at = 0;
    const tools::Complaint damage =
        tools::dump_row(packed.packed(), packed.format(), table(), tools::kItemAlignment - 1,
                        [&](const tools::RowPart &part) {
                            if (part.from != at || part.to < part.from) {
                                __builtin_trap();
                            }
                            at = part.to;
                        });
    if (damage.empty() && at != packed.packed()->len) {
        __builtin_trap();
    }
}

void read_row(std::span<const uint8_t> object) {
    tools::RowReader reader(table());
    if (reader.read(object, 1) != sOKAY) {
        return;
    }
    std::string text;
    for (const tools::Column &column : reader.columns()) {
        tools::RowReader::State state = tools::RowReader::State::null;
        OAK_VALUE value;
        if (reader.column(column, &state, &value) == sOKAY &&
            state == tools::RowReader::State::value) {
            OAK_IGNORE_STATUS(tools::append_value_text(&text, column, value), "any will do");
        }
    }
}

std::vector<Seen> read_file(std::span<const uint8_t> bytes, size_t room, bool look_inside) {
    tools::ItemReader reader(tools::item_source(bytes), room);
    std::vector<Seen> seen;
    const tools::Complaint header = reader.read_header();
    uint64_t at = tools::kFileHeaderSize;
    for (tools::Item item; reader.next(&item);) {
        if (item.place != at || item.end <= item.place || item.end > bytes.size()) {
            __builtin_trap();
        }
        at = item.end;
        seen.push_back({item.place, item.end, item.row, item.damage.empty(), item.object.size()});
        if (look_inside && !item.object.empty()) {
            take_apart(item.object);
            read_row(item.object);
        }
    }
    return seen;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::span<const uint8_t> bytes(data, size);
    if (read_file(bytes, 16, true) != read_file(bytes, 1 << 16, false)) {
        __builtin_trap();
    }
    return 0;
}
