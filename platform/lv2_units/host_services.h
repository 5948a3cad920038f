#pragma once

#include "platform/lv2_units/urid_map.h"
#include "platform/system_log.h"

#include <atomic>
#include <mutex>

namespace orvane::platform::lv2_units {

/// What one host and all units it made share; lives as long as any of them. The log outlives it.
struct HostServices {
    SystemLog& log;
    UridMap urids = {};
    /// At which plugins are expected to run, in Hz; each is instantiated for it.
    std::atomic<double> sampleRate = 48000.0;
    /// Held while a plugin is instantiated or destroyed. Not all plugins' libraries can do either twice at
    /// a time.
    std::mutex instantiating = {};
};

} // namespace orvane::platform::lv2_units
