#include "engine/session/displayed_text.h"

#include <algorithm>
#include <cstddef>

namespace orvane::session {

namespace {

constexpr std::size_t longestDisplay = 40;
constexpr char replacement = '?';

bool isControl(char character) {
    const auto code = static_cast<unsigned char>(character);
    return code < 0x20 || code == 0x7F;
}

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

} // namespace

std::string displayed(std::string_view text) {
    std::size_t length = std::min(text.size(), longestDisplay);
    while (length > 0 && length < text.size() && continuesCharacter(text[length]))
        --length;
    std::string shown(text.substr(0, length));
    std::ranges::replace_if(shown, isControl, replacement);
    if (length < text.size()) shown += "...";
    return shown;
}

} // namespace orvane::session
