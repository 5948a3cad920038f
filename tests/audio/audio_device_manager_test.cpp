#include "audio/audio_device_manager.h"
#include "support/scripted_audio_hardware.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace orvane;
using audio::AudioDeviceInfo;
using audio::AudioDeviceManager;

/// A console, a player and a microphone.
struct AudioDeviceManagerTest : testing::Test {
    AudioDeviceManagerTest() {
        hardware.devices = {
            {.id = 7, .uid = "a:console", .name = "Console", .inputStreams = {2, 8}, .outputStreams = {16}},
            {.id = 5, .uid = "a:player", .name = "Player", .outputStreams = {2}, .sampleRate = 44100.0},
            {.id = 9, .uid = "a:mic", .name = "Mic", .inputStreams = {1}}};
    }

    const AudioDeviceInfo console{7, "a:console", "Console", 10, 16, 48000.0};
    const AudioDeviceInfo player{5, "a:player", "Player", 0, 2, 44100.0};
    const AudioDeviceInfo mic{9, "a:mic", "Mic", 1, 0, 48000.0};
    test::ScriptedAudioHardware hardware;
    AudioDeviceManager manager{hardware};
};

TEST_F(AudioDeviceManagerTest, DescribesEveryDeviceInTheHardwaresOrder) {
    EXPECT_EQ(manager.allDevices().value(), (std::vector{console, player, mic}));
    hardware.devices.clear();
    EXPECT_EQ(manager.allDevices().value(), std::vector<AudioDeviceInfo>{});
}

TEST_F(AudioDeviceManagerTest, FailsIfTheListCannotBeRead) {
    for (const std::string step : {"size", "data"}) {
        hardware.failures = {{step == "size" ? "HardwareDevices size" : "HardwareDevices data", -50}};
        EXPECT_EQ(
            manager.allDevices().error().description(),
            "Core Audio property query failed (kAudioHardwarePropertyDevices " + step + "): OSStatus -50"
        );
    }
}

TEST_F(AudioDeviceManagerTest, NamesTheQueryThatFailedAndLeavesItsDeviceOutOfTheList) {
    AudioDeviceInfo withoutInputs = console;
    withoutInputs.inputChannelCount = 0;
    AudioDeviceInfo withoutOutputs = console;
    withoutOutputs.outputChannelCount = 0;
    const struct {
        const char* query;
        AudioDeviceInfo described;
    } steps[] = {
        {"string property 1969841184", {}},
        {"string property 1819173229", {}},
        {"", withoutInputs},
        {"kAudioDevicePropertyStreamConfiguration", {}},
        {"", withoutOutputs},
        {"kAudioDevicePropertyStreamConfiguration", {}},
        {"double property 1853059700", {}}};
    for (std::size_t i = 0; i < std::size(steps); ++i) {
        const auto& [query, described] = steps[i];
        const bool fails = described.id == 0;
        hardware.stepCount = 0;
        hardware.failingStep = i + 2;
        const std::vector<AudioDeviceInfo> all = manager.allDevices().value();
        EXPECT_EQ(all, fails ? (std::vector{player, mic}) : (std::vector{described, player, mic})) << i;
        hardware.stepCount = 0;
        hardware.failingStep = i + 1;
        const auto one = manager.device(7);
        ASSERT_EQ(one.hasValue(), !fails) << i;
        EXPECT_EQ(
            fails ? one.error().description() : "",
            fails ? std::string("Core Audio property query failed (") + query + "): OSStatus -50" : ""
        );
    }
}

TEST(AudioDeviceInfo, HashesEqualRecordsAlike) {
    const AudioDeviceInfo device{1, "uid", "name", 2, 3, 0.0};
    const AudioDeviceInfo twin{1, "uid", "name", 2, 3, -0.0};
    EXPECT_EQ(std::hash<AudioDeviceInfo>()(twin), std::hash<AudioDeviceInfo>()(device));
}

} // namespace
