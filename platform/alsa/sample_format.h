#pragma once

#include "dsp/realtime.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace orvane::platform::alsa {

/// The layout of a sample, the most precise formats first. `int24` is the low three bytes of four,
/// `int24Packed` has three bytes.
enum class SampleFormat : std::uint8_t {
    float32LE,
    float32BE,
    int32LE,
    int32BE,
    int24LE,
    int24BE,
    int24PackedLE,
    int24PackedBE,
    int16LE,
    int16BE,
};

inline constexpr std::array allSampleFormats{
    SampleFormat::float32LE,     SampleFormat::float32BE,     SampleFormat::int32LE,
    SampleFormat::int32BE,       SampleFormat::int24LE,       SampleFormat::int24BE,
    SampleFormat::int24PackedLE, SampleFormat::int24PackedBE, SampleFormat::int16LE,
    SampleFormat::int16BE,
};

/// The size of one sample of one channel.
[[nodiscard]] std::size_t bytesPerSample(SampleFormat format) noexcept;

/// Fills `samples` from the device's; the first begins at `first`, each next one `step` bytes later. -1 is
/// the most negative integer, so the most positive one stays one step below 1. Floating-point samples are
/// unchanged. Real-time safe.
ORVANE_REALTIME void
decode(SampleFormat format, const std::byte* first, std::size_t step, std::span<float> samples) noexcept;

/// Writes `samples` in the device's format, laid out as in `decode`: rounded to the nearest step and clipped
/// at full scale; NaN becomes silence. Real-time safe.
ORVANE_REALTIME void
encode(SampleFormat format, std::span<const float> samples, std::byte* first, std::size_t step) noexcept;

} // namespace orvane::platform::alsa
