#include "engine/mixer_engine.h"
#include "platform/audio_hardware/system_audio_hardware.h"
#include "platform/midi_services/system_midi_services.h"
#include "platform/virtual/virtual_audio_driver.h"
#include "support/manual_main_thread.h"
#include "support/random_blocks.h"
#include "support/scripted_audio_unit.h"
#include "support/virtual_signals.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orvane;
using engine::MixerEngine;
using session::Snapshot;
using testing::ElementsAre;
using testing::Optional;

class SnapshotsTest : public testing::Test {
  protected:
    [[nodiscard]] const std::vector<Snapshot>& scenes() const { return engine.state().snapshots.get(); }
    [[nodiscard]] std::optional<std::int64_t> selection() const {
        return engine.state().currentSnapshotIndex.get();
    }
    [[nodiscard]] std::optional<std::int64_t> learning() const {
        return engine.state().midiLearnTargetIndex.get();
    }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const Snapshot& scene : scenes())
            all.push_back(scene.name);
        return all;
    }

    platform::SystemAudioHardware hardware{{}};
    test::ManualMainThread mainThread;
    platform::SystemLog log{[](const platform::LogLine&) {}};
    test::ScriptedAudioUnitHost audioUnitHost;
    platform::SystemMIDIServices midiServices{{}};
    MixerEngine engine{4, {hardware, midiServices, mainThread, audioUnitHost, log}};
};

TEST_F(SnapshotsTest, ArePlacedNamedAndSelected) {
    engine.selectNextSnapshot();
    engine.deleteSnapshot();
    engine.beginMIDILearn();
    EXPECT_FALSE(selection() || learning());
    engine.newSnapshot();
    engine.newSnapshot();
    EXPECT_THAT(selection(), Optional(1));
    engine.newSnapshot("Verse");
    engine.selectPreviousSnapshot();
    engine.selectPreviousSnapshot();
    engine.selectPreviousSnapshot();
    engine.insertSnapshot();
    EXPECT_THAT(names(), ElementsAre("Snapshot 4", "Snapshot 1", "Snapshot 2", "Verse"));
    EXPECT_THAT(selection(), Optional(0));
    for (int i = 0; i < 9; ++i)
        engine.selectNextSnapshot();
    engine.beginMIDILearn();
    engine.handleMIDINote({2, 60});
    engine.copySnapshot();
    EXPECT_THAT(names(), ElementsAre("Snapshot 4", "Snapshot 1", "Snapshot 2", "Verse", "Verse copy"));
    EXPECT_THAT(selection(), Optional(4));
    EXPECT_TRUE(scenes()[3].midiTrigger && !scenes()[4].midiTrigger);
    engine.deleteSnapshot();
    EXPECT_THAT(selection(), Optional(3));
    for (const auto select : {&MixerEngine::selectNextSnapshot, &MixerEngine::selectPreviousSnapshot}) {
        engine.applyDocument(engine.makeDocumentData());
        EXPECT_FALSE(selection());
        (engine.*select)();
        EXPECT_THAT(selection(), Optional(0));
    }
}

