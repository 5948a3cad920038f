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

/// A device output that a signal is sent to, and the linear gain of the send.
struct Send {
    std::size_t channel;
    double gain;

    bool operator==(const Send&) const = default;
};

/// The sends of one signal, at most a pair.
class Sends final {
  public:
    /// Ignores negative channels.
    void add(std::int64_t channel, double gain) noexcept {
        if (channel >= 0) sends[count++] = {static_cast<std::size_t>(channel), gain};
    }

    /// Returns the gain of the send to a channel; 0 without such a send.
    [[nodiscard]] double gainTo(std::size_t channel) const noexcept {
        for (const Send& send : *this)
            if (send.channel == channel) return send.gain;
        return 0.0;
    }

    [[nodiscard]] const Send* begin() const noexcept { return sends.data(); }
    [[nodiscard]] const Send* end() const noexcept { return sends.data() + count; }

  private:
    std::array<Send, 2> sends{};
    std::size_t count = 0;
};

/// The sends of a strip; a stereo pair is panned at constant power, from -1 (left) to +1 (right).
Sends sendsOf(const session::OutputRouting& routing) noexcept;

/// The sends of the master bus; both sides of a pair get the same signal.
Sends sendsOf(const session::MasterOutputRouting& routing) noexcept;

/// The session's routing as the render pass needs it, computed on the control side so that a pass only looks
/// it up. Never changed once it is built.
struct RoutingTable {
    RoutingTable() = default;
    RoutingTable(
        std::span<const std::optional<std::int64_t>> inputs, std::span<const session::OutputRouting> outputs,
        const session::MasterOutputRouting& master
    );

    /// Device input of each strip; absent if it has none or a negative one.
    std::vector<std::optional<std::size_t>> routingInputs;
    std::vector<Sends> routingOutputs;
    Sends masterSends;
    /// Device outputs that a strip, the master bus, or either of them uses: ascending, each once. The device
    /// may have fewer outputs.
    std::vector<std::size_t> activeOutputChannels;
    std::vector<std::size_t> activeMasterOutputChannels;
    std::vector<std::size_t> activeChannelsWithMaster;
};

} // namespace orvane::audio
