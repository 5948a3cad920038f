#pragma once

#include "engine/session/master_output_routing.h"
#include "engine/session/output_routing.h"

#include <QStringList>

#include <cstdint>
#include <optional>
#include <vector>

namespace orvane::ui {

/// The entries of a menu of device channels and which of them is chosen. A chosen channel that the device
/// does not have is one entry more, so that the menu never shows what is not so. A plain value.
struct RoutingMenu {
    QStringList labels;
    /// What each entry stands for: a channel counted from 0, or the left one of a pair; absent = none.
    std::vector<std::optional<std::int64_t>> channels;
    int current = 0;

    /// The inputs of a device with `inputCount` of them.
    static RoutingMenu inputs(std::int64_t inputCount, const std::optional<std::int64_t>& current);

    /// The outputs of a device with `outputCount` of them: its channels, or for a stereo routing its pairs,
    /// each of which begins with a channel of even index.
    static RoutingMenu outputs(std::int64_t outputCount, const session::OutputRouting& current);
    static RoutingMenu outputs(std::int64_t outputCount, const session::MasterOutputRouting& current);

    [[nodiscard]] std::optional<std::int64_t> channelOf(int choice) const {
        return channels[static_cast<std::size_t>(choice)];
    }
};

} // namespace orvane::ui
