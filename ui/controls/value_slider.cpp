#include "ui/controls/value_slider.h"

#include <QKeyEvent>
#include <QMouseEvent>
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
}

double ValueSlider::step() const {
    return range.step > 0.0 ? range.step : freeStep * (range.highest - range.lowest);
}

void ValueSlider::setValue(double value) {
    current = value;
    const double share = (value - range.lowest) / (range.highest - range.lowest);
    QSlider::setValue(static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * places)));
}

void ValueSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    const double share = (current - range.lowest) / (range.highest - range.lowest);
    const double handle = handleWidth / 2.0 + std::clamp(share, 0.0, 1.0) * (width() - handleWidth);
    isHandlePressed = std::abs(event->position().x() - handle) <= handleWidth / 2.0;
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
