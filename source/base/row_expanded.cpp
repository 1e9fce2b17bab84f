// The expanded row, both ways: the row buffer behind its length. Rests on the
// encoder's bulk calls and the schema's layout.
#include "row_expanded.h"

#include <cstring>

#include "base_internal.h"
#include "row_internal.h"

static_assert(sizeof(size_t) == 8, "the stored length has 8 bytes");

namespace {

// Exactly `size` bytes; a source that delivers fewer has ended.
OAK_RETCODE read_bulk(B_DECODER decoder, void *data, size_t size) {
    size_t got = 0;
    const OAK_RETCODE status = b_decoderDecodeBytesBulk(decoder, size, data, &got);
    return status == sOKAY && got != size ? eEOD : status;
}

OAK_RETCODE unpack_image(OAK_ROW *row, B_DECODER decoder) {
    OAK_RETCODE status = b_decoderSeek(decoder, 0);
    size_t data_len = 0;
    if (status == sOKAY) {
        status = read_bulk(decoder, &data_len, sizeof data_len);
    }
    if (status != sOKAY) {
        return status;
    }
    if (data_len != schema_view::row_layout(row->ti).row_buffer_size) {
        return OAK_DAMAGED(eDBCORRUPTED);
    }
    status = row_allocate(row);
    if (status == sOKAY && data_len != 0) {
        status = read_bulk(decoder, row->row_data, data_len);
    }
    return status;
}

// Writes the links with zeros between their fields, whatever lies there in
// memory: stored images of equal rows are equal.
OAK_RETCODE pack_avls(const OAK_ROW *row, size_t count, B_ENCODER encoder) {
    OAK_RETCODE status = sOKAY;
    for (size_t i = 0; status == sOKAY && i < count; ++i) {
        OAK_AVL avl;
        std::memset(&avl, 0, sizeof avl);
        avl.flags = row->avls[i].flags;
        avl.left = row->avls[i].left;
        avl.right = row->avls[i].right;
        status = b_encoderEncodeBytesBulk(encoder, &avl, sizeof avl);
    }
    return status;
}

OAK_RETCODE pack_image(const OAK_ROW *row, B_ENCODER encoder) {
    const size_t avls = row->avls != nullptr ? schema_view::row_layout(row->ti).num_avls : 0;
    const size_t done = avls * sizeof(OAK_AVL);
    const OAK_RETCODE status = pack_avls(row, avls, encoder);
    if (status != sOKAY || row->data_len == 0) {
        return status;
    }
    return b_encoderEncodeBytesBulk(encoder, row->row_data + done, row->data_len - done);
}

} // namespace

OAK_RETCODE row_pack_expanded(const OAK_ROW *row, B_ENCODER encoder) {
    if (row == nullptr || encoder == nullptr) {
        return eINVNULLARG;
    }
    const OAK_RETCODE status =
        b_encoderEncodeBytesBulk(encoder, &row->data_len, sizeof row->data_len);
    return status == sOKAY ? pack_image(row, encoder) : status;
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
