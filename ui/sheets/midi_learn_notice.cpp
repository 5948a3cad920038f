#include "ui/sheets/midi_learn_notice.h"

#include "ui/controls/console_button.h"
#include "ui/theme/theme.h"

#include <QHBoxLayout>

namespace orvane::ui {

namespace {

constexpr QSize cancelSize(56, 20);
constexpr int spacing = 8;

} // namespace

MIDILearnNotice::MIDILearnNotice(engine::MixerEngine& mixerEngine, TextStyle style)
    : line(makeText({}, style, theme::yellow)) {
    line->setWordWrap(false);
    auto* const cancel =
        new ConsoleButton(QStringLiteral("Cancel"), [&mixerEngine] { mixerEngine.cancelMIDILearn(); });
    cancel->setAccessibleName(QStringLiteral("Cancel MIDI learn"));
    cancel->setFixedSize(cancelSize);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);
    row->addStretch();
    row->addWidget(line);
    row->addWidget(cancel);
    row->addStretch();
}

} // namespace orvane::ui
