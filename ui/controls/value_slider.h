#pragma once

#include <QSlider>

#include <functional>
#include <optional>

namespace orvane::ui {

/// A level slider over a range of values. Click or drag to set it, double click its handle for the default;
/// while it has the focus, wheel and arrow keys step it, finely with Shift, and Home and End go to its ends.
class ValueSlider final : public QSlider {
  public:
    struct Range {
        double lowest = 0.0;
        double highest = 1.0;
        /// The distance of the values on offer; 0 = any value.
        double step = 0.0;
        /// Where a double click on the handle leads; absent = nowhere.
        std::optional<double> defaultValue = {};
    };

    /// `onChange` gets every value that the user sets. `name`: for screen readers.
    ValueSlider(
        const QString& name, const Range& valueRange, std::function<void(double)> onChange,
        QWidget* parent = nullptr
    );

    [[nodiscard]] double lowest() const { return range.lowest; }
    [[nodiscard]] double highest() const { return range.highest; }
    /// What an arrow key moves the value by.
    [[nodiscard]] double step() const;
    [[nodiscard]] double value() const { return current; }
    /// Shows a value, or the end of the range that is nearest to it, without telling anybody.
    void setValue(double value);
    /// Sets the value on offer that is nearest to this one, as the user does.
    void choose(double value);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void touch(double x);
    void stepBy(double steps, Qt::KeyboardModifiers modifiers);

    const Range range;
    const std::function<void(double)> changed;
    double current;
    /// Whether the last press was on the handle, not beside it.
    bool isHandlePressed = false;
    /// What the wheel has turned beyond the last step.
    double turned = 0.0;
};

} // namespace orvane::ui
