#pragma once

#include "platform/base/host_clock.h"

#include <cstdint>
#include <cstdio>

namespace orvane::cli {

/// One line that shows how far long work has come. It is drawn only on a terminal, about ten times a second
/// at most, and wiped when the bar is destroyed, so that what is printed next starts on a clean line. The
/// command that does the work owns it; main thread.
class ProgressBar final {
  public:
    /// Draws on `stream`, which must outlive the bar; `clock` paces the drawing.
    explicit ProgressBar(
        std::FILE* stream = stderr, platform::HostClock clock = platform::HostClock::system()
    );
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Shows `fraction` of the work as done; clamped to 0...1. Cheap where nothing is to be drawn yet.
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
