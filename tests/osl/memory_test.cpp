// Tags and blocks: every flag, growth and its cost, exhaustion, jumps, what a
// tag's death frees, and the process-wide tags under threads.
#include <csetjmp>
#include <cstring>
#include <limits>
#include <map>
#include <thread>

#include "osl_debug.h"
#include "test_support.h"

namespace {

#ifdef OSL_SEPARATE_BLOCKS
constexpr bool kSeparateBlocks = true;
#else
constexpr bool kSeparateBlocks = false;
#endif

#if defined(__SANITIZE_THREAD__) || defined(OSL_SEPARATE_BLOCKS)
constexpr bool kSystemMayRefuse = false; // sanitizers end a program that asks for too much
#else
constexpr bool kSystemMayRefuse = true;
#endif

constexpr size_t kImpossibleSizes[] = {
    std::numeric_limits<size_t>::max(),
    std::numeric_limits<size_t>::max() - 1,
    std::numeric_limits<size_t>::max() - 8,
    std::numeric_limits<size_t>::max() - 15,
    std::numeric_limits<size_t>::max() - 16,
    std::numeric_limits<size_t>::max() - 23,
    std::numeric_limits<size_t>::max() - 24,
    std::numeric_limits<size_t>::max() - 31,
    std::numeric_limits<size_t>::max() - 32,
    std::numeric_limits<size_t>::max() - 64,
    std::numeric_limits<size_t>::max() - 80,
    std::numeric_limits<size_t>::max() - 4096,
    static_cast<size_t>(PTRDIFF_MAX) + 1,
    static_cast<size_t>(PTRDIFF_MAX),
    static_cast<size_t>(PTRDIFF_MAX) - 16,
    size_t{1} << 62,
    (size_t{1} << 56) + 1,
    size_t{1} << 56,
    (size_t{1} << 56) - 1,
};

void fill(void *block, size_t size, uint8_t first) {
    for (size_t i = 0; i < size; ++i) {
        static_cast<uint8_t *>(block)[i] = static_cast<uint8_t>(first + i);
    }
}

bool is_filled(const void *block, size_t size, uint8_t first) {
    for (size_t i = 0; i < size; ++i) {
        if (static_cast<const uint8_t *>(block)[i] != static_cast<uint8_t>(first + i)) {
            return false;
        }
    }
    return true;
}

bool is_zero(const void *block, size_t size) {
    const std::vector<uint8_t> zeros(size);
    return size == 0 || std::memcmp(block, zeros.data(), size) == 0;
}

bool is_aligned(const void *block) {
    return reinterpret_cast<uintptr_t>(block) % 16 == 0;
}

void *extend(void *old, size_t size, OSL_MEMTAG tag, uint32_t flags = OSL_MEM_PLAIN,
             size_t added = 0, const void *source = nullptr) {
    return osl_extendMem(old, size, tag, flags, added, source, __FILE__, __LINE__);
}

} // namespace

// ---- Taking blocks ----------------------------------------------------------

TEST(Memory, GivesAlignedWritableBlocksOfEverySize) {
    oaktest::Tag tag;
    for (const OSL_MEMTAG where : {tag.get(), OSL_TAG_PROCESS, OSL_TAG_LZ}) {
        for (size_t size = 0; size < 70000; size = size < 300 ? size + 1 : size * 5 / 4) {
            void *block = OSL_GET(size, where);
            ASSERT_NE(block, nullptr);
            EXPECT_TRUE(is_aligned(block)) << size;
            std::memset(block, 0xee, size);
            OSL_FREE(block, where);
        }
    }
}

TEST(Memory, GivesDistinctBlocksThatNeverOverlap) {
    oaktest::Tag tag;
    oaktest::Random random;
    std::map<uint8_t *, size_t> blocks; // by address
    for (int i = 0; i < 3000; ++i) {
        const size_t size = random.below(20) == 0 ? random.below(30000) : random.below(600);
        auto *block = static_cast<uint8_t *>(OSL_GET(size, tag));
        ASSERT_NE(block, nullptr);
        ASSERT_TRUE(is_aligned(block));
        ASSERT_TRUE(blocks.emplace(block, size).second);
    }
    const uint8_t *end = nullptr;
    for (const auto &[block, size] : blocks) {
        ASSERT_GE(block, end);
        end = block + size;
    }
    for (const auto &[block, size] : blocks) {
        OSL_FREE(block, tag);
    }
}

