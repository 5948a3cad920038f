#pragma once

#include "platform/files/sound_file_reader.h"
#include "platform/virtual/virtual_input.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace orvane::platform::virtual_devices {

/// Plays samples in memory over and over.
class LoopedSamples final : public VirtualInput {
  public:
    /// Reads a whole sound file from its start. Fails where it cannot be read. Main thread.
    static Result<std::unique_ptr<VirtualInput>> decode(SoundFileReader& reader);

    /// `loop`: at least one channel of at least one frame, all of one length.
    explicit LoopedSamples(std::vector<std::vector<float>> loop);

    Result<Done> start(VirtualPacing pacing) override;
    ORVANE_REALTIME void fill(std::span<const std::span<float>> blocks) noexcept override;

  private:
    std::vector<std::vector<float>> samples;
    std::size_t position = 0;
};

} // namespace orvane::platform::virtual_devices
