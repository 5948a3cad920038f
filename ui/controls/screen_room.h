#pragma once

#include <QRect>
#include <QSize>

class QWidget;

namespace orvane::ui {

/// The largest content that a window can have on the screen of `window` with its frame in sight, in
/// device-independent pixels. Main thread.
QSize screenRoom(const QWidget& window);

/// The content's geometry of `window`, made as small and moved as far as its screen requires to hold it with
/// its frame, in device-independent pixels. Main thread.
QRect heldByScreen(const QWidget& window);

} // namespace orvane::ui
