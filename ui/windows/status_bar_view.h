#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"

#include <QWidget>

#include <vector>

class QLabel;

namespace orvane::ui {

class ConsoleButton;
class IndicatorLamp;
class LoadMeterView;
class MIDILearnNotice;

/// The line along the bottom of the mixer: the engine's sample rate and buffer size, whether it runs, its
/// load, the plugin clipboard, its message, and the scene that waits for a MIDI note. Main thread.
class StatusBarView final : public QWidget {
  public:
    /// `mixerEngine` must outlive the view.
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
    void showLearning();

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
    MIDILearnNotice* const learning;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
