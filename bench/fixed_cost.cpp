#include "block_times.h"
#include "line_fit.h"
#include "parts.h"
#include "reference_conditions.h"

#include "dsp/gain_sharing_mixer.h"
#include "platform/base/flush_denormals.h"

#include <fmt/format.h>

#include <cmath>
#include <span>
#include <vector>

namespace orvane::bench {

namespace {

constexpr double micro = 1e6;
constexpr int rounds = 2000;
/// Repetitions of steps that take a few nanoseconds, between two readings of the clock.
constexpr int repeats = 50;

/// The undisturbed time of one call of `step`, in microseconds.
template <class Step>
double timeOf(Step step) {
    BlockTimes times;
    for (int round = 0; round < rounds; ++round)
        times.measure([&step] {
            for (int i = 0; i < repeats; ++i)
                step();
        });
    return times.within(0.1) / repeats * micro;
}

/// What remains of a block without frames.
struct EmptyBlock {
    const platform::FlushDenormals flushDenormals;
    ReferenceConditions show{{.frames = 0}};
    dsp::GainSharingMixer gainSharing{49, 750.0, 15.0, 400.0, 1e-6, -26.0};
    std::vector<double> levels = std::vector<double>(49, 0.1);
    std::vector<double> reductions = std::vector<double>(48);

    double whole() {
        return timeOf([this] { show.runFast(); });
    }
    double rings() {
        return timeOf([this] {
            for (const auto& ring : show.fastState().outputRingBuffers) {
                ring->write({});
                ring->read({});
            }
        });
    }
    double processor() {
        return timeOf([this] { show.processFast(); });
    }
    double gains() {
        return timeOf([this] { gainSharing.process(levels); });
    }
    double logarithms() {
        return timeOf([this] {
            const std::span<const double> gains = show.fastAutomix().currentGains();
            for (std::size_t strip = 0; strip < reductions.size(); ++strip)
                reductions[strip] = -20.0 * std::log10(gains[strip]);
        });
    }
    double tables() {
        return timeOf([this] {
            const auto routing = show.fastState().routing.hold();
            const auto inserts = show.fastState().inserts.hold();
        });
    }
    double meters() {
        return timeOf([this] {
            show.fastState().publishMeters(show.fastAutomix());
            (void)show.fastState().noiseGain();
        });
    }
    double clock() {
        return timeOf([this] { show.fastState().publishLoad(show.fastState().clock.absoluteTime(), 64); });
    }
};

} // namespace

void printFixedCost() {
    fmt::print("\nWhat a block of 48 strips costs however short it is, in microseconds (the tenth that took "
               "least).\n");
    std::vector<Point> points;
    for (const std::size_t frames : {8, 16, 24, 32, 48, 64, 96, 128}) {
        ReferenceConditions show({.frames = frames});
        points.push_back({static_cast<double>(frames), timeOf([&show] { show.runFast(); })});
    }
    const Line line = Line::through(points);
    fmt::print(
        "Line through 8 to 128 frames: {:.2f} + {:.4f} per frame, R2 = {:.5f}\n", line.intercept, line.slope,
        line.rSquared
    );

    EmptyBlock empty;
    const double whole = empty.whole();
    const double gains = empty.gains();
    const double processor = empty.processor() - gains;
    double named = 0.0;
    const auto row = [&named](const char* what, double time) {
        named += time;
        fmt::print("  {:<58}{:>7.3f}\n", what, time);
    };
    fmt::print("{:<60}{:>7.3f}\n", "A block of no frames", whole);
    row("rings: two indices and two counts, written and read", empty.rings());
    row("gain sharing: levels, shares and gains of 49 channels", gains);
    row("processor: settings taken over, levels, lane gains", processor);
    row("gain reduction for the meters: 48 logarithms", empty.logarithms());
    row("routing and insert tables taken: two locks", empty.tables());
    row("meters and reference gain: two locks, 97 levels copied", empty.meters());
    row("load: the clock twice, a lock", empty.clock());
    fmt::print("  {:<58}{:>7.3f}\n", "loops over strips and outputs", whole - named);
}

} // namespace orvane::bench
