#pragma once

#include "dsp/realtime.h"
#include "platform/base/stop_patience.h"

#include <atomic>
#include <cstdint>

namespace orvane::platform {

/// Guards the entry of a stream's cycles to its client, so that a stop can end them without waiting
/// indefinitely for a cycle that does not return. Owned by the stream; one I/O thread.
class CycleGate final {
  public:
    /// Calls `cycle` unless the gate is closed. If it returns false, the stream is over: the I/O thread must
    /// end and use nothing but the stream. I/O thread, real-time safe.
    template <class Cycle>
    ORVANE_REALTIME bool pass(Cycle&& cycle) noexcept {
        std::uint32_t idle = 0;
        if (!state.compare_exchange_strong(idle, inCycle, std::memory_order_acquire)) return false;
        cycle();
        return (state.fetch_and(~inCycle, std::memory_order_release) & abandoned) == 0;
    }

    /// Admits cycles from now on. Must not be called while an I/O thread runs.
    void open() noexcept { state.store(0); }

    /// Admits no further cycle and waits for the running one, for at most `stopPatience`. Returns false if
    /// that cycle has been abandoned: the client, the stream and everything they use must then never be
    /// freed. Called on the thread that owns the stream.
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
