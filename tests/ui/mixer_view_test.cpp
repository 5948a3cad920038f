#include "ui/mixer/mixer_view.h"

#include "engine/session/mixer_json_document.h"
#include "engine/session_files.h"
#include "platform/base/memory_shortage.h"
#include "plugins/insert_components.h"
#include "support/failing_allocation.h"
#include "support/temporary_folder.h"
#include "ui/controls/busy_notice.h"
#include "ui/controls/console_button.h"
#include "ui/controls/menu_picker.h"
#include "ui/controls/value_field.h"
#include "ui/controls/value_slider.h"
#include "ui/controls/vertical_fader.h"
#include "ui/meters/meters.h"
#include "ui/mixer/master_section.h"
#include "ui/mixer/strip_rows.h"
#include "ui/sheets/output_options_view.h"
#include "ui/strip/channel_strip_view.h"

#include "mixer_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDragEnterEvent>
#include <QFileDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QScrollBar>
#include <QTest>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;
using testing::ElementsAre;
namespace output = session::output;
namespace master_output = session::master_output;

class Mixer : public testing::Test {
  protected:
    void build(std::size_t channels) {
        view.reset();
        engine = std::make_unique<engine::MixerEngine>(channels, machine.services());
        view = std::make_unique<MixerView>(*engine, [this] { ++reconfigurations; });
        view->resize(1280, 800);
        view->show();
        activate();
    }
    Mixer() { build(3); }
    void activate() {
        view->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
    }

    [[nodiscard]] const engine::EngineState& state() const { return engine->state(); }
    const session::ChannelStrip& strip(std::size_t index) { return state().channelStrips.get()[index]; }
    void selectDevice() { engine->selectDevice(state().availableDevices.get().at(0)); }
    QAbstractButton& button(const char* name) { return buttonOf(*view, name); }
    /// The numbers of the visible strips, counted from 1.
    std::vector<int> inSight() {
        std::vector<int> numbers;
        for (const ChannelStripView* strip : viewsIn<ChannelStripView>(*view))
            if (strip->isVisible()) numbers.push_back(strip->accessibleName().mid(3).toInt());
        std::ranges::sort(numbers);
        return numbers;
    }
    template <class Dialog>
    Dialog* dialog() {
        deleteWhatIsDone();
        const auto open = viewsIn<Dialog>(*view);
        return open.empty() ? nullptr : open.front();
    }
    ValueSlider& slider(const char* name) { return viewNamed<ValueSlider>(*view, name); }
    /// The text of the field beside a slider.
    QString written(const char* name) { return viewNamed<ValueField>(*view, name).text(); }
    MenuPicker& masterOut() { return viewNamed<MenuPicker>(*view, "Master Out"); }
    void choosePath(const std::filesystem::path& path) {
        auto* const files = dialog<QFileDialog>();
        ASSERT_NE(files, nullptr);
        static_cast<QDialog*>(files)->done(QDialog::Accepted);
        Q_EMIT files->fileSelected(QString::fromStdString(path));
    }
    /// Waits until no file is being read or written.
    void waitForFiles() {
        EXPECT_TRUE(QTest::qWaitFor([this] { return viewsIn<BusyNotice>(*view).empty(); }));
        deleteWhatIsDone();
        activate();
    }
    /// The message above the strips that starts with this text; empty if there is none.
    QString message(const char* beginning) {
        for (const QLabel* label : view->findChildren<QLabel*>())
            if (label->isVisible() && label->text().startsWith(beginning)) return label->text();
        return {};
    }
    void drop(const QList<QUrl>& files, bool isTaken) {
        QMimeData dragged;
        dragged.setUrls(files);
        QDragEnterEvent enter({9, 9}, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view.get(), &enter);
        ASSERT_EQ(enter.isAccepted(), isTaken);
        if (!isTaken) return;
        QDropEvent dropped({9, 9}, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view.get(), &dropped);
        waitForFiles();
    }

    MixerMachine machine;
    int reconfigurations = 0;
    std::unique_ptr<engine::MixerEngine> engine;
    std::unique_ptr<MixerView> view;
};

