#include "ui/sheets/sheet.h"
#include "ui/windows/orvane_app.h"

#include "mixer_machine.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QScreen>
#include <QScrollArea>
#include <QTest>

#include <string>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;

bool isWithin(const QWidget& inner, const QWidget& outer) {
    return outer.rect().contains(QRect(inner.mapTo(&outer, QPoint()), inner.size()));
}

/// Whether a button of a sheet is visible after scrolling to it.
bool isInReach(QAbstractButton& button, const QDialog& sheet) {
    for (QScrollArea* area : sheet.findChildren<QScrollArea*>())
        if (area->isAncestorOf(&button)) area->ensureWidgetVisible(&button);
    return isWithin(button, sheet);
}

TEST(SmallScreens, HoldTheFirstWindowAndEverySheet) {
    MixerMachine machine;
    const QList<QScreen*> screens = QApplication::screens();
    ASSERT_EQ(screens.size(), 5);
    for (QScreen* screen : screens.mid(1)) {
        const std::string name = screen->name().toStdString();
        const QRect room(QPoint(), screen->availableSize());
        platform::InMemoryPreferences preferences;
        ORVANEApp window({machine.services(), preferences}, {.channels = 8});
        window.setScreen(screen);
        window.move(screen->availableGeometry().topLeft());
        window.show();
        QApplication::processEvents();
        EXPECT_TRUE(room.contains(QRect(QPoint(), window.frameGeometry().size())))
            << name << " " << window.frameGeometry().width() << " x " << window.frameGeometry().height();
        EXPECT_TRUE(isWithin(buttonOf(window, "Start"), window)) << name;
        window.resize(1, 1);
        QApplication::processEvents();
        EXPECT_GE(window.width(), 900) << name;
        EXPECT_GE(window.height(), 560) << name;
        for (const char* opening : {"Audio / MIDI Devices", "Snapshots", "Output…", "Insert 1 (empty)"}) {
            buttonOf(window, opening).click();
            auto* const sheet = viewsIn<Sheet>(window).at(0);
            QApplication::processEvents();
            EXPECT_TRUE(room.contains(QRect(QPoint(), sheet->frameGeometry().size()))) << name << opening;
            for (QAbstractButton* button : sheet->findChildren<QAbstractButton*>())
                EXPECT_TRUE(!button->isVisible() || isInReach(*button, *sheet))
                    << name << button->text().toStdString();
            sheet->reject();
            deleteWhatIsDone();
        }
    }
}

TEST(SmallScreens, HoldAWindowRememberedFromALargerOne) {
    MixerMachine machine;
    // The last screen is too low for the smallest content with a title above it.
    for (QScreen* screen : QApplication::screens().mid(1, 3)) {
        const QRect room = screen->availableGeometry();
        for (const QPoint corner : {QPoint(90, 60), QPoint(-90, -60), QPoint(0, 0), QPoint(20000, 9000)}) {
            QWidget remembered;
            remembered.setScreen(screen);
            remembered.setGeometry(QRect(room.topLeft() + corner, QSize(1272, 688)));
            platform::InMemoryPreferences preferences;
            ASSERT_TRUE(
                preferences.setValue("orvaneWindow", remembered.saveGeometry().toBase64().toStdString())
            );
            ORVANEApp window({machine.services(), preferences}, {.channels = 8});
            window.show();
            QApplication::processEvents();
            const QRect withFrame = window.geometry().marginsAdded({1, 24, 1, 5});
            EXPECT_TRUE(window.screen()->availableGeometry().contains(withFrame))
                << screen->name().toStdString() << corner.x() << ": " << withFrame.x() << ", "
                << withFrame.y() << " " << withFrame.width() << " x " << withFrame.height();
        }
    }
}

} // namespace
