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

} // namespace
