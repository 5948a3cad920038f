#include "audio/core_audio_io_engine.h"
#include "support/io_engine_harness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using namespace orvane;
using audio::CoreAudioIOEngine;
using Calls = std::vector<std::string>;

struct CoreAudioIOEngineSetup : testing::Test, test::IOEngineHarness {
    /// Fails a setup at the call that begins like `call`; what it says, and leaves the calls that follow the
    /// failure until everything is given back.
    std::string failAt(const std::string& call) {
        hardware.failures[call] = -10879;
        std::string description;
        std::size_t callsOfSetup = 0;
        {
            CoreAudioIOEngine engine(hardware, configuration);
            const auto done = engine.setup();
            if (!done) description = done.error().description();
            callsOfSetup = hardware.calls.size();
        }
        const std::string last = hardware.calls[callsOfSetup - 1];
        EXPECT_TRUE(last.starts_with(call)) << last;
        hardware.calls.erase(
            hardware.calls.begin(), hardware.calls.begin() + static_cast<std::ptrdiff_t>(callsOfSetup)
        );
        return description;
    }
};

const Calls callsForInputAndOutput = {
    "AudioComponentFindNext auou ahal appl",
    "AudioComponentInstanceNew 77",
    "AudioUnitSetProperty 2003 1 1 = 1",
    "AudioUnitSetProperty 2003 2 0 = 1",
    "AudioUnitSetProperty 2000 0 0 = 7",
    "AudioObjectSetPropertyData 7 fsiz glob = 256",
    "AudioObjectGetPropertyData 7 fsiz glob",
    "AudioObjectAddPropertyListenerBlock 7 fsiz glob",
    "AudioUnitSetProperty 8 2 1 = 44100 lpcm 41 4 1 4 3 32",
    "AudioUnitSetProperty 8 1 0 = 44100 lpcm 41 4 1 4 2 32",
    "AudioUnitSetProperty 14 0 0 = 256",
    "AudioUnitSetProperty 2005 0 0 = callback",
    "AudioUnitSetProperty 23 1 0 = callback",
    "AudioUnitInitialize"};

TEST_F(CoreAudioIOEngineSetup, TakesEveryStepInOrder) {
    CoreAudioIOEngine engine(hardware, configuration);
    EXPECT_TRUE(hardware.calls.empty());
    ASSERT_TRUE(engine.setup());
    EXPECT_EQ(hardware.calls, callsForInputAndOutput);
    EXPECT_EQ(engine.setupWarning(), std::nullopt);
}

TEST_F(CoreAudioIOEngineSetup, LeavesTheInputAloneWhereItIsNotEnabled) {
    configuration.enableInput = false;
    CoreAudioIOEngine engine(hardware, configuration);
    ASSERT_TRUE(engine.setup());
    Calls expected = callsForInputAndOutput;
    expected[2] = "AudioUnitSetProperty 2003 1 1 = 0";
    std::erase_if(expected, [](const std::string& call) {
        return call.starts_with("AudioUnitSetProperty 8 2 1")
               || call.starts_with("AudioUnitSetProperty 2005");
    });
    EXPECT_EQ(hardware.calls, expected);
}

TEST_F(CoreAudioIOEngineSetup, SaysWhichStepFailedAndGivesBackWhatWasMade) {
    struct Case {
        std::string call;
        std::string description;
        bool isListening = false;
    };
    const Case cases[] = {
        {"AudioUnitSetProperty 2003 1 1 = 1", "EnableIO input failed: OSStatus -10879"},
        {"AudioUnitSetProperty 2003 2 0", "EnableIO output failed: OSStatus -10879"},
        {"AudioUnitSetProperty 2000", "CurrentDevice failed: OSStatus -10879"},
        {"AudioUnitSetProperty 8 2 1", "StreamFormat input failed: OSStatus -10879", true},
        {"AudioUnitSetProperty 8 1 0", "StreamFormat output failed: OSStatus -10879", true},
        {"AudioUnitSetProperty 14", "MaximumFramesPerSlice failed: OSStatus -10879", true},
        {"AudioUnitSetProperty 2005", "SetInputCallback failed: OSStatus -10879", true},
        {"AudioUnitSetProperty 23", "SetRenderCallback failed: OSStatus -10879", true},
        {"AudioUnitInitialize", "AudioUnitInitialize failed: OSStatus -10879", true}};
    int listeners = 0;
    for (const Case& one : cases) {
        hardware.failures.clear();
        hardware.calls.clear();
        EXPECT_EQ(failAt(one.call), one.description);
        Calls given = {"AudioOutputUnitStop", "AudioUnitUninitialize", "AudioComponentInstanceDispose"};
        if (one.isListening)
            given.insert(
                given.begin() + 1, "AudioObjectRemovePropertyListenerBlock " + std::to_string(++listeners)
            );
        EXPECT_EQ(hardware.calls, given) << one.call;
    }
}

