#include "ui/controls/indicator_lamp.h"

#include "ui/theme/theme.h"

#include <QPainter>

namespace orvane::ui {

namespace {

constexpr int diameter = 10;

} // namespace

IndicatorLamp::IndicatorLamp(const QString& name) {
    setFixedSize(diameter, diameter);
    setAccessibleName(name);
    setAccessibleDescription(QStringLiteral("off"));
}

void IndicatorLamp::setLit(bool isOn) {
    if (isOn == lit) return;
    lit = isOn;
    setAccessibleDescription(lit ? QStringLiteral("on") : QStringLiteral("off"));
    update();
}

void IndicatorLamp::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(lit ? theme::green : theme::unlit);
    painter.setPen(QPen(lit ? theme::green.lighter(150) : theme::divider, 1.0));
    painter.drawEllipse(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
}

} // namespace orvane::ui
