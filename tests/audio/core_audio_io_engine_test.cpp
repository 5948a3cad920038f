#include "audio/core_audio_io_engine.h"
#include "support/io_engine_harness.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace orvane;
using audio::CoreAudioIOEngine;
using platform::noErr;
using Calls = std::vector<std::string>;

struct CoreAudioIOEngineTest : testing::Test, test::IOEngineHarness {
    /// The output of a device, one buffer a channel; what nobody writes stays at 99.
    struct Output {
        Output(std::size_t channels, std::uint32_t frameCount)
            : samples(channels, std::vector<float>(frameCount, 99.0F)) {
            for (std::vector<float>& channel : samples)
                buffers.push_back({1, static_cast<std::uint32_t>(frameCount * sizeof(float)), channel.data()}
                );
            list.mBuffers = buffers;
        }

        std::vector<std::vector<float>> samples;
        std::vector<platform::AudioBuffer> buffers;
        platform::AudioBufferList list;
    };
};

TEST_F(CoreAudioIOEngineTest, StartsAndStopsTheUnitAndGivesItBack) {
    {
        CoreAudioIOEngine engine(hardware, configuration);
        ASSERT_TRUE(engine.setup());
        hardware.calls.clear();
        EXPECT_TRUE(engine.start());
        engine.stop();
    }
    EXPECT_EQ(
        hardware.calls, (Calls{
                            "AudioOutputUnitStart", "AudioOutputUnitStop", "AudioOutputUnitStop",
                            "AudioObjectRemovePropertyListenerBlock 1", "AudioUnitUninitialize",
                            "AudioComponentInstanceDispose"})
    );
}

TEST_F(CoreAudioIOEngineTest, SaysThatTheStartFailed) {
    hardware.failures = {{"AudioOutputUnitStart", 1937010544}};
    CoreAudioIOEngine engine(hardware, configuration);
    ASSERT_TRUE(engine.setup());
    EXPECT_EQ(engine.start().error().description(), "AudioOutputUnitStart failed: OSStatus 1937010544");
}

TEST_F(CoreAudioIOEngineTest, ReadsLateCyclesAndPriorityFromTheUnit) {
    CoreAudioIOEngine engine(hardware, configuration);
    ASSERT_TRUE(engine.setup());
    EXPECT_EQ(engine.xrunCount(), 3U);
    EXPECT_EQ(engine.realtimePriority(), 70);
    hardware.failures = {{"AudioUnitGetProperty", -1}};
    EXPECT_EQ(engine.xrunCount(), 0U);
    EXPECT_EQ(engine.realtimePriority(), 0);
}

TEST_F(CoreAudioIOEngineTest, HandsEachCapturedChannelToTheHandlerUnlessTheCaptureFails) {
    CoreAudioIOEngine engine(hardware, configuration);
    std::vector<std::size_t> handled;
    handled.reserve(8);
    engine.inputHandler = [&](std::span<const std::span<const float>> captured, std::size_t frameCount) {
        handled.push_back(frameCount);
        ASSERT_EQ(captured.size(), 3U);
        for (std::size_t channel = 0; channel < 3; ++channel) {
            ASSERT_EQ(captured[channel].size(), frameCount);
            for (std::size_t i = 0; i < frameCount; ++i)
                ASSERT_EQ(
                    captured[channel][i], static_cast<float>(channel) + static_cast<float>(i) / 65536.0F
                );
        }
    };
    ASSERT_TRUE(engine.setup());
    for (const std::uint32_t frameCount : {256U, 257U, 1U, 0U, 0xFFFFFFFFU, 255U})
        EXPECT_EQ(
            hardware.captureCycle(frameCount),
            frameCount > 256 ? platform::kAudioUnitErr_TooManyFramesToProcess : noErr
        );
    EXPECT_EQ(handled, (std::vector<std::size_t>{256, 1, 0, 255}));
}

