#pragma once

#include "audio/published.h"
#include "engine/mixer_engine.h"
#include "engine/session/mixer_document_data.h"
#include "plugins/plugin_slot_key.h"

#include <vector>

namespace orvane::ui {

/// The session as it was last saved, loaded or begun, which the mixer is compared with. A plugin without
/// settings in it stands for one with its defaults: those that it has once it is live. Owned by a
/// `SessionFile`; main thread.
class SavedSession final {
  public:
    /// The session as it is now. `mixerEngine` outlives this.
    explicit SavedSession(const engine::MixerEngine& mixerEngine);

    /// Takes a session for saved, or, without enough memory, nothing.
    void set(session::MixerDocumentData session);
    /// Whether the mixer has another session.
    [[nodiscard]] bool isOutdated() const;

  private:
    void takeDefaults();
    void takeDefaults(const plugins::PluginSlotKey& key);

    const engine::MixerEngine& engine;
    session::MixerDocumentData document;
    /// The slots that were being loaded when the session was saved, and still are.
    std::vector<plugins::PluginSlotKey> awaited;
    audio::Subscription loads;
};

} // namespace orvane::ui
