#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/uuid.h"

#include <vector>

class QWidget;

namespace orvane::ui {

/// The emergency command that mutes every strip, and unmutes those strips when it is given again. Both
/// directions ask first. Main thread.
class MuteAll final {
  public:
    /// `mixerEngine` must outlive it.
    explicit MuteAll(engine::MixerEngine& mixerEngine) : engine(mixerEngine) {}

    /// Asks in front of the window of `parent`, which must not outlive this.
    void ask(QWidget* parent);

  private:
    void mute();
    void unmute();

    engine::MixerEngine& engine;
    /// The strips that the command has muted.
    std::vector<platform::Uuid> mutedHere;
};

} // namespace orvane::ui
