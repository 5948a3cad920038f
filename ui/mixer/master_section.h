#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"
#include "ui/mixer/value_row.h"

#include <QScrollArea>

#include <vector>

class QLabel;
class QLayout;

namespace orvane::ui {

/// The master bus's level and output, the group faders, the ducker and the reference noise, side by side.
/// Scrolls sideways if they do not fit. Main thread.
class MasterSection final : public QScrollArea {
  public:
    /// `mixerEngine` must outlive the view.
    explicit MasterSection(engine::MixerEngine& mixerEngine, QWidget* parent = nullptr);

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
    [[nodiscard]] int heightFor(int availableWidth) const;

    engine::MixerEngine& engine;
    ValueRow target;
    ValueRow lead;
    ValueRow backing;
    ValueRow release;
    ValueRow noise;
    QLabel* const status;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
