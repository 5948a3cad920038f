#include "audio/core_audio_io_engine.h"
#include "support/scripted_audio_hardware.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace {

using namespace orvane;
using audio::CoreAudioIOEngine;
using platform::noErr;

/// Hardware with one device, number 7, that the engine is set up for.
struct CoreAudioIOEngineSetup : testing::Test {
    CoreAudioIOEngineSetup() { hardware.devices = {{.id = 7}}; }

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

TEST_F(CoreAudioIOEngineSetup, ReportsTheStepThatFailedAndGivesEverythingBack) {
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

TEST_F(CoreAudioIOEngineSetup, FailsIfTheInstanceIsEmpty) {
    hardware.failures = {{"AudioComponentInstanceNew", noErr}};
    CoreAudioIOEngine engine(hardware, configuration);
    EXPECT_EQ(engine.setup().error().description(), "AudioComponentInstanceNew failed: OSStatus 0");
    EXPECT_EQ(engine.start().error().description(), "start (not set up) failed: OSStatus -50");
    EXPECT_EQ(engine.xrunCount(), 0U);
}

TEST_F(CoreAudioIOEngineSetup, SkipsTheCycleIfTheCaptureFails) {
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

TEST_F(CoreAudioIOEngineSetup, WarnsOfADeviceThatKeepsAnotherSizeAndAdaptsToIt) {
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

TEST_F(CoreAudioIOEngineSetup, WarnsOfADeviceThatRefusesTheRequest) {
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

} // namespace
