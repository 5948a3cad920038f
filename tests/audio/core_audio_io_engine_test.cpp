#include "audio/core_audio_io_engine.h"
#include "support/fake_audio_driver.h"
#include "support/scripted_audio_hardware.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace {

using namespace orvane;
using audio::CoreAudioIOEngine;
using platform::noErr;

/// Hardware with one device, number 7, that the engine is set up for.
struct CoreAudioIOEngineSteps : testing::Test {
    CoreAudioIOEngineSteps() { hardware.devices = {{.id = 7}}; }

    /// Sets an engine up and starts it. Returns the error; empty if neither fails.
    std::string run() {
        std::string error;
        {
            CoreAudioIOEngine engine(hardware, configuration);
            auto done = engine.setup();
            if (done) done = engine.start();
            if (!done) error = done.error().description();
        }
        EXPECT_EQ(hardware.unitCount, 0) << error;
        EXPECT_EQ(hardware.listenerCount, 0) << error;
        return error;
    }

    test::ScriptedAudioHardware hardware;
    CoreAudioIOEngine::Configuration configuration{.deviceID = 7, .inputChannelCount = 3};
};

TEST_F(CoreAudioIOEngineSteps, ReportsTheStepThatFailedAndGivesEverythingBack) {
    for (const bool enableInput : {true, false}) {
        configuration.enableInput = enableInput;
        std::vector<std::string> steps = {
            "AudioComponentInstanceNew", enableInput ? "EnableIO input" : "EnableIO input (disable)",
            "EnableIO output", "CurrentDevice",
            // Setting, reading and listening to the buffer size fail without an error.
            "", "", ""};
        if (enableInput) steps.emplace_back("StreamFormat input");
        steps.insert(steps.end(), {"StreamFormat output", "MaximumFramesPerSlice"});
        if (enableInput) steps.emplace_back("SetInputCallback");
        steps.insert(steps.end(), {"SetRenderCallback", "AudioUnitInitialize", "AudioOutputUnitStart"});
        hardware.failingStep = 0;
        hardware.stepCount = 0;
        EXPECT_EQ(run(), "Could not find the AUHAL audio component.");
        for (std::size_t i = 0; i < steps.size(); ++i) {
            hardware.failingStep = i + 1;
            hardware.stepCount = 0;
            EXPECT_EQ(run(), steps[i].empty() ? "" : steps[i] + " failed: OSStatus -50") << "step " << i;
        }
    }
}

TEST_F(CoreAudioIOEngineSteps, FailsIfTheInstanceIsEmpty) {
    hardware.failures = {{"AudioComponentInstanceNew", noErr}};
    CoreAudioIOEngine engine(hardware, configuration);
    EXPECT_EQ(engine.setup().error().description(), "AudioComponentInstanceNew failed: OSStatus 0");
    EXPECT_EQ(engine.start().error().description(), "start (not set up) failed: OSStatus -50");
    EXPECT_EQ(engine.xrunCount(), 0U);
}

TEST_F(CoreAudioIOEngineSteps, SkipsTheCycleIfTheCaptureFails) {
    CoreAudioIOEngine engine(hardware, configuration);
    int handled = 0;
    engine.inputHandler = [&handled](auto, std::size_t) { ++handled; };
    ASSERT_TRUE(engine.setup());
    const auto& [inputProc, context] = hardware.inputCallback;
    hardware.failures = {{"AudioUnitRender", -10874}};
    EXPECT_EQ(inputProc(context, 64), -10874);
    hardware.failures.clear();
    EXPECT_EQ(inputProc(context, 64), noErr);
    EXPECT_EQ(handled, 1);
}

TEST_F(CoreAudioIOEngineSteps, WarnsOfADeviceThatKeepsAnotherSizeAndAdaptsToIt) {
    hardware.failures = {{"set BufferFrameSize", -50}};
    CoreAudioIOEngine engine(hardware, configuration);
    ASSERT_TRUE(engine.setup());
    EXPECT_EQ(engine.maximumFrames(), 512U);
    EXPECT_EQ(
        engine.setupWarning(),
        "This device is actually running a 512-frame buffer, not the 256 frames this app requested "
        "(buffer-size request itself returned OSStatus -50) -- some virtual-audio drivers (e.g. VB-Cable) "
        "accept a buffer-size request without honoring it. This app has adjusted its own AudioUnit to the "
        "device's real 512-frame size so audio keeps working, but you'll likely still see extra CPU load and "
        "dropped-cycle glitches (Console: \"HALC_ProxyIOContext ... out of order message\") until the "
        "device's own buffer size (check its control panel/driver settings) is changed to match what this "
        "app requests."
    );
}

