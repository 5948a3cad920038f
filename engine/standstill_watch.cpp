#include "engine/standstill_watch.h"

#include <chrono>
#include <utility>

namespace orvane::engine {

namespace {

using namespace std::chrono_literals;

constexpr auto interval = 250ms;
constexpr double nanosecondsPerSecond = 1e9;

} // namespace

void StandstillWatch::start(std::weak_ptr<const audio::MixerRealtimeState> run) {
    lastCount = 0;
    lastChange = clock.absoluteTime();
    hasReported = false;
    timer = mainThread.repeat(interval, [this, weakRun = std::move(run)] {
        if (const auto alive = weakRun.lock()) look(*alive);
    });
}

void StandstillWatch::look(const audio::MixerRealtimeState& state) {
    const std::uint64_t now = clock.absoluteTime();
    if (const std::uint64_t count = state.blockCount(); count != lastCount) {
        lastCount = count;
        lastChange = now;
        if (std::exchange(hasReported, false)) report(state, false);
        return;
    }
    const platform::TimebaseInfo& timebase = clock.timebaseInfo;
    const double seconds =
        static_cast<double>(now - lastChange) * timebase.numer / timebase.denom / nanosecondsPerSecond;
    if (seconds >= longestStandstill && !std::exchange(hasReported, true)) report(state, true);
}

} // namespace orvane::engine