TEST_F(CoreAudioIOEngineTest, HasTheProviderFillEveryOutput) {
    CoreAudioIOEngine engine(hardware, configuration);
    engine.outputProvider = [](std::span<const std::span<float>> outputs, std::size_t frameCount) {
        for (std::size_t channel = 0; channel < outputs.size(); ++channel)
            for (std::size_t i = 0; i < frameCount; ++i)
                outputs[channel][i] = static_cast<float>(channel + i);
    };
    ASSERT_TRUE(engine.setup());
    EXPECT_EQ(hardware.renderCycle(256, nullptr), noErr);
    // Longer cycles than agreed and fewer buffers than asked for are the device's to decide.
    struct Cycle {
        std::size_t channels;
        std::uint32_t frameCount;
    };
    for (const Cycle cycle : {Cycle{2, 256}, Cycle{2, 8192}, Cycle{1, 64}, Cycle{2, 0}, Cycle{2, 3}}) {
        Output output(cycle.channels, cycle.frameCount);
        EXPECT_EQ(hardware.renderCycle(cycle.frameCount, &output.list), noErr);
        for (std::size_t channel = 0; channel < cycle.channels; ++channel)
            for (std::size_t i = 0; i < cycle.frameCount; ++i)
                ASSERT_EQ(output.samples[channel][i], static_cast<float>(channel + i)) << cycle.frameCount;
    }
}

TEST_F(CoreAudioIOEngineTest, PlaysSilenceWithoutAProvider) {
    CoreAudioIOEngine engine(hardware, configuration);
    ASSERT_TRUE(engine.setup());
    Output output(2, 256);
    EXPECT_EQ(hardware.renderCycle(256, &output.list), noErr);
    EXPECT_EQ(output.samples, (std::vector<std::vector<float>>(2, std::vector<float>(256, 0.0F))));
    EXPECT_EQ(hardware.captureCycle(256), noErr);
}

TEST_F(CoreAudioIOEngineTest, TellsEachForeignBufferSizeOnceInARow) {
    std::vector<std::uint32_t> told;
    // A device that refuses the request stays at 512 frames, which the unit is then set up for.
    for (const bool refuses : {false, true}) {
        hardware.devices[0].bufferSize = 512;
        hardware.failures = {{refuses ? "AudioObjectSetPropertyData" : "nothing", -1}};
        told.clear();
        CoreAudioIOEngine engine(hardware, configuration);
        engine.onDeviceBufferSizeChangedExternally = [&told](std::uint32_t size) { told.push_back(size); };
        ASSERT_TRUE(engine.setup());
        for (const std::uint32_t size : {256U, 512U, 512U, 1024U, 512U, 256U, 512U})
            hardware.changeBufferSize(7, size);
        hardware.failures = {{"AudioObjectGetPropertyData 7 fsiz", -1}};
        hardware.changeBufferSize(7, 64);
        using Sizes = std::vector<std::uint32_t>;
        EXPECT_EQ(told, refuses ? (Sizes{1024, 512}) : (Sizes{512, 1024, 512}));
    }
    hardware.failures.clear();
    hardware.changeBufferSize(7, 128);
    EXPECT_NE(told.back(), 128U);
}

TEST_F(CoreAudioIOEngineTest, MayEndWhileANotificationIsUnderWay) {
    std::atomic<bool> isOver = false;
    std::thread notifier([&] {
        for (std::uint32_t size = 300; !isOver; size = size == 300 ? 400 : 300)
            hardware.changeBufferSize(7, size);
    });
    const auto count = std::make_shared<std::atomic<int>>(0);
    for (int i = 0; i < 50; ++i) {
        CoreAudioIOEngine passing(hardware, configuration);
        const int before = *count;
        passing.onDeviceBufferSizeChangedExternally = [count](std::uint32_t) { ++*count; };
        ASSERT_TRUE(passing.setup());
        while (*count == before)
            std::this_thread::yield();
    }
    isOver = true;
    notifier.join();
}

} // namespace
