#include "dsp/gender_trigger_filter.h"
#include "dsp/level_detector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using namespace orvane::dsp;

GenderTriggerFilter filterIn(GenderTriggerMode mode) {
    return {mode, 180.0, 3500.0, -16.0, 48000.0};
}

TEST(GenderTriggerFilter, HasTheCoefficientsOfItsCutoffs) {
    const GenderTriggerFilter filter = filterIn(GenderTriggerMode::neutral);
    EXPECT_EQ(filter.lowpassMale.a, 0.02328652962523281);
    EXPECT_EQ(filter.lowpassFemale.a, 0.3675467212188658);
    EXPECT_EQ(filter.shelfGain, 0.15848931924611134);
}

TEST(GenderTriggerFilter, PassesNeutralBlocksThroughUntouched) {
    GenderTriggerFilter filter = filterIn(GenderTriggerMode::neutral);
    const std::vector<double> block = {0.25, -1.0, 3e-17, 0.0};
    EXPECT_EQ(filter.process(block), block);
    EXPECT_EQ(filter.lowpassMale.y, 0.0);
    EXPECT_EQ(filter.lowpassFemale.y, 0.0);
}

TEST(GenderTriggerFilter, LowersOnlyItsOwnBand) {
    const std::vector<double> constant(48000, 1.0);
    std::vector<double> fastest(48000);
    for (std::size_t i = 0; i < fastest.size(); ++i)
        fastest[i] = i % 2 == 0 ? 1.0 : -1.0;
    const double femaleNyquist = 0.3675467212188658 / (2.0 - 0.3675467212188658);
    const double maleNyquist = 0.02328652962523281 / (2.0 - 0.02328652962523281);
    const double shelf = 0.15848931924611134;
    struct Case {
        GenderTriggerMode mode;
        const std::vector<double>& input;
        double settlesAt;
    };
    for (const Case& one :
         {Case{GenderTriggerMode::male, constant, shelf}, Case{GenderTriggerMode::female, constant, 1.0},
          Case{GenderTriggerMode::male, fastest, (1.0 - maleNyquist) + maleNyquist * shelf},
          Case{GenderTriggerMode::female, fastest, femaleNyquist + shelf * (1.0 - femaleNyquist)}}) {
        GenderTriggerFilter filter = filterIn(one.mode);
        EXPECT_NEAR(std::abs(filter.process(one.input).back()), one.settlesAt, 1e-9) << rawValue(one.mode);
    }
}

TEST(GenderTriggerFilter, ResumesEachModeFromItsOwnPast) {
    GenderTriggerFilter filter = filterIn(GenderTriggerMode::male);
    filter.process(std::vector<double>(100, 0.5));
    const double kept = filter.lowpassMale.y;
    filter.mode = GenderTriggerMode::female;
    filter.process(std::vector<double>(100, -0.5));
    EXPECT_EQ(filter.lowpassMale.y, kept);
    filter.mode = GenderTriggerMode::male;
    filter.process(0.0);
    EXPECT_EQ(filter.lowpassMale.y, kept + filter.lowpassMale.a * (0.0 - kept));
    filter.reset();
    EXPECT_EQ(filter.mode, GenderTriggerMode::male);
    EXPECT_EQ(filter.lowpassMale.y, 0.0);
    EXPECT_EQ(filter.lowpassFemale.y, 0.0);
}

TEST(LevelDetector, MeasuresTheRootMeanSquare) {
    EXPECT_EQ(LevelDetector::rms(std::vector<double>{3.0, 4.0}), 3.5355339059327378);
    EXPECT_EQ(LevelDetector::rms(std::vector<float>{3.0F, 4.0F}), 3.5355339059327378);
    EXPECT_EQ(LevelDetector::rms(std::span<const double>{}), 0.0);
    // The squares of floats are summed in double precision: in single precision the small one would vanish.
    EXPECT_EQ(
        LevelDetector::rms(std::vector<float>{1.0F, 1e-4F}), std::sqrt((1.0 + double(1e-4F) * 1e-4F) / 2.0)
    );
}

} // namespace
