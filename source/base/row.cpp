// Rows in memory: their block, and the way from one form to the other. Rests on
// the schema's layout, the buffer and the compact format.
#include "row.h"

#include <cstring>

#include "row_compact.h"
#include "row_internal.h"

static_assert(sizeof(OAK_AVL) == 24 && offsetof(OAK_AVL, left) == 8 &&
                  offsetof(OAK_AVL, right) == 16,
              "stored in expanded rows");
static_assert(sizeof(OAK_JOIN) == 8, "stored in expanded rows");
static_assert(sizeof(VAL_STATUS) == 4, "stored in expanded rows");

namespace {

OAK_RETCODE pack_into(const OAK_ROW *row, OAK_BUFFER *buffer) {
    B_ENCODER encoder = nullptr;
    OAK_RETCODE status =
        b_encoderCreate(b_buffEmitByte, b_buffEmitBytesBulk, buffer, row->tag, &encoder);
    if (status == sOKAY) {
        status = row_pack_compact(row, encoder);
        b_encoderDestroy(encoder);
    }
    return status;
}

OAK_RETCODE convert_to_compact(OAK_ROW *row) {
    if (row->format == OAK_ROW_FORMAT_COMPACT) {
        return sOKAY;
    }
    OAK_BUFFER *buffer = row_take_buffer(row);
    if (buffer == nullptr) {
        return row_report(row, eNOMEMORY, "row_convert_to_compact", __LINE__);
    }
    const OAK_RETCODE status = pack_into(row, buffer);
    if (status != sOKAY) {
        row_give_buffer(row, buffer);
        return status;
    }
    row_free(row);
    row->format = OAK_ROW_FORMAT_COMPACT;
    row->data.c.buffer = buffer;
    row->data_len = 0;
    return sOKAY;
}

// Unpacks the compact buffer into the row; it stays compact when that fails.
void unpack_own_buffer(OAK_ROW *row) {
    OAK_BUFFER *buffer = row->data.c.buffer;
    B_DECODER decoder = nullptr;
    OAK_RETCODE status =
        b_decoderCreate(b_buffInputByte, b_buffInputBytesBulk, buffer, row->tag, &decoder);
    if (status != sOKAY) {
        return;
    }
    status =
        row_unpack_compact_buffer(row, decoder, row->rowid, row->ti, row->tag, row->hErr, row->dbi);
    b_decoderDestroy(decoder);
    if (status == sOKAY) {
        row_give_buffer(row, buffer);
        return;
    }
    row_init(row, OAK_ROW_FORMAT_COMPACT, row->rowid, row->ti, row->tag, row->hErr, row->dbi);
    row->data.c.buffer = buffer;
}

OAK_RETCODE convert_to_buffer(OAK_ROW *row) {
    if (row->format == OAK_ROW_FORMAT_COMPACT) {
        unpack_own_buffer(row);
    }
    return row->format == OAK_ROW_FORMAT_BUFFER
               ? sOKAY
               : row_report(row, eSYS_ERROR, "row_convert_to_buffer", __LINE__);
}

} // namespace

// ---- Internal ---------------------------------------------------------------

void row_init(OAK_ROW *row, OAK_ROW_FORMAT format, OAK_ROWID_T rowid, SCH_TBL_INFO_C ti,
              OSL_MEMTAG tag, OAK_ERR hErr, DB_INSTANCE *dbi) {
    *row = OAK_ROW{.format = format,
                   .rowid = rowid,
                   .tag = tag,
                   .ti = ti,
                   .avls = nullptr,
                   .joins = nullptr,
                   .data = {},
                   .row_data = nullptr,
                   .data_len = 0,
                   .hErr = hErr,
                   .dbi = dbi};
}

OAK_RETCODE row_allocate(OAK_ROW *row) {
    row->data_len = schema_view::row_layout(row->ti).row_buffer_size;
    if (row->data_len == 0) {
        return sOKAY;
    }
    void *block = nullptr;
    const OAK_RETCODE status =
        osl_getMem_rc(row->data_len, row->tag, OSL_MEM_ZERO, nullptr, &block, __FILE__, __LINE__);
    row->row_data = static_cast<uint8_t *>(block);
    return status;
}

void row_point(OAK_ROW *row) {
    const OAK_ROW_BUFFER_INFO &layout = schema_view::row_layout(row->ti);
    uint8_t *base = row->row_data;
    if (layout.num_avls != 0) {
        row->avls = reinterpret_cast<OAK_AVL *>(base + layout.avl_offset);
    }
    if (layout.num_refs != 0) {
        row->joins = reinterpret_cast<OAK_JOIN *>(base + layout.ref_offset);
    }
    if (layout.num_cols != 0) {
        row->data.b.col_status = reinterpret_cast<VAL_STATUS *>(base + layout.col_status_offset);
        row->data.b.col_data = base + layout.col_data_offset;
    }
}

OAK_BUFFER *row_take_buffer(const OAK_ROW *row) {
    void *block = row->dbi != nullptr ? osl_poolGetMem(row->dbi->bufferPool, sizeof(OAK_BUFFER),
                                                       OSL_MEM_PLAIN, 0, __FILE__, __LINE__)
                                      : OSL_GET(sizeof(OAK_BUFFER), row->tag);
    auto *buffer = static_cast<OAK_BUFFER *>(block);
    if (buffer != nullptr) {
        b_buffInit(buffer, row->tag);
    }
    return buffer;
}

void row_give_buffer(const OAK_ROW *row, OAK_BUFFER *buffer) {
    b_buffTerm(buffer);
    if (row->dbi != nullptr) {
        osl_poolPut(row->dbi->bufferPool, buffer);
    } else {
        OSL_FREE(buffer, row->tag);
    }
}

OAK_RETCODE row_report(const OAK_ROW *row, OAK_RETCODE status, const char *where, int32_t line) {
    return oakErrorEx(row->hErr, status, where, nullptr, 0, 0, __FILE__, line);
}

// ---- Exported ---------------------------------------------------------------

OAK_RETCODE row_convert(OAK_ROW *row, OAK_ROW_FORMAT format) {
    if (row == nullptr) {
        return eINVNULLARG;
    }
    switch (format) {
        case OAK_ROW_FORMAT_BUFFER:
            return convert_to_buffer(row);
        case OAK_ROW_FORMAT_COMPACT:
            return convert_to_compact(row);
        case OAK_ROW_FORMAT_VALUE:
            return row_report(row, eNOTIMPLEMENTED, "row_convert", __LINE__);
        default:
            return row_report(row, eSYS_ERROR, "row_convert", __LINE__);
    }
}

void row_free(OAK_ROW *row) {
    if (row == nullptr) {
        return;
    }
    if (row->format == OAK_ROW_FORMAT_BUFFER) {
        OSL_FREE(row->row_data, row->tag);
        row->row_data = nullptr;
        row->avls = nullptr;
        row->joins = nullptr;
        row->data.b = OAK_ROW_DATA_BUFFER{};
    } else if (row->format == OAK_ROW_FORMAT_COMPACT && row->data.c.buffer != nullptr) {
        row_give_buffer(row, row->data.c.buffer);
        row->data.c.buffer = nullptr;
    }
}

void row_set_rowid_column(uint8_t *colData, OAK_ROWID_T rowid) {
    std::memcpy(colData, &rowid, sizeof rowid);
}
