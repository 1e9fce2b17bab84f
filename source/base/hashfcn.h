/* The byte hash: each byte picks a number by its value and its position modulo
 * 8, and the numbers are joined by exclusive or.
 *
 * Law: stored hash buckets hold these values, so the table and the rule are
 * part of the stored form and never change. It follows from the rule that the
 * same byte at positions 0 and 8 cancels. Constant time a byte, no memory, no
 * failure; one context belongs to one thread. */
#ifndef HASHFCN_H
#define HASHFCN_H

#include "osltypes.h"

OAK_C_BEGIN

typedef struct B_HASHCTX {
    uint32_t offset; /* bytes hashed so far */
    uint64_t hash;   /* the hash of those */
} B_HASHCTX;

enum { B_HASH_ROWS = 256, B_HASH_COLUMNS = 8 };

/* A row for each byte value, a column for each position modulo 8. */
OAK_API extern const uint64_t hashNumbers[B_HASH_ROWS][B_HASH_COLUMNS];

/* Begins a hash of no bytes. */
OAK_API void b_hashFcnStart(B_HASHCTX *ctx);
/* Takes the next byte. */
OAK_API void b_hashFcnEmit(B_HASHCTX *ctx, uint8_t byte);
/* The hash of the bytes so far; of none it is 0. The context may go on. */
OAK_API uint64_t b_hashFcnFinish(const B_HASHCTX *ctx);

OAK_C_END

#endif
