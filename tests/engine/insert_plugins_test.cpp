#include "insert_plugins_fixture.h"

#include "plugins/insert_components.h"

#include <gmock/gmock.h>

#include <semaphore>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace orvane;
using namespace std::chrono_literals;
using namespace test;
using plugins::PluginLoadState;
using session::PluginSlot;
using testing::ElementsAre;
namespace load_state = plugins::load_state;
using Delivery = test::ScriptedAudioUnitHost::Delivery;

TEST_F(InsertPlugins, AreSetUpStepByStepAndPlayWhenTheyAreLive) {
    startBypassed();
    audioUnitHost.delivery = Delivery::byHand;
    engine->loadPlugin(stereo, 4, id(0), stateOf(3.0));
    EXPECT_EQ(loadState(4), PluginLoadState(load_state::Loading{}));
    EXPECT_EQ(record(4).pluginName, "Stereo");
    EXPECT_EQ(record(4).presetData, stateOf(3.0));
    const std::uint8_t* const kept = record(4).presetData->begin();
    engine->setTrim(id(1), 0.5);
    EXPECT_EQ(record(4).presetData->begin(), kept) << "an edit copies no states";
    audioUnitHost.deliver();
    EXPECT_EQ(loadState(4), PluginLoadState(load_state::Loading{}));
    EXPECT_EQ(heard(), 1.0F);
    mainThread.runPosted();
    EXPECT_EQ(loadState(4), PluginLoadState(load_state::Loaded{}));
    EXPECT_EQ(heard(), 3.0F);
    EXPECT_THAT(
        audioUnitHost.lastUnit()->steps,
        ElementsAre(
            "in 44100x1", "in 44100x2", "out 44100x2", "enable in", "enable out", "frames 4096", "allocate"
        )
    );
    engine->setPluginBypassed(true, 4, id(0));
    EXPECT_EQ(heard(), 1.0F);
    engine->setPluginBypassed(false, 4, id(0));
    EXPECT_EQ(heard(), 3.0F);
    engine->setPluginBypassed(true, 4, id(0));
    engine->loadPlugin(stereo, 4, id(0), stateOf(3.0));
    EXPECT_FALSE(record(4).bypassed);
    engine->loadPlugin(mono, 0, id(0));
    deliverAll();
    audioUnitHost.lastUnit()->gain = 0.5F;
    EXPECT_EQ(heard(), 1.5F);
    engine->stop();
    engine->start();
    EXPECT_EQ(heard(), 1.5F);
    const platform::Uuid before = record(4).id;
    engine->removePlugin(4, id(0));
    EXPECT_TRUE(record(4).isEmpty());
    EXPECT_NE(record(4).id, before);
    EXPECT_EQ(loadState(4), std::nullopt);
    EXPECT_EQ(heard(), 0.5F);
    EXPECT_EQ(audioUnitHost.report.living, 1);
}

TEST_F(InsertPlugins, AreSetUpAgainForTheRateOfTheDeviceThatStarts) {
    const auto kept = loadLive(mono, 0);
    kept->gain = 2.0F;
    loadLive(audioUnitHost.add("Widens", {.lowestMonoRate = 48000.0}), 1)->gain = 3.0F;
    loadLive(audioUnitHost.add("Fixed", {.lowestRate = 48000.0}), 2)->gain = 5.0F;
    openEditor(kept);
    const auto stepsAt = [](const std::string& rate) {
        return ElementsAre(
            "in " + rate + "x1", "out " + rate + "x1", "enable in", "enable out", "frames 4096", "allocate"
        );
    };
    EXPECT_THAT(std::exchange(kept->steps, {}), stepsAt("48000"));
    startBypassed();
    EXPECT_EQ(message(), "Couldn't load Fixed: it didn't accept a mono or stereo audio format.");
    EXPECT_TRUE(std::holds_alternative<load_state::Failed>(*loadState(2)));
    EXPECT_EQ(record(2).presetData, stateOf(5.0));
    EXPECT_EQ(heard(), 2.0F * 3.0F);
    engine->stop();
    engine->start();
    EXPECT_THAT(std::exchange(kept->steps, {}), stepsAt("44100"));

    engine->stop();
    audio::AudioDeviceInfo gone = *engine->state().selectedDevice.get();
    gone.id = 1000;
    gone.sampleRate = 96000.0;
    engine->selectDevice(gone);
    engine->start();
    EXPECT_FALSE(isRunning());
    EXPECT_THAT(std::exchange(kept->steps, {}), stepsAt("96000"));
    startBypassed();
    EXPECT_EQ(message(), "");
    EXPECT_THAT(kept->steps, stepsAt("44100"));
    EXPECT_EQ(heard(), 2.0F * 3.0F);
    engine->openPluginEditor(0, id(0));
    EXPECT_EQ(kept->editorRequests, 1);
    EXPECT_EQ(audioUnitHost.report.living, 2);
    EXPECT_EQ(audioUnitHost.report.rendersWithoutResources, 0);
}

