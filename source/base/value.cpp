// Typed values. Rests on the table of types, the decimals and the calendar;
// called by everything that carries a value: conversions, type tables, schema,
// item formats and the layers above.
//
// A payload is read by the value's type code alone, through an exact switch;
// the bits of the code are used for the class and the large-object mark only.
// Families over the number types come from one list, NUMBER_TYPES, and one
// template each.
#include "value_internal.h"

#include <cfloat>
#include <cstring>
#include <type_traits>

#include "base_internal.h"
#include "bcd.h"
#include "datetime.h"
#include "types.h"

using oak::is_large_object;
using oak::type_class;

namespace {

// ---- Tables -----------------------------------------------------------------

// The integer types and the floating types, with the member of the payload.
#define INTEGER_TYPES(item)                                                                        \
    item(OAK_INT8, i8v) item(OAK_UINT8, u8v) item(OAK_INT16, i16v) item(OAK_UINT16, u16v)          \
        item(OAK_INT32, i32v) item(OAK_UINT32, u32v) item(OAK_INT64, i64v) item(OAK_UINT64, u64v)
#define FLOATING_TYPES(item) item(OAK_FLOAT, fv) item(OAK_DOUBLE, dv)
#define NUMBER_TYPES(item)   INTEGER_TYPES(item) FLOATING_TYPES(item)

constexpr double TWO_TO_63 = 9223372036854775808.0;
constexpr double TWO_TO_64 = 18446744073709551616.0;
constexpr uint64_t TOP_BIT = UINT64_C(1) << 63;

// The limits of the types as doubles. A type without a row has the limits 0.0;
// dates and times are asked of the calendar.
struct Limits {
    OAK_TYPE type;
    double max;
    double min;
};
constexpr Limits LIMITS[] = {
    {OAK_INT8, 127.0, -128.0},
    {OAK_CHAR, 127.0, 0.0},
    {OAK_VARCHAR, 127.0, 0.0},
    {OAK_CLOB, 127.0, 0.0},
    {OAK_UINT8, 255.0, 0.0},
    {OAK_BINARY, 255.0, 0.0},
    {OAK_VARBINARY, 255.0, 0.0},
    {OAK_BLOB, 255.0, 0.0},
    {OAK_INT16, 32767.0, -32768.0},
    {OAK_UINT16, 65535.0, 0.0},
    {OAK_INT32, 2147483647.0, -2147483648.0},
    {OAK_UINT32, 4294967295.0, 0.0},
    {OAK_INT64, TWO_TO_63, -TWO_TO_63},
    {OAK_UINT64, TWO_TO_64, 0.0},
    {OAK_ROWID, TWO_TO_64, 0.0},
    // The minimum is the smallest positive normal number, not a negative one.
    {OAK_FLOAT, FLT_MAX, FLT_MIN},
    {OAK_DOUBLE, DBL_MAX, DBL_MIN},
    {OAK_BOOL, 1.0, 0.0},
};

// ---- Reading payloads ---------------------------------------------------------

// Elements and records behind a pointer may lie at any address, since values
// can point into a buffer.
template <class T>
T load(const void *place) {
    T value;
    memcpy(&value, place, sizeof value);
    return value;
}

// Two payload pointers of which one may be null: equal only when both are.
bool same_bytes(const void *first, const void *second, size_t size) {
    if (first == nullptr || second == nullptr) {
        return first == second;
    }
    return memcmp(first, second, size) == 0;
}

bool same_text(const char *first, const char *second) {
    if (first == nullptr || second == nullptr) {
        return first == second;
    }
    return strcmp(first, second) == 0;
}

// ---- Numbers ------------------------------------------------------------------

template <class T>
int16_t sign_of(T number) {
    if constexpr (!std::is_unsigned_v<T>) {
        if (number < T{0}) {
            return -1;
        }
    }
    return number == T{0} ? 0 : 1; // a NaN is neither, and so 1
}

template <class T>
T negated(T number) {
    if constexpr (std::is_floating_point_v<T>) {
        return -number; // flips the sign bit, of zero and NaN as well
    } else {
        using Bits = std::make_unsigned_t<T>;
        return static_cast<T>(static_cast<Bits>(0U - static_cast<Bits>(number)));
    }
}

template <class T>
OAK_COMPARE compare_numbers(T first, T second) {
    if (first < second) {
        return OAK_LT;
    }
    return first > second ? OAK_GT : OAK_EQ;
}

// What the processor's conversion to a signed number gives: the smallest one for
// whatever does not fit and for a NaN.
int64_t truncated_to_int64(double number) {
    return number >= -TWO_TO_63 && number < TWO_TO_63 ? static_cast<int64_t>(number) : INT64_MIN;
}

// Numbers from 2 to the 63rd up are brought into range by subtracting it and
// turning the top bit round. No range failure: what does not fit even so comes
// out as the bits say.
uint64_t truncated_to_uint64(double number) {
    if (number >= TWO_TO_63) {
        return static_cast<uint64_t>(truncated_to_int64(number - TWO_TO_63)) ^ TOP_BIT;
    }
    return static_cast<uint64_t>(truncated_to_int64(number));
}

// The bits of an integer extended by zeros to 64, whatever its sign: callers have
// long relied on -1 in an OAK_INT8 being 255 here. False for other types.
bool load_zero_extended(const OAK_VALUE *value, uint64_t *bits) {
    switch (value->type) {
#define INTEGER_CASE(code, member)                                                                 \
    case code:                                                                                     \
        *bits = static_cast<std::make_unsigned_t<decltype(value->vt.member)>>(value->vt.member);   \
        return true;
        INTEGER_TYPES(INTEGER_CASE)
#undef INTEGER_CASE
        default:
            return false;
    }
}

// ---- Sign change ----------------------------------------------------------------

void negate_unsigned_64(OAK_VALUE *value) {
    const uint64_t number = value->vt.u64v;
    if (number > TOP_BIT) {
        value->status = vsDATALOSS; // no signed number is that small
        return;
    }
    value->type = OAK_INT64;
    // For the power itself the bits are already those of the smallest number.
    value->vt.i64v = static_cast<int64_t>(0 - number);
}

// An unsigned integer becomes the signed type of twice its width.
void negate_widened(OAK_VALUE *value) {
    switch (value->type) {
        case OAK_UINT8:
            value->type = OAK_INT16;
            value->vt.i16v = static_cast<int16_t>(-value->vt.u8v);
            return;
        case OAK_UINT16:
            value->type = OAK_INT32;
            value->vt.i32v = -value->vt.u16v;
            return;
        default:
            value->type = OAK_INT64;
            value->vt.i64v = -static_cast<int64_t>(value->vt.u32v);
            return;
    }
}

void negate_decimal(OAK_VALUE *value) {
    if (value->vt.bcd != nullptr) {
        OAK_IGNORE_STATUS(oak_bcdChgSign(value->vt.bcd, value->vt.bcd),
                          "a decimal that is no number stays as it is");
    }
}

void invert_boolean(OAK_VALUE *value) {
    const uint32_t bits = value->vt.u32v;
    const uint32_t inverted = (bits & 0xFF) == 0 ? 1 : 0;
    value->vt.u32v = (bits & ~UINT32_C(0xFF)) | inverted;
}

// ---- Limits ---------------------------------------------------------------------

const Limits *find_limits(OAK_TYPE type) {
    for (const Limits &row : LIMITS) {
        if (row.type == type) {
            return &row;
        }
    }
    return nullptr;
}

double last_date() {
    OAK_PACKED_DATE_T today = 0;
    OAK_IGNORE_STATUS(oak_dateToday(0, &today), "without a clock the limit is 0.0");
    return today;
}

double last_time_of_day() {
    const OAK_TIME_T last = {23, 59, 59, 9999};
    OAK_PACKED_TIME_T packed = 0;
    OAK_IGNORE_STATUS(oak_timePack(&last, &packed), "these fields are in range");
    return packed;
}

double maximum_of(OAK_TYPE type) {
    switch (type) {
        case OAK_DATE:
        case OAK_TIMESTAMP:
        case OAK_TIMESTAMPTZ:
            return last_date();
        case OAK_TIME:
        case OAK_TIMETZ:
            return last_time_of_day();
        default: {
            const Limits *row = find_limits(type);
            return row == nullptr ? 0.0 : row->max;
        }
    }
}

double minimum_of(OAK_TYPE type) {
    const Limits *row = find_limits(type);
    return row == nullptr ? 0.0 : row->min;
}

// ---- Deep copy --------------------------------------------------------------------

// What a copy puts into its destination, settled before anything is stored.
struct Payload {
    OAK_COLUMN vt;
    size_t len;
};

bool is_short_text(OAK_TYPE type) {
    return type == OAK_CHAR || type == OAK_VARCHAR || type == OAK_WCHAR_UTF8 ||
           type == OAK_WVARCHAR_UTF8;
}

// True when a payload lies behind a pointer of its own, arrays aside: it has a
// length, or is of a type that keeps one even without.
bool has_own_payload(const OAK_VALUE *source, size_t len) {
    if (source->vt.pv == nullptr) {
        return false;
    }
    const unsigned kind = type_class(source->type);
    const bool bytes = kind == OAK_TYPE_CLASS_BINARY || kind == OAK_TYPE_CLASS_TEXT;
    return len != 0 || kind == OAK_TYPE_CLASS_DECIMAL || kind == OAK_TYPE_CLASS_UUID ||
           (bytes && !is_large_object(source->type));
}

OAK_RETCODE copy_bytes(const OAK_VALUE *source, size_t size, OSL_MEMTAG tag, Payload *payload) {
    if (size == 0) {
        return sOKAY; // nothing to copy: the pointer is shared
    }
    const void *block = OSL_GET_COPY(source->vt.pv, size, tag);
    if (block == nullptr) {
        return eNOMEMORY;
    }
    payload->vt.pv = block;
    return sOKAY;
}

// The record whole, of which only `len` bytes come from the source when it says so.
OAK_RETCODE copy_decimal(const OAK_VALUE *source, OSL_MEMTAG tag, Payload *payload) {
    auto *block = static_cast<OAK_BCD_T *>(OSL_GET_ZERO(sizeof(OAK_BCD_T), tag));
    if (block == nullptr) {
        return eNOMEMORY;
    }
    const bool whole = source->len == 0 || source->len > sizeof *block;
    memcpy(block, source->vt.bcd, whole ? sizeof *block : source->len);
    payload->vt.bcd = block;
    return sOKAY;
}

OAK_RETCODE copy_text(const OAK_VALUE *source, size_t maxLen, OSL_MEMTAG tag, Payload *payload) {
    char *block = nullptr;
    if (maxLen < source->len) {
        const size_t room = maxLen == 0 ? 1 : maxLen; // the terminator always has a place
        block = static_cast<char *>(OSL_GET(room, tag));
        if (block != nullptr) {
            osl_strncpyZ(block, source->vt.cv, room);
        }
    } else {
        block = static_cast<char *>(OSL_GET_STRING(source->vt.cv, tag));
    }
    if (block == nullptr) {
        return eNOMEMORY;
    }
    payload->vt.cv = block;
    payload->len = strlen(block) + 1;
    return sOKAY;
}

OAK_RETCODE copy_large_object(const OAK_VALUE *source, const OAK_VALUE *destination, OSL_MEMTAG tag,
                              Payload *payload) {
    switch (source->type) {
        case OAK_CLOB:
        case OAK_WCLOB_UTF8:
            return copy_bytes(source, strlen(source->vt.cv) + 1, tag, payload);
        case OAK_BLOB:
            return copy_bytes(source, source->len, tag, payload);
        default: // the destination keeps the payload that it had
            payload->vt = destination->vt;
            return sOKAY;
    }
}

OAK_RETCODE copy_own_payload(const OAK_VALUE *source, const OAK_VALUE *destination, size_t maxLen,
                             OSL_MEMTAG tag, Payload *payload) {
    if (source->type == OAK_BCD) {
        return copy_decimal(source, tag, payload);
    }
    if (is_short_text(source->type)) {
        return copy_text(source, maxLen, tag, payload);
    }
    if (is_large_object(source->type)) {
        return copy_large_object(source, destination, tag, payload);
    }
    if (source->type == OAK_UUID) {
        return copy_bytes(source, sizeof(OAK_UUID_T), tag, payload);
    }
    return copy_bytes(source, source->len, tag, payload);
}

OAK_RETCODE copy_payload(const OAK_VALUE *source, const OAK_VALUE *destination, size_t maxLen,
                         OSL_MEMTAG tag, Payload *payload) {
    if (tag == nullptr) {
        return sOKAY;
    }
    if (has_own_payload(source, payload->len)) {
        return copy_own_payload(source, destination, maxLen, tag, payload);
    }
    if (source->elts != 0 && source->vt.pv != nullptr) {
        return copy_bytes(source, source->elts * b_typeGetLength(source->type), tag, payload);
    }
    return sOKAY; // scalars, and OAK_TIMESTAMPTZ, whose payload stays shared
}

// The length that a copy begins with: the source's own where it has one.
size_t copied_length(const OAK_VALUE *source) {
    const size_t length = valueLength(source);
    return length != 0 && source->len != 0 ? source->len : length;
}

void copy_absent(OAK_VALUE *destination, const OAK_VALUE *source) {
    const OAK_COLUMN payload = source->vt;
    const OAK_TYPE type = source->type;
    oak_valueInitWithType(destination, type);
    if (is_large_object(type)) {
        destination->vt = payload; // a large object keeps its reference
    }
}

// ---- Raw bytes --------------------------------------------------------------------

// A fixed type's raw bytes: where they lie and how many.
struct RawBytes {
    const void *place;
    size_t size;
};

// A size of 0 for types that are not fixed.
RawBytes raw_bytes(const OAK_VALUE *value) {
    switch (value->type) {
        case OAK_INT8:
        case OAK_UINT8:
            return {&value->vt, 1};
        case OAK_INT16:
        case OAK_UINT16:
            return {&value->vt, 2};
        case OAK_BOOL:
        case OAK_DATE:
        case OAK_TIME:
        case OAK_INT32:
        case OAK_UINT32:
        case OAK_FLOAT:
            return {&value->vt, 4};
        case OAK_ROWID:
        case OAK_INT64:
        case OAK_UINT64:
        case OAK_DOUBLE:
        case OAK_TIMESTAMP:
        case OAK_TIMETZ:
            return {&value->vt, 8};
        case OAK_TIMESTAMPTZ:
            return {value->vt.pv, sizeof(OAK_PACKED_TIMESTAMPTZ_T)};
        case OAK_UUID:
            return {value->vt.pv, sizeof(OAK_UUID_T)};
        case OAK_BCD:
            return {value->vt.pv, sizeof(OAK_BCD_T)};
        default:
            return {nullptr, 0};
    }
}

void store_length(size_t *outLen, size_t length) {
    if (outLen != nullptr) {
        *outLen = length;
    }
}

OAK_RETCODE fixed_to_buffer(RawBytes raw, void *buffer, size_t maxLen, size_t *outLen) {
    if (buffer != nullptr && raw.place == nullptr) {
        return eINVNULLARG;
    }
    store_length(outLen, raw.size);
    if (buffer == nullptr) {
        return sOKAY;
    }
    if (maxLen < raw.size) {
        return sTRUNCATE;
    }
    memcpy(buffer, raw.place, raw.size);
    return sOKAY;
}

OAK_RETCODE binary_to_buffer(const OAK_VALUE *value, void *buffer, size_t maxLen, size_t *outLen) {
    const bool copies = buffer != nullptr && maxLen != 0;
    if (copies && value->vt.pv == nullptr) {
        return eINVNULLARG;
    }
    store_length(outLen, value->len);
    if (copies) {
        memcpy(buffer, value->vt.pv, maxLen); // whatever `len` is: the caller bounds it
    }
    return buffer != nullptr && maxLen < value->len ? sTRUNCATE : sOKAY;
}

OAK_RETCODE text_to_buffer(const OAK_VALUE *value, char *buffer, size_t maxLen, size_t *outLen) {
    if (buffer == nullptr && value->len != 0) {
        store_length(outLen, value->len - 1);
        return sOKAY;
    }
    if (value->vt.cv == nullptr) {
        return eINVNULLARG;
    }
    const size_t length = strlen(value->vt.cv);
    if (buffer == nullptr || length < maxLen) {
        store_length(outLen, length);
    } else {
        store_length(outLen, maxLen == 0 ? 0 : maxLen - 1);
    }
    if (buffer != nullptr) {
        osl_strncpyZ(buffer, value->vt.cv, maxLen);
    }
    return buffer != nullptr && length >= maxLen ? sTRUNCATE : sOKAY;
}

// ---- Equality ---------------------------------------------------------------------

template <class T>
bool equal_elements(const OAK_VALUE *first, const OAK_VALUE *second) {
    const auto *left = static_cast<const uint8_t *>(first->vt.pv);
    const auto *right = static_cast<const uint8_t *>(second->vt.pv);
    if (left == nullptr || right == nullptr) {
        return left == right;
    }
    for (size_t i = 0; i < first->elts; ++i) {
        if (!(load<T>(left + i * sizeof(T)) == load<T>(right + i * sizeof(T)))) {
            return false;
        }
    }
    return true;
}

bool equal_arrays(const OAK_VALUE *first, const OAK_VALUE *second) {
    switch (first->type) {
#define ARRAY_CASE(code, member)                                                                   \
    case code:                                                                                     \
        return equal_elements<decltype(first->vt.member)>(first, second);
        NUMBER_TYPES(ARRAY_CASE)
        ARRAY_CASE(OAK_BOOL, bv)
#undef ARRAY_CASE
        default: // elements of no array type count as equal
            return true;
    }
}

bool equal_decimals(const OAK_BCD_T *first, const OAK_BCD_T *second) {
    if (first == nullptr || second == nullptr) {
        return first == second;
    }
    return oak_bcdCompare(first, second) == OAK_EQ;
}

// Date and time count, the zone does not.
bool equal_zoned_timestamps(const void *first, const void *second) {
    return same_bytes(first, second, offsetof(OAK_PACKED_TIMESTAMPTZ_T, tz));
}

bool equal_scalars(const OAK_VALUE *first, const OAK_VALUE *second) {
    const OAK_COLUMN &left = first->vt;
    const OAK_COLUMN &right = second->vt;
    switch (first->type) {
#define SCALAR_CASE(code, member)                                                                  \
    case code:                                                                                     \
        return left.member == right.member;
        NUMBER_TYPES(SCALAR_CASE)
        SCALAR_CASE(OAK_BOOL, bv)
        SCALAR_CASE(OAK_ROWID, ridv)
        SCALAR_CASE(OAK_DATE, dtv)
        SCALAR_CASE(OAK_TIME, tmv)
        SCALAR_CASE(OAK_TIMETZ, tmzv.time)
#undef SCALAR_CASE
        case OAK_TIMESTAMP:
            return left.tsv.date == right.tsv.date && left.tsv.time == right.tsv.time;
        case OAK_TIMESTAMPTZ:
            return equal_zoned_timestamps(left.pv, right.pv);
        case OAK_BCD:
            return equal_decimals(left.bcd, right.bcd);
        case OAK_UUID:
            return same_bytes(left.pv, right.pv, sizeof(OAK_UUID_T));
        case OAK_CHAR:
        case OAK_VARCHAR:
        case OAK_CLOB:
            return same_text(left.cv, right.cv);
        case OAK_BINARY:
        case OAK_VARBINARY:
        case OAK_BLOB:
            return same_bytes(left.pv, right.pv, first->len);
        default: // texts of the wide types among them: equal length suffices
            return true;
    }
}

// ---- Setting ------------------------------------------------------------------------

void set_head(OAK_VALUE *value, OAK_TYPE type, size_t len) {
    value->type = type;
    value->status = vsOKAY;
    value->len = len;
    value->elts = 0;
}

// The payload of a pointer setter: a copy under the value's tag when it has one.
OAK_RETCODE set_pointed(OAK_VALUE *value, OAK_TYPE type, const void *data, size_t size,
                        size_t len) {
    const void *payload = data;
    if (value->tag != nullptr && size != 0) {
        payload = OSL_GET_COPY(data, size, value->tag);
        if (payload == nullptr) {
            return eNOMEMORY;
        }
    }
    set_head(value, type, len);
    value->vt.pv = payload;
    return sOKAY;
}

} // namespace

