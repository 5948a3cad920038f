#include "ui/sheets/device_settings_view.h"

#include "ui/controls/menu_picker.h"
#include "ui/sheets/device_row.h"

#include "mixer_machine.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace orvane;
using namespace orvane::test;
using namespace orvane::ui;

const QString noEstimate = QStringLiteral("Select a device to see estimated latency and memory usage.");

class DeviceSettings : public MixerViewTest {
  protected:
    MenuPicker& picker(const char* name) { return viewNamed<MenuPicker>(sheet, name); }

    QList<QString> markedRows() {
        QList<QString> marked;
        for (const DeviceRow* row : viewsIn<DeviceRow>(sheet))
            if (row->isChecked() && row->isVisibleTo(&sheet)) marked.append(row->text());
        return marked;
    }

    DeviceSettingsView sheet{engine};
};

TEST_F(DeviceSettings, ListsDevicesAndMarksTheSelectedOne) {
    EXPECT_EQ(sheet.size(), QSize(480, 620));
    QAbstractButton& monitor = buttonOf(sheet, "Monitor");
    EXPECT_EQ(
        buttonOf(sheet, "Interface").accessibleDescription(), QStringLiteral("4 in / 6 out · 48000 Hz")
    );
    EXPECT_EQ(markedRows(), QList<QString>());
    monitor.click();
    EXPECT_EQ(state().selectedDevice.get(), device(1));
    EXPECT_EQ(markedRows(), QList<QString>{"Monitor"});
    audio::AudioDeviceInfo renamed = device(0);
    renamed.name = "Voice&Music";
    EXPECT_TRUE(DeviceRow(renamed).shortcut().isEmpty());
    engine.selectDevice(renamed);
    EXPECT_EQ(markedRows(), QList<QString>{"Interface"});
    buttonOf(sheet, "Refresh Audio Device").click();
    EXPECT_EQ(markedRows(), QList<QString>{"Interface"});
}

TEST_F(DeviceSettings, SaysThatThereAreNoDevicesUntilTheyAreListed) {
    const auto reportsNone = [](const QWidget& view) {
        return std::ranges::any_of(view.findChildren<QLabel*>(), [&](const QLabel* label) {
            return label->isVisibleTo(&view) && label->text().startsWith("No audio devices found.");
        });
    };
    engine::MixerEngine other(2, machine.services());
    const DeviceSettingsView view(other);
    EXPECT_TRUE(reportsNone(view));
    buttonOf(view, "Refresh Audio Device").click();
    EXPECT_FALSE(reportsNone(view));
}

TEST_F(DeviceSettings, EstimatesLatencyAndMemory) {
    EXPECT_TRUE(shows(sheet, noEstimate));
    struct Case {
        double rate;
        std::int64_t outputs;
        int sizeChoice;
        QString text;
    };
    const QString form = QStringLiteral("≈ %1 ms latency · ≈ %2 KB ring buffer memory (%3 output channels)");
    for (const auto& [rate, outputs, sizeChoice, text] :
         {Case{48000.0, 32, 5, form.arg("5.3", "256", "32")}, Case{0.0, 32, 5, noEstimate},
          Case{48000.0, 0, 9, form.arg("42.7", "0", "0")}, Case{44100.0, 2, 0, form.arg("0.7", "2", "2")}}) {
        engine.selectDevice({9, "uid", "Any", 2, outputs, rate});
        choose(picker("Buffer Size"), sizeChoice);
        EXPECT_TRUE(shows(sheet, text)) << text.toStdString();
    }
    EXPECT_EQ(state().bufferSize.get(), 32);
}

TEST_F(DeviceSettings, OffersTheBufferSizesAndIgnoresTheWheel) {
    MenuPicker& sizes = picker("Buffer Size");
    EXPECT_EQ(itemsOf(sizes).join(" "), "32 64 96 128 192 256 512 768 1024 2048");
    engine.setBufferSize(1024);
    EXPECT_EQ(sizes.currentText(), "1024");
    QWheelEvent turn({5, 5}, {5, 5}, {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&sizes, &turn);
    EXPECT_EQ(state().bufferSize.get(), 1024);
}

TEST_F(DeviceSettings, ChoosesADeviceForTheMasterBusAndBack) {
    MenuPicker& master = picker("Master Output Device");
    EXPECT_EQ(master.currentText(), "Same as Main Device");
    choose(master, 2);
    EXPECT_EQ(state().masterOutputDevice.get(), device(1));
    EXPECT_EQ(master.currentText(), "Monitor");
    choose(master, 0);
    EXPECT_FALSE(state().masterOutputDevice.get());
    engine.selectMasterOutputDevice(audio::AudioDeviceInfo{77, "gone", "Gone", 0, 2, 48000.0});
    EXPECT_EQ(master.currentIndex(), -1);
    EXPECT_EQ(master.placeholderText(), "Gone");
}

TEST_F(DeviceSettings, FollowsTheMIDISources) {
    const QString none = QStringLiteral(
        "No MIDI input sources found yet. Connect a controller (or the Wing's MIDI output) and hit Refresh."
    );
    EXPECT_TRUE(shows(sheet, none));
    auto source = machine.addMIDISource("Pads");
    EXPECT_FALSE(shows(sheet, none));
    MenuPicker& sources = picker("MIDI Input");
    EXPECT_EQ(sources.currentText(), "All Sources");
    choose(sources, 1);
    EXPECT_EQ(sources.currentText(), "Pads");
    EXPECT_EQ(state().selectedMIDIDeviceID.get(), state().availableMIDIDevices.get().at(0).id);
    choose(sources, 0);
    EXPECT_FALSE(state().selectedMIDIDeviceID.get());
    choose(sources, 1);
    source.reset();
    machine.mainThread.runPosted();
    EXPECT_TRUE(shows(sheet, none));
    EXPECT_EQ(sources.currentIndex(), -1);
    EXPECT_EQ(sources.placeholderText(), "Pads") << "unplugged";
}

} // namespace
