/* B_BT: an ordered set of pointers, kept in a B-tree, with one cursor.
 *
 * Calls: add, delete, find (exactly, or the neighbour of what is missing), walk
 * both ways, delete at both ends. Choose it for whatever is found by order and
 * changes; for pure lookups by number the maps are quicker.
 *
 * Law: the tree owns its nodes, under a tag of its own, and never what they
 * point at. No two stored items compare equal, and no stored pointer is null,
 * since null means "none". The comparison returns exactly OAK_LT, OAK_EQ or
 * OAK_GT, gives one order for all items, and neither calls the tree nor fails;
 * a lookup argument is any record that it accepts. An item must not change in
 * what is compared while it is in the tree.
 *
 * Limits: up to 4294967295 items; 3 or more slots, the most items that a node
 * keeps. Cost: O(log n) comparisons a call; a step of a walk is constant time
 * on average and compares nothing; nodes recycle, so that steady adding and
 * deleting allocates nothing. 1,000 items take about 26 kB with 32 slots when
 * added in random order, 35 kB in ascending order; 8,000 of it are the pointers.
 *
 * Locks: with B_BT_SYNC each call holds a mutex for its whole duration. The
 * cursor is shared all the same: two threads that walk one tree disturb each
 * other.
 *
 * Iteration: the cursor stands on an item, in the gap where a missing item would
 * be, past one of the ends, or nowhere. Every find, b_btFirst and b_btLast sets
 * it; after a find without a hit it stands in the gap. b_btNext and b_btPrev move
 * it to the neighbour and return that item; past an end they return null, and the
 * step back returns to the item at that end. After b_btAdd it stands on the new
 * item. After b_btDelete b_btNext gives the successor of the deleted item and
 * b_btPrev its predecessor; a b_btAdd in between changes nothing in that, so the
 * step after delete-then-add still yields the deleted item's successor, once.
 * b_btDeleteFirst and b_btDeleteLast leave the cursor nowhere, and steps from
 * there return null, unless an earlier b_btDelete left a successor. No order of
 * calls does harm. */
#ifndef BTREE_H
#define BTREE_H

#include "oaktypes.h"

OAK_C_BEGIN

typedef struct _B_BTREE *B_BT;
typedef const struct _B_BTREE *B_BT_C;

/* Compares what is looked for, or added, with a stored item. */
typedef OAK_COMPARE (*B_BT_COMPARE)(const void *data1, const void *data2, void *ctx);

/* What a lookup without a hit yields. */
typedef enum B_BTREE_ON_NOT_FOUND OAK_INT32_ENUM {
    BT_RETURN_NONE = 0, /* null */
    BT_RETURN_NEXT = 1, /* the item that would follow */
    BT_RETURN_PREV = 2  /* the item that would precede */
} B_BTREE_ON_NOT_FOUND;

enum { B_BT_SYNC = 1 }; /* flags: hold a mutex in each call */

/* ---- Life -------------------------------------------------------------- */

/* An empty tree. `name` is copied and may be null; `ctx` goes to `cmpfcn`
 * unchanged; `file` and `line` name the caller for leak reports. eINVNULLARG
 * without `pTree`; eNOMEMORY also for fewer than 3 slots, for a null `cmpfcn`
 * and when the mutex cannot be made: callers depend on that very code. */
OAK_API OAK_RETCODE b_btCreateEx(const char *name, B_BT_COMPARE cmpfcn, uint32_t slots,
                                 uint32_t flags, void *ctx, B_BT *pTree, const char *file,
                                 int32_t line);
#define B_BT_CREATE(name, cmpfcn, slots, flags, ctx, pTree)                                        \
    b_btCreateEx((name), (cmpfcn), (slots), (flags), (ctx), (pTree), __FILE__, __LINE__)
/* Frees the tree, not what it points at. Null is allowed. */
OAK_API void b_btDestroy(B_BT tree);
/* Items in the tree. */
OAK_API uint32_t b_btCount(B_BT tree);

/* ---- Change ------------------------------------------------------------ */

/* Adds `item`. eDUPLICATE when an equal one is there; eINVNULLARG for a null
 * tree or item; eNOMEMORY, the tree then being as before. */
OAK_API OAK_RETCODE b_btAdd(B_BT tree, const void *item);
/* Adds `count` items in order. On the first failure the ones already added are
 * deleted, the last first, and the failure is returned. */
OAK_API OAK_RETCODE b_btAddMultiple(B_BT tree, uint32_t count, const void *const *items);
/* Takes the item that equals `lookup` out and returns it; null without one. */
OAK_API void *b_btDelete(B_BT tree, const void *lookup);
/* Takes the first, or the last, item out and returns it; null when empty. */
OAK_API void *b_btDeleteFirst(B_BT tree);
OAK_API void *b_btDeleteLast(B_BT tree);

/* ---- Find -------------------------------------------------------------- */

/* The item that equals `lookup`, or null. A find in the node under the cursor
 * is quicker. */
OAK_API void *b_btFind(B_BT tree, const void *lookup);
/* The same; without a hit the item that would follow, or precede, it. */
OAK_API void *b_btFindOrNext(B_BT tree, const void *lookup);
OAK_API void *b_btFindOrPrev(B_BT tree, const void *lookup);

/* ---- Walk -------------------------------------------------------------- */

/* Moves the cursor to an end and returns its item, null when the tree is empty. */
OAK_API void *b_btFirst(B_BT tree);
OAK_API void *b_btLast(B_BT tree);
/* Moves the cursor to the neighbour and returns its item, null past an end. */
OAK_API void *b_btNext(B_BT tree);
OAK_API void *b_btPrev(B_BT tree);

OAK_C_END

#endif
