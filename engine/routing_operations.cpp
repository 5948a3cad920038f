#include "engine/routing_operations.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <variant>

namespace orvane::engine {

namespace {

namespace output = session::output;
namespace master_output = session::master_output;
using session::MasterOutputRouting;
using session::OutputRouting;

/// The channels that a routing goes to, left and right or twice the same; absent for none.
template <class Routing>
std::optional<std::pair<std::int64_t, std::int64_t>> channelsOf(const Routing& routing) {
    if (const auto* mono = std::get_if<output::Mono>(&routing)) return {{mono->channel, mono->channel}};
    using Stereo = std::variant_alternative_t<2, Routing>;
    if (const auto* pair = std::get_if<Stereo>(&routing)) return {{pair->left, pair->right}};
    return std::nullopt;
}

template <class Routing>
std::int64_t baseChannel(const Routing& routing) {
    const auto channels = channelsOf(routing);
    return channels ? channels->first : 0;
}

/// The remainder has the sign of the channel, so that a negative one goes up to the even channel above it.
template <class Routing>
std::int64_t evenBaseChannel(const Routing& routing) {
    const std::int64_t base = baseChannel(routing);
    return base - base % 2;
}

template <class Routing>
std::uint64_t countUpToHighest(const Routing& routing) {
    const auto channels = channelsOf(routing);
    const std::int64_t highest = channels ? std::max(channels->first, channels->second) : -1;
    return highest < 0 ? 0 : static_cast<std::uint64_t>(highest) + 1;
}

bool isBelow(std::int64_t channel, std::int64_t count) {
    return channel >= 0 && channel < count;
}

OutputRouting monoIfThere(std::int64_t channel, std::int64_t outputCount) {
    if (channel < outputCount) return output::Mono{channel};
    return output::None{};
}

} // namespace

OutputRouting asStereo(const OutputRouting& routing) {
    const std::int64_t left = evenBaseChannel(routing);
    return output::Stereo{left, left + 1, 0.0};
}

MasterOutputRouting asStereo(const MasterOutputRouting& routing) {
    const std::int64_t left = evenBaseChannel(routing);
    return master_output::Stereo{left, left + 1};
}

OutputRouting asMono(const OutputRouting& routing) {
    return output::Mono{baseChannel(routing)};
}

MasterOutputRouting asMono(const MasterOutputRouting& routing) {
    return output::Mono{baseChannel(routing)};
}

OutputRouting withStereoPair(const OutputRouting& routing, std::int64_t left) {
    const auto* pair = std::get_if<output::Stereo>(&routing);
    return pair == nullptr ? routing : output::Stereo{left, left + 1, pair->pan};
}

MasterOutputRouting withStereoPair(const MasterOutputRouting& routing, std::int64_t left) {
    const bool isPair = std::holds_alternative<master_output::Stereo>(routing);
    return isPair ? master_output::Stereo{left, left + 1} : routing;
}

OutputRouting withPan(const OutputRouting& routing, double pan) {
    const auto* pair = std::get_if<output::Stereo>(&routing);
    return pair == nullptr ? routing : output::Stereo{pair->left, pair->right, std::clamp(pan, -1.0, 1.0)};
}

bool exists(const MasterOutputRouting& routing, std::int64_t outputCount) {
    const auto channels = channelsOf(routing);
    return !channels || (isBelow(channels->first, outputCount) && isBelow(channels->second, outputCount));
}

std::uint64_t outputsNeeded(const OutputRouting& routing) {
    return countUpToHighest(routing);
}

std::uint64_t outputsNeeded(const MasterOutputRouting& routing) {
    return countUpToHighest(routing);
}

void assignDefaultRouting(
    std::span<session::ChannelStrip> strips, std::int64_t inputCount, std::int64_t outputCount
) {
    for (std::size_t i = 0; i < strips.size(); ++i) {
        const auto channel = static_cast<std::int64_t>(i);
        if (!strips[i].inputChannelIndex && channel < inputCount) strips[i].inputChannelIndex = channel;
        if (std::holds_alternative<output::None>(strips[i].outputRouting))
            strips[i].outputRouting = monoIfThere(channel, outputCount);
    }
}

void resetRoutingOneToOne(
    std::span<session::ChannelStrip> strips, std::int64_t inputCount, std::int64_t outputCount
) {
    for (std::size_t i = 0; i < strips.size(); ++i) {
        const auto channel = static_cast<std::int64_t>(i);
        strips[i].inputChannelIndex = channel < inputCount ? std::optional(channel) : std::nullopt;
        strips[i].outputRouting = monoIfThere(channel, outputCount);
    }
}

} // namespace orvane::engine
