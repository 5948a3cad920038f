#include "ui/controls/value_slider.h"

#include "ui/controls/own_keys.h"
#include "ui/theme/theme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane::ui {

namespace {

/// The resolution of the handle's travel.
constexpr int places = 10000;
/// The handle width in the style sheet.
constexpr double handleWidth = 12.0;
/// The groove height in the style sheet.
constexpr double grooveHeight = 4.0;
constexpr double markHeight = 12.0;
/// Steps of keys and wheel as shares of the range, if the range has no steps of its own.
constexpr double freeStep = 0.02;
constexpr double fineFreeStep = 0.002;
/// The angle that one notch of a wheel reports.
constexpr double notch = 120.0;

} // namespace

ValueSlider::ValueSlider(
    const QString& name, const Range& valueRange, std::function<void(double)> onChange, QWidget* parent
)
    : QSlider(Qt::Horizontal, parent),
      range(valueRange),
      changed(std::move(onChange)),
      current(valueRange.lowest) {
    setAccessibleName(name);
    setRange(0, places);
    setFocusPolicy(Qt::StrongFocus);
    if (range.fillsFromDefault) setObjectName(QStringLiteral("fromDefault"));
}

double ValueSlider::step() const {
    return range.step > 0.0 ? range.step : freeStep * (range.highest - range.lowest);
}

void ValueSlider::setValue(double value) {
    current = value;
    const double share = (value - range.lowest) / (range.highest - range.lowest);
    QSlider::setValue(static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * places)));
}

double ValueSlider::positionOf(double value) const {
    const double share = (value - range.lowest) / (range.highest - range.lowest);
    return handleWidth / 2.0 + std::clamp(share, 0.0, 1.0) * (width() - handleWidth);
}

void ValueSlider::paintEvent(QPaintEvent* event) {
    if (!range.fillsFromDefault || !range.defaultValue) return QSlider::paintEvent(event);
    const double origin = positionOf(*range.defaultValue);
    const double handle = positionOf(current);
    const double middle = height() / 2.0;
    // The groove and the handle cover the mark, and the filling ends at the handle.
    QPainter(this).fillRect(
        QRectF(origin - 1.0, middle - markHeight / 2.0, 2.0, markHeight), theme::primaryText
    );
    QSlider::paintEvent(event);
    const double end = handle + (handle < origin ? handleWidth : -handleWidth) / 2.0;
    if (std::abs(handle - origin) <= handleWidth / 2.0) return;
    QPainter(this).fillRect(
        QRectF(std::min(origin, end), middle - grooveHeight / 2.0, std::abs(end - origin), grooveHeight),
        theme::accent
    );
}

bool ValueSlider::event(QEvent* event) {
    return claimsArrow(*event) || QSlider::event(event);
}

void ValueSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    isHandlePressed = std::abs(event->position().x() - positionOf(current)) <= handleWidth / 2.0;
    setSliderDown(true);
    touch(event->position().x());
}

void ValueSlider::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons().testFlag(Qt::LeftButton)) touch(event->position().x());
}

void ValueSlider::mouseReleaseEvent(QMouseEvent*) {
    setSliderDown(false);
}

void ValueSlider::mouseDoubleClickEvent(QMouseEvent* event) {
    // A double click beside the handle means that place: the first of the two clicks has already moved the
    // handle.
    if (event->button() == Qt::LeftButton && isHandlePressed && range.defaultValue)
        return choose(*range.defaultValue);
    mousePressEvent(event);
}

void ValueSlider::wheelEvent(QWheelEvent* event) {
    // Without the focus, the wheel is meant to scroll the area.
    if (!hasFocus()) return event->ignore();
    // Some systems report a horizontal wheel while Shift is held.
    const QPoint angle = event->angleDelta();
    const double notches = (angle.y() != 0 ? angle.y() : angle.x()) / notch;
    event->accept();
    if (range.step == 0.0) return stepBy(notches, event->modifiers());
    turned += notches;
    const double whole = std::trunc(turned);
    turned -= whole;
    stepBy(whole, event->modifiers());
}

void ValueSlider::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Right:
        return stepBy(1.0, event->modifiers());
    case Qt::Key_Down:
    case Qt::Key_Left:
        return stepBy(-1.0, event->modifiers());
    case Qt::Key_Home:
        return choose(range.lowest);
    case Qt::Key_End:
        return choose(range.highest);
    default:
        event->ignore();
    }
}

void ValueSlider::touch(double x) {
    const double way = width() - handleWidth;
    if (way <= 0.0) return;
    const double share = std::clamp((x - handleWidth / 2.0) / way, 0.0, 1.0);
    choose(range.lowest + share * (range.highest - range.lowest));
}

void ValueSlider::stepBy(double steps, Qt::KeyboardModifiers modifiers) {
    const bool isFine = modifiers.testFlag(Qt::ShiftModifier);
    const bool isFree = range.step == 0.0;
    choose(current + steps * (isFine && isFree ? fineFreeStep * (range.highest - range.lowest) : step()));
}

void ValueSlider::choose(double value) {
    double kept = std::clamp(value, range.lowest, range.highest);
    if (range.step > 0.0) kept = range.lowest + std::round((kept - range.lowest) / range.step) * range.step;
    const bool isNew = kept != current;
    setValue(kept);
    if (isNew && changed) changed(kept);
}

} // namespace orvane::ui
