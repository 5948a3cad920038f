#pragma once

#include "engine/mixer_engine.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/base/host_clock.h"
#include "platform/base/system_log.h"
#include "platform/virtual/virtual_audio_driver.h"
#include "soak/voices.h"
#include "support/manual_main_thread.h"
#include "support/scripted_audio_unit.h"
#include "support/scripted_midi_services.h"
#include "support/scripted_windows.h"
#include "support/temporary_folder.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace orvane::soak {

/// A device of the stage and its input signal. Its driver owns the device.
struct StageDevice {
    /// Receives each block of the outputs on the thread of the cycle.
    using Listener = std::function<void(std::span<const std::span<const float>> outputs)>;

    /// Passes blocks to the listener.
    struct Output final : platform::virtual_devices::VirtualOutput {
        void take(std::span<const std::span<const float>> blocks) noexcept override {
            if (listener) listener(blocks);
        }
        Listener listener;
    };

    std::string uid;
    std::shared_ptr<Voices> voices;
    std::shared_ptr<Output> output = std::make_shared<Output>();
};

/// A mixer with all its dependencies, in which everything can be made to happen: several kinds of virtual
/// devices with voices on their inputs, MIDI sources, effects, editor windows and a preset folder. Stopped at
/// first, with the first device selected. Main thread.
struct Stage final {
    struct Shape {
        std::size_t strips = 8;
        platform::virtual_devices::VirtualPacing pacing = platform::virtual_devices::VirtualPacing::stepped;
        /// The seed of the input signals.
        std::uint32_t seed = 1;
        /// The initial buffer size in frames.
        std::int64_t bufferSize = 512;
        /// `engine::Services::insertWorkers`.
        std::size_t insertWorkers = 0;
        platform::HostClock clock = platform::HostClock::system();
    };

    explicit Stage(const Shape& shape);
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    /// Waits for the devices' notifications and runs posted tasks, so that a step of a stepped stage does not
    /// depend on other threads.
    void settle();

    const Shape shape;
    std::vector<StageDevice> devices;
    platform::SystemLog log{[](const platform::LogLine&) {}};
    test::ManualMainThread mainThread;
    /// Owned by the hardware layer; lives as long as it.
    platform::virtual_devices::VirtualAudioDriver* driver = nullptr;
    platform::SystemAudioHardware hardware;
    test::ScriptedAudioUnitHost effects;
    test::ScriptedMIDIServices midi;
    test::ScriptedWindows windows;
    test::TemporaryFolder folder;
    engine::MixerEngine engine;

  private:
    std::vector<std::unique_ptr<platform::AudioDriver>> makeDrivers();

    /// Rung after all other notifications of the devices.
    struct Bell {
        std::mutex mutex;
        std::condition_variable changed;
        std::size_t count = 0;
    };
    Bell bell;
    std::size_t rings = 0;
    std::unique_ptr<platform::AudioDeviceWatch> bellWatch;
};

} // namespace orvane::soak
