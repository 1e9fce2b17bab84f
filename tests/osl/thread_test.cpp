// Threads: what they run, return and leave behind.
#include <cstring>

#include <pthread.h>
#include <unistd.h>

#include "test_support.h"

namespace {

struct Job {
    OAK_RETCODE result = sOKAY;
    uint64_t thread_id = 0;
    std::string name{};
    size_t stack = 0;
};

OAK_RETCODE work(void *arg) {
    auto *job = static_cast<Job *>(arg);
    job->thread_id = osl_threadId();
    char name[16] = "";
    pthread_getname_np(pthread_self(), name, sizeof name);
    job->name = name;
    pthread_attr_t attributes;
    pthread_getattr_np(pthread_self(), &attributes);
    pthread_attr_getstacksize(&attributes, &job->stack);
    pthread_attr_destroy(&attributes);
    return job->result;
}

} // namespace

TEST(Thread, ReturnsTheStatusOfItsFunction) {
    for (const OAK_RETCODE result : {sOKAY, sNOTFOUND, eFAIL, eNOMEMORY, eOSL_DEADLOCK}) {
        Job job{.result = result};
        osl_thread_t thread{};
        ASSERT_EQ(osl_threadBeginEx(work, 0, &job, &thread, 0, "worker"), sOKAY);
        const uint64_t id = thread.id;
        EXPECT_NE(id, 0u);
        osl_threadJoin(&thread);
        EXPECT_EQ(thread.rc, result);
        EXPECT_EQ(thread.id, 0u);
        EXPECT_EQ(job.thread_id, id);
        EXPECT_NE(job.thread_id, osl_threadId());
    }
}

TEST(Thread, BearsItsNameCutToWhatTheSystemShows) {
    const char *rows[][2] = {{"thread pool", "thread pool"},
                             {"exactly fifteen", "exactly fifteen"},
                             {"a name that is too long", "a name that is "}};
    for (const auto &[name, shown] : rows) {
        Job job;
        osl_thread_t thread{};
        ASSERT_EQ(osl_threadBeginEx(work, 0, &job, &thread, 0, name), sOKAY);
        osl_threadJoin(&thread);
        EXPECT_EQ(job.name, shown);
    }
}

TEST(Thread, NeedsNoName) {
    Job job;
    osl_thread_t thread{};
    ASSERT_EQ(osl_threadBeginEx(work, 0, &job, &thread, 0, nullptr), sOKAY);
    osl_threadJoin(&thread);
    EXPECT_NE(job.thread_id, 0u);
}

TEST(Thread, HasAtLeastTheStackThatWasAskedFor) {
    for (const size_t size : {size_t{1}, size_t{200001}, size_t{4} << 20}) {
        Job job;
        osl_thread_t thread{};
        ASSERT_EQ(osl_threadBeginEx(work, size, &job, &thread, 0, "stack"), sOKAY);
        osl_threadJoin(&thread);
        EXPECT_GE(job.stack, size);
    }
}

TEST(Thread, OfAnImpossibleStackIsRefused) {
    Job job;
    osl_thread_t thread{7, eFAIL};
    EXPECT_EQ(osl_threadBeginEx(work, size_t{1} << 62, &job, &thread, 0, "stack"), eOSL_FAILURE);
    EXPECT_EQ(osl_threadBeginEx(work, SIZE_MAX, &job, &thread, 0, "stack"), eOSL_FAILURE);
    EXPECT_EQ(thread.id, 0u);
}

TEST(Thread, IsJoinedOnceAndNeverWhenItDidNotStart) {
    Job job{.result = sNOTFOUND};
    osl_thread_t thread{};
    ASSERT_EQ(osl_threadBeginEx(work, 0, &job, &thread, 0, "worker"), sOKAY);
    osl_threadJoin(&thread);
    osl_threadJoin(&thread);
    EXPECT_EQ(thread.rc, sNOTFOUND);
    osl_thread_t none{};
    osl_threadJoin(&none);
    osl_threadJoin(nullptr);
}

TEST(Thread, RefusesMissingArguments) {
    osl_thread_t thread{};
    EXPECT_EQ(osl_threadBeginEx(nullptr, 0, nullptr, &thread, 0, ""), eINVNULLARG);
    EXPECT_EQ(osl_threadBeginEx(work, 0, nullptr, nullptr, 0, ""), eINVNULLARG);
}

TEST(Thread, ThatCannotStartLeavesNothing) {
    const uint64_t failures = oaktest::sweep_faults(oaktest::Resource::thread, {eOSL_FAILURE}, [] {
        Job job;
        osl_thread_t thread{};
        const OAK_RETCODE status = osl_threadBeginEx(work, 0, &job, &thread, 0, "worker");
        EXPECT_EQ(thread.id != 0, status == sOKAY);
        osl_threadJoin(&thread);
        return status;
    });
    EXPECT_EQ(failures, oaktest::faults_are_injected() ? 2u : 0u);
}

TEST(Process, HasItsId) {
    EXPECT_EQ(osl_get_pid(), static_cast<uint64_t>(getpid()));
}
