// Internal to the item formats: a column's value between a record buffer and the
// compact stream, without a value record in between. Rests on the encoder, the
// decimal's packed form and the schema's view of a column; called for every column
// of every compact row.
//
// This is a way around, not a second set of rules. put_value and take_value do
// what goes well: the value's form is one that StreamForm names, the stream is in
// memory with room or bytes for the longest form there is, and nothing is amiss
// with the value. For all else they answer null, and the caller turns to the
// type's own operations, which alone know of growth, of damage and of statuses.
//
// A writer's place and its limit, and a reader's, are handed down and back as
// plain pointers, so that they stay in registers: `at` is where the next byte goes
// or comes from, and each function returns where the one after goes, or null.
#ifndef COLUMN_STREAM_INTERNAL_H
#define COLUMN_STREAM_INTERNAL_H

#include <cstring>
#include <limits>
#include <type_traits>

#include "bcd_packed_internal.h"
#include "encoder_internal.h"
#include "schema_view_internal.h"
#include "swaporder_inline.h"

namespace column_stream {

// These are the loop bodies of packing and unpacking a row.
#define COLUMN_STREAM_INLINE [[gnu::always_inline]] inline

/// Bytes from a place to the limit; 0 where there is neither.
COLUMN_STREAM_INLINE size_t room(const uint8_t *at, const uint8_t *limit) {
    return static_cast<size_t>(limit - at);
}

template <class Number>
Number load(const uint8_t *place) {
    Number number;
    std::memcpy(&number, place, sizeof number);
    return number;
}

// ---- Numbers ----------------------------------------------------------------

/// Writes the varying form; there is room for kMostVintBytes.
template <class Number>
COLUMN_STREAM_INLINE uint8_t *put(uint8_t *at, Number number) {
    if constexpr (std::is_signed_v<Number>) {
        return at + osl::vint_encode(osl::vint_to_unsigned(number), at);
    } else {
        return at + osl::vint_encode(number, at);
    }
}

/// Reads a number that its type can hold.
template <class Number>
COLUMN_STREAM_INLINE const uint8_t *take(const uint8_t *at, const uint8_t *limit, Number *number) {
    uint64_t stored = 0;
    size_t used = 0;
    if (osl::vint_decode(at, room(at, limit), &stored, &used) != sOKAY) {
        return nullptr;
    }
    bool fits;
    if constexpr (std::is_signed_v<Number>) {
        const int64_t value = osl::vint_to_signed(stored);
        *number = static_cast<Number>(value);
        fits = *number == value;
    } else {
        *number = static_cast<Number>(stored);
        fits = *number == stored;
    }
    return fits ? at + used : nullptr;
}

template <class Number>
COLUMN_STREAM_INLINE uint8_t *put_number(uint8_t *at, const uint8_t *limit, const uint8_t *place) {
    return room(at, limit) >= osl::kMostVintBytes ? put(at, load<Number>(place)) : nullptr;
}

template <class Number>
COLUMN_STREAM_INLINE const uint8_t *take_number(const uint8_t *at, const uint8_t *limit,
                                                uint8_t *place) {
    Number number;
    const uint8_t *next = take(at, limit, &number);
    if (next != nullptr) {
        std::memcpy(place, &number, sizeof number);
    }
    return next;
}

// ---- Records and bytes ------------------------------------------------------

/// A floating number's bits to or from the stored order; a UUID's bytes as they are.
template <class Bits>
COLUMN_STREAM_INLINE void move_bits(uint8_t *to, const uint8_t *from) {
    if constexpr (std::is_same_v<Bits, OAK_UUID_T>) {
        std::memcpy(to, from, sizeof(Bits));
    } else {
        osl::store_stored(to, load<Bits>(from));
    }
}

template <class Bits>
COLUMN_STREAM_INLINE uint8_t *put_bits(uint8_t *at, const uint8_t *limit, const uint8_t *place) {
    if (room(at, limit) < sizeof(Bits)) {
        return nullptr;
    }
    move_bits<Bits>(at, place);
    return at + sizeof(Bits);
}

template <class Bits>
COLUMN_STREAM_INLINE const uint8_t *take_bits(const uint8_t *at, const uint8_t *limit,
                                              uint8_t *place) {
    if (room(at, limit) < sizeof(Bits)) {
        return nullptr;
    }
    move_bits<Bits>(place, at);
    return at + sizeof(Bits);
}

// The fields of a date or time record in stream order.
template <class Record, class Visit>
COLUMN_STREAM_INLINE void each_field(Record *record, Visit visit) {
    if constexpr (!std::is_same_v<Record, OAK_PACKED_TIMETZ_T>) {
        visit(&record->date);
    }
    visit(&record->time);
    if constexpr (!std::is_same_v<Record, OAK_PACKED_TIMESTAMP_T>) {
        visit(&record->tz);
    }
}

template <class Record>
COLUMN_STREAM_INLINE uint8_t *put_record(uint8_t *at, const uint8_t *limit, const uint8_t *place) {
    constexpr size_t kMostFields = 3;
    if (room(at, limit) < kMostFields * osl::kMostVintBytes) {
        return nullptr;
    }
    auto record = load<Record>(place);
    each_field(&record, [&at](const auto *field) { at = put(at, *field); });
    return at;
}

template <class Record>
COLUMN_STREAM_INLINE const uint8_t *take_record(const uint8_t *at, const uint8_t *limit,
                                                uint8_t *place) {
    Record record{};
    each_field(&record, [&at, limit](auto *field) {
        at = at != nullptr ? take(at, limit, field) : nullptr;
    });
    if (at != nullptr) {
        std::memcpy(place, &record, sizeof record);
    }
    return at;
}

// ---- Decimals and texts -----------------------------------------------------

COLUMN_STREAM_INLINE uint8_t *put_decimal(uint8_t *at, const uint8_t *limit,
                                          const SCH_ROW_COLUMN &column, const uint8_t *place) {
    return room(at, limit) >= BCD_PACKED_BLOCK &&
                   bcd_pack_clean(reinterpret_cast<const OAK_BCD_T *>(place), column.prec,
                                  column.scale, at)
               ? at + OAK_PACKED_BCD_SIZE(column.prec)
               : nullptr;
}

COLUMN_STREAM_INLINE const uint8_t *take_decimal(const uint8_t *at, const uint8_t *limit,
                                                 const SCH_ROW_COLUMN &column, uint8_t *place) {
    return room(at, limit) >= BCD_PACKED_BLOCK &&
                   bcd_unpack_clean(at, column.prec, column.scale,
                                    reinterpret_cast<OAK_BCD_T *>(place))
               ? at + OAK_PACKED_BCD_SIZE(column.prec)
               : nullptr;
}

COLUMN_STREAM_INLINE uint8_t *put_text(uint8_t *at, const uint8_t *limit,
                                       const SCH_ROW_COLUMN &column, const uint8_t *place) {
    const auto *end = static_cast<const uint8_t *>(std::memchr(place, 0, column.byte_len));
    if (end == nullptr) {
        return nullptr;
    }
    const size_t length = room(place, end);
    if (room(at, limit) < osl::kMostVintBytes + length) {
        return nullptr;
    }
    at = put(at, length);
    std::memcpy(at, place, length);
    return at + length;
}

COLUMN_STREAM_INLINE const uint8_t *take_text(const uint8_t *at, const uint8_t *limit,
                                              const SCH_ROW_COLUMN &column, uint8_t *place) {
    uint64_t length = 0;
    at = take(at, limit, &length);
    if (at == nullptr || length >= column.byte_len || length > room(at, limit)) {
        return nullptr;
    }
    std::memcpy(place, at, length);
    place[length] = '\0';
    return at + length;
}

// ---- Any value --------------------------------------------------------------

/// Where a value goes out to, and where it comes from.
struct Put {
    uint8_t *at;
    const uint8_t *limit;
    const SCH_ROW_COLUMN &column;
    const uint8_t *place; // of the value in a record buffer

