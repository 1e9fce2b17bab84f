// Internal to the containers: the optional mutex that a call holds, and typed
// allocation that reports by status.
//
// Allocation goes through the forms that never jump, also under a tag with a
// jump buffer: a jump out of a call would leave its mutex held.
#ifndef CONTAINER_INTERNAL_H
#define CONTAINER_INTERNAL_H

#include "osltypes.h"

namespace oak {

/// Holds a container's mutex for the length of a call; OSL_SEM_NONE is no mutex
/// and costs one comparison.
class ContainerLock {
  public:
    explicit ContainerLock(OSL_SEM mutex) : mutex_(mutex) {
        if (mutex_ != OSL_SEM_NONE) {
            osl_syncEnterExcl(mutex_);
        }
    }
    ~ContainerLock() {
        if (mutex_ != OSL_SEM_NONE) {
            osl_syncExitExcl(mutex_);
        }
    }
    ContainerLock(const ContainerLock &) = delete;
    ContainerLock &operator=(const ContainerLock &) = delete;

  private:
    OSL_SEM mutex_;
};

/// Makes the mutex of a container that was asked for one; eNOMEMORY if it cannot.
inline OAK_RETCODE create_mutex(bool wanted, const char *file, int32_t line, OSL_SEM *mutex) {
    *mutex = wanted ? osl_syncCreate_check(OSL_SYNC_MUTEX, file, line) : OSL_SEM_NONE;
    return wanted && *mutex == OSL_SEM_NONE ? eNOMEMORY : sOKAY;
}

inline void delete_mutex(OSL_SEM mutex) {
    if (mutex != OSL_SEM_NONE) {
        osl_syncDelete(mutex);
    }
}

/// A block for `count` elements, zeroed.
template <class Element>
OAK_RETCODE get_zeroed(size_t count, OSL_MEMTAG tag, Element **out, const char *file,
                       int32_t line) {
    void *block = nullptr;
    const OAK_RETCODE rc =
        osl_getMem_rc(count * sizeof(Element), tag, OSL_MEM_ZERO, nullptr, &block, file, line);
    if (rc == sOKAY) {
        *out = static_cast<Element *>(block);
    }
    return rc;
}

/// Grows `*array` to `count` elements; on failure it stays as it was. The new
/// elements are zeroed.
template <class Element>
OAK_RETCODE extend_zeroed(size_t old_count, size_t count, OSL_MEMTAG tag, Element **array,
                          const char *file, int32_t line) {
    void *block = nullptr;
    const OAK_RETCODE rc =
        osl_extendMem_rc(*array, count * sizeof(Element), tag, OSL_MEM_ZERO,
                         (count - old_count) * sizeof(Element), nullptr, &block, file, line);
    if (rc == sOKAY) {
        *array = static_cast<Element *>(block);
    }
    return rc;
}

/// What the interface stores and hands back without ever writing to it.
inline void *stored(const void *item) {
    return const_cast<void *>(item);
}

} // namespace oak

#endif
