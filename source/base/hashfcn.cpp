// The byte hash (hashfcn.h). Rests on nothing; the type tables hash columns with
// it, and stored hash buckets hold its values.
//
// The table is made by the compiler. Number n, counted row by row, is output
// n + 1 of the SplitMix64 generator (Steele, Lea and Flood, 2014) started from a
// fixed state; that output depends on n alone, so each number stands for itself.
// Seven numbers are older than the generator and replace its own at their places.
#include "hashfcn.h"

namespace {

constexpr uint64_t kFirstState = 0x6F616B6261736531; // "oakbase1"
constexpr uint64_t kStep = 0x9E3779B97F4A7C15;

struct FixedNumber {
    uint32_t row;
    uint32_t column;
    uint64_t number;
};
constexpr FixedNumber kFixedNumbers[] = {
    {0, 0, 0x9a93cc4203a11319},   {0, 1, 0x62881f6f8eab3dfc}, {0, 2, 0x9feed761ac89a737},
    {1, 0, 0xe2b20851f47fa45e},   {1, 1, 0x9c98a0dd40f82869}, {255, 6, 0xcb97545df26f5490},
    {255, 7, 0x4c12c375d205bb28},
};

constexpr uint64_t mix(uint64_t state) {
    state = (state ^ (state >> 30)) * 0xBF58476D1CE4E5B9;
    state = (state ^ (state >> 27)) * 0x94D049BB133111EB;
    return state ^ (state >> 31);
}

constexpr uint64_t number_at(uint32_t row, uint32_t column) {
    for (const FixedNumber &fixed : kFixedNumbers) {
        if (fixed.row == row && fixed.column == column) {
            return fixed.number;
        }
    }
    const uint64_t steps = uint64_t{row} * B_HASH_COLUMNS + column + 1;
    return mix(kFirstState + steps * kStep);
}

} // namespace

// clang-format off
#define HASH_ROW(r) {number_at(r, 0), number_at(r, 1), number_at(r, 2), number_at(r, 3), \
                     number_at(r, 4), number_at(r, 5), number_at(r, 6), number_at(r, 7)}
#define HASH_ROWS_4(r) HASH_ROW(r), HASH_ROW((r) + 1), HASH_ROW((r) + 2), HASH_ROW((r) + 3)
#define HASH_ROWS_16(r) HASH_ROWS_4(r), HASH_ROWS_4((r) + 4), \
                        HASH_ROWS_4((r) + 8), HASH_ROWS_4((r) + 12)
#define HASH_ROWS_64(r) HASH_ROWS_16(r), HASH_ROWS_16((r) + 16), \
                        HASH_ROWS_16((r) + 32), HASH_ROWS_16((r) + 48)

constexpr uint64_t hashNumbers[B_HASH_ROWS][B_HASH_COLUMNS] = {
    HASH_ROWS_64(0), HASH_ROWS_64(64), HASH_ROWS_64(128), HASH_ROWS_64(192)};
// clang-format on

// The state of the generator is part of the stored form: one number of it that
// is not among the fixed ones, reckoned apart.
static_assert(hashNumbers[0x41][0] == 0xab8f567623a410f2);
static_assert(hashNumbers[255][7] == 0x4c12c375d205bb28);

void b_hashFcnStart(B_HASHCTX *ctx) {
    *ctx = {};
}

void b_hashFcnEmit(B_HASHCTX *ctx, uint8_t byte) {
    ctx->hash ^= hashNumbers[byte][ctx->offset % B_HASH_COLUMNS];
    ++ctx->offset;
}

uint64_t b_hashFcnFinish(const B_HASHCTX *ctx) {
    return ctx->hash;
}
