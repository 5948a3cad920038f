#include "ui/controls/near_touch.h"

#include "ui/controls/console_button.h"
#include "ui/controls/value_slider.h"
#include "ui/controls/vertical_fader.h"
#include "ui/theme/theme.h"

#include <QCoreApplication>
#include <QMouseEvent>

#include <algorithm>

namespace orvane::ui {

namespace {

/// The largest distance from a track.
constexpr int reach = 12;
constexpr int trackThickness = 4;

/// Returns the area around the track of a slider or a fader, in its own coordinates; empty for other widgets.
QRect areaOfTrack(const QWidget& widget) {
    QRect track = widget.rect();
    if (dynamic_cast<const ValueSlider*>(&widget) != nullptr)
        track.setHeight(trackThickness);
    else if (dynamic_cast<const VerticalFader*>(&widget) != nullptr)
        track.setWidth(trackThickness);
    else
        return {};
    track.moveCenter(widget.rect().center());
    return track.adjusted(-reach, -reach, reach, reach);
}

/// Returns the area of a button that is high enough for a finger; empty for other widgets.
QRect areaOfButton(const QWidget& widget) {
    if (dynamic_cast<const ConsoleButton*>(&widget) == nullptr) return {};
    QRect area = widget.rect();
    area.setHeight(std::max(area.height(), theme::touchTarget));
    area.moveCenter(widget.rect().center());
    return area;
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
        held = nullptr;
        if (press.button() == Qt::LeftButton) hold(press.position().toPoint());
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

void NearTouch::hold(QPoint place) {
    for (const auto& areaOf : {areaOfTrack, areaOfButton})
        for (QWidget* each : view.findChildren<QWidget*>()) {
            const QPoint pressed = each->mapFrom(&view, place);
            if (!each->isVisible() || !each->isEnabled() || !areaOf(*each).contains(pressed)) continue;
            const QRect own = each->rect();
            const QPoint closest(
                std::clamp(pressed.x(), own.left(), own.right()),
                std::clamp(pressed.y(), own.top(), own.bottom())
            );
            held = each;
            offset = closest - pressed;
            if (each->focusPolicy() == Qt::StrongFocus) each->setFocus(Qt::MouseFocusReason);
            return;
        }
}

bool NearTouch::pass(const QMouseEvent& event) {
    if (held == nullptr) return false;
    QMouseEvent passed(
        event.type(), held->mapFromGlobal(event.globalPosition()) + offset, event.globalPosition(),
        event.button(), event.buttons(), event.modifiers()
    );
    QCoreApplication::sendEvent(held, &passed);
    return true;
}

} // namespace orvane::ui
