// Internal to compression: the dictionary of the LZMA coder, which finds where
// the bytes at a position stood before.
//
// What the parser needs of all the earlier places that share two or more bytes
// with the position is little: going back from the nearest, those that are
// longer than every nearer one. From these records it has the best match (the
// last), the nearest match of at least a given length (the first that is as
// long), and whether a repeated distance would have been in a full list. So the
// dictionary finds the records alone: the nearest place with the same two bytes
// from a direct table, the nearest with the same three and then those with the
// same four from hash chains, and compares no others.
//
// The tables are made for one object and freed after it.
#ifndef LZMA_DICT_INTERNAL_H
#define LZMA_DICT_INTERNAL_H

#include "osltypes.h"

constexpr uint32_t kLzmaDictSize = 16384;
constexpr uint32_t kLzmaLongestMatch = 273;
constexpr uint32_t kLzmaShortestMatch = 2;

// A match: `pos` is the distance less 1.
struct LZ77_SEQ {
    uint32_t pos;
    uint32_t len;
};

// The records of a position, nearest first, each longer than the one before;
// lengths run from 2 to 273, so there are at most 272.
struct LZMA_MATCHES {
    uint32_t num;
    LZ77_SEQ lz77[kLzmaLongestMatch - kLzmaShortestMatch + 1];
};

typedef struct _LZMA_DICT *LZMA_DICT;

// A dictionary over `size` bytes at `data`, which must stay; eNOMEMORY when
// memory ends.
OAK_RETCODE lzmaDict_create(const uint8_t *data, uint32_t size, LZMA_DICT *dict);
void lzmaDict_destroy(LZMA_DICT dict);
// Enters a position. Positions are entered in order, each once.
void lzmaDict_add(LZMA_DICT dict, uint32_t position);
// Finds the records at a position behind all those entered.
void lzmaDict_findMatches(LZMA_DICT dict, uint32_t position, LZMA_MATCHES *matches);
// How many bytes are equal at `position` and at `earlier`, at most 273.
uint32_t lzmaDict_matchLength(LZMA_DICT dict, uint32_t position, uint32_t earlier);

#endif
