#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace orvane::platform::lv2 {

/// Counts the plugin instances that end later than they are let go of, because their plugins are still at
/// work that they had handed on. Any thread.
class LateEnds final {
  public:
    /// Counts an end that will come with `run`.
    void expect() {
        const std::scoped_lock lock(mutex);
        ++expected;
    }

    /// Takes an `expect` back.
    void forget() {
        const std::scoped_lock lock(mutex);
        --expected;
        changed.notify_all();
    }

    /// Runs `end`, which was expected; does nothing after `close`.
    template <class End>
    void run(const End& end) {
        {
            const std::scoped_lock lock(mutex);
            if (isClosed) return;
        }
        end();
        forget();
    }

    /// Waits for the ends that are expected, but no longer than `patience`: the others never come.
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
