#include "soak/memory_trend.h"

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <span>

namespace orvane::soak {

namespace {

constexpr std::size_t fewestReadings = 16;
/// What the allocator may keep.
constexpr std::size_t noise = std::size_t{1} << 20U;

} // namespace

std::size_t residentMemory() {
    ::malloc_trim(0);
    std::ifstream statm("/proc/self/statm");
    std::size_t all = 0;
    std::size_t resident = 0;
    statm >> all >> resident;
    return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

std::optional<std::size_t> MemoryTrend::growth() const {
    if (readings.size() < fewestReadings) return std::nullopt;
    const std::size_t quarter = readings.size() / 4;
    const std::span all(readings);
    const std::size_t before = std::ranges::max(all.subspan(quarter, quarter));
    const std::size_t after = std::ranges::max(all.last(quarter));
    return after > before + noise ? std::optional(after - before) : std::nullopt;
}

} // namespace orvane::soak
