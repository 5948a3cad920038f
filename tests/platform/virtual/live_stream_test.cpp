#include "platform/base/host_clock.h"
#include "platform/virtual/cycle_schedule.h"
#include "platform/virtual/virtual_audio_driver.h"
#include "support/change_log.h"
#include "support/stream_clients.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <utility>

namespace {

using namespace orvane::platform;
using namespace orvane::platform::virtual_devices;
using namespace orvane::test;

const std::string uid = "virtual:test";
constexpr std::uint32_t frames = 16;

class LiveStreamTest : public testing::Test {
  protected:
    static VirtualDevice device() {
        VirtualDevice described{.description = {uid, "Test", 0, 2, 48'000.0}};
        described.bufferSize = frames;
        return described;
    }

    std::unique_ptr<AudioStream> open(AudioStreamClient& client) {
        return std::move(driver.open(uid, true, client)).value();
    }

    SystemLog log{[](const LogLine&) {}};
    VirtualAudioDriver driver{{device()}, VirtualPacing::live, log};
};

TEST_F(LiveStreamTest, FlushesDenormals) {
    std::atomic<float> halved = 1.0F;
    CountingClient client([&halved](std::size_t) {
        volatile float smallest = std::numeric_limits<float>::min();
        halved = smallest * 0.5F;
    });
    const auto stream = open(client);
    ASSERT_EQ(stream->start(), noErr);
    client.waitFor(1);
    EXPECT_EQ(halved, 0.0F);
}

TEST_F(LiveStreamTest, RunsCyclesOnlyBetweenStartAndStop) {
    std::atomic<bool> mayRun = false;
    std::atomic<int> strayCycles = 0;
    CountingClient client([&](std::size_t) { strayCycles += mayRun ? 0 : 1; });
    auto stream = open(client);
    for (int run = 0; run < 50; ++run) {
        mayRun = true;
        ASSERT_EQ(stream->start(), noErr);
        if (run % 2 == 0) client.waitFor(3);
        if (run % 5 == 0)
            stream.reset();
        else
            stream->stop();
        mayRun = false;
        if (run % 5 == 0) stream = open(client);
        stream->stop();
    }
    EXPECT_EQ(strayCycles, 0);
}

TEST_F(LiveStreamTest, ChangesItsCyclesToTheNewSizeAndNotifiesTheWatch) {
    std::atomic<std::size_t> lastLength = 0;
    CountingClient client([&lastLength](std::size_t length) { lastLength = length; });
    ChangeLog changes;
    const auto watch = driver.watch(uid, changes.listener());
    const auto stream = open(client);
    ASSERT_EQ(stream->start(), noErr);
    client.waitFor(3);
    EXPECT_EQ(lastLength, 16U);
    for (const std::uint32_t size : {33U, 128U, 64U}) {
        ASSERT_EQ(driver.requestBufferSize(uid, size), noErr);
        client.waitFor(2);
        EXPECT_EQ(lastLength, size);
    }
    EXPECT_EQ(changes.waitFor(3).size(), 3U);
}

TEST_F(LiveStreamTest, EndsItsCyclesWhenTheDeviceDies) {
    CountingClient client;
    ChangeLog changes;
    const auto watch = driver.watch(uid, changes.listener());
    for (const bool stopsFirst : {true, false}) {
        auto stream = open(client);
        ASSERT_EQ(stream->start(), noErr);
        client.waitFor(5);
        driver.control(uid)->die();
        changes.waitFor(stopsFirst ? 1 : 2);
        if (stopsFirst) stream->stop();
        EXPECT_EQ(stream->start(), kAudioHardwareBadDeviceError);
        driver.control(uid)->reappear();
        EXPECT_EQ(stream->start(), kAudioHardwareBadDeviceError);
    }
}

TEST(CycleSchedule, IsLateAfterTheDurationOfACycle) {
    using namespace std::chrono_literals;
    CycleSchedule schedule(48000.0, 1s);
    schedule.advance(48);
    EXPECT_EQ(schedule.due(), 1001ms);
    EXPECT_FALSE(schedule.isLate(96, 1003ms));
    EXPECT_TRUE(schedule.isLate(96, 1003ms + 1ns));
}

TEST_F(LiveStreamTest, CountsACycleThatComesMoreThanItsDurationLate) {
    constexpr std::uint64_t threeCycles = 3 * frames * 1'000'000'000ULL / 48'000;
    std::atomic<bool> isSlow = true;
    CountingClient client([&isSlow](std::size_t) {
        const auto clock = HostClock::system().absoluteTime;
        const std::uint64_t begin = clock();
        while (isSlow && clock() - begin < threeCycles) {
        }
        isSlow = false;
    });
    const auto stream = open(client);
    EXPECT_EQ(stream->xrunCount(), 0U);
    ASSERT_EQ(stream->start(), noErr);
    client.waitFor(5);
    EXPECT_GE(stream->xrunCount(), 1U);
}

} // namespace
