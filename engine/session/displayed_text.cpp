#include "engine/session/displayed_text.h"

#include "platform/base/plain_text.h"

#include <algorithm>
#include <cstddef>

namespace orvane::session {

namespace {

constexpr std::size_t longestDisplay = 40;

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

} // namespace

std::string displayed(std::string_view text) {
    std::size_t length = std::min(text.size(), longestDisplay);
    while (length > 0 && length < text.size() && continuesCharacter(text[length]))
        --length;
    std::string shown = platform::plainText(text.substr(0, length));
    if (length < text.size()) shown += "...";
    return shown;
}

} // namespace orvane::session
