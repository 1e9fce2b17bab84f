// The compact row, into and from an OAK_BUFFER, against protobuf messages of the
// same eight columns.
//
// Both sides work through the same 256 seeded rows. The encoder, the decoder and
// their buffer are reused, as are the peer's messages and its text; ours takes
// and frees the block of every row that it reads, the peer keeps its own.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bcd.h"
#include "row.pb.h"
#include "row_compact.h"
#include "schema.h"
#include "schema_layout.h"
#include "schema_load.h"
#include "schema_structs.h"

namespace {

constexpr size_t kRows = 256; // a power of two

const char kCatalog[] = R"({"database": {"catver": 1, "dbver": 1, "name": "bench",
    "maxdrawers": 7, "nodrawers": 7, "nextdrawer": 7, "maxtabs": 2, "notabs": 2, "nexttab": 2,
    "drawers": [{"dwrid": 5, "tabid": "1", "srcid": 1, "type": "table"},
                {"dwrid": 6, "tabid": "1", "srcid": 0, "type": "btree"}],
    "tables": [{"tabid": 1, "dwrid": 5, "type": "standard", "name": "item",
        "nocols": 8, "nextcol": 8, "maxcols": 8, "nokeys": 1, "nextkey": 1, "maxkeys": 1,
        "columns": [
            {"colid": 0, "name": "id", "keyid": 0, "not_null": "", "type": {"data_type": "int32"}},
            {"colid": 1, "name": "account", "type": {"data_type": "int64"}},
            {"colid": 2, "name": "name", "type": {"data_type": "varchar", "length": 21}},
            {"colid": 3, "name": "street", "type": {"data_type": "varchar", "length": 41}},
            {"colid": 4, "name": "price",
             "type": {"data_type": "decimal", "length": 12, "scale": 2}},
            {"colid": 5, "name": "day", "type": {"data_type": "date"}},
            {"colid": 6, "name": "weight", "type": {"data_type": "double"}},
            {"colid": 7, "name": "active", "type": {"data_type": "bool"}}],
        "keys": [{"keyid": 0, "dwrid": 6, "name": "pk", "type": "primary", "method": "btree",
                  "nocols": 1, "cols": [{"colid": "0", "order": "asc"}]}]}]}})";

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

uint64_t next_random(uint64_t *state) {
    uint64_t z = (*state += 0x9e3779b97f4a7c15u);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return z ^ (z >> 31);
}

// ---- The rows -----------------------------------------------------------------

struct Item {
    int32_t id;
    int64_t account;
    std::string name;
    std::string street;
    std::string price;
    OAK_PACKED_DATE_T day;
    double weight;
    bool active;
};

// A word of `least` to `most` letters.
std::string random_word(size_t least, size_t most, uint64_t *state) {
    std::string word(least + next_random(state) % (most - least + 1), ' ');
    for (char &letter : word) {
        letter = static_cast<char>('a' + next_random(state) % 26);
    }
    return word;
}

std::string random_price(uint64_t *state) {
    char text[24];
    std::snprintf(text, sizeof text, "%u.%02u", static_cast<unsigned>(next_random(state) % 100000),
                  static_cast<unsigned>(next_random(state) % 100));
    return text;
}

const std::vector<Item> &items() {
    static const std::vector<Item> all = [] {
        std::vector<Item> result;
        uint64_t state = 42;
        for (size_t i = 0; i < kRows; ++i) {
            result.push_back({static_cast<int32_t>(1000 + i),
                              static_cast<int64_t>(next_random(&state) % 10000000000),
                              random_word(8, 20, &state), random_word(16, 40, &state),
                              random_price(&state),
                              static_cast<OAK_PACKED_DATE_T>(730000 + next_random(&state) % 9000),
                              static_cast<double>(next_random(&state) % 1000000) / 1000,
                              next_random(&state) % 2 != 0});
        }
        return result;
    }();
    return all;
}

// ---- Ours -----------------------------------------------------------------------

// The table, rows of it in memory as an upper layer fills them, and the encoder
// and the decoder around one buffer.
class OakRows {
  public:
    OakRows() : tag_(OSL_CREATE_TAG()), rows_(kRows) {
        require(sch_read_database_schema(&schema_, nullptr, kCatalog, OAK_FALSE) == sOKAY);
        table_ = sch_table(schema_, 1);
        sch_tbl_get_buffer_info(table_, &layout_);
        for (size_t i = 0; i < kRows; ++i) {
            fill(&rows_[i], items()[i], i);
        }
        b_buffInit(&buffer_, tag_);
        require(b_encoderCreate(b_buffEmitByte, b_buffEmitBytesBulk, &buffer_, tag_, &encoder_) ==
                sOKAY);
        require(b_decoderCreate(b_buffInputByte, b_buffInputBytesBulk, &buffer_, tag_, &decoder_) ==
                sOKAY);
    }
    ~OakRows() {
        OSL_FREE_TAG(tag_);
        sch_destroy(schema_);
    }
    OakRows(const OakRows &) = delete;
    OakRows &operator=(const OakRows &) = delete;

