#pragma once

#include <QLineEdit>

#include <functional>

namespace orvane::ui {

/// A value in writing that can be typed over: Enter or leaving the field takes the number in it, Esc leaves
/// the value as it was.
class ValueField final : public QLineEdit {
  public:
    struct Style {
        /// How a value is written.
        std::function<QString(double)> write;
        /// What can be typed; beyond it the nearest end counts.
        double lowest = 0.0;
        double highest = 1.0;
        int width = 56;
        Qt::Alignment alignment = Qt::AlignRight;
    };

    /// `onChange` gets every value that the user types. `name`: for screen readers.
    ValueField(const QString& name, Style fieldStyle, std::function<void(double)> onChange);

    /// Shows a value without telling anybody; what is being typed stays.
    void setValue(double value);

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

  private:
    void commit();

    const Style style;
    const std::function<void(double)> changed;
    double current = 0.0;
};

} // namespace orvane::ui
