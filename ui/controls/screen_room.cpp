#include "ui/controls/screen_room.h"

#include <QScreen>
#include <QWidget>

namespace orvane::ui {

namespace {

/// What a usual desktop draws around a window; the real frame is known only once the window is on the screen.
constexpr QSize frame(8, 32);

} // namespace

QSize screenRoom(const QWidget& window) {
    return window.screen()->availableSize() - frame;
}

} // namespace orvane::ui
