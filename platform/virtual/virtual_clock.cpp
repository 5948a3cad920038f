#include "platform/virtual/virtual_clock.h"

#include "platform/base/flush_denormals.h"
#include "platform/virtual/stepped_stream.h"

#include <algorithm>
#include <mutex>
#include <optional>

namespace orvane::platform::virtual_devices {

namespace {

using std::chrono::nanoseconds;

bool stepDevice(VirtualDeviceState& device) noexcept {
    const std::scoped_lock lock(device.stepping);
    return device.steppedStream != nullptr && device.steppedStream->step();
}

std::optional<nanoseconds> dueTime(VirtualDeviceState& device, nanoseconds now) noexcept {
    const std::scoped_lock lock(device.stepping);
    return device.steppedStream != nullptr ? device.steppedStream->due(now) : std::nullopt;
}

} // namespace

std::size_t VirtualClock::step(std::string_view uid, std::size_t cycleCount) noexcept {
    const FlushDenormals flush;
    const auto device = std::ranges::find_if(devices, [uid](const auto& candidate) {
        return candidate->device.description.uid == uid;
    });
    std::size_t done = 0;
    while (device != devices.end() && done < cycleCount && stepDevice(**device))
        ++done;
    return done;
}

void VirtualClock::advance(nanoseconds duration) noexcept {
    const FlushDenormals flush;
    const nanoseconds end = now + duration;
    while (true) {
        VirtualDeviceState* next = nullptr;
        nanoseconds earliest = end;
        for (const auto& device : devices) {
            const auto due = dueTime(*device, now);
            if (!due || *due >= earliest) continue;
            next = device.get();
            earliest = *due;
        }
        if (next == nullptr) break;
        now = std::max(now, earliest);
        stepDevice(*next);
    }
    now = end;
}

} // namespace orvane::platform::virtual_devices
