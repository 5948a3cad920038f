#pragma once

#include "engine/mixer_engine.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/virtual/virtual_audio_driver.h"
#include "platform/virtual/virtual_midi_driver.h"
#include "support/driver_list.h"
#include "support/manual_main_thread.h"
#include "support/scripted_audio_unit.h"
#include "support/scripted_windows.h"
#include "support/virtual_signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::test {

/// A machine with an interface of 4 inputs and 6 outputs and a separate monitor, on stepped clocks.
class MixerEngineTest : public testing::Test {
  protected:
    explicit MixerEngineTest(std::size_t stripCount = 8, double sampleRate = 48000.0)
        : hardware(listOf<platform::AudioDriver>(makeDriver(sampleRate))),
          engine(std::make_unique<engine::MixerEngine>(stripCount, services)) {
        engine->refreshDevices();
    }

    static constexpr std::string_view interface = "virtual:interface";
    static constexpr std::string_view monitor = "virtual:monitor";

    std::unique_ptr<platform::AudioDriver> makeDriver(double sampleRate) {
        std::vector<platform::virtual_devices::VirtualDevice> devices(2);
        devices[0].description = {std::string(interface), "Interface", 4, 6, sampleRate};
        devices[0].input = std::make_shared<SteadyInput>();
        devices[0].output = mainOutput;
        devices[0].answerBufferSize = [this](std::uint32_t requested) {
            return keptBufferSize.value_or(requested);
        };
        devices[1].description = {std::string(monitor), "Monitor", 0, 2, 44100.0};
        devices[1].output = masterOutput;
        devices[1].answerBufferSize = [this](std::uint32_t requested) {
            return keptMonitorSize.value_or(requested);
        };
        auto stepped = std::make_unique<platform::virtual_devices::VirtualAudioDriver>(
            std::move(devices), platform::virtual_devices::VirtualPacing::stepped, log
        );
        driver = stepped.get();
        return stepped;
    }

    std::unique_ptr<platform::MIDIDriver> makeMIDIDriver() {
        auto made = std::make_unique<platform::virtual_devices::VirtualMIDIDriver>();
        midiDriver = made.get();
        return made;
    }

    const audio::AudioDeviceInfo& device(std::string_view uid) {
        const auto& devices = engine->state().availableDevices.get();
        return *std::ranges::find(devices, uid, &audio::AudioDeviceInfo::uid);
    }

    /// Selects the interface and starts with every strip bypassed, so that inputs are played unchanged.
    void startBypassed() {
        engine->selectDevice(device(interface));
        for (const session::ChannelStrip& strip : std::vector(strips()))
            engine->setBypassed(strip.id, true);
        engine->start();
        ASSERT_TRUE(isRunning()) << message();
    }

    std::size_t step(std::string_view uid = interface, std::size_t cycles = 1) {
        return driver->clock().step(uid, cycles);
    }

    [[nodiscard]] const std::vector<session::ChannelStrip>& strips() const {
        return engine->state().channelStrips.get();
    }
    [[nodiscard]] bool isRunning() const { return engine->state().isRunning.get(); }
    [[nodiscard]] std::string message() const { return engine->state().lastError.get().value_or(""); }

    std::optional<std::uint32_t> keptBufferSize;
    std::optional<std::uint32_t> keptMonitorSize;
    std::shared_ptr<KeptOutput> mainOutput = std::make_shared<KeptOutput>();
    std::shared_ptr<KeptOutput> masterOutput = std::make_shared<KeptOutput>();
    ManualMainThread mainThread;
    std::vector<std::string> lines;
    platform::SystemLog log{[this](const platform::LogLine& line) { lines.emplace_back(line.text); }};
    platform::virtual_devices::VirtualAudioDriver* driver = nullptr;
    platform::virtual_devices::VirtualMIDIDriver* midiDriver = nullptr;
    platform::SystemAudioHardware hardware;
    platform::SystemMIDIServices midiServices{listOf<platform::MIDIDriver>(makeMIDIDriver())};
    ScriptedAudioUnitHost audioUnitHost;
    ScriptedWindows windows;
    const engine::Services services{
        .audioHardware = hardware,
        .midiServices = midiServices,
        .mainThread = mainThread,
        .audioUnitHost = audioUnitHost,
        .log = log,
        .editorWindows = &windows};
    std::unique_ptr<engine::MixerEngine> engine;
};

} // namespace orvane::test
