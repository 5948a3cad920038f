#pragma once

#include "engine/mixer_engine.h"
#include "ui/strip/strip_presentation.h"

#include <QWidget>

#include <cstddef>

class QLabel;

namespace orvane::ui {

class ChannelMeterColumn;
class ValueField;
class VerticalFader;

/// The meters and the trim of one strip. In Mix they take the room that there is. Main thread.
class StripLevels final : public QWidget {
  public:
    /// `mixerEngine` must outlive the view. Shows the strip at `index` in the engine's list.
    StripLevels(engine::MixerEngine& mixerEngine, std::size_t index);

    void setPresentation(StripPresentation presentation);
    /// Whether the gain reduction is dimmed because the automix does not apply it.
    void setDimmed(bool isDimmed);
    /// Shows a trim factor.
    void setTrim(double factor);

  private:
    ChannelMeterColumn* const meters;
    VerticalFader* const trim;
    ValueField* const trimValue;
    /// The trim in dB, in Mix.
    QLabel* const decibels;
};

} // namespace orvane::ui
