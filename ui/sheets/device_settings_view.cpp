#include "ui/sheets/device_settings_view.h"

#include "engine/buffer_sizes.h"
#include "ui/controls/console_button.h"
#include "ui/controls/divider.h"
#include "ui/controls/menu_picker.h"
#include "ui/controls/text_label.h"
#include "ui/sheets/device_row.h"
#include "ui/theme/theme.h"

#include <QHBoxLayout>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>

namespace orvane::ui {

namespace {

using audio::AudioDeviceInfo;

constexpr QSize sheetSize(480, 620);
constexpr int padding = 20;
constexpr int sectionSpacing = 20;
constexpr int lineSpacing = 6;
constexpr int rowSpacing = 4;
constexpr int refreshWidth = 90;
constexpr int bufferPickerWidth = 120;
constexpr int masterPickerWidth = 260;
constexpr int midiPickerWidth = 240;
constexpr int listHeight = 160;
constexpr double bytesPerKilobyte = 1024.0;

const QString noDevicesText = QStringLiteral(
    "No audio devices found. Make sure your interface (e.g. the Behringer Wing over USB, or a Dante/MADI "
    "driver) is connected and that PipeWire, JACK or ALSA lists it."
);
const QString noEstimateText = QStringLiteral("Select a device to see estimated latency and memory usage.");
const QString bufferSizeHelp =
    QStringLiteral("Smaller = lower latency, less memory, more CPU load per second. Larger = more headroom "
                   "against dropouts, "
                   "more memory. Changing this briefly restarts the audio engine if it's running.");
const QString sameAsMain = QStringLiteral("Same as Main Device");
const QString masterOutputHelp = QStringLiteral(
    "Sends the summed/leveled master bus out of a different soundcard than the one above, instead of a "
    "channel pair on it — e.g. this computer's built-in speakers as a monitor/broadcast feed while the main "
    "interface handles the mics. Both devices should share the same sample rate; nothing resamples between "
    "them, so a mismatch means the master output will play back at the wrong pitch/speed. Even at matching "
    "sample rates, this app doesn't correct for clock drift between two independent devices, so if you hear "
    "ongoing stutters, try letting the sound server combine both cards into one device (it corrects their "
    "drift) as your single main device instead of using this picker."
);
const QString allSources = QStringLiteral("All Sources");
const QString midiSourcesText = QStringLiteral(
    "Used for the Snapshots panel's MIDI Learn and note-triggered recall. \"All Sources\" listens to every "
    "connected controller at once."
);
const QString noMIDISourcesText = QStringLiteral(
    "No MIDI input sources found yet. Connect a controller (or the Wing's MIDI output) and hit Refresh."
);

/// Returns the index of `wanted` among `items`, or -1.
template <class Items, class Value, class Projection>
int placeOf(const Items& items, const Value& wanted, Projection projection) {
    const auto found = std::ranges::find(items, wanted, projection);
    return found == items.end() ? -1 : static_cast<int>(std::distance(items.begin(), found));
}

QHBoxLayout* makeHeader(QLabel* title, std::function<void()> refresh) {
    auto* const header = new QHBoxLayout;
    header->addWidget(title, 1);
    auto* const button = new ConsoleButton(QStringLiteral("Refresh"), std::move(refresh));
    button->setAccessibleName(QStringLiteral("Refresh %1").arg(title->text()));
    button->setFixedWidth(refreshWidth);
    header->addWidget(button);
    return header;
}

QLabel* makeSectionTitle(const QString& text) {
    return makeText(text, TextStyle::subheadline, theme::primaryText, QFont::Bold);
}

QVBoxLayout* makeLines() {
    auto* const lines = new QVBoxLayout;
    lines->setSpacing(lineSpacing);
    return lines;
}

} // namespace

DeviceSettingsView::DeviceSettingsView(engine::MixerEngine& mixerEngine, QWidget* parent)
    : Sheet(QStringLiteral("Audio / MIDI Devices"), sheetSize, parent),
      engine(mixerEngine),
      noDevices(makeText(noDevicesText, TextStyle::callout, theme::secondaryText)),
      deviceList(new QWidget),
      deviceRows(new QVBoxLayout(deviceList)),
      bufferSize(new MenuPicker(
          QStringLiteral("Buffer Size"), bufferPickerWidth,
          [this](int choice) { engine.setBufferSize(engine::bufferSizes[choice]); }
      )),
      estimate(makeText({}, TextStyle::caption, theme::secondaryText)),
      masterOutput(new MenuPicker(
          QStringLiteral("Master Output Device"), masterPickerWidth,
          [this](int choice) { chooseMasterOutput(choice); }
      )),
      midiSource(new MenuPicker(
          QStringLiteral("MIDI Input"), midiPickerWidth, [this](int choice) { chooseMIDISource(choice); }
      )),
      midiCaption(makeText({}, TextStyle::caption2, theme::secondaryText)) {
    for (MenuPicker* picker : {bufferSize, masterOutput, midiSource})
        picker->setMinimumHeight(theme::touchTarget);
    auto* const sections = new QWidget;
    auto* const column = new QVBoxLayout(sections);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(sectionSpacing);
    for (QLayout* section :
         {makeDeviceSection(), makeBufferSizeSection(), makeMasterOutputSection(), makeMIDISection()})
        column->addLayout(section);
    column->addStretch();
    QScrollArea* const scrollArea = makeSheetArea(sections);
    scrollArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);