TEST_F(Mixer, ShowsThatTheAudioIsLostUntilItRunsAgain) {
    EXPECT_TRUE(shows(*view, "No audio device"));
    EXPECT_TRUE(buttonOf(*view, "Audio / MIDI Devices").toolTip().contains("No audio device is selected yet")
    );
    engine->selectDevice(state().availableDevices.get()[0]);
    EXPECT_FALSE(shows(*view, "No audio device"));
    EXPECT_FALSE(buttonOf(*view, "Audio / MIDI Devices").toolTip().contains("No audio device is selected yet")
    );
    engine->start();
    engine->stop();
    EXPECT_FALSE(buttonOf(*view, "Start Again").isVisible()) << "the user stopped it";
    engine->start();
    engine->selectDevice({7, "gone", "Gone", 2, 2, 48000.0});
    EXPECT_TRUE(shows(*view, "Another device"));
    engine->setBufferSize(64);
    EXPECT_TRUE(buttonOf(*view, "Start Again").isVisible());
    EXPECT_TRUE(shows(*view, "Stopped"));
    engine->selectDevice(state().availableDevices.get()[0]);
    buttonOf(*view, "Start Again").click();
    EXPECT_TRUE(state().isRunning.get());
    EXPECT_FALSE(buttonOf(*view, "Start Again").isVisible());
}

TEST_F(Mixer, StartsAndStopsOnceADeviceIsSelected) {
    EXPECT_FALSE(button("1:1").isEnabled());
    EXPECT_FALSE(button("Start").isEnabled());
    EXPECT_EQ(button("Start").toolTip(), "Select an audio device first.");
    selectDevice();
    QAbstractButton& start = button("Start");
    start.setFocus();
    QTest::keyClick(&start, Qt::Key_Space);
    EXPECT_FALSE(state().isRunning.get()) << "the space bar started it";
    QTest::keyClick(&start, Qt::Key_Return);
    EXPECT_TRUE(state().isRunning.get());
    holdEnter(start);
    EXPECT_TRUE(state().isRunning.get()) << "the key was held and stopped it";
    EXPECT_TRUE(shows(*view, "Running — Interface"));
    QTest::keyClick(&start, Qt::Key_Space);
    EXPECT_TRUE(state().isRunning.get()) << "the space bar stopped it";
    button("Stop").click();
    EXPECT_FALSE(state().isRunning.get());

    engine->setInputChannel(strip(0).id, 3);
    button("1:1").click();
    EXPECT_EQ(strip(0).inputChannelIndex, 0);
}

TEST_F(Mixer, AsksBeforeItClearsOutputsOrStartsAfresh) {
    selectDevice();
    for (const bool goesAhead : {false, true}) {
        button("Clear Outputs").click();
        buttonOf(*dialog<QMessageBox>(), goesAhead ? "Clear Outputs" : "Cancel").click();
        EXPECT_EQ(strip(2).outputRouting == session::OutputRouting{}, goesAhead);
        EXPECT_EQ(strip(2).inputChannelIndex, 2);
        deleteWhatIsDone();

        button("3 Channels").click();
        buttonOf(*dialog<QMessageBox>(), goesAhead ? "Change Channel Count" : "Cancel").click();
        EXPECT_EQ(reconfigurations, goesAhead ? 1 : 0);
    }
}

TEST_F(Mixer, TurnsThePages) {
    EXPECT_THAT(inSight(), ElementsAre(1, 2, 3));
    EXPECT_THROW(button("16 at a Time"), std::runtime_error);
    build(24);
    EXPECT_THROW(button("32 (2 Rows)"), std::runtime_error);
    build(40);
    EXPECT_EQ(inSight().size(), 16U);
    QTest::keyClick(view.get(), Qt::Key_PageDown);
    EXPECT_EQ(inSight().front(), 17);
    QTest::keyClick(view.get(), Qt::Key_PageDown);
    QTest::keyClick(view.get(), Qt::Key_PageDown);
    EXPECT_EQ(inSight().front(), 33);
    EXPECT_EQ(inSight().back(), 40);
    EXPECT_TRUE(button("33-40").isChecked());
    button("32 (2 Rows)").click();
    EXPECT_EQ(inSight().front(), 33) << "the last of two pages";
    QTest::keyClick(view.get(), Qt::Key_PageUp);
    EXPECT_EQ(inSight().size(), 32U);
    const auto strips = viewsIn<ChannelStripView>(*view);
    EXPECT_EQ(strips[16]->x(), strips[0]->x());
    EXPECT_GT(strips[16]->y(), strips[0]->geometry().bottom());
    button("All 40").click();
    EXPECT_EQ(inSight().size(), 40U);
}