// ---- Making ---------------------------------------------------------------------------

void oak_valueInit(OAK_VALUE *pVal) {
    oak_valueInitWithStatusAndType(pVal, vsNOVAL, OAK_NOVAL);
}

void oak_valueInitAndSetNull(OAK_VALUE *pVal) {
    oak_valueInitWithStatusAndType(pVal, vsNULL, OAK_NOVAL);
}

void oak_valueInitWithType(OAK_VALUE *pVal, OAK_TYPE type) {
    oak_valueInitWithStatusAndType(pVal, vsNOVAL, type);
}

void oak_valueInitWithStatusAndType(OAK_VALUE *pVal, VAL_STATUS valStatus, OAK_TYPE type) {
    if (pVal != nullptr) {
        memset(pVal, 0, sizeof *pVal);
        pVal->status = valStatus;
        pVal->type = type;
    }
}

// ---- Scalar setters ---------------------------------------------------------------------

#define SCALAR_SETTER(name, native, code, member)                                                  \
    void oak_valueSet##name(OAK_VALUE *pVal, native value) {                                       \
        if (pVal != nullptr) {                                                                     \
            set_head(pVal, code, 0);                                                               \
            pVal->vt.member = value;                                                               \
        }                                                                                          \
    }
SCALAR_SETTER(Boolean, OAK_BOOL_T, OAK_BOOL, bv)
SCALAR_SETTER(Int8, int8_t, OAK_INT8, i8v)
SCALAR_SETTER(UInt8, uint8_t, OAK_UINT8, u8v)
SCALAR_SETTER(Int16, int16_t, OAK_INT16, i16v)
SCALAR_SETTER(UInt16, uint16_t, OAK_UINT16, u16v)
SCALAR_SETTER(Int32, int32_t, OAK_INT32, i32v)
SCALAR_SETTER(UInt32, uint32_t, OAK_UINT32, u32v)
SCALAR_SETTER(Int64, int64_t, OAK_INT64, i64v)
SCALAR_SETTER(UInt64, uint64_t, OAK_UINT64, u64v)
SCALAR_SETTER(Float, float, OAK_FLOAT, fv)
SCALAR_SETTER(Double, double, OAK_DOUBLE, dv)
SCALAR_SETTER(Date, OAK_PACKED_DATE_T, OAK_DATE, dtv)
SCALAR_SETTER(Time, OAK_PACKED_TIME_T, OAK_TIME, tmv)
SCALAR_SETTER(TimeTZ, OAK_PACKED_TIMETZ_T, OAK_TIMETZ, tmzv)
SCALAR_SETTER(Timestamp, OAK_PACKED_TIMESTAMP_T, OAK_TIMESTAMP, tsv)
SCALAR_SETTER(RowId, OAK_ROWID_T, OAK_ROWID, ridv)
SCALAR_SETTER(ParamRef, int16_t, OAK_PARAMREF, i16v)
SCALAR_SETTER(ColRef, int16_t, OAK_COLREF, i16v)
SCALAR_SETTER(ProcVar, int16_t, OAK_PROCVAR, i16v)
SCALAR_SETTER(ResultCol, uint16_t, OAK_RESULTCOL, u16v)
#undef SCALAR_SETTER

