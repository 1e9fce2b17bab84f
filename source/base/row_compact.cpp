// The compact row, both ways. Rests on the encoder, the schema's layout and the
// types' pack and unpack functions.
//
// Writer and reader agree on every byte, with four differences by design. The
// writer takes the links of the i-th live AVL key from the row's i-th record and
// writes the key's number; the reader puts them back by the number's rank. Joins
// go by reference index on both sides, so that those of a reference whose index
// is not below the count of references are not kept. The writer leaves out rowid
// and foreign key columns, which the reader restores or marks whatever the stream
// holds. And a stream says nothing of a column that cannot be NULL and was not set:
// it reads back as vsNOVAL, not as a default.
//
// Both ways there is a tight loop over the columns whose values are handled on the
// spot (put_columns, take_columns), and around it the general way, which every
// other column takes and every failure: room that ends, damage, a stream that is
// no buffer.
#include "row_compact.h"

#include <algorithm>
#include <iterator>

#include "base_internal.h"
#include "column_stream_internal.h"
#include "oakvaluetypes.h"
#include "row_internal.h"
#include "schema_fcns.h"

namespace {

constexpr uint32_t kLargeObjectMark = 1;
constexpr OAK_HAS_VALUE_T kHasValue = 1;

// ---- Writing ----------------------------------------------------------------

// The columns of a row and where their values are.
struct RowColumns {
    explicit RowColumns(const OAK_ROW *row)
        : columns(row->ti->row_columns), num_columns(row->ti->num_row_columns),
          has_gaps(row->ti->active_ndx != nullptr), status(row->data.b.col_status),
          data(row->data.b.col_data) {}

    // True when the column goes into the stream.
    bool is_storable(uint32_t position) const {
        const SCH_ROW_COLUMN &column = columns[position];
        const bool present =
            status[position] == vsOKAY
                ? column.form <= StreamForm::large_object
                : status[position] == vsNOVAL && column.form == StreamForm::large_object;
        return present && (column.has_value_off == 0 || data[column.has_value_off] != 0);
    }

    // How many columns from a position on have consecutive indexes.
    uint32_t run_length(uint32_t position) const {
        uint32_t length = num_columns - position;
        if (has_gaps) {
            const uint32_t first = columns[position].ndx;
            length = 1;
            while (position + length < num_columns &&
                   columns[position + length].ndx == first + length) {
                ++length;
            }
        }
        return length;
    }

    // The size of the group that begins at a position: storable columns of a run of
    // `length`. The first `known` of them are known.
    uint32_t group_size(uint32_t position, uint32_t length, uint32_t known) const {
        while (known < length && is_storable(position + known)) {
            ++known;
        }
        return known;
    }

    const SCH_ROW_COLUMN *columns;
    uint32_t num_columns;
    bool has_gaps; // indexes of dropped columns lie between
    const VAL_STATUS *status;
    const uint8_t *data;
};

// Writes columns from a position on, at most `most`, as long as each has a value
// that can be written on the spot. Tells how many they were; *at moves behind them.
[[gnu::always_inline]] inline uint32_t put_columns(const RowColumns &row, uint32_t position,
                                                   uint32_t most, uint8_t **at,
                                                   const uint8_t *limit) {
    const uint8_t *data = row.data;
    const SCH_ROW_COLUMN *column = row.columns + position;
    const VAL_STATUS *status = row.status + position;
    uint8_t *place = *at;
    uint32_t count = 0;
    for (; count < most; ++count, ++column, ++status) {
        if (*status != vsOKAY || (column->has_value_off != 0 && data[column->has_value_off] == 0)) {
            break;
        }
        uint8_t *next = column_stream::put_value(place, limit, *column, data + column->ptr);
        if (next == nullptr) {
            break;
        }
        place = next;
    }
    *at = place;
    return count;
}

// A join that has an owner and whose reference was not dropped.
bool is_joined(const OAK_ROW *row, OAK_REF_INDEX ndx) {
    return row->joins[ndx].owner != 0 && row->ti->refs[ndx] != nullptr;
}

OAK_REF_INDEX count_joins(const OAK_ROW *row) {
    OAK_REF_INDEX joins = 0;
    for (OAK_REF_INDEX i = 0; i < row->ti->num_refs; ++i) {
        joins = static_cast<OAK_REF_INDEX>(joins + (is_joined(row, i) ? 1 : 0));
    }
    return joins;
}

// A row in buffer form going into the encoder. One writer stays open over all of
// it, and is closed for what only the encoder or a type can write.
class RowPacker {
  public:
    RowPacker(const OAK_ROW *row, B_ENCODER encoder)
        : row_(row), columns_(row), encoder_(encoder), writer_(encoder_buffer(encoder)) {}

