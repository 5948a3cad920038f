#include "cli/progress_bar.h"

#include <fmt/format.h>

#include <unistd.h>

#include <algorithm>

namespace orvane::cli {

namespace {

constexpr int barWidth = 40;
constexpr double drawIntervalSeconds = 0.1;
constexpr double nanosecondsPerSecond = 1e9;
constexpr const char* wipeLine = "\r\x1b[K";

void draw(std::FILE* stream, const char* text) {
    std::fputs(text, stream);
    std::fflush(stream);
}

} // namespace

ProgressBar::ProgressBar(std::FILE* shownOn, platform::HostClock pacedBy)
    : stream(shownOn), clock(pacedBy), isTerminal(isatty(fileno(shownOn)) == 1) {}

ProgressBar::~ProgressBar() {
    if (isDrawn) draw(stream, wipeLine);
}

void ProgressBar::update(double fraction) {
    if (!isTerminal) return;
    const double now = secondsNow();
    if (isDrawn && now < nextDrawSeconds) return;
    isDrawn = true;
    nextDrawSeconds = now + drawIntervalSeconds;

    const double shown = std::clamp(fraction, 0.0, 1.0);
    const auto filled = static_cast<int>(shown * barWidth);
    const auto percent = static_cast<int>(shown * 100.0);
    draw(stream, fmt::format("\r[{:#<{}}{:{}}] {:3}%", "", filled, "", barWidth - filled, percent).c_str());
}

double ProgressBar::secondsNow() const {
    return static_cast<double>(clock.absoluteTime()) * clock.timebaseInfo.numer / clock.timebaseInfo.denom
           / nanosecondsPerSecond;
}

} // namespace orvane::cli
