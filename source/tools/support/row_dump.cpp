// A packed row taken apart. The compact stream is decoded element by element, as
// docs/formats.md has it; the expanded image is walked by the table's layout.
#include "row_dump.h"

#include <cstring>

#include "catalog_file.h"
#include "encoder.h"
#include "oakvaluetypes.h"
#include "schema_fcns.h"
#include "value.h"
#include "value_text.h"

namespace tools {

namespace {

constexpr size_t kAvlSize = 24;
constexpr size_t kJoinSize = 8;
constexpr size_t kStatusSize = 4;
constexpr size_t kLengthSize = 8;

std::string name_or_number(const char *name, uint64_t number) {
    return name != nullptr ? std::string(name) : "number " + std::to_string(number);
}

std::string column_name(const Column &column) {
    return column.name != nullptr ? std::string(column.name)
                                  : "dropped column " + std::to_string(sch_col_ndx(column.info));
}

std::string key_name(SCH_TBL_INFO_C ti, uint64_t number) {
    const char *name = nullptr;
    each(sch_iterate_keys, ti, [&](SCH_KEY_INFO_C ki) {
        if (sch_key_method(ki) == OAK_KEY_METHOD_AVL && sch_avl_index(ki) == number) {
            name = sch_key_name(ki);
        }
    });
    return "AVL key " + name_or_number(name, number);
}

std::string reference_name(SCH_TBL_INFO_C ti, uint64_t index) {
    const SCH_REF_INFO_C ri = index < OAK_INDEX_NONE
                                  ? sch_get_ref_by_index(ti, static_cast<OAK_REF_INDEX>(index))
                                  : nullptr;
    return "reference " + name_or_number(ri != nullptr ? sch_ref_name(ri) : nullptr, index);
}

// What both forms have in common: the bytes, and handing out parts.
class Dump {
  public:
    Dump(OAK_BUFFER *packed, SCH_TBL_INFO_C ti, const RowPartVisitor &visit)
        : packed_(packed), ti_(ti), visit_(visit) {}

  protected:
    RowPart part(size_t from, size_t to, std::string what) const {
        return {from, to, std::move(what), false, false, {}, false};
    }
    void show_number(size_t from, size_t to, const std::string &what, uint64_t number) {
        RowPart shown = part(from, to, what);
        shown.value = std::to_string(number);
        visit_(shown);
    }
    // Shows a column with its value, or why it has no text.
    OAK_RETCODE show_value(size_t from, size_t to, const Column &column, const OAK_VALUE &value) {
        RowPart shown = part(from, to, column_name(column));
        shown.is_column = true;
        shown.is_text = class_of(column.type) == OAK_TYPE_CLASS_TEXT;
        const OAK_RETCODE status = append_value_text(&shown.value, column, value);
        if (status != sOKAY) {
            shown.value.clear();
        }
        visit_(shown);
        return status;
    }
    static Complaint damage_at(size_t place, const std::string &what, OAK_RETCODE status) {
        return "byte " + std::to_string(place) + ", " + what + ": " + status_text(status);
    }
    // What stands behind the row: at most `padding` bytes, all zero.
    Complaint check_rest(size_t place, size_t padding) {
        const size_t rest = packed_->len - place;
        if (rest > padding) {
            return damage_at(place, std::to_string(rest) + " bytes behind the row", eDBCORRUPTED);
        }
        for (size_t i = place; i < packed_->len; ++i) {
            if (packed_->data[i] != 0) {
                return damage_at(i, "padding that is not zero", eDBCORRUPTED);
            }
        }
        if (rest > 0) {
            visit_(part(place, packed_->len, "padding"));
        }
        return {};
    }

    OAK_BUFFER *packed_;
    SCH_TBL_INFO_C ti_;
    const RowPartVisitor &visit_;
};

// ---- The compact stream -----------------------------------------------------

class CompactDump : Dump {
  public:
    using Dump::Dump;
    ~CompactDump() { b_decoderDestroy(decoder_); }
    CompactDump(const CompactDump &) = delete;
    CompactDump &operator=(const CompactDump &) = delete;

    Complaint run(size_t padding) {
        const OAK_RETCODE status =
            b_decoderCreate(b_buffInputByte, b_buffInputBytesBulk, packed_, tag_, &decoder_);
        if (status != sOKAY) {
            return status_text(status);
        }
        Complaint complaint = show_avls();
        if (complaint.empty()) {
            complaint = show_joins();
        }
        if (complaint.empty()) {
            complaint = show_groups();
        }
        return complaint.empty() ? check_rest(packed_->pos, padding) : complaint;
    }

