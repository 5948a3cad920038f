#include "ui/qt_main_thread.h"

#include <QMetaObject>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <utility>

namespace orvane::ui {

namespace {

class Timer final : public platform::MainThreadTimer {
  public:
    Timer(std::chrono::nanoseconds interval, std::function<void()> task) {
        timer->setTimerType(Qt::PreciseTimer);
        timer->setInterval(
            std::max(std::chrono::round<std::chrono::milliseconds>(interval), std::chrono::milliseconds(1))
        );
        QObject::connect(timer, &QTimer::timeout, std::move(task));
        timer->start();
    }

    /// Deletes the timer later, because its own task may be destroying it.
    ~Timer() override {
        timer->stop();
        timer->deleteLater();
    }

  private:
    QTimer* const timer = new QTimer;
};

} // namespace

void QtMainThread::post(std::function<void()> task) {
    QMetaObject::invokeMethod(&receiver, std::move(task), Qt::QueuedConnection);
}

std::unique_ptr<platform::MainThreadTimer>
QtMainThread::repeat(std::chrono::nanoseconds interval, std::function<void()> task) {
    return std::make_unique<Timer>(interval, std::move(task));
}

} // namespace orvane::ui