TEST(Memory, ZeroesABlockThatWasUsedBefore) {
    oaktest::Tag tag;
    for (const size_t size : {1, 24, 25, 100, 4096, 100000}) {
        void *used = OSL_GET(size, tag);
        std::memset(used, 0xff, size);
        OSL_FREE(used, tag);
        void *zeroed = OSL_GET_ZERO(size, tag);
        EXPECT_TRUE(is_zero(zeroed, size)) << size;
        OSL_FREE(zeroed, tag);
    }
}

TEST(Memory, CopiesBytes) {
    oaktest::Tag tag;
    uint8_t source[1000];
    fill(source, sizeof source, 7);
    for (const size_t size : {size_t{0}, size_t{1}, size_t{1000}}) {
        void *copy = OSL_GET_COPY(source, size, tag);
        ASSERT_NE(copy, nullptr);
        EXPECT_TRUE(is_filled(copy, size, 7));
        OSL_FREE(copy, tag);
    }
    void *nothing = OSL_GET_COPY(nullptr, 0, tag);
    EXPECT_NE(nothing, nullptr);
    OSL_FREE(nothing, tag);
}

TEST(Memory, CopiesATextWithItsTerminatorWhateverTheSize) {
    oaktest::Tag tag;
    const std::string long_text(5000, 'x');
    for (const char *text : {"", "oak", long_text.c_str()}) {
        for (const size_t size : {0, 1, 77777}) {
            void *copy = osl_getMem(size, tag, OSL_MEM_STRING, text, __FILE__, __LINE__);
            ASSERT_NE(copy, nullptr);
            EXPECT_STREQ(static_cast<char *>(copy), text);
            OSL_FREE(copy, tag);
        }
    }
}

TEST(Memory, TreatsOtherFlagsAsPlain) {
    oaktest::Tag tag;
    for (const uint32_t flags : {0u, 2u, 4u, 7u, 15u, 255u}) {
        void *block = osl_getMem(10, tag, flags, nullptr, __FILE__, __LINE__);
        EXPECT_NE(block, nullptr) << flags;
        OSL_FREE(block, tag);
    }
}

TEST(Memory, StatusFormHandsOutTheBlock) {
    oaktest::Tag tag;
    void *block = nullptr;
    EXPECT_EQ(osl_getMem_rc(3, tag, OSL_MEM_COPY, "abc", &block, __FILE__, __LINE__), sOKAY);
    EXPECT_EQ(std::memcmp(block, "abc", 3), 0);
    OSL_FREE(block, tag);
    EXPECT_EQ(osl_getMem_rc(64, tag, OSL_MEM_PLAIN, nullptr, &block, __FILE__, __LINE__), sOKAY);
    OSL_FREE(block, tag);
}

TEST(Memory, RefusesMissingArguments) {
    oaktest::Tag tag;
    void *block = &tag;
    EXPECT_EQ(osl_getMem_rc(1, nullptr, OSL_MEM_PLAIN, nullptr, &block, "", 0), eINVNULLARG);
    EXPECT_EQ(osl_getMem_rc(1, tag, OSL_MEM_PLAIN, nullptr, nullptr, "", 0), eINVNULLARG);
    EXPECT_EQ(osl_getMem_rc(1, tag, OSL_MEM_COPY, nullptr, &block, "", 0), eINVNULLARG);
    EXPECT_EQ(osl_getMem_rc(0, tag, OSL_MEM_STRING, nullptr, &block, "", 0), eINVNULLARG);
    EXPECT_EQ(block, &tag) << "an output is set on success alone";
    EXPECT_EQ(OSL_GET(1, nullptr), nullptr);
    EXPECT_EQ(OSL_GET_COPY(nullptr, 1, tag), nullptr);
    EXPECT_EQ(OSL_GET_STRING(nullptr, tag), nullptr);
}

