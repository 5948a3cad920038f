#include "cli/latency_compensation.h"

#include <algorithm>
#include <utility>

namespace orvane::cli {

namespace {

/// Delays `samples` by the length of `line`, which holds the samples before them.
void delay(std::span<float> samples, std::vector<float>& line) {
    // Makes the last samples the next line and puts the old line in front of the rest.
    line.insert(line.end(), samples.begin(), samples.end());
    std::copy_n(line.begin(), samples.size(), samples.begin());
    line.erase(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(samples.size()));
}

void dropFront(std::span<float> samples, std::size_t count) {
    std::copy(samples.begin() + static_cast<std::ptrdiff_t>(count), samples.end(), samples.begin());
}

} // namespace

LatencyCompensation::LatencyCompensation(
    std::size_t latencyFrames, std::vector<std::size_t> lateOutputs, std::size_t outputCount,
    std::size_t stemCount
)
    : latency(latencyFrames),
      framesToDrop(latencyFrames),
      late(std::move(lateOutputs)),
      outputLines(outputCount, std::vector<float>(latencyFrames)),
      stemLines(stemCount, std::vector<float>(latencyFrames)) {}

void LatencyCompensation::align(WriteBehind::Chunk& chunk) {
    if (latency == 0) return;
    const std::size_t dropped = std::min(framesToDrop, chunk.frameCount);
    const auto alignAll = [&](std::span<const std::span<float>> channels,
                              std::vector<std::vector<float>>& lines, bool mayBeLate) {
        for (std::size_t c = 0; c < channels.size(); ++c) {
            if (!mayBeLate || std::ranges::find(late, c) == late.end()) delay(channels[c], lines[c]);
            dropFront(channels[c], dropped);
        }
    };
    alignAll(chunk.outputs.writable(chunk.frameCount), outputLines, true);
    alignAll(chunk.stems.writable(chunk.frameCount), stemLines, false);
    framesToDrop -= dropped;
    chunk.frameCount -= dropped;
}

} // namespace orvane::cli
