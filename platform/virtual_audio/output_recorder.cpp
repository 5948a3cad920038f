#include "platform/virtual_audio/output_recorder.h"

#include "platform/virtual_audio/log_category.h"

#include <fmt/format.h>

#include <chrono>
#include <utility>

namespace orvane::platform {

namespace {

constexpr double queueSeconds = 2.0;
constexpr std::chrono::milliseconds writingInterval{50};
constexpr std::size_t framesPerWrite = 4096;

} // namespace

OutputRecorder::OutputRecorder(
    std::filesystem::path file, std::size_t channelCount, double sampleRate, SystemLog& systemLog
)
    : path(std::move(file)), rate(sampleRate), log(systemLog), chunk(channelCount, framesPerWrite) {}

Result<Done> OutputRecorder::start(VirtualPacing pacing) {
    ++takeNumber;
    auto begun = SoundFileWriter::create(pathOfTake(), chunk.channelCount(), rate);
    if (!begun) return begun.error();
    writer = std::move(begun).value();
    queue.emplace(chunk.channelCount(), framesPerWrite + static_cast<std::size_t>(queueSeconds * rate));
    pacedBy = pacing;
    hasFailed = false;
    droppedFrames = 0;
    if (pacing == VirtualPacing::live) writerThread.emplace(writingInterval, [this] { writeOut(); });
    return Done{};
}

void OutputRecorder::take(std::span<const std::span<const float>> blocks) noexcept {
    droppedFrames += blocks.front().size() - queue->push(blocks);
    if (pacedBy == VirtualPacing::stepped) writeOut();
}

void OutputRecorder::stop() {
    writerThread.reset();
    writeOut();
    if (!hasFailed)
        if (const auto committed = writer->commit(); !committed) fail(committed.error());
    if (droppedFrames > 0)
        log.post(
            LogLevel::error, virtualAudioLogCategory,
            {fmt::format(
                "\"{}\" lacks {} frames: the disk was too slow to record them.", pathOfTake().string(),
                droppedFrames
            )}
        );
    writer.reset();
    queue.reset();
}

std::filesystem::path OutputRecorder::pathOfTake() const {
    if (takeNumber == 1) return path;
    return path.parent_path()
           / fmt::format("{}-{}{}", path.stem().string(), takeNumber, path.extension().string());
}

void OutputRecorder::writeOut() {
    while (const std::size_t count = queue->pop(chunk.writable(framesPerWrite))) {
        if (hasFailed) continue;
        if (const auto written = writer->write(chunk.readable(count)); !written) fail(written.error());
    }
}

void OutputRecorder::fail(const Error& why) {
    hasFailed = true;
    log.post(LogLevel::error, virtualAudioLogCategory, {why.description});
}

} // namespace orvane::platform
