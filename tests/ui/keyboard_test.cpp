#include "ui/controls/value_slider.h"
#include "ui/controls/vertical_fader.h"
#include "ui/keys.h"
#include "ui/strip/channel_strip_view.h"

#include "mixer_machine.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;

/// A window of 24 strips, operated by its keys.
class Keyboard : public WindowTest {
  protected:
    Keyboard() {
        open(24);
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    static QString focused() { return QApplication::focusWidget()->accessibleName(); }
    ChannelStripView& view(std::size_t index) { return *viewsIn<ChannelStripView>(*window).at(index); }
    const session::ChannelStrip& at(std::size_t index) { return mixer().state().channelStrips.get()[index]; }
    std::int64_t mutedCount() {
        return std::ranges::count_if(mixer().state().channelStrips.get(), &session::ChannelStrip::muted);
    }
    void answer(const char* button) {
        buttonOf(*window->findChild<QMessageBox*>(), button).click();
        deleteWhatIsDone();
    }
};

TEST_F(Keyboard, GoesFromStripToStripOnTheSameControl) {
    press(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(focused(), "Ch 1");
    viewsIn<VerticalFader>(view(14)).front()->setFocus();
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    EXPECT_EQ(focused(), "Trim, channel 17") << "on the next page";
    EXPECT_TRUE(view(16).isVisible());
    press(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(focused(), "Trim, channel 16");
    viewNamed<QWidget>(view(0), "Trigger filter").setFocus();
    press(Qt::Key_Right);
    EXPECT_EQ(at(0).genderMode, dsp::GenderTriggerMode::male) << "the control's own key";
    press(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(focused(), "Trigger filter, channel 1") << "nothing is left of the first strip";
    mixer().setStereo(strip(), true);
    viewNamed<QWidget>(view(0), "Pan").setFocus();
    press(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(focused(), "Ch 2") << "a strip without this control";
}

TEST_F(Keyboard, MutesAndBypassesTheStripInFocusButNeverWhileANameIsTyped) {
    press(Qt::Key_M);
    EXPECT_EQ(mutedCount(), 0);
    viewNamed<QWidget>(view(2), "Input").setFocus();
    press(Qt::Key_M);
    press(Qt::Key_B);
    EXPECT_TRUE(at(2).muted && at(2).bypassed);
    press(Qt::Key_M);
    EXPECT_FALSE(at(2).muted);
    auto& name = viewNamed<QLineEdit>(view(1), "Name");
    name.setFocus();
    name.selectAll();
    for (const Qt::Key key : {Qt::Key_M, Qt::Key_B, Qt::Key_Return})
        press(key);
    EXPECT_EQ(at(1).name, "mb");
    EXPECT_FALSE(at(1).muted || at(1).bypassed);
}

TEST_F(Keyboard, MutesEveryStripAfterAQuestionAndUnmutesWhatItMuted) {
    mixer().setMuted(strip(3), true);
    press(Qt::Key_M, Qt::ControlModifier);
    answer("Cancel");
    EXPECT_EQ(mutedCount(), 1);
    press(Qt::Key_M, Qt::ControlModifier);
    EXPECT_EQ(window->findChild<QMessageBox*>()->defaultButton()->text(), "Mute All");
    answer("Mute All");
    EXPECT_EQ(mutedCount(), 24);
    mixer().setMuted(strip(5), false);
    press(Qt::Key_M, Qt::ControlModifier);
    answer("Unmute");
    EXPECT_EQ(mutedCount(), 1);
    EXPECT_TRUE(at(3).muted) << "muted before";
}

TEST_F(Keyboard, ScrollsByTheGroundAndMovesASliderThatIsNearlyHit) {
    mixer().setStereo(strip(), true);
    auto& pan = viewNamed<ValueSlider>(view(0), "Pan");
    QWidget& ground = *view(0).parentWidget();
    // A press that the strip does not take goes to the ground.
    const QPoint above = pan.mapTo(&ground, QPoint(pan.width() - 8, pan.height() / 2 - 11));
    QTest::mouseClick(&ground, Qt::LeftButton, {}, above);
    EXPECT_GT(std::get<session::output::Stereo>(at(0).outputRouting).pan, 0.8);
    EXPECT_TRUE(pan.hasFocus());
    QTest::mouseClick(&ground, Qt::LeftButton, {}, pan.mapTo(&ground, QPoint(2, pan.height() / 2 + 15)));
    EXPECT_GT(std::get<session::output::Stereo>(at(0).outputRouting).pan, 0.8) << "beyond its reach";

    auto& stereo = buttonOf(view(1), "Stereo");
    QTest::mouseClick(&ground, Qt::LeftButton, {}, stereo.mapTo(&ground, QPoint(9, stereo.height() + 3)));
    EXPECT_TRUE(stereo.isChecked()) << "a low button has room below";

    const auto& area = *dynamic_cast<QScrollArea*>(ground.parentWidget()->parentWidget());
    const QPoint beside = view(3).geometry().topRight() + QPoint(6, 100);
    const QPoint start = ground.mapToGlobal(beside);
    QTest::mousePress(&ground, Qt::LeftButton, {}, beside);
    for (int moved = 10; moved <= 200; moved += 10)
        QTest::mouseMove(&ground, ground.mapFromGlobal(start - QPoint(moved, 0)));
    QTest::mouseRelease(&ground, Qt::LeftButton, {}, ground.mapFromGlobal(start - QPoint(200, 0)));
    EXPECT_TRUE(QTest::qWaitFor([&] { return area.horizontalScrollBar()->value() > 100; }));
}

TEST(Keys, StandInTheManualAsInTheHelp) {
    std::ifstream file(ORVANE_MANUAL);
    const QString manual =
        QString::fromStdString({std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()});
    QString expected = QStringLiteral(".SH KEYS\n");
    for (const KeyGroup& group : keyGroups()) {
        expected += QStringLiteral(".SS %1\n").arg(group.title);
        for (const KeyEntry& entry : group.entries) {
            expected += QStringLiteral(".TP\n.B %1\n%2\n").arg(written(entry), entry.effect);
            EXPECT_EQ(QKeySequence::listFromString(entry.keys).count(QKeySequence()), 0)
                << entry.keys.toStdString();
        }
    }
    EXPECT_TRUE(manual.contains(expected + ".SH ")) << expected.toStdString();
}

} // namespace
