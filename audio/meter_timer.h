#pragma once

#include "audio/meter_model.h"
#include "platform/base/main_thread.h"

#include <memory>

namespace orvane::audio {

/// Updates the meters 30 times a second while a run goes on. Owned by the engine; destroying it ends the
/// updates. Main thread.
class MeterTimer final {
  public:
    /// Both must outlive the timer.
    MeterTimer(platform::MainThread& thread, MeterModel& meters) : mainThread(thread), model(meters) {}

    /// Shows `state`, instead of any earlier one, at every tick as long as its owner keeps it alive.
    void start(std::weak_ptr<MixerRealtimeState> state);

    /// Ends the updates and shows no load.
    void stop();

  private:
    platform::MainThread& mainThread;
    MeterModel& model;
    std::unique_ptr<platform::MainThreadTimer> meterTimer;
};

} // namespace orvane::audio
