// All invariants hold, whatever is done with a mixer while blocks run.

#include "fuzzer.h"
#include "soak/rehearsal.h"

#include <chrono>
#include <cstdio>

using namespace orvane;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace std::chrono_literals;
    soak::Choices choices{std::span(data, size)};
    constexpr std::size_t fullCheckInterval = 4;
    constexpr std::size_t mostOperations = 64;
    soak::Rehearsal show({.strips = 1 + choices.below(8), .bufferSize = 64}, choices, fullCheckInterval);
    while (!choices.areOver() && show.operations() < mostOperations && !show.fault())
        show.step(4ms);
    if (const auto& fault = show.fault())
        std::fprintf(stderr, "After \"%s\": %s\n", std::string(show.lastOperation()).c_str(), fault->c_str());
    fuzz::require(!show.fault());
    return 0;
}
