#pragma once

// The kernels over vectors of ORVANE_LANES doubles. The source file of each instruction set defines
// ORVANE_LANES, includes this file and is compiled for that set. Everything here has internal linkage, and no
// function of the standard library is called: the linker could keep the copy of a shared function that was
// compiled for this set, and it would then run on processors that lack the instructions.

#include "dsp/kernels/lane_kernels.h"
#include "dsp/sound_bounds.h"

// NOLINTBEGIN(misc-definitions-in-headers): each source file needs definitions of its own, see above.

namespace orvane::dsp {
namespace {

constexpr std::size_t lanes = ORVANE_LANES;
/// Vectors processed side by side, so that the processor can overlap their chains of additions.
constexpr std::size_t mostVectors = 4;
constexpr std::size_t mostChannels = mostVectors * lanes;

using Vector [[gnu::vector_size(lanes * sizeof(double))]] = double;
using UnalignedVector [[gnu::vector_size(lanes * sizeof(double)), gnu::aligned(8), gnu::may_alias]] = double;

inline Vector load(const double* from) {
    return *reinterpret_cast<const UnalignedVector*>(from);
}
inline void store(double* to, const Vector& value) {
    *reinterpret_cast<UnalignedVector*>(to) = value;
}
inline Vector splat(double value) {
    return Vector{} + value;
}

/// The index of lane l after exchanging blocks of `distance` lanes between a and b: picks the even blocks of
/// both, or the odd ones.
template <std::size_t distance, bool odd, std::size_t l>
constexpr int exchanged =
    static_cast<int>((l & distance) == 0 ? l + (odd ? distance : 0) : l - (odd ? 0 : distance) + lanes);

template <std::size_t... l>
struct Lanes {
    template <std::size_t distance, bool odd>
    static Vector exchange(const Vector& a, const Vector& b) {
        return __builtin_shufflevector(a, b, exchanged<distance, odd, l>...);
    }
};
#if ORVANE_LANES == 2
using AllLanes = Lanes<0, 1>;
#elif ORVANE_LANES == 4
using AllLanes = Lanes<0, 1, 2, 3>;
#else
using AllLanes = Lanes<0, 1, 2, 3, 4, 5, 6, 7>;
#endif

/// Turns rows of successive samples of one channel into rows of one sample of neighbouring channels, and
/// back.
template <std::size_t distance = lanes / 2>
inline void transpose(Vector (&rows)[lanes]) {
    if constexpr (distance > 0) {
        for (std::size_t i = 0; i < lanes; ++i) {
            if ((i & distance) != 0) continue;
            const Vector a = rows[i];
            const Vector b = rows[i + distance];
            rows[i] = AllLanes::exchange<distance, false>(a, b);
            rows[i + distance] = AllLanes::exchange<distance, true>(a, b);
        }
        transpose<distance / 2>(rows);
    }
}

/// Sums the squares of unweighted samples.
struct Unweighted {
    Vector operator()(const Vector& x, Vector&) const { return x; }
    double operator()(double x, double&) const { return x; }
};

struct LowShelf {
    double a;
    double shelfGain;
    template <class Value>
    Value operator()(const Value& x, Value& low) const {
        low += a * (x - low);
        return (x - low) + low * shelfGain;
    }
};

struct HighShelf {
    double a;
    double shelfGain;
    template <class Value>
    Value operator()(const Value& x, Value& low) const {
        low += a * (x - low);
        return low + shelfGain * (x - low);
    }
};

/// One pass over up to `vectors * lanes` channels; the first channel fills in for missing ones.
template <std::size_t vectors, class Weighting>
void sumWeighted(
    const double* const* channels, std::size_t channelCount, std::size_t frameCount,
    const Weighting& weighting, double* states, double* sums
) {
    constexpr std::size_t width = vectors * lanes;
    const double* from[width];
    double state[width] = {};
    for (std::size_t c = 0; c < width; ++c) {
        from[c] = channels[c < channelCount ? c : 0];
        if (states != nullptr && c < channelCount) state[c] = states[c];
    }
    Vector low[vectors];
    Vector sum[vectors] = {};
    for (std::size_t v = 0; v < vectors; ++v)
        low[v] = load(state + v * lanes);

    std::size_t frame = 0;
    for (; frame + lanes <= frameCount; frame += lanes) {
        Vector rows[vectors][lanes];
        for (std::size_t v = 0; v < vectors; ++v) {
            for (std::size_t i = 0; i < lanes; ++i)
                rows[v][i] = load(from[v * lanes + i] + frame);
            transpose(rows[v]);
        }
        for (std::size_t i = 0; i < lanes; ++i)
            for (std::size_t v = 0; v < vectors; ++v) {
                const Vector weighted = weighting(rows[v][i], low[v]);
                sum[v] += weighted * weighted;
            }
    }

    double total[width];
    for (std::size_t v = 0; v < vectors; ++v) {
        store(state + v * lanes, low[v]);
        store(total + v * lanes, sum[v]);
    }
    for (std::size_t c = 0; c < channelCount; ++c) {
        for (std::size_t rest = frame; rest < frameCount; ++rest) {
            const double weighted = weighting(from[c][rest], state[c]);
            total[c] += weighted * weighted;
        }
        sums[c] = total[c];
        if (states != nullptr) states[c] = state[c];
    }
}

template <class Weighting>
void sumAllWeighted(
    const double* const* channels, std::size_t channelCount, std::size_t frameCount,
    const Weighting& weighting, double* states, double* sums
) {
    for (std::size_t first = 0; first < channelCount; first += mostChannels) {
        const std::size_t count = channelCount - first < mostChannels ? channelCount - first : mostChannels;
        double* const groupStates = states == nullptr ? nullptr : states + first;
        if (count > 2 * lanes)
            sumWeighted<4>(channels + first, count, frameCount, weighting, groupStates, sums + first);
        else if (count > lanes)
            sumWeighted<2>(channels + first, count, frameCount, weighting, groupStates, sums + first);
        else
            sumWeighted<1>(channels + first, count, frameCount, weighting, groupStates, sums + first);
    }
}

void sumOfSquares(
    const double* const* channels, std::size_t channelCount, std::size_t frameCount, double* sums
) noexcept {
    sumAllWeighted(channels, channelCount, frameCount, Unweighted{}, nullptr, sums);
}

void lowShelfSumOfSquares(
    const double* const* channels, std::size_t channelCount, std::size_t frameCount, double a,
    double shelfGain, double* states, double* sums
) noexcept {
    sumAllWeighted(channels, channelCount, frameCount, LowShelf{a, shelfGain}, states, sums);
}

void highShelfSumOfSquares(
    const double* const* channels, std::size_t channelCount, std::size_t frameCount, double a,
    double shelfGain, double* states, double* sums
) noexcept {
    sumAllWeighted(channels, channelCount, frameCount, HighShelf{a, shelfGain}, states, sums);
}

inline double rampedGain(double from, double step, std::size_t frame) {
    return from + step * static_cast<double>(frame + 1);
}

/// The numbers of the frames from `frame` on, counted from 1.
inline Vector framesFrom(std::size_t frame) {
    Vector numbers;
    for (std::size_t i = 0; i < lanes; ++i)
        numbers[i] = static_cast<double>(i + 1);
    return numbers + splat(static_cast<double>(frame));
}

/// Gains that stay for the block.
struct ConstantGains {
    const double* gains;

