#pragma once

#include "engine/mixer_engine.h"
#include "engine/services.h"

#include <QWidget>

#include <cstddef>
#include <functional>
#include <memory>

namespace orvane::ui {

class MixerView;

/// A session: owns its engine and shows the mixer with the status bar below it. Main thread.
class MixerRootView final : public QWidget {
  public:
    /// `onReconfigure` is called when the user requests another channel count.
    MixerRootView(
        std::size_t channelCount, const engine::Services& services, std::function<void()> onReconfigure
    );
    ~MixerRootView() override;

    [[nodiscard]] engine::MixerEngine& engine() { return mixer; }
    [[nodiscard]] MixerView& view() { return *mixerView; }

  private:
    engine::MixerEngine mixer;
    /// The views of the engine are destroyed before it.
    std::unique_ptr<MixerView> mixerView;
    std::unique_ptr<QWidget> statusBar;
};

} // namespace orvane::ui
