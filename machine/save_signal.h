#pragma once

namespace orvane::machine {

/// From this call on, SIGUSR1, by which session managers ask programs to save, is recorded instead of ending
/// the program. Must be the first call of a program. Main thread.
void keepSaveSignal();

/// Whether the signal has arrived since the last call. Any thread, real-time safe.
[[nodiscard]] bool takeSaveSignal() noexcept;

} // namespace orvane::machine