    auto* const buttonBar = new QHBoxLayout;
    buttonBar->setContentsMargins(padding, 12, padding, 12);
    buttonBar->addStretch();
    QWidget* const done = makeDoneButton(*this);
    buttonBar->addWidget(done);
    auto* const whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(0);
    whole->addWidget(scrollArea);
    whole->addWidget(makeHorizontalDivider());
    whole->addLayout(buttonBar);
    done->setFocus();

    subscribe();
    showDevices();
    showBufferSize();
    showMIDI();
}

void DeviceSettingsView::showEvent(QShowEvent* event) {
    Sheet::showEvent(event);
    engine.refreshMIDIDevices();
}

QLayout* DeviceSettingsView::makeDeviceSection() {
    QVBoxLayout* const lines = makeLines();
    lines->addLayout(makeHeader(
        makeText(QStringLiteral("Audio Device"), TextStyle::title3, theme::primaryText, QFont::Bold),
        [this] { engine.refreshDevices(); }
    ));
    lines->addWidget(noDevices);
    deviceList->setMinimumHeight(listHeight);
    deviceList->setAutoFillBackground(true);
    deviceList->setBackgroundRole(QPalette::Base);
    deviceRows->setContentsMargins(rowSpacing, rowSpacing, rowSpacing, rowSpacing);
    deviceRows->setSpacing(rowSpacing);
    deviceRows->addStretch();
    lines->addWidget(deviceList);
    return lines;
}

QLayout* DeviceSettingsView::makeBufferSizeSection() {
    QVBoxLayout* const lines = makeLines();
    lines->addWidget(makeSectionTitle(QStringLiteral("Buffer Size")));
    lines->addWidget(bufferSize);
    lines->addWidget(estimate);
    lines->addWidget(makeText(bufferSizeHelp, TextStyle::caption2, theme::secondaryText));
    return lines;
}

QLayout* DeviceSettingsView::makeMasterOutputSection() {
    QVBoxLayout* const lines = makeLines();
    lines->addWidget(makeSectionTitle(QStringLiteral("Master Output Device")));
    lines->addWidget(masterOutput);
    lines->addWidget(makeText(masterOutputHelp, TextStyle::caption2, theme::secondaryText));
    return lines;
}

QLayout* DeviceSettingsView::makeMIDISection() {
    QVBoxLayout* const lines = makeLines();
    lines->addLayout(makeHeader(makeSectionTitle(QStringLiteral("MIDI Input")), [this] {
        engine.refreshMIDIDevices();
    }));
    lines->addWidget(midiSource);
    lines->addWidget(midiCaption);
    return lines;
}

void DeviceSettingsView::subscribe() {
    const engine::EngineState& state = engine.state();
    const auto follow = [this](const auto& value, void (DeviceSettingsView::*display)()) {
        subscriptions.push_back(value.subscribe([this, display](const auto&) { (this->*display)(); }));
    };
    follow(state.availableDevices, &DeviceSettingsView::showDevices);
    follow(state.selectedDevice, &DeviceSettingsView::showSelection);
    follow(state.bufferSize, &DeviceSettingsView::showBufferSize);
    follow(state.masterOutputDevice, &DeviceSettingsView::showMasterOutput);
    follow(state.availableMIDIDevices, &DeviceSettingsView::showMIDI);
    follow(state.selectedMIDIDeviceID, &DeviceSettingsView::showMIDI);
}