// ---- Setters of payloads and states --------------------------------------------------------

void oak_valueSetError(OAK_VALUE *pVal, OAK_RETCODE err) {
    if (pVal != nullptr) {
        set_head(pVal, err == eDIVBY0 ? OAK_ZERODIV : OAK_NOVAL, 0);
        pVal->status = vsERROR;
        pVal->vt.err = err;
    }
}

void oak_valueSetNull(OAK_VALUE *pVal) {
    if (pVal != nullptr) {
        pVal->status = vsNULL;
    }
}

void oak_valueSetNoVal(OAK_VALUE *pVal) {
    if (pVal != nullptr) {
        pVal->status = vsNOVAL;
        pVal->type = OAK_NOVAL;
    }
}

OAK_RETCODE oak_valueSetString(OAK_VALUE *pVal, const char *str) {
    if (pVal == nullptr || str == nullptr) {
        return eINVNULLARG;
    }
    const size_t size = strlen(str) + 1;
    return set_pointed(pVal, OAK_CHAR, str, size, size);
}

OAK_RETCODE oak_valueSetBinary(OAK_VALUE *pVal, const void *buf, size_t buflen) {
    if (pVal == nullptr || (buf == nullptr && buflen != 0)) {
        return eINVNULLARG;
    }
    return set_pointed(pVal, OAK_BINARY, buf, buflen, buflen);
}