TEST_F(InsertPlugins, ReportWhyTheyCouldNotBeLoaded) {
    constexpr const char* noFormat = "Couldn't configure an audio format this plugin accepts (tried mono and "
                                     "stereo).";
    constexpr const char* refused = "Couldn't load Odd: it didn't accept a mono or stereo audio format.";
    const std::tuple<const char*, AudioUnitScript, std::optional<platform::Error>, std::string, std::string>
        cases[] = {
            {"error", {}, platform::Error{"no licence"}, "no licence", "Failed to load Odd: no licence."},
            {"sentence", {}, platform::Error{"It is old."}, "It is old.", "Failed to load Odd: It is old."},
            {"neither instance nor error",
             {},
             platform::Error{""},
             "Unknown error instantiating plugin.",
             "Failed to load Odd: unknown error."},
            {"input", {.inputChannels = {6}}, {}, noFormat, refused},
            {"output", {.inputChannels = {1}, .outputChannels = {2}}, {}, noFormat, refused},
            {"resources", {.allocates = false}, {}, noFormat, refused}};
    for (const auto& [what, script, error, failure, lastError] : cases) {
        SCOPED_TRACE(what);
        audioUnitHost.failure = error;
        load(audioUnitHost.add("Odd", script), 1);
        EXPECT_EQ(loadState(1), PluginLoadState(load_state::Failed{failure}));
        EXPECT_EQ(message(), lastError);
        EXPECT_EQ(record(1).pluginName, "Odd");
        EXPECT_EQ(audioUnitHost.report.living, 0);
    }
    audioUnitHost.failure.reset();
    loadLive(audioUnitHost.add("Generator", {.hasBusses = false}), 1);
    EXPECT_EQ(loadState(1), PluginLoadState(load_state::Loaded{}));
    load(mono, 1, 0, platform::PropertyList::Data{1, 2, 3});
    EXPECT_EQ(audioUnitHost.lastUnit()->gain, 1.0F);
    const int before = audioUnitHost.instantiations;
    engine->loadPlugin(mono, 5, id(0));
    engine->loadPlugin(mono, 0, platform::Uuid::random());
    engine->removePlugin(5, id(0));
    engine->setPluginBypassed(true, 5, id(0));
    engine->openPluginEditor(3, id(0));
    EXPECT_EQ(audioUnitHost.instantiations, before);
}

TEST_F(InsertPlugins, ReportWhichPartOfASavedStateIsLost) {
    const auto withoutFile = platform::dataWithPropertyList({{"gain", {2.0}}, {"file", {1.0}}}).value();
    const std::tuple<platform::PropertyList::Data, float, std::string> cases[] = {
        {stateOf(3.0), 3.0F, ""},
        {withoutFile, 2.0F, "Its file cannot be found."},
        {{1, 2, 3}, 1.0F, "The saved settings of Mono cannot be read; set it up again and save."}};
    std::vector<std::string> said;
    const auto listening = engine->state().lastError.subscribe([&said](const auto& sentence) {
        said.push_back(sentence.value_or(""));
    });
    for (const auto& [state, gain, sentence] : cases) {
        SCOPED_TRACE(sentence);
        said.clear();
        load(mono, 0, 0, state);
        EXPECT_EQ(loadState(0), PluginLoadState(load_state::Loaded{}));
        EXPECT_EQ(audioUnitHost.lastUnit()->gain, gain);
        load(mono, 1);
        engine->applyPluginPreset({.id = {}, .name = "Saved", .data = state}, 1, id(0));
        EXPECT_EQ(audioUnitHost.lastUnit()->gain, gain);
        EXPECT_EQ(said, std::vector(sentence.empty() ? 0 : 2, sentence));
    }
}

