#include "ui/strip/channel_strip_view.h"

#include "ui/controls/menu_picker.h"
#include "ui/controls/segmented_picker.h"
#include "ui/controls/value_field.h"
#include "ui/controls/value_slider.h"
#include "ui/controls/vertical_fader.h"
#include "ui/meters/meters.h"
#include "ui/strip/plugin_picker_view.h"
#include "ui/strip/plugin_slot_view.h"

#include "mixer_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDialog>
#include <QEnterEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QTest>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;
using testing::ElementsAre;
namespace output = session::output;

class Strip : public MixerViewTest {
  protected:
    Strip() { view.show(); }

    [[nodiscard]] const session::ChannelStrip& strip() const { return state().channelStrips.get()[1]; }
    [[nodiscard]] const session::PluginSlot& record(std::size_t slot) const {
        return strip().pluginSlots[slot];
    }
    MenuPicker& menu(const char* name) { return viewNamed<MenuPicker>(view, name); }
    void pick(const char* name, const QString& entry) {
        ASSERT_TRUE(itemsOf(menu(name)).contains(entry)) << entry.toStdString();
        orvane::test::choose(menu(name), menu(name).findText(entry));
    }
    PluginSlotView& slot(std::size_t index) { return *viewsIn<PluginSlotView>(view).at(index); }
    void load(std::size_t index) {
        engine.loadPlugin(machine.effect, index, strip().id);
        machine.mainThread.runPosted();
    }
    /// The open sheet or prompt; null if there is none.
    QDialog* dialog() {
        deleteWhatIsDone();
        const auto open = view.findChildren<QDialog*>();
        return open.empty() ? nullptr : open.first();
    }
    /// The entries of a slot's context menu; empty if it has none. Separators are "-".
    QStringList contextMenu(std::size_t index) {
        QStringList entries;
        if (const QMenu* const opened = openContextMenu(slot(index)))
            for (const QAction* action : opened->actions())
                entries.append(action->isSeparator() ? QStringLiteral("-") : action->text());
        return entries;
    }
    void choose(std::size_t index, const QString& entry) {
        for (QAction* action : openContextMenu(slot(index))->actions())
            if (action->text() == entry) return action->trigger();
        FAIL() << entry.toStdString();
    }

    InstalledComponents components{[this] { return engine.availableInsertComponents(); }};
    ChannelStripView view{engine, components, 1};
};

TEST_F(Strip, SendsEditsOnlyToItsOwnStrip) {
    const std::vector<session::ChannelStrip> before = state().channelStrips.get();
    auto& name = *view.findChild<QLineEdit*>();
    EXPECT_EQ(name.text(), "Ch 2");
    name.end(false);
    QTest::keyClicks(&name, " Anna ");
    EXPECT_EQ(strip().name, "Ch 2");
    QTest::keyClick(&name, Qt::Key_Return);
    EXPECT_EQ(strip().name, "Ch 2 Anna ");
    QTest::keyClicks(&name, "?");
    QTest::keyClick(&name, Qt::Key_Escape);
    EXPECT_EQ(strip().name, "Ch 2 Anna ");
    EXPECT_EQ(name.text(), "Ch 2 Anna ");

    const auto pickers = viewsIn<SegmentedPicker>(view);
    pickers.at(0)->segment(2).click();
    EXPECT_EQ(strip().genderMode, dsp::GenderTriggerMode::female);
    QTest::keyClick(pickers.at(0), Qt::Key_Left);
    EXPECT_EQ(strip().genderMode, dsp::GenderTriggerMode::male);
    pickers.at(1)->segment(1).click();
    EXPECT_EQ(strip().vocalRole, dsp::VocalRole::lead);
    buttonOf(view, "Mute").click();
    buttonOf(view, "Byp").click();
    EXPECT_TRUE(strip().muted && strip().bypassed);
    buttonOf(view, "Mute").click();
    EXPECT_FALSE(strip().muted);
    QTest::keyClick(viewsIn<VerticalFader>(view).at(0), Qt::Key_Home);
    EXPECT_EQ(strip().trim, 2.0);
    auto& typed = *viewsIn<ValueField>(view).at(0);
    EXPECT_EQ(typed.text(), "×2.00");
    for (const auto& [text, trim] :
         {std::pair("0,5", 0.5),
          {"x1.25", 1.25},
          {"-6 dB", 0.501187},
          {"-6", 0.501187},
          {"+1", 1.122018},
          {"0db", 1.0},
          {"9", 2.0},
          {"loud", 2.0}}) {
        typed.selectAll();
        QTest::keyClicks(&typed, text);
        QTest::keyClick(&typed, Qt::Key_Return);
        EXPECT_NEAR(strip().trim, trim, 1e-6) << text;
    }
    EXPECT_TRUE(typed.toolTip().contains("6.0 dB"));
    EXPECT_EQ(state().channelStrips.get()[0], before[0]);
    EXPECT_EQ(state().channelStrips.get()[2], before[2]);
}

