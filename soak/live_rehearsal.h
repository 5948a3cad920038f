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
#include <string_view>

namespace orvane::soak {

/// A show in real time: a mixer on a device with its own clock, and a careful operator. Main thread.
class LiveRehearsal final {
  public:
    /// `decisions` must outlive it. `shape` must ask for live pacing.
    LiveRehearsal(const Stage::Shape& shape, Choices& decisions);
    ~LiveRehearsal();
    LiveRehearsal(const LiveRehearsal&) = delete;
    LiveRehearsal& operator=(const LiveRehearsal&) = delete;

    /// Performs one operation and serves the main loop for up to `longestPause`.
    void step(std::chrono::nanoseconds longestPause);

    /// Empties all lists and slots while audio continues.
    void clearDesk();

    /// The first violated condition; absent if there is none.
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
    /// Used on the I/O thread.
    std::atomic<std::uint64_t> blockCount = 0;
    std::atomic<std::uint64_t> badBlocks = 0;
    std::string_view last;
};

} // namespace orvane::soak
