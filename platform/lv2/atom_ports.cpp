#include "platform/lv2/atom_ports.h"

#include <lv2/atom/util.h>

#include <cstring>

namespace orvane::platform::lv2 {

AtomPorts::AtomPorts(const PluginDescription& pluginDescription, UridMap& urids)
    : description(pluginDescription),
      sequenceType(urids.map(LV2_ATOM__Sequence)),
      chunkType(urids.map(LV2_ATOM__Chunk)) {
    for (const std::size_t bytes : description.bufferSizes)
        buffers.emplace_back((bytes + sizeof(std::max_align_t) - 1) / sizeof(std::max_align_t));
}

void AtomPorts::clear() noexcept {
    for (std::size_t i = 0; i < buffers.size(); ++i) {
        if (buffers[i].empty()) continue;
        if (description.roles[i].isInput)
            sequence(i).atom = {sizeof(LV2_Atom_Sequence_Body), sequenceType};
        else
            sequence(i).atom = {static_cast<std::uint32_t>(capacity(i) - sizeof(LV2_Atom)), chunkType};
        sequence(i).body = {};
    }
}

void AtomPorts::receive(EditorMessages& messages) noexcept {
    while (const LV2_Atom_Event* const message = messages.nextForPlugin())
        append(static_cast<std::size_t>(message->time.frames), message->body);
}

void AtomPorts::append(std::size_t port, const LV2_Atom& atom) noexcept {
    LV2_Atom& whole = sequence(port).atom;
    const std::size_t end = sizeof(LV2_Atom) + lv2_atom_pad_size(whole.size);
    const std::size_t size = sizeof(LV2_Atom_Event) + atom.size;
    if (end + size > capacity(port)) return;
    auto* const event = reinterpret_cast<LV2_Atom_Event*>(reinterpret_cast<std::byte*>(&whole) + end);
    event->time.frames = 0;
    std::memcpy(static_cast<void*>(&event->body), &atom, sizeof atom + atom.size);
    whole.size = static_cast<std::uint32_t>(end + size - sizeof(LV2_Atom));
}

void AtomPorts::send(EditorMessages& messages) noexcept {
    if (!messages.hasListeners()) return;
    for (std::size_t i = 0; i < buffers.size(); ++i)
        if (!buffers[i].empty() && !description.roles[i].isInput && sequence(i).atom.type == sequenceType)
            sendEvents(i, messages);
}

/// The plugin wrote the sizes; they may be wrong.
void AtomPorts::sendEvents(std::size_t port, EditorMessages& messages) noexcept {
    const std::size_t end = sizeof(LV2_Atom) + sequence(port).atom.size;
    if (end > capacity(port)) return;
    auto* const start = reinterpret_cast<std::byte*>(buffers[port].data());
    std::size_t at = sizeof(LV2_Atom_Sequence);
    while (at + sizeof(LV2_Atom_Event) <= end) {
        auto& event = *reinterpret_cast<LV2_Atom_Event*>(start + at);
        const std::size_t size = sizeof event + event.body.size;
        if (size > end - at) return;
        event.time.frames = static_cast<std::int64_t>(port);
        messages.sendToEditors({start + at, size});
        at += sizeof event + lv2_atom_pad_size(event.body.size);
    }
}

} // namespace orvane::platform::lv2
