#pragma once

#include "platform/base/main_thread.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace orvane::platform {

/// The repeating timers of a loop that passes in the time. Main thread.
class TimerList final {
  public:
    using Time = std::chrono::steady_clock::time_point;

    /// Adds a timer that is due every `interval`, which must be positive, from `now` on.
    [[nodiscard]] std::unique_ptr<MainThreadTimer>
    add(Time now, std::chrono::nanoseconds interval, std::function<void()> task);

    /// When the next timer is due; absent if there is none.
    [[nodiscard]] std::optional<Time> nextDue() const;

    /// Runs the timer that is overdue the longest (of several the oldest) and sets it to its first tick after
    /// `now`. Returns false if none is due.
    bool runNextDue(Time now);

  private:
    struct Entry {
        Time due;
        std::chrono::nanoseconds interval;
        std::function<void()> task;
    };
    class Handle;

    [[nodiscard]] std::shared_ptr<Entry> earliest() const;

    /// A timer's handle owns its entry.
    std::vector<std::weak_ptr<Entry>> entries;
};

} // namespace orvane::platform
