#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

namespace orvane::platform {

/// A repeating timer; destroying it ends it, from within its own task too. May outlive the main thread's
/// loop. Main thread.
class MainThreadTimer {
  public:
    virtual ~MainThreadTimer() = default;
};

/// The thread that models and views live on, as a queue of tasks and timers. Made by the composition root;
/// outlives whoever posts to it. Tasks throw nothing but std::bad_alloc, which ends the task and is reported.
class MainThread {
  public:
    class Poster;

    virtual ~MainThread() = default;

    /// Runs `task` on the main thread, soon and in the order of posting, never from within this call. Once
    /// the loop has ended the task is not run. Any thread, not real-time safe.
    virtual void post(std::function<void()> task) = 0;

    /// Runs `task` every `interval`, more than 0, the first time one interval from now, also during user
    /// interaction. Ticks that were missed are not made up for. Main thread.
    [[nodiscard]] virtual std::unique_ptr<MainThreadTimer>
    repeat(std::chrono::nanoseconds interval, std::function<void()> task) = 0;
};

/// Posts tasks that are dropped if their owner is gone when their turn comes. Copies may outlive the owner.
/// Any thread, not real-time safe.
class MainThread::Poster final {
  public:
    /// `taskOwner` expires when its tasks must not run any more, on the main thread.
    Poster(MainThread& postedTo, std::weak_ptr<const void> taskOwner)
        : mainThread(postedTo), owner(std::move(taskOwner)) {}

    void operator()(std::function<void()> task) const {
        mainThread.post([owner = owner, task = std::move(task)] {
            if (!owner.expired()) task();
        });
    }

  private:
    MainThread& mainThread;
    std::weak_ptr<const void> owner;
};

} // namespace orvane::platform
