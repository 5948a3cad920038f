#pragma once

#include "dsp/channel_automix_settings.h"
#include "engine/session/channel_strip.h"
#include "engine/session/master_settings.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvane::engine {

/// The block lengths that the mixer offers, in frames.
inline constexpr std::int64_t bufferSizes[] = {32, 64, 96, 128, 192, 256, 512, 768, 1024, 2048};

/// Whether `bufferSize` is one of them.
bool isBufferSize(std::int64_t bufferSize);

/// All that the audio path is built from at a start, with the values of a fresh mixer. A plain value.
struct Show {
    std::vector<session::ChannelStrip> channelStrips = {};
    session::MasterSettings master = {};
    /// In frames.
    std::int64_t bufferSize = 512;

    bool operator==(const Show&) const = default;
};

/// What the automix is told about the strips and, last, about the reference noise.
std::vector<dsp::ChannelAutomixSettings> automixSettings(const std::vector<session::ChannelStrip>& strips);

} // namespace orvane::engine
