#pragma once

#include <pthread.h>

namespace orvane::platform {

/// A short, non-recursive lock between control and audio threads. It inherits priority: an audio thread that
/// waits lends its priority to the holder, so a preempted control thread cannot stall it. Hold it only to
/// copy values or swap references; never allocate, compute or call out under it. Uncontended, it makes no
/// system call. Satisfies BasicLockable for std::scoped_lock.
class UnfairLock final {
  public:
    UnfairLock();
    ~UnfairLock();
    UnfairLock(const UnfairLock&) = delete;
    UnfairLock& operator=(const UnfairLock&) = delete;

    /// Waits until the lock is free and takes it. Any thread, real-time safe.
    void lock() noexcept { pthread_mutex_lock(&mutex); }

    /// Releases the lock; only the thread that took it may. Any thread, real-time safe.
    void unlock() noexcept { pthread_mutex_unlock(&mutex); }

  private:
    pthread_mutex_t mutex;
};

} // namespace orvane::platform
