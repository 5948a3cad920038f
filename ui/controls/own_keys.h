#pragma once

#include <QKeyEvent>

namespace orvane::ui {

/// Claims the plain arrow keys for a control that uses them, so that they are not shortcuts while it has the
/// focus. Returns whether the event is such a claim. Main thread.
inline bool claimsArrow(QEvent& event) {
    if (event.type() != QEvent::ShortcutOverride) return false;
    const auto& press = static_cast<const QKeyEvent&>(event);
    const bool isArrow = press.key() == Qt::Key_Left || press.key() == Qt::Key_Right;
    if (!isArrow || (press.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier)) != 0) return false;
    event.accept();
    return true;
}

} // namespace orvane::ui