TEST_F(Strip, ShowsItsOwnStateInEverySwitchAndMeterWhileVisible) {
    for (const bool isMuted : {false, true})
        for (const bool isBypassed : {false, true}) {
            engine.setMuted(strip().id, isMuted);
            engine.setBypassed(strip().id, isBypassed);
            EXPECT_EQ(buttonOf(view, "Mute").isChecked(), isMuted) << isBypassed;
            EXPECT_EQ(buttonOf(view, "Bypass").isChecked(), isBypassed) << isMuted;
        }
    engine.meterModel().channelMeters.set({1.0, 0.1, 0.0});
    engine.meterModel().channelGainReductionDB.set({30.0, 15.0, 3.0});
    const ChannelMeterColumn& meters = *viewsIn<ChannelMeterColumn>(view).at(0);
    EXPECT_EQ(meters.reductionMeter().litSegments(), 10);
    EXPECT_EQ(meters.levelMeter().litSegments(), 9);
    view.hide();
    engine.setMuted(strip().id, false);
    engine.meterModel().channelMeters.set({1.0});
    EXPECT_TRUE(buttonOf(view, "Mute").isChecked());
    EXPECT_EQ(meters.levelMeter().litSegments(), 9);
    view.show();
    EXPECT_FALSE(buttonOf(view, "Mute").isChecked());
    EXPECT_EQ(meters.levelMeter().litSegments(), 0);
}

TEST_F(Strip, ShowsALongNameFromItsBeginning) {
    auto& name = *view.findChild<QLineEdit*>();
    EXPECT_EQ(name.toolTip(), "");
    const QString longName = "Moderator on the left (handheld)";
    engine.setName(strip().id, longName.toStdString());
    EXPECT_EQ(name.toolTip(), longName);
    EXPECT_EQ(name.cursorPosition(), 0);
    view.activateWindow();
    for (const Qt::Key end : {Qt::Key_Return, Qt::Key_Escape, Qt::Key_Tab}) {
        name.setFocus();
        EXPECT_TRUE(QTest::qWaitFor([&] { return name.hasFocus(); }));
        name.end(false);
        QTest::keyClicks(&name, "!");
        const QString typed = name.text();
        engine.setTrim(strip().id, 0.5);
        EXPECT_EQ(name.text(), typed) << "text being typed stays";
        QTest::keyClick(&name, end);
        EXPECT_FALSE(name.hasFocus());
        EXPECT_EQ(name.cursorPosition(), 0) << end;
    }
    EXPECT_EQ(strip().name, longName.toStdString() + "!!");
}

