#pragma once

#include "dsp/realtime.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace orvane::platform::lv2 {

/// Keeps the render thread out of a plugin while the control side uses it, without making the render thread
/// wait.
class RenderGate final {
  public:
    enum class State {
        /// There are no render resources.
        closed,
        /// The plugin must not run for the moment.
        paused,
        open
    };

    /// Returns what the render thread may do until it calls `leave`. Render thread, real-time safe.
    ORVANE_REALTIME State enter() noexcept {
        isInside.store(true);
        return state.load();
    }
    ORVANE_REALTIME void leave() noexcept { isInside.store(false); }

    /// Control thread, as is `shut`.
    [[nodiscard]] State current() const noexcept { return state.load(); }
    void open() noexcept { state.store(State::open); }
    /// Returns when no block is running that began under an earlier state.
    void shut(State to) {
        state.store(to);
        while (isInside.load())
            std::this_thread::sleep_for(std::chrono::microseconds(50));
    }

  private:
    std::atomic<State> state = State::closed;
    std::atomic<bool> isInside = false;
};

} // namespace orvane::platform::lv2
