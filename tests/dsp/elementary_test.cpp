#include "dsp/elementary.h"

#include "dsp/decibels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

namespace {

using namespace orvane;

struct Function {
    const char* name;
    double (*ours)(double) noexcept;
    long double (*reference)(long double);
    double low;
    double high;
};

/// Distance in representable doubles.
double unitsApart(double a, double b) {
    const double unit = std::nextafter(std::abs(b), std::numeric_limits<double>::infinity()) - std::abs(b);
    return std::abs(a - b) / unit;
}

TEST(Elementary, AgreesWithExtendedPrecisionToTheLastBitAlmostAlways) {
    const Function functions[] = {
        {"exp", dsp::exp, [](long double x) { return std::exp(x); }, -700.0, 700.0},
        {"exp near 0", dsp::exp, [](long double x) { return std::exp(x); }, -1e-3, 1e-3},
        {"exp10", dsp::exp10, [](long double x) { return std::pow(10.0L, x); }, -15.0, 15.0},
        {"sin", dsp::sin, [](long double x) { return std::sin(x); }, -10.0, 10.0},
        {"cos", dsp::cos, [](long double x) { return std::cos(x); }, -10.0, 10.0},
        {"sin far out", dsp::sin, [](long double x) { return std::sin(x); }, 9e5, 9.9e5}};
    for (const Function& function : functions) {
        std::mt19937_64 random(7);
        std::uniform_real_distribution<double> draw(function.low, function.high);
        constexpr int draws = 20000;
        int different = 0;
        for (int i = 0; i < draws; ++i) {
            const double x = draw(random);
            const double expected = static_cast<double>(function.reference(x));
            const double actual = function.ours(x);
            different += actual != expected ? 1 : 0;
            ASSERT_LE(unitsApart(actual, expected), 1.0) << function.name << " of " << x;
        }
        // The reference itself is rounded twice, which makes a difference about once in two thousand draws.
        EXPECT_LT(different, draws / 200) << function.name;
    }
}

TEST(Elementary, MeetsExactValuesAndTheEndsOfTheRange) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::nan("");
    const std::tuple<double (*)(double) noexcept, double, double> resultByArgument[] = {
        {dsp::exp, 0.0, 1.0},          {dsp::exp, -infinity, 0.0}, {dsp::exp, infinity, infinity},
        {dsp::exp, 710.0, infinity},   {dsp::exp, -746.0, 0.0},    {dsp::exp, nan, nan},
        {dsp::exp10, 1e300, infinity}, {dsp::exp10, -1e300, 0.0},  {dsp::exp10, nan, nan},
        {dsp::sin, 0.0, 0.0},          {dsp::cos, 0.0, 1.0},       {dsp::sin, std::numbers::pi / 2, 1.0},
        {dsp::sin, nan, nan},          {dsp::cos, infinity, nan}};
    for (const auto& [function, argument, result] : resultByArgument)
        EXPECT_TRUE(function(argument) == result || (std::isnan(function(argument)) && std::isnan(result)))
            << function(argument) << " is not " << result << ", of " << argument;
    for (int power = 0; power <= 22; ++power)
        EXPECT_EQ(dsp::exp10(power), std::stod("1e" + std::to_string(power)));
}

TEST(Decibels, AreExactAndEndAtSilence) {
    EXPECT_EQ(dsp::dbToLinear(-16.0), 0.15848931924611134);
    EXPECT_EQ(dsp::linearToDB(10.0), 20.0);
    for (const double silent : {0.0, 1e-12, 1e-300, -1.0})
        EXPECT_EQ(dsp::linearToDB(silent), -240.0) << silent;
}

} // namespace