TEST(Memory, RefusesImpossibleSizes) {
    oaktest::Tag tag;
    for (const OSL_MEMTAG where : {tag.get(), OSL_TAG_PROCESS, OSL_TAG_LZ}) {
        for (const size_t size : kImpossibleSizes) {
            void *block = nullptr;
            EXPECT_EQ(OSL_GET(size, where), nullptr) << size;
            EXPECT_EQ(OSL_GET_ZERO(size, where), nullptr) << size;
            EXPECT_EQ(osl_getMem_rc(size, where, OSL_MEM_COPY, "x", &block, "", 0), eNOMEMORY);
            EXPECT_EQ(block, nullptr);
        }
    }
}

TEST(Memory, ReportsWhatTheSystemRefuses) {
    if (!kSystemMayRefuse) {
        GTEST_SKIP();
    }
    oaktest::Tag tag;
    void *small = OSL_GET(10, tag);
    std::memcpy(small, "0123456789", 10);
    EXPECT_EQ(OSL_GET(size_t{1} << 54, tag), nullptr);
    EXPECT_EQ(extend(small, size_t{1} << 54, tag), nullptr);
    EXPECT_EQ(std::memcmp(small, "0123456789", 10), 0);
    void *large = OSL_GET(100000, tag);
    fill(large, 100000, 3);
    EXPECT_EQ(extend(large, size_t{1} << 54, tag), nullptr);
    EXPECT_TRUE(is_filled(large, 100000, 3));
    OSL_FREE(large, tag);
    OSL_FREE(small, tag);
}

TEST(Memory, ReleasesNothingForNull) {
    oaktest::Tag tag;
    OSL_FREE(nullptr, tag);
    OSL_FREE(nullptr, OSL_TAG_PROCESS);
    OSL_FREE(nullptr, nullptr);
}

TEST(Memory, UsesAReleasedBlockAgain) {
    if (kSeparateBlocks) {
        GTEST_SKIP() << "every block is an allocation of its own";
    }
    oaktest::Tag tag;
    for (const size_t size : {0, 16, 100, 1000}) {
        void *first = OSL_GET(size, tag);
        OSL_FREE(first, tag);
        void *second = OSL_GET(size, tag);
        EXPECT_EQ(first, second);
        OSL_FREE(second, tag);
    }
}

// ---- Growing ----------------------------------------------------------------

TEST(MemoryGrowth, OfANullBlockAllocates) {
    oaktest::Tag tag;
    void *plain = extend(nullptr, 40, tag);
    ASSERT_NE(plain, nullptr);
    OSL_FREE(plain, tag);
    void *zeroed = extend(nullptr, 40, tag, OSL_MEM_ZERO, 40);
    ASSERT_NE(zeroed, nullptr);
    EXPECT_TRUE(is_zero(zeroed, 40));
    OSL_FREE(zeroed, tag);
    void *text = extend(nullptr, 0, tag, OSL_MEM_STRING, 0, "oak");
    EXPECT_STREQ(static_cast<char *>(text), "oak");
    OSL_FREE(text, tag);
}

TEST(MemoryGrowth, KeepsContentsAcrossEverySize) {
    oaktest::Tag tag;
    for (const OSL_MEMTAG where : {tag.get(), OSL_TAG_PROCESS}) {
        size_t size = 1;
        void *block = OSL_GET(size, where);
        fill(block, size, 9);
        while (size < 300000) {
            const size_t larger = size * 3 / 2 + 1;
            block = extend(block, larger, where);
            ASSERT_NE(block, nullptr);
            ASSERT_TRUE(is_aligned(block));
            ASSERT_TRUE(is_filled(block, size, 9)) << size;
            fill(block, larger, 9);
            size = larger;
        }
        OSL_FREE(block, where);
    }
}

