#pragma once

#include <string_view>

namespace orvane::platform {

/// Whether `left` comes before `right` if digits are read as numbers: "in 2" before "in 10". A strict weak
/// order. Any thread.
bool comesNaturallyBefore(std::string_view left, std::string_view right);

} // namespace orvane::platform
