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

/// A main thread whose tasks and time a test controls. The test's own thread is the main thread.
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

    /// Runs all posted tasks, and those that they post.
    void runPosted() {
        while (const auto task = next())
            task();
    }

    /// Advances time: each timer runs when it is due, followed by the tasks it posts.
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