TEST(MemoryGrowth, ZeroesTheAddedBytes) {
    oaktest::Tag tag;
    auto *path = static_cast<uint8_t *>(OSL_GET(40, tag));
    std::memset(path, 0xff, 40);
    for (size_t size = 80; size <= 20000; size += 40) {
        path = static_cast<uint8_t *>(extend(path, size, tag, OSL_MEM_ZERO, 40));
        ASSERT_NE(path, nullptr);
        ASSERT_EQ(path[size - 41], 0xff);
        ASSERT_TRUE(is_zero(path + size - 40, 40));
        std::memset(path, 0xff, size);
    }
    path = static_cast<uint8_t *>(extend(path, 64, tag, OSL_MEM_ZERO, 1000));
    EXPECT_TRUE(is_zero(path, 64)) << "no more is zeroed than there is";
    OSL_FREE(path, tag);
}

TEST(MemoryGrowth, ToASmallerSizeKeepsTheFront) {
    oaktest::Tag tag;
    for (const size_t size : {100, 50000}) {
        void *block = OSL_GET(size, tag);
        fill(block, size, 1);
        block = extend(block, 10, tag);
        ASSERT_NE(block, nullptr);
        EXPECT_TRUE(is_filled(block, 10, 1));
        OSL_FREE(block, tag);
    }
}

TEST(MemoryGrowth, ReplacesABlockByAText) {
    oaktest::Tag tag;
    void *text = OSL_GET_STRING("a short text", tag);
    const std::string longer(3000, 'y');
    text = extend(text, 0, tag, OSL_MEM_STRING, 0, longer.c_str());
    EXPECT_EQ(longer, static_cast<char *>(text));
    text = extend(text, 99, tag, OSL_MEM_STRING, 0, "oak");
    EXPECT_STREQ(static_cast<char *>(text), "oak");
    OSL_FREE(text, tag);
}

TEST(MemoryGrowth, ReplacesABlockByATextWithinIt) {
    oaktest::Tag tag;
    void *text = OSL_GET_STRING("error: no such table", tag);
    text = extend(text, 0, tag, OSL_MEM_STRING, 0, static_cast<char *>(text) + 7);
    EXPECT_STREQ(static_cast<char *>(text), "no such table");
    OSL_FREE(text, tag);
}

TEST(MemoryGrowth, LeavesTheOldBlockWhenItFails) {
    oaktest::Tag tag;
    for (const size_t size : {30, 60000}) {
        void *block = OSL_GET(size, tag);
        fill(block, size, 5);
        for (const size_t impossible : kImpossibleSizes) {
            void *out = nullptr;
            EXPECT_EQ(extend(block, impossible, tag), nullptr) << impossible;
            EXPECT_EQ(osl_extendMem_rc(block, impossible, tag, OSL_MEM_ZERO, impossible, nullptr,
                                       &out, "", 0),
                      eNOMEMORY);
            EXPECT_EQ(out, nullptr);
        }
        EXPECT_TRUE(is_filled(block, size, 5));
        OSL_FREE(block, tag);
    }
}

TEST(MemoryGrowth, RefusesMissingArguments) {
    oaktest::Tag tag;
    void *block = OSL_GET(8, tag);
    void *out = nullptr;
    EXPECT_EQ(osl_extendMem_rc(block, 9, nullptr, OSL_MEM_PLAIN, 1, nullptr, &out, "", 0),
              eINVNULLARG);
    EXPECT_EQ(osl_extendMem_rc(block, 9, tag, OSL_MEM_PLAIN, 1, nullptr, nullptr, "", 0),
              eINVNULLARG);
    EXPECT_EQ(osl_extendMem_rc(block, 0, tag, OSL_MEM_STRING, 0, nullptr, &out, "", 0),
              eINVNULLARG);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(extend(block, 9, nullptr), nullptr);
    OSL_FREE(block, tag);
}

