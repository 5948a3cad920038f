#pragma once

#include <QString>

#include <cstdint>

namespace orvane::ui {

/// What people call what has this index, counting from 1; also for the highest index that a session file may
/// name.
inline QString ordinal(std::int64_t index) {
    return index < 0 ? QString::number(index + 1) : QString::number(static_cast<std::uint64_t>(index) + 1U);
}

} // namespace orvane::ui
