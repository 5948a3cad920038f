#include "platform/lv2_units/editor_messages.h"

#include <cstring>

namespace orvane::platform::lv2_units {

void EditorMessages::add(Listener& listener) {
    // What was sent to those that are gone is nothing to a new one.
    if (listeners.empty()) distribute();
    listeners.push_back(&listener);
    isHeard.store(true);
}

void EditorMessages::remove(Listener& listener) {
    std::erase(listeners, &listener);
    isHeard.store(!listeners.empty());
}

void EditorMessages::distribute() {
    while (const LV2_Atom_Event* const event = take(toEditors, forEditors))
        for (Listener* const listener : listeners)
            listener->messageArrived(static_cast<std::uint32_t>(event->time.frames), event->body);
}

void EditorMessages::sendToPlugin(std::uint32_t port, const LV2_Atom& atom) {
    std::vector<std::byte> event(sizeof(LV2_Atom_Event) + atom.size);
    const auto place = static_cast<std::int64_t>(port);
    std::memcpy(event.data(), &place, sizeof place);
    std::memcpy(event.data() + sizeof place, &atom, sizeof atom + atom.size);
    static_cast<void>(toPlugin.write(event));
}

} // namespace orvane::platform::lv2_units
