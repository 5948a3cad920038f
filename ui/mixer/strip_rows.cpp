#include "ui/mixer/strip_rows.h"

#include "ui/controls/scroll_guard.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace orvane::ui {

namespace {

constexpr int padding = 12;
constexpr int spacing = 12;

} // namespace

StripRows::StripRows(engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents)
    : content(new QWidget) {
    setFrameShape(QFrame::NoFrame);
    setAccessibleName(QStringLiteral("Channels"));
    // A click beside the controls ends the editing of a field.
    content->setFocusPolicy(Qt::ClickFocus);
    setFocusPolicy(Qt::NoFocus);
    setWidget(content);
    for (std::size_t index = 0; index < mixerEngine.state().channelStrips.get().size(); ++index) {
        strips.push_back(new ChannelStripView(mixerEngine, installedComponents, index, content));
        strips.back()->resize(strips.back()->sizeHint());
        strips.back()->hide();
    }
    new ScrollGuard(*this);
}

void StripRows::arrange(const std::vector<StripRange>& rows) {
    setUpdatesEnabled(false);
    const auto isInSight = [&rows](std::size_t index) {
        return std::ranges::any_of(rows, [index](const StripRange& row) {
            return row.first <= index && index < row.end;
        });
    };
    for (std::size_t index = 0; index < strips.size(); ++index)
        if (!isInSight(index)) strips[index]->hide();
    QSize size(0, padding);
    for (const StripRange& row : rows) {
        int left = padding;
        int bottom = size.height();
        for (std::size_t index = row.first; index < row.end; ++index) {
            ChannelStripView& strip = *strips[index];
            strip.move(left, size.height());
            left += strip.width() + spacing;
            bottom = std::max(bottom, strip.geometry().bottom() + 1 + spacing);
            strip.show();
        }
        size = {std::max(size.width(), left - spacing + padding), bottom};
    }
    content->resize(size.width(), size.height() - spacing + padding);
    horizontalScrollBar()->setValue(0);
    verticalScrollBar()->setValue(0);
    setUpdatesEnabled(true);
}

void StripRows::scrollSideways(bool toTheRight) {
    horizontalScrollBar()->triggerAction(
        toTheRight ? QScrollBar::SliderPageStepAdd : QScrollBar::SliderPageStepSub
    );
}

void StripRows::wheelEvent(QWheelEvent* event) {
    // If all rows are visible, the wheel scrolls sideways.
    if (verticalScrollBar()->maximum() == 0 && event->angleDelta().x() == 0)
        QCoreApplication::sendEvent(horizontalScrollBar(), event);
    else
        QScrollArea::wheelEvent(event);
}

void StripRows::keyPressEvent(QKeyEvent* event) {
    // Keys that no control accepts are shortcuts of the mixer, not of the scroll bars.
    event->ignore();
}

} // namespace orvane::ui
