#pragma once

#include "plugins/plugin_slot_key.h"

#include <string>
#include <unordered_map>
#include <variant>

namespace orvane::plugins {

namespace load_state {

/// An instance has been asked for and is not there yet.
struct Loading {
    bool operator==(const Loading&) const = default;
};

/// The plugin is live in the slot.
struct Loaded {
    bool operator==(const Loaded&) const = default;
};

/// The plugin could not be brought to life.
struct Failed {
    /// Why, for the slot to show.
    std::string message;

    bool operator==(const Failed&) const = default;
};

} // namespace load_state

/// How far the loading of a slot's plugin has come. A plain value.
using PluginLoadState = std::variant<load_state::Loading, load_state::Loaded, load_state::Failed>;

/// The slots that have one; the others are empty, were not loaded in this run, or were unloaded.
using PluginLoadStates = std::unordered_map<PluginSlotKey, PluginLoadState>;

} // namespace orvane::plugins
