#pragma once

#include "platform/base/os_status.h"

#include <cstddef>
#include <cstring>
#include <span>
#include <type_traits>

namespace orvane::platform {

/// The bytes of a property's value.
template <class Value>
std::span<const std::byte> bytesOf(const Value& value) {
    static_assert(std::is_trivially_copyable_v<Value>);
    return std::as_bytes(std::span(&value, 1));
}

/// The bytes that a property's value is read into.
template <class Value>
std::span<std::byte> writableBytesOf(Value& value) {
    static_assert(std::is_trivially_copyable_v<Value>);
    return std::as_writable_bytes(std::span(&value, 1));
}

/// Takes a value over from bytes of exactly its size; otherwise answers with `wrongSize`.
template <class Value>
OSStatus assignFrom(std::span<const std::byte> data, Value& value, OSStatus wrongSize) {
    static_assert(std::is_trivially_copyable_v<Value>);
    if (data.size() != sizeof(Value)) return wrongSize;
    std::memcpy(&value, data.data(), sizeof(Value));
    return noErr;
}

} // namespace orvane::platform
