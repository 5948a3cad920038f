#pragma once

#include "dsp/realtime.h"

#include <array>
#include <atomic>

namespace orvane::dsp {

/// Hands whole records from one control thread to one audio thread; neither ever waits. Keeps three copies:
/// one being written, one being read, one in between. The reader gets the latest record that was published
/// whole, and keeps the same one until it asks again.
template <class Record>
class Handover final {
  public:
    /// The reader gets `initial` until the first publication. The arrays of all records of one handover must
    /// have equal lengths, so that copying one record over another does not allocate.
    explicit Handover(const Record& initial) : slots{initial, initial, initial} {}

    /// Makes `record` the latest. Control thread.
    void publish(const Record& record) {
        slots[writing] = record;
        writing = between.exchange(writing | fresh, std::memory_order_acq_rel) & index;
    }

    /// Returns the latest record, valid until the next call. Audio thread, real-time safe.
    ORVANE_REALTIME const Record& latest() noexcept {
        if ((between.load(std::memory_order_relaxed) & fresh) != 0)
            reading = between.exchange(reading, std::memory_order_acq_rel) & index;
        return slots[reading];
    }

  private:
    static constexpr unsigned fresh = 4;
    static constexpr unsigned index = 3;

    std::array<Record, 3> slots;
    unsigned writing = 0;
    unsigned reading = 1;
    std::atomic<unsigned> between = 2;
};

} // namespace orvane::dsp
