// Internal to the platform layer: what its modules share and nobody else sees.
//
// Contents: the hooks by which a test build makes a request fail and counts
// what is live (nothing at all in other builds); the lock that needs no
// creation; the switch to the C locale; text formatting into a tag.
#ifndef OSL_INTERNAL_H
#define OSL_INTERNAL_H

#include <cstdarg>
#include <cstddef>
#include <cstdint>

#include <locale.h>
#include <pthread.h>

#include "osl_fault.h"
#include "osltypes.h"

namespace osl {

// ---- Fault injection --------------------------------------------------------

enum class Resource { memory = 0, file = 1, sync = 2, thread = 3 };
enum class Live { tags = 0, blocks = 1, files = 2, syncs = 3, threads = 4 };

#ifdef OSL_FAULT_INJECTION
static_assert(static_cast<int>(Resource::memory) == OSL_FAULT_MEMORY);
static_assert(static_cast<int>(Resource::file) == OSL_FAULT_FILE);
static_assert(static_cast<int>(Resource::sync) == OSL_FAULT_SYNC);
static_assert(static_cast<int>(Resource::thread) == OSL_FAULT_THREAD);
static_assert(static_cast<int>(Live::tags) == OSL_LIVE_TAGS);
static_assert(static_cast<int>(Live::blocks) == OSL_LIVE_BLOCKS);
static_assert(static_cast<int>(Live::files) == OSL_LIVE_FILES);
static_assert(static_cast<int>(Live::syncs) == OSL_LIVE_SYNCS);
static_assert(static_cast<int>(Live::threads) == OSL_LIVE_THREADS);

/// Counts a request for the resource; true when a test wants it to fail.
bool refuses(Resource resource);
/// Adds to the count of live objects; `change` may be negative.
void count_live(Live kind, int64_t change);
#else
constexpr bool refuses(Resource) {
    return false;
}
constexpr void count_live(Live, int64_t) {}
#endif

// ---- Locks without creation -------------------------------------------------

/// Holds a statically initialised lock for the length of a scope.
class Guard {
  public:
    explicit Guard(pthread_mutex_t *mutex) : mutex_(mutex) { pthread_mutex_lock(mutex_); }
    ~Guard() { pthread_mutex_unlock(mutex_); }
    Guard(const Guard &) = delete;
    Guard &operator=(const Guard &) = delete;

  private:
    pthread_mutex_t *mutex_;
};

// ---- The C locale -----------------------------------------------------------

/// The C locale; it is built into the C library, so this never fails and
/// there is nothing to free.
locale_t c_locale();

/// Puts the calling thread into the C locale for the length of a scope, so that
/// numbers are printed with a point whatever locale the process is in. Two writes
/// to thread-local storage; no lock.
class InCLocale {
  public:
    InCLocale() : old_(uselocale(c_locale())) {}
    ~InCLocale() { uselocale(old_); }
    InCLocale(const InCLocale &) = delete;
    InCLocale &operator=(const InCLocale &) = delete;

  private:
    locale_t old_;
};

// ---- Random bits ------------------------------------------------------------

/// Fills at most 256 bytes from the system's random source; false if it cannot be read.
bool fill_random(void *bytes, size_t size);

// ---- Text -------------------------------------------------------------------

/// vsnprintf in the C locale; -1 for a format that cannot be printed.
int format_text(char *buffer, size_t size, const char *format, va_list args) OSL_PRINTF_LIKE(3, 0);

/// Appends `size` bytes of UTF-8 to the buffer as they stand, whole characters
/// alone; a byte that belongs to no character counts as one.
void append_utf8(OAK_OUTPUT_BUFF *out, const char *text, size_t size);

} // namespace osl

#endif
