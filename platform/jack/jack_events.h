#pragma once

#include "dsp/realtime.h"

#include <semaphore.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <ctime>

namespace orvane::platform::jack {

/// Events of the server, reported by libjack's threads; each is one bit.
enum class JackEvent : std::uint32_t {
    bufferSizeChanged = 1,
    /// Ports have been removed, or must be checked.
    portsRemoved = 2,
    serverGone = 4,
    /// Sent by the owner of the waiting thread: no further events.
    finished = 8,
    /// Ports have been added, or must be listed.
    portsAdded = 16,
    /// MIDI messages have arrived or have been sent.
    messages = 32,
    sampleRateChanged = 64,
};

/// Passes events from libjack's threads, on which libjack must not be called, to a single waiting thread.
/// Repetitions of a pending event are merged.
class JackEvents final {
  public:
    JackEvents() { sem_init(&posted, 0, 0); }
    ~JackEvents() { sem_destroy(&posted); }
    JackEvents(const JackEvents&) = delete;
    JackEvents& operator=(const JackEvents&) = delete;

    /// Any thread, real-time safe: may wake the waiting thread, but never blocks.
    ORVANE_REALTIME void post(JackEvent event) noexcept {
        if (pending.fetch_or(static_cast<std::uint32_t>(event)) == 0) sem_post(&posted);
    }

    /// Waits for events and takes all.
    std::uint32_t take() noexcept {
        while (sem_wait(&posted) != 0) {
        }
        return pending.exchange(0);
    }

    /// As `take`, but returns none if none arrive in time.
    std::uint32_t takeWithin(std::chrono::nanoseconds duration) noexcept {
        const auto seconds = std::chrono::floor<std::chrono::seconds>(duration);
        timespec deadline{};
        clock_gettime(CLOCK_MONOTONIC, &deadline);
        const long nanoseconds = deadline.tv_nsec + static_cast<long>((duration - seconds).count());
        deadline.tv_sec += seconds.count() + nanoseconds / second;
        deadline.tv_nsec = nanoseconds % second;
        while (sem_clockwait(&posted, CLOCK_MONOTONIC, &deadline) != 0)
            if (errno == ETIMEDOUT) return 0;
        return pending.exchange(0);
    }

  private:
    static constexpr long second = 1'000'000'000;

    std::atomic<std::uint32_t> pending = 0;
    /// Posted with the first pending event.
    sem_t posted{};
};

/// Whether `event` is among the `taken`.
constexpr bool contains(std::uint32_t taken, JackEvent event) noexcept {
    return (taken & static_cast<std::uint32_t>(event)) != 0;
}

} // namespace orvane::platform::jack
