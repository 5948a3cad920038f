#pragma once

#include <QSlider>

#include <functional>
#include <optional>

namespace orvane::ui {

/// A slider over a range of values. A click or a drag sets it; a double click on its handle restores the
/// default. While it has the focus, the wheel and the arrow keys step it, in fine steps with Shift, and Home
/// and End move it to the ends.
class ValueSlider final : public QSlider {
  public:
    struct Range {
        double lowest = 0.0;
        double highest = 1.0;
        /// The distance between selectable values; 0 allows any value.
        double step = 0.0;
        /// The value for a double click on the handle; none if absent.
        std::optional<double> defaultValue = {};
        /// Whether the slider fills from its default value, which a mark shows, instead of from its lowest
        /// one.
        bool fillsFromDefault = false;
    };

    /// `onChange` receives every value that the user sets. `name`: for screen readers.
    ValueSlider(
        const QString& name, const Range& valueRange, std::function<void(double)> onChange,
        QWidget* parent = nullptr
    );

    [[nodiscard]] double lowest() const { return range.lowest; }
    [[nodiscard]] double highest() const { return range.highest; }
    /// The change that an arrow key makes.
    [[nodiscard]] double step() const;
    [[nodiscard]] double value() const { return current; }
    /// Shows a value, clamped to the range, without calling `onChange`.
    void setValue(double value);
    /// Sets the nearest selectable value as if the user had done so.
    void choose(double value);

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void touch(double x);
    /// The distance of a value from the left.
    [[nodiscard]] double positionOf(double value) const;
    void stepBy(double steps, Qt::KeyboardModifiers modifiers);

    const Range range;
    const std::function<void(double)> changed;
    double current;
    /// Whether the last press was on the handle.
    bool isHandlePressed = false;
    /// The part of a step that the wheel has turned so far.
    double turned = 0.0;
};

} // namespace orvane::ui
