#pragma once

#include "audio/buffer_size.h"
#include "dsp/channel_blocks.h"
#include "dsp/realtime.h"
#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/audio_hardware.h"
#include "platform/base/os_status.h"
#include "platform/base/result.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvane::audio {

/// The hardware output unit bound to one device for one run: captures the device's input for a handler, has a
/// provider fill its output, and watches its buffer size. Created, given its handlers, set up once, started,
/// stopped, discarded; destroying it stops the device and gives everything back, also after a failed setup.
/// Main thread unless stated otherwise.
class CoreAudioIOEngine final {
  public:
    /// Why a unit could not be set up or started. A value.
    class EngineError final {
      public:
        /// `reason` is a sentence that says more; empty if only the status does.
        static EngineError osStatus(platform::OSStatus status, std::string what, std::string reason = {});
        static EngineError componentNotFound();

        /// For the person at the screen.
        [[nodiscard]] std::string description() const;

        bool operator==(const EngineError&) const = default;

      private:
        struct FailedStep {
            platform::OSStatus status;
            std::string what;
            std::string reason;

            bool operator==(const FailedStep&) const = default;
        };

        /// Absent if no component was found.
        std::optional<FailedStep> failedStep;
    };

    /// How the unit is set up; fixed for its life.
    struct Configuration {
        /// The device's nominal rate, in Hz.
        double sampleRate = 48000.0;
        platform::AudioObjectID deviceID = 0;
        /// Channels captured, 0 or more.
        std::int64_t inputChannelCount = 0;
        /// Channels rendered, 1 or more.
        std::int64_t outputChannelCount = 1;
        /// The buffer size to ask for, in frames.
        std::uint32_t framesPerSlice = 256;
        bool enableInput = true;
    };

    /// Receives one block of `frameCount` samples per input channel. I/O thread, must be real-time safe.
    using InputHandler =
        std::function<void(std::span<const std::span<const float>> captured, std::size_t frameCount)>;

    /// Fills one block of `frameCount` samples per output channel. I/O thread, must be real-time safe.
    using OutputProvider =
        std::function<void(std::span<const std::span<float>> outputs, std::size_t frameCount)>;

    using Outcome = platform::Result<platform::Done, EngineError>;

    /// Makes no platform call. `audioHardware` must outlive the engine.
    CoreAudioIOEngine(platform::AudioHardware& audioHardware, const Configuration& fixed);
    ~CoreAudioIOEngine();
    CoreAudioIOEngine(const CoreAudioIOEngine&) = delete;
    CoreAudioIOEngine& operator=(const CoreAudioIOEngine&) = delete;

    // Installed before setup; fixed from then on. Each may be left empty.

    /// Called after each successful capture.
    InputHandler inputHandler;
    /// Without one the outputs are silent.
    OutputProvider outputProvider;
    /// Called when the device's buffer size changes to one that was not asked for, on the hardware layer's
    /// notification thread; possibly still under way when the engine's destruction begins, never after it.
    BufferSizeHandler onDeviceBufferSizeChangedExternally;

    /// Builds, configures and initialises the unit, ready to start. At most once; stops at the first step
    /// that fails.
    Outcome setup();

    /// Warning of the buffer-size negotiation for the person at the screen; not an error.
    [[nodiscard]] const std::optional<std::string>& setupWarning() const { return negotiationWarning; }

    /// The longest block that the callbacks get, in frames; 0 before setup.
    [[nodiscard]] std::uint32_t maximumFrames() const { return effectiveFrameCount; }

    /// Lets the callbacks run. Fails before setup.
    Outcome start();

    /// No callback runs when it returns and none comes after. Does nothing before setup. Returns false if a
    /// callback did not return within `platform::stopPatience`: then the engine and what its handlers use
    /// must never be freed.
    bool stop();

    /// Cycles that came late or lost samples since the last start; 0 before setup.
    [[nodiscard]] std::uint32_t xrunCount() const;

    /// The real-time priority of the I/O thread; 0 if it has none or does not run.
    [[nodiscard]] int realtimePriority() const;

  private:
    /// A property of the unit, and its name in error texts.
    struct Step {
        const char* what;
        platform::AudioUnitProperty property;
        bool applies = true;
    };

    Outcome createUnit();
    void agreeOnBufferSize();
    void allocateInputBuffers();
    /// Sets the properties that apply in their order, up to the first that fails.
    Outcome set(std::initializer_list<Step> steps);
    Outcome setFormatsAndCallbacks();

    /// The outcome of a call that reached for the device.
    [[nodiscard]] Outcome deviceOutcome(platform::OSStatus status, const char* what) const;

    ORVANE_REALTIME platform::OSStatus captureCycle(std::uint32_t frameCount) noexcept;
    ORVANE_REALTIME void
    renderCycle(std::span<const std::span<float>> outputs, std::size_t frameCount) noexcept;

    platform::AudioHardware& hardware;
    const Configuration configuration;
    std::unique_ptr<platform::AudioUnit> audioUnit;
    std::uint32_t effectiveFrameCount = 0;
    std::optional<std::string> negotiationWarning;
    std::unique_ptr<platform::AudioDeviceWatch> bufferSizeListener;
    dsp::ChannelBlocks<float> inputSamples;
    /// The capture buffer of each input channel, and its part that the present cycle filled.
    std::vector<std::span<float>> inputBuffers;
    std::vector<std::span<const float>> inputChannelPointers;
};

} // namespace orvane::audio
