#include "ui/strip/name_field.h"

#include <QStyleOptionFrame>
#include <QStylePainter>

namespace orvane::ui {

namespace {

/// The margin of a line edit on either side of its text.
constexpr int inset = 3;

} // namespace

void NameField::paintEvent(QPaintEvent* event) {
    const QString shown = elidedIn(text(), fontMetrics(), width());
    if (hasFocus() || shown == text()) return QLineEdit::paintEvent(event);
    QStylePainter painter(this);
    QStyleOptionFrame panel;
    initStyleOption(&panel);
    painter.drawPrimitive(QStyle::PE_PanelLineEdit, panel);
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(rect().adjusted(inset, 0, -inset, 0), Qt::AlignLeft | Qt::AlignVCenter, shown);
}

QString elidedIn(const QString& text, const QFontMetrics& metrics, int fieldWidth) {
    return metrics.elidedText(text, Qt::ElideRight, fieldWidth - 2 * inset);
}

} // namespace orvane::ui
