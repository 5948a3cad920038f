#pragma once

#include <csignal>

namespace orvane::machine {

/// While one stands, SIGUSR1, by which session managers ask programs to save, no longer ends the program but
/// is remembered; then it does again what it did before. The program that can save owns it, at most one at a
/// time.
class SaveSignal final {
  public:
    /// Main thread.
    SaveSignal();
    /// Main thread.
    ~SaveSignal();
    SaveSignal(const SaveSignal&) = delete;
    SaveSignal& operator=(const SaveSignal&) = delete;

    /// Whether the signal has come since this was last asked. Any thread, real-time safe.
    [[nodiscard]] bool take() const noexcept;

  private:
    struct sigaction before {};
};

} // namespace orvane::machine
