#pragma once

#include <chrono>
#include <thread>

namespace orvane::machine {

/// Ends the process at once because foreign code on the main thread does not return. Prints a line to
/// standard error and completes the recordings first. Any thread but the main one.
[[noreturn]] void forceEnd(int exitCode);

/// Bounds the time that a program takes to end: once armed, the process ends with `forceEnd` unless the
/// deadline is destroyed first. Must be made before everything whose destruction may hang. Main thread.
class EndDeadline final {
  public:
    /// The total time for stopping streams, plugins and the clients of sound servers.
    static constexpr std::chrono::seconds patience{10};

    EndDeadline() = default;
    ~EndDeadline() = default;
    EndDeadline(const EndDeadline&) = delete;
    EndDeadline& operator=(const EndDeadline&) = delete;

    /// Called after the program has completed its work. Has no effect if the system has no threads left.
    void arm(int exitCode, std::chrono::seconds longest = patience);

  private:
    std::jthread waiter;
};

} // namespace orvane::machine
