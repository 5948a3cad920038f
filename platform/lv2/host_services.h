#pragma once

#include "platform/base/system_log.h"
#include "platform/lv2/late_ends.h"
#include "platform/lv2/render_mode.h"
#include "platform/lv2/urid_map.h"

#include <atomic>
#include <mutex>

namespace orvane::platform::lv2 {

/// Shared by a host and all its units, and lives as long as any of them. The log must outlive it.
struct HostServices {
    SystemLog& log;
    RenderMode renderMode = RenderMode::live;
    UridMap urids = {};
    /// The expected sample rate in Hz, for which plugins are instantiated.
    std::atomic<double> sampleRate = 48000.0;
    /// Held while a plugin is instantiated, activated, deactivated or cleaned up: not all plugin libraries
    /// allow two such calls at a time. Never taken on an audio thread or around a plugin's deferred work.
    std::mutex settingUp = {};
    LateEnds lateEnds = {};
};

} // namespace orvane::platform::lv2
