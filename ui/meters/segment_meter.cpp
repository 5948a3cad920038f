#include "ui/meters/segment_meter.h"

#include "ui/theme/theme.h"

#include <QAccessible>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace orvane::ui {

namespace {

constexpr int restingMs = 600;
constexpr double dimmedShare = 0.35;
/// The shortest time between two announcements of a meter's value.
constexpr int announcementMs = 500;

/// The pixels that a segment may colour. At fractional scales its smoothed edges extend beyond its own.
QRect reachOf(const QRectF& segment) {
    return segment.toAlignedRect().adjusted(-1, -1, 1, 1);
}

} // namespace

SegmentMeter::SegmentMeter(int segmentCount, const Style& meterStyle, QWidget* parent)
    : QWidget(parent), count(segmentCount), style(meterStyle) {
    resting.setDuration(restingMs);
    resting.setStartValue(1.0);
    resting.setEndValue(0.0);
    connect(&resting, &QVariantAnimation::valueChanged, this, [this](const QVariant& share) {
        setPresence(share.toDouble());
    });
}

void SegmentMeter::setResting(bool isResting) {
    resting.stop();
    if (isResting && isVisible())
        resting.start();
    else
        setPresence(isResting ? 0.0 : 1.0);
}

void SegmentMeter::setDimmed(bool isDimmed) {
    if (isDimmed == dimmed) return;
    dimmed = isDimmed;
    repaintSegments(0, lit);
}

void SegmentMeter::setPresence(double share) {
    presence = share;
    repaintSegments(0, lit);
}

void SegmentMeter::setLit(int segmentsToLight) {
    if (segmentsToLight == lit) return;
    const auto [first, last] = std::minmax({segmentsToLight, lit});
    lit = segmentsToLight;
    repaintSegments(first, last);
    if (QAccessible::isActive() && !announcement.isActive()) announcement.start(announcementMs, this);
}

void SegmentMeter::timerEvent(QTimerEvent* event) {
    if (event->timerId() != announcement.timerId()) return QWidget::timerEvent(event);
    announcement.stop();
    QAccessibleValueChangeEvent change(this, reading().value);
    QAccessible::updateAccessibility(&change);
}

void SegmentMeter::repaintSegments(int first, int last) {
    if (segments.empty()) return;
    for (int k = std::max(first, 0); k < std::min(last, count); ++k)
        update(reachOf(segments[static_cast<std::size_t>(k)]));
}

void SegmentMeter::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    for (int k = 0; k < static_cast<int>(segments.size()); ++k) {
        const QRectF& segment = segments[static_cast<std::size_t>(k)];
        if (!event->rect().intersects(reachOf(segment))) continue;
        const double brightness = brightnessOf(k) * presence * (dimmed ? dimmedShare : 1.0);
        if (brightness < 1.0) {
            painter.setBrush(theme::unlit);
            painter.drawRoundedRect(segment, style.cornerRadius, style.cornerRadius);
        }
        if (brightness > 0.0) {
            QColor color = colorOf(k);
            color.setAlphaF(static_cast<float>(brightness));
            painter.setBrush(color);
            painter.drawRoundedRect(segment, style.cornerRadius, style.cornerRadius);
        }
    }
}

void SegmentMeter::resizeEvent(QResizeEvent*) {
    segments = layOutSegments(size(), count, style.gap, style.origin);
}

} // namespace orvane::ui
