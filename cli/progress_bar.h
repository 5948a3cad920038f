#pragma once

#include "platform/base/host_clock.h"

#include <cstdio>

namespace orvane::cli {

/// Shows the progress of long work on one line. Draws only on a terminal, about ten times a second at most,
/// and erases the line when it is destroyed, so that later output starts on a clean line. Owned by the
/// command that does the work; main thread.
class ProgressBar final {
  public:
    /// Draws on `stream`, which must outlive the bar; `clock` limits how often.
    explicit ProgressBar(
        std::FILE* stream = stderr, platform::HostClock clock = platform::HostClock::system()
    );
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Shows `fraction` of the work as done, clamped to 0...1. Cheap if no drawing is due.
    void update(double fraction);

  private:
    [[nodiscard]] double secondsNow() const;

    std::FILE* stream;
    platform::HostClock clock;
    bool isTerminal;
    bool isDrawn = false;
    double nextDrawSeconds = 0.0;
};

} // namespace orvane::cli
