// The byte hash: known answers, the fixed numbers of the table, and the rule that
// row and column follow from value and position.
#include "hashfcn.h"

#include <set>
#include <string>
#include <vector>

#include "test_support.h"

namespace {

uint64_t hash_of(const std::vector<uint8_t> &bytes) {
    B_HASHCTX ctx;
    b_hashFcnStart(&ctx);
    for (const uint8_t byte : bytes) {
        b_hashFcnEmit(&ctx, byte);
    }
    return b_hashFcnFinish(&ctx);
}

TEST(ByteHash, GivesTheKnownAnswers) {
    const struct {
        const char *bytes;
        uint64_t hash;
    } rows[] = {
        {"", 0x0000000000000000},
        {"00", 0x9a93cc4203a11319},
        {"41", 0xab8f567623a410f2},
        {"4142", 0x2db01655795a5683},
        {"6f616b62617365", 0x341ba9d6ca4b9005},
        {"000102030405060708090a0b0c0d0e0f", 0x5b7352980c1051e5},
        {"414141414141414141", 0x8d203283b44ad9e7},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(hash_of(oaktest::unhex(row.bytes)), row.hash) << row.bytes;
    }
}

TEST(ByteHash, HoldsTheSevenFixedNumbersAtTheirPlaces) {
    EXPECT_EQ(hashNumbers[0][0], 0x9a93cc4203a11319u);
    EXPECT_EQ(hashNumbers[0][1], 0x62881f6f8eab3dfcu);
    EXPECT_EQ(hashNumbers[0][2], 0x9feed761ac89a737u);
    EXPECT_EQ(hashNumbers[1][0], 0xe2b20851f47fa45eu);
    EXPECT_EQ(hashNumbers[1][1], 0x9c98a0dd40f82869u);
    EXPECT_EQ(hashNumbers[255][6], 0xcb97545df26f5490u);
    EXPECT_EQ(hashNumbers[255][7], 0x4c12c375d205bb28u);
}

// The rest of the table, by running the generator step by step as it is published.
TEST(ByteHash, FillsTheTableFromTheGenerator) {
    const std::set<uint32_t> fixed = {0, 1, 2, 8, 9, 2046, 2047};
    uint64_t state = 0x6F616B6261736531;
    std::set<uint64_t> distinct;
    for (uint32_t n = 0; n < 2048; ++n) {
        state += 0x9e3779b97f4a7c15u;
        uint64_t z = state;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
        z = z ^ (z >> 31);
        const uint64_t number = hashNumbers[n / 8][n % 8];
        distinct.insert(number);
        EXPECT_EQ(number == z, fixed.count(n) == 0) << n;
    }
    EXPECT_EQ(distinct.size(), 2048u);
}

TEST(ByteHash, CancelsTheSameByteEightPositionsApart) {
    EXPECT_EQ(hash_of({0x33, 1, 2, 3, 4, 5, 6, 7, 0x33}), hash_of({0, 1, 2, 3, 4, 5, 6, 7, 0}));
    EXPECT_NE(hash_of({0x33, 1, 2, 3, 4, 5, 6, 7, 0x34}), hash_of({0, 1, 2, 3, 4, 5, 6, 7, 0}));
}

TEST(ByteHash, GoesOnAfterAFinishAndBeginsAnewAfterAStart) {
    B_HASHCTX ctx;
    b_hashFcnStart(&ctx);
    b_hashFcnEmit(&ctx, 0x41);
    EXPECT_EQ(b_hashFcnFinish(&ctx), hash_of({0x41}));
    b_hashFcnEmit(&ctx, 0x42);
    EXPECT_EQ(ctx.offset, 2u);
    EXPECT_EQ(b_hashFcnFinish(&ctx), hash_of({0x41, 0x42}));
    b_hashFcnStart(&ctx);
    EXPECT_EQ(ctx.offset, 0u);
    EXPECT_EQ(b_hashFcnFinish(&ctx), 0u);
}

// The position is counted in 32 bits; wrapping keeps the column, 8 being a power of two.
TEST(ByteHash, KeepsItsColumnWhenThePositionWraps) {
    B_HASHCTX ctx;
    b_hashFcnStart(&ctx);
    ctx.offset = UINT32_MAX;
    b_hashFcnEmit(&ctx, 5);
    b_hashFcnEmit(&ctx, 6);
    EXPECT_EQ(ctx.offset, 1u);
    EXPECT_EQ(b_hashFcnFinish(&ctx), hashNumbers[5][7] ^ hashNumbers[6][0]);
}

} // namespace
