#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// What a fuzzer calls with every input; anything but a return of 0 is a finding.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace orvane::fuzz {

/// Ends the program where what must hold does not.
inline void require(bool holds) {
    if (!holds) std::abort();
}

} // namespace orvane::fuzz
