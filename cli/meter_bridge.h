#pragma once

#include "audio/signal_peaks.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane::cli {

/// The values of a meter bridge at one moment. A plain value.
struct MeterFrame {
    struct Strip {
        std::string name;
        /// Linear RMS of the strip's output.
        double level = 0.0;
        /// In dB, 0 or more.
        double gainReductionDB = 0.0;
        bool muted = false;
        bool bypassed = false;
        /// Of the strip's input.
        audio::SignalPeak inputPeak = {};
    };

    struct Scene {
        /// Counted from 1.
        std::size_t number = 0;
        std::string name;
    };

    /// Since the start.
    double seconds = 0.0;
    std::vector<Strip> strips = {};
    /// Linear RMS.
    double masterLevel = 0.0;
    /// The leveler's gain, linear.
    double masterGain = 1.0;
    double referenceLevel = 0.0;
    audio::SignalPeak masterPeak = {};
    /// One for each output of the main device.
    std::vector<audio::SignalPeak> outputPeaks = {};
    /// Share of a block's duration, 0 to 1.
    double cpuLoad = 0.0;
    std::uint32_t xruns = 0;
    /// The scene that is selected; absent if none is.
    std::optional<Scene> scene = {};
};

/// Formats a frame for people, one line each for every strip, the master, the reference, and load with xruns.
/// Every line ends with a line feed.
std::string meterText(const MeterFrame& frame);

/// Formats a frame so that it overwrites the previous frame's `meterText` on a terminal: moves the cursor up
/// and rewrites each line to its end, in one piece.
std::string meterTextOver(const MeterFrame& frame);

/// Formats a frame for programs: one JSON object on one line.
std::string meterJSON(const MeterFrame& frame);

} // namespace orvane::cli
