// B_BITMAP (bitmap.h): bit n lies in chunk n / 32 at the mask 1 << (n mod 32).
// Rests on the platform's memory; the prime sieve marks its numbers in one.
#include "bitmap.h"

#include <bit>

#include "container_internal.h"

namespace {

using CHUNK = uint32_t;
constexpr uint32_t kChunkBits = 32;

enum OAK_BIT_OP : int32_t { OAK_SET_BIT = 0, OAK_CLR_BIT = 1, OAK_NEG_BIT = 2 };

CHUNK mask_of(uint32_t bit) {
    return CHUNK{1} << (bit % kChunkBits);
}

CHUNK changed(CHUNK chunk, CHUNK mask, OAK_BIT_OP operation) {
    switch (operation) {
        case OAK_SET_BIT:
            return chunk | mask;
        case OAK_CLR_BIT:
            return chunk & ~mask;
        case OAK_NEG_BIT:
            break;
    }
    return chunk ^ mask;
}

OAK_BOOL_T as_bool(bool value) {
    return value ? OAK_TRUE : OAK_FALSE;
}

} // namespace

struct BITMAP_CTX {
    CHUNK *data;
    uint32_t size;      // bits
    uint32_t numChunks; // chunks that hold them
    OSL_MEMTAG tag;
};

namespace {

/// Changes a bit and returns its earlier value.
OAK_BOOL_T setOrClearBit(B_BITMAP bitmap, uint32_t bit, OAK_BIT_OP operation) {
    if (bitmap == nullptr || bit >= bitmap->size) {
        return OAK_FALSE;
    }
    CHUNK &chunk = bitmap->data[bit / kChunkBits];
    const CHUNK mask = mask_of(bit);
    const bool earlier = (chunk & mask) != 0;
    chunk = changed(chunk, mask, operation);
    return as_bool(earlier);
}

} // namespace

OAK_RETCODE b_bmCreate(uint32_t size, OSL_MEMTAG tag, B_BITMAP *pBitmap) {
    if (pBitmap == nullptr) {
        return eINVNULLARG;
    }
    BITMAP_CTX *bitmap = nullptr;
    OAK_RETCODE rc = oak::get_zeroed(1, tag, &bitmap, __FILE__, __LINE__);
    if (rc != sOKAY) {
        return rc;
    }
    const auto chunks = static_cast<uint32_t>((uint64_t{size} + kChunkBits - 1) / kChunkBits);
    CHUNK *data = nullptr;
    rc = oak::get_zeroed(chunks, tag, &data, __FILE__, __LINE__);
    if (rc != sOKAY) {
        OSL_FREE(bitmap, tag);
        return rc;
    }
    *bitmap = {data, size, chunks, tag};
    *pBitmap = bitmap;
    return sOKAY;
}

void b_bmDestroy(B_BITMAP bitmap) {
    if (bitmap != nullptr) {
        OSL_FREE(bitmap->data, bitmap->tag);
        OSL_FREE(bitmap, bitmap->tag);
    }
}

OAK_BOOL_T b_bmSetBit(B_BITMAP bitmap, uint32_t bit) {
    return setOrClearBit(bitmap, bit, OAK_SET_BIT);
}

OAK_BOOL_T b_bmClearBit(B_BITMAP bitmap, uint32_t bit) {
    return setOrClearBit(bitmap, bit, OAK_CLR_BIT);
}

OAK_BOOL_T b_bmNegateBit(B_BITMAP bitmap, uint32_t bit) {
    return setOrClearBit(bitmap, bit, OAK_NEG_BIT);
}

OAK_BOOL_T b_bmTestBit(B_BITMAP_C bitmap, uint32_t bit) {
    return as_bool(bitmap != nullptr && bit < bitmap->size &&
                   (bitmap->data[bit / kChunkBits] & mask_of(bit)) != 0);
}

uint32_t b_bmCount(B_BITMAP_C bitmap) {
    uint32_t count = 0;
    for (uint32_t i = 0; bitmap != nullptr && i < bitmap->numChunks; ++i) {
        count += static_cast<uint32_t>(std::popcount(bitmap->data[i]));
    }
    return count;
}