TEST_F(Strip, OffersTheChannelsOfTheDevice) {
    engine.selectDevice(device(0));
    EXPECT_THAT(itemsOf(menu("Input")), ElementsAre("None", "In 1", "In 2", "In 3", "In 4"));
    EXPECT_EQ(menu("Input").currentText(), "In 2");
    pick("Input", "In 4");
    pick("Output", "Out 6");
    EXPECT_EQ(strip().inputChannelIndex, 3);
    EXPECT_EQ(strip().outputRouting, (session::OutputRouting{output::Mono{5}}));

    buttonOf(view, "St").click();
    EXPECT_EQ(strip().outputRouting, (session::OutputRouting{output::Stereo{4, 5, 0.0}}));
    EXPECT_THAT(itemsOf(menu("Output")), ElementsAre("None", "1-2", "3-4", "5-6"));
    auto& pan = *viewsIn<ValueSlider>(view).at(0);
    EXPECT_TRUE(pan.isVisible());
    QTest::keyClick(&pan, Qt::Key_Home);
    pick("Output", "3-4");
    EXPECT_EQ(strip().outputRouting, (session::OutputRouting{output::Stereo{2, 3, -1.0}}));
    doubleClick(pan, {6, pan.height() / 2});
    EXPECT_EQ(strip().outputRouting, (session::OutputRouting{output::Stereo{2, 3, 0.0}}));
    pick("Output", "None");
    EXPECT_EQ(strip().outputRouting, session::OutputRouting{});
    EXPECT_FALSE(pan.isVisible());

    // The last of an odd number of outputs belongs to no pair.
    for (const auto& [count, pairs] : {std::pair(2, 1), {3, 1}, {5, 2}, {6, 3}}) {
        const auto routing = output::Stereo{0, 1, 0.0};
        EXPECT_EQ(RoutingMenu::outputs(count, session::OutputRouting{routing}).labels.size(), 1 + pairs)
            << count;
    }

    // Channels that the device lacks are still shown.
    engine.setOutputChannel(strip().id, 30);
    engine.setInputChannel(strip().id, 40);
    EXPECT_EQ(menu("Output").currentText(), "Out 31");
    EXPECT_EQ(menu("Input").currentText(), "In 41");
    EXPECT_EQ(menu("Output").count(), 8);
    auto document = engine.makeDocumentData();
    constexpr auto highest = std::numeric_limits<std::int64_t>::max();
    document.channels[1].inputChannelIndex = highest;
    document.channels[1].outputRouting = output::Stereo{highest, std::numeric_limits<std::int64_t>::min()};
    engine.applyDocument(document);
    EXPECT_EQ(menu("Input").currentText(), "In 9223372036854775808");
    EXPECT_EQ(menu("Output").currentText(), "9223372036854775808--9223372036854775807");
}

TEST_F(Strip, SlotTooltipsExplainAClick) {
    load(0);
    EXPECT_EQ(slot(0).toolTip(), "Warmth — click to open its editor. Right-click for more options.");
    const auto latencyLine = [this](std::uint32_t latency) {
        machine.audioUnitHost.lastUnit()->latency = latency;
        QEnterEvent entering({}, {}, {});
        QApplication::sendEvent(&slot(0), &entering);
        return slot(0).toolTip().section("options.", 1).toStdString();
    };
    EXPECT_EQ(latencyLine(240), "\nadds 5.0 ms");
    EXPECT_EQ(latencyLine(1), "");
    engine.setPluginBypassed(true, 0, strip().id);
    EXPECT_EQ(latencyLine(240), "") << "a bypassed plugin delays nothing";
    machine.audioUnitHost.failure = platform::Error{"no licence"};
    load(1);
    EXPECT_TRUE(slot(1).toolTip().startsWith("Warmth failed to load: ")) << slot(1).toolTip().toStdString();

    engine.toggleCopyArm();
    EXPECT_EQ(slot(0).toolTip(), "Click to copy \"Warmth\" (and its current settings).");
    EXPECT_EQ(slot(2).toolTip(), "Empty -- pick a slot with a plugin loaded to copy from.");
    EXPECT_EQ(slot(0).cursor().shape(), Qt::DragCopyCursor);
    EXPECT_EQ(slot(2).cursor().shape(), Qt::ForbiddenCursor);
    slot(0).click();
    EXPECT_EQ(slot(2).toolTip(), "Empty insert slot 3 — click to pick an installed plugin.");
    engine.togglePasteArm();
    EXPECT_EQ(slot(2).toolTip(), "Click to paste Warmth here, replacing whatever's in this slot.");
    machine.audioUnitHost.failure.reset();
    slot(2).click();
    machine.mainThread.runPosted();
    EXPECT_EQ(record(2).pluginName, "Warmth");
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_EQ(slot(4).cursor().shape(), Qt::PointingHandCursor);
    engine.cancelClipboardArm();
    EXPECT_EQ(slot(4).cursor().shape(), Qt::ArrowCursor);

    auto document = engine.makeDocumentData();
    document.channels[1].pluginSlots[3].pluginName = "Lost&Found";
    document.channels[1].pluginSlots[4].pluginName = "Gone";
    document.channels[1].pluginSlots[4].component = {1, 2, 3};
    engine.applyDocument(document);
    machine.mainThread.runPosted();
    EXPECT_EQ(
        slot(3).toolTip(),
        "Lost&Found — from an older session, not linked to an installed plugin. Click to pick one."
    );
    EXPECT_TRUE(slot(3).shortcut().isEmpty()) << "Alt+F clicks it";
    EXPECT_EQ(slot(4).toolTip(), "Gone — click to open its editor. Right-click for more options.");
}

