#pragma once

namespace orvane::test {

/// While it lives, the calling thread counts as an audio thread: any allocation or free on it ends the
/// program with a message. Link orvane_test_support to have it watch malloc and its kin.
class AllocationGuard final {
  public:
    AllocationGuard() noexcept;
    ~AllocationGuard();
    AllocationGuard(const AllocationGuard&) = delete;
    AllocationGuard& operator=(const AllocationGuard&) = delete;
};

} // namespace orvane::test
