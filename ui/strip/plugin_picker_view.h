#pragma once

#include "audio/published.h"
#include "engine/mixer_engine.h"
#include "platform/base/uuid.h"
#include "ui/sheets/sheet.h"
#include "ui/strip/installed_components.h"

#include <cstddef>

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QProgressBar;

namespace orvane::ui {

/// The sheet in which the effect for one insert slot is picked: the installed ones, by maker, searched while
/// the user types. Main thread.
class PluginPickerView final : public Sheet {
  public:
    /// `mixerEngine` and `installedComponents` outlive the sheet. `slot`: counted from 0.
    PluginPickerView(
        engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents,
        const platform::Uuid& strip, std::size_t slot, QWidget* parent = nullptr
    );

  protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

  private:
    /// Fills the list with what is installed and fits the search.
    void showComponents();
    void choose(const QListWidgetItem* item);

    engine::MixerEngine& engine;
    const InstalledComponents& components;
    const platform::Uuid stripID;
    const std::size_t slotIndex;
    QLineEdit* const search;
    QListWidget* const list;
    QLabel* const message;
    QProgressBar* const progress;
    audio::Subscription subscription;
};

} // namespace orvane::ui
