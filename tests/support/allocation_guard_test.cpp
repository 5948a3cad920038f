#include "support/allocation_guard.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <thread>

namespace {

using orvane::test::AllocationGuard;

TEST(AllocationGuardDeathTest, EndsTheProgramAtAnAllocationOrAFree) {
    EXPECT_DEATH(
        {
            const AllocationGuard guard;
            ::operator delete(::operator new(1));
        },
        "An audio thread called (malloc|operator new)"
    );
    EXPECT_DEATH(
        {
            void* const memory = ::operator new(1);
            const AllocationGuard guard;
            ::operator delete(memory);
        },
        "An audio thread called (free|operator delete)"
    );
}

TEST(AllocationGuard, WatchesItsOwnThreadWhileItLives) {
    std::thread other;
    {
        const AllocationGuard outer;
        const AllocationGuard inner;
    }
    EXPECT_NE(std::make_unique<int>(1), nullptr);
    other = std::thread([] { EXPECT_NE(std::make_unique<int>(1), nullptr); });
    other.join();
}

} // namespace
