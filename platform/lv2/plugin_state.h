#pragma once

#include "platform/files/property_list.h"
#include "platform/lv2/state_paths.h"
#include "platform/lv2/urid_map.h"

#include <lv2/core/lv2.h>
#include <lv2/state/state.h>

namespace orvane::platform::lv2 {

/// What a plugin saved, and whether it says that this is all.
struct SavedState {
    PropertyList::Dictionary state;
    bool isWhole = false;
};

/// What the plugin's state interface saves, each value under the URI of its key as a dictionary of its
/// "type" (a URI), "flags" and "value". Only what means the same in another process is kept: plain data and
/// paths. Control thread.
SavedState savePluginState(
    const LV2_State_Interface& interface, LV2_Handle handle, UridMap& urids,
    const LV2_Feature* const* features
);

/// Lets the plugin take what was saved. Entries that are not of that form, or not of the size that their
/// type has, or paths that `paths` does not permit, are as if they were not there. True where the plugin says
/// that it took it. Control thread.
bool restorePluginState(
    const LV2_State_Interface& interface, LV2_Handle handle, UridMap& urids,
    const LV2_Feature* const* features, const PropertyList::Dictionary& state, StatePaths& paths
);

} // namespace orvane::platform::lv2
