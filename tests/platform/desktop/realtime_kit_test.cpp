#include "desktop_bus_fixture.h"

#include "platform/desktop/realtime_kit.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <thread>

namespace orvane::platform::desktop {
namespace {

TEST(RealtimeKit, LendsPriorityToOneThreadOnceItsComputingTimeIsBounded) {
    DesktopPeer desktop;
    RealtimeKit kit;
    EXPECT_EQ(answerOf(desktop, [&] { return kit.obtainable(); }), DesktopPeer::highestPriority);
    EXPECT_EQ(answerOf(desktop, [&] { return kit.lend(4711); }), DesktopPeer::highestPriority);
    EXPECT_THAT(desktop.calls, ElementsAre("Realtime 4711 20"));

    desktop.manner = DesktopPeer::Manner::refuses;
    EXPECT_EQ(answerOf(desktop, [&] { return kit.lend(4711); }), 0);
    desktop.close();
    EXPECT_EQ(answerOf(desktop, [&] { return kit.lend(4711); }), 0);
    EXPECT_EQ(answerOf(desktop, [&] { return kit.obtainable(); }), 0);
}

TEST(RealtimeKit, LendsNothingWithoutABus) {
    RealtimeKit kit;
    EXPECT_EQ(kit.obtainable(), 0);
    EXPECT_EQ(kit.lend(4711), 0);
}

TEST(RealtimeKit, RevokesThePriorityOfAThreadThatComputesForTooLong) {
    DesktopPeer desktop;
    RealtimeKit kit;
    ASSERT_GT(answerOf(desktop, [&] { return kit.lend(4711); }), 0);
    rlimit before{};
    getrlimit(RLIMIT_RTTIME, &before);
    EXPECT_LT(before.rlim_cur, before.rlim_max) << "so that the warning comes before the end";
    std::thread([] {
        const sched_param high{.sched_priority = 5};
        if (pthread_setschedparam(pthread_self(), SCHED_FIFO, &high) != 0)
            GTEST_SKIP() << "No real-time priority is to be had here.";
        // The kernel sends this signal at the limit.
        raise(SIGXCPU);
        EXPECT_EQ(sched_getscheduler(0) & ~SCHED_RESET_ON_FORK, SCHED_OTHER);
    }).join();
    rlimit after{};
    getrlimit(RLIMIT_RTTIME, &after);
    EXPECT_EQ(after.rlim_cur, before.rlim_cur);
}

} // namespace
} // namespace orvane::platform::desktop
