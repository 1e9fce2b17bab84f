// Text into values: any text for any type. The first byte picks the type, the
// second the flags and the element, the rest is the text.
//
// Held here: a text that is taken makes a valid value of the column's type, which
// can be written again; a number that was written reads back as the same number;
// a text that is refused leaves the payload of a pointed type alone.
#include <cstring>
#include <string>

#include "../tests/support/type_descriptors.h"

namespace {

using namespace oaktest;

// Every type that has text, as a scalar and, where it has arrays, as one of 3.
_SCH_TYPE_INFO pick(uint8_t choice) {
    static constexpr OAK_TYPE ARRAYABLE[] = {OAK_BOOL,   OAK_INT8,  OAK_UINT8,  OAK_INT16,
                                             OAK_UINT16, OAK_INT32, OAK_UINT32, OAK_INT64,
                                             OAK_UINT64, OAK_FLOAT, OAK_DOUBLE};
    static constexpr OAK_TYPE OTHERS[] = {OAK_ROWID,     OAK_DATE,        OAK_TIME, OAK_TIMETZ,
                                          OAK_TIMESTAMP, OAK_TIMESTAMPTZ, OAK_UUID};
    constexpr size_t arrayable = std::size(ARRAYABLE);
    size_t index = choice % (2 * arrayable + std::size(OTHERS) + 4);
    if (index < 2 * arrayable) {
        return number_type(ARRAYABLE[index / 2], index % 2 == 0 ? 0 : 3);
    }
    index -= 2 * arrayable;
    if (index < std::size(OTHERS)) {
        return descriptor(OTHERS[index]);
    }
    switch (index - std::size(OTHERS)) {
        case 0:
            return decimal_type(20, 5);
        case 1:
            return text_type(40);
        case 2:
            return binary_type(8);
        default:
            return varbinary_type(8);
    }
}

OAK_RETCODE append(OAK_OUTPUT_CTX ctx, uint32_t ch) {
    static_cast<std::string *>(ctx)->push_back(static_cast<char>(ch));
    return sOKAY;
}

void require(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}

bool is_number(OAK_TYPE type) {
    const unsigned kind = static_cast<unsigned>(type) & 0x0F;
    return kind == 1 || kind == 2 || kind == 3 || type == OAK_ROWID;
}

void check_number_reads_back(const _SCH_TYPE_INFO &type, const OAK_VALUE &value, uint32_t elem,
                             const std::string &written, OSL_MEMTAG tag) {
    OAK_VALUE again{};
    const OAK_TYPE_INFO &ops = *type.type_info;
    require(ops.fromstring(&type, &again, elem, 0, tag, written.c_str()) == sOKAY);
    require(ops.cmp(&type, 0, &value, &again) == OAK_EQ);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 2) {
        return 0;
    }
    const _SCH_TYPE_INFO type = pick(data[0]);
    const uint32_t flags = data[1] & (B_TYPE_TEXT_BASE64 | B_TYPE_TEXT_DISCARD);
    const uint32_t elem = data[1] & 3;
    const std::string text(reinterpret_cast<const char *>(data) + 2, size - 2);
    const OAK_TYPE_INFO &ops = *type.type_info;
    const OSL_MEMTAG tag = OSL_CREATE_TAG();
    OAK_VALUE value{};
    const OAK_RETCODE rc = ops.fromstring(&type, &value, elem, flags, tag, text.c_str());
    require((rc >= sOKAY) == (value.status == vsOKAY));
    require(value.type == type.type && value.elts == type.elems);
    if (rc >= sOKAY) {
        std::string written;
        const OAK_RETCODE wrote = ops.tostring(&type, &value, elem, flags, append, &written);
        if (is_number(type.type)) {
            require(wrote == sOKAY);
        }
        if (is_number(type.type) && (flags & B_TYPE_TEXT_DISCARD) == 0) {
            check_number_reads_back(type, value, elem, written, tag);
        }
    } else if (ops.free_fcn != nullptr && type.type != OAK_ROWID) {
        require(value.vt.pv == nullptr);
    }
    OSL_FREE_TAG(tag);
    return 0;
}
