// Internal: the stored order of bytes, inline, for the platform's own functions and
// for whoever reads and writes numbers in memory by the word. Rests on nothing.
//
// Stored numbers are big-endian on every machine, so that bytes compare as what
// they hold.
#ifndef SWAPORDER_INLINE_H
#define SWAPORDER_INLINE_H

#include <bit>
#include <cstdint>
#include <cstring>

namespace osl {

constexpr bool kHostIsStoredOrder = std::endian::native == std::endian::big;

/// From the host's order to the stored one and back.
constexpr uint16_t in_stored_order(uint16_t bits) {
    return kHostIsStoredOrder ? bits : __builtin_bswap16(bits);
}
constexpr uint32_t in_stored_order(uint32_t bits) {
    return kHostIsStoredOrder ? bits : __builtin_bswap32(bits);
}
constexpr uint64_t in_stored_order(uint64_t bits) {
    return kHostIsStoredOrder ? bits : __builtin_bswap64(bits);
}

/// A stored number at a place that need not be aligned.
template <class Bits>
Bits load_stored(const void *place) {
    Bits bits;
    std::memcpy(&bits, place, sizeof bits);
    return in_stored_order(bits);
}

template <class Bits>
void store_stored(void *place, Bits bits) {
    bits = in_stored_order(bits);
    std::memcpy(place, &bits, sizeof bits);
}

} // namespace osl

#endif
