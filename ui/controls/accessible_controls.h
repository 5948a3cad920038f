#pragma once

namespace orvane::ui {

/// Has our own controls told to assistive tools as what they are: faders and sliders with their values,
/// segmented pickers as groups of choices. Once, before the first window. Main thread.
void makeControlsAccessible();

} // namespace orvane::ui
