#pragma once

#include "audio/published.h"
#include "engine/mixer_engine.h"

#include <QWidget>

#include <functional>
#include <vector>

class QToolButton;

namespace orvane::ui {

/// The session-wide commands along the top of the mixer. Its buttons are pressed with Enter, not with the
/// space bar, which starts and stops things elsewhere and must not do so here by accident. Main thread.
class MixerToolbar final : public QWidget {
  public:
    /// What the buttons do that do not go to the engine.
    struct Actions {
        std::function<void()> clearOutputs;
        std::function<void()> showSnapshots;
        std::function<void()> load;
        std::function<void()> save;
        std::function<void()> showDeviceSettings;
        std::function<void()> changeChannelCount;
    };

    /// `mixerEngine` outlives the view.
    MixerToolbar(engine::MixerEngine& mixerEngine, Actions actions, QWidget* parent = nullptr);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void showDevice();
    void showRunning();

    engine::MixerEngine& engine;
    /// Stands beside the buttons where there is room for it.
    QWidget* const wordmark;
    QToolButton* oneToOne = nullptr;
    QToolButton* startStop = nullptr;
    std::vector<audio::Subscription> subscriptions;
};

} // namespace orvane::ui
