#include "platform/virtual/looped_file.h"

#include "platform/virtual/looped_samples.h"
#include "platform/virtual/open_recording.h"
#include "platform/virtual/streamed_loop.h"

#include <cstdint>
#include <utility>

namespace orvane::platform::virtual_devices {

LoopedFile::LoopedFile(
    std::filesystem::path file, std::size_t channelCount, SystemLog& systemLog, std::size_t mostBytesInMemory
)
    : path(std::move(file)), channels(channelCount), log(systemLog), mostBytes(mostBytesInMemory) {}

Result<Done> LoopedFile::start(VirtualPacing pacing) {
    if (!loop) {
        auto opened = openLoop();
        if (!opened) return opened.error();
        loop = std::move(opened).value();
    }
    return loop->start(pacing);
}

void LoopedFile::fill(std::span<const std::span<float>> blocks) noexcept {
    loop->fill(blocks);
}

void LoopedFile::stop() {
    loop->stop();
}

Result<std::unique_ptr<VirtualInput>> LoopedFile::openLoop() const {
    auto reader = openRecording(path, channels);
    if (!reader) return reader.error();
    const auto frames = static_cast<std::uint64_t>(reader.value().frameCount());
    if (frames > mostBytes / (channels * sizeof(float)))
        return std::unique_ptr<VirtualInput>(std::make_unique<StreamedLoop>(path, channels, log));
    return LoopedSamples::decode(reader.value());
}

} // namespace orvane::platform::virtual_devices
