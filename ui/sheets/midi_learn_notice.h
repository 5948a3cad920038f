#pragma once

#include "engine/mixer_engine.h"
#include "ui/controls/text_label.h"

#include <QWidget>

namespace orvane::ui {

/// A line that shows that a scene waits for a MIDI note, with a button that cancels this even if no scene is
/// selected. Its owner shows and hides it. Main thread.
class MIDILearnNotice final : public QWidget {
  public:
    /// `mixerEngine` must outlive the notice.
    MIDILearnNotice(engine::MixerEngine& mixerEngine, TextStyle style);

    /// The text of the line, not wrapped.
    void setText(const QString& text) { line->setText(text); }
    /// The font metrics of the line.
    [[nodiscard]] QFontMetrics metrics() const { return line->fontMetrics(); }

  private:
    QLabel* const line;
};

} // namespace orvane::ui
