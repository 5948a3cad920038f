#include "audio/routing_table.h"

#include "dsp/elementary.h"

#include <algorithm>
#include <numbers>
#include <variant>

namespace orvane::audio {

namespace {

void sortAndUnite(std::vector<std::size_t>& channels) {
    std::ranges::sort(channels);
    channels.erase(std::unique(channels.begin(), channels.end()), channels.end());
}

void append(std::vector<std::size_t>& channels, const Sends& sends) {
    for (const Send& send : sends)
        channels.push_back(send.channel);
}

} // namespace

Sends sendsOf(const session::OutputRouting& routing) noexcept {
    Sends sends;
    if (const auto* mono = std::get_if<session::output::Mono>(&routing)) {
        sends.add(mono->channel, 1.0);
    } else if (const auto* stereo = std::get_if<session::output::Stereo>(&routing)) {
        const double angle = (stereo->pan + 1.0) * std::numbers::pi * 0.25;
        sends.add(stereo->left, dsp::cos(angle));
        sends.add(stereo->right, dsp::sin(angle));
    }
    return sends;
}

Sends sendsOf(const session::MasterOutputRouting& routing) noexcept {
    Sends sends;
    if (const auto* mono = std::get_if<session::output::Mono>(&routing)) {
        sends.add(mono->channel, 1.0);
    } else if (const auto* stereo = std::get_if<session::master_output::Stereo>(&routing)) {
        sends.add(stereo->left, 1.0);
        sends.add(stereo->right, 1.0);
    }
    return sends;
}

RoutingTable::RoutingTable(
    std::span<const std::optional<std::int64_t>> inputs, std::span<const session::OutputRouting> outputs,
    const session::MasterOutputRouting& master
)
    : masterSends(sendsOf(master)) {
    for (const std::optional<std::int64_t>& input : inputs) {
        const bool exists = input && *input >= 0;
        routingInputs.push_back(exists ? std::optional(static_cast<std::size_t>(*input)) : std::nullopt);
    }
    for (const session::OutputRouting& output : outputs) {
        routingOutputs.push_back(sendsOf(output));
        append(activeOutputChannels, routingOutputs.back());
    }
    append(activeMasterOutputChannels, masterSends);
    activeChannelsWithMaster = activeOutputChannels;
    append(activeChannelsWithMaster, masterSends);
    sortAndUnite(activeOutputChannels);
    sortAndUnite(activeMasterOutputChannels);
    sortAndUnite(activeChannelsWithMaster);
}

} // namespace orvane::audio
