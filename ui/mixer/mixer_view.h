#pragma once

#include "engine/mixer_engine.h"
#include "engine/session/mixer_json_document.h"
#include "ui/strip/installed_components.h"

#include <QWidget>

#include <functional>

class QDialog;

namespace orvane::ui {

class ChannelArea;

/// The content of the main window while a session is open: commands, strips, master section. Main thread.
class MixerView final : public QWidget {
  public:
    /// Has the engine look for devices. `mixerEngine` outlives the view. `onReconfigureChannelCount` asks for
    /// another channel count.
    MixerView(
        engine::MixerEngine& mixerEngine, std::function<void()> onReconfigureChannelCount,
        QWidget* parent = nullptr
    );
    ~MixerView() override;

  private:
    QWidget* makeToolbar();
    void addShortcuts();
    void confirmClearOutputs();
    void confirmChannelCount();
    /// Takes over a name or a value that is being typed.
    void commitEditing();
    void openSheet(QDialog* sheet);
    void openExportDialog();
    void openImportDialog();
    void exportTo(const QString& path);
    void importFrom(const QString& path);

    engine::MixerEngine& engine;
    const std::function<void()> reconfigure;
    InstalledComponents components;
    /// What the export dialog is to write.
    session::MixerJSONDocument exportDocument;
    ChannelArea* const channelArea;
};

} // namespace orvane::ui
