#pragma once

#include <algorithm>
#include <array>
#include <string_view>

/// The words that session files use as object keys.
namespace orvane::session::key {

inline constexpr std::string_view backingGroupGainDB = "backingGroupGainDB";
inline constexpr std::string_view bufferSize = "bufferSize";
inline constexpr std::string_view bypassed = "bypassed";
inline constexpr std::string_view channel = "channel";
inline constexpr std::string_view channels = "channels";
inline constexpr std::string_view component = "component";
inline constexpr std::string_view componentManufacturer = "componentManufacturer";
inline constexpr std::string_view componentSubType = "componentSubType";
inline constexpr std::string_view componentType = "componentType";
inline constexpr std::string_view duckerReleaseMs = "duckerReleaseMs";
inline constexpr std::string_view fastOnset = "fastOnset";
inline constexpr std::string_view gainRamps = "gainRamps";
inline constexpr std::string_view genderMode = "genderMode";
inline constexpr std::string_view id = "id";
inline constexpr std::string_view inputChannelIndex = "inputChannelIndex";
inline constexpr std::string_view leadGroupGainDB = "leadGroupGainDB";
inline constexpr std::string_view left = "left";
inline constexpr std::string_view leveler = "leveler";
inline constexpr std::string_view limiterCeilingDBTP = "limiterCeilingDBTP";
inline constexpr std::string_view masterOutputRouting = "masterOutputRouting";
inline constexpr std::string_view masterTargetDB = "masterTargetDB";
inline constexpr std::string_view midiTrigger = "midiTrigger";
inline constexpr std::string_view mono = "mono";
inline constexpr std::string_view muted = "muted";
inline constexpr std::string_view name = "name";
inline constexpr std::string_view none = "none";
inline constexpr std::string_view note = "note";
inline constexpr std::string_view openMicrophoneLimit = "openMicrophoneLimit";
inline constexpr std::string_view outputOptions = "outputOptions";
inline constexpr std::string_view outputRouting = "outputRouting";
inline constexpr std::string_view pan = "pan";
inline constexpr std::string_view pluginName = "pluginName";
inline constexpr std::string_view pluginSlotRecallSafe = "pluginSlotRecallSafe";
inline constexpr std::string_view pluginSlots = "pluginSlots";
inline constexpr std::string_view presetData = "presetData";
inline constexpr std::string_view referenceNoiseGain = "referenceNoiseGain";
inline constexpr std::string_view right = "right";
inline constexpr std::string_view snapshots = "snapshots";
inline constexpr std::string_view stereo = "stereo";
inline constexpr std::string_view trim = "trim";
inline constexpr std::string_view vocalRole = "vocalRole";

/// All keys above, in ascending order.
inline constexpr std::array all = {
    backingGroupGainDB,
    bufferSize,
    bypassed,
    channel,
    channels,
    component,
    componentManufacturer,
    componentSubType,
    componentType,
    duckerReleaseMs,
    fastOnset,
    gainRamps,
    genderMode,
    id,
    inputChannelIndex,
    leadGroupGainDB,
    left,
    leveler,
    limiterCeilingDBTP,
    masterOutputRouting,
    masterTargetDB,
    midiTrigger,
    mono,
    muted,
    name,
    none,
    note,
    openMicrophoneLimit,
    outputOptions,
    outputRouting,
    pan,
    pluginName,
    pluginSlotRecallSafe,
    pluginSlots,
    presetData,
    referenceNoiseGain,
    right,
    snapshots,
    stereo,
    trim,
    vocalRole};
static_assert(std::ranges::is_sorted(all));

/// Whether session files use this key anywhere.
constexpr bool isKnown(std::string_view word) {
    return std::ranges::binary_search(all, word);
}

} // namespace orvane::session::key
