// Fault injection and the counts of what is live, for builds of the test suite.
// Every module of the layer asks `refuses` before it asks the system for
// something, so that a test can walk through all failure paths of an operation.
//
// One record for each kind. A request counts down from `nth`; the one that
// reaches zero fails, and with `forever` all that follow. Everything is atomic:
// requests come from any thread.
#include "osl_internal.h"

#ifdef OSL_FAULT_INJECTION

#include <array>
#include <atomic>

namespace osl {
namespace {

struct Fault {
    std::atomic<uint64_t> requests_left{0}; // 0: not armed, or the one failure is over
    std::atomic<bool> forever{false};
    std::atomic<uint64_t> injected{0};
};

constinit std::array<Fault, OSL_FAULT_KINDS> faults;
constinit std::array<std::atomic<int64_t>, OSL_LIVE_KINDS> live_counts;

/// Takes one from the requests left; true for the request that was the last.
bool is_the_one(Fault &fault) {
    uint64_t left = fault.requests_left.load();
    while (left > 0) {
        const bool last = left == 1;
        const uint64_t next = last && fault.forever ? 1 : left - 1;
        if (fault.requests_left.compare_exchange_weak(left, next)) {
            return last;
        }
    }
    return false;
}

} // namespace

bool refuses(Resource resource) {
    Fault &fault = faults[static_cast<size_t>(resource)];
    const bool refused = is_the_one(fault);
    fault.injected += refused ? 1 : 0;
    return refused;
}

void count_live(Live kind, int64_t change) {
    live_counts[static_cast<size_t>(kind)] += change;
}

} // namespace osl

void osl_faultArm(OSL_FAULT_KIND kind, uint64_t nth, OAK_BOOL_T forever) {
    osl::Fault &fault = osl::faults[static_cast<size_t>(kind)];
    fault.injected = 0;
    fault.forever = forever == OAK_TRUE;
    fault.requests_left = nth;
}

uint64_t osl_faultDisarm(OSL_FAULT_KIND kind) {
    osl::Fault &fault = osl::faults[static_cast<size_t>(kind)];
    fault.requests_left = 0;
    return fault.injected;
}

uint64_t osl_faultLive(OSL_LIVE_KIND kind) {
    return static_cast<uint64_t>(osl::live_counts[static_cast<size_t>(kind)].load());
}

#endif
