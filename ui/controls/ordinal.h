#pragma once

#include <QString>

#include <cstdint>

namespace orvane::ui {

/// Returns the number shown for an index: the index plus 1, even for the highest index that a session file
/// can contain.
inline QString ordinal(std::int64_t index) {
    return index < 0 ? QString::number(index + 1) : QString::number(static_cast<std::uint64_t>(index) + 1U);
}

} // namespace orvane::ui
