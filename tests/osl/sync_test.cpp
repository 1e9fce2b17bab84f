// Locks and events: exclusion, no lost signals, timeouts, absent locks.
#include <chrono>
#include <thread>

#include "test_support.h"

namespace {

OSL_SEM make(uint32_t kind) {
    OSL_SEM sem = osl_syncCreate_check(kind, __FILE__, __LINE__);
    EXPECT_NE(sem, OSL_SEM_NONE);
    return sem;
}

uint64_t millis_of(const std::function<void()> &what) {
    const auto begin = std::chrono::steady_clock::now();
    what();
    const auto end = std::chrono::steady_clock::now();
    return static_cast<uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(end - begin).count());
}

} // namespace

TEST(Sync, TheAbsentLockIsAllOnes) {
    EXPECT_EQ(reinterpret_cast<uintptr_t>(OSL_SEM_NONE), UINTPTR_MAX);
    EXPECT_EQ(OSL_WAIT_FOREVER, ~uint64_t{0});
}

TEST(Sync, RefusesAnUnknownKind) {
    for (const uint32_t kind : {0u, 3u, 4u, UINT32_MAX}) {
        EXPECT_EQ(osl_syncCreate_check(kind, "", 0), OSL_SEM_NONE);
    }
}

TEST(Sync, AMutexAdmitsOneThreadAtATime) {
    OSL_SEM mutex = make(OSL_SYNC_MUTEX);
    uint64_t count = 0; // no atomic: the mutex alone keeps it right
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&] {
            for (int i = 0; i < 5000; ++i) {
                osl_syncEnterExcl(mutex);
                ++count;
                osl_syncExitExcl(mutex);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(count, 20000u);
    osl_syncDelete(mutex);
}

TEST(Sync, NothingHappensWithAnAbsentLock) {
    osl_syncEnterExcl(OSL_SEM_NONE);
    osl_syncEnterExcl(OSL_SEM_NONE);
    osl_syncExitExcl(OSL_SEM_NONE);
    osl_syncStart(OSL_SEM_NONE);
    osl_syncResume(OSL_SEM_NONE);
    osl_syncDelete(OSL_SEM_NONE);
    osl_syncDelete(nullptr);
}

TEST(Event, ThatCanNeverComeIsADeadlock) {
    EXPECT_EQ(osl_syncWait(OSL_SEM_NONE, OSL_WAIT_FOREVER), eOSL_DEADLOCK);
    EXPECT_EQ(osl_syncWait(nullptr, 0), eOSL_DEADLOCK);
    OSL_SEM mutex = make(OSL_SYNC_MUTEX);
    osl_syncResume(mutex);
    EXPECT_EQ(osl_syncWait(mutex, OSL_WAIT_FOREVER), eOSL_DEADLOCK);
    osl_syncDelete(mutex);
}

TEST(Event, TimesOutWhileItIsLowered) {
    OSL_SEM event = make(OSL_SYNC_EVENT);
    EXPECT_EQ(osl_syncWait(event, 0), sTIMEOUT) << "a new event is lowered";
    osl_syncStart(event);
    EXPECT_GE(millis_of([&] { EXPECT_EQ(osl_syncWait(event, 30), sTIMEOUT); }), 30u);
    osl_syncDelete(event);
}

TEST(Event, RaisedBetweenArmingAndWaitingIsNotLost) {
    OSL_SEM event = make(OSL_SYNC_EVENT);
    osl_syncStart(event);
    osl_syncResume(event);
    EXPECT_EQ(osl_syncWait(event, OSL_WAIT_FOREVER), sOKAY);
    EXPECT_EQ(osl_syncWait(event, 0), sOKAY) << "it stays raised until it is armed anew";
    osl_syncStart(event);
    EXPECT_EQ(osl_syncWait(event, 0), sTIMEOUT);
    osl_syncDelete(event);
}

TEST(Event, WakesEveryWaiter) {
    OSL_SEM event = make(OSL_SYNC_EVENT);
    osl_syncStart(event);
    std::atomic<int> woken{0};
    std::vector<std::thread> threads;
    for (const uint64_t timeout : {OSL_WAIT_FOREVER, OSL_WAIT_FOREVER - 1, uint64_t{60000}}) {
        threads.emplace_back([&, timeout] {
            EXPECT_EQ(osl_syncWait(event, timeout), sOKAY);
            ++woken;
        });
    }
    osl_sleep(5);
    EXPECT_EQ(woken, 0);
    osl_syncResume(event);
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(woken, 3);
    osl_syncDelete(event);
}

// All but a second whole: the deadline's fraction nearly always goes over into the next.
TEST(Event, IsWaitedForAcrossTheTurnOfASecond) {
    OSL_SEM event = make(OSL_SYNC_EVENT);
    std::thread other([&] {
        osl_sleep(5);
        osl_syncResume(event);
    });
    EXPECT_EQ(osl_syncWait(event, 60999), sOKAY);
    other.join();
    osl_syncDelete(event);
}

TEST(Event, PassesATurnBackAndForth) {
    // Two threads arm, look, and wait in turn; a single lost signal would hang.
    OSL_SEM mutex = make(OSL_SYNC_MUTEX);
    OSL_SEM events[2] = {make(OSL_SYNC_EVENT), make(OSL_SYNC_EVENT)};
    int turn = 0;
    const auto play = [&](int me) {
        for (int i = 0; i < 2000; ++i) {
            for (;;) {
                osl_syncEnterExcl(mutex);
                const bool mine = turn == me;
                if (!mine) {
                    osl_syncStart(events[me]);
                }
                osl_syncExitExcl(mutex);
                if (mine) {
                    break;
                }
                ASSERT_EQ(osl_syncWait(events[me], OSL_WAIT_FOREVER), sOKAY);
            }
            osl_syncEnterExcl(mutex);
            turn = 1 - me;
            osl_syncResume(events[1 - me]);
            osl_syncExitExcl(mutex);
        }
    };
    std::thread other([&] { play(1); });
    play(0);
    other.join();
    for (OSL_SEM event : events) {
        osl_syncDelete(event);
    }
    osl_syncDelete(mutex);
}

TEST(Sleep, LastsAtLeastItsMilliseconds) {
    EXPECT_GE(millis_of([] { osl_sleep(20); }), 20u);
    osl_sleep(0);
}

TEST(Sync, ReportsExhaustion) {
    for (const uint32_t kind : {OSL_SYNC_MUTEX, OSL_SYNC_EVENT}) {
        const uint64_t failures =
            oaktest::sweep_faults(oaktest::Resource::sync, {eOSL_FAILURE}, [kind] {
                OSL_SEM sem = osl_syncCreate_check(kind, __FILE__, __LINE__);
                osl_syncDelete(sem);
                return sem != OSL_SEM_NONE ? sOKAY : eOSL_FAILURE;
            });
        EXPECT_EQ(failures, oaktest::faults_are_injected() ? 2u : 0u);
    }
}
