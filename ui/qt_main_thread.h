#pragma once

#include "platform/base/main_thread.h"

#include <QObject>

namespace orvane::ui {

/// The main thread of a program with windows: Qt's event loop. Made on that thread, after the QApplication.
class QtMainThread final : public platform::MainThread {
  public:
    void post(std::function<void()> task) override;

    [[nodiscard]] std::unique_ptr<platform::MainThreadTimer>
    repeat(std::chrono::nanoseconds interval, std::function<void()> task) override;

  private:
    /// Lives on the main thread, so that posted tasks run there.
    QObject receiver;
};

} // namespace orvane::ui
