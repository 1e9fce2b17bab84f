// Primes: the first ones by hand, then against trial division by every number,
// at the far end of 64 bits, and the lists that the sieve hands out.
#include "prime.h"

#include <vector>

#include "test_support.h"

namespace {

uint64_t next_prime(uint64_t number) {
    uint64_t prime = 0;
    EXPECT_EQ(b_primeNextGreaterOrEqual(number, &prime), sOKAY) << number;
    return prime;
}

bool is_prime(uint64_t number) {
    for (uint64_t divisor = 2; divisor * divisor <= number; ++divisor) {
        if (number % divisor == 0) {
            return false;
        }
    }
    return number > 1;
}

std::vector<uint64_t> primes_up_to(uint64_t limit) {
    oaktest::Tag tag;
    B_PRIME prime = nullptr;
    uint32_t count = 0;
    uint64_t *primes = nullptr;
    EXPECT_EQ(b_primeCreate(limit, tag, &prime), sOKAY);
    EXPECT_EQ(b_primeGetPrimes(prime, &count, &primes, tag), sOKAY);
    std::vector<uint64_t> list(primes, primes + count);
    OSL_FREE(primes, tag);
    b_primeDestroy(prime);
    return list;
}

TEST(Primes, FindsTheFirstOnes) {
    const uint64_t rows[][2] = {{0, 2}, {1, 2},  {2, 2},  {3, 3},   {4, 5},   {5, 5},
                                {6, 7}, {8, 11}, {9, 11}, {24, 29}, {25, 29}, {90, 97}};
    for (const auto &row : rows) {
        EXPECT_EQ(next_prime(row[0]), row[1]) << row[0];
    }
}

TEST(Primes, AgreesWithTrialDivision) {
    uint64_t expected = 3001;
    for (uint64_t number = 3001; number > 0; --number) {
        expected = is_prime(number) ? number : expected;
        ASSERT_EQ(next_prime(number), expected) << number;
    }
}

TEST(Primes, FindsWhatLiesAroundPowersOfTwo) {
    const uint64_t rows[][2] = {{65536, 65537},
                                {2147483647, 2147483647},
                                {2147483648, 2147483659},
                                {4294967296, 4294967311},
                                {1099511627776, 1099511627791}};
    for (const auto &row : rows) {
        EXPECT_EQ(next_prime(row[0]), row[1]);
    }
}

TEST(Primes, RefusesWhatHasNoPrimeAboveItIn64Bits) {
    uint64_t prime = 7;
    EXPECT_EQ(b_primeNextGreaterOrEqual(18446744073709551558U, &prime), eRANGE);
    EXPECT_EQ(b_primeNextGreaterOrEqual(UINT64_MAX, &prime), eRANGE);
    EXPECT_EQ(prime, 7u);
}

TEST(Primes, ListsThePrimesUpToALimit) {
    EXPECT_EQ(primes_up_to(30), (std::vector<uint64_t>{2, 3, 5, 7, 11, 13, 17, 19, 23, 29}));
    EXPECT_EQ(primes_up_to(29).size(), 10u);
    EXPECT_EQ(primes_up_to(28).size(), 9u);
    EXPECT_EQ(primes_up_to(3), (std::vector<uint64_t>{2, 3}));
    std::vector<uint64_t> expected;
    for (uint64_t number = 2; number <= 20000; ++number) {
        if (is_prime(number)) {
            expected.push_back(number);
        }
    }
    EXPECT_EQ(primes_up_to(20000), expected);
    EXPECT_EQ(expected.size(), 2262u);
}

// 2 stands first whatever the limit is.
TEST(Primes, ListsTwoBelowALimitOfTwo) {
    for (const uint64_t limit : {0, 1, 2}) {
        EXPECT_EQ(primes_up_to(limit), (std::vector<uint64_t>{2})) << limit;
    }
}

TEST(Primes, RefusesNullArgumentsAndALimitThatNoBitmapHolds) {
    oaktest::Tag tag;
    B_PRIME prime = nullptr;
    uint32_t count = 0;
    uint64_t *primes = nullptr;
    EXPECT_EQ(b_primeNextGreaterOrEqual(5, nullptr), eINVNULLARG);
    EXPECT_EQ(b_primeCreate(10, tag, nullptr), eINVNULLARG);
    EXPECT_EQ(b_primeCreate(8589934591, tag, &prime), eRANGE);
    EXPECT_EQ(b_primeCreate(UINT64_MAX, tag, &prime), eRANGE);
    ASSERT_EQ(b_primeCreate(10, tag, &prime), sOKAY);
    EXPECT_EQ(b_primeGetPrimes(nullptr, &count, &primes, tag), eINVNULLARG);
    EXPECT_EQ(b_primeGetPrimes(prime, nullptr, &primes, tag), eINVNULLARG);
    EXPECT_EQ(b_primeGetPrimes(prime, &count, nullptr, tag), eINVNULLARG);
    b_primeDestroy(prime);
    b_primeDestroy(nullptr);
}

TEST(Primes, LeavesNothingBehindWhenMemoryEnds) {
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [] {
        uint64_t prime = 0;
        const OAK_RETCODE rc = b_primeNextGreaterOrEqual(1000, &prime);
        EXPECT_EQ(prime, rc == sOKAY ? 1009u : 0u);
        return rc;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

} // namespace
