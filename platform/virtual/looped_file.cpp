#include "platform/virtual/looped_file.h"

#include "platform/files/file_error.h"
#include "platform/virtual/virtual_endpoints.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace orvane::platform::virtual_devices {

namespace {

constexpr double secondsAhead = 2.0;
constexpr std::chrono::milliseconds readingInterval{50};
constexpr std::size_t framesPerRead = 4096;

/// Fails if the file has another number of channels.
Result<SoundFileReader> openRecording(const std::filesystem::path& path, std::size_t channelCount) {
    auto reader = SoundFileReader::open(path);
    if (reader && reader.value().channelCount() != channelCount)
        return fileError(
            path, "cannot be played as this device's inputs",
            fmt::format("it has {} channels, not {}", reader.value().channelCount(), channelCount)
        );
    return reader;
}

} // namespace

LoopedFile::LoopedFile(std::filesystem::path file, std::size_t channelCount, SystemLog& systemLog)
    : path(std::move(file)), log(systemLog), chunk(channelCount, framesPerRead) {}

Result<Done> LoopedFile::start(VirtualPacing pacing) {
    auto opened = openRecording(path, chunk.channelCount());
    if (!opened) return opened.error();
    reader = std::move(opened).value();
    queue.emplace(
        chunk.channelCount(),
        2 * framesPerRead + static_cast<std::size_t>(secondsAhead * reader->sampleRate())
    );
    pacedBy = pacing;
    hasFailed = false;
    missedFrames = 0;
    readAhead();
    if (pacing == VirtualPacing::live) readerThread.emplace(readingInterval, [this] { readAhead(); });
    return Done{};
}

void LoopedFile::fill(std::span<const std::span<float>> blocks) noexcept {
    if (pacedBy == VirtualPacing::stepped) readAhead();
    const std::size_t count = queue->pop(blocks);
    const std::size_t missing = blocks.front().size() - count;
    if (missing == 0) return;
    for (const std::span<float> block : blocks)
        std::ranges::fill(block.last(missing), 0.0F);
    missedFrames += missing;
}

void LoopedFile::stop() {
    readerThread.reset();
    reader.reset();
    queue.reset();
    if (missedFrames > 0 && !hasFailed)
        log.post(
            LogLevel::error, virtualAudioLogCategory,
            {fmt::format(
                "\"{}\" could not be read fast enough: {} frames of silence were played instead.",
                path.string(), missedFrames
            )}
        );
}

void LoopedFile::readAhead() {
    while (!hasFailed && queue->freeFrames() >= framesPerRead) {
        const auto read = readOn();
        if (read) continue;
        hasFailed = true;
        log.post(LogLevel::error, virtualAudioLogCategory, {read.error().description});
    }
}

Result<Done> LoopedFile::readOn() {
    const auto count = reader->read(chunk.writable(framesPerRead));
    if (!count) return count.error();
    queue->push(chunk.readable(count.value()));
    if (count.value() == framesPerRead) return Done{};
    auto reopened = openRecording(path, chunk.channelCount());
    if (!reopened) return reopened.error();
    reader = std::move(reopened).value();
    return Done{};
}

} // namespace orvane::platform::virtual_devices
