#include "ui/controls/console_button.h"

#include "ui/controls/enter_key.h"
#include "ui/theme/theme.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>

#include <utility>

namespace orvane::ui {

namespace {

constexpr int fontSize = 12;
constexpr int verticalPadding = 10;
constexpr int horizontalPadding = 10;
constexpr double cornerRadius = 4.0;
/// The bar of an active button.
constexpr double barInset = 6.0;
constexpr double barHeight = 2.0;
constexpr double barBottom = 5.0;

} // namespace

ConsoleButton::ConsoleButton(const QString& title, std::function<void()> onPress, QWidget* parent)
    : QAbstractButton(parent), activeColor(theme::accent) {
    setText(title);
    setAccessibleName(title);
    setFont(systemFont(fontSize, QFont::Medium));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    if (onPress) connect(this, &QAbstractButton::clicked, this, std::move(onPress));
}

void ConsoleButton::setActive(bool isOn) {
    setCheckable(true);
    setChecked(isOn);
}

QSize ConsoleButton::sizeHint() const {
    const QFontMetrics metrics(font());
    return {
        metrics.horizontalAdvance(text()) + 2 * horizontalPadding, metrics.height() + 2 * verticalPadding};
}

void ConsoleButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool active = isActive();
    QColor fill = active ? activeColor.darker(170) : theme::raised;
    if (isEnabled() && (isDown() || underMouse())) fill = fill.lighter(isDown() ? 140 : 115);
    // On a highlighted button, the focus outline is always white.
    const QColor plain = hasFocus() ? theme::accent : theme::divider;
    const QColor lit = hasFocus() ? theme::primaryText : activeColor;
    const QColor outline = active ? lit : plain;
    painter.setBrush(fill);
    const double penWidth = hasFocus() ? theme::focusWidth : 1.0;
    const double inset = penWidth / 2.0;
    painter.setPen(QPen(outline, penWidth));
    painter.drawRoundedRect(
        QRectF(rect()).adjusted(inset, inset, -inset, -inset), cornerRadius, cornerRadius
    );
    // Shows the state without colours, too.
    if (active)
        painter.fillRect(
            QRectF(barInset, height() - barBottom, width() - 2 * barInset, barHeight), theme::primaryText
        );
    painter.setPen(isEnabled() ? theme::primaryText : theme::disabledText);
    painter.drawText(rect(), Qt::AlignCenter, text());
}

void ConsoleButton::keyPressEvent(QKeyEvent* event) {
    if (!pressWithEnter(*this, *event)) QAbstractButton::keyPressEvent(event);
}

} // namespace orvane::ui
