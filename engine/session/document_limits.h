#pragma once

#include "platform/base/result.h"

#include <cstddef>
#include <optional>

namespace orvane::session {

/// The maximum nesting of objects and arrays that are kept; a session has eight levels.
inline constexpr std::size_t maximumNesting = 64;

/// Limits that keep a hostile file from exhausting the computer. Files are written within the same limits, so
/// that everything exported can be read back. A plain value.
struct DocumentLimits {
    /// The size of a file in bytes.
    std::size_t size = 512U << 20U;
    /// The number of values kept while a file is read, except the outermost, plus unknown keys beside them.
    /// Each takes up to two hundred bytes; a scene of 48 strips has two thousand.
    std::size_t valueCount = 5'000'000;

    /// The limit that a content exceeds, as an error; absent if it is within all limits.
    [[nodiscard]] std::optional<platform::Error> excess(std::size_t bytes, std::size_t values) const;
};

} // namespace orvane::session
