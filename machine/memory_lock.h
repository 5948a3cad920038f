#pragma once

namespace orvane::machine {

/// Locks the program's present and future memory against being paged out, if the account may lock any amount.
/// Returns whether it is locked. Pages are not loaded before they are used. Main thread, before the program
/// uses much memory.
bool lockMemory();

} // namespace orvane::machine