TEST_F(Mixer, ScrollsTheStripsWithoutMovingTheirFaders) {
    build(16);
    view->resize(1280, 1000);
    QApplication::processEvents();
    VerticalFader& trim = *viewsIn<VerticalFader>(*view).at(0);
    const QScrollBar& place = *viewsIn<StripRows>(*view).at(0)->horizontalScrollBar();
    /// Whether a notch of the wheel over the fader moved the fader instead of the strips.
    const auto turn = [&](std::uint64_t milliseconds) {
        const double before = trim.value();
        const int placeBefore = place.value();
        turnWheelAt(trim, milliseconds);
        EXPECT_NE(trim.value() == before, place.value() == placeBefore) << milliseconds;
        return trim.value() != before;
    };
    EXPECT_FALSE(turn(1000));
    trim.setFocus();
    EXPECT_FALSE(turn(1250)) << "the strips are being scrolled";
    EXPECT_FALSE(turn(1500));
    EXPECT_TRUE(turn(1900));
}

TEST_F(Mixer, SavesAndLoadsSessions) {
    const TemporaryFolder folder;
    const std::filesystem::path saved = folder / "show.orvane";
    SessionFile& file = view->sessionFile();
    EXPECT_FALSE(file.isUnsaved());
    const auto rename = [this](const char* name) { engine->setName(strip(0).id, name); };
    rename("Before");
    EXPECT_TRUE(file.isUnsaved());
    QTest::keyClick(view.get(), Qt::Key_S, Qt::ControlModifier);
    rename("After");
    choosePath(saved);
    waitForFiles();
    EXPECT_TRUE(file.isUnsaved()) << "changes made while the dialog was open are not in the file";
    QTest::keyClick(view.get(), Qt::Key_O, Qt::ControlModifier);
    choosePath(folder / "none.orvane");
    waitForFiles();
    const char* const unreadable = "Couldn't read that settings file: ";
    EXPECT_TRUE(message(unreadable).contains("none.orvane")) << message(unreadable).toStdString();

    button("Load").click();
    choosePath(saved);
    waitForFiles();
    ASSERT_NE(dialog<QMessageBox>(), nullptr) << "unsaved changes would have been lost";
    buttonOf(*dialog<QMessageBox>(), "Cancel").click();
    EXPECT_EQ(strip(0).name, "After");
    const QUrl url = QUrl::fromLocalFile(QString::fromStdString(saved));
    drop({url, url}, false);
    drop({QUrl("http://host/show.orvane")}, false);
    drop({QUrl::fromLocalFile("/notes.txt")}, false);
    std::filesystem::copy(saved, folder / "show.json");
    drop({QUrl::fromLocalFile(QString::fromStdString(folder / "show.json"))}, true);
    buttonOf(*dialog<QMessageBox>(), "Load").click();
    EXPECT_EQ(strip(0).name, "Before") << "the file has the state at the press of Save";
    EXPECT_FALSE(file.isUnsaved());
    EXPECT_TRUE(message(unreadable).isEmpty());

    rename("Later");
    drop({url}, true);
    buttonOf(*dialog<QMessageBox>(), "Save First…").click();
    choosePath(folder / "later.orvane");
    waitForFiles();
    EXPECT_EQ(strip(0).name, "Before");
    EXPECT_TRUE(std::filesystem::exists(folder / "later.orvane"));
    button("Save").click();
    choosePath(folder / "missing" / "show.orvane");
    waitForFiles();
    EXPECT_FALSE(message("Export failed: ").isEmpty());
}

TEST_F(Mixer, StartsDialogsAtTheSessionsFile) {
    const TemporaryFolder folder;
    for (const char* name : {"show.orvane", "show.json", "show"})
        for (const char* command : {"Save", "Load"}) {
            view->sessionFile().setFile(folder / name);
            button(command).click();
            QFileDialog& files = *dialog<QFileDialog>();
            EXPECT_EQ(files.directory().path().toStdString(), (folder / ".").parent_path()) << command;
            if (files.acceptMode() == QFileDialog::AcceptSave) {
                EXPECT_EQ(files.selectedFiles(), QStringList(files.directory().filePath("show.orvane")))
                    << name;
            }
            files.reject();
        }
}

