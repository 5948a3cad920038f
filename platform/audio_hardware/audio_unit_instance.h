#pragma once

#include "dsp/realtime.h"
#include "platform/audio_hardware/audio_driver.h"
#include "platform/audio_hardware/audio_hardware.h"
#include "platform/audio_hardware/device_registry.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform {

/// The hardware output unit: takes properties, opens the device's stream, and turns the stream's cycles into
/// the input and the render callback, one after the other. A cycle that is longer than the maximum slice is
/// rendered in slices of at most that length. Main thread except for its cycles.
class AudioUnitInstance final : public AudioUnit, private AudioStreamClient {
  public:
    /// `deviceRegistry` must outlive the unit.
    explicit AudioUnitInstance(DeviceRegistry& deviceRegistry) : registry(deviceRegistry) {}

    OSStatus AudioUnitSetProperty(const AudioUnitProperty& property) override;
    OSStatus AudioUnitInitialize() override;
    OSStatus AudioUnitUninitialize() override;
    OSStatus AudioOutputUnitStart() override;
    OSStatus AudioOutputUnitStop() override;
    ORVANE_REALTIME OSStatus
    AudioUnitRender(std::span<const std::span<float>> blocks, std::uint32_t frameCount) noexcept override;
    [[nodiscard]] std::uint32_t xrunCount() const override { return stream ? stream->xrunCount() : 0; }
    [[nodiscard]] int realtimePriority() const override { return stream ? stream->realtimePriority() : 0; }
    [[nodiscard]] std::string failureReason() const override { return reason; }

  private:
    OSStatus set(const EnableIO& property);
    OSStatus set(const CurrentDevice& property);
    OSStatus set(const StreamFormat& property);
    OSStatus set(const MaximumFramesPerSlice& property);
    OSStatus set(const SetInputCallback& property);
    OSStatus set(const SetRenderCallback& property);

    void explainFailure(std::string_view why) override { reason = why; }
    ORVANE_REALTIME void cycle(
        std::span<const std::span<const float>> inputs, std::span<const std::span<float>> outputs,
        std::size_t frameCount
    ) noexcept override;
    ORVANE_REALTIME void captureSlice() noexcept;
    ORVANE_REALTIME void renderSlice(std::span<const std::span<float>> outputs) noexcept;
    ORVANE_REALTIME void playSilence(std::span<const std::span<float>> outputs) const noexcept;

    DeviceRegistry& registry;
    bool enableInput = false;
    AudioObjectID device = 0;
    /// Channels that the render callback fills.
    std::uint32_t outputChannelCount = 0;
    std::uint32_t maximumFrames = 512;
    SetInputCallback inputCallback;
    SetRenderCallback renderCallback;

    std::unique_ptr<AudioStream> stream;
    std::string reason;
    /// The blocks that the render callback fills: the device's own, then spare ones for channels that the
    /// device does not have.
    std::vector<std::span<float>> outputBlocks;
    std::vector<std::vector<float>> spareOutputs;

    /// The cycle under way, and which of its frames are being rendered. I/O thread.
    std::span<const std::span<const float>> captured;
    std::size_t sliceStart = 0;
    std::uint32_t sliceFrames = 0;
};

} // namespace orvane::platform