TEST_F(SnapshotsTest, RecallTheMixAndNothingElse) {
    const std::vector<session::ChannelStrip> before = engine.state().channelStrips.get();
    engine.setMasterTargetDB(-20.0);
    engine.setLeadGroupGainDB(1.5);
    engine.setBackingGroupGainDB(-2.5);
    engine.setTrim(before[1].id, 0.5);
    engine.newSnapshot("Quiet");
    engine.setMasterTargetDB(-5.0);
    engine.setTrim(before[1].id, 2.0);
    engine.newSnapshot("Loud");
    engine.setMasterTargetDB(0.0);
    engine.setLeadGroupGainDB(6.0);
    engine.setBackingGroupGainDB(7.0);
    engine.setDuckerReleaseMs(1234.0);
    engine.setReferenceNoiseGain(0.25);
    engine.setBufferSize(64);
    engine.setMasterOutputChannel(3);
    engine.recallSnapshot(2);
    engine.recallSnapshot(-1);
    EXPECT_EQ(engine.state().master.get().levels.masterTargetDB, 0.0);
    engine.recallSnapshot(0);
    EXPECT_THAT(selection(), Optional(0));
    EXPECT_EQ(engine.state().master.get().levels.masterTargetDB, -20.0);
    EXPECT_EQ(engine.state().master.get().levels.leadGroupGainDB, 1.5);
    EXPECT_EQ(engine.state().master.get().levels.backingGroupGainDB, -2.5);
    EXPECT_EQ(engine.state().channelStrips.get()[1].trim, 0.5);
    EXPECT_EQ(engine.state().channelStrips.get()[1].id, before[1].id);
    EXPECT_EQ(engine.state().master.get().duckerReleaseMs, 1234.0);
    EXPECT_EQ(engine.state().master.get().referenceNoiseGain, 0.25);
    EXPECT_EQ(engine.state().bufferSize.get(), 64);
    EXPECT_EQ(
        engine.state().master.get().masterOutputRouting,
        session::MasterOutputRouting(session::output::Mono{3})
    );
    // A scene of more strips than there are, and one of fewer.
    session::MixerDocumentData document = engine.makeDocumentData();
    std::vector<session::ChannelSettingsData> channels = document.channels;
    channels.resize(6);
    document.snapshots[0].channels = channels;
    channels.resize(1);
    document.snapshots[1].channels = channels;
    engine.applyDocument(document);
    EXPECT_FALSE(selection());
    engine.recallSnapshot(1);
    EXPECT_EQ(engine.state().channelStrips.get()[1].trim, 0.5);
    EXPECT_EQ(engine.state().master.get().levels.masterTargetDB, -5.0);
    engine.recallSnapshot(0);
    EXPECT_EQ(engine.state().channelStrips.get().size(), 4U);
}

TEST_F(SnapshotsTest, AreRecalledInOrderAndKnowWhichOneIsPlayed) {
    const auto next = [&] { return engine.state().nextSnapshotIndex.get(); };
    const auto played = [&] { return engine.playedSnapshot() ? engine.playedSnapshot()->name : "none"; };
    engine.recallNextSnapshot();
    for (const char* name : {"A", "B", "C"})
        engine.newSnapshot(name);
    EXPECT_EQ(played(), "C");
    EXPECT_FALSE(next());
    engine.applyDocument(engine.makeDocumentData());
    EXPECT_EQ(played(), "none");
    for (const char* name : {"A", "B"}) {
        engine.recallNextSnapshot();
        EXPECT_EQ(played(), name);
    }
    EXPECT_THAT(next(), Optional(2));
    engine.chooseEarlierSnapshot();
    EXPECT_THAT(next(), Optional(1)) << "the same scene can be recalled again";
    engine.deleteSnapshot();
    EXPECT_EQ(played(), "none");
    engine.undoSnapshotEdit();
    EXPECT_EQ(played(), "B");

    EXPECT_FALSE(engine.hasLeftPlayedSnapshot());
    const platform::Uuid strip = engine.state().channelStrips.get()[0].id;
    engine.setTrim(strip, 0.5);
    EXPECT_TRUE(engine.hasLeftPlayedSnapshot());
    engine.recallNextSnapshot();
    EXPECT_FALSE(engine.hasLeftPlayedSnapshot());
    engine.setBackingGroupGainDB(1.0);
    EXPECT_TRUE(engine.hasLeftPlayedSnapshot());
    engine.storeSnapshot();
    EXPECT_FALSE(engine.hasLeftPlayedSnapshot());
}

TEST_F(SnapshotsTest, LearnTheNotesThatRecallThem) {
    for (int i = 0; i < 3; ++i) {
        engine.setMasterTargetDB(-i);
        engine.newSnapshot();
    }
    const session::MIDITrigger note{2, 60};
    for (const int index : {2, 1}) {
        engine.recallSnapshot(index);
        engine.setMasterTargetDB(9.0);
        engine.beginMIDILearn();
        engine.handleMIDINote(note);
        EXPECT_EQ(scenes()[static_cast<std::size_t>(index)].midiTrigger, note);
        EXPECT_FALSE(learning());
        EXPECT_EQ(engine.state().master.get().levels.masterTargetDB, 9.0)
            << "a note that is learnt recalls nothing";
    }
    engine.recallSnapshot(0);
    for (const session::MIDITrigger& other : {session::MIDITrigger{1, 60}, session::MIDITrigger{2, 61}})
        engine.handleMIDINote(other);
    EXPECT_EQ(engine.state().master.get().levels.masterTargetDB, 0.0);
    engine.handleMIDINote(note);
    EXPECT_EQ(engine.state().master.get().levels.masterTargetDB, -1.0);
    EXPECT_THAT(selection(), Optional(1));

    engine.beginMIDILearn();
    engine.cancelMIDILearn();
    engine.selectNextSnapshot();
    engine.beginMIDILearn();
    engine.deleteSnapshot();
    // The scene that was learning is gone: the note recalls, the learning stays.
    engine.handleMIDINote(note);
    EXPECT_THAT(selection(), Optional(1));
    EXPECT_THAT(learning(), Optional(2));
}

