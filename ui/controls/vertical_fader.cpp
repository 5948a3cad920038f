#include "ui/controls/vertical_fader.h"

#include "ui/theme/theme.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane::ui {

namespace {

/// Steps of keys and wheel as shares of the range.
constexpr double coarseShare = 0.02;
constexpr double fineShare = 0.0025;
/// The angle that one notch of a wheel reports.
constexpr double notch = 120.0;
constexpr double outlineWidth = 1.0;

double shareFor(Qt::KeyboardModifiers modifiers) {
    return modifiers.testFlag(Qt::ShiftModifier) ? fineShare : coarseShare;
}

} // namespace

VerticalFader::VerticalFader(const Style& faderStyle, std::function<void(double)> onChange, QWidget* parent)
    : QWidget(parent),
      style(faderStyle),
      changed(std::move(onChange)),
      current(faderStyle.defaultValue.value_or(faderStyle.lowest)) {
    setFocusPolicy(Qt::StrongFocus);
}

double VerticalFader::step() const {
    return coarseShare * (style.highest - style.lowest);
}

void VerticalFader::setValue(double value) {
    if (value == current) return;
    current = value;
    update();
    if (!QAccessible::isActive()) return;
    QAccessibleValueChangeEvent change(this, value);
    QAccessible::updateAccessibility(&change);
}

int VerticalFader::overhang() const {
    return static_cast<int>(std::ceil((style.thumbHeight + outlineWidth) / 2.0));
}

int VerticalFader::trackHeight() const {
    return height() - 2 * overhang();
}

double VerticalFader::positionOf(double value) const {
    return overhang() + (1.0 - (value - style.lowest) / (style.highest - style.lowest)) * trackHeight();
}

void VerticalFader::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double middle = width() / 2.0;
    const auto bar = [&](double y, double barWidth, double barHeight) {
        return QRectF(middle - barWidth / 2.0, y - barHeight / 2.0, barWidth, barHeight);
    };
    painter.setBrush(theme::well);
    painter.drawRoundedRect(
        QRectF(middle - style.trackWidth / 2.0, overhang(), style.trackWidth, trackHeight()), 2.0, 2.0
    );
    if (style.defaultValue) {
        painter.setBrush(theme::primaryText);
        painter.drawRect(
            bar(positionOf(*style.defaultValue), style.defaultStripeWidth, style.defaultStripeHeight)
        );
    }
    const QRectF thumb = bar(positionOf(current), style.thumbWidth, style.thumbHeight);
    painter.setBrush(theme::secondaryText);
    painter.setPen(hasFocus() ? QPen(theme::accent, theme::focusWidth) : QPen(theme::well, outlineWidth));
    painter.drawRoundedRect(thumb, 3.0, 3.0);
    painter.setPen(QPen(theme::well, outlineWidth));
    painter.drawLine(
        QPointF(thumb.left() + 4.0, thumb.center().y()), QPointF(thumb.right() - 4.0, thumb.center().y())
    );
}

void VerticalFader::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) touch(event->position().y());
}

void VerticalFader::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons().testFlag(Qt::LeftButton)) touch(event->position().y());
}

void VerticalFader::wheelEvent(QWheelEvent* event) {
    // Without the focus, the wheel is meant to scroll the area.
    if (!hasFocus()) return event->ignore();
    // Some systems report a horizontal wheel while Shift is held.
    const QPoint turned = event->angleDelta();
    const double notches = (turned.y() != 0 ? turned.y() : turned.x()) / notch;
    choose(current + notches * shareFor(event->modifiers()) * (style.highest - style.lowest));
    event->accept();
}

void VerticalFader::keyPressEvent(QKeyEvent* event) {
    const double range = style.highest - style.lowest;
    switch (event->key()) {
    case Qt::Key_Up:
        return choose(current + shareFor(event->modifiers()) * range);
    case Qt::Key_Down:
        return choose(current - shareFor(event->modifiers()) * range);
    case Qt::Key_Home:
        return choose(style.highest);
    case Qt::Key_End:
        return choose(style.lowest);
    default:
        QWidget::keyPressEvent(event);
    }
}

void VerticalFader::touch(double y) {
    const double length = trackHeight();
    if (length <= 0.0) return;
    const double within = std::clamp(y - overhang(), 0.0, length);
    const bool snaps =
        style.defaultValue
        && std::abs(within + overhang() - positionOf(*style.defaultValue)) <= style.snapTolerance;
    choose(
        snaps ? *style.defaultValue : style.lowest + (1.0 - within / length) * (style.highest - style.lowest)
    );
}

void VerticalFader::choose(double value) {
    const double kept = std::clamp(value, style.lowest, style.highest);
    if (kept == current) return;
    setValue(kept);
    if (changed) changed(kept);
}

} // namespace orvane::ui
