#include "platform/host_clock.h"
#include "platform/virtual_audio/looped_samples.h"
#include "platform/virtual_audio/virtual_audio_driver.h"
#include "support/change_log.h"
#include "support/stream_clients.h"

#include <gtest/gtest.h>

#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane::platform;
using orvane::test::ChangeLog;
using orvane::test::CountingClient;

const std::string uid = "virtual:test";
constexpr double rate = 48'000.0;
constexpr std::uint32_t frames = 16;

/// Checks on the I/O thread that the samples of a loop come one after another.
class LoopCheckingClient final : public AudioStreamClient {
  public:
    explicit LoopCheckingClient(std::size_t loopLength) : length(loopLength) {}

    void cycle(
        std::span<const std::span<const float>> inputs, std::span<const std::span<float>> outputs,
        std::size_t frameCount
    ) noexcept override {
        for (std::size_t frame = 0; frame < frameCount; ++frame, ++position)
            if (inputs[0][frame] != static_cast<float>(position % length)) ++wrongSamples;
        counter.cycle(inputs, outputs, frameCount);
    }

    CountingClient counter;
    std::atomic<std::size_t> wrongSamples = 0;

  private:
    std::size_t length;
    std::size_t position = 0;
};

class LiveStreamTest : public testing::Test {
  protected:
    static VirtualDevice device() {
        std::vector<std::vector<float>> loop(1, std::vector<float>(1'001));
        for (std::size_t frame = 0; frame < loop[0].size(); ++frame)
            loop[0][frame] = static_cast<float>(frame);
        VirtualDevice described{.description = {uid, "Test", 1, 2, rate}};
        described.bufferSize = frames;
        described.input = std::make_shared<LoopedSamples>(std::move(loop));
        return described;
    }

    std::unique_ptr<AudioStream> open(AudioStreamClient& client) {
        return std::move(driver.open(uid, true, client)).value();
    }

    SystemLog log{[](const LogLine&) {}};
    VirtualAudioDriver driver{{device()}, VirtualPacing::live, log};
};

TEST_F(LiveStreamTest, RunsCyclesThatCarryItsInput) {
    LoopCheckingClient client(1'001);
    const auto stream = open(client);
    ASSERT_EQ(stream->start(), noErr);
    ASSERT_EQ(stream->start(), noErr);
    client.counter.waitFor(200);
    stream->stop();
    EXPECT_EQ(client.wrongSamples, 0U);
    EXPECT_EQ(driver.clock().step(uid, 1), 0U);
}

TEST_F(LiveStreamTest, StatesThePriorityThatItsThreadHas) {
    std::atomic<int> threadPriority = -1;
    CountingClient client([&threadPriority](std::size_t) {
        int policy = SCHED_OTHER;
        sched_param parameters{};
        pthread_getschedparam(pthread_self(), &policy, &parameters);
        threadPriority = policy == SCHED_FIFO ? parameters.sched_priority : 0;
    });
    const auto stream = open(client);
    EXPECT_EQ(stream->realtimePriority(), 0);
    ASSERT_EQ(stream->start(), noErr);
    client.waitFor(1);
    EXPECT_EQ(stream->realtimePriority(), threadPriority);
    stream->stop();
    EXPECT_EQ(stream->realtimePriority(), 0);
}

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

TEST_F(LiveStreamTest, RunsNoCycleOutsideStartAndStopHoweverOftenThoseAreCalled) {
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

TEST_F(LiveStreamTest, ChangesItsCyclesToTheNewSizeAndTellsTheWatch) {
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
