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

#include <cstddef>
#include <cstdint>

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

/// Reads one integer from the front of `bytes`. sOKAY sets the value and how many
/// bytes it took; eINVVARINT: no form of a 64-bit value; eEOD: the bytes end within
/// it. A failure sets nothing.
inline OAK_RETCODE vint_decode(const uint8_t *bytes, size_t size, uint64_t *value, size_t *used) {
    if (size > 0 && bytes[0] <= kVintGroupMask) [[likely]] {
        *value = bytes[0];
        *used = 1;
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
