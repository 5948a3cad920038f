#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"

#include <QListWidget>

#include <vector>

namespace orvane::ui {

/// The scenes by number and name. A click selects a scene without recalling it; Enter recalls it, a double
/// click or F2 renames it. Main thread.
class SnapshotListView final : public QListWidget {
  public:
    /// `mixerEngine` must outlive the list.
    explicit SnapshotListView(engine::MixerEngine& mixerEngine);

    /// Commits a name that is being edited.
    void commitRenaming();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void showSnapshots();
    void showSelection();
    void selectRow();

    engine::MixerEngine& engine;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
