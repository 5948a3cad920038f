#pragma once

#include <csignal>

namespace orvane::machine {

/// While one stands, SIGINT and SIGTERM no longer end the program but are remembered, so that long work can
/// stop cleanly; then they do again what they did before. The program that does the work owns it, at most one
/// at a time.
class InterruptGuard final {
  public:
    /// Main thread.
    InterruptGuard();
    /// Main thread.
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

    /// Whether one of the signals has come since this guard was made. Any thread, real-time safe.
    [[nodiscard]] bool isInterrupted() const noexcept;

  private:
    struct sigaction interruptBefore {};
    struct sigaction terminateBefore {};
};

} // namespace orvane::machine
