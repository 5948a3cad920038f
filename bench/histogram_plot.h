#pragma once

#include "histogram.h"

#include <filesystem>
#include <span>
#include <string>

namespace orvane::bench {

/// One curve of a plot.
struct PlottedHistogram {
    std::string name;
    /// In SVG syntax.
    std::string colour;
    const Histogram& histogram;
};

/// Writes the histograms as an SVG picture with logarithmic axes (microseconds and numbers of blocks) and a
/// mark at `periodMicroseconds`. Throws if the file cannot be written.
void plot(
    const std::filesystem::path& path, const std::string& title, std::span<const PlottedHistogram> curves,
    double periodMicroseconds
);

} // namespace orvane::bench