OAK_RETCODE oak_valueSetUuid(OAK_VALUE *pVal, const OAK_UUID_T *uuid) {
    if (pVal == nullptr || uuid == nullptr) {
        return eINVNULLARG;
    }
    return set_pointed(pVal, OAK_UUID, uuid, sizeof *uuid, 0);
}

// ---- Getters ----------------------------------------------------------------------------------

OAK_RETCODE oak_valueGetInt64(const OAK_VALUE *pVal, int64_t *pValue) {
    if (pVal == nullptr || pValue == nullptr) {
        return eINVNULLARG;
    }
    if (pVal->type == OAK_UINT64 && pVal->vt.u64v >= TOP_BIT) {
        return eRANGE;
    }
    switch (pVal->type) {
#define INTEGER_CASE(code, member)                                                                 \
    case code:                                                                                     \
        *pValue = static_cast<int64_t>(pVal->vt.member);                                           \
        return sOKAY;
        INTEGER_TYPES(INTEGER_CASE)
#undef INTEGER_CASE
        default:
            return eINVARGTYPE;
    }
}

OAK_RETCODE oak_valueGetUInt64(const OAK_VALUE *pVal, uint64_t *pValue) {
    if (pVal == nullptr || pValue == nullptr) {
        return eINVNULLARG;
    }
    if (load_zero_extended(pVal, pValue)) {
        return sOKAY;
    }
    switch (pVal->type) {
        case OAK_ROWID:
            *pValue = pVal->vt.ridv;
            return sOKAY;
        case OAK_FLOAT:
            *pValue = truncated_to_uint64(pVal->vt.fv);
            return sOKAY;
        case OAK_DOUBLE:
            *pValue = truncated_to_uint64(pVal->vt.dv);
            return sOKAY;
        default:
            return eINVARGTYPE;
    }
}

