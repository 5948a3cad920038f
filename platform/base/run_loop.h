#pragma once

#include "platform/base/main_thread.h"
#include "platform/base/timer_list.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace orvane::platform {

/// The main thread of a program without a window. The thread that makes it is the main thread, and the one to
/// run it.
class RunLoop final : public MainThread {
  public:
    void post(std::function<void()> task) override;

    [[nodiscard]] std::unique_ptr<MainThreadTimer>
    repeat(std::chrono::nanoseconds interval, std::function<void()> task) override;

    /// Runs tasks and timers until somebody quits; returns at once where somebody has. Main thread.
    void run();

    /// The same, but only for as long as `goesOn` is true, which is asked after every task and timer.
    void runWhile(const std::function<bool()>& goesOn);

    /// Ends the loop after the task under way; what is still queued never runs. Any thread.
    void quit();

  private:
    bool hasQuit();
    bool runNextTask();
    void waitForWork();

    TimerList timers;

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> tasks;
    bool isQuitting = false;
};

} // namespace orvane::platform