TEST_F(CoreAudioIOEngineSteps, WarnsOfADeviceThatRefusesTheRequest) {
    const std::string warning =
        "This device didn't accept a 256-frame buffer size (OSStatus 1852797029) -- it may be pinned to a "
        "different size by another app also using it, or only support a fixed size. Audio will still run, "
        "but you may see dropped-cycle glitches (Console: \"HALC_ProxyIOContext ... out of order message\" "
        "or \"kAudioUnitErr_TooManyFramesToProcess\") if the device's actual buffer size doesn't match what "
        "this app expects.";
    hardware.devices[0].bufferSize = 256;
    for (const char* alsoFailing : {"nothing", "BufferFrameSize"}) {
        hardware.failures = {{"set BufferFrameSize", 1852797029}, {alsoFailing, -1}};
        CoreAudioIOEngine engine(hardware, configuration);
        ASSERT_TRUE(engine.setup());
        EXPECT_EQ(engine.setupWarning(), warning) << alsoFailing;
        EXPECT_EQ(engine.maximumFrames(), 256U);
    }
}

/// A card of 3 inputs and 3 outputs, of which an engine uses the first 2 outputs.
struct CoreAudioIOEngineTest : testing::Test, test::FakeAudioMachine {
    CoreAudioIOEngineTest()
        : FakeAudioMachine({{"fake:card", "Card", 3, 3, 44100.0}}),
          configuration{
              .sampleRate = 44100.0,
              .deviceID = hardware.AudioObjectGetPropertyData(platform::HardwareDevices{}).value()[0],
              .inputChannelCount = 3,
              .outputChannelCount = 2} {}

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

TEST_F(CoreAudioIOEngineTest, HandsOverEachCycleInSlicesOfTheAgreedLength) {
    // Plays the first two channels of what was captured.
    float captured[2][256] = {};
    std::vector<std::size_t> handled;
    handled.reserve(8);
    for (const bool enableInput : {true, false}) {
        configuration.enableInput = enableInput;
        handled.clear();
        CoreAudioIOEngine engine(hardware, configuration);
        engine.inputHandler = [&](std::span<const std::span<const float>> inputs, std::size_t frameCount) {
            handled.push_back(frameCount);
            ASSERT_EQ(inputs.size(), 3U);
            for (std::size_t channel = 0; channel < 2; ++channel)
                std::ranges::copy(inputs[channel].first(frameCount), captured[channel]);
        };
        ASSERT_TRUE(engine.setup());
        EXPECT_EQ(driver.cycle(300), (std::vector(3, std::vector<float>(300, 0.0F)))) << "no provider";
        engine.outputProvider = [&](std::span<const std::span<float>> outputs, std::size_t frameCount) {
            ASSERT_EQ(outputs.size(), 2U);
            for (std::size_t channel = 0; channel < 2; ++channel)
                std::copy_n(captured[channel], frameCount, outputs[channel].begin());
        };
        for (const std::size_t frameCount : {256U, 1U, 600U}) {
            const std::vector<std::vector<float>> played = driver.cycle(frameCount);
            if (!enableInput) continue;
            for (std::size_t i = 0; i < frameCount; ++i) {
                ASSERT_EQ(played[0][i], static_cast<float>(i) / 65536.0F) << frameCount;
                ASSERT_EQ(played[1][i], 1.0F + static_cast<float>(i) / 65536.0F) << frameCount;
                ASSERT_EQ(played[2][i], 0.0F) << "the engine has no third output";
            }
        }
        using Lengths = std::vector<std::size_t>;
        EXPECT_EQ(handled, enableInput ? (Lengths{256, 44, 256, 1, 256, 256, 88}) : Lengths{});
    }
}

TEST_F(CoreAudioIOEngineTest, ReportsADeviceThatDoesNotFitOrCannotBeOpened) {
    const auto failure = [this] {
        return CoreAudioIOEngine(hardware, configuration).setup().error().description();
    };
    driver.openAnswer = platform::kAudioDevicePermissionsError;
    EXPECT_EQ(failure(), "AudioUnitInitialize failed: OSStatus 560492391");
    configuration.sampleRate = 96000.0;
    EXPECT_EQ(failure(), "StreamFormat input failed: OSStatus -10868");
    configuration.deviceID = 99;
    EXPECT_EQ(failure(), "CurrentDevice failed: OSStatus 560227702");
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
