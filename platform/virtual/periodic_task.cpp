#include "platform/virtual/periodic_task.h"

#include <utility>

namespace orvane::platform::virtual_devices {

PeriodicTask::PeriodicTask(std::chrono::milliseconds interval, std::function<void()> work)
    : thread([this, interval, doWork = std::move(work)] { run(interval, doWork); }) {}

PeriodicTask::~PeriodicTask() {
    {
        const std::scoped_lock lock(mutex);
        isEnding = true;
    }
    ended.notify_one();
    thread.join();
}

void PeriodicTask::run(std::chrono::milliseconds interval, const std::function<void()>& work) {
    std::unique_lock lock(mutex);
    while (!isEnding) {
        lock.unlock();
        work();
        lock.lock();
        ended.wait_for(lock, interval, [this] { return isEnding; });
    }
}

} // namespace orvane::platform::virtual_devices
