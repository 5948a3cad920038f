#include "cli/meter_bridge.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace orvane;

TEST(MeterBridge, ShowsALineForEachStripAndOverwritesItOnATerminal) {
    const cli::MeterFrame frame{
        .seconds = 12.34,
        .strips =
            {{"Host", 0.1, 0.0},
             {"Größe, viel zu lang für die Zeile", 0.0, 25.96, false, false, {true, 1.0, 2}}},
        .masterLevel = 1.0,
        .referenceLevel = 0.002,
        .masterPeak = {true, 1.0, 1},
        .outputPeaks = {{true, 1.0, 12}, {true, 0.5, 0}},
        .cpuLoad = 0.031,
        .xruns = 2};
    const std::string lines[] = {
        " 1 Host              ████████████████████··········  -20.0 dB  GR   0.0 dB",
        " 2 Größe, viel zu la ······························   -inf dB  GR  26.0 dB  CLIP",
        "   Master            ██████████████████████████████    0.0 dB  peak   0.0 dB",
        "   Reference         ███···························  -54.0 dB",
        "   12.3 s, load 3.1 %, 2 xruns, 12 overs on output 1"};
    std::string text;
    std::string over = "\x1b[5A";
    for (const std::string& line : lines) {
        text += line + "\n";
        over += "\r" + line + "\x1b[K\n";
    }
    EXPECT_EQ(cli::meterText(frame), text);
    EXPECT_EQ(cli::meterTextOver(frame), over);
}

} // namespace
