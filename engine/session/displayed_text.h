#pragma once

#include <string>
#include <string_view>

namespace orvane::session {

/// Formats a word of a file for an error message: on one line and of limited length, whatever the file
/// contains.
std::string displayed(std::string_view text);

} // namespace orvane::session
