#pragma once

#include "engine/mixer_engine.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/virtual/virtual_audio_driver.h"
#include "platform/virtual/virtual_midi_driver.h"
#include "support/manual_main_thread.h"
#include "support/scripted_audio_unit.h"
#include "support/virtual_signals.h"
#include "ui/windows/orvane_app.h"

#include "widgets.h"

#include <gtest/gtest.h>

#include <QDialog>

#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::test {

/// A machine for views: an interface of 4 inputs and 6 outputs and a monitor of 2 outputs on stepped clocks,
/// MIDI sources within the program, and one effect for a mono channel.
struct MixerMachine {
    std::vector<std::unique_ptr<platform::AudioDriver>> makeDrivers() {
        std::vector<platform::virtual_devices::VirtualDevice> devices(2);
        devices[0].description = {"virtual:interface", "Interface", 4, 6, 48000.0};
        devices[0].input = std::make_shared<SteadyInput>();
        devices[1].description = {"virtual:monitor", "Monitor", 0, 2, 44100.0};
        auto stepped = std::make_unique<platform::virtual_devices::VirtualAudioDriver>(
            std::move(devices), platform::virtual_devices::VirtualPacing::stepped, log
        );
        std::vector<std::unique_ptr<platform::AudioDriver>> drivers;
        drivers.push_back(std::move(stepped));
        return drivers;
    }

    std::vector<std::unique_ptr<platform::MIDIDriver>> makeMIDIDrivers() {
        auto made = std::make_unique<platform::virtual_devices::VirtualMIDIDriver>();
        midiDriver = made.get();
        std::vector<std::unique_ptr<platform::MIDIDriver>> drivers;
        drivers.push_back(std::move(made));
        return drivers;
    }

    /// A MIDI source that exists while it is held; the engine notices it once posted tasks have run.
    std::unique_ptr<platform::MIDIOwnSource> addMIDISource(std::string_view name) {
        auto source = std::move(midiDriver->createSource(name)).value();
        mainThread.runPosted();
        return source;
    }

    [[nodiscard]] engine::Services services() {
        return {
            .audioHardware = hardware,
            .midiServices = midiServices,
            .mainThread = mainThread,
            .audioUnitHost = audioUnitHost,
            .log = log};
    }

    ManualMainThread mainThread;
    platform::SystemLog log{[](const platform::LogLine&) {}};
    platform::virtual_devices::VirtualMIDIDriver* midiDriver = nullptr;
    platform::SystemAudioHardware hardware{makeDrivers()};
    platform::SystemMIDIServices midiServices{makeMIDIDrivers()};
    ScriptedAudioUnitHost audioUnitHost;
    platform::AVAudioUnitComponent effect =
        audioUnitHost.add("Warmth", {.inputChannels = {1}, .outputChannels = {1}});
};

/// An engine with three strips on such a machine, with its devices listed and none selected.
class MixerViewTest : public testing::Test {
  protected:
    MixerViewTest() { engine.refreshDevices(); }

    [[nodiscard]] const audio::AudioDeviceInfo& device(std::size_t index) const {
        return engine.state().availableDevices.get().at(index);
    }
    [[nodiscard]] const engine::EngineState& state() const { return engine.state(); }

    MixerMachine machine;
    engine::MixerEngine engine{3, machine.services()};
};

/// Windows on such a machine.
class WindowTest : public testing::Test {
  protected:
    /// Opens a window with this number of strips; 0 asks for it.
    void open(std::int64_t channels) {
        window = std::make_unique<ui::ORVANEApp>(
            ui::ORVANEApp::Parts{machine.services(), preferences}, ui::LaunchOptions{.channels = channels}
        );
        window->show();
    }

    [[nodiscard]] engine::MixerEngine& mixer() { return window->mixerRootView()->engine(); }
    [[nodiscard]] platform::Uuid strip(std::size_t index = 0) {
        return mixer().state().channelStrips.get()[index].id;
    }
    void load(std::size_t slot) {
        mixer().loadPlugin(machine.effect, slot, strip());
        machine.mainThread.runPosted();
    }
    void closeDialogs() {
        for (QDialog* dialog : window->findChildren<QDialog*>())
            dialog->reject();
        deleteWhatIsDone();
    }

    MixerMachine machine;
    platform::InMemoryPreferences preferences;
    std::unique_ptr<ui::ORVANEApp> window;
};

} // namespace orvane::test
