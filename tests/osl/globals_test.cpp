// Process-wide objects: made once, whoever comes first, and ended with the layer.
#include <cstring>
#include <limits>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include "test_support.h"

namespace {

std::atomic<int> inits{0};
std::vector<std::string> ended;

OAK_RETCODE init(void *data) {
    ++inits;
    osl_sleep(2); // give others the time to come in between
    *static_cast<uint64_t *>(data) = 42;
    return sOKAY;
}

OAK_RETCODE fail_init(void *) {
    ++inits;
    return eFAIL;
}

OAK_RETCODE nested_init(void *data) {
    void *other = nullptr;
    const OAK_RETCODE status = osl_globalGet("test inner", 8, init, nullptr, &other);
    *static_cast<void **>(data) = other;
    return status;
}

void note_first(void *data) {
    ended.push_back("first " + std::to_string(*static_cast<uint64_t *>(data)));
}

void note_second(void *) {
    ended.push_back("second");
}

/// Ends whatever objects there are, so that each test begins without any.
class Globals : public testing::Test {
  protected:
    Globals() { restart(); }
    ~Globals() override { restart(); }
    static void restart() {
        EXPECT_EQ(osl_init(), sOKAY);
        osl_term();
        inits = 0;
        ended.clear();
    }
};

} // namespace

TEST_F(Globals, AreMadeOnceAndZeroed) {
    void *first = nullptr;
    void *second = nullptr;
    EXPECT_EQ(osl_globalGet("test zero", 16, nullptr, nullptr, &first), sOKAY);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(first) % 16, 0u);
    EXPECT_EQ(std::memcmp(first, "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 16), 0);
    EXPECT_EQ(osl_globalGet("test zero", 16, nullptr, nullptr, &second), sOKAY);
    EXPECT_EQ(first, second);
    EXPECT_EQ(osl_globalGet("test zero!", 16, nullptr, nullptr, &second), sOKAY);
    EXPECT_NE(first, second) << "another name, another object";
}

TEST_F(Globals, KeepNoPointerToTheName) {
    char name[] = "test name";
    void *first = nullptr;
    void *second = nullptr;
    EXPECT_EQ(osl_globalGet(name, 8, nullptr, nullptr, &first), sOKAY);
    std::memset(name, 'x', 9);
    EXPECT_EQ(osl_globalGet("test name", 8, nullptr, nullptr, &second), sOKAY);
    EXPECT_EQ(first, second);
}

TEST_F(Globals, RunInitOnceUnderConcurrentFirstCalls) {
    std::vector<std::thread> threads;
    std::vector<void *> found(8);
    for (void *&place : found) {
        threads.emplace_back([&place] {
            EXPECT_EQ(osl_globalGet("test race", 8, init, nullptr, &place), sOKAY);
            EXPECT_EQ(*static_cast<uint64_t *>(place), 42u);
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(inits, 1);
    for (void *place : found) {
        EXPECT_EQ(place, found[0]);
    }
}

TEST_F(Globals, WhoseInitFailsDoNotComeIntoBeing) {
    void *data = nullptr;
    const oaktest::Live before = oaktest::Live::now();
    EXPECT_EQ(osl_globalGet("test fail", 8, fail_init, note_first, &data), eFAIL);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(oaktest::Live::now(), before);
    EXPECT_EQ(osl_globalGet("test fail", 8, init, nullptr, &data), sOKAY) << "a second try";
    EXPECT_EQ(inits, 2);
    EXPECT_EQ(*static_cast<uint64_t *>(data), 42u);
}

TEST_F(Globals, MayBeMadeWhileAnotherIsMade) {
    void *data = nullptr;
    EXPECT_EQ(osl_globalGet("test outer", 8, nested_init, nullptr, &data), sOKAY);
    EXPECT_EQ(**static_cast<uint64_t **>(data), 42u);
}

TEST_F(Globals, EndWithTheLastUserNewestFirst) {
    void *data = nullptr;
    EXPECT_EQ(osl_init(), sOKAY);
    EXPECT_EQ(osl_init(), sOKAY);
    EXPECT_EQ(osl_globalGet("test first", 8, init, note_first, &data), sOKAY);
    EXPECT_EQ(osl_globalGet("test second", 8, init, note_second, &data), sOKAY);
    osl_term();
    EXPECT_TRUE(ended.empty()) << "one user is left";
    osl_term();
    EXPECT_EQ(ended, (std::vector<std::string>{"second", "first 42"}));
    EXPECT_EQ(osl_globalGet("test first", 8, init, nullptr, &data), sOKAY) << "made anew";
    EXPECT_EQ(inits, 3);
    osl_term();
    EXPECT_EQ(osl_init(), sOKAY) << "a stop without a start counts for nothing";
    EXPECT_EQ(inits, 3);
    osl_term();
}

TEST_F(Globals, EndWithTheProcess) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    static int report_to = -1;
    report_to = ends[1];
    const pid_t child = fork();
    if (child == 0) {
        void *data = nullptr;
        const auto term = [](void *) {
            [[maybe_unused]] const ssize_t written = write(report_to, "ended", 5);
        };
        const bool made = osl_globalGet("test exit", 8, nullptr, term, &data) == sOKAY;
        std::exit(made ? 0 : 1);
    }
    close(ends[1]);
    char text[6] = "";
    EXPECT_EQ(read(ends[0], text, 5), 5);
    EXPECT_STREQ(text, "ended");
    close(ends[0]);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(Globals, RefuseALargerSizeThanTheyHave) {
    void *data = nullptr;
    EXPECT_EQ(osl_globalGet("test size", 8, nullptr, nullptr, &data), sOKAY);
    void *larger = nullptr;
    EXPECT_EQ(osl_globalGet("test size", 9, nullptr, nullptr, &larger), eINVARG);
    EXPECT_EQ(larger, nullptr);
    EXPECT_EQ(osl_globalGet("test size", 4, nullptr, nullptr, &larger), sOKAY);
    EXPECT_EQ(larger, data);
}

TEST_F(Globals, RefuseMissingArgumentsAndImpossibleSizes) {
    void *data = nullptr;
    EXPECT_EQ(osl_globalGet(nullptr, 8, nullptr, nullptr, &data), eINVNULLARG);
    EXPECT_EQ(osl_globalGet("test null", 8, nullptr, nullptr, nullptr), eINVNULLARG);
    for (const size_t back : {0, 16, 40, 4096}) {
        EXPECT_EQ(osl_globalGet("test huge", std::numeric_limits<size_t>::max() - back, nullptr,
                                nullptr, &data),
                  eNOMEMORY);
    }
    EXPECT_EQ(data, nullptr);
}

TEST_F(Globals, ReportExhaustion) {
    const uint64_t failures = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [] {
        void *data = nullptr;
        const OAK_RETCODE status = osl_globalGet("test memory", 8, nullptr, nullptr, &data);
        EXPECT_EQ(data != nullptr, status == sOKAY);
        restart();
        return status;
    });
    EXPECT_EQ(failures, oaktest::faults_are_injected() ? 2u : 0u);
}
