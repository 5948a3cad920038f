#pragma once

#include <QLabel>

namespace orvane::ui {

/// A line that says what is being done, at the foot of the window of a view for as long as it is held; not
/// shown at all for what is done at once. Takes nothing away from the window, which may have to be mixed on.
/// Main thread.
class BusyNotice final : public QLabel {
    Q_OBJECT

  public:
    BusyNotice(QWidget* view, const QString& text);

  private:
    void appear();
};

} // namespace orvane::ui
