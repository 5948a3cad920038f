#pragma once

#include <string>
#include <string_view>

namespace orvane::platform {

/// A text from elsewhere, such as the name of a port, as a terminal can show it: "?" stands for every control
/// character, with which it could command the terminal, and for every byte that is not UTF-8. Any thread but
/// the audio ones.
std::string plainText(std::string_view text);

} // namespace orvane::platform
