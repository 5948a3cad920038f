#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace orvane::platform::virtual_devices {

/// Repeats a task at an interval on a thread of its own, for work that an audio thread must not trigger. The
/// destructor waits for the running task; none follows. Main thread.
class PeriodicTask final {
  public:
    PeriodicTask(std::chrono::milliseconds interval, std::function<void()> work);
    ~PeriodicTask();
    PeriodicTask(const PeriodicTask&) = delete;
    PeriodicTask& operator=(const PeriodicTask&) = delete;

  private:
    void run(std::chrono::milliseconds interval, const std::function<void()>& work);

    std::mutex mutex;
    std::condition_variable ended;
    bool isEnding = false;
    std::thread thread;
};

} // namespace orvane::platform::virtual_devices
