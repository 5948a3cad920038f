#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// Called by a fuzzer with every input; any result but 0 is a finding.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace orvane::fuzz {

/// Ends the program if a condition is violated.
inline void require(bool holds) {
    if (!holds) std::abort();
}

} // namespace orvane::fuzz
