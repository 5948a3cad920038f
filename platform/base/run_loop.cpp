#include "platform/base/run_loop.h"

#include "platform/base/memory_shortage.h"

#include <chrono>
#include <utility>

namespace orvane::platform {

using Clock = std::chrono::steady_clock;

void RunLoop::post(std::function<void()> task) {
    const std::scoped_lock guard(mutex);
    if (isQuitting) return;
    tasks.push_back(std::move(task));
    changed.notify_one();
}

std::unique_ptr<MainThreadTimer>
RunLoop::repeat(std::chrono::nanoseconds interval, std::function<void()> task) {
    return timers.add(Clock::now(), interval, std::move(task));
}

void RunLoop::run() {
    runWhile([] { return true; });
}

void RunLoop::runWhile(const std::function<bool()>& goesOn) {
    while (!hasQuit() && goesOn()) {
        // Alternates, so that neither many tasks nor slow timers starve the others.
        const bool ranTask = runNextTask();
        const bool ranTimer = !hasQuit() && timers.runNextDue(Clock::now());
        if (!ranTask && !ranTimer) waitForWork();
    }
}

void RunLoop::quit() {
    const std::scoped_lock guard(mutex);
    isQuitting = true;
    // Under the lock: once it is released, the main thread may leave the loop and destroy it.
    changed.notify_one();
}

bool RunLoop::hasQuit() {
    const std::scoped_lock guard(mutex);
    return isQuitting;
}

bool RunLoop::runNextTask() {
    std::function<void()> task;
    {
        const std::scoped_lock guard(mutex);
        if (tasks.empty()) return false;
        task = std::move(tasks.front());
        tasks.pop_front();
    }
    runUnlessOutOfMemory(task);
    return true;
}

void RunLoop::waitForWork() {
    const auto due = timers.nextDue();
    std::unique_lock guard(mutex);
    const auto hasWork = [this] { return isQuitting || !tasks.empty(); };
    if (due)
        changed.wait_until(guard, *due, hasWork);
    else
        changed.wait(guard, hasWork);
}

} // namespace orvane::platform
