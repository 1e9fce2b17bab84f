// Internal to the type tables: what the families of operations share. The
// traits of each type, how the elements and bytes of a value are reached, and
// the two rules for storing a run of bytes.
//
// A family is one function template over a type's traits, or a few of them; the
// named functions b_type_<operation>_<type> are stamped out from the lists of
// oakvaluetypes.h and do nothing but call it. The traits of type x are
// `x_traits`.
//
// Values may point into a buffer at any address, so elements are loaded and
// stored by memcpy and never through a typed pointer.
#ifndef OAKVALUETYPES_INTERNAL_H
#define OAKVALUETYPES_INTERNAL_H

#include <cstddef>
#include <cstring>

#include "oakvaluetypes.h"
#include "schema_type.h"

namespace typeops {

// ---- Traits -------------------------------------------------------------------

// Booleans, integers and floating numbers, the types that have arrays.
template <class ElementType, class StreamType, bool CountOfColumn>
struct ArrayableTraits {
    using Element = ElementType; // as it lies in memory, compares and hashes
    using Stream = StreamType;   // as it goes into a stream
    // Where a copy takes its element count from: the column, or the source. The
    // two differ only for a value that does not fit its column.
    static constexpr bool count_of_column = CountOfColumn;
};

struct bool_traits : ArrayableTraits<uint32_t, int32_t, true> {};
struct int8_traits : ArrayableTraits<int8_t, int8_t, false> {};
struct uint8_traits : ArrayableTraits<uint8_t, uint8_t, false> {};
struct int16_traits : ArrayableTraits<int16_t, int16_t, false> {};
struct uint16_traits : ArrayableTraits<uint16_t, uint16_t, false> {};
struct int32_traits : ArrayableTraits<int32_t, int32_t, true> {};
struct uint32_traits : ArrayableTraits<uint32_t, uint32_t, false> {};
struct int64_traits : ArrayableTraits<int64_t, int64_t, false> {};
struct uint64_traits : ArrayableTraits<uint64_t, uint64_t, false> {};
struct float_traits : ArrayableTraits<float, float, true> {};
struct double_traits : ArrayableTraits<double, double, true> {};

// Types of one fixed size without arrays. The first `used` bytes mean something,
// the rest is padding, which is zero wherever this library writes it.
template <class ValueType, size_t UsedBytes>
struct FixedTraits {
    using Value = ValueType;
    static constexpr size_t size = sizeof(ValueType);
    static constexpr size_t used = UsedBytes;
};

// These lie in the payload itself ...
struct date_traits : FixedTraits<OAK_PACKED_DATE_T, 4> {};
struct time_traits : FixedTraits<OAK_PACKED_TIME_T, 4> {};
struct timetz_traits : FixedTraits<OAK_PACKED_TIMETZ_T, 6> {};
struct timestamp_traits : FixedTraits<OAK_PACKED_TIMESTAMP_T, 8> {};
// ... and these behind a pointer.
struct timestamptz_traits : FixedTraits<OAK_PACKED_TIMESTAMPTZ_T, 10> {};
struct uuid_traits : FixedTraits<OAK_UUID_T, 16> {};
struct bcd_traits : FixedTraits<OAK_BCD_T, 37> {};

static_assert(offsetof(OAK_PACKED_TIMETZ_T, tz) + sizeof(int16_t) == timetz_traits::used);
static_assert(offsetof(OAK_PACKED_TIMESTAMPTZ_T, tz) + sizeof(int16_t) == timestamptz_traits::used);
static_assert(date_traits::size == 4 && time_traits::size == 4 && timetz_traits::size == 8 &&
              timestamp_traits::size == 8 && timestamptz_traits::size == 12 &&
              uuid_traits::size == 16 && bcd_traits::size == 37);

// ---- Reaching payloads ----------------------------------------------------------

template <class T>
T load(const void *place) {
    T value;
    memcpy(&value, place, sizeof value);
    return value;
}

// A value's elements: behind the pointer of an array, in the payload of a scalar.
struct Elements {
    const uint8_t *place;
    size_t count;
};

inline Elements elements_of(const OAK_VALUE *value) {
    if (value->elts == 0) {
        return {reinterpret_cast<const uint8_t *>(&value->vt), 1};
    }
    const auto *place = static_cast<const uint8_t *>(value->vt.pv);
    return {place, place == nullptr ? 0 : value->elts};
}

template <class T>
T load_element(const Elements &elements, size_t index) {
    return load<T>(elements.place + index * sizeof(T));
}

// How many of an OAK_BINARY column's bytes lie in the payload. A value that says
// by its `len` that it is shorter than its column goes on in zero bytes.
inline size_t binary_bytes_at_hand(SCH_TYPE_INFO_C pi, const OAK_VALUE *value) {
    const size_t length = sch_type_length(pi);
    return value->len != 0 && value->len < length ? value->len : length;
}

// ---- Storing --------------------------------------------------------------------

// `size` bytes, of which the source has `available`; the rest is zero.
inline void store_padded(void *place, const void *source, size_t available, size_t size) {
    const size_t taken = available < size ? available : size;
    if (taken != 0) { // an empty source may be null
        memcpy(place, source, taken);
    }
    memset(static_cast<uint8_t *>(place) + taken, 0, size - taken);
}

// A scalar's bytes into the payload, the rest of which becomes zero.
inline void store_inline(OAK_VALUE *value, const void *source, size_t size) {
    store_padded(&value->vt, source, size, sizeof value->vt);
}

// A fixed type's record in a block of its own with zero padding; null when memory
// is exhausted.
template <class Traits>
void *new_fixed(const void *source, OSL_MEMTAG tag) {
    void *block = OSL_GET_ZERO(Traits::size, tag);
    if (block != nullptr) {
        memcpy(block, source, Traits::used);
    }
    return block;
}

// Begins a value that is being read: valid, without a length, of so many elements.
inline void set_head(OAK_VALUE *value, uint32_t elts) {
    value->status = vsOKAY;
    value->len = 0;
    value->elts = elts;
}

} // namespace typeops

#endif
