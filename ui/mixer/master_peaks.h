#pragma once

#include "engine/mixer_engine.h"
#include "platform/base/published.h"

#include <QString>

#include <vector>

namespace orvane::ui {

class ClipLamp;
class WideMeterColumn;

/// Shows at the master meter what leaves: the master bus's peak, the limiter's reduction, and a lamp for
/// overs of the master bus and of every output. Main thread.
class MasterPeaks final {
  public:
    /// Both must outlive it.
    MasterPeaks(engine::MixerEngine& mixerEngine, WideMeterColumn& masterMeter);

  private:
    void showPeak();
    void showReduction();
    void showOvers();

    engine::MixerEngine& engine;
    WideMeterColumn& meter;
    /// Belongs to the meter.
    ClipLamp* const lamp;
    QString shownOvers;
    std::vector<platform::Subscription> subscriptions;
};

/// Returns a line for the master bus and for each output that has reached full scale, with its overs; empty
/// if there is none. The master bus counts only while no limiter follows it.
QString oversText(engine::MixerEngine& engine);

} // namespace orvane::ui
