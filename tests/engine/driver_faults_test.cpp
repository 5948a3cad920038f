#include "engine/mixer_engine.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/midi_services/system_midi_services.h"
#include "support/alsa_fixture.h"
#include "support/driver_list.h"
#include "support/fake_audio_driver.h"
#include "support/manual_main_thread.h"
#include "support/scripted_audio_hardware.h"
#include "support/scripted_audio_unit.h"
#include "support/wait_for.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace orvane;
using engine::MixerEngine;
using testing::StartsWith;

/// An engine on hardware of the test's own.
struct Mixer {
    explicit Mixer(platform::AudioHardware& audioHardware)
        : engine(4, {audioHardware, midiServices, mainThread, audioUnitHost, log}) {
        engine.refreshDevices();
    }

    [[nodiscard]] const audio::AudioDeviceInfo& device(std::size_t index) const {
        return engine.state().availableDevices.get().at(index);
    }
    [[nodiscard]] bool isRunning() const { return engine.state().isRunning.get(); }
    [[nodiscard]] std::string message() const { return engine.state().lastError.get().value_or(""); }

    platform::SystemLog log{[](const platform::LogLine&) {}};
    test::ManualMainThread mainThread;
    test::ScriptedAudioUnitHost audioUnitHost;
    platform::SystemMIDIServices midiServices{{}};
    MixerEngine engine;
};

std::vector<test::ScriptedDevice> mainAndMaster() {
    return {
        {.id = 41, .uid = "main", .name = "Main", .inputStreams = {4}, .outputStreams = {4}},
        {.id = 42, .uid = "master", .name = "Master", .outputStreams = {2}}};
}

TEST(DriverFaults, AStartOpensTheChosenDeviceOnly) {
    test::AlsaFixture alsa(
        "pcm.device { type scripted channels 4 pause 500 opened \"FOLDER/device\" }\n"
        "pcm.other { type scripted channels 4 opened \"FOLDER/other\" }\n",
        {"device", "other"}
    );
    platform::SystemAudioHardware hardware(test::listOf<platform::AudioDriver>(alsa.take()));
    Mixer mixer(hardware);
    mixer.engine.selectDevice(mixer.device(0));
    for (const char* const name : {"device", "other"})
        EXPECT_TRUE(std::filesystem::remove(alsa.folder / name)) << "as the list was made of " << name;
    mixer.engine.start();
    EXPECT_TRUE(mixer.isRunning());
    EXPECT_TRUE(std::filesystem::exists(alsa.folder / "device"));
    EXPECT_FALSE(std::filesystem::exists(alsa.folder / "other"));
    mixer.engine.stop();
}

TEST(DriverFaults, AnyCallOfAStartOnTwoDevicesMayFail) {
    const std::set<std::string_view> needed = {
        "AudioComponentFindNext", "AudioComponentInstanceNew", "EnableIO",         "CurrentDevice",
        "StreamFormat",           "MaximumFramesPerSlice",     "SetInputCallback", "SetRenderCallback",
        "AudioUnitInitialize",    "AudioOutputUnitStart"};
    std::size_t masterFailures = 0;
    for (std::size_t failing = 0;; ++failing) {
        test::ScriptedAudioHardware hardware;
        hardware.devices = mainAndMaster();
        Mixer mixer(hardware);
        mixer.engine.selectDevice(mixer.device(0));
        mixer.engine.selectMasterOutputDevice(mixer.device(1));
        hardware.failingStep = hardware.stepCount + failing;
        mixer.engine.start();
        if (hardware.failedStep.empty()) break;
        SCOPED_TRACE(testing::Message() << "step " << failing << ", " << hardware.failedStep);
        EXPECT_EQ(mixer.isRunning(), !needed.contains(hardware.failedStep));
        if (!mixer.isRunning()) {
            const bool isOfMaster =
                mixer.message().starts_with("Failed to start master output device (Master): ");
            EXPECT_TRUE(isOfMaster || mixer.message().starts_with("Failed to start audio engine: "));
            masterFailures += isOfMaster ? 1 : 0;
        }
        mixer.engine.stop();
        EXPECT_EQ(hardware.unitCount, 0);
        EXPECT_EQ(hardware.listenerCount, 0);
        mixer.engine.start();
        EXPECT_TRUE(mixer.isRunning()) << mixer.message();
    }
    EXPECT_GT(masterFailures, 5U) << "also after the main device has started";
}

TEST(DriverFaults, AFailedStartReportsItsReasonAlthoughItsDeviceDied) {
    test::FakeAudioMachine machine({{"fake:card", "Card", 2, 2, 48000.0}});
    Mixer mixer(machine.hardware);
    mixer.engine.selectDevice(mixer.device(0));
    machine.driver.whileOpening = [&] { machine.driver.tell(platform::AudioDeviceChange::died); };
    machine.driver.openAnswer = -50;
    mixer.engine.start();
    mixer.mainThread.runPosted();
    EXPECT_THAT(mixer.message(), StartsWith("Failed to start audio engine: "));
}