TEST_F(Mixer, NamesThePluginsOfASessionThatAreNotInstalled) {
    const TemporaryFolder folder;
    session::MixerJSONDocument show;
    show.data.channels = session::settingsOf(session::makeDefaultStrips(3));
    auto& channels = show.data.channels;
    channels[0].pluginSlots[1].pluginName = "Warmth";
    channels[0].pluginSlots[1].component = plugins::identityOf(machine.effect);
    ASSERT_TRUE(show.write(folder / "complete.orvane"));
    channels[1].name = "Choir";
    channels[1].pluginSlots[4].pluginName = "Plate";
    channels[1].pluginSlots[4].component = {1, 2, 3};
    ASSERT_TRUE(show.write(folder / "incomplete.orvane"));
    for (const char* name : {"complete.orvane", "incomplete.orvane"}) {
        view->sessionFile().loadFrom(folder / name);
        EXPECT_TRUE(QTest::qWaitFor([&] { return strip(0).pluginSlots[1].pluginName.has_value(); }));
        machine.mainThread.runPosted();
        waitForFiles();
        view->sessionFile().setSaved();
    }
    const auto alerts = viewsIn<QMessageBox>(*view);
    ASSERT_EQ(alerts.size(), 1U);
    EXPECT_TRUE(alerts[0]->informativeText().endsWith("\n\nPlate (Choir, insert 5)"))
        << alerts[0]->informativeText().toStdString();
}

TEST_F(Mixer, AddsTheSuffixAndAsksBeforeItReplacesAFile) {
    const TemporaryFolder folder;
    const std::filesystem::path saved = folder / "Gala 24.12.orvane";
    for (const bool replaces : {false, true}) {
        button("Save").click();
        choosePath(folder / "Gala 24.12");
        QMessageBox* const question = dialog<QMessageBox>();
        ASSERT_EQ(question != nullptr, replaces);
        engine->setMasterTargetDB(-3.0);
        if (replaces) {
            EXPECT_TRUE(question->informativeText().contains("\"Gala 24.12.orvane\""));
            EXPECT_NE(engine::readSession(saved).value().master.levels.masterTargetDB, -3.0);
            buttonOf(*question, "Replace").click();
        }
        waitForFiles();
    }
    EXPECT_EQ(engine::readSession(saved).value().master.levels.masterTargetDB, -3.0);
    EXPECT_THAT(folder.names(), ElementsAre("Gala 24.12.orvane"));

    for (const auto& [command, filter] :
         {std::pair("Save", "ORVANE Session (*.orvane)"), {"Load", "ORVANE Session (*.orvane *.json)"}}) {
        button(command).click();
        EXPECT_EQ(dialog<QFileDialog>()->nameFilters(), QStringList(filter));
        dialog<QFileDialog>()->reject();
    }
}

TEST_F(Mixer, ReportsThatMemoryRanOutForASessionAndContinues) {
    const TemporaryFolder folder;
    SessionFile& file = view->sessionFile();
    auto document = engine->makeDocumentData();
    document.channels[0].pluginSlots[0].component = {1, 2, 3};
    // Needs a larger allocation than Qt ever makes.
    constexpr std::size_t large = 1U << 17U;
    document.snapshots.emplace_back().name.assign(large, 's');
    engine->applyDocument(document);
    const auto shared = std::make_shared<const session::MixerDocumentData>(document);
    std::optional<bool> outcome;
    const auto keep = [&](const auto& told) { outcome = static_cast<bool>(told); };
    const auto isDone = [&] { return outcome && viewsIn<BusyNotice>(*view).empty(); };
    const std::function<void()> save = [&] { file.saveTo(folder / "show.orvane", keep); };
    const std::function<void()> load = [&] { file.apply(shared, keep); };
    for (const auto& [task, failure] :
         {std::pair(save, "Export failed: there is not enough memory"),
          {load, "There is not enough memory to load"}}) {
        bool hasHappened = true;
        for (std::size_t nth = 1; hasHappened; ++nth) {
            SCOPED_TRACE(nth);
            {
                const FailingAllocation failing(nth, large);
                platform::runUnlessOutOfMemory(task);
                ASSERT_TRUE(QTest::qWaitFor(isDone));
                hasHappened = failing.hasHappened();
            }
            EXPECT_EQ(message(failure).isEmpty(), *outcome);
            outcome.reset();
            save();
            ASSERT_TRUE(QTest::qWaitFor(isDone));
            EXPECT_EQ(outcome, true);
            outcome.reset();
        }
    }
}

