#pragma once

#include "audio/mixer_realtime_state.h"
#include "platform/base/host_clock.h"
#include "platform/base/main_thread.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

namespace orvane::engine {

/// Notices that a run renders no blocks any more, because an insert does not return or the device has stopped
/// asking. Owned by the engine; destroying it ends the watch. Main thread.
class StandstillWatch final {
  public:
    /// Called with the run's state: once it has stood still for `longestStandstill`, and once it goes on.
    using Report = std::function<void(const audio::MixerRealtimeState& state, bool standsStill)>;

    /// In seconds.
    static constexpr double longestStandstill = 2.0;

    /// `thread` outlives the watch.
    StandstillWatch(platform::MainThread& thread, platform::HostClock hostClock, Report onChange)
        : mainThread(thread), clock(hostClock), report(std::move(onChange)) {}

    /// Watches a run, as long as something else keeps its state alive, in place of the one before.
    void start(std::weak_ptr<const audio::MixerRealtimeState> run);
    void stop() { timer.reset(); }

  private:
    void look(const audio::MixerRealtimeState& state);

    platform::MainThread& mainThread;
    platform::HostClock clock;
    Report report;
    std::unique_ptr<platform::MainThreadTimer> timer;
    std::uint64_t lastCount = 0;
    /// When the last change of the count was seen, in the clock's ticks.
    std::uint64_t lastChange = 0;
    bool hasReported = false;
};

} // namespace orvane::engine
