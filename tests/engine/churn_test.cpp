#include "insert_plugins_fixture.h"
#include "platform/lv2/lv2_unit_host.h"
#include "soak/choices.h"
#include "soak/random_operator.h"
#include "soak/stage.h"
#include "support/allocation_guard.h"
#include "support/random_blocks.h"
#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

// What an audio thread must not do, and what leaks, is detected by the allocation guard and the sanitizers.

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace std::chrono_literals;

TEST(EngineChurn, SurvivesRandomOperationsWhileItRuns) {
    soak::Choices choices{std::uint64_t{1}};
    soak::Stage stage({.pacing = platform::virtual_devices::VirtualPacing::live});
    soak::RandomOperator person(stage, choices);
    int starts = 0;
    const auto counting =
        stage.engine.state().isRunning.subscribe([&starts](bool runs) { starts += runs ? 1 : 0; });
    for (int round = 0; round < 5000; ++round) {
        person.act();
        stage.mainThread.advance(std::chrono::milliseconds(5));
    }
    EXPECT_GT(starts, 100);
    stage.engine.stop();
    EXPECT_FALSE(stage.engine.state().isRunning.get());
}

class InstalledPlugins : public InsertPlugins {};

TEST_F(InstalledPlugins, ComeAndGoAThousandTimesWhileTheMixerRuns) {
    constexpr std::size_t churnedStrips = 16;
    std::vector<platform::virtual_devices::VirtualDevice> devices(1);
    devices[0].description = {"virtual:live", "Live", churnedStrips, churnedStrips, 48000.0};
    platform::SystemAudioHardware liveHardware(
        listOf<platform::AudioDriver>(std::make_unique<platform::virtual_devices::VirtualAudioDriver>(
            std::move(devices), platform::virtual_devices::VirtualPacing::live, log
        ))
    );
    platform::lv2::Lv2UnitHost host(log);
    engine::MixerEngine mixer(churnedStrips, {liveHardware, midiServices, mainThread, host, log});
    std::vector<platform::AVAudioUnitComponent> components;
    for (const platform::AVAudioUnitComponent& component : mixer.availableInsertComponents())
        for (const char* name : {"MDA Delay", "MDA Dynamics", "x42-comp - Dynamic Compressor Mono"})
            if (component.name == name) components.push_back(component);
    ASSERT_EQ(components.size(), 3U);
    mixer.refreshDevices();
    mixer.selectDevice(mixer.state().availableDevices.get().at(0));
    mixer.setBufferSize(64);
    mixer.start();
    for (std::size_t i = 0; i < 1000; ++i) {
        const plugins::PluginSlotKey key{mixer.state().channelStrips.get()[i % churnedStrips].id, i % 5};
        mixer.loadPlugin(components[i % components.size()], key.slot, key.stripID);
        const auto loadState = [&] { return mixer.state().pluginLoadStates.get().at(key); };
        ASSERT_TRUE(waitFor([&] {
            mainThread.runPosted();
            return loadState() != plugins::PluginLoadState(plugins::load_state::Loading{});
        })) << i;
        EXPECT_EQ(loadState(), plugins::PluginLoadState(plugins::load_state::Loaded{})) << i;
        if (i % 2 == 0) mixer.removePlugin(key.slot, key.stripID);
        mainThread.advance(10ms);
    }
    EXPECT_TRUE(mixer.state().isRunning.get());
}

/// Something that a user or a recall does, to any slot.
void edit(engine::MixerEngine& engine, const ScriptedAudioUnitHost& host, Random& random) {
    const auto strip = static_cast<std::size_t>(wholeBetween(random, 0, stripCount - 1));
    const platform::Uuid id = engine.state().channelStrips.get()[strip].id;
    const auto slot = static_cast<std::size_t>(wholeBetween(random, 0, 4));
    switch (wholeBetween(random, 0, 6)) {
    case 0:
        return engine.removePlugin(slot, id);
    case 1:
        return engine.setPluginBypassed(oneIn(random, 2), slot, id);
    case 2:
        engine.copyPlugin(slot, id);
        engine.togglePasteArm();
        engine.handleClipboardClick(slot, id);
        return;
    case 3: {
        session::MixerDocumentData document = engine.makeDocumentData();
        std::ranges::shuffle(document.channels[strip].pluginSlots, random);
        document.pluginSlotRecallSafe = {oneIn(random, 2), false};
        return engine.applyDocument(document);
    }
    case 4:
        return engine.setTrim(id, numberBetween(random, 0.0, 1.0));
    default:
        return engine.loadPlugin(host.components.at(oneIn(random, 2) ? 0 : 1), slot, id);
    }
}

TEST_F(InsertPlugins, ChangeInEveryWayWhilePassesRun) {
    startBypassed();
    audioUnitHost.delivery = ScriptedAudioUnitHost::Delivery::fromAnotherThread;
    std::atomic<bool> isOver = false;
    std::atomic<int> blocks = 0;
    int wild = 0;
    std::thread audioThread([&] {
        const AllocationGuard guard;
        while (!isOver) {
            step();
            wild += std::ranges::all_of(mainOutput->played, [](float x) { return std::isfinite(x); }) ? 0 : 1;
            ++blocks;
            std::this_thread::yield();
        }
    });
    Random random(21);
    for (int round = 0; round < 500; ++round) {
        const int before = blocks;
        edit(*engine, audioUnitHost, random);
        if (oneIn(random, 3)) audioUnitHost.joinThreads();
        mainThread.runPosted();
        if (oneIn(random, 2)) mainThread.advance(10ms);
        log.flush();
        if (oneIn(random, 10))
            while (blocks == before)
                std::this_thread::yield();
    }
    audioUnitHost.joinThreads();
    mainThread.runPosted();
    for (std::size_t strip = 0; strip < stripCount; ++strip)
        for (std::size_t slot = 0; slot < 5; ++slot)
            engine->removePlugin(slot, id(strip));
    while (audioUnitHost.report.living > 0)
        mainThread.advance(10ms);
    isOver = true;
    audioThread.join();
    EXPECT_EQ(audioUnitHost.report.rendersWithoutResources, 0);
    EXPECT_EQ(wild, 0);
    EXPECT_GT(audioUnitHost.instantiations, 100);
}

} // namespace
