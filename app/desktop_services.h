#pragma once

#include "engine/engine_state.h"
#include "platform/base/main_thread.h"
#include "platform/base/published.h"
#include "platform/base/system_log.h"
#include "platform/desktop/desktop_notifier.h"
#include "platform/desktop/sleep_inhibitor.h"

#include <memory>

namespace orvane::app {

/// The mixer's use of the desktop: keeps the computer awake while the audio runs, and notifies the operator
/// if the audio stops by itself. Main thread.
class DesktopServices final {
  public:
    /// Both must outlive it.
    DesktopServices(platform::MainThread& thread, platform::SystemLog& log);

    /// Follows the mixer of that state, which must not be running yet, instead of any other; null for no
    /// mixer.
    void follow(const engine::EngineState* mixer);

  private:
    void runningChanged(const engine::EngineState& mixer, bool isRunning);

    platform::MainThread& mainThread;
    platform::desktop::SleepInhibitor sleepInhibitor;
    platform::desktop::DesktopNotifier notifier;
    platform::Subscription toRunning;
    /// Expires when another mixer is followed.
    std::shared_ptr<const bool> following;
    bool hasRun = false;
};

} // namespace orvane::app
