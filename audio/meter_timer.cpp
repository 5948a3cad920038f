#include "audio/meter_timer.h"

#include <chrono>
#include <ratio>
#include <utility>

namespace orvane::audio {

namespace {

constexpr auto interval =
    std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<int, std::ratio<1, 30>>(1));

} // namespace

void MeterTimer::start(std::weak_ptr<MixerRealtimeState> state) {
    meterTimer = mainThread.repeat(interval, [this, weakState = std::move(state)] {
        if (const auto alive = weakState.lock()) model.update(*alive);
    });
}

void MeterTimer::stop() {
    meterTimer.reset();
    model.showStopped();
}

} // namespace orvane::audio
