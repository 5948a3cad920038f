#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::platform {

/// The identity of a strip, an insert slot, a snapshot or a preset: 16 bytes in network order, all zero by
/// default. A plain value.
struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    auto operator<=>(const Uuid&) const = default; // NOLINT(modernize-use-nullptr): misread by the checker

    /// Makes an identity (version 4) from the system's random source. Any thread except audio threads; throws
    /// std::system_error on a computer without such a source.
    static Uuid random();

    /// Parses the canonical form, 36 characters with hyphens and hexadecimal digits in either case; absent
    /// for any other text.
    static std::optional<Uuid> parse(std::string_view text);

    /// The canonical form, in upper case.
    [[nodiscard]] std::string toString() const;
};

} // namespace orvane::platform

template <>
struct std::hash<orvane::platform::Uuid> {
    std::size_t operator()(const orvane::platform::Uuid& uuid) const noexcept;
};
