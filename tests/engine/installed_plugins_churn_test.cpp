#include "engine/mixer_engine.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/lv2/lv2_unit_host.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/virtual/virtual_audio_driver.h"
#include "support/manual_main_thread.h"
#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <utility>
#include <variant>
#include <vector>

namespace {

using namespace orvane;
namespace load_state = plugins::load_state;

constexpr std::size_t churnedStrips = 16;
constexpr std::size_t loads = 1000;

std::vector<std::unique_ptr<platform::AudioDriver>> liveDevice(platform::SystemLog& log) {
    std::vector<platform::virtual_devices::VirtualDevice> devices(1);
    devices[0].description = {"virtual:live", "Live", churnedStrips, churnedStrips, 48000.0};
    std::vector<std::unique_ptr<platform::AudioDriver>> drivers;
    drivers.push_back(std::make_unique<platform::virtual_devices::VirtualAudioDriver>(
        std::move(devices), platform::virtual_devices::VirtualPacing::live, log
    ));
    return drivers;
}

// What an audio thread must not do, and what leaks, the allocation guard and the sanitizers see.
TEST(InstalledPlugins, ComeAndGoAThousandTimesWhileTheMixerRuns) {
    platform::SystemLog log([](const platform::LogLine&) {});
    platform::SystemAudioHardware hardware(liveDevice(log));
    platform::SystemMIDIServices midiServices({});
    test::ManualMainThread mainThread;
    platform::lv2::Lv2UnitHost host(log);
    engine::MixerEngine engine(churnedStrips, {hardware, midiServices, mainThread, host, log});
    std::vector<platform::AVAudioUnitComponent> components;
    for (const platform::AVAudioUnitComponent& component : engine.availableInsertComponents())
        for (const char* name : {"MDA Delay", "MDA Dynamics", "x42-comp - Dynamic Compressor Mono"})
            if (component.name == name) components.push_back(component);
    ASSERT_EQ(components.size(), 3U);
    engine.refreshDevices();
    engine.selectDevice(engine.state().availableDevices.get().at(0));
    engine.setBufferSize(64);
    engine.start();
    ASSERT_TRUE(engine.state().isRunning.get());
    for (std::size_t i = 0; i < loads; ++i) {
        const plugins::PluginSlotKey key{engine.state().channelStrips.get()[i % churnedStrips].id, i % 5};
        engine.loadPlugin(components[i % components.size()], key.slot, key.stripID);
        ASSERT_TRUE(test::waitFor([&] {
            mainThread.runPosted();
            return !std::holds_alternative<load_state::Loading>(engine.state().pluginLoadStates.get().at(key)
            );
        })) << i;
        EXPECT_TRUE(std::holds_alternative<load_state::Loaded>(engine.state().pluginLoadStates.get().at(key)))
            << i;
        if (i % 2 == 0) engine.removePlugin(key.slot, key.stripID);
        mainThread.advance(std::chrono::milliseconds(10));
    }
    RecordProperty("lateCycles", static_cast<int>(engine.xrunCount()));
    EXPECT_TRUE(engine.state().isRunning.get());
}

} // namespace
