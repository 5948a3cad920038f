#pragma once

namespace orvane::ui {

/// Registers the accessibility interface of meters: their role and value. Called once, before the first
/// window. Main thread.
void makeMetersAccessible();

} // namespace orvane::ui