    template <class Number>
    COLUMN_STREAM_INLINE uint8_t *number() const {
        return put_number<Number>(at, limit, place);
    }
    template <class Bits>
    COLUMN_STREAM_INLINE uint8_t *bits() const {
        return put_bits<Bits>(at, limit, place);
    }
    template <class Record>
    COLUMN_STREAM_INLINE uint8_t *record() const {
        return put_record<Record>(at, limit, place);
    }
    COLUMN_STREAM_INLINE uint8_t *decimal() const { return put_decimal(at, limit, column, place); }
    COLUMN_STREAM_INLINE uint8_t *text() const { return put_text(at, limit, column, place); }
};

struct Take {
    const uint8_t *at;
    const uint8_t *limit;
    const SCH_ROW_COLUMN &column;
    uint8_t *place;

    template <class Number>
    COLUMN_STREAM_INLINE const uint8_t *number() const {
        return take_number<Number>(at, limit, place);
    }
    template <class Bits>
    COLUMN_STREAM_INLINE const uint8_t *bits() const {
        return take_bits<Bits>(at, limit, place);
    }
    template <class Record>
    COLUMN_STREAM_INLINE const uint8_t *record() const {
        return take_record<Record>(at, limit, place);
    }
    COLUMN_STREAM_INLINE const uint8_t *decimal() const {
        return take_decimal(at, limit, column, place);
    }
    COLUMN_STREAM_INLINE const uint8_t *text() const { return take_text(at, limit, column, place); }
};

/// Moves a value by its column's form, either way.
template <class Way>
COLUMN_STREAM_INLINE auto move_value(const Way &way) -> decltype(way.at) {
    switch (way.column.form) {
        case StreamForm::int8:
            return way.template number<int8_t>();
        case StreamForm::uint8:
            return way.template number<uint8_t>();
        case StreamForm::int16:
            return way.template number<int16_t>();
        case StreamForm::uint16:
            return way.template number<uint16_t>();
        case StreamForm::int32:
            return way.template number<int32_t>();
        case StreamForm::uint32:
            return way.template number<uint32_t>();
        case StreamForm::int64:
            return way.template number<int64_t>();
        case StreamForm::uint64:
            return way.template number<uint64_t>();
        case StreamForm::float32:
            return way.template bits<uint32_t>();
        case StreamForm::float64:
            return way.template bits<uint64_t>();
        case StreamForm::timetz:
            return way.template record<OAK_PACKED_TIMETZ_T>();
        case StreamForm::timestamp:
            return way.template record<OAK_PACKED_TIMESTAMP_T>();
        case StreamForm::timestamptz:
            return way.template record<OAK_PACKED_TIMESTAMPTZ_T>();
        case StreamForm::decimal:
            return way.decimal();
        case StreamForm::uuid:
            return way.template bits<OAK_UUID_T>();
        case StreamForm::text:
            return way.text();
        case StreamForm::by_type:
        case StreamForm::large_object:
        case StreamForm::rowid:
        case StreamForm::foreign_key:
        case StreamForm::absent:
            return nullptr;
    }
    __builtin_unreachable(); // so that the jump needs no test before it
}

/// Writes the value at `place` in a record buffer. Null, with nothing written that
/// counts, when the type's own operations must.
COLUMN_STREAM_INLINE uint8_t *put_value(uint8_t *at, const uint8_t *limit,
                                        const SCH_ROW_COLUMN &column, const uint8_t *place) {
    return move_value(Put{at, limit, column, place});
}

/// Reads a value to `place` in a record buffer. Null when the type's own operations
/// must; what lies at `place` then does not count.
COLUMN_STREAM_INLINE const uint8_t *take_value(const uint8_t *at, const uint8_t *limit,
                                               const SCH_ROW_COLUMN &column, uint8_t *place) {
    return move_value(Take{at, limit, column, place});
}

} // namespace column_stream

#endif
