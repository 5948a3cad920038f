#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace orvane::dsp {

/// The group fader that a channel's output is under.
enum class VocalRole { none, lead, backing };

/// Every role, in declaration order.
inline constexpr std::array allVocalRoles = {VocalRole::none, VocalRole::lead, VocalRole::backing};

/// The word that session files store for a role: "none", "lead" or "backing".
constexpr std::string_view rawValue(VocalRole role) noexcept {
    constexpr std::array<std::string_view, 3> words = {"none", "lead", "backing"};
    return words[static_cast<std::size_t>(role)];
}

/// The role of a word, compared exactly; nothing for any other word.
constexpr std::optional<VocalRole> vocalRoleFromRawValue(std::string_view word) noexcept {
    for (const VocalRole role : allVocalRoles)
        if (rawValue(role) == word) return role;
    return std::nullopt;
}

} // namespace orvane::dsp
