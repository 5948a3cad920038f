#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"
#include "ui/windows/over_hint.h"

#include <QWidget>

#include <vector>

class QGridLayout;
class QLabel;

namespace orvane::ui {

class ConsoleButton;
class IndicatorLamp;
class LoadMeterView;
class MIDILearnNotice;
class MixerCommands;

/// The line along the bottom of the mixer: the engine's sample rate and buffer size, whether it runs, its
/// load, the plugin clipboard, the scenes, its message or else a hint at overs, and the scene that waits for
/// a MIDI note. On a narrow bar, the last two are on a line of their own while there are any. Main thread.
class StatusBarView final : public QWidget {
  public:
    /// `mixerEngine` must outlive the view.
    StatusBarView(engine::MixerEngine& mixerEngine, const MixerCommands& commands, QWidget* parent = nullptr);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    [[nodiscard]] QString loadHelp() const;
    void subscribe();
    void showSampleRate();
    void showBufferSize();
    void showRemote();
    void showClipboard();
    void showMessage();
    void showLearning();
    void placeNotices();

    engine::MixerEngine& engine;
    OverHint overHint;
    QLabel* const sampleRate;
    QLabel* const bufferSize;
    IndicatorLamp* const audio;
    IndicatorLamp* const remote;
    LoadMeterView* const load;
    /// Since the last start.
    double peakLoad = 0.0;
    ConsoleButton* const copy;
    ConsoleButton* const paste;
    QWidget* const notices;
    QGridLayout* const lines;
    QLabel* const message;
    MIDILearnNotice* const learning;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
