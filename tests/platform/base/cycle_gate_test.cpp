#include "platform/base/cycle_gate.h"

#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace orvane::platform {
namespace {

TEST(CycleGate, ClosingWaitsForTheRunningCycleAndAdmitsNoOther) {
    CycleGate gate;
    std::atomic<bool> isIn = false;
    std::atomic<bool> mayReturn = false;
    std::atomic<bool> hasReturned = false;
    std::thread io([&] {
        EXPECT_TRUE(gate.pass([&] {
            isIn = true;
            while (!mayReturn) {
            }
            hasReturned = true;
        }));
    });
    ASSERT_TRUE(test::waitFor([&] { return isIn.load(); }));
    std::thread stop([&] {
        EXPECT_TRUE(gate.close());
        EXPECT_TRUE(hasReturned);
    });
    mayReturn = true;
    stop.join();
    io.join();
    EXPECT_FALSE(gate.pass([] { FAIL(); }));
    gate.open();
    EXPECT_TRUE(gate.pass([] {}));
}

TEST(CycleGate, AbandonsACycleThatDoesNotReturn) {
    CycleGate gate;
    std::atomic<bool> isIn = false;
    std::atomic<bool> mayReturn = false;
    std::thread io([&] {
        EXPECT_FALSE(gate.pass([&] {
            isIn = true;
            while (!mayReturn) {
            }
        }));
    });
    ASSERT_TRUE(test::waitFor([&] { return isIn.load(); }));
    setStopPatience({});
    EXPECT_FALSE(gate.close());
    setStopPatience(usualStopPatience);
    mayReturn = true;
    io.join();
}

} // namespace
} // namespace orvane::platform
