#include "platform/lv2/host_features.h"

#include <fmt/format.h>
#include <lv2/atom/atom.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/parameters/parameters.h>
#include <lv2/state/state.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace orvane::platform::lv2 {

namespace {

constexpr std::string_view supportedFeatures[] = {
    LV2_URID__map, LV2_URID__unmap, LV2_LOG__log, LV2_OPTIONS__options, LV2_WORKER__schedule,
    LV2_STATE__threadSafeRestore, LV2_STATE__mapPath, LV2_STATE__freePath,
    // These ask only for what the host does anyway.
    LV2_BUF_SIZE__boundedBlockLength, LV2_CORE__hardRTCapable, LV2_CORE__inPlaceBroken, LV2_CORE__isLive};

/// The nominal block length reported to plugins, in frames.
constexpr std::int32_t usualBlockLength = 256;
/// The default size of atom port buffers, in bytes.
constexpr std::int32_t sequenceSize = 8192;

constexpr std::string_view supportedOptions[] = {
    LV2_BUF_SIZE__minBlockLength, LV2_BUF_SIZE__maxBlockLength, LV2_BUF_SIZE__nominalBlockLength,
    LV2_BUF_SIZE__sequenceSize, LV2_PARAMETERS__sampleRate};

std::optional<Error> whyUnsupported(const PluginDescription& description) {
    for (const std::string& feature : description.requiredFeatures)
        if (feature == LV2_BUF_SIZE__fixedBlockLength || feature == LV2_BUF_SIZE__powerOf2BlockLength)
            return Error{fmt::format(
                "\"{}\" needs blocks of a fixed length, which a live mix does not have.", description.name
            )};
    if (const auto* const feature = firstUnsupported(description.requiredFeatures, supportedFeatures))
        return Error{fmt::format(
            "\"{}\" needs the LV2 feature {}, which is not supported.", description.name, *feature
        )};
    if (const auto* const option = firstUnsupported(description.requiredOptions, supportedOptions))
        return Error{fmt::format(
            "\"{}\" needs the LV2 option {}, which is not supported.", description.name, *option
        )};
    return std::nullopt;
}

} // namespace

HostFeatures::HostFeatures(
    HostServices& hostServices, const std::string& pluginName, LV2_Worker_Schedule* schedule,
    StatePaths& paths, double sampleRate, std::uint32_t maximumFrames
)
    : common(hostServices, pluginName),
      blockLengths{
          1, static_cast<std::int32_t>(maximumFrames),
          std::min(usualBlockLength, static_cast<std::int32_t>(maximumFrames)), sequenceSize},
      optionSampleRate(static_cast<float>(sampleRate)) {
    const auto option = [&](const char* uri, const char* type, const auto& value) {
        return makeOption(hostServices.urids, uri, type, value);
    };
    options = {
        option(LV2_BUF_SIZE__minBlockLength, LV2_ATOM__Int, blockLengths[0]),
        option(LV2_BUF_SIZE__maxBlockLength, LV2_ATOM__Int, blockLengths[1]),
        option(LV2_BUF_SIZE__nominalBlockLength, LV2_ATOM__Int, blockLengths[2]),
        option(LV2_BUF_SIZE__sequenceSize, LV2_ATOM__Int, blockLengths[3]),
        option(LV2_PARAMETERS__sampleRate, LV2_ATOM__Float, optionSampleRate),
        noMoreOptions};
    features = {
        LV2_Feature{LV2_URID__map, &common.map},
        LV2_Feature{LV2_URID__unmap, &common.unmap},
        LV2_Feature{LV2_LOG__log, &common.log},
        LV2_Feature{LV2_OPTIONS__options, options.data()},
        LV2_Feature{LV2_BUF_SIZE__boundedBlockLength, nullptr},
        LV2_Feature{LV2_WORKER__schedule, schedule},
        LV2_Feature{LV2_STATE__threadSafeRestore, nullptr},
        paths.features()[0],
        paths.features()[1]};
    std::ranges::transform(features, pointers.begin(), [](const LV2_Feature& feature) { return &feature; });
    pointers.back() = nullptr;
}

std::optional<Error> whyNotInstantiable(const PluginDescription& description) {
    if (auto error = whyUnsupported(description)) return error;
    for (std::size_t i = 0; i < description.roles.size(); ++i)
        if (description.roles[i].kind == PortKind::unknown && !description.roles[i].isOptional)
            return Error{fmt::format(
                "\"{}\" cannot be used: its port number {} is of a kind that is not supported.",
                description.name, i
            )};
    return std::nullopt;
}

bool isHostable(const PluginDescription& description) {
    return description.audio.channelCount() && !whyNotInstantiable(description);
}

} // namespace orvane::platform::lv2
