#include "comparison.h"
#include "parts.h"

#include <fmt/format.h>

#include <cstdio>
#include <string_view>

namespace orvane::bench {

namespace {

constexpr double micro = 1e6;

void printHead(std::string_view what) {
    fmt::print(
        "\n{:<28}{:>9}{:>9}{:>9}{:>10}{:>10}{:>9}{:>8}\n", what, "median", "99.9 %", "worst", "of block",
        "baseline", "faster", "copy"
    );
}

void printRow(std::string_view name, const ReferenceConditions::Shape& shape, const Comparison& times) {
    const double blockSeconds = static_cast<double>(shape.frames) / ReferenceConditions::sampleRate;
    fmt::print(
        "{:<28}{:>9.2f}{:>9.2f}{:>9.2f}{:>8.2f} %{:>10.2f}{:>8.2f}x{:>8.2f}\n",
        fmt::format("{:<10} {:>2} strips {:>6}", name, shape.strips, shape.frames), times.median * micro,
        times.within999 * micro, times.worst * micro, times.median / blockSeconds * 100.0,
        times.plain * micro, times.timesFaster(), times.copy * micro
    );
    std::fflush(stdout);
}

} // namespace

void printBlocks() {
    fmt::print(
        "Times per block in microseconds at 48 kHz, {} kernels. \"of block\": the median's share of the time "
        "that the block lasts. \"baseline\": the same algorithm as plain loops. "
        "\"copy\": moving its samples.\n",
        dsp::fastestLaneKernels().name
    );
    printHead("processor, strips, frames");
    for (const std::size_t frames : {32, 64, 128, 256, 512, 1024, 2048})
        printRow("processor", {.frames = frames}, compareProcessor({.frames = frames}));
    printHead("render pass, strips, frames");
    for (const std::size_t frames : {32, 64, 128, 256, 512, 1024, 2048})
        printRow("render", {.frames = frames}, compareRenderPass({.frames = frames}));
    for (const std::size_t strips : {2, 8})
        for (const std::size_t frames : {64, 256, 1024}) {
            const ReferenceConditions::Shape shape{.frames = frames, .strips = strips};
            printRow("render", shape, compareRenderPass(shape));
        }
}

void printInstructionSets() {
    fmt::print("\nThe same render pass on each instruction set that this processor has.\n");
    printHead("set, strips, frames");
    for (const dsp::LaneKernels* kernels : dsp::supportedLaneKernels())
        for (const std::size_t frames : {64, 256, 1024}) {
            const ReferenceConditions::Shape shape{.frames = frames, .kernels = kernels};
            printRow(kernels->name, shape, compareRenderPass(shape));
        }
}

} // namespace orvane::bench
