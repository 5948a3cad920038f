#include "engine/show.h"

#include <algorithm>
#include <iterator>

namespace orvane::engine {

bool isBufferSize(std::int64_t bufferSize) {
    return std::ranges::find(bufferSizes, bufferSize) != std::end(bufferSizes);
}

std::vector<dsp::ChannelAutomixSettings> automixSettings(const std::vector<session::ChannelStrip>& strips) {
    std::vector<dsp::ChannelAutomixSettings> settings;
    settings.reserve(strips.size() + 1);
    for (const session::ChannelStrip& strip : strips)
        settings.push_back(
            {.genderMode = strip.genderMode,
             .muted = strip.muted,
             .trim = strip.trim,
             .bypassed = strip.bypassed,
             .vocalRole = strip.vocalRole}
        );
    settings.push_back({.excludedFromMasterBus = true});
    return settings;
}

} // namespace orvane::engine
