// Primes (prime.h): the sieve of Atkin and Bernstein ("Prime sieves using binary
// quadratic forms", 2004) over the odd numbers, then trial division. Rests on
// the bitmap and the platform's memory; sizes of hash tables are chosen with it.
//
// Bit n / 2 of the bitmap stands for the odd number n. The sieve toggles a number
// once for each way in which a quadratic form yields it: a number without square
// factors is prime when the ways are odd in number; the rest is struck out.
#include "prime.h"

#include <cmath>

#include "bitmap.h"
#include "container_internal.h"

struct PRIME_CTX {
    uint64_t limit;
    OSL_MEMTAG tag;
    B_BITMAP bm;
};

namespace {

constexpr uint64_t kHighestLimit = uint64_t{UINT32_MAX} * 2; // what a bitmap has bits for
constexpr uint64_t kHighestPrime = 18446744073709551557U;    // below 2 to the 64th

/// The truncated square root.
uint64_t root_of(uint64_t value) {
    auto root = static_cast<uint64_t>(std::sqrt(static_cast<double>(value)));
    while (root > 0 && root > value / root) {
        --root;
    }
    while (root + 1 <= value / (root + 1)) {
        ++root;
    }
    return root;
}

/// The truncated square root of 4 * value, which need not fit 64 bits.
uint64_t root_of_fourfold(uint64_t value) {
    const uint64_t root = root_of(value);
    return 2 * root + (root * root + root < value ? 1 : 0);
}

uint32_t bit_of(uint64_t odd) {
    return static_cast<uint32_t>(odd >> 1);
}

void toggle(B_PRIME prime, uint64_t number) {
    if (number <= prime->limit) {
        b_bmNegateBit(prime->bm, bit_of(number));
    }
}

/// Toggles what the three quadratic forms yield for one pair.
void toggle_pair(B_PRIME prime, uint64_t x, uint64_t y) {
    const uint64_t xx = x * x;
    const uint64_t yy = y * y;
    if ((3 * xx + yy) % 12 == 7) {
        toggle(prime, 3 * xx + yy);
    }
    if (const uint64_t rest = (4 * xx + yy) % 12; rest == 1 || rest == 5) {
        toggle(prime, 4 * xx + yy);
    }
    if (x > y && (3 * xx - yy) % 12 == 11) {
        toggle(prime, 3 * xx - yy);
    }
}

/// Strikes out the odd multiples of the square of `number`.
void strike_squares(B_PRIME prime, uint64_t number) {
    const uint64_t square = number * number;
    for (uint64_t multiple = square; multiple <= prime->limit; multiple += 2 * square) {
        b_bmClearBit(prime->bm, bit_of(multiple));
    }
}

void sieve(B_PRIME prime) {
    const uint64_t root = root_of(prime->limit);
    for (uint64_t x = 1; x <= root; ++x) {
        for (uint64_t y = 1; y <= root; ++y) {
            toggle_pair(prime, x, y);
        }
    }
    for (uint64_t number = 5; number <= root; number += 2) {
        if (b_bmTestBit(prime->bm, bit_of(number)) != OAK_FALSE) {
            strike_squares(prime, number);
        }
    }
    b_bmSetBit(prime->bm, bit_of(3));
}

/// Whether none of the primes up to the candidate's root divides it.
bool has_no_divisor(uint64_t candidate, const uint64_t *primes, uint32_t count) {
    for (uint32_t i = 0; i < count && primes[i] <= candidate / primes[i]; ++i) {
        if (candidate % primes[i] == 0) {
            return false;
        }
    }
    return true;
}

/// The primes up to `limit`, in scratch memory of the process.
OAK_RETCODE list_primes(uint64_t limit, uint32_t *count, uint64_t **primes) {
    B_PRIME prime = nullptr;
    OAK_RETCODE rc = b_primeCreate(limit, OSL_TAG_PROCESS, &prime);
    if (rc == sOKAY) {
        rc = b_primeGetPrimes(prime, count, primes, OSL_TAG_PROCESS);
        b_primeDestroy(prime);
    }
    return rc;
}

} // namespace

OAK_RETCODE b_primeCreate(uint64_t limit, OSL_MEMTAG tag, B_PRIME *pPrime) {
    if (pPrime == nullptr) {
        return eINVNULLARG;
    }
    if (limit > kHighestLimit) {
        return eRANGE;
    }
    PRIME_CTX *prime = nullptr;
    OAK_RETCODE rc = oak::get_zeroed(1, tag, &prime, __FILE__, __LINE__);
    if (rc != sOKAY) {
        return rc;
    }
    prime->limit = limit;
    prime->tag = tag;
    rc = b_bmCreate(static_cast<uint32_t>((limit + 1) / 2), tag, &prime->bm);
    if (rc != sOKAY) {
        OSL_FREE(prime, tag);
        return rc;
    }
    sieve(prime);
    *pPrime = prime;
    return sOKAY;
}

void b_primeDestroy(B_PRIME prime) {
    if (prime != nullptr) {
        b_bmDestroy(prime->bm);
        OSL_FREE(prime, prime->tag);
    }
}

OAK_RETCODE b_primeGetPrimes(B_PRIME_C prime, uint32_t *pCount, uint64_t **pPrimes,
                             OSL_MEMTAG tag) {
    if (prime == nullptr || pCount == nullptr || pPrimes == nullptr) {
        return eINVNULLARG;
    }
    const uint32_t count = b_bmCount(prime->bm) + 1;
    uint64_t *primes = nullptr;
    const OAK_RETCODE rc = oak::get_zeroed(count, tag, &primes, __FILE__, __LINE__);
    if (rc != sOKAY) {
        return rc;
    }
    primes[0] = 2;
    uint32_t next = 1;
    for (uint64_t number = 3; number <= prime->limit; number += 2) {
        if (b_bmTestBit(prime->bm, bit_of(number)) != OAK_FALSE) {
            primes[next++] = number;
        }
    }
    *pCount = count;
    *pPrimes = primes;
    return sOKAY;
}

OAK_RETCODE b_primeNextGreaterOrEqual(uint64_t num, uint64_t *pPrime) {
    if (pPrime == nullptr) {
        return eINVNULLARG;
    }
    if (num > kHighestPrime) {
        return eRANGE;
    }
    if (num <= 2) {
        *pPrime = 2;
        return sOKAY;
    }
    // The prime found lies below four thirds of the number, so this bounds its root.
    uint32_t count = 0;
    uint64_t *primes = nullptr;
    const OAK_RETCODE rc = list_primes(root_of_fourfold((num + 2) / 3), &count, &primes);
    if (rc != sOKAY) {
        return rc;
    }
    uint64_t candidate = num | 1;
    while (!has_no_divisor(candidate, primes, count)) {
        candidate += 2;
    }
    OSL_FREE(primes, OSL_TAG_PROCESS);
    *pPrime = candidate;
    return sOKAY;
}
