// Conversions of any source, of any bytes, to any destination, by every entry point. The
// first bytes choose types, formats, room and elements, the rest is the payload: text,
// binary, or the bytes of numbers, dates, decimals and UUIDs, valid or not. Payloads and
// buffers are allocated to their exact sizes, so that a sanitizer sees a byte too many.
// Traps when the entry points disagree, when a size exceeds its room or is not what was
// measured, when text is not terminated, and when a refused pair is not refused by all.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "bcd.h"
#include "convert.h"
#include "convert_internal.h"
#include "types.h"
#include "value.h"

namespace {

void require(bool truth) {
    if (!truth)
        __builtin_trap();
}

constexpr OAK_TYPE kTypes[] = {
    OAK_CHAR,      OAK_VARCHAR,     OAK_WCHAR_UTF8, OAK_WVARCHAR_UTF8, OAK_CLOB,  OAK_WCLOB_UTF8,
    OAK_BINARY,    OAK_VARBINARY,   OAK_BLOB,       OAK_BOOL,          OAK_INT8,  OAK_UINT8,
    OAK_INT16,     OAK_UINT16,      OAK_INT32,      OAK_UINT32,        OAK_INT64, OAK_UINT64,
    OAK_FLOAT,     OAK_DOUBLE,      OAK_BCD,        OAK_DATE,          OAK_TIME,  OAK_TIMETZ,
    OAK_TIMESTAMP, OAK_TIMESTAMPTZ, OAK_ROWID,      OAK_UUID,          OAK_WCHAR, OAK_WVARCHAR,
    OAK_SUBQUERY,  OAK_NOVAL};

bool is_text(OAK_TYPE type) {
    return (static_cast<unsigned>(type) & OAK_TYPE_CLASS_MASK) == OAK_TYPE_CLASS_TEXT;
}
bool is_binary(OAK_TYPE type) {
    return (static_cast<unsigned>(type) & OAK_TYPE_CLASS_MASK) == OAK_TYPE_CLASS_BINARY;
}
bool is_moment(OAK_TYPE type) {
    return (static_cast<unsigned>(type) & OAK_TYPE_CLASS_MASK) == OAK_TYPE_CLASS_DATETIME;
}
bool is_inline(OAK_TYPE type) {
    return !is_text(type) && !is_binary(type) && type != OAK_BCD && type != OAK_UUID &&
           type != OAK_TIMESTAMPTZ;
}

// What the first bytes choose.
struct Choice {
    OAK_TYPE from;
    OAK_TYPE to;
    OAK_DATE_FORMAT date_format;
    int8_t separator;
    OAK_TIME_FORMAT time_format;
    int16_t zone;
    size_t room;
    uint32_t elements;
};
constexpr size_t kChoiceBytes = 9;

Choice choice_of(const uint8_t *data) {
    const auto type = [](uint8_t byte) { return kTypes[byte % (sizeof kTypes / sizeof *kTypes)]; };
    return {type(data[0]),
            type(data[1]),
            static_cast<OAK_DATE_FORMAT>(data[2] % 5),
            static_cast<int8_t>(data[3]),
            static_cast<OAK_TIME_FORMAT>(data[4] % 10),
            static_cast<int16_t>(data[5] * 8 - 1024),
            static_cast<size_t>(data[6]) + (data[7] & 0x80 ? 65536u : 0u),
            static_cast<uint32_t>(data[8] % 6)};
}

// The payload of a source, no byte longer than it must be.
std::vector<uint8_t> payload_of(const Choice &choice, const uint8_t *data, size_t size) {
    std::vector<uint8_t> bytes(data, data + size);
    if (is_text(choice.from)) {
        bytes.push_back(0); // and for wide text, which is not read, as much again
        return bytes;
    }
    if (!is_binary(choice.from))
        bytes.resize(b_typeGetLength(choice.from) * std::max(choice.elements, 1U));
    return bytes;
}

// A value over a payload.
OAK_VALUE value_of(const Choice &choice, const std::vector<uint8_t> &payload) {
    OAK_VALUE value;
    oak_valueInitWithStatusAndType(&value, vsOKAY, choice.from);
    const bool has_length = is_text(choice.from) || is_binary(choice.from);
    value.len = has_length ? payload.size() : 0;
    value.elts = has_length || is_moment(choice.from) ? 0 : choice.elements;
    if (payload.empty())
        value.elts = 0;
    else if (is_inline(choice.from) && value.elts == 0)
        std::memcpy(&value.vt, payload.data(), std::min(payload.size(), sizeof value.vt));
    else
        value.vt.pv = payload.data();
    return value;
}

OAK_RETCODE into_buffer(const OAK_VALUE &value, const Choice &choice, void *buffer, size_t room,
                        size_t *size) {
    return b_convertOakValueToBuffer(&value, choice.to, choice.date_format, choice.separator,
                                     choice.time_format, choice.zone, buffer, room, nullptr, size);
}

// A plain buffer of the chosen room, at least that of one element of a fixed size.
void check_buffer(const OAK_VALUE &value, const Choice &choice) {
    const size_t least = std::max<size_t>(b_typeGetLength(choice.to), 1);
    std::vector<uint8_t> buffer(std::max(choice.room, least), 0xEE);
    size_t size = 0, measured = 0;
    const OAK_RETCODE rc = into_buffer(value, choice, buffer.data(), buffer.size(), &size);
    const OAK_RETCODE measure = into_buffer(value, choice, nullptr, 0, &measured);
    CNVCODE code = 0;
    const OAK_RETCODE verified = b_convertVerify(choice.from, choice.to, &code);
    require((rc == eINVCONVERT) == (verified != sOKAY || cnvFcns[code].function == nullptr));
    require((measure == eINVCONVERT) == (rc == eINVCONVERT));
    if (rc < sOKAY)
        return;
    const bool one_character = is_text(choice.to) && buffer.size() == 1;
    const bool no_room = is_text(choice.to) && is_binary(choice.from) && buffer.size() < 3;
    require(size <= buffer.size() || one_character || no_room);
    if (is_text(choice.to) && size > 1 && !one_character && !no_room)
        require(std::memchr(buffer.data(), 0, size) != nullptr);
    if (rc == sOKAY && measure == sOKAY && !one_character)
        require(size == measured);
}

// The front door, twice where that is the same road.
void check_door(const OAK_VALUE &value, const Choice &choice, const std::vector<uint8_t> &payload,
                OSL_MEMTAG tag) {
    OAK_VALUE converted, raw;
    const OAK_RETCODE rc =
        oak_valueConvert(&converted, &value, choice.to, choice.room, choice.date_format,
                         choice.separator, choice.time_format, choice.zone, tag);
    if (rc == sOKAY || rc == sTRUNCATE) {
        require(converted.status == vsOKAY || choice.from == OAK_SUBQUERY ||
                converted.status == value.status);
        if (is_text(converted.type) && converted.vt.cv != nullptr && converted.type != OAK_WCHAR &&
            converted.type != OAK_WVARCHAR)
            require(converted.len == std::strlen(converted.vt.cv) + 1 || choice.from == choice.to);
        if (is_binary(converted.type))
            require(converted.len == 0 || converted.vt.pv != nullptr);
    }
    const OAK_RETCODE raw_rc = oak_valueConvertFromBuffer(
        &raw, choice.to, choice.room, payload.data(), choice.from, value.len, choice.date_format,
        choice.separator, choice.time_format, choice.zone, tag);
    const bool same_type = converted.type == choice.from && rc >= sOKAY;
    const bool one_letter = choice.to == OAK_INT8 && choice.room == 0 && value.len == 2;
    if (value.elts != 0 || same_type || one_letter || choice.from == OAK_SUBQUERY)
        return;
    require(raw_rc == rc);
    require(raw.type == converted.type);
    if (is_text(raw.type) && !is_moment(choice.from))
        require(std::strcmp(raw.vt.cv, converted.vt.cv) == 0);
}

void check_prepared(const OAK_VALUE &value, const Choice &choice, OSL_MEMTAG tag) {
    const size_t least = std::max<size_t>(b_typeGetLength(choice.to), 1);
    std::vector<uint8_t> buffer(std::max(choice.room, least), 0xEE);
    OAK_VALUE into;
    oak_valueInitWithStatusAndType(&into, vsOKAY, choice.to);
    if (!is_inline(choice.to))
        into.vt.pv = buffer.data();
    OAK_IGNORE_STATUS(b_convertOakValue(&value, &into, choice.to, buffer.size(), choice.date_format,
                                        choice.separator, choice.time_format, choice.zone, tag),
                      "every status is allowed, every byte is watched");
}

void check_array_text(const OAK_VALUE &value, const uint8_t *data, OSL_MEMTAG tag) {
    char *text = nullptr;
    const OAK_RETCODE rc = b_convertArrayToString(&value, &text, static_cast<int8_t>(data[6]),
                                                  static_cast<int8_t>(data[7]), tag);
    require((rc == sOKAY) == (text != nullptr));
    if (text != nullptr)
        require(std::strncmp(text, "ARRAY[", 6) == 0 && text[std::strlen(text) - 1] == ']');
}

// A packed decimal of any precision and scale, by the slot's number.
void check_packed(const uint8_t *data, size_t size) {
    constexpr CNVCODE kFirst = 219, kCount = 9;
    const uint8_t prec = data[2];
    std::vector<uint8_t> packed(data + kChoiceBytes, data + size);
    packed.resize(OAK_PACKED_BCD_SIZE(prec));
    uint8_t out[sizeof(OAK_BCD_T)];
    CNVCB block{};
    block.pvSrc = packed.data();
    block.pvDst = out;
    block.tDstLen = sizeof out;
    block.prec = prec;
    block.scale = data[3];
    const OAK_RETCODE rc = cnvFcns[kFirst + data[0] % kCount].function(&block);
    require(rc < sOKAY || block.tSize <= sizeof out);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < kChoiceBytes)
        return 0;
    const Choice choice = choice_of(data);
    const std::vector<uint8_t> payload =
        payload_of(choice, data + kChoiceBytes, size - kChoiceBytes);
    const OAK_VALUE value = value_of(choice, payload);
    const OSL_MEMTAG tag = OSL_CREATE_TAG();
    check_buffer(value, choice);
    check_door(value, choice, payload, tag);
    check_prepared(value, choice, tag);
    check_array_text(value, data, tag);
    check_packed(data, size);
    OSL_FREE_TAG(tag);
    return 0;
}
