#include "insert_plugins_fixture.h"
#include "support/allocation_guard.h"
#include "support/random_blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace std::chrono_literals;

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
