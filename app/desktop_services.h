#pragma once

#include "audio/published.h"
#include "engine/engine_state.h"
#include "platform/base/main_thread.h"
#include "platform/base/system_log.h"
#include "platform/desktop/desktop_notifier.h"
#include "platform/desktop/sleep_inhibitor.h"

#include <memory>

namespace orvane::app {

/// What the desktop does for the mixer: keeps the machine awake while the audio runs, and tells the operator
/// of audio that has stopped by itself. Main thread.
class DesktopServices final {
  public:
    /// Both outlive it.
    DesktopServices(platform::MainThread& thread, platform::SystemLog& log);

    /// Serves the mixer of that state, whose audio does not run yet, in place of any other; null is none.
    void follow(const engine::EngineState* mixer);

  private:
    void hear(const engine::EngineState& mixer, bool isRunning);

    platform::MainThread& mainThread;
    platform::desktop::SleepInhibitor sleepInhibitor;
    platform::desktop::DesktopNotifier notifier;
    audio::Subscription toRunning;
    /// Ends with the service for one mixer.
    std::shared_ptr<const bool> following;
    bool hasRun = false;
};

} // namespace orvane::app