    OAK_RETCODE run() {
        OAK_RETCODE status = avls();
        if (status == sOKAY) {
            status = joins();
        }
        if (status == sOKAY) {
            status = columns();
        }
        writer_.settle();
        return status;
    }

    OAK_RETCODE run_group(uint32_t position, uint32_t size) {
        const OAK_RETCODE status = group(position, size);
        writer_.settle();
        return status;
    }

  private:
    // A group of a size that is known: the size, the first index, the values.
    OAK_RETCODE group(uint32_t position, uint32_t size) {
        OAK_RETCODE status = number(size);
        if (status == sOKAY) {
            status = number(columns_.columns[position].ndx);
        }
        return status == sOKAY ? values(position, size) : status;
    }

    [[gnu::always_inline]] OAK_RETCODE number(uint64_t number) {
        if (writer_.has_room(osl::kMostVintBytes)) [[likely]] {
            writer_.at = column_stream::put(writer_.at, number);
            return sOKAY;
        }
        writer_.settle();
        const OAK_RETCODE status = encoderEncodeUintmax(encoder_, number);
        writer_.begin();
        return status;
    }

    OAK_RETCODE avl(const OAK_AVL &links, SCH_KEY_INFO_C key) {
        const uint64_t numbers[] = {key->avl_ndx, links.left, links.right, links.flags};
        OAK_RETCODE status = sOKAY;
        for (size_t i = 0; status == sOKAY && i < std::size(numbers); ++i) {
            status = number(numbers[i]);
        }
        return status;
    }

    OAK_RETCODE avls() {
        const SCH_TBL_INFO_C ti = row_->ti;
        OAK_RETCODE status = number(ti->num_avls);
        OAK_KEY_INDEX rank = 0;
        for (OAK_KEY_INDEX i = 0; status == sOKAY && rank < ti->num_avls && i < ti->next_avl; ++i) {
            if (ti->avls[i] != nullptr) {
                status = avl(row_->avls[rank++], ti->avls[i]);
            }
        }
        return status;
    }

    OAK_RETCODE joins() {
        OAK_REF_INDEX left = count_joins(row_);
        OAK_RETCODE status = number(left);
        for (OAK_REF_INDEX i = 0; status == sOKAY && left > 0; ++i) {
            if (is_joined(row_, i)) {
                status = number(i);
                status = status == sOKAY ? number(row_->joins[i].owner) : status;
                --left;
            }
        }
        return status;
    }

    OAK_RETCODE columns() {
        OAK_RETCODE status = sOKAY;
        for (uint32_t position = 0; status == sOKAY && position < columns_.num_columns;) {
            uint32_t size = 1;
            if (columns_.is_storable(position)) {
                status = next_group(position, &size);
            }
            position += size;
        }
        return status == sOKAY ? number(0) : status; // the end mark
    }

    // The group that begins at a position. Its size stands in front of it and is
    // known behind it: where it takes one byte, that byte is left open, so that the
    // columns are passed once.
    [[gnu::always_inline]] OAK_RETCODE next_group(uint32_t position, uint32_t *size) {
        const uint32_t length = columns_.run_length(position);
        if (length > osl::kVintGroupMask || !writer_.has_room(1 + osl::kMostVintBytes)) {
            *size = columns_.group_size(position, length, 0);
            return group(position, *size);
        }
        uint8_t *size_byte = writer_.at;
        writer_.at = column_stream::put(size_byte + 1, columns_.columns[position].ndx);
        const uint32_t written = put_columns(columns_, position, length, &writer_.at, writer_.end);
        *size = columns_.group_size(position, length, written);
        *size_byte = static_cast<uint8_t>(*size);
        return written == *size ? sOKAY : values(position + written, *size - written);
    }