TEST_F(InsertPlugins, LastToArriveIsLive) {
    startBypassed();
    audioUnitHost.delivery = Delivery::byHand;
    for (const double gain : {2.0, 3.0, 4.0})
        engine->loadPlugin(mono, 0, id(0), stateOf(gain));
    engine->removePlugin(0, id(0));
    for (const auto& [which, gain] : {std::pair{1, 3.0F}, {1, 4.0F}, {0, 2.0F}}) {
        deliver(static_cast<std::size_t>(which));
        EXPECT_EQ(heard(), gain);
        EXPECT_EQ(audioUnitHost.report.living, 1);
    }
    EXPECT_TRUE(record(0).isEmpty());

    engine->loadPlugin(mono, 0, id(0));
    audioUnitHost.deliver();
    engine->loadPlugin(mono, 0, id(0));
    engine.reset();
    deliver();
    EXPECT_EQ(audioUnitHost.report.living, 0);
    EXPECT_EQ(audioUnitHost.report.rendersWithoutResources, 0);
}

TEST_F(InsertPlugins, StayReadyUntilThePassThatHoldsThemHasEnded) {
    startBypassed();
    loadLive(mono, 0)->gain = 2.0F;
    loadLive(mono, 1);
    audioUnitHost.delivery = Delivery::byHand;
    engine->loadPlugin(mono, 2, id(0));
    engine->loadPlugin(mono, 2, id(0));
    deliver();
    const auto& report = audioUnitHost.report;
    int inPass = 0;
    // Two are taken out and one is replaced while the pass that runs the first goes on.
    std::binary_semaphore passIsOn(0);
    std::binary_semaphore passMayGoOn(0);
    std::thread control([&] {
        passIsOn.acquire();
        engine->removePlugin(0, id(0));
        engine->removePlugin(1, id(0));
        deliver();
        mainThread.advance(50ms);
        inPass = report.ready;
        passMayGoOn.release();
    });
    audioUnitHost.report.onRender = [&] {
        passIsOn.release();
        passMayGoOn.acquire();
    };
    EXPECT_EQ(heard(), 2.0F);
    control.join();
    EXPECT_EQ(inPass, 4);
    EXPECT_EQ(report.ready, 4);
    mainThread.advance(10ms);
    EXPECT_EQ(report.living, 1);
    EXPECT_EQ(report.rendersWithoutResources, 0);
    EXPECT_EQ(heard(), 1.0F);
}

TEST_F(InsertPlugins, OpenAnEditorWindowPerCall) {
    auto unit = loadLive(mono, 0);
    engine->openPluginEditor(0, id(0));
    unit->giveEditor(unit);
    EXPECT_THAT(windows.log, ElementsAre());
    mainThread.runPosted();
    engine->openPluginEditor(0, id(0));
    EXPECT_EQ(unit->editorRequests, 1);
    EXPECT_THAT(windows.log, ElementsAre("Mono 15", "show", "front", "Mono 15", "show", "front"));
    windows.log.clear();
    engine->removePlugin(0, id(0));
    unit.reset();
    EXPECT_THAT(windows.log, ElementsAre());
    EXPECT_EQ(audioUnitHost.report.living, 1);
    EXPECT_EQ(audioUnitHost.report.ready, 1) << "until its host destroys it";

    windows.areClosed = true;
    unit = loadLive(mono, 0);
    openEditor(unit);
    EXPECT_THAT(windows.log, ElementsAre("gone", "gone", "Mono 15", "show", "front"));
    windows.log.clear();

    const auto plain = loadLive(audioUnitHost.add("Plain", {.hasEditor = false}), 1);
    openEditor(plain, 1);
    EXPECT_EQ(message(), "Plain doesn't have a custom editor UI.");
    unit = loadLive(mono, 2);
    engine->openPluginEditor(2, id(0));
    engine->removePlugin(2, id(0));
    unit->giveEditor(unit);
    engine.reset();
    mainThread.runPosted();
    EXPECT_THAT(windows.log, ElementsAre("gone"));
}

