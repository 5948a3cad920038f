#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

namespace orvane::platform {

/// A repeating timer. Destroying it stops it, even from within its own task. May outlive the main thread's
/// loop. Main thread.
class MainThreadTimer {
  public:
    virtual ~MainThreadTimer() = default;
};

/// The queue of tasks and timers of the main thread, which models and views live on. Made by the composition
/// root; must outlive all that post to it. Tasks throw only std::bad_alloc, which ends the task and is
/// reported.
class MainThread {
  public:
    class Poster;

    virtual ~MainThread() = default;

    /// Runs `task` on the main thread, soon, in the order of posting and never within this call. After the
    /// loop has ended, tasks are discarded. Any thread, not real-time safe.
    virtual void post(std::function<void()> task) = 0;

    /// Runs `task` every `interval`, which must be positive, for the first time after one interval, also
    /// during user interaction. Missed ticks are skipped. Main thread.
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
