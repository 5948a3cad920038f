#include "engine/scene_difference.h"

#include <algorithm>
#include <tuple>

namespace orvane::engine {

namespace {

using session::ChannelSettingsData;
using session::PluginSlot;

bool isSameSlot(const PluginSlot& one, const PluginSlot& other) {
    // A recall takes a plugin whose maker alone differs, and its name with it.
    const auto plugin = [](const PluginSlot& slot) {
        const session::AUComponentIdentity identity = slot.component.value_or(session::AUComponentIdentity{});
        return std::tuple(identity.componentType, identity.componentSubType, slot.bypassed);
    };
    return plugin(one) == plugin(other);
}

bool isSameChannel(const ChannelSettingsData& one, const ChannelSettingsData& other) {
    const auto settings = [](const ChannelSettingsData& channel) {
        return std::tie(
            channel.name, channel.inputChannelIndex, channel.outputRouting, channel.genderMode, channel.muted,
            channel.bypassed, channel.trim, channel.vocalRole
        );
    };
    return settings(one) == settings(other)
           && std::ranges::equal(one.pluginSlots, other.pluginSlots, isSameSlot);
}

} // namespace

bool differs(
    const session::Snapshot& scene, std::span<const session::ChannelStrip> strips,
    const session::MasterLevels& levels
) {
    const std::size_t shared = std::min(scene.channels.size(), strips.size());
    return scene.levels != levels
           || !std::equal(
               scene.channels.begin(), scene.channels.begin() + shared, strips.begin(), isSameChannel
           );
}

} // namespace orvane::engine
