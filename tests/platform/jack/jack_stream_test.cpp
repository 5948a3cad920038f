#include "platform/jack/frame_gaps.h"
#include "platform/jack/jack_audio_driver.h"
#include "support/jack_peer.h"
#include "support/jack_test_server.h"
#include "support/wait_for.h"

#include <gmock/gmock.h>

#include <dlfcn.h>
#include <jack/jack.h>
#include <jack/metadata.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <tuple>
#include <vector>

namespace {

using namespace orvane::platform;
using namespace orvane::platform::jack;
using namespace orvane::test;

constexpr const char* uid = "jack:system";

/// Makes a jackd behave like another server.
struct {
    /// Calls itself PipeWire, and need not report missed cycles.
    bool isPipeWire = false;
    /// Makes each connection just before a stream does.
    bool connectsFirst = false;
} disguise;

/// Negates each input into the output of the same index, or the peer's signal if the stream has no inputs.
struct InvertingClient final : AudioStreamClient {
    std::atomic<std::size_t> cycleCount = 0;
    std::atomic<std::size_t> lastFrameCount = 0;
    std::atomic<std::size_t> inputCount = 0;
    std::size_t time = 0;

    void cycle(
        std::span<const std::span<const float>> inputs, std::span<const std::span<float>> outputs,
        std::size_t frameCount
    ) noexcept override {
        for (std::size_t channel = 0; channel < outputs.size(); ++channel)
            for (std::size_t frame = 0; frame < frameCount; ++frame)
                outputs[channel][frame] = inputs.empty() ? JackPeer::signal(channel, time + frame)
                                                         : -inputs[(channel + 1) % inputs.size()][frame];
        time += frameCount;
        inputCount.store(inputs.size());
        lastFrameCount.store(frameCount);
        cycleCount.fetch_add(1);
    }

    [[nodiscard]] bool waitForCycles(std::size_t more) const {
        return waitFor([this, target = cycleCount.load() + more] { return cycleCount.load() >= target; });
    }
};

struct StreamDriver {
    std::unique_ptr<AudioStream> start(AudioStreamClient& client, bool enableInput = true) {
        auto stream = std::move(jack.open(uid, enableInput, client)).value();
        EXPECT_EQ(stream->start(), noErr);
        return stream;
    }

    JackClients clients{uniqueJackName("ORVANE")};
    JackAudioDriver jack{clients};
};

class JackStreamFormats : public testing::TestWithParam<JackTestServer::Format> {};

INSTANTIATE_TEST_SUITE_P(
    Formats, JackStreamFormats,
    testing::Values(
        JackTestServer::Format{.sampleRate = 44100, .period = 1024, .channelCount = 1},
        JackTestServer::Format{.sampleRate = 48000, .period = 64, .channelCount = 2},
        JackTestServer::Format{.sampleRate = 48000, .period = 256, .channelCount = 48},
        JackTestServer::Format{.sampleRate = 96000, .period = 2048, .channelCount = 12}
    )
);

TEST_P(JackStreamFormats, DescribeTheDeviceAndCarryEverySampleOfEveryChannel) {
    const auto [sampleRate, period, channelCount, waits] = GetParam();
    constexpr std::size_t frameCount = 20000;
    const JackTestServer server(GetParam());
    StreamDriver driver;
    EXPECT_THAT(
        driver.jack.devices(),
        testing::ElementsAre(AudioDriverDevice{
            uid, "system", channelCount, channelCount, static_cast<double>(sampleRate)})
    );
    EXPECT_EQ(driver.jack.bufferSize(uid).value(), period);
    InvertingClient client;
    JackPeer card("card", channelCount, JackPortIsPhysical);
    const auto stream = driver.jack.open("jack:" + card.name(), true, client);
    ASSERT_TRUE(stream);
    ASSERT_EQ(stream.value()->start(), noErr);
    ASSERT_TRUE(client.waitForCycles(2));
    const std::vector<std::vector<float>> received = card.exchange(frameCount);
    EXPECT_EQ(client.inputCount.load(), channelCount);
    EXPECT_EQ(client.lastFrameCount.load(), period);
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        ASSERT_EQ(received[channel].size(), frameCount) << "channel " << channel;
        for (std::size_t frame = 0; frame < frameCount; ++frame)
            ASSERT_EQ(received[channel][frame], -JackPeer::signal((channel + 1) % channelCount, frame))
                << "channel " << channel << ", frame " << frame;
    }
}

TEST(JackStream, HasNeitherDisabledInputsNorAPriorityThatTheServerLacks) {
    const JackTestServer server({});
    StreamDriver driver;
    InvertingClient client;
    const auto stream = driver.start(client, false);
    EXPECT_TRUE(client.waitForCycles(3));
    EXPECT_EQ(client.inputCount.load(), 0U);
    EXPECT_EQ(stream->realtimePriority(), 0) << "the server has none";
}

TEST(JackStream, ContinuesBesideAnotherOneWhenTheBufferSizeChanges) {
    const JackTestServer server({});
    StreamDriver driver;
    InvertingClient client;
    InvertingClient beside;
    const auto stream = driver.start(client);
    const auto second = driver.start(beside);
    JackPeer other("other", 1);
    for (const std::uint32_t frameCount : {1024U, 32U, 8192U, 256U}) {
        EXPECT_TRUE(other.setBufferSize(frameCount));
        EXPECT_TRUE(waitFor([&] { return client.lastFrameCount.load() == frameCount; })) << frameCount;
        EXPECT_LE(frameCount, stream->maximumFrames());
    }
    EXPECT_TRUE(client.waitForCycles(3) && beside.waitForCycles(3));
}

