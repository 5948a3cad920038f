#include "insert_plugins_fixture.h"

#include "support/file_faults.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <functional>
#include <memory>
#include <tuple>

namespace {

using namespace orvane;
using namespace test;
using enum plugins::PluginClipboardArmState;
using Delivery = test::ScriptedAudioUnitHost::Delivery;

class PluginOperations : public test::InsertPlugins {};

TEST_F(PluginOperations, MoveThroughTheClipboard) {
    const auto& armState = engine->state().pluginClipboardArmState;
    const auto& clipboard = engine->state().pluginClipboard;
    engine->togglePasteArm();
    EXPECT_EQ(armState.get(), none);
    EXPECT_FALSE(engine->handleClipboardClick(0, id(0)));
    engine->toggleCopyArm();
    EXPECT_TRUE(engine->handleClipboardClick(0, id(0)));
    EXPECT_EQ(message(), "That insert slot is empty -- nothing to copy.");
    EXPECT_EQ(armState.get(), none);
    EXPECT_FALSE(clipboard.get());

    loadLive(stereo, 0)->gain = 2.0F;
    const std::tuple<const char*, std::function<void()>, plugins::PluginClipboardArmState> steps[] = {
        {"arm copy", [&] { engine->toggleCopyArm(); }, armedForCopy},
        {"paste with nothing", [&] { engine->togglePasteArm(); }, armedForCopy},
        {"disarm copy", [&] { engine->toggleCopyArm(); }, none},
        {"arm again", [&] { engine->toggleCopyArm(); }, armedForCopy},
        {"copy", [&] { EXPECT_TRUE(engine->handleClipboardClick(0, id(0))); }, none},
        {"arm paste", [&] { engine->togglePasteArm(); }, armedForPaste},
        {"copy instead", [&] { engine->toggleCopyArm(); }, armedForCopy},
        {"paste instead", [&] { engine->togglePasteArm(); }, armedForPaste},
        {"disarm paste", [&] { engine->togglePasteArm(); }, none},
        {"paste once more", [&] { engine->togglePasteArm(); }, armedForPaste},
        {"cancel", [&] { engine->cancelClipboardArm(); }, none},
        {"and arm", [&] { engine->togglePasteArm(); }, armedForPaste}};
    for (const auto& [what, act, after] : steps) {
        act();
        EXPECT_EQ(armState.get(), after) << what;
    }
    EXPECT_EQ(clipboard.get(), (plugins::CopiedPlugin{stereo, "Stereo", stateOf(2.0)}));
    engine->removePlugin(0, id(0));
    for (std::size_t strip = 0; strip < stripCount; ++strip)
        EXPECT_TRUE(engine->handleClipboardClick(3, id(strip)));
    mainThread.runPosted();
    EXPECT_EQ(audioUnitHost.report.living, 3);
    EXPECT_EQ(armState.get(), armedForPaste);
    startBypassed();
    EXPECT_EQ(heard(2), 2.0F);
}

TEST_F(PluginOperations, UndoPastesWithTheSettingsThatWereThere) {
    const auto gain = [&](std::size_t slot) { return engine->pluginSettings(slot, id(0)); };
    loadLive(stereo, 0)->gain = 2.0F;
    loadLive(stereo, 1)->gain = 5.0F;
    engine->setPluginBypassed(true, 1, id(0));
    engine->copyPlugin(0, id(0));
    engine->togglePasteArm();
    for (const std::size_t slot : {1U, 2U, 3U})
        EXPECT_TRUE(engine->handleClipboardClick(slot, id(0)));
    mainThread.runPosted();
    EXPECT_EQ(gain(1), gain(0));
    load(mono, 3);
    engine->undoPaste();
    EXPECT_EQ(record(3).pluginName, mono.name) << "a plugin chosen since then stays";
    EXPECT_TRUE(record(2).isEmpty());
    EXPECT_TRUE(engine->state().canUndoPaste.get());
    engine->undoPaste();
    mainThread.runPosted();
    EXPECT_EQ(gain(1), stateOf(5.0));
    EXPECT_TRUE(record(1).bypassed);
    EXPECT_FALSE(engine->state().canUndoPaste.get());
    engine->handleClipboardClick(1, id(0));
    engine->applyDocument(engine->makeDocumentData());
    EXPECT_FALSE(engine->state().canUndoPaste.get()) << "the session is another one";
}

TEST_F(PluginOperations, SaveThePresetsOfAllChannelsInOneWrite) {
    const test::TemporaryFolder folder;
    engine::Services saving = services;
    saving.applicationSupport = folder / "";
    engine = std::make_unique<engine::MixerEngine>(stripCount, saving);
    for (std::size_t strip = 0; strip < stripCount; ++strip)
        load(mono, 0, strip);
    // As many as it takes for none to be hit by a fault.
    const auto fileCalls = [](const std::function<void()>& save) {
        for (std::size_t call = 0;; ++call) {
            const test::FileFault fault(call, EIO);
            save();
            if (!fault.hasHappened()) return call;
        }
    };
    const std::size_t ofOne = fileCalls([this] { engine->savePluginPreset("One", 0, id(0)); });
    EXPECT_EQ(fileCalls([this] { engine->savePluginPresetOnAllChannels("All", 0); }), ofOne);
    EXPECT_EQ(fileCalls([this] { engine->savePluginPresetOnAllChannels("None", 1); }), 0U);
}

TEST_F(PluginOperations, KeepTheirSettingsAsPresets) {
    loadLive(mono, 0, 0)->gain = 2.0F;
    const auto second = loadLive(stereo, 0, 2);
    second->gain = 3.0F;
    engine->savePluginPresetOnAllChannels("Loud", 0);
    const session::AUComponentIdentity identity{platform::kAudioUnitType_Effect, 2, 1};
    const auto presets = engine->pluginPresets(identity);
    ASSERT_EQ(presets.size(), 1U);
    EXPECT_EQ(presets[0].name, "Loud");
    EXPECT_EQ(presets[0].data, stateOf(3.0));
    EXPECT_EQ(engine->pluginPresets({platform::kAudioUnitType_Effect, 1, 1}).size(), 1U);
    EXPECT_EQ(message(), "");
    second->gain = 1.0F;
    engine->applyPluginPreset(presets[0], 0, id(2));
    EXPECT_EQ(second->gain, 3.0F);
    engine->deletePluginPreset(presets[0].id, identity);
    EXPECT_TRUE(engine->pluginPresets(identity).empty());
    for (const auto& [script, expected] :
         {std::pair{
              AudioUnitScript{.hasState = false},
              "Odd has no state to save yet -- change a setting on it first."},
          {AudioUnitScript{.hasUnwritableState = true}, "Couldn't save a preset for Odd."}}) {
        loadLive(audioUnitHost.add("Odd", script), 1);
        engine->savePluginPreset("x", 1, id(0));
        EXPECT_EQ(message(), expected);
        engine->copyPlugin(1, id(0));
        EXPECT_EQ(engine->state().pluginClipboard.get()->stateData, std::nullopt);
    }
}

TEST_F(PluginOperations, ApplyAFactoryPresetToALivePluginOnceItIsRead) {
    const auto unit = loadLive(mono, 0);
    audioUnitHost.presets = {{7, "Loud", "Bank"}};
    EXPECT_EQ(engine->factoryPresets(0, id(0)), audioUnitHost.presets);
    EXPECT_TRUE(engine->factoryPresets(1, id(0)).empty());
    audioUnitHost.presetState = platform::PropertyList::Dictionary{{"gain", {3.0}}};
    audioUnitHost.delivery = Delivery::byHand;
    engine->applyFactoryPreset(audioUnitHost.presets[0], 0, id(0));
    engine->applyFactoryPreset(audioUnitHost.presets[0], 1, id(0));
    ASSERT_EQ(audioUnitHost.pendingCount(), 1U);
    audioUnitHost.deliver();
    EXPECT_EQ(unit->gain, 1.0F);
    mainThread.runPosted();
    EXPECT_EQ(unit->gain, 3.0F);
    EXPECT_EQ(engine->makeDocumentData().channels[0].pluginSlots[0].presetData, stateOf(3.0));
    EXPECT_EQ(message(), "");

    const std::pair<decltype(audioUnitHost.presetState), const char*> failures[] = {
        {platform::Error{"It cannot be read."}, "It cannot be read."},
        {platform::PropertyList::Dictionary{{"file", {1.0}}}, "Its file cannot be found."}};
    for (const auto& [state, sentence] : failures) {
        audioUnitHost.presetState = state;
        engine->applyFactoryPreset(audioUnitHost.presets[0], 0, id(0));
        deliver();
        EXPECT_EQ(message(), sentence);
    }

    audioUnitHost.presetState = platform::PropertyList::Dictionary{{"gain", {5.0}}};
    engine->applyFactoryPreset(audioUnitHost.presets[0], 0, id(0));
    engine->loadPlugin(mono, 0, id(0));
    deliver(1);
    const auto other = audioUnitHost.lastUnit();
    deliver();
    EXPECT_EQ(unit->gain, 3.0F);
    EXPECT_EQ(other->gain, 1.0F);
    engine->applyFactoryPreset(audioUnitHost.presets[0], 0, id(0));
    engine.reset();
    deliver();
    EXPECT_EQ(other->gain, 1.0F);
}

TEST_F(PluginOperations, GiveTheLatencyAtTheRateOfThePlugin) {
    const auto unit = loadLive(mono, 0);
    EXPECT_EQ(engine->pluginLatencyMs(0, id(0)), 0.0);
    unit->latency = 480;
    EXPECT_EQ(engine->pluginLatencyMs(0, id(0)), 10.0);
    startBypassed();
    EXPECT_EQ(engine->pluginLatencyMs(0, id(0)), 1000.0 * 480.0 / 44100.0);
    EXPECT_EQ(engine->pluginLatencyMs(1, id(0)), 0.0);
}

} // namespace
