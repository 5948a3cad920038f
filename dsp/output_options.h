#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace orvane::dsp {

/// How the master leveler moves its gain.
enum class LevelerMode {
    /// Always towards the target, also in pauses.
    follow,
    /// As `hold` of the options explains.
    hold,
    /// Unity gain.
    off
};

/// The names of the modes in session files and on the command line, in the order of the modes.
inline constexpr std::array<std::string_view, 3> levelerModeNames = {"follow", "hold", "off"};

/// Returns the name of a mode.
constexpr std::string_view rawValue(LevelerMode mode) noexcept {
    return levelerModeNames[static_cast<std::size_t>(mode)];
}

/// Returns the mode of a name; absent if it names none.
constexpr std::optional<LevelerMode> levelerModeFromRawValue(std::string_view name) noexcept {
    for (std::size_t mode = 0; mode < levelerModeNames.size(); ++mode)
        if (levelerModeNames[mode] == name) return static_cast<LevelerMode>(mode);
    return std::nullopt;
}

/// The range of the limiter's ceiling, in dB true peak.
inline constexpr double lowestCeilingDBTP = -20.0;
inline constexpr double highestCeilingDBTP = 0.0;

/// Options of the automix and of the outputs for mixes that loudspeakers play in the same room. The defaults
/// change nothing. A plain value.
struct OutputOptions {
    /// `hold`: the leveler's gain stands still in pauses, falls at once and rises slowly, so that a
    /// pause is never turned up.
    LevelerMode leveler = LevelerMode::follow;
    /// Gains run in a line over each block instead of stepping at its edge.
    bool gainRamps = false;
    /// The power sum of all strips' automix gains is that of one open microphone at most.
    bool openMicrophoneLimit = false;
    /// A voice is open within its first 5 ms.
    bool fastOnset = false;
    /// The ceiling, in dB true peak, of every device output that carries the master bus; absent: no limiter.
    std::optional<double> limiterCeilingDBTP = std::nullopt;

    bool operator==(const OutputOptions&) const = default;
};

} // namespace orvane::dsp
