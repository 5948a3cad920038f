#pragma once

#include "audio/audio_device_info.h"
#include "audio/core_audio_io_engine.h"
#include "audio/mixer_realtime_state.h"
#include "dsp/automix_processor.h"
#include "engine/mix_values.h"
#include "engine/session/channel_strip.h"
#include "engine/session/master_output_routing.h"
#include "engine/session/master_settings.h"
#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/audio_hardware.h"
#include "platform/base/host_clock.h"
#include "platform/base/result.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane::engine {

/// The audio path of one run: the processor, the real-time state, the I/O engine of the main device and
/// that of the master device, if the master bus has one of its own. Built at a start, dropped at the stop.
/// Main thread.
class RunningAudio final {
  public:
    /// What a run is built for.
    struct Setup {
        audio::AudioDeviceInfo main;
        /// Absent: the master bus goes to the main device.
        std::optional<audio::AudioDeviceInfo> master = {};
        /// In frames.
        std::int64_t bufferSize = 0;
        /// How many threads help with the inserts.
        std::size_t insertWorkers = 0;
    };

    /// What a device is used for.
    enum class Role { main, master };

    /// Called by the hardware during a run, on its notification thread.
    struct Observer {
        std::function<void(Role role, const audio::AudioDeviceInfo& device, std::uint32_t frameCount)>
            bufferSizeChanged;
        /// `device` has the rate that the run was started at.
        std::function<void(const audio::AudioDeviceInfo& device)> sampleRateChanged;
        std::function<void(const audio::AudioDeviceInfo& device)> channelsLost;
        std::function<void(Role role, const audio::AudioDeviceInfo& device)> deviceDied;
    };

    /// Builds the path of `mix`. `audioHardware` outlives it.
    RunningAudio(
        platform::AudioHardware& audioHardware, platform::HostClock clock, Setup runSetup,
        const MixValues& mix
    );

    /// Stops the devices. An insert that has not returned by `platform::stopPatience` is abandoned, together
    /// with all that its thread may still touch; `InsertRenderContext::isStuck` then says which one.
    ~RunningAudio();
    RunningAudio(const RunningAudio&) = delete;
    RunningAudio& operator=(const RunningAudio&) = delete;

    /// Connects the path and starts the main and then the master device. Once. The error is the whole
    /// sentence for the user, after which this is only to be destroyed.
    platform::Result<platform::Done> start(const Observer& observer);

    /// The warnings of the devices' set-up, if any.
    [[nodiscard]] const std::optional<std::string>& mainWarning() const { return mainIO->setupWarning(); }
    [[nodiscard]] std::optional<std::string> masterWarning() const;

    [[nodiscard]] const audio::AudioDeviceInfo& mainDevice() const { return setup.main; }
    [[nodiscard]] dsp::AutomixProcessor& automix() { return *processor; }
    [[nodiscard]] const std::shared_ptr<audio::MixerRealtimeState>& realtimeState() const { return state; }

    /// Plays with other settings from the next block on, but for the routing.
    void setMaster(const session::MasterSettings& settings);
    /// Takes the input and output of every strip, and where the master bus goes.
    void
    setRouting(const std::vector<session::ChannelStrip>& strips, const session::MasterOutputRouting& master);

    /// Gives the master device back, which is gone; the main device runs on, and the master bus is not heard.
    void dropMaster();

    /// Late or lost cycles of both devices since the start, and the priority of the main I/O thread, 0 if
    /// none.
    [[nodiscard]] std::uint32_t xrunCount() const;
    [[nodiscard]] int realtimePriority() const { return mainIO->realtimePriority(); }

  private:
    /// All that the first cycle needs, for the block lengths that the devices agree to.
    void allocate();
    void connect(const Observer& observer);

    using Listeners = std::vector<std::unique_ptr<platform::AudioDeviceWatch>>;
    [[nodiscard]] Listeners watch(Role role, const audio::AudioDeviceInfo& device, const Observer& observer);

    platform::AudioHardware& hardware;
    const Setup setup;
    std::shared_ptr<dsp::AutomixProcessor> processor;
    std::shared_ptr<audio::MixerRealtimeState> state;
    std::unique_ptr<audio::CoreAudioIOEngine> mainIO;
    std::unique_ptr<audio::CoreAudioIOEngine> masterIO;
    /// Counted by a master device that has been dropped.
    std::uint32_t droppedXRuns = 0;
    Listeners mainListeners;
    Listeners masterListeners;
    /// Whether a master device that was dropped no longer calls.
    bool masterHasEnded = true;
};

} // namespace orvane::engine
