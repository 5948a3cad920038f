#pragma once

#include "platform/base/file_descriptor.h"
#include "platform/base/main_thread.h"
#include "platform/base/system_log.h"

#include <memory>
#include <optional>

namespace orvane::platform::desktop {

class BusCall;

/// Keeps the computer from going to sleep, automatically or on request, by holding a lock of the login
/// manager. Never blocks. Main thread.
class SleepInhibitor final {
  public:
    /// If sleep cannot be inhibited, the log reports it once. Both arguments must outlive the inhibitor.
    SleepInhibitor(MainThread& thread, SystemLog& systemLog);
    /// Releases the lock.
    ~SleepInhibitor();
    SleepInhibitor(const SleepInhibitor&) = delete;
    SleepInhibitor& operator=(const SleepInhibitor&) = delete;

    /// Requests the lock, unless it is held or requested already, or releases it.
    void setHeld(bool isWanted);

  private:
    void ask();

    MainThread& mainThread;
    SystemLog& log;
    /// Exists while the lock is being requested.
    std::unique_ptr<BusCall> request;
    /// The lock is held as long as this is open.
    std::optional<FileDescriptor> lock;
    bool hasComplained = false;
};

} // namespace orvane::platform::desktop
