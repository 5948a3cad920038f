#pragma once

#include "cli/write_behind.h"

#include <cstddef>
#include <vector>

namespace orvane::cli {

/// Aligns the outputs that the limiter delays, all other outputs and the stems with the input: delays the
/// others as well and drops the first frames of all. One thread.
class LatencyCompensation final {
  public:
    /// `latency` in frames. `lateOutputs`: the outputs that have it already. Chunks have `outputCount`
    /// outputs and `stemCount` stems.
    LatencyCompensation(
        std::size_t latency, std::vector<std::size_t> lateOutputs, std::size_t outputCount,
        std::size_t stemCount
    );

    [[nodiscard]] std::size_t latencyFrames() const { return latency; }

    /// Aligns the next chunk, which may lose frames.
    void align(WriteBehind::Chunk& chunk);

  private:
    std::size_t latency;
    std::size_t framesToDrop;
    std::vector<std::size_t> late;
    /// The last `latency` samples of every channel that is not late.
    std::vector<std::vector<float>> outputLines;
    std::vector<std::vector<float>> stemLines;
};

} // namespace orvane::cli