    ConstantGains from(std::size_t channel) const { return {gains + channel}; }
    double of(std::size_t channel, std::size_t) const { return gains[channel]; }
    Vector vector(std::size_t channel, std::size_t) const { return splat(gains[channel]); }
};

/// Gains that run in a line over the block.
struct RampedGains {
    const double* start;
    const double* steps;

    RampedGains from(std::size_t channel) const { return {start + channel, steps + channel}; }
    double of(std::size_t channel, std::size_t frame) const {
        return rampedGain(start[channel], steps[channel], frame);
    }
    Vector vector(std::size_t channel, std::size_t frame) const {
        return splat(start[channel]) + splat(steps[channel]) * framesFrom(frame);
    }
};

/// One pass over up to `vectors * lanes` channels; missing ones are skipped.
template <std::size_t vectors, class Gains>
void mixGroup(
    const double* const* inputs, const Gains& gains, double* const* outputs, std::size_t channelCount,
    std::size_t frameCount, double* bus, double* sums
) {
    Vector sum[vectors] = {};
    std::size_t frame = 0;
    for (; frame + lanes <= frameCount; frame += lanes) {
        Vector mixed = bus == nullptr ? Vector{} : load(bus + frame);
        for (std::size_t v = 0; v < vectors; ++v) {
            Vector rows[lanes] = {};
            for (std::size_t i = 0; i < lanes; ++i) {
                const std::size_t c = v * lanes + i;
                if (c >= channelCount) break;
                rows[i] = gains.vector(c, frame) * load(inputs[c] + frame);
                store(outputs[c] + frame, rows[i]);
                mixed += rows[i];
            }
            transpose(rows);
            for (const Vector& row : rows)
                sum[v] += row * row;
        }
        if (bus != nullptr) store(bus + frame, mixed);
    }

    double total[vectors * lanes];
    for (std::size_t v = 0; v < vectors; ++v)
        store(total + v * lanes, sum[v]);
    for (std::size_t c = 0; c < channelCount; ++c) {
        for (std::size_t rest = frame; rest < frameCount; ++rest) {
            const double output = gains.of(c, rest) * inputs[c][rest];
            outputs[c][rest] = output;
            if (bus != nullptr) bus[rest] += output;
            total[c] += output * output;
        }
        sums[c] = total[c];
    }
}

template <class Gains>
void mixAll(
    const double* const* inputs, const Gains& gains, double* const* outputs, std::size_t channelCount,
    std::size_t frameCount, double* bus, double* sums
) {
    for (std::size_t first = 0; first < channelCount; first += mostChannels) {
        const std::size_t count = channelCount - first < mostChannels ? channelCount - first : mostChannels;
        const auto group = count > 2 * lanes ? mixGroup<4, Gains>
                           : count > lanes   ? mixGroup<2, Gains>
                                             : mixGroup<1, Gains>;
        group(inputs + first, gains.from(first), outputs + first, count, frameCount, bus, sums + first);
    }
}

void mix(
    const double* const* inputs, const double* gains, double* const* outputs, std::size_t channelCount,
    std::size_t frameCount, double* bus, double* sums
) noexcept {
    mixAll(inputs, ConstantGains{gains}, outputs, channelCount, frameCount, bus, sums);
}

void mixRamped(
    const double* const* inputs, const double* from, const double* steps, double* const* outputs,
    std::size_t channelCount, std::size_t frameCount, double* bus, double* sums
) noexcept {
    mixAll(inputs, RampedGains{from, steps}, outputs, channelCount, frameCount, bus, sums);
}

void rootMeans(double* sums, std::size_t channelCount, std::size_t frameCount) noexcept {
    const double count = static_cast<double>(frameCount);
    for (std::size_t c = 0; c < channelCount; ++c)
        sums[c] = frameCount == 0 ? 0.0 : __builtin_sqrt(sums[c] / count);
}

void scale(double* samples, double gain, std::size_t frameCount) noexcept {
    for (std::size_t i = 0; i < frameCount; ++i)
        samples[i] = gain * samples[i];
}

void addScaled(
    double* __restrict sum, const double* __restrict samples, double gain, std::size_t frameCount
) noexcept {
    for (std::size_t i = 0; i < frameCount; ++i)
        sum[i] += gain * samples[i];
}

void scaleRamped(double* samples, double from, double step, std::size_t frameCount) noexcept {
    for (std::size_t i = 0; i < frameCount; ++i)
        samples[i] = rampedGain(from, step, i) * samples[i];
}

void addRamped(
    double* __restrict sum, const double* __restrict samples, double from, double step, std::size_t frameCount
) noexcept {
    for (std::size_t i = 0; i < frameCount; ++i)
        sum[i] += rampedGain(from, step, i) * samples[i];
}

/// Filters `vectors * lanes` samples.
template <std::size_t vectors>
void filterGroup(double* filtered, const double* samples, const double* taps, std::size_t tapCount) {
    Vector sums[vectors] = {};
    for (std::size_t tap = 0; tap < tapCount; ++tap)
        for (std::size_t v = 0; v < vectors; ++v)
            sums[v] += splat(taps[tap]) * load(samples + v * lanes + tap);
    for (std::size_t v = 0; v < vectors; ++v)
        store(filtered + v * lanes, sums[v]);
}

void filter(
    double* filtered, const double* samples, const double* taps, std::size_t tapCount, std::size_t frameCount
) noexcept {
    std::size_t frame = 0;
    for (; frame + 4 * lanes <= frameCount; frame += 4 * lanes)
        filterGroup<4>(filtered + frame, samples + frame, taps, tapCount);
    for (; frame + lanes <= frameCount; frame += lanes)
        filterGroup<1>(filtered + frame, samples + frame, taps, tapCount);
    for (; frame < frameCount; ++frame) {
        double sum = 0.0;
        for (std::size_t tap = 0; tap < tapCount; ++tap)
            sum += taps[tap] * samples[frame + tap];
        filtered[frame] = sum;
    }
}

bool widen(
    double* __restrict wide, const float* __restrict narrow, std::size_t frameCount, float threshold
) noexcept {
    unsigned long long above = 0;
    for (std::size_t i = 0; i < frameCount; ++i) {
        const double sample = narrow[i];
        const double magnitude = __builtin_fabs(sample);
        wide[i] = magnitude <= largestSample ? sample : 0.0;
        above |= magnitude > threshold ? 1ULL : 0ULL;
    }
    return above != 0;
}

bool narrow(
    float* __restrict narrow, const double* __restrict wide, std::size_t frameCount, float threshold
) noexcept {
    unsigned above = 0;
    for (std::size_t i = 0; i < frameCount; ++i) {
        const float rounded = static_cast<float>(wide[i]);
        const float magnitude = __builtin_fabsf(rounded);
        narrow[i] = magnitude <= __FLT_MAX__ ? rounded : 0.0F;
        above |= magnitude > threshold ? 1U : 0U;
    }
    return above != 0;
}

constexpr LaneKernels kernelsNamed(const char* name) {
    return {
        .name = name,
        .sumOfSquares = sumOfSquares,
        .lowShelfSumOfSquares = lowShelfSumOfSquares,
        .highShelfSumOfSquares = highShelfSumOfSquares,
        .mix = mix,
        .mixRamped = mixRamped,
        .rootMeans = rootMeans,
        .scale = scale,
        .addScaled = addScaled,
        .scaleRamped = scaleRamped,
        .addRamped = addRamped,
        .filter = filter,
        .widen = widen,
        .narrow = narrow};
}

} // namespace
} // namespace orvane::dsp

// NOLINTEND(misc-definitions-in-headers)
