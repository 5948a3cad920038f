#pragma once

#include "platform/base/main_thread.h"
#include "platform/base/timer_list.h"

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace orvane::test {

/// A main thread whose tasks run when a test says so and whose time passes by hand. The test's own thread is
/// the main thread.
class ManualMainThread final : public platform::MainThread {
  public:
    void post(std::function<void()> task) override {
        const std::scoped_lock guard(mutex);
        tasks.push_back(std::move(task));
    }

    [[nodiscard]] std::unique_ptr<platform::MainThreadTimer>
    repeat(std::chrono::nanoseconds interval, std::function<void()> task) override {
        return timers.add(now, interval, std::move(task));
    }

    /// Runs what is posted, and what that posts, until nothing is left.
    void runPosted() {
        while (const auto task = next())
            task();
    }

    /// Lets time pass: every timer that falls due runs at its moment, what it posts right after it.
    void advance(std::chrono::nanoseconds duration) {
        const auto end = now + duration;
        for (auto due = timers.nextDue(); due && *due <= end; due = timers.nextDue()) {
            now = *due;
            timers.runNextDue(now);
            runPosted();
        }
        now = end;
    }

  private:
    std::function<void()> next() {
        const std::scoped_lock guard(mutex);
        if (tasks.empty()) return {};
        auto task = std::move(tasks.front());
        tasks.pop_front();
        return task;
    }

    std::mutex mutex;
    std::deque<std::function<void()>> tasks;
    platform::TimerList timers;
    platform::TimerList::Time now;
};

} // namespace orvane::test