    [[gnu::noinline]] OAK_RETCODE values(uint32_t position, uint32_t count) {
        OAK_RETCODE status = sOKAY;
        while (status == sOKAY && count != 0) {
            const uint32_t written =
                put_columns(columns_, position, count, &writer_.at, writer_.end);
            position += written;
            count -= written;
            if (count != 0) {
                status = value_by_type(position++);
                --count;
            }
        }
        return status;
    }

    OAK_RETCODE value_by_type(uint32_t position) {
        const SCH_ROW_COLUMN &column = columns_.columns[position];
        if (column.form == StreamForm::large_object) {
            return number(kLargeObjectMark);
        }
        writer_.settle();
        const OAK_RETCODE status =
            sch_col_pack_buffer_fcn(column.ci, columns_.data + column.ptr, encoder_);
        writer_.begin();
        return status;
    }

    const OAK_ROW *row_;
    const RowColumns columns_;
    B_ENCODER encoder_;
    StreamWriter writer_;
};

// Appends a whole buffer to another, whatever its position.
OAK_RETCODE copy_whole(const OAK_BUFFER *source, OAK_BUFFER *destination) {
    OAK_BUFFER whole = *source; // a view of it, read from 0
    whole.pos = 0;
    return b_buffCopyPartial(&whole, whole.len, destination);
}

OAK_RETCODE pack_compact_form(const OAK_ROW *row, B_ENCODER encoder) {
    if (row->data.c.buffer == nullptr) {
        return eINVNULLARG; // the row was freed
    }
    auto *buffer = static_cast<OAK_BUFFER *>(encoder->ctx);
    const OAK_RETCODE status = b_buffSeek(buffer, 0);
    return status == sOKAY ? copy_whole(row->data.c.buffer, buffer) : status;
}

// ---- Reading ----------------------------------------------------------------

// The record of a live AVL key: its rank among the live numbers. Null for a
// number without a key, whose links are thrown away.
OAK_AVL *avl_record(const OAK_ROW *row, OAK_KEY_INDEX number) {
    if (schema_view::avl_key(row->ti, number) == nullptr) {
        return nullptr;
    }
    OAK_KEY_INDEX rank = 0;
    for (OAK_KEY_INDEX i = 0; i < number; ++i) {
        rank = static_cast<OAK_KEY_INDEX>(rank +
                                          (schema_view::avl_key(row->ti, i) != nullptr ? 1 : 0));
    }
    return rank < row->ti->num_avls ? &row->avls[rank] : nullptr;
}

OAK_RETCODE skip_large_object_mark(B_DECODER decoder) {
    uintmax_t mark = 0;
    return decoderDecodeUintmax(decoder, &mark);
}

// Reads the value of a column that was dropped since the row was written.
OAK_RETCODE skip_value(const OAK_ROW *row, SCH_COL_INFO_C ci, B_DECODER decoder) {
    if (schema_view::is_large_object(ci)) {
        return skip_large_object_mark(decoder);
    }
    const SCH_TYPE_INFO_C type = schema_view::type_of(ci);
    if (type->type_info == nullptr) {
        return OAK_DAMAGED(eDBCORRUPTED); // it never had a type, so no value of it was stored
    }
    OAK_VALUE scratch{};
    const OAK_RETCODE status = type->type_info->unpack_fcn(type, &scratch, row->tag, decoder);
    if (status == sOKAY) {
        scratch.status = vsOKAY;
        sch_col_free_fcn(ci, &scratch, row->tag);
    }
    return status;
}

// Reads values into columns from a position on, at most `most`, as long as each has
// the next index and can be read on the spot. Tells how many they were; *at moves
// behind them.
uint32_t take_columns(OAK_ROW *row, uint32_t position, uint32_t most, const uint8_t **at,
                      const uint8_t *limit) {
    uint8_t *data = row->data.b.col_data;
    const SCH_ROW_COLUMN *column = row->ti->row_columns + position;
    VAL_STATUS *status = row->data.b.col_status + position;
    const uint32_t first_ndx = column->ndx;
    const uint8_t *place = *at;
    uint32_t count = 0;
    for (; count < most && column->ndx == first_ndx + count; ++count, ++column, ++status) {
        const uint8_t *next = column_stream::take_value(place, limit, *column, data + column->ptr);
        if (next == nullptr) {
            break;
        }
        place = next;
        *status = vsOKAY;
        if (column->has_value_off != 0) {
            data[column->has_value_off] = kHasValue;
        }
    }
    *at = place;
    return count;
}

// A row in buffer form coming out of the decoder, whose memory is there and zero.
// One reader stays open over all of the stream, and is closed for what only the
// decoder or a type can read.
//
// A stream names its columns in ascending order; a damaged one may come back to an
// earlier column, whose value it then replaces.
class RowUnpacker {
  public:
    RowUnpacker(OAK_ROW *row, B_DECODER decoder)
        : row_(row), decoder_(decoder), reader_(decoder_buffer(decoder)),
          columns_(row->ti->row_columns), num_columns_(row->ti->num_row_columns) {}

