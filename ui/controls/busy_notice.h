#pragma once

#include <QString>

#include <memory>

class QProgressDialog;
class QWidget;

namespace orvane::ui {

/// A notice that something is being done, in front of the window of a view for as long as it is held; not
/// shown at all for what is done at once. Main thread.
class BusyNotice final {
  public:
    BusyNotice(QWidget* view, const QString& text);
    ~BusyNotice();
    BusyNotice(const BusyNotice&) = delete;
    BusyNotice& operator=(const BusyNotice&) = delete;

  private:
    std::unique_ptr<QProgressDialog> dialog;
};

} // namespace orvane::ui
