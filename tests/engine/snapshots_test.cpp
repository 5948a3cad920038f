#include "mixer_engine_fixture.h"

#include "support/random_blocks.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
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

class SnapshotsTest : public test::MixerEngineTest {
  protected:
    [[nodiscard]] const std::vector<Snapshot>& scenes() const { return engine->state().snapshots.get(); }
    [[nodiscard]] std::optional<std::int64_t> selection() const {
        return engine->state().currentSnapshotIndex.get();
    }
    [[nodiscard]] std::optional<std::int64_t> learning() const {
        return engine->state().midiLearnTargetIndex.get();
    }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const Snapshot& scene : scenes())
            all.push_back(scene.name);
        return all;
    }
};

TEST_F(SnapshotsTest, AreCopiedWithoutTheirTriggerAndLoadedUnselected) {
    engine->beginMIDILearn();
    EXPECT_FALSE(learning()) << "without a scene";
    engine->newSnapshot("Verse");
    engine->beginMIDILearn();
    engine->handleMIDINote({2, 60});
    engine->copySnapshot();
    EXPECT_THAT(names(), ElementsAre("Verse", "Verse copy"));
    EXPECT_TRUE(scenes()[0].midiTrigger && !scenes()[1].midiTrigger);
    for (const auto select : {&MixerEngine::selectNextSnapshot, &MixerEngine::selectPreviousSnapshot}) {
        engine->applyDocument(engine->makeDocumentData());
        EXPECT_FALSE(selection());
        (*engine.*select)();
        EXPECT_THAT(selection(), Optional(0));
    }
}

TEST_F(SnapshotsTest, RecallTheMixAndNothingElse) {
    const std::vector<session::ChannelStrip> before = strips();
    engine->setMasterTargetDB(-20.0);
    engine->setLeadGroupGainDB(1.5);
    engine->setBackingGroupGainDB(-2.5);
    engine->setTrim(before[1].id, 0.5);
    engine->newSnapshot("Quiet");
    engine->setMasterTargetDB(-5.0);
    engine->setTrim(before[1].id, 2.0);
    engine->newSnapshot("Loud");
    engine->setMasterTargetDB(0.0);
    engine->setLeadGroupGainDB(6.0);
    engine->setBackingGroupGainDB(7.0);
    engine->setDuckerReleaseMs(1234.0);
    engine->setReferenceNoiseGain(0.25);
    engine->setBufferSize(64);
    engine->setMasterOutputChannel(3);
    engine->recallSnapshot(2);
    engine->recallSnapshot(-1);
    session::MasterSettings expected = engine->state().master.get();
    EXPECT_EQ(expected.levels, (session::MasterLevels{0.0, 6.0, 7.0}));
    expected.levels = {-20.0, 1.5, -2.5};
    engine->recallSnapshot(0);
    EXPECT_THAT(selection(), Optional(0));
    EXPECT_EQ(engine->state().master.get(), expected);
    EXPECT_EQ(strips()[1].trim, 0.5);
    EXPECT_EQ(strips()[1].id, before[1].id);
    EXPECT_EQ(engine->state().bufferSize.get(), 64);
    // A scene of more strips than there are, and one of fewer.
    session::MixerDocumentData document = engine->makeDocumentData();
    std::vector<session::ChannelSettingsData> channels = document.channels;
    channels.resize(10);
    document.snapshots[0].channels = channels;
    channels.resize(1);
    document.snapshots[1].channels = channels;
    engine->applyDocument(document);
    EXPECT_FALSE(selection());
    engine->recallSnapshot(1);
    EXPECT_EQ(strips()[1].trim, 0.5);
    EXPECT_EQ(engine->state().master.get().levels.masterTargetDB, -5.0);
    engine->recallSnapshot(0);
    EXPECT_EQ(strips().size(), 8U);
}

TEST_F(SnapshotsTest, AreRecalledInOrderAndKnowWhichOneIsPlayed) {
    const auto next = [&] { return engine->state().nextSnapshotIndex.get(); };
    const auto played = [&] { return engine->playedSnapshot() ? engine->playedSnapshot()->name : "none"; };
    engine->recallNextSnapshot();
    for (const char* name : {"A", "B", "C"})
        engine->newSnapshot(name);
    EXPECT_EQ(played(), "C");
    EXPECT_FALSE(next());
    engine->applyDocument(engine->makeDocumentData());
    EXPECT_EQ(played(), "none");
    for (const char* name : {"A", "B"}) {
        engine->recallNextSnapshot();
        EXPECT_EQ(played(), name);
    }
    EXPECT_THAT(next(), Optional(2));
    engine->chooseEarlierSnapshot();
    EXPECT_THAT(next(), Optional(1)) << "the same scene can be recalled again";
    engine->deleteSnapshot();
    EXPECT_EQ(played(), "none");
    engine->undoSnapshotEdit();
    EXPECT_EQ(played(), "B");

    EXPECT_FALSE(engine->hasLeftPlayedSnapshot());
    const platform::Uuid strip = engine->state().channelStrips.get()[0].id;
    engine->setTrim(strip, 0.5);
    EXPECT_TRUE(engine->hasLeftPlayedSnapshot());
    engine->recallNextSnapshot();
    EXPECT_FALSE(engine->hasLeftPlayedSnapshot());
    engine->setBackingGroupGainDB(1.0);
    EXPECT_TRUE(engine->hasLeftPlayedSnapshot());
    engine->storeSnapshot();
    EXPECT_FALSE(engine->hasLeftPlayedSnapshot());
}

