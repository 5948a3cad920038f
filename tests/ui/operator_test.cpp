// A show from the first start on, operated by pointer and keys on a real X server.

#include "machine/audio_machine.h"
#include "platform/files/preferences.h"
#include "support/jack_midi_peer.h"
#include "support/jack_test_server.h"
#include "support/temporary_folder.h"
#include "ui/application.h"
#include "ui/bridge/meter_bridge.h"
#include "ui/controls/menu_picker.h"
#include "ui/controls/value_slider.h"
#include "ui/controls/vertical_fader.h"
#include "ui/editors/native_editor_view.h"
#include "ui/meters/meters.h"
#include "ui/qt_main_thread.h"
#include "ui/sheets/device_row.h"
#include "ui/sheets/snapshots_view.h"
#include "ui/strip/channel_strip_view.h"
#include "ui/strip/plugin_picker_view.h"
#include "ui/strip/plugin_slot_view.h"
#include "ui/strip/strip_mark.h"
#include "ui/windows/orvane_app.h"
#include "ui/windows/plugin_editor_windows.h"

#include "hand.h"
#include "widgets.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QTest>

#include <algorithm>
#include <filesystem>
#include <set>
#include <variant>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;

template <class Condition>
[[nodiscard]] bool waitUntil(Condition condition) {
    return QTest::qWaitFor(condition, 30000);
}

class Operator : public testing::Test {
  protected:
    Operator() {
        setenv("ORVANE_DRIVERS", "virtual,jack", 1);
        machine = std::move(machine::AudioMachine::make({})).value();
        window = std::make_unique<ORVANEApp>(
            ORVANEApp::Parts{
                {.audioHardware = machine->hardware(),
                 .midiServices = machine->midi(),
                 .mainThread = mainThread,
                 .audioUnitHost = machine->audioUnits(),
                 .log = machine->log,
                 .applicationSupport = folder / "support",
                 .editorWindows = &editorWindows},
                preferences},
            LaunchOptions{}
        );
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get(), 20000));
    }
    [[nodiscard]] engine::MixerEngine& engine() { return window->mixerRootView()->engine(); }
    [[nodiscard]] const engine::EngineState& state() { return engine().state(); }
    [[nodiscard]] const session::ChannelStrip& strip(std::size_t index) {
        return state().channelStrips.get().at(index);
    }
    ChannelStripView& view(std::size_t index) { return *viewsIn<ChannelStripView>(*window).at(index); }
    PluginSlotView& slot(std::size_t stripIndex, std::size_t slotIndex) {
        return *viewsIn<PluginSlotView>(view(stripIndex)).at(slotIndex);
    }

    /// Presses a button of the window, or of the sheet in front of it.
    void press(const QString& button) { hand.click(buttonOf(*window, button)); }
    void press(const QWidget& within, const QString& button) { hand.click(buttonOf(within, button)); }

    /// The sheet that a button has opened.
    template <class Sheet>
    Sheet& opened() {
        Sheet* sheet = nullptr;
        const bool isThere = waitUntil([&] {
            for (Sheet* each : viewsIn<Sheet>(*window))
                if (each->isVisible()) sheet = each;
            return sheet != nullptr;
        });
        if (!isThere) throw std::runtime_error("Nothing opened");
        EXPECT_TRUE(QTest::qWaitForWindowActive(sheet, 20000));
        return *sheet;
    }
    template <class Sheet>
    void waitUntilClosed() {
        EXPECT_TRUE(waitUntil([&] {
            deleteWhatIsDone();
            return viewsIn<Sheet>(*window).empty();
        }));
    }

    bool isLoaded(std::size_t stripIndex, std::size_t slotIndex) {
        const auto& states = state().pluginLoadStates.get();
        const auto found = states.find({strip(stripIndex).id, slotIndex});
        return found != states.end() && std::holds_alternative<plugins::load_state::Loaded>(found->second);
    }

    void chooseSize(const QString& button, std::size_t strips) {
        press(button);
        ASSERT_TRUE(waitUntil([&] {
            return window->mixerRootView() != nullptr && state().channelStrips.get().size() == strips;
        }));
    }

    void chooseDemoAndStart() {
        press(QStringLiteral("Audio / MIDI Devices"));
        QDialog& sheet = opened<QDialog>();
        for (DeviceRow* row : viewsIn<DeviceRow>(sheet))
            if (row->text() == QStringLiteral("ORVANE Demo Panel")) hand.click(*row);
        ASSERT_TRUE(waitUntil([&] { return state().selectedDevice.get().has_value(); }));
        EXPECT_EQ(state().selectedDevice.get()->uid, "virtual:panel");
        press(sheet, QStringLiteral("Done"));
        waitUntilClosed<QDialog>();
        press(QStringLiteral("Start"));
        ASSERT_TRUE(waitUntil([&] { return state().isRunning.get(); }));
    }

    void chooseFile(const std::filesystem::path& file) {
        auto& name = *opened<QFileDialog>().findChild<QLineEdit*>();
        // The list of completions would intercept the Return key at some point.
        name.setCompleter(nullptr);
        hand.press(QStringLiteral("ctrl+a"));
        hand.type(QString::fromStdString(file));
        EXPECT_TRUE(waitUntil([&] { return name.text() == QString::fromStdString(file); }));
        hand.press(QStringLiteral("Return"));
        waitUntilClosed<QFileDialog>();
    }

    JackTestServer server{{}};
    JackMIDIPeer keys{"keys", 1};
    TemporaryFolder folder;
    Hand hand;
    QtMainThread mainThread;
    platform::InMemoryPreferences preferences;
    PluginEditorWindows editorWindows;
    std::unique_ptr<machine::AudioMachine> machine;
    std::unique_ptr<ORVANEApp> window;
};

