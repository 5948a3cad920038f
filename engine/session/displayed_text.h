#pragma once

#include <string>
#include <string_view>

namespace orvane::session {

/// A word of a file as an error can show it: on one line and not too long, whatever the file holds.
std::string displayed(std::string_view text);

} // namespace orvane::session
