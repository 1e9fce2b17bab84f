// Pools: construction once a block, reuse, sizes, destruction with the tag.
#include <cstring>
#include <limits>
#include <set>
#include <thread>

#include "test_support.h"

namespace {

/// What a pool's functions saw.
struct Log {
    std::vector<void *> constructed;
    std::vector<void *> destroyed;
};

void construct(void *log, void *block) {
    static_cast<Log *>(log)->constructed.push_back(block);
    std::memset(block, 0xc0, 8);
}

void destroy(void *log, void *block) {
    static_cast<Log *>(log)->destroyed.push_back(block);
}

OSL_POOL make_pool(OSL_MEMTAG tag, OSL_POOL_FCN constructor, OSL_POOL_FCN destructor, Log *log) {
    OSL_POOL pool = nullptr;
    EXPECT_EQ(osl_poolCreateEx(tag, OSL_POOL_FIXED_SIZE, 0, constructor, destructor, log, &pool),
              sOKAY);
    return pool;
}

void *get(OSL_POOL pool, size_t size, uint32_t flags = OSL_MEM_PLAIN) {
    return osl_poolGetMem(pool, size, flags, 0, __FILE__, __LINE__);
}

} // namespace

TEST(Pool, GivesAlignedWritableBlocks) {
    oaktest::Tag tag;
    tag.may_keep_blocks();
    for (const size_t size : {0, 1, 100, 560, 5000, 100000}) {
        OSL_POOL pool = make_pool(tag, nullptr, nullptr, nullptr);
        std::set<void *> blocks;
        for (int i = 0; i < 50; ++i) {
            void *block = get(pool, size);
            ASSERT_NE(block, nullptr);
            EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 16, 0u);
            std::memset(block, 0xff, size);
            EXPECT_TRUE(blocks.insert(block).second);
        }
    }
}

TEST(Pool, ConstructsABlockOnceAndRecyclesItAsItWas) {
    Log log;
    oaktest::Tag tag;
    tag.may_keep_blocks();
    OSL_POOL pool = make_pool(tag, construct, nullptr, &log);
    auto *block = static_cast<uint8_t *>(get(pool, 64));
    EXPECT_EQ(log.constructed, std::vector<void *>{block});
    EXPECT_EQ(block[7], 0xc0);
    block[7] = 0x11;
    block[0] = 0x22;
    osl_poolPut(pool, block);
    EXPECT_EQ(get(pool, 64), block);
    EXPECT_EQ(block[7], 0x11);
    EXPECT_EQ(block[0], 0x22);
    EXPECT_EQ(log.constructed.size(), 1u);
    EXPECT_NE(get(pool, 64), block);
    EXPECT_EQ(log.constructed.size(), 2u);
}

TEST(Pool, RecyclesTheBlockThatWasPutBackLast) {
    oaktest::Tag tag;
    tag.may_keep_blocks();
    OSL_POOL pool = make_pool(tag, nullptr, nullptr, nullptr);
    void *first = get(pool, 10);
    void *second = get(pool, 10);
    osl_poolPut(pool, first);
    osl_poolPut(pool, second);
    EXPECT_EQ(get(pool, 10), second);
    EXPECT_EQ(get(pool, 10), first);
}

TEST(Pool, RecyclesBlocksOfTheSameSizeAlone) {
    oaktest::Tag tag;
    tag.may_keep_blocks();
    OSL_POOL pool = make_pool(tag, nullptr, nullptr, nullptr);
    std::vector<void *> blocks;
    for (size_t size = 1; size <= 20; ++size) {
        blocks.push_back(get(pool, size));
        std::memset(blocks.back(), static_cast<int>(size), size);
    }
    for (void *block : blocks) {
        osl_poolPut(pool, block);
    }
    for (const size_t size : {7, 20, 1, 13, 2}) {
        EXPECT_EQ(get(pool, size), blocks[size - 1]);
        EXPECT_EQ(*static_cast<uint8_t *>(blocks[size - 1]), size);
    }
    EXPECT_NE(get(pool, 7), blocks[6]);
}

TEST(Pool, ZeroesOnRequestButNeverWhatAConstructorMade) {
    Log log;
    oaktest::Tag tag;
    tag.may_keep_blocks();
    const std::vector<uint8_t> zeros(64);
    OSL_POOL plain = make_pool(tag, nullptr, nullptr, nullptr);
    void *block = get(plain, 64, OSL_MEM_ZERO);
    EXPECT_EQ(std::memcmp(block, zeros.data(), 64), 0);
    std::memset(block, 0xff, 64);
    osl_poolPut(plain, block);
    EXPECT_EQ(get(plain, 64, OSL_MEM_ZERO), block);
    EXPECT_EQ(std::memcmp(block, zeros.data(), 64), 0);

    OSL_POOL constructing = make_pool(tag, construct, nullptr, &log);
    auto *made = static_cast<uint8_t *>(get(constructing, 64, OSL_MEM_ZERO));
    EXPECT_EQ(made[7], 0xc0) << "the constructor runs over the zeroed block";
    EXPECT_EQ(std::memcmp(made + 8, zeros.data(), 56), 0);
    made[8] = 9;
    osl_poolPut(constructing, made);
    EXPECT_EQ(get(constructing, 64, OSL_MEM_ZERO), made);
    EXPECT_EQ(made[8], 9);
}

