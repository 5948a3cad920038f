#pragma once

#include "cycle_times.h"

#include "platform/audio_hardware/audio_driver.h"

#include <memory>

namespace orvane::bench {

/// Wraps another driver's devices and times every cycle. `times` must outlive it.
std::unique_ptr<platform::AudioDriver>
timed(std::unique_ptr<platform::AudioDriver> driver, CycleTimes& times);

} // namespace orvane::bench
