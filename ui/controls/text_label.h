#pragma once

#include "ui/theme/theme.h"

#include <QFont>
#include <QLabel>

namespace orvane::ui {

/// The kinds of text that windows and sheets are written in, largest first.
enum class TextStyle { largeTitle, title, title3, body, callout, subheadline, caption, caption2 };

/// Bold where `weight` says so. Main thread.
QFont textFont(TextStyle style, QFont::Weight weight = QFont::Normal);

/// A plain text that wraps where it has to; never read as markup. Belongs to the widget it is put into. Main
/// thread.
QLabel* makeText(
    const QString& text, TextStyle style, const QColor& color = theme::primaryText,
    QFont::Weight weight = QFont::Normal
);

} // namespace orvane::ui
