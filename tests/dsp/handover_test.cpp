#include "dsp/handover.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

using orvane::dsp::Handover;

TEST(Handover, GivesTheReaderTheLatestRecordUntilItAsksAgain) {
    Handover<int> handover(1);
    EXPECT_EQ(handover.latest(), 1);
    handover.publish(2);
    handover.publish(3);
    const int& seen = handover.latest();
    EXPECT_EQ(seen, 3);
    handover.publish(4);
    EXPECT_EQ(seen, 3);
    EXPECT_EQ(handover.latest(), 4);
    EXPECT_EQ(handover.latest(), 4);
}

TEST(Handover, NeverShowsAPartialOrOlderRecord) {
    constexpr int records = 20000;
    Handover<std::vector<int>> handover(std::vector<int>(64, 0));
    std::thread writer([&handover] {
        for (int record = 1; record <= records; ++record)
            handover.publish(std::vector<int>(64, record));
    });
    int last = 0;
    int torn = 0;
    int backwards = 0;
    while (last < records) {
        const std::vector<int>& seen = handover.latest();
        torn += seen != std::vector<int>(64, seen[0]) ? 1 : 0;
        backwards += seen[0] < last ? 1 : 0;
        last = seen[0];
    }
    writer.join();
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(backwards, 0);
}

} // namespace
