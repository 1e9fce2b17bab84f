/* B_LL: a doubly linked list of pointers with one cursor.
 *
 * Calls: add and delete at both ends, remove by pointer, walk by cursor or by
 * callback. Choose it for queues of few things whose ends change.
 *
 * Law: the list owns its nodes and never what they point at; stored pointers
 * must not be null, since null means "none". Up to 4294967295 entries; all
 * calls are constant time but b_llRemove and the walks. 1,000 entries take
 * 24,000 bytes and the allocator's share of 1,000 blocks. Created with the sync
 * flag, each call holds a mutex for its whole duration, callbacks included,
 * which therefore must not call the same list; without it the list is for one
 * thread. The cursor is shared by all threads.
 *
 * Iteration: only b_llFirst, b_llLast, b_llNext and b_llPrev move the cursor;
 * past an end there is no cursor, and from there b_llNext and b_llPrev stay.
 * Deleting the head clears a cursor that stands on it. A walk does not survive
 * any other deletion of the node under the cursor: it must begin again with
 * b_llFirst or b_llLast (such a cursor is cleared here, so that a walk that
 * goes on ends). */
#ifndef LL_H
#define LL_H

#include "osltypes.h"

OAK_C_BEGIN

typedef struct S_B_LINKED_LIST *B_LL;
typedef const struct S_B_LINKED_LIST *B_LL_C;

/* Visits an item; a status other than sOKAY ends the walk. */
typedef OAK_RETCODE (*B_LL_FCN)(void *item, void *ctx);

/* An empty list under `tag`, with a mutex when `sync` is true. eINVNULLARG
 * without `pList`; eNOMEMORY, also when the mutex cannot be made. */
OAK_API OAK_RETCODE b_llCreate(OAK_BOOL_T sync, OSL_MEMTAG tag, B_LL *pList);
/* Frees the nodes and the list, not what they point at. Null is allowed. */
OAK_API void b_llDestroy(B_LL list);
/* Items in the list. */
OAK_API uint32_t b_llGetNodeCount(B_LL list);

/* Puts `item` at an end. eINVNULLARG, eNOMEMORY. */
OAK_API OAK_RETCODE b_llAddHead(B_LL list, const void *item);
OAK_API OAK_RETCODE b_llAddTail(B_LL list, const void *item);

/* The item at an end, null when the list is empty; the cursor stays. */
OAK_API void *b_llGetHead(B_LL list);
OAK_API void *b_llGetTail(B_LL list);
/* Moves the cursor to an end, or one on or back, and returns its item or null. */
OAK_API void *b_llFirst(B_LL list);
OAK_API void *b_llLast(B_LL list);
OAK_API void *b_llNext(B_LL list);
OAK_API void *b_llPrev(B_LL list);

/* Takes the item at an end out and returns it, null when the list is empty. */
OAK_API void *b_llDeleteHead(B_LL list);
OAK_API void *b_llDeleteTail(B_LL list);
/* Calls `fcn` on each item from the head, or from the tail; returns the status
 * that stopped the walk, or sOKAY. The cursor stays. */
OAK_API OAK_RETCODE b_llIterate(B_LL list, B_LL_FCN fcn, void *ctx);
OAK_API OAK_RETCODE b_llIterateBackward(B_LL list, B_LL_FCN fcn, void *ctx);
/* Takes the first node that holds the very pointer `item` out (the head is
 * looked at first, then the tail, then the rest in order) and returns the
 * pointer; null when there is none. */
OAK_API void *b_llRemove(B_LL list, const void *item);

OAK_C_END

#endif
