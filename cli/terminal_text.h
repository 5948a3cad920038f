#pragma once

#include <string>
#include <string_view>

namespace orvane::cli {

/// Returns JSON or a table with each character that could control a terminal or reorder its text replaced by
/// its JSON escape: the control characters from U+007F on, the line and paragraph separators, and the
/// bidirectional controls. JSON keeps its meaning. `text` is UTF-8; ASCII control characters stay. Any thread
/// but the audio ones.
std::string terminalText(std::string_view text);

} // namespace orvane::cli
