#pragma once

#include "engine/session/plugin_slot.h"
#include "platform/base/result.h"
#include "platform/effects/audio_unit_host.h"
#include "platform/files/property_list.h"
#include "plugins/insert_render_context.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace orvane::plugins {

/// A live plugin. The mix owns it; the real-time tables share its context, and must not hold it any more
/// when this goes. Main thread.
struct LoadedInsertPlugin {
    /// What it was made from.
    platform::AVAudioUnitComponent component;
    std::shared_ptr<platform::AUAudioUnit> avAudioUnit;
    std::shared_ptr<InsertRenderContext> renderContext = nullptr;
    /// What it is set up for, in Hz; 0 if it is not.
    double sampleRate = 0.0;
    /// Fetched when the editor is first opened, and kept.
    std::shared_ptr<platform::AUViewController> editorViewController = nullptr;
};

/// Sets a plugin up for mono or else stereo at a rate in Hz and allocates its render resources. Returns how
/// many channels it took; absent if it took neither.
std::optional<std::size_t> negotiateFormat(platform::AUAudioUnit& unit, double sampleRate);

/// Renders the first block of a plugin, which may take its time, before anything waits for it: on a thread of
/// its own, which is abandoned with the plugin if it does not return within `platform::stopPatience`.
void warmUp(const LoadedInsertPlugin& plugin, std::int64_t frameCount);

// A plugin's settings as bytes: its full state as a binary property list.

/// The settings as they are now; absent if the plugin has none. Fails if they cannot be written.
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
