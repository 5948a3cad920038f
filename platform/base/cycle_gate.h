#pragma once

#include "dsp/realtime.h"
#include "platform/base/stop_patience.h"

#include <atomic>
#include <cstdint>

namespace orvane::platform {

/// What the cycles of a stream pass through on their way to its client, so that a stop can end them without
/// waiting for ever for one that does not come back. Owned by the stream, one I/O thread.
class CycleGate final {
  public:
    /// Calls `cycle` unless the gate is closed. Returns whether the stream goes on: if false, the I/O thread
    /// must end and touch nothing but the stream. I/O thread, real-time safe.
    template <class Cycle>
    ORVANE_REALTIME bool pass(Cycle&& cycle) noexcept {
        std::uint32_t idle = 0;
        if (!state.compare_exchange_strong(idle, inCycle, std::memory_order_acquire)) return false;
        cycle();
        return (state.fetch_and(~inCycle, std::memory_order_release) & abandoned) == 0;
    }

    /// Lets cycles pass, from now on. While no I/O thread runs.
    void open() noexcept { state.store(0); }

    /// Lets no further cycle pass and waits for the one under way, `stopPatience` at most. Returns false if
    /// that one has been abandoned: then the client, the stream and all that they use must never be freed.
    /// The thread that owns the stream.
    bool close() {
        state.fetch_or(closed);
        if (waitPatiently([this] { return (state.load() & inCycle) == 0; })) return true;
        std::uint32_t stuck = inCycle | closed;
        return !state.compare_exchange_strong(stuck, stuck | abandoned) && stuck == closed;
    }

  private:
    static constexpr std::uint32_t inCycle = 1;
    static constexpr std::uint32_t closed = 2;
    static constexpr std::uint32_t abandoned = 4;

    std::atomic<std::uint32_t> state = 0;
};

} // namespace orvane::platform
