#include "cli/mixer_setup.h"

#include <algorithm>
#include <variant>

namespace orvane::cli {

namespace {

namespace output = session::output;
namespace master_output = session::master_output;

/// The lowest or highest output that a routing names; nothing where it names none.
struct NamedOutputs {
    std::int64_t lowest;
    std::int64_t highest;
};

struct OutputNaming {
    std::optional<NamedOutputs> operator()(const output::None&) const { return std::nullopt; }
    std::optional<NamedOutputs> operator()(const output::Mono& mono) const {
        return NamedOutputs{mono.channel, mono.channel};
    }
    template <class Pair>
    std::optional<NamedOutputs> operator()(const Pair& pair) const {
        return NamedOutputs{std::min(pair.left, pair.right), std::max(pair.left, pair.right)};
    }
};

/// The number of outputs that a device needs for a routing.
template <class Routing>
std::uint64_t neededOutputs(const Routing& routing) {
    const std::optional<NamedOutputs> named = std::visit(OutputNaming{}, routing);
    return named && named->highest >= 0 ? static_cast<std::uint64_t>(named->highest) + 1 : 0;
}

} // namespace

bool isBufferSize(std::int64_t bufferSize) {
    return std::ranges::find(bufferSizes, bufferSize) != std::end(bufferSizes);
}

MixerSetup MixerSetup::oneToOne(std::size_t stripCount, std::size_t inputCount) {
    MixerSetup setup{
        .strips = session::makeDefaultStrips(stripCount), .masterOutputRouting = master_output::Stereo{0, 1}};
    for (std::size_t i = 0; i < std::min(stripCount, inputCount); ++i)
        setup.strips[i].inputChannelIndex = static_cast<std::int64_t>(i);
    return setup;
}

MixerSetup MixerSetup::loaded(const session::MixerDocumentData& document, std::size_t stripCount) {
    MixerSetup setup{.strips = session::makeDefaultStrips(stripCount)};
    session::applySettings(document.channels, setup.strips);
    setup.masterTargetDB = document.masterTargetDB;
    setup.leadGroupGainDB = document.leadGroupGainDB;
    setup.backingGroupGainDB = document.backingGroupGainDB;
    setup.referenceNoiseGain = document.referenceNoiseGain;
    setup.duckerReleaseMs = document.duckerReleaseMs;
    setup.masterOutputRouting = document.masterOutputRouting;
    if (isBufferSize(document.bufferSize)) setup.bufferSize = document.bufferSize;
    return setup;
}

std::uint64_t MixerSetup::routedOutputs() const {
    std::uint64_t needed = neededOutputs(masterOutputRouting);
    for (const session::ChannelStrip& strip : strips)
        needed = std::max(needed, neededOutputs(strip.outputRouting));
    return needed;
}

bool MixerSetup::resetMissingMasterOutput(std::size_t outputCount) {
    const std::optional<NamedOutputs> named = std::visit(OutputNaming{}, masterOutputRouting);
    if (!named || (named->lowest >= 0 && neededOutputs(masterOutputRouting) <= outputCount)) return false;
    masterOutputRouting = master_output::None{};
    return true;
}

dsp::ChannelAutomixSettings automixSettings(const session::ChannelStrip& strip) {
    return {
        .genderMode = strip.genderMode,
        .muted = strip.muted,
        .trim = strip.trim,
        .bypassed = strip.bypassed,
        .vocalRole = strip.vocalRole};
}

} // namespace orvane::cli
