#pragma once

#include "platform/audio_hardware/audio_hardware.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace orvane::audio {

/// One audio device as the hardware layer described it. A plain value.
struct AudioDeviceInfo {
    /// Names the device in lists and pickers; valid only while the device is present.
    platform::AudioObjectID id = 0;
    /// Names the device across reconnections.
    std::string uid;
    /// For people.
    std::string name;
    /// Over all input streams.
    std::int64_t inputChannelCount = 0;
    /// Over all output streams.
    std::int64_t outputChannelCount = 0;
    /// Nominal, in Hz.
    double sampleRate = 0.0;

    bool operator==(const AudioDeviceInfo&) const = default;
};

} // namespace orvane::audio

/// Covers every field; equal records hash alike.
template <>
struct std::hash<orvane::audio::AudioDeviceInfo> {
    std::size_t operator()(const orvane::audio::AudioDeviceInfo& device) const noexcept;
};
