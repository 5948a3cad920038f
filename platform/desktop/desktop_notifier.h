#pragma once

#include "platform/base/main_thread.h"
#include "platform/base/system_log.h"

#include <memory>
#include <string>
#include <string_view>

namespace orvane::platform::desktop {

class BusCall;

/// Shows desktop notifications to the operator, for what cannot wait until the program's window is looked at.
/// Never blocks. Main thread.
class DesktopNotifier final {
  public:
    /// Both arguments must outlive the notifier.
    DesktopNotifier(MainThread& thread, SystemLog& systemLog);
    ~DesktopNotifier();
    DesktopNotifier(const DesktopNotifier&) = delete;
    DesktopNotifier& operator=(const DesktopNotifier&) = delete;

    /// Shows a critical notification of plain text; logs the reason if that fails.
    void show(const std::string& title, std::string_view text);

  private:
    MainThread& mainThread;
    SystemLog& log;
    /// Kept: some desktops withdraw a notification when its sender leaves the bus.
    std::unique_ptr<BusCall> last;
};

} // namespace orvane::platform::desktop