OAK_RETCODE oak_valueGetSizeT(const OAK_VALUE *pVal, size_t *pValue) {
    if (pVal == nullptr || pValue == nullptr) {
        return eINVNULLARG;
    }
    uint64_t bits = 0;
    if (!load_zero_extended(pVal, &bits)) {
        return eINVARGTYPE;
    }
    *pValue = bits;
    return sOKAY;
}

OAK_RETCODE oak_valueGetDouble(const OAK_VALUE *pVal, double *pValue) {
    if (pVal == nullptr || pValue == nullptr) {
        return eINVNULLARG;
    }
    switch (pVal->type) {
#define NUMBER_CASE(code, member)                                                                  \
    case code:                                                                                     \
        *pValue = static_cast<double>(pVal->vt.member);                                            \
        return sOKAY;
        NUMBER_TYPES(NUMBER_CASE)
        NUMBER_CASE(OAK_DATE, dtv)
        NUMBER_CASE(OAK_TIME, tmv)
#undef NUMBER_CASE
        case OAK_BCD:
            return oak_bcdToDouble(pVal->vt.bcd, pValue);
        default:
            return eINVARGTYPE;
    }
}

// ---- Comparers --------------------------------------------------------------------------------

#define COMPARER(name, native, code, member)                                                       \
    OAK_RETCODE oak_valueCompareTo##name(const OAK_VALUE *pVal, native number,                     \
                                         OAK_COMPARE *pCmp) {                                      \
        if (pVal == nullptr) {                                                                     \
            return eINVNULLARG;                                                                    \
        }                                                                                          \
        if (pVal->type != (code)) {                                                                \
            return eTYPEMISMATCH;                                                                  \
        }                                                                                          \
        if (pCmp != nullptr) {                                                                     \
            *pCmp = compare_numbers(pVal->vt.member, number);                                      \
        }                                                                                          \
        return sOKAY;                                                                              \
    }
