#include "dsp/gender_trigger_filter.h"

#include "dsp/decibels.h"

#include <cassert>

namespace orvane::dsp {

GenderTriggerFilter::GenderTriggerFilter(
    GenderTriggerMode initialMode, double maleCutoffHz, double femaleCutoffHz, double shelfDB,
    double sampleRate
)
    : mode(initialMode),
      shelfGain(dbToLinear(shelfDB)),
      lowpassMale(maleCutoffHz, sampleRate),
      lowpassFemale(femaleCutoffHz, sampleRate) {}

double GenderTriggerFilter::process(double x) noexcept {
    switch (mode) {
    case GenderTriggerMode::neutral:
        break;
    case GenderTriggerMode::male: {
        const double low = lowpassMale.process(x);
        return (x - low) + low * shelfGain;
    }
    case GenderTriggerMode::female: {
        const double low = lowpassFemale.process(x);
        return low + shelfGain * (x - low);
    }
    }
    return x;
}

std::vector<double> GenderTriggerFilter::process(std::span<const double> block) {
    std::vector<double> weighted(block.size());
    process(block, weighted);
    return weighted;
}

void GenderTriggerFilter::process(std::span<const double> input, std::span<double> output) noexcept {
    assert(output.size() >= input.size());
    for (std::size_t i = 0; i < input.size(); ++i)
        output[i] = process(input[i]);
}

void GenderTriggerFilter::reset() noexcept {
    lowpassMale.y = 0.0;
    lowpassFemale.y = 0.0;
}

} // namespace orvane::dsp
