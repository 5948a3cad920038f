#pragma once

#include "platform/effects/audio_unit_host.h"
#include "platform/files/property_list.h"

#include <optional>
#include <string>

namespace orvane::plugins {

/// A plugin with its settings, to be put into other slots. A plain value.
struct CopiedPlugin {
    platform::AVAudioUnitComponent component;
    /// The component's, when it was copied.
    std::string name;
    /// Absent if the plugin had none, or none that could be written.
    std::optional<platform::PropertyList::Data> stateData;

    bool operator==(const CopiedPlugin&) const = default;
};

/// What the next click on a slot does.
enum class PluginClipboardArmState { none, armedForCopy, armedForPaste };

// The moves between the arm states.

constexpr PluginClipboardArmState afterCopyToggle(PluginClipboardArmState state) {
    using enum PluginClipboardArmState;
    return state == armedForCopy ? none : armedForCopy;
}

/// Paste can be armed only while there is something to paste.
constexpr PluginClipboardArmState afterPasteToggle(PluginClipboardArmState state, bool isFilled) {
    using enum PluginClipboardArmState;
    if (!isFilled) return state;
    return state == armedForPaste ? none : armedForPaste;
}

/// A copy is made once, while the same plugin can be pasted onto slot after slot.
constexpr PluginClipboardArmState afterClick(PluginClipboardArmState state) {
    using enum PluginClipboardArmState;
    return state == armedForPaste ? armedForPaste : none;
}

} // namespace orvane::plugins
