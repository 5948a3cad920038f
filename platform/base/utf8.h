#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane::platform {

/// Decodes a UTF-8 text; absent if it is malformed. Any thread except audio threads.
std::optional<std::u32string> decodeUTF8(std::string_view text);

/// Appends a character, which must not be a surrogate. Any thread except audio threads.
void appendUTF8(std::string& text, char32_t character);

} // namespace orvane::platform
