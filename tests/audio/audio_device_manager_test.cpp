#include "audio/audio_device_manager.h"
#include "support/scripted_audio_hardware.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace {

using namespace orvane;
using audio::AudioDeviceInfo;
using audio::AudioDeviceManager;
using test::ScriptedAudioHardware;

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
    ScriptedAudioHardware hardware;
    AudioDeviceManager manager{hardware};
};

TEST_F(AudioDeviceManagerTest, DescribesEveryDeviceInTheHardwaresOrder) {
    EXPECT_EQ(manager.allDevices().value(), (std::vector{console, player, mic}));
}

TEST_F(AudioDeviceManagerTest, FailsWhereTheListCannotBeRead) {
    hardware.failures = {{"AudioObjectGetPropertyData 1", -51}};
    EXPECT_EQ(
        manager.allDevices().error().description(),
        "Core Audio property query failed (kAudioHardwarePropertyDevices data): OSStatus -51"
    );
    hardware.failures = {{"AudioObjectGetPropertyDataSize 1", -50}};
    EXPECT_EQ(
        manager.allDevices().error().description(),
        "Core Audio property query failed (kAudioHardwarePropertyDevices size): OSStatus -50"
    );
}

TEST_F(AudioDeviceManagerTest, LeavesOutADeviceThatCannotBeDescribed) {
    for (const char* query : {"uid ", "lnam", "slay inpt", "slay outp", "nsrt"}) {
        hardware.failures = {{std::string("AudioObjectGetPropertyData 7 ") + query, -1}};
        EXPECT_EQ(manager.allDevices().value(), (std::vector{player, mic})) << query;
    }
}

TEST_F(AudioDeviceManagerTest, AsksForNoDeviceThatWentBeforeTheListWasRead) {
    hardware.afterSize = [this] {
        hardware.afterSize = nullptr;
        hardware.devices.erase(hardware.devices.begin() + 1, hardware.devices.end());
    };
    EXPECT_EQ(manager.allDevices().value(), std::vector{console});
    for (const std::string& call : hardware.calls)
        EXPECT_FALSE(call.starts_with("AudioObjectGetPropertyData 0 ")) << call;
}

TEST_F(AudioDeviceManagerTest, CountsNoChannelsWhereTheStreamsHaveNoSize) {
    hardware.failures = {{"AudioObjectGetPropertyDataSize 7 slay inpt", -1}};
    EXPECT_EQ(manager.allDevices().value().front().inputChannelCount, 0);
    EXPECT_EQ(manager.allDevices().value().front().outputChannelCount, 16);
}

TEST_F(AudioDeviceManagerTest, NamesTheQueryThatFailed) {
    hardware.failures = {{"AudioObjectGetPropertyData 7", 560947818}};
    EXPECT_EQ(
        manager.stringProperty(7, platform::kAudioDevicePropertyDeviceUID).error().description(),
        "Core Audio property query failed (string property 1969841184): OSStatus 560947818"
    );
    EXPECT_EQ(
        manager.doubleProperty(7, platform::kAudioDevicePropertyNominalSampleRate).error().description(),
        "Core Audio property query failed (double property 1853059700): OSStatus 560947818"
    );
    EXPECT_EQ(
        manager.channelCount(7, platform::kAudioObjectPropertyScopeOutput).error().description(),
        "Core Audio property query failed (kAudioDevicePropertyStreamConfiguration): OSStatus 560947818"
    );
}

TEST(AudioDeviceInfo, HashesEqualRecordsAlike) {
    const AudioDeviceInfo device{1, "uid", "name", 2, 3, 0.0};
    const AudioDeviceInfo twin{1, "uid", "name", 2, 3, -0.0};
    EXPECT_EQ(std::hash<AudioDeviceInfo>()(twin), std::hash<AudioDeviceInfo>()(device));
}

} // namespace
