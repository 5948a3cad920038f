#pragma once

namespace orvane::machine {

/// From now on until the program has ended, SIGUSR1, by which session managers ask programs to save, is
/// remembered instead of ending the program. The first thing that a program does. Main thread.
void keepSaveSignal();

/// Whether the signal has come since this was last asked. Any thread, real-time safe.
[[nodiscard]] bool takeSaveSignal() noexcept;

} // namespace orvane::machine
