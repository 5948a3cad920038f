#include "ui/controls/confirmation.h"
#include "ui/controls/console_button.h"
#include "ui/controls/menu_picker.h"
#include "ui/controls/value_slider.h"
#include "ui/controls/vertical_fader.h"
#include "ui/qt_main_thread.h"
#include "ui/strip/name_field.h"
#include "ui/theme/theme.h"

#include "widgets.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QLabel>
#include <QMessageBox>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QTest>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <chrono>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace {

using namespace orvane::ui;

void drag(QWidget& widget, QEvent::Type type, double y) {
    const QPointF position(widget.width() / 2.0, y);
    QMouseEvent event(
        type, position, widget.mapToGlobal(position), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier
    );
    QApplication::sendEvent(&widget, &event);
}

/// Turns the wheel by a number of notches; a touchpad sends fractions.
void turnWheel(QWidget& widget, double notches, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    const QPointF middle(widget.width() / 2.0, widget.height() / 2.0);
    constexpr double angleOfANotch = 120.0;
    const QPoint turned(0, static_cast<int>(notches * angleOfANotch));
    QWheelEvent event(
        middle, widget.mapToGlobal(middle), {}, turned, Qt::NoButton, modifiers, Qt::NoScrollPhase, false
    );
    QApplication::sendEvent(&widget, &event);
}

void giveFocus(QWidget& widget) {
    widget.show();
    widget.activateWindow();
    widget.setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&widget] { return widget.hasFocus(); }));
}

