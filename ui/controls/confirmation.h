#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace orvane::ui {

/// A question before an action that cannot be undone.
struct Confirmation {
    QString title;
    QString message;
    /// The title of the button that goes ahead. The other button is "Cancel"; Esc presses it.
    QString action;
    /// The title of a further button; no button if empty.
    QString alternative = {};
    /// Whether Enter goes ahead; otherwise it presses "Cancel".
    bool enterGoesAhead = false;
};

/// Asks in front of the window of `parent`. Calls `onConfirm` if the user goes ahead, or `onAlternative` if
/// the user presses the further button. Returns at once. Main thread.
void confirm(
    QWidget* parent, const Confirmation& question, std::function<void()> onConfirm,
    std::function<void()> onAlternative = {}
);

/// Shows an error in front of the window of `parent`. Returns at once. Main thread.
void showAlert(QWidget* parent, const QString& title, const QString& message);

} // namespace orvane::ui
