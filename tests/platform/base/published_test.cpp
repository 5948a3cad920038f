#include "platform/base/published.h"

#include <gtest/gtest.h>

#include <new>
#include <optional>
#include <string>
#include <vector>

namespace {

using orvane::platform::Published;
using orvane::platform::Subscription;
using Told = std::vector<std::string>;

struct PublishedTest : testing::Test {
    /// A subscription that writes down who heard what.
    Subscription listen(const std::string& who) {
        return number.subscribe([this, who](const int& value) { told.push_back(who + std::to_string(value)); }
        );
    }

    Published<int> number{1};
    Told told;
};

TEST_F(PublishedTest, NotifiesSubscribersInOrderAtEveryAssignment) {
    const Subscription a = listen("a");
    const Subscription b = listen("b");
    EXPECT_TRUE(told.empty());
    EXPECT_EQ(number.get(), 1);
    number.set(2);
    number.set(2);
    EXPECT_EQ(told, (Told{"a2", "b2", "a2", "b2"}));
    EXPECT_EQ(number.get(), 2);
}

TEST(Published, MayEndBeforeItsSubscriptions) {
    std::optional<Published<int>> number(1);
    const Subscription listening = number->subscribe([](const int&) {});
    number.reset();
}

TEST_F(PublishedTest, LetsSubscriptionsEndAndBeginDuringANotification) {
    Subscription itself;
    Subscription later;
    std::vector<Subscription> added;
    const std::string tag = "a listener's own captures last as long as its call";
    itself = number.subscribe([&, tag](const int&) {
        for (int i = 0; i < 2; ++i)
            added.push_back(listen("new"));
        itself = Subscription();
        later = Subscription();
        told.push_back(tag);
    });
    later = listen("later");
    const Subscription last = listen("last");
    number.set(2);
    number.set(3);
    EXPECT_EQ(told, (Told{tag, "last2", "last3", "new3", "new3"}));
}

TEST_F(PublishedTest, NotifiesSubscribersEvenIfOneThrows) {
    const Subscription first = listen("a");
    const Subscription thrower = number.subscribe([](const int& value) {
        if (value == 2) throw std::bad_alloc();
    });
    const Subscription last = listen("b");
    EXPECT_THROW(number.set(2), std::bad_alloc);
    number.set(3);
    EXPECT_EQ(told, (Told{"a2", "b2", "a3", "b3"}));
}

TEST_F(PublishedTest, NotifiesAnAssignmentMadeDuringANotificationInItsOwnRound) {
    const Subscription first = listen("a");
    const Subscription limiter = number.subscribe([this](const int& value) {
        told.push_back("limit" + std::to_string(value));
        if (value > 10) number.set(10);
    });
    const Subscription last = listen("b");
    number.set(12);
    EXPECT_EQ(told, (Told{"a12", "limit12", "b10", "a10", "limit10", "b10"}));
}

} // namespace
