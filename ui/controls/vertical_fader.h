#pragma once

#include <QWidget>

#include <functional>
#include <optional>

namespace orvane::ui {

/// A vertical fader that snaps to its default value, marked by a white stripe. A click or a drag sets it.
/// While it has the focus, the wheel and the arrow keys step it, in fine steps with Shift, and Home and End
/// move it to the ends.
class VerticalFader final : public QWidget {
  public:
    /// The range and the look of a fader; sizes in points.
    struct Style {
        /// The values at the bottom and the top of the track.
        double lowest = 0.0;
        double highest = 1.0;
        /// The value that is marked and snapped to; none if absent.
        std::optional<double> defaultValue = {};
        double trackWidth = 4.0;
        double thumbWidth = 22.0;
        double thumbHeight = 14.0;
        double defaultStripeWidth = 28.0;
        double defaultStripeHeight = 2.0;
        /// A touch within this distance of the stripe snaps.
        double snapTolerance = 6.0;
    };

    /// `onChange` receives every value that the user sets.
    VerticalFader(const Style& faderStyle, std::function<void(double)> onChange, QWidget* parent = nullptr);

    [[nodiscard]] double lowest() const { return style.lowest; }
    [[nodiscard]] double highest() const { return style.highest; }
    /// The change that an arrow key makes.
    [[nodiscard]] double step() const;
    [[nodiscard]] double value() const { return current; }
    /// Shows a value without calling `onChange`.
    void setValue(double value);
    /// Sets a value, clamped to the range, as if the user had done so.
    void choose(double value);

    /// How far the thumb extends beyond the track at either end. The track is the fader's height minus both.
    [[nodiscard]] int overhang() const;
    /// The distance of a value from the top.
    [[nodiscard]] double positionOf(double value) const;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    [[nodiscard]] int trackHeight() const;
    void touch(double y);

    const Style style;
    const std::function<void(double)> changed;
    double current;
};

} // namespace orvane::ui
