#pragma once

#include <QString>

#include <cstddef>

namespace orvane::ui {

/// Returns the name of a control of a channel for screen readers, for example "Input, channel 3" for index 2.
inline QString ofChannel(const QString& control, std::size_t index) {
    return QStringLiteral("%1, channel %2").arg(control).arg(index + 1);
}

} // namespace orvane::ui
