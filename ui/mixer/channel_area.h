#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"
#include "ui/bridge/open_channels.h"
#include "ui/mixer/channel_layout.h"
#include "ui/strip/installed_components.h"

#include <QWidget>

#include <optional>
#include <string>
#include <vector>

class QHBoxLayout;
class QLabel;

namespace orvane::ui {

class ConsoleButton;
class MeterBridge;
class Presentation;
class SegmentedPicker;
class StripRows;

/// The strips, the picker of their layout, the meter bridge, and the error message about session files. Main
/// thread.
class ChannelArea final : public QWidget {
  public:
    /// The parameters must outlive the view. `presentation` is what the picker of the presentation chooses.
    ChannelArea(
        engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents,
        Presentation& presentation, QWidget* parent = nullptr
    );

    [[nodiscard]] const ChannelLayout& channelLayout() const { return shown; }
    void setLayoutMode(ChannelLayoutMode mode);
    void setPage(std::size_t page);

    /// Turns to the page of a strip and scrolls to it.
    void reveal(std::size_t strip);
    /// The height at which every strip of a row is in sight as a whole in Setup.
    [[nodiscard]] int heightForSetup() const;

    /// Turns to the next or previous page; without pages, scrolls by the visible strips.
    void turn(bool forwards);

    /// Moves the keyboard focus from strip to strip, on the same control, across pages. Without a strip in
    /// focus, moves it to the first visible strip.
    void step(int by);
    /// The index of the strip in focus.
    [[nodiscard]] std::optional<std::size_t> stripInFocus() const;
    /// The view that contains all strips.
    [[nodiscard]] QWidget& strips() const;

    /// Shows a sentence about a session file that could not be read or written; hides it if absent.
    void setFileErrorMessage(const std::optional<std::string>& sentence);

  private:
    QWidget* makeHeader();
    void showPages();
    void arrange();
    void showPresentation();

    Presentation& presentation;
    ChannelLayout shown;
    const std::vector<ChannelLayoutMode> modes;
    SegmentedPicker* const modePicker;
    SegmentedPicker* const presentationPicker;
    QWidget* const pages;
    std::vector<ConsoleButton*> pageButtons;
    QLabel* const fileErrorMessage;
    OpenChannels openChannels;
    MeterBridge* const bridge;
    StripRows* const rows;
    platform::Subscription presentationSubscription;
};

} // namespace orvane::ui
