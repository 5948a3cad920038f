#include "audio/render_scratch.h"

namespace orvane::audio {

namespace {

template <class Sample>
void ensureShape(dsp::ChannelBlocks<Sample>& blocks, std::size_t channelCount, std::size_t frameCount) {
    if (blocks.channelCount() != channelCount || blocks.frameCount() != frameCount)
        blocks.reshape(channelCount, frameCount);
}

} // namespace

RenderScratch::RenderScratch(std::size_t channelCount)
    : lastSends(channelCount),
      gainReductionScratch(channelCount, 0.0),
      maskSize(channelCount + 1),
      routedMask(std::make_unique<bool[]>(channelCount + 1)) {}

void RenderScratch::ensure(std::size_t frameCount, std::size_t outputCount, std::size_t masterOutputCount) {
    ensureShape(inputBlocksScratch, maskSize, frameCount);
    ensureShape(masterFloatScratch, std::size_t{1}, frameCount);
    ensureShape(outputSumsScratch, outputCount, frameCount);
    ensureShape(outputFloatScratch, outputCount, frameCount);
    ensureShape(masterOutputSumsScratch, masterOutputCount, frameCount);
    ensureShape(masterOutputFloatScratch, masterOutputCount, frameCount);
}

} // namespace orvane::audio
