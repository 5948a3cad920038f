#pragma once

namespace orvane::app {

/// Whether there is a display to open windows on: an X server that answers or a Wayland compositor's socket,
/// found without the window's library, which reports a missing one in lines of its own. True if
/// QT_QPA_PLATFORM names another kind of display. Main thread, before the first window.
bool hasDisplay();

} // namespace orvane::app
