#include "ui/controls/text_label.h"

#include <QPalette>

namespace orvane::ui {

namespace {

/// In device-independent pixels.
int sizeOf(TextStyle style) {
    switch (style) {
    case TextStyle::largeTitle:
        return 26;
    case TextStyle::title:
        return 20;
    case TextStyle::title3:
        return 15;
    case TextStyle::body:
        return 13;
    case TextStyle::callout:
    case TextStyle::subheadline:
        return 12;
    case TextStyle::caption:
        return 11;
    case TextStyle::caption2:
        break;
    }
    return 10;
}

} // namespace

QFont textFont(TextStyle style, QFont::Weight weight) {
    return systemFont(sizeOf(style), weight);
}

QLabel* makeText(const QString& text, TextStyle style, const QColor& color, QFont::Weight weight) {
    auto* const label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setFont(textFont(style, weight));
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
    return label;
}

} // namespace orvane::ui
