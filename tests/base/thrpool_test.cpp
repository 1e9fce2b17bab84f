// The thread pool: every job runs once, results, threads that do not start.
#include "thrpool.h"

#include <atomic>
#include <memory>
#include <set>
#include <thread>
#include <vector>

#include "test_support.h"

namespace {

struct Job {
    B_THRPOOL_JOB_S head{};
    std::atomic<uint32_t> runs = 0;
    std::atomic<uint64_t> thread = 0;
    OAK_RETCODE result = sOKAY;
};

OAK_RETCODE work(B_THRPOOL_JOB_S *head) {
    auto *job = reinterpret_cast<Job *>(head);
    ++job->runs;
    job->thread = osl_threadId();
    return job->result;
}

OAK_RETCODE result_of(const Job &job) {
    OAK_RETCODE result = sTIMEOUT;
    EXPECT_EQ(b_thrpoolJobResult(&job.head, &result), sOKAY);
    return result;
}

TEST(ThreadPool, RunsEveryJobOnceAndKeepsItsResult) {
    constexpr uint32_t kThreads = 4;
    constexpr uint32_t kJobs = 2000;
    B_THRPOOL pool;
    B_THRPOOL_THREAD_S threads[kThreads];
    std::vector<Job> jobs(kJobs);
    ASSERT_EQ(b_thrpoolInit(&pool, kThreads, threads), sOKAY);
    EXPECT_EQ(pool.numThreads, kThreads);
    EXPECT_EQ(pool.maxThreads, kThreads);
    for (uint32_t i = 0; i < kJobs; ++i) {
        jobs[i].result = i % 3 == 0 ? eFAIL : i % 3 == 1 ? sTIMEOUT : sOKAY;
        ASSERT_EQ(b_thrpoolAddJob(&pool, work, &jobs[i].head), sOKAY);
    }
    b_thrpoolTerm(&pool);
    for (const Job &job : jobs) {
        ASSERT_EQ(job.runs, 1u);
        ASSERT_EQ(result_of(job), job.result);
        ASSERT_NE(job.thread, osl_threadId());
    }
}

// A job's record may go as soon as its result is there.
TEST(ThreadPool, StoresTheResultAsItsLastTouchOfTheRecord) {
    B_THRPOOL pool;
    B_THRPOOL_THREAD_S threads[2];
    ASSERT_EQ(b_thrpoolInit(&pool, 2, threads), sOKAY);
    for (int i = 0; i < 200; ++i) {
        auto job = std::make_unique<Job>();
        job->head.rc = eFAIL; // what the job never returns
        ASSERT_EQ(b_thrpoolAddJob(&pool, work, &job->head), sOKAY);
        while (result_of(*job) == eFAIL) {
            std::this_thread::yield();
        }
        ASSERT_EQ(result_of(*job), sOKAY);
        ASSERT_EQ(job->runs, 1u);
    }
    b_thrpoolTerm(&pool);
}

TEST(ThreadPool, EndsWithoutAJob) {
    B_THRPOOL pool;
    B_THRPOOL_THREAD_S threads[3];
    ASSERT_EQ(b_thrpoolInit(&pool, 3, threads), sOKAY);
    b_thrpoolTerm(&pool);
    ASSERT_EQ(b_thrpoolInit(&pool, 3, threads), sOKAY) << "and begins again";
    b_thrpoolTerm(&pool);
}

/// A job that waits until its partner runs too.
struct Meeting {
    B_THRPOOL_JOB_S head{};
    std::atomic<int> *present = nullptr;
};
OAK_RETCODE meet(B_THRPOOL_JOB_S *head) {
    auto *meeting = reinterpret_cast<Meeting *>(head);
    ++*meeting->present;
    while (*meeting->present < 2) {
        osl_sleep(1);
    }
    return sOKAY;
}

TEST(ThreadPool, RunsJobsAtTheSameTime) {
    B_THRPOOL pool;
    B_THRPOOL_THREAD_S threads[2];
    std::atomic<int> present = 0;
    Meeting meetings[2];
    ASSERT_EQ(b_thrpoolInit(&pool, 2, threads), sOKAY);
    for (Meeting &meeting : meetings) {
        meeting.present = &present;
        ASSERT_EQ(b_thrpoolAddJob(&pool, meet, &meeting.head), sOKAY);
    }
    b_thrpoolTerm(&pool);
    EXPECT_EQ(present, 2);
}

/// A job that adds another one.
struct Chain {
    B_THRPOOL_JOB_S head{};
    B_THRPOOL *pool = nullptr;
    Job *next = nullptr;
};
OAK_RETCODE add_next(B_THRPOOL_JOB_S *head) {
    auto *chain = reinterpret_cast<Chain *>(head);
    return b_thrpoolAddJob(chain->pool, work, &chain->next->head);
}

TEST(ThreadPool, RunsJobsThatJobsAdd) {
    B_THRPOOL pool;
    B_THRPOOL_THREAD_S thread;
    Job last;
    Chain first;
    first.pool = &pool;
    first.next = &last;
    ASSERT_EQ(b_thrpoolInit(&pool, 1, &thread), sOKAY);
    ASSERT_EQ(b_thrpoolAddJob(&pool, add_next, &first.head), sOKAY);
    b_thrpoolTerm(&pool);
    EXPECT_EQ(last.runs, 1u);
}

TEST(ThreadPool, RunsNothingWithoutThreads) {
    B_THRPOOL pool;
    Job job;
    ASSERT_EQ(b_thrpoolInit(&pool, 0, nullptr), sOKAY);
    EXPECT_EQ(pool.numThreads, 0u);
    ASSERT_EQ(b_thrpoolAddJob(&pool, work, &job.head), sOKAY);
    b_thrpoolTerm(&pool);
    EXPECT_EQ(job.runs, 0u);
}

// A thread that does not start is skipped, without an error.
TEST(ThreadPool, GoesOnWithTheThreadsThatStart) {
    std::set<uint32_t> started;
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::thread, {sOKAY}, [&] {
        B_THRPOOL pool;
        B_THRPOOL_THREAD_S threads[3];
        Job jobs[10];
        const OAK_RETCODE rc = b_thrpoolInit(&pool, 3, threads);
        if (rc != sOKAY) {
            return rc;
        }
        EXPECT_EQ(pool.maxThreads, 3u);
        started.insert(pool.numThreads);
        for (Job &job : jobs) {
            EXPECT_EQ(b_thrpoolAddJob(&pool, work, &job.head), sOKAY);
        }
        const uint32_t expected = pool.numThreads > 0 ? 1 : 0;
        b_thrpoolTerm(&pool);
        for (const Job &job : jobs) {
            EXPECT_EQ(job.runs, expected);
        }
        return rc;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
    EXPECT_EQ(started.size(), oaktest::faults_are_injected() ? 4u : 1u) << "3, 2, 1 and 0";
}

TEST(ThreadPool, RefusesNullArgumentsAndAQueueWithoutLocks) {
    B_THRPOOL pool;
    B_THRPOOL_THREAD_S thread;
    Job job;
    OAK_RETCODE result = sOKAY;
    EXPECT_EQ(b_thrpoolInit(nullptr, 1, &thread), eINVNULLARG);
    EXPECT_EQ(b_thrpoolInit(&pool, 1, nullptr), eINVNULLARG);
    EXPECT_EQ(b_thrpoolAddJob(nullptr, work, &job.head), eINVNULLARG);
    EXPECT_EQ(b_thrpoolJobResult(nullptr, &result), eINVNULLARG);
    EXPECT_EQ(b_thrpoolJobResult(&job.head, nullptr), eINVNULLARG);
    b_thrpoolTerm(nullptr);
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::sync, {eOSL_FAILURE}, [&] {
        const OAK_RETCODE rc = b_thrpoolInit(&pool, 1, &thread);
        if (rc == sOKAY) {
            EXPECT_EQ(b_thrpoolAddJob(&pool, nullptr, &job.head), eINVNULLARG);
            EXPECT_EQ(b_thrpoolAddJob(&pool, work, nullptr), eINVNULLARG);
            b_thrpoolTerm(&pool);
        }
        return rc;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

} // namespace
