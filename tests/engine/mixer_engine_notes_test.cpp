#include "mixer_engine_fixture.h"

#include "support/failing_allocation.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using namespace testing;
using engine::MixerEngine;
using test::MixerEngineTest;

void play(platform::MIDIOwnSource& source, std::int64_t note) {
    source.send(std::array<std::uint8_t, 3>{0x90, static_cast<std::uint8_t>(note), 100});
}

/// Stores the mix as a scene that the note recalls.
void storeScene(
    MixerEngine& engine, test::ManualMainThread& mainThread, platform::MIDIOwnSource& source,
    std::int64_t note
) {
    engine.newSnapshot();
    engine.beginMIDILearn();
    play(source, note);
    mainThread.runPosted();
}

// From the driver's thread while blocks run; a block may not allocate.
TEST_F(MixerEngineTest, ComesToRestAfterAStormOfNotesWithTheLastOneRecalled) {
    constexpr std::int64_t sceneCount = 8;
    constexpr int noteCount = 50000;
    const auto keys = midiDriver->createSource("Keys").value();
    mainThread.runPosted();
    startBypassed();
    for (std::int64_t scene = 0; scene < sceneCount; ++scene) {
        engine->setTrim(strips()[0].id, static_cast<double>(scene + 1) / 8.0);
        storeScene(*engine, mainThread, *keys, scene);
    }
    std::vector<std::int64_t> recalled;
    const auto keeping = engine->state().currentSnapshotIndex.subscribe([&](const auto& index) {
        recalled.push_back(*index);
    });
    std::atomic<bool> isOver = false;
    std::thread player([&] {
        for (int i = 0; i < noteCount; ++i)
            play(*keys, i % (sceneCount + 2));
        play(*keys, 5);
        isOver = true;
    });
    while (!isOver) {
        mainThread.runPosted();
        EXPECT_EQ(step(), 1U);
    }
    player.join();
    mainThread.runPosted();
    ASSERT_FALSE(recalled.empty());
    EXPECT_EQ(recalled.back(), 5);
    step();
    EXPECT_FLOAT_EQ(mainOutput->played[0], static_cast<float>(test::steadyLevel * 6.0 / 8.0));
    log.flush();
    EXPECT_THAT(lines, testing::Contains(HasSubstr("Notes came faster than their scenes can be recalled; ")));
    recalled.clear();
    mainThread.advance(std::chrono::seconds(1));
    EXPECT_THAT(recalled, IsEmpty());
}

TEST_F(MixerEngineTest, RecallsTheScenesOfAFewNotesInOrderButOnlyTheLastOfMany) {
    const auto keys = midiDriver->createSource("Keys").value();
    for (int scene = 0; scene < 2; ++scene)
        storeScene(*engine, mainThread, *keys, scene);
    std::vector<std::int64_t> recalled;
    const auto keeping = engine->state().currentSnapshotIndex.subscribe([&](const auto& index) {
        recalled.push_back(*index);
    });
    const std::pair<int, std::vector<std::int64_t>> cases[] = {
        {1, {0}}, {8, {0, 1, 0, 1, 0, 1, 0, 1}}, {9, {0}}, {1000, {1}}};
    for (const auto& [count, expected] : cases) {
        for (int i = 0; i < count; ++i)
            play(*keys, i % 2);
        mainThread.runPosted();
        EXPECT_EQ(std::exchange(recalled, {}), expected) << count;
    }
}

TEST_F(MixerEngineTest, ReceivesTheNextNoteIfMemoryRanOutForOne) {
    const auto keys = midiDriver->createSource("Keys").value();
    mainThread.runPosted();
    engine->newSnapshot();
    int lostNotes = 0;
    for (std::size_t nth = 1;; ++nth) {
        try {
            const test::FailingAllocation failing(nth);
            keys->send(std::array<std::uint8_t, 3>{0x90, 1, 100});
            if (!failing.hasHappened()) break;
            ++lostNotes;
        } catch (const std::bad_alloc&) {
            // The sender's own.
        }
        mainThread.runPosted();
        engine->beginMIDILearn();
        keys->send(std::array<std::uint8_t, 3>{0x90, 60, 100});
        mainThread.runPosted();
        EXPECT_EQ(engine->state().midiLearnTargetIndex.get(), std::nullopt) << nth;
    }
    EXPECT_GT(lostNotes, 1);
}

TEST_F(MixerEngineTest, ReceivesNotesOfTheSelectedSourceOnTheMainThread) {
    const auto& sources = engine->state().availableMIDIDevices;
    auto keys = midiDriver->createSource("Keys").value();
    const auto pads = midiDriver->createSource("Pads").value();
    EXPECT_THAT(sources.get(), IsEmpty()) << "the main thread has not run";
    mainThread.runPosted();
    const auto playOnThird = [](platform::MIDIOwnSource& source, std::uint8_t note) {
        source.send(std::array<std::uint8_t, 3>{0x92, note, 100});
    };
    const auto trigger = [this] { return engine->state().snapshots.get().at(0).midiTrigger; };
    engine->newSnapshot();
    engine->beginMIDILearn();
    playOnThird(*keys, 60);
    EXPECT_FALSE(trigger()) << "the main thread has not run";
    mainThread.runPosted();
    EXPECT_EQ(trigger(), (session::MIDITrigger{2, 60}));
    engine->selectMIDIDevice(sources.get().at(1).id);
    engine->beginMIDILearn();
    playOnThird(*keys, 62);
    mainThread.runPosted();
    EXPECT_EQ(trigger(), (session::MIDITrigger{2, 60}));
    // A note on its way to an engine that is gone is dropped.
    std::optional<MixerEngine> other(std::in_place, 1, services);
    playOnThird(*pads, 63);
    other.reset();
    mainThread.runPosted();
    EXPECT_EQ(trigger(), (session::MIDITrigger{2, 63}));
    keys.reset();
    engine->refreshMIDIDevices();
    EXPECT_EQ(sources.get().size(), 1U);
}

} // namespace
