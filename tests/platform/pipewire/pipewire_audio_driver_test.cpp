#include "platform/base/realtime_priority.h"
#include "platform/pipewire/pipewire_audio_driver.h"
#include "support/allocation_guard.h"
#include "support/change_log.h"
#include "support/pipewire_test_server.h"
#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane::platform;
using namespace orvane::platform::pipewire;
using orvane::test::AllocationGuard;
using orvane::test::ChangeLog;
using orvane::test::PipeWireTestServer;
using orvane::test::waitFor;

constexpr const char* uid = "pipewire:loop";
constexpr std::size_t channelCount = 4;

/// Plays a signal and keeps what is captured of it. From its second cycle on, nothing on the I/O thread may
/// allocate, within its cycles or between, until `mayAllocate` is set.
struct LoopClient final : AudioStreamClient {
    static constexpr std::size_t mostFrames = 200'000;
    std::vector<std::vector<float>> captured =
        std::vector(channelCount, std::vector<float>(mostFrames, 0.0F));
    std::atomic<std::size_t> time = 0;
    std::atomic<std::size_t> cycleCount = 0;
    std::atomic<std::size_t> lastFrameCount = 0;
    std::atomic<bool> mayAllocate = false;
    std::optional<AllocationGuard> guard;

    /// Differs in every frame of every channel; never 0.
    static float signal(std::size_t channel, std::size_t frame) {
        return static_cast<float>(channel * mostFrames + frame + 1);
    }

    void cycle(
        std::span<const std::span<const float>> inputs, std::span<const std::span<float>> outputs,
        std::size_t frameCount
    ) noexcept override {
        if (cycleCount.load() > 0 && !guard && !mayAllocate.load()) guard.emplace();
        if (mayAllocate.load()) guard.reset();
        const std::size_t start = time.load();
        for (std::size_t channel = 0; channel < outputs.size(); ++channel) {
            for (std::size_t frame = 0; frame < frameCount; ++frame) {
                outputs[channel][frame] = signal(channel, start + frame);
                if (channel < inputs.size() && start + frame < mostFrames)
                    captured[channel][start + frame] = inputs[channel][frame];
            }
        }
        time.store(start + frameCount);
        lastFrameCount.store(frameCount);
        cycleCount.fetch_add(1);
    }

    [[nodiscard]] bool waitForCycles(std::size_t more) const {
        return waitFor([this, target = cycleCount.load() + more] { return cycleCount.load() >= target; });
    }

    [[nodiscard]] bool endGuard() {
        mayAllocate.store(true);
        return waitForCycles(2);
    }
};

class PipeWireDriver : public testing::Test {
  protected:
    [[nodiscard]] bool isListed() {
        return waitFor([this] { return driver.device(uid).has_value(); });
    }

    [[nodiscard]] std::unique_ptr<AudioStream> started(LoopClient& client, bool enableInput = true) {
        auto stream = driver.open(uid, enableInput, client);
        if (!stream || stream.value()->start() != noErr) return nullptr;
        return client.waitForCycles(2) ? std::move(stream).value() : nullptr;
    }

    PipeWireTestServer server;
    PipeWireGraph graph;
    PipeWireAudioDriver driver{graph};
};

TEST_F(PipeWireDriver, ListsNodesAndOpensWithoutDisabledInputs) {
    EXPECT_EQ(
        driver.devices(),
        (std::vector<AudioDriverDevice>{
            {"pipewire:card", "Card", 2, 2, 48000.0}, {uid, "loop", channelCount, channelCount, 48000.0}})
    );
    for (const auto& [requested, granted] : {std::pair(100U, 64U), {4096U, 4096U}, {1024U, 1024U}}) {
        EXPECT_EQ(driver.requestBufferSize(uid, requested), noErr);
        EXPECT_EQ(driver.bufferSize(uid).value(), granted);
    }
    EXPECT_EQ(driver.bufferSize("pipewire:card").value(), 256U);
    LoopClient client;
    const auto stream = started(client, false);
    ASSERT_TRUE(stream);
    EXPECT_TRUE(waitFor([&] { return client.lastFrameCount.load() == 1024; }));
    EXPECT_EQ(stream->realtimePriority() > 0, obtainableRealtimePriority() > 0);
    EXPECT_TRUE(client.endGuard());
    EXPECT_TRUE(stream->stop());
    EXPECT_EQ(client.captured[0][client.time.load() - 1], 0.0F);
}

