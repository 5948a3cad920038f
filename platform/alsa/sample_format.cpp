#include "platform/alsa/sample_format.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace orvane::platform::alsa {

namespace {

/// The number of steps from silence to full scale, which is 1.0.
constexpr double fullScale(unsigned bits) {
    return static_cast<double>(std::uint32_t{1} << (bits - 1));
}

/// Numbers of this size have no fraction: adding and subtracting it rounds to an integer, on every processor
/// and without a call.
constexpr double wholeNumbersOnly = 0x1.8p52;

constexpr std::size_t byteIndex(std::size_t significance, std::size_t byteCount, std::endian order) {
    return order == std::endian::little ? significance : byteCount - 1 - significance;
}

template <std::size_t byteCount, std::endian order>
std::uint32_t loadBits(const std::byte* from) noexcept {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < byteCount; ++i)
        bits |= std::to_integer<std::uint32_t>(from[byteIndex(i, byteCount, order)]) << (8 * i);
    return bits;
}

template <std::size_t byteCount, std::endian order>
void storeBits(std::uint32_t bits, std::byte* to) noexcept {
    for (std::size_t i = 0; i < byteCount; ++i)
        to[byteIndex(i, byteCount, order)] = static_cast<std::byte>(bits >> (8 * i));
}

template <unsigned bits, std::size_t byteCount, std::endian order>
struct Integer {
    static constexpr std::size_t size = byteCount;

    static float load(const std::byte* from) noexcept {
        // The unused bits of a wider container are shifted out at the top.
        const std::uint32_t atTheTop = loadBits<byteCount, order>(from) << (32 - bits);
        return static_cast<float>(static_cast<std::int32_t>(atTheTop))
               * static_cast<float>(1.0 / fullScale(32));
    }

    static void store(float sample, std::byte* to) noexcept {
        const double steps = std::isnan(sample) ? 0.0 : static_cast<double>(sample) * fullScale(bits);
        const double clipped = std::clamp(steps, -fullScale(bits), fullScale(bits) - 1.0);
        const double rounded = clipped + wholeNumbersOnly - wholeNumbersOnly;
        storeBits<byteCount, order>(static_cast<std::uint32_t>(static_cast<std::int32_t>(rounded)), to);
    }
};

template <std::endian order>
struct Float {
    static constexpr std::size_t size = sizeof(float);

    static float load(const std::byte* from) noexcept {
        return std::bit_cast<float>(loadBits<size, order>(from));
    }

    static void store(float sample, std::byte* to) noexcept {
        const float clipped = std::isnan(sample) ? 0.0F : std::clamp(sample, -1.0F, 1.0F);
        storeBits<size, order>(std::bit_cast<std::uint32_t>(clipped), to);
    }
};

/// Calls `function` with the type that describes the format.
template <class Function>
auto withLayout(SampleFormat format, Function function) noexcept {
    using std::endian;
    switch (format) {
    case SampleFormat::float32LE:
        return function(Float<endian::little>{});
    case SampleFormat::float32BE:
        return function(Float<endian::big>{});
    case SampleFormat::int32LE:
        return function(Integer<32, 4, endian::little>{});
    case SampleFormat::int32BE:
        return function(Integer<32, 4, endian::big>{});
    case SampleFormat::int24LE:
        return function(Integer<24, 4, endian::little>{});
    case SampleFormat::int24BE:
        return function(Integer<24, 4, endian::big>{});
    case SampleFormat::int24PackedLE:
        return function(Integer<24, 3, endian::little>{});
    case SampleFormat::int24PackedBE:
        return function(Integer<24, 3, endian::big>{});
    case SampleFormat::int16LE:
        return function(Integer<16, 2, endian::little>{});
    case SampleFormat::int16BE:
        break;
    }
    return function(Integer<16, 2, endian::big>{});
}

} // namespace

std::size_t bytesPerSample(SampleFormat format) noexcept {
    return withLayout(format, [](auto layout) { return layout.size; });
}

void decode(
    SampleFormat format, const std::byte* first, std::size_t step, std::span<float> samples
) noexcept {
    withLayout(format, [&](auto layout) {
        const std::byte* from = first;
        for (float& sample : samples)
            sample = layout.load(std::exchange(from, from + step));
    });
}

void encode(
    SampleFormat format, std::span<const float> samples, std::byte* first, std::size_t step
) noexcept {
    withLayout(format, [&](auto layout) {
        std::byte* to = first;
        for (const float sample : samples)
            layout.store(sample, std::exchange(to, to + step));
    });
}

} // namespace orvane::platform::alsa
