#pragma once

#include "dsp/realtime.h"
#include "platform/lv2/editor_messages.h"
#include "platform/lv2/plugin_description.h"
#include "platform/lv2/urid_map.h"

#include <lv2/atom/atom.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvane::platform::lv2 {

/// The buffers of a plugin's atom ports, which outlives them. Render thread, but for the constructor and
/// `buffer`.
class AtomPorts final {
  public:
    AtomPorts(const PluginDescription& description, UridMap& urids);

    /// What the port is connected to, by port index; null where it is of another kind.
    [[nodiscard]] void* buffer(std::size_t port) { return buffers[port].data(); }

    /// Makes ready for a run: inputs are empty sequences, outputs have room.
    ORVANE_REALTIME void clear() noexcept;
    /// Puts what editors have sent into the inputs, at the first frame; what finds no room is dropped.
    ORVANE_REALTIME void receive(EditorMessages& messages) noexcept;
    /// Sends what the run has put into the outputs to editors.
    ORVANE_REALTIME void send(EditorMessages& messages) noexcept;

  private:
    ORVANE_REALTIME void append(std::size_t port, const LV2_Atom& atom) noexcept;
    ORVANE_REALTIME void sendEvents(std::size_t port, EditorMessages& messages) noexcept;
    [[nodiscard]] LV2_Atom_Sequence& sequence(std::size_t port) noexcept {
        return *reinterpret_cast<LV2_Atom_Sequence*>(buffers[port].data());
    }
    /// In bytes.
    [[nodiscard]] std::size_t capacity(std::size_t port) const noexcept {
        return buffers[port].size() * sizeof(std::max_align_t);
    }

    const PluginDescription& description;
    /// By port index; empty where the port is of another kind.
    std::vector<std::vector<std::max_align_t>> buffers;
    LV2_URID sequenceType;
    LV2_URID chunkType;
};

} // namespace orvane::platform::lv2
