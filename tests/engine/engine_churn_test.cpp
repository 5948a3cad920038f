#include "engine/mixer_engine.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/virtual_audio/virtual_audio_driver.h"
#include "support/manual_main_thread.h"
#include "support/scripted_audio_unit.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <iterator>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using engine::MixerEngine;

std::vector<platform::VirtualDevice> twoDevices() {
    std::vector<platform::VirtualDevice> devices(2);
    devices[0].description = {"virtual:a", "A", 8, 8, 48000.0};
    devices[1].description = {"virtual:b", "B", 2, 4, 44100.0};
    return devices;
}

/// Two devices that run by themselves.
class EngineChurnTest : public testing::Test {
  protected:
    EngineChurnTest()
        : hardware([this] {
              auto live = std::make_unique<platform::VirtualAudioDriver>(
                  twoDevices(), platform::VirtualPacing::live, log
              );
              driver = live.get();
              std::vector<std::unique_ptr<platform::AudioDriver>> drivers;
              drivers.push_back(std::move(live));
              return drivers;
          }()) {
        engine.refreshDevices();
        devices = engine.state().availableDevices.get();
    }

    /// One thing that an operator does, or another program, or a loose cable.
    void act() {
        const auto pick = [this](std::size_t count) { return random() % count; };
        const std::vector<session::ChannelStrip> strips = engine.state().channelStrips.get();
        const platform::Uuid strip = strips[pick(strips.size())].id;
        const auto channel = static_cast<std::int64_t>(pick(10));
        switch (pick(16)) {
        case 0:
            return engine.start();
        case 1:
            return engine.stop();
        case 2:
            return engine.setBufferSize(engine::bufferSizes[pick(std::size(engine::bufferSizes))]);
        case 3:
            return engine.selectDevice(devices[pick(devices.size())]);
        case 4:
            return engine.selectMasterOutputDevice(devices[pick(devices.size())]);
        case 5:
            return engine.setMasterStereoPair(channel);
        case 6:
            return engine.setInputChannel(strip, channel);
        case 7:
            return engine.setOutputChannel(strip, channel);
        case 8:
            return engine.setGenderMode(strip, dsp::GenderTriggerMode::male);
        case 9:
            return engine.setDuckerReleaseMs(static_cast<double>(10 + pick(1000)));
        case 10:
            return engine.applyDocument(engine.makeDocumentData());
        case 14:
            return pick(3) == 0 ? engine.undoSnapshotEdit() : engine.newSnapshot();
        case 15:
            return engine.recallSnapshot(channel);
        case 11:
            return driver->control("virtual:a")->changeBufferSize(pick(2) == 0 ? 1024 : 64);
        case 12:
            driver->control("virtual:b")->die();
            return driver->control("virtual:b")->reappear();
        default:
            return engine.setReferenceNoiseGain(static_cast<double>(pick(2)));
        }
    }

    platform::SystemLog log{[](const platform::LogLine&) {}};
    platform::VirtualAudioDriver* driver = nullptr;
    platform::SystemAudioHardware hardware;
    test::ManualMainThread mainThread;
    test::ScriptedAudioUnitHost audioUnitHost;
    platform::SystemMIDIServices midiServices{{}};
    MixerEngine engine{8, {hardware, midiServices, mainThread, audioUnitHost, log}};
    std::vector<audio::AudioDeviceInfo> devices;
    std::minstd_rand random{1};
};

// What goes wrong here, the allocation guard and the sanitizers see.
TEST_F(EngineChurnTest, SurvivesWhateverIsDoneWhileItRuns) {
    int starts = 0;
    const auto counting =
        engine.state().isRunning.subscribe([&starts](bool runs) { starts += runs ? 1 : 0; });
    for (int round = 0; round < 5000; ++round) {
        act();
        mainThread.advance(std::chrono::milliseconds(5));
        mainThread.runPosted();
    }
    EXPECT_GT(starts, 100);
    engine.stop();
    EXPECT_FALSE(engine.state().isRunning.get());
}

} // namespace