    OAK_RETCODE run() {
        OAK_RETCODE status = records(&RowUnpacker::avl);
        if (status == sOKAY) {
            status = records(&RowUnpacker::join);
        }
        if (status == sOKAY && num_columns_ != 0) {
            status = columns();
        }
        reader_.settle();
        return status;
    }

  private:
    static constexpr uint32_t kNowhere = UINT32_MAX;

    // A number that is read on the spot, or by the decoder's own function.
    template <class Number>
    [[gnu::always_inline]] OAK_RETCODE number(Number *out,
                                              OAK_RETCODE (*decode)(B_DECODER, Number *)) {
        const uint8_t *next = column_stream::take(reader_.at, reader_.end, out);
        if (next != nullptr) [[likely]] {
            reader_.at = next;
            return sOKAY;
        }
        reader_.settle();
        const OAK_RETCODE status = decode(decoder_, out);
        reader_.begin();
        return status;
    }
    [[gnu::always_inline]] OAK_RETCODE number(uint16_t *out) {
        return number(out, b_decoderDecodeUint16);
    }
    OAK_RETCODE number(uint64_t *out) { return number(out, b_decoderDecodeSlot); }

    // A count, and so many records.
    OAK_RETCODE records(OAK_RETCODE (RowUnpacker::*record)()) {
        uint16_t left = 0;
        OAK_RETCODE status = number(&left);
        for (; status == sOKAY && left > 0; --left) {
            status = (this->*record)();
        }
        return status;
    }

    [[gnu::noinline]] OAK_RETCODE avl() {
        OAK_KEY_INDEX key = 0;
        OAK_AVL links{};
        OAK_RETCODE status = number(&key);
        if (status == sOKAY) {
            status = number(&links.left);
        }
        if (status == sOKAY) {
            status = number(&links.right);
        }
        if (status == sOKAY) {
            status = number(&links.flags);
        }
        OAK_AVL *record = status == sOKAY ? avl_record(row_, key) : nullptr;
        if (record != nullptr) {
            record->flags = links.flags; // field by field: the padding stays zero
            record->left = links.left;
            record->right = links.right;
        }
        return status;
    }

    // The join of a reference that the table no longer has is thrown away.
    [[gnu::noinline]] OAK_RETCODE join() {
        OAK_REF_INDEX ndx = 0;
        OAK_SLOT owner = 0;
        OAK_RETCODE status = number(&ndx);
        if (status == sOKAY) {
            status = number(&owner);
        }
        if (status == sOKAY && ndx < row_->ti->num_refs &&
            sch_get_ref_by_index(row_->ti, ndx) != nullptr) {
            row_->joins[ndx].owner = owner;
        }
        return status;
    }

    OAK_RETCODE columns() {
        uint16_t size = 0;
        OAK_RETCODE status = number(&size);
        while (status == sOKAY && size != 0) {
            status = group(size);
            if (status == sOKAY) {
                status = number(&size);
            }
        }
        pass_over(num_columns_);
        return status;
    }

