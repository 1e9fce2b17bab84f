// The expanded row, both ways: the row buffer behind its length. Rests on the
// encoder's bulk calls and the schema's layout.
#include "row_expanded.h"

#include "base_internal.h"
#include "row_internal.h"

static_assert(sizeof(size_t) == 8, "the stored length has 8 bytes");

namespace {

OAK_RETCODE unpack_image(OAK_ROW *row, B_DECODER decoder) {
    OAK_RETCODE status = b_decoderSeek(decoder, 0);
    size_t data_len = 0;
    if (status == sOKAY) {
        status = b_decoderDecodeBytesBulk(decoder, sizeof data_len, &data_len, nullptr);
    }
    if (status != sOKAY) {
        return status;
    }
    if (data_len != schema_view::row_layout(row->ti).row_buffer_size) {
        return OAK_DAMAGED(eDBCORRUPTED);
    }
    status = row_allocate(row);
    if (status == sOKAY && data_len != 0) {
        status = b_decoderDecodeBytesBulk(decoder, data_len, row->row_data, nullptr);
    }
    return status;
}

} // namespace

OAK_RETCODE row_pack_expanded(const OAK_ROW *row, B_ENCODER encoder) {
    if (row == nullptr || encoder == nullptr) {
        return eINVNULLARG;
    }
    const OAK_RETCODE status =
        b_encoderEncodeBytesBulk(encoder, &row->data_len, sizeof row->data_len);
    return status == sOKAY ? b_encoderEncodeBytesBulk(encoder, row->row_data, row->data_len)
                           : status;
}

OAK_RETCODE row_unpack_expanded(OAK_ROW *row, B_DECODER decoder, OAK_ROWID_T rowid,
                                SCH_TBL_INFO_C ti, OSL_MEMTAG tag, OAK_ERR hErr, DB_INSTANCE *dbi) {
    if (row == nullptr || decoder == nullptr || ti == nullptr) {
        return eINVNULLARG;
    }
    row_init(row, OAK_ROW_FORMAT_BUFFER, rowid, ti, tag, hErr, dbi);
    const OAK_RETCODE status = unpack_image(row, decoder);
    if (status != sOKAY) {
        row_free(row);
        return status;
    }
    row_point(row);
    return sOKAY;
}
