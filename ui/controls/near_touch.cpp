#include "ui/controls/near_touch.h"

#include "ui/controls/value_slider.h"
#include "ui/controls/vertical_fader.h"

#include <QCoreApplication>
#include <QMouseEvent>

namespace orvane::ui {

namespace {

/// The largest distance from a track.
constexpr int reach = 12;
constexpr int trackThickness = 4;

/// Returns the track of a slider or a fader in its own coordinates; empty for other widgets.
QRect trackOf(const QWidget& widget) {
    QRect track = widget.rect();
    if (dynamic_cast<const ValueSlider*>(&widget) != nullptr)
        track.setHeight(trackThickness);
    else if (dynamic_cast<const VerticalFader*>(&widget) != nullptr)
        track.setWidth(trackThickness);
    else
        return {};
    track.moveCenter(widget.rect().center());
    return track;
}

} // namespace

NearTouch::NearTouch(QWidget& servedView) : QObject(&servedView), view(servedView) {
    view.installEventFilter(this);
}

bool NearTouch::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
        const auto& press = *static_cast<QMouseEvent*>(event);
        held = press.button() == Qt::LeftButton ? sliderNear(press.position().toPoint()) : nullptr;
        if (held != nullptr) held->setFocus(Qt::MouseFocusReason);
        return pass(press);
    }
    case QEvent::MouseMove:
        return pass(*static_cast<QMouseEvent*>(event));
    case QEvent::MouseButtonRelease: {
        const bool isPassed = pass(*static_cast<QMouseEvent*>(event));
        held = nullptr;
        return isPassed;
    }
    default:
        return false;
    }
}

QWidget* NearTouch::sliderNear(QPoint place) const {
    for (QWidget* each : view.findChildren<QWidget*>()) {
        const QRect track = trackOf(*each);
        if (track.isEmpty() || !each->isVisible() || !each->isEnabled()) continue;
        if (track.adjusted(-reach, -reach, reach, reach).contains(each->mapFrom(&view, place))) return each;
    }
    return nullptr;
}

bool NearTouch::pass(const QMouseEvent& event) {
    if (held == nullptr) return false;
    QMouseEvent passed(
        event.type(), held->mapFromGlobal(event.globalPosition()), event.globalPosition(), event.button(),
        event.buttons(), event.modifiers()
    );
    QCoreApplication::sendEvent(held, &passed);
    return true;
}

} // namespace orvane::ui
