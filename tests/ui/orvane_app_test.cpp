#include "ui/windows/orvane_app.h"

#include "engine/session_files.h"
#include "plugins/insert_components.h"
#include "ui/controls/busy_notice.h"
#include "ui/mixer/mixer_view.h"
#include "ui/strip/channel_strip_view.h"
#include "ui/windows/channel_count_picker_view.h"
#include "ui/windows/window_presenter.h"

#include "support/temporary_folder.h"

#include "mixer_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QTest>

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;
using testing::ElementsAre;
using testing::ResultOf;

class Shell : public testing::Test {
  protected:
    std::unique_ptr<ORVANEApp> launch(LaunchOptions options = {}) {
        return std::make_unique<ORVANEApp>(
            ORVANEApp::Parts{machine.services(), preferences}, std::move(options)
        );
    }

    static bool isChoosing(const ORVANEApp& window) {
        return dynamic_cast<ChannelCountPickerView*>(window.centralWidget()) != nullptr;
    }
    static std::size_t strips(const ORVANEApp& window) {
        return window.mixerRootView()->engine().state().channelStrips.get().size();
    }

    /// Saves to a file; the outcome comes later, null until then.
    static std::shared_ptr<std::optional<bool>> save(ORVANEApp& window, const std::filesystem::path& path) {
        auto outcome = std::make_shared<std::optional<bool>>();
        window.saveTo(path, [outcome](const auto& saved) { *outcome = static_cast<bool>(saved); });
        return outcome;
    }
    static bool hasWritten(const ORVANEApp& window) {
        return QTest::qWaitFor([&] { return window.findChild<BusyNotice*>() == nullptr; });
    }

    MixerMachine machine;
    platform::InMemoryPreferences preferences;
};

/// A session with this number of strips.
session::MixerDocumentData sessionOf(std::size_t strips) {
    session::MixerDocumentData document;
    document.bufferSize = 512;
    document.channels = session::settingsOf(session::makeDefaultStrips(strips));
    return document;
}

TEST_F(Shell, AsksForASizeOnceAndAgainOnRequest) {
    for (const char* unusable : {"0", "-4", "many", "1", "7", "49", "1000000000000"}) {
        ASSERT_TRUE(preferences.setValue("orvaneChannelCount", unusable));
        EXPECT_TRUE(isChoosing(*launch())) << unusable;
    }
    auto window = launch();
    for (const std::size_t size : {2, 4, 8, 12, 16, 24, 32, 48}) {
        QTest::keyClick(
            &buttonOf(*window->centralWidget(), QString("%1 channels").arg(size)), Qt::Key_Return
        );
        window = launch();
        ASSERT_NE(window->mixerRootView(), nullptr) << size;
        ASSERT_EQ(strips(*window), size);
        engine::MixerEngine& engine = window->mixerRootView()->engine();
        EXPECT_FALSE(engine.state().channelStrips.get()[0].muted);
        engine.setMuted(engine.state().channelStrips.get()[0].id, true);
        buttonOf(*window, QString("%1 Channels").arg(size)).click();
        buttonOf(*window, "Change Channel Count").click();
        EXPECT_TRUE(isChoosing(*window));
        EXPECT_EQ(preferences.integer("orvaneChannelCount"), 0);
    }
    buttonOf(*window->centralWidget(), "8 channels").click();
    EXPECT_FALSE(window->mixerRootView()->engine().state().channelStrips.get()[0].muted);
}

TEST_F(Shell, OpensInTheSizeThatItHad) {
    auto window = launch();
    EXPECT_EQ(window->size(), QSize(1280, 860));
    window->show();
    window->resize(1000, 700);
    QApplication::processEvents();
    window.reset();
    EXPECT_EQ(launch()->size(), QSize(1000, 700));
}

TEST_F(Shell, OpensInThePresentationThatWasChosenLast) {
    for (const StripPresentation next : {StripPresentation::mix, StripPresentation::setup}) {
        const auto window = launch({.channels = 8});
        Presentation& presentation = window->mixerRootView()->view().presentation();
        EXPECT_NE(presentation.shown().get(), next);
        window->mixerRootView()->view().presentationCommand()->trigger();
        EXPECT_EQ(presentation.shown().get(), next);
    }
    ASSERT_TRUE(preferences.setValue("orvanePresentation", "sideways"));
    EXPECT_FALSE(launch({.channels = 8})->mixerRootView()->view().presentation().chosen().get());
}

