#pragma once

#include "platform/base/system_log.h"
#include "platform/files/sound_file_reader.h"
#include "platform/virtual/frame_queue.h"
#include "platform/virtual/periodic_task.h"
#include "platform/virtual/planar_blocks.h"
#include "platform/virtual/virtual_input.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace orvane::platform::virtual_devices {

/// Plays a sound file over and over, reading some seconds ahead: live on a thread of its own, stepped as the
/// steps need it. Frames that were not there in time are silent; a file that cannot be read on is silent from
/// there. The log tells of both.
class StreamedLoop final : public VirtualInput {
  public:
    /// `channelCount`: of the file.
    StreamedLoop(std::filesystem::path file, std::size_t channelCount, SystemLog& systemLog);

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
