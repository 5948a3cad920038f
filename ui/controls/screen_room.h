#pragma once

#include <QSize>

class QWidget;

namespace orvane::ui {

/// The largest content that a window can have on the screen of `window` with its frame in sight, in
/// device-independent pixels. Main thread.
QSize screenRoom(const QWidget& window);

} // namespace orvane::ui
