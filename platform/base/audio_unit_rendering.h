#pragma once

#include "platform/base/os_status.h"

#include <cstdint>
#include <functional>
#include <span>

namespace orvane::platform {

// The types that hosted effects are rendered with.

/// One buffer of 32-bit float samples, mNumberChannels of them interleaved.
struct AudioBuffer {
    std::uint32_t mNumberChannels = 0;
    std::uint32_t mDataByteSize = 0;
    void* mData = nullptr;
};

/// The buffers of one bus, one per channel where they are not interleaved. A view: the caller owns the
/// records and, unless the callee replaces mData, the samples.
struct AudioBufferList {
    std::span<AudioBuffer> mBuffers;
};

/// Which fields of a time stamp hold.
inline constexpr std::uint32_t kAudioTimeStampSampleTimeValid = 1;

/// A moment on the sample clock.
struct AudioTimeStamp {
    double mSampleTime = 0.0;
    std::uint64_t mHostTime = 0;
    std::uint32_t mFlags = 0;
};

using AudioUnitRenderActionFlags = std::uint32_t;

/// What an effect calls to get its input: action flags, time stamp, frame count, input bus, list to fill.
using AURenderPullInputBlock = std::function<
    OSStatus(AudioUnitRenderActionFlags&, const AudioTimeStamp&, std::uint32_t, std::int64_t, AudioBufferList&)>;

/// The render entry of an effect: action flags, time stamp, frame count, output bus, list to fill, and where
/// its input comes from (may be empty). Real-time safe where the effect is.
using AURenderBlock = std::function<
    OSStatus(AudioUnitRenderActionFlags&, const AudioTimeStamp&, std::uint32_t, std::int64_t, AudioBufferList&, const AURenderPullInputBlock&)>;

} // namespace orvane::platform
