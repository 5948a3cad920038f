#pragma once

#include "platform/files/property_list.h"
#include "platform/lv2/state_paths.h"
#include "platform/lv2/urid_map.h"

#include <lv2/core/lv2.h>
#include <lv2/state/state.h>

namespace orvane::platform::lv2 {

/// What a plugin saved, and whether it reported success.
struct SavedState {
    PropertyList::Dictionary state;
    bool isWhole = false;
};

/// Returns what the plugin's state interface saves: under the URI of each key a dictionary with its "type" (a
/// URI), "flags" and "value". Only values that are valid in another process are kept: plain data and paths.
/// Control thread.
SavedState savePluginState(
    const LV2_State_Interface& interface, LV2_Handle handle, UridMap& urids,
    const LV2_Feature* const* features
);

/// Restores a saved state. Ignores entries of another form, entries whose size does not fit their type, and
/// paths that `paths` does not permit. Returns whether the plugin reported success. Control thread.
bool restorePluginState(
    const LV2_State_Interface& interface, LV2_Handle handle, UridMap& urids,
    const LV2_Feature* const* features, const PropertyList::Dictionary& state, StatePaths& paths
);

} // namespace orvane::platform::lv2
