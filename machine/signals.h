#pragma once

#include <array>
#include <chrono>
#include <csignal>
#include <thread>

namespace orvane::machine {

/// While a guard exists, SIGINT, SIGTERM and SIGHUP are recorded instead of ending the program, so that long
/// work can stop cleanly; afterwards they do again what they did before. A SIGHUP that was ignored stays
/// ignored. A SIGINT after the first signal ends every wait for a plugin that does not return
/// (`platform::setStopPatience`). If the guard still exists `patience` after the first signal, or
/// `patienceWhenUrged` after such a SIGINT, the process ends with `forceEnd`, because the program does not
/// react. At most one guard exists at a time.
class InterruptGuard final {
  public:
    static constexpr std::chrono::seconds patience{20};
    static constexpr std::chrono::seconds patienceWhenUrged{2};

    /// Main thread.
    InterruptGuard();
    /// Main thread.
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

    /// Whether a signal has arrived since this guard was made. Any thread, real-time safe.
    [[nodiscard]] bool isInterrupted() const noexcept;

  private:
    static constexpr std::array signals = {SIGINT, SIGTERM, SIGHUP};

    std::array<struct sigaction, signals.size()> before = {};
    /// Absent if the system has no threads left.
    std::jthread watch;
};

/// From this call on, SIGUSR1, by which session managers ask programs to save, is recorded instead of ending
/// the program. Must be the first call of a program. Main thread.
void keepSaveSignal();

/// Whether the signal has arrived since the last call. Any thread, real-time safe.
[[nodiscard]] bool takeSaveSignal() noexcept;

} // namespace orvane::machine
