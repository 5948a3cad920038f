#pragma once

namespace orvane::ui {

/// Has faders told to assistive tools as sliders with their values. Once, before the first window. Main
/// thread.
void makeFadersAccessible();

} // namespace orvane::ui
