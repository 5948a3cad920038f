#pragma once

#include "engine/mixer_engine.h"
#include "ui/mixer/channel_layout.h"
#include "ui/strip/channel_strip_view.h"
#include "ui/strip/installed_components.h"

#include <QScrollArea>

#include <cstddef>
#include <vector>

namespace orvane::ui {

/// The strips in sight, in rows, scrolled where they do not fit. All strips are made at once and kept, so
/// that no page takes time to turn to; those out of sight do nothing. Main thread.
class StripRows final : public QScrollArea {
  public:
    /// `mixerEngine` and `installedComponents` outlive the view.
    StripRows(engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents);

    /// Puts the strips of every row in sight and all others out of it.
    void arrange(const std::vector<StripRange>& rows);

    /// Moves by what is in sight, to the right or to the left.
    void scrollSideways(bool toTheRight);

  protected:
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QWidget* const content;
    /// By their place in the engine's list.
    std::vector<ChannelStripView*> strips;
};

} // namespace orvane::ui