    OAK_RETCODE group(uint16_t size) {
        uint16_t first = 0;
        OAK_RETCODE status = number(&first);
        const uint32_t end = uint32_t{first} + size;
        for (uint32_t ndx = first; status == sOKAY && ndx < end; ++ndx) {
            const uint32_t position = seek(ndx);
            if (position != kNowhere) {
                const uint32_t most = std::min(end - ndx, num_columns_ - position);
                const uint32_t read = take_columns(row_, position, most, &reader_.at, reader_.end);
                passed_ = std::max(passed_, position + read);
                ndx += read;
            }
            if (ndx < end) {
                reader_.settle();
                status = column_by_type(ndx);
                reader_.begin();
            }
        }
        return status;
    }

    // A column that is not there, or whose value only its type can read.
    OAK_RETCODE column_by_type(uint32_t ndx) {
        const uint32_t position = seek(ndx);
        if (position == kNowhere) {
            return dropped_column(ndx);
        }
        passed_ = std::max(passed_, position + 1);
        return columns_[position].form == StreamForm::large_object ? large_object(position)
                                                                   : by_type(position);
    }

    // The live position of a column, with all before it passed over; nowhere for one
    // that rows do not have.
    uint32_t seek(uint32_t ndx) {
        uint32_t position = ndx;
        if (ndx >= num_columns_ || columns_[ndx].ndx != ndx) [[unlikely]] {
            position = ndx < OAK_INDEX_NONE
                           ? sch_find_col_active_ndx(row_->ti, static_cast<OAK_COL_INDEX>(ndx))
                           : OAK_INDEX_NONE;
        }
        if (position >= num_columns_ || columns_[position].form == StreamForm::absent) {
            return kNowhere;
        }
        pass_over(position);
        return position;
    }

    OAK_RETCODE dropped_column(uint32_t ndx) {
        const SCH_COL_INFO_C ci = schema_view::column_at(row_->ti, ndx);
        return ci != nullptr ? skip_value(row_, ci, decoder_)
                             : OAK_DAMAGED(eDBCORRUPTED); // a column that the table does not have
    }

    OAK_RETCODE large_object(uint32_t position) {
        const OAK_RETCODE status = skip_large_object_mark(decoder_);
        if (status == sOKAY) {
            set_present(position, vsNOVAL);
        }
        return status;
    }

    // A value that its type's own operations read.
    OAK_RETCODE by_type(uint32_t position) {
        const SCH_ROW_COLUMN &column = columns_[position];
        const SCH_TYPE_INFO_C type = schema_view::type_of(column.ci);
        OAK_HAS_VALUE_T *has_value =
            column.has_value_off != 0 ? row_->data.b.col_data + column.has_value_off : nullptr;
        const OAK_RETCODE status = type->type_info->unpack_to_buff_fcn(
            type, row_->data.b.col_data + column.ptr, has_value, decoder_);
        if (status == sOKAY) {
            row_->data.b.col_status[position] =
                has_value == nullptr || *has_value == kHasValue ? vsOKAY : vsNULL;
            restore_unstored(position);
        }
        return status;
    }

    // Columns that the stream passes over are NULL where they can be.
    void pass_over(uint32_t limit) {
        for (; passed_ < limit; ++passed_) {
            if (columns_[passed_].has_value_off != 0) {
                row_->data.b.col_status[passed_] = vsNULL;
            }
            restore_unstored(passed_);
        }
    }

    // A foreign key column's value is reached through the join, and a rowid column
    // holds the row's own number, whatever the stream held.
    void restore_unstored(uint32_t position) {
        const SCH_ROW_COLUMN &column = columns_[position];
        if (column.form == StreamForm::foreign_key) {
            row_->data.b.col_status[position] = vsNOVAL;
        } else if (column.form == StreamForm::rowid) {
            row_set_rowid_column(row_->data.b.col_data + column.ptr, row_->rowid);
            set_present(position, vsOKAY);
        }
    }

    void set_present(uint32_t position, VAL_STATUS status) {
        row_->data.b.col_status[position] = status;
        const OAK_HAS_VALUE_OFFSET has_value_off = columns_[position].has_value_off;
        if (has_value_off != 0) {
            row_->data.b.col_data[has_value_off] = kHasValue;
        }
    }

