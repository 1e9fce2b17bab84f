// The storable types as text: tostring and fromstring. Rests on the decimals,
// the calendar, UUIDs, base 64 and the platform's number parsers; called by the
// column operations and by tools that load and unload tables as text.
//
// Reading begins in the same way for every type: `len` becomes 0, type and
// element count those of the column, before the text is looked at. The payload
// is stored last; of a text that is refused nothing stays allocated and the
// payload is as it was.
#include "oakvaluetypes_internal.h"

#include <cfloat>
#include <cmath>
#include <strings.h>
#include <type_traits>
#include <utility>

#include "base64.h"
#include "bcd.h"
#include "buff.h"
#include "datetime_internal.h"
#include "uuid.h"

using namespace typeops;

namespace {

constexpr size_t VARBINARY_MAX = UINT16_MAX;

// Where text goes.
struct Sink {
    OAK_OUTPUT_FCN fcn;
    OAK_OUTPUT_CTX ctx;
};

bool as_base64(uint32_t flags) {
    return (flags & B_TYPE_TEXT_BASE64) != 0;
}

bool discards(uint32_t flags) {
    return (flags & B_TYPE_TEXT_DISCARD) != 0;
}

// ---- Writing numbers ----------------------------------------------------------------

template <class Traits>
OAK_RETCODE write_element(typename Traits::Element number, Sink sink) {
    using Element = typename Traits::Element;
    if constexpr (std::is_same_v<Traits, bool_traits>) {
        return osl_outputString(sink.fcn, sink.ctx, number == OAK_TRUE ? "true" : "false");
    } else if constexpr (std::is_floating_point_v<Element>) {
        return osl_fnprintf(sink.fcn, sink.ctx, "%.17g", static_cast<double>(number));
    } else if constexpr (std::is_signed_v<Element>) {
        return osl_fnprintf(sink.fcn, sink.ctx, "%ld", static_cast<long>(number));
    } else {
        return osl_fnprintf(sink.fcn, sink.ctx, "%lu", static_cast<unsigned long>(number));
    }
}

// The scalar, or one element of an array column.
template <class Traits>
OAK_RETCODE write_arrayable(SCH_TYPE_INFO_C pi, const OAK_VALUE *value, uint32_t elem,
                            uint32_t flags, Sink sink) {
    if (discards(flags)) {
        return sOKAY;
    }
    if (value == nullptr) {
        return eINVNULLARG;
    }
    const uint32_t declared = sch_type_num_elems(pi);
    const uint32_t index = declared == 0 ? 0 : elem;
    const Elements elements = elements_of(value);
    if ((declared != 0 && elem >= declared) || index >= elements.count) {
        return eRANGE;
    }
    return write_element<Traits>(load_element<typename Traits::Element>(elements, index), sink);
}

// ---- Writing the other types ----------------------------------------------------------

using WriteRule = OAK_RETCODE (*)(const OAK_VALUE *value, uint32_t flags, Sink sink);

OAK_RETCODE write_bcd(const OAK_VALUE *value, uint32_t, Sink sink) {
    return oak_bcdFormatWithScale(value->vt.bcd, OAK_BCD_FREE_SCALE, OAK_TRUE, sink.fcn, sink.ctx);
}

OAK_RETCODE write_date(const OAK_VALUE *value, uint32_t, Sink sink) {
    return dt_dateFormat(value->vt.dtv, OAK_YYYYMMDD, '-', sink.fcn, sink.ctx);
}

OAK_RETCODE write_time(const OAK_VALUE *value, uint32_t, Sink sink) {
    return dt_timeFormat(value->vt.tmv, OAK_HHMMSSFFFF, sink.fcn, sink.ctx);
}

OAK_RETCODE write_timetz(const OAK_VALUE *value, uint32_t, Sink sink) {
    return dt_timetzFormat(value->vt.tmzv, OAK_HHMMSSFFFF, sink.fcn, sink.ctx);
}

OAK_RETCODE write_timestamp(const OAK_VALUE *value, uint32_t, Sink sink) {
    return dt_timestampFormat(value->vt.tsv, OAK_YYYYMMDD, '-', OAK_HHMMSSFFFF, sink.fcn, sink.ctx);
}

OAK_RETCODE write_timestamptz(const OAK_VALUE *value, uint32_t, Sink sink) {
    return dt_timestamptzFormat(load<OAK_PACKED_TIMESTAMPTZ_T>(value->vt.pv), OAK_YYYYMMDD, '-',
                                OAK_HHMMSSFFFF, sink.fcn, sink.ctx);
}

OAK_RETCODE write_uuid(const OAK_VALUE *value, uint32_t, Sink sink) {
    const auto uuid = load<OAK_UUID_T>(value->vt.pv);
    return b_uuidFormat(&uuid, OAK_TRUE, sink.fcn, sink.ctx);
}

// `size` bytes of which `at_hand` lie at the place; the rest is zero.
struct ByteRun {
    const uint8_t *place;
    size_t at_hand;
    size_t size;

