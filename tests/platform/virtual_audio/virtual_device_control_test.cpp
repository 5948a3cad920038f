#include "platform/virtual_audio/virtual_device_control.h"

#include "support/change_log.h"
#include "support/stream_clients.h"
#include "support/virtual_driver_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace orvane::platform;
using namespace orvane::test;
using testing::ElementsAre;

using VirtualDeviceControlTest = VirtualDriverTest;

TEST_F(VirtualDeviceControlTest, RunsCyclesOfAnotherLengthBeforeItSaysSo) {
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

TEST_F(VirtualDeviceControlTest, ADeviceIsOpenedOnceAtATimeAndNotWhereSomebodyElseHasIt) {
    CountingClient client;
    {
        const auto stream = open(panel, client);
        EXPECT_EQ(openingStatus(panel), kAudioDevicePermissionsError);
        EXPECT_EQ(openingStatus(silent), noErr);
    }
    EXPECT_EQ(openingStatus(panel), noErr);
    driver.control(panel)->occupy();
    EXPECT_EQ(openingStatus(panel), kAudioDevicePermissionsError);
    driver.control(panel)->release();
    EXPECT_EQ(openingStatus(panel), noErr);
}

TEST_F(VirtualDeviceControlTest, ADeadDeviceIsGoneAndItsStreamStaysDeadWhenItReappears) {
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
    EXPECT_EQ(driver.devices().size(), 3U);
    EXPECT_EQ(driver.clock().step(panel, 1), 0U);
    driver.clock().advance(std::chrono::seconds(1));
    EXPECT_EQ(stream->start(), kAudioHardwareBadDeviceError);
    stream->stop();
    EXPECT_EQ(stream->start(), kAudioHardwareBadDeviceError);
    stream.reset();
    EXPECT_EQ(client.cycles(), 2U);
    stream = startOn(panel, client);
    EXPECT_EQ(driver.clock().step(panel, 1), 1U);
}

} // namespace