TEST_F(InsertPlugins, FollowTheRecordsOfALoadedSession) {
    startBypassed();
    const auto kept = loadLive(mono, 0);
    loadLive(stereo, 1);
    loadLive(stereo, 2)->gain = 6.0F;
    audioUnitHost.failure = platform::Error{"no licence"};
    load(mono, 4);
    audioUnitHost.failure.reset();
    kept->gain = 5.0F;
    session::MixerDocumentData document = engine->makeDocumentData();
    EXPECT_EQ(document.channels[0].pluginSlots[0].presetData, stateOf(5.0));
    EXPECT_EQ(record(0).presetData, std::nullopt);
    auto& slots = document.channels[0].pluginSlots;
    kept->gain = 0.5F;
    slots[1] = PluginSlot::makeEmpty();
    slots[2] = slots[0];
    slots[3] = slots[0];
    slots[3].presetData = stateOf(4.0);
    slots[4].component = session::AUComponentIdentity{1, 2, 3};
    slots[4].pluginName.reset();
    document.channels[1].pluginSlots[0] = slots[0];
    document.channels[1].pluginSlots[0].presetData = stateOf(3.0);
    document.channels[0].name = "Alto";
    document.pluginSlotRecallSafe = {false, false, true};
    const int before = audioUnitHost.instantiations;
    engine->applyDocument(document);
    mainThread.runPosted();
    EXPECT_EQ(audioUnitHost.instantiations, before + 2);
    EXPECT_EQ(heard(), 0.5F * 6.0F * 4.0F);
    EXPECT_EQ(heard(1), 3.0F);
    EXPECT_EQ(loadState(1), std::nullopt);
    EXPECT_EQ(loadState(3), PluginLoadState(load_state::Loaded{}));
    EXPECT_EQ(loadState(4), std::nullopt);
    EXPECT_EQ(record(4).component, slots[4].component);
    EXPECT_EQ(
        message(),
        "Couldn't find installed plugin \"?\" for Alto, slot 5 -- it may not be installed on this computer."
    );
    EXPECT_EQ(audioUnitHost.report.living, 4);
    // What is captured without a state keeps the one on record, or loses one that cannot be written.
    const std::string lost =
        "The settings of the plugin Ch2 slot2: Odd are not saved and have to be set again: The "
        "property list has a text that is not UTF-8 or holds a zero byte.";
    for (const auto& [script, expected, sentence] :
         {std::tuple{AudioUnitScript{.hasState = false}, std::optional(stateOf(7.0)), message()},
          {AudioUnitScript{.hasUnwritableState = true}, std::nullopt, lost}}) {
        engine->loadPlugin(audioUnitHost.add("Odd", script), 1, id(1), stateOf(7.0));
        mainThread.runPosted();
        EXPECT_EQ(engine->makeDocumentData().channels[1].pluginSlots[1].presetData, expected);
        EXPECT_EQ(message(), sentence);
    }
}

TEST_F(InsertPlugins, AreFoundUnderAnotherMakersNameAndUpdateTheirRecord) {
    startBypassed();
    loadLive(mono, 0)->gain = 3.0F;
    session::MixerDocumentData document = engine->makeDocumentData();
    auto& slot = document.channels[0].pluginSlots[0];
    slot.component->componentManufacturer = 77;
    slot.pluginName = "Old name";
    document.channels[1].pluginSlots[0] = slot;
    const int before = audioUnitHost.instantiations;
    engine->applyDocument(document);
    mainThread.runPosted();
    EXPECT_EQ(audioUnitHost.instantiations, before + 1) << "the live one of strip 1 stays";
    for (const std::size_t strip : {0U, 1U}) {
        EXPECT_EQ(heard(strip), 3.0F);
        EXPECT_EQ(record(0, strip).component, plugins::identityOf(mono));
        EXPECT_EQ(record(0, strip).pluginName, "Mono");
        EXPECT_EQ(record(0, strip).presetData, stateOf(3.0));
    }
}

TEST_F(InsertPlugins, BeyondTheFifthSlotAreOnlyKeptOnRecord) {
    loadLive(mono, 0);
    session::MixerDocumentData document = engine->makeDocumentData();
    auto& slots = document.channels[0].pluginSlots;
    slots.push_back(slots[0]);
    const int before = audioUnitHost.instantiations;
    engine->applyDocument(document);
    load(stereo, 5);
    EXPECT_EQ(audioUnitHost.instantiations, before);
    EXPECT_EQ(engine->makeDocumentData().channels[0].pluginSlots, slots);
}

