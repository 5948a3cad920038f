#include "soak/live_rehearsal.h"
#include "soak/memory_trend.h"
#include "soak/rehearsal.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <ratio>
#include <string>

namespace {

using namespace orvane;
using namespace std::chrono_literals;
using Hours = std::chrono::duration<double, std::ratio<3600>>;
using Seconds = std::chrono::duration<double>;
using Clock = std::chrono::steady_clock;

struct Options {
    std::uint32_t seed = 1;
    double hours = 8.0;
    double liveSeconds = 0.0;
};

constexpr auto longestShow = std::chrono::nanoseconds(1h);
/// The interval at which everything is emptied; memory use must then be no higher than the last time.
constexpr auto clearingInterval = std::chrono::nanoseconds(3min);
/// Between two operations.
constexpr auto longestPause = std::chrono::nanoseconds(500ms);
constexpr std::size_t fullCheckInterval = 8;
/// How far the memory use after the last show may exceed that after the first.
constexpr std::size_t leftOverNoise = std::size_t{4} << 20U;

/// The strip counts used for consecutive seeds.
constexpr std::array<std::size_t, 8> stripCounts = {48, 8, 24, 2, 32, 12, 16, 4};

std::size_t stripsOf(std::uint32_t seed) {
    return stripCounts[(seed + stripCounts.size() - 1) % stripCounts.size()];
}

double mebibytes(std::size_t bytes) {
    return static_cast<double>(bytes) / static_cast<double>(1U << 20U);
}

void print(const std::string& line) {
    fmt::print("{}\n", line);
    std::fflush(stdout);
}

/// Runs one show; returns whether all conditions held.
bool rehearse(std::uint32_t seed, std::chrono::nanoseconds length) {
    const Clock::time_point start = Clock::now();
    soak::Choices choices{std::uint64_t{seed}};
    soak::Rehearsal show({.strips = stripsOf(seed), .seed = seed}, choices, fullCheckInterval);
    soak::MemoryTrend memory;
    while (show.time() < length && !show.fault()) {
        if (show.time() >= clearingInterval * static_cast<std::int64_t>(memory.count())) {
            show.clearDesk();
            memory.read();
        }
        show.step(longestPause);
    }
    const double hours = Hours(show.time()).count();
    print(fmt::format(
        "seed {}, {} strips: {:.2f} h, {} operations, {} blocks in {:.1f} s, "
        "{:.1f} MiB at the start, {:.1f} MiB at the end",
        seed, stripsOf(seed), hours, show.operations(), show.blocks(), Seconds(Clock::now() - start).count(),
        mebibytes(memory.first()), mebibytes(memory.last())
    ));
    if (const auto& fault = show.fault()) {
        print(fmt::format(
            "FAILED after {:.6f} s, at operation {} (\"{}\") of seed {}: {}\nAgain: scripts/soak.sh --seed "
            "{} --hours {:.4f}",
            Seconds(show.time()).count(), show.operations(), show.lastOperation(), seed, *fault, seed,
            hours + 0.001
        ));
        return false;
    }
    if (const auto growth = memory.growth()) {
        print(fmt::format(
            "FAILED: memory grows, by {:.1f} MiB within the show of seed {}.", mebibytes(*growth), seed
        ));
        return false;
    }
    return true;
}

bool rehearseAll(const Options& options) {
    const auto all = std::chrono::duration_cast<std::chrono::nanoseconds>(Hours(options.hours));
    std::size_t leftOver = 0;
    std::uint32_t seed = options.seed;
    for (std::chrono::nanoseconds done{0}; done < all; done += longestShow, ++seed) {
        if (!rehearse(seed, std::min(longestShow, all - done))) return false;
        const std::size_t now = soak::residentMemory();
        if (leftOver == 0) leftOver = now;
        if (now <= leftOver + leftOverNoise) continue;
        print(fmt::format(
            "FAILED: {:.1f} MiB in use after the show of seed {}, {:.1f} MiB after the first.",
            mebibytes(now), seed, mebibytes(leftOver)
        ));
        return false;
    }
    print(fmt::format("{:.2f} h of shows: all conditions held.", options.hours));
    return true;
}

bool rehearseLive(const Options& options) {
    constexpr auto reportInterval = 60s;
    const Clock::time_point start = Clock::now();
    soak::Choices choices{std::uint64_t{options.seed}};
    soak::LiveRehearsal show(
        {.strips = stripsOf(options.seed),
         .pacing = platform::virtual_devices::VirtualPacing::live,
         .seed = options.seed,
         .bufferSize = 64},
        choices
    );
    soak::MemoryTrend memory;
    const auto report = [&] {
        show.clearDesk();
        memory.read();
        print(fmt::format(
            "{:.0f} s, {} strips: {} operations, {} blocks, {} late cycles, "
            "load {:.3f}, priority {}, {:.1f} MiB",
            Seconds(Clock::now() - start).count(), stripsOf(options.seed), show.operations(), show.blocks(),
            show.lateCycles(), show.load(), show.realtimePriority(), mebibytes(memory.last())
        ));
    };
    for (auto next = start; Clock::now() - start < Seconds(options.liveSeconds) && !show.fault();) {
        if (Clock::now() >= next) {
            report();
            next += reportInterval;
        }
        show.step(longestPause);
    }
    report();
    if (const auto& fault = show.fault()) {
        print(fmt::format(
            "FAILED at operation {} (\"{}\") of seed {}: {}", show.operations(), show.lastOperation(),
            options.seed, *fault
        ));
        return false;
    }
    if (const auto growth = memory.growth()) {
        print(fmt::format("FAILED: memory grows, by {:.1f} MiB.", mebibytes(*growth)));
        return false;
    }
    print("All conditions held.");
    return true;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App program("Runs random shows on the mixer and checks its invariants", "orvane-soak");
    program.footer(
        "A show is an hour long. Its seed selects its number of strips; the first has --seed, and each "
        "further one has the next number. A failure reports how to repeat its show."
    );
    program
        .add_option("--seed", options.seed, "The seed of the first show; the same seed gives the same show")
        ->capture_default_str();
    program
        .add_option(
            "--hours", options.hours, "The total duration of the shows, which run as fast as possible"
        )
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    program
        .add_option(
            "--live", options.liveSeconds,
            "Instead, run for this many seconds in real time on a device of 64 frames, with operations "
            "that do not interrupt audio"
        )
        ->check(CLI::PositiveNumber);
    CLI11_PARSE(program, argc, argv);
    return (options.liveSeconds > 0.0 ? rehearseLive(options) : rehearseAll(options)) ? 0 : 1;
}
