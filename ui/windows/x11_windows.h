#pragma once

#include <QSize>
#include <QtGui/qwindowdefs.h>

#include <optional>

namespace orvane::ui {

// Windows of X11 that others have made within ours. Main thread; nothing happens where there is no X11.

/// Whether the program's windows are windows of X11.
bool isOnX11();

/// Returns once the display server has all windows that were made.
void waitForX11();

/// In pixels; nothing where there is no such window.
std::optional<QSize> sizeOfX11Window(WId window);

/// `size`: in pixels, 1 at least each way.
void resizeX11Window(WId window, QSize size);

} // namespace orvane::ui
