#pragma once

#include "platform/base/main_thread.h"
#include "platform/base/system_log.h"

#include <memory>
#include <string>
#include <string_view>

namespace orvane::platform::desktop {

class BusCall;

/// Tells the operator through the desktop what cannot wait until the program's window is looked at. Never
/// waits for the desktop. Main thread.
class DesktopNotifier final {
  public:
    /// Both outlive it.
    DesktopNotifier(MainThread& thread, SystemLog& systemLog);
    ~DesktopNotifier();
    DesktopNotifier(const DesktopNotifier&) = delete;
    DesktopNotifier& operator=(const DesktopNotifier&) = delete;

    /// Shows a critical notification of plain text; the log says why where that is not possible.
    void show(const std::string& title, std::string_view text);

  private:
    MainThread& mainThread;
    SystemLog& log;
    /// The last one: some desktops withdraw a notification once its sender has left the bus.
    std::unique_ptr<BusCall> last;
};

} // namespace orvane::platform::desktop