/// Bytes copied while blocks grow in turn by `step` bytes, counted as the size of
/// a block whenever it comes back at another address.
size_t bytes_copied(OSL_MEMTAG tag, size_t block_count, size_t step, size_t final_size) {
    std::vector<void *> blocks(block_count);
    size_t copied = 0;
    for (size_t size = step; size <= final_size; size += step) {
        for (void *&block : blocks) {
            void *moved = extend(block, size, tag, OSL_MEM_PLAIN, step);
            EXPECT_NE(moved, nullptr);
            copied += moved != block ? size - step : 0;
            block = moved;
        }
    }
    for (void *block : blocks) {
        OSL_FREE(block, tag);
    }
    return copied;
}

TEST(MemoryGrowth, InStepsOfSixteenBytesCopiesALinearAmount) {
    if (kSeparateBlocks) {
        GTEST_SKIP() << "every growth moves the block";
    }
    oaktest::Tag tag;
    for (const OSL_MEMTAG where : {tag.get(), OSL_TAG_PROCESS}) {
        for (const size_t step : {1, 16, 40, 256}) {
            for (const size_t final_size : {size_t{4096}, size_t{65536}, size_t{262144}}) {
                EXPECT_LE(bytes_copied(where, 3, step, final_size), 3 * 3 * final_size)
                    << "step " << step << ", final size " << final_size;
            }
        }
    }
}

// ---- Jumps ------------------------------------------------------------------

namespace {

/// A tag with a jump buffer; `landed` is what the jump brought.
struct JumpingTag {
    jmp_buf landing;
    OSL_MEMTAG tag;
    JumpingTag() : tag(osl_createTagEx(&landing, BLOCK_ALLOCATOR, 0, 0, 0, __FILE__, __LINE__)) {}
    ~JumpingTag() { OSL_FREE_TAG(tag); }
    JumpingTag(const JumpingTag &) = delete;
    JumpingTag &operator=(const JumpingTag &) = delete;
};

constexpr size_t kImpossible = std::numeric_limits<size_t>::max();

} // namespace

TEST(MemoryJump, IsTakenWhenGetMemFails) {
    JumpingTag jumping;
    const int landed = setjmp(jumping.landing);
    if (landed == 0) {
        OSL_GET(kImpossible, jumping.tag);
        FAIL() << "the call came back";
    }
    EXPECT_EQ(landed, eNOMEMORY);
}

TEST(MemoryJump, IsTakenWhenGetMemWithFlagsFails) {
    JumpingTag jumping;
    const int landed = setjmp(jumping.landing);
    if (landed == 0) {
        OSL_GET_ZERO(kImpossible, jumping.tag);
        FAIL() << "the call came back";
    }
    EXPECT_EQ(landed, eNOMEMORY);
}

TEST(MemoryJump, IsTakenWhenExtendMemFailsAndTheOldBlockStands) {
    JumpingTag jumping;
    void *volatile block = OSL_GET_STRING("oak", jumping.tag);
    const int landed = setjmp(jumping.landing);
    if (landed == 0) {
        extend(block, kImpossible, jumping.tag);
        FAIL() << "the call came back";
    }
    EXPECT_EQ(landed, eNOMEMORY);
    EXPECT_STREQ(static_cast<char *>(block), "oak");
}

TEST(MemoryJump, IsNotTakenByAnythingElse) {
    JumpingTag jumping;
    OSL_POOL pool = nullptr;
    ASSERT_EQ(
        osl_poolCreateEx(jumping.tag, OSL_POOL_FIXED_SIZE, 0, nullptr, nullptr, nullptr, &pool),
        sOKAY);
    void *block = nullptr;
    if (setjmp(jumping.landing) != 0) {
        FAIL() << "a jump";
    }
    EXPECT_EQ(osl_getMem_rc(kImpossible, jumping.tag, OSL_MEM_PLAIN, nullptr, &block, "", 0),
              eNOMEMORY);
    EXPECT_EQ(osl_extendMem_rc(nullptr, kImpossible, jumping.tag, OSL_MEM_PLAIN, 0, nullptr, &block,
                               "", 0),
              eNOMEMORY);
    EXPECT_EQ(osl_poolGetMem(pool, kImpossible, OSL_MEM_PLAIN, 0, "", 0), nullptr);
    EXPECT_EQ(OSL_GET_STRING(nullptr, jumping.tag), nullptr) << "no lack of memory, no jump";
    void *good = OSL_GET(100, jumping.tag);
    EXPECT_NE(good, nullptr);
}

