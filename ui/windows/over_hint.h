#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"

#include <QString>

#include <cstddef>
#include <vector>

namespace orvane::ui {

/// The hint for the first output of a session that goes over full scale: what to do about it. It stays until
/// the overs are reset or the master settings change, and does not come again. Main thread.
class OverHint final {
  public:
    /// `mixerEngine` must outlive it.
    explicit OverHint(engine::MixerEngine& mixerEngine);

    /// Empty while there is nothing to hint at.
    [[nodiscard]] const platform::Published<QString>& text() const { return hint; }

  private:
    void look();
    [[nodiscard]] bool carriesMaster(std::size_t output) const;

    engine::MixerEngine& engine;
    platform::Published<QString> hint;
    bool isSpent = false;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