/// Where a sample that returns is not the one that was played `latency` frames before; empty if nowhere.
std::string differenceIn(const LoopClient& client, std::size_t first, std::size_t end, std::size_t latency) {
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        for (std::size_t frame = first; frame < end; ++frame)
            if (const float sample = client.captured[channel][frame];
                sample != LoopClient::signal(channel, frame - latency))
                return "channel " + std::to_string(channel) + ", frame " + std::to_string(frame) + ": "
                       + std::to_string(sample);
    return {};
}

TEST_F(PipeWireDriver, CarriesEverySampleInBothDirectionsWithinOneCycle) {
    ASSERT_TRUE(isListed());
    for (const std::uint32_t frameCount : {256U, 1024U}) {
        driver.requestBufferSize(uid, frameCount);
        std::string difference = "a missed cycle in every attempt";
        // The server waits for no one on a busy computer.
        for (int attempt = 0; attempt < 20 && !difference.empty(); ++attempt) {
            LoopClient client;
            const auto stream = started(client);
            ASSERT_TRUE(stream);
            ASSERT_TRUE(waitFor([&] { return client.lastFrameCount.load() == frameCount; }));
            ASSERT_TRUE(client.waitForCycles(20));
            const std::size_t first = client.time.load();
            const std::uint32_t missedBefore = stream->xrunCount();
            ASSERT_TRUE(client.waitForCycles(30));
            const std::size_t end = client.time.load();
            const bool isSteady = stream->xrunCount() == missedBefore;
            ASSERT_TRUE(client.endGuard());
            stream->stop();
            if (isSteady) difference = differenceIn(client, first, end, frameCount);
        }
        EXPECT_EQ(difference, "") << frameCount;
    }
}

TEST_F(PipeWireDriver, FollowsEveryChangeOfLengthAndRateAndReportsItOnce) {
    ASSERT_TRUE(isListed());
    driver.requestBufferSize(uid, 256);
    LoopClient client;
    const auto stream = started(client);
    ASSERT_TRUE(stream);
    ChangeLog changes;
    const auto watch = driver.watch(uid, changes.listener());
    std::vector<AudioDeviceChange> expected;
    for (int round = 0; round < 10; ++round) {
        const unsigned frameCount = round % 2 == 0 ? 1024U << (round / 2) % 3 : 512U;
        server.set("clock.force-quantum", frameCount);
        EXPECT_TRUE(waitFor([&] { return client.lastFrameCount.load() == frameCount; })) << frameCount;
        expected.push_back(AudioDeviceChange::bufferSize);
        EXPECT_EQ(changes.waitFor(expected.size()), expected);
        EXPECT_EQ(driver.bufferSize(uid).value(), frameCount);
    }
    server.set("clock.force-rate", 44100);
    expected.push_back(AudioDeviceChange::sampleRate);
    EXPECT_EQ(changes.waitFor(expected.size()), expected);
    EXPECT_EQ(driver.device(uid).value().sampleRate, 44100.0);
    server.set("clock.force-quantum", 0);
    EXPECT_TRUE(waitFor([&] { return client.lastFrameCount.load() == 256; })) << "its own again";
    EXPECT_EQ(driver.requestBufferSize(uid, 2048), noErr);
    EXPECT_TRUE(waitFor([&] { return client.lastFrameCount.load() == 2048; })) << "requested meanwhile";
    EXPECT_TRUE(client.endGuard());
}

TEST_F(PipeWireDriver, ReportsALostDeviceOnceAndRunsItAgain) {
    for (const bool dies : {false, true}) {
        ASSERT_TRUE(isListed());
        LoopClient client;
        client.mayAllocate = true;
        auto stream = started(client);
        ASSERT_TRUE(stream);
        ChangeLog changes;
        const auto watch = driver.watch(uid, changes.listener());
        dies ? server.kill() : server.unplug();
        const std::vector<AudioDeviceChange> died{AudioDeviceChange::died};
        EXPECT_EQ(changes.waitFor(1), died) << dies;
        EXPECT_FALSE(driver.device(uid)) << dies;
        EXPECT_FALSE(driver.open(uid, true, client)) << dies;
        EXPECT_TRUE(stream->stop()) << dies;
        stream.reset();
        dies ? server.restart() : server.plug();
        ASSERT_TRUE(isListed()) << dies;
        EXPECT_TRUE(started(client)) << dies;
        EXPECT_EQ(changes.get(), died) << dies;
    }
}

} // namespace
