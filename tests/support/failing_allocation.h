#pragma once

#include <cstddef>

namespace orvane::test {

/// While it lives, one allocation of the calling thread fails: the `nth` operator new of at least `smallest`
/// bytes from now on, counted from 1, throws. Whoever asks without an exception gets what he asks for, and is
/// not counted. In every program that links orvane_allocation_guard; one at a time a thread.
class FailingAllocation final {
  public:
    explicit FailingAllocation(std::size_t nth, std::size_t smallest = 0);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// Whether there were that many.
    [[nodiscard]] bool hasHappened() const;
};

} // namespace orvane::test
