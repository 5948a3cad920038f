#include "platform/files/sound_file_writer.h"

#include "platform/base/file_descriptor.h"
#include "platform/files/atomic_file.h"
#include "platform/files/file_error.h"
#include "platform/files/sound_file_format.h"
#include "platform/files/sound_file_handle.h"
#include "platform/files/wav_stream.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
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

constexpr std::string_view cannotWriteSound = "could not be written";
constexpr std::size_t framesPerTransfer = 4096;
constexpr std::size_t mostChannels = 1024;
constexpr std::size_t mostFlacChannels = 8;
/// AIFF sizes are signed.
constexpr std::uint64_t mostAiffBytes = std::numeric_limits<std::int32_t>::max() - 4096;
constexpr mode_t newFileMode = 0666;

using Destination = std::variant<AtomicFile, FileDescriptor>;

bool isDevice(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_character_file(path, ignored);
}

Result<Destination> openDescriptor(const std::filesystem::path& path, int flags) {
    FileDescriptor opened(::open(path.c_str(), flags | O_NOCTTY | O_CLOEXEC, newFileMode));
    if (!opened.isOpen()) return fileError(path, cannotWriteSound, errno);
    return Destination(std::move(opened));
}

Result<Destination> openDestination(const std::filesystem::path& path) {
    if (isDevice(path)) return openDescriptor(path, O_WRONLY);
    auto file = AtomicFile::open(path);
    if (!file) return file.error();
    return Destination(std::move(file).value());
}

Result<Destination> openRecording(const std::filesystem::path& path) {
    return openDescriptor(path, isDevice(path) ? O_WRONLY : O_RDWR | O_CREAT | O_EXCL);
}

int descriptorOf(const Destination& destination) {
    if (const auto* file = std::get_if<AtomicFile>(&destination)) return file->descriptor();
    return std::get<FileDescriptor>(destination).number();
}

Result<Done> checkShape(
    const std::filesystem::path& path, SoundFileFormat format, std::size_t channelCount, double sampleRate
) {
    const std::size_t most = format == SoundFileFormat::flac ? mostFlacChannels : mostChannels;
    if (channelCount == 0 || channelCount > most)
        return fileError(
            path, cannotWriteSound,
            std::string("a ") + (format == SoundFileFormat::flac ? "FLAC" : "sound") + " file has 1 to "
                + std::to_string(most) + " channels"
        );
    if (sampleRate >= 1.0 && sampleRate <= std::numeric_limits<int>::max()
        && sampleRate == std::floor(sampleRate))
        return Done{};
    return fileError(path, cannotWriteSound, "the sample rate of a sound file is a whole number of Hz");
}

int libraryFormat(SoundFileFormat format) {
    switch (format) {
    case SoundFileFormat::w64:
        return SF_FORMAT_W64 | SF_FORMAT_FLOAT;
    case SoundFileFormat::flac:
        return SF_FORMAT_FLAC | SF_FORMAT_PCM_24;
    case SoundFileFormat::aiff:
        return SF_FORMAT_AIFF | SF_FORMAT_FLOAT;
    case SoundFileFormat::wav:
    case SoundFileFormat::rf64:
        break;
    }
    return SF_FORMAT_RF64 | SF_FORMAT_FLOAT;
}

