#pragma once

#include "audio/audio_device_info.h"
#include "platform/audio_hardware/audio_hardware.h"

#include <cstdint>
#include <map>
#include <optional>

namespace orvane::cli {

/// Restores the buffer sizes of JACK servers after a run; a server shares its size with all of its clients.
/// Made and destroyed while nothing runs. Main thread.
class BufferSizeKeeper final {
  public:
    /// `audioHardware` must outlive the keeper.
    explicit BufferSizeKeeper(platform::AudioHardware& audioHardware) : hardware(audioHardware) {}
    ~BufferSizeKeeper() { restore(); }
    BufferSizeKeeper(const BufferSizeKeeper&) = delete;
    BufferSizeKeeper& operator=(const BufferSizeKeeper&) = delete;

    /// Returns the current buffer size of a device in frames, absent if it cannot be read. Remembers it if
    /// the device is a JACK server.
    std::optional<std::uint32_t> remember(const audio::AudioDeviceInfo& device);

    /// Records which sizes the run has changed. Called once the run has started or failed to start.
    void noteChanges();

    /// Restores the sizes that the run changed, except those that another program has changed since, and
    /// forgets them.
    void restore();

  private:
    struct Size {
        std::uint32_t before = 0;
        std::uint32_t duringRun = 0;
    };

    [[nodiscard]] std::optional<std::uint32_t> read(platform::AudioObjectID device);

    platform::AudioHardware& hardware;
    std::map<platform::AudioObjectID, Size> sizes;
};

} // namespace orvane::cli
