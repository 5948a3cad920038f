#include "platform/base/natural_order.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

using orvane::platform::comesNaturallyBefore;

TEST(NaturalOrder, ReadsDigitsAsNumbers) {
    constexpr std::string_view ascending[] = {"",     "10",    "a",   "a 2", "a 2b",
                                              "a 10", "a 10b", "a10", "b1",  "c"};
    for (std::size_t left = 0; left < std::size(ascending); ++left)
        for (std::size_t right = 0; right < std::size(ascending); ++right)
            EXPECT_EQ(comesNaturallyBefore(ascending[left], ascending[right]), left < right)
                << '"' << ascending[left] << "\" and \"" << ascending[right] << '"';
}

TEST(NaturalOrder, IgnoresLeadingZeros) {
    EXPECT_FALSE(comesNaturallyBefore("in 01", "in 1"));
    EXPECT_FALSE(comesNaturallyBefore("in 1", "in 01"));
    EXPECT_TRUE(comesNaturallyBefore("in 0", "in 1"));
    EXPECT_TRUE(comesNaturallyBefore("in 099", "in 100"));
}

} // namespace
