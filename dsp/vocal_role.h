#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace orvane::dsp {

/// The group fader that applies to a channel's output.
enum class VocalRole { none, lead, backing };

/// Every role, in declaration order.
inline constexpr std::array allVocalRoles = {VocalRole::none, VocalRole::lead, VocalRole::backing};

/// Returns the word that session files store for a role: "none", "lead" or "backing".
constexpr std::string_view rawValue(VocalRole role) noexcept {
    constexpr std::array<std::string_view, 3> words = {"none", "lead", "backing"};
    return words[static_cast<std::size_t>(role)];
}

/// Returns the role of a word, compared exactly; empty for any other word.
constexpr std::optional<VocalRole> vocalRoleFromRawValue(std::string_view word) noexcept {
    for (const VocalRole role : allVocalRoles)
        if (rawValue(role) == word) return role;
    return std::nullopt;
}

} // namespace orvane::dsp
