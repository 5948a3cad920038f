#pragma once

#include <array>
#include <limits>

namespace orvane::test {

/// Invalid samples, as faulty converters, drivers and effects produce them.
inline constexpr std::array noSound = {
    std::numeric_limits<float>::quiet_NaN(),
    std::numeric_limits<float>::infinity(),
    1e30F,
    -std::numeric_limits<float>::quiet_NaN(),
    -std::numeric_limits<float>::infinity(),
    -std::numeric_limits<float>::max()};

} // namespace orvane::test
