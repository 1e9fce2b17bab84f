/* B_BITMAP: a fixed number of bits, all clear at first.
 *
 * Calls: set, clear, negate, test, count. Choose it for dense sets of small
 * numbers.
 *
 * Law: a bit at or beyond the size changes nothing and reads as false, and so
 * does every bit of a null bitmap. Up to 4294967295 bits; each call is constant
 * time but the count, which looks at 32 bits a step. 1,000 bits take 128 bytes
 * and the handle. No lock: one thread at a time. There is no iteration but
 * testing each bit. */
#ifndef BITMAP_H
#define BITMAP_H

#include "osltypes.h"

OAK_C_BEGIN

typedef struct BITMAP_CTX *B_BITMAP;
typedef const struct BITMAP_CTX *B_BITMAP_C;

/* A bitmap of `size` bits under `tag`. eINVNULLARG without `pBitmap`, eNOMEMORY. */
OAK_API OAK_RETCODE b_bmCreate(uint32_t size, OSL_MEMTAG tag, B_BITMAP *pBitmap);
/* Null is allowed. */
OAK_API void b_bmDestroy(B_BITMAP bitmap);
/* Each changes the bit and returns what it was before. */
OAK_API OAK_BOOL_T b_bmSetBit(B_BITMAP bitmap, uint32_t bit);
OAK_API OAK_BOOL_T b_bmClearBit(B_BITMAP bitmap, uint32_t bit);
OAK_API OAK_BOOL_T b_bmNegateBit(B_BITMAP bitmap, uint32_t bit);
/* Whether the bit is set. */
OAK_API OAK_BOOL_T b_bmTestBit(B_BITMAP_C bitmap, uint32_t bit);
/* How many bits are set. */
OAK_API uint32_t b_bmCount(B_BITMAP_C bitmap);

OAK_C_END

#endif