  private:
    Complaint number(const std::string &what, uint64_t *value) {
        const size_t from = packed_->pos;
        const OAK_RETCODE status = b_decoderDecodeUint64(decoder_, value);
        if (status != sOKAY) {
            return damage_at(from, what, status);
        }
        show_number(from, packed_->pos, what, *value);
        return {};
    }
    // Numbers one after the other, each with its own name.
    Complaint numbers(const std::string &of, std::initializer_list<const char *> names) {
        Complaint complaint;
        uint64_t value = 0;
        for (auto name = names.begin(); complaint.empty() && name != names.end(); ++name) {
            complaint = number(of + " " + *name, &value);
        }
        return complaint;
    }
    Complaint show_avls() {
        uint64_t count = 0;
        Complaint complaint = number("AVL keys", &count);
        for (uint64_t i = 0; complaint.empty() && i < count; ++i) {
            uint64_t key = 0;
            complaint = number("AVL key", &key);
            if (complaint.empty()) {
                complaint = numbers(key_name(ti_, key), {"left", "right", "flags"});
            }
        }
        return complaint;
    }
    Complaint show_joins() {
        uint64_t count = 0;
        Complaint complaint = number("joins", &count);
        for (uint64_t i = 0; complaint.empty() && i < count; ++i) {
            uint64_t reference = 0;
            complaint = number("reference", &reference);
            if (complaint.empty()) {
                complaint = numbers(reference_name(ti_, reference), {"owner"});
            }
        }
        return complaint;
    }
    Complaint show_groups() {
        if (sch_tbl_num_cols(ti_) == 0) {
            return {}; // such a row ends here
        }
        for (;;) {
            uint64_t size = 0;
            const size_t place = packed_->pos;
            Complaint complaint = number("columns in the group", &size);
            if (!complaint.empty() || size == 0) {
                return complaint;
            }
            complaint = show_group(place, size);
            if (!complaint.empty()) {
                return complaint;
            }
        }
    }
    Complaint show_group(size_t place, uint64_t size) {
        uint64_t first = 0;
        Complaint complaint = number("first column", &first);
        if (complaint.empty() &&
            (first >= sch_tbl_next_col(ti_) || size > sch_tbl_next_col(ti_) - first)) {
            return damage_at(place, "a group of columns that the table does not have",
                             eDBCORRUPTED);
        }
        for (uint64_t i = first; complaint.empty() && i < first + size; ++i) {
            complaint = show_column(static_cast<OAK_COL_INDEX>(i));
        }
        return complaint;
    }
    Complaint show_column(OAK_COL_INDEX index) {
        const SCH_COL_INFO_C ci = sch_get_col_by_index(ti_, index);
        if (ci == nullptr) {
            return damage_at(packed_->pos, "column " + std::to_string(index), eDBCORRUPTED);
        }
        const Column column = column_of(ci);
        if (column.kind == ColumnKind::large_object) {
            uint64_t mark = 0;
            return number(column_name(column) + ", mark of a large object", &mark);
        }
        const size_t from = packed_->pos;
        OAK_VALUE value;
        oak_valueInit(&value);
        const OAK_TYPE_INFO *operations = b_typeGetInfo(column.type);
        OAK_RETCODE status = operations != nullptr ? operations->unpack_fcn(sch_col_type_c(ci),
                                                                            &value, tag_, decoder_)
                                                   : eDBCORRUPTED;
        if (status == sOKAY) {
            status = show_value(from, packed_->pos, column, value);
            sch_col_free_fcn(ci, &value, tag_);
        }
        return status == sOKAY ? Complaint() : damage_at(from, column_name(column), status);
    }

    Tag tag_;
    B_DECODER decoder_ = nullptr;
};

// ---- The expanded image -----------------------------------------------------

class ExpandedDump : Dump {
  public:
    ExpandedDump(OAK_BUFFER *packed, SCH_TBL_INFO_C ti, const RowPartVisitor &visit)
        : Dump(packed, ti, visit) {
        sch_tbl_get_buffer_info(ti, &layout_);
    }

    Complaint run(size_t padding) {
        Complaint complaint = show_length();
        if (!complaint.empty()) {
            return complaint;
        }
        show_links();
        show_statuses();
        complaint = show_columns();
        if (complaint.empty()) {
            pass_to(layout_.row_buffer_size);
            complaint = check_rest(kLengthSize + layout_.row_buffer_size, padding);
        }
        return complaint;
    }

  private:
    const uint8_t *row() const { return packed_->data + kLengthSize; }

    template <class Number>
    Number number_at(size_t offset) const {
        Number value;
        std::memcpy(&value, row() + offset, sizeof value);
        return value;
    }
    // Shows the bytes of the row buffer from where the last part ended up to
    // `offset` as padding.
    void pass_to(size_t offset) {
        if (offset > at_) {
            visit_(part(kLengthSize + at_, kLengthSize + offset, "padding"));
            at_ = offset;
        }
    }
    void show(size_t offset, size_t size, const std::string &what, uint64_t number) {
        pass_to(offset);
        show_number(kLengthSize + offset, kLengthSize + offset + size, what, number);
        at_ = offset + size;
    }

