#pragma once

#include <QLineEdit>

namespace orvane::ui {

/// A line of text that is elided if it is too long, except during editing. Main thread.
class NameField final : public QLineEdit {
  public:
    using QLineEdit::QLineEdit;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

/// Returns the text that a field of this width in pixels shows.
QString elidedIn(const QString& text, const QFontMetrics& metrics, int fieldWidth);

} // namespace orvane::ui