    uint8_t operator[](size_t index) const { return index < at_hand ? place[index] : uint8_t{0}; }
};

OAK_RETCODE write_base64(const ByteRun &bytes, Sink sink) {
    B_BASE64 record;
    b_base64EncodeStart(&record, sink.fcn, sink.ctx);
    for (size_t i = 0; i < bytes.size; ++i) {
        const OAK_RETCODE rc = b_base64EncodeByte(&record, bytes[i]);
        if (rc != sOKAY) {
            return rc;
        }
    }
    return b_base64EncodeEnd(&record);
}

// Two upper-case digits a byte, without a prefix.
OAK_RETCODE write_hexadecimal(const ByteRun &bytes, Sink sink) {
    static constexpr char DIGITS[] = "0123456789ABCDEF";
    for (size_t i = 0; i < bytes.size; ++i) {
        OAK_RETCODE rc = sink.fcn(sink.ctx, static_cast<uint8_t>(DIGITS[bytes[i] >> 4]));
        if (rc == sOKAY) {
            rc = sink.fcn(sink.ctx, static_cast<uint8_t>(DIGITS[bytes[i] & 0x0F]));
        }
        if (rc != sOKAY) {
            return rc;
        }
    }
    return sOKAY;
}

OAK_RETCODE tostring_emit_binary(const ByteRun &bytes, uint32_t flags, Sink sink) {
    if (sink.fcn == nullptr || (bytes.at_hand != 0 && bytes.place == nullptr)) {
        return eINVNULLARG;
    }
    return as_base64(flags) ? write_base64(bytes, sink) : write_hexadecimal(bytes, sink);
}

OAK_RETCODE write_utf8(const OAK_VALUE *value, uint32_t flags, Sink sink) {
    if (!as_base64(flags)) {
        return osl_outputString(sink.fcn, sink.ctx, value->vt.cv);
    }
    const size_t length = strlen(value->vt.cv);
    return tostring_emit_binary({static_cast<const uint8_t *>(value->vt.pv), length, length}, flags,
                                sink);
}

OAK_RETCODE write_binary(SCH_TYPE_INFO_C pi, const OAK_VALUE *value, uint32_t flags, Sink sink) {
    if (value == nullptr) {
        return eINVNULLARG;
    }
    return tostring_emit_binary({static_cast<const uint8_t *>(value->vt.pv),
                                 binary_bytes_at_hand(pi, value), sch_type_length(pi)},
                                flags, sink);
}

// A value without a length has its bytes behind a length of their own, as text
// input and record buffers lay them out; any other has `len` bytes.
ByteRun varbinary_bytes(const OAK_VALUE *value) {
    const auto *place = static_cast<const uint8_t *>(value->vt.pv);
    if (value->len != 0) {
        return {place, value->len, value->len};
    }
    if (place == nullptr) {
        return {nullptr, 0, 0};
    }
    const size_t length = load<uint16_t>(place);
    return {place + sizeof(uint16_t), length, length};
}

OAK_RETCODE write_varbinary(const OAK_VALUE *value, uint32_t flags, Sink sink) {
    if (value == nullptr) {
        return eINVNULLARG;
    }
    return tostring_emit_binary(varbinary_bytes(value), flags, sink);
}

OAK_RETCODE write_single(WriteRule rule, bool pointed, const OAK_VALUE *value, uint32_t flags,
                         Sink sink) {
    if (discards(flags)) {
        return sOKAY;
    }
    if (value == nullptr || sink.fcn == nullptr || (pointed && value->vt.pv == nullptr)) {
        return eINVNULLARG;
    }
    return rule(value, flags, sink);
}

// ---- Reading numbers ------------------------------------------------------------------

OAK_RETCODE read_bool(const char *text, uint32_t *number) {
    if (strcasecmp(text, "true") == 0) {
        *number = OAK_TRUE;
        return sOKAY;
    }
    if (strcasecmp(text, "false") == 0) {
        *number = OAK_FALSE;
        return sOKAY;
    }
    return eRANGE;
}

// Any text is a number: what does not begin with one is 0. The point is '.' in
// every locale.
OAK_RETCODE read_double(const char *text, double *number) {
    *number = osl_atof(text);
    return sOKAY;
}

// What a 32-bit normal number cannot hold is refused, and zero with it: a float
// column has never taken 0 from text, and loaders rely on being told.
OAK_RETCODE read_float(const char *text, float *number) {
    const double wide = osl_atof(text);
    const double magnitude = std::fabs(wide);
    if (magnitude < static_cast<double>(FLT_MIN) || magnitude > static_cast<double>(FLT_MAX)) {
        return eRANGE;
    }
    *number = static_cast<float>(wide);
    return sOKAY;
}

template <class Integer>
OAK_RETCODE read_integer(const char *text, Integer *number) {
    int64_t wide = 0;
    const OAK_RETCODE rc = osl_atoi64(text, &wide);
    if (rc != sOKAY) {
        return rc;
    }
    if (!std::in_range<Integer>(wide)) {
        return eRANGE;
    }
    *number = static_cast<Integer>(wide);
    return sOKAY;
}

template <class Traits>
OAK_RETCODE read_element(const char *text, typename Traits::Element *number) {
    using Element = typename Traits::Element;
    if constexpr (std::is_same_v<Traits, bool_traits>) {
        return read_bool(text, number);
    } else if constexpr (std::is_same_v<Element, double>) {
        return read_double(text, number);
    } else if constexpr (std::is_same_v<Element, float>) {
        return read_float(text, number);
    } else if constexpr (std::is_same_v<Element, uint64_t>) {
        return osl_atoui64(text, number);
    } else {
        return read_integer(text, number);
    }
}

// A new array of which the other elements are zero.
template <class Element>
OAK_RETCODE store_in_array(OAK_VALUE *value, uint32_t elem, Element number, OSL_MEMTAG tag) {
    auto *array = static_cast<uint8_t *>(OSL_GET_ZERO(value->elts * sizeof(Element), tag));
    if (array == nullptr) {
        return eNOMEMORY;
    }
    memcpy(array + elem * sizeof(Element), &number, sizeof number);
    value->vt.pv = array;
    return sOKAY;
}

template <class Element>
OAK_RETCODE store_scalar(OAK_VALUE *value, Element number) {
    store_inline(value, &number, sizeof number);
    return sOKAY;
}

// ---- Reading the other types ------------------------------------------------------------

// Everything that reading a value from text needs.
struct Request {
    SCH_TYPE_INFO_C pi;
    OAK_VALUE *value;
    uint32_t elem;
    uint32_t flags;
    OSL_MEMTAG tag;
    const char *text;
};

using ReadRule = OAK_RETCODE (*)(const Request &request);

template <class Traits>
OAK_RETCODE read_arrayable(const Request &request) {
    const uint32_t elts = request.value->elts;
    if (elts != 0 && request.elem >= elts) {
        return eRANGE;
    }
    typename Traits::Element number;
    const OAK_RETCODE rc = read_element<Traits>(request.text, &number);
    if (rc != sOKAY) {
        return rc;
    }
    return elts == 0 ? store_scalar(request.value, number)
                     : store_in_array(request.value, request.elem, number, request.tag);
}

// A record behind a pointer, read into `source`.
template <class Traits>
OAK_RETCODE store_fixed(const Request &request, const void *source) {
    const void *block = new_fixed<Traits>(source, request.tag);
    if (block == nullptr) {
        return eNOMEMORY;
    }
    request.value->vt.pv = block;
    return sOKAY;
}

// A decimal that lost digits is kept, and the caller is told. A column with
// elements, which no schema has, gets room for all of them.
OAK_RETCODE read_bcd(const Request &request) {
    const uint32_t elts = request.value->elts;
    if (elts != 0 && request.elem >= elts) {
        return eRANGE;
    }
    const uint32_t index = elts == 0 ? 0 : request.elem;
    OAK_BCD_T number;
    const OAK_RETCODE rc = oak_bcdFromString(request.text, &number);
    if (rc < sOKAY) {
        return rc;
    }
    auto *block =
        static_cast<OAK_BCD_T *>(OSL_GET_ZERO((elts == 0 ? 1 : elts) * sizeof number, request.tag));
    if (block == nullptr) {
        return eNOMEMORY;
    }
    block[index] = number;
    request.value->vt.bcd = block;
    return rc;
}

OAK_RETCODE read_date(const Request &request) {
    return dt_dateFromString(request.text, OAK_YYYYMMDD, &request.value->vt.dtv);
}

OAK_RETCODE read_time(const Request &request) {
    const char *text = request.text;
    return convertStringToTimePortion(&text, &request.value->vt.tmv);
}

OAK_RETCODE read_timetz(const Request &request) {
    return dt_timetzFromString(request.text, &request.value->vt.tmzv);
}

OAK_RETCODE read_timestamp(const Request &request) {
    return dt_timestampFromString(request.text, OAK_YYYYMMDD, &request.value->vt.tsv);
}

OAK_RETCODE read_timestamptz(const Request &request) {
    OAK_PACKED_TIMESTAMPTZ_T moment;
    const OAK_RETCODE rc = dt_timestamptzFromString(request.text, OAK_YYYYMMDD, &moment);
    return rc != sOKAY ? rc : store_fixed<timestamptz_traits>(request, &moment);
}

OAK_RETCODE read_uuid(const Request &request) {
    OAK_UUID_T uuid;
    const OAK_RETCODE rc = oak_uuidFromString(request.text, &uuid);
    return rc != sOKAY ? rc : store_fixed<uuid_traits>(request, &uuid);
}

OAK_RETCODE parse_base64(const char *text, OAK_BUFFER *bytes) {
    B_BASE64 record;
    b_base64DecodeStart(&record, b_buffEmitByte, bytes);
    for (; *text != '\0'; ++text) {
        const OAK_RETCODE rc = b_base64DecodeChar(&record, static_cast<uint8_t>(*text));
        if (rc != sOKAY) {
            return rc;
        }
    }
    return b_base64DecodeEnd(&record);
}

// Checks that the text is pairs of hexadecimal digits. The second digit of a pair
// goes out eight bits too far to the left, so each byte comes out as zero: this
// reader has always judged the form and the length alone, and binary defaults
// loaded through it depend on that. Text with bytes in it comes as base 64.
OAK_RETCODE parse_binary(const char *text, OAK_BUFFER *bytes) {
    constexpr uint8_t NO_DIGIT = 255;
    size_t digits = 0;
    for (; text[digits] != '\0'; ++digits) {
        const uint8_t digit = osl_hexdigit(text[digits]);
        if (digit == NO_DIGIT) {
            return eRANGE;
        }
        if (digits % 2 != 0) {
            const OAK_RETCODE rc = b_buffEmitByte(bytes, static_cast<uint32_t>(digit) << 8);
            if (rc != sOKAY) {
                return rc;
            }
        }
    }
    return digits % 2 == 0 ? sOKAY : eRANGE;
}

// A buffer under the request's tag with what the text holds; none after a failure.
OAK_RETCODE parse_bytes(const Request &request, OAK_BUFFER *bytes) {
    b_buffInit(bytes, request.tag);
    const OAK_RETCODE rc = as_base64(request.flags) ? parse_base64(request.text, bytes)
                                                    : parse_binary(request.text, bytes);
    if (rc != sOKAY) {
        b_buffTerm(bytes);
    }
    return rc;
}

// Appends zero bytes up to a length.
OAK_RETCODE append_zeros(OAK_BUFFER *bytes, size_t length) {
    if (bytes->len >= length) {
        return sOKAY;
    }
    const size_t missing = length - bytes->len;
    void *place = nullptr;
    const OAK_RETCODE rc = b_buffAllocateBuffer(bytes, missing, &place);
    if (rc == sOKAY) {
        memset(place, 0, missing);
    }
    return rc;
}

// Makes the buffer the value's payload, its first `len` bytes being the value's
// own, with zero bytes behind them up to `room`.
OAK_RETCODE store_buffer(const Request &request, OAK_BUFFER *bytes, size_t len, size_t room) {
    const OAK_RETCODE rc = append_zeros(bytes, room);
    if (rc != sOKAY) {
        b_buffTerm(bytes);
        return rc;
    }
    request.value->vt.pv = bytes->data;
    request.value->len = len;
    return sOKAY;
}

OAK_RETCODE read_encoded_text(const Request &request) {
    OAK_BUFFER bytes;
    const OAK_RETCODE rc = parse_bytes(request, &bytes);
    return rc != sOKAY ? rc : store_buffer(request, &bytes, bytes.len + 1, bytes.len + 1);
}

OAK_RETCODE read_utf8(const Request &request) {
    if (as_base64(request.flags)) {
        return read_encoded_text(request);
    }
    const auto *copy = static_cast<const char *>(OSL_GET_STRING(request.text, request.tag));
    if (copy == nullptr) {
        return eNOMEMORY;
    }
    request.value->vt.cv = copy;
    request.value->len = strlen(copy) + 1;
    return sOKAY;
}

// A payload shorter than the column goes on in zero bytes.
OAK_RETCODE read_binary(const Request &request) {
    OAK_BUFFER bytes;
    const OAK_RETCODE rc = parse_bytes(request, &bytes);
    return rc != sOKAY ? rc : store_buffer(request, &bytes, bytes.len, sch_type_length(request.pi));
}

// The form of a record buffer: the length in front of the bytes, and no `len`.
OAK_RETCODE store_with_length(const Request &request, const OAK_BUFFER *bytes) {
    if (bytes->len > VARBINARY_MAX) {
        return eRANGE;
    }
    const auto length = static_cast<uint16_t>(bytes->len);
    auto *block = static_cast<uint8_t *>(OSL_GET(sizeof length + length, request.tag));
    if (block == nullptr) {
        return eNOMEMORY;
    }
    memcpy(block, &length, sizeof length);
    if (length != 0) {
        memcpy(block + sizeof length, bytes->data, length);
    }
    request.value->vt.pv = block;
    return sOKAY;
}

OAK_RETCODE read_varbinary(const Request &request) {
    OAK_BUFFER bytes;
    OAK_RETCODE rc = parse_bytes(request, &bytes);
    if (rc == sOKAY) {
        rc = store_with_length(request, &bytes);
        b_buffTerm(&bytes);
    }
    return rc;
}

OAK_RETCODE read_value(ReadRule rule, const Request &request) {
    if (request.value == nullptr || request.text == nullptr) {
        return eINVNULLARG;
    }
    request.value->len = 0;
    request.value->elts = sch_type_num_elems(request.pi);
    request.value->type = sch_type_data_type(request.pi);
    const OAK_RETCODE rc = rule(request);
    if (rc >= sOKAY) {
        request.value->status = vsOKAY;
    }
    return rc;
}

} // namespace

