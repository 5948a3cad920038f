#pragma once

#include <string>
#include <string_view>

namespace orvane::platform {

/// The name without a last word for one side of a card, such as "In" or "playback"; all of it if it has none.
/// Any thread.
std::string nameOfBothSides(std::string_view name);

} // namespace orvane::platform
