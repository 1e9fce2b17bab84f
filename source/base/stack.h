/* B_STACK: a stack of pointers that can be searched.
 *
 * Calls: push, pop, top, count, find and find-and-delete by comparison. Choose
 * it for nested scopes and for last-in lists that are now and then searched.
 *
 * Law: the stack owns its nodes, which lie under a tag of its own, and never
 * what they point at. No limit but memory; push, pop, top and count are
 * constant time and allocate nothing once the stack has been as deep, finds are
 * linear from the top. 1,000 entries take about 16,000 bytes. With bit 0 of the
 * flags each call holds a mutex for its whole duration, comparisons included.
 *
 * Every call but b_stackDestroy and b_stackTop answers eINVNULLARG to a null
 * stack or a null output. */
#ifndef STACK_H
#define STACK_H

#include "oaktypes.h"

OAK_C_BEGIN

typedef struct _B_STACK *B_STACK;
typedef const struct _B_STACK *B_STACK_C;

/* Compares what is looked for with an item; OAK_EQ is a hit. */
typedef OAK_COMPARE (*B_STACK_COMPARE)(const void *lookup, const void *item, void *ctx);

enum { B_STACK_SYNC = 1 }; /* flags: hold a mutex in each call */

/* An empty stack. `name` is copied; `ctx` goes to `cmpfcn` unchanged; `file` and
 * `line` name the caller for leak reports. eINVNULLARG without `name`, `cmpfcn`
 * or `pStack`; eNOMEMORY, also when the mutex cannot be made. */
OAK_API OAK_RETCODE b_stackCreateEx(const char *name, uint32_t flags, B_STACK_COMPARE cmpfcn,
                                    void *ctx, const char *file, int32_t line, B_STACK *pStack);
#define B_STACK_CREATE(name, flags, cmpfcn, ctx, pStack)                                           \
    b_stackCreateEx((name), (flags), (cmpfcn), (ctx), __FILE__, __LINE__, (pStack))
/* Frees the stack, not what it points at. Null is allowed. */
OAK_API void b_stackDestroy(B_STACK stack);

/* Puts `item` on top. eNOMEMORY. */
OAK_API OAK_RETCODE b_stackPush(B_STACK stack, const void *item);
/* Takes the top item off; sNODATA when the stack is empty, the output untouched. */
OAK_API OAK_RETCODE b_stackPop(B_STACK stack, void **pItem);
/* The first item from the top for which the comparison gives OAK_EQ; sNOTFOUND
 * without one, the output untouched. The second call also takes it out. */
OAK_API OAK_RETCODE b_stackFind(B_STACK stack, const void *lookup, void **pItem);
OAK_API OAK_RETCODE b_stackFindAndDelete(B_STACK stack, const void *lookup, void **pItem);
/* Items on the stack. */
OAK_API OAK_RETCODE b_stackCount(B_STACK stack, uint64_t *pCount);
/* The top item; null when the stack is empty or null. */
OAK_API void *b_stackTop(B_STACK stack);

OAK_C_END

#endif
