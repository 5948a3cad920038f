#pragma once

#include <QApplication>

namespace orvane::ui {

/// The application that goes on where an event's handler finds no memory: what it was to do is left out and
/// reported. Owned by `main`. Main thread.
class Application final : public QApplication {
  public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override;
};

} // namespace orvane::ui
