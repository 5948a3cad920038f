#pragma once

#include "platform/base/planar_blocks.h"
#include "platform/files/sound_file_writer.h"
#include "platform/virtual/frame_queue.h"
#include "platform/virtual/periodic_task.h"
#include "platform/virtual/virtual_endpoints.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

namespace orvane::platform::virtual_devices {

/// Records a device's outputs into a sound file, bit for bit from a stream's start to its stop. Live
/// recording goes through a queue of some seconds that a thread writes out; stepped recording writes at once.
/// Every start records a take under the next free name: "mix.wav", then "mix-2.wav". However the program
/// ends, the file is readable up to its last second; std::exit completes it.
class OutputRecorder final : public VirtualOutput {
  public:
    /// `sampleRate` in Hz, a whole number; `channelCount`: the device's outputs, 1 to 1024.
    OutputRecorder(std::filesystem::path file, std::size_t channelCount, double sampleRate);
    ~OutputRecorder() override;
    OutputRecorder(const OutputRecorder&) = delete;
    OutputRecorder& operator=(const OutputRecorder&) = delete;

    /// Completes all active recordings when the process ends without unwinding. Main thread, or another if
    /// that one never returns.
    static void completeAll();

    Result<Done> start(VirtualPacing pacing) override;
    ORVANE_REALTIME void take(std::span<const std::span<const float>> blocks) noexcept override;
    void stop() override;

    /// The file of the last take; of the first if there is none yet. Main thread.
    [[nodiscard]] const std::filesystem::path& file() const { return takePath; }

    /// Returns a failure of the recording since the last call, as a sentence. Any thread except audio
    /// threads.
    std::optional<std::string> takeProblem();

  private:
    [[nodiscard]] std::filesystem::path nextFreePath() const;
    void writeOut();
    void keepReadable(std::size_t newFrames);
    void fail(const Error& why);
    void report(std::string sentence);

    std::filesystem::path path;
    std::filesystem::path takePath;
    double rate;
    PlanarBlocks chunk;
    std::optional<SoundFileWriter> writer;
    std::optional<FrameQueue> queue;
    VirtualPacing pacedBy = VirtualPacing::live;
    bool hasFailed = false;
    std::uint64_t framesWritten = 0;
    std::uint64_t framesInHeader = 0;
    std::uint64_t droppedFrames = 0;
    std::mutex problemMutex;
    std::optional<std::string> problem;
    std::optional<PeriodicTask> writerThread;
};

} // namespace orvane::platform::virtual_devices
