#pragma once

#include "engine/mixer_engine.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/base/run_loop.h"
#include "platform/base/system_log.h"
#include "platform/lv2/lv2_unit_host.h"
#include "platform/midi_services/system_midi_services.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

namespace orvane::bench {

/// A complete mixer on a real platform. Main thread.
class BenchMixer final {
  public:
    using MakeDriver = std::function<std::unique_ptr<platform::AudioDriver>(platform::SystemLog&)>;

    /// Uses the devices of one driver and selects the first. `insertWorkers`: threads that help with inserts.
    BenchMixer(std::size_t strips, const MakeDriver& makeDriver, std::size_t insertWorkers = 0);

    /// Loads an installed plugin into the first slot of every strip and waits until all are live. Throws if
    /// no plugin has this name.
    void loadOnEveryStrip(std::string_view pluginName);

    /// Runs the main thread until no plugin is loading.
    void awaitPlugins();

    /// Starts the mixer; throws, with the engine's reason, if that fails.
    void start();

  private:
    engine::Services services(std::size_t insertWorkers);

    platform::SystemLog log{[](const platform::LogLine&) {}};
    platform::SystemAudioHardware hardware;
    platform::SystemMIDIServices noMIDI{{}};
    platform::lv2::Lv2UnitHost units{log};

  public:
    platform::RunLoop loop;
    engine::MixerEngine engine;
};

/// A live virtual device with 48 inputs of noise and 48 outputs.
std::unique_ptr<platform::AudioDriver> noisyDevice(platform::SystemLog& log);

} // namespace orvane::bench
