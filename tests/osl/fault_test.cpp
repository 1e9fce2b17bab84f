// The harness that all failure tests rest on: it fails exactly what it is told
// to, and it notices what is left behind.
#include <thread>

#include "test_support.h"

#ifdef OSL_FAULT_INJECTION

namespace {

bool get_works(OSL_MEMTAG tag) {
    void *block = OSL_GET(1, tag);
    OSL_FREE(block, tag);
    return block != nullptr;
}

std::string pattern(OSL_MEMTAG tag) {
    std::string text;
    for (int i = 0; i < 5; ++i) {
        text += get_works(tag) ? '.' : 'x';
    }
    return text;
}

} // namespace

TEST(Fault, FailsTheNthRequestOnce) {
    oaktest::Tag tag;
    const char *expected[] = {".....", "x....", ".x...", "..x..", "...x.", "....x", "....."};
    for (uint64_t nth = 0; nth < 7; ++nth) {
        osl_faultArm(OSL_FAULT_MEMORY, nth, OAK_FALSE);
        EXPECT_EQ(pattern(tag), expected[nth]);
        EXPECT_EQ(osl_faultDisarm(OSL_FAULT_MEMORY), nth >= 1 && nth <= 5 ? 1u : 0u);
    }
}

TEST(Fault, FailsEveryRequestFromTheNthOn) {
    oaktest::Tag tag;
    const char *expected[] = {".....", "xxxxx", ".xxxx", "..xxx", "...xx", "....x", "....."};
    for (uint64_t nth = 0; nth < 7; ++nth) {
        osl_faultArm(OSL_FAULT_MEMORY, nth, OAK_TRUE);
        EXPECT_EQ(pattern(tag), expected[nth]);
        EXPECT_EQ(osl_faultDisarm(OSL_FAULT_MEMORY), nth >= 1 && nth <= 5 ? 6 - nth : 0u);
    }
}

TEST(Fault, LeavesOtherKindsAlone) {
    oaktest::Tag tag;
    for (const OSL_FAULT_KIND kind : {OSL_FAULT_FILE, OSL_FAULT_SYNC, OSL_FAULT_THREAD}) {
        osl_faultArm(kind, 1, OAK_TRUE);
        EXPECT_EQ(pattern(tag), ".....");
        EXPECT_EQ(osl_faultDisarm(kind), 0u);
    }
}

TEST(Fault, EndsWithItsDisarming) {
    oaktest::Tag tag;
    osl_faultArm(OSL_FAULT_MEMORY, 3, OAK_TRUE);
    EXPECT_TRUE(get_works(tag));
    osl_faultDisarm(OSL_FAULT_MEMORY);
    EXPECT_EQ(pattern(tag), ".....");
}

TEST(Fault, FailsOneRequestAmongManyThreads) {
    osl_faultArm(OSL_FAULT_MEMORY, 500, OAK_FALSE);
    std::atomic<int> failed{0};
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&failed] {
            for (int i = 0; i < 500; ++i) {
                failed += get_works(OSL_TAG_PROCESS) ? 0 : 1;
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failed, 1);
    EXPECT_EQ(osl_faultDisarm(OSL_FAULT_MEMORY), 1u);
}

TEST(Fault, CountsWhatIsLive) {
    const auto count = [](OSL_LIVE_KIND kind) { return osl_faultLive(kind); };
    const oaktest::Live before = oaktest::Live::now();
    OSL_MEMTAG tag = OSL_CREATE_TAG();
    void *block = OSL_GET(10, tag);
    OSL_SEM sem = osl_syncCreate_check(OSL_SYNC_EVENT, "", 0);
    OSL_FH fh = osl_fileOpen("/dev/null", OSL_OPEN_READ, 0);
    osl_thread_t thread{};
    EXPECT_EQ(osl_threadBeginEx([](void *) { return sOKAY; }, 0, nullptr, &thread, 0, ""), sOKAY);
    for (size_t kind = 0; kind < OSL_LIVE_KINDS; ++kind) {
        EXPECT_EQ(count(static_cast<OSL_LIVE_KIND>(kind)), before.counts[kind] + 1) << kind;
    }
    block = osl_extendMem(block, 100000, tag, OSL_MEM_PLAIN, 0, nullptr, "", 0);
    EXPECT_EQ(count(OSL_LIVE_BLOCKS), before.counts[OSL_LIVE_BLOCKS] + 1)
        << "growth is no new block";
    EXPECT_EQ(osl_faultLiveUnderTag(tag), 1u);
    OSL_FREE(block, tag);
    EXPECT_EQ(osl_faultLiveUnderTag(tag), 0u);
    osl_threadJoin(&thread);
    osl_fileClose(fh);
    osl_syncDelete(sem);
    OSL_FREE_TAG(tag);
    EXPECT_EQ(oaktest::Live::now(), before);
}

TEST(Fault, TheSweepNoticesALeak) {
    // A canary: the failing path of this operation forgets its first block.
    void *forgotten = nullptr;
    const auto leaky = [&forgotten] {
        void *first = OSL_GET(1, OSL_TAG_PROCESS);
        void *second = first != nullptr ? OSL_GET(1, OSL_TAG_PROCESS) : nullptr;
        if (first != nullptr && second == nullptr) {
            forgotten = first;
            return eNOMEMORY;
        }
        OSL_FREE(first, OSL_TAG_PROCESS);
        OSL_FREE(second, OSL_TAG_PROCESS);
        return first != nullptr ? sOKAY : eNOMEMORY;
    };
    const oaktest::Live before = oaktest::Live::now();
    osl_faultArm(OSL_FAULT_MEMORY, 2, OAK_FALSE);
    EXPECT_EQ(leaky(), eNOMEMORY);
    EXPECT_EQ(osl_faultDisarm(OSL_FAULT_MEMORY), 1u);
    EXPECT_FALSE(oaktest::Live::now() == before);
    OSL_FREE(forgotten, OSL_TAG_PROCESS);
    EXPECT_EQ(oaktest::Live::now(), before);
}

#else
TEST(Fault, IsAbsentFromThisBuild) {
    EXPECT_FALSE(oaktest::faults_are_injected());
}
#endif