COMPARER(Int8, int8_t, OAK_INT8, i8v)
COMPARER(UInt8, uint8_t, OAK_UINT8, u8v)
COMPARER(Int16, int16_t, OAK_INT16, i16v)
COMPARER(UInt16, uint16_t, OAK_UINT16, u16v)
COMPARER(Int32, int32_t, OAK_INT32, i32v)
COMPARER(UInt32, uint32_t, OAK_UINT32, u32v)
COMPARER(Int64, int64_t, OAK_INT64, i64v)
COMPARER(UInt64, uint64_t, OAK_UINT64, u64v)
COMPARER(Float, float, OAK_FLOAT, fv)
COMPARER(Double, double, OAK_DOUBLE, dv)
#undef COMPARER

// ---- Sign -------------------------------------------------------------------------------------

OAK_BOOL_T oak_valueIsZero(const OAK_VALUE *pVal) {
    if (pVal == nullptr) {
        return OAK_FALSE;
    }
    const unsigned kind = type_class(pVal->type);
    if (kind != OAK_TYPE_CLASS_INTEGER && kind != OAK_TYPE_CLASS_FLOAT &&
        kind != OAK_TYPE_CLASS_DECIMAL) {
        return OAK_FALSE;
    }
    double number = 1.0;
    OAK_IGNORE_STATUS(oak_valueGetDouble(pVal, &number), "without a number it is not zero");
    return number == 0.0 ? OAK_TRUE : OAK_FALSE;
}

