#include "ui/controls/scroll_guard.h"

#include <QScrollArea>
#include <QWheelEvent>

namespace orvane::ui {

namespace {

/// The longest pause between two notches of one turn of the wheel.
constexpr std::uint64_t longestPauseMs = 300;

} // namespace

ScrollGuard::ScrollGuard(QScrollArea& area) : QObject(&area), viewport(area.viewport()) {
    viewport->installEventFilter(this);
    // Only these controls react to the wheel.
    for (QWidget* control : area.widget()->findChildren<QWidget*>())
        if (control->focusPolicy() == Qt::StrongFocus) control->installEventFilter(this);
}

bool ScrollGuard::eventFilter(QObject* receiver, QEvent* event) {
    if (event->type() != QEvent::Wheel) return false;
    const auto now = static_cast<QWheelEvent*>(event)->timestamp();
    if (receiver == viewport) {
        scrolledAt = now;
        return false;
    }
    if (!scrolledAt || now - *scrolledAt > longestPauseMs) return false;
    // Passes the event on to the area.
    event->ignore();
    return true;
}

} // namespace orvane::ui
