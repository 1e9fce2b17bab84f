// Hostile streams into the reader of compact rows. What was read is written again:
// that stream reads back with the same statuses and values, writes the same bytes,
// and says the same to the plain decoder as the row's expanded image does.
#include "row_fuzz.h"

using namespace rowfuzz;

namespace {

void check_row_forms(Bench &bench) {
    Bytes stream, again;
    require(bench.write(row_pack_compact, &stream) == sOKAY);
    require(row_convert(&bench.row, OAK_ROW_FORMAT_COMPACT) == sOKAY);
    require(bench.write(row_pack_compact, &again) == sOKAY);
    require(stream == again);
    require(row_convert(&bench.row, OAK_ROW_FORMAT_BUFFER) == sOKAY);
    require(bench.write(row_pack_compact, &again) == sOKAY);
    require(stream == again);
}

void check_plain_decoder(Bench &bench, const Bytes &stream) {
    const plain::Table table = plain_table(bench.ti);
    Bytes image;
    require(bench.write(row_pack_expanded, &image) == sOKAY);
    plain::Reader compact(stream), expanded(image);
    require(plain::compact_row(table, compact) == plain::expanded_row(table, expanded));
    require(compact.at_end() && expanded.at_end());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) {
        return 0;
    }
    const SCH_TBL_INFO_C ti = pick_table(data[0]);
    Bench bench(ti), second(ti);
    const OAK_RETCODE rc = bench.read(row_unpack_compact, data + 1, size - 1);
    if (rc != sOKAY) {
        require(is_damage(rc));
        return 0;
    }
    Bytes stream, again;
    require(bench.write(row_pack_compact, &stream) == sOKAY);
    require(second.read(row_unpack_compact, stream) == sOKAY);
    require_equal(bench.row, second.row);
    require(second.write(row_pack_compact, &again) == sOKAY);
    require(stream == again);
    if (sch_tbl_schema(ti) != nullptr) { // the system table's rows are longer than its layout
        check_plain_decoder(bench, stream);
    }
    check_row_forms(bench);
    return 0;
}
