#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace orvane::dsp {

/// How a channel's activity is measured: unchanged, with the bass of a deep voice lowered, or with the
/// sibilance of a bright voice lowered. Never changes the audible signal.
enum class GenderTriggerMode { neutral, male, female };

/// Every mode, in declaration order.
inline constexpr std::array allGenderTriggerModes = {
    GenderTriggerMode::neutral, GenderTriggerMode::male, GenderTriggerMode::female};

/// Returns the word that session files store for a mode: "neutral", "male" or "female".
constexpr std::string_view rawValue(GenderTriggerMode mode) noexcept {
    constexpr std::array<std::string_view, 3> words = {"neutral", "male", "female"};
    return words[static_cast<std::size_t>(mode)];
}

/// Returns the mode of a word, compared exactly; empty for any other word.
constexpr std::optional<GenderTriggerMode> genderTriggerModeFromRawValue(std::string_view word) noexcept {
    for (const GenderTriggerMode mode : allGenderTriggerModes)
        if (rawValue(mode) == word) return mode;
    return std::nullopt;
}

} // namespace orvane::dsp
