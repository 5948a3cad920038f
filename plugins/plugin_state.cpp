#include "plugins/plugin_state.h"

#include "plugins/insert_components.h"

#include <utility>

namespace orvane::plugins {

using platform::PropertyList;

platform::Result<std::optional<PropertyList::Data>> captureState(const platform::AUAudioUnit& unit) {
    const auto fullState = unit.fullState();
    if (!fullState) return std::optional<PropertyList::Data>();
    auto data = platform::dataWithPropertyList(*fullState);
    if (!data) return data.error();
    return std::optional(std::move(data).value());
}

platform::Result<platform::Done>
restoreState(const LoadedInsertPlugin& plugin, std::span<const std::uint8_t> data) {
    const auto state = platform::propertyListWithData(data);
    if (!state)
        return platform::Error{
            "The saved settings of " + plugin.component.name + " cannot be read; set it up again and save."};
    return plugin.avAudioUnit->setFullState(state.value());
}

platform::Result<platform::Done> captureInto(session::PluginSlot& record, const LoadedInsertPlugin& plugin) {
    if (const auto identity = identityOf(plugin.component); record.component != identity) {
        record.pluginName = plugin.component.name;
        record.component = identity;
        record.presetData.reset();
    }
    auto captured = captureState(*plugin.avAudioUnit);
    if (!captured) {
        record.presetData.reset();
        return captured.error();
    }
    if (captured.value()) record.presetData = std::move(captured).value();
    return platform::Done{};
}

} // namespace orvane::plugins
