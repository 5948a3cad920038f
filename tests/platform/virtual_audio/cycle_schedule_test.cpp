#include "platform/virtual_audio/cycle_schedule.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace {

using orvane::platform::CycleSchedule;
using std::chrono::nanoseconds;

TEST(CycleSchedule, AddsUpNoErrorInADayOfCycles) {
    constexpr std::uint64_t rate = 44'100;
    constexpr std::uint64_t frames = 441 * 7 + 1;
    constexpr std::uint64_t cycles = 24 * 3600 * rate / frames;
    CycleSchedule schedule(static_cast<double>(rate), nanoseconds(5));
    for (std::uint64_t i = 0; i < cycles; ++i)
        schedule.advance(frames);
    const auto exact = static_cast<std::int64_t>(cycles * frames * 1'000'000'000 / rate) + 5;
    EXPECT_NEAR(static_cast<double>(schedule.due().count() - exact), 0.0, 20.0) << cycles << " cycles";
}

TEST(CycleSchedule, IsLateOnceMoreThanACycleHasPassed) {
    CycleSchedule schedule(1'000.0, nanoseconds(0));
    schedule.advance(100);
    EXPECT_EQ(schedule.due(), std::chrono::milliseconds(100));
    EXPECT_FALSE(schedule.isLate(10, std::chrono::milliseconds(50)));
    EXPECT_FALSE(schedule.isLate(10, std::chrono::milliseconds(110)));
    EXPECT_TRUE(schedule.isLate(10, std::chrono::milliseconds(111)));
    EXPECT_FALSE(schedule.isLate(20, std::chrono::milliseconds(111)));
    schedule.restart(std::chrono::milliseconds(111));
    EXPECT_EQ(schedule.due(), std::chrono::milliseconds(111));
}

} // namespace
