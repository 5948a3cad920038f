#pragma once

#include "dsp/realtime.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace orvane::audio {

/// How high a signal went. A plain value.
struct SignalPeak {
    /// Whether there was a signal: an unrouted input or output has none.
    bool isUsed = false;
    /// The highest magnitude of a sample, linear.
    double peak = 0.0;
    /// How often the signal reached full scale; samples in a row count once.
    std::uint64_t overs = 0;

    bool operator==(const SignalPeak&) const = default;
};

/// The peaks of several signals, between the audio thread that measures them and a thread that takes them; no
/// locks. A peak stays until it is released, so that most blocks need no more than a comparison.
class SignalPeaks final {
  public:
    explicit SignalPeaks(std::size_t signalCount)
        : count(signalCount), signals(std::make_unique<Signal[]>(signalCount)) {}

    [[nodiscard]] std::size_t signalCount() const noexcept { return count; }

    /// A block of which no sample is above this needs no `add`. Render thread, real-time safe.
    [[nodiscard]] ORVANE_REALTIME float threshold(std::size_t signal) const noexcept {
        return std::min(signals[signal].peak.load(std::memory_order_relaxed), belowFullScale);
    }

    /// Adds one block of a signal. Render thread, real-time safe.
    ORVANE_REALTIME void add(std::size_t signal, std::span<const float> block) noexcept;

    /// Returns the peaks since the last release, and the overs since the last call. Not for audio threads.
    [[nodiscard]] std::vector<SignalPeak> take();

    /// Forgets the peak of a signal; it is unused until its next block. Not for audio threads.
    void release(std::size_t signal) noexcept;

  private:
    static constexpr float belowFullScale = 0x1.fffffep-1F;
    static constexpr float unused = -1.0F;

    struct Signal {
        std::atomic<float> peak = unused;
        std::atomic<std::uint64_t> overs = 0;
    };

    std::size_t count;
    std::unique_ptr<Signal[]> signals;
};

} // namespace orvane::audio
