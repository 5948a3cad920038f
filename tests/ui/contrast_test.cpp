#include "ui/controls/menu_picker.h"
#include "ui/editors/parameter_row.h"
#include "ui/mixer/mixer_view.h"
#include "ui/strip/plugin_slot_view.h"
#include "ui/theme/theme.h"
#include "ui/windows/help_view.h"

#include "mixer_machine.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QToolButton>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <string>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;

/// The relative luminance of WCAG 2.
double luminanceOf(QRgb color) {
    const auto linear = [](int component) {
        const double share = component / 255.0;
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) + 0.0722 * linear(qBlue(color));
}

/// The contrast between the text of a picture and its background, which fills most of the picture.
double contrastIn(const QImage& picture) {
    std::map<QRgb, int> pixels;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            ++pixels[picture.pixel(x, y)];
    const auto isRarer = [](const auto& one, const auto& other) { return one.second < other.second; };
    const double behind = luminanceOf(std::ranges::max_element(pixels, isRarer)->first);
    double best = 1.0;
    for (const auto& [color, count] : pixels) {
        const double text = luminanceOf(color);
        best = std::max(best, (std::max(text, behind) + 0.05) / (std::min(text, behind) + 0.05));
    }
    return best;
}

constexpr double leastForText = 4.5;
constexpr double leastForDisabledText = 3.0;

/// Opens every kind of menu, picker and list, and measures the contrast of its rows.
class Contrast : public WindowTest {
  protected:
    Contrast() { open(24); }

    void measure(QWidget& widget, const QRect& room, bool isEnabled, const QString& name) {
        ++measured;
        EXPECT_GE(contrastIn(widget.grab(room).toImage()), isEnabled ? leastForText : leastForDisabledText)
            << name.toStdString() << " of " << widget.metaObject()->className();
    }
    void measureRows(QMenu& menu) {
        menu.popup({});
        for (QAction* active : menu.actions()) {
            if (active->isSeparator() || !active->isVisible()) continue;
            // A symbol would count as part of the text beside it.
            active->setIconVisibleInMenu(false);
            menu.setActiveAction(active);
            measure(
                menu, menu.actionGeometry(active).adjusted(4, 2, -4, -2), active->isEnabled(), active->text()
            );
            if (active->menu() != nullptr) measureRows(*active->menu());
        }
        menu.close();
    }
    /// `left`: the start of the texts, after a symbol or a number.
    void measureRows(QAbstractItemView& list, int left) {
        for (int row = 0; row < std::min(list.model()->rowCount(list.rootIndex()), 4); ++row) {
            const QModelIndex index = list.model()->index(row, 0, list.rootIndex());
            list.setCurrentIndex(index);
            if (!list.currentIndex().isValid()) continue;
            const QRect room = list.visualRect(index).adjusted(left, 2, -4, -2);
            if (!room.isEmpty())
                measure(
                    *list.viewport(), room, index.flags().testFlag(Qt::ItemIsEnabled), index.data().toString()
                );
        }
    }
    /// The visible ones.
    void measurePickersAndLists(const QWidget& within) {
        for (QComboBox* picker : within.findChildren<QComboBox*>()) {
            if (!picker->isVisible()) continue;
            picker->showPopup();
            measureRows(*picker->view(), 4);
            picker->hidePopup();
        }
        for (QAbstractItemView* list : within.findChildren<QAbstractItemView*>())
            if (list->isVisible()) measureRows(*list, 26);
    }
    void measureTexts(const QWidget& within) {
        QApplication::processEvents();
        for (QWidget* each : within.findChildren<QWidget*>()) {
            if (!each->isVisible() || each->visibleRegion().isEmpty()) continue;
            if (auto* const button = qobject_cast<QToolButton*>(each)) button->setIcon({});
            const auto* const picker = qobject_cast<QComboBox*>(each);
            const QString text = picker ? picker->currentText() : each->property("text").toString();
            if (text.trimmed().isEmpty()) continue;
            const bool hasArrow = picker && each->width() > 60;
            const QRect room = each->rect().adjusted(2, 2, hasArrow ? -20 : -2, -2);
            measure(*each, room, each->isEnabled(), text);
        }
    }

    template <class Look>
    void forEachDialog(const char* emptySlot, Look look) {
        for (const char* opening :
             {"Audio / MIDI Devices", "Snapshots", "Load", "Clear Outputs", emptySlot}) {
            buttonOf(*window, opening).click();
            for (QDialog* dialog : window->findChildren<QDialog*>())
                if (dialog->isVisible()) look(*dialog);
            closeDialogs();
        }
    }

    int measured = 0;
};

TEST_F(Contrast, OfTheActiveRowOfEveryMenu) {
    for (QAction* menu : window->menuBar()->actions()) {
        window->menuBar()->setActiveAction(menu);
        measure(*window->menuBar(), window->menuBar()->actionGeometry(menu), true, menu->text());
        menu->menu()->close();
        measureRows(*menu->menu());
    }
    load(0);
    PluginSlotView& slot = *viewsIn<PluginSlotView>(*window).front();
    for (const char* preset : {"", "Warm"}) {
        if (*preset != '\0') mixer().savePluginPreset(preset, 0, strip());
        QMenu* const menu = openContextMenu(slot);
        ASSERT_NE(menu, nullptr);
        measureRows(*menu);
        deleteWhatIsDone();
    }
    const std::unique_ptr<QMenu> edit(window->findChild<QLineEdit*>()->createStandardContextMenu());
    measureRows(*edit);
    EXPECT_GT(measured, 30);
}

TEST_F(Contrast, OfTheActiveRowOfEveryPickerAndList) {
    measurePickersAndLists(*window);
    mixer().selectDevice(mixer().state().availableDevices.get().at(0));
    measurePickersAndLists(*window);
    for (int scene = 0; scene < 3; ++scene)
        mixer().newSnapshot();
    forEachDialog("Insert 1 (empty)", [this](const QDialog& dialog) {
        QTest::qWait(300);
        measurePickersAndLists(dialog);
    });
    HelpView help;
    help.show();
    measurePickersAndLists(help);
    EXPECT_GT(measured, 100);
}

TEST_F(Contrast, OfEveryText) {
    measureTexts(*window);
    mixer().selectDevice(mixer().state().availableDevices.get().at(0));
    for (const std::size_t slot : {0, 1})
        load(slot);
    mixer().setPluginBypassed(true, 1, strip());
    machine.audioUnitHost.failure = platform::Error{"no licence"};
    for (const std::size_t slot : {2, 3})
        load(slot);
    mixer().setPluginBypassed(true, 3, strip());
    mixer().setMuted(strip(), true);
    mixer().setBypassed(strip(), true);
    mixer().setStereo(strip(), true);
    mixer().start();
    for (const StripPresentation presentation : {StripPresentation::mix, StripPresentation::setup}) {
        window->mixerRootView()->view().presentation().choose(presentation);
        measureTexts(*window);
    }
    forEachDialog("Insert 5 (empty)", [this](const QDialog& dialog) { measureTexts(dialog); });
    EXPECT_GT(measured, 300);
}

} // namespace
