#pragma once

#include "platform/base/result.h"
#include "platform/files/sound_file_format.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>

namespace orvane::platform {

/// Writes a sound file from blocks of separate channels. The name's extension selects the format
/// (`soundFileFormat`); a WAV becomes an RF64 beyond 4 GB. 32-bit float samples are kept bit for bit; FLAC
/// has 24-bit integers and clips. The bytes depend on the samples alone. A device such as /dev/null is
/// written directly. One thread at a time, never an audio thread.
class SoundFileWriter final {
  public:
    /// Creates an empty file for `path` with 1 to 1024 channels (FLAC: 1 to 8) and a sample rate of a whole
    /// number of Hz. It takes its name only when committed: until then, and for good if it never is, a file
    /// of that name stays as it was. Fails if neither a file nor a device can be written there.
    static Result<SoundFileWriter>
    create(const std::filesystem::path& path, std::size_t channelCount, double sampleRate);

    /// Creates a recording, which has its name from the start and keeps what was written in any case. Also
    /// fails if a file of that name exists.
    static Result<SoundFileWriter>
    record(const std::filesystem::path& path, std::size_t channelCount, double sampleRate);

    /// Starts a WAV on standard output, whose header states the maximum length of a WAV. Writing fails once
    /// `isCancelled`, which is called on the writing thread.
    static Result<SoundFileWriter>
    toStandardOutput(std::size_t channelCount, double sampleRate, std::function<bool()> isCancelled);

    ~SoundFileWriter();
    SoundFileWriter(SoundFileWriter&&) noexcept;
    SoundFileWriter& operator=(SoundFileWriter&&) noexcept;

    /// Appends `blocks` (channelCount x any number of frames). Fails if the disk is full or fails; after that
    /// every call fails. A recording is then cut to complete frames and closed.
    Result<Done> write(std::span<const std::span<const float>> blocks);

    /// Updates a recording's header, so that everything written so far can be read.
    Result<Done> updateHeader();

    /// Completes the file, makes it durable and gives it its name. Must be the last call, at most once.
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
