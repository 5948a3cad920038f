#include "machine/signals.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

using orvane::machine::InterruptGuard;

constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP};

TEST(InterruptGuard, RecordsASignalInsteadOfEndingTheProgram) {
    for (const int signal : endingSignals) {
        const InterruptGuard guard;
        EXPECT_FALSE(guard.isInterrupted()) << "before signal " << signal;
        std::raise(signal);
        EXPECT_TRUE(guard.isInterrupted()) << "after signal " << signal;
        std::raise(signal);
        EXPECT_TRUE(guard.isInterrupted()) << "after signal " << signal << " came again";
    }
}

TEST(InterruptGuard, KeepsSighupIgnored) {
    const auto before = std::signal(SIGHUP, SIG_IGN);
    const InterruptGuard guard;
    std::raise(SIGHUP);
    EXPECT_FALSE(guard.isInterrupted());
    std::signal(SIGHUP, before);
}

TEST(InterruptGuard, RestoresTheSignalHandlers) {
    for (const int signal : endingSignals) {
        for (const auto handler : {SIG_DFL, SIG_IGN}) {
            const auto before = std::signal(signal, handler);
            { const InterruptGuard guard; }
            EXPECT_EQ(std::signal(signal, before), handler) << "signal " << signal;
        }
    }
}

} // namespace
