#include "platform/sound_file_writer.h"

#include "platform/atomic_file.h"
#include "platform/file_descriptor.h"
#include "platform/file_error.h"
#include "platform/sound_file_handle.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

namespace orvane::platform {

namespace {

constexpr std::string_view cannotWrite = "could not be written";
constexpr std::size_t framesPerTransfer = 4096;
constexpr std::size_t mostChannels = 1024;

using Destination = std::variant<AtomicFile, FileDescriptor>;

Result<Destination> openDestination(const std::filesystem::path& path) {
    std::error_code ignored;
    if (std::filesystem::is_character_file(path, ignored)) {
        FileDescriptor device(::open(path.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC));
        if (!device.isOpen()) return fileError(path, cannotWrite, errno);
        return Destination(std::move(device));
    }
    auto file = AtomicFile::open(path);
    if (!file) return file.error();
    return Destination(std::move(file).value());
}

int descriptorOf(const Destination& destination) {
    if (const auto* file = std::get_if<AtomicFile>(&destination)) return file->descriptor();
    return std::get<FileDescriptor>(destination).number();
}

bool isFileRate(double sampleRate) {
    return sampleRate >= 1.0 && sampleRate <= std::numeric_limits<int>::max()
           && sampleRate == std::floor(sampleRate);
}

SoundFileHandle openForWriting(const Destination& destination, SF_INFO info) {
    return SoundFileHandle(sf_open_fd(descriptorOf(destination), SFM_WRITE, &info, SF_FALSE));
}

} // namespace

struct SoundFileWriter::Target {
    std::filesystem::path path;
    Destination destination;
    SoundFileHandle handle;
    std::size_t channelCount;
    std::vector<float> interleaved;
    std::optional<Error> failure;

    Target(std::filesystem::path file, Destination opened, SoundFileHandle begun, std::size_t channels)
        : path(std::move(file)),
          destination(std::move(opened)),
          handle(std::move(begun)),
          channelCount(channels),
          interleaved(framesPerTransfer * channels) {}

    Error fail() {
        failure = fileError(path, cannotWrite, soundFileProblem(handle.get()));
        return *failure;
    }
};

Result<SoundFileWriter>
SoundFileWriter::create(const std::filesystem::path& path, std::size_t channelCount, double sampleRate) {
    if (channelCount == 0 || channelCount > mostChannels)
        return fileError(
            path, cannotWrite, "a sound file has 1 to " + std::to_string(mostChannels) + " channels"
        );
    if (!isFileRate(sampleRate))
        return fileError(path, cannotWrite, "the sample rate of a sound file is a whole number of Hz");

    auto destination = openDestination(path);
    if (!destination) return destination.error();

    const bool isW64 = path.extension() == ".w64" || path.extension() == ".W64";
    SF_INFO info{};
    info.samplerate = static_cast<int>(sampleRate);
    info.channels = static_cast<int>(channelCount);
    info.format = (isW64 ? SF_FORMAT_W64 : SF_FORMAT_RF64) | SF_FORMAT_FLOAT;
    auto handle = openForWriting(destination.value(), info);
    if (!handle) return fileError(path, cannotWrite, soundFileProblem(nullptr));
    // Neither format gets a PEAK chunk with its time stamp unless it is asked for, and even asking for none
    // makes some versions of the library add one.
    if (!isW64) sf_command(handle.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);

    return SoundFileWriter(
        std::make_unique<Target>(path, std::move(destination).value(), std::move(handle), channelCount)
    );
}

SoundFileWriter::SoundFileWriter(std::unique_ptr<Target> begun) noexcept : target(std::move(begun)) {}
SoundFileWriter::~SoundFileWriter() = default;
SoundFileWriter::SoundFileWriter(SoundFileWriter&&) noexcept = default;
SoundFileWriter& SoundFileWriter::operator=(SoundFileWriter&&) noexcept = default;

Result<Done> SoundFileWriter::write(std::span<const std::span<const float>> blocks) {
    if (target->failure) return *target->failure;
    const std::size_t channelCount = target->channelCount;
    const std::size_t frameCount = blocks.front().size();
    for (std::size_t done = 0; done < frameCount; done += framesPerTransfer) {
        const std::size_t part = std::min(frameCount - done, framesPerTransfer);
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            for (std::size_t frame = 0; frame < part; ++frame)
                target->interleaved[frame * channelCount + channel] = blocks[channel][done + frame];
        const auto wanted = static_cast<sf_count_t>(part);
        if (sf_writef_float(target->handle.get(), target->interleaved.data(), wanted) != wanted)
            return target->fail();
    }
    return Done{};
}

Result<Done> SoundFileWriter::commit() {
    if (target->failure) return *target->failure;
    // Closing would write the final header too, but would not say whether that failed.
    sf_command(target->handle.get(), SFC_UPDATE_HEADER_NOW, nullptr, 0);
    if (sf_error(target->handle.get()) != SF_ERR_NO_ERROR) return target->fail();
    target->handle.reset();
    if (auto* file = std::get_if<AtomicFile>(&target->destination)) return file->commit();
    return Done{};
}

} // namespace orvane::platform
