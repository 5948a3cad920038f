#include "comparison.h"
#include "line_fit.h"
#include "parts.h"

#include <fmt/format.h>

#include <cstdio>
#include <vector>

namespace orvane::bench {

namespace {

constexpr double micro = 1e6;
constexpr std::size_t stripCounts[] = {2, 4, 8, 12, 16, 24, 32, 48};
constexpr std::size_t blockLengths[] = {32, 64, 128, 256, 512, 1024, 2048};

void printLine(const char* unit, std::span<const Point> points) {
    const Line line = Line::through(points);
    fmt::print(
        "  line: {:.3f} us + {:.4f} us per {}, R2 = {:.5f}\n", line.intercept, line.slope, unit, line.rSquared
    );
}

Point measure(double x, const ReferenceConditions::Shape& shape) {
    const Comparison times = compareRenderPass(shape);
    fmt::print(
        "{:>8}{:>8}{:>12.2f}{:>16.3f}\n", shape.strips, shape.frames, times.undisturbed * micro,
        times.undisturbed * 1e9 / static_cast<double>(shape.strips * shape.frames)
    );
    std::fflush(stdout);
    return {x, times.undisturbed * micro};
}

} // namespace

void printScaling() {
    fmt::print("\nHow the render pass grows (the tenth of the blocks that took least).\n");
    fmt::print("{:>8}{:>8}{:>12}{:>16}\n", "strips", "frames", "us a block", "ns a sample");
    for (const std::size_t frames : {64, 256, 1024}) {
        std::vector<Point> points;
        for (const std::size_t strips : stripCounts)
            points.push_back(measure(static_cast<double>(strips), {.frames = frames, .strips = strips}));
        printLine("strip", points);
    }
    std::vector<Point> points;
    for (const std::size_t frames : blockLengths)
        points.push_back(measure(static_cast<double>(frames), {.frames = frames}));
    printLine("frame", points);
}

} // namespace orvane::bench