#ifdef OSL_FAULT_INJECTION
TEST(MemoryJump, IsNotTakenByTextBuilding) {
    JumpingTag jumping;
    if (setjmp(jumping.landing) != 0) {
        osl_faultDisarm(OSL_FAULT_MEMORY);
        FAIL() << "a jump";
    }
    osl_faultArm(OSL_FAULT_MEMORY, 1, OAK_TRUE);
    char *made = osl_makeStrVA("", 0, jumping.tag, "%d", 1);
    osl_faultDisarm(OSL_FAULT_MEMORY);
    EXPECT_EQ(made, nullptr);
}
#endif

// ---- Tags -------------------------------------------------------------------

TEST(Tag, IsMadeForEveryAllocatorKind) {
    for (const OSL_ALLOCATOR kind :
         {BLOCK_ALLOCATOR, LIST_ALLOCATOR, STACK_ALLOCATOR, LEGACY_ALLOCATOR}) {
        OSL_MEMTAG tag = nullptr;
        ASSERT_EQ(osl_createTagEx_rc(nullptr, kind, 0, 0, 0, &tag, __FILE__, __LINE__), sOKAY);
        ASSERT_NE(tag, nullptr);
        EXPECT_NE(OSL_GET(100, tag), nullptr);
        OSL_FREE_TAG(tag);
    }
    EXPECT_EQ(osl_createTagEx_rc(nullptr, BLOCK_ALLOCATOR, 0, 0, 0, nullptr, "", 0), eINVNULLARG);
}

TEST(Tag, FreesEveryBlockWithItself) {
    const oaktest::Live before = oaktest::Live::now();
    OSL_MEMTAG tag = OSL_CREATE_TAG();
    for (size_t i = 0; i < 1000; ++i) {
        void *block = OSL_GET(i * 20, tag);
        ASSERT_NE(block, nullptr);
        std::memset(block, 1, i * 20);
    }
    void *released = OSL_GET(50, tag);
    OSL_FREE(released, tag);
#ifdef OSL_FAULT_INJECTION
    EXPECT_EQ(osl_faultLiveUnderTag(tag), 1000u);
    EXPECT_EQ(osl_faultLive(OSL_LIVE_TAGS), before.counts[OSL_LIVE_TAGS] + 1);
    EXPECT_EQ(osl_faultLive(OSL_LIVE_BLOCKS), before.counts[OSL_LIVE_BLOCKS] + 1000);
    EXPECT_EQ(osl_faultLiveUnderTag(nullptr), 0u);
#endif
    OSL_FREE_TAG(tag);
    EXPECT_EQ(oaktest::Live::now(), before);
}

TEST(Tag, OfTheProcessStaysWhenItIsFreed) {
    char *text = static_cast<char *>(OSL_GET_STRING("oak", OSL_TAG_PROCESS));
    OSL_FREE_TAG(OSL_TAG_PROCESS);
    OSL_FREE_TAG(OSL_TAG_LZ);
    OSL_FREE_TAG(nullptr);
    EXPECT_STREQ(text, "oak");
    OSL_FREE(text, OSL_TAG_PROCESS);
}

