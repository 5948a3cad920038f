#include "platform/sound_file_reader.h"
#include "platform/sound_file_writer.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sndfile.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane::platform;
using orvane::test::contentOf;
using orvane::test::TemporaryFolder;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

/// Where the low 32 bits of a FLAC file's length stand, in frames.
constexpr std::size_t flacLengthField = 22;

using Channels = std::vector<std::vector<float>>;

std::vector<std::span<const float>> part(const Channels& channels, std::size_t start, std::size_t count) {
    std::vector<std::span<const float>> blocks;
    for (const auto& channel : channels)
        blocks.push_back(std::span(channel).subspan(start, count));
    return blocks;
}

std::vector<std::span<float>> wholeOf(Channels& channels) {
    return {channels.begin(), channels.end()};
}

/// Any bit pattern but those of signalling NaNs, which a processor may quieten on the way; the values that
/// careless writers change come first.
Channels anyFloats(std::size_t channelCount, std::size_t frameCount) {
    constexpr float notable[] = {
        1.5F,
        -0.0F,
        std::numeric_limits<float>::denorm_min(),
        -1.0F,
        std::numeric_limits<float>::max(),
        std::numeric_limits<float>::infinity(),
        std::numeric_limits<float>::quiet_NaN()};
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
        for (const auto& channel : channels)
            bytes.append(
                std::bit_cast<std::array<char, sizeof(float)>>(channel[frame]).data(), sizeof(float)
            );
    return bytes;
}

void writeFile(const std::filesystem::path& path, const Channels& channels, double sampleRate = 48000.0) {
    auto writer = SoundFileWriter::create(path, channels.size(), sampleRate);
    ASSERT_TRUE(writer) << writer.error().description;
    std::size_t done = 0;
    // Block lengths of no pattern, below and above what goes to the library at once.
    for (std::size_t length = 1; done < channels.front().size(); length = length * 7 % 9001) {
        const std::size_t count = std::min(length, channels.front().size() - done);
        ASSERT_TRUE(writer.value().write(part(channels, done, count)));
        done += count;
    }
    const auto committed = writer.value().commit();
    ASSERT_TRUE(committed) << committed.error().description;
}

SF_INFO infoOf(const std::filesystem::path& path) {
    SF_INFO info{};
    sf_close(sf_open(path.c_str(), SFM_READ, &info));
    return info;
}

/// Writes full-scale random integers with the library itself and returns the samples that a reader should
/// find in `bits` of them.
Channels
writeIntegers(const std::filesystem::path& path, int format, int bits, int channelCount, int frameCount) {
    SF_INFO info{};
    info.format = format;
    info.channels = channelCount;
    info.samplerate = 96000;
    const std::unique_ptr<SNDFILE, decltype(&sf_close)> file(
        sf_open(path.c_str(), SFM_WRITE, &info), sf_close
    );
    std::mt19937 random(11);
    Channels channels(static_cast<std::size_t>(channelCount));
    std::vector<int> interleaved;
    for (int frame = 0; frame < frameCount; ++frame) {
        for (auto& channel : channels) {
            const auto kept = static_cast<std::int32_t>(random()) >> (32 - bits);
            interleaved.push_back(static_cast<int>(static_cast<std::uint32_t>(kept) << (32 - bits)));
            channel.push_back(std::ldexp(static_cast<float>(kept), 1 - bits));
        }
    }
    EXPECT_EQ(sf_writef_int(file.get(), interleaved.data(), frameCount), frameCount) << path;
    return channels;
}

/// No file of this process grows beyond `bytes` while one stands, as if the disk were full.
class FileSizeLimit final {
  public:
    explicit FileSizeLimit(rlim_t bytes) : handlerBefore(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handlerBefore);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit before{};
    void (*handlerBefore)(int);
};

