#include "platform/base/plain_text.h"

#include <algorithm>
#include <cstddef>

namespace orvane::platform {

namespace {

constexpr char plainReplacement = '?';
constexpr unsigned char deleteCharacter = 0x7F;
/// The first byte of the control characters beyond ASCII; their second byte is below the limit.
constexpr unsigned char controlLead = 0xC2;
constexpr unsigned char controlLimit = 0xA0;

bool continues(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// The length in bytes of a character that starts with `lead`; 0 if none does.
std::size_t lengthFrom(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead < controlLead || lead > 0xF4) return 0;
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

bool isControl(std::string_view character) {
    const auto lead = static_cast<unsigned char>(character[0]);
    if (character.size() == 1) return lead < ' ' || lead == deleteCharacter;
    return lead == controlLead && static_cast<unsigned char>(character[1]) < controlLimit;
}

} // namespace

std::string plainText(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        const std::size_t length = lengthFrom(static_cast<unsigned char>(text[0]));
        const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
        const bool isWhole =
            character.size() == length && std::ranges::all_of(character.substr(1), continues);
        if (isWhole && !isControl(character))
            plain += character;
        else
            plain += plainReplacement;
        text.remove_prefix(isWhole ? length : 1);
    }
    return plain;
}

} // namespace orvane::platform
