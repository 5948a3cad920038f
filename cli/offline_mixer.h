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

/// The mixer on a device that is as fast as it is asked: the engine, the I/O engine and all below as on an
/// interface, one cycle at a time. One thread.
class OfflineMixer final {
  public:
    /// What the device is like.
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

    /// Frames in every cycle.
    [[nodiscard]] std::size_t blockLength() const {
        return static_cast<std::size_t>(mixer.state().bufferSize.get());
    }

    /// The main thread of the engine; it only runs where somebody runs it.
    [[nodiscard]] platform::RunLoop& loop() { return mainThread; }

    /// Starts the engine; fails with its message.
    platform::Result<platform::Done> start();

    /// One cycle of a started mixer: every input channel's block is captured, every output channel's is
    /// filled.
    void cycle(std::span<const std::span<const float>> captured, std::span<const std::span<float>> played);

    /// What the automix made of the last block. Only while it is started.
    [[nodiscard]] const dsp::AutomixProcessor& automix() const { return *mixer.automix(); }

    /// Smoothed share of a block's duration that its pass took, 0 to 1.
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
    /// The hardware layer's; lives as long as that.
    platform::virtual_devices::VirtualAudioDriver* driver = nullptr;
    platform::SystemAudioHardware hardware;
    /// Nothing plays along with a file.
    platform::SystemMIDIServices noMIDI{{}};
    engine::MixerEngine mixer;
};

} // namespace orvane::cli
