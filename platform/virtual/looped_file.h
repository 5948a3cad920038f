#pragma once

#include "platform/base/system_log.h"
#include "platform/virtual/virtual_input.h"

#include <cstddef>
#include <filesystem>
#include <memory>

namespace orvane::platform::virtual_devices {

/// A sound file played over and over without a seam. The file is first opened when a stream starts. A small
/// one is then kept decoded in memory, a large one is read ahead of the stream each time.
class LoopedFile final : public VirtualInput {
  public:
    static constexpr std::size_t smallFileBytes = std::size_t{64} << 20;

    /// `channelCount`: how many channels the file has; one with another number does not start.
    /// `mostBytesInMemory`: up to which decoded size it counts as small.
    LoopedFile(
        std::filesystem::path file, std::size_t channelCount, SystemLog& systemLog,
        std::size_t mostBytesInMemory = smallFileBytes
    );

    Result<Done> start(VirtualPacing pacing) override;
    ORVANE_REALTIME void fill(std::span<const std::span<float>> blocks) noexcept override;
    void stop() override;

  private:
    [[nodiscard]] Result<std::unique_ptr<VirtualInput>> openLoop() const;

    std::filesystem::path path;
    std::size_t channels;
    SystemLog& log;
    std::size_t mostBytes;
    std::unique_ptr<VirtualInput> loop;
};

} // namespace orvane::platform::virtual_devices