TEST(DriverFaults, AStartAndARestartUseTheDevicesAsTheyAre) {
    test::ScriptedAudioHardware hardware;
    hardware.devices = mainAndMaster();
    Mixer mixer(hardware);
    mixer.engine.selectDevice(mixer.device(0));
    for (const double rate : {44100.0, 96000.0}) {
        hardware.devices[0].sampleRate = rate;
        mixer.engine.start();
        EXPECT_EQ(mixer.engine.state().selectedDevice.get()->sampleRate, rate);
        EXPECT_EQ(mixer.audioUnitHost.expectedSampleRate, rate);
        hardware.devices[0].sampleRate = rate / 2.0;
        mixer.engine.setBufferSize(rate == 44100.0 ? 64 : 128);
        EXPECT_TRUE(mixer.isRunning());
        EXPECT_EQ(mixer.engine.state().selectedDevice.get()->sampleRate, rate / 2.0);
        mixer.engine.stop();
    }
}

TEST(DriverFaults, ARunFollowsItsDeviceToAnotherRateAndReportsIt) {
    test::FakeAudioMachine machine({{"fake:card", "Card", 2, 2, 48000.0}});
    Mixer mixer(machine.hardware);
    mixer.engine.selectDevice(mixer.device(0));
    mixer.engine.start();
    ASSERT_TRUE(mixer.isRunning()) << mixer.message();
    const auto tell = [&] {
        machine.driver.tell(platform::AudioDeviceChange::sampleRate);
        mixer.mainThread.runPosted();
    };
    tell();
    EXPECT_EQ(mixer.message(), "") << "told of the rate that it has";
    machine.driver.present[0].sampleRate = 44100.0;
    tell();
    EXPECT_TRUE(mixer.isRunning());
    EXPECT_EQ(mixer.engine.state().selectedDevice.get()->sampleRate, 44100.0);
    EXPECT_EQ(
        mixer.message(), "The audio device Card has changed from 48000 to 44100 Hz, so the mixer has started "
                         "again at the new rate."
    );
}

TEST(DriverFaults, AnyCallOfAStopMayFail) {
    for (std::size_t failing = 0;; ++failing) {
        test::ScriptedAudioHardware hardware;
        hardware.devices = mainAndMaster();
        Mixer mixer(hardware);
        mixer.engine.selectDevice(mixer.device(0));
        mixer.engine.selectMasterOutputDevice(mixer.device(1));
        mixer.engine.start();
        ASSERT_TRUE(mixer.isRunning());
        hardware.failingStep = hardware.stepCount + failing;
        mixer.engine.stop();
        if (hardware.failedStep.empty()) break;
        SCOPED_TRACE(hardware.failedStep);
        EXPECT_FALSE(mixer.isRunning());
        EXPECT_EQ(hardware.unitCount, 0);
        mixer.engine.start();
        EXPECT_TRUE(mixer.isRunning()) << mixer.message();
    }
}

TEST(DriverFaults, AnyCallOfAnEnumerationMayFail) {
    test::ScriptedAudioHardware hardware;
    hardware.devices = mainAndMaster();
    Mixer mixer(hardware);
    ASSERT_EQ(mixer.engine.state().availableDevices.get().size(), 2U);
    for (std::size_t failing = 0;; ++failing) {
        hardware.failedStep = {};
        hardware.failingStep = hardware.stepCount + failing;
        mixer.engine.refreshDevices();
        if (hardware.failedStep.empty()) break;
        const bool isOfTheList = hardware.failedStep.starts_with("HardwareDevices");
        EXPECT_GE(mixer.engine.state().availableDevices.get().size(), isOfTheList ? 2U : 1U)
            << hardware.failedStep << ": only a device that cannot be described is left out";
        mixer.engine.refreshDevices();
        EXPECT_EQ(mixer.engine.state().availableDevices.get().size(), 2U);
    }
    EXPECT_THAT(mixer.message(), StartsWith("Failed to enumerate audio devices: "));
}

TEST(DriverFaults, AnInterfaceThatIsUnpluggedStopsTheMixAndStartsAgainWhenItIsBack) {
    test::AlsaFixture alsa("pcm.device { type scripted channels 4 pause 500 gone \"FOLDER/gone\" }");
    platform::SystemAudioHardware hardware(test::listOf<platform::AudioDriver>(alsa.take()));
    Mixer mixer(hardware);
    mixer.engine.selectDevice(mixer.device(0));
    for (int round = 0; round < 3; ++round) {
        mixer.engine.start();
        ASSERT_TRUE(mixer.isRunning()) << mixer.message();
        alsa.folder.add("gone", "");
        ASSERT_TRUE(test::waitFor([&] {
            mixer.mainThread.runPosted();
            return !mixer.isRunning();
        }));
        EXPECT_THAT(
            mixer.message(), StartsWith("The audio device " + mixer.device(0).name + " is gone, so the mixer")
        );
        EXPECT_EQ(mixer.engine.state().audioLoss.get(), mixer.message());
        mixer.engine.start();
        EXPECT_THAT(mixer.engine.state().audioLoss.get().value_or(""), StartsWith(mixer.message()));
        EXPECT_FALSE(mixer.isRunning());
        EXPECT_THAT(mixer.message(), StartsWith("Failed to start audio engine: "));
        std::filesystem::remove(alsa.folder / "gone");
    }
    mixer.engine.start();
    EXPECT_TRUE(mixer.isRunning()) << mixer.message();
}

} // namespace
