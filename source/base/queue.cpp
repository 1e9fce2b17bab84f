// B_QUEUE (queue.h). Rests on the platform's locks and clock; the thread pool
// feeds on one.
//
// Three locks work together: exclSem guards the list, mtSem lets one reader at a
// time look or wait, entrySem (an event) wakes it. mtSem is always taken before
// exclSem, and nothing else in the library holds two locks at once. A reader
// behind a waiting one waits at mtSem, without limit of its own.
//
// No signal is missed. A write happens under exclSem, so it comes either before
// the reader's look at the list or after the event is armed. A close takes no
// lock: it sets the status first and signals then, so a reader that arms the
// event between the two finds the status when it looks again.
#include "queue.h"

#include <initializer_list>

#include "container_internal.h"

namespace {

constexpr uint64_t kNanosPerMilli = 1000000;

using oak::ContainerLock;

bool is_closed(const B_QUEUE *queue) {
    return __atomic_load_n(&queue->status, __ATOMIC_ACQUIRE) == B_QUEUE_CLOSED;
}

void add_to_count(B_QUEUE *queue, int32_t change) {
    __atomic_add_fetch(&queue->count, change, __ATOMIC_ACQ_REL);
}

/// How much of a timeout is left. An unlimited one and a clock that stands still
/// or goes back leave it whole.
class Deadline {
  public:
    explicit Deadline(uint64_t timeout)
        : timeout_(timeout), start_(limited() ? osl_timeNanoSecs() : 0) {}
    uint64_t left() const {
        if (!limited()) {
            return timeout_;
        }
        const uint64_t now = osl_timeNanoSecs();
        const uint64_t passed = now > start_ ? (now - start_) / kNanosPerMilli : 0;
        return passed < timeout_ ? timeout_ - passed : 0;
    }

  private:
    bool limited() const { return timeout_ != OSL_WAIT_FOREVER && timeout_ != 0; }
    uint64_t timeout_;
    uint64_t start_;
};

/// Unlinks the oldest message. exclSem is held and there is one.
B_QUEMSG unlink_head(B_QUEUE *queue) {
    B_QUEMSG message = queue->head;
    queue->head = message->next;
    if (queue->head == nullptr) {
        queue->tail = nullptr;
    }
    add_to_count(queue, -1);
    return message;
}

/// Looks for a message; without one, sBASE_QUEUE_EMPTY says that the event is
/// armed for the caller to wait.
OAK_RETCODE look(B_QUEUE *queue, B_QUEMSG *pMessage) {
    const ContainerLock lock(queue->exclSem);
    if (queue->head != nullptr) {
        *pMessage = unlink_head(queue);
        return sOKAY;
    }
    osl_syncStart(queue->entrySem);
    return is_closed(queue) ? sBASE_QUEUE_CLOSED : sBASE_QUEUE_EMPTY;
}

void delete_locks(const B_QUEUE *queue) {
    for (OSL_SEM sem : {queue->entrySem, queue->mtSem, queue->exclSem}) {
        oak::delete_mutex(sem);
    }
}

} // namespace

OAK_RETCODE b_queueInit(B_QUEUE *queue) {
    if (queue == nullptr) {
        return eINVNULLARG;
    }
    B_QUEUE made = {};
    made.entrySem = osl_syncCreate_check(OSL_SYNC_EVENT, __FILE__, __LINE__);
    made.mtSem = osl_syncCreate_check(OSL_SYNC_MUTEX, __FILE__, __LINE__);
    made.exclSem = osl_syncCreate_check(OSL_SYNC_MUTEX, __FILE__, __LINE__);
    if (made.entrySem == OSL_SEM_NONE || made.mtSem == OSL_SEM_NONE ||
        made.exclSem == OSL_SEM_NONE) {
        delete_locks(&made);
        return eOSL_FAILURE;
    }
    *queue = made;
    return sOKAY;
}

void b_queueTerm(B_QUEUE *queue) {
    if (queue != nullptr) {
        delete_locks(queue);
    }
}

OAK_RETCODE b_queueWrite(B_QUEUE *queue, B_QUEMSG message) {
    if (queue == nullptr || message == nullptr) {
        return eINVNULLARG;
    }
    const ContainerLock lock(queue->exclSem);
    message->next = nullptr;
    (queue->tail != nullptr ? queue->tail->next : queue->head) = message;
    queue->tail = message;
    add_to_count(queue, 1);
    osl_syncResume(queue->entrySem);
    return sOKAY;
}

OAK_RETCODE b_queueRead(B_QUEUE *queue, B_QUEMSG *pMessage, uint64_t timeout) {
    if (queue == nullptr || pMessage == nullptr) {
        return eINVNULLARG;
    }
    const ContainerLock reader(queue->mtSem);
    const Deadline deadline(timeout);
    OAK_RETCODE rc = look(queue, pMessage);
    // A wake-up without a message looks and waits again, for what time is left.
    while (rc == sBASE_QUEUE_EMPTY && timeout != 0) {
        rc = osl_syncWait(queue->entrySem, deadline.left());
        if (rc == sOKAY) {
            rc = look(queue, pMessage);
        }
    }
    return rc;
}

void b_queueClose(B_QUEUE *queue) {
    if (queue != nullptr) {
        __atomic_store_n(&queue->status, B_QUEUE_CLOSED, __ATOMIC_RELEASE);
        osl_syncResume(queue->entrySem);
    }
}

int32_t b_queueCount(const B_QUEUE *queue) {
    return queue != nullptr ? __atomic_load_n(&queue->count, __ATOMIC_ACQUIRE) : 0;
}
