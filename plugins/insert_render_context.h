#pragma once

#include "dsp/channel_blocks.h"
#include "dsp/realtime.h"
#include "platform/base/audio_unit_rendering.h"
#include "platform/base/system_log.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvane::plugins {

/// All that the render thread needs to run one loaded effect over one channel's block, in place. An effect
/// that fails never silences the channel: its block passes through unprocessed and the failure is logged
/// once. Made and destroyed by the control side; rendered by one thread at a time.
class InsertRenderContext final {
  public:
    /// The largest block, in frames, that is rendered.
    static constexpr std::size_t maximumFrames = 4096;

    /// `effect`: the effect's render entry, valid as long as the context. `effectChannels`: 1 or 2, as the
    /// effect was set up. `logLabel`: names strip, slot and effect in log lines.
    InsertRenderContext(
        platform::AURenderBlock effect, std::size_t effectChannels, std::string logLabel,
        platform::SystemLog& systemLog
    );
    InsertRenderContext(const InsertRenderContext&) = delete;
    InsertRenderContext& operator=(const InsertRenderContext&) = delete;

    /// Renders the effect over the first `frameCount` of `samples`. Both channels of a stereo effect get the
    /// same signal and the mean of its two outputs comes back. Nothing happens for 0 frames, more than
    /// `maximumFrames` or no samples. Real-time safe.
    ORVANE_REALTIME void process(std::span<double> samples, std::int64_t frameCount) noexcept;

    /// Whether the effect is being rendered now. Any thread.
    [[nodiscard]] bool isRendering() const noexcept { return use.load() == Use::rendering; }

    /// Ends the use of the effect after its render thread has been abandoned: it is not rendered again.
    /// Control side.
    void abandon() noexcept;
    /// Whether `abandon` has been called. Any thread.
    [[nodiscard]] bool isAbandoned() const noexcept { return use.load() >= Use::abandoned; }
    /// Whether an abandoned thread is within the effect, so that neither may ever be freed. Any thread.
    [[nodiscard]] bool isStuck() const noexcept { return use.load() == Use::stuck; }

    /// Names strip, slot and effect.
    [[nodiscard]] const std::string& name() const noexcept { return label; }

    /// Frames rendered so far, the time that the effect is given.
    [[nodiscard]] double sampleTime() const noexcept { return timeInSamples; }

  private:
    /// From `abandoned` on, nothing is rendered any more.
    enum class Use : std::uint32_t { idle, rendering, abandoned, stuck };

    ORVANE_REALTIME void renderInto(std::span<double> block) noexcept;
    platform::OSStatus provideInput(std::uint32_t frameCount, platform::AudioBufferList& list) noexcept;
    platform::OSStatus render(std::uint32_t frameCount) noexcept;
    void takeOutput(std::span<double> samples) const noexcept;
    void reportRenderStatus(platform::OSStatus status) noexcept;

    platform::AURenderBlock renderBlock;
    std::size_t channelCount;
    std::string label;
    platform::SystemLog& log;
    dsp::ChannelBlocks<float> inputScratch;
    dsp::ChannelBlocks<float> outputScratch;
    platform::AURenderPullInputBlock pullBlock;
    std::vector<platform::AudioBuffer> outputBuffers;
    /// Where the effect left its output of the last call, one per channel.
    std::vector<const float*> outputs;
    double timeInSamples = 0.0;
    std::atomic<Use> use = Use::idle;
    std::optional<platform::OSStatus> lastLoggedStatus;
};

} // namespace orvane::plugins
