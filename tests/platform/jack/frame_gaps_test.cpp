#include "platform/jack/frame_gaps.h"

#include <gtest/gtest.h>

namespace {

using orvane::platform::jack::FrameGaps;

TEST(FrameGaps, AreDetectedIfACycleStartsAfterTheEndOfTheLast) {
    struct Cycle {
        std::uint32_t time;
        std::uint32_t frameCount;
        bool isAfterGap;
    };
    FrameGaps gaps;
    for (int run = 0; run < 2; ++run) {
        for (unsigned cycle = 0; cycle < FrameGaps::cyclesUntilSettled; ++cycle)
            EXPECT_FALSE(gaps.isBefore(cycle * cycle * 4096, 128)) << "a client that joins the graph";
        for (const Cycle& cycle :
             {Cycle{0xFFFFFF00U, 128, false},
              {0xFFFFFF80U, 128, false},
              {0, 128, false},
              {256, 128, true},
              {384, 128, false},
              {640, 128, true},
              {896, 128, true},
              {896, 128, false},
              {2048, 1024, false},
              {3072, 1024, false},
              {5120, 1024, true}})
            EXPECT_EQ(gaps.isBefore(cycle.time, cycle.frameCount), cycle.isAfterGap)
                << "run " << run << ", frame " << cycle.time;
        gaps.reset();
    }
}

} // namespace
