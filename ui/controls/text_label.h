#pragma once

#include "ui/theme/theme.h"

#include <QFont>
#include <QLabel>

namespace orvane::ui {

/// The text styles of windows and sheets, largest first.
enum class TextStyle { largeTitle, title, title3, body, callout, subheadline, caption, caption2 };

/// Returns the font of a style. Main thread.
QFont textFont(TextStyle style, QFont::Weight weight = QFont::Normal);

/// Makes a plain text that wraps and is never parsed as markup. Main thread.
QLabel* makeText(
    const QString& text, TextStyle style, const QColor& color = theme::primaryText,
    QFont::Weight weight = QFont::Normal
);

} // namespace orvane::ui
