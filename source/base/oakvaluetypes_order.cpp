// How the storable types compare and hash. Rests on decimals, the byte hash and
// the column's type; called for every key that is touched, so nothing here
// allocates.
//
// Every comparison has one frame: what is absent sorts first, be it the value or
// what its payload points to; then the type's own rule. A column with elements
// of a type that has no arrays has a fixed answer.
#include "oakvaluetypes_internal.h"

#include <type_traits>

#include "bcd.h"

using namespace typeops;

namespace {

// ---- Comparing: helpers -----------------------------------------------------------

// A NaN stands above all numbers and equals itself; no integer takes that way.
template <class T>
OAK_COMPARE compare_numbers(T first, T second) {
    if (first < second) {
        return OAK_LT;
    }
    if (first > second) {
        return OAK_GT;
    }
    if constexpr (std::is_floating_point_v<T>) {
        const int nan_first = first != first;
        const int nan_second = second != second;
        return static_cast<OAK_COMPARE>(nan_first - nan_second);
    }
    return OAK_EQ;
}

OAK_COMPARE folded(int order) {
    return compare_numbers(order, 0);
}

// Puts an absent one first. True when that settles the order.
bool absence_decides(const void *first, const void *second, OAK_COMPARE *order) {
    if (first != nullptr && second != nullptr) {
        return false;
    }
    *order = compare_numbers(first != nullptr ? 1 : 0, second != nullptr ? 1 : 0);
    return true;
}

// ---- Comparing: rules ---------------------------------------------------------------

// An array by the first element that differs; of two that agree so far the one
// with fewer elements comes first.
template <class Traits>
OAK_COMPARE compare_arrayable(SCH_TYPE_INFO_C pi, uint32_t, const OAK_VALUE *col1,
                              const OAK_VALUE *col2) {
    using Element = typename Traits::Element;
    const Elements first = elements_of(col1);
    const Elements second = elements_of(col2);
    const size_t declared = sch_type_num_elems(pi);
    const size_t wanted = declared == 0 ? 1 : declared;
    const size_t count1 = first.count < wanted ? first.count : wanted;
    const size_t count2 = second.count < wanted ? second.count : wanted;
    for (size_t i = 0; i < count1 && i < count2; ++i) {
        const OAK_COMPARE order =
            compare_numbers(load_element<Element>(first, i), load_element<Element>(second, i));
        if (order != OAK_EQ) {
            return order;
        }
    }
    return compare_numbers(count1, count2);
}

OAK_COMPARE compare_date(SCH_TYPE_INFO_C, uint32_t, const OAK_VALUE *col1, const OAK_VALUE *col2) {
    return compare_numbers(col1->vt.dtv, col2->vt.dtv);
}

OAK_COMPARE compare_time(SCH_TYPE_INFO_C, uint32_t, const OAK_VALUE *col1, const OAK_VALUE *col2) {
    return compare_numbers(col1->vt.tmv, col2->vt.tmv);
}

// The zone does not count: both times are UTC.
OAK_COMPARE compare_timetz(SCH_TYPE_INFO_C, uint32_t, const OAK_VALUE *col1,
                           const OAK_VALUE *col2) {
    return compare_numbers(col1->vt.tmzv.time, col2->vt.tmzv.time);
}

template <class Timestamp>
OAK_COMPARE compare_moments(const Timestamp &first, const Timestamp &second) {
    const OAK_COMPARE order = compare_numbers(first.date, second.date);
    return order != OAK_EQ ? order : compare_numbers(first.time, second.time);
}

OAK_COMPARE compare_timestamp(SCH_TYPE_INFO_C, uint32_t, const OAK_VALUE *col1,
                              const OAK_VALUE *col2) {
    return compare_moments(col1->vt.tsv, col2->vt.tsv);
}

OAK_COMPARE compare_timestamptz(SCH_TYPE_INFO_C, uint32_t, const OAK_VALUE *col1,
                                const OAK_VALUE *col2) {
    return compare_moments(load<OAK_PACKED_TIMESTAMPTZ_T>(col1->vt.pv),
                           load<OAK_PACKED_TIMESTAMPTZ_T>(col2->vt.pv));
}

OAK_COMPARE compare_uuid(SCH_TYPE_INFO_C, uint32_t, const OAK_VALUE *col1, const OAK_VALUE *col2) {
    return folded(memcmp(col1->vt.pv, col2->vt.pv, sizeof(OAK_UUID_T)));
}

OAK_COMPARE compare_bcd(SCH_TYPE_INFO_C, uint32_t, const OAK_VALUE *col1, const OAK_VALUE *col2) {
    return oak_bcdCompare(col1->vt.bcd, col2->vt.bcd);
}

// Under a locale a text has no prefix that sorts like it, so a comparison with a
// limit finds everything equal and leaves the decision to the whole texts.
OAK_COMPARE compare_by_locale(uint32_t limit, const char *first, const char *second,
                              OSL_LOCALE locale) {
    if (limit != 0) {
        return OAK_EQ;
    }
    return folded(locale == nullptr ? strcmp(first, second) : strcoll_l(first, second, locale));
}

OAK_COMPARE compare_utf8(SCH_TYPE_INFO_C pi, uint32_t limit, const OAK_VALUE *col1,
                         const OAK_VALUE *col2) {
    const char *first = col1->vt.cv;
    const char *second = col2->vt.cv;
    if (sch_type_use_locale(pi) != OAK_FALSE) {
        return compare_by_locale(limit, first, second, sch_type_locale(pi));
    }
    return folded(limit == 0 ? strcmp(first, second) : strncmp(first, second, limit));
}

// The byte of a fixed binary at a place; beyond its payload it is zero.
uint8_t byte_at(const OAK_VALUE *value, size_t at_hand, size_t place) {
    return place < at_hand ? static_cast<const uint8_t *>(value->vt.pv)[place] : uint8_t{0};
}

OAK_COMPARE compare_binary(SCH_TYPE_INFO_C pi, uint32_t limit, const OAK_VALUE *col1,
                           const OAK_VALUE *col2) {
    const size_t length = sch_type_length(pi);
    const size_t size = limit != 0 && limit < length ? limit : length;
    const size_t first = binary_bytes_at_hand(pi, col1);
    const size_t second = binary_bytes_at_hand(pi, col2);
    size_t place = first < second ? first : second;
    place = place < size ? place : size;
    const int order = memcmp(col1->vt.pv, col2->vt.pv, place);
    if (order != 0) {
        return folded(order);
    }
    for (; place < size; ++place) {
        const int difference = byte_at(col1, first, place) - byte_at(col2, second, place);
        if (difference != 0) {
            return folded(difference);
        }
    }
    return OAK_EQ;
}

// The shorter of two values comes first when it begins the longer. An empty one
// may have no payload.
OAK_COMPARE compare_varbinary(SCH_TYPE_INFO_C, uint32_t, const OAK_VALUE *col1,
                              const OAK_VALUE *col2) {
    const size_t first = col1->vt.pv == nullptr ? 0 : col1->len;
    const size_t second = col2->vt.pv == nullptr ? 0 : col2->len;
    const size_t common = first < second ? first : second;
    const int order = common == 0 ? 0 : memcmp(col1->vt.pv, col2->vt.pv, common);
    return order != 0 ? folded(order) : compare_numbers(first, second);
}

// ---- Comparing: frames --------------------------------------------------------------

OAK_COMPARE framed(B_TYPE_CMP_FCN rule, SCH_TYPE_INFO_C pi, uint32_t limit, const OAK_VALUE *col1,
                   const OAK_VALUE *col2) {
    OAK_COMPARE order;
    return absence_decides(col1, col2, &order) ? order : rule(pi, limit, col1, col2);
}

// The same for a type without arrays, whose answer for a column with elements is
// fixed.
OAK_COMPARE framed_scalar(B_TYPE_CMP_FCN rule, OAK_COMPARE of_arrays, SCH_TYPE_INFO_C pi,
                          uint32_t limit, const OAK_VALUE *col1, const OAK_VALUE *col2) {
    OAK_COMPARE order;
    if (absence_decides(col1, col2, &order)) {
        return order;
    }
    return sch_type_num_elems(pi) != 0 ? of_arrays : rule(pi, limit, col1, col2);
}

// The same for a payload behind a pointer.
OAK_COMPARE framed_pointed(B_TYPE_CMP_FCN rule, SCH_TYPE_INFO_C pi, uint32_t limit,
                           const OAK_VALUE *col1, const OAK_VALUE *col2) {
    OAK_COMPARE order;
    if (absence_decides(col1, col2, &order)) {
        return order;
    }
    if (sch_type_num_elems(pi) != 0) {
        return OAK_EQ;
    }
    return absence_decides(col1->vt.pv, col2->vt.pv, &order) ? order : rule(pi, limit, col1, col2);
}

// ---- Hashing ------------------------------------------------------------------------

void hash_bytes(B_HASHCTX *hashctx, const void *data, size_t size) {
    const auto *bytes = static_cast<const uint8_t *>(data);
    for (size_t i = 0; i < size; ++i) {
        b_hashFcnEmit(hashctx, bytes[i]);
    }
}

// Numbers go in in stored byte order, so that a value hashes alike on every
// processor.
void to_stored_order(int8_t *) {}
void to_stored_order(uint8_t *) {}
void to_stored_order(int16_t *number) {
    osl_swaporderInt16(number);
}
void to_stored_order(uint16_t *number) {
    osl_swaporderUInt16(number);
}
void to_stored_order(int32_t *number) {
    osl_swaporderInt32(number);
}
void to_stored_order(uint32_t *number) {
    osl_swaporderUInt32(number);
}
void to_stored_order(int64_t *number) {
    osl_swaporderInt64(number);
}
void to_stored_order(uint64_t *number) {
    osl_swaporderUInt64(number);
}
void to_stored_order(float *number) {
    osl_swaporderFloat(number);
}
void to_stored_order(double *number) {
    osl_swaporderDouble(number);
}

template <class T>
void hash_number(B_HASHCTX *hashctx, T number) {
    to_stored_order(&number);
    hash_bytes(hashctx, &number, sizeof number);
}

template <class Traits>
OAK_RETCODE hash_arrayable(SCH_TYPE_INFO_C pi, const OAK_VALUE *col, B_HASHCTX *hashctx) {
    const Elements elements = elements_of(col);
    if (elements.place == nullptr) {
        return eINVNULLARG;
    }
    const size_t declared = sch_type_num_elems(pi);
    const size_t wanted = declared == 0 ? 1 : declared;
    for (size_t i = 0; i < wanted && i < elements.count; ++i) {
        hash_number(hashctx, load_element<typename Traits::Element>(elements, i));
    }
    return sOKAY;
}

template <class Timestamp>
void hash_moment(B_HASHCTX *hashctx, const Timestamp &moment) {
    hash_number(hashctx, moment.date);
    hash_number(hashctx, moment.time);
}

OAK_RETCODE hash_timetz(SCH_TYPE_INFO_C, const OAK_VALUE *col, B_HASHCTX *hashctx) {
    hash_number(hashctx, col->vt.tmzv.time);
    hash_number(hashctx, col->vt.tmzv.tz);
    return sOKAY;
}

OAK_RETCODE hash_timestamp(SCH_TYPE_INFO_C, const OAK_VALUE *col, B_HASHCTX *hashctx) {
    hash_moment(hashctx, col->vt.tsv);
    return sOKAY;
}

OAK_RETCODE hash_timestamptz(SCH_TYPE_INFO_C, const OAK_VALUE *col, B_HASHCTX *hashctx) {
    const auto moment = load<OAK_PACKED_TIMESTAMPTZ_T>(col->vt.pv);
    hash_moment(hashctx, moment);
    hash_number(hashctx, moment.tz);
    return sOKAY;
}

// In packed form, so that equal numbers hash alike whatever their digits.
OAK_RETCODE hash_bcd(SCH_TYPE_INFO_C pi, const OAK_VALUE *col, B_HASHCTX *hashctx) {
    OAK_PACKED_BCD_T packed[OAK_PACKED_BCD_SIZE(UINT8_MAX)] = {};
    const uint8_t prec = sch_type_prec(pi);
    if (oak_bcdPack(col->vt.bcd, packed, prec, sch_type_scale(pi)) < sOKAY) {
        return eINVBCD;
    }
    hash_bytes(hashctx, packed, OAK_PACKED_BCD_SIZE(prec));
    return sOKAY;
}

OAK_RETCODE hash_uuid(SCH_TYPE_INFO_C, const OAK_VALUE *col, B_HASHCTX *hashctx) {
    hash_bytes(hashctx, col->vt.pv, sizeof(OAK_UUID_T));
    return sOKAY;
}

OAK_RETCODE hash_utf8(SCH_TYPE_INFO_C, const OAK_VALUE *col, B_HASHCTX *hashctx) {
    hash_bytes(hashctx, col->vt.cv, strlen(col->vt.cv));
    return sOKAY;
}

// `len` bytes, for both binary types; none is no failure.
OAK_RETCODE hash_binary(SCH_TYPE_INFO_C, const OAK_VALUE *col, B_HASHCTX *hashctx) {
    if (col->len != 0 && col->vt.pv == nullptr) {
        return eINVNULLARG;
    }
    hash_bytes(hashctx, col->vt.pv, col->len);
    return sOKAY;
}

// Nothing is hashed of an absent value, nor of one without its payload.
OAK_RETCODE hashed(B_TYPE_HASH_FCN rule, bool pointed, SCH_TYPE_INFO_C pi, const OAK_VALUE *col,
                   B_HASHCTX *hashctx) {
    if (col == nullptr || hashctx == nullptr || (pointed && col->vt.pv == nullptr)) {
        return eINVNULLARG;
    }
    return rule(pi, col, hashctx);
}

} // namespace

