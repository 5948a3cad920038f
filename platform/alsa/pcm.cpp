#include "platform/alsa/pcm.h"

#include <poll.h>

#include <algorithm>
#include <utility>

namespace orvane::platform::alsa {

namespace {

constexpr int leastPatienceMs = 100;
constexpr std::size_t patienceInPeriods = 4;
/// Some interfaces lock their clock before they deliver the first period.
constexpr int patienceAfterStartMs = 1000;

int patienceFor(const PcmLayout& layout) {
    const std::size_t ms = patienceInPeriods * layout.periodFrames * 1000 / layout.rate;
    return std::max(leastPatienceMs, static_cast<int>(ms));
}

} // namespace

Pcm::Pcm(PcmHandle configured, Direction streamDirection, const PcmLayout& configuredLayout)
    : pcm(std::move(configured)),
      direction(streamDirection),
      shape(configuredLayout),
      usualPatienceMs(patienceFor(configuredLayout)),
      channels(configuredLayout.channelCount) {
    const std::size_t sampleSize = bytesPerSample(shape.format);
    frameStep = isInterleaved() ? sampleSize * shape.channelCount : sampleSize;
    channelStep = isInterleaved() ? sampleSize : sampleSize * shape.periodFrames;
    samples.resize(sampleSize * shape.channelCount * shape.periodFrames);
}

void Pcm::link(Pcm& other) {
    snd_pcm_link(pcm.get(), other.pcm.get());
}

void Pcm::drop() noexcept {
    snd_pcm_drop(pcm.get());
}

ErrorNumber Pcm::prepare() noexcept {
    return snd_pcm_prepare(pcm.get());
}

ErrorNumber Pcm::fillWithSilence() noexcept {
    std::ranges::fill(samples, std::byte{0});
    for (std::size_t period = 0; period < shape.periodCount; ++period)
        if (const ErrorNumber error = movePeriod()) return error;
    return 0;
}

ErrorNumber Pcm::start() noexcept {
    hasDelivered = false;
    return snd_pcm_state(pcm.get()) == SND_PCM_STATE_RUNNING ? 0 : snd_pcm_start(pcm.get());
}

ErrorNumber Pcm::wait() noexcept {
    const int ready = snd_pcm_wait(pcm.get(), patienceMs());
    if (ready == 0) return -ETIMEDOUT;
    return std::min(ready, 0);
}

ErrorNumber Pcm::read(std::span<const std::span<float>> blocks) noexcept {
    if (const ErrorNumber error = movePeriod()) return error;
    for (std::size_t channel = 0; channel < shape.channelCount; ++channel)
        decode(shape.format, firstSample(channel), frameStep, blocks[channel]);
    return 0;
}

ErrorNumber Pcm::write(std::span<const std::span<float>> blocks) noexcept {
    for (std::size_t channel = 0; channel < shape.channelCount; ++channel)
        encode(shape.format, blocks[channel], firstSample(channel), frameStep);
    return movePeriod();
}

bool Pcm::isInterleaved() const noexcept {
    return shape.access == SND_PCM_ACCESS_RW_INTERLEAVED || shape.access == SND_PCM_ACCESS_MMAP_INTERLEAVED;
}

int Pcm::patienceMs() const noexcept {
    return hasDelivered ? usualPatienceMs : std::max(usualPatienceMs, patienceAfterStartMs);
}

std::byte* Pcm::firstSample(std::size_t channel) noexcept {
    return samples.data() + channel * channelStep;
}

ErrorNumber Pcm::movePeriod() noexcept {
    std::size_t done = 0;
    int idleMs = 0;
    while (done < shape.periodFrames) {
        if (const ErrorNumber error = wait()) return error;
        const snd_pcm_sframes_t moved = move(done, shape.periodFrames - done);
        if (moved > 0) {
            done += static_cast<std::size_t>(moved);
            continue;
        }
        if (moved < 0 && moved != -EAGAIN) return static_cast<ErrorNumber>(moved);
        // A device that wrongly reports to be ready must not keep this thread busy.
        if (++idleMs > patienceMs()) return -ETIMEDOUT;
        poll(nullptr, 0, 1);
    }
    hasDelivered = true;
    return 0;
}

snd_pcm_sframes_t Pcm::move(std::size_t frame, std::size_t frameCount) noexcept {
    std::byte* const from = samples.data() + frame * frameStep;
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
        channels[channel] = from + channel * channelStep;

    const bool plays = direction == Direction::playback;
    switch (shape.access) {
    case SND_PCM_ACCESS_MMAP_INTERLEAVED:
        return plays ? snd_pcm_mmap_writei(pcm.get(), from, frameCount)
                     : snd_pcm_mmap_readi(pcm.get(), from, frameCount);
    case SND_PCM_ACCESS_MMAP_NONINTERLEAVED:
        return (plays ? snd_pcm_mmap_writen : snd_pcm_mmap_readn)(pcm.get(), channels.data(), frameCount);
    case SND_PCM_ACCESS_RW_NONINTERLEAVED:
        return (plays ? snd_pcm_writen : snd_pcm_readn)(pcm.get(), channels.data(), frameCount);
    default:
        return plays ? snd_pcm_writei(pcm.get(), from, frameCount)
                     : snd_pcm_readi(pcm.get(), from, frameCount);
    }
}

} // namespace orvane::platform::alsa