// ---- tostring -----------------------------------------------------------------------

#define TOSTRING(type, call)                                                                       \
    OAK_RETCODE b_type_tostring_##type([[maybe_unused]] SCH_TYPE_INFO_C pi,                        \
                                       const OAK_VALUE *value, [[maybe_unused]] uint32_t elem,     \
                                       uint32_t flags, OAK_OUTPUT_FCN fcn, OAK_OUTPUT_CTX ctx) {   \
        const Sink sink = {fcn, ctx};                                                              \
        return call;                                                                               \
    }
#define TOSTRING_ARRAYABLE(type)                                                                   \
    TOSTRING(type, write_arrayable<type##_traits>(pi, value, elem, flags, sink))
#define TOSTRING_INLINE(type)  TOSTRING(type, write_single(write_##type, false, value, flags, sink))
#define TOSTRING_POINTED(type) TOSTRING(type, write_single(write_##type, true, value, flags, sink))

B_TYPE_LIST_ARRAYABLE(TOSTRING_ARRAYABLE)
TOSTRING_INLINE(date)
TOSTRING_INLINE(time)
TOSTRING_INLINE(timetz)
TOSTRING_INLINE(timestamp)
TOSTRING_POINTED(timestamptz)
TOSTRING_POINTED(bcd)
TOSTRING_POINTED(uuid)
TOSTRING_POINTED(utf8)
TOSTRING(binary, write_binary(pi, value, flags, sink))
TOSTRING(varbinary, write_varbinary(value, flags, sink))

// ---- fromstring ---------------------------------------------------------------------

#define FROMSTRING(type, rule)                                                                     \
    OAK_RETCODE b_type_fromstring_##type(SCH_TYPE_INFO_C pi, OAK_VALUE *value, uint32_t elem,      \
                                         uint32_t flags, OSL_MEMTAG tag, const char *text) {       \
        return read_value(rule, {pi, value, elem, flags, tag, text});                              \
    }
#define FROMSTRING_ARRAYABLE(type) FROMSTRING(type, read_arrayable<type##_traits>)
#define FROMSTRING_SINGLE(type)    FROMSTRING(type, read_##type)

B_TYPE_LIST_ARRAYABLE(FROMSTRING_ARRAYABLE)
B_TYPE_LIST_DATETIME(FROMSTRING_SINGLE)
B_TYPE_LIST_POINTED(FROMSTRING_SINGLE)
