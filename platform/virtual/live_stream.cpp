#include "platform/virtual/live_stream.h"

#include "platform/base/flush_denormals.h"
#include "platform/base/host_clock.h"
#include "platform/base/realtime_priority.h"
#include "platform/virtual/cycle_schedule.h"

#include <algorithm>
#include <ctime>
#include <system_error>

namespace orvane::platform::virtual_devices {

namespace {

using std::chrono::nanoseconds;

/// Limits how long `stop` waits for an I/O thread whose next cycle is far off.
constexpr nanoseconds longestWait{20'000'000};

nanoseconds now() noexcept {
    return nanoseconds(HostClock::system().absoluteTime());
}

void sleepUntil(nanoseconds moment) noexcept {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(moment);
    const timespec deadline{.tv_sec = seconds.count(), .tv_nsec = (moment - seconds).count()};
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr);
}

} // namespace

LiveStream::LiveStream(
    VirtualDeviceState& openedDevice, bool enableInput, AudioStreamClient& streamClient, SystemLog& systemLog
)
    : clockRate(openedDevice.clockRate()), cycles(openedDevice, enableInput, streamClient, systemLog) {}

LiveStream::~LiveStream() {
    stop();
}

OSStatus LiveStream::start() {
    if (!cycles.isDeviceAlive()) return kAudioHardwareBadDeviceError;
    if (ioThread.joinable()) return noErr;
    if (const OSStatus status = cycles.begin(VirtualPacing::live); status != noErr) return status;
    isStopping = false;
    xruns = 0;
    try {
        ioThread = std::thread([this] { runCycles(); });
    } catch (const std::system_error&) {
        cycles.end();
        return kAudioHardwareUnspecifiedError;
    }
    return noErr;
}

bool LiveStream::stop() {
    if (!ioThread.joinable()) return true;
    isStopping = true;
    const bool hasEnded = cycles.close();
    if (hasEnded)
        ioThread.join();
    else
        ioThread.detach();
    cycles.end();
    if (!hasEnded) cycles.giveDeviceBack();
    return hasEnded;
}

void LiveStream::runCycles() noexcept {
    priority = takeRealtimePriority();
    const FlushDenormals flush;
    CycleSchedule schedule(clockRate, now());
    while (waitUntil(schedule.due())) {
        const std::size_t frameCount = cycles.nextLength();
        if (const nanoseconds begins = now(); schedule.isLate(frameCount, begins)) {
            ++xruns;
            schedule.restart(begins);
        }
        schedule.advance(frameCount);
        if (!cycles.run(frameCount)) return;
    }
    priority = 0;
}

bool LiveStream::waitUntil(nanoseconds deadline) const noexcept {
    while (!isStopping && cycles.isDeviceAlive()) {
        const nanoseconds moment = now();
        if (moment >= deadline) return true;
        sleepUntil(std::min(deadline, moment + longestWait));
    }
    return false;
}

} // namespace orvane::platform::virtual_devices