TEST_F(Shell, HasTheMenus) {
    const auto window = launch();
    const auto items = [&] {
        QStringList texts;
        for (const QAction* menu : window->menuBar()->actions())
            for (const QAction* item : menu->menu()->actions())
                if (menu->isVisible() && !item->isSeparator()) texts.append(item->text());
        return texts;
    };
    EXPECT_THAT(
        items(), ElementsAre(
                     "About ORVANE", "Quit ORVANE", "ORVANE Help",
                     ResultOf([](const QString& text) { return text.contains("support@"); }, true)
                 )
    );
    buttonOf(*window, "8 channels").click();
    EXPECT_THAT(
        items().mid(2, 10), ElementsAre(
                                "1:1", "Clear Outputs", "Snapshots", "Load", "Open Recent", "Save",
                                "Save As…", "Audio / MIDI Devices", "8 Channels", "Start"
                            )
    );
}

TEST(HelpWindow, IsOneWindowThatBeginsWithTheFirstTopic) {
    HelpWindowPresenter presenter;
    presenter.show();
    HelpView* const view = presenter.window();
    EXPECT_EQ(view->selectedID(), "overview");
    presenter.show();
    EXPECT_EQ(presenter.window(), view);
}

TEST_F(Shell, AppliesTheCommandLine) {
    ASSERT_TRUE(preferences.setValue("orvaneChannelCount", "16"));
    session::MixerDocumentData document;
    document.channels.resize(3);
    document.channels[2].name = "Choir";
    document.master.masterOutputRouting = session::output::Mono{3};
    const auto window =
        launch({.session = document, .masterDevice = "virtual:monitor", .bufferSize = 128, .start = true});
    const engine::EngineState& state = window->mixerRootView()->engine().state();
    EXPECT_EQ(strips(*window), 4U);
    EXPECT_EQ(state.channelStrips.get()[2].name, "Choir");
    EXPECT_EQ(state.selectedDevice.get()->uid, "virtual:interface");
    EXPECT_EQ(state.masterOutputDevice.get()->uid, "virtual:monitor");
    EXPECT_EQ(state.bufferSize.get(), 128);
    EXPECT_TRUE(state.isRunning.get());
    EXPECT_THAT(state.lastError.get().value_or(""), testing::StartsWith("Master Out was reset to \"None\""));
    EXPECT_EQ(preferences.integer("orvaneChannelCount"), 16);

    const std::pair<LaunchOptions, const char*> refusals[] = {
        {{.channels = 5, .device = "virtual:none"}, "virtual:none"},
        {{.channels = 5, .device = "virtual:interface", .sampleRate = 96000}, "96000 Hz"}};
    for (const auto& [options, reason] : refusals) {
        const auto refused = launch(options);
        EXPECT_EQ(strips(*refused), 5U);
        EXPECT_FALSE(refused->mixerRootView()->engine().state().selectedDevice.get());
        const auto* const alert = refused->findChild<QMessageBox*>();
        ASSERT_NE(alert, nullptr) << reason;
        EXPECT_TRUE(alert->informativeText().contains(reason));
    }
}

TEST_F(Shell, SelectsTheDevicesOfLastTime) {
    const auto source = machine.addMIDISource("Pads");
    auto window = launch({.channels = 2, .device = "virtual:interface", .masterDevice = "virtual:monitor"});
    engine::MixerEngine& first = window->mixerRootView()->engine();
    const std::int32_t pads = first.state().availableMIDIDevices.get().at(0).id;
    first.selectMIDIDevice(pads);
    window = launch({.channels = 2});
    const auto state = [&]() -> const engine::EngineState& {
        return window->mixerRootView()->engine().state();
    };
    ASSERT_TRUE(state().selectedDevice.get() && state().masterOutputDevice.get());
    EXPECT_EQ(state().selectedDevice.get()->uid, "virtual:interface");
    EXPECT_EQ(state().masterOutputDevice.get()->uid, "virtual:monitor");
    EXPECT_EQ(state().selectedMIDIDeviceID.get(), pads);
    EXPECT_FALSE(state().isRunning.get());
    EXPECT_FALSE(window->isUnsaved());
    window = launch({.channels = 2, .device = "virtual:monitor"});
    EXPECT_EQ(state().selectedDevice.get()->uid, "virtual:monitor");
    ASSERT_TRUE(preferences.setValue("orvaneDevice", "virtual:gone"));
    window = launch({.channels = 2});
    EXPECT_FALSE(state().selectedDevice.get());
    EXPECT_EQ(window->findChild<QMessageBox*>(), nullptr);
}

