#include "dsp/pink_noise_generator.h"

#include <gtest/gtest.h>

namespace {

using orvane::dsp::PinkNoiseGenerator;

TEST(PinkNoiseGenerator, RepeatsTheKnownSequence) {
    PinkNoiseGenerator noise;
    EXPECT_EQ(noise.rngState, 0x43E1465FU);
    EXPECT_EQ(noise.key, 0U);
    EXPECT_EQ(noise.runningSum, 1.468942633240703);
    EXPECT_EQ(noise, PinkNoiseGenerator(0));
    for (const double expected :
         {0.05127080212007006, 0.06816173347807145, 0.1321690962272816, 0.033334348481787845})
        EXPECT_EQ(noise.next(), expected);
}

TEST(PinkNoiseGenerator, RenewsExactlyTheRowsWhoseCounterBitChanges) {
    PinkNoiseGenerator noise;
    for (int sample = 1; sample <= 65536; ++sample) {
        const PinkNoiseGenerator before = noise;
        noise.next();
        const auto changedBits = before.key ^ noise.key;
        for (std::size_t row = 0; row < before.rowValues.size(); ++row)
            ASSERT_EQ(before.rowValues[row] != noise.rowValues[row], ((changedBits >> row) & 1U) == 1U)
                << "row " << row << " at sample " << sample;
    }
    EXPECT_EQ(noise.key, 0U);
}

} // namespace
