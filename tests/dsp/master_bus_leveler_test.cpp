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
    struct Case {
        const char* what;
        double busDB;
        double gain;
        double firstStep;
    };
    for (const Case& one :
         {Case{"too loud", -10.0, 0.39810717055349726, attackCoef},
          Case{"far too loud", 12.0, 0.06309573444801933, attackCoef},
          Case{"too quiet", -24.0, 1.9952623149688797, releaseCoef},
          Case{"silent", -400.0, 10.0, releaseCoef}}) {
        MasterBusLeveler leveler = levelerFor(-18.0);
        const double bus = dbToLinear(one.busDB);
        EXPECT_NEAR(leveler.process(bus), one.firstStep + (1.0 - one.firstStep) * one.gain, 1e-12)
            << one.what;
        for (int block = 0; block < 10000; ++block)
            leveler.process(bus);
        EXPECT_NEAR(leveler.smoothedGain(), one.gain, 1e-9) << one.what;
    }
}

TEST(MasterBusLeveler, StaysPutOnTarget) {
    MasterBusLeveler leveler = levelerFor(0.0);
    EXPECT_EQ(leveler.process(1.0), 1.0);
}

TEST(MasterBusLeveler, ReadsItsTargetBackInDB) {
    MasterBusLeveler leveler = levelerFor(-10.0);
    leveler.setTargetDB(-20.0);
    EXPECT_NEAR(leveler.targetDB(), -20.0, 1e-12);
    leveler.targetRMS = 0.0;
    EXPECT_EQ(leveler.targetDB(), -240.0);
}

} // namespace
