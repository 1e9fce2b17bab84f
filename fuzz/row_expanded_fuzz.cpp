// Hostile images into the reader of expanded rows, and what they hold into all that
// reads a row buffer: values as text, hashes, the compact form. With the top bit of
// the first byte the rest is the image as it stands; without it the rest fills an
// image of the table's length.
#include "hashfcn.h"
#include "row_fuzz.h"

using namespace rowfuzz;

namespace {

Bytes image_of(SCH_TBL_INFO_C ti, uint8_t choice, const uint8_t *data, size_t size) {
    if ((choice & 0x80) != 0) {
        return Bytes(data, data + size);
    }
    const size_t length = schema_view::row_layout(ti).row_buffer_size;
    Bytes image(sizeof length + length);
    std::memcpy(image.data(), &length, sizeof length);
    if (size > 0) {
        std::memcpy(image.data() + sizeof length, data, std::min(size, length));
    }
    return image;
}

OAK_RETCODE swallow(OAK_OUTPUT_CTX ctx, uint32_t) {
    ++*static_cast<size_t *>(ctx);
    return sOKAY;
}

/// Every value as text and as a hash; neither may fail but by its own statuses.
void read_values(const OAK_ROW &row) {
    for (OAK_COL_INDEX p = 0; p < row.ti->num_cols; ++p) {
        const SCH_COL_INFO_C ci = schema_view::live_column(row.ti, p);
        OAK_VALUE value;
        if (!value_of(row, p, &value)) {
            continue;
        }
        size_t characters = 0;
        if (sch_col_data_type(ci) != OAK_VARBINARY) { // whose text form is of its record
            OAK_IGNORE_STATUS(sch_col_tostring_fcn(ci, &value, 0, 0, swallow, &characters),
                              "a value that has no text is refused");
        }
        B_HASHCTX hash;
        b_hashFcnStart(&hash);
        OAK_IGNORE_STATUS(sch_col_type_c(ci)->type_info->hashfcn(sch_col_type_c(ci), &value, &hash),
                          "a record that is no decimal is refused");
        require(sch_col_cmp_fcn(ci, 0, &value, &value) == OAK_EQ);
    }
}

/// A row that can be stored in compact form reads back. A decimal whose record has
/// more digits than the column may lose them on the way, and the negative zero that
/// is left of one its sign on the next; after that nothing changes any more.
void check_compact(Bench &bench) {
    Bytes stream, again;
    const OAK_RETCODE rc = bench.write(row_pack_compact, &stream);
    if (rc != sOKAY) {
        require(rc == eBADDATALEN || rc == eINVBCD);
        return;
    }
    Bench second(bench.ti), third(bench.ti);
    require(second.read(row_unpack_compact, stream) == sOKAY);
    require(second.write(row_pack_compact, &stream) == sOKAY);
    require(third.read(row_unpack_compact, stream) == sOKAY);
    require_equal(second.row, third.row);
    require(third.write(row_pack_compact, &again) == sOKAY);
    require(stream == again);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) {
        return 0;
    }
    const SCH_TBL_INFO_C ti = pick_table(data[0] & 0x7f);
    const Bytes image = image_of(ti, data[0], data + 1, size - 1);
    Bench bench(ti);
    const OAK_RETCODE rc = bench.read(row_unpack_expanded, image);
    if (rc != sOKAY) {
        require(rc == eDBCORRUPTED || rc == eEOD);
        return 0;
    }
    Bytes written, again;
    require(bench.write(row_pack_expanded, &written) == sOKAY);
    Bench second(ti);
    require(second.read(row_unpack_expanded, written) == sOKAY);
    require(second.write(row_pack_expanded, &again) == sOKAY);
    require(written == again);
    require_equal(bench.row, second.row);
    read_values(bench.row);
    check_compact(bench);
    return 0;
}
