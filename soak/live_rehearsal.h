#pragma once

#include "soak/choices.h"
#include "soak/fault.h"
#include "soak/published_invariants.h"
#include "soak/random_operator.h"
#include "soak/stage.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace orvane::soak {

/// A show in real time: a mixer that runs on a device of its own clock, with somebody careful at it. Main
/// thread.
class LiveRehearsal final {
  public:
    /// `decisions` outlive it. `stage`: of live pacing.
    LiveRehearsal(const Stage::Shape& shape, Choices& decisions);
    ~LiveRehearsal();
    LiveRehearsal(const LiveRehearsal&) = delete;
    LiveRehearsal& operator=(const LiveRehearsal&) = delete;

    /// Does one operation and works on until up to `longestPause` have passed.
    void step(std::chrono::nanoseconds longestPause);

    /// Empties all lists and slots while the audio goes on.
    void clearDesk();

    /// What did not hold first, absent while all does.
    [[nodiscard]] const std::optional<std::string>& fault() const { return firstFault.first(); }

    [[nodiscard]] std::size_t operations() const { return person.operations(); }
    [[nodiscard]] std::uint64_t blocks() const { return blockCount.load(); }
    [[nodiscard]] std::uint32_t lateCycles() const { return stage.engine.xrunCount(); }
    [[nodiscard]] int realtimePriority() const { return stage.engine.realtimePriority(); }
    [[nodiscard]] double load() const { return stage.engine.renderLoad(); }
    [[nodiscard]] std::string_view lastOperation() const { return last; }

  private:
    void check();

    Stage stage;
    Choices& choices;
    Fault firstFault;
    PublishedInvariants publishedInvariants{stage.engine, firstFault};
    RandomOperator person{stage, choices, RandomOperator::Manner::careful};
    /// Of the I/O thread.
    std::atomic<std::uint64_t> blockCount = 0;
    std::atomic<std::uint64_t> badBlocks = 0;
    std::string_view last;
};

} // namespace orvane::soak
