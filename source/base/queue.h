/* B_QUEUE: messages from any number of writers to any number of readers, in
 * order.
 *
 * Calls: write, read with a timeout, close, count. The queue is intrusive: the
 * caller's message record begins with a B_QUEMSG_S, so nothing is allocated and
 * a write cannot fail. Choose it to hand work to other threads.
 *
 * Law: the queue owns its locks and never a message; a message is in one queue
 * at a time and must live until it is read. Up to 2147483647 messages; write
 * and read are constant time. 1,000 messages take no memory but their own. A
 * closed queue still takes writes and still delivers what it holds; then it
 * answers sBASE_QUEUE_CLOSED. A write or a close is never missed by a waiting
 * reader. One reader at a time looks or waits; the others stand behind it without
 * limit, and their timeouts begin when it is their turn. There is no iteration.
 *
 *     typedef struct MY_MSG { B_QUEMSG_S link; int job; } MY_MSG;
 *     rc = b_queueWrite(&queue, &mine->link);
 *     rc = b_queueRead(&queue, &link, OSL_WAIT_FOREVER);  */
#ifndef QUEUE_H
#define QUEUE_H

#include "osltypes.h"

OAK_C_BEGIN

/* The head of a message record. */
typedef struct B_QUEMSG_S {
    struct B_QUEMSG_S *next; /* the queue's; the message that was written after this one */
} B_QUEMSG_S;
typedef B_QUEMSG_S *B_QUEMSG;

typedef enum B_QUEUE_STATUS OAK_INT32_ENUM { B_QUEUE_OPEN = 0, B_QUEUE_CLOSED = 1 } B_QUEUE_STATUS;

/* The caller's record; its fields are the queue's own. */
typedef struct B_QUEUE {
    B_QUEMSG head;         /* read next */
    B_QUEMSG tail;         /* written last */
    OSL_SEM entrySem;      /* event: wakes the reader that waits */
    OSL_SEM mtSem;         /* mutex: one reader at a time looks or waits */
    OSL_SEM exclSem;       /* mutex: guards the list; taken inside mtSem */
    int32_t count;         /* messages held; atomic */
    B_QUEUE_STATUS status; /* atomic */
} B_QUEUE;

/* Makes an open, empty queue of any record. eINVNULLARG; eOSL_FAILURE when a
 * lock cannot be made, nothing being left behind. */
OAK_API OAK_RETCODE b_queueInit(B_QUEUE *queue);
/* Deletes the locks. No thread may be in a call; messages still held are let go. */
OAK_API void b_queueTerm(B_QUEUE *queue);
/* Appends the message; sOKAY, also on a closed queue. eINVNULLARG. */
OAK_API OAK_RETCODE b_queueWrite(B_QUEUE *queue, B_QUEMSG message);
/* Takes the oldest message, waiting up to `timeout` milliseconds for one
 * (OSL_WAIT_FOREVER: without limit; 0: not at all). sBASE_QUEUE_EMPTY when there
 * is none and the timeout is 0; sTIMEOUT; sBASE_QUEUE_CLOSED when the queue is
 * closed and empty; eOSL_DEADLOCK as the platform finds one; eINVNULLARG. The
 * output is set with sOKAY alone. */
OAK_API OAK_RETCODE b_queueRead(B_QUEUE *queue, B_QUEMSG *pMessage, uint64_t timeout);
/* Closes the queue and wakes the readers, now and for good. */
OAK_API void b_queueClose(B_QUEUE *queue);
/* Messages held at this moment. */
OAK_API int32_t b_queueCount(const B_QUEUE *queue);

OAK_C_END

#endif
