#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"
#include "ui/bridge/open_channels.h"
#include "ui/mixer/channel_layout.h"
#include "ui/strip/channel_strip_view.h"
#include "ui/strip/installed_components.h"
#include "ui/strip/strip_presentation.h"

#include <QScrollArea>

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace orvane::ui {

class StripGround;

/// The visible strips in rows; scrolls if they do not fit. All strips are made at once and kept, so that
/// pages turn without delay; hidden strips do no work. Main thread.
class StripRows final : public QScrollArea {
  public:
    /// A strip and one of its controls, counted in the order of its widgets; the strip itself if absent.
    struct Place {
        std::size_t strip = 0;
        std::optional<std::size_t> control = {};
    };

    /// The parameters must outlive the view.
    StripRows(
        engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents,
        const OpenChannels& openChannels
    );
    ~StripRows() override;

    /// Shows the strips of the rows and hides all others. A full row has `stripsPerRow` strips.
    void arrange(const std::vector<StripRange>& stripRows, std::size_t stripsPerRow);

    /// In Mix the strips share the room: they are as narrow as necessary and as high as possible.
    void setPresentation(StripPresentation now);
    /// Sets the action of a strip that asks for its presentation in Setup, by its index.
    void setOpenSetup(const std::function<void(std::size_t)>& action);
    /// Scrolls to a visible strip.
    void reveal(std::size_t index);
    /// The height at which the strips of a row are in sight as a whole in Setup.
    [[nodiscard]] int heightForSetup() const;

    /// Scrolls by the visible width, to the right or to the left.
    void scrollSideways(bool toTheRight);

    /// The place of the keyboard focus; absent if it is not in a strip.
    [[nodiscard]] std::optional<Place> placeInFocus() const;
    /// Gives the keyboard focus to a control and scrolls to it. If it is hidden, the strip gets the focus.
    void setFocusTo(const Place& place);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void layOut();
    [[nodiscard]] QSize stripSize() const;
    [[nodiscard]] int longestRow() const;
    /// The first strip in sight.
    [[nodiscard]] const QWidget* leftmostStrip() const;
    void markFocus();

    StripGround* const content;
    StripPresentation presentation = StripPresentation::setup;
    std::vector<StripRange> rows;
    int columns = 1;
    QSize setupSize;
    /// In the order of the engine's list.
    std::vector<ChannelStripView*> strips;
    platform::Subscription openSubscription;
};

} // namespace orvane::ui
