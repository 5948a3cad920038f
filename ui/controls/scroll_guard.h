#pragma once

#include <QObject>

#include <cstdint>
#include <optional>

class QScrollArea;
class QWidget;

namespace orvane::ui {

/// Lets a wheel that scrolls an area continue to do so when controls pass under the pointer. Main thread.
class ScrollGuard final : public QObject {
  public:
    /// Guards all controls that `area` contains now; the area owns the guard.
    explicit ScrollGuard(QScrollArea& area);

  protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

  private:
    QWidget* const viewport;
    /// The timestamp of the last scrolling wheel event, in milliseconds.
    std::optional<std::uint64_t> scrolledAt;
};

} // namespace orvane::ui
