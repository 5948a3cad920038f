#pragma once

#include "engine/engine_state.h"
#include "engine/insert_rack.h"
#include "engine/session/plugin_slot.h"
#include "plugins/plugin_clipboard.h"
#include "plugins/plugin_slot_key.h"

#include <cstddef>
#include <deque>

namespace orvane::engine {

/// What pasted plugins have replaced, so that a paste can be undone. Owned by the engine. Main thread.
class PasteHistory final {
  public:
    /// The number of pastes that can be undone.
    static constexpr std::size_t mostUndos = 25;

    /// Both outlive the history.
    PasteHistory(InsertRack& insertRack, EngineState& engineState) : rack(insertRack), state(engineState) {}
    PasteHistory(const PasteHistory&) = delete;
    PasteHistory& operator=(const PasteHistory&) = delete;

    /// Loads a copied plugin into a slot and remembers what was there, settings included.
    void paste(const plugins::CopiedPlugin& copied, const plugins::PluginSlotKey& key);
    /// Loads again what the last paste replaced. Pastes whose slot has another plugin by now are skipped.
    void undo();
    /// Forgets every paste, because the slots are no longer those that were pasted to.
    void clear();

  private:
    struct Paste {
        plugins::PluginSlotKey key;
        /// The pasted plugin.
        session::AUComponentIdentity pasted;
        session::PluginSlot replaced;
    };

    void publish();

    InsertRack& rack;
    EngineState& state;
    /// The last one at the end.
    std::deque<Paste> pastes;
};

} // namespace orvane::engine
