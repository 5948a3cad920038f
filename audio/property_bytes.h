#pragma once

#include <cstddef>
#include <span>
#include <type_traits>

namespace orvane::audio {

/// A property's value as the hardware layer takes it; a view of `value`.
template <class Value>
requires std::is_trivially_copyable_v<Value>
[[nodiscard]] std::span<const std::byte> bytesOf(const Value& value) noexcept {
    return std::as_bytes(std::span(&value, 1));
}

/// Room for a property's value as the hardware layer fills it; a view of `value`.
template <class Value>
requires std::is_trivially_copyable_v<Value>
[[nodiscard]] std::span<std::byte> writableBytesOf(Value& value) noexcept {
    return std::as_writable_bytes(std::span(&value, 1));
}

} // namespace orvane::audio