TEST_F(Strip, SlotsOpenThePickerOrTheEditor) {
    load(0);
    slot(0).click();
    EXPECT_EQ(machine.audioUnitHost.lastUnit()->editorRequests, 0);
    EXPECT_EQ(state().lastError.get(), "This program has no windows to show the editor of Warmth in.");
    machine.audioUnitHost.delivery = ScriptedAudioUnitHost::Delivery::byHand;
    load(1);
    slot(1).click();
    EXPECT_EQ(dialog(), nullptr) << "a click while it loads";
    machine.audioUnitHost.failure = platform::Error{"no licence"};
    machine.audioUnitHost.deliver();
    machine.mainThread.runPosted();
    for (const std::size_t opening : {1, 2}) {
        slot(opening).click();
        auto* const picker = dynamic_cast<PluginPickerView*>(dialog());
        ASSERT_NE(picker, nullptr) << opening;
        EXPECT_TRUE(shows(*picker, QStringLiteral("Insert %1").arg(opening + 1)));
        buttonOf(*picker, "Cancel").click();
        EXPECT_EQ(dialog(), nullptr);
    }
}

TEST_F(Strip, SlotsHaveAMenuForTheirPlugin) {
    EXPECT_TRUE(contextMenu(0).empty());
    load(0);
    EXPECT_THAT(
        contextMenu(0),
        ElementsAre("Open Editor", "Change Plugin…", "Bypass", "Remove", "-", "Load Preset", "Save Preset…")
    );
    choose(0, "Bypass");
    EXPECT_TRUE(record(0).bypassed);
    choose(0, "Un-bypass");
    EXPECT_FALSE(record(0).bypassed);

    const auto presetEntries = [this] { return openContextMenu(slot(0))->findChild<QMenu*>()->actions(); };
    EXPECT_FALSE(presetEntries().first()->isEnabled());
    machine.audioUnitHost.lastUnit()->gain = 0.25F;
    choose(0, "Save Preset…");
    QDialog* const prompt = dialog();
    ASSERT_NE(prompt, nullptr);
    QTest::keyClicks(prompt->findChild<QLineEdit*>(), "Warm & soft");
    buttonOf(*prompt, "Save").click();
    machine.audioUnitHost.lastUnit()->gain = 1.0F;
    ASSERT_EQ(presetEntries().size(), 1);
    EXPECT_EQ(presetEntries().first()->text(), "Warm && soft");
    presetEntries().first()->trigger();
    EXPECT_EQ(machine.audioUnitHost.lastUnit()->gain, 0.25F);

    // The effect's presets come below the user's, each bank in a submenu.
    machine.audioUnitHost.presets = {{0, "Plain\n&", ""}, {1, "One", "Rooms"}, {2, "Two", "Rooms"}};
    machine.audioUnitHost.presetState = platform::PropertyList::Dictionary{{"gain", {3.0}}};
    const auto entries = presetEntries();
    ASSERT_EQ(entries.size(), 4);
    EXPECT_TRUE(entries[1]->isSeparator());
    EXPECT_EQ(entries[2]->text(), "Plain &&");
    EXPECT_EQ(entries[3]->text(), "Rooms");
    ASSERT_EQ(entries[3]->menu()->actions().size(), 2);
    EXPECT_EQ(entries[3]->menu()->actions().last()->text(), "Two");
    entries[3]->menu()->actions().last()->trigger();
    machine.mainThread.runPosted();
    EXPECT_EQ(machine.audioUnitHost.lastUnit()->gain, 3.0F);

    choose(0, "Remove");
    EXPECT_FALSE(record(0).pluginName);
    machine.audioUnitHost.failure = platform::Error{"no licence"};
    load(0);
    EXPECT_THAT(contextMenu(0), ElementsAre("Change Plugin…", "Bypass", "Remove"));
}

