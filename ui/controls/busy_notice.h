#pragma once

#include <QLabel>

namespace orvane::ui {

/// A line at the bottom of a view's window that names the work in progress while the notice exists. It
/// appears only if the work takes noticeable time, and never blocks the window, so that mixing stays
/// possible. Main thread.
class BusyNotice final : public QLabel {
    Q_OBJECT

  public:
    BusyNotice(QWidget* view, const QString& text);

  private:
    void appear();
};

} // namespace orvane::ui
