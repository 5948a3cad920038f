#pragma once

#include <QApplication>

namespace orvane::ui {

/// An application that continues if an event handler runs out of memory: the handler's work is abandoned and
/// the shortage is reported. Owned by `main`. Main thread.
class Application final : public QApplication {
  public:
    /// Applies the theme and makes the controls accessible.
    Application(int& argumentCount, char** arguments);

    bool notify(QObject* receiver, QEvent* event) override;
};

} // namespace orvane::ui
