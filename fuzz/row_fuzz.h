// What the two row fuzz targets share: the rich schema, loaded once, and rows with
// their streams under one tag. The first byte of an input picks the table.
#ifndef ROW_FUZZ_H
#define ROW_FUZZ_H

#include <cstring>
#include <string>
#include <vector>

#include "../tests/support/plain_table.h"
#include "../tests/support/rich_catalog.h"
#include "row_compact.h"
#include "row_expanded.h"
#include "row_internal.h"
#include "schema_fcns.h"
#include "schema_load.h"

namespace rowfuzz {

using namespace oaktest;
using Bytes = std::vector<uint8_t>;

inline void require(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}

inline SCH_TBL_INFO pick_table(uint8_t choice) {
    static const SCH_INFO schema = [] {
        SCH_INFO loaded = nullptr;
        require(sch_read_database_schema(&loaded, nullptr, kRichCatalog, OAK_FALSE) == sOKAY);
        return loaded;
    }();
    constexpr uint8_t kTables = 6; // and the system table
    return sch_find_table_by_ndx(schema, static_cast<OAK_TBL_INDEX>(choice % (kTables + 1)));
}

/// What a reader of stored rows may answer to damage.
inline bool is_damage(OAK_RETCODE rc) {
    return rc == eDBCORRUPTED || rc == eEOD || rc == eINVVARINT || rc == eINVBCD;
}

/// A row with everything that it is read from and written to.
class Bench {
  public:
    explicit Bench(SCH_TBL_INFO_C table) : ti(table), tag_(OSL_CREATE_TAG()) {
        b_buffInit(&in_, tag_);
        b_buffInit(&out_, tag_);
        require(b_decoderCreate(b_buffInputByte, b_buffInputBytesBulk, &in_, tag_, &decoder_) ==
                sOKAY);
        require(b_encoderCreate(b_buffEmitByte, b_buffEmitBytesBulk, &out_, tag_, &encoder_) ==
                sOKAY);
    }
    ~Bench() { OSL_FREE_TAG(tag_); }
    Bench(const Bench &) = delete;
    Bench &operator=(const Bench &) = delete;

    using Unpack = decltype(&row_unpack_compact);
    OAK_RETCODE read(Unpack unpack, const uint8_t *data, size_t size) {
        b_buffSetStatic(&in_, data, size);
        const OAK_RETCODE rc = unpack(&row, decoder_, 7, ti, tag_, nullptr, nullptr);
        if (rc != sOKAY) {
            require(row.row_data == nullptr && row.avls == nullptr && row.joins == nullptr);
        }
        return rc;
    }
    OAK_RETCODE read(Unpack unpack, const Bytes &bytes) {
        return read(unpack, bytes.data(), bytes.size());
    }

    using Pack = decltype(&row_pack_compact);
    OAK_RETCODE write(Pack pack, Bytes *bytes) {
        b_encoderReset(encoder_);
        const OAK_RETCODE rc = pack(&row, encoder_);
        bytes->assign(out_.data, out_.data + out_.len);
        return rc;
    }

    SCH_TBL_INFO_C ti;
    OAK_ROW row{};

  private:
    OSL_MEMTAG tag_;
    OAK_BUFFER in_{}, out_{};
    B_DECODER decoder_ = nullptr;
    B_ENCODER encoder_ = nullptr;
};

/// The column's value in the row, without a copy; false where it has none.
inline bool value_of(const OAK_ROW &row, OAK_COL_INDEX position, OAK_VALUE *value) {
    const SCH_COL_INFO_C ci = schema_view::live_column(row.ti, position);
    const uint8_t *data = row.data.b.col_data;
    if (row.data.b.col_status[position] != vsOKAY || sch_col_is_lob(ci)) {
        return false;
    }
    const OAK_HAS_VALUE_T *has_value = ci->has_value_off != 0 ? data + ci->has_value_off : nullptr;
    *value = OAK_VALUE{};
    value->elts = sch_col_num_elems(ci); // of an array: the value points at it
    const OAK_RETCODE rc =
        sch_col_assign_from_buff_fcn(ci, value, data + ci->ptr, sch_col_byte_len(ci), has_value);
    return rc == sOKAY && value->status == vsOKAY;
}

/// Both rows have the same statuses, links, joins and values.
inline void require_equal(const OAK_ROW &one, const OAK_ROW &other) {
    for (OAK_KEY_INDEX i = 0; i < one.ti->num_avls; ++i) {
        require(one.avls[i].left == other.avls[i].left &&
                one.avls[i].right == other.avls[i].right &&
                one.avls[i].flags == other.avls[i].flags);
    }
    for (OAK_REF_INDEX i = 0; i < one.ti->num_refs; ++i) {
        require(one.joins[i].owner == other.joins[i].owner);
    }
    for (OAK_COL_INDEX p = 0; p < one.ti->num_cols; ++p) {
        require(one.data.b.col_status[p] == other.data.b.col_status[p]);
        OAK_VALUE value, again;
        const bool has_one = value_of(one, p, &value);
        require(has_one == value_of(other, p, &again));
        if (has_one) {
            require(sch_col_cmp_fcn(schema_view::live_column(one.ti, p), 0, &value, &again) ==
                    OAK_EQ);
        }
    }
}

} // namespace rowfuzz

#endif
