#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace orvane::ui {

/// A question before something that cannot be taken back.
struct Confirmation {
    QString title;
    QString message;
    /// The button that goes ahead; the other is "Cancel", which is what Enter and Esc press.
    QString action;
    /// A further button beside it; none if empty.
    QString alternative = {};
};

/// Asks in front of the window of `parent`, and calls `onConfirm` if the user goes ahead, `onAlternative` if
/// the user takes the further button. Returns at once. Main thread.
void confirm(
    QWidget* parent, const Confirmation& question, std::function<void()> onConfirm,
    std::function<void()> onAlternative = {}
);

/// Says in front of the window of `parent` what has gone wrong. Returns at once. Main thread.
void showAlert(QWidget* parent, const QString& title, const QString& message);

} // namespace orvane::ui
