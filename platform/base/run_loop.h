#pragma once

#include "platform/base/main_thread.h"
#include "platform/base/timer_list.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace orvane::platform {

/// The main thread of a program without windows. It must run on the thread that made it.
class RunLoop final : public MainThread {
  public:
    void post(std::function<void()> task) override;

    [[nodiscard]] std::unique_ptr<MainThreadTimer>
    repeat(std::chrono::nanoseconds interval, std::function<void()> task) override;

    /// Runs tasks and timers until `quit`; returns at once if that was called before. Main thread.
    void run();

    /// Runs until `quit`, or until `goesOn`, which is called after every task and timer, returns false.
    void runWhile(const std::function<bool()>& goesOn);

    /// Ends the loop after the current task; tasks still queued never run. Any thread.
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
