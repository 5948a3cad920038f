#pragma once

#include <QPoint>
#include <QString>

class QWidget;

namespace orvane::test {

/// An operator's hand on a real X server: moves the pointer and presses keys as hardware would, while the
/// program runs. Throws if it cannot. Main thread.
class Hand final {
  public:
    /// Clicks the middle of a widget once it is visible and enabled.
    void click(const QWidget& widget, int button = 1);
    void clickAt(const QWidget& widget, QPoint place, int button = 1);
    /// Drags between two places of a widget.
    void drag(const QWidget& widget, QPoint from, QPoint to);
    void type(const QString& text);
    /// Presses a key with its modifiers, for example "ctrl+s" or "Return".
    void press(const QString& keys);
    /// The number of clicks, drags and keys so far.
    [[nodiscard]] int touches() const { return touchCount; }

  private:
    void moveTo(const QWidget& widget, QPoint place);

    int touchCount = 0;
};

} // namespace orvane::test
