// B_THRPOOL (thrpool.h). Rests on the queue and on the platform's threads; the
// workers are the only threads that the library starts.
#include "thrpool.h"

#include <cstddef>

static_assert(offsetof(B_THRPOOL_JOB_S, queMsg) == 0, "a queued link is the job itself");

namespace {

constexpr const char kThreadName[] = "thread pool";

/// Runs a job. Storing its result is the last that happens to the record, which the
/// caller may free as soon as it sees that.
void run(B_THRPOOL_JOB job) {
    const OAK_RETCODE rc = job->fcn(job);
    __atomic_store_n(&job->rc, rc, __ATOMIC_RELEASE);
}

/// A worker: runs jobs until the queue is closed and empty. Other statuses of the
/// queue stop nothing.
OAK_RETCODE thrPoolFunction(void *arg) {
    B_QUEUE *queue = &static_cast<B_THRPOOL_THREAD>(arg)->thrPool->queue;
    for (;;) {
        B_QUEMSG message = nullptr;
        const OAK_RETCODE rc = b_queueRead(queue, &message, OSL_WAIT_FOREVER);
        if (rc == sBASE_QUEUE_CLOSED) {
            return sOKAY;
        }
        if (rc == sOKAY) {
            run(reinterpret_cast<B_THRPOOL_JOB>(message));
        }
    }
}

/// Starts one worker in the record behind those already started.
OAK_RETCODE start_thread(B_THRPOOL *pool) {
    B_THRPOOL_THREAD record = &pool->threads[pool->numThreads];
    *record = {};
    record->thrPool = pool;
    return osl_threadBeginEx(thrPoolFunction, 0, record, &record->thread, 0, kThreadName);
}

} // namespace

OAK_RETCODE b_thrpoolInit(B_THRPOOL *pool, uint32_t maxThreads, B_THRPOOL_THREAD threads) {
    if (pool == nullptr || (threads == nullptr && maxThreads > 0)) {
        return eINVNULLARG;
    }
    *pool = {};
    pool->maxThreads = maxThreads;
    pool->threads = threads;
    const OAK_RETCODE rc = b_queueInit(&pool->queue);
    if (rc != sOKAY) {
        return rc;
    }
    for (uint32_t i = 0; i < maxThreads; ++i) {
        if (start_thread(pool) == sOKAY) {
            ++pool->numThreads;
        }
    }
    return sOKAY;
}

void b_thrpoolTerm(B_THRPOOL *pool) {
    if (pool == nullptr) {
        return;
    }
    b_queueClose(&pool->queue);
    for (uint32_t i = 0; i < pool->numThreads; ++i) {
        osl_threadJoin(&pool->threads[i].thread);
    }
    b_queueTerm(&pool->queue);
}

OAK_RETCODE b_thrpoolAddJob(B_THRPOOL *pool, B_THRPOOL_FCN fcn, B_THRPOOL_JOB job) {
    if (pool == nullptr || fcn == nullptr || job == nullptr) {
        return eINVNULLARG;
    }
    job->fcn = fcn;
    return b_queueWrite(&pool->queue, &job->queMsg);
}

OAK_RETCODE b_thrpoolJobResult(const B_THRPOOL_JOB_S *job, OAK_RETCODE *pResult) {
    if (job == nullptr || pResult == nullptr) {
        return eINVNULLARG;
    }
    *pResult = __atomic_load_n(&job->rc, __ATOMIC_ACQUIRE);
    return sOKAY;
}
