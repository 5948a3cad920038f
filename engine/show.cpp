#include "engine/show.h"

#include <algorithm>
#include <iterator>

namespace orvane::engine {

bool isBufferSize(std::int64_t bufferSize) {
    return std::ranges::find(bufferSizes, bufferSize) != std::end(bufferSizes);
}

dsp::ChannelAutomixSettings automixSettings(const session::ChannelStrip& strip) {
    return {
        .genderMode = strip.genderMode,
        .muted = strip.muted,
        .trim = strip.trim,
        .bypassed = strip.bypassed,
        .vocalRole = strip.vocalRole};
}

} // namespace orvane::engine
