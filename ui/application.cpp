#include "ui/application.h"

#include "platform/base/memory_shortage.h"

namespace orvane::ui {

bool Application::notify(QObject* receiver, QEvent* event) {
    bool isHandled = false;
    platform::runUnlessOutOfMemory([&] { isHandled = QApplication::notify(receiver, event); });
    return isHandled;
}

} // namespace orvane::ui
