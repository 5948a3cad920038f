#include "platform/alsa/sample_format.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

using orvane::platform::alsa::bytesPerSample;
using orvane::platform::alsa::decode;
using orvane::platform::alsa::encode;
using orvane::platform::alsa::SampleFormat;
using enum SampleFormat;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float step16 = 0x1p-15F;
constexpr float step24 = 0x1p-23F;
constexpr float step32 = 0x1p-31F;

struct FormatCase {
    SampleFormat format;
    float sample;
    std::vector<int> bytes;
};

std::string nameOf(const FormatCase& example) {
    return "format " + std::to_string(static_cast<int>(example.format)) + ", sample "
           + std::to_string(example.sample);
}

std::vector<std::byte> toBytes(const std::vector<int>& numbers) {
    std::vector<std::byte> bytes;
    for (const int number : numbers)
        bytes.push_back(static_cast<std::byte>(number));
    return bytes;
}

/// Exact in both directions.
const FormatCase exactOnes[] = {
    {int16LE, 1.0F - step16, {0xFF, 0x7F}},
    {int16LE, -1.0F, {0x00, 0x80}},
    {int16BE, step16, {0x00, 0x01}},
    {int24LE, -step24, {0xFF, 0xFF, 0xFF, 0xFF}},
    {int24LE, 1.0F - step24, {0xFF, 0xFF, 0x7F, 0x00}},
    {int24BE, -1.0F, {0xFF, 0x80, 0x00, 0x00}},
    {int24PackedLE, -step24, {0xFF, 0xFF, 0xFF}},
    {int24PackedLE, 1.0F - step24, {0xFF, 0xFF, 0x7F}},
    {int24PackedBE, step24, {0x00, 0x00, 0x01}},
    {int32LE, -step32, {0xFF, 0xFF, 0xFF, 0xFF}},
    {int32LE, 1.0F - 0x1p-24F, {0x80, 0xFF, 0xFF, 0x7F}},
    {int32BE, step32, {0x00, 0x00, 0x00, 0x01}},
    {float32BE, 1.0F, {0x3F, 0x80, 0x00, 0x00}},
};

TEST(SampleFormat, ReadsAndWritesExactSamples) {
    for (const FormatCase& example : exactOnes) {
        const std::vector<std::byte> bytes = toBytes(example.bytes);
        ASSERT_EQ(bytesPerSample(example.format), bytes.size()) << nameOf(example);
        std::vector<std::byte> written(bytes.size());
        encode(example.format, {&example.sample, 1}, written.data(), bytes.size());
        EXPECT_EQ(written, bytes) << nameOf(example);
        float read = notANumber;
        decode(example.format, bytes.data(), bytes.size(), {&read, 1});
        EXPECT_EQ(read, example.sample) << nameOf(example);
    }
}

TEST(SampleFormat, RoundsAndClipsOnWriting) {
    const FormatCase cases[] = {
        {int16LE, step16 * 1.51F, {0x02, 0x00}},
        {int16LE, step16 * -0.51F, {0xFF, 0xFF}},
        {int16LE, 1.0F, {0xFF, 0x7F}},
        {int16LE, -1.5F, {0x00, 0x80}},
        {int24LE, -infinity, {0x00, 0x00, 0x80, 0xFF}},
        {int24PackedLE, 2.0F, {0xFF, 0xFF, 0x7F}},
        {int32LE, 1.0F, {0xFF, 0xFF, 0xFF, 0x7F}},
        {int32LE, -1.5F, {0x00, 0x00, 0x00, 0x80}},
        {int32LE, notANumber, {0x00, 0x00, 0x00, 0x00}},
        {float32LE, -infinity, {0x00, 0x00, 0x80, 0xBF}},
        {float32LE, notANumber, {0x00, 0x00, 0x00, 0x00}},
    };
    for (const FormatCase& example : cases) {
        std::vector<std::byte> written(bytesPerSample(example.format));
        encode(example.format, {&example.sample, 1}, written.data(), written.size());
        EXPECT_EQ(written, toBytes(example.bytes)) << nameOf(example);
    }
}

TEST(SampleFormat, IgnoresTheUnusedBitsOfAContainer) {
    float read = 0.0F;
    decode(int24LE, toBytes({0x00, 0x00, 0x40, 0x80}).data(), 4, {&read, 1});
    EXPECT_EQ(read, 0.5F);
}

} // namespace