TEST(Pool, DestroysEveryBlockThatItMadeWithItsTag) {
    Log log;
    OSL_MEMTAG tag = OSL_CREATE_TAG();
    OSL_POOL pool = make_pool(tag, construct, destroy, &log);
    OSL_POOL other = make_pool(tag, nullptr, destroy, &log);
    void *first = get(pool, 32);
    void *second = get(pool, 32);
    void *third = get(other, 48);
    osl_poolPut(pool, first);
    EXPECT_EQ(get(pool, 32), first);
    osl_poolPut(pool, second);
    EXPECT_TRUE(log.destroyed.empty());
    OSL_FREE_TAG(tag);
    const std::vector<void *> newest_first{third, second, first};
    EXPECT_EQ(log.destroyed, newest_first);
}

TEST(Pool, OfEitherKindIsMade) {
    oaktest::Tag tag;
    tag.may_keep_blocks();
    for (const OSL_POOL_KIND kind : {OSL_POOL_FIXED_SIZE, OSL_POOL_VAR_SIZE}) {
        OSL_POOL pool = nullptr;
        ASSERT_EQ(osl_poolCreateEx(tag, kind, 0, nullptr, nullptr, nullptr, &pool), sOKAY);
        EXPECT_NE(get(pool, 5), nullptr);
    }
}

TEST(Pool, RefusesMissingArguments) {
    oaktest::Tag tag;
    OSL_POOL pool = nullptr;
    EXPECT_EQ(osl_poolCreateEx(nullptr, OSL_POOL_FIXED_SIZE, 0, nullptr, nullptr, nullptr, &pool),
              eINVNULLARG);
    EXPECT_EQ(osl_poolCreateEx(tag, OSL_POOL_FIXED_SIZE, 0, nullptr, nullptr, nullptr, nullptr),
              eINVNULLARG);
    EXPECT_EQ(pool, nullptr);
    EXPECT_EQ(get(nullptr, 1), nullptr);
    osl_poolPut(nullptr, nullptr);
}

TEST(Pool, RefusesImpossibleSizesAndServesOthersAfterwards) {
    oaktest::Tag tag;
    tag.may_keep_blocks();
    OSL_POOL pool = make_pool(tag, nullptr, nullptr, nullptr);
    for (const size_t back : {0, 1, 8, 16, 31, 32, 33, 64, 4096}) {
        EXPECT_EQ(get(pool, std::numeric_limits<size_t>::max() - back), nullptr);
    }
    EXPECT_EQ(get(pool, static_cast<size_t>(PTRDIFF_MAX)), nullptr);
    void *block = get(pool, 16);
    EXPECT_NE(block, nullptr);
    osl_poolPut(pool, nullptr);
    osl_poolPut(pool, block);
}

#ifdef OSL_FAULT_INJECTION
TEST(Pool, CountsTheBlocksThatAreHandedOut) {
    oaktest::Tag tag;
    tag.may_keep_blocks();
    OSL_POOL pool = make_pool(tag, nullptr, nullptr, nullptr);
    const uint64_t none = osl_faultLiveUnderTag(tag);
    void *first = get(pool, 10);
    void *second = get(pool, 20);
    EXPECT_EQ(osl_faultLiveUnderTag(tag), none + 2);
    osl_poolPut(pool, first);
    EXPECT_EQ(osl_faultLiveUnderTag(tag), none + 1);
    EXPECT_EQ(get(pool, 10), first);
    EXPECT_EQ(osl_faultLiveUnderTag(tag), none + 2);
    osl_poolPut(pool, second);
    osl_poolPut(pool, first);
    EXPECT_EQ(osl_faultLiveUnderTag(tag), none);
}
#endif

TEST(Pool, ReportsExhaustion) {
    const uint64_t failures = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [] {
        Log log;
        OSL_MEMTAG tag = OSL_CREATE_TAG();
        if (tag == nullptr) {
            return eNOMEMORY;
        }
        OSL_POOL pool = nullptr;
        OAK_RETCODE status =
            osl_poolCreateEx(tag, OSL_POOL_FIXED_SIZE, 0, construct, destroy, &log, &pool);
        if (status == sOKAY) {
            void *first = get(pool, 10);
            osl_poolPut(pool, first);
            void *again = get(pool, 10);
            void *second = get(pool, 10);
            status = first != nullptr && again != nullptr && second != nullptr ? sOKAY : eNOMEMORY;
        }
        OSL_FREE_TAG(tag);
        EXPECT_EQ(log.constructed.size(), log.destroyed.size());
        return status;
    });
    EXPECT_EQ(failures, oaktest::faults_are_injected() ? 10u : 0u);
}

TEST(Pool, UnderTheProcessTagServesManyThreads) {
    static OSL_POOL pool = nullptr;
    ASSERT_EQ(osl_poolCreateEx(
                  OSL_TAG_PROCESS, OSL_POOL_FIXED_SIZE, 0, nullptr, [](void *, void *) {}, nullptr,
                  &pool),
              sOKAY);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int number = 1; number <= 4; ++number) {
        threads.emplace_back([number, &wrong] {
            for (size_t i = 0; i < 2000; ++i) {
                const size_t size = 16 + i % 3 * 16;
                auto *block = static_cast<uint8_t *>(get(pool, size));
                std::memset(block, number, size);
                wrong += block[0] == number && block[size - 1] == number ? 0 : 1;
                osl_poolPut(pool, block);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}