// ---- Compare ------------------------------------------------------------------------

#define CMP(type, frame, ...)                                                                      \
    OAK_COMPARE b_type_cmp_##type(SCH_TYPE_INFO_C pi, uint32_t limit, const OAK_VALUE *col1,       \
                                  const OAK_VALUE *col2) {                                         \
        return frame(__VA_ARGS__, pi, limit, col1, col2);                                          \
    }
#define CMP_ARRAYABLE(type) CMP(type, framed, compare_arrayable<type##_traits>)
B_TYPE_LIST_ARRAYABLE(CMP_ARRAYABLE)
CMP(date, framed_scalar, compare_date, OAK_EQ)
CMP(time, framed_scalar, compare_time, OAK_EQ)
CMP(timetz, framed_scalar, compare_timetz, OAK_GT) // of a column with elements: always so
CMP(timestamp, framed_scalar, compare_timestamp, OAK_EQ)
CMP(timestamptz, framed_pointed, compare_timestamptz)
CMP(bcd, framed_pointed, compare_bcd)
CMP(uuid, framed_pointed, compare_uuid)
CMP(utf8, framed_pointed, compare_utf8)
CMP(binary, framed_pointed, compare_binary)
CMP(varbinary, framed_scalar, compare_varbinary, OAK_EQ)

// ---- Hash ---------------------------------------------------------------------------

#define HASH(type, rule, pointed)                                                                  \
    OAK_RETCODE b_type_hash_##type(SCH_TYPE_INFO_C pi, const OAK_VALUE *col, B_HASHCTX *hashctx) { \
        return hashed(rule, pointed, pi, col, hashctx);                                            \
    }
#define HASH_ARRAYABLE(type) HASH(type, hash_arrayable<type##_traits>, false)
B_TYPE_LIST_ARRAYABLE(HASH_ARRAYABLE)
HASH(timetz, hash_timetz, false)
HASH(timestamp, hash_timestamp, false)
HASH(timestamptz, hash_timestamptz, true)
HASH(bcd, hash_bcd, true)
HASH(uuid, hash_uuid, true)
HASH(utf8, hash_utf8, true)
HASH(binary, hash_binary, false)
HASH(varbinary, hash_binary, false)
