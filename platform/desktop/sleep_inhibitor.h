#pragma once

#include "platform/base/file_descriptor.h"
#include "platform/base/main_thread.h"
#include "platform/base/system_log.h"

#include <memory>
#include <optional>

namespace orvane::platform::desktop {

class BusCall;

/// Keeps the machine from going to sleep, by itself or at a menu's word, as long as that is wanted: holds a
/// lock of the login manager. Never waits for it. Main thread.
class SleepInhibitor final {
  public:
    /// Where sleep cannot be inhibited, the log says so once. Both outlive it.
    SleepInhibitor(MainThread& thread, SystemLog& systemLog);
    /// Ends the lock.
    ~SleepInhibitor();
    SleepInhibitor(const SleepInhibitor&) = delete;
    SleepInhibitor& operator=(const SleepInhibitor&) = delete;

    /// Asks for the lock, unless it is held or asked for already, or ends it.
    void setHeld(bool isWanted);

  private:
    void ask();

    MainThread& mainThread;
    SystemLog& log;
    /// While the lock is asked for.
    std::unique_ptr<BusCall> request;
    /// It lasts as long as this is open.
    std::optional<FileDescriptor> lock;
    bool hasComplained = false;
};

} // namespace orvane::platform::desktop
