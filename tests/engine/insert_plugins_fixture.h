#pragma once

#include "engine/mixer_engine.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/virtual/virtual_audio_driver.h"
#include "support/manual_main_thread.h"
#include "support/scripted_audio_unit.h"
#include "support/scripted_windows.h"
#include "support/virtual_signals.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvane::test {

inline constexpr std::size_t stripCount = 3;

/// A mixer on a stepped device, every strip bypassed and going straight to the output of its number.
class InsertPlugins : public testing::Test {
  protected:
    InsertPlugins() {
        engine->refreshDevices();
        mono = audioUnitHost.add("Mono", {.inputChannels = {1}, .outputChannels = {1}});
        stereo = audioUnitHost.add("Stereo", {.inputChannels = {2}, .outputChannels = {2}});
    }

    std::vector<std::unique_ptr<platform::AudioDriver>> makeDrivers() {
        std::vector<platform::virtual_devices::VirtualDevice> devices(1);
        devices[0].description = {"virtual:interface", "Interface", stripCount, stripCount, 44100.0};
        devices[0].input = std::make_shared<SteadyInput>();
        devices[0].output = output;
        auto stepped = std::make_unique<platform::virtual_devices::VirtualAudioDriver>(
            std::move(devices), platform::virtual_devices::VirtualPacing::stepped, log
        );
        driver = stepped.get();
        std::vector<std::unique_ptr<platform::AudioDriver>> drivers;
        drivers.push_back(std::move(stepped));
        return drivers;
    }

    void start() {
        engine->selectDevice(engine->state().availableDevices.get().at(0));
        for (std::size_t strip = 0; strip < stripCount; ++strip)
            engine->setBypassed(id(strip), true);
        engine->start();
        ASSERT_TRUE(engine->state().isRunning.get()) << message();
    }

    /// What a strip sends out in the next block, as a multiple of what comes in.
    float heard(std::size_t strip = 0) {
        driver->clock().step("virtual:interface", 1);
        return output->played[strip] / static_cast<float>(steadyLevel);
    }

    void load(const platform::AVAudioUnitComponent& component, std::size_t slot, std::size_t strip = 0) {
        engine->loadPlugin(component, slot, id(strip));
        mainThread.runPosted();
    }

    std::shared_ptr<ScriptedAudioUnit>
    loadLive(const platform::AVAudioUnitComponent& component, std::size_t slot, std::size_t strip = 0) {
        load(component, slot, strip);
        return audioUnitHost.lastUnit();
    }

    [[nodiscard]] platform::Uuid id(std::size_t strip) const {
        return engine->state().channelStrips.get().at(strip).id;
    }
    [[nodiscard]] const session::PluginSlot& record(std::size_t slot, std::size_t strip = 0) const {
        return engine->state().channelStrips.get().at(strip).pluginSlots.at(slot);
    }
    [[nodiscard]] std::optional<plugins::PluginLoadState>
    loadState(std::size_t slot, std::size_t strip = 0) const {
        const auto& states = engine->state().pluginLoadStates.get();
        const auto found = states.find({id(strip), slot});
        return found == states.end() ? std::nullopt : std::optional(found->second);
    }
    [[nodiscard]] std::string message() const { return engine->state().lastError.get().value_or(""); }

    static platform::PropertyList::Data stateOf(double gain) {
        return platform::dataWithPropertyList({{"gain", {gain}}}).value();
    }

    std::shared_ptr<KeptOutput> output = std::make_shared<KeptOutput>();
    ManualMainThread mainThread;
    platform::SystemLog log{[](const platform::LogLine&) {}};
    platform::virtual_devices::VirtualAudioDriver* driver = nullptr;
    platform::SystemAudioHardware hardware{makeDrivers()};
    ScriptedAudioUnitHost audioUnitHost;
    platform::SystemMIDIServices midiServices{{}};
    ScriptedWindows windows;
    std::unique_ptr<engine::MixerEngine> engine = std::make_unique<engine::MixerEngine>(
        stripCount,
        engine::Services{
            .audioHardware = hardware,
            .midiServices = midiServices,
            .mainThread = mainThread,
            .audioUnitHost = audioUnitHost,
            .log = log,
            .editorWindows = &windows}
    );
    platform::AVAudioUnitComponent mono;
    platform::AVAudioUnitComponent stereo;
};

} // namespace orvane::test
