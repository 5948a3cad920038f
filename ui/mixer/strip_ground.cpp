#include "ui/mixer/strip_ground.h"

#include "ui/theme/theme.h"

#include <QAbstractScrollArea>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollerProperties>

#include <utility>

namespace orvane::ui {

namespace {

constexpr double frameWidth = 3.0;
constexpr int frameDistance = 2;
constexpr double cornerRadius = 9.0;

QRect frameAround(const QRect& strip) {
    const int room = frameDistance + static_cast<int>(frameWidth);
    return strip.adjusted(-room, -room, room, room);
}

} // namespace

StripGround::StripGround(QAbstractScrollArea& scrolled) : area(scrolled) {
    QScrollerProperties properties;
    for (const auto direction :
         {QScrollerProperties::HorizontalOvershootPolicy, QScrollerProperties::VerticalOvershootPolicy})
        properties.setScrollMetric(direction, QScrollerProperties::OvershootAlwaysOff);
    QScroller::scroller(area.viewport())->setScrollerProperties(properties);
}

void StripGround::mark(const QRect& strip) {
    if (strip == marked) return;
    update(frameAround(std::exchange(marked, strip)));
    update(frameAround(marked));
}

void StripGround::paintEvent(QPaintEvent*) {
    if (marked.isEmpty()) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme::accent, frameWidth));
    const double inset = frameWidth / 2.0;
    painter.drawRoundedRect(
        QRectF(frameAround(marked)).adjusted(inset, inset, -inset, -inset), cornerRadius, cornerRadius
    );
}

void StripGround::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) drag(QScroller::InputPress, *event);
}

void StripGround::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons().testFlag(Qt::LeftButton)) drag(QScroller::InputMove, *event);
}

void StripGround::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) drag(QScroller::InputRelease, *event);
}

void StripGround::drag(QScroller::Input input, const QMouseEvent& event) {
    // The ground itself moves while it is dragged.
    const QPointF place = area.viewport()->mapFromGlobal(event.globalPosition());
    QScroller::scroller(area.viewport())->handleInput(input, place, static_cast<qint64>(event.timestamp()));
}

} // namespace orvane::ui
