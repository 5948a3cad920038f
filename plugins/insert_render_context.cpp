#include "plugins/insert_render_context.h"

#include "dsp/sound_bounds.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

namespace orvane::plugins {

namespace {

using platform::noErr;
using platform::OSStatus;

/// Stands in the log's bookkeeping for a render that succeeded without giving every output; no effect returns
/// it.
constexpr OSStatus missingOutput = -66753;

constexpr std::string_view logCategory = "InsertRender";

constexpr std::uint32_t byteSize(std::uint32_t frameCount) noexcept {
    return frameCount * static_cast<std::uint32_t>(sizeof(float));
}

} // namespace

InsertRenderContext::InsertRenderContext(
    platform::AURenderBlock effect, std::size_t effectChannels, std::string logLabel,
    platform::SystemLog& systemLog
)
    : renderBlock(std::move(effect)),
      channelCount(effectChannels),
      label(std::move(logLabel)),
      log(systemLog),
      inputScratch(channelCount, maximumFrames),
      outputScratch(channelCount, maximumFrames),
      pullBlock([this](
                    platform::AudioUnitRenderActionFlags&, const platform::AudioTimeStamp&,
                    std::uint32_t frameCount, std::int64_t, platform::AudioBufferList& list
                ) { return provideInput(frameCount, list); }),
      outputBuffers(channelCount),
      outputs(channelCount) {}

void InsertRenderContext::process(std::span<double> samples, std::int64_t frameCount) noexcept {
    constexpr auto mostFrames = static_cast<std::int64_t>(maximumFrames);
    if (frameCount < 1 || frameCount > mostFrames || samples.data() == nullptr || channelCount == 0) return;
    Use before = Use::idle;
    if (!use.compare_exchange_strong(before, Use::rendering)) return;
    renderInto(samples.first(static_cast<std::size_t>(frameCount)));
    before = Use::rendering;
    use.compare_exchange_strong(before, Use::idle);
}

void InsertRenderContext::abandon() noexcept {
    Use seen = use.load();
    while (seen < Use::abandoned
           && !use.compare_exchange_weak(seen, seen == Use::rendering ? Use::stuck : Use::abandoned)) {
    }
}

void InsertRenderContext::renderInto(std::span<double> block) noexcept {
    for (std::size_t c = 0; c < channelCount; ++c)
        std::ranges::transform(block, inputScratch[c].begin(), [](double x) {
            return static_cast<float>(x);
        });

    const OSStatus status = render(static_cast<std::uint32_t>(block.size()));
    if (isStuck()) return;
    timeInSamples += static_cast<double>(block.size());
    reportRenderStatus(status);
    if (status == noErr) takeOutput(block);
}

OSStatus
InsertRenderContext::provideInput(std::uint32_t frameCount, platform::AudioBufferList& list) noexcept {
    for (std::size_t c = 0; c < std::min(list.mBuffers.size(), channelCount); ++c)
        list.mBuffers[c] = {1, byteSize(frameCount), inputScratch[c].data()};
    return noErr;
}

OSStatus InsertRenderContext::render(std::uint32_t frameCount) noexcept {
    // The effect may have put buffers of its own into the list the last time.
    for (std::size_t c = 0; c < channelCount; ++c)
        outputBuffers[c] = {1, byteSize(frameCount), outputScratch[c].data()};
    platform::AudioBufferList list{outputBuffers};
    platform::AudioUnitRenderActionFlags flags = 0;
    const platform::AudioTimeStamp now{
        .mSampleTime = timeInSamples, .mFlags = platform::kAudioTimeStampSampleTimeValid};

    const OSStatus status = renderBlock(flags, now, frameCount, 0, list, pullBlock);
    if (status != noErr) return status;
    if (list.mBuffers.size() < channelCount) return missingOutput;
    for (std::size_t c = 0; c < channelCount; ++c) {
        outputs[c] = static_cast<const float*>(list.mBuffers[c].mData);
        if (outputs[c] == nullptr) return missingOutput;
    }
    return noErr;
}

void InsertRenderContext::takeOutput(std::span<double> samples) const noexcept {
    if (channelCount == 1) {
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = dsp::orSilence(outputs[0][i], dsp::largestSample);
        return;
    }
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = dsp::orSilence((outputs[0][i] + outputs[1][i]) * 0.5F, dsp::largestSample);
}

void InsertRenderContext::reportRenderStatus(OSStatus status) noexcept {
    if (lastLoggedStatus == status) return;
    lastLoggedStatus = status;
    if (status == noErr) {
        log.post(platform::LogLevel::standard, logCategory, {label, ": render recovered (now noErr)"});
    } else if (status == missingOutput) {
        log.post(
            platform::LogLevel::error, logCategory,
            {label,
             ": renderBlock returned noErr but didn't provide a usable output pointer for every channel -- "
             "signal is passing through UNPROCESSED, not silenced."}
        );
    } else {
        std::array<char, 12> digits{};
        const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), status).ptr;
        log.post(
            platform::LogLevel::error, logCategory,
            {label, ": renderBlock failed, status ", std::string_view(digits.data(), end),
             " -- signal is passing through UNPROCESSED, not silenced (see InsertRenderContext.process's doc "
             "comment)."}
        );
    }
}

} // namespace orvane::plugins
