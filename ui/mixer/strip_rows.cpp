#include "ui/mixer/strip_rows.h"

#include "ui/controls/near_touch.h"
#include "ui/controls/scroll_guard.h"
#include "ui/mixer/strip_ground.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace orvane::ui {

namespace {

/// The distance of strips from each other and from the edges.
constexpr int spacing = 12;
constexpr int mixSpacing = 6;

int gapIn(StripPresentation presentation) {
    return presentation == StripPresentation::mix ? mixSpacing : spacing;
}

/// Returns the controls of a strip that the keyboard reaches, in the same order for every strip.
std::vector<QWidget*> controlsOf(const QWidget& strip) {
    std::vector<QWidget*> controls;
    for (QWidget* each : strip.findChildren<QWidget*>())
        // The lists of menus are windows of their own.
        if ((each->focusPolicy() & Qt::TabFocus) != 0 && each->window() == strip.window())
            controls.push_back(each);
    return controls;
}

} // namespace

StripRows::StripRows(
    engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents,
    const OpenChannels& openChannels
)
    : content(new StripGround(*this)) {
    setFrameShape(QFrame::NoFrame);
    setAccessibleName(QStringLiteral("Channels"));
    // A click beside the controls ends the editing of a field.
    content->setFocusPolicy(Qt::ClickFocus);
    setFocusPolicy(Qt::NoFocus);
    setWidget(content);
    for (std::size_t index = 0; index < mixerEngine.state().channelStrips.get().size(); ++index) {
        strips.push_back(new ChannelStripView(mixerEngine, installedComponents, index, content));
        // A click between its controls puts the strip in focus.
        strips.back()->setFocusPolicy(Qt::ClickFocus);
        strips.back()->hide();
    }
    if (!strips.empty()) setupSize = {strips.front()->maximumWidth(), strips.front()->sizeHint().height()};
    openSubscription = openChannels.channels().subscribe([this](const std::vector<bool>& open) {
        for (std::size_t index = 0; index < strips.size(); ++index)
            strips[index]->setOpen(open[index]);
    });
    new ScrollGuard(*this);
    new NearTouch(*content);
    connect(qApp, &QApplication::focusChanged, this, &StripRows::markFocus);
}

// A strip that has the focus loses it when the base class destroys it.
StripRows::~StripRows() {
    qApp->disconnect(this);
}

void StripRows::arrange(const std::vector<StripRange>& stripRows, std::size_t stripsPerRow) {
    rows = stripRows;
    columns = static_cast<int>(stripsPerRow);
    const auto isInSight = [this](std::size_t index) {
        return std::ranges::any_of(rows, [index](const StripRange& row) {
            return row.first <= index && index < row.end;
        });
    };
    setUpdatesEnabled(false);
    for (std::size_t index = 0; index < strips.size(); ++index)
        strips[index]->setVisible(isInSight(index));
    layOut();
    horizontalScrollBar()->setValue(0);
    verticalScrollBar()->setValue(0);
    setUpdatesEnabled(true);
}

void StripRows::setPresentation(StripPresentation now) {
    presentation = now;
    const QWidget* const leftmost = leftmostStrip();
    setUpdatesEnabled(false);
    for (ChannelStripView* strip : strips)
        strip->setPresentation(now);
    layOut();
    if (leftmost != nullptr) horizontalScrollBar()->setValue(leftmost->x() - gapIn(now));
    setUpdatesEnabled(true);
}

void StripRows::setOpenSetup(const std::function<void(std::size_t)>& action) {
    for (std::size_t index = 0; index < strips.size(); ++index)
        strips[index]->setOpenSetup([action, index] { action(index); });
}

void StripRows::reveal(std::size_t index) {
    ensureWidgetVisible(strips[index], spacing, spacing);
}

int StripRows::heightForSetup() const {
    const int wide = spacing + longestRow() * (setupSize.width() + spacing);
    const int bar = wide > width() ? horizontalScrollBar()->sizeHint().height() : 0;
    return spacing + setupSize.height() + spacing + bar;
}

int StripRows::longestRow() const {
    std::size_t longest = 1;
    for (const StripRange& row : rows)
        longest = std::max(longest, row.end - row.first);
    return static_cast<int>(longest);
}

const QWidget* StripRows::leftmostStrip() const {
    for (const StripRange& row : rows)
        for (std::size_t index = row.first; index < row.end; ++index)
            if (strips[index]->geometry().right() > horizontalScrollBar()->value()) return strips[index];
    return nullptr;
}

void StripRows::layOut() {
    const QSize strip = stripSize();
    const int gap = gapIn(presentation);
    int top = gap;
    for (const StripRange& row : rows) {
        int left = gap;
        for (std::size_t index = row.first; index < row.end; ++index) {
            strips[index]->setGeometry(QRect(QPoint(left, top), strip));
            left += strip.width() + gap;
        }
        top += strip.height() + gap;
    }
    content->resize(gap + longestRow() * (strip.width() + gap), top);
    markFocus();
}

QSize StripRows::stripSize() const {
    if (presentation == StripPresentation::setup || strips.empty()) return setupSize;
    const auto lines = static_cast<int>(std::max<std::size_t>(rows.size(), 1));
    const QSize room = maximumViewportSize();
    const QSize smallest = strips.front()->minimumSizeHint();
    const auto share = [](int length, int count) { return (length - mixSpacing) / count - mixSpacing; };
    const int width = std::clamp(
        share(room.width(), columns), strips.front()->minimumWidth(), strips.front()->maximumWidth()
    );
    const bool scrollsSideways = width > share(room.width(), longestRow());
    const int height = room.height() - (scrollsSideways ? horizontalScrollBar()->sizeHint().height() : 0);
    return {width, std::max(share(height, lines), smallest.height())};
}

void StripRows::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    if (presentation == StripPresentation::mix) layOut();
}

std::optional<StripRows::Place> StripRows::placeInFocus() const {
    const QWidget* const focused = QApplication::focusWidget();
    if (focused == nullptr) return std::nullopt;
    for (std::size_t index = 0; index < strips.size(); ++index) {
        if (strips[index] == focused) return Place{.strip = index};
        if (!strips[index]->isAncestorOf(focused)) continue;
        const std::vector<QWidget*> controls = controlsOf(*strips[index]);
        const auto found = std::ranges::find(controls, focused);
        return Place{.strip = index, .control = static_cast<std::size_t>(found - controls.begin())};
    }
    return std::nullopt;
}

void StripRows::setFocusTo(const Place& place) {
    const std::vector<QWidget*> controls = controlsOf(*strips[place.strip]);
    QWidget* target = strips[place.strip];
    if (place.control && *place.control < controls.size() && controls[*place.control]->isVisible())
        target = controls[*place.control];
    target->setFocus(Qt::TabFocusReason);
    ensureWidgetVisible(target, spacing, spacing);
}

void StripRows::markFocus() {
    const std::optional<Place> place = placeInFocus();
    content->mark(place && strips[place->strip]->isVisible() ? strips[place->strip]->geometry() : QRect());
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
