#pragma once

namespace orvane::machine {

/// Keeps the memory that the program uses, from now on as well, from being paged out, where the account may
/// lock as much as it wants; returns whether it does. Pages are not loaded before they are used. Main thread,
/// before the program has much memory.
bool lockMemory();

} // namespace orvane::machine
