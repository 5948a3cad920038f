#include "dsp/decibels.h"
#include "dsp/master_bus_leveler.h"

#include <gtest/gtest.h>

namespace {

using namespace orvane::dsp;

constexpr double attackCoef = 0.8371284313607636;
constexpr double releaseCoef = 0.9893900204888596;

MasterBusLeveler levelerFor(double targetDB) {
    return {targetDB, 48000.0 / 256.0, 30.0, 500.0, 20.0, -24.0};
}

TEST(MasterBusLeveler, DrivesTheBusToItsTargetWithinBounds) {
    const std::tuple<const char*, double, double, double> cases[] = {
        {"too loud", -10.0, 0.39810717055349726, attackCoef},
        {"far too loud", 12.0, 0.06309573444801933, attackCoef},
        {"too quiet", -24.0, 1.9952623149688797, releaseCoef},
        {"silent", -400.0, 10.0, releaseCoef}};
    for (const auto& [what, busDB, gain, firstStep] : cases) {
        MasterBusLeveler leveler = levelerFor(-18.0);
        const double bus = dbToLinear(busDB);
        EXPECT_NEAR(leveler.process(bus), firstStep + (1.0 - firstStep) * gain, 1e-12) << what;
        for (int block = 0; block < 10000; ++block)
            leveler.process(bus);
        EXPECT_NEAR(leveler.smoothedGain(), gain, 1e-9) << what;
    }
}

TEST(MasterBusLeveler, RecoversFromAnInfinitelyLoudBus) {
    MasterBusLeveler leveler = levelerFor(1e6);
    leveler.process(HUGE_VAL);
    leveler.setTargetDB(-18.0);
    EXPECT_NEAR(leveler.process(dbToLinear(-18.0)), 1.0, 1.0 - attackCoef);
}

} // namespace
