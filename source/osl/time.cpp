// The clock: Coordinated Universal Time, broken down or counted in nanoseconds
// from 1970-01-01T00:00:00Z.
#include "osl_internal.h"

namespace {

constexpr uint64_t kNanosPerSecond = 1000000000;
constexpr long kNanosPerTenThousandth = 100000;

timespec now() {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    return time;
}

} // namespace

void osl_timeUTC(struct tm *utc, uint16_t *pTenThousandths) {
    const timespec time = now();
    if (utc != nullptr) {
        gmtime_r(&time.tv_sec, utc);
    }
    if (pTenThousandths != nullptr) {
        *pTenThousandths = static_cast<uint16_t>(time.tv_nsec / kNanosPerTenThousandth);
    }
}

uint64_t osl_timeNanoSecs(void) {
    const timespec time = now();
    return static_cast<uint64_t>(time.tv_sec) * kNanosPerSecond +
           static_cast<uint64_t>(time.tv_nsec);
}
