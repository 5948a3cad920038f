#pragma once

#include "platform/sound_file_writer.h"
#include "platform/system_log.h"
#include "platform/virtual_audio/frame_queue.h"
#include "platform/virtual_audio/periodic_task.h"
#include "platform/virtual_audio/planar_blocks.h"
#include "platform/virtual_audio/virtual_output.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace orvane::platform {

/// Records what a device's outputs are given into a sound file, bit for bit from a stream's start to its
/// stop: live by way of a queue of some seconds that a thread of its own writes out, stepped at once. The
/// file is there once the stream has stopped. Each further start records a take of its own: "mix.wav", then
/// "mix-2.wav". The log tells of frames that the disk was too slow for and of a disk that fails.
class OutputRecorder final : public VirtualOutput {
  public:
    /// `sampleRate` in Hz, a whole number; `channelCount`: the device's outputs, 1 to 1024.
    OutputRecorder(
        std::filesystem::path file, std::size_t channelCount, double sampleRate, SystemLog& systemLog
    );

    Result<Done> start(VirtualPacing pacing) override;
    ORVANE_REALTIME void take(std::span<const std::span<const float>> blocks) noexcept override;
    void stop() override;

  private:
    [[nodiscard]] std::filesystem::path pathOfTake() const;
    void writeOut();
    void fail(const Error& why);

    std::filesystem::path path;
    double rate;
    SystemLog& log;
    PlanarBlocks chunk;
    std::optional<SoundFileWriter> writer;
    std::optional<FrameQueue> queue;
    std::size_t takeNumber = 0;
    VirtualPacing pacedBy = VirtualPacing::live;
    bool hasFailed = false;
    std::uint64_t droppedFrames = 0;
    std::optional<PeriodicTask> writerThread;
};

} // namespace orvane::platform
