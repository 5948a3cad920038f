#pragma once

#include <chrono>
#include <thread>

namespace orvane::machine {

/// Ends the process at once, with a line on standard error and with what is being recorded complete, because
/// foreign code that the main thread is within does not return. Any thread but the main one.
[[noreturn]] void forceEnd(int exitCode);

/// Bounds the time that taking down a program takes: once armed, the process ends with `forceEnd` unless the
/// deadline is destroyed first. Made before all that may hang when it is destroyed. Main thread.
class EndDeadline final {
  public:
    /// What the stop of streams, the end of plugins and the end of sound servers' clients may take together.
    static constexpr std::chrono::seconds patience{10};

    EndDeadline() = default;
    ~EndDeadline() = default;
    EndDeadline(const EndDeadline&) = delete;
    EndDeadline& operator=(const EndDeadline&) = delete;

    /// Called once the program has done all that it was asked for. There is no deadline if the system has no
    /// threads left.
    void arm(int exitCode, std::chrono::seconds longest = patience);

  private:
    std::jthread waiter;
};

} // namespace orvane::machine
