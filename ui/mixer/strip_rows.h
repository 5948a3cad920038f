#pragma once

#include "engine/mixer_engine.h"
#include "ui/mixer/channel_layout.h"
#include "ui/strip/channel_strip_view.h"
#include "ui/strip/installed_components.h"

#include <QScrollArea>

#include <vector>

namespace orvane::ui {

/// The visible strips in rows; scrolls if they do not fit. All strips are made at once and kept, so that
/// pages turn without delay; hidden strips do no work. Main thread.
class StripRows final : public QScrollArea {
  public:
    /// `mixerEngine` and `installedComponents` must outlive the view.
    StripRows(engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents);

    /// Shows the strips of the rows and hides all others.
    void arrange(const std::vector<StripRange>& rows);

    /// Scrolls by the visible width, to the right or to the left.
    void scrollSideways(bool toTheRight);

  protected:
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QWidget* const content;
    /// In the order of the engine's list.
    std::vector<ChannelStripView*> strips;
};

} // namespace orvane::ui
