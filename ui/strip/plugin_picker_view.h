#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"
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

/// The sheet for picking the effect of one insert slot: the installed ones by maker, filtered by a search
/// text. Main thread.
class PluginPickerView final : public Sheet {
  public:
    /// `mixerEngine` and `installedComponents` must outlive the sheet. `slot`: counted from 0.
    PluginPickerView(
        engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents,
        const platform::Uuid& strip, std::size_t slot, QWidget* parent = nullptr
    );

  protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

  private:
    /// Fills the list with the installed effects that match the search.
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
    platform::Subscription subscription;
};

} // namespace orvane::ui