TEST_F(Mixer, LoadsASessionWithPluginsOnceTheInstalledOnesAreKnown) {
    const platform::Uuid id = strip(1).id;
    engine->loadPlugin(machine.effect, 0, id);
    machine.mainThread.runPosted();
    session::MixerDocumentData document = engine->makeDocumentData();
    for (const bool hasSettings : {true, false}) {
        if (!hasSettings) document.channels[1].pluginSlots[0].presetData.reset();
        engine->removePlugin(0, id);
        bool isThere = false;
        view->sessionFile().apply(
            std::make_shared<const session::MixerDocumentData>(document),
            [&](const auto& applied) { isThere = static_cast<bool>(applied); }
        );
        EXPECT_TRUE(QTest::qWaitFor([&] { return isThere; }));
        machine.mainThread.runPosted();
        EXPECT_EQ(strip(1).pluginSlots[0].pluginName, machine.effect.name);
        EXPECT_FALSE(view->sessionFile().isUnsaved()) << hasSettings;
        machine.audioUnitHost.lastUnit()->gain = 0.5F;
        EXPECT_TRUE(view->sessionFile().isUnsaved()) << hasSettings;
    }
    engine->loadPlugin(machine.effect, 1, id);
    view->sessionFile().setSaved();
    engine->setMuted(id, true);
    machine.mainThread.runPosted();
    EXPECT_TRUE(view->sessionFile().isUnsaved()) << "the user has made changes meanwhile";
    engine->setMuted(id, false);
    EXPECT_FALSE(view->sessionFile().isUnsaved());
}

TEST_F(Mixer, SetsTheMaster) {
    struct Case {
        const char* name;
        const double& value;
        double lowest;
        double highest;
        double stepped;
        const char* writtenAtHighest;
    };
    const session::MasterSettings& now = state().master.get();
    for (const Case& each :
         {Case{"Target", now.levels.masterTargetDB, -30.0, 0.0, -0.5, "0.0 dB"},
          {"Lead", now.levels.leadGroupGainDB, -24.0, 12.0, 11.5, "12.0 dB"},
          {"Backing", now.levels.backingGroupGainDB, -24.0, 12.0, 11.5, "12.0 dB"},
          {"Ducker Speed", now.duckerReleaseMs, 50.0, 3000.0, 2941.0, "3000 ms"},
          {"Input Volume", now.referenceNoiseGain, 0.0, 2.0, 1.96, "×2.00"}}) {
        SCOPED_TRACE(each.name);
        QTest::keyClick(&slider(each.name), Qt::Key_Home);
        EXPECT_EQ(each.value, each.lowest);
        QTest::keyClick(&slider(each.name), Qt::Key_End);
        EXPECT_EQ(each.value, each.highest);
        EXPECT_EQ(written(each.name), each.writtenAtHighest);
        QTest::keyClick(&slider(each.name), Qt::Key_Down);
        EXPECT_NEAR(each.value, each.stepped, 1e-9);
    }
    ValueSlider& release = slider("Ducker Speed");
    const QPoint middle = release.rect().center();
    doubleClick(release, middle);
    EXPECT_NEAR(now.duckerReleaseMs, 1525.0, 20.0) << "beside the handle";
    doubleClick(release, middle);
    EXPECT_EQ(now.duckerReleaseMs, 400.0);
    engine->setDuckerReleaseMs(400.7);
    EXPECT_EQ(written("Ducker Speed"), "400 ms");
}

TEST_F(Mixer, SendsTheMasterToOutputsOfItsDevice) {
    const auto routing = [this] { return state().master.get().masterOutputRouting; };
    selectDevice();
    EXPECT_EQ(masterOut().count(), 7);
    Q_EMIT masterOut().activated(6);
    EXPECT_EQ(routing(), (session::MasterOutputRouting{master_output::Mono{5}}));
    buttonOf(*view, "Master stereo").click();
    EXPECT_EQ(routing(), (session::MasterOutputRouting{master_output::Stereo{4, 5}}));
    EXPECT_EQ(masterOut().currentText(), "5-6");
    Q_EMIT masterOut().activated(1);
    EXPECT_EQ(routing(), (session::MasterOutputRouting{master_output::Stereo{0, 1}}));
    engine->selectMasterOutputDevice(state().availableDevices.get().at(1));
    EXPECT_EQ(masterOut().count(), 2);
    Q_EMIT masterOut().activated(0);
    EXPECT_EQ(routing(), session::MasterOutputRouting{});
    EXPECT_EQ(masterOut().count(), 3) << "two outputs and None";
}

