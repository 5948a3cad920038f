#pragma once

#include "engine/mixer_engine.h"
#include "ui/controls/text_label.h"

#include <QWidget>

namespace orvane::ui {

/// The line that a scene waits for a MIDI note, with a button that calls it off, also where no scene is
/// selected. Who shows it says when. Main thread.
class MIDILearnNotice final : public QWidget {
  public:
    /// `mixerEngine` outlives the notice.
    MIDILearnNotice(engine::MixerEngine& mixerEngine, TextStyle style);

    /// What the line says, not wrapped.
    void setText(const QString& text) { line->setText(text); }
    /// Those of the line.
    [[nodiscard]] QFontMetrics metrics() const { return line->fontMetrics(); }

  private:
    QLabel* const line;
};

} // namespace orvane::ui
