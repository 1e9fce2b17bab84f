// Random bits: a generator that any number of threads may draw from at once, and
// that no two processes share, a fork and its parent included.
//
// A generator is a counter under two 64-bit keys. A draw takes the next number of
// the counter, atomically, and mixes it twice, each time with a key; mixing is the
// finalizer of SplitMix64 (Steele, Lea and Flood 2014), a bijection, so that one
// generator never repeats an output within 2 to the 64th draws. The keys come from
// the system's own random source, and the caller's seed is mixed in. So a seed does
// not determine what is drawn: two processes that seed alike by the clock must not
// draw the same UUIDs.
//
// A forked child has the parent's keys and counters. A handler that runs in the
// child therefore draws a new salt, which every draw mixes in as well. The salt
// changes only while a child has a single thread; it is atomic so that reading it
// is defined.
#include "osl_internal.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

#include <sys/random.h>
#include <unistd.h>

struct OSL_RAND_S {
    std::atomic<uint64_t> counter;
    uint64_t keys[2];
};

namespace {

constexpr uint64_t kGolden = 0x9e3779b97f4a7c15;

constinit std::atomic<uint64_t> fork_salt{0};

constexpr uint64_t mix(uint64_t z) {
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
    z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
    return z ^ (z >> 31);
}

/// Bits that differ from process to process and from moment to moment, for a
/// system whose random source cannot be read.
uint64_t makeshift_bits() {
    static constinit std::atomic<uint64_t> calls{0};
    return mix(osl_timeNanoSecs() ^ mix(osl_get_pid() + kGolden * ++calls));
}

uint64_t fresh_bits() {
    uint64_t bits = 0;
    return osl::fill_random(&bits, sizeof bits) ? bits : makeshift_bits();
}

void salt_child() {
    fork_salt.store(fresh_bits(), std::memory_order_relaxed);
}

void watch_forks() {
    pthread_atfork(nullptr, nullptr, salt_child);
}

} // namespace

namespace osl {

bool fill_random(void *bytes, size_t size) {
    ssize_t got = 0;
    do {
        got = getrandom(bytes, size, 0);
    } while (got < 0 && errno == EINTR);
    return got == static_cast<ssize_t>(size);
}

} // namespace osl

uint32_t osl_seed(void) {
    return static_cast<uint32_t>(mix(osl_timeNanoSecs()) >> 32);
}

OSL_RAND osl_randCreate(uint32_t seed) {
    static pthread_once_t watching = PTHREAD_ONCE_INIT;
    pthread_once(&watching, watch_forks);
    void *memory = nullptr;
    if (osl_getMem_rc(sizeof(OSL_RAND_S), OSL_TAG_PROCESS, OSL_MEM_PLAIN, nullptr, &memory,
                      __FILE__, __LINE__) != sOKAY) {
        return nullptr;
    }
    auto *generator = new (memory) OSL_RAND_S{};
    generator->counter = fresh_bits();
    generator->keys[0] = fresh_bits() ^ mix(seed + kGolden);
    generator->keys[1] = fresh_bits();
    return generator;
}

uint64_t osl_randGetUInt64(OSL_RAND generator) {
    const uint64_t number = generator->counter.fetch_add(1, std::memory_order_relaxed);
    const uint64_t salt = fork_salt.load(std::memory_order_relaxed);
    return mix(mix(number * kGolden + generator->keys[0]) ^ salt ^ generator->keys[1]);
}

void osl_randDestroy(OSL_RAND generator) {
    OSL_FREE(generator, OSL_TAG_PROCESS);
}
