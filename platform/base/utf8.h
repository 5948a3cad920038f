#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane::platform {

/// The characters of a UTF-8 text; nothing if it is malformed. Any thread but the audio ones.
std::optional<std::u32string> decodeUTF8(std::string_view text);

/// Appends a character, which is no surrogate. Any thread but the audio ones.
void appendUTF8(std::string& text, char32_t character);

} // namespace orvane::platform
