#pragma once

#include "platform/base/result.h"
#include "platform/files/sound_file_format.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>

namespace orvane::platform {

/// A sound file in the making, of blocks of separate channels: what the ending of its name says
/// (`soundFileFormat`), a WAV being an RF64 once it outgrows 4 GB. 32-bit float samples are kept bit for bit;
/// a FLAC has 24-bit integers and clips. The bytes depend on the samples alone. A device such as /dev/null is
/// written directly. Whoever made it owns it; one thread at a time, never an audio thread.
class SoundFileWriter final {
  public:
    /// Begins an empty file for `path` with 1 to 1024 channels, a FLAC 1 to 8, and a rate of a whole number
    /// of Hz. It takes its name only when committed: until then, and for good if it never is, a file that had
    /// the name before stays as it was. Fails if neither a file nor a device can be written there.
    static Result<SoundFileWriter>
    create(const std::filesystem::path& path, std::size_t channelCount, double sampleRate);

    /// Begins a recording that has its name from the start and keeps what was written whatever happens. Fails
    /// also if a file of that name exists.
    static Result<SoundFileWriter>
    record(const std::filesystem::path& path, std::size_t channelCount, double sampleRate);

    /// Begins a WAV on standard output, whose header gives the greatest length that a WAV can have. Writing
    /// fails once `isCancelled`, which is called on the writing thread.
    static Result<SoundFileWriter>
    toStandardOutput(std::size_t channelCount, double sampleRate, std::function<bool()> isCancelled);

    ~SoundFileWriter();
    SoundFileWriter(SoundFileWriter&&) noexcept;
    SoundFileWriter& operator=(SoundFileWriter&&) noexcept;

    /// Appends `blocks` (channelCount x any number of frames). Fails if the disk is full or breaks; from then
    /// on so does everything else. A recording is cut to whole frames and closed then.
    Result<Done> write(std::span<const std::span<const float>> blocks);

    /// Brings a recording's header up to date, so that all that was written can be read.
    Result<Done> updateHeader();

    /// Completes the file, makes it durable and gives it its name. The last call, at most once.
    Result<Done> commit();

  private:
    struct Target;

    explicit SoundFileWriter(std::unique_ptr<Target> begun) noexcept;

    template <class Open>
    static Result<SoundFileWriter> begin(
        const std::filesystem::path& path, const Result<SoundFileFormat>& format, Open open,
        std::size_t channelCount, double sampleRate
    );

    std::unique_ptr<Target> target;
};

} // namespace orvane::platform