TEST(JackStream, RunsNoCycleOnceStopped) {
    const JackTestServer server({.period = 64});
    StreamDriver driver;
    InvertingClient client;
    const auto stream = driver.jack.open(uid, true, client);
    ASSERT_TRUE(stream);
    JackPeer other("other", 2);
    for (int round = 0; round < 10; ++round) {
        ASSERT_EQ(stream.value()->start(), noErr) << "round " << round;
        EXPECT_EQ(stream.value()->start(), noErr) << "round " << round;
        EXPECT_TRUE(client.waitForCycles(2)) << "round " << round;
        stream.value()->stop();
        const std::size_t count = client.cycleCount.load();
        EXPECT_TRUE(other.setBufferSize(round % 2 == 0 ? 128 : 64));
        EXPECT_EQ(client.cycleCount.load(), count) << "round " << round;
        stream.value()->stop();
    }
}

TEST(JackStream, CanBeOpenedAndDestroyedAnyNumberOfTimes) {
    const JackTestServer server({});
    for (int round = 0; round < 10; ++round) {
        StreamDriver driver;
        InvertingClient client;
        for (const bool enableInput : {true, false}) {
            const auto stream = driver.jack.open(uid, enableInput, client);
            ASSERT_TRUE(stream) << "round " << round;
            if (round % 2 == 0) continue;
            ASSERT_EQ(stream.value()->start(), noErr) << "round " << round;
            ASSERT_TRUE(round % 4 == 1 || client.waitForCycles(1)) << "round " << round;
        }
    }
}

/// Once settled, returns from some of its cycles only when the server has reported each as late.
struct LateClient final : AudioStreamClient {
    explicit LateClient(const JackPeer& reported) : witness(reported) {}
    const JackPeer& witness;
    static constexpr int lateCycles = 5;
    std::atomic<int> cyclesLeft = FrameGaps::cyclesUntilSettled + lateCycles;

    void cycle(
        std::span<const std::span<const float>>, std::span<const std::span<float>> outputs, std::size_t
    ) noexcept override {
        for (const std::span<float> output : outputs)
            std::ranges::fill(output, 0.0F);
        if (cyclesLeft.load() == 0) return;
        if (cyclesLeft.load() <= lateCycles)
            waitFor([this, before = witness.xrunCount()] { return witness.xrunCount() > before; });
        cyclesLeft.fetch_sub(1);
    }
};

TEST(JackStream, CountsEachMissedCycleOnceAlsoOnServersThatReportNone) {
    for (const bool reportsNone : {false, true}) {
        const JackTestServer server({.waitsForClients = false});
        disguise.isPipeWire = reportsNone;
        StreamDriver driver;
        const JackPeer witness("witness", 1);
        LateClient client(witness);
        const auto stream = driver.jack.open(uid, true, client);
        ASSERT_TRUE(stream);
        EXPECT_EQ(stream.value()->xrunCount(), 0U);
        const std::uint32_t before = witness.xrunCount();
        ASSERT_EQ(stream.value()->start(), noErr);
        // One may have been pending when the stream started.
        EXPECT_TRUE(waitFor([&] {
            const std::int64_t counted = stream.value()->xrunCount();
            const std::int64_t reported = witness.xrunCount() - before;
            return client.cyclesLeft.load() == 0 && counted > 0
                   && (reportsNone || std::abs(counted - reported) <= 1);
        })) << stream.value()->xrunCount()
            << " counted, " << witness.xrunCount() - before << " reported";
        disguise.isPipeWire = false;
    }
}

TEST(JackStream, AcceptsExistingConnections) {
    const JackTestServer server({});
    disguise.connectsFirst = true;
    StreamDriver driver;
    InvertingClient client;
    driver.start(client);
    disguise.connectsFirst = false;
}

TEST(FrameGaps, AreDetectedIfACycleStartsAfterTheEndOfTheLast) {
    const std::tuple<std::uint32_t, std::uint32_t, bool> cycles[] = {
        {0xFFFFFF00U, 128, false}, {0xFFFFFF80U, 128, false}, {0, 128, false},   {256, 128, true},
        {384, 128, false},         {640, 128, true},          {896, 128, true},  {896, 128, false},
        {2048, 1024, false},       {3072, 1024, false},       {5120, 1024, true}};
    FrameGaps gaps;
    for (int run = 0; run < 2; ++run) {
        for (unsigned cycle = 0; cycle < FrameGaps::cyclesUntilSettled; ++cycle)
            EXPECT_FALSE(gaps.isBefore(cycle * cycle * 4096, 128)) << "a client that joins the graph";
        for (const auto& [time, frameCount, isAfterGap] : cycles)
            EXPECT_EQ(gaps.isBefore(time, frameCount), isAfterGap) << "run " << run << ", frame " << time;
        gaps.reset();
    }
}

} // namespace

// Override libjack's functions of the same names in this program.
extern "C" {

const char* jack_get_version_string() {
    return disguise.isPipeWire ? "3 (using PipeWire)" : "1";
}

/// Tests must not write to jackd's property store: see JackClient::setPrettyName.
int jack_set_property(jack_client_t*, jack_uuid_t, const char*, const char*, const char*) {
    return 0;
}

int jack_connect(jack_client_t* client, const char* source, const char* destination) {
    static const auto connect = reinterpret_cast<decltype(&jack_connect)>(dlsym(RTLD_NEXT, "jack_connect"));
    if (disguise.connectsFirst) connect(client, source, destination);
    return connect(client, source, destination);
}

} // extern "C"
