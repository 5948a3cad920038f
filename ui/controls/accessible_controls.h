#pragma once

namespace orvane::ui {

/// Registers accessibility interfaces for the program's own controls: faders and sliders with their values,
/// segmented pickers as groups of choices. Called once, before the first window. Main thread.
void makeControlsAccessible();

} // namespace orvane::ui
