#pragma once

#include "ui/meters/segments.h"

#include <QBasicTimer>
#include <QVariantAnimation>
#include <QWidget>

#include <vector>

namespace orvane::ui {

/// A row of segments that are lit from one end up to a value. Repaints only the segments that change. Main
/// thread.
class SegmentMeter : public QWidget {
  public:
    /// The look of a meter's segments.
    struct Style {
        double gap = 2.0;
        double cornerRadius = 1.5;
        MeterOrigin origin = MeterOrigin::bottom;
    };

    /// The value that a meter shows, for assistive tools.
    struct Reading {
        double value = 0.0;
        double lowest = 0.0;
        double highest = 1.0;
        /// For example "-12 dB".
        QString text;
    };

    SegmentMeter(int segmentCount, const Style& meterStyle, QWidget* parent);

    [[nodiscard]] int segmentCount() const { return count; }
    [[nodiscard]] int litSegments() const { return lit; }

    [[nodiscard]] virtual Reading reading() const = 0;

    /// A resting meter fades out and stays dark; otherwise its segments show at once.
    void setResting(bool isResting);

    /// A dimmed meter shows its lit segments faintly.
    void setDimmed(bool isDimmed);

  protected:
    void setLit(int segments);

    /// The colour of a lit segment.
    [[nodiscard]] virtual QColor colorOf(int segment) const = 0;
    /// The share of its lit colour that a segment shows, 0 to 1.
    [[nodiscard]] virtual double brightnessOf(int segment) const { return segment < lit ? 1.0 : 0.0; }

    void repaintSegments(int first, int last);
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

  private:
    void setPresence(double share);

    const int count;
    const Style style;
    /// Runs from a change to its announcement to assistive tools.
    QBasicTimer announcement;
    int lit = 0;
    /// The visibility of the lit segments, 0 to 1.
    double presence = 1.0;
    bool dimmed = false;
    QVariantAnimation resting;
    std::vector<QRectF> segments;
};

} // namespace orvane::ui
