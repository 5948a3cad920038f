#pragma once

#include "platform/base/system_log.h"
#include "platform/lv2/render_mode.h"
#include "platform/lv2/urid_map.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string_view>

namespace orvane::platform::lv2 {

/// The log category for LV2 plugins.
inline constexpr std::string_view logCategory = "LV2";

/// Counts the plugin instances whose destruction is delayed because their plugin is still working on a
/// scheduled task. Any thread.
class LateEnds final {
  public:
    /// Announces a later call of `run`.
    void expect() {
        const std::scoped_lock lock(mutex);
        ++expected;
    }

    /// Withdraws an `expect`.
    void forget() {
        const std::scoped_lock lock(mutex);
        --expected;
        changed.notify_all();
    }

    /// Runs an announced `end`; does nothing after `close`.
    template <class End>
    void run(const End& end) {
        {
            const std::scoped_lock lock(mutex);
            if (isClosed) return;
        }
        end();
        forget();
    }

    /// Waits for all announced ends, for at most `patience`; later ones do not run.
    void close(std::chrono::milliseconds patience) {
        std::unique_lock lock(mutex);
        changed.wait_for(lock, patience, [this] { return expected == 0; });
        isClosed = true;
    }

  private:
    std::mutex mutex;
    std::condition_variable changed;
    int expected = 0;
    bool isClosed = false;
};

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
