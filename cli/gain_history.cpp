#include "cli/gain_history.h"

#include "dsp/decibels.h"

#include <algorithm>
#include <cmath>

namespace orvane::cli {

namespace {

constexpr double wantedIntervalSeconds = 0.1;

double inHundredths(double dB) {
    constexpr double hundredths = 100.0;
    return std::round(dB * hundredths) / hundredths;
}

} // namespace

GainHistory::GainHistory(std::size_t stripCount, double blockSeconds)
    : secondsPerBlock(blockSeconds),
      blocksPerPoint(static_cast<std::size_t>(std::max(std::round(wantedIntervalSeconds / blockSeconds), 1.0))
      ),
      points(stripCount) {}

void GainHistory::add(std::span<const double> gains) {
    if (++blocksSincePoint < blocksPerPoint) return;
    blocksSincePoint = 0;
    for (std::size_t strip = 0; strip < points.size(); ++strip)
        points[strip].push_back(inHundredths(dsp::linearToDB(gains[strip])));
    if (!points.empty() && points[0].size() == mostPoints) thin();
}

void GainHistory::thin() {
    for (std::vector<double>& strip : points) {
        for (std::size_t kept = 0; kept < mostPoints / 2; ++kept)
            strip[kept] = strip[2 * kept + 1];
        strip.resize(mostPoints / 2);
    }
    blocksPerPoint *= 2;
}

} // namespace orvane::cli
