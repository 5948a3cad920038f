#include "ui/windows/status_bar_view.h"

#include "ui/controls/console_button.h"
#include "ui/controls/indicator_lamp.h"
#include "ui/meters/meters.h"
#include "ui/mixer/mixer_commands.h"

#include "mixer_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTest>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

class StatusBar : public MixerViewTest {
  protected:
    bool isLit(const char* name) { return viewNamed<IndicatorLamp>(view, name).isLit(); }
    bool isActive(const char* title) { return static_cast<ConsoleButton&>(buttonOf(view, title)).isActive(); }

    MixerCommands commands{engine, {}};
    StatusBarView view{engine, commands};
};

TEST_F(StatusBar, ShowsTheFiguresOfTheEngine) {
    audio::AudioDeviceInfo info{7, "uid", "Any", 2, 2, 0.0};
    for (const auto& [rate, text] :
         {std::pair(48000.0, "48k"), {44100.0, "44k"}, {0.0, "--"}, {192000.0, "192k"}}) {
        info.sampleRate = rate;
        engine.selectDevice(info);
        EXPECT_TRUE(shows(view, text)) << rate;
    }
    engine.setBufferSize(64);
    std::vector<std::string> told;
    for (const QLabel* label : view.findChildren<QLabel*>())
        told.push_back(label->accessibleName().toStdString());
    EXPECT_THAT(told, IsSupersetOf({"Sample rate: 192k", "Buffer size: 64"}));
    const auto* const load = viewsIn<LoadMeterView>(view).at(0);
    EXPECT_EQ(load->size(), QSize(68, 10));
    engine.meterModel().cpuLoad.set(1.0);
    EXPECT_EQ(load->litSegments(), load->segmentCount());
}

TEST_F(StatusBar, LightsItsLampsForAudioAndMIDI) {
    engine.start();
    EXPECT_TRUE(shows(view, "No audio device selected."));
    EXPECT_FALSE(isLit("Audio"));
    EXPECT_FALSE(isLit("Remote"));
    engine.selectDevice(device(0));
    engine.start();
    EXPECT_FALSE(shows(view, "No audio device selected."));
    EXPECT_TRUE(isLit("Audio"));
    engine.stop();
    EXPECT_FALSE(isLit("Audio"));
    auto source = machine.addMIDISource("Pads");
    EXPECT_TRUE(isLit("Remote"));
    source.reset();
    machine.mainThread.runPosted();
    EXPECT_FALSE(isLit("Remote"));
}

TEST_F(StatusBar, HintsOnceAtTheFirstOverOfAnOutput) {
    const QString hint = "Output 2 went over full scale: lower Target or switch the limiter on.";
    audio::MeterModel& meters = engine.meterModel();
    const auto play = [&meters](std::uint64_t overs) {
        meters.outputPeaks.set({{}, {true, 1.0, overs}});
        meters.masterPeak.set({});
    };
    engine.setMasterOutputChannel(1);
    play(0);
    EXPECT_FALSE(shows(view, hint));
    play(1);
    EXPECT_TRUE(shows(view, hint));
    engine.report("An error comes first.");
    EXPECT_FALSE(shows(view, hint));
    engine.start();
    meters.resetOvers();
    play(2);
    EXPECT_FALSE(shows(view, hint));
}

TEST_F(StatusBar, ShowsTheLoad) {
    const LoadMeterView& load = *viewsIn<LoadMeterView>(view).at(0);
    const auto help = [&] { return load.toolTip().toStdString(); };
    EXPECT_THAT(help(), Not(HasSubstr("xruns")));
    engine.selectDevice(device(0));
    for (const auto& [share, peak] : {std::pair(0.5, "at most 50.0 %"), {0.2, "at most 20.0 %"}}) {
        engine.start();
        ASSERT_TRUE(state().isRunning.get()) << state().lastError.get().value_or("");
        engine.meterModel().cpuLoad.set(share);
        engine.meterModel().cpuLoad.set(0.125);
        EXPECT_THAT(help(), AllOf(HasSubstr("12.5 %"), HasSubstr(peak), HasSubstr("(xruns): 0.")));
        EXPECT_THAT(help(), HasSubstr("No real-time priority was obtained."));
        engine.stop();
    }
}

TEST_F(StatusBar, NamesTheSceneThatWaitsForANoteAndCancelsIt) {
    const QString notice = "Waiting for a MIDI note for\n";
    engine.newSnapshot();
    engine.newSnapshot();
    EXPECT_FALSE(buttonOf(view, "Cancel MIDI learn").isVisibleTo(&view));
    engine.beginMIDILearn();
    EXPECT_TRUE(shows(view, notice + "2 Snapshot 2"));
    engine.renameSnapshot(1, "Intro");
    EXPECT_TRUE(shows(view, notice + "2 Intro"));
    engine.deleteSnapshot();
    EXPECT_TRUE(shows(view, notice + "2 (no longer there)"));
    buttonOf(view, "Cancel MIDI learn").click();
    EXPECT_FALSE(state().midiLearnTargetIndex.get());
    EXPECT_FALSE(buttonOf(view, "Cancel MIDI learn").isVisibleTo(&view));
}

TEST_F(StatusBar, RecallsTheNextSceneWithOneKeyOrClick) {
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    for (const double targetDB : {-20.0, -15.0, -5.0}) {
        engine.setMasterTargetDB(targetDB);
        engine.newSnapshot();
    }
    engine.selectSnapshot(0);
    EXPECT_TRUE(shows(view, "3 Snapshot 3") && shows(view, "1 Snapshot 1"));
    buttonOf(view, "Recall Next Scene").click();
    EXPECT_TRUE(shows(view, "1 Snapshot 1") && shows(view, "2 Snapshot 2"));
    EXPECT_EQ(state().master.get().levels.masterTargetDB, -20.0);
    QTest::keyClick(&view, Qt::Key_F8);
    EXPECT_EQ(state().master.get().levels.masterTargetDB, -15.0);
    EXPECT_TRUE(shows(view, "SCENE"));
    engine.setMasterTargetDB(-9.0);
    EXPECT_TRUE(shows(view, "SCENE · EDITED"));
    QTest::keyClick(&view, Qt::Key_F6);
    EXPECT_TRUE(shows(view, "2 Snapshot 2")) << "the scene can be recalled again";
    EXPECT_EQ(state().master.get().levels.masterTargetDB, -9.0);
    QTest::keyClick(&view, Qt::Key_F7);
    EXPECT_FALSE(buttonOf(view, "Next Scene").isEnabled()) << "the last one is chosen";
}

TEST_F(StatusBar, ArmsTheClipboardAndExplainsPaste) {
    QAbstractButton& paste = buttonOf(view, "Paste");
    paste.click();
    EXPECT_FALSE(isActive("Paste"));
    buttonOf(view, "Copy").click();
    EXPECT_TRUE(isActive("Copy"));
    buttonOf(view, "Copy").click();
    EXPECT_FALSE(isActive("Copy"));

    const platform::Uuid strip = state().channelStrips.get()[0].id;
    engine.selectDevice(device(0));
    engine.loadPlugin(machine.effect, 0, strip);
    machine.mainThread.runPosted();
    buttonOf(view, "Copy").click();
    engine.handleClipboardClick(0, strip);
    EXPECT_FALSE(isActive("Copy"));
    EXPECT_TRUE(paste.toolTip().contains("paste Warmth there")) << paste.toolTip().toStdString();
    paste.click();
    EXPECT_TRUE(isActive("Paste"));
    EXPECT_EQ(state().pluginClipboardArmState.get(), plugins::PluginClipboardArmState::armedForPaste);
}

} // namespace
