#pragma once

#include "engine/mixer_engine.h"
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
class SegmentedPicker;
class StripRows;

/// The strips, the choice of how they are arranged, and the message about session files. Main thread.
class ChannelArea final : public QWidget {
  public:
    /// `mixerEngine` and `installedComponents` outlive the view.
    ChannelArea(
        engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents,
        QWidget* parent = nullptr
    );

    [[nodiscard]] const ChannelLayout& channelLayout() const { return shown; }
    void setLayoutMode(ChannelLayoutMode mode);
    void setPage(std::size_t page);

    /// To the page, or else the strips in sight, after or before.
    void turn(bool forwards);

    /// A sentence about a session file that could not be read or written; nothing if absent.
    void setFileErrorMessage(const std::optional<std::string>& sentence);

  private:
    QWidget* makeHeader();
    void showPages();
    void arrange();

    ChannelLayout shown;
    const std::vector<ChannelLayoutMode> modes;
    SegmentedPicker* const modePicker;
    QWidget* const pages;
    std::vector<ConsoleButton*> pageButtons;
    QLabel* const fileErrorMessage;
    StripRows* const rows;
};

} // namespace orvane::ui
