#pragma once

#include "soak/block_invariants.h"
#include "soak/choices.h"
#include "soak/fault.h"
#include "soak/published_invariants.h"
#include "soak/random_operator.h"
#include "soak/stage.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::soak {

/// A show on a stepped stage: random operations while time passes, with all conditions checked. The same
/// choices give the same show. Main thread.
class Rehearsal final {
  public:
    /// `decisions` must outlive it. `fullCheckInterval`: see `BlockInvariants`.
    Rehearsal(const Stage::Shape& shape, Choices& decisions, std::size_t fullCheckInterval);

    /// Performs one operation and advances time by up to `longestPause`.
    void step(std::chrono::nanoseconds longestPause);

    /// See `RandomOperator::clearDesk`.
    void clearDesk();

    /// The first violated condition; absent if there is none.
    [[nodiscard]] const std::optional<std::string>& fault() const { return firstFault.first(); }

    [[nodiscard]] std::chrono::nanoseconds time() const { return now; }
    [[nodiscard]] std::size_t operations() const { return person.operations(); }
    [[nodiscard]] std::uint64_t blocks() const { return blockInvariants.blocks(); }
    /// The name of the last operation.
    [[nodiscard]] std::string_view lastOperation() const { return last; }

  private:
    void pass(std::chrono::nanoseconds duration);

    Stage stage;
    Choices& choices;
    Fault firstFault;
    BlockInvariants blockInvariants;
    PublishedInvariants publishedInvariants{stage.engine, firstFault};
    RandomOperator person;
    std::chrono::nanoseconds now{0};
    std::string_view last;
};

} // namespace orvane::soak
