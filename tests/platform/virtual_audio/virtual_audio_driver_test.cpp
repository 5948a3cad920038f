#include "platform/virtual_audio/virtual_audio_driver.h"

#include "support/change_log.h"
#include "support/stream_clients.h"
#include "support/virtual_driver_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace {

using namespace orvane::platform;
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
    EXPECT_FALSE(driver.bufferSize("virtual:other"));
    EXPECT_EQ(driver.requestBufferSize("virtual:other", 64), kAudioHardwareBadDeviceError);
    EXPECT_FALSE(driver.control("virtual:other"));
}

TEST_F(VirtualAudioDriverTest, GivesInputsOnlyWhereTheyAreThereAndEnabled) {
    struct Case {
        std::string_view uid;
        bool enableInput;
        std::size_t inputCount;
        std::size_t outputCount;
    };
    for (const auto& [uid, enableInput, inputCount, outputCount] :
         {Case{silent, true, 48, 48}, {silent, false, 0, 48}, {panel, false, 0, 8}, {monitor, true, 0, 2}}) {
        KeepingClient client;
        const auto stream = open(uid, client, enableInput);
        ASSERT_EQ(stream->start(), noErr);
        EXPECT_EQ(driver.clock().step(uid, 2), 2U);
        EXPECT_EQ(client.played.size(), outputCount) << uid;
        EXPECT_EQ(client.heard, std::vector(inputCount, std::vector<float>(1024))) << uid;
    }
}

TEST_F(VirtualAudioDriverTest, RunsCyclesOnlyFromStartToStop) {
    KeepingClient client;
    EXPECT_EQ(driver.clock().step(panel, 1), 0U);
    auto stream = open(panel, client);
    EXPECT_EQ(driver.clock().step(panel, 1), 0U);
    stream->stop();
    for (int run = 0; run < 2; ++run) {
        EXPECT_EQ(stream->start(), noErr);
        EXPECT_EQ(stream->start(), noErr);
        EXPECT_EQ(driver.clock().step(panel, 3), 3U);
        EXPECT_EQ(driver.clock().step(silent, 3), 0U);
        stream->stop();
        stream->stop();
        EXPECT_EQ(driver.clock().step(panel, 1), 0U);
        driver.clock().advance(std::chrono::seconds(1));
    }
    EXPECT_EQ(client.lengths, std::vector<std::size_t>(6, 512));
    EXPECT_EQ(stream->start(), noErr);
    stream.reset();
    EXPECT_EQ(driver.clock().step(panel, 1), 0U);
}

TEST_F(VirtualAudioDriverTest, RunsAtEverySizeFrom16To4096AndKeepsItPerDevice) {
    KeepingClient client;
    const auto stream = startOn(monitor, client);
    std::vector<std::size_t> expected;
    for (std::uint32_t size = 16; size <= 4096; size += size < 64 ? 1 : 63) {
        ASSERT_EQ(driver.requestBufferSize(monitor, size), noErr) << size;
        ASSERT_EQ(driver.bufferSize(monitor).value(), size);
        driver.clock().step(monitor, 1);
        expected.push_back(size);
    }
    EXPECT_EQ(client.lengths, expected);
    EXPECT_EQ(stream->maximumFrames(), 4096U);
    const std::uint32_t kept = driver.bufferSize(monitor).value();
    for (const std::uint32_t refused : {0U, 15U, 4097U, 0xFFFFFFFFU})
        EXPECT_EQ(driver.requestBufferSize(monitor, refused), kAudioHardwareIllegalOperationError) << refused;
    EXPECT_EQ(driver.bufferSize(monitor).value(), kept);
    EXPECT_EQ(driver.bufferSize(panel).value(), 512U);
}

TEST_F(VirtualAudioDriverTest, TellsTheWatchesOfADeviceAboutEachNewSize) {
    ChangeLog changes;
    ChangeLog others;
    const auto other = driver.watch(panel, others.listener());
    const auto watch = driver.watch(monitor, changes.listener());
    driver.requestBufferSize(monitor, 512);
    driver.requestBufferSize(monitor, 128);
    driver.control(monitor)->changeBufferSize(333);
    driver.control(monitor)->die();
    EXPECT_THAT(
        changes.waitFor(3),
        ElementsAre(AudioDeviceChange::bufferSize, AudioDeviceChange::bufferSize, AudioDeviceChange::died)
    );
    EXPECT_THAT(others.waitFor(0), ElementsAre());
}

TEST_F(VirtualAudioDriverTest, AWatchIsNotToldAfterItsEnd) {
    ChangeLog last;
    const auto lastWatch = driver.watch(monitor, last.listener());
    for (std::uint32_t i = 0; i < 200; ++i) {
        auto calls = std::make_unique<int>(0);
        const auto watch = driver.watch(monitor, [&calls](AudioDeviceChange) { ++*calls; });
        driver.control(monitor)->changeBufferSize(100 + i);
    }
    last.waitFor(200);
}

TEST_F(VirtualAudioDriverTest, ADeviceMayAnswerARequestInItsOwnWay) {
    struct Case {
        VirtualDevice::BufferSizeAnswer answer;
        OSStatus status;
        std::uint32_t size;
    };
    const Case cases[] = {
        {[](std::uint32_t) { return kAudioHardwareUnsupportedOperationError; },
         kAudioHardwareUnsupportedOperationError, 512},
        {[](std::uint32_t) { return std::uint32_t{512}; }, noErr, 512},
        {[](std::uint32_t requested) { return requested + 1; }, noErr, 65}};
    for (const auto& [answer, status, size] : cases) {
        VirtualDevice device{.description = {"virtual:stubborn", "Stubborn", 0, 2, 48000.0}};
        device.answerBufferSize = answer;
        VirtualAudioDriver stubborn({device}, VirtualPacing::stepped, log);
        EXPECT_EQ(stubborn.requestBufferSize("virtual:stubborn", 64), status);
        EXPECT_EQ(stubborn.bufferSize("virtual:stubborn").value(), size);
    }
}

} // namespace
