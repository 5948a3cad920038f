#include "platform/virtual_audio/virtual_clock.h"

#include "platform/virtual_audio/virtual_devices.h"
#include "support/allocation_guard.h"
#include "support/stream_clients.h"
#include "support/virtual_driver_test.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <span>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace orvane::platform;
using namespace orvane::test;

using VirtualClockTest = VirtualDriverTest;

TEST_F(VirtualClockTest, EachDeviceKeepsToItsOwnClock) {
    VirtualAudioDriver drifting(builtInDevices(panelRecording, log, 2000.0), VirtualPacing::stepped, log);
    CountingClient silentClient;
    CountingClient monitorClient;
    const auto silentStream = std::move(drifting.open(silent, true, silentClient)).value();
    const auto monitorStream = std::move(drifting.open(monitor, true, monitorClient)).value();
    drifting.requestBufferSize(monitor, 100);
    ASSERT_EQ(silentStream->start(), noErr);
    ASSERT_EQ(monitorStream->start(), noErr);
    double seconds = 0.0;
    for (const int milliseconds : {1, 3, 999, 7, 20'000}) {
        drifting.clock().advance(std::chrono::milliseconds(milliseconds));
        seconds += milliseconds * 1e-3;
        EXPECT_EQ(silentClient.cycles(), static_cast<std::size_t>(std::ceil(seconds * 48000.0 / 512.0)))
            << seconds << " s";
        EXPECT_EQ(
            monitorClient.cycles(), static_cast<std::size_t>(std::ceil(seconds * 48000.0 * 1.002 / 100.0))
        ) << seconds
          << " s";
    }
}

TEST_F(VirtualClockTest, SteppingAllocatesNothing) {
    CountingClient client;
    const auto stream = startOn(panel, client);
    const AllocationGuard guard;
    driver.clock().step(panel, 100);
    driver.clock().advance(std::chrono::seconds(1));
}

TEST_F(VirtualClockTest, MayBeSteppedByAnotherThreadThanTheOneThatStartsAndStops) {
    KeepingClient client;
    std::atomic<bool> isEnding = false;
    std::thread stepper([this, &isEnding] {
        while (!isEnding)
            driver.clock().step(monitor, 3);
    });
    for (std::uint32_t i = 0; i < 200; ++i) {
        auto stream = startOn(monitor, client);
        driver.requestBufferSize(monitor, 16 + i);
        if (i % 3 == 0) stream->stop();
        stream.reset();
        client.lengths.clear();
    }
    isEnding = true;
    stepper.join();
}

/// Stands where a renderer's file is: each block is made when the device asks for it.
class NumberedInput final : public VirtualInput {
  public:
    void fill(std::span<const std::span<float>> blocks) noexcept override {
        for (float& sample : blocks[0])
            sample = static_cast<float>(next++);
    }

  private:
    int next = 0;
};

class KeptOutput final : public VirtualOutput {
  public:
    void take(std::span<const std::span<const float>> blocks) noexcept override {
        samples.insert(samples.end(), blocks[1].begin(), blocks[1].end());
    }

    std::vector<float> samples;
};

/// Plays its input on its second output.
class PassingClient final : public AudioStreamClient {
  public:
    void cycle(
        std::span<const std::span<const float>> inputs, std::span<const std::span<float>> outputs, std::size_t
    ) noexcept override {
        std::ranges::copy(inputs[0], outputs[1].begin());
    }
};

TEST_F(VirtualClockTest, CarriesACallersInputThroughTheClientToTheCallersOutput) {
    const auto output = std::make_shared<KeptOutput>();
    const VirtualDevice device{
        .description = {"virtual:render", "Render", 1, 2, 44100.0},
        .bufferSize = 100,
        .input = std::make_shared<NumberedInput>(),
        .output = output};
    VirtualAudioDriver renderer({device}, VirtualPacing::stepped, log);
    PassingClient client;
    const auto stream = std::move(renderer.open("virtual:render", true, client)).value();
    ASSERT_EQ(stream->start(), noErr);
    EXPECT_EQ(renderer.clock().step("virtual:render", 10), 10U);
    std::vector<float> expected(1000);
    std::iota(expected.begin(), expected.end(), 0.0F);
    EXPECT_EQ(output->samples, expected);
}

} // namespace
