#pragma once

#include "histogram.h"

#include <filesystem>
#include <span>
#include <string>

namespace orvane::bench {

/// One curve of a plot.
struct PlottedHistogram {
    std::string name;
    /// As SVG writes it.
    std::string colour;
    const Histogram& histogram;
};

/// Writes the histograms as an SVG picture, microseconds and numbers of blocks on logarithmic axes, with a
/// mark at `periodMicroseconds`. Throws where it cannot be written.
void plot(
    const std::filesystem::path& path, const std::string& title, std::span<const PlottedHistogram> curves,
    double periodMicroseconds
);

} // namespace orvane::bench
