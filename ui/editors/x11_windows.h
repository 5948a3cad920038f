#pragma once

#include <QSize>
#include <QtGui/qwindowdefs.h>

#include <optional>

namespace orvane::ui {

// Windows that foreign code has made inside ours on X11. Main thread; without X11, these functions do
// nothing.

/// Whether the program's windows are X11 windows.
bool isOnX11();

/// Waits until the display server has handled all pending requests.
void waitForX11();

/// Returns the size in pixels; absent if there is no such window.
std::optional<QSize> sizeOfX11Window(WId window);

/// `size`: in pixels, 1 at least each way.
void resizeX11Window(WId window, QSize size);

} // namespace orvane::ui
