// Values written and read on the spot (column_stream_internal.h) against the
// types' own operations: the same rows and streams go through a buffer, where
// values are handled in place, and through callbacks that only pass bytes on,
// behind which nothing is. Bytes, statuses and positions agree, for good values,
// odd ones and damaged streams.
#include <cstring>
#include <string>

#include "bcd.h"
#include "catalog.h"
#include "column_stream_internal.h"
#include "rich_catalog.h"
#include "row_bench.h"

namespace {

using oaktest::Bytes;
using oaktest::Random;
using oaktest::RowBench;

// The buffer's functions under another name.
OAK_RETCODE pass_byte_out(OAK_OUTPUT_CTX ctx, uint32_t byte) {
    return b_buffEmitByte(ctx, byte);
}
OAK_RETCODE pass_byte_in(OAK_INPUT_CTX ctx, uint32_t *byte) {
    return b_buffInputByte(ctx, byte);
}

// ---- Rows ---------------------------------------------------------------------

template <class Number>
void store(uint8_t *place, Number number) {
    std::memcpy(place, &number, sizeof number);
}

// A number of any magnitude: all bits of some width, now and then at a power of two.
uint64_t any_number(Random *random) {
    const uint64_t width = random->below(65);
    const uint64_t bits = width == 0 ? 0 : random->next() >> (64 - width);
    switch (random->below(4)) {
        case 0:
            return width == 64 ? UINT64_MAX : (uint64_t{1} << width) - 1;
        case 1:
            return 0 - bits;
        default:
            return bits;
    }
}

// A decimal of up to the column's digits; a third of them are not as arithmetic
// leaves them: zeros in front, a carry, dirt behind, too many digits, no sign.
void store_decimal(uint8_t *place, Random *random) {
    OAK_BCD_T bcd{};
    bcd.prec = static_cast<uint8_t>(random->below(8));
    bcd.exp = static_cast<int8_t>(bcd.prec != 0 ? random->below(6) : 0);
    bcd.sign = random->below(2) != 0 || bcd.prec == 0 ? 1 : -1;
    for (int i = 1; i <= bcd.prec; ++i) {
        bcd.data[i] = static_cast<uint8_t>(random->below(10));
    }
    if (bcd.prec != 0 && bcd.data[1] == 0) {
        bcd.data[1] = 7;
    }
    switch (random->below(20)) {
        case 0:
            bcd.data[1] = 0;
            break;
        case 1:
            bcd.data[0] = 1;
            break;
        case 2:
            bcd.data[bcd.prec + 1] = 5;
            break;
        case 3:
            bcd.prec = 33;
            break;
        case 4:
            bcd.sign = 0;
            break;
        case 5:
            bcd.exp = static_cast<int8_t>(random->below(90)) - 45;
            break;
        case 6:
            bcd.data[1] = 10;
            break;
        default:
            break;
    }
    store(place, bcd);
}

void store_text(uint8_t *place, size_t room, Random *random) {
    const size_t length = random->below(room + (random->below(10) == 0 ? 1 : 0));
    for (size_t i = 0; i < length; ++i) {
        place[i] = static_cast<uint8_t>(1 + random->below(255));
    }
    if (length < room) {
        place[length] = 0;
    }
}

void store_any(const SCH_ROW_COLUMN &column, uint8_t *place, Random *random) {
    switch (schema_view::type_of(column.ci)->type) {
        case OAK_BCD:
            return store_decimal(place, random);
        case OAK_CHAR:
        case OAK_VARCHAR:
        case OAK_WCHAR_UTF8:
        case OAK_WVARCHAR_UTF8:
            return store_text(place, column.byte_len, random);
        case OAK_VARBINARY:
            return store(place, static_cast<uint16_t>(random->below(column.byte_len - 1u)));
        default:
            for (size_t i = 0; i < column.byte_len; i += sizeof(uint32_t)) {
                const auto number = static_cast<uint32_t>(any_number(random));
                std::memcpy(place + i, &number, std::min(sizeof number, column.byte_len - i));
            }
            if (column.byte_len == sizeof(uint64_t)) {
                store(place, any_number(random));
            }
    }
}

void fill(RowBench *row, Random *random) {
    row->clear();
    for (OAK_COL_INDEX position = 0; position < row->ti_->num_row_columns; ++position) {
        const SCH_ROW_COLUMN &column = row->ti_->row_columns[position];
        if (random->below(6) == 0) {
            continue;
        }
        if (column.form != StreamForm::large_object) {
            store_any(column, row->row_.data.b.col_data + column.ptr, random);
        }
        row->mark(position, column.form == StreamForm::large_object ? vsNOVAL : vsOKAY);
    }
}

// ---- The two ways ---------------------------------------------------------------

struct Packed {
    OAK_RETCODE status;
    std::string stream;
    bool operator==(const Packed &) const = default;
};

// Packs the row through a buffer with so many bytes to begin with.
Packed pack(const RowBench &row, OAK_OUTPUT_FCN emit, size_t room) {
    oaktest::Tag tag;
    OAK_BUFFER buffer{};
    b_buffInit(&buffer, tag);
    if (room != 0) {
        EXPECT_EQ(b_buffIncreaseSize(&buffer, room), sOKAY);
    }
    B_ENCODER encoder = nullptr;
    EXPECT_EQ(b_encoderCreate(emit, b_buffEmitBytesBulk, &buffer, tag, &encoder), sOKAY);
    Packed packed{row_pack_compact(&row.row_, encoder), {}};
    packed.stream = oaktest::hex(buffer.data, buffer.len);
    b_encoderDestroy(encoder);
    b_buffTerm(&buffer);
    return packed;
}

struct Unpacked {
    OAK_RETCODE status;
    size_t pos;
    std::string row;
    bool operator==(const Unpacked &) const = default;
};

Unpacked unpack(SCH_TBL_INFO_C ti, const Bytes &stream, OAK_INPUT_FCN input) {
    oaktest::Tag tag;
    OAK_BUFFER buffer{};
    b_buffInit(&buffer, tag);
    b_buffSetStatic(&buffer, stream.data(), stream.size());
    B_DECODER decoder = nullptr;
    EXPECT_EQ(b_decoderCreate(input, b_buffInputBytesBulk, &buffer, tag, &decoder), sOKAY);
    OAK_ROW row{};
    Unpacked unpacked{row_unpack_compact(&row, decoder, 77, ti, tag, nullptr, nullptr), 0, {}};
    unpacked.pos = buffer.pos;
    if (unpacked.status == sOKAY) {
        unpacked.row = oaktest::hex(row.row_data, row.data_len);
    }
    row_free(&row);
    b_decoderDestroy(decoder);
    return unpacked;
}

class ColumnStream : public testing::TestWithParam<const char *> {
  protected:
    oaktest::Catalog catalog_{oaktest::kRichCatalog};
    SCH_TBL_INFO_C ti_ = catalog_.table(GetParam());
    Random random_;
};

TEST_P(ColumnStream, WritesWhatTheTypesWrite) {
    RowBench row(ti_);
    size_t packed = 0;
    for (int round = 0; round < 3000; ++round) {
        fill(&row, &random_);
        const Packed expected = pack(row, pass_byte_out, 0);
        ASSERT_EQ(pack(row, b_buffEmitByte, 4096), expected) << "in place";
        ASSERT_EQ(pack(row, b_buffEmitByte, random_.below(200)), expected) << "with little room";
        packed += expected.status == sOKAY;
    }
    EXPECT_GT(packed, 1000u); // most rows are good ones
}

TEST_P(ColumnStream, ReadsWhatTheTypesRead) {
    RowBench row(ti_);
    size_t read = 0;
    for (int round = 0; round < 3000; ++round) {
        fill(&row, &random_);
        const Packed packed = pack(row, b_buffEmitByte, 4096);
        if (packed.status != sOKAY) {
            continue;
        }
        const Bytes stream = oaktest::unhex(packed.stream);
        const Unpacked expected = unpack(ti_, stream, pass_byte_in);
        ASSERT_EQ(expected.status, sOKAY);
        ASSERT_EQ(unpack(ti_, stream, b_buffInputByte), expected);
        ++read;
    }
    EXPECT_GT(read, 1000u);
}

TEST_P(ColumnStream, AnswersDamageAsTheTypesDo) {
    RowBench row(ti_);
    size_t refused = 0;
    for (int round = 0; round < 3000; ++round) {
        fill(&row, &random_);
        const Packed packed = pack(row, b_buffEmitByte, 4096);
        Bytes stream = oaktest::unhex(packed.stream);
        for (uint64_t hits = random_.below(4); hits > 0 && !stream.empty(); --hits) {
            stream[random_.below(stream.size())] = static_cast<uint8_t>(random_.next());
        }
        stream.resize(stream.size() - random_.below(stream.size() / 4 + 1));
        const Unpacked expected = unpack(ti_, stream, pass_byte_in);
        ASSERT_EQ(unpack(ti_, stream, b_buffInputByte), expected);
        refused += expected.status != sOKAY;
    }
    EXPECT_GT(refused, 1000u);
}

INSTANTIATE_TEST_SUITE_P(Tables, ColumnStream,
                         testing::Values("every", "linked", "ints", "documents", "dropped"),
                         [](const auto &table) { return std::string(table.param); });

} // namespace