TEST(SoundFileWriter, KeepsEverySampleBitForBit) {
    const TemporaryFolder folder;
    for (const std::string name : {"mix.wav", "mix.w64"}) {
        for (const std::size_t channelCount : {1U, 2U, 8U, 48U}) {
            for (const std::size_t frameCount : {1U, 4096U, 9'001U}) {
                SCOPED_TRACE(name + ", " + std::to_string(channelCount) + " x " + std::to_string(frameCount));
                const Channels written = anyFloats(channelCount, frameCount);
                writeFile(folder / name, written, 44100.0);
                EXPECT_TRUE(contentOf(folder / name).ends_with(interleavedBytes(written)));

                auto reader = SoundFileReader::open(folder / name);
                ASSERT_TRUE(reader) << reader.error().description;
                EXPECT_EQ(reader.value().channelCount(), channelCount);
                EXPECT_EQ(reader.value().sampleRate(), 44100.0);
                ASSERT_EQ(reader.value().frameCount(), static_cast<std::int64_t>(frameCount));
                Channels read(channelCount, std::vector<float>(frameCount));
                EXPECT_EQ(reader.value().read(wholeOf(read)).value(), frameCount);
                EXPECT_EQ(interleavedBytes(read), interleavedBytes(written));
            }
        }
    }
}

TEST(SoundFileWriter, MakesAnOrdinaryWAVUnlessTheNameSaysW64) {
    const TemporaryFolder folder;
    const std::pair<std::string, int> formatByName[] = {
        {"mix.wav", SF_FORMAT_WAVEX},
        {"mix.w64", SF_FORMAT_W64},
        {"mix.W64", SF_FORMAT_W64},
        {"mix", SF_FORMAT_WAVEX}};
    for (const auto& [name, format] : formatByName) {
        writeFile(folder / name, anyFloats(2, 100));
        EXPECT_EQ(infoOf(folder / name).format, format | SF_FORMAT_FLOAT) << name;
    }
    EXPECT_TRUE(contentOf(folder / "mix.wav").starts_with("RIFF"));
}

TEST(SoundFileWriter, MakesBytesThatDependOnTheSamplesAlone) {
    const TemporaryFolder folder;
    for (const std::string extension : {".wav", ".w64"}) {
        writeFile(folder / ("one" + extension), anyFloats(3, 5000));
        writeFile(folder / ("two" + extension), anyFloats(3, 5000));
        const std::string bytes = contentOf(folder / ("one" + extension));
        EXPECT_EQ(bytes, contentOf(folder / ("two" + extension)));
        // The chunk that holds the time of writing: two files of the same second would not show it.
        EXPECT_EQ(bytes.substr(0, 200).find("PEAK"), std::string::npos) << extension;
    }
}

TEST(SoundFileWriter, MakesAFileWithoutFramesWhereNoneAreWritten) {
    const TemporaryFolder folder;
    auto writer = SoundFileWriter::create(folder / "mix.wav", 2, 48000.0);
    ASSERT_TRUE(writer.value().commit());
    EXPECT_EQ(infoOf(folder / "mix.wav").frames, 0);
    EXPECT_EQ(infoOf(folder / "mix.wav").channels, 2);
}

TEST(SoundFileWriter, LeavesNothingUnlessCommitted) {
    const TemporaryFolder folder;
    const Channels samples = anyFloats(2, 10'000);
    {
        auto writer = SoundFileWriter::create(folder / "new.wav", 2, 48000.0);
        ASSERT_TRUE(writer.value().write(part(samples, 0, 10'000)));
    }
    EXPECT_THAT(folder.names(), testing::IsEmpty());

    folder.add("old.wav", "old");
    {
        auto writer = SoundFileWriter::create(folder / "old.wav", 2, 48000.0);
        ASSERT_TRUE(writer.value().write(part(samples, 0, 10'000)));
        EXPECT_EQ(contentOf(folder / "old.wav"), "old");
    }
    EXPECT_EQ(contentOf(folder / "old.wav"), "old");

    writeFile(folder / "old.wav", samples);
    EXPECT_EQ(infoOf(folder / "old.wav").frames, 10'000);
    EXPECT_THAT(folder.names(), testing::ElementsAre("old.wav"));
}

TEST(SoundFileWriter, WritesADeviceInPlace) {
    const Channels samples = anyFloats(2, 10'000);
    writeFile("/dev/null", samples);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));

    const auto full = SoundFileWriter::create("/dev/full", 2, 48000.0);
    ASSERT_FALSE(full);
    EXPECT_EQ(
        full.error().description, "The file \"/dev/full\" could not be written: No space left on device."
    );
}

TEST(SoundFileWriter, SaysWhatItCannotWrite) {
    struct Case {
        std::string name;
        std::size_t channelCount;
        double sampleRate;
        std::string reason;
    };
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "folder");
    mkfifo((folder / "pipe").c_str(), 0600);
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    const Case cases[] = {
        {"folder", 2, 48000.0, "not a regular file"},
        {"pipe", 2, 48000.0, "not a regular file"},
        {"missing/mix.wav", 2, 48000.0, "No such file or directory"},
        {"mix.wav", 0, 48000.0, "1 to 1024 channels"},
        {"mix.wav", 1025, 48000.0, "1 to 1024 channels"},
        {"mix.wav", 2, 0.0, "whole number of Hz"},
        {"mix.wav", 2, 44100.5, "whole number of Hz"},
        {"mix.wav", 2, 1e300, "whole number of Hz"},
        {"mix.wav", 2, notANumber, "whole number of Hz"}};
    for (const auto& [name, channelCount, sampleRate, reason] : cases) {
        const auto writer = SoundFileWriter::create(folder / name, channelCount, sampleRate);
        ASSERT_FALSE(writer) << name << ": " << reason;
        EXPECT_THAT(writer.error().description, AllOf(HasSubstr(folder / name), HasSubstr(reason)));
        EXPECT_THAT(writer.error().description, EndsWith("."));
    }
    EXPECT_THAT(folder.names(), testing::UnorderedElementsAre("folder", "pipe"));
}

TEST(SoundFileWriter, EndsWithASentenceAndNoFileWhereTheDiskIsFull) {
    const TemporaryFolder folder;
    const Channels samples = anyFloats(2, 100'000);
    for (const std::string name : {"mix.wav", "mix.w64"}) {
        folder.add(name, "old");
        const FileSizeLimit limit(500'000);
        auto writer = SoundFileWriter::create(folder / name, 2, 48000.0);
        ASSERT_TRUE(writer.value().write(part(samples, 0, 50'000)));
        const auto written = writer.value().write(part(samples, 50'000, 50'000));
        ASSERT_FALSE(written) << name;
        EXPECT_EQ(
            written.error().description,
            "The file \"" + (folder / name).string() + "\" could not be written: File too large."
        );
        const auto writtenOn = writer.value().write(part(samples, 0, 0));
        ASSERT_FALSE(writtenOn) << name;
        const auto committed = writer.value().commit();
        ASSERT_FALSE(committed) << name;
        EXPECT_EQ(committed.error(), written.error());
    }
    for (const std::string name : {"mix.wav", "mix.w64"})
        EXPECT_EQ(contentOf(folder / name), "old");
    EXPECT_THAT(folder.names(), testing::SizeIs(2));
}

TEST(SoundFileWriter, FailsToCommitWhereTheFolderHasGone) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "stems");
    auto writer = SoundFileWriter::create(folder / "stems" / "1.wav", 1, 48000.0);
    std::filesystem::remove_all(folder / "stems");
    const auto committed = writer.value().commit();
    ASSERT_FALSE(committed);
    EXPECT_THAT(committed.error().description, HasSubstr(folder / "stems" / "1.wav"));
}

TEST(SoundFileReader, ReadsEveryFormatOfTheLibrary) {
    struct Case {
        std::string name;
        int format;
        int bits;
    };
    const Case cases[] = {{"16.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 16},
                          {"24.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 24},
                          {"32.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_32, 32},
                          {"24.rf64", SF_FORMAT_RF64 | SF_FORMAT_PCM_24, 24},
                          {"24.w64", SF_FORMAT_W64 | SF_FORMAT_PCM_24, 24},
                          {"24.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 24},
                          {"16.au", SF_FORMAT_AU | SF_FORMAT_PCM_16, 16},
                          {"24.caf", SF_FORMAT_CAF | SF_FORMAT_PCM_24, 24},
                          {"16.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 16},
                          {"24.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 24}};
    constexpr int frameCount = 9'000;
    const TemporaryFolder folder;
    for (const auto& [name, format, bits] : cases) {
        for (const int channelCount : {1, 2, 8}) {
            SCOPED_TRACE(name + ", " + std::to_string(channelCount) + " channels");
            const Channels written = writeIntegers(folder / name, format, bits, channelCount, frameCount);
            auto reader = SoundFileReader::open(folder / name);
            ASSERT_TRUE(reader) << reader.error().description;
            EXPECT_EQ(reader.value().sampleRate(), 96000.0);
            EXPECT_EQ(reader.value().frameCount(), frameCount);
            Channels read(written.size(), std::vector<float>(frameCount));
            EXPECT_EQ(reader.value().read(wholeOf(read)).value(), static_cast<std::size_t>(frameCount));
            EXPECT_EQ(read, written);
        }
    }
}

TEST(SoundFileReader, ReadsInBlocksAndLeavesTheRestOfTheLastOneAlone) {
    const TemporaryFolder folder;
    const auto path = folder / "in.wav";
    const Channels written = writeIntegers(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 16, 3, 1'000);
    auto reader = SoundFileReader::open(path);
    Channels block(3, std::vector<float>(300));
    for (std::size_t start = 0; start < 1'200; start += 300) {
        for (auto& channel : block)
            std::ranges::fill(channel, 9.0F);
        const std::size_t expected = std::min<std::size_t>(300, 1'000 - start);
        ASSERT_EQ(reader.value().read(wholeOf(block)).value(), expected);
        for (std::size_t channel = 0; channel < 3; ++channel)
            for (std::size_t frame = 0; frame < 300; ++frame)
                ASSERT_EQ(block[channel][frame], frame < expected ? written[channel][start + frame] : 9.0F)
                    << "channel " << channel << ", frame " << start + frame;
    }
    EXPECT_EQ(reader.value().read(wholeOf(block)).value(), 0U);
}

TEST(SoundFileReader, FindsTheLengthOfAFileThatDoesNotStateIt) {
    const TemporaryFolder folder;
    const auto path = folder / "streamed.flac";
    const Channels written = writeIntegers(path, SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 16, 2, 20'000);
    folder.add("streamed.flac", contentOf(path).replace(flacLengthField, 4, 4, '\0'));

    auto reader = SoundFileReader::open(path);
    ASSERT_TRUE(reader) << reader.error().description;
    ASSERT_EQ(reader.value().frameCount(), 20'000);
    Channels read(2, std::vector<float>(20'000));
    EXPECT_EQ(reader.value().read(wholeOf(read)).value(), 20'000U);
    EXPECT_EQ(read, written);
}

TEST(SoundFileReader, FailsWhereTheFileBreaksOff) {
    const TemporaryFolder folder;
    const auto cut = folder / "cut.flac";
    writeIntegers(cut, SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 16, 2, 20'000);
    const auto overstated =
        folder.add("overstated.flac", contentOf(cut).replace(flacLengthField, 4, std::string{0, 0, 'x', 0}));
    std::filesystem::resize_file(cut, std::filesystem::file_size(cut) / 2);

    const std::pair<std::filesystem::path, std::string> reasonByPath[] = {
        {cut, "lost sync"}, {overstated, "it breaks off after 20000 of its 30720 frames"}};
    for (const auto& [path, reason] : reasonByPath) {
        auto reader = SoundFileReader::open(path);
        ASSERT_TRUE(reader) << reader.error().description;
        Channels read(2, std::vector<float>(40'000));
        const auto count = reader.value().read(wholeOf(read));
        ASSERT_FALSE(count) << path;
        EXPECT_THAT(count.error().description, AllOf(HasSubstr(path), HasSubstr(reason), EndsWith(".")));
    }
}

TEST(SoundFileReader, SaysWhatItCannotRead) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "folder");
    std::filesystem::create_symlink("loop", folder / "loop");
    folder.add("nothing.wav", "");
    folder.add("notes.wav", "These are notes about a recording, not a recording.");
    writeIntegers(folder / "silence.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 16, 2, 0);
    writeIntegers(folder / "cut.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 16, 2, 100);
    constexpr std::size_t channelField = 22;
    folder.add("channels.wav", contentOf(folder / "cut.wav").replace(channelField, 2, 2, '\0'));
    std::filesystem::resize_file(folder / "cut.wav", 30);

    const std::pair<std::string, std::string> reasonByName[] = {
        {"missing.wav", "No such file or directory"},
        {"folder", "it is a folder"},
        {"loop", "Too many levels of symbolic links"},
        {"nothing.wav", "it is empty"},
        {"silence.wav", "it is empty"},
        {"notes.wav", "Format not recognised"},
        {"channels.wav", "Channel count is zero"},
        {"cut.wav", "No 'data' chunk"}};
    for (const auto& [name, reason] : reasonByName) {
        const auto reader = SoundFileReader::open(folder / name);
        ASSERT_FALSE(reader) << name;
        EXPECT_THAT(reader.error().description, AllOf(HasSubstr(folder / name), HasSubstr(reason))) << name;
        EXPECT_THAT(reader.error().description, EndsWith(".")) << name;
    }
}

} // namespace
