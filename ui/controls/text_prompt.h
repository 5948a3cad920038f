#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace orvane::ui {

/// A question that is answered with a line of text.
struct TextPrompt {
    QString title;
    QString message;
    /// Shown while nothing is typed.
    QString placeholder;
    /// What is there to begin with.
    QString text;
};

/// Asks in front of the window of `parent`. "Save", like Enter, gives `onSave` the text without the blanks
/// around it, unless nothing is left of it; "Cancel" and Esc give nothing. Returns at once. Main thread.
void askForText(QWidget* parent, const TextPrompt& prompt, std::function<void(const QString&)> onSave);

} // namespace orvane::ui
