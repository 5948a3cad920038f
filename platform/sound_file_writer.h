#pragma once

#include "platform/result.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <span>

namespace orvane::platform {

/// A sound file in the making: 32-bit float samples, kept as they are bit for bit, in blocks of separate
/// channels. The file is a WAV, an RF64 once it outgrows 4 GB, or a W64 where the name ends in ".w64"; its
/// bytes depend on the samples alone. It takes its name only when committed: until then, and for good if it
/// never is, a file that had the name before stays as it was. A device such as /dev/null is written directly.
/// Whoever made it owns it; one thread at a time, never an audio thread.
class SoundFileWriter final {
  public:
    /// Begins an empty file for `path` with 1 to 1024 channels and a rate of a whole number of Hz. Fails
    /// where neither a file nor a device can be written there.
    static Result<SoundFileWriter>
    create(const std::filesystem::path& path, std::size_t channelCount, double sampleRate);

    ~SoundFileWriter();
    SoundFileWriter(SoundFileWriter&&) noexcept;
    SoundFileWriter& operator=(SoundFileWriter&&) noexcept;

    /// Appends `blocks` (channelCount x any number of frames). Fails where the disk is full or breaks; from
    /// then on so does everything else.
    Result<Done> write(std::span<const std::span<const float>> blocks);

    /// Completes the file, makes it durable and gives it its name. The last call, at most once.
    Result<Done> commit();

  private:
    struct Target;

    explicit SoundFileWriter(std::unique_ptr<Target> begun) noexcept;

    std::unique_ptr<Target> target;
};

} // namespace orvane::platform