TEST(Snapshots, ArePlayedFromTheNextBlockOn) {
    constexpr std::size_t strips = 48;
    constexpr int sceneCount = 24;
    const auto output = std::make_shared<test::KeptOutput>();
    std::vector<platform::virtual_devices::VirtualDevice> devices(1);
    devices[0].description = {"virtual:big", "Big", strips, strips, 48000.0};
    devices[0].input = std::make_shared<test::SteadyInput>();
    devices[0].output = output;
    platform::SystemLog log([](const platform::LogLine&) {});
    auto driver = std::make_unique<platform::virtual_devices::VirtualAudioDriver>(
        std::move(devices), platform::virtual_devices::VirtualPacing::stepped, log
    );
    platform::virtual_devices::VirtualClock& clock = driver->clock();
    std::vector<std::unique_ptr<platform::AudioDriver>> drivers;
    drivers.push_back(std::move(driver));
    platform::SystemAudioHardware hardware(std::move(drivers));
    platform::SystemMIDIServices midiServices({});
    test::ManualMainThread mainThread;
    test::ScriptedAudioUnitHost audioUnitHost;
    MixerEngine engine(strips, {hardware, midiServices, mainThread, audioUnitHost, log});
    engine.refreshDevices();
    engine.selectDevice(engine.state().availableDevices.get().at(0));
    const std::vector<session::ChannelStrip> all = engine.state().channelStrips.get();
    for (int scene = 0; scene < sceneCount; ++scene) {
        for (std::size_t i = 0; i < strips; ++i) {
            engine.setBypassed(all[i].id, true);
            engine.setTrim(all[i].id, scene + static_cast<double>(i));
        }
        engine.newSnapshot();
        engine.beginMIDILearn();
        engine.handleMIDINote({3, scene});
    }
    engine.start();
    test::Random random(9);
    for (int recall = 0; recall < 1000; ++recall) {
        const long scene = test::wholeBetween(random, 0, sceneCount - 1);
        engine.handleMIDINote({3, scene});
        ASSERT_EQ(clock.step("virtual:big", 1), 1U);
        for (std::size_t i = 0; i < output->played.size(); ++i)
            ASSERT_EQ(
                output->played[i],
                static_cast<float>(test::steadyLevel * static_cast<double>(scene + static_cast<long>(i)))
            ) << "recall "
              << recall << ", strip " << i;
    }
}

TEST_F(SnapshotsTest, AreUndoneStepByStepAlsoWhereAListenerThrows) {
    for (int i = 0; i < 3; ++i)
        engine.newSnapshot();
    bool isThrowing = true;
    const auto throwing = engine.state().snapshots.subscribe([&](const auto&) {
        if (isThrowing) throw std::bad_alloc();
    });
    EXPECT_THROW(engine.undoSnapshotEdit(), std::bad_alloc);
    isThrowing = false;
    EXPECT_THAT(names(), ElementsAre("Snapshot 1", "Snapshot 2"));
    engine.undoSnapshotEdit();
    EXPECT_THAT(names(), ElementsAre("Snapshot 1"));
}

TEST_F(SnapshotsTest, AreNotCopiedByEditsOfOthersAndTheirUndo) {
    engine.newSnapshot();
    const session::ChannelSettingsData* const channels = scenes()[0].channels.begin();
    engine.newSnapshot();
    engine.storeSnapshot();
    engine.renameSnapshot(0, "Opening");
    engine.undoSnapshotEdit();
    EXPECT_EQ(scenes()[0].channels.begin(), channels);
}

