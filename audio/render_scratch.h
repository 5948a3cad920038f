#pragma once

#include "audio/routing_table.h"
#include "dsp/channel_blocks.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace orvane::audio {

/// The working memory of the render pass. Render thread.
class RenderScratch final {
  public:
    /// `channelCount`: strips; one more block and mask entry are for the reference noise.
    explicit RenderScratch(std::size_t channelCount);

    /// Sizes all blocks for `frameCount` frames and the given numbers of device outputs and fills them with
    /// zeros if any of the three has changed. Allocates only when they outgrow all earlier ones.
    void ensure(std::size_t frameCount, std::size_t outputCount, std::size_t masterOutputCount);

    /// Whether each strip's block holds audio in this pass; channelCount + 1 entries.
    [[nodiscard]] std::span<bool> routedMaskScratch() noexcept { return {routedMask.get(), maskSize}; }

    /// The input of each channel, (channelCount + 1) x frameCount.
    dsp::ChannelBlocks<double> inputBlocksScratch;
    /// The sum that each device output will play, in double and in single precision.
    dsp::ChannelBlocks<double> outputSumsScratch;
    dsp::ChannelBlocks<float> outputFloatScratch;
    dsp::ChannelBlocks<double> masterOutputSumsScratch;
    dsp::ChannelBlocks<float> masterOutputFloatScratch;
    /// The leveled master bus in single precision, one channel.
    dsp::ChannelBlocks<float> masterFloatScratch;
    /// The sends of each strip in the last block, from which ramps start.
    std::vector<Sends> lastSends;
    /// Whether the last block noted its sends there.
    bool hasRamped = false;
    /// Gain reduction of each strip in dB.
    std::vector<double> gainReductionScratch;

  private:
    std::size_t maskSize;
    std::unique_ptr<bool[]> routedMask;
};

} // namespace orvane::audio
