#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"
#include "ui/mixer/master_peaks.h"
#include "ui/mixer/value_row.h"
#include "ui/strip/strip_presentation.h"

#include <QScrollArea>

#include <functional>
#include <vector>

class QBoxLayout;
class QLabel;
class QLayout;

namespace orvane::ui {

class MasterOutputControl;
class WideMeterColumn;

/// The master bus's level and output, the group faders, the ducker and the reference noise, side by side.
/// Scrolls sideways if they do not fit. Main thread.
class MasterSection final : public QScrollArea {
  public:
    /// `mixerEngine` must outlive the view. `showOutputOptions` opens their sheet.
    MasterSection(engine::MixerEngine& mixerEngine, std::function<void()> showOutputOptions);

    /// Mix has the same controls in less height: sliders and meters shrink with the window, and
    /// explanations are left to the tool tips.
    void setPresentation(StripPresentation now);
    /// The height in Setup for a width.
    [[nodiscard]] int heightForSetup(int availableWidth) const;

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QLayout* makeMasterGroup();
    QLayout* makeGroupFaders();
    QLayout* makeDuckerGroup();
    QLayout* makeNoiseGroup();
    void showSettings();
    void showStatus();
    void updateHeight();
    [[nodiscard]] int heightFor(QSize needed, int availableWidth) const;

    engine::MixerEngine& engine;
    ValueRow target;
    ValueRow lead;
    ValueRow backing;
    ValueRow release;
    ValueRow noise;
    QLabel* const status;
    MasterOutputControl* const output;
    WideMeterColumn* const masterMeter;
    WideMeterColumn* const noiseMeter;
    MasterPeaks peaks;
    StripPresentation presentation = StripPresentation::setup;
    /// What its content needs in Setup.
    QSize setupSize;
    QBoxLayout* masterLines = nullptr;
    QBoxLayout* groupLines = nullptr;
    std::vector<QWidget*> explanations;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
