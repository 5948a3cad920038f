#pragma once

namespace orvane::app {

/// Whether there is a display to open windows on: an X server that answers, or the socket of a Wayland
/// compositor. Does not ask Qt, which prints messages of its own if there is none. True if QT_QPA_PLATFORM
/// names another kind of display. Main thread, before the first window.
bool hasDisplay();

} // namespace orvane::app
