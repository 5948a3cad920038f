#pragma once

#include "engine/session/plugin_slot.h"
#include "platform/base/result.h"
#include "platform/effects/audio_unit_host.h"
#include "platform/files/property_list.h"
#include "plugins/loaded_insert_plugin.h"

#include <cstdint>
#include <optional>
#include <span>

namespace orvane::plugins {

// A plugin's settings as bytes: its full state as a binary property list. Main thread.

/// The settings as they are now; nothing where the plugin has none. Fails where they cannot be written.
platform::Result<std::optional<platform::PropertyList::Data>> captureState(const platform::AUAudioUnit& unit);

/// Gives a plugin settings as bytes. Fails if these are no property list, which leaves the plugin as it is,
/// or if it was not given a file that they name.
platform::Result<platform::Done>
restoreState(const LoadedInsertPlugin& plugin, std::span<const std::uint8_t> data);

/// Makes the record of a slot hold the state of the plugin that is live in it, and name that plugin. A state
/// that it has of the same plugin stays if the plugin has none. Fails if the state cannot be written, which
/// leaves the record without one.
platform::Result<platform::Done> captureInto(session::PluginSlot& record, const LoadedInsertPlugin& plugin);

} // namespace orvane::plugins
