#pragma once

#include <QPoint>
#include <QString>

class QWidget;

namespace orvane::test {

/// The hand of an operator on a real X server: moves its pointer and presses its keys, as hardware would,
/// while the program goes on. Throws where it cannot. Main thread.
class Hand final {
  public:
    /// Clicks the middle of a widget once it can be seen and takes clicks.
    void click(const QWidget& widget, int button = 1);
    void clickAt(const QWidget& widget, QPoint place, int button = 1);
    /// Drags from one place within a widget to another.
    void drag(const QWidget& widget, QPoint from, QPoint to);
    void type(const QString& text);
    /// A key with its modifiers, as in "ctrl+s" or "Return".
    void press(const QString& keys);

  private:
    void moveTo(const QWidget& widget, QPoint place);
};

} // namespace orvane::test