OAK_RETCODE oak_valueGetSign(const OAK_VALUE *pVal, int16_t *psSign) {
    if (pVal == nullptr || psSign == nullptr) {
        return eINVNULLARG;
    }
    switch (pVal->type) {
#define SIGN_CASE(code, member)                                                                    \
    case code:                                                                                     \
        *psSign = sign_of(pVal->vt.member);                                                        \
        return sOKAY;
        NUMBER_TYPES(SIGN_CASE)
#undef SIGN_CASE
        case OAK_BCD:
            if (pVal->vt.bcd == nullptr) {
                return eINVNULLARG;
            }
            *psSign = static_cast<int16_t>(oak_bcdSign(pVal->vt.bcd));
            return sOKAY;
        default:
            return eINVARGTYPE;
    }
}

void oak_valueChangeSign(OAK_VALUE *pVal) {
    if (pVal == nullptr) {
        return;
    }
    switch (pVal->type) {
#define NEGATE_CASE(code, member)                                                                  \
    case code:                                                                                     \
        pVal->vt.member = negated(pVal->vt.member);                                                \
        return;
        NEGATE_CASE(OAK_INT8, i8v)
        NEGATE_CASE(OAK_INT16, i16v)
        NEGATE_CASE(OAK_INT32, i32v)
        NEGATE_CASE(OAK_INT64, i64v)
        FLOATING_TYPES(NEGATE_CASE)
#undef NEGATE_CASE
        case OAK_UINT8:
        case OAK_UINT16:
        case OAK_UINT32:
            negate_widened(pVal);
            return;
        case OAK_UINT64:
            negate_unsigned_64(pVal);
            return;
        case OAK_BCD:
            negate_decimal(pVal);
            return;
        case OAK_BOOL:
            invert_boolean(pVal);
            return;
        default:
            return;
    }
}

// ---- Limits -----------------------------------------------------------------------------------

