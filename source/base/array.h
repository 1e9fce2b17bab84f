/* B_ARRAY: pointers by index.
 *
 * Calls: add, look up, remove by index, search by pointer or by callback, walk
 * with undo. Choose it for small sets that are found by position.
 *
 * Law: the array owns its own memory and never what it points at. Up to
 * 4294967295 entries; the capacity grows by 4. Adding is constant time
 * (amortised), lookup constant, removal and search linear. 1,000 entries take
 * 8,000 bytes and the handle. No lock: one thread at a time. A callback of a
 * walk must not change the array. Bad indexes and searches without a hit are
 * sNOTFOUND; a null array or a null output that is not optional is eINVNULLARG. */
#ifndef ARRAY_H
#define ARRAY_H

#include "osltypes.h"

OAK_C_BEGIN

typedef struct _B_ARRAY *B_ARRAY;
typedef const struct _B_ARRAY *B_ARRAY_C;

/* Visits an entry; what a status other than sOKAY means is told with each walk. */
typedef OAK_RETCODE (*B_ARR_FCN)(const void *item, void *ctx);
/* Takes back what the visit of an entry did. */
typedef void (*B_ARR_UNDO_FCN)(const void *item, void *ctx);

/* An empty array under `tag`. eINVNULLARG without `pArray`, eNOMEMORY. */
OAK_API OAK_RETCODE b_arrCreate(OSL_MEMTAG tag, B_ARRAY *pArray);
/* Frees the array, not what it points at. Null is allowed. */
OAK_API void b_arrDestroy(B_ARRAY array);
/* Entries in use. */
OAK_API uint32_t b_arrCount(B_ARRAY_C array);
/* Appends `item`; `pIndex` (optional) receives its index. eNOMEMORY. */
OAK_API OAK_RETCODE b_arrAdd(B_ARRAY array, const void *item, uint32_t *pIndex);
/* The first index that holds the very pointer `item`, into `pIndex` (optional). */
OAK_API OAK_RETCODE b_arrGetIndex(B_ARRAY_C array, const void *item, uint32_t *pIndex);
/* The entry at `index`. */
OAK_API OAK_RETCODE b_arrLookup(B_ARRAY_C array, uint32_t index, const void **pItem);
/* Takes the entry at `index` out; later entries move down by one. */
OAK_API OAK_RETCODE b_arrRemove(B_ARRAY array, uint32_t index);
/* Sets the entries in use to null; their count stays. */
OAK_API void b_arrClear(B_ARRAY array);
/* Asks `fcn` about each entry in turn: sOKAY is a hit, whose index goes to
 * `pIndex` (optional); sNOTFOUND goes on; any other status ends the walk and is
 * returned. sNOTFOUND without a hit. */
OAK_API OAK_RETCODE b_arrFind(B_ARRAY_C array, B_ARR_FCN fcn, void *ctx, uint32_t *pIndex);
/* Calls `fcn` on each entry in turn and stops at the first status other than
 * sOKAY. `undo` (optional) is then called on the failing entry and on all before
 * it, down to index 0, and the status is returned. */
OAK_API OAK_RETCODE b_arrIterate(B_ARRAY_C array, B_ARR_FCN fcn, B_ARR_UNDO_FCN undo, void *ctx);

OAK_C_END

#endif
