#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"

#include <QWidget>

#include <vector>

class QAction;
class QLabel;

namespace orvane::ui {

class ConsoleButton;

/// A bar across the window: red while the audio has stopped by itself or stands still, with the reason and
/// what to do; a hint while no audio device is selected; hidden otherwise. Main thread.
class AudioNotice final : public QWidget {
  public:
    /// `chooseDevice` opens the device settings. Both must outlive the view.
    AudioNotice(engine::MixerEngine& mixerEngine, QAction& chooseDevice);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void showState();

    engine::MixerEngine& engine;
    QLabel* const title;
    QLabel* const sentence;
    ConsoleButton* const startAgain;
    bool isLoss = false;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
