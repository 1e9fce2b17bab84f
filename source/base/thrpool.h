/* B_THRPOOL: worker threads that run jobs from a queue.
 *
 * Calls: start, add a job, read a job's result, stop. Choose it for many small
 * jobs without order among them.
 *
 * Law: the caller owns the pool record, the array of threads and the job
 * records. Jobs start in the order in which they were added; adding allocates
 * nothing. b_thrpoolTerm lets every job that was added run before it returns,
 * unless no thread could be started, in which case none runs.
 *
 * The pool gives no notice of a job's end. The result is stored after the job's
 * function returned, and that is the last time that the pool touches the record:
 * a caller who cannot wait for b_thrpoolTerm puts a value into `rc` that the
 * function never returns, and looks at b_thrpoolJobResult until it changes. */
#ifndef THRPOOL_H
#define THRPOOL_H

#include "queue.h"

OAK_C_BEGIN

struct B_THRPOOL;
struct B_THRPOOL_JOB_S;

/* A job's work; its status becomes the job's result. */
typedef OAK_RETCODE (*B_THRPOOL_FCN)(struct B_THRPOOL_JOB_S *job);

/* The head of a job record. */
typedef struct B_THRPOOL_JOB_S {
    B_QUEMSG_S queMsg; /* first: the queue's link */
    B_THRPOOL_FCN fcn; /* what runs */
    OAK_RETCODE rc;    /* what it returned */
} B_THRPOOL_JOB_S;
typedef B_THRPOOL_JOB_S *B_THRPOOL_JOB;

/* One element of the caller's thread array. */
typedef struct B_THRPOOL_THREAD_S {
    struct B_THRPOOL *thrPool;
    osl_thread_t thread;
} B_THRPOOL_THREAD_S;
typedef B_THRPOOL_THREAD_S *B_THRPOOL_THREAD;

/* The caller's record; its fields are the pool's own, to be read alone. */
typedef struct B_THRPOOL {
    uint32_t numThreads; /* threads that started */
    uint32_t maxThreads; /* threads that were asked for */
    B_QUEUE queue;
    OSL_MEMTAG tag;           /* null: the pool allocates nothing */
    B_THRPOOL_THREAD threads; /* the started ones come first */
} B_THRPOOL;

/* Starts `maxThreads` workers, whose records are those of `threads`. A thread
 * that does not start is skipped: `numThreads` stays lower and the status is
 * sOKAY. eINVNULLARG; eOSL_FAILURE when the queue cannot be made. */
OAK_API OAK_RETCODE b_thrpoolInit(B_THRPOOL *pool, uint32_t maxThreads, B_THRPOOL_THREAD threads);
/* Lets the workers finish what was added, joins them and takes the queue down. */
OAK_API void b_thrpoolTerm(B_THRPOOL *pool);
/* Hands the job to a worker, which calls `fcn(job)`. eINVNULLARG. */
OAK_API OAK_RETCODE b_thrpoolAddJob(B_THRPOOL *pool, B_THRPOOL_FCN fcn, B_THRPOOL_JOB job);
/* The status that the job's function returned; before it has, what the record
 * held. Safe while the job runs. eINVNULLARG. */
OAK_API OAK_RETCODE b_thrpoolJobResult(const B_THRPOOL_JOB_S *job, OAK_RETCODE *pResult);

OAK_C_END

#endif
