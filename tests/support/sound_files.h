#pragma once

#include "platform/files/sound_file_reader.h"
#include "platform/files/sound_file_writer.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <span>
#include <vector>

namespace orvane::test {

/// Samples, one vector per channel.
using Channels = std::vector<std::vector<float>>;

/// Reads a whole sound file.
inline Channels readSound(const std::filesystem::path& path) {
    auto reader = platform::SoundFileReader::open(path);
    EXPECT_TRUE(reader) << path;
    if (!reader) return {};
    const auto frameCount = static_cast<std::size_t>(reader.value().frameCount());
    Channels channels(reader.value().channelCount(), std::vector<float>(frameCount));
    const std::vector<std::span<float>> views(channels.begin(), channels.end());
    EXPECT_EQ(reader.value().read(views).value(), frameCount) << path;
    return channels;
}

/// Writes a sound file and returns its path.
inline std::filesystem::path
writeSound(const std::filesystem::path& path, const Channels& channels, double sampleRate = 48000.0) {
    auto writer = platform::SoundFileWriter::create(path, channels.size(), sampleRate);
    EXPECT_TRUE(writer) << path;
    const std::vector<std::span<const float>> views(channels.begin(), channels.end());
    EXPECT_TRUE(writer.value().write(views));
    EXPECT_TRUE(writer.value().commit());
    return path;
}

} // namespace orvane::test
