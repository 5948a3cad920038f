#pragma once

#include "platform/base/file_descriptor.h"
#include "platform/base/result.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

namespace orvane::platform {

/// A sound file that is read once from its start to its end, in blocks of separate channels: any format that
/// libsndfile reads, integer samples scaled to -1...1, floating-point samples as they are. Whoever opened it
/// owns it; one thread at a time, never an audio thread.
class SoundFileReader final {
  public:
    /// Opens the file at `path`, never waiting for a pipe. Fails if that is not a regular file with readable
    /// sound, or holds no samples. A file that does not state its length is read through once to find it.
    static Result<SoundFileReader> open(const std::filesystem::path& path);

    /// The same for a regular file that is open for reading; `name` is what errors call it.
    static Result<SoundFileReader> open(FileDescriptor file, const std::filesystem::path& name);

    ~SoundFileReader();
    SoundFileReader(SoundFileReader&&) noexcept;
    SoundFileReader& operator=(SoundFileReader&&) noexcept;

    /// At least 1.
    [[nodiscard]] std::size_t channelCount() const noexcept;

    /// In Hz.
    [[nodiscard]] double sampleRate() const noexcept;

    /// The length of the whole file, at least 1.
    [[nodiscard]] std::int64_t frameCount() const noexcept;

    /// Fills the start of `blocks` (channelCount x any number of frames) with the next frames of the file and
    /// returns how many there were: fewer than asked for only at the end of the file, then 0. What lies after
    /// them stays as it was. Fails where the file cannot be read on or breaks off before its stated length.
    Result<std::size_t> read(std::span<const std::span<float>> blocks);

  private:
    struct Source;

    explicit SoundFileReader(std::unique_ptr<Source> opened) noexcept;

    std::unique_ptr<Source> source;
};

} // namespace orvane::platform