SoundFileHandle openHandle(
    const Destination& destination, SoundFileFormat format, std::size_t channelCount, double sampleRate
) {
    SF_INFO info{};
    info.samplerate = static_cast<int>(sampleRate);
    info.channels = static_cast<int>(channelCount);
    info.format = libraryFormat(format);
    SoundFileHandle handle(sf_open_fd(descriptorOf(destination), SFM_WRITE, &info, SF_FALSE));
    if (!handle) return handle;
    // WAV and W64 get a PEAK chunk with a time stamp only on request, and even a request to omit it makes
    // some versions of the library add one.
    if (format == SoundFileFormat::wav) sf_command(handle.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);
    if (format == SoundFileFormat::aiff) {
        sf_command(handle.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
        // The header has become shorter; the samples must follow it.
        sf_count_t none = 0;
        sf_command(handle.get(), SFC_FILE_TRUNCATE, &none, sizeof none);
    }
    if (format == SoundFileFormat::flac) sf_command(handle.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    return handle;
}

/// Whether a complete FLAC holds this many frames: the library does not report failed writes.
bool holds(int descriptor, std::int64_t frames, std::size_t channelCount) {
    if (::lseek(descriptor, 0, SEEK_SET) != 0) return false;
    SF_INFO info{};
    const SoundFileHandle handle(sf_open_fd(descriptor, SFM_READ, &info, SF_FALSE));
    std::vector<float> discarded(framesPerTransfer * channelCount);
    while (const sf_count_t count = sf_readf_float(handle.get(), discarded.data(), framesPerTransfer))
        frames -= count;
    return frames == 0;
}

} // namespace

struct SoundFileWriter::Target {
    std::filesystem::path path;
    SoundFileFormat format = SoundFileFormat::wav;
    Destination destination;
    /// Null for standard output.
    SoundFileHandle handle;
    std::size_t channelCount;
    std::function<bool()> isCancelled;
    std::int64_t framesWritten = 0;
    bool isRecording = false;
    std::vector<float> interleaved = std::vector<float>(framesPerTransfer * channelCount);
    std::optional<Error> failure = {};

    Error fail(Error why) {
        failure = std::move(why);
        if (isRecording) close();
        return *failure;
    }

    Error failWithTheLibrary() {
        return fail(fileError(path, cannotWriteSound, soundFileProblem(handle.get())));
    }

    /// Ends a recording after its last complete frame. Failures are ignored: nothing can be done about them.
    void close() {
        sf_count_t frames = framesWritten;
        sf_command(handle.get(), SFC_FILE_TRUNCATE, &frames, sizeof frames);
        sf_command(handle.get(), SFC_UPDATE_HEADER_NOW, nullptr, 0);
        handle.reset();
    }

    Result<Done> append(std::size_t frameCount) {
        if (!handle) return appendToStream(std::span(interleaved).first(frameCount * channelCount));
        if (format == SoundFileFormat::aiff
            && (static_cast<std::uint64_t>(framesWritten) + frameCount) * channelCount * sizeof(float)
                   > mostAiffBytes)
            return fail(
                fileError(path, cannotWriteSound, "an AIFF file cannot exceed 2 GB; .wav and .w64 can")
            );
        const auto wanted = static_cast<sf_count_t>(frameCount);
        const sf_count_t written = sf_writef_float(handle.get(), interleaved.data(), wanted);
        framesWritten += written;
        if (written != wanted) return failWithTheLibrary();
        return Done{};
    }

    Result<Done> appendToStream(std::span<const float> samples) {
        const int error = writeToStream(descriptorOf(destination), std::as_bytes(samples), isCancelled);
        if (error != 0) return fail(fileError(path, cannotWriteSound, error));
        return Done{};
    }

    /// Closing would also write the final header, but would not report failures.
    Result<Done> writeHeader() {
        sf_command(handle.get(), SFC_UPDATE_HEADER_NOW, nullptr, 0);
        if (sf_error(handle.get()) != SF_ERR_NO_ERROR) return failWithTheLibrary();
        return Done{};
    }

    Result<Done> complete() {
        if (!handle) return Done{};
        if (format != SoundFileFormat::flac)
            if (auto written = writeHeader(); !written) return written;
        handle.reset();
        if (format == SoundFileFormat::flac && !isDevice(path)
            && !holds(descriptorOf(destination), framesWritten, channelCount))
            return fail(fileError(path, cannotWriteSound, "not all of it could be written"));
        if (auto* file = std::get_if<AtomicFile>(&destination)) return file->commit();
        if (isRecording) ::fsync(descriptorOf(destination));
        return Done{};
    }
};

template <class Open>
Result<SoundFileWriter> SoundFileWriter::begin(
    const std::filesystem::path& path, const Result<SoundFileFormat>& format, Open open,
    std::size_t channelCount, double sampleRate
) {
    if (!format) return format.error();
    if (auto fits = checkShape(path, format.value(), channelCount, sampleRate); !fits) return fits.error();
    auto destination = open(path);
    if (!destination) return destination.error();
    auto handle = openHandle(destination.value(), format.value(), channelCount, sampleRate);
    if (!handle) return fileError(path, cannotWriteSound, soundFileProblem(nullptr));
    return SoundFileWriter(std::make_unique<Target>(Target{
        path, format.value(), std::move(destination).value(), std::move(handle), channelCount, {}}));
}

Result<SoundFileWriter>
SoundFileWriter::create(const std::filesystem::path& path, std::size_t channelCount, double sampleRate) {
    return begin(path, soundFileFormat(path), openDestination, channelCount, sampleRate);
}

Result<SoundFileWriter>
SoundFileWriter::record(const std::filesystem::path& path, std::size_t channelCount, double sampleRate) {
    auto writer = begin(path, recordingFormat(path), openRecording, channelCount, sampleRate);
    if (writer) writer.value().target->isRecording = true;
    return writer;
}

Result<SoundFileWriter> SoundFileWriter::toStandardOutput(
    std::size_t channelCount, double sampleRate, std::function<bool()> isCancelled
) {
    const std::filesystem::path name = "standard output";
    if (auto fits = checkShape(name, SoundFileFormat::wav, channelCount, sampleRate); !fits)
        return fits.error();
    if (::isatty(STDOUT_FILENO) == 1)
        return fileError(name, cannotWriteSound, "it is a terminal; redirect it to a file or a program");
    FileDescriptor descriptor(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0));
    if (!descriptor.isOpen()) return fileError(name, cannotWriteSound, errno);
    SoundFileWriter writer(std::make_unique<Target>(Target{
        name, SoundFileFormat::wav, std::move(descriptor), nullptr, channelCount, std::move(isCancelled)}));
    const std::string header = endlessWavHeader(channelCount, static_cast<std::size_t>(sampleRate));
    const int error = writeToStream(
        descriptorOf(writer.target->destination), std::as_bytes(std::span(header)), writer.target->isCancelled
    );
    if (error != 0) return fileError(name, cannotWriteSound, error);
    return writer;
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
        if (auto appended = target->append(part); !appended) return appended;
    }
    return Done{};
}

Result<Done> SoundFileWriter::updateHeader() {
    if (target->failure) return *target->failure;
    return target->writeHeader();
}

Result<Done> SoundFileWriter::commit() {
    if (target->failure) return *target->failure;
    return target->complete();
}

} // namespace orvane::platform
