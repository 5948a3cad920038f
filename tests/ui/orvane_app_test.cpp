#include "ui/windows/orvane_app.h"

#include "ui/windows/channel_count_picker_view.h"

#include "mixer_machine.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMenuBar>
#include <QMessageBox>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;

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

    MixerMachine machine;
    platform::InMemoryPreferences preferences;
};

TEST_F(Shell, AsksForASizeOnceAndAgainWhenTheUserWantsAnother) {
    for (const char* unusable : {"0", "-4", "many"}) {
        ASSERT_TRUE(preferences.setValue("orvaneChannelCount", unusable));
        EXPECT_TRUE(isChoosing(*launch())) << unusable;
    }
    auto window = launch();
    buttonOf(*window, "8 channels").click();
    ASSERT_NE(window->mixerRootView(), nullptr);
    EXPECT_EQ(strips(*window), 8U);
    const auto& firstStrip = window->mixerRootView()->engine().state().channelStrips.get()[0];
    window->mixerRootView()->engine().setName(firstStrip.id, "Kept?");

    window = launch();
    EXPECT_EQ(strips(*window), 8U);
    window->mixerRootView()->engine().setMuted(
        window->mixerRootView()->engine().state().channelStrips.get()[0].id, true
    );
    buttonOf(*window, "8 Channels").click();
    buttonOf(*window, "Change Channel Count").click();
    EXPECT_TRUE(isChoosing(*window));
    EXPECT_EQ(preferences.integer("orvaneChannelCount"), 0);
    buttonOf(*window->centralWidget(), "8 channels").click();
    EXPECT_EQ(strips(*window), 8U);
    EXPECT_FALSE(window->mixerRootView()->engine().state().channelStrips.get()[0].muted);
}

TEST_F(Shell, IsNeverSmallerThanItsContentAndOpensWhereItWas) {
    auto window = launch();
    EXPECT_EQ(window->size(), QSize(1280, 860));
    window->show();
    window->resize(10, 10);
    QApplication::processEvents();
    EXPECT_GE(window->centralWidget()->width(), 900);
    EXPECT_GE(window->centralWidget()->height(), 560);
    window->resize(1000, 700);
    QApplication::processEvents();
    window.reset();
    EXPECT_EQ(launch()->size(), QSize(1000, 700));
}

TEST_F(Shell, HasTheMenus) {
    const auto window = launch();
    QStringList items;
    for (const QAction* menu : window->menuBar()->actions())
        for (const QAction* item : menu->menu()->actions())
            if (!item->isSeparator()) items.append(item->text());
    ASSERT_EQ(items.size(), 4);
    EXPECT_EQ(items[0], "About ORVANE");
    EXPECT_EQ(items[2], "ORVANE Help");
    EXPECT_TRUE(items[3].contains("support@"));
}

TEST_F(Shell, BeginsWithWhatTheCommandLineSays) {
    ASSERT_TRUE(preferences.setValue("orvaneChannelCount", "16"));
    session::MixerDocumentData document;
    document.channels.resize(3);
    document.channels[2].name = "Choir";
    const auto window =
        launch({.session = document, .masterDevice = "virtual:monitor", .bufferSize = 128, .start = true});
    const engine::EngineState& state = window->mixerRootView()->engine().state();
    EXPECT_EQ(strips(*window), 4U);
    EXPECT_EQ(state.channelStrips.get()[2].name, "Choir");
    EXPECT_EQ(state.selectedDevice.get()->uid, "virtual:interface");
    EXPECT_EQ(state.masterOutputDevice.get()->uid, "virtual:monitor");
    EXPECT_EQ(state.bufferSize.get(), 128);
    EXPECT_TRUE(state.isRunning.get());
    EXPECT_EQ(preferences.integer("orvaneChannelCount"), 16);

    const auto wrong = launch({.channels = 5, .device = "virtual:none"});
    EXPECT_EQ(strips(*wrong), 5U);
    const auto* const alert = wrong->findChild<QMessageBox*>();
    ASSERT_NE(alert, nullptr);
    EXPECT_TRUE(alert->informativeText().contains("virtual:none"));
}

TEST_F(Shell, AsksBeforeItClosesOverRunningAudio) {
    const auto window = launch({.channels = 2, .start = true});
    window->show();
    EXPECT_FALSE(window->close());
    auto* const question = window->findChild<QMessageBox*>();
    ASSERT_NE(question, nullptr);
    EXPECT_TRUE(window->mixerRootView()->engine().state().isRunning.get());
    buttonOf(*question, "Quit").click();
    EXPECT_FALSE(window->isVisible());
}

} // namespace
