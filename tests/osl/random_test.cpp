// Random bits: no repetition, no bias that shows, threads, forks.
#include <cstring>
#include <set>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include "test_support.h"

namespace {

constexpr size_t kDraws = 4096;

std::vector<uint64_t> draw(OSL_RAND generator, size_t count) {
    std::vector<uint64_t> numbers;
    for (size_t i = 0; i < count; ++i) {
        numbers.push_back(osl_randGetUInt64(generator));
    }
    return numbers;
}

/// What a forked child draws from the generator.
std::vector<uint64_t> draw_in_child(OSL_RAND generator, size_t count) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        for (size_t i = 0; i < count; ++i) {
            const uint64_t number = osl_randGetUInt64(generator);
            if (write(ends[1], &number, sizeof number) != sizeof number) {
                _exit(1);
            }
        }
        _exit(0);
    }
    close(ends[1]);
    std::vector<uint64_t> numbers;
    uint64_t number = 0;
    while (read(ends[0], &number, sizeof number) == sizeof number) {
        numbers.push_back(number);
    }
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    return numbers;
}

} // namespace

TEST(Random, NeverRepeats) {
    OSL_RAND generator = osl_randCreate(1);
    ASSERT_NE(generator, nullptr);
    const std::vector<uint64_t> numbers = draw(generator, 100000);
    EXPECT_EQ(std::set<uint64_t>(numbers.begin(), numbers.end()).size(), numbers.size());
    osl_randDestroy(generator);
}

TEST(Random, SetsEveryBitHalfOfTheTime) {
    OSL_RAND generator = osl_randCreate(2);
    size_t counts[64] = {};
    size_t changes[64] = {};
    uint64_t last = 0;
    for (const uint64_t number : draw(generator, kDraws)) {
        for (int bit = 0; bit < 64; ++bit) {
            counts[bit] += number >> bit & 1;
            changes[bit] += (number ^ last) >> bit & 1;
        }
        last = number;
    }
    for (int bit = 0; bit < 64; ++bit) { // six standard deviations of 32 around 2048
        EXPECT_NEAR(static_cast<double>(counts[bit]), kDraws / 2.0, 6 * 32.0) << bit;
        EXPECT_NEAR(static_cast<double>(changes[bit]), kDraws / 2.0, 6 * 32.0) << bit;
    }
    osl_randDestroy(generator);
}

TEST(Random, DiffersBetweenGeneratorsOfOneSeed) {
    OSL_RAND first = osl_randCreate(7);
    OSL_RAND second = osl_randCreate(7);
    EXPECT_NE(draw(first, 4), draw(second, 4));
    osl_randDestroy(first);
    osl_randDestroy(second);
}

TEST(Random, IsDrawnByManyThreadsWithoutRepetition) {
    OSL_RAND generator = osl_randCreate(3);
    std::vector<std::vector<uint64_t>> drawn(4);
    std::vector<std::thread> threads;
    for (auto &numbers : drawn) {
        threads.emplace_back([&numbers, generator] { numbers = draw(generator, kDraws); });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    std::set<uint64_t> all;
    for (const auto &numbers : drawn) {
        all.insert(numbers.begin(), numbers.end());
    }
    EXPECT_EQ(all.size(), 4 * kDraws);
    osl_randDestroy(generator);
}

TEST(Random, IsNotSharedWithAForkedChild) {
    OSL_RAND generator = osl_randCreate(4);
    draw(generator, 10);
    const std::vector<uint64_t> in_first = draw_in_child(generator, 100);
    const std::vector<uint64_t> in_second = draw_in_child(generator, 100);
    const std::vector<uint64_t> in_parent = draw(generator, 100);
    ASSERT_EQ(in_first.size(), 100u);
    ASSERT_EQ(in_second.size(), 100u);
    std::set<uint64_t> all(in_parent.begin(), in_parent.end());
    all.insert(in_first.begin(), in_first.end());
    all.insert(in_second.begin(), in_second.end());
    EXPECT_EQ(all.size(), 300u);
    osl_randDestroy(generator);
}

TEST(Random, SeedsDifferWithTheClock) {
    std::set<uint32_t> seeds;
    for (int i = 0; i < 10; ++i) {
        seeds.insert(osl_seed());
        osl_sleep(1);
    }
    EXPECT_GE(seeds.size(), 9u);
}

TEST(Random, ReportsExhaustion) {
    const uint64_t failures = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [] {
        OSL_RAND generator = osl_randCreate(5);
        osl_randDestroy(generator);
        return generator != nullptr ? sOKAY : eNOMEMORY;
    });
    EXPECT_EQ(failures, oaktest::faults_are_injected() ? 2u : 0u);
}
