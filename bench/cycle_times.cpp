#include "cycle_times.h"

#include <sys/resource.h>

#include <algorithm>
#include <ctime>

namespace orvane::bench {

namespace {

/// The grid drifts later by this factor each block, to follow a device whose cycles do.
constexpr double slack = 1.0005;

double microseconds(clockid_t clock) noexcept {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

} // namespace

CycleTimes::Moment CycleTimes::Moment::now() noexcept {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return {
        microseconds(CLOCK_MONOTONIC), microseconds(CLOCK_THREAD_CPUTIME_ID), usage.ru_nvcsw,
        usage.ru_nivcsw};
}

void CycleTimes::add(const Moment& begun, const Moment& ended, std::size_t frameCount) noexcept {
    const double period = static_cast<double>(frameCount) / rate * 1e6;
    const double lateness = hasBegun ? begun.wall - due : 0.0;
    late.add(std::max(lateness, 0.0));
    // The earliest starts define the device's time grid; after a gap it is set anew.
    if (!hasBegun || lateness < 0.0 || lateness > period) due = begun.wall;
    hasBegun = true;
    const double tookInside = ended.wall - begun.wall;
    const double tookWork = ended.processor - begun.processor;
    inside.add(tookInside);
    worked.add(tookWork);
    const bool isMissed = ended.wall > due + period;
    due += period * slack;
    if (!isMissed && lateness <= period) return;
    if (tookWork > period)
        ++misses.computed;
    else if (ended.voluntarySwitches > begun.voluntarySwitches && tookInside > period)
        ++misses.waited;
    else if (ended.involuntarySwitches > begun.involuntarySwitches || tookInside > period)
        ++misses.preempted;
    else
        ++misses.wokenLate;
}

} // namespace orvane::bench
