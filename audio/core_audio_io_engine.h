#pragma once

#include "audio/buffer_size_watch.h"
#include "dsp/channel_blocks.h"
#include "dsp/realtime.h"
#include "platform/audio_hardware/audio_hardware.h"
#include "platform/base/os_status.h"
#include "platform/base/result.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvane::audio {

/// The hardware output unit bound to one device for one run: captures the device's input for a handler, has a
/// provider fill its output, and watches its buffer size. Created, given its handlers, set up once, started,
/// stopped, discarded; destroying it stops the device and gives everything back, also after a failed setup.
/// Main thread but where said otherwise.
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

        /// None: there was no component to begin with.
        std::optional<FailedStep> failedStep;
    };

    /// What the unit is to be; fixed for its life.
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

    /// Gets one block of `frameCount` samples per input channel. I/O thread, must be real-time safe.
    using InputHandler =
        std::function<void(std::span<const std::span<const float>> captured, std::size_t frameCount)>;

    /// Fills one block of `frameCount` samples per output channel. I/O thread, must be real-time safe.
    using OutputProvider =
        std::function<void(std::span<const std::span<float>> outputs, std::size_t frameCount)>;

    using Outcome = platform::Result<platform::Done, EngineError>;

    /// Makes no platform call. `audioHardware` outlives the engine.
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
    BufferSizeWatch::Handler onDeviceBufferSizeChangedExternally;

    /// Builds, configures and initialises the unit, ready to start. At most once; fails at the first step
    /// that does.
    Outcome setup();

    /// What buffer-size negotiation has to say to the person at the screen; not an error.
    [[nodiscard]] const std::optional<std::string>& setupWarning() const { return negotiationWarning; }

    /// The longest block that the callbacks get, in frames; 0 before setup.
    [[nodiscard]] std::uint32_t maximumFrames() const { return effectiveFrameCount; }

    /// Lets the callbacks run. Fails before setup.
    Outcome start();

    /// No callback runs when it returns and none comes after. Nothing before setup. Returns false if a
    /// callback did not return within `platform::stopPatience`: then the engine and what its handlers use
    /// must never be freed.
    bool stop();

    /// Cycles that came late or lost samples since the last start; 0 before setup.
    [[nodiscard]] std::uint32_t xrunCount() const;

    /// The real-time priority of the I/O thread; 0 if it has none or does not run.
    [[nodiscard]] std::int32_t realtimePriority() const;

  private:
    /// One mono buffer per input channel, so that each channel's samples are contiguous.
    struct InputBufferList {
        dsp::ChannelBlocks<float> samples;
        std::vector<platform::AudioBuffer> buffers;
    };

    // The steps of setup, in their order.
    Outcome createUnit();
    Outcome enableBuses();
    Outcome selectDevice();
    Outcome agreeOnBufferSize();
    Outcome setFormats();
    Outcome setMaximumSlice();
    Outcome installInputCallback();
    Outcome installRenderCallback();
    Outcome initialize();

    template <class Value>
    Outcome setUnitProperty(
        std::uint32_t property, std::uint32_t scope, std::uint32_t element, const Value& value,
        const char* what
    );

    /// The outcome of a call that reached for the device.
    [[nodiscard]] Outcome deviceOutcome(platform::OSStatus status, const char* what) const;

    template <class Value>
    [[nodiscard]] Value readUnitProperty(std::uint32_t property) const;

    void allocateInputBuffers();
    void teardown();

    ORVANE_REALTIME platform::OSStatus captureCycle(
        platform::AudioUnitRenderActionFlags& flags, const platform::AudioTimeStamp& time,
        std::uint32_t frameCount
    ) noexcept;
    ORVANE_REALTIME void renderCycle(std::uint32_t frameCount, platform::AudioBufferList& buffers) noexcept;

    platform::AudioHardware& hardware;
    const Configuration configuration;
    platform::AudioUnit audioUnit = nullptr;
    std::uint32_t effectiveFrameCount = 0;
    std::optional<std::string> negotiationWarning;
    std::optional<BufferSizeWatch> bufferSizeWatch;
    std::optional<InputBufferList> inputBufferList;
    std::vector<std::span<const float>> inputChannelPointers;
    std::vector<std::span<float>> outputChannelPointers;
};

} // namespace orvane::audio
