#include "platform/virtual/output_recorder.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <set>
#include <system_error>
#include <utility>

namespace orvane::platform::virtual_devices {

namespace {

constexpr double queueSeconds = 2.0;
constexpr std::chrono::milliseconds writingInterval{50};
constexpr std::size_t framesPerWrite = 4096;

/// The active recorders, for an exit without unwinding, as when the display is lost. Main thread.
std::set<OutputRecorder*>& recordersUnderWay() {
    static std::set<OutputRecorder*> recorders;
    return recorders;
}

void completeAtExit(OutputRecorder* recorder) {
    // Creates the set first, so that it is destroyed after the handler has run.
    recordersUnderWay().insert(recorder);
    [[maybe_unused]] static const int isRegistered = std::atexit(OutputRecorder::completeAll);
}

bool isTaken(const std::filesystem::path& path) {
    std::error_code ignored;
    const auto status = std::filesystem::symlink_status(path, ignored);
    return std::filesystem::exists(status) && status.type() != std::filesystem::file_type::character;
}

} // namespace

OutputRecorder::OutputRecorder(std::filesystem::path file, std::size_t channelCount, double sampleRate)
    : path(std::move(file)), takePath(path), rate(sampleRate), chunk(channelCount, framesPerWrite) {}

OutputRecorder::~OutputRecorder() {
    stop();
}

void OutputRecorder::completeAll() {
    while (!recordersUnderWay().empty())
        (*recordersUnderWay().begin())->stop();
}

Result<Done> OutputRecorder::start(VirtualPacing pacing) {
    queue.emplace(chunk.channelCount(), framesPerWrite + static_cast<std::size_t>(queueSeconds * rate));
    // Started before the file is created, which would be left behind if no thread could be started. It finds
    // nothing to write yet.
    if (pacing == VirtualPacing::live) writerThread.emplace(writingInterval, [this] { writeOut(); });
    auto free = nextFreePath();
    auto begun = SoundFileWriter::record(free, chunk.channelCount(), rate);
    if (!begun) {
        writerThread.reset();
        return begun.error();
    }
    takePath = std::move(free);
    writer = std::move(begun).value();
    pacedBy = pacing;
    hasFailed = false;
    framesWritten = 0;
    framesInHeader = 0;
    droppedFrames = 0;
    completeAtExit(this);
    return Done{};
}

void OutputRecorder::take(std::span<const std::span<const float>> blocks) noexcept {
    droppedFrames += blocks.front().size() - queue->push(blocks);
    if (pacedBy == VirtualPacing::stepped) writeOut();
}

void OutputRecorder::stop() {
    recordersUnderWay().erase(this);
    if (!writer) return;
    writerThread.reset();
    writeOut();
    if (!hasFailed)
        if (const auto committed = writer->commit(); !committed) fail(committed.error());
    if (droppedFrames > 0)
        report(fmt::format(
            "\"{}\" lacks {} frames: the disk was too slow to record them.", takePath.string(), droppedFrames
        ));
    writer.reset();
}

std::optional<std::string> OutputRecorder::takeProblem() {
    const std::scoped_lock lock(problemMutex);
    return std::exchange(problem, std::nullopt);
}

std::filesystem::path OutputRecorder::nextFreePath() const {
    std::filesystem::path free = path;
    for (std::size_t number = 2; isTaken(free); ++number)
        free = path.parent_path()
               / fmt::format("{}-{}{}", path.stem().string(), number, path.extension().string());
    return free;
}

void OutputRecorder::writeOut() {
    while (const std::size_t count = queue->pop(chunk.writable(framesPerWrite))) {
        if (hasFailed) continue;
        if (const auto written = writer->write(chunk.readable(count)); !written)
            fail(written.error());
        else
            keepReadable(count);
    }
}

/// Updates the header with the first frames and then once a second.
void OutputRecorder::keepReadable(std::size_t newFrames) {
    framesWritten += newFrames;
    if (framesInHeader > 0 && framesWritten < framesInHeader + static_cast<std::uint64_t>(rate)) return;
    framesInHeader = framesWritten;
    if (const auto updated = writer->updateHeader(); !updated) fail(updated.error());
}

void OutputRecorder::fail(const Error& why) {
    hasFailed = true;
    report(fmt::format(
        "{} The recording ends there, and its first {:.1f} s are kept; the mix goes on.", why.description,
        static_cast<double>(framesWritten) / rate
    ));
}

void OutputRecorder::report(std::string sentence) {
    const std::scoped_lock lock(problemMutex);
    problem = std::move(sentence);
}

} // namespace orvane::platform::virtual_devices
