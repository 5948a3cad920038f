#include "platform/files/sound_file_reader.h"
#include "platform/files/sound_file_writer.h"
#include "support/description_of.h"
#include "support/file_size_limit.h"
#include "support/sound_files.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <sndfile.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <memory>
#include <random>

namespace {

using namespace orvane::platform;
using namespace orvane::test;
using namespace testing;
using std::filesystem::path;

/// The offset of the low 32 bits of a FLAC file's length in frames.
constexpr std::size_t flacLengthField = 22;

std::vector<std::span<const float>> part(const Channels& channels, std::size_t start, std::size_t count) {
    std::vector<std::span<const float>> blocks;
    for (const auto& channel : channels)
        blocks.push_back(std::span(channel).subspan(start, count));
    return blocks;
}

/// Any bit pattern except signalling NaNs, which a processor may make quiet; starts with the values that
/// careless writers change.
Channels anyFloats(std::size_t channelCount, std::size_t frameCount) {
    using Limits = std::numeric_limits<float>;
    constexpr float notable[] = {
        1.5F, -0.0F, Limits::denorm_min(), -1.0F, Limits::max(), Limits::infinity(), Limits::quiet_NaN()};
    std::mt19937 random(7);
    Channels channels(channelCount, std::vector<float>(frameCount));
    for (auto& channel : channels) {
        std::ranges::generate(channel, [&random] {
            const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
            return std::isnan(value) ? 0.25F : value;
        });
        std::copy_n(notable, std::min(std::size(notable), frameCount), channel.begin());
    }
    return channels;
}

std::string interleavedBytes(const Channels& channels) {
    std::string bytes;
    for (std::size_t frame = 0; frame < channels.front().size(); ++frame)
        for (const auto& channel : channels) {
            const auto sample = std::bit_cast<std::array<char, sizeof(float)>>(channel[frame]);
            bytes.append(sample.data(), sample.size());
        }
    return bytes;
}

/// Writes a file at 44.1 kHz in irregular blocks, below and above the size of the writer's buffer.
void writeFile(const path& file, const Channels& channels) {
    auto writer = SoundFileWriter::create(file, channels.size(), 44100.0);
    ASSERT_EQ(descriptionOf(writer), "success");
    std::size_t done = 0;
    for (std::size_t length = 1; done < channels.front().size(); length = length * 7 % 9001) {
        const std::size_t count = std::min(length, channels.front().size() - done);
        ASSERT_EQ(descriptionOf(writer.value().write(part(channels, done, count))), "success");
        done += count;
    }
    ASSERT_EQ(descriptionOf(writer.value().commit()), "success");
}

/// Writes full-scale random integers of 16, 24 or 32 bits at 96 kHz with the library itself, and returns the
/// samples that a reader must find.
Channels writeIntegers(const path& file, int container, int bits, std::size_t channelCount, int frameCount) {
    const int format = container | (SF_FORMAT_PCM_16 + (bits - 16) / 8);
    SF_INFO info{0, 96000, static_cast<int>(channelCount), format, 0, 0};
    const std::unique_ptr<SNDFILE, decltype(&sf_close)> opened(
        sf_open(file.c_str(), SFM_WRITE, &info), sf_close
    );
    std::mt19937 random(11);
    Channels channels(channelCount);
    std::vector<int> interleaved;
    for (int frame = 0; frame < frameCount; ++frame) {
        for (auto& channel : channels) {
            const auto kept = static_cast<std::int32_t>(random()) >> (32 - bits);
            interleaved.push_back(static_cast<int>(static_cast<std::uint32_t>(kept) << (32 - bits)));
            channel.push_back(std::ldexp(static_cast<float>(kept), 1 - bits));
        }
    }
    EXPECT_EQ(sf_writef_int(opened.get(), interleaved.data(), frameCount), frameCount) << file;
    return channels;
}

/// Reads a whole file and compares it bit by bit.
void expectFile(const path& file, const Channels& expected, double sampleRate) {
    const auto reader = SoundFileReader::open(file);
    ASSERT_EQ(descriptionOf(reader), "success");
    EXPECT_EQ(reader.value().sampleRate(), sampleRate);
    const Channels found = readSound(file);
    ASSERT_EQ(found.size(), expected.size());
    ASSERT_EQ(found.front().size(), expected.front().size());
    EXPECT_EQ(interleavedBytes(found), interleavedBytes(expected));
}

TEST(SoundFileWriter, KeepsEverySampleBitForBit) {
    const TemporaryFolder folder;
    for (const std::string name : {"mix.wav", "mix.w64", "mix.rf64", "mix.aiff"}) {
        for (const std::size_t channelCount : {1U, 2U, 8U, 48U}) {
            for (const std::size_t frameCount : {1U, 4096U, 9'001U}) {
                SCOPED_TRACE(name + ", " + std::to_string(channelCount) + " x " + std::to_string(frameCount));
                const Channels written = anyFloats(channelCount, frameCount);
                writeFile(folder / name, written);
                if (name != "mix.aiff") {
                    EXPECT_TRUE(contentOf(folder / name).ends_with(interleavedBytes(written)));
                }
                expectFile(folder / name, written, 44100.0);
            }
        }
    }
}

TEST(SoundFileWriter, SelectsTheFormatByExtensionAndWritesNoTimeStamp) {
    const TemporaryFolder folder;
    const std::tuple<const char*, int, const char*> formats[] = {
        {"mix.wav", SF_FORMAT_WAVEX, "RIFF"},
        {"MIX.W64", SF_FORMAT_W64, "riff"},
        {"mix.rf64", SF_FORMAT_RF64, "RF64"},
        {"mix.aiff", SF_FORMAT_AIFF, "FORM"}};
    for (const auto& [name, format, beginning] : formats)
        for (const std::size_t frameCount : {0U, 5000U}) {
            writeFile(folder / name, anyFloats(3, frameCount));
            SF_INFO info{};
            sf_close(sf_open((folder / name).c_str(), SFM_READ, &info));
            EXPECT_EQ(info.format & ~SF_FORMAT_ENDMASK, format | SF_FORMAT_FLOAT) << name;
            EXPECT_EQ(info.frames, static_cast<sf_count_t>(frameCount)) << name;
            const std::string bytes = contentOf(folder / name);
            EXPECT_TRUE(bytes.starts_with(beginning)) << name;
            // The chunk that holds the time of writing.
            EXPECT_EQ(bytes.substr(0, 200).find("PEAK"), std::string::npos) << name;
        }
}

TEST(SoundFileWriter, WritesACompleteFLACAndClips) {
    const TemporaryFolder folder;
    Channels samples(8, std::vector<float>(9'001, -0.25F));
    samples[3][5] = 2.0F;
    writeFile(folder / "mix.flac", samples);
    samples[3][5] = 1.0F - std::ldexp(1.0F, -23);
    expectFile(folder / "mix.flac", samples, 44100.0);
    writeFile(folder / "again.flac", samples);
    EXPECT_EQ(contentOf(folder / "again.flac"), contentOf(folder / "mix.flac"));

    const FileSizeLimit limit(20'000);
    auto writer = SoundFileWriter::create(folder / "full.flac", 2, 48000.0);
    const Channels noise = anyFloats(2, 30'000);
    descriptionOf(writer.value().write(part(noise, 0, 30'000)));
    EXPECT_THAT(descriptionOf(writer.value().commit()), HasSubstr("full.flac\" could not be written"));
    EXPECT_FALSE(std::filesystem::exists(folder / "full.flac"));
}

TEST(SoundFileWriter, WritesADeviceInPlace) {
    writeFile("/dev/null", anyFloats(2, 10'000));
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    EXPECT_EQ(
        descriptionOf(SoundFileWriter::create("/dev/full", 2, 48000.0)),
        "The file \"/dev/full\" could not be written: No space left on device."
    );
}

TEST(SoundFileWriter, ReportsWhyAFileCannotBeWritten) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "folder.wav");
    const std::tuple<std::string, std::size_t, double, std::string> cases[] = {
        {"folder.wav", 2, 48000.0, "not a regular file"},
        {"mix.wav", 1025, 48000.0, "1 to 1024 channels"},
        {"mix.flac", 9, 48000.0, "a FLAC file has 1 to 8 channels"},
        {"mix.mp3", 2, 48000.0, "ends in .wav, .w64, .rf64, .flac or .aiff"},
        {"mix", 2, 48000.0, "ends in .wav, .w64, .rf64, .flac or .aiff"},
        {"mix.wav", 2, std::nan(""), "whole number of Hz"}};
    for (const auto& [name, channelCount, sampleRate, reason] : cases)
        EXPECT_THAT(
            descriptionOf(SoundFileWriter::create(folder / name, channelCount, sampleRate)),
            AllOf(HasSubstr(folder / name), HasSubstr(reason), EndsWith("."))
        );
    EXPECT_THAT(folder.names(), testing::ElementsAre("folder.wav"));
}

TEST(SoundFileReader, ReadsEveryFormatOfTheLibrary) {
    const std::pair<std::string, int> formatByName[] = {
        {"16.wav", SF_FORMAT_WAV},   {"24.wav", SF_FORMAT_WAV}, {"32.wav", SF_FORMAT_WAV},
        {"24.rf64", SF_FORMAT_RF64}, {"24.w64", SF_FORMAT_W64}, {"24.aiff", SF_FORMAT_AIFF},
        {"16.au", SF_FORMAT_AU},     {"24.caf", SF_FORMAT_CAF}, {"16.flac", SF_FORMAT_FLAC},
        {"24.flac", SF_FORMAT_FLAC}};
    const TemporaryFolder folder;
    for (const auto& [name, format] : formatByName) {
        SCOPED_TRACE(name);
        expectFile(folder / name, writeIntegers(folder / name, format, std::stoi(name), 8, 9'000), 96000.0);
    }
}

TEST(SoundFileReader, FailsIfTheFileIsTruncated) {
    const TemporaryFolder folder;
    const path cut = folder / "cut.flac";
    writeIntegers(cut, SF_FORMAT_FLAC, 16, 2, 20'000);
    const std::string overstated = contentOf(cut).replace(flacLengthField, 4, std::string{0, 0, 'x', 0});
    std::filesystem::resize_file(cut, std::filesystem::file_size(cut) / 2);
    const std::pair<path, std::string> reasonByPath[] = {
        {cut, "lost sync"},
        {folder.add("overstated.flac", overstated), "it breaks off after 20000 of its 30720 frames"}};
    for (const auto& [file, reason] : reasonByPath) {
        auto reader = SoundFileReader::open(file);
        ASSERT_EQ(descriptionOf(reader), "success");
        Channels read(2, std::vector<float>(40'000));
        const auto count = reader.value().read(std::vector<std::span<float>>(read.begin(), read.end()));
        EXPECT_THAT(descriptionOf(count), AllOf(HasSubstr(file), HasSubstr(reason), EndsWith(".")));
    }
}

TEST(SoundFileReader, ReportsWhyAFileCannotBeRead) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "folder");
    folder.add("notes.wav", "These are notes about a recording, not a recording.");
    writeIntegers(folder / "silence.wav", SF_FORMAT_WAV, 16, 2, 0);
    writeIntegers(folder / "cut.wav", SF_FORMAT_WAV, 16, 2, 100);
    constexpr std::size_t channelField = 22;
    folder.add("channels.wav", contentOf(folder / "cut.wav").replace(channelField, 2, 2, '\0'));
    std::filesystem::resize_file(folder / "cut.wav", 30);
    ::mkfifo((folder / "pipe.wav").c_str(), 0666);

    const std::pair<std::string, std::string> reasonByName[] = {
        {"missing.wav", "No such file or directory"},
        {"folder", "it is a folder"},
        {"pipe.wav", "it is not a regular file"},
        {"silence.wav", "it is empty"},
        {"notes.wav", "Format not recognised"},
        {"channels.wav", "Channel count is zero"},
        {"cut.wav", "No 'data' chunk"}};
    for (const auto& [name, reason] : reasonByName)
        EXPECT_THAT(
            descriptionOf(SoundFileReader::open(folder / name)),
            AllOf(HasSubstr(folder / name), HasSubstr(reason), EndsWith("."))
        );
}

} // namespace
