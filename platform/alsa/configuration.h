#pragma once

#include "platform/alsa/alsa_library.h"
#include "platform/alsa/error_number.h"
#include "platform/base/result.h"

#include <filesystem>
#include <string>

namespace orvane::platform::alsa {

enum class Direction { playback, capture };

/// The configuration in which PCM names are looked up. Owned by the driver; one thread at a time.
class Configuration final {
  public:
    /// Reads the system's and the user's own files, or only `file` if it is not empty; an unreadable file
    /// defines nothing.
    explicit Configuration(const std::filesystem::path& file);

    /// Opens one direction of the PCM without waiting for it to become free.
    [[nodiscard]] Result<PcmHandle, ErrorNumber> open(const std::string& pcmName, Direction direction) const;

  private:
    /// Empty for the system's configuration.
    ConfigHandle root;
};

} // namespace orvane::platform::alsa
