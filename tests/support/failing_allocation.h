#pragma once

#include <cstddef>

namespace orvane::test {

/// Makes one allocation of the calling thread fail while it lives: the `nth` operator new of at least
/// `smallest` bytes from now on, counted from 1, throws. The non-throwing forms succeed and do not count.
/// Available in every program that links orvane_allocation_guard; one at a time per thread.
class FailingAllocation final {
  public:
    explicit FailingAllocation(std::size_t nth, std::size_t smallest = 0);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// Whether that allocation was reached.
    [[nodiscard]] bool hasHappened() const;
};

} // namespace orvane::test
