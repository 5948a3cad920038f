#include "platform/virtual/virtual_audio_driver.h"

#include "support/change_log.h"
#include "support/stream_clients.h"
#include "support/virtual_driver_test.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace {

using namespace orvane::platform;
using namespace orvane::platform::virtual_devices;
using namespace orvane::test;
using testing::ElementsAre;

using VirtualAudioDriverTest = VirtualDriverTest;

TEST_F(VirtualAudioDriverTest, ListsItsDevices) {
    EXPECT_THAT(
        driver.devices(), ElementsAre(
                              AudioDriverDevice{"virtual:panel", "ORVANE Demo Panel", 8, 8, 48000.0},
                              AudioDriverDevice{"virtual:silent48", "ORVANE Silent 48", 48, 48, 48000.0},
                              AudioDriverDevice{"virtual:monitor", "ORVANE Monitor", 0, 2, 48000.0}
                          )
    );
    EXPECT_EQ(openingStatus("virtual:other"), kAudioHardwareBadDeviceError);
}

TEST_F(VirtualAudioDriverTest, RunsAtEverySizeFrom16To4096AndKeepsItPerDevice) {
    KeepingClient client;
    const auto stream = startOn(monitor, client);
    std::vector<std::size_t> expected;
    for (std::uint32_t size = 16; size <= 4096; size += size < 64 ? 1 : 63) {
        ASSERT_EQ(driver.requestBufferSize(monitor, size), noErr) << size;
        driver.clock().step(monitor, 1);
        expected.push_back(size);
    }
    EXPECT_EQ(client.lengths, expected);
    EXPECT_EQ(stream->maximumFrames(), 4096U);
    for (const std::uint32_t refused : {0U, 15U, 4097U, 0xFFFFFFFFU})
        EXPECT_EQ(driver.requestBufferSize(monitor, refused), kAudioHardwareIllegalOperationError) << refused;
    EXPECT_EQ(driver.bufferSize(panel).value(), 512U);
}

TEST_F(VirtualAudioDriverTest, AWatchIsNotNotifiedAfterItsEnd) {
    ChangeLog last;
    const auto lastWatch = driver.watch(monitor, last.listener());
    for (std::uint32_t i = 0; i < 200; ++i) {
        auto calls = std::make_unique<int>(0);
        const auto watch = driver.watch(monitor, [&calls](AudioDeviceChange) { ++*calls; });
        driver.control(monitor)->changeBufferSize(100 + i);
    }
    last.waitFor(200);
}

TEST_F(VirtualAudioDriverTest, EachDeviceKeepsToItsOwnClock) {
    VirtualAudioDriver drifting(builtInDevices(panelRecording(), log, 2000.0), VirtualPacing::stepped, log);
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
        const double monitorCycles = std::ceil(seconds * 48000.0 * 1.002 / 100.0);
        EXPECT_EQ(monitorClient.cycles(), static_cast<std::size_t>(monitorCycles)) << seconds << " s";
    }
}

TEST_F(VirtualAudioDriverTest, RunsCyclesOfAnotherLengthBeforeNotifying) {
    KeepingClient client;
    ChangeLog changes;
    const auto watch = driver.watch(panel, changes.listener());
    const auto stream = startOn(panel, client);
    auto device = *driver.control(panel);
    driver.clock().step(panel, 1);
    device.runCyclesOf(333);
    driver.clock().step(panel, 2);
    EXPECT_EQ(driver.bufferSize(panel).value(), 512U);
    EXPECT_THAT(changes.waitFor(0), ElementsAre());
    device.changeBufferSize(334);
    EXPECT_THAT(changes.waitFor(1), ElementsAre(AudioDeviceChange::bufferSize));
    driver.clock().step(panel, 1);
    EXPECT_THAT(client.lengths, ElementsAre(512, 333, 333, 334));
}

TEST_F(VirtualAudioDriverTest, ADeviceOpensOnceAtATimeAndNotIfAnotherProgramHasIt) {
    CountingClient client;
    {
        const auto stream = open(panel, client);
        EXPECT_EQ(openingStatus(panel), kAudioDevicePermissionsError);
    }
    EXPECT_EQ(openingStatus(panel), noErr);
    driver.control(panel)->occupy();
    EXPECT_EQ(openingStatus(panel), kAudioDevicePermissionsError);
    driver.control(panel)->release();
}

TEST_F(VirtualAudioDriverTest, ADeadDeviceIsGoneAndItsStreamStaysDeadWhenItReappears) {
    CountingClient client;
    auto stream = startOn(panel, client);
    EXPECT_EQ(driver.clock().step(panel, 2), 2U);
    auto device = *driver.control(panel);
    device.die();
    EXPECT_EQ(driver.clock().step(panel, 1), 0U);
    EXPECT_EQ(driver.devices().size(), 2U);
    EXPECT_FALSE(driver.bufferSize(panel));
    EXPECT_EQ(driver.requestBufferSize(panel, 64), kAudioHardwareBadDeviceError);
    EXPECT_EQ(openingStatus(panel), kAudioHardwareBadDeviceError);

    device.reappear();
    EXPECT_EQ(driver.clock().step(panel, 1), 0U);
    EXPECT_EQ(stream->start(), kAudioHardwareBadDeviceError);
    stream.reset();
    EXPECT_EQ(client.cycles(), 2U);
    stream = startOn(panel, client);
    EXPECT_EQ(driver.clock().step(panel, 1), 1U);
}

} // namespace
