#include "block_times.h"
#include "reference_conditions.h"

#include <benchmark/benchmark.h>

#include <cstddef>

namespace {

using orvane::bench::BlockTimes;
using orvane::bench::ReferenceConditions;

/// Runs fast and plain blocks in turns, so that whatever else the machine does befalls both, and leaves the
/// figures of both, of a bare copy, and their ratio as counters.
template <class Fast, class Plain>
void compare(benchmark::State& state, Fast fast, Plain plain) {
    constexpr int blocksPerTurn = 8;
    ReferenceConditions show(static_cast<std::size_t>(state.range(0)));
    BlockTimes fastTimes;
    BlockTimes plainTimes;
    BlockTimes copyTimes;
    for (auto _ : state) {
        for (int i = 0; i < blocksPerTurn; ++i)
            fastTimes.measure([&] { fast(show); });
        for (int i = 0; i < blocksPerTurn; ++i)
            plainTimes.measure([&] { plain(show); });
        for (int i = 0; i < blocksPerTurn; ++i)
            copyTimes.measure([&] { show.copyBlock(); });
        benchmark::ClobberMemory();
    }
    state.counters["median"] = fastTimes.within(0.5);
    state.counters["p99.9"] = fastTimes.within(0.999);
    state.counters["worst"] = fastTimes.within(1.0);
    state.counters["share"] = fastTimes.within(0.5) / show.blockSeconds();
    state.counters["baseline"] = plainTimes.within(0.5);
    state.counters["copy"] = copyTimes.within(0.5);
    state.counters["faster"] = plainTimes.within(0.5) / fastTimes.within(0.5);
}

void automixProcessor(benchmark::State& state) {
    compare(
        state, [](ReferenceConditions& show) { show.processFast(); },
        [](ReferenceConditions& show) { show.processPlain(); }
    );
}

void renderPass(benchmark::State& state) {
    compare(
        state, [](ReferenceConditions& show) { show.runFast(); },
        [](ReferenceConditions& show) { show.runPlain(); }
    );
    ReferenceConditions show(static_cast<std::size_t>(state.range(0)));
    for (int i = 0; i < 100; ++i) {
        show.runFast();
        show.runPlain();
        if (!show.playedTheSame())
            state.SkipWithError("The fast mixer did not give the bits of the plain one.");
    }
}

void blockLengths(benchmark::internal::Benchmark* benchmark) {
    for (const int frames : {32, 64, 128, 256, 512, 1024, 2048})
        benchmark->Arg(frames);
}

BENCHMARK(automixProcessor)->Apply(blockLengths);
BENCHMARK(renderPass)->Apply(blockLengths);

} // namespace
