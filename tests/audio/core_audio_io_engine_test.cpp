#include "audio/core_audio_io_engine.h"
#include "support/io_engine_harness.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
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

TEST_F(CoreAudioIOEngineTest, CannotStartWithoutSetup) {
    CoreAudioIOEngine engine(hardware, configuration);
    EXPECT_EQ(engine.start().error().description(), "start (not set up) failed: OSStatus -50");
    engine.stop();
    EXPECT_EQ(engine.xrunCount(), 0U);
    EXPECT_EQ(engine.realtimePriority(), 0);
    EXPECT_TRUE(hardware.calls.empty());
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
    hardware.xrunCount = 3;
    hardware.realtimePriority = 70;
    EXPECT_EQ(engine.xrunCount(), 3U);
    EXPECT_EQ(engine.realtimePriority(), 70);
    hardware.failures = {{"AudioUnitGetProperty", -1}};
    EXPECT_EQ(engine.xrunCount(), 0U);
    EXPECT_EQ(engine.realtimePriority(), 0);
}

TEST_F(CoreAudioIOEngineTest, HandsEachCapturedChannelToTheHandler) {
    CoreAudioIOEngine engine(hardware, configuration);
    int cycles = 0;
    engine.inputHandler =
        [&cycles](std::span<const std::span<const float>> captured, std::size_t frameCount) {
            ++cycles;
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
    for (const std::uint32_t frameCount : {256U, 1U, 0U, 255U, 256U})
        EXPECT_EQ(hardware.captureCycle(frameCount), noErr) << frameCount;
    EXPECT_EQ(cycles, 5);
}

TEST_F(CoreAudioIOEngineTest, SkipsTheHandlerWhereACaptureFails) {
    CoreAudioIOEngine engine(hardware, configuration);
    std::size_t handled = 0;
    engine.inputHandler = [&handled](auto, std::size_t frameCount) { handled += frameCount; };
    ASSERT_TRUE(engine.setup());
    for (const std::uint32_t tooMany : {257U, 8192U, 0xFFFFFFFFU})
        EXPECT_EQ(hardware.captureCycle(tooMany), platform::kAudioUnitErr_TooManyFramesToProcess) << tooMany;
    EXPECT_EQ(handled, 0U);
    EXPECT_EQ(hardware.captureCycle(256), noErr);
    EXPECT_EQ(handled, 256U);
}

TEST_F(CoreAudioIOEngineTest, CapturesAlsoWithoutAHandler) {
    CoreAudioIOEngine engine(hardware, configuration);
    ASSERT_TRUE(engine.setup());
    EXPECT_EQ(hardware.captureCycle(256), noErr);
    EXPECT_EQ(hardware.renderCalls, 1);
}

TEST_F(CoreAudioIOEngineTest, HasTheProviderFillEveryOutput) {
    CoreAudioIOEngine engine(hardware, configuration);
    engine.outputProvider = [](std::span<const std::span<float>> outputs, std::size_t frameCount) {
        for (std::size_t channel = 0; channel < outputs.size(); ++channel)
            for (std::size_t i = 0; i < frameCount; ++i)
                outputs[channel][i] = static_cast<float>(channel + i);
    };
    ASSERT_TRUE(engine.setup());
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
}

TEST_F(CoreAudioIOEngineTest, TakesACycleWithoutOutputBuffers) {
    CoreAudioIOEngine engine(hardware, configuration);
    bool isAsked = false;
    engine.outputProvider = [&isAsked](auto, std::size_t) { isAsked = true; };
    ASSERT_TRUE(engine.setup());
    EXPECT_EQ(hardware.renderCycle(256, nullptr), noErr);
    EXPECT_FALSE(isAsked);
}

} // namespace
