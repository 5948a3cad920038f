#include "dsp/decibels.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

using namespace orvane::dsp;

TEST(Decibels, ConvertExactlyBothWays) {
    const std::pair<double, double> linearByDB[] = {
        {0.0, 1.0}, {-16.0, 0.15848931924611134}, {-26.0, 0.05011872336272722}, {20.0, 10.0}};
    for (const auto& [dB, linear] : linearByDB) {
        EXPECT_EQ(dbToLinear(dB), linear) << dB << " dB";
        EXPECT_NEAR(linearToDB(linear), dB, 1e-13) << dB << " dB";
    }
    for (const double silent : {0.0, 1e-12, 1e-300, -1.0})
        EXPECT_EQ(linearToDB(silent), -240.0) << silent;
    EXPECT_EQ(linearToDB(10.0), 20.0);
}

} // namespace
