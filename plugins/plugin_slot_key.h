#pragma once

#include "platform/base/uuid.h"

#include <cstddef>
#include <functional>

namespace orvane::plugins {

/// One insert slot of one strip. A plain value.
struct PluginSlotKey {
    platform::Uuid stripID;
    /// Counted from 0.
    std::size_t slot = 0;

    bool operator==(const PluginSlotKey&) const = default;
};

} // namespace orvane::plugins

template <>
struct std::hash<orvane::plugins::PluginSlotKey> {
    std::size_t operator()(const orvane::plugins::PluginSlotKey& key) const noexcept {
        constexpr std::size_t prime = 31;
        return std::hash<orvane::platform::Uuid>()(key.stripID) * prime + key.slot;
    }
};