TEST_F(Strip, SlotsShowTheLivePluginDespiteTheirRecord) {
    bool isListed = false;
    components.whenFound([&] { isListed = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return isListed; })) << "without any plugin added";
    const auto shine = machine.audioUnitHost.add("Shine");
    engine.newSnapshot();
    load(0);
    engine.newSnapshot();
    engine.setRecallSafe(true, 0);
    engine.loadPlugin(shine, 0, strip().id);
    machine.mainThread.runPosted();
    for (const int scene : {1, 0}) {
        engine.recallSnapshot(scene);
        EXPECT_NE(record(0).pluginName, "Shine");
        EXPECT_EQ(slot(0).text(), "Shine");
        EXPECT_EQ(slot(0).accessibleName(), "Insert 1 Shine, channel 2");
        slot(0).click();
        EXPECT_EQ(state().lastError.get(), "This program has no windows to show the editor of Shine in.");
        EXPECT_EQ(contextMenu(0).size(), 7);
    }
    choose(0, "Bypass");
    EXPECT_TRUE(record(0).bypassed);
    EXPECT_EQ(slot(0).text(), "Shine");
    choose(0, "Remove");
    EXPECT_EQ(slot(0).text(), "");
    EXPECT_EQ(machine.audioUnitHost.report.living, 0);
}

/// The visible rows of the list.
std::vector<std::string> rowsOf(const QWidget& picker) {
    std::vector<std::string> rows;
    const auto& list = *picker.findChild<QListWidget*>();
    for (int row = 0; row < list.count() && list.isVisible(); ++row)
        rows.push_back(list.item(row)->text().toStdString());
    return rows;
}

TEST_F(Strip, PicksInstalledEffects) {
    const InstalledComponents installed([this] {
        auto list = engine.availableInsertComponents();
        list.push_back(list.front());
        list.back().name = "Bright EQ";
        list.push_back(list.back());
        list.back().manufacturerName = "Equal Ltd";
        list.back().name = "Gate";
        return list;
    });
    PluginPickerView picker(engine, installed, strip().id, 3);
    picker.show();
    EXPECT_TRUE(rowsOf(picker).empty());
    EXPECT_TRUE(shows(picker, "Scanning the installed plugins…"));
    while (!installed.list().get())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_THAT(rowsOf(picker), ElementsAre("Maker", "Warmth", "Bright EQ", "Equal Ltd", "Gate"));
    auto& search = *picker.findChild<QLineEdit*>();
    QTest::keyClicks(&search, "eq");
    EXPECT_THAT(rowsOf(picker), ElementsAre("Maker", "Bright EQ", "Equal Ltd", "Gate"));
    QTest::keyClicks(&search, "x");
    EXPECT_TRUE(shows(picker, "No plugin matches the search."));
    search.setText("MAKER");
    QTest::keyClick(&search, Qt::Key_Down);
    QTest::keyClick(&search, Qt::Key_Up);
    holdEnter(search);
    EXPECT_TRUE(picker.isVisible()) << "the key that opened the picker chose an effect";
    QTest::keyClick(&search, Qt::Key_Return);
    EXPECT_FALSE(picker.isVisible());
    EXPECT_EQ(record(3).pluginName, "Warmth");
}

} // namespace