TEST(Tag, HoldsWhatARandomProgramDoesWithIt) {
    struct Block {
        void *at;
        size_t size;
        uint8_t first;
    };
    OSL_MEMTAG tag = OSL_CREATE_TAG();
    for (const OSL_MEMTAG where : {tag, OSL_TAG_PROCESS}) {
        oaktest::Random random(1);
        std::vector<Block> blocks;
        for (uint32_t step = 0; step < 20000; ++step) {
            const uint64_t what = blocks.empty() ? 0 : random.below(5);
            const size_t size = random.below(30) == 0 ? random.below(20000) : random.below(400);
            const auto first = static_cast<uint8_t>(step);
            if (what < 2) {
                blocks.push_back({OSL_GET(size, where), size, first});
                fill(blocks.back().at, size, first);
                continue;
            }
            const size_t which = random.below(blocks.size());
            Block &block = blocks[which];
            ASSERT_TRUE(is_filled(block.at, block.size, block.first)) << "step " << step;
            if (what < 4) {
                OSL_FREE(block.at, where);
                block = blocks.back();
                blocks.pop_back();
            } else {
                block.at = extend(block.at, size, where);
                ASSERT_TRUE(is_filled(block.at, std::min(size, block.size), block.first));
                block.size = size;
                fill(block.at, size, block.first);
            }
        }
        for (const Block &block : blocks) {
            ASSERT_TRUE(is_filled(block.at, block.size, block.first));
            OSL_FREE(block.at, where);
        }
    }
    OSL_FREE_TAG(tag);
}

