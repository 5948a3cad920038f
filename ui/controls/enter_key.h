#pragma once

#include <QAbstractButton>
#include <QKeyEvent>

namespace orvane::ui {

/// Presses the button if the key is Enter, once while the key is held. Returns false for other keys. Main
/// thread.
inline bool pressWithEnter(QAbstractButton& button, const QKeyEvent& event) {
    if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) return false;
    if (!event.isAutoRepeat()) button.click();
    return true;
}

} // namespace orvane::ui
