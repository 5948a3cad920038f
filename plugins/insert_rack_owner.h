#pragma once

#include "engine/session/channel_strip.h"
#include "engine/session/plugin_slot.h"
#include "plugins/plugin_load_state.h"
#include "plugins/plugin_slot_key.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orvane::plugins {

/// The mixer that an insert rack works for. It keeps what the user sees; the rack reads and changes that
/// through here. Main thread.
class InsertRackOwner {
  public:
    virtual ~InsertRackOwner() = default;

    [[nodiscard]] virtual const std::vector<session::ChannelStrip>& channelStrips() const = 0;
    /// Replaces the record of an existing slot and publishes the strips, then pushes routing and inserts.
    virtual void replaceSlot(const PluginSlotKey& key, session::PluginSlot record) = 0;

    [[nodiscard]] virtual const PluginLoadStates& pluginLoadStates() const = 0;
    virtual void setPluginLoadStates(PluginLoadStates states) = 0;

    /// Replaces the message line: one complete sentence.
    virtual void setLastError(std::string sentence) = 0;

    /// The rate that plugins are to work at, in Hz.
    [[nodiscard]] virtual double sampleRate() const = 0;
    /// Frames in a block.
    [[nodiscard]] virtual std::int64_t bufferSize() const = 0;

    /// Hands the contexts of the rack's live plugins to the real-time state, if there is one, and tells the
    /// rack (`InsertRack::insertsWerePushed`).
    virtual void pushInserts() = 0;
    /// Whether no render pass can hold a context that was withdrawn by a push.
    virtual bool freeRetired() = 0;
};

} // namespace orvane::plugins
