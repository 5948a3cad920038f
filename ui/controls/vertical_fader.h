#pragma once

#include <QWidget>

#include <functional>
#include <optional>

namespace orvane::ui {

/// An upright fader that snaps to its default value, which a white stripe marks. Drag or click to set it;
/// while it has the focus, wheel and arrow keys step it, finely with Shift, and Home and End go to its ends.
class VerticalFader final : public QWidget {
  public:
    /// What a fader is like; sizes in points.
    struct Style {
        /// The values at the bottom and the top of the track.
        double lowest = 0.0;
        double highest = 1.0;
        /// Marked and snapped to; absent = neither.
        std::optional<double> defaultValue = {};
        double trackWidth = 4.0;
        double thumbWidth = 22.0;
        double thumbHeight = 14.0;
        double defaultStripeWidth = 28.0;
        double defaultStripeHeight = 2.0;
        /// The distance from the stripe within which a touch snaps.
        double snapTolerance = 6.0;
    };

    /// `onChange` gets every value that the user sets.
    VerticalFader(const Style& faderStyle, std::function<void(double)> onChange, QWidget* parent = nullptr);

    [[nodiscard]] double lowest() const { return style.lowest; }
    [[nodiscard]] double highest() const { return style.highest; }
    /// What an arrow key moves the value by.
    [[nodiscard]] double step() const;
    [[nodiscard]] double value() const { return current; }
    /// Shows a value without telling anybody.
    void setValue(double value);
    /// Sets a value, or the end of the range that is nearest to it, as the user does.
    void choose(double value);

    /// How far the thumb reaches beyond the track at either end: the track is the fader's height without
    /// that.
    [[nodiscard]] int overhang() const;
    /// The distance from the top at which a value lies.
    [[nodiscard]] double positionOf(double value) const;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    [[nodiscard]] int trackHeight() const;
    void touch(double y);

    const Style style;
    const std::function<void(double)> changed;
    double current;
};

} // namespace orvane::ui
