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

TEST(GenderTriggerFilter, LowersOnlyItsOwnBand) {
    const std::vector<double> constant(48000, 1.0);
    std::vector<double> fastest(48000);
    for (std::size_t i = 0; i < fastest.size(); ++i)
        fastest[i] = i % 2 == 0 ? 1.0 : -1.0;
    constexpr double female = 0.3675467212188658 / (2.0 - 0.3675467212188658);
    constexpr double male = 0.02328652962523281 / (2.0 - 0.02328652962523281);
    constexpr double shelf = 0.15848931924611134;
    using Mode = GenderTriggerMode;
    const std::tuple<Mode, const std::vector<double>&, double> levelByInput[] = {
        {Mode::male, constant, shelf},
        {Mode::female, constant, 1.0},
        {Mode::male, fastest, (1.0 - male) + male * shelf},
        {Mode::female, fastest, female + shelf * (1.0 - female)}};
    for (const auto& [mode, input, level] : levelByInput) {
        GenderTriggerFilter filter = filterIn(mode);
        EXPECT_NEAR(std::abs(filter.process(input).back()), level, 1e-9) << rawValue(mode);
    }
}

TEST(GenderTriggerFilter, ClearsItsStateButNotItsModeAtAReset) {
    GenderTriggerFilter filter = filterIn(GenderTriggerMode::male);
    filter.process(std::vector<double>(100, 0.5));
    filter.reset();
    EXPECT_EQ(filter.mode, GenderTriggerMode::male);
    EXPECT_EQ(filter.lowpassMale.y, 0.0);
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
