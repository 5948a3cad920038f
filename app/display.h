#pragma once

namespace orvane::app {

/// Returns whether a window can open: an X server answers, the socket of a Wayland compositor exists, or
/// QT_QPA_PLATFORM names another kind of display. Does not ask Qt, which prints messages of its own if it
/// finds no display. Main thread, before the first window.
bool hasDisplay();

} // namespace orvane::app