TEST(VerticalFader, SnapsToItsDefaultAndReachesItsEnds) {
    std::vector<double> chosen;
    const auto keep = [&chosen](double value) { chosen.push_back(value); };
    VerticalFader fader({.lowest = 0.0, .highest = 2.0, .defaultValue = 1.0}, keep);
    VerticalFader plain({.lowest = -1.0, .highest = 1.0}, keep);
    for (VerticalFader* each : {&fader, &plain})
        each->resize(36, 130 + 2 * each->overhang());
    const double top = fader.overhang();
    for (const auto& [y, value] :
         {std::pair(0.0, 2.0),
          {62.0, 1.0},
          {130.0, 0.0},
          {71.0, 1.0},
          {200.0, 0.0},
          {-5.0, 2.0},
          {72.0, 116.0 / 130.0}}) {
        drag(fader, QEvent::MouseButtonPress, top + y);
        EXPECT_DOUBLE_EQ(fader.value(), value) << y;
    }
    drag(fader, QEvent::MouseMove, top + 66.0);
    EXPECT_EQ(fader.value(), 1.0);
    EXPECT_EQ(chosen.back(), 1.0);
    drag(plain, QEvent::MouseButtonPress, top + 63.0);
    EXPECT_NEAR(plain.value(), 1.0 - 2.0 * 63.0 / 130.0, 1e-12);
    fader.setValue(0.25);
    EXPECT_NE(chosen.back(), 0.25);
    drag(fader, QEvent::MouseButtonDblClick, top + 10.0);
    EXPECT_DOUBLE_EQ(fader.value(), 2.0 - 2.0 * 10.0 / 130.0) << "two quick clicks set the clicked place";
    drag(fader, QEvent::MouseButtonPress, top + 65.0);
    QTest::keyClick(&fader, Qt::Key_Up);
    EXPECT_GT(fader.value(), 1.01);
    QTest::keyClick(&fader, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_GT(fader.value(), 1.01);
    QTest::keyClick(&fader, Qt::Key_Home);
    EXPECT_EQ(fader.value(), 2.0);
    QTest::keyClick(&fader, Qt::Key_End);
    turnWheel(fader, 2.0);
    EXPECT_EQ(fader.value(), 0.0) << "the wheel only passed over it";
    giveFocus(fader);
    turnWheel(fader, 2.0);
    const double coarse = fader.value();
    EXPECT_GT(coarse, 0.0);
    turnWheel(fader, -1.0);
    EXPECT_DOUBLE_EQ(fader.value(), coarse / 2.0);
    turnWheel(fader, 1.0, Qt::ShiftModifier);
    EXPECT_LT(fader.value(), coarse);

    QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(&fader);
    ASSERT_NE(told->valueInterface(), nullptr);
    told->valueInterface()->setCurrentValue(0.5);
    EXPECT_EQ(chosen.back(), 0.5);
}

TEST(VerticalFader, ShowsItsValueUpToBothEnds) {
    VerticalFader fader({.lowest = 0.0, .highest = 2.0, .defaultValue = 1.0}, {});
    fader.resize(36, 130 + 2 * fader.overhang());
    QImage before;
    for (const double value : {0.0, 0.05, 0.1, 1.9, 1.95, 2.0}) {
        fader.setValue(value);
        const QImage shown = fader.grab().toImage();
        EXPECT_NE(shown, before) << value;
        before = shown;
        const int middle = static_cast<int>(fader.positionOf(value));
        EXPECT_NE(shown.pixelColor(18 + 9, middle + 4), shown.pixelColor(1, middle + 4)) << value;
        EXPECT_NE(shown.pixelColor(18 + 9, middle - 5), shown.pixelColor(1, middle - 5)) << value;
    }
}

TEST(ValueSlider, FillsFromItsDefaultValueIfItIsAskedTo) {
    ValueSlider pan(
        "Pan", {.lowest = -1.0, .highest = 1.0, .defaultValue = 0.0, .fillsFromDefault = true}, {}
    );
    pan.resize(112, 24);
    const auto isFilled = [&pan](int x) { return pan.grab().toImage().pixel(x, 12) == theme::accent.rgb(); };
    for (const auto& [value, left, right] :
         {std::tuple(0.0, false, false), {-0.9, true, false}, {0.9, false, true}}) {
        pan.setValue(value);
        EXPECT_EQ(isFilled(40), left) << value;
        EXPECT_EQ(isFilled(70), right) << value;
    }
}

TEST(ValueSlider, SupportsWheelDragAndAssistiveTools) {
    std::vector<double> chosen;
    const auto keep = [&chosen](double value) { chosen.push_back(value); };
    ValueSlider whole("Count", {.lowest = 0.0, .highest = 10.0, .step = 1.0, .defaultValue = {}}, keep);
    whole.resize(200, 24);
    turnWheel(whole, 1.0);
    EXPECT_EQ(whole.value(), 0.0) << "the wheel only passed over it";
    giveFocus(whole);
    for (const auto& [notches, value] :
         {std::pair(1.0, 1.0), {0.5, 1.0}, {0.5, 2.0}, {-3.0, 0.0}, {20.0, 10.0}}) {
        turnWheel(whole, notches);
        EXPECT_EQ(whole.value(), value) << notches;
    }
    drag(whole, QEvent::MouseButtonPress, 12.0);
    EXPECT_EQ(whole.value(), 5.0);
    drag(whole, QEvent::MouseMove, 12.0);
    drag(whole, QEvent::MouseButtonRelease, 12.0);
    QTest::keyClick(&whole, Qt::Key_Up);
    EXPECT_EQ(whole.value(), 6.0);
    QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(&whole);
    ASSERT_NE(told->valueInterface(), nullptr);
    EXPECT_EQ(told->role(), QAccessible::Slider);
    EXPECT_EQ(told->text(QAccessible::Name), "Count");
    EXPECT_EQ(told->valueInterface()->currentValue(), 6.0);
    EXPECT_EQ(told->valueInterface()->minimumStepSize(), 1.0);
    told->valueInterface()->setCurrentValue(told->valueInterface()->maximumValue());
    EXPECT_EQ(chosen.back(), 10.0);
}

TEST(ToolTips, ArePlainTextAndWrap) {
    QWidget widget;
    widget.setToolTip(
        QStringLiteral("A <b>word</b> & ") + QStringLiteral("more of them ").repeated(60)
        + QStringLiteral("\nnext line")
    );
    widget.show();
    QHelpEvent event(QEvent::ToolTip, {1, 1}, {1, 1});
    QApplication::sendEvent(&widget, &event);
    const auto windows = QApplication::topLevelWidgets();
    const auto shown = std::ranges::find_if(windows, [](const QWidget* each) {
        return each->windowFlags().testFlag(Qt::ToolTip) && each->isVisible();
    });
    ASSERT_NE(shown, windows.end());
    EXPECT_TRUE(QToolTip::text().contains("A &lt;b&gt;word&lt;/b&gt; &amp; more"))
        << QToolTip::text().toStdString();
    EXPECT_TRUE(QToolTip::text().contains("<br>next line"));
    EXPECT_LT((*shown)->width(), 1000);
    QToolTip::hideText();
}

/// Whether a row of capital letters ends with only an ellipsis.
bool endsWithDots(QWidget& widget, int end) {
    const QImage upperHalf = widget.grab({end - 9, 4, 8, widget.height() / 2 - 4}).toImage();
    for (int y = 0; y < upperHalf.height(); ++y)
        for (int x = 0; x < upperHalf.width(); ++x)
            if (upperHalf.pixel(x, y) != upperHalf.pixel(0, 0)) return false;
    return true;
}

TEST(LongTexts, EndWithAnEllipsisUnlessTheyAreEdited) {
    const QString longText = QStringLiteral("M").repeated(60);
    NameField name(longText);
    MenuPicker picker("Device", 120, {});
    picker.present({longText, "Short"}, 0);
    for (QWidget* each : {static_cast<QWidget*>(&name), static_cast<QWidget*>(&picker)})
        each->resize(120, 24);
    name.setCursorPosition(0);
    EXPECT_TRUE(endsWithDots(name, 117));
    EXPECT_TRUE(endsWithDots(picker, 98));
    giveFocus(name);
    EXPECT_FALSE(endsWithDots(name, 117));
}

TEST(Confirmation, CutsNoWordsAndMarksDestructiveActions) {
    QWidget window;
    window.show();
    const QString message = QStringLiteral("Couldn't read that settings file: %1 is missing.")
                                .arg(QStringLiteral("channels[0].pluginSlots[0].").repeated(9));
    showAlert(&window, "It failed.", message);
    QApplication::processEvents();
    const auto* const box = window.findChild<QMessageBox*>();
    const auto* const label = box->findChild<QLabel*>("qt_msgbox_informativelabel");
    const QRegularExpression breaks(QStringLiteral("[ \\x{200b}]"));
    for (const QString& word : label->text().split(breaks))
        EXPECT_LE(label->fontMetrics().horizontalAdvance(word), label->width()) << word.toStdString();
    EXPECT_EQ(label->text().remove(QChar(0x200b)), message);
    delete box;

    confirm(&window, {.title = "Really?", .message = {}, .action = "Go Ahead"}, [] {});
    QApplication::processEvents();
    for (QAbstractButton* button : window.findChild<QMessageBox*>()->buttons()) {
        const QString fill = button->grab().toImage().pixelColor(4, 8).name();
        EXPECT_EQ(fill == theme::red.darker(170).name(), button->text() == "Go Ahead") << fill.toStdString();
    }
}

TEST(ConsoleButton, IsPressedOnceAndOnlyIfEnabled) {
    int presses = 0;
    ConsoleButton button("Store", [&presses] { ++presses; });
    button.resize(button.sizeHint());
    button.click();
    QTest::keyClick(&button, Qt::Key_Return);
    EXPECT_TRUE(orvane::test::holdEnter(button));
    EXPECT_EQ(presses, 2) << "while Enter is held";
    button.setActive(true);
    const QImage lit = button.grab().toImage();
    giveFocus(button);
    EXPECT_NE(button.grab().toImage(), lit) << "the focus is invisible";
    button.setEnabled(false);
    button.click();
    QTest::keyClick(&button, Qt::Key_Return);
    EXPECT_EQ(presses, 2);
}

TEST(QtMainThread, RunsTasksOfAnyThreadInOrderAndTimersUntilTheyEnd) {
    QtMainThread mainThread;
    std::vector<int> ran;
    std::thread other([&] {
        for (int i = 0; i < 3; ++i)
            mainThread.post([&ran, i] { ran.push_back(i); });
    });
    other.join();
    EXPECT_TRUE(ran.empty());
    int ticks = 0;
    std::unique_ptr<orvane::platform::MainThreadTimer> timer =
        mainThread.repeat(std::chrono::milliseconds(1), [&] {
            if (++ticks == 3) timer.reset();
        });
    while (timer)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_EQ(ran, (std::vector{0, 1, 2}));
    EXPECT_EQ(ticks, 3);
}

TEST(QtMainThread, ContinuesIfATaskOrATimerRunsOutOfMemory) {
    QtMainThread mainThread;
    mainThread.post([] { throw std::bad_alloc(); });
    int ticks = 0;
    const auto timer = mainThread.repeat(std::chrono::milliseconds(1), [&] {
        ++ticks;
        throw std::bad_alloc();
    });
    testing::internal::CaptureStderr();
    while (ticks < 3)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::ranges::count(said, '\n'), 1 + ticks) << said;
}

} // namespace
