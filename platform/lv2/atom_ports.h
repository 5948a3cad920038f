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

/// The buffers of a plugin's atom ports; must outlive the plugin's instance. Render thread, except the
/// constructor and `buffer`.
class AtomPorts final {
  public:
    AtomPorts(const PluginDescription& description, UridMap& urids);

    /// The buffer to connect to a port; null if the port is of another kind.
    [[nodiscard]] void* buffer(std::size_t port) { return buffers[port].data(); }

    /// Prepares for a run: empties the inputs and offers the outputs their whole capacity.
    ORVANE_REALTIME void clear() noexcept;
    /// Adds the editors' messages to the inputs, at the first frame; drops those that do not fit.
    ORVANE_REALTIME void receive(EditorMessages& messages) noexcept;
    /// Sends the outputs of the last run to the editors.
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
    /// By port index; empty for ports of another kind.
    std::vector<std::vector<std::max_align_t>> buffers;
    LV2_URID sequenceType;
    LV2_URID chunkType;
};

} // namespace orvane::platform::lv2
