#pragma once

#include "platform/base/result.h"
#include "platform/files/sound_file_writer.h"

#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::cli {

/// Returns the file name of a strip's stem, for example "03 Alto.wav": its number from 1, and as much of its
/// name as a file name can hold.
std::string stemFileName(std::size_t number, std::string_view stripName);

/// One sound file per strip in one folder; none gets its final name before all are complete. One thread.
class StemFiles final {
  public:
    /// Begins a file for every strip name. Makes the folder if it does not exist.
    static platform::Result<StemFiles>
    create(const std::filesystem::path& folder, std::span<const std::string> stripNames, double sampleRate);

    /// Appends a block of every strip.
    platform::Result<platform::Done> write(std::span<const std::span<const float>> stripBlocks);

    /// Completes all files.
    platform::Result<platform::Done> commit();

  private:
    std::vector<platform::SoundFileWriter> files;
};

} // namespace orvane::cli
