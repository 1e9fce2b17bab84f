// Internal: the varying integer, for the layer's own functions and for the
// encoder's and decoder's fast paths over byte arrays.
//
// LEB128: seven bits a byte, least significant group first, 0x80 set on every
// byte but the last. 0 to 127 take one byte, 64 bits take ten. The encoder writes
// the shortest form. A reader accepts any form of at most ten bytes whose value
// fits 64 bits, so a tenth byte is 0 or 1. Signed numbers are mapped zigzag: 0,
// -1, 1, -2 become 0, 1, 2, 3.
#ifndef VINT_INLINE_H
#define VINT_INLINE_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "oakretcodetypes.h"

namespace osl {

constexpr size_t kMostVintBytes = 10;
constexpr uint32_t kVintGroupBits = 7;
constexpr uint8_t kVintGroupMask = 0x7f;
constexpr uint8_t kVintMore = 0x80;
constexpr uint32_t kVintLastShift = 63; // of the tenth byte, which holds one bit

/// Writes the shortest form into `bytes`, which has room for kMostVintBytes;
/// returns how many were written, 1 to 10.
inline size_t vint_encode(uint64_t value, uint8_t *bytes) {
    size_t count = 0;
    while (value > kVintGroupMask) {
        bytes[count++] = static_cast<uint8_t>(value | kVintMore);
        value >>= kVintGroupBits;
    }
    bytes[count++] = static_cast<uint8_t>(value);
    return count;
}

/// How many bytes vint_encode writes.
inline size_t vint_size(uint64_t value) {
    const auto bits = static_cast<uint32_t>(64 - __builtin_clzll(value | 1));
    return (bits + kVintGroupBits - 1) / kVintGroupBits;
}

/// Gathers a value byte by byte.
class VintGatherer {
  public:
    enum class State { more, done, malformed };

    State take(uint8_t byte) {
        if (shift_ == kVintLastShift && byte > 1) {
            return State::malformed;
        }
        value_ |= static_cast<uint64_t>(byte & kVintGroupMask) << shift_;
        shift_ += kVintGroupBits;
        return (byte & kVintMore) != 0 ? State::more : State::done;
    }
    uint64_t value() const { return value_; }

  private:
    uint64_t value_ = 0;
    uint32_t shift_ = 0;
};

/// The groups of up to eight bytes, the first in the lowest byte of `bytes`, put
/// together: neighbours are joined to fields of 14, 28 and 56 bits.
constexpr uint64_t vint_join_groups(uint64_t bytes) {
    bytes = (bytes & 0x007f007f007f007f) | (bytes & 0x7f007f007f007f00) >> 1;
    bytes = (bytes & 0x00003fff00003fff) | (bytes & 0x3fff00003fff0000) >> 2;
    return (bytes & 0x000000000fffffff) | (bytes & 0x0fffffff00000000) >> 4;
}

/// vint_decode for a form of two to eight bytes where eight can be read; false for
/// a longer one.
inline bool vint_decode_eight(const uint8_t *bytes, uint64_t *value, size_t *used) {
    constexpr uint64_t kMoreBits = 0x8080808080808080;
    uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    if constexpr (std::endian::native == std::endian::big) {
        word = __builtin_bswap64(word);
    }
    const uint64_t last = ~word & kMoreBits; // its lowest bit ends the form
    if (last == 0) {
        return false;
    }
    *value = vint_join_groups(word & (last ^ (last - 1)));
    *used = static_cast<size_t>(std::countr_zero(last)) / 8 + 1;
    return true;
}

/// Reads one integer from the front of `bytes`. sOKAY sets the value and how many
/// bytes it took; eINVVARINT: no form of a 64-bit value; eEOD: the bytes end within
/// it. A failure sets nothing.
inline OAK_RETCODE vint_decode(const uint8_t *bytes, size_t size, uint64_t *value, size_t *used) {
    if (size > 0 && bytes[0] <= kVintGroupMask) [[likely]] {
        *value = bytes[0];
        *used = 1;
        return sOKAY;
    }
    if (size >= sizeof(uint64_t) && vint_decode_eight(bytes, value, used)) [[likely]] {
        return sOKAY;
    }
    VintGatherer gatherer;
    for (size_t i = 0; i < size; ++i) {
        const VintGatherer::State state = gatherer.take(bytes[i]);
        if (state == VintGatherer::State::malformed) {
            return eINVVARINT;
        }
        if (state == VintGatherer::State::done) {
            *value = gatherer.value();
            *used = i + 1;
            return sOKAY;
        }
    }
    return eEOD;
}

constexpr uint64_t vint_to_unsigned(int64_t value) {
    return (static_cast<uint64_t>(value) << 1) ^ (value < 0 ? UINT64_MAX : 0);
}

constexpr int64_t vint_to_signed(uint64_t value) {
    return static_cast<int64_t>((value >> 1) ^ (0 - (value & 1)));
}

} // namespace osl

#endif