TEST_F(SnapshotsTest, LearnTheNotesThatRecallThem) {
    for (int i = 0; i < 3; ++i) {
        engine->setMasterTargetDB(-i);
        engine->newSnapshot();
    }
    const session::MIDITrigger note{2, 60};
    for (const int index : {2, 1}) {
        engine->recallSnapshot(index);
        engine->setMasterTargetDB(9.0);
        engine->beginMIDILearn();
        engine->handleMIDINote(note);
        EXPECT_EQ(scenes()[static_cast<std::size_t>(index)].midiTrigger, note);
        EXPECT_FALSE(learning());
        EXPECT_EQ(engine->state().master.get().levels.masterTargetDB, 9.0)
            << "a note that is learnt recalls nothing";
    }
    engine->recallSnapshot(0);
    for (const session::MIDITrigger& other : {session::MIDITrigger{1, 60}, session::MIDITrigger{2, 61}})
        engine->handleMIDINote(other);
    EXPECT_EQ(engine->state().master.get().levels.masterTargetDB, 0.0);
    engine->handleMIDINote(note);
    EXPECT_EQ(engine->state().master.get().levels.masterTargetDB, -1.0);
    EXPECT_THAT(selection(), Optional(1));

    engine->beginMIDILearn();
    engine->cancelMIDILearn();
    engine->selectNextSnapshot();
    engine->beginMIDILearn();
    engine->deleteSnapshot();
    // The scene that was learning is gone: the note recalls, the learning stays.
    engine->handleMIDINote(note);
    EXPECT_THAT(selection(), Optional(1));
    EXPECT_THAT(learning(), Optional(2));
}

TEST_F(SnapshotsTest, AreUndoneStepByStepEvenIfASubscriberThrows) {
    for (int i = 0; i < 3; ++i)
        engine->newSnapshot();
    bool isThrowing = true;
    const auto throwing = engine->state().snapshots.subscribe([&](const auto&) {
        if (isThrowing) throw std::bad_alloc();
    });
    EXPECT_THROW(engine->undoSnapshotEdit(), std::bad_alloc);
    isThrowing = false;
    EXPECT_THAT(names(), ElementsAre("Snapshot 1", "Snapshot 2"));
    engine->undoSnapshotEdit();
    EXPECT_THAT(names(), ElementsAre("Snapshot 1"));
}

TEST_F(SnapshotsTest, AreNotCopiedWhenOthersAreEditedOrUndone) {
    engine->newSnapshot();
    const session::ChannelSettingsData* const channels = scenes()[0].channels.begin();
    engine->newSnapshot();
    engine->storeSnapshot();
    engine->renameSnapshot(0, "Opening");
    engine->undoSnapshotEdit();
    EXPECT_EQ(scenes()[0].channels.begin(), channels);
}

TEST_F(SnapshotsTest, HaveARecallSafeFlagForTheFirstThreeSlots) {
    for (const std::int64_t slot : {-1, 0, 3, 4})
        engine->setRecallSafe(true, slot);
    EXPECT_EQ(engine->state().pluginSlotRecallSafe.get(), (std::vector<bool>{true, false, false}));
}

/// The rules of the list, with a name and one level for each scene.
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
    void rename() {
        if (!scenes.empty()) scenes[0].name = "Opening";
    }
    void selectNext() {
        if (!scenes.empty()) selected = selected ? std::min(*selected + 1, scenes.size() - 1) : 0;
    }
    void selectPrevious() {
        if (!scenes.empty()) selected = std::max<std::size_t>(selected.value_or(0), 1) - 1;
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

TEST_F(SnapshotsTest, MatchAPlainListAfterEveryRandomEdit) {
    test::Random random(3);
    Model model;
    double content = 0.0;
    const std::pair<std::function<void()>, std::function<void()>> edits[] = {
        {[&] { engine->newSnapshot(); }, [&] { model.add(content); }},
        {[&] { engine->insertSnapshot(); }, [&] { model.insert(content); }},
        {[&] { engine->storeSnapshot(); }, [&] { model.store(content); }},
        {[&] { engine->copySnapshot(); }, [&] { model.copy(); }},
        {[&] { engine->deleteSnapshot(); }, [&] { model.remove(); }},
        {[&] { engine->deleteSnapshot(); }, [&] { model.remove(); }},
        {[&] { engine->selectNextSnapshot(); }, [&] { model.selectNext(); }},
        {[&] { engine->selectPreviousSnapshot(); }, [&] { model.selectPrevious(); }},
        {[&] { engine->renameSnapshot(0, "Opening"); }, [&] { model.rename(); }},
        {[&] { engine->undoSnapshotEdit(); }, [&] { model.undo(); }}};
    for (int round = 0; round < 4000; ++round) {
        SCOPED_TRACE(round);
        content = -round;
        engine->setMasterTargetDB(content);
        const long chosen = test::wholeBetween(random, 0, std::ssize(edits) - 1);
        const auto& [edit, editModel] = edits[chosen];
        // Now and then far beyond what can be undone.
        const bool isUndo = chosen == std::ssize(edits) - 1;
        for (long times = isUndo && test::oneIn(random, 20) ? 40 : 1; times > 0; --times) {
            edit();
            editModel();
        }
        if (model.history.size() > 25) model.history.erase(model.history.begin());
        std::vector<Model::Scene> found;
        std::set<std::string> ids;
        for (const Snapshot& scene : scenes()) {
            found.push_back({scene.name, scene.levels.masterTargetDB});
            ids.insert(scene.id.toString());
        }
        ASSERT_EQ(found, model.scenes);
        ASSERT_EQ(selection(), model.selected);
        ASSERT_EQ(ids.size(), found.size());
    }
}

} // namespace
