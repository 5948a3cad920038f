#include "cli/gain_history.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace orvane;
using cli::GainHistory;

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

} // namespace
