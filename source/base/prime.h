/* Primes: the next prime at or above a number, and the sieve behind it (Atkin
 * and Bernstein's, over the odd numbers).
 *
 * Law: 64-bit arithmetic throughout. A sieve costs time and half a bit of
 * memory in proportion to its limit; the next prime of n sieves up to about
 * 1.15 times the square root of n. One thread at a time. */
#ifndef PRIME_H
#define PRIME_H

#include "osltypes.h"

OAK_C_BEGIN

typedef struct PRIME_CTX *B_PRIME;
typedef const struct PRIME_CTX *B_PRIME_C;

/* Sieves the primes up to `limit` into a bitmap under `tag`. eINVNULLARG without
 * `pPrime`; eRANGE for a limit above 8589934590, which no bitmap holds;
 * eNOMEMORY. */
OAK_API OAK_RETCODE b_primeCreate(uint64_t limit, OSL_MEMTAG tag, B_PRIME *pPrime);
/* Null is allowed. */
OAK_API void b_primeDestroy(B_PRIME prime);
/* Hands out the primes up to the limit, in order, in a new block under `tag`,
 * which the caller frees with osl_freeMem. 2 is always the first, also below a
 * limit of 2. eINVNULLARG, eNOMEMORY. */
OAK_API OAK_RETCODE b_primeGetPrimes(B_PRIME_C prime, uint32_t *pCount, uint64_t **pPrimes,
                                     OSL_MEMTAG tag);
/* The smallest prime that is not below `num`; 2 for anything up to 2.
 * eINVNULLARG, eNOMEMORY; eRANGE when no prime at or above it fits 64 bits. */
OAK_API OAK_RETCODE b_primeNextGreaterOrEqual(uint64_t num, uint64_t *pPrime);

OAK_C_END

#endif
