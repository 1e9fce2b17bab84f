// A row in buffer form with an encoder and a decoder around it, for tests that
// write and read rows.
#ifndef ROW_BENCH_H
#define ROW_BENCH_H

#include <cstring>
#include <string>
#include <vector>

#include "row_compact.h"
#include "row_expanded.h"
#include "row_internal.h"
#include "test_support.h"

namespace oaktest {

using Bytes = std::vector<uint8_t>;

/// A row of a table in buffer form, and the encoder and decoder around it.
class RowBench {
  public:
    explicit RowBench(SCH_TBL_INFO_C ti, DB_INSTANCE *dbi = nullptr, OAK_ERR error = nullptr)
        : ti_(ti), dbi_(dbi), error_(error) {
        b_buffInit(&buffer_, tag_);
        EXPECT_EQ(b_encoderCreate(b_buffEmitByte, b_buffEmitBytesBulk, &buffer_, tag_, &encoder_),
                  sOKAY);
        EXPECT_EQ(b_decoderCreate(b_buffInputByte, b_buffInputBytesBulk, &buffer_, tag_, &decoder_),
                  sOKAY);
        clear();
    }
    ~RowBench() {
        row_free(&row_);
        b_encoderDestroy(encoder_);
        b_decoderDestroy(decoder_);
        b_buffTerm(&buffer_);
    }

    /// An empty row: every nullable column NULL.
    void clear() {
        row_free(&row_);
        row_init(&row_, OAK_ROW_FORMAT_BUFFER, 77, ti_, tag_, error_, dbi_);
        ASSERT_EQ(row_allocate(&row_), sOKAY);
        row_point(&row_);
        for (OAK_COL_INDEX p = 0; p < ti_->num_cols; ++p) {
            const SCH_COL_INFO_C ci = schema_view::live_column(ti_, p);
            if (ci != nullptr && ci->has_value_off != 0) {
                row_.data.b.col_status[p] = vsNULL;
            }
        }
    }
    template <class Value>
    void set(OAK_COL_INDEX position, Value value) {
        const SCH_COL_INFO_C ci = schema_view::live_column(ti_, position);
        std::memcpy(row_.data.b.col_data + ci->ptr, &value, sizeof value);
        mark(position, vsOKAY);
    }
    void set_text(OAK_COL_INDEX position, const char *text) {
        const SCH_COL_INFO_C ci = schema_view::live_column(ti_, position);
        std::strcpy(reinterpret_cast<char *>(row_.data.b.col_data + ci->ptr), text);
        mark(position, vsOKAY);
    }
    void mark(OAK_COL_INDEX position, VAL_STATUS status) {
        const SCH_COL_INFO_C ci = schema_view::live_column(ti_, position);
        row_.data.b.col_status[position] = status;
        if (ci->has_value_off != 0) {
            row_.data.b.col_data[ci->has_value_off] = status == vsNULL ? 0 : 1;
        }
    }
    template <class Value>
    Value get(OAK_COL_INDEX position) const {
        Value value;
        std::memcpy(&value, row_.data.b.col_data + schema_view::live_column(ti_, position)->ptr,
                    sizeof value);
        return value;
    }
    VAL_STATUS status(OAK_COL_INDEX position) const { return row_.data.b.col_status[position]; }
    uint8_t has_value(OAK_COL_INDEX position) const {
        return row_.data.b.col_data[schema_view::live_column(ti_, position)->has_value_off];
    }

    std::string compact() {
        b_encoderReset(encoder_);
        EXPECT_EQ(row_pack_compact(&row_, encoder_), sOKAY);
        return hex(buffer_.data, buffer_.len);
    }
    std::string expanded() {
        b_encoderReset(encoder_);
        EXPECT_EQ(row_pack_expanded(&row_, encoder_), sOKAY);
        return hex(buffer_.data, buffer_.len);
    }
    void load(const Bytes &bytes) {
        b_buffReset(&buffer_);
        ASSERT_EQ(b_buffEmitBytesBulk(&buffer_, bytes.data(), bytes.size()), sOKAY);
    }
    OAK_RETCODE unpack_compact(const std::string &stream, OAK_ROWID_T rowid = 77) {
        load(unhex(stream));
        row_free(&row_);
        return row_unpack_compact(&row_, decoder_, rowid, ti_, tag_, error_, dbi_);
    }
    OAK_RETCODE unpack_expanded(const Bytes &image) {
        load(image);
        row_free(&row_);
        return row_unpack_expanded(&row_, decoder_, 77, ti_, tag_, error_, dbi_);
    }

    Tag tag_;
    SCH_TBL_INFO_C ti_;
    DB_INSTANCE *dbi_;
    OAK_ERR error_;
    OAK_ROW row_{};
    OAK_BUFFER buffer_{};
    B_ENCODER encoder_ = nullptr;
    B_DECODER decoder_ = nullptr;
};

} // namespace oaktest

#endif
