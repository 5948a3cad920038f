#include "ui/controls/screen_room.h"

#include <QMargins>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace orvane::ui {

namespace {

/// The frame of a typical desktop. The real one is known only once the window is shown.
constexpr QMargins frame(4, 26, 4, 6);

QRect roomOn(const QScreen& screen) {
    return screen.availableGeometry().marginsRemoved(frame);
}

} // namespace

QSize screenRoom(const QWidget& window) {
    return roomOn(*window.screen()).size();
}

QRect heldByScreen(const QWidget& window) {
    const QRect room = roomOn(*window.screen());
    QRect content(window.geometry().topLeft(), window.size().boundedTo(room.size()));
    content.moveRight(std::min(content.right(), room.right()));
    content.moveBottom(std::min(content.bottom(), room.bottom()));
    content.moveLeft(std::max(content.left(), room.left()));
    content.moveTop(std::max(content.top(), room.top()));
    return content;
}

} // namespace orvane::ui
