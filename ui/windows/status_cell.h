#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

class QLabel;

namespace orvane::ui {

/// A small caption above a value, as the status bar shows them. Main thread.
class StatusCell final : public QWidget {
  public:
    /// The height of a value, in points.
    static constexpr int valueHeight = 20;

    /// Takes `value` over. `alignment`: horizontally, of both.
    StatusCell(const QString& caption, QWidget* value, Qt::Alignment alignment = Qt::AlignHCenter);

    void setCaption(const QString& text, const QColor& color);

  private:
    QLabel* const title;
};

} // namespace orvane::ui
