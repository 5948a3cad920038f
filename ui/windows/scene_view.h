#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"

#include <QWidget>

#include <vector>

namespace orvane::ui {

class MixerCommands;
class SceneName;
class StatusCell;

/// The scenes in the status bar: the one that is played, marked once the mix has left it, and the next one,
/// with the commands that choose and recall it. Main thread.
class SceneView final : public QWidget {
  public:
    /// `mixerEngine` must outlive the view.
    SceneView(engine::MixerEngine& mixerEngine, const MixerCommands& commands);

  private:
    void subscribe();
    void showScenes();
    void showEdits();

    engine::MixerEngine& engine;
    SceneName* const played;
    SceneName* const next;
    StatusCell* const playedCell;
    bool isEdited = false;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
