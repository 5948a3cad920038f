#pragma once

#include "audio/meter_model.h"
#include "engine/engine_state.h"
#include "platform/base/published.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace orvane::ui {

/// Decides for every mark and meter which channels are open, that is, which ones the audience hears now. A
/// channel is open if
/// - the audio runs and the channel is not muted,
/// - its output reached the quiet end of the level meters, -40 dB, within the last half second, which spans
///   the gaps between syllables, and
/// - the automix turns it down by at most 6 dB more than the least reduced channel with a signal (0 dB,
/// unless
///   it limits the number of open microphones), or the channel is bypassed and thus out of the automix.
/// In pauses the automix leaves silent channels at unity gain; they are not open. Main thread.
class OpenChannels final {
  public:
    /// `state` and `model` must outlive it.
    OpenChannels(const engine::EngineState& state, const audio::MeterModel& model);

    /// One entry per channel. Assigned only when an entry changes.
    [[nodiscard]] const platform::Published<std::vector<bool>>& channels() const { return open; }

  private:
    void listen();
    void decide();
    /// Whether a channel that is not muted has a signal.
    [[nodiscard]] bool sounds(std::size_t channel) const;
    /// How far the automix turns a channel down; absent for bypassed channels.
    [[nodiscard]] std::optional<double> reductionOf(std::size_t channel) const;

    const engine::EngineState& engineState;
    const audio::MeterModel& meters;
    /// The ticks of the meters during which each channel still counts as having a signal.
    std::vector<int> signalTicks;
    platform::Published<std::vector<bool>> open;
    std::vector<platform::Subscription> subscriptions;
};

} // namespace orvane::ui