TEST_F(Mixer, SetsTheOutputOptionsInASheetThatLeavesItUsable) {
    const auto options = [this] { return state().master.get().outputOptions; };
    auto& opening = static_cast<ConsoleButton&>(button("Output…"));
    EXPECT_FALSE(opening.isActive());
    opening.click();
    opening.click();
    ASSERT_EQ(viewsIn<OutputOptionsView>(*view).size(), 1U);
    for (const char* each : {"Hold", "Gain Ramps", "Open-Microphone Limit", "Fast Onset", "Limiter"})
        button(each).click();
    EXPECT_EQ(options(), (dsp::OutputOptions{dsp::LevelerMode::hold, true, true, true, -1.0}));
    EXPECT_TRUE(opening.isActive());
    slider("Ceiling").choose(-6.0);
    EXPECT_EQ(options().limiterCeilingDBTP, -6.0);
    const auto& meter = *viewsIn<WideMeterColumn>(*view).at(0);
    engine->meterModel().limiterReductionDB.set(3.0);
    EXPECT_TRUE(shows(*dialog<OutputOptionsView>(), "3.0 dB"));
    EXPECT_EQ(meter.reductionMeter().litSegments(), 4);
    button("Limiter").click();
    EXPECT_FALSE(options().limiterCeilingDBTP);
    EXPECT_FALSE(meter.reductionMeter().isVisible());
    EXPECT_FALSE(slider("Ceiling").isEnabled());
    engine->setOutputOptions({});
    EXPECT_FALSE(opening.isActive());
}

TEST_F(Mixer, LightsClipLampsUntilTheyAreReset) {
    auto& output = viewNamed<ClipLamp>(*view, "Output clip");
    const auto inputs = viewsIn<ChannelStripView>(*view);
    const auto isInputLit = [&](std::size_t strip) {
        return viewNamed<ClipLamp>(*inputs[strip], "Input clip").isLit();
    };
    audio::MeterModel& meters = engine->meterModel();
    meters.inputPeaks.set({{}, {true, 1.0, 1}, {}});
    meters.outputPeaks.set({{true, 0.5, 0}, {true, 1.0, 2}});
    meters.masterPeak.set({true, 1.0, 1});
    EXPECT_FALSE(isInputLit(0));
    EXPECT_TRUE(isInputLit(1));
    EXPECT_TRUE(output.isLit());
    EXPECT_TRUE(output.toolTip().startsWith("Master bus: 1 over\nOutput 2: 2 overs\n"));
    engine->setOutputOptions({.limiterCeilingDBTP = -1.0});
    EXPECT_TRUE(output.toolTip().startsWith("Output 2")) << "the bus is limited";
    output.click();
    EXPECT_FALSE(isInputLit(1));
    EXPECT_FALSE(output.isLit());
}

TEST_F(Mixer, ShowsEverythingAtTheSmallestWindowSize) {
    for (const std::size_t channels : {8, 24, 48}) {
        build(channels);
        view->resize(900, 518);
        QApplication::processEvents();
        for (const auto* each : view->findChildren<QAbstractButton*>("command"))
            EXPECT_GE(each->width(), each->sizeHint().width()) << each->text().toStdString();
        EXPECT_LE(viewsIn<MasterSection>(*view).at(0)->height(), 90);
        const auto& rows = *viewsIn<StripRows>(*view).at(0);
        EXPECT_EQ(rows.verticalScrollBar()->maximum(), 0) << channels;
        for (const char* each : {"Name", "Input", "Trim", "Mute", "Bypass"}) {
            const auto& control = viewNamed<QWidget>(rows, each);
            EXPECT_FALSE(control.visibleRegion().isEmpty()) << each;
            EXPECT_LE(control.mapTo(&rows, control.rect().bottomLeft()).y(), rows.viewport()->height());
        }
        EXPECT_GE(buttonOf(rows, "Mute").height(), 32);
    }
}

TEST_F(Mixer, ChangesToMixIfItIsTooLowForSetupUntilTheUserChooses) {
    build(8);
    const auto isMix = [this](int height) {
        view->resize(1280, height);
        QApplication::processEvents();
        return !buttonOf(*view, "Insert 1 (empty)").isVisible();
    };
    EXPECT_FALSE(isMix(900));
    const auto* strip = viewsIn<ChannelStripView>(*view).at(7);
    const QSize setup = strip->size();
    EXPECT_EQ(setup.width(), 140);
    EXPECT_TRUE(isMix(600));
    EXPECT_FALSE(isMix(900));
    EXPECT_EQ(strip->size(), setup);
    buttonOf(*view, "Presentation Mix").click();
    EXPECT_TRUE(isMix(900));
    EXPECT_GT(strip->height(), setup.height()) << "Mix takes the height that there is.";
    buttonOf(*strip, "Inserts in Setup").click();
    EXPECT_FALSE(isMix(600));
    EXPECT_FALSE(strip->visibleRegion().isEmpty());
}

} // namespace
