// A row from a stored object.
#include "row_reader.h"

#include <cstring>

#include "row_compact.h"
#include "row_expanded.h"
#include "schema_fcns.h"
#include "value.h"

namespace tools {

PackedObject::PackedObject() {
    b_buffInit(&stored_, tag_);
    b_buffInit(&packed_, tag_);
}

PackedObject::~PackedObject() {
    b_buffTerm(&packed_);
    b_buffTerm(&stored_);
    b_lzmaDestroy(lzma_);
}

OAK_RETCODE PackedObject::read(std::span<const uint8_t> stored) {
    OAK_RETCODE status = lzma_ == nullptr ? b_lzmaCreate(&lzma_) : sOKAY;
    if (status != sOKAY) {
        return status;
    }
    if (stored.empty()) {
        return eEOD;
    }
    b_buffSetStatic(&stored_, stored.data(), stored.size());
    status = obj_convert_in(&packed_, &stored_, nullptr, &format_, lzma_);
    if (status == sOKAY && format_ != OAK_ITEM_FORMAT_COMPACT &&
        format_ != OAK_ITEM_FORMAT_EXPANDED) {
        status = eDBCORRUPTED;
    }
    return status;
}

RowReader::RowReader(SCH_TBL_INFO_C ti) : ti_(ti), columns_(columns_of(ti)) {
    OAK_IGNORE_STATUS(b_decoderCreate(b_buffInputByte, b_buffInputBytesBulk, object_.packed(),
                                      object_.tag(), &decoder_),
                      "unpacking says so when there is no decoder");
}

RowReader::~RowReader() {
    row_free(&row_);
    b_decoderDestroy(decoder_);
}

OAK_RETCODE RowReader::read(std::span<const uint8_t> stored, OAK_ROWID_T row_number) {
    row_free(&row_);
    row_ = {};
    const OAK_RETCODE status = object_.read(stored);
    if (status != sOKAY) {
        return status;
    }
    const auto unpack =
        object_.format() == OAK_ITEM_FORMAT_COMPACT ? row_unpack_compact : row_unpack_expanded;
    return unpack(&row_, decoder_, row_number, ti_, object_.tag(), nullptr, nullptr);
}

// The value of a foreign key is in its join, where it refers to a row number.
RowReader::State RowReader::foreign_key(const Column &column, OAK_VALUE *value) const {
    const OAK_REF_INDEX reference = sch_ref_ndx(sch_col_ref(column.info));
    const bool has_join = row_.joins != nullptr && reference < sch_tbl_num_refs(ti_);
    const OAK_SLOT owner = has_join ? row_.joins[reference].owner : 0;
    if (owner == 0) {
        return State::null;
    }
    oak_valueInit(value);
    oak_valueSetRowId(value, owner);
    return refers_to_rowid(column.info) ? State::value : State::elsewhere;
}

OAK_RETCODE RowReader::stored_value(const Column &column, State *state, OAK_VALUE *value) const {
    const uint8_t *data = row_.data.b.col_data;
    oak_valueInit(value);
    const OAK_RETCODE status =
        sch_col_assign_from_buff_fcn(column.info, value, data + column.offset, column.byte_len,
                                     column.has_value != 0 ? data + column.has_value : nullptr);
    *state = value->status == vsNULL ? State::null : State::value;
    return status;
}

OAK_RETCODE RowReader::column(const Column &column, State *state, OAK_VALUE *value) const {
    *state = State::null;
    if (column.kind == ColumnKind::foreign) {
        *state = foreign_key(column, value);
        return sOKAY;
    }
    if (column.kind == ColumnKind::rowid) {
        *state = State::value;
        oak_valueInit(value);
        oak_valueSetRowId(value, row_.rowid);
        return sOKAY;
    }
    const VAL_STATUS status = row_.data.b.col_status[column.position];
    if (status != vsOKAY && status != vsNULL && status != vsNOVAL) {
        return eDBCORRUPTED;
    }
    if (column.kind == ColumnKind::large_object) {
        *state = status == vsNULL ? State::null : State::elsewhere;
        return sOKAY;
    }
    return status == vsOKAY ? stored_value(column, state, value) : sOKAY;
}

} // namespace tools
