#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"
#include "platform/base/uuid.h"
#include "ui/controls/control_group.h"
#include "ui/strip/installed_components.h"
#include "ui/strip/routing_picker.h"
#include "ui/strip/strip_presentation.h"

#include <array>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

class QHBoxLayout;
class QLayout;
class QLineEdit;

namespace orvane::ui {

class ConsoleButton;
class PluginSlotView;
class SegmentedPicker;
class StripLevels;
class StripMark;
class StripSigns;
class ValueSlider;

/// One strip of the mixer. Follows the engine while it is visible and refreshes when it becomes visible. Main
/// thread.
class ChannelStripView final : public ControlGroup {
  public:
    /// `mixerEngine` and `installedComponents` must outlive the view. Shows the strip at `index` in the
    /// engine's list.
    ChannelStripView(
        engine::MixerEngine& mixerEngine, const InstalledComponents& installedComponents, std::size_t index,
        QWidget* parent = nullptr
    );

    /// Setup has all controls at fixed sizes. Mix folds those that a show rarely needs into one line of
    /// signs, is as narrow as needed, and has meters and a trim that grow with it.
    void setPresentation(StripPresentation now);
    /// Sets the action of the signs in Mix that lead to Setup.
    void setOpenSetup(std::function<void()> action) { openSetup = std::move(action); }

    /// Shows whether the strip's channel is open, with its mute and bypass.
    void setOpen(bool isOpen);

    /// Passes a name that is being typed to the engine.
    void commitName();

  protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    [[nodiscard]] const session::ChannelStrip& strip() const;
    void fillSetupRows(const InstalledComponents& installedComponents);
    QLayout* makeOutputRow();
    QLayout* makePanRow();
    QLayout* makeSwitches();
    void subscribe();
    void refresh();
    void showStrip();
    void showName();
    void showRouting();
    void showSlots();
    void showSigns();
    /// Puts a picker with the look of Setup at the start of its row.
    static void hold(QHBoxLayout& row, const RoutingPicker& picker, int width);
    void chooseOutput(std::optional<std::int64_t> channel);

    engine::MixerEngine& engine;
    const std::size_t stripIndex;
    const platform::Uuid stripID;
    StripMark* const mark;
    QLineEdit* const name;
    SegmentedPicker* const genderMode;
    SegmentedPicker* const vocalRole;
    RoutingPicker input;
    RoutingPicker output;
    std::function<void()> openSetup;
    StripPresentation presentation = StripPresentation::setup;
    QWidget* const setupRows;
    QHBoxLayout* const inputRow;
    QHBoxLayout* const outputRow;
    StripSigns* const signs;
    StripLevels* const levels;
    ConsoleButton* stereo = nullptr;
    QWidget* panRow = nullptr;
    ValueSlider* pan = nullptr;
    std::array<PluginSlotView*, session::pluginSlotsPerChannel> slotViews = {};
    ConsoleButton* mute = nullptr;
    ConsoleButton* bypass = nullptr;
    /// The values that the routing pickers show.
    struct ShownRouting {
        std::int64_t inputs = -1;
        std::int64_t outputs = -1;
        std::optional<std::int64_t> input;
        session::OutputRouting output;

        bool operator==(const ShownRouting&) const = default;
    };
    ShownRouting shownRouting;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
