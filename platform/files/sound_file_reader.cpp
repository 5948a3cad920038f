#include "platform/files/sound_file_reader.h"

#include "platform/files/file_error.h"
#include "platform/files/sound_file_handle.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::platform {

namespace {

constexpr std::string_view cannotReadSound = "could not be read";
constexpr std::string_view empty = "it is empty";
constexpr std::size_t framesPerTransfer = 4096;
/// Frames that are deinterleaved at once: few enough for the L1 cache.
constexpr std::size_t framesPerTile = 64;

std::int64_t countFrames(SNDFILE* file, std::size_t channelCount) {
    std::vector<float> discarded(framesPerTransfer * channelCount);
    std::int64_t total = 0;
    while (const sf_count_t count = sf_readf_float(file, discarded.data(), framesPerTransfer))
        total += count;
    return total;
}

} // namespace

struct SoundFileReader::Source {
    std::filesystem::path path;
    FileDescriptor descriptor;
    SF_INFO info{};
    SoundFileHandle handle;
    std::int64_t position = 0;
    std::vector<float> interleaved;

    Source(FileDescriptor file, const std::filesystem::path& name) : path(name), descriptor(std::move(file)) {
        begin();
    }

    /// Opens the sound at the start of the file.
    void begin() {
        ::lseek(descriptor.number(), 0, SEEK_SET);
        info = {};
        handle.reset(sf_open_fd(descriptor.number(), SFM_READ, &info, SF_FALSE));
    }

    [[nodiscard]] bool isLengthStated() const { return info.frames != SF_COUNT_MAX; }
    [[nodiscard]] std::size_t channelCount() const { return static_cast<std::size_t>(info.channels); }

    /// Reads one buffer and returns the number of frames read.
    std::size_t transfer(std::span<const std::span<float>> blocks, std::size_t at, std::size_t wanted) {
        const auto count = static_cast<std::size_t>(
            sf_readf_float(handle.get(), interleaved.data(), static_cast<sf_count_t>(wanted))
        );
        for (std::size_t first = 0; first < count; first += framesPerTile) {
            const std::size_t end = std::min(first + framesPerTile, count);
            for (std::size_t channel = 0; channel < blocks.size(); ++channel)
                for (std::size_t frame = first; frame < end; ++frame)
                    blocks[channel][at + frame] = interleaved[frame * blocks.size() + channel];
        }
        position += static_cast<std::int64_t>(count);
        return count;
    }
};

Result<SoundFileReader> SoundFileReader::open(const std::filesystem::path& path) {
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) return fileError(path, cannotReadSound, errno);
    return open(std::move(file), path);
}

Result<SoundFileReader> SoundFileReader::open(FileDescriptor file, const std::filesystem::path& name) {
    struct stat status {};
    if (::fstat(file.number(), &status) != 0) return fileError(name, cannotReadSound, errno);
    if (S_ISDIR(status.st_mode)) return fileError(name, cannotReadSound, "it is a folder");
    if (!S_ISREG(status.st_mode)) return fileError(name, cannotReadSound, notARegularFile);
    if (status.st_size == 0) return fileError(name, cannotReadSound, empty);

    auto opened = std::make_unique<Source>(std::move(file), name);
    if (!opened->handle) return fileError(name, cannotReadSound, soundFileProblem(nullptr));
    if (!opened->isLengthStated()) {
        const std::int64_t frames = countFrames(opened->handle.get(), opened->channelCount());
        opened->begin();
        if (!opened->handle) return fileError(name, cannotReadSound, soundFileProblem(nullptr));
        opened->info.frames = frames;
    }
    if (opened->info.frames == 0) return fileError(name, cannotReadSound, empty);
    opened->interleaved.resize(framesPerTransfer * opened->channelCount());
    return SoundFileReader(std::move(opened));
}

SoundFileReader::SoundFileReader(std::unique_ptr<Source> opened) noexcept : source(std::move(opened)) {}
SoundFileReader::~SoundFileReader() = default;
SoundFileReader::SoundFileReader(SoundFileReader&&) noexcept = default;
SoundFileReader& SoundFileReader::operator=(SoundFileReader&&) noexcept = default;

std::size_t SoundFileReader::channelCount() const noexcept {
    return source->channelCount();
}

double SoundFileReader::sampleRate() const noexcept {
    return source->info.samplerate;
}

std::int64_t SoundFileReader::frameCount() const noexcept {
    return source->info.frames;
}

Result<std::size_t> SoundFileReader::read(std::span<const std::span<float>> blocks) {
    const auto left = static_cast<std::size_t>(source->info.frames - source->position);
    const std::size_t wanted = std::min(blocks.front().size(), left);
    std::size_t done = 0;
    while (done < wanted) {
        const std::size_t part = std::min(wanted - done, framesPerTransfer);
        const std::size_t count = source->transfer(blocks, done, part);
        done += count;
        if (count == part) continue;
        if (sf_error(source->handle.get()) != SF_ERR_NO_ERROR)
            return fileError(source->path, cannotReadSound, soundFileProblem(source->handle.get()));
        return fileError(
            source->path, cannotReadSound,
            "it breaks off after " + std::to_string(source->position) + " of its "
                + std::to_string(source->info.frames) + " frames"
        );
    }
    return done;
}

} // namespace orvane::platform
