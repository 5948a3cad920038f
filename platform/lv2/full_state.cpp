#include "platform/lv2/full_state.h"

#include "platform/files/property_list.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

namespace orvane::platform::lv2 {

namespace {

constexpr const char* uriKey = "uri";
constexpr const char* controlsKey = "controls";
constexpr const char* stateKey = "state";

std::optional<double> numberAt(const PropertyList::Dictionary& dictionary, const std::string& key) {
    if (const auto* const real = valueAt<double>(dictionary, key)) return *real;
    if (const auto* const integer = valueAt<std::int64_t>(dictionary, key))
        return static_cast<double>(*integer);
    return std::nullopt;
}

} // namespace

PropertyList::Dictionary controlsOf(ParameterList parameters) {
    PropertyList::Dictionary controls;
    for (const auto& parameter : parameters)
        if (parameter->isSetting())
            controls[parameter->info().identifier].value = static_cast<double>(parameter->value());
    return controls;
}

PropertyList::Dictionary makeFullState(
    const std::string& pluginUri, PropertyList::Dictionary controls, PropertyList::Dictionary pluginState
) {
    PropertyList::Dictionary state;
    state[uriKey].value = pluginUri;
    state[controlsKey].value = std::move(controls);
    if (!pluginState.empty()) state[stateKey].value = std::move(pluginState);
    return state;
}

bool isStateOf(const std::string& pluginUri, const PropertyList::Dictionary& fullState) {
    const auto* const uri = valueAt<std::string>(fullState, uriKey);
    return uri != nullptr && *uri == pluginUri;
}

void restoreControls(const PropertyList::Dictionary& fullState, ParameterList parameters) {
    const auto* const controls = valueAt<PropertyList::Dictionary>(fullState, controlsKey);
    if (controls == nullptr) return;
    for (const auto& parameter : parameters) {
        if (!parameter->isSetting()) continue;
        const auto number = numberAt(*controls, parameter->info().identifier);
        if (number && std::abs(*number) <= std::numeric_limits<float>::max())
            parameter->setValue(static_cast<float>(*number));
    }
}

const PropertyList::Dictionary* pluginStateIn(const PropertyList::Dictionary& fullState) {
    return valueAt<PropertyList::Dictionary>(fullState, stateKey);
}

} // namespace orvane::platform::lv2
