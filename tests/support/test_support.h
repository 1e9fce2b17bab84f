// What every test may use: a tag that must end empty, bytes as hex text, the
// sweep that fails each resource request in turn, and seeded random numbers.
#ifndef TEST_SUPPORT_H
#define TEST_SUPPORT_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "oaktypes.h"
#include "osl_fault.h"

namespace oaktest {

/// The seed of the run; everything random starts from it.
uint64_t seed();

/// SplitMix64, so that a test's random numbers are the same on every machine.
class Random {
  public:
    explicit Random(uint64_t salt = 0) : state_(seed() + salt) {}
    uint64_t next();
    /// 0 to bound - 1.
    uint64_t below(uint64_t bound) { return next() % bound; }

  private:
    uint64_t state_;
};

/// Lower-case hex of the bytes, without separators.
std::string hex(const void *data, size_t size);
/// The bytes of a hex text; blanks, newlines and everything from '#' to the end
/// of a line are skipped.
std::vector<uint8_t> unhex(const std::string &text);

/// SHA-256 of the bytes in lower-case hex.
std::string sha256(const void *data, size_t size);

/// A tag for one test. In builds with fault injection its end asserts that
/// nothing is left in it.
class Tag {
  public:
    Tag();
    ~Tag();
    Tag(const Tag &) = delete;
    Tag &operator=(const Tag &) = delete;
    operator OSL_MEMTAG() const { return tag_; }
    OSL_MEMTAG get() const { return tag_; }
    /// Blocks live under the tag; 0 in builds that do not count.
    uint64_t live() const;
    /// Says that the test leaves blocks to the tag on purpose.
    void may_keep_blocks() { may_keep_blocks_ = true; }

  private:
    OSL_MEMTAG tag_;
    bool may_keep_blocks_ = false;
};

/// What is live in the process: tags, blocks, files, locks, threads.
struct Live {
    std::array<uint64_t, 5> counts{};
    static Live now();
    bool operator==(const Live &) const = default;
};
std::ostream &operator<<(std::ostream &out, const Live &live);

enum class Resource { memory, file, sync, thread };

/// Runs `operation` with its first, second, third ... request for the resource
/// failing, once with a single failure and once failing for ever after, until a
/// run meets no failure. `operation` must leave nothing behind whatever its
/// status, and asserts itself that nothing half-done is visible; the sweep
/// asserts that each failing run gives one of `expected` and that what is live
/// in the process is as before. A run that hits a failure and still returns
/// sOKAY is accepted only if `expected` holds sOKAY. Returns the number of
/// runs in which a failure was injected; the test asserts that it is not 0
/// where faults are compiled in. Without fault injection the operation runs
/// once and must give sOKAY.
uint64_t sweep_faults(Resource resource, std::initializer_list<OAK_RETCODE> expected,
                      const std::function<OAK_RETCODE()> &operation);

/// True in builds in which the sweep injects failures.
constexpr bool faults_are_injected() {
#ifdef OSL_FAULT_INJECTION
    return true;
#else
    return false;
#endif
}

} // namespace oaktest

#endif