TEST_F(CoreAudioIOEngineSetup, SaysThatDisablingTheInputFailed) {
    configuration.enableInput = false;
    EXPECT_EQ(
        failAt("AudioUnitSetProperty 2003 1 1 = 0"), "EnableIO input (disable) failed: OSStatus -10879"
    );
}

TEST_F(CoreAudioIOEngineSetup, HasNothingToGiveBackWithoutAUnit) {
    EXPECT_EQ(failAt("AudioComponentFindNext"), "Could not find the AUHAL audio component.");
    EXPECT_EQ(hardware.calls, Calls{});
    hardware.failures.clear();
    EXPECT_EQ(failAt("AudioComponentInstanceNew"), "AudioComponentInstanceNew failed: OSStatus -10879");
    EXPECT_EQ(hardware.calls, Calls{});
    // Nor is an instance of nothing any use.
    hardware.failures = {{"AudioComponentInstanceNew", 0}};
    CoreAudioIOEngine engine(hardware, configuration);
    EXPECT_EQ(engine.setup().error().description(), "AudioComponentInstanceNew failed: OSStatus 0");
    EXPECT_EQ(engine.start().error().description(), "start (not set up) failed: OSStatus -50");
    EXPECT_EQ(engine.xrunCount(), 0U);
}

TEST_F(CoreAudioIOEngineSetup, GoesOnWithoutAListener) {
    hardware.failures = {{"AudioObjectAddPropertyListenerBlock", -1}};
    {
        CoreAudioIOEngine engine(hardware, configuration);
        EXPECT_TRUE(engine.setup());
        hardware.calls.clear();
    }
    EXPECT_EQ(
        hardware.calls,
        (Calls{"AudioOutputUnitStop", "AudioUnitUninitialize", "AudioComponentInstanceDispose"})
    );
}

TEST_F(CoreAudioIOEngineSetup, WarnsOfADeviceThatKeepsAnotherSizeAndAdaptsToIt) {
    hardware.failures = {{"AudioObjectSetPropertyData", -50}};
    CoreAudioIOEngine engine(hardware, configuration);
    ASSERT_TRUE(engine.setup());
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
    EXPECT_EQ(std::ranges::count(hardware.calls, "AudioUnitSetProperty 14 0 0 = 512"), 1);
    hardware.devices[0].bufferSize = 128;
    CoreAudioIOEngine shorter(hardware, configuration);
    ASSERT_TRUE(shorter.setup());
    EXPECT_EQ(shorter.maximumFrames(), 128U);
}

TEST_F(CoreAudioIOEngineSetup, WarnsOfADeviceThatRefusesTheRequest) {
    const std::string warning =
        "This device didn't accept a 256-frame buffer size (OSStatus 1852797029) -- it may be pinned to a "
        "different size by another app also using it, or only support a fixed size. Audio will still run, "
        "but "
        "you may see dropped-cycle glitches (Console: \"HALC_ProxyIOContext ... out of order message\" or "
        "\"kAudioUnitErr_TooManyFramesToProcess\") if the device's actual buffer size doesn't match what "
        "this "
        "app expects.";
    hardware.devices[0].bufferSize = 256;
    for (const char* alsoFailing : {"nothing", "AudioObjectGetPropertyData 7 fsiz"}) {
        hardware.failures = {{"AudioObjectSetPropertyData", 1852797029}, {alsoFailing, -1}};
        CoreAudioIOEngine engine(hardware, configuration);
        ASSERT_TRUE(engine.setup());
        EXPECT_EQ(engine.setupWarning(), warning) << alsoFailing;
        EXPECT_EQ(*(hardware.calls.end() - 4), "AudioUnitSetProperty 14 0 0 = 256");
    }
}

} // namespace
