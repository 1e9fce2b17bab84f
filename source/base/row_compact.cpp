// The compact row, both ways. Rests on the encoder, the schema's layout and the
// types' pack and unpack functions.
//
// Writer and reader agree on every byte, with four differences by design. The
// writer takes the links of the i-th live AVL key from the row's i-th record and
// writes the key's number; the reader puts them back by the number's rank. Joins
// go by reference index on both sides, so that those of a reference whose index
// is not below the count of references are not kept. The writer leaves out rowid and foreign key
// columns, which the reader restores or marks whatever the stream holds. And a stream says nothing
// of a column that cannot be NULL and was not set: it reads back as vsNOVAL, not as a default.
#include "row_compact.h"

#include "base_internal.h"
#include "encoder_internal.h"
#include "oakvaluetypes.h"
#include "row_internal.h"
#include "schema_fcns.h"

using schema_view::live_column;

namespace {

constexpr uint32_t kLargeObjectMark = 1;
constexpr OAK_HAS_VALUE_T kHasValue = 1;

// ---- Writing ----------------------------------------------------------------

// False for the null that stands where the table counts a column that it lacks.
bool is_storable(SCH_COL_INFO_C ci, OAK_COL_INDEX position, const OAK_ROW *row) {
    if (ci == nullptr) {
        return false;
    }
    const OAK_ROW_DATA_BUFFER &data = row->data.b;
    const VAL_STATUS status = data.col_status[position];
    const bool present =
        status == vsOKAY || (status == vsNOVAL && schema_view::is_large_object(ci));
    if (!present || schema_view::is_rowid(ci) || schema_view::is_foreign_key(ci)) {
        return false;
    }
    return ci->has_value_off == 0 || data.col_data[ci->has_value_off] != 0;
}

OAK_RETCODE pack_avl(const OAK_AVL &avl, SCH_KEY_INFO_C key, B_ENCODER encoder) {
    const uint64_t numbers[] = {key->avl_ndx, avl.left, avl.right, avl.flags};
    for (const uint64_t number : numbers) {
        const OAK_RETCODE status = encoderEncodeUintmax(encoder, number);
        if (status != sOKAY) {
            return status;
        }
    }
    return sOKAY;
}

OAK_RETCODE pack_avls(const OAK_ROW *row, B_ENCODER encoder) {
    OAK_RETCODE status = encoderEncodeUintmax(encoder, row->ti->num_avls);
    OAK_KEY_INDEX rank = 0;
    for (OAK_KEY_INDEX number = 0;
         status == sOKAY && rank < row->ti->num_avls && number < row->ti->next_avl; ++number) {
        const SCH_KEY_INFO_C key = schema_view::avl_key(row->ti, number);
        if (key != nullptr) {
            status = pack_avl(row->avls[rank++], key, encoder);
        }
    }
    return status;
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

OAK_RETCODE pack_joins(const OAK_ROW *row, B_ENCODER encoder) {
    OAK_REF_INDEX left = count_joins(row);
    OAK_RETCODE status = encoderEncodeUintmax(encoder, left);
    for (OAK_REF_INDEX i = 0; status == sOKAY && left > 0; ++i) {
        if (is_joined(row, i)) {
            status = encoderEncodeUintmax(encoder, i);
            if (status == sOKAY) {
                status = encoderEncodeUintmax(encoder, row->joins[i].owner);
            }
            --left;
        }
    }
    return status;
}

OAK_RETCODE pack_columns(const OAK_ROW *row, B_ENCODER encoder) {
    const OAK_COL_INDEX num_cols = row->ti->num_cols;
    OAK_COL_INDEX position = 0;
    while (position < num_cols) {
        const SCH_COL_INFO_C first = live_column(row->ti, position);
        if (!is_storable(first, position, row)) {
            ++position;
            continue;
        }
        OAK_COL_INDEX size = 1;
        for (++position; position < num_cols; ++position, ++size) {
            const SCH_COL_INFO_C next = live_column(row->ti, position);
            if (!is_storable(next, position, row) || next->ndx != first->ndx + size) {
                break;
            }
        }
        const OAK_RETCODE status =
            row_pack_compact_column_group_buffer(first->ndx, size, row, encoder);
        if (status != sOKAY) {
            return status;
        }
    }
    return encoderEncodeUintmax(encoder, 0); // the end mark
}

OAK_RETCODE pack_buffer_form(const OAK_ROW *row, B_ENCODER encoder) {
    OAK_RETCODE status = pack_avls(row, encoder);
    if (status == sOKAY) {
        status = pack_joins(row, encoder);
    }
    return status == sOKAY ? pack_columns(row, encoder) : status;
}

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

OAK_RETCODE unpack_avl(OAK_ROW *row, B_DECODER decoder) {
    OAK_KEY_INDEX number = 0;
    OAK_AVL links{};
    OAK_RETCODE status = b_decoderDecodeUint16(decoder, &number);
    if (status == sOKAY) {
        status = b_decoderDecodeSlot(decoder, &links.left);
    }
    if (status == sOKAY) {
        status = b_decoderDecodeSlot(decoder, &links.right);
    }
    if (status == sOKAY) {
        status = b_decoderDecodeUint16(decoder, &links.flags);
    }
    OAK_AVL *record = status == sOKAY ? avl_record(row, number) : nullptr;
    if (record != nullptr) {
        record->flags = links.flags; // field by field: the padding stays zero
        record->left = links.left;
        record->right = links.right;
    }
    return status;
}

// The join of a reference that the table no longer has is thrown away.
OAK_RETCODE unpack_join(OAK_ROW *row, B_DECODER decoder) {
    OAK_REF_INDEX ndx = 0;
    OAK_SLOT owner = 0;
    OAK_RETCODE status = b_decoderDecodeUint16(decoder, &ndx);
    if (status == sOKAY) {
        status = b_decoderDecodeSlot(decoder, &owner);
    }
    if (status == sOKAY && ndx < row->ti->num_refs &&
        sch_get_ref_by_index(row->ti, ndx) != nullptr) {
        row->joins[ndx].owner = owner;
    }
    return status;
}

OAK_RETCODE unpack_counted(OAK_ROW *row, B_DECODER decoder,
                           OAK_RETCODE (*unpack_one)(OAK_ROW *row, B_DECODER decoder)) {
    uint16_t left = 0;
    OAK_RETCODE status = b_decoderDecodeUint16(decoder, &left);
    for (; status == sOKAY && left > 0; --left) {
        status = unpack_one(row, decoder);
    }
    return status;
}

// Before the stream is read every nullable column is NULL.
void presume_nulls(OAK_ROW *row) {
    for (OAK_COL_INDEX position = 0; position < row->ti->num_cols; ++position) {
        const SCH_COL_INFO_C ci = live_column(row->ti, position);
        if (ci != nullptr && ci->has_value_off != 0) {
            row->data.b.col_status[position] = vsNULL;
        }
    }
}

OAK_HAS_VALUE_T *has_value_byte(const OAK_ROW *row, SCH_COL_INFO_C ci) {
    return ci->has_value_off != 0 ? row->data.b.col_data + ci->has_value_off : nullptr;
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

OAK_RETCODE unpack_large_object(OAK_ROW *row, SCH_COL_INFO_C ci, OAK_COL_INDEX position,
                                B_DECODER decoder) {
    const OAK_RETCODE status = skip_large_object_mark(decoder);
    OAK_HAS_VALUE_T *has_value = has_value_byte(row, ci);
    if (status == sOKAY) {
        row->data.b.col_status[position] = vsNOVAL;
    }
    if (status == sOKAY && has_value != nullptr) {
        *has_value = kHasValue;
    }
    return status;
}

OAK_RETCODE unpack_value(OAK_ROW *row, SCH_COL_INFO_C ci, OAK_COL_INDEX position,
                         B_DECODER decoder) {
    const SCH_TYPE_INFO_C type = schema_view::type_of(ci);
    OAK_HAS_VALUE_T *has_value = has_value_byte(row, ci);
    const OAK_RETCODE status = type->type_info->unpack_to_buff_fcn(
        type, row->data.b.col_data + ci->ptr, has_value, decoder);
    if (status == sOKAY) {
        row->data.b.col_status[position] =
            has_value == nullptr || *has_value == kHasValue ? vsOKAY : vsNULL;
    }
    return status;
}

OAK_RETCODE unpack_column(OAK_ROW *row, uint32_t ndx, B_DECODER decoder) {
    const SCH_COL_INFO_C ci = schema_view::column_at(row->ti, ndx);
    if (ci == nullptr) {
        return OAK_DAMAGED(eDBCORRUPTED); // a column that the table does not have
    }
    const OAK_COL_INDEX position = schema_view::live_position(row->ti, ci);
    if (position == OAK_INDEX_NONE) {
        return skip_value(row, ci, decoder);
    }
    return schema_view::is_large_object(ci) ? unpack_large_object(row, ci, position, decoder)
                                            : unpack_value(row, ci, position, decoder);
}

OAK_RETCODE unpack_group(OAK_ROW *row, OAK_COL_INDEX size, B_DECODER decoder) {
    OAK_COL_INDEX first = 0;
    OAK_RETCODE status = b_decoderDecodeUint16(decoder, &first);
    for (uint32_t i = 0; status == sOKAY && i < size; ++i) {
        status = unpack_column(row, first + i, decoder);
    }
    return status;
}

OAK_RETCODE unpack_columns(OAK_ROW *row, B_DECODER decoder) {
    for (;;) {
        OAK_COL_INDEX size = 0;
        OAK_RETCODE status = b_decoderDecodeUint16(decoder, &size);
        if (status == sOKAY && size == 0) {
            return sOKAY;
        }
        if (status == sOKAY) {
            status = unpack_group(row, size, decoder);
        }
        if (status != sOKAY) {
            return status;
        }
    }
}

// Whatever the stream held: a foreign key column's value is reached through the
// join, and a rowid column holds the row's own number.
void restore_unstored(OAK_ROW *row) {
    for (OAK_COL_INDEX position = 0; position < row->ti->num_cols; ++position) {
        const SCH_COL_INFO_C ci = live_column(row->ti, position);
        if (ci == nullptr) {
            continue;
        }
        if (schema_view::is_foreign_key(ci)) {
            row->data.b.col_status[position] = vsNOVAL;
        } else if (schema_view::is_rowid(ci)) {
            row_set_rowid_column(row->data.b.col_data + ci->ptr, row->rowid);
            row->data.b.col_status[position] = vsOKAY;
            OAK_HAS_VALUE_T *has_value = has_value_byte(row, ci);
            if (has_value != nullptr) {
                *has_value = kHasValue;
            }
        }
    }
}

OAK_RETCODE unpack_stream(OAK_ROW *row, B_DECODER decoder) {
    OAK_RETCODE status = b_decoderSeek(decoder, 0);
    if (status == sOKAY) {
        status = unpack_counted(row, decoder, unpack_avl);
    }
    if (status == sOKAY) {
        status = unpack_counted(row, decoder, unpack_join);
    }
    if (status != sOKAY || row->ti->num_cols == 0) {
        return status;
    }
    presume_nulls(row);
    status = unpack_columns(row, decoder);
    if (status == sOKAY) {
        restore_unstored(row);
    }
    return status;
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
    return position != OAK_INDEX_NONE && is_storable(ci, position, row);
}

OAK_RETCODE row_pack_compact_column_group_buffer(OAK_COL_INDEX grp_first, OAK_COL_INDEX grp_size,
                                                 const OAK_ROW *row, B_ENCODER encoder) {
    OAK_RETCODE status = encoderEncodeUintmax(encoder, grp_size);
    if (status == sOKAY) {
        status = encoderEncodeUintmax(encoder, grp_first);
    }
    for (uint32_t i = 0; status == sOKAY && i < grp_size; ++i) {
        const SCH_COL_INFO_C ci = row->ti->cols[grp_first + i];
        status = schema_view::is_large_object(ci)
                     ? encoderEncodeUintmax(encoder, kLargeObjectMark)
                     : sch_col_pack_buffer_fcn(ci, row->data.b.col_data + ci->ptr, encoder);
    }
    return status;
}

// ---- Exported ---------------------------------------------------------------

OAK_RETCODE row_pack_compact(const OAK_ROW *row, B_ENCODER encoder) {
    if (row == nullptr || encoder == nullptr) {
        return eINVNULLARG;
    }
    switch (row->format) {
        case OAK_ROW_FORMAT_BUFFER:
            return pack_buffer_form(row, encoder);
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
