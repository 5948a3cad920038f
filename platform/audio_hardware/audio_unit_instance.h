#pragma once

#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/audio_hardware.h"
#include "platform/audio_hardware/device_registry.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform {

/// The hardware output unit: takes properties, opens the device's stream, and turns the stream's cycles into
/// the input and the render callback, one after the other. A cycle that is longer than the maximum slice is
/// rendered in slices of at most that length. Main thread but for its cycles.
class AudioUnitInstance final : public AudioStreamClient {
  public:
    explicit AudioUnitInstance(DeviceRegistry& deviceRegistry) : registry(deviceRegistry) {}

    OSStatus setProperty(
        std::uint32_t property, std::uint32_t scope, std::uint32_t element, std::span<const std::byte> data
    );
    [[nodiscard]] PropertySize getProperty(
        std::uint32_t property, std::uint32_t scope, std::uint32_t element, std::span<std::byte> data
    ) const;
    OSStatus initialize();
    OSStatus uninitialize();
    OSStatus start();
    OSStatus stop();

    /// What AudioUnitRender does.
    ORVANE_REALTIME OSStatus
    renderInput(std::uint32_t bus, std::uint32_t frameCount, AudioBufferList& buffers) const noexcept;

    void explainFailure(std::string_view reason) override { failureReason = reason; }

    ORVANE_REALTIME void cycle(
        std::span<const std::span<const float>> inputs, std::span<const std::span<float>> outputs,
        std::size_t frameCount
    ) noexcept override;

  private:
    OSStatus setFormat(AudioStreamBasicDescription& format, std::span<const std::byte> data) const;
    [[nodiscard]] AudioTimeStamp now() const noexcept;
    ORVANE_REALTIME void captureSlice() noexcept;
    ORVANE_REALTIME void renderSlice(std::span<const std::span<float>> outputs) noexcept;
    ORVANE_REALTIME void playSilence(std::span<const std::span<float>> outputs) const noexcept;

    DeviceRegistry& registry;
    std::uint32_t enableInput = 0;
    std::uint32_t enableOutput = 1;
    AudioObjectID device = 0;
    /// What the input callback captures and what the render callback fills.
    AudioStreamBasicDescription inputFormat;
    AudioStreamBasicDescription outputFormat;
    std::uint32_t maximumFrames = 512;
    AURenderCallbackStruct inputCallback;
    AURenderCallbackStruct renderCallback;

    std::unique_ptr<AudioStream> stream;
    std::string failureReason;
    /// What the render callback is handed: the device's own buffers, then spare ones for channels that the
    /// device does not have.
    std::vector<AudioBuffer> outputBuffers;
    std::vector<std::vector<float>> spareOutputs;

    /// The cycle under way, and which of its frames are being rendered. I/O thread.
    std::span<const std::span<const float>> captured;
    std::size_t sliceStart = 0;
    std::uint32_t sliceFrames = 0;
    double sampleTime = 0.0;
};

} // namespace orvane::platform
