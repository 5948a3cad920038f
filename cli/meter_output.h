#pragma once

#include <memory>
#include <string>

namespace orvane::cli {

/// Writes meter frames on a thread of its own, so that a slow reader never delays the run. Owned by a run;
/// main thread.
class MeterOutput final {
  public:
    /// `descriptor` must stay open for the rest of the process.
    explicit MeterOutput(int descriptor);
    /// Waits briefly for a frame that is being written.
    ~MeterOutput();
    MeterOutput(const MeterOutput&) = delete;
    MeterOutput& operator=(const MeterOutput&) = delete;

    /// Queues a frame to be written whole and returns true. Returns false if an earlier frame is still being
    /// written or could not be written. A terminal receives its `terminalText`. Never waits.
    bool write(std::string frame);

    /// The error number (errno) that ended the writing; 0 if there was none.
    [[nodiscard]] int error() const;

  private:
    struct State;

    static void writeFrames(State& state);

    std::shared_ptr<State> state;
};

} // namespace orvane::cli
