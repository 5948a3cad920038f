#pragma once

#include "platform/files/property_list.h"
#include "platform/lv2/lv2_parameter.h"

#include <memory>
#include <span>
#include <string>

namespace orvane::platform::lv2 {

// The full state of a unit: the plugin's "uri", its "controls" by symbol, and the "state" that the plugin's
// state interface saves. Control thread.

using ParameterList = std::span<const std::unique_ptr<Lv2Parameter>>;

/// The values of all parameters that are settings.
PropertyList::Dictionary controlsOf(ParameterList parameters);

PropertyList::Dictionary makeFullState(
    const std::string& pluginUri, PropertyList::Dictionary controls, PropertyList::Dictionary pluginState
);

/// Whether the state was saved from this plugin.
bool isStateOf(const std::string& pluginUri, const PropertyList::Dictionary& fullState);

/// Sets the parameters that the state has a value for.
void restoreControls(const PropertyList::Dictionary& fullState, ParameterList parameters);

/// The part that the plugin's state interface saved; null if it saved nothing.
const PropertyList::Dictionary* pluginStateIn(const PropertyList::Dictionary& fullState);

} // namespace orvane::platform::lv2
