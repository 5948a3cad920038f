#include "cli/meter_bridge.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace orvane;

TEST(MeterBridge, ShowsALineForEachStripAndOverwritesItOnATerminal) {
    const cli::MeterFrame frame{
        .seconds = 12.34,
        .strips = {{"Host", 0.1, 0.0}, {"Größe, viel zu lang für die Zeile", 0.0, 25.96}},
        .masterLevel = 1.0,
        .referenceLevel = 0.002,
        .cpuLoad = 0.031,
        .xruns = 2};
    const std::string lines[] = {
        " 1 Host              ████████████████████··········  -20.0 dB  GR   0.0 dB",
        " 2 Größe, viel zu la ······························   -inf dB  GR  26.0 dB",
        "   Master            ██████████████████████████████    0.0 dB",
        "   Reference         ███···························  -54.0 dB", "   12.3 s, load 3.1 %, 2 xruns"};
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
