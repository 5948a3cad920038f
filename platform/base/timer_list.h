#pragma once

#include "platform/base/main_thread.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace orvane::platform {

/// The repeating timers of a loop that keeps time itself: it says what is due at the time it is told. Main
/// thread.
class TimerList final {
  public:
    using Time = std::chrono::steady_clock::time_point;

    /// A timer that is due every `interval`, more than 0, from `now` on.
    [[nodiscard]] std::unique_ptr<MainThreadTimer>
    add(Time now, std::chrono::nanoseconds interval, std::function<void()> task);

    /// When the next timer is due; nothing where there is none.
    [[nodiscard]] std::optional<Time> nextDue() const;

    /// Runs the timer that has been due the longest, of several the oldest, and sets it to its first tick
    /// after `now`; false where none is due.
    bool runNextDue(Time now);

  private:
    struct Entry {
        Time due;
        std::chrono::nanoseconds interval;
        std::function<void()> task;
    };
    class Handle;

    [[nodiscard]] std::shared_ptr<Entry> earliest() const;

    /// Whoever holds a timer owns its entry.
    std::vector<std::weak_ptr<Entry>> entries;
};

} // namespace orvane::platform
