#include "audio/core_audio_io_engine.h"
#include "support/fake_audio_driver.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace {

using namespace orvane;
using audio::CoreAudioIOEngine;

/// A card of 3 inputs and 2 outputs, and how an engine for it is set up.
struct CoreAudioIOEngineTest : testing::Test, test::FakeAudioMachine {
    CoreAudioIOEngineTest() : FakeAudioMachine({{"fake:card", "Card", 3, 2, 44100.0}}) {
        configuration = {
            .sampleRate = 44100.0,
            .deviceID = hardware.AudioObjectGetPropertyData(platform::HardwareDevices{}).value()[0],
            .inputChannelCount = 3,
            .outputChannelCount = 2};
    }

    CoreAudioIOEngine::Configuration configuration;
};

TEST_F(CoreAudioIOEngineTest, OpensAndStartsTheDeviceAndGivesItBack) {
    for (const bool enableInput : {true, false}) {
        configuration.enableInput = enableInput;
        {
            CoreAudioIOEngine engine(hardware, configuration);
            EXPECT_EQ(engine.xrunCount(), 0U);
            ASSERT_TRUE(engine.setup());
            EXPECT_EQ(driver.opened, enableInput ? "fake:card with input" : "fake:card without input");
            EXPECT_EQ(engine.setupWarning(), std::nullopt);
            EXPECT_FALSE(driver.isRunning);
            ASSERT_TRUE(engine.start());
            EXPECT_TRUE(driver.isRunning);
            EXPECT_EQ(engine.xrunCount(), 3U);
            EXPECT_EQ(engine.realtimePriority(), 70);
            EXPECT_TRUE(engine.stop());
            EXPECT_FALSE(driver.isRunning);
        }
        EXPECT_EQ(driver.client, nullptr);
    }
}

TEST_F(CoreAudioIOEngineTest, HandsCapturedChannelsToTheHandlerAndOutputsToTheProvider) {
    std::vector<std::size_t> handled;
    handled.reserve(8);
    const auto inputHandler = [&](std::span<const std::span<const float>> captured, std::size_t frameCount) {
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
    for (const bool enableInput : {true, false}) {
        configuration.enableInput = enableInput;
        handled.clear();
        CoreAudioIOEngine engine(hardware, configuration);
        engine.inputHandler = inputHandler;
        engine.outputProvider = [](std::span<const std::span<float>> outputs, std::size_t frameCount) {
            for (std::size_t channel = 0; channel < outputs.size(); ++channel)
                for (std::size_t i = 0; i < frameCount; ++i)
                    outputs[channel][i] = static_cast<float>(channel + i);
        };
        ASSERT_TRUE(engine.setup());
        for (const std::size_t frameCount : {256U, 1U, 255U}) {
            const std::vector<std::vector<float>> played = driver.cycle(frameCount);
            for (std::size_t channel = 0; channel < 2; ++channel)
                for (std::size_t i = 0; i < frameCount; ++i)
                    ASSERT_EQ(played[channel][i], static_cast<float>(channel + i)) << frameCount;
        }
        using Lengths = std::vector<std::size_t>;
        EXPECT_EQ(handled, enableInput ? (Lengths{256, 1, 255}) : Lengths{});
    }
}

TEST_F(CoreAudioIOEngineTest, PlaysSilenceWithoutAProvider) {
    CoreAudioIOEngine engine(hardware, configuration);
    ASSERT_TRUE(engine.setup());
    EXPECT_EQ(driver.cycle(256), (std::vector<std::vector<float>>(2, std::vector<float>(256, 0.0F))));
}

TEST_F(CoreAudioIOEngineTest, ReportsEachForeignBufferSizeOnceInARow) {
    using Sizes = std::vector<std::uint32_t>;
    // A device that keeps its size stays at 512 frames, which the unit is then set up for.
    for (const bool keepsSize : {false, true}) {
        driver.keepsBufferSize = keepsSize;
        driver.frames = std::uint32_t{512};
        Sizes reported;
        const auto change = [this](platform::Result<std::uint32_t, platform::OSStatus> size) {
            driver.frames = size;
            driver.tell(platform::AudioDeviceChange::bufferSize);
        };
        {
            CoreAudioIOEngine engine(hardware, configuration);
            engine.onDeviceBufferSizeChangedExternally = [&](std::uint32_t size) {
                reported.push_back(size);
            };
            ASSERT_TRUE(engine.setup());
            for (const std::uint32_t size : {256U, 512U, 512U, 1024U, 512U, 256U, 512U})
                change(size);
            change(platform::kAudioHardwareBadDeviceError);
        }
        change(128U);
        EXPECT_EQ(reported, keepsSize ? (Sizes{1024, 512}) : (Sizes{512, 1024, 512}));
    }
}

} // namespace
