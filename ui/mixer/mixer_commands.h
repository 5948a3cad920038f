#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"

#include <QObject>

#include <functional>
#include <vector>

class QAction;

namespace orvane::ui {

/// The commands of the toolbar and the session menu. Main thread.
class MixerCommands final : public QObject {
  public:
    /// The actions of the commands that do not call the engine directly.
    struct Actions {
        std::function<void()> clearOutputs;
        std::function<void()> showSnapshots;
        std::function<void()> load;
        std::function<void()> save;
        std::function<void()> showDeviceSettings;
        std::function<void()> changeChannelCount;
    };

    /// `mixerEngine` must outlive them.
    MixerCommands(engine::MixerEngine& mixerEngine, Actions actions);

    /// The commands in the toolbar's order.
    [[nodiscard]] const std::vector<QAction*>& all() const { return commands; }
    [[nodiscard]] QAction* startStop() const { return commands.back(); }

  private:
    void showDevice();
    void showRunning();

    engine::MixerEngine& engine;
    std::vector<QAction*> commands;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