void oak_valueTypeMax(OAK_VALUE *pVal, OAK_TYPE type) {
    oak_valueSetDouble(pVal, maximum_of(type));
}

void oak_valueTypeMin(OAK_VALUE *pVal, OAK_TYPE type) {
    oak_valueSetDouble(pVal, minimum_of(type));
}

// ---- Copies -----------------------------------------------------------------------------------

OAK_RETCODE valueCopy(OAK_VALUE *destination, const OAK_VALUE *source, size_t maxLen,
                      OSL_MEMTAG tag) {
    if (source->status == vsNOVAL) {
        copy_absent(destination, source);
        return sOKAY;
    }
    Payload payload = {source->vt, copied_length(source)};
    if (source->status == vsNULL) {
        payload = {destination->vt, destination->len};
    } else {
        const OAK_RETCODE rc = copy_payload(source, destination, maxLen, tag, &payload);
        if (rc != sOKAY) {
            return rc;
        }
    }
    destination->type = source->type;
    destination->elts = source->elts;
    destination->status = source->status;
    destination->len = payload.len;
    destination->vt = payload.vt;
    return sOKAY;
}

void oak_valueCopy(OAK_VALUE *pDstVal, const OAK_VALUE *pSrcVal) {
    if (pDstVal != nullptr && pSrcVal != nullptr) {
        pDstVal->type = pSrcVal->type;
        pDstVal->status = pSrcVal->status;
        pDstVal->elts = pSrcVal->elts;
        pDstVal->vt = pSrcVal->vt;
    }
}

OAK_RETCODE oak_valueCopyEx(OAK_VALUE *dval, const OAK_VALUE *sval, size_t maxLen, OSL_MEMTAG tag) {
    if (dval == nullptr || sval == nullptr) {
        return eINVNULLARG;
    }
    return valueCopy(dval, sval, maxLen, tag);
}

// ---- Length and raw bytes -----------------------------------------------------------------------

size_t valueLength(const OAK_VALUE *value) {
    if (value->status == vsNOVAL || value->status == vsNULL) {
        return 0;
    }
    if (is_short_text(value->type)) {
        return value->vt.cv == nullptr ? 0 : strlen(value->vt.cv) + 1;
    }
    if (value->type == OAK_BINARY || value->type == OAK_VARBINARY || is_large_object(value->type)) {
        return value->len;
    }
    if (value->type == OAK_BCD) {
        return value->len == 0 ? sizeof(OAK_BCD_T) : value->len;
    }
    return type_class(value->type) == OAK_TYPE_CLASS_UUID ? sizeof(OAK_UUID_T) : 0;
}

OAK_RETCODE oak_valueLength(const OAK_VALUE *pVal, size_t *len) {
    if (pVal == nullptr) {
        return eINVNULLARG;
    }
    if (pVal->status == vsNOVAL || pVal->status == vsNULL) {
        return eINVARG;
    }
    if (len != nullptr) {
        *len = valueLength(pVal);
    }
    return sOKAY;
}

OAK_RETCODE oak_valueToBuffer(const OAK_VALUE *pVal, void *buffer, size_t maxLen, size_t *outLen) {
    if (pVal == nullptr) {
        return eINVNULLARG;
    }
    if (pVal->status == vsNULL) {
        store_length(outLen, SIZE_MAX);
        return sOKAY;
    }
    const RawBytes raw = raw_bytes(pVal);
    if (raw.size != 0) {
        return fixed_to_buffer(raw, buffer, maxLen, outLen);
    }
    switch (pVal->type) {
        case OAK_BINARY:
        case OAK_VARBINARY:
            return binary_to_buffer(pVal, buffer, maxLen, outLen);
        case OAK_CHAR:
        case OAK_VARCHAR:
            return text_to_buffer(pVal, static_cast<char *>(buffer), maxLen, outLen);
        default:
            return eINVARGTYPE;
    }
}

// ---- Equality -----------------------------------------------------------------------------------

OAK_BOOL_T oak_valueEqual(const OAK_VALUE *pVal1, const OAK_VALUE *pVal2) {
    if (pVal1 == nullptr || pVal2 == nullptr) {
        return pVal1 == pVal2 ? OAK_TRUE : OAK_FALSE;
    }
    if (pVal1->status != pVal2->status || pVal1->type != pVal2->type ||
        pVal1->elts != pVal2->elts || pVal1->len != pVal2->len) {
        return OAK_FALSE;
    }
    const bool equal = pVal1->elts != 0 ? equal_arrays(pVal1, pVal2) : equal_scalars(pVal1, pVal2);
    return equal ? OAK_TRUE : OAK_FALSE;
}
