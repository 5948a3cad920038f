#pragma once

#include "platform/base/result.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace orvane::platform {

/// Bytes of a binary property list, and of all the texts and data that it unfolds to.
inline constexpr std::size_t maximumPropertyListSize = 32U << 20U;

/// Values of a property list, keys included, each counted wherever it is referred to.
inline constexpr std::size_t maximumPropertyListValues = 1U << 18U;

/// Dictionaries and arrays inside each other.
inline constexpr std::size_t maximumPropertyListDepth = 64;

/// Whether bytes from an untrusted file are a whole binary property list that stays within the limits above
/// when it is unfolded, with nothing in it but what a `PropertyList` can hold. Any thread.
Result<Done> checkBinaryPropertyList(std::span<const std::uint8_t> data);

} // namespace orvane::platform
