#pragma once

#include <QRect>
#include <QSize>

class QWidget;

namespace orvane::ui {

/// Returns the largest content size of a window whose frame must stay visible on the screen of `window`, in
/// device-independent pixels. Main thread.
QSize screenRoom(const QWidget& window);

/// Returns the content geometry of `window`, shrunk and moved so that its screen holds it with its frame, in
/// device-independent pixels. Main thread.
QRect heldByScreen(const QWidget& window);

} // namespace orvane::ui
