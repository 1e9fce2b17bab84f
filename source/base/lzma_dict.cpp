// The dictionary of the LZMA coder; see lzma_dict_internal.h for what it finds.
// Rests on the platform alone; called by lzma.cpp.
#include "lzma_dict_internal.h"

#include <bit>
#include <cstring>

namespace {

constexpr uint32_t kNone = UINT32_MAX; // fills the heads before the first entry
constexpr uint32_t kHashBits = 13;
constexpr uint32_t kHashSize = 1u << kHashBits;
constexpr uint32_t kChainMask = kLzmaDictSize - 1;
static_assert((kLzmaDictSize & kChainMask) == 0);

uint32_t hash(uint32_t bytes) {
    return bytes * 2654435761u >> (32 - kHashBits); // Knuth's multiplicative hash
}

uint32_t load32(const uint8_t *bytes) {
    uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

uint64_t load64(const uint8_t *bytes) {
    uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

uint32_t load_pair(const uint8_t *bytes) {
    return static_cast<uint32_t>(bytes[0]) << 8 | bytes[1];
}

uint32_t load_triple(const uint8_t *bytes) {
    return load_pair(bytes) << 8 | bytes[2];
}

// The index of the first byte in memory in which two words differ.
uint32_t first_difference(uint64_t difference) {
    const int bits = std::endian::native == std::endian::little ? std::countr_zero(difference)
                                                                : std::countl_zero(difference);
    return static_cast<uint32_t>(bits) / 8;
}

// How many of `limit` bytes are equal.
uint32_t equal_bytes(const uint8_t *a, const uint8_t *b, uint32_t limit) {
    uint32_t count = 0;
    for (; count + 8 <= limit; count += 8) {
        const uint64_t difference = load64(a + count) ^ load64(b + count);
        if (difference != 0) {
            return count + first_difference(difference);
        }
    }
    while (count < limit && a[count] == b[count]) {
        ++count;
    }
    return count;
}

void push(LZMA_MATCHES *matches, uint32_t distance, uint32_t len) {
    matches->lz77[matches->num++] = LZ77_SEQ{distance - 1, len};
}

} // namespace

struct _LZMA_DICT {
    OSL_MEMTAG tag;
    const uint8_t *data;
    uint32_t size;
    // The latest position of each pair of bytes, and of each hash of three and
    // of four bytes; the chains lead from a position to the one before it.
    uint32_t pair_head[65536];
    uint32_t triple_head[kHashSize];
    uint32_t quad_head[kHashSize];
    uint32_t triple_chain[kLzmaDictSize]; // not cleared: entered before it is followed
    uint32_t quad_chain[kLzmaDictSize];
};

namespace {

// An earlier position that the window still reaches; a head or a link that
// holds none fails the first half.
bool in_window(uint32_t position, uint32_t earlier) {
    return earlier < position && position - earlier <= kLzmaDictSize;
}

uint32_t longest_at(LZMA_DICT dict, uint32_t position) {
    const uint32_t left = dict->size - position;
    return left < kLzmaLongestMatch ? left : kLzmaLongestMatch;
}

void find_triple(LZMA_DICT dict, uint32_t position, uint32_t limit, LZMA_MATCHES *matches) {
    const uint8_t *here = dict->data + position;
    const uint32_t wanted = load_triple(here);
    for (uint32_t p = dict->triple_head[hash(wanted)]; in_window(position, p);
         p = dict->triple_chain[p & kChainMask]) {
        if (load_triple(dict->data + p) == wanted) {
            push(matches, position - p, equal_bytes(here, dict->data + p, limit));
            return;
        }
    }
}

void find_longer(LZMA_DICT dict, uint32_t position, uint32_t limit, LZMA_MATCHES *matches) {
    const uint8_t *here = dict->data + position;
    uint32_t best = matches->lz77[matches->num - 1].len;
    for (uint32_t p = dict->quad_head[hash(load32(here))]; best < limit && in_window(position, p);
         p = dict->quad_chain[p & kChainMask]) {
        const uint8_t *there = dict->data + p;
        if (there[best] != here[best]) {
            continue; // cannot be longer
        }
        const uint32_t len = equal_bytes(here, there, limit);
        if (len > best) {
            push(matches, position - p, len);
            best = len;
        }
    }
}

} // namespace

OAK_RETCODE lzmaDict_create(const uint8_t *data, uint32_t size, LZMA_DICT *dict) {
    const OSL_MEMTAG tag = OSL_CREATE_TAG();
    if (tag == nullptr) {
        return eNOMEMORY;
    }
    auto *record = static_cast<LZMA_DICT>(OSL_GET(sizeof(_LZMA_DICT), tag));
    if (record == nullptr) {
        OSL_FREE_TAG(tag);
        return eNOMEMORY;
    }
    record->tag = tag;
    record->data = data;
    record->size = size;
    static_assert(kNone == UINT32_MAX); // all ones, so that bytes of 0xff make it
    std::memset(record->pair_head, 0xff, sizeof record->pair_head);
    std::memset(record->triple_head, 0xff, sizeof record->triple_head);
    std::memset(record->quad_head, 0xff, sizeof record->quad_head);
    *dict = record;
    return sOKAY;
}

void lzmaDict_destroy(LZMA_DICT dict) {
    OSL_FREE_TAG(dict->tag);
}

void lzmaDict_add(LZMA_DICT dict, uint32_t position) {
    const uint32_t left = dict->size - position;
    const uint8_t *here = dict->data + position;
    const uint32_t link = position & kChainMask;
    if (left >= 2) {
        dict->pair_head[load_pair(here)] = position;
    }
    if (left >= 3) {
        uint32_t &head = dict->triple_head[hash(load_triple(here))];
        dict->triple_chain[link] = head;
        head = position;
    }
    if (left >= 4) {
        uint32_t &head = dict->quad_head[hash(load32(here))];
        dict->quad_chain[link] = head;
        head = position;
    }
}

void lzmaDict_findMatches(LZMA_DICT dict, uint32_t position, LZMA_MATCHES *matches) {
    matches->num = 0;
    const uint32_t limit = longest_at(dict, position);
    if (limit < kLzmaShortestMatch) {
        return;
    }
    const uint8_t *here = dict->data + position;
    const uint32_t pair = dict->pair_head[load_pair(here)];
    if (!in_window(position, pair)) {
        return;
    }
    push(matches, position - pair, equal_bytes(here, dict->data + pair, limit));
    if (limit >= 3 && matches->lz77[0].len < 3) {
        find_triple(dict, position, limit, matches);
    }
    if (limit >= 4) {
        find_longer(dict, position, limit, matches);
    }
}

uint32_t lzmaDict_matchLength(LZMA_DICT dict, uint32_t position, uint32_t earlier) {
    return equal_bytes(dict->data + position, dict->data + earlier, longest_at(dict, position));
}
