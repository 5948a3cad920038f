#pragma once

#include <QAbstractButton>
#include <QKeyEvent>

namespace orvane::ui {

/// Presses a button with Enter, once for as long as the key is held. False: it is another key. Main thread.
inline bool pressWithEnter(QAbstractButton& button, const QKeyEvent& event) {
    if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) return false;
    if (!event.isAutoRepeat()) button.click();
    return true;
}

} // namespace orvane::ui