TEST_F(InsertPlugins, AreNotLoadedAgainWhileTheSameLoadIsPending) {
    startBypassed();
    engine->loadPlugin(mono, 0, id(0), stateOf(2.0));
    engine->newSnapshot();
    engine->loadPlugin(mono, 0, id(0), stateOf(5.0));
    engine->newSnapshot();
    audioUnitHost.delivery = Delivery::byHand;
    engine->removePlugin(0, id(0));
    const std::pair<std::int64_t, std::size_t> recalls[] = {{0, 1}, {0, 1}, {1, 2}, {1, 2}, {0, 3}};
    for (const auto& [scene, pending] : recalls) {
        engine->recallSnapshot(scene);
        EXPECT_EQ(audioUnitHost.pendingCount(), pending);
    }
    deliverAll();
    EXPECT_EQ(heard(), 2.0F);
}

TEST_F(InsertPlugins, InRecallSafeSlotsStayUnlessASessionFindsNone) {
    startBypassed();
    engine->setRecallSafe(true, 0);
    for (std::size_t strip = 0; strip < stripCount; ++strip)
        loadLive(mono, 0, strip)->gain = 2.0F;
    const session::MixerDocumentData document = engine->makeDocumentData();
    engine->newSnapshot();
    audioUnitHost.failure = platform::Error{"no licence"};
    load(mono, 0);
    audioUnitHost.failure.reset();
    loadLive(stereo, 0, 1)->gain = 3.0F;
    audioUnitHost.delivery = Delivery::byHand;
    engine->loadPlugin(stereo, 0, id(2), stateOf(5.0));
    engine->recallSnapshot(0);
    EXPECT_EQ(audioUnitHost.pendingCount(), 1U);
    EXPECT_EQ(loadState(0), PluginLoadState(load_state::Failed{"no licence"}));
    engine->applyDocument(document);
    EXPECT_EQ(audioUnitHost.pendingCount(), 2U);
    deliverAll();
    EXPECT_EQ(heard(0), 2.0F);
    EXPECT_EQ(heard(1), 3.0F);
    EXPECT_EQ(heard(2), 5.0F);
}

TEST_F(InsertPlugins, AreCapturedByTheirOwnNamesWhateverTheirRecordsSay) {
    const auto captured = [this](std::size_t slot) {
        return engine->makeDocumentData().channels[0].pluginSlots[slot];
    };
    engine->newSnapshot();
    engine->loadPlugin(mono, 0, id(0), stateOf(2.0));
    load(mono, 1, 0, stateOf(2.0));
    engine->setPluginBypassed(true, 0, id(0));
    engine->newSnapshot();
    engine->setRecallSafe(true, 0);
    engine->setRecallSafe(true, 1);
    loadLive(stereo, 0)->gain = 3.0F;
    loadLive(audioUnitHost.add("Stateless", {.hasState = false}), 1);
    for (const int scene : {0, 1}) {
        SCOPED_TRACE(scene);
        engine->recallSnapshot(scene);
        const PluginSlot recalled = record(0);
        EXPECT_EQ(recalled.pluginName.value_or(""), scene == 0 ? "" : "Mono");
        PluginSlot expected = recalled;
        expected.pluginName = "Stereo";
        expected.component = plugins::identityOf(stereo);
        expected.presetData = stateOf(3.0);
        EXPECT_EQ(captured(0), expected);
        EXPECT_EQ(record(0), recalled);
        EXPECT_EQ(engine->livePlugin(0, id(0))->name, "Stereo");
        EXPECT_EQ(captured(1).pluginName, "Stateless");
        EXPECT_EQ(captured(1).presetData, std::nullopt);
    }
    audioUnitHost.delivery = Delivery::byHand;
    engine->loadPlugin(mono, 4, id(0));
    engine->removePlugin(4, id(0));
    deliver();
    EXPECT_TRUE(record(4).isEmpty());
    EXPECT_EQ(captured(4).component, plugins::identityOf(mono));
    engine->removePlugin(4, id(0));
    EXPECT_EQ(engine->livePlugin(4, id(0)), nullptr);
    EXPECT_TRUE(captured(4).isEmpty());
    EXPECT_EQ(audioUnitHost.listings, 0) << "though no plugin had to be found";
}

} // namespace
