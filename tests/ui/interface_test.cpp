#include "support/temporary_folder.h"
#include "ui/controls/busy_notice.h"
#include "ui/strip/plugin_slot_view.h"
#include "ui/windows/channel_count_picker_view.h"

#include "mixer_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QTest>
#include <QTextBrowser>

#include <algorithm>
#include <fstream>
#include <set>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;
using testing::IsEmpty;

/// Walks through the whole interface as an operator would, and collects all its texts.
class Interface : public WindowTest {
  protected:
    void open(std::int64_t channels) {
        WindowTest::open(channels);
        look();
    }
    void click(const QString& name) {
        buttonOf(*window, name).click();
        look();
    }
    void click(std::size_t slot) {
        viewsIn<PluginSlotView>(*window).at(slot)->click();
        look();
    }
    /// Collects the texts of the open dialog and presses one of its buttons.
    void answer(const QString& button) {
        look();
        QDialog* open = nullptr;
        for (QDialog* dialog : window->findChildren<QDialog*>())
            if (dialog->isVisible()) open = dialog;
        ASSERT_NE(open, nullptr) << button.toStdString();
        buttonOf(*open, button).click();
        deleteWhatIsDone();
    }
    void chooseFile(const char* command, const QUrl& file) {
        click(command);
        auto* const files = window->findChild<QFileDialog*>();
        ASSERT_NE(files, nullptr);
        if (file.isLocalFile()) Q_EMIT files->fileSelected(file.toLocalFile());
        Q_EMIT files->urlSelected(file);
        EXPECT_TRUE(QTest::qWaitFor([&] { return window->findChild<BusyNotice*>() == nullptr; }));
        look();
        closeDialogs();
    }
    void load(std::size_t slot) {
        WindowTest::load(slot);
        look();
    }
    void saveAPreset(std::size_t slot) {
        QMenu* const menu = openContextMenu(*viewsIn<PluginSlotView>(*window).at(slot));
        ASSERT_NE(menu, nullptr);
        seeActions(*menu);
        for (QAction* action : menu->actions())
            if (action->text() == "Save Preset…") action->trigger();
        look();
        closeDialogs();
    }

    void look() {
        for (QWidget* top : QApplication::topLevelWidgets()) {
            see(*top);
            for (QWidget* each : top->findChildren<QWidget*>())
                see(*each);
        }
    }

    std::set<QString> seen;

  private:
    void seeActions(const QWidget& widget) {
        for (const QAction* action : widget.actions()) {
            seen.insert(action->text());
            if (action->menu() != nullptr) seeActions(*action->menu());
        }
    }
    void see(const QWidget& widget) {
        for (const char* property : {"windowTitle", "toolTip", "text", "informativeText", "placeholderText"})
            seen.insert(widget.property(property).toString());
        seen.insert(widget.accessibleName());
        seen.insert(widget.accessibleDescription());
        if (const auto* const menu = qobject_cast<const QComboBox*>(&widget))
            for (const QString& item : itemsOf(*menu))
                seen.insert(item);
        if (const auto* const page = qobject_cast<const QTextBrowser*>(&widget))
            for (const QString& line : page->toPlainText().split('\n'))
                seen.insert(line);
        if (const auto* const files = qobject_cast<const QFileDialog*>(&widget))
            for (const QString& file : files->selectedFiles())
                seen.insert(QFileInfo(file).completeBaseName());
        if (qobject_cast<const QMenuBar*>(&widget) != nullptr) seeActions(widget);
    }
};

TEST_F(Interface, ShowsThePrescribedTexts) {
    ChannelCountPickerView again({.onSelect = {}, .isReconfiguring = true, .onCancel = [] {}});
    open(0);
    for (const char* item : {"About ORVANE", "ORVANE Help"})
        for (const QAction* menu : window->menuBar()->actions())
            for (QAction* action : menu->menu()->actions())
                if (action->text() == item) action->trigger();
    for (const QWidget* top : QApplication::topLevelWidgets())
        if (auto* const topics = top->findChild<QListWidget*>())
            for (int row = 0; row < topics->count(); ++row) {
                topics->setCurrentRow(row);
                look();
            }

    open(40);
    open(24);
    chooseFile("Load", QUrl("smb://host/a.orvane"));
    chooseFile("Load", QUrl::fromLocalFile("/none.orvane"));
    chooseFile("Save", QUrl::fromLocalFile("/none/a.orvane"));
    click("Audio / MIDI Devices");
    closeDialogs();
    mixer().selectDevice(mixer().state().availableDevices.get().at(0));
    auto source = machine.addMIDISource("Pads");
    mixer().setStereo(strip(), true);
    mixer().setMasterStereo(true);
    click("Audio / MIDI Devices");
    closeDialogs();
    click("Start");
    click("Stop");
    mixer().selectMasterOutputDevice(mixer().state().availableDevices.get().at(1));
    for (const char* command : {"24 Channels", "Clear Outputs"}) {
        click(command);
        answer("Cancel");
    }

    click(0);
    closeDialogs();
    load(0);
    saveAPreset(0);
    mixer().setPluginBypassed(true, 0, strip());
    saveAPreset(0);
    click("Copy");
    click(0);
    click("Paste");
    mixer().cancelClipboardArm();
    machine.audioUnitHost.failure = platform::Error{"no licence"};
    load(3);
    session::MixerDocumentData document = mixer().makeDocumentData();
    document.channels[0].pluginSlots[4].pluginName = "Lost";
    document.channels[0].pluginSlots[4].component.reset();
    mixer().applyDocument(document);
    look();

    click("Snapshots");
    click("New");
    click("New");
    mixer().selectPreviousSnapshot();
    click("MIDI");
    click("MIDI");
    buttonOf(*window, "Save Insert 2").click();
    look();
    closeDialogs();

    machine.audioUnitHost.components.clear();
    open(2);
    click(0);
    EXPECT_TRUE(QTest::qWaitFor([this] {
        look();
        return seen.contains("No installed plugins found (LV2 effects).");
    }));
    closeDialogs();
    mixer().refreshDevices();
    look();

    std::ifstream file(ORVANE_INTERFACE_TEXTS);
    std::vector<std::string> missing;
    std::size_t count = 0;
    for (std::string line; std::getline(file, line); ++count) {
        const QString text = QString::fromStdString(line);
        const auto found = seen.lower_bound(text);
        // A line that ends with a space is only the beginning of a text.
        const bool isSeen =
            found != seen.end() && (text.endsWith(' ') ? found->startsWith(text) : *found == text);
        if (!isSeen) missing.push_back(line);
    }
    EXPECT_GT(count, 190U);
    EXPECT_THAT(missing, IsEmpty());
}