    void pack(size_t i) {
        b_encoderReset(encoder_);
        require(row_pack_compact(&rows_[i], encoder_) == sOKAY);
    }
    void unpack(const std::string &stream, size_t i) {
        b_buffSetStatic(&buffer_, stream.data(), stream.size());
        OAK_ROW row;
        require(row_unpack_compact(&row, decoder_, i, table_, tag_, nullptr, nullptr) == sOKAY);
        benchmark::DoNotOptimize(row.data.b.col_data);
        row_free(&row);
    }
    std::string stream(size_t i) {
        pack(i);
        return {reinterpret_cast<const char *>(buffer_.data), buffer_.len};
    }

  private:
    template <class Value>
    void set(OAK_ROW *row, OAK_COL_INDEX ndx, const Value *value, size_t size) {
        const SCH_COL_INFO column = sch_get_col_by_index(table_, ndx);
        std::memcpy(row->data.b.col_data + sch_col_offset(column), value, size);
        row->data.b.col_status[ndx] = vsOKAY;
        if (sch_col_has_value_offset(column) != 0) {
            row->data.b.col_data[sch_col_has_value_offset(column)] = 1;
        }
    }
    void fill(OAK_ROW *row, const Item &item, size_t rowid) {
        *row = {};
        row->format = OAK_ROW_FORMAT_BUFFER;
        row->rowid = rowid;
        row->tag = tag_;
        row->ti = table_;
        row->data_len = layout_.row_buffer_size;
        row->row_data = static_cast<uint8_t *>(OSL_GET_ZERO(row->data_len, tag_));
        row->data.b.col_data = row->row_data + layout_.col_data_offset;
        row->data.b.col_status =
            reinterpret_cast<VAL_STATUS *>(row->row_data + layout_.col_status_offset);
        OAK_BCD_T price;
        require(oak_bcdFromString(item.price.c_str(), &price) == sOKAY);
        const OAK_BOOL_T active = item.active ? OAK_TRUE : OAK_FALSE;
        set(row, 0, &item.id, sizeof item.id);
        set(row, 1, &item.account, sizeof item.account);
        set(row, 2, item.name.c_str(), item.name.size() + 1);
        set(row, 3, item.street.c_str(), item.street.size() + 1);
        set(row, 4, &price, sizeof price);
        set(row, 5, &item.day, sizeof item.day);
        set(row, 6, &item.weight, sizeof item.weight);
        set(row, 7, &active, sizeof active);
    }

    OSL_MEMTAG tag_;
    std::vector<OAK_ROW> rows_;
    SCH_INFO schema_ = nullptr;
    SCH_TBL_INFO table_ = nullptr;
    OAK_ROW_BUFFER_INFO layout_{};
    OAK_BUFFER buffer_{};
    B_ENCODER encoder_ = nullptr;
    B_DECODER decoder_ = nullptr;
};

// ---- The peer --------------------------------------------------------------------

class Messages {
  public:
    Messages() : rows_(kRows) {
        for (size_t i = 0; i < kRows; ++i) {
            const Item &item = items()[i];
            bench::Row &row = rows_[i];
            row.set_id(item.id);
            row.set_account(item.account);
            row.set_name(item.name);
            row.set_street(item.street);
            row.set_price(item.price);
            row.set_day(static_cast<int32_t>(item.day));
            row.set_weight(item.weight);
            row.set_active(item.active);
        }
    }
    void pack(size_t i) {
        require(rows_[i].SerializeToString(&text_));
        benchmark::DoNotOptimize(text_.data());
    }
    void unpack(const std::string &stream, size_t) {
        require(read_.ParseFromString(stream));
        benchmark::DoNotOptimize(&read_);
    }
    std::string stream(size_t i) {
        pack(i);
        return text_;
    }

  private:
    std::vector<bench::Row> rows_;
    bench::Row read_;
    std::string text_;
};

// ---- The loops --------------------------------------------------------------------

template <class Rows>
std::vector<std::string> streams_of(Rows *rows) {
    std::vector<std::string> streams;
    for (size_t i = 0; i < kRows; ++i) {
        streams.push_back(rows->stream(i));
    }
    return streams;
}

// The mean size of a stream stands beside the times.
void report(benchmark::State &state, const std::vector<std::string> &streams) {
    size_t bytes = 0;
    for (const std::string &stream : streams) {
        bytes += stream.size();
    }
    state.counters["bytes"] = static_cast<double>(bytes) / kRows;
}

template <class Rows>
void pack(benchmark::State &state) {
    Rows rows;
    size_t i = 0;
    for (auto _ : state) {
        rows.pack(i++ % kRows);
        benchmark::ClobberMemory();
    }
    report(state, streams_of(&rows));
}

template <class Rows>
void unpack(benchmark::State &state) {
    Rows rows;
    const std::vector<std::string> streams = streams_of(&rows);
    size_t i = 0;
    for (auto _ : state) {
        rows.unpack(streams[i % kRows], i);
        ++i;
        benchmark::ClobberMemory();
    }
    report(state, streams);
}

BENCHMARK(pack<OakRows>)->Name("row/pack/ours");
BENCHMARK(pack<Messages>)->Name("row/pack/protobuf");
BENCHMARK(unpack<OakRows>)->Name("row/unpack/ours");
BENCHMARK(unpack<Messages>)->Name("row/unpack/protobuf");

} // namespace
