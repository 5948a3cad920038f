#pragma once

#include "platform/base/file_descriptor.h"
#include "platform/base/result.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

namespace orvane::platform {

/// Reads a sound file once, from start to end, in blocks of separate channels. Any format that libsndfile
/// reads: integer samples are scaled to -1...1, floating-point samples are unchanged. One thread at a time,
/// never an audio thread.
class SoundFileReader final {
  public:
    /// Opens the file at `path`; does not wait for a pipe. Fails if it is not a regular file with readable
    /// sound, or holds no samples. A file that does not state its length is read through once to find it.
    static Result<SoundFileReader> open(const std::filesystem::path& path);

    /// Opens a regular file from a descriptor that is open for reading; errors refer to it as `name`.
    static Result<SoundFileReader> open(FileDescriptor file, const std::filesystem::path& name);

    ~SoundFileReader();
    SoundFileReader(SoundFileReader&&) noexcept;
    SoundFileReader& operator=(SoundFileReader&&) noexcept;

    /// At least 1.
    [[nodiscard]] std::size_t channelCount() const noexcept;

    /// In Hz.
    [[nodiscard]] double sampleRate() const noexcept;

    /// The length of the file in frames, at least 1.
    [[nodiscard]] std::int64_t frameCount() const noexcept;

    /// Fills the start of `blocks` (channelCount x any number of frames) with the next frames and returns
    /// their number: less than asked for only at the end of the file, then 0. The rest of `blocks` is
    /// unchanged. Fails if the file cannot be read or ends before its stated length.
    Result<std::size_t> read(std::span<const std::span<float>> blocks);

  private:
    struct Source;

    explicit SoundFileReader(std::unique_ptr<Source> opened) noexcept;

    std::unique_ptr<Source> source;
};

} // namespace orvane::platform
