#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"
#include "ui/mixer/value_row.h"
#include "ui/sheets/sheet.h"

#include <array>
#include <vector>

class QBoxLayout;
class QCheckBox;
class QLabel;

namespace orvane::ui {

class GateMeterView;
class SegmentedPicker;

/// The sheet of the output options, with the limiter's reduction and the overs. The mixer stays usable. Main
/// thread.
class OutputOptionsView final : public Sheet {
  public:
    /// `mixerEngine` must outlive the sheet.
    explicit OutputOptionsView(engine::MixerEngine& mixerEngine, QWidget* parent = nullptr);

  private:
    void addLeveler(QBoxLayout& lines);
    void addSwitches(QBoxLayout& lines);
    void addLimiter(QBoxLayout& lines);
    void addOvers(QBoxLayout& lines);
    void showOptions();
    void showReduction(double reductionDB);
    void showOvers();

    engine::MixerEngine& engine;
    SegmentedPicker* const leveler;
    /// In the order of the switches' members.
    std::array<QCheckBox*, 3> switches = {};
    QCheckBox* const limiter;
    ValueRow ceiling;
    GateMeterView* const reduction;
    QLabel* const reductionText;
    QLabel* const overs;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
