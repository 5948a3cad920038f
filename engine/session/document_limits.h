#pragma once

#include <cstddef>
#include <string_view>

/// What keeps a hostile file from exhausting the machine. Files are written within the same limits, so that
/// whatever was exported can be read back.
namespace orvane::session {

/// Bytes of a session file.
inline constexpr std::size_t maximumDocumentSize = 64U << 20U;

/// The error for a text beyond it.
inline constexpr std::string_view documentTooLarge =
    "The session takes more than the 64 MiB that a file may have.";

/// Objects and arrays inside each other; a session has eight.
inline constexpr std::size_t maximumNesting = 64;

/// Spaces that a written line is indented by for each level.
inline constexpr std::size_t indentWidth = 4;

/// Values that are kept while a file is read. In a written file every value but the outermost has a line of
/// its own, the shortest being `true,` on the second level, so that no file within the size limit has more.
inline constexpr std::size_t maximumValueCount = maximumDocumentSize / (2 * indentWidth + 6);

} // namespace orvane::session