TEST_F(Interface, ExplainsEveryControlWithItsOwnHelp) {
    open(24);
    mixer().selectDevice(mixer().state().availableDevices.get().at(0));
    const std::pair<const char*, const char*> helps[] = {
        {"Trigger filter", "Automix trigger filter"},
        {"Vocal group", "Vocal group tag"},
        {"Stereo", "Route this channel to a stereo output pair"},
        {"Trim", "Trim — a plain per-channel level control"},
        {"Target", "Target level for the total"},
        {"Lead", "Group fader — adjusts the output level of every channel assigned to the Lead"},
        {"Backing", "Group fader — adjusts the output level of every channel assigned to the Backing"},
        {"Ducker Speed", "How long a channel takes to relax"},
        {"Input Volume", "How loud the constant pink-noise reference"},
        {"Master stereo", "Send the summed/leveled master bus"},
        {"Channel layout", "Switch which channels are shown."},
        {"1:1", "Reset every channel to a straight 1:1 patch"},
        {"Clear Outputs", "Set every channel's output to None"},
        {"Snapshots", "Store/recall full mixer states"},
        {"Load", "Load a previously saved"},
        {"Save", "Save/export the current session"},
        {"Audio / MIDI Devices", "Choose the audio device"},
        {"24 Channels", "Change how many channels"},
        {"Start", "Start the audio engine."},
        {"Copy", "Arm Copy, then click a loaded plugin slot"},
        {"Paste", "Copy a plugin first"}};
    const QList<QWidget*> widgets = window->findChildren<QWidget*>();
    for (const auto& [name, help] : helps) {
        int explained = 0;
        for (const QWidget* each : widgets) {
            if (!isNamed(*each, name) && each->property("text") != QString(name)) continue;
            if (each->toolTip().isEmpty()) continue;
            EXPECT_TRUE(each->toolTip().startsWith(help)) << name << ": " << each->toolTip().toStdString();
            ++explained;
        }
        EXPECT_GT(explained, 0) << name;
    }
}

/// The controls without a name that the Tab key reaches, by the classes of their ancestors.
void collectNameless(
    QAccessibleInterface& element, const std::string& above, std::vector<std::string>& nameless
) {
    const std::string path =
        above + "/" + (element.object() != nullptr ? element.object()->metaObject()->className() : "?");
    const QAccessible::Role role = element.role();
    const bool isUnknown = role == QAccessible::NoRole || role == QAccessible::Client;
    const auto* const widget = qobject_cast<const QWidget*>(element.object());
    if (widget != nullptr && (widget->focusPolicy() & Qt::TabFocus) != 0 && !element.state().invisible
        && (element.text(QAccessible::Name).isEmpty() || isUnknown))
        nameless.push_back(path + " " + element.text(QAccessible::Name).toStdString());
    for (int child = 0; child < element.childCount(); ++child)
        if (QAccessibleInterface* const below = element.child(child)) collectNameless(*below, path, nameless);
}

TEST_F(Interface, NamesEveryControlForAssistiveTools) {
    std::vector<std::string> nameless;
    const auto collect = [&] {
        for (QWidget* top : QApplication::topLevelWidgets())
            if (top->isVisible()) collectNameless(*QAccessible::queryAccessibleInterface(top), "", nameless);
        EXPECT_THAT(nameless, IsEmpty());
    };
    open(0);
    collect();
    open(24);
    mixer().selectDevice(mixer().state().availableDevices.get().at(0));
    mixer().setStereo(strip(), true);
    load(1);
    collect();
    for (const char* sheet : {"Audio / MIDI Devices", "Snapshots", "Output…"}) {
        click(sheet);
        mixer().newSnapshot();
        collect();
        closeDialogs();
    }
    click(0);
    collect();
}

} // namespace
