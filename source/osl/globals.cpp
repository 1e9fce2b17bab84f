// The layer's start and stop, and the process-wide objects between the two.
//
// An object comes into being when its name is first asked for, and is the same
// block for everybody from then on. Finding one takes no lock: objects are only
// ever put at the front of a list, complete. Making one is done under the lock, so
// that of concurrent first calls one runs the init function and the others wait.
// The lock may be taken again by the same thread, since an init function may ask
// for an object of another name.
//
// The layer needs no start: osl_init only counts users. The last osl_term, or the
// end of the process, runs the term functions, newest object first, and frees the
// blocks; whoever asks for a name after that gets a new object. No other thread may
// use the objects during the last osl_term.
#include "osl_internal.h"

#include <atomic>
#include <cstring>
#include <new>

namespace {

struct alignas(16) Global {
    Global *next;
    OSL_GLOBAL_TERM_FCN term;
    size_t size;
    char *name; // behind the data
};

constinit std::atomic<Global *> globals{nullptr};
pthread_mutex_t globals_lock = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;
uint64_t users = 0; // under the lock

void *data_of(Global *global) {
    return global + 1;
}

Global *find(const char *name) {
    Global *global = globals.load(std::memory_order_acquire);
    while (global != nullptr && std::strcmp(global->name, name) != 0) {
        global = global->next;
    }
    return global;
}

OAK_RETCODE allocate(const char *name, size_t size, OSL_GLOBAL_TERM_FCN term, Global **out) {
    const size_t name_size = std::strlen(name) + 1;
    if (size > SIZE_MAX - sizeof(Global) - name_size) {
        return eNOMEMORY;
    }
    void *memory = nullptr;
    const OAK_RETCODE status = osl_getMem_rc(sizeof(Global) + size + name_size, OSL_TAG_PROCESS,
                                             OSL_MEM_ZERO, nullptr, &memory, __FILE__, __LINE__);
    if (status != sOKAY) {
        return status;
    }
    char *name_copy = static_cast<char *>(memory) + sizeof(Global) + size;
    std::memcpy(name_copy, name, name_size);
    *out = new (memory) Global{nullptr, term, size, name_copy};
    return sOKAY;
}

/// Makes the object and publishes it; the lock is held.
OAK_RETCODE make(const char *name, size_t size, OSL_GLOBAL_INIT_FCN init, OSL_GLOBAL_TERM_FCN term,
                 Global **out) {
    Global *global = nullptr;
    OAK_RETCODE status = allocate(name, size, term, &global);
    if (status != sOKAY) {
        return status;
    }
    status = init != nullptr ? init(data_of(global)) : sOKAY;
    if (status != sOKAY) {
        OSL_FREE(global, OSL_TAG_PROCESS);
        return status;
    }
    global->next = globals.load(std::memory_order_relaxed);
    globals.store(global, std::memory_order_release);
    *out = global;
    return sOKAY;
}

OAK_RETCODE find_or_make(const char *name, size_t size, OSL_GLOBAL_INIT_FCN init,
                         OSL_GLOBAL_TERM_FCN term, Global **out) {
    const osl::Guard guard(&globals_lock);
    *out = find(name);
    return *out != nullptr ? sOKAY : make(name, size, init, term, out);
}

/// Ends all objects; a term function that makes new ones ends those too.
void end_globals() {
    while (Global *global = globals.load(std::memory_order_acquire)) {
        globals.store(global->next, std::memory_order_release);
        if (global->term != nullptr) {
            global->term(data_of(global));
        }
        OSL_FREE(global, OSL_TAG_PROCESS);
    }
}

__attribute__((destructor)) void at_process_end() {
    end_globals();
}

} // namespace

OAK_RETCODE osl_init(void) {
    const osl::Guard guard(&globals_lock);
    ++users;
    return sOKAY;
}

void osl_term(void) {
    const osl::Guard guard(&globals_lock);
    if (users > 0 && --users == 0) {
        end_globals();
    }
}

OAK_RETCODE osl_globalGet(const char *name, size_t size, OSL_GLOBAL_INIT_FCN init,
                          OSL_GLOBAL_TERM_FCN term, void **ppData) {
    if (name == nullptr || ppData == nullptr) {
        return eINVNULLARG;
    }
    Global *global = find(name);
    if (global == nullptr) {
        const OAK_RETCODE status = find_or_make(name, size, init, term, &global);
        if (status != sOKAY) {
            return status;
        }
    }
    if (size > global->size) {
        return eINVARG;
    }
    *ppData = data_of(global);
    return sOKAY;
}