TEST_F(Operator, MixesAShowAndRestoresItFromItsFile) {
    chooseSize(QStringLiteral("8 channels"), 8);
    chooseDemoAndStart();

    std::set<int> heights;
    const MeterView& meter = *viewsIn<MeterView>(view(0)).at(0);
    EXPECT_TRUE(waitUntil([&] {
        heights.insert(meter.litSegments());
        return heights.size() > 3;
    })) << "the meter does not move";

    auto& name = *view(0).findChild<QLineEdit*>();
    hand.click(name);
    hand.press(QStringLiteral("ctrl+a"));
    hand.type(QStringLiteral("Anna"));
    hand.press(QStringLiteral("Return"));
    EXPECT_TRUE(waitUntil([&] { return strip(0).name == "Anna"; }));
    const VerticalFader& trim = *viewsIn<VerticalFader>(view(0)).at(0);
    const int middle = trim.width() / 2;
    hand.drag(trim, {middle, trim.height() / 2}, {middle, trim.height() / 4});
    EXPECT_TRUE(waitUntil([&] { return strip(0).trim > 1.3 && strip(0).trim < 1.7; })) << strip(0).trim;
    press(view(0), QStringLiteral("Mute"));
    EXPECT_TRUE(waitUntil([&] { return strip(0).muted; }));
    press(view(1), QStringLiteral("St"));
    EXPECT_TRUE(waitUntil([&] { return viewsIn<ValueSlider>(view(1)).at(0)->isVisible(); }));
    const ValueSlider& pan = *viewsIn<ValueSlider>(view(1)).at(0);
    hand.clickAt(pan, {pan.width() / 4, pan.height() / 2});
    const auto* const stereo = std::get_if<session::output::Stereo>(&strip(1).outputRouting);
    ASSERT_NE(stereo, nullptr);
    EXPECT_TRUE(waitUntil([&] { return stereo->pan < -0.3 && stereo->pan > -0.7; })) << stereo->pan;

    hand.click(slot(0, 0));
    const auto* const plugins = opened<PluginPickerView>().findChild<QListWidget*>();
    const QString equalizer = QStringLiteral("Parametric Equalizer Mono");
    hand.type(equalizer);
    // The search for plugins may still be running.
    EXPECT_TRUE(waitUntil([&] {
        const QListWidgetItem* const found = plugins->currentItem();
        return found != nullptr && found->text().contains(equalizer);
    }));
    hand.press(QStringLiteral("Return"));
    waitUntilClosed<PluginPickerView>();
    EXPECT_TRUE(waitUntil([&] { return isLoaded(0, 0); }));
    hand.click(slot(0, 0));
    NativeEditorView* editor = nullptr;
    ASSERT_TRUE(waitUntil([&] {
        for (QWidget* top : QApplication::topLevelWidgets())
            if (auto* const view = dynamic_cast<NativeEditorView*>(top)) editor = view;
        return editor != nullptr && editor->isVisible();
    })) << "the plugin's own editor does not open";
    editor->close();
    press(QStringLiteral("Copy"));
    hand.click(slot(0, 0));
    EXPECT_TRUE(waitUntil([&] { return state().pluginClipboard.get().has_value(); }));
    press(QStringLiteral("Paste"));
    hand.click(slot(2, 1));
    EXPECT_TRUE(waitUntil([&] { return isLoaded(2, 1); }));
    press(QStringLiteral("Paste"));

    press(QStringLiteral("Snapshots"));
    auto& scenes = opened<SnapshotsView>();
    press(scenes, QStringLiteral("New"));
    press(scenes, QStringLiteral("MIDI"));
    EXPECT_TRUE(waitUntil([&] { return state().midiLearnTargetIndex.get().has_value(); }));
    EXPECT_TRUE(waitUntil([&] { return keys.listenerCount(0) > 0; }));
    ASSERT_TRUE(keys.play({{0, {0x90, 60, 100}}}));
    EXPECT_TRUE(waitUntil([&] { return !state().midiLearnTargetIndex.get(); }));
    press(scenes, QStringLiteral("Done"));
    waitUntilClosed<SnapshotsView>();
    press(view(0), QStringLiteral("Mute"));
    EXPECT_TRUE(waitUntil([&] { return !strip(0).muted; }));
    press(QStringLiteral("Snapshots"));
    press(opened<SnapshotsView>(), QStringLiteral("New"));
    press(QStringLiteral("Done"));
    waitUntilClosed<SnapshotsView>();
    EXPECT_EQ(state().snapshots.get().size(), 2U);
    ASSERT_TRUE(keys.play({{0, {0x90, 60, 100}}}));
    EXPECT_TRUE(waitUntil([&] { return strip(0).muted; })) << "the note recalls the first scene";
    EXPECT_TRUE(waitUntil([&] { return isLoaded(0, 0) && isLoaded(2, 1); }));
    EXPECT_TRUE(state().isRunning.get());

    const std::filesystem::path file = folder / "show.orvane";
    hand.press(QStringLiteral("ctrl+s"));
    chooseFile(file);
    EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(file); }));
    const session::MixerDocumentData show = engine().makeDocumentData();

    press(QStringLiteral("8 Channels"));
    press(opened<QMessageBox>(), QStringLiteral("Change Channel Count"));
    EXPECT_TRUE(waitUntil([&] { return window->mixerRootView() == nullptr; }));
    chooseSize(QStringLiteral("8 channels"), 8);
    EXPECT_NE(engine().makeDocumentData(), show);
    hand.press(QStringLiteral("ctrl+o"));
    chooseFile(file);
    EXPECT_TRUE(waitUntil([&] { return strip(0).name == "Anna" && isLoaded(0, 0) && isLoaded(2, 1); }));
    EXPECT_EQ(engine().makeDocumentData(), show);
    EXPECT_TRUE(waitUntil([&] { return view(0).findChild<QLineEdit*>()->text() == "Anna"; }));
}

