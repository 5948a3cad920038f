#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"
#include "ui/strip/routing_picker.h"

#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

class QLabel;

namespace orvane::ui {

class ConsoleButton;

/// Selects the output of the master bus and opens the output options. Main thread.
class MasterOutputControl final : public QWidget {
  public:
    /// `mixerEngine` must outlive the view.
    MasterOutputControl(engine::MixerEngine& mixerEngine, std::function<void()> showOptions);

  private:
    void refresh();
    void showWhetherOptionsAreOn();
    void choose(std::optional<std::int64_t> channel);
    [[nodiscard]] bool isStereo() const;

    engine::MixerEngine& engine;
    QLabel* const device;
    RoutingPicker output;
    ConsoleButton* const stereo;
    ConsoleButton* const options;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
