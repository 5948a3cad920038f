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

/// A whole mixer and the platform under it. Main thread.
class BenchMixer final {
  public:
    using MakeDriver = std::function<std::unique_ptr<platform::AudioDriver>(platform::SystemLog&)>;

    /// With the devices of one driver, of which the first is selected. `insertWorkers` help with inserts.
    BenchMixer(std::size_t strips, const MakeDriver& makeDriver, std::size_t insertWorkers = 0);

    /// Loads an installed plugin into the first slot of every strip and waits until all are live; throws
    /// where there is none of that name.
    void loadOnEveryStrip(std::string_view pluginName);

    /// Runs the main thread until no plugin is on its way.
    void awaitPlugins();

    /// Starts; throws where the engine says why not.
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

/// A live virtual device of 48 inputs with noise and 48 outputs that nobody hears.
std::unique_ptr<platform::AudioDriver> noisyDevice(platform::SystemLog& log);

} // namespace orvane::bench
