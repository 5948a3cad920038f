#include "audio/signal_peaks.h"

#include "dsp/sound_bounds.h"

#include <cmath>

namespace orvane::audio {

void SignalPeaks::add(std::size_t signal, std::span<const float> block) noexcept {
    float peak = 0.0F;
    std::uint64_t overs = 0;
    bool wasOver = false;
    for (const float sample : block) {
        const float magnitude = std::abs(dsp::orSilence(sample, dsp::largestSample));
        peak = std::max(peak, magnitude);
        const bool isOver = magnitude > belowFullScale;
        if (isOver && !wasOver) ++overs;
        wasOver = isOver;
    }
    Signal& known = signals[signal];
    if (peak > known.peak.load(std::memory_order_relaxed)) known.peak.store(peak, std::memory_order_relaxed);
    if (overs > 0) known.overs.fetch_add(overs, std::memory_order_relaxed);
}

std::vector<SignalPeak> SignalPeaks::take() {
    std::vector<SignalPeak> taken(count);
    for (std::size_t i = 0; i < count; ++i) {
        const float peak = signals[i].peak.load(std::memory_order_relaxed);
        taken[i] = {
            .isUsed = peak > unused,
            .peak = std::max(peak, 0.0F),
            .overs = signals[i].overs.exchange(0, std::memory_order_relaxed)};
    }
    return taken;
}

void SignalPeaks::release(std::size_t signal) noexcept {
    signals[signal].peak.store(unused, std::memory_order_relaxed);
}

} // namespace orvane::audio