    Complaint show_length() {
        if (packed_->len < kLengthSize) {
            return damage_at(0, "length of the row buffer", eEOD);
        }
        uint64_t length = 0;
        std::memcpy(&length, packed_->data, sizeof length);
        show_number(0, kLengthSize, "length of the row buffer", length);
        if (length != layout_.row_buffer_size) {
            return damage_at(
                0, "a length that is not the table's, " + std::to_string(layout_.row_buffer_size),
                eDBCORRUPTED);
        }
        return packed_->len - kLengthSize >= length ? Complaint()
                                                    : damage_at(packed_->len, "row buffer", eEOD);
    }
    // The records lie by rank among the live keys, and by reference index.
    void show_links() {
        size_t rank = 0;
        for (OAK_KEY_INDEX number = 0; rank < layout_.num_avls && number < sch_tbl_next_avl(ti_);
             ++number) {
            if (has_avl_key(number)) {
                const std::string key = key_name(ti_, number);
                const size_t offset = layout_.avl_offset + kAvlSize * rank++;
                show(offset, 2, key + " flags", number_at<uint16_t>(offset));
                show(offset + 8, 8, key + " left", number_at<uint64_t>(offset + 8));
                show(offset + 16, 8, key + " right", number_at<uint64_t>(offset + 16));
            }
        }
        for (OAK_REF_INDEX i = 0; i < layout_.num_refs; ++i) {
            const size_t offset = layout_.ref_offset + kJoinSize * i;
            show(offset, kJoinSize, reference_name(ti_, i) + " owner", number_at<uint64_t>(offset));
        }
    }
    bool has_avl_key(OAK_KEY_INDEX number) const {
        bool found = false;
        each(sch_iterate_keys, ti_, [&](SCH_KEY_INFO_C ki) {
            found = found || (sch_key_method(ki) == OAK_KEY_METHOD_AVL &&
                              sch_key_num_elems(ki) != 0 && sch_avl_index(ki) == number);
        });
        return found;
    }
    int32_t status_of(const Column &column) const {
        return number_at<int32_t>(layout_.col_status_offset + kStatusSize * column.position);
    }
    void show_statuses() {
        static constexpr const char *kWords[] = {"no value", "value", "NULL"};
        for (const Column &column : columns_of(ti_)) {
            const size_t offset = layout_.col_status_offset + kStatusSize * column.position;
            const int32_t status = status_of(column);
            pass_to(offset);
            RowPart shown = part(kLengthSize + offset, kLengthSize + offset + kStatusSize,
                                 "status of " + column_name(column));
            shown.value = status >= 0 && status <= vsNULL ? kWords[status] : std::to_string(status);
            visit_(shown);
            at_ = offset + kStatusSize;
        }
    }
    Complaint show_columns() {
        Complaint first;
        const std::vector<Column> columns = columns_of(ti_);
        for (const Column &column : columns) {
            Complaint complaint = show_column(column);
            first = first.empty() ? complaint : first;
        }
        for (const Column &column : columns) {
            if (column.has_value != 0) {
                const size_t offset = layout_.col_data_offset + column.has_value;
                show(offset, 1, column_name(column) + " has a value", row()[offset]);
            }
        }
        return first;
    }
    // What the row says of a column: a value, NULL or nothing; else why not.
    OAK_RETCODE value_of(const Column &column, OAK_VALUE *value) const {
        oak_valueInit(value);
        const int32_t status = status_of(column);
        if (status != vsOKAY) {
            return status == vsNOVAL || status == vsNULL ? sOKAY : eDBCORRUPTED;
        }
        const uint8_t *data = row() + layout_.col_data_offset;
        return sch_col_assign_from_buff_fcn(
            column.info, value, data + column.offset, column.byte_len,
            column.has_value != 0 ? data + column.has_value : nullptr);
    }
    // The bytes of a column without a value are shown as they are.
    Complaint show_column(const Column &column) {
        if (column.kind == ColumnKind::large_object) {
            return {};
        }
        const size_t offset = layout_.col_data_offset + column.offset;
        pass_to(offset);
        at_ = offset + column.byte_len;
        const size_t from = kLengthSize + offset;
        OAK_VALUE value;
        OAK_RETCODE status = value_of(column, &value);
        if (status == sOKAY && value.status == vsOKAY) {
            status = show_value(from, from + column.byte_len, column, value);
        } else {
            RowPart shown = part(from, from + column.byte_len, column_name(column));
            shown.is_column = true;
            shown.is_null = status == sOKAY;
            visit_(shown);
        }
        return status == sOKAY ? Complaint() : damage_at(from, column_name(column), status);
    }

    OAK_ROW_BUFFER_INFO layout_;
    size_t at_ = 0; // up to where the row buffer was shown
};

} // namespace

Complaint dump_row(OAK_BUFFER *packed, OAK_ITEM_FORMAT format, SCH_TBL_INFO_C ti, size_t padding,
                   const RowPartVisitor &visit) {
    if (format == OAK_ITEM_FORMAT_COMPACT) {
        return CompactDump(packed, ti, visit).run(padding);
    }
    return ExpandedDump(packed, ti, visit).run(padding);
}

} // namespace tools