void DeviceSettingsView::showDevices() {
    const std::vector<AudioDeviceInfo>& devices = engine.state().availableDevices.get();
    noDevices->setVisible(devices.empty());
    deviceList->setVisible(!devices.empty());
    // The last item is the stretch.
    while (deviceRows->count() > 1) {
        QLayoutItem* const item = deviceRows->takeAt(0);
        // The new list may result from a click on this row, so it is deleted later.
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
    for (const AudioDeviceInfo& device : devices) {
        auto* const row = new DeviceRow(device);
        connect(row, &QAbstractButton::clicked, this, [this, device] { engine.selectDevice(device); });
        deviceRows->insertWidget(deviceRows->count() - 1, row);
    }
    showSelection();
    showMasterOutput();
}

void DeviceSettingsView::showSelection() {
    const auto& selected = engine.state().selectedDevice.get();
    const std::vector<AudioDeviceInfo>& devices = engine.state().availableDevices.get();
    for (int i = 0; i < deviceRows->count() - 1; ++i) {
        auto* const row = static_cast<QAbstractButton*>(deviceRows->itemAt(i)->widget());
        row->setChecked(selected && devices[static_cast<std::size_t>(i)].id == selected->id);
    }
    showEstimate();
}

void DeviceSettingsView::showBufferSize() {
    QStringList sizes;
    for (const std::int64_t size : engine::bufferSizes)
        sizes.append(QString::number(size));
    const QString current = QString::number(engine.state().bufferSize.get());
    bufferSize->present(sizes, static_cast<int>(sizes.indexOf(current)), current);
    showEstimate();
}

void DeviceSettingsView::showEstimate() {
    const double latencyMs = engine.bufferLatencyMs();
    const auto& device = engine.state().selectedDevice.get();
    if (latencyMs <= 0.0) return estimate->setText(noEstimateText);
    estimate->setText(QStringLiteral("≈ %1 ms latency · ≈ %2 KB ring buffer memory (%3 output channels)")
                          .arg(latencyMs, 0, 'f', 1)
                          .arg(static_cast<double>(engine.ringBufferBytes()) / bytesPerKilobyte, 0, 'f', 0)
                          .arg(device ? device->outputChannelCount : 0));
}

void DeviceSettingsView::showMasterOutput() {
    const std::vector<AudioDeviceInfo>& devices = engine.state().availableDevices.get();
    const auto& chosen = engine.state().masterOutputDevice.get();
    QStringList names{sameAsMain};
    for (const AudioDeviceInfo& device : devices)
        names.append(QString::fromStdString(device.name));
    if (!chosen) return masterOutput->present(names, 0);
    const int place = placeOf(devices, chosen->id, &AudioDeviceInfo::id);
    masterOutput->present(names, place < 0 ? -1 : place + 1, QString::fromStdString(chosen->name));
}

void DeviceSettingsView::chooseMasterOutput(int choice) {
    const std::vector<AudioDeviceInfo>& devices = engine.state().availableDevices.get();
    const std::size_t place = static_cast<std::size_t>(choice);
    engine.selectMasterOutputDevice(
        place >= 1 && place <= devices.size() ? std::optional(devices[place - 1]) : std::nullopt
    );
}

void DeviceSettingsView::showMIDI() {
    const auto& sources = engine.state().availableMIDIDevices.get();
    const auto& chosen = engine.state().selectedMIDIDeviceID.get();
    QStringList names{allSources};
    for (const auto& source : sources)
        names.append(QString::fromStdString(source.name));
    const int place = chosen ? placeOf(sources, *chosen, &midi::MIDIDeviceInfo::id) : -1;
    midiSource->present(
        names, chosen && place < 0 ? -1 : place + 1, QString::fromStdString(engine.selectedMIDIDeviceName())
    );
    midiCaption->setText(sources.empty() ? noMIDISourcesText : midiSourcesText);
}

void DeviceSettingsView::chooseMIDISource(int choice) {
    const auto& sources = engine.state().availableMIDIDevices.get();
    const std::size_t place = static_cast<std::size_t>(choice);
    if (place >= 1 && place <= sources.size())
        engine.selectMIDIDevice(sources[place - 1].id);
    else
        engine.selectMIDIDevice(std::nullopt);
}

} // namespace orvane::ui
