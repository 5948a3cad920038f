#pragma once

#include "engine/mixer_engine.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/base/result.h"
#include "platform/base/run_loop.h"
#include "platform/base/system_log.h"
#include "platform/lv2/lv2_unit_host.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/virtual/virtual_audio_driver.h"

#include <cstddef>
#include <memory>
#include <span>

namespace orvane::cli {

/// The mixer on a device that runs as fast as it is driven: the engine, the I/O engine and everything below
/// are the same as on an audio interface, one cycle at a time. One thread.
class OfflineMixer final {
  public:
    /// The format of the device.
    struct Device {
        std::size_t inputCount = 0;
        std::size_t outputCount = 0;
        /// In Hz.
        double sampleRate = 0.0;
    };

    /// Stopped, with the device selected.
    OfflineMixer(std::size_t stripCount, const Device& device);
    OfflineMixer(const OfflineMixer&) = delete;
    OfflineMixer& operator=(const OfflineMixer&) = delete;

    [[nodiscard]] engine::MixerEngine& engine() { return mixer; }
    [[nodiscard]] const engine::MixerEngine& engine() const { return mixer; }

    /// The number of frames in a cycle.
    [[nodiscard]] std::size_t blockLength() const {
        return static_cast<std::size_t>(mixer.state().bufferSize.get());
    }

    /// The engine's main thread; the owner must run it.
    [[nodiscard]] platform::RunLoop& loop() { return mainThread; }

    /// Starts the engine. Fails with the engine's message.
    platform::Result<platform::Done> start();

    /// Runs one cycle of a started mixer: captures one block per input channel from `captured` and fills one
    /// block per output channel in `played`.
    void cycle(std::span<const std::span<const float>> captured, std::span<const std::span<float>> played);

    /// The automix with the results of the last block. Only while the mixer is started.
    [[nodiscard]] const dsp::AutomixProcessor& automix() const { return *mixer.automix(); }

    /// The peaks since the last call.
    [[nodiscard]] audio::PeakReading takePeaks() const { return mixer.takePeaks(); }

    /// The smoothed share of a block's duration that its render pass takes, 0 to 1.
    [[nodiscard]] double load() const { return mixer.renderLoad(); }

  private:
    struct Input;
    struct Output;

    platform::SystemLog log;
    platform::RunLoop mainThread;
    platform::lv2::Lv2UnitHost audioUnitHost{
        log, platform::lv2::environmentSearchPath(), platform::lv2::effectCacheFile(),
        platform::lv2::RenderMode::offline};
    std::shared_ptr<Input> input;
    std::shared_ptr<Output> output;
    /// Owned by the hardware.
    platform::virtual_devices::VirtualAudioDriver* driver = nullptr;
    platform::SystemAudioHardware hardware;
    /// There is no MIDI in an offline mix.
    platform::SystemMIDIServices noMIDI{{}};
    engine::MixerEngine mixer;
};

} // namespace orvane::cli
