#pragma once

#include "platform/files/sound_file_writer.h"
#include "platform/virtual/frame_queue.h"
#include "platform/virtual/periodic_task.h"
#include "platform/virtual/planar_blocks.h"
#include "platform/virtual/virtual_output.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

namespace orvane::platform::virtual_devices {

/// Records what a device's outputs are given into a sound file, bit for bit from a stream's start to its
/// stop: live by way of a queue of some seconds that a thread of its own writes out, stepped at once. Every
/// start records a take of its own under the next name that is free: "mix.wav", then "mix-2.wav". However the
/// program ends, the file can be read up to its last second; std::exit completes it.
class OutputRecorder final : public VirtualOutput {
  public:
    /// `sampleRate` in Hz, a whole number; `channelCount`: the device's outputs, 1 to 1024.
    OutputRecorder(std::filesystem::path file, std::size_t channelCount, double sampleRate);
    ~OutputRecorder() override;
    OutputRecorder(const OutputRecorder&) = delete;
    OutputRecorder& operator=(const OutputRecorder&) = delete;

    /// Completes all recordings that are under way, for an end of the process that unwinds nothing. Main
    /// thread, or another if that one never returns.
    static void completeAll();

    Result<Done> start(VirtualPacing pacing) override;
    ORVANE_REALTIME void take(std::span<const std::span<const float>> blocks) noexcept override;
    void stop() override;

    /// The file of the last take; that of the first before there is one. Main thread.
    [[nodiscard]] const std::filesystem::path& file() const { return takePath; }

    /// What went wrong with a recording since this was last asked, as a sentence. Any thread but the audio
    /// ones.
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
