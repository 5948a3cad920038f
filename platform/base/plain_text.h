#pragma once

#include <string>
#include <string_view>

namespace orvane::platform {

/// Makes a foreign text, such as a port's name, safe for a terminal: "?" replaces every control character,
/// with which it could command the terminal, and every byte that is not UTF-8. Any thread except audio
/// threads.
std::string plainText(std::string_view text);

} // namespace orvane::platform
