// Stored streams into values and record buffers: any bytes for any type. The
// first byte picks the type, the second the elements or the length of its column,
// the rest is the stream.
//
// Held here: a record buffer of exactly the column's length is never overrun (the
// sanitizer sees it); only the statuses of damaged data come out; what was read
// packs again and reads back equal; a value and a record buffer agree; a failure
// leaves the payload alone.
#include <cstring>
#include <vector>

#include "../tests/support/type_descriptors.h"
#include "buff.h"
#include "encoder.h"

namespace {

using namespace oaktest;

void require(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}

_SCH_TYPE_INFO pick(uint8_t choice, uint8_t extent) {
    static constexpr OAK_TYPE ARRAYABLE[] = {OAK_BOOL,   OAK_INT8,  OAK_UINT8,  OAK_INT16,
                                             OAK_UINT16, OAK_INT32, OAK_UINT32, OAK_INT64,
                                             OAK_UINT64, OAK_FLOAT, OAK_DOUBLE};
    static constexpr OAK_TYPE OTHERS[] = {OAK_ROWID,     OAK_DATE,        OAK_TIME, OAK_TIMETZ,
                                          OAK_TIMESTAMP, OAK_TIMESTAMPTZ, OAK_UUID};
    size_t index = choice % (std::size(ARRAYABLE) + std::size(OTHERS) + 4);
    if (index < std::size(ARRAYABLE)) {
        return number_type(ARRAYABLE[index], extent);
    }
    index -= std::size(ARRAYABLE);
    if (index < std::size(OTHERS)) {
        return descriptor(OTHERS[index]);
    }
    switch (index - std::size(OTHERS)) {
        case 0:
            return decimal_type(extent, extent / 2);
        case 1:
            return text_type(static_cast<uint16_t>(extent * 100));
        case 2:
            return binary_type(extent);
        default:
            return varbinary_type(static_cast<uint16_t>(extent * 100));
    }
}

bool is_damage(OAK_RETCODE rc) {
    return rc == eDBCORRUPTED || rc == eEOD || rc == eINVVARINT || rc == eINVBCD;
}

// A decoder over the stream, and a tag for what it yields.
struct Source {
    Source(const uint8_t *stream, size_t size) : tag(OSL_CREATE_TAG()) {
        b_buffInit(&bytes, tag);
        b_buffSetStatic(&bytes, stream, size);
        require(b_decoderCreate(b_buffInputByte, b_buffInputBytesBulk, &bytes, tag, &decoder) ==
                sOKAY);
    }
    ~Source() { OSL_FREE_TAG(tag); }
    Source(const Source &) = delete;
    Source &operator=(const Source &) = delete;

    OSL_MEMTAG tag;
    OAK_BUFFER bytes;
    B_DECODER decoder = nullptr;
};

void check_packs_again(const _SCH_TYPE_INFO &type, const OAK_VALUE &value) {
    const OSL_MEMTAG tag = OSL_CREATE_TAG();
    OAK_BUFFER packed;
    B_ENCODER encoder = nullptr;
    b_buffInit(&packed, tag);
    require(b_encoderCreate(b_buffEmitByte, b_buffEmitBytesBulk, &packed, tag, &encoder) == sOKAY);
    require(type.type_info->pack_fcn(&type, &value, encoder) == sOKAY);
    Source source(packed.data, packed.len);
    OAK_VALUE again{};
    require(type.type_info->unpack_fcn(&type, &again, source.tag, source.decoder) == sOKAY);
    require(source.bytes.pos == source.bytes.len);
    require(type.type_info->cmp(&type, 0, &value, &again) == OAK_EQ);
    OSL_FREE_TAG(tag);
}

void check_agrees_with_record(const _SCH_TYPE_INFO &type, const OAK_VALUE &value,
                              const std::vector<uint8_t> &record) {
    OAK_VALUE held{};
    held.type = type.type;
    require(type.type_info->assign_from_buff_fcn(&type, &held, record.data(), record.size()) ==
            sOKAY);
    require(type.type_info->cmp(&type, 0, &value, &held) == OAK_EQ);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 2) {
        return 0;
    }
    const _SCH_TYPE_INFO type = pick(data[0], data[1]);
    const OAK_TYPE_INFO &ops = *type.type_info;

    Source source(data + 2, size - 2);
    OAK_VALUE value{};
    value.vt.u64v = 0x5A5A5A5A5A5A5A5A;
    const OAK_RETCODE rc = ops.unpack_fcn(&type, &value, source.tag, source.decoder);
    require(rc == sOKAY || is_damage(rc));
    if (rc == sOKAY) {
        check_packs_again(type, value);
    } else {
        require(value.vt.u64v == 0x5A5A5A5A5A5A5A5A);
    }

    Source record_source(data + 2, size - 2);
    std::vector<uint8_t> record(type.byte_len); // positions that no run covers are 0 in both
    OAK_HAS_VALUE_T has_value = 0;
    const OAK_RETCODE record_rc =
        ops.unpack_to_buff_fcn(&type, record.data(), &has_value, record_source.decoder);
    require(record_rc == sOKAY || is_damage(record_rc) || record.empty());
    require((record_rc == sOKAY) == (has_value == 1));
    if (record_rc == sOKAY) {
        require(rc == sOKAY); // what fits a record fits a value
    }
    if (record_rc == sOKAY && !record.empty()) {
        check_agrees_with_record(type, value, record);
    }
    return 0;
}
