#include "platform/lv2/editor_messages.h"

#include <cstddef>
#include <cstring>
#include <mutex>
#include <span>

namespace orvane::platform::lv2 {

void EditorMessages::add(Listener& listener) {
    // Messages for editors that were closed must not reach a new one.
    if (listeners.empty()) distribute();
    listeners.push_back(&listener);
    hasAnyListener.store(true);
}

void EditorMessages::remove(Listener& listener) {
    std::erase(listeners, &listener);
    hasAnyListener.store(!listeners.empty());
}

void EditorMessages::distribute() {
    while (const LV2_Atom_Event* const event = take(toEditors, forEditors))
        for (Listener* const listener : listeners)
            listener->messageArrived(static_cast<std::uint32_t>(event->time.frames), event->body);
}

void EditorMessages::sendToPlugin(std::uint32_t port, const LV2_Atom& atom) {
    const std::size_t size = sizeof(LV2_Atom_Event) + atom.size;
    if (size > MessageRing::capacity) return;
    const auto place = static_cast<std::int64_t>(port);
    const std::scoped_lock lock(sending);
    std::memcpy(outgoing.bytes.data(), &place, sizeof place);
    std::memcpy(outgoing.bytes.data() + sizeof place, &atom, sizeof atom + atom.size);
    static_cast<void>(toPlugin.write(std::span(outgoing.bytes).first(size)));
}

} // namespace orvane::platform::lv2
