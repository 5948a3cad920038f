#pragma once

#include "dsp/onset_detector.h"
#include "dsp/open_microphone_limit.h"
#include "dsp/realtime.h"

#include <cstddef>
#include <span>
#include <vector>

namespace orvane::dsp {

/// The decision core of the automix: computes one gain per channel from one activity level per channel. A
/// channel's target is its share of the total activity, divided by the sum of the squared shares, but never
/// below the floor. Active channels are at or above unity, quiet channels sink to the floor, and channels of
/// equal activity are all at unity. Owned by one processor; render thread.
class GainSharingMixer final {
  public:
    /// `channelCount` is at least 1. `controlRate`: calls of `process` per second. `attackMs` and
    /// `releaseMs`: time constants of the level follower and of the gains, for rising and falling values; 0
    /// or less jumps. `silentRMS`: the linear RMS that counts as silence. `gainFloorDB`: the lowest target.
    GainSharingMixer(
        std::size_t channelCount, double controlRate, double attackMs, double releaseMs, double silentRMS,
        double gainFloorDB
    );

    [[nodiscard]] double releaseMs() const noexcept { return releaseTimeMs; }

    /// Takes effect at the next `process`. Real-time safe.
    ORVANE_REALTIME void setReleaseMs(double releaseMs) noexcept;

    /// `OutputOptions::fastOnset`; off at creation. When a voice begins, the levels of all channels fall to
    /// what they are now, so that the memory of the last speaker does not share with it, and its gain rises
    /// in about a millisecond. Real-time safe.
    ORVANE_REALTIME void setFastOnset(bool isFast) noexcept;

    /// `OutputOptions::openMicrophoneLimit` over the first `limitedCount` channels; 0, as at creation: none.
    /// Real-time safe.
    ORVANE_REALTIME void setOpenMicrophoneLimit(std::size_t limitedCount) noexcept;

    /// Processes one step: `levels` are channelCount linear RMS values of one block; values that are not
    /// finite count as silence. Returns `smoothedGain`. Real-time safe.
    ORVANE_REALTIME std::span<const double> process(std::span<const double> levels) noexcept;

    /// The current linear gain of every channel; 1 / channelCount each at creation. Real-time safe.
    [[nodiscard]] std::span<const double> smoothedGain() const noexcept { return gains; }

  private:
    void followLevels(std::span<const double> levels) noexcept;
    void handOver(std::span<const double> levels) noexcept;
    void shareActivity() noexcept;
    void moveGains() noexcept;

    double dt;
    double slowAttackCoef;
    double attackCoef;
    double releaseCoef;
    double noiseFloor;
    double gainFloor;
    double releaseTimeMs;
    std::vector<double> smoothedLevel;
    std::vector<double> gains;
    std::vector<double> eScratch;
    std::vector<double> wScratch;
    std::vector<double> gTargetScratch;
    OnsetDetector onsets;
    OpenMicrophoneLimit openMicrophones;
    std::size_t limitedChannels = 0;
    bool fastOnset = false;
};

} // namespace orvane::dsp
