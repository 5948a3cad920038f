#pragma once

#include "engine/session/master_output_routing.h"
#include "engine/session/output_routing.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orvane::audio {

/// One device output that a signal goes to, with the linear gain it goes there at.
struct Send {
    std::size_t channel;
    double gain;

    bool operator==(const Send&) const = default;
};

/// The sends of one signal, at most a pair.
class Sends final {
  public:
    /// A negative channel is no output of any device: it is left out.
    void add(std::int64_t channel, double gain) noexcept {
        if (channel >= 0) sends[count++] = {static_cast<std::size_t>(channel), gain};
    }

    [[nodiscard]] const Send* begin() const noexcept { return sends.data(); }
    [[nodiscard]] const Send* end() const noexcept { return sends.data() + count; }

  private:
    std::array<Send, 2> sends{};
    std::size_t count = 0;
};

/// Where a strip's signal goes; a stereo pair at constant power, from -1 all left to +1 all right.
Sends sendsOf(const session::OutputRouting& routing) noexcept;

/// Where the master bus goes; both sides of a pair get the same.
Sends sendsOf(const session::MasterOutputRouting& routing) noexcept;

/// What the render pass needs of the routing of the session, worked out on the control side so that a pass
/// only looks things up. Never changed once it is built.
struct RoutingTable {
    RoutingTable() = default;
    RoutingTable(
        std::span<const std::optional<std::int64_t>> inputs, std::span<const session::OutputRouting> outputs,
        const session::MasterOutputRouting& master
    );

    /// Device input of each strip, where it has one that is not negative.
    std::vector<std::optional<std::size_t>> routingInputs;
    std::vector<Sends> routingOutputs;
    Sends masterSends;
    /// Device outputs that some strip, the master bus, or either of them names: ascending, each once. They
    /// may lie beyond what the device has.
    std::vector<std::size_t> activeOutputChannels;
    std::vector<std::size_t> activeMasterOutputChannels;
    std::vector<std::size_t> activeChannelsWithMaster;
};

} // namespace orvane::audio
