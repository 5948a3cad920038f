#pragma once

#include "engine/session/master_output_routing.h"
#include "engine/session/output_routing.h"

#include <QStringList>

#include <cstdint>
#include <optional>
#include <vector>

namespace orvane::ui {

/// The entries of a menu of device channels, and the current one. A current channel that the device lacks
/// gets a further entry, so that the menu always shows the real routing. A plain value.
struct RoutingMenu {
    QStringList labels;
    /// The channel of each entry, counted from 0, or the left channel of its pair; absent for "None".
    std::vector<std::optional<std::int64_t>> channels;
    int current = 0;

    /// Makes the menu of a device with `inputCount` inputs.
    static RoutingMenu inputs(std::int64_t inputCount, const std::optional<std::int64_t>& current);

    /// Makes the menu of a device with `outputCount` outputs: its channels, or for a stereo routing its
    /// pairs, each of which starts with a channel of even index.
    static RoutingMenu outputs(std::int64_t outputCount, const session::OutputRouting& current);
    static RoutingMenu outputs(std::int64_t outputCount, const session::MasterOutputRouting& current);

    [[nodiscard]] std::optional<std::int64_t> channelOf(int choice) const {
        return channels[static_cast<std::size_t>(choice)];
    }
};

} // namespace orvane::ui