TEST_F(Shell, AsksBeforeItClosesOverRunningAudioOrAnUnsavedSession) {
    for (const bool isRunning : {false, true})
        for (const bool isUnsaved : {false, true}) {
            const auto window = launch({.channels = 2, .device = "virtual:interface", .start = isRunning});
            window->show();
            engine::MixerEngine& engine = window->mixerRootView()->engine();
            if (isUnsaved) engine.setMasterTargetDB(-3.0);
            EXPECT_EQ(window->close(), !isRunning && !isUnsaved);
            auto* const question = window->findChild<QMessageBox*>();
            ASSERT_EQ(question != nullptr, isRunning || isUnsaved);
            if (question == nullptr) continue;
            EXPECT_EQ(question->informativeText().contains("running"), isRunning);
            EXPECT_EQ(question->informativeText().contains("saved"), isUnsaved);
            EXPECT_EQ(engine.state().isRunning.get(), isRunning);
            buttonOf(*question, isUnsaved ? "Quit Without Saving" : "Quit").click();
            EXPECT_FALSE(window->isVisible());
        }
}

TEST_F(Shell, SavesInPlaceToTheSessionsFile) {
    const TemporaryFolder folder;
    const auto window = launch({.session = session::MixerDocumentData{}, .channels = 2});
    SessionFile& file = window->mixerRootView()->view().sessionFile();
    EXPECT_FALSE(file.saveInPlace());
    window->saveInPlace();
    EXPECT_TRUE(folder.names().empty());

    const std::pair<const char*, double> targetByFile[] = {{"first.orvane", -3.0}, {"second.orvane", -5.0}};
    for (const auto& [name, targetDB] : targetByFile) {
        file.setFile(folder / name);
        window->mixerRootView()->engine().setMasterTargetDB(targetDB);
        EXPECT_TRUE(file.isUnsaved());
        window->saveInPlace();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !file.isUnsaved(); }));
    }
    for (const auto& [name, targetDB] : targetByFile)
        EXPECT_EQ(engine::readSession(folder / name).value().master.levels.masterTargetDB, targetDB);
}

TEST_F(Shell, NamesTheSessionsFileAndOpensRecentOnes) {
    const TemporaryFolder folder;
    const std::filesystem::path path = folder / "a & b.orvane";
    ASSERT_TRUE(engine::exportSession(sessionOf(2), path));
    RecentFiles recent(preferences);
    ASSERT_TRUE(recent.add(folder / "gone.orvane"));
    auto window = launch({.session = sessionOf(2), .sessionFile = path, .channels = 2});
    EXPECT_EQ(window->windowTitle(), "a & b.orvane[*] — ORVANE");
    EXPECT_FALSE(window->isWindowModified());
    window->mixerRootView()->engine().setMasterTargetDB(-3.0);
    machine.mainThread.advance(std::chrono::seconds(2));
    EXPECT_TRUE(window->isWindowModified());
    window->mixerRootView()->view().commands().save()->trigger();
    EXPECT_TRUE(hasWritten(*window));
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_EQ(window->findChild<QFileDialog*>(), nullptr);
    EXPECT_EQ(engine::readSession(path).value().master.levels.masterTargetDB, -3.0);

    window = launch({.channels = 2});
    EXPECT_EQ(window->windowTitle(), "ORVANE[*]");
    EXPECT_THAT(recent.existing(), ElementsAre(path));
    for (QMenu* menu : window->findChildren<QMenu*>())
        if (menu->title() == "Open Recent") {
            Q_EMIT menu->aboutToShow();
            menu->actions().at(0)->trigger();
        }
    EXPECT_TRUE(hasWritten(*window));
    EXPECT_EQ(window->windowTitle(), "a & b.orvane[*] — ORVANE");
    EXPECT_EQ(window->mixerRootView()->engine().state().master.get().levels.masterTargetDB, -3.0);
}

