#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace orvane::platform::virtual_devices {

/// Does a piece of work every so often on a thread of its own, for work that an audio thread must not wake.
/// After its destruction, which waits for work that is under way, the work is not done again. Main thread.
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
