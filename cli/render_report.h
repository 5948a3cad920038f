#pragma once

#include "audio/signal_peaks.h"
#include "cli/gain_history.h"
#include "cli/offline_mixer.h"

#include <cstddef>
#include <string>
#include <vector>

namespace orvane::cli {

/// The results of one strip.
struct StripReport {
    std::string name;
    /// The automix gain of the last block, linear.
    double finalGain = 0.0;
    /// RMS of the strip's output over the whole run, linear.
    double meanOutputLevel = 0.0;
    /// Of the strip's input, before its inserts.
    audio::SignalPeak inputPeak = {};
    /// The automix gain over time, in dB: at the report's interval and its multiples.
    std::vector<double> gainsDB = {};
};

/// The results of one offline run. A plain value.
struct RenderReport {
    double sampleRate = 0.0;
    std::size_t bufferSize = 0;
    /// Duration of the sound.
    double seconds = 0.0;
    std::size_t blocks = 0;
    /// Duration of the run.
    double wallSeconds = 0.0;
    std::vector<StripReport> strips;
    /// Of the leveled master bus before the limiter, and of each output.
    audio::SignalPeak masterPeak = {};
    std::vector<audio::SignalPeak> outputPeaks = {};
    /// Time between the strips' gains.
    double gainIntervalSeconds = 0.0;
    /// The leveler's gain of the last block, linear.
    double masterGain = 0.0;
    /// Share of a block's duration, 0 to 1.
    double peakLoad = 0.0;
    double meanLoad = 0.0;

    [[nodiscard]] double realTimeFactor() const { return wallSeconds > 0.0 ? seconds / wallSeconds : 0.0; }

    /// Returns the report in the format of its file.
    [[nodiscard]] std::string json() const;

    /// Returns the main figures for people, in several lines.
    [[nodiscard]] std::string text() const;
};

/// Collects a report while blocks run. One thread.
class RenderReportBuilder final {
  public:
    /// `mixer` is set up; its device runs at `sampleRate`.
    RenderReportBuilder(const OfflineMixer& mixer, double sampleRate);

    /// Adds the block that `mixer` has just run.
    void add(const OfflineMixer& mixer);

    /// Returns the report on the blocks so far: `frameCount` frames of sound, mixed in `wallSeconds`.
    [[nodiscard]] RenderReport finish(double frameCount, double wallSeconds) const;

  private:
    void addPeaks(const audio::PeakReading& peaks);

    RenderReport report;
    GainHistory gains;
    std::vector<double> sumOfSquaredLevels;
    double sumOfLoads = 0.0;
};

} // namespace orvane::cli
