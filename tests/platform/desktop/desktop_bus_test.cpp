#include "desktop_bus_fixture.h"

#include "platform/desktop/desktop_notifier.h"
#include "platform/desktop/sleep_inhibitor.h"
#include "support/manual_main_thread.h"

#include <functional>
#include <string>
#include <vector>

namespace orvane::platform::desktop {
namespace {

constexpr const char* request = "Inhibit sleep:idle ORVANE The mixer is running block";

/// More steps than a call needs from connecting to its answer.
constexpr int stepsOfACall = 20;

class DesktopBus : public testing::Test {
  protected:
    /// Steps the pending calls and serves the desktop after each step.
    void step(int count = 1) {
        for (int i = 0; i < count; ++i) {
            mainThread.advance(20ms);
            desktop.serve();
        }
    }

    template <class Condition>
    bool comesTo(Condition condition) {
        return waitFor([&] {
            step();
            return condition();
        });
    }

    std::vector<std::string> logged() {
        log.flush();
        return lines;
    }

    DesktopPeer desktop;
    test::ManualMainThread mainThread;
    std::vector<std::string> lines;
    SystemLog log{[this](const LogLine& line) {
        lines.push_back((line.level == LogLevel::error ? "error: " : "") + std::string(line.text));
    }};
    SleepInhibitor inhibitor{mainThread, log};
};

TEST_F(DesktopBus, SleepIsInhibitedWhileRequested) {
    inhibitor.setHeld(true);
    EXPECT_TRUE(comesTo([&] { return desktop.locks() == 1; }));
    step(stepsOfACall);
    mainThread.advance(60s);
    inhibitor.setHeld(true);
    step(stepsOfACall);
    EXPECT_EQ(desktop.locks(), 1U);
    EXPECT_THAT(desktop.calls, ElementsAre(request));
    inhibitor.setHeld(false);
    EXPECT_EQ(desktop.locks(), 0U);
    {
        SleepInhibitor another(mainThread, log);
        another.setHeld(true);
        EXPECT_TRUE(comesTo([&] { return desktop.locks() == 1; }));
    }
    EXPECT_TRUE(comesTo([&] { return desktop.locks() == 0; }));
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(DesktopBus, TheLastRequestedStateOfSleepWins) {
    for (int stepsBetween = 0; stepsBetween < stepsOfACall; ++stepsBetween)
        for (const bool last : {false, true}) {
            for (const bool isWanted : {true, false, true, last}) {
                inhibitor.setHeld(isWanted);
                step(stepsBetween);
            }
            step(stepsOfACall);
            EXPECT_EQ(desktop.locks(), last ? 1U : 0U) << stepsBetween << " steps between";
            inhibitor.setHeld(false);
        }

    desktop.manner = DesktopPeer::Manner::isSilent;
    desktop.calls.clear();
    inhibitor.setHeld(true);
    ASSERT_TRUE(comesTo([&] { return !desktop.calls.empty(); }));
    inhibitor.setHeld(false);
    desktop.grantLate();
    EXPECT_TRUE(comesTo([&] { return desktop.locks() == 0; })) << "granted to who has gone";
}

TEST_F(DesktopBus, TheLogReportsOnceWhySleepIsNotInhibited) {
    const std::string sentence = "The machine may go to sleep while the mixer runs, because ";
    const std::pair<std::function<void()>, std::string> cases[] = {
        {[&] { desktop.manner = DesktopPeer::Manner::refuses; },
         "error: " + sentence + "org.freedesktop.login1 refuses (Not in this house)."},
        {[&] { desktop.manner = DesktopPeer::Manner::isSilent; },
         "error: " + sentence + "org.freedesktop.login1 does not answer."},
        {[&] { desktop.close(); },
         sentence
             + "org.freedesktop.login1 refuses "
               "(The name org.freedesktop.login1 was not provided by any .service files)."},
        {[&] { desktop.freeze(); }, "error: " + sentence + "org.freedesktop.login1 does not answer."},
        {[] { test::setBusAddress("unix:path=/none"); },
         sentence + "the system bus cannot be reached (No such file or directory)."},
        {[] { test::setBusAddress(test::noBus); },
         sentence + "the system bus cannot be reached (Connection refused)."}};
    for (const auto& [arrange, says] : cases) {
        SCOPED_TRACE(says);
        arrange();
        lines.clear();
        SleepInhibitor refused(mainThread, log);
        for (int run = 0; run < 2; ++run) {
            refused.setHeld(true);
            step(stepsOfACall);
            mainThread.advance(10s);
            EXPECT_THAT(logged(), ElementsAre(says));
            refused.setHeld(false);
        }
        // Destroying the inhibitor during a call does not block.
        refused.setHeld(true);
        mainThread.advance(20ms);
    }
}

TEST_F(DesktopBus, ANotificationShowsPlainTextUntilItsSenderLeaves) {
    {
        DesktopNotifier notifier(mainThread, log);
        notifier.show("The mixer has stopped", "The audio device A & B <2> is gone.");
        ASSERT_TRUE(comesTo([&] { return !desktop.calls.empty(); }));
        step(stepsOfACall);
        mainThread.advance(60s);
        EXPECT_THAT(
            desktop.calls,
            ElementsAre(
                "Notify ORVANE 0 app.orvane.mixer | The mixer has stopped | The audio device A &amp; B "
                "&lt;2&gt; is gone. | 2"
            )
        );
        EXPECT_TRUE(desktop.hasCaller());
        EXPECT_THAT(logged(), IsEmpty());
    }
    EXPECT_TRUE(comesTo([&] { return !desktop.hasCaller(); }));
}

} // namespace
} // namespace orvane::platform::desktop
