#pragma once

#include "audio/published.h"
#include "engine/mixer_engine.h"

#include <QWidget>

#include <vector>

class QLabel;

namespace orvane::ui {

class ConsoleButton;
class IndicatorLamp;
class LoadMeterView;

/// The line along the bottom of the mixer: what the engine runs with, whether it runs, its load, the plugin
/// clipboard, and the engine's message. Main thread.
class StatusBarView final : public QWidget {
  public:
    /// `mixerEngine` outlives the view.
    explicit StatusBarView(engine::MixerEngine& mixerEngine, QWidget* parent = nullptr);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    [[nodiscard]] QString loadHelp() const;
    void subscribe();
    void showSampleRate();
    void showBufferSize();
    void showRemote();
    void showClipboard();
    void showMessage();

    engine::MixerEngine& engine;
    QLabel* const sampleRate;
    QLabel* const bufferSize;
    IndicatorLamp* const audio;
    IndicatorLamp* const remote;
    LoadMeterView* const load;
    /// Since the last start.
    double peakLoad = 0.0;
    ConsoleButton* const copy;
    ConsoleButton* const paste;
    QLabel* const message;
    std::vector<audio::Subscription> subscriptions;
};

} // namespace orvane::ui