TEST_F(SnapshotsTest, FlagRecallSafeOnlyTheSlotsThatHaveAFlag) {
    for (const std::int64_t slot : {-1, 0, 3, 4})
        engine.setRecallSafe(true, slot);
    EXPECT_EQ(engine.state().pluginSlotRecallSafe.get(), (std::vector<bool>{true, false, false}));
}

/// The rules of the list, on nothing but what tells scenes apart.
struct Model {
    struct Scene {
        std::string name;
        double content = 0.0;

        bool operator==(const Scene&) const = default;
    };
    std::vector<Scene> scenes;
    std::optional<std::size_t> selected;
    std::vector<std::vector<Scene>> history;

    void place(std::size_t position, Scene scene) {
        history.push_back(scenes);
        scenes.insert(scenes.begin() + static_cast<std::ptrdiff_t>(position), std::move(scene));
        selected = position;
    }
    [[nodiscard]] Scene fresh(double content) const {
        return {"Snapshot " + std::to_string(scenes.size() + 1), content};
    }
    void add(double content) { place(selected ? *selected + 1 : scenes.size(), fresh(content)); }
    void insert(double content) { place(selected.value_or(0), fresh(content)); }
    void store(double content) {
        if (!selected) return add(content);
        history.push_back(scenes);
        scenes[*selected].content = content;
    }
    void copy() {
        if (selected) place(*selected + 1, {scenes[*selected].name + " copy", scenes[*selected].content});
    }
    void remove() {
        if (!selected) return;
        history.push_back(scenes);
        scenes.erase(scenes.begin() + static_cast<std::ptrdiff_t>(*selected));
        settleSelection();
    }
    void undo() {
        if (history.empty()) return;
        scenes = history.back();
        history.pop_back();
        if (selected) settleSelection();
    }
    void settleSelection() {
        if (scenes.empty())
            selected.reset();
        else
            selected = std::min(*selected, scenes.size() - 1);
    }
};

TEST_F(SnapshotsTest, FollowTheRulesOfTheListWhateverIsDone) {
    test::Random random(3);
    Model model;
    for (int round = 0; round < 4000; ++round) {
        const double content = -round;
        engine.setMasterTargetDB(content);
        switch (test::wholeBetween(random, 0, 9)) {
        case 0:
            engine.newSnapshot();
            model.add(content);
            break;
        case 1:
            engine.insertSnapshot();
            model.insert(content);
            break;
        case 2:
            engine.storeSnapshot();
            model.store(content);
            break;
        case 3:
            engine.copySnapshot();
            model.copy();
            break;
        case 4:
        case 5:
            engine.deleteSnapshot();
            model.remove();
            break;
        case 6:
            // Now and then far beyond what can be undone.
            for (long undos = test::oneIn(random, 20) ? 40 : 1; undos > 0; --undos) {
                engine.undoSnapshotEdit();
                model.undo();
            }
            break;
        case 7:
            engine.selectNextSnapshot();
            if (!model.scenes.empty())
                model.selected = model.selected ? std::min(*model.selected + 1, model.scenes.size() - 1) : 0;
            break;
        case 8:
            engine.selectPreviousSnapshot();
            if (!model.scenes.empty())
                model.selected = std::max<std::size_t>(model.selected.value_or(0), 1) - 1;
            break;
        default:
            engine.renameSnapshot(0, "Opening");
            if (!model.scenes.empty()) model.scenes[0].name = "Opening";
        }
        if (model.history.size() > 25) model.history.erase(model.history.begin());
        ASSERT_EQ(scenes().size(), model.scenes.size()) << "round " << round;
        const std::int64_t none = -1;
        ASSERT_EQ(
            selection().value_or(none), model.selected ? static_cast<std::int64_t>(*model.selected) : none
        ) << "round "
          << round;
        std::set<std::string> ids;
        for (std::size_t i = 0; i < scenes().size(); ++i) {
            ASSERT_EQ((Model::Scene{scenes()[i].name, scenes()[i].levels.masterTargetDB}), model.scenes[i])
                << "round " << round << ", scene " << i;
            ids.insert(scenes()[i].id.toString());
        }
        ASSERT_EQ(ids.size(), scenes().size()) << "round " << round;
    }
}

} // namespace
