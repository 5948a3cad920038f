#include "engine/session/plugin_slot.h"

namespace orvane::session {

PluginSlot PluginSlot::makeEmpty() {
    PluginSlot slot;
    slot.id = platform::Uuid::random();
    return slot;
}

std::vector<PluginSlot> paddedWithEmptySlots(std::vector<PluginSlot> slots) {
    slots.reserve(pluginSlotsPerChannel);
    while (slots.size() < pluginSlotsPerChannel)
        slots.push_back(PluginSlot::makeEmpty());
    return slots;
}

} // namespace orvane::session
