#pragma once

#include "platform/base/system_log.h"
#include "platform/lv2/late_ends.h"
#include "platform/lv2/render_mode.h"
#include "platform/lv2/urid_map.h"

#include <atomic>
#include <mutex>

namespace orvane::platform::lv2 {

/// What one host and all units it made share; lives as long as any of them. The log outlives it.
struct HostServices {
    SystemLog& log;
    RenderMode renderMode = RenderMode::live;
    UridMap urids = {};
    /// At which plugins are expected to run, in Hz; each is instantiated for it.
    std::atomic<double> sampleRate = 48000.0;
    /// Held while a plugin is instantiated, activated, deactivated or cleaned up. Not all plugins' libraries
    /// can do any of it twice at a time. Never taken on an audio thread, nor for work that plugins hand on.
    std::mutex settingUp = {};
    LateEnds lateEnds = {};
};

} // namespace orvane::platform::lv2
