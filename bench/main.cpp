#include "parts.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

namespace {

struct Part {
    const char* name;
    void (*print)();
};

constexpr Part parts[] = {
    {"blocks", orvane::bench::printBlocks},       {"sets", orvane::bench::printInstructionSets},
    {"fixed", orvane::bench::printFixedCost},     {"scaling", orvane::bench::printScaling},
    {"options", orvane::bench::printOptionTimes}, {"engine", orvane::bench::printEngine}};

} // namespace

int main(int argc, char** argv) {
    CLI::App program("Measures the mixer; docs/performance.md explains the figures.", "orvane_bench");
    std::vector<std::string> all;
    for (const Part& part : parts)
        all.emplace_back(part.name);
    std::vector<std::string> wanted = all;
    program
        .add_option(
            "part", wanted,
            "What to measure, everything if left out: blocks (times per block against plain loops), sets "
            "(instruction sets), fixed (cost of a block however short), scaling (growth with strips and "
            "frames), options (the pass with output options), engine (start, stop, recall, load, scan, "
            "memory)"
        )
        ->check(CLI::IsMember(all));
    CLI11_PARSE(program, argc, argv);
    try {
        for (const Part& part : parts)
            if (std::ranges::find(wanted, part.name) != wanted.end()) part.print();
    } catch (const std::exception& problem) {
        fmt::print(stderr, "orvane_bench: {}\n", problem.what());
        return 1;
    }
}
