#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"
#include "ui/sheets/sheet.h"

#include <vector>

class QLabel;
class QLayout;
class QVBoxLayout;

namespace orvane::ui {

class MenuPicker;

/// The sheet for choosing the devices, the buffer size and the MIDI source. Main thread.
class DeviceSettingsView final : public Sheet {
  public:
    /// `mixerEngine` must outlive the sheet.
    explicit DeviceSettingsView(engine::MixerEngine& mixerEngine, QWidget* parent = nullptr);

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    QLayout* makeDeviceSection();
    QLayout* makeBufferSizeSection();
    QLayout* makeMasterOutputSection();
    QLayout* makeMIDISection();
    void subscribe();
    void showDevices();
    void showSelection();
    void showBufferSize();
    void showEstimate();
    void showMasterOutput();
    void showMIDI();
    void chooseMasterOutput(int choice);
    void chooseMIDISource(int choice);

    engine::MixerEngine& engine;
    QLabel* const noDevices;
    QWidget* const deviceList;
    QVBoxLayout* const deviceRows;
    MenuPicker* const bufferSize;
    QLabel* const estimate;
    MenuPicker* const masterOutput;
    MenuPicker* const midiSource;
    QLabel* const midiCaption;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
