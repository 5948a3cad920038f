#pragma once

#include "platform/files/property_list.h"
#include "platform/lv2/lv2_parameter.h"

#include <memory>
#include <span>
#include <string>

namespace orvane::platform::lv2 {

// The full state of a unit: its plugin's "uri", its "controls" by symbol, and the "state" that the plugin's
// own interface saves. Control thread.

using ParameterList = std::span<const std::unique_ptr<Lv2Parameter>>;

/// The numbers of the parameters that are settings.
PropertyList::Dictionary controlsOf(ParameterList parameters);

PropertyList::Dictionary makeFullState(
    const std::string& pluginUri, PropertyList::Dictionary controls, PropertyList::Dictionary pluginState
);

/// Whether it is a state of that plugin.
bool isStateOf(const std::string& pluginUri, const PropertyList::Dictionary& fullState);

/// Sets the parameters that the state has a number for.
void restoreControls(const PropertyList::Dictionary& fullState, ParameterList parameters);

/// What the plugin's interface saved; null where it saved nothing.
const PropertyList::Dictionary* pluginStateIn(const PropertyList::Dictionary& fullState);

} // namespace orvane::platform::lv2
