#include "engine/session/channel_strip.h"

#include <algorithm>
#include <utility>

namespace orvane::session {

ChannelStrip ChannelStrip::make(
    // cppcheck-suppress passedByValue ; it is two words
    platform::Uuid id, std::string name, std::optional<std::int64_t> inputChannel,
    std::optional<std::int64_t> outputChannel
) {
    ChannelStrip strip;
    strip.id = id;
    strip.name = std::move(name);
    strip.inputChannelIndex = inputChannel;
    if (outputChannel) strip.outputRouting = output::Mono{*outputChannel};
    strip.pluginSlots = paddedWithEmptySlots({});
    return strip;
}

void ChannelStrip::apply(const ChannelSettingsData& settings) {
    ChannelSettingsData::operator=(settings);
}

std::vector<ChannelStrip> makeDefaultStrips(std::size_t count) {
    std::vector<ChannelStrip> strips;
    strips.reserve(count);
    for (std::size_t number = 1; number <= count; ++number) {
        auto name = "Ch " + std::to_string(number);
        strips.push_back(ChannelStrip::make(platform::Uuid::random(), std::move(name), {}, {}));
    }
    return strips;
}

std::vector<ChannelSettingsData> settingsOf(std::span<const ChannelStrip> strips) {
    return {strips.begin(), strips.end()};
}

void applySettings(std::span<const ChannelSettingsData> settings, std::span<ChannelStrip> strips) {
    const std::size_t count = std::min(settings.size(), strips.size());
    for (std::size_t index = 0; index < count; ++index)
        strips[index].apply(settings[index]);
}

} // namespace orvane::session
