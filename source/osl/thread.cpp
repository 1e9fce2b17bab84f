// Threads: begin, join, identities.
//
// The function and its argument travel to the new thread in a record that the
// thread itself releases before it runs them; the status comes back as the
// thread's result. So nothing of the layer's is left when a thread was joined,
// and osl_thread_t holds all there is.
#include "osl_internal.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>

#include <unistd.h>

static_assert(sizeof(pthread_t) == sizeof(uint64_t));

namespace {

constexpr size_t kThreadNameSize = 16; // the system's bound, terminator included

struct Start {
    OSL_THREAD_FCN fcn;
    void *arg;
    char name[kThreadNameSize];
};

/// The body of every thread.
void *run(void *record) {
    const Start start = *static_cast<Start *>(record);
    std::free(record);
    if (start.name[0] != '\0') {
        pthread_setname_np(pthread_self(), start.name);
    }
    const OAK_RETCODE status = start.fcn(start.arg);
    return reinterpret_cast<void *>(static_cast<intptr_t>(status));
}

/// Sets the smallest stack that the system takes and that holds `size` bytes.
bool set_stack_size(pthread_attr_t *attributes, size_t size) {
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const auto least = static_cast<size_t>(PTHREAD_STACK_MIN);
    if (size > static_cast<size_t>(PTRDIFF_MAX)) {
        return false;
    }
    const size_t pages = (std::max(size, least) + page - 1) / page;
    return pthread_attr_setstacksize(attributes, pages * page) == 0;
}

bool start_thread(Start *start, size_t size, pthread_t *id) {
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) {
        return false;
    }
    const bool started = (size == 0 || set_stack_size(&attributes, size)) &&
                         pthread_create(id, &attributes, run, start) == 0;
    pthread_attr_destroy(&attributes);
    return started;
}

} // namespace

OAK_RETCODE osl_threadBeginEx(OSL_THREAD_FCN fcn, size_t stackSize, void *arg, osl_thread_t *thread,
                              uint32_t, const char *name) {
    if (fcn == nullptr || thread == nullptr) {
        return eINVNULLARG;
    }
    *thread = osl_thread_t{0, sOKAY};
    void *memory = osl::refuses(osl::Resource::thread) ? nullptr : std::malloc(sizeof(Start));
    if (memory == nullptr) {
        return eOSL_FAILURE;
    }
    auto *start = new (memory) Start{fcn, arg, {}};
    osl_strncpyZ(start->name, name, sizeof start->name);
    pthread_t id{};
    if (!start_thread(start, stackSize, &id)) {
        std::free(start);
        return eOSL_FAILURE;
    }
    thread->id = id;
    osl::count_live(osl::Live::threads, 1);
    return sOKAY;
}

void osl_threadJoin(osl_thread_t *thread) {
    if (thread == nullptr || thread->id == 0) {
        return;
    }
    void *result = nullptr;
    pthread_join(thread->id, &result);
    thread->rc = static_cast<OAK_RETCODE>(reinterpret_cast<intptr_t>(result));
    thread->id = 0;
    osl::count_live(osl::Live::threads, -1);
}

uint64_t osl_threadId(void) {
    return pthread_self();
}

uint64_t osl_get_pid(void) {
    return static_cast<uint64_t>(getpid());
}
