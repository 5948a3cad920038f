#pragma once

#include <string>
#include <string_view>

namespace orvane::cli {

/// JSON or a table with every character that could command a terminal or turn the order of what it shows as
/// its JSON escape: the control characters from U+007F on, the separators of lines and paragraphs, and those
/// of bidirectional text. JSON keeps its meaning. `text` is UTF-8; ASCII control characters stay. Any thread
/// but the audio ones.
std::string terminalText(std::string_view text);

} // namespace orvane::cli
