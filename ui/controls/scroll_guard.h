#pragma once

#include <QObject>

#include <cstdint>
#include <optional>

class QScrollArea;
class QWidget;

namespace orvane::ui {

/// Lets a wheel that scrolls an area go on doing so whatever control comes under the pointer. Main thread.
class ScrollGuard final : public QObject {
  public:
    /// Guards the controls that `area` holds now, all of them; the area owns the guard.
    explicit ScrollGuard(QScrollArea& area);

  protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

  private:
    QWidget* const viewport;
    /// When the wheel has scrolled, in the milliseconds of its events.
    std::optional<std::uint64_t> scrolledAt;
};

} // namespace orvane::ui
