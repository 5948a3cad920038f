#pragma once

#include "cycle_times.h"

#include "platform/audio_hardware/audio_driver.h"

#include <memory>

namespace orvane::bench {

/// The devices of another driver, with every cycle of theirs timed. `times` outlives it.
std::unique_ptr<platform::AudioDriver>
timed(std::unique_ptr<platform::AudioDriver> driver, CycleTimes& times);

} // namespace orvane::bench