TEST_F(Operator, RunsAShowInMixOnALaptop) {
    window->resize(1366, 740);
    chooseSize(QStringLiteral("48 channels"), 48);
    chooseDemoAndStart();
    const int start = hand.touches();
    auto& bridge = *viewsIn<MeterBridge>(*window).at(0);
    EXPECT_TRUE(bridge.isVisible() && bridge.width() <= window->width());
    EXPECT_TRUE(waitUntil([&] {
        return std::ranges::any_of(viewsIn<StripMark>(*window), [](const StripMark* mark) {
            return mark->state().isOpen;
        });
    })) << "the open ones are in sight without a click";
    press(view(1), QStringLiteral("Mute"));
    EXPECT_TRUE(waitUntil([&] { return strip(1).muted; }));
    EXPECT_EQ(hand.touches() - start, 1) << "who is open costs no click, mute one";
    const VerticalFader& trim = *viewsIn<VerticalFader>(view(1)).at(0);
    hand.clickAt(trim, {trim.width() / 2, trim.height() / 4});
    EXPECT_TRUE(waitUntil([&] { return strip(1).trim > 1.3 && strip(1).trim < 1.7; }));
    EXPECT_EQ(hand.touches() - start, 2) << "trim costs one click";
    MenuPicker& input = *viewsIn<MenuPicker>(view(2)).at(0);
    hand.click(input);
    const QWidget& menu = *input.view()->viewport();
    EXPECT_TRUE(waitUntil([&] { return menu.isVisible(); }));
    hand.clickAt(menu, input.view()->visualRect(input.model()->index(6, 0)).center());
    EXPECT_TRUE(waitUntil([&] { return strip(2).inputChannelIndex == 5; }));
    EXPECT_EQ(hand.touches() - start, 4) << "an input costs two clicks";
    engine().newSnapshot();
    engine().newSnapshot();
    engine().recallSnapshot(0);
    hand.press("F8");
    EXPECT_TRUE(waitUntil([&] { return engine().state().currentSnapshotIndex.get() == 1; }));
    EXPECT_EQ(hand.touches() - start, 5) << "the next scene costs one key";
    hand.clickAt(bridge, {bridge.width() - 10, 10});
    EXPECT_TRUE(waitUntil([&] { return !view(47).visibleRegion().isEmpty(); })) << "one click";
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    ui::Application application(argc, argv);
    return RUN_ALL_TESTS();
}
