#pragma once

#include "engine/mixer_engine.h"
#include "ui/mixer/mute_all.h"

#include <QObject>

#include <functional>
#include <vector>

class QAction;

namespace orvane::ui {

class ChannelArea;

/// The keys that act on strips: from strip to strip, mute and bypass of the strip in focus, and mute of all.
/// Main thread.
class StripKeys final : public QObject {
  public:
    /// `mixerEngine` and `channelArea` must outlive it. The keys act in the window of `channelArea`.
    StripKeys(engine::MixerEngine& mixerEngine, ChannelArea& channelArea);

    /// The commands for a menu, in order.
    [[nodiscard]] const std::vector<QAction*>& all() const { return commands; }

  private:
    void withStripInFocus(const std::function<void(const session::ChannelStrip&)>& act) const;

    engine::MixerEngine& engine;
    ChannelArea& area;
    MuteAll everyStrip;
    std::vector<QAction*> commands;
};

} // namespace orvane::ui
