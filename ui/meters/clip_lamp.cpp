#include "ui/meters/clip_lamp.h"

#include "ui/theme/theme.h"

#include <QPainter>

#include <utility>

namespace orvane::ui {

namespace {

constexpr int textSize = 8;
constexpr double cornerRadius = 2.0;

} // namespace

ClipLamp::ClipLamp(const QString& name, std::function<void()> onReset, QWidget* parent)
    : QAbstractButton(parent) {
    setText(QStringLiteral("CLIP"));
    setAccessibleName(name);
    setAccessibleDescription(QStringLiteral("off"));
    setFont(systemFont(textSize, QFont::Bold));
    setFocusPolicy(Qt::NoFocus);
    connect(this, &QAbstractButton::clicked, this, std::move(onReset));
}

void ClipLamp::setLit(bool isOn) {
    if (isOn == lit) return;
    lit = isOn;
    setAccessibleDescription(lit ? QStringLiteral("on") : QStringLiteral("off"));
    update();
}

void ClipLamp::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(lit ? QBrush(theme::red) : Qt::NoBrush);
    const QColor outline = lit ? theme::red : theme::divider;
    painter.setPen(QPen(hasFocus() ? theme::primaryText : outline, 1.0));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    painter.setPen(lit ? theme::well : theme::disabledText);
    painter.drawText(rect(), Qt::AlignCenter, text());
}

} // namespace orvane::ui
