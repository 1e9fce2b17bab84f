// Locks and events, on the system's threads library.
//
// An event is a flag with a way to wait for it: osl_syncStart lowers it,
// osl_syncResume raises it and wakes every waiter, osl_syncWait returns as soon
// as it is raised. It stays raised until it is armed anew, so a signal that comes
// between arming and waiting is not lost, and neither is one that comes before a
// second waiter looks.
//
// OSL_SEM_NONE stands for the absence of a lock: entering, leaving and the like
// do nothing with it, so that a container without a lock needs no tests.
#include "osl_internal.h"

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <new>

struct OSL_SEM_S {
    uint32_t kind;
    bool raised; // events alone
    pthread_mutex_t mutex;
    pthread_cond_t condition; // events alone
};

namespace {

constexpr uint64_t kMillisPerSecond = 1000;
constexpr uint64_t kNanosPerMilli = 1000000;
constexpr long kNanosPerSecond = 1000000000;
// A wait of more than a century ends after a century.
constexpr uint64_t kLongestWait = uint64_t{100} * 366 * 24 * 3600 * kMillisPerSecond;

/// A condition whose timeouts are not moved by changes of the wall clock.
bool make_condition(pthread_cond_t *condition) {
    pthread_condattr_t attributes;
    if (pthread_condattr_init(&attributes) != 0) {
        return false;
    }
    const bool made = pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC) == 0 &&
                      pthread_cond_init(condition, &attributes) == 0;
    pthread_condattr_destroy(&attributes);
    return made;
}

timespec from_now(uint64_t millis) {
    timespec when{};
    clock_gettime(CLOCK_MONOTONIC, &when);
    when.tv_sec += static_cast<time_t>(millis / kMillisPerSecond);
    when.tv_nsec += static_cast<long>(millis % kMillisPerSecond * kNanosPerMilli);
    if (when.tv_nsec >= kNanosPerSecond) {
        when.tv_nsec -= kNanosPerSecond;
        ++when.tv_sec;
    }
    return when;
}

uint64_t bounded(uint64_t millis) {
    return millis < kLongestWait ? millis : kLongestWait;
}

/// What one turn of waiting came to, as pthread_cond_wait tells it.
int wait_once(OSL_SEM event, const timespec *deadline) {
    return deadline == nullptr ? pthread_cond_wait(&event->condition, &event->mutex)
                               : pthread_cond_timedwait(&event->condition, &event->mutex, deadline);
}

OAK_RETCODE wait_until(OSL_SEM event, const timespec *deadline) {
    const osl::Guard guard(&event->mutex);
    int result = 0;
    while (!event->raised && result == 0) {
        result = wait_once(event, deadline);
    }
    if (event->raised) {
        return sOKAY;
    }
    return result == ETIMEDOUT ? sTIMEOUT : eOSL_DEADLOCK;
}

bool is_event(OSL_SEM event) {
    return event != nullptr && event != OSL_SEM_NONE && event->kind == OSL_SYNC_EVENT;
}

} // namespace

OSL_SEM osl_syncCreate_check(uint32_t kind, const char *, int32_t) {
    if ((kind != OSL_SYNC_MUTEX && kind != OSL_SYNC_EVENT) || osl::refuses(osl::Resource::sync)) {
        return OSL_SEM_NONE;
    }
    void *memory = std::malloc(sizeof(OSL_SEM_S));
    if (memory == nullptr) {
        return OSL_SEM_NONE;
    }
    auto *sem = new (memory) OSL_SEM_S{.kind = kind,
                                       .raised = false,
                                       .mutex = PTHREAD_MUTEX_INITIALIZER,
                                       .condition = PTHREAD_COND_INITIALIZER};
    if (kind == OSL_SYNC_EVENT && !make_condition(&sem->condition)) {
        std::free(sem);
        return OSL_SEM_NONE;
    }
    osl::count_live(osl::Live::syncs, 1);
    return sem;
}

void osl_syncDelete(OSL_SEM sem) {
    if (sem == nullptr || sem == OSL_SEM_NONE) {
        return;
    }
    if (sem->kind == OSL_SYNC_EVENT) {
        pthread_cond_destroy(&sem->condition);
    }
    pthread_mutex_destroy(&sem->mutex);
    std::free(sem);
    osl::count_live(osl::Live::syncs, -1);
}

void osl_syncEnterExcl(OSL_SEM mutex) {
    if (mutex != OSL_SEM_NONE) {
        pthread_mutex_lock(&mutex->mutex);
    }
}

void osl_syncExitExcl(OSL_SEM mutex) {
    if (mutex != OSL_SEM_NONE) {
        pthread_mutex_unlock(&mutex->mutex);
    }
}

void osl_syncStart(OSL_SEM event) {
    if (is_event(event)) {
        const osl::Guard guard(&event->mutex);
        event->raised = false;
    }
}

void osl_syncResume(OSL_SEM event) {
    if (is_event(event)) {
        const osl::Guard guard(&event->mutex);
        event->raised = true;
        pthread_cond_broadcast(&event->condition);
    }
}

OAK_RETCODE osl_syncWait(OSL_SEM event, uint64_t timeoutMillis) {
    if (!is_event(event)) {
        return eOSL_DEADLOCK; // nothing could ever end this wait
    }
    if (timeoutMillis == OSL_WAIT_FOREVER) {
        return wait_until(event, nullptr);
    }
    const timespec deadline = from_now(bounded(timeoutMillis));
    return wait_until(event, &deadline);
}

void osl_sleep(uint64_t millis) {
    const timespec deadline = from_now(bounded(millis));
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr) == EINTR) {
    }
}
