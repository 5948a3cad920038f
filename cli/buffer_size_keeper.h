#pragma once

#include "audio/audio_device_info.h"
#include "platform/audio_hardware/audio_hardware.h"

#include <cstdint>
#include <map>
#include <optional>

namespace orvane::cli {

/// Gives JACK servers back the buffer size that they had before a run: they share it with all of their
/// clients. Made and destroyed while nothing runs. Main thread.
class BufferSizeKeeper final {
  public:
    /// `audioHardware` must outlive the keeper.
    explicit BufferSizeKeeper(platform::AudioHardware& audioHardware) : hardware(audioHardware) {}
    ~BufferSizeKeeper() { restore(); }
    BufferSizeKeeper(const BufferSizeKeeper&) = delete;
    BufferSizeKeeper& operator=(const BufferSizeKeeper&) = delete;

    /// Returns the present size of a device in frames, nothing if it cannot be read, and remembers that of a
    /// server.
    std::optional<std::uint32_t> remember(const audio::AudioDeviceInfo& device);

    /// Looks which sizes the run has changed by now. Called once it has begun or has failed to begin.
    void noteChanges();

    /// Sets the sizes that the run has changed to what they were, except where another program has changed
    /// them since, and forgets them.
    void restore();

  private:
    struct Size {
        std::uint32_t before = 0;
        std::uint32_t duringRun = 0;
    };

    platform::AudioHardware& hardware;
    std::map<platform::AudioObjectID, Size> sizes;
};

} // namespace orvane::cli
