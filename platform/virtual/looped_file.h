#pragma once

#include "platform/base/planar_blocks.h"
#include "platform/base/system_log.h"
#include "platform/files/sound_file_reader.h"
#include "platform/virtual/frame_queue.h"
#include "platform/virtual/periodic_task.h"
#include "platform/virtual/virtual_endpoints.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace orvane::platform::virtual_devices {

/// Loops a sound file seamlessly and reads some seconds ahead: live on a thread of its own, stepped as the
/// steps need it. Frames that are not read in time are silent; if reading fails, the rest is silent. The log
/// reports both.
class LoopedFile final : public VirtualInput {
  public:
    /// `channelCount`: the file's channels; a file with another number does not start.
    LoopedFile(std::filesystem::path file, std::size_t channelCount, SystemLog& systemLog);

    Result<Done> start(VirtualPacing pacing) override;
    ORVANE_REALTIME void fill(std::span<const std::span<float>> blocks) noexcept override;
    void stop() override;

  private:
    void readAhead();
    Result<Done> readOn();

    std::filesystem::path path;
    SystemLog& log;
    PlanarBlocks chunk;
    std::optional<SoundFileReader> reader;
    std::optional<FrameQueue> queue;
    VirtualPacing pacedBy = VirtualPacing::live;
    bool hasFailed = false;
    std::uint64_t missedFrames = 0;
    std::optional<PeriodicTask> readerThread;
};

} // namespace orvane::platform::virtual_devices
