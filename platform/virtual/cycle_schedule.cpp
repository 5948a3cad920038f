#include "platform/virtual/cycle_schedule.h"

namespace orvane::platform::virtual_devices {

std::chrono::nanoseconds CycleSchedule::due() const noexcept {
    return start + durationOf(framesDone);
}

bool CycleSchedule::isLate(std::size_t frameCount, std::chrono::nanoseconds now) const noexcept {
    return now - due() > durationOf(frameCount);
}

void CycleSchedule::restart(std::chrono::nanoseconds now) noexcept {
    start = now;
    framesDone = 0;
}

std::chrono::nanoseconds CycleSchedule::durationOf(std::uint64_t frameCount) const noexcept {
    return std::chrono::round<std::chrono::nanoseconds>(
        std::chrono::duration<double>(static_cast<double>(frameCount) / rate)
    );
}

} // namespace orvane::platform::virtual_devices
