#pragma once

#include <QLineEdit>

#include <functional>

namespace orvane::ui {

/// A value as text that can be edited. Enter, or leaving the field, accepts the number in it; Esc restores
/// the value.
class ValueField final : public QLineEdit {
  public:
    struct Style {
        /// Formats a value.
        std::function<QString(double)> write;
        /// Returns the value for a typed number, given all that was typed; the number itself if empty.
        std::function<double(double, const QString&)> read = {};
        /// The range of values; typed numbers beyond it are clamped.
        double lowest = 0.0;
        double highest = 1.0;
        int width = 56;
        Qt::Alignment alignment = Qt::AlignRight;
    };

    /// `onChange` receives every value that the user types. `name`: for screen readers.
    ValueField(const QString& name, Style fieldStyle, std::function<void(double)> onChange);

    /// Shows a value without calling `onChange`. Text that is being typed stays.
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
