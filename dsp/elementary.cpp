#include "dsp/elementary.h"

#include <cmath>
#include <limits>

namespace orvane::dsp {

namespace {

/// An unevaluated sum of two doubles, |lo| at most half a unit in the last place of hi: about 106 bits.
/// The primitives are those of T. J. Dekker, "A floating-point technique for extending the available
/// precision", Numerische Mathematik 18 (1971).
struct DoubleDouble {
    double hi = 0.0;
    double lo = 0.0;
};

DoubleDouble fastTwoSum(double a, double b) {
    const double s = a + b;
    return {s, b - (s - a)};
}

DoubleDouble twoSum(double a, double b) {
    const double s = a + b;
    const double t = s - a;
    return {s, (a - (s - t)) + (b - t)};
}

DoubleDouble halves(double a) {
    constexpr double splitter = 134217729.0; // 2^27 + 1
    const double t = splitter * a;
    const double hi = t - (t - a);
    return {hi, a - hi};
}

DoubleDouble twoProduct(double a, double b) {
    const double p = a * b;
    const auto [aHi, aLo] = halves(a);
    const auto [bHi, bLo] = halves(b);
    return {p, ((aHi * bHi - p) + aHi * bLo + aLo * bHi) + aLo * bLo};
}

DoubleDouble operator+(DoubleDouble a, DoubleDouble b) {
    const DoubleDouble s = twoSum(a.hi, b.hi);
    const DoubleDouble t = twoSum(a.lo, b.lo);
    const DoubleDouble u = fastTwoSum(s.hi, s.lo + t.hi);
    return fastTwoSum(u.hi, u.lo + t.lo);
}

DoubleDouble operator*(DoubleDouble a, DoubleDouble b) {
    const DoubleDouble p = twoProduct(a.hi, b.hi);
    return fastTwoSum(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
}

DoubleDouble operator/(DoubleDouble a, double divisor) {
    const double quotient = a.hi / divisor;
    const DoubleDouble back = twoProduct(quotient, divisor);
    const double remainder = ((a.hi - back.hi) - back.lo) + a.lo;
    return fastTwoSum(quotient, remainder / divisor);
}

constexpr DoubleDouble ln10 = {0x1.26bb1bbb55516p+1, -0x1.f48ad494ea3e9p-53};

/// A constant in parts: the first two have 32 bits each, so that small integer multiples of them are exact.
struct SplitConstant {
    double first;
    double second;
    DoubleDouble rest;
};

constexpr SplitConstant ln2 = {
    0x1.62e42fee00000p-1, 0x1.a39ef35600000p-33, {0x1.93c7673007e5fp-65, -0x1.50bf0cbcd98d6p-120}};
constexpr SplitConstant halfPi = {
    0x1.921fb54400000p+0, 0x1.0b4611a600000p-34, {0x1.3198a2e037073p-69, 0x1.129024e088a68p-123}};

/// x - multiple * constant, for |multiple| below 2^20.
DoubleDouble reduced(DoubleDouble x, double multiple, const SplitConstant& constant) {
    x = x + DoubleDouble{-multiple * constant.first, 0.0};
    x = x + DoubleDouble{-multiple * constant.second, 0.0};
    return x + DoubleDouble{-multiple, 0.0} * constant.rest;
}

double nearestWhole(double x) {
    return std::floor(x + 0.5);
}

/// e^x: reduces x by multiples of ln 2 and by 2^8, sums the series of e^x - 1, and squares the result back
/// up.
double exponential(DoubleDouble x) {
    constexpr double overflowsAbove = 709.79;
    constexpr double vanishesBelow = -745.2;
    if (std::isnan(x.hi)) return x.hi;
    if (x.hi > overflowsAbove) return std::numeric_limits<double>::infinity();
    if (x.hi < vanishesBelow) return 0.0;

    constexpr int squarings = 8;
    constexpr int terms = 10;
    const double twos = nearestWhole(x.hi / 0.6931471805599453);
    const DoubleDouble r = reduced(x, twos, ln2);
    const DoubleDouble t = {std::ldexp(r.hi, -squarings), std::ldexp(r.lo, -squarings)};

    DoubleDouble series = {1.0, 0.0};
    for (int n = terms; n >= 2; --n)
        series = DoubleDouble{1.0, 0.0} + (t * series) / n;
    DoubleDouble beyondOne = t * series;
    for (int i = 0; i < squarings; ++i)
        beyondOne = DoubleDouble{2.0 * beyondOne.hi, 2.0 * beyondOne.lo} + beyondOne * beyondOne;
    const DoubleDouble result = DoubleDouble{1.0, 0.0} + beyondOne;
    return std::ldexp(result.hi, static_cast<int>(twos));
}

/// The series of sin r (first = 1) or cos r (first = 0), summed to the term of degree first + 28.
DoubleDouble trigonometricSeries(DoubleDouble r, int first) {
    constexpr int degrees = 28;
    const DoubleDouble square = r * r;
    DoubleDouble series = {1.0, 0.0};
    for (int n = first + degrees; n >= first + 2; n -= 2) {
        const DoubleDouble term = (square * series) / (static_cast<double>(n) * (n - 1));
        series = DoubleDouble{1.0, 0.0} + DoubleDouble{-term.hi, -term.lo};
    }
    return first == 1 ? r * series : series;
}

/// Beyond this angle, far outside any pan position, the reduction would lose bits; the C library is used
/// instead.
constexpr double largestAngle = 1e6;

/// sin(x + quarterTurns * pi / 2).
double sineAfter(double x, int quarterTurns) {
    const double quarters = nearestWhole(x / 1.5707963267948966);
    const DoubleDouble r = reduced({x, 0.0}, quarters, halfPi);
    const int quadrant = (static_cast<int>(quarters) + quarterTurns) & 3;
    const DoubleDouble series = trigonometricSeries(r, quadrant % 2 == 0 ? 1 : 0);
    return quadrant >= 2 ? -series.hi : series.hi;
}

} // namespace

double exp(double x) noexcept {
    return exponential({x, 0.0});
}

double exp10(double x) noexcept {
    // Outside the range of a double. The bound also keeps the product below exact.
    if (std::abs(x) > 400.0) return x > 0.0 ? std::numeric_limits<double>::infinity() : 0.0;
    return exponential(DoubleDouble{x, 0.0} * ln10);
}

double sin(double x) noexcept {
    return std::abs(x) < largestAngle ? sineAfter(x, 0) : std::sin(x);
}

double cos(double x) noexcept {
    return std::abs(x) < largestAngle ? sineAfter(x, 1) : std::cos(x);
}

} // namespace orvane::dsp
