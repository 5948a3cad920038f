#include "ui/application.h"

#include "platform/base/memory_shortage.h"
#include "ui/controls/accessible_controls.h"
#include "ui/meters/accessible_meters.h"
#include "ui/theme/theme.h"

namespace orvane::ui {

Application::Application(int& argumentCount, char** arguments) : QApplication(argumentCount, arguments) {
    applyTheme(*this);
    makeControlsAccessible();
    makeMetersAccessible();
}

bool Application::notify(QObject* receiver, QEvent* event) {
    bool isHandled = false;
    platform::runUnlessOutOfMemory([&] { isHandled = QApplication::notify(receiver, event); });
    return isHandled;
}

} // namespace orvane::ui
