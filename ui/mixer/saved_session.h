#pragma once

#include "engine/mixer_engine.h"
#include "engine/session/mixer_document_data.h"
#include "platform/base/published.h"
#include "plugins/plugin_slot_key.h"

#include <vector>

namespace orvane::ui {

/// The session as it was last saved, loaded or begun, for comparison with the mixer. A plugin stored without
/// settings has its defaults, which are taken from the plugin once it is live. Owned by a `SessionFile`; main
/// thread.
class SavedSession final {
  public:
    /// Starts with the mixer's current session. `mixerEngine` must outlive this object.
    explicit SavedSession(const engine::MixerEngine& mixerEngine);

    /// Stores a session as saved. Without enough memory, nothing changes.
    void set(session::MixerDocumentData session);
    /// Whether the mixer's session differs.
    [[nodiscard]] bool isOutdated() const;

  private:
    void takeDefaults();
    void takeDefaults(const plugins::PluginSlotKey& key);

    const engine::MixerEngine& engine;
    session::MixerDocumentData document;
    /// The slots that were loading when the session was saved and still are.
    std::vector<plugins::PluginSlotKey> awaited;
    platform::Subscription loads;
};

} // namespace orvane::ui
