#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace orvane::ui {

/// A question answered with a line of text.
struct TextPrompt {
    QString title;
    QString message;
    /// Shown while the field is empty.
    QString placeholder;
    /// The initial text.
    QString text;
};

/// Asks in front of the window of `parent`. "Save" and Enter call `onSave` with the trimmed text unless it is
/// empty; "Cancel" and Esc call nothing. Returns at once. Main thread.
void askForText(QWidget* parent, const TextPrompt& prompt, std::function<void(const QString&)> onSave);

} // namespace orvane::ui
