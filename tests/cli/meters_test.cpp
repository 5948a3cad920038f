#include "cli/gain_history.h"
#include "cli/meter_bridge.h"
#include "cli/meter_output.h"
#include "platform/base/file_descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <string>

namespace {

using namespace orvane;
using cli::GainHistory;
using cli::MeterOutput;
using platform::FileDescriptor;

TEST(GainHistory, KeepsPointTimesInRunsOfAnyLength) {
    constexpr double blockSeconds = 0.02;
    for (const std::size_t blocks : {4U, 5U, 29'994U, 30'000U, 200'001U}) {
        GainHistory history(2, blockSeconds);
        // The first strip falls from block to block by the resolution of a point; the second stays.
        for (std::size_t block = 1; block <= blocks; ++block) {
            const double gains[] = {std::pow(10.0, -0.01 * static_cast<double>(block) / 20.0), 1.0, 5.0};
            history.add(gains);
        }
        const std::vector<double>& falling = history.gainsDB().at(0);
        ASSERT_LT(falling.size(), GainHistory::mostPoints) << blocks;
        EXPECT_EQ(
            falling.size(), static_cast<std::size_t>(
                                static_cast<double>(blocks) * blockSeconds / history.intervalSeconds() + 1e-9
                            )
        ) << blocks;
        for (std::size_t point = 0; point < falling.size(); ++point) {
            const double block = static_cast<double>(point + 1) * history.intervalSeconds() / blockSeconds;
            // Levels never fall below -240 dB.
            ASSERT_NEAR(falling[point], std::max(-0.01 * block, -240.0), 0.006) << blocks << ", " << point;
        }
        EXPECT_EQ(history.gainsDB().at(1), std::vector<double>(falling.size(), 0.0)) << blocks;
    }
}

TEST(GainHistory, HasOnePointPerBlockIfBlocksAreLong) {
    GainHistory history(1, 0.25);
    const double gain[] = {0.5};
    history.add(gain);
    EXPECT_EQ(history.intervalSeconds(), 0.25);
    EXPECT_EQ(history.gainsDB().at(0), std::vector<double>{-6.02});
}

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

TEST(MeterOutput, WritesAWholeFrameToAPipeInParts) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC), 0);
    const FileDescriptor readEnd(ends[0]);
    const FileDescriptor writeEnd(ends[1]);
    // Larger than the default capacity of any pipe.
    std::string frame(1'000'000, 'm');
    frame.back() = '\n';
    MeterOutput output(writeEnd.number());
    ASSERT_TRUE(output.write(frame));
    std::string received;
    const auto receive = [&] {
        std::array<char, 4096> part{};
        const ssize_t length = ::read(readEnd.number(), part.data(), part.size());
        if (length > 0) received.append(part.data(), static_cast<std::size_t>(length));
    };
    while (!output.write("end"))
        receive();
    while (!received.ends_with("end"))
        receive();
    EXPECT_EQ(received.size(), frame.size() + 3);
    EXPECT_TRUE(received.starts_with(frame));
    EXPECT_EQ(output.error(), 0);
}

} // namespace
