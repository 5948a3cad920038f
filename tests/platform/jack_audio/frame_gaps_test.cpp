#include "platform/jack_audio/frame_gaps.h"

#include <gtest/gtest.h>

namespace {

using orvane::platform::FrameGaps;

TEST(FrameGaps, AreWhereACycleDoesNotBeginAsTheOneBeforeEnded) {
    struct Cycle {
        std::uint32_t time;
        std::uint32_t frameCount;
        bool isAfterGap;
    };
    FrameGaps gaps;
    for (int run = 0; run < 2; ++run) {
        for (const Cycle& cycle :
             {Cycle{0xFFFFFF00U, 128, false},
              {0xFFFFFF80U, 128, false},
              {0, 256, false},
              {256, 64, false},
              {320, 1024, false},
              {1344, 256, false},
              {1856, 256, true},
              {2112, 256, false},
              {9, 256, true},
              {265, 256, false}})
            EXPECT_EQ(gaps.isBefore(cycle.time, cycle.frameCount), cycle.isAfterGap)
                << "run " << run << ", frame " << cycle.time;
        gaps.reset();
    }
}

} // namespace
