#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane::platform {

/// The characters of a UTF-8 text; nothing where it is not well-formed. Any thread but the audio ones.
std::optional<std::u32string> decodeUTF8(std::string_view text);

} // namespace orvane::platform
