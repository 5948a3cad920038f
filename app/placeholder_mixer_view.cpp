#include "app/placeholder_mixer_view.h"

#include "ui/controls/console_button.h"
#include "ui/sheets/device_settings_view.h"
#include "ui/sheets/snapshots_view.h"

#include <QVBoxLayout>

#include <utility>

namespace orvane::app {

std::unique_ptr<QWidget>
makePlaceholderMixerView(engine::MixerEngine& mixer, std::function<void()> onReconfigure) {
    auto view = std::make_unique<QWidget>();
    auto* const lines = new QVBoxLayout(view.get());
    QWidget* const parent = view.get();
    const auto openSheet = [parent](QDialog* sheet) {
        sheet->setParent(parent, sheet->windowFlags());
        sheet->setAttribute(Qt::WA_DeleteOnClose);
        sheet->open();
    };
    lines->addWidget(new ui::ConsoleButton("Start / Stop", [&mixer] {
        mixer.state().isRunning.get() ? mixer.stop() : mixer.start();
    }));
    lines->addWidget(new ui::ConsoleButton("Audio / MIDI Devices", [&mixer, openSheet] {
        openSheet(new ui::DeviceSettingsView(mixer));
    }));
    lines->addWidget(new ui::ConsoleButton("Snapshots", [&mixer, openSheet] {
        openSheet(new ui::SnapshotsView(mixer));
    }));
    lines->addWidget(new ui::ConsoleButton("Channels", std::move(onReconfigure)));
    mixer.refreshDevices();
    return view;
}

} // namespace orvane::app