    OAK_ROW *row_;
    B_DECODER decoder_;
    StreamReader reader_;
    const SCH_ROW_COLUMN *columns_;
    uint32_t num_columns_;
    uint32_t passed_ = 0; // positions below it were read or passed over
};

OAK_RETCODE unpack_stream(OAK_ROW *row, B_DECODER decoder) {
    const OAK_RETCODE status = b_decoderSeek(decoder, 0);
    return status == sOKAY ? RowUnpacker(row, decoder).run() : status;
}

// Keeps the stream as it is.
OAK_RETCODE unpack_compact_form(OAK_ROW *row, B_DECODER decoder) {
    row->data.c.buffer = row_take_buffer(row);
    if (row->data.c.buffer == nullptr) {
        return row_report(row, eNOMEMORY, "row_compact_init_buffer", __LINE__);
    }
    OAK_RETCODE status = b_decoderSeek(decoder, 0);
    if (status == sOKAY) {
        status = copy_whole(static_cast<const OAK_BUFFER *>(decoder->ctx), row->data.c.buffer);
    }
    if (status != sOKAY) {
        row_free(row);
        return row_report(row, status, "row_unpack_compact_compact", __LINE__);
    }
    return sOKAY;
}

} // namespace

// ---- Internal ---------------------------------------------------------------

bool calc_storable_buffer(SCH_COL_INFO_C ci, const OAK_ROW *row) {
    const OAK_COL_INDEX position = schema_view::live_position(row->ti, ci);
    return position < row->ti->num_row_columns && RowColumns(row).is_storable(position);
}

OAK_RETCODE row_pack_compact_column_group_buffer(OAK_COL_INDEX grp_first, OAK_COL_INDEX grp_size,
                                                 const OAK_ROW *row, B_ENCODER encoder) {
    const OAK_COL_INDEX position = sch_find_col_active_ndx(row->ti, grp_first);
    return RowPacker(row, encoder).run_group(position, grp_size);
}

// ---- Exported ---------------------------------------------------------------

OAK_RETCODE row_pack_compact(const OAK_ROW *row, B_ENCODER encoder) {
    if (row == nullptr || encoder == nullptr) {
        return eINVNULLARG;
    }
    switch (row->format) {
        case OAK_ROW_FORMAT_BUFFER:
            return RowPacker(row, encoder).run();
        case OAK_ROW_FORMAT_COMPACT:
            return pack_compact_form(row, encoder);
        default:
            return row_report(row, eNOTIMPLEMENTED, "row_pack_compact", __LINE__);
    }
}

OAK_RETCODE row_unpack_compact(OAK_ROW *row, B_DECODER decoder, OAK_ROWID_T rowid,
                               SCH_TBL_INFO_C ti, OSL_MEMTAG tag, OAK_ERR hErr, DB_INSTANCE *dbi) {
    if (row == nullptr || decoder == nullptr || ti == nullptr) {
        return eINVNULLARG;
    }
    if (dbi == nullptr || dbi->row_format == OAK_ROW_FORMAT_BUFFER) {
        return row_unpack_compact_buffer(row, decoder, rowid, ti, tag, hErr, dbi);
    }
    row_init(row, OAK_ROW_FORMAT_COMPACT, rowid, ti, tag, hErr, dbi);
    return dbi->row_format == OAK_ROW_FORMAT_COMPACT
               ? unpack_compact_form(row, decoder)
               : row_report(row, eNOTIMPLEMENTED, "row_unpack_compact", __LINE__);
}

OAK_RETCODE row_unpack_compact_buffer(OAK_ROW *row, B_DECODER decoder, OAK_ROWID_T rowid,
                                      SCH_TBL_INFO_C ti, OSL_MEMTAG tag, OAK_ERR hErr,
                                      DB_INSTANCE *dbi) {
    if (row == nullptr || decoder == nullptr || ti == nullptr) {
        return eINVNULLARG;
    }
    row_init(row, OAK_ROW_FORMAT_BUFFER, rowid, ti, tag, hErr, dbi);
    OAK_RETCODE status = row_allocate(row);
    if (status == sOKAY) {
        row_point(row);
        status = unpack_stream(row, decoder);
    }
    if (status != sOKAY) {
        row_free(row);
    }
    return status;
}
