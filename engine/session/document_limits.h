#pragma once

#include "platform/base/result.h"

#include <cstddef>
#include <optional>

namespace orvane::session {

/// Objects and arrays inside each other that are kept; a session has eight.
inline constexpr std::size_t maximumNesting = 64;

/// What keeps a hostile file from exhausting the machine. Files are written within the same limits, so that
/// whatever was exported can be read back. A plain value.
struct DocumentLimits {
    /// Bytes of a file.
    std::size_t size = 512U << 20U;
    /// Values that are kept while a file is read, the outermost aside, and keys without a meaning beside
    /// them. They take up to two hundred bytes each; a scene of 48 strips has two thousand.
    std::size_t valueCount = 5'000'000;

    /// What is wrong with a content that has so many of both; nothing where it is within.
    [[nodiscard]] std::optional<platform::Error> excess(std::size_t bytes, std::size_t values) const;
};

} // namespace orvane::session
