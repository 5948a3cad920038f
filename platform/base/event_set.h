#pragma once

#include "dsp/realtime.h"

#include <semaphore.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <ctime>

namespace orvane::platform {

/// Passes events, whose values are bits, from any threads to a single waiting thread. Repetitions of a
/// pending event are merged.
template <class Event>
class EventSet {
  public:
    EventSet() { sem_init(&posted, 0, 0); }
    ~EventSet() { sem_destroy(&posted); }
    EventSet(const EventSet&) = delete;
    EventSet& operator=(const EventSet&) = delete;

    /// Any thread, real-time safe: may wake the waiting thread, but never blocks.
    ORVANE_REALTIME void post(Event event) noexcept {
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
template <class Event>
constexpr bool contains(std::uint32_t taken, Event event) noexcept {
    return (taken & static_cast<std::uint32_t>(event)) != 0;
}

} // namespace orvane::platform
