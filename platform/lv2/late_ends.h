#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace orvane::platform::lv2 {

/// Counts the plugin instances whose destruction is delayed because their plugin is still working on a
/// scheduled task. Any thread.
class LateEnds final {
  public:
    /// Announces a later call of `run`.
    void expect() {
        const std::scoped_lock lock(mutex);
        ++expected;
    }

    /// Withdraws an `expect`.
    void forget() {
        const std::scoped_lock lock(mutex);
        --expected;
        changed.notify_all();
    }

    /// Runs an announced `end`; does nothing after `close`.
    template <class End>
    void run(const End& end) {
        {
            const std::scoped_lock lock(mutex);
            if (isClosed) return;
        }
        end();
        forget();
    }

    /// Waits for all announced ends, for at most `patience`; later ones do not run.
    void close(std::chrono::milliseconds patience) {
        std::unique_lock lock(mutex);
        changed.wait_for(lock, patience, [this] { return expected == 0; });
        isClosed = true;
    }

  private:
    std::mutex mutex;
    std::condition_variable changed;
    int expected = 0;
    bool isClosed = false;
};

} // namespace orvane::platform::lv2
