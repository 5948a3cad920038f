#include "app/desktop_services.h"

#include <utility>

namespace orvane::app {

DesktopServices::DesktopServices(platform::MainThread& thread, platform::SystemLog& log)
    : mainThread(thread), sleepInhibitor(thread, log), notifier(thread, log) {}

void DesktopServices::follow(const engine::EngineState* mixer) {
    toRunning = {};
    following.reset();
    hasRun = false;
    sleepInhibitor.setHeld(false);
    if (mixer == nullptr) return;
    following = std::make_shared<const bool>(true);
    toRunning =
        mixer->isRunning.subscribe([this, mixer](bool isRunning) { runningChanged(*mixer, isRunning); });
}

void DesktopServices::runningChanged(const engine::EngineState& mixer, bool isRunning) {
    sleepInhibitor.setHeld(isRunning);
    if (!std::exchange(hasRun, isRunning) || isRunning) return;
    // If the audio stopped by itself, the engine sets the reason before it returns to the main thread's loop.
    platform::MainThread::Poster(mainThread, following)([this, &mixer, before = mixer.lastError.get()] {
        if (mixer.isRunning.get()) return;
        const auto& reason = mixer.lastError.get();
        if (reason && reason != before) notifier.show("The mixer has stopped", *reason);
    });
}

} // namespace orvane::app
