#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::platform {

/// Encodes bytes with the standard alphabet, padded, without line breaks.
std::string encodeBase64(std::span<const std::uint8_t> bytes);

/// Decodes such a text. Strict, so that every byte sequence has exactly one text: absent if the text has a
/// foreign character, a line break, missing or surplus padding, or unused bits that are not zero.
std::optional<std::vector<std::uint8_t>> decodeBase64(std::string_view text);

} // namespace orvane::platform