TEST(Tag, OfTheProcessServesManyThreads) {
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (uint8_t number = 0; number < 4; ++number) {
        threads.emplace_back([number, &wrong] {
            const OSL_MEMTAG tag = number % 2 == 0 ? OSL_TAG_PROCESS : OSL_TAG_LZ;
            for (size_t i = 1; i < 2000; ++i) {
                void *block = OSL_GET(i % 500, tag);
                fill(block, i % 500, number);
                block = extend(block, i % 500 + 300, tag);
                wrong += is_filled(block, i % 500, number) ? 0 : 1;
                OSL_FREE(block, tag);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

TEST(Tag, BelongsToItsThreadWhileOthersUseTheirs) {
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([] {
            for (int round = 0; round < 20; ++round) {
                OSL_MEMTAG tag = OSL_CREATE_TAG();
                for (size_t i = 0; i < 200; ++i) {
                    void *block = OSL_GET_ZERO(i * 7, tag);
                    if (i % 3 == 0) {
                        OSL_FREE(block, tag);
                    }
                }
                OSL_FREE_TAG(tag);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

// ---- Failure ----------------------------------------------------------------

TEST(MemoryFailure, OfATagIsReported) {
    const uint64_t failures = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [] {
        OSL_MEMTAG tag = nullptr;
        const OAK_RETCODE status =
            osl_createTagEx_rc(nullptr, BLOCK_ALLOCATOR, 0, 0, 0, &tag, __FILE__, __LINE__);
        EXPECT_EQ(tag != nullptr, status == sOKAY);
        OSL_FREE_TAG(tag);
        return status;
    });
    EXPECT_EQ(failures > 0, oaktest::faults_are_injected());
}

TEST(MemoryFailure, OfEveryRequestIsReported) {
    oaktest::Tag tag;
    const uint64_t failures = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&tag] {
        void *block = OSL_GET(10, tag);
        void *text = OSL_GET_STRING("oak", tag);
        void *larger = nullptr;
        OAK_RETCODE status = block != nullptr && text != nullptr ? sOKAY : eNOMEMORY;
        if (status == sOKAY) {
            status = osl_extendMem_rc(block, 1000, tag, OSL_MEM_PLAIN, 990, nullptr, &larger,
                                      __FILE__, __LINE__);
            block = larger != nullptr ? larger : block;
        }
        if (status == sOKAY) {
            status = osl_extendMem_rc(text, 0, tag, OSL_MEM_STRING, 0, "birch", &larger, __FILE__,
                                      __LINE__);
            text = status == sOKAY ? larger : text;
            EXPECT_STREQ(static_cast<char *>(text), status == sOKAY ? "birch" : "oak");
        }
        OSL_FREE(block, tag);
        OSL_FREE(text, tag);
        return status;
    });
    EXPECT_EQ(failures, oaktest::faults_are_injected() ? 8u : 0u);
}

// ---- Alignment --------------------------------------------------------------

TEST(Alignment, RoundsUpToTheBoundaryOfTheKind) {
    struct Row {
        ALIGN_TYPE kind;
        size_t boundary;
    };
    const Row rows[] = {{ALN_CHAR, 1},  {ALN_INT16, 2}, {ALN_WCHAR, 4}, {ALN_INT32, 4},
                        {ALN_FLOAT, 4}, {ALN_INT64, 8}, {ALN_DOUBLE, 8}};
    for (const Row &row : rows) {
        for (size_t offset = 0; offset < 40; ++offset) {
            size_t expected = offset;
            while (expected % row.boundary != 0) {
                ++expected;
            }
            EXPECT_EQ(osl_align(offset, row.kind), expected) << row.kind << " " << offset;
        }
    }
}

TEST(Alignment, OfAnUnknownKindIsTheWidest) {
    EXPECT_EQ(osl_align(9, static_cast<ALIGN_TYPE>(7)), 16u);
    EXPECT_EQ(osl_align(9, static_cast<ALIGN_TYPE>(-1)), 16u);
}

TEST(Alignment, OfABufferIsEightBytes) {
    const size_t rows[][2] = {{0, 0}, {1, 8}, {7, 8}, {8, 8}, {9, 16}, {4095, 4096}};
    for (const auto &row : rows) {
        EXPECT_EQ(osl_alignBufferSize(row[0]), row[1]);
    }
}

// ---- Leak reports -----------------------------------------------------------

#ifndef NDEBUG
namespace {
OAK_RETCODE collect(OAK_OUTPUT_CTX text, uint32_t byte) {
    static_cast<std::string *>(text)->push_back(static_cast<char>(byte));
    return sOKAY;
}
OAK_RETCODE refuse(OAK_OUTPUT_CTX, uint32_t) {
    return eFAIL;
}
} // namespace

TEST(LeakReport, NamesThePlaceOfEveryLiveBlock) {
    oaktest::Tag tag;
    void *first = osl_getMem(10, tag, OSL_MEM_PLAIN, nullptr, "rows.cpp", 12);
    void *second = osl_getMem(3, tag, OSL_MEM_STRING, "oak", "names.cpp", 7);
    void *third = osl_getMem(99999, tag, OSL_MEM_PLAIN, nullptr, "nodes.cpp", 3);
    first = osl_extendMem(first, 2000, tag, OSL_MEM_PLAIN, 0, nullptr, "rows.cpp", 15);
    third = osl_extendMem(third, 100000, tag, OSL_MEM_PLAIN, 0, nullptr, "nodes.cpp", 4);
    OSL_FREE(second, tag);
    std::string report;
    EXPECT_EQ(osl_leakReport(tag, collect, &report), 2u);
    EXPECT_EQ(report, "nodes.cpp:4: 100000 bytes\nrows.cpp:15: 2000 bytes\n");
    OSL_FREE(first, tag);
    OSL_FREE(third, tag);
    report.clear();
    EXPECT_EQ(osl_leakReport(tag, collect, &report), 0u);
    EXPECT_EQ(report, "");
    EXPECT_EQ(osl_leakReport(nullptr, collect, &report), 0u);
}

TEST(LeakReport, CoversTheProcessWideTags) {
    const uint64_t before = osl_leakReport(OSL_TAG_LZ, refuse, nullptr);
    void *block = osl_getMem(77, OSL_TAG_LZ, OSL_MEM_PLAIN, nullptr, "lz.cpp", 1);
    std::string report;
    EXPECT_EQ(osl_leakReport(OSL_TAG_LZ, collect, &report), before + 1);
    EXPECT_EQ(report.rfind("lz.cpp:1: 77 bytes\n", 0), 0u);
    OSL_FREE(block, OSL_TAG_LZ);
}

TEST(LeakReport, CountsOnWhenItsCallbackFails) {
    oaktest::Tag tag;
    void *first = OSL_GET(1, tag);
    void *second = OSL_GET(2, tag);
    EXPECT_EQ(osl_leakReport(tag, refuse, nullptr), 2u);
    OSL_FREE(first, tag);
    OSL_FREE(second, tag);
}
#endif
