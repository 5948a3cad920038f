#pragma once

#include <memory>
#include <string>

namespace orvane::cli {

/// Where meter frames go. A thread of its own writes them, so that whoever reads them, or does not, keeps
/// nobody waiting. A run owns it; main thread.
class MeterOutput final {
  public:
    /// The descriptor stays open for as long as the program runs.
    explicit MeterOutput(int descriptor);
    /// Gives a frame under way the time that a reader takes who reads at all.
    ~MeterOutput();
    MeterOutput(const MeterOutput&) = delete;
    MeterOutput& operator=(const MeterOutput&) = delete;

    /// Has a frame written whole, and returns true, unless one before it is still being written or could not
    /// be. A terminal is sent its `terminalText`. Never waits.
    bool write(std::string frame);

    /// Why nothing can be written any more, as an error number (errno); 0 as long as that is not so.
    [[nodiscard]] int error() const;

  private:
    struct State;

    static void writeFrames(State& state);

    std::shared_ptr<State> state;
};

} // namespace orvane::cli
