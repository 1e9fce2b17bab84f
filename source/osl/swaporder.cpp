// Stored byte order: big-endian, on every machine. Each function turns a value
// in place from the host's order to the stored one; it is its own inverse.
#include "osltypes.h"

#include "swaporder_inline.h"

namespace {

/// Turns the bytes at `place`, which need not be aligned, as those of a `Bits`.
template <class Bits>
void turn(void *place) {
    const auto bits = osl::load_stored<Bits>(place);
    std::memcpy(place, &bits, sizeof bits);
}

} // namespace

#define OSL_SWAPORDERS(X)                                                                          \
    X(Int16, int16_t, uint16_t)                                                                    \
    X(UInt16, uint16_t, uint16_t)                                                                  \
    X(Int32, int32_t, uint32_t)                                                                    \
    X(UInt32, uint32_t, uint32_t)                                                                  \
    X(Int64, int64_t, uint64_t)                                                                    \
    X(UInt64, uint64_t, uint64_t)                                                                  \
    X(Float, float, uint32_t)                                                                      \
    X(Double, double, uint64_t)

#define OSL_DEFINE_SWAPORDER(name, type, bits)                                                     \
    void osl_swaporder##name(type *value) {                                                        \
        static_assert(sizeof(type) == sizeof(bits));                                               \
        turn<bits>(value);                                                                         \
    }
OSL_SWAPORDERS(OSL_DEFINE_SWAPORDER)
