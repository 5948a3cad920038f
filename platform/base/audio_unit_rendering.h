#pragma once

#include "platform/base/os_status.h"

#include <cstdint>
#include <functional>
#include <span>

namespace orvane::platform {

// The types for rendering hosted effects.

/// A buffer of 32-bit float samples with mNumberChannels interleaved channels.
struct AudioBuffer {
    std::uint32_t mNumberChannels = 0;
    std::uint32_t mDataByteSize = 0;
    void* mData = nullptr;
};

/// The buffers of one bus, one per channel if they are not interleaved. A view: the caller owns the records
/// and, unless the callee replaces mData, the samples.
struct AudioBufferList {
    std::span<AudioBuffer> mBuffers;
};

/// The fields of a time stamp that are valid.
inline constexpr std::uint32_t kAudioTimeStampSampleTimeValid = 1;

/// A time on the sample clock.
struct AudioTimeStamp {
    double mSampleTime = 0.0;
    std::uint64_t mHostTime = 0;
    std::uint32_t mFlags = 0;
};

using AudioUnitRenderActionFlags = std::uint32_t;

/// Supplies an effect's input: action flags, time stamp, frame count, input bus, list to fill.
using AURenderPullInputBlock = std::function<
    OSStatus(AudioUnitRenderActionFlags&, const AudioTimeStamp&, std::uint32_t, std::int64_t, AudioBufferList&)>;

/// The render function of an effect: action flags, time stamp, frame count, output bus, list to fill, and the
/// source of its input (may be empty). Real-time safe if the effect is.
using AURenderBlock = std::function<
    OSStatus(AudioUnitRenderActionFlags&, const AudioTimeStamp&, std::uint32_t, std::int64_t, AudioBufferList&, const AURenderPullInputBlock&)>;

} // namespace orvane::platform
