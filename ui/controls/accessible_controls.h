#pragma once

namespace orvane::ui {

/// Registers accessibility interfaces for the program's own controls: faders and sliders with their values,
/// buttons with their state, groups of controls. Called once, before the first window. Main thread.
void makeControlsAccessible();

} // namespace orvane::ui