TEST_F(Shell, LosesNothingOfAFileWhenItSavesInPlace) {
    const TemporaryFolder folder;
    session::MixerDocumentData choir = sessionOf(4);
    choir.channels[3].name = "Alto";
    // Not UTF-8.
    const std::filesystem::path path = folder / "ch\xF6r.orvane";
    const auto window = launch({.session = choir, .sessionFile = path, .channels = 2});
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    auto* const name = viewsIn<ChannelStripView>(*window).front()->findChild<QLineEdit*>();
    name->setFocus();
    QTest::keyClick(name, Qt::Key_End);
    QTest::keyClicks(name, "!");
    window->saveInPlace();
    EXPECT_TRUE(hasWritten(*window));
    choir.channels[0].name += '!';
    EXPECT_EQ(engine::readSession(path).value(), choir);

    const auto saveTo = [&](const std::filesystem::path& target) {
        const auto outcome = save(*window, target);
        EXPECT_TRUE(QTest::qWaitFor([&] { return *outcome == true; })) << target;
    };
    std::filesystem::create_symlink(path, folder / "link.orvane");
    for (const std::filesystem::path& same :
         {folder / "link.orvane", folder / "." / path.filename(), std::filesystem::relative(path)}) {
        saveTo(same);
        EXPECT_EQ(engine::readSession(path).value(), choir) << same;
    }
    window->mixerRootView()->view().sessionFile().loadFrom(path);
    saveTo(folder / "copy.orvane");
    choir.channels.resize(2);
    EXPECT_EQ(engine::readSession(folder / "copy.orvane").value(), choir)
        << "a new file has only the mixer's channels";
}

TEST_F(Shell, AsksBeforeItReplacesAFileThatIsProtectedOrWasChangedElsewhere) {
    const TemporaryFolder folder;
    const session::MixerDocumentData document = sessionOf(2);
    const auto path = folder / "show.orvane";
    ASSERT_TRUE(engine::exportSession(document, path));
    const auto window = launch({.session = document, .sessionFile = path, .channels = 2});
    const std::string own = contentOf(path);
    struct Case {
        const char* says;
        std::function<void()> happens;
    };
    for (const Case& one :
         {Case{"was changed by another program", [&] { folder.add("show.orvane", "another's"); }},
          Case{"is write-protected", [&] {
                   std::filesystem::permissions(path, std::filesystem::perms(0444));
               }}}) {
        one.happens();
        const std::string before = contentOf(path);
        EXPECT_EQ(*save(*window, path), false) << one.says;
        EXPECT_EQ(contentOf(path), before) << one.says;
        QMessageBox* const question = window->findChild<QMessageBox*>();
        ASSERT_NE(question, nullptr) << one.says;
        EXPECT_TRUE(question->informativeText().contains(QString::fromUtf8(one.says))) << one.says;
        buttonOf(*question, "Replace").click();
        EXPECT_TRUE(hasWritten(*window));
        EXPECT_EQ(contentOf(path), own) << one.says;
        deleteWhatIsDone();
    }
    std::filesystem::permissions(path, std::filesystem::perms(0644));
    const auto again = save(*window, path);
    EXPECT_TRUE(hasWritten(*window));
    EXPECT_EQ(*again, true) << "its own save is not a foreign change";
}

TEST_F(Shell, ChangesTheChannelCountOnceTheSessionIsSaved) {
    const TemporaryFolder folder;
    session::MixerDocumentData document = sessionOf(8);
    document.channels[0].pluginSlots[0].component = plugins::identityOf(machine.effect);
    // The installed plugins are known only later, so the session waits at first.
    const auto window = launch({.session = document});
    for (const bool isWritable : {false, true}) {
        const auto saved = save(*window, folder / (isWritable ? "show.orvane" : "missing/show.orvane"));
        buttonOf(*window, "8 Channels").click();
        buttonOf(*window->findChild<QMessageBox*>(), "Change Channel Count").click();
        EXPECT_TRUE(QTest::qWaitFor([&] { return saved->has_value(); })) << "the caller is not notified";
        EXPECT_EQ(*saved, isWritable);
        QApplication::processEvents();
        EXPECT_EQ(isChoosing(*window), isWritable) << "unsaved changes would be lost";
        deleteWhatIsDone();
    }
}

TEST_F(Shell, ClosesOnceTheSessionIsSaved) {
    const TemporaryFolder folder;
    const auto window = launch({.channels = 2});
    window->show();
    window->mixerRootView()->engine().setMasterTargetDB(-3.0);
    EXPECT_FALSE(window->close());
    buttonOf(*window->findChild<QMessageBox*>(), "Save…").click();
    auto* const files = window->findChild<QFileDialog*>();
    ASSERT_NE(files, nullptr);
    Q_EMIT files->urlSelected(QUrl::fromLocalFile(QString::fromStdString(folder / "missing" / "show.orvane"))
    );
    EXPECT_TRUE(hasWritten(*window));
    EXPECT_TRUE(window->isVisible()) << "unsaved changes would be lost";
    Q_EMIT files->fileSelected(QString::fromStdString(folder / "show.orvane"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window->isVisible(); }));
    EXPECT_TRUE(std::filesystem::exists(folder / "show.orvane"));
}

} // namespace
