#pragma once

#include <QLineEdit>

namespace orvane::ui {

/// A line of text that ends with "…" if it is too long, except while it is being edited. Main thread.
class NameField final : public QLineEdit {
  public:
    using QLineEdit::QLineEdit;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

/// What such a field of that width in pixels shows of a text.
QString elidedIn(const QString& text, const QFontMetrics& metrics, int fieldWidth);

} // namespace orvane::ui
